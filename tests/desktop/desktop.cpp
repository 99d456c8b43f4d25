#include "tests/desktop/desktop.h"

#include "link/paths.h"
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/help.h"
#include "platform/player.h"
#include "platform/program_folder.h"
#include "platform/refusal.h"
#include "platform/registry.h"
#include "platform/settings.h"
#include "platform/sound_devices.h"
#include "platform/temporary_files.h"
#include "platform/text.h"
#include "platform/window_list.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace tonex::desktop {

namespace {

std::unique_ptr<Desktop> current;
std::set<std::wstring, PathLess> unflushed; ///< files with bytes that a stop of the machine would lose

wchar_t Lower(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
}

} // namespace

bool PathLess::operator()(const std::wstring& a, const std::wstring& b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](wchar_t x, wchar_t y) { return Lower(x) < Lower(y); });
}

Desktop& Reset() {
    current = std::make_unique<Desktop>();
    unflushed.clear();
    return *current;
}

Desktop& Current() {
    if (!current) Reset();
    return *current;
}

std::vector<std::wstring> Told() {
    std::vector<std::wstring> texts;
    for (const Message& message : current->messages)
        texts.push_back(message.text);
    return texts;
}

bool Asked(const std::string& beginning) {
    const auto& log = Current().log;
    return std::any_of(log.begin(), log.end(),
                       [&](const std::string& line) { return line.starts_with(beginning); });
}

void InstallLinkSoftware() {
    Desktop& desk = Current();
    desk.registry[L"Software\\QMT\\Corvane-e\\PC\\InstallDir"] = std::wstring(L"C:\\Link\\") + L'\0';
    desk.folders.insert({L"C:\\Link", L"C:\\Link\\UserData", L"C:\\Link\\userdata\\sound",
                         L"C:\\Link\\pcferry\\cache", L"C:\\Link\\pcferry\\cache\\System",
                         L"C:\\Link\\pcferry\\cache\\System\\sound"});
}

std::string Utf8(const std::wstring& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto c = static_cast<std::uint32_t>(text[i]);
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size()) {
            c = 0x10000 + ((c - 0xD800) << 10) + (static_cast<std::uint32_t>(text[++i]) - 0xDC00);
        }
        const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            tail(0);
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            tail(6);
            tail(0);
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            tail(12);
            tail(6);
            tail(0);
        }
    }
    return out;
}

void Log(const std::string& line) {
    Current().log.push_back(line);
}

void Log(const std::string& call, const std::wstring& text) {
    Log(call + " " + Utf8(text));
}

} // namespace tonex::desktop

