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
constexpr std::uint64_t kSmallestRealReader = 64 * 1024;

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

} // namespace

bool OpenHelpFile(const std::wstring& path, std::uint32_t command, const std::wstring& key) {
    // The system's call reports success for a missing file, for no help file, and with no reader.
    if (!IsHelpFile(path) || !SystemHasHelpReader()) return false;
    using HelpFunction = BOOL(WINAPI*)(HWND, const wchar_t*, UINT, ULONG_PTR);
    const auto help = LibraryFunction<HelpFunction>(GetModuleHandleW(L"user32.dll"), "WinHelpW");
    if (!help) return false;
    const InProgramFolder no_document_folder;
    // A reader that does not know the command asked for, as Wine's does not know the key search, still shows
    // the contents.
    help(Hooks().main_window, path.c_str(), HELP_CONTENTS, 0);
    return help(Hooks().main_window, path.c_str(), command, reinterpret_cast<ULONG_PTR>(key.c_str())) != 0;
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
