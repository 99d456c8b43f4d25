// The scripted desktop: floor 2 in memory. A test queues answers, runs a command and reads what was asked.
#pragma once

#include "platform/file_dialogs.h"
#include "platform/main_window.h"
#include "platform/message_box.h"
#include "platform/screen.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tonex::desktop {

struct File {
    std::vector<std::uint8_t> bytes;
    std::uint32_t attributes = 32;
    std::uint64_t age_seconds = 0;
};

struct Message {
    std::wstring text;
    MessageButtons buttons;
    MessageIcon icon;
};

struct Window { ///< a top-level window of the window list, in z-order
    std::wstring caption;
    std::uintptr_t owner = 0;
    bool minimised = false;
};

/// What the scripted disk throws when it stops the machine in the middle of an operation.
struct MachineStopped {};

/// The scripted link library: a folder-like organiser whose every answer a test can bend. Text is ANSI.
struct LinkScript {
    bool loads = true;             ///< false: LoadLinkLibrary leaves the whole table null
    std::set<std::string> missing; ///< names of functions that stay null
    std::string cache_root = "C:\\Link\\pcferry\\cache"; ///< cache path = root + device path
    std::optional<std::int16_t> conversion_count;        ///< a count to claim instead of the true one
    std::optional<std::string> conversion_bytes; ///< bytes to write instead (at most 200, no NUL is added)
    std::deque<std::optional<std::string>> open_choices; ///< device paths; nothing = cancel
    std::deque<std::optional<std::string>> save_choices;
    std::int32_t dialog_result = 1;       ///< of the dialogs when something was chosen
    bool dialogs_omit_nul = false;        ///< the dialogs fill what is left of the buffer with '#'
    std::optional<std::int32_t> exists;   ///< answer of Cor_IsExist; else whether the copy is there
    std::int32_t get_result = 0;          ///< of Cor_GetFile
    std::optional<std::string> get_bytes; ///< bytes that Cor_GetFile writes (at most 200, no NUL)
    std::int32_t put_result = 0;          ///< of Cor_PutFile
    std::map<std::string, std::vector<std::uint8_t>> uploads; ///< device path -> what was handed over
    std::vector<std::string> listing;                         ///< names that Cor_DirByExt gives
    std::optional<std::int32_t> listing_count;                ///< a count to claim instead
    std::optional<std::string> listing_bytes;                 ///< bytes to write instead
    std::int16_t disconnect_result = 0;
};

/// Paths compare without regard to letter case.
struct PathLess {
    bool operator()(const std::wstring& a, const std::wstring& b) const;
};

struct Desktop {
    /// One line a call, in order: "FileExists C:\a.snd", "ShowMessage Read error!", in UTF-8.
    std::vector<std::string> log;

    // Message boxes and dialogs. An empty queue is a test failure, except for messages with only OK.
    std::deque<MessageAnswer> answers;
    std::vector<Message> messages;
    std::deque<std::optional<std::wstring>> open_choices; ///< nothing = cancel
    std::deque<std::optional<std::wstring>> save_choices;
    std::vector<FileDialog> dialogs; ///< as they were when shown

    // The disk.
    std::map<std::wstring, File, PathLess> files;
    std::set<std::wstring, PathLess> folders;          ///< without a backslash at the end
    std::set<std::wstring, PathLess> refusing_folders; ///< no file can be created in these
    int file_operations = 0;                  ///< counts every operation on files, temporary ones too
    std::vector<std::string> operation_names; ///< of all of them, in order: "RenameOver"
    int fail_at = -1;                         ///< the operation with this number (from 0) fails ...
    bool fail_for_good = false;               ///< ... and all after it
    int stop_at = -1; ///< the machine stops at this operation: MachineStopped is thrown, what was not flushed
                      ///< keeps only half its bytes
    std::size_t read_limit = 0;            ///< bytes that were asked for when a file was read last
    std::set<std::string> refused;         ///< operations that always fail, by name: "RenameOver"
    bool garbles_writes = false;           ///< the disk stores another first byte than it was given
    bool lengthens_writes = false;         ///< the disk stores a byte more than it was given
    bool failing_is_busy = true;           ///< what fails by the script is held by another program
    bool last_was_busy = false;            ///< of the last operation; what FileIsBusy answers
    std::uint32_t unique_number = 0;       ///< UniqueNumber counts it up
    std::optional<std::size_t> disk_space; ///< bytes that can still be written
    bool in_flight_truncated = true;       ///< a file dropped without CloseOutput keeps only half its bytes

    // Settings, registry, clock, screen, sound.
    std::map<std::wstring, std::wstring> settings; ///< "Corvane\\Tonex\\File1" -> text
    std::map<std::wstring, std::wstring> registry; ///< "Software\\...\\InstallDir" -> raw text with its NUL
    std::set<std::wstring> registry_keys;          ///< keys that are there without a value
    std::optional<std::uint32_t> registry_size;    ///< a size to report instead of the true one
    int open_registry_keys = 0;
    bool settings_refused = false;
    int wave_outputs = 1;
    int hour = 12, minute = 34, second = 56;
    ScreenMeasures screen;
    std::wstring current_folder = L"C:\\Home";        ///< relative paths count from it
    std::map<std::wstring, std::wstring> short_names; ///< of folders that have one
    std::wstring temporary_folder = L"C:\\Temp\\";
    unsigned code_page = 932;

    // Player.
    bool command_line_starts = true;
    std::wstring sound_name; ///< what the last player was told to call the sound
    bool document_starts = true;
    bool document_gives_process = true;
    int polls_until_exit = 3; ///< ExitCodeOf gives kStillActive this often; -1 = never ends
    std::uint32_t exit_code = 0;
    int open_processes = 0;                            ///< handles not given back
    std::function<void(const std::wstring&)> on_start; ///< sees a command line or document as it is started
    std::function<void()> during_events;               ///< runs inside ProcessPendingEvents and WaitForEvents

    // Windows.
    std::function<void()> on_focus; ///< runs inside FocusScoreGrid
    bool previous_instance = false;
    std::vector<Window> windows; ///< WindowId = index + 1
    std::optional<WindowPlacement> placement = WindowPlacement{};
    bool placement_accepted = true;
    int border_style = 2;
    int window_width = 12000, window_height = 8000; ///< of the main window, twips
    int window_left = 0, window_top = 0;            ///< where MoveMainWindow put it, twips
    std::wstring program_folder = L"C:\\Program Files\\Tonex";
    bool reminder_ticked = false;
    bool help_opens = true;
    bool guide_opens = true;

    LinkScript link;
    std::map<wchar_t, std::string> ansi_pairs; ///< double-byte characters met so far
};

/// A fresh desktop; every test starts with it.
Desktop& Reset();
/// The desktop in use.
Desktop& Current();
/// Puts the link software on the desktop: its registry entry (C:\Link\), its folders.
void InstallLinkSoftware();
/// UTF-8, as the log writes texts.
std::string Utf8(const std::wstring& text);
/// Adds a line to the log: a call, with its text.
void Log(const std::string& line);
void Log(const std::string& call, const std::wstring& text);
/// The texts of all message boxes so far.
std::vector<std::wstring> Told();
/// Whether the log has a line that begins with the text.
bool Asked(const std::string& beginning);

} // namespace tonex::desktop
