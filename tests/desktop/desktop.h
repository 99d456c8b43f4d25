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

/// Paths compare without regard to letter case.
struct PathLess {
    bool operator()(const std::wstring& a, const std::wstring& b) const;
};

struct Desktop {
    /// One line a call, in order: "PathExists C:\a.snd 6", "ShowMessage Read error!", in UTF-8.
    std::vector<std::string> log;

    // Message boxes and dialogs. An empty queue is a test failure, except for messages with only OK.
    std::deque<MessageAnswer> answers;
    std::vector<Message> messages;
    std::deque<std::optional<std::wstring>> open_choices; ///< nothing = cancel
    std::deque<std::optional<std::wstring>> save_choices;
    std::vector<FileDialog> dialogs; ///< as they were when shown

    // The disk.
    std::map<std::wstring, File, PathLess> files;
    std::set<std::wstring, PathLess> folders;
    int file_operations = 0;   ///< counts every operation of platform/files.h that can fail
    int fail_at = -1;          ///< the operation with this number (from 0) fails ...
    bool fail_for_good = false; ///< ... and all after it
    std::optional<std::size_t> disk_space; ///< bytes that can still be written
    bool in_flight_truncated = true; ///< a file dropped without CloseOutput keeps only half its bytes

    // Settings, registry, clock, screen, sound.
    std::map<std::wstring, std::wstring> settings; ///< "Corvane\\Tonex\\File1" -> text
    std::map<std::wstring, std::wstring> registry; ///< "Software\\...\\InstallDir" -> raw text with its NUL
    int wave_outputs = 1;
    int hour = 12, minute = 34, second = 56;
    ScreenMeasures screen;
    std::wstring temporary_folder = L"C:\\Temp\\";
    unsigned code_page = 932;

    // Player.
    bool command_line_starts = true;
    bool document_starts = true;
    bool document_gives_process = true;
    int polls_until_exit = 3; ///< ExitCodeOf gives kStillActive this often; -1 = never ends
    std::uint32_t exit_code = 0;
    std::function<void()> during_events; ///< runs inside ProcessPendingEvents and WaitForEvents

    // Windows.
    bool previous_instance = false;
    std::vector<Window> windows; ///< WindowId = index + 1
    std::optional<WindowPlacement> placement = WindowPlacement{};
    bool placement_accepted = true;
    bool reminder_ticked = false;
    bool help_opens = true;
};

/// A fresh desktop; every test starts with it.
Desktop& Reset();
/// The desktop in use.
Desktop& Current();
/// Whether the log has a line that begins with the text.
bool Asked(const std::string& beginning);

} // namespace tonex::desktop
