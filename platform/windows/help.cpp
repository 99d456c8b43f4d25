// platform/help.h on Win32.
#include "platform/help.h"

#include "platform/files.h"
#include "platform/program_folder.h"
#include "platform/windows/desktop_windows.h"

#include <shellapi.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace tonex {

namespace {

constexpr std::array<std::uint8_t, 4> kHelpFileMark = {0x3F, 0x5F, 0x03, 0x00};

// Since Vista the system holds a reader of a few kilobytes that only says that there is none. The real one,
// which can be added, has more than this.
constexpr std::uint64_t kSmallestRealReader = std::uint64_t{64} * 1024;

constexpr DWORD kReaderPatience = 2000; // milliseconds until the reader has a window on the screen
constexpr DWORD kReaderLook = 20;       // milliseconds

using HelpFunction = BOOL(WINAPI*)(HWND, const wchar_t*, UINT, ULONG_PTR);

// What this process knows of the system's reader.
enum class Reader { NotAsked, Asked, Refused } reader = Reader::NotAsked;

HelpFunction HelpOfTheSystem() {
    return LibraryFunction<HelpFunction>(GetModuleHandleW(L"user32.dll"), "WinHelpW");
}

bool IsHelpFile(const std::wstring& path) {
    std::vector<std::uint8_t> mark;
    return ReadWholeFile(path, mark, kHelpFileMark.size()) &&
           std::equal(mark.begin(), mark.end(), kHelpFileMark.begin(), kHelpFileMark.end());
}

bool SystemHasHelpReader() {
    wchar_t folder[MAX_PATH];
    const UINT length = GetWindowsDirectoryW(folder, static_cast<UINT>(std::size(folder)));
    if (length == 0 || length >= std::size(folder)) return false;
    const std::wstring reader = std::wstring(folder, length) + L"\\winhlp32.exe";
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(reader.c_str(), GetFileExInfoStandard, &data)) return false;
    return (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow) >= kSmallestRealReader;
}

// ---- whether the reader took the file: the system's call does not tell ----

/// What the reader's process has on the screen.
struct ReaderWindows {
    DWORD process = 0;
    bool message = false, help = false;
};

/// The list of topics is a dialog with tabs; what says that a file is bad has none.
bool IsMessage(HWND window) {
    wchar_t name[16] = L"";
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return lstrcmpW(name, L"#32770") == 0 && !FindWindowExW(window, nullptr, L"SysTabControl32", nullptr);
}

BOOL CALLBACK LookAtWindow(HWND window, LPARAM where) {
    auto& windows = *reinterpret_cast<ReaderWindows*>(where);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == windows.process && IsWindowVisible(window))
        (IsMessage(window) ? windows.message : windows.help) = true;
    return TRUE;
}

/// The reader's window that takes the system's calls, or the one that shows a file.
HWND ReaderWindow() {
    HWND window = FindWindowW(L"MS_WINHELP", nullptr);
    return window ? window : FindWindowW(L"MS_WINDOC", nullptr);
}

/// A reader that refuses a file has a message on the screen, or nothing once the message was answered.
bool ReaderRefuses() {
    for (const DWORD begin = GetTickCount();; Sleep(kReaderLook)) {
        HWND window = ReaderWindow();
        ReaderWindows windows;
        if (window) GetWindowThreadProcessId(window, &windows.process);
        if (window) EnumWindows(LookAtWindow, reinterpret_cast<LPARAM>(&windows));
        if (windows.help) return false;
        if (windows.message) return true;
        if (GetTickCount() - begin >= kReaderPatience) return window != nullptr;
    }
}

/// Wine's reader knows no key search: it is asked for the contents, which others would show beside what was
/// asked for.
bool AskReader(HelpFunction help, const wchar_t* path, UINT command, const wchar_t* key) {
    if (UnderWine() && (!help(Hooks().main_window, path, HELP_CONTENTS, 0) || ReaderRefuses())) return false;
    return help(Hooks().main_window, path, command, reinterpret_cast<ULONG_PTR>(key)) && !ReaderRefuses();
}

} // namespace

bool OpenHelpFile(const std::wstring& path, std::uint32_t command, const std::wstring& key) {
    // The system's call reports success for a missing file, for no help file, and with no reader.
    if (reader == Reader::Refused || !IsHelpFile(path) || !SystemHasHelpReader()) return false;
    const HelpFunction help = HelpOfTheSystem();
    if (!help) return false;
    const InProgramFolder no_document_folder;
    reader = Reader::Asked;
    if (AskReader(help, path.c_str(), command, key.c_str())) return true;
    // It is not asked again, or every call for help would begin with its message.
    CloseHelpFile();
    reader = Reader::Refused;
    return false;
}

void CloseHelpFile() {
    const HelpFunction help = HelpOfTheSystem();
    if (reader == Reader::Asked && help) help(Hooks().main_window, nullptr, HELP_QUIT, 0);
    reader = Reader::NotAsked;
}

bool OpenHelpGuide() {
    const std::wstring guide = ProgramFolder() + L"\\Veloxa.htm";
    if (!FileExists(guide)) return false;
    using ShellFunction = BOOL(WINAPI*)(SHELLEXECUTEINFOW*);
    const auto open = LibraryFunction<ShellFunction>(SystemLibrary(L"shell32.dll"), "ShellExecuteExW");
    if (!open) return false;
    const std::wstring folder = ProgramFolder();
    SHELLEXECUTEINFOW document = {};
    document.cbSize = sizeof document;
    document.fMask = SEE_MASK_FLAG_NO_UI;
    document.hwnd = Hooks().main_window;
    document.lpVerb = L"open";
    document.lpFile = guide.c_str();
    document.lpDirectory = folder.c_str();
    document.nShow = SW_SHOWNORMAL;
    if (open(&document)) return true;
    // Where nothing is set up for the ending .htm, as in a fresh Wine, there may still be a program for HTML
    // pages.
    document.fMask |= SEE_MASK_CLASSNAME;
    document.lpClass = L"htmlfile";
    return open(&document) != 0;
}

} // namespace tonex