namespace tonex {

using desktop::Current;
using desktop::Desktop;
using desktop::Log;
using desktop::Utf8;

namespace {

/// A question that no test has answered: the test fails here, where the question can be read.
[[noreturn]] void Unanswered(const std::string& question) {
    throw std::logic_error("the test has queued no answer to: " + question);
}

void LoseUnflushed() {
    for (const std::wstring& path : desktop::unflushed) {
        const auto found = Current().files.find(path);
        if (found != Current().files.end()) found->second.bytes.resize(found->second.bytes.size() / 2);
    }
    desktop::unflushed.clear();
}

/// Counts a file operation and logs it. False when the script lets it fail.
bool Operation(const std::string& call, const std::wstring& path) {
    Desktop& desk = Current();
    Log(call, path);
    const int number = desk.file_operations++;
    desk.last_was_busy = false;
    desk.operation_names.push_back(call);
    if (number == desk.stop_at) {
        LoseUnflushed();
        throw desktop::MachineStopped{};
    }
    const bool failing =
        desk.fail_at >= 0 && (desk.fail_for_good ? number >= desk.fail_at : number == desk.fail_at);
    if (!failing && !desk.refused.contains(call)) return true;
    desk.last_was_busy = desk.failing_is_busy;
    return false;
}

std::wstring Plain(std::wstring path) {
    if (!path.empty() && path.back() == L'\\') path.pop_back();
    return path;
}

std::size_t NameStart(const std::wstring& path) {
    const std::size_t bar = path.find_last_of(L'\\');
    return bar == std::wstring::npos ? 0 : bar + 1;
}

bool FolderRefuses(const std::wstring& path) {
    return Current().refusing_folders.contains(Plain(path.substr(0, NameStart(path))));
}

bool SameLetter(wchar_t a, wchar_t b) {
    return desktop::Lower(a) == desktop::Lower(b);
}

} // namespace

// clock.h, screen.h, sound_devices.h

TimeOfDay CurrentTime() {
    Log("CurrentTime");
    return {Current().hour, Current().minute, Current().second};
}

ScreenMeasures MeasureScreen() {
    Log("MeasureScreen");
    return Current().screen;
}

int CountWaveOutputs() {
    Log("CountWaveOutputs");
    return Current().wave_outputs;
}

void PlaySoundFile(const std::wstring& path) {
    Log("PlaySoundFile", path);
}

// events.h

void ProcessEventsInPassing() {
    ProcessPendingEvents(); // a script has no time that could pass
}

void ProcessPendingEvents() {
    Log("ProcessPendingEvents");
    if (Current().during_events) Current().during_events();
}

void WaitForEvents(int milliseconds) {
    Log("WaitForEvents " + std::to_string(milliseconds));
    if (Current().during_events) Current().during_events();
}

// file_dialogs.h

namespace {

bool AnswerDialog(FileDialog& dialog, std::deque<std::optional<std::wstring>>& choices, const char* call) {
    Log(call, dialog.FileName);
    Current().dialogs.push_back(dialog);
    if (choices.empty()) Unanswered(std::string(call) + " " + Utf8(dialog.FileName));
    const std::optional<std::wstring> choice = choices.front();
    choices.pop_front();
    if (!choice) return false;
    dialog.FileName = *choice;
    return true;
}

} // namespace

bool ShowOpenDialog(FileDialog& dialog) {
    return AnswerDialog(dialog, Current().open_choices, "ShowOpenDialog");
}

bool ShowSaveDialog(FileDialog& dialog) {
    return AnswerDialog(dialog, Current().save_choices, "ShowSaveDialog");
}

// message_box.h

MessageAnswer ShowMessage(const std::wstring& text, MessageButtons buttons, MessageIcon icon) {
    Desktop& desk = Current();
    Log("ShowMessage", text);
    desk.messages.push_back({text, buttons, icon});
    if (buttons == MessageButtons::Ok) return MessageAnswer::Ok;
    if (desk.answers.empty()) Unanswered(Utf8(text));
    const MessageAnswer answer = desk.answers.front();
    desk.answers.pop_front();
    return answer;
}

// files.h

/// The call that was logged last, so that a test sees when the reason was asked for.
std::string ReasonOfRefusal() {
    return Current().log.empty() ? "" : "refused: " + Current().log.back();
}

bool FileIsBusy() {
    return Current().last_was_busy;
}

bool FileExists(const std::wstring& path) {
    return Operation("FileExists", path) && Current().files.contains(path);
}

bool FolderExists(const std::wstring& path) {
    return Operation("FolderExists", path) && Current().folders.contains(Plain(path));
}

std::wstring FullPathOf(const std::wstring& path) {
    const bool complete = path.starts_with(L"\\") || path.substr(1, 1) == L":";
    return complete ? path : Current().current_folder + L"\\" + path;
}

std::optional<std::uint32_t> AttributesOf(const std::wstring& path) {
    if (!Operation("AttributesOf", path)) return std::nullopt;
    const auto found = Current().files.find(path);
    if (found != Current().files.end()) return found->second.attributes;
    if (Current().folders.contains(Plain(path))) return kAttributeDirectory;
    return std::nullopt;
}

bool SetAttributesOf(const std::wstring& path, std::uint32_t attributes) {
    if (!Operation("SetAttributesOf", path + L" " + std::to_wstring(attributes))) return false;
    const auto found = Current().files.find(path);
    if (found == Current().files.end()) return false;
    found->second.attributes = attributes;
    return true;
}

bool RemoveFile(const std::wstring& path) {
    if (!Operation("RemoveFile", path)) return false;
    const auto found = Current().files.find(path);
    if (found == Current().files.end() || (found->second.attributes & kAttributeReadOnly) != 0) return false;
    desktop::unflushed.erase(path);
    Current().files.erase(found);
    return true;
}

bool ReadWholeFile(const std::wstring& path, std::vector<std::uint8_t>& bytes, std::size_t limit) {
    Current().read_limit = limit;
    if (!Operation("ReadWholeFile", path)) return false;
    const auto found = Current().files.find(path);
    if (found == Current().files.end()) return false;
    const std::vector<std::uint8_t>& all = found->second.bytes;
    bytes.assign(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(std::min(limit, all.size())));
    return true;
}

struct OutputFile {
    std::wstring path;
    bool closed = false;
};

void OutputFileCloser::operator()(OutputFile* file) const {
    Desktop& desk = Current();
    const auto found = desk.files.find(file->path);
    if (!file->closed && desk.in_flight_truncated && found != desk.files.end()) {
        found->second.bytes.resize(found->second.bytes.size() / 2);
    }
    delete file;
}

OutputFilePtr CreateOutput(const std::wstring& path) {
    if (!Operation("CreateOutput", path)) return nullptr;
    Desktop& desk = Current();
    if (desk.files.contains(path) || desk.folders.contains(path) || FolderRefuses(path)) return nullptr;
    desk.files[path] = {};
    desktop::unflushed.insert(path);
    return OutputFilePtr(new OutputFile{path});
}

bool WriteOutput(OutputFile& file, const std::uint8_t* bytes, std::size_t count) {
    Desktop& desk = Current();
    const bool good = Operation("WriteOutput", file.path + L" " + std::to_wstring(count));
    std::size_t taken = good ? count : desk.last_was_busy ? 0 : count / 2;
    if (desk.disk_space) {
        taken = std::min(taken, *desk.disk_space);
        *desk.disk_space -= taken;
    }
    const auto found = desk.files.find(file.path);
    if (found == desk.files.end()) return false;
    found->second.bytes.insert(found->second.bytes.end(), bytes, bytes + taken);
    if (desk.garbles_writes && taken > 0)
        (found->second.bytes.end() - static_cast<std::ptrdiff_t>(taken))[0] ^= 1;
    if (desk.lengthens_writes) found->second.bytes.push_back(0);
    desktop::unflushed.insert(file.path);
    return good && taken == count;
}

bool PatchOutput(OutputFile& file, std::uint64_t offset, const std::uint8_t* bytes, std::size_t count) {
    if (!Operation("PatchOutput", file.path + L" " + std::to_wstring(offset))) return false;
    const auto found = Current().files.find(file.path);
    if (found == Current().files.end() || offset + count > found->second.bytes.size()) return false;
    std::copy(bytes, bytes + count, found->second.bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    desktop::unflushed.insert(file.path);
    return true;
}

bool FlushOutput(OutputFile& file) {
    if (!Operation("FlushOutput", file.path)) return false;
    desktop::unflushed.erase(file.path);
    return true;
}

bool CloseOutput(OutputFilePtr file) {
    if (!Operation("CloseOutput", file->path)) return false;
    file->closed = true;
    return true;
}

bool RenameOver(const std::wstring& from, const std::wstring& to) {
    if (!Operation("RenameOver", from + L" " + to)) return false;
    Desktop& desk = Current();
    const auto source = desk.files.find(from);
    if (source == desk.files.end() || desk.folders.contains(to)) return false;
    const auto target = desk.files.find(to);
    if (target != desk.files.end() && (target->second.attributes & kAttributeReadOnly) != 0) return false;
    const desktop::File moved = source->second;
    desk.files.erase(source);
    desk.files[to] = moved;
    if (desktop::unflushed.erase(from) != 0) desktop::unflushed.insert(to);
    return true;
}

std::vector<std::wstring> ListFiles(const std::wstring& folder, const std::wstring& pattern) {
    if (!Operation("ListFiles", folder + L" " + pattern)) return {};
    std::vector<std::wstring> names;
    const desktop::PathLess less;
    for (const auto& [path, file] : Current().files) {
        const std::wstring home = Plain(path.substr(0, NameStart(path)));
        if (less(home, Plain(folder)) || less(Plain(folder), home)) continue;
        const std::wstring name = path.substr(NameStart(path));
        if (MatchesPattern(name, pattern, SameLetter)) names.push_back(name);
    }
    return names;
}

std::optional<std::uint64_t> AgeOfFile(const std::wstring& path) {
    if (!Operation("AgeOfFile", path)) return std::nullopt;
    const auto found = Current().files.find(path);
    if (found == Current().files.end()) return std::nullopt;
    return found->second.age_seconds;
}

void PauseBriefly(std::uint32_t milliseconds) {
    Log("PauseBriefly " + std::to_string(milliseconds));
}

std::uint32_t UniqueNumber() {
    return ++Current().unique_number;
}

// temporary_files.h

std::wstring TemporaryFolder() {
    Log("TemporaryFolder");
    return Current().temporary_folder;
}

std::wstring ShortNameOf(const std::wstring& path) {
    Log("ShortNameOf", path);
    const auto found = Current().short_names.find(path);
    return found == Current().short_names.end() ? path : found->second;
}

std::wstring CreateTemporaryFile(const std::wstring& folder, const std::wstring& prefix) {
    if (!Operation("CreateTemporaryFile", folder + L" " + prefix)) return {};
    const std::wstring path =
        Plain(folder) + L"\\" + prefix.substr(0, 3) + std::to_wstring(UniqueNumber()) + L".tmp";
    if (Current().files.contains(path) || FolderRefuses(path)) return {};
    Current().files[path] = {};
    return path;
}

// settings.h, registry.h

std::wstring ReadSetting(const std::wstring& application, const std::wstring& section,
                         const std::wstring& key, const std::wstring& default_text) {
    const std::wstring name = application + L"\\" + section + L"\\" + key;
    Log("ReadSetting", name);
    const auto found = Current().settings.find(name);
    return found == Current().settings.end() ? default_text : found->second;
}

bool WriteSetting(const std::wstring& application, const std::wstring& section, const std::wstring& key,
                  const std::wstring& text) {
    const std::wstring name = application + L"\\" + section + L"\\" + key;
    Log("WriteSetting", name + L" " + text);
    if (Current().settings_refused) return false;
    Current().settings[name] = text;
    return true;
}

struct RegistryKey {
    std::wstring path;
};

void RegistryKeyCloser::operator()(RegistryKey* key) const {
    Log("CloseKey");
    --Current().open_registry_keys;
    delete key;
}

RegistryKeyPtr OpenUserKey(const std::wstring& path) {
    Log("OpenUserKey", path);
    Desktop& desk = Current();
    const std::wstring below = path + L"\\";
    const auto found = desk.registry.lower_bound(below);
    const bool has_value = found != desk.registry.end() && found->first.starts_with(below);
    if (!has_value && !desk.registry_keys.contains(path)) return nullptr;
    ++desk.open_registry_keys;
    return RegistryKeyPtr(new RegistryKey{path});
}

std::uint32_t QueryTextSize(RegistryKey& key, const std::wstring& name) {
    Log("QueryTextSize", name);
    const Desktop& desk = Current();
    const auto found = desk.registry.find(key.path + L"\\" + name);
    if (found == desk.registry.end()) return 0;
    return desk.registry_size.value_or(static_cast<std::uint32_t>(found->second.size()));
}

bool QueryText(RegistryKey& key, const std::wstring& name, std::wstring& buffer) {
    Log("QueryText " + Utf8(name) + " " + std::to_string(buffer.size()));
    const auto found = Current().registry.find(key.path + L"\\" + name);
    if (found == Current().registry.end() || found->second.size() > buffer.size()) return false;
    std::copy(found->second.begin(), found->second.end(), buffer.begin());
    return true;
}

// player.h

namespace {
constexpr std::uint32_t kProcessId = 4711;
constexpr ProcessHandle kProcess = 88;
} // namespace

std::uint32_t StartCommandLine(const std::wstring& command_line, const std::wstring& sound_name) {
    Log("StartCommandLine", command_line);
    Current().sound_name = sound_name;
    if (!Current().command_line_starts) return 0;
    if (Current().on_start) Current().on_start(command_line);
    return kProcessId;
}

ProcessHandle OpenProcessForQuery(std::uint32_t process_id) {
    Log("OpenProcessForQuery " + std::to_string(process_id));
    if (process_id != kProcessId) return 0;
    ++Current().open_processes;
    return kProcess;
}

bool StartDocument(const std::wstring& path, const std::wstring& verb, ProcessHandle& process) {
    Log("StartDocument", path + L" " + verb);
    Desktop& desk = Current();
    process = 0;
    if (!desk.document_starts) return false;
    if (desk.on_start) desk.on_start(path);
    if (!desk.document_gives_process) return true;
    ++desk.open_processes;
    process = kProcess;
    return true;
}

std::uint32_t ExitCodeOf(ProcessHandle process) {
    Log("ExitCodeOf");
    Desktop& desk = Current();
    if (process != kProcess) throw std::logic_error("ExitCodeOf a handle that was never given");
    if (desk.polls_until_exit < 0) return kStillActive;
    if (desk.polls_until_exit == 0) return desk.exit_code;
    --desk.polls_until_exit;
    return kStillActive;
}

void CloseProcess(ProcessHandle process) {
    Log("CloseProcess");
    if (process != kProcess) throw std::logic_error("CloseProcess of a handle that was never given");
    --Current().open_processes;
}

// main_window.h

bool GetMainWindowPlacement(WindowPlacement& placement) {
    Log("GetMainWindowPlacement");
    if (!Current().placement) return false;
    placement = *Current().placement;
    return true;
}

bool SetMainWindowPlacement(const WindowPlacement& placement) {
    Log("SetMainWindowPlacement " + std::to_string(placement.show_state) + " " +
        std::to_string(placement.left) + " " + std::to_string(placement.top) + " " +
        std::to_string(placement.right) + " " + std::to_string(placement.bottom));
    if (!Current().placement_accepted) return false;
    Current().placement = placement;
    return true;
}

int MainWindowBorderStyle() {
    return Current().border_style;
}

WindowSize MainWindowSize() {
    return {Current().window_width, Current().window_height};
}

void MoveMainWindow(int left, int top) {
    Log("MoveMainWindow " + std::to_string(left) + " " + std::to_string(top));
    Current().window_left = left;
    Current().window_top = top;
}

void BringMainWindowToForeground() {
    Log("BringMainWindowToForeground");
}
void FocusScoreGrid() {
    Log("FocusScoreGrid");
    if (Current().on_focus) Current().on_focus();
}
void CloseMainWindow() {
    Log("CloseMainWindow");
}
void PopUpEditMenu() {
    Log("PopUpEditMenu");
}
void ShowAboutWindow() {
    Log("ShowAboutWindow");
}

bool ShowTransferReminder() {
    Log("ShowTransferReminder");
    return Current().reminder_ticked;
}

// help.h, program_folder.h

bool OpenHelpFile(const std::wstring& path, std::uint32_t command, const std::wstring& key) {
    Log("OpenHelpFile", path + L" " + std::to_wstring(command) + L" \"" + key + L"\"");
    return Current().help_opens;
}

bool OpenHelpGuide() {
    Log("OpenHelpGuide");
    return Current().guide_opens;
}

std::wstring ProgramFolder() {
    Log("ProgramFolder");
    return Current().program_folder;
}

// window_list.h

namespace {

const desktop::Window* WindowOf(WindowId id) {
    const auto& windows = Current().windows;
    return id == 0 || id > windows.size() ? nullptr : &windows[id - 1];
}

} // namespace

bool PreviousInstanceRunning() {
    Log("PreviousInstanceRunning");
    return Current().previous_instance;
}

WindowId FirstTopLevelWindow() {
    return Current().windows.empty() ? 0 : 1;
}
WindowId NextWindow(WindowId window) {
    return window < Current().windows.size() ? window + 1 : 0;
}

int CaptionLength(WindowId window) {
    const desktop::Window* found = WindowOf(window);
    return found ? static_cast<int>(found->caption.size()) : 0;
}

int ReadCaption(WindowId window, std::wstring& buffer) {
    Log("ReadCaption " + std::to_string(window));
    const desktop::Window* found = WindowOf(window);
    if (!found || buffer.empty()) return 0;
    const std::size_t count = std::min(found->caption.size(), buffer.size() - 1);
    std::copy_n(found->caption.begin(), count, buffer.begin());
    buffer[count] = 0;
    return static_cast<int>(count);
}

WindowId OwnerOf(WindowId window) {
    const desktop::Window* found = WindowOf(window);
    return found ? found->owner : 0;
}

bool IsMinimised(WindowId window) {
    const desktop::Window* found = WindowOf(window);
    return found && found->minimised;
}

void RestoreWindow(WindowId window) {
    Log("RestoreWindow " + std::to_string(window));
}
void BringToForeground(WindowId window) {
    Log("BringToForeground " + std::to_string(window));
}

// text.h

namespace {

constexpr unsigned kShiftJis = 932;

/// The pair of bytes with a number counted from a first lead byte; a second byte is never 7F.
std::string PairOfNumber(unsigned first_lead, std::size_t number) {
    const std::size_t trail = number % 188;
    return {static_cast<char>(first_lead + number / 188),
            static_cast<char>(trail < 63 ? 0x40 + trail : 0x41 + trail)};
}

/// Whether the code page has double-byte characters of this kind: Greek, Cyrillic, Japanese signs.
bool IsDoubleByte(wchar_t c) {
    const auto code = static_cast<std::uint32_t>(c);
    return (code >= 0x391 && code <= 0x451) || (code >= 0x2010 && code <= 0x266F) ||
           (code >= 0x3000 && code <= 0x30FF) || (code >= 0x4E00 && code <= 0x9FA0) ||
           (code >= 0xFF01 && code <= 0xFF60);
}

/// The two bytes of a character. Katakana have the code page's own (the second byte of one is a backslash);
/// any other gets the next pair that is free when it is first met: not its own, but of the same length and
/// range, and with a way back.
std::string PairOf(wchar_t c) {
    if (!IsDoubleByte(c)) return "?";
    auto& pairs = Current().ansi_pairs;
    const auto found = pairs.find(c);
    if (found != pairs.end()) return found->second;
    const bool katakana = c >= 0x30A1 && c <= 0x30F6;
    const std::string pair = katakana ? PairOfNumber(0x83, static_cast<std::size_t>(c) - 0x30A1)
                                      : PairOfNumber(0x88, pairs.size());
    pairs[c] = pair;
    return pair;
}

bool IsLead(unsigned char byte) {
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

wchar_t CharacterOf(std::string_view pair) {
    for (const auto& [character, bytes] : Current().ansi_pairs) {
        if (bytes == pair) return character;
    }
    return L'?';
}

} // namespace

std::string ToAnsi(std::wstring_view text) {
    std::string out;
    const bool japanese = Current().code_page == kShiftJis;
    for (const wchar_t c : text) {
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (!japanese) {
            // As the system does, a letter that the page lacks becomes one that looks like it.
            out += c == 0x105 ? 'a' : c < 0x100 ? static_cast<char>(c) : '?';
        } else if (c >= 0xFF61 && c <= 0xFF9F) {
            out += static_cast<char>(c - 0xFF61 + 0xA1);
        } else {
            out += PairOf(c);
        }
    }
    return out;
}

std::wstring FromAnsi(std::string_view text) {
    std::wstring out;
    const bool japanese = Current().code_page == kShiftJis;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80 || !japanese) {
            out += static_cast<wchar_t>(byte);
        } else if (byte >= 0xA1 && byte <= 0xDF) {
            out += static_cast<wchar_t>(byte - 0xA1 + 0xFF61);
        } else if (IsLead(byte) && i + 1 < text.size()) {
            out += CharacterOf(text.substr(i++, 2));
        } else {
            out += L'?';
        }
    }
    return out;
}

} // namespace tonex
