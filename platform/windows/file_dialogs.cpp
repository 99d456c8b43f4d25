// platform/file_dialogs.h on Win32. The dialogs' library is loaded with the first dialog.
#include "platform/file_dialogs.h"

#include "platform/windows/desktop_windows.h"

#include <commdlg.h>

#include <cderr.h>

#include <algorithm>
#include <vector>

namespace tonex {

namespace {

constexpr std::size_t kPathRoom = 32 * 1024; // characters; the longest path that the system knows

using FileNameFunction = BOOL(WINAPI*)(OPENFILENAMEW*);

// The dialogs can leave the chosen folder as the current one whatever they are asked for. That would keep the
// folder from being removed as long as the program runs.
struct KeepCurrentFolder {
    KeepCurrentFolder() : folder(GetCurrentDirectoryW(0, nullptr), L'\0') {
        folder.resize(GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
    }
    ~KeepCurrentFolder() {
        if (!folder.empty()) SetCurrentDirectoryW(folder.c_str());
    }
    std::wstring folder;
};

bool ShowDialog(FileDialog& dialog, const char* function, DWORD flags) {
    ShowDifferencesNow();
    const HMODULE library = SystemLibrary(L"comdlg32.dll");
    const auto show = LibraryFunction<FileNameFunction>(library, function);
    const auto last_error = LibraryFunction<DWORD(WINAPI*)()>(library, "CommDlgExtendedError");
    if (!show || !last_error) return false;

    std::wstring filter = dialog.Filter;
    std::replace(filter.begin(), filter.end(), L'|', L'\0');
    filter.append(2, L'\0');
    std::vector<wchar_t> path(kPathRoom, L'\0');
    std::copy_n(dialog.FileName.begin(), std::min(dialog.FileName.size(), kPathRoom - 1), path.begin());

    const KeepCurrentFolder keep;
    OPENFILENAMEW choice = {};
    choice.lStructSize = sizeof choice;
    choice.hwndOwner = Hooks().main_window;
    choice.hInstance = Hooks().instance;
    choice.lpstrFilter = filter.c_str();
    choice.nFilterIndex = 1;
    choice.lpstrFile = path.data();
    choice.nMaxFile = static_cast<DWORD>(path.size());
    choice.lpstrInitialDir = dialog.InitDir.empty() ? nullptr : dialog.InitDir.c_str();
    choice.lpstrTitle = dialog.Title.c_str();
    choice.lpstrDefExt = dialog.DefaultExt.c_str();
    choice.Flags =
        flags | OFN_EXPLORER | OFN_ENABLESIZING | OFN_NOCHANGEDIR | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST;
    bool chosen = show(&choice) != 0;
    if (!chosen && last_error() == FNERR_INVALIDFILENAME) { // the name offered is none; offer nothing
        path[0] = L'\0';
        chosen = show(&choice) != 0;
    }
    if (chosen) dialog.FileName = path.data();
    return chosen;
}

} // namespace

bool ShowOpenDialog(FileDialog& dialog) {
    return ShowDialog(dialog, "GetOpenFileNameW", OFN_FILEMUSTEXIST);
}

bool ShowSaveDialog(FileDialog& dialog) {
    // The save itself finds out whether the folder takes the file; the dialog need not try with an empty one.
    const bool chosen = ShowDialog(dialog, "GetSaveFileNameW", OFN_OVERWRITEPROMPT | OFN_NOTESTFILECREATE);
    const bool asked = chosen && GetFileAttributesW(dialog.FileName.c_str()) != INVALID_FILE_ATTRIBUTES;
    if (asked && Hooks().take_keyboard_back) Hooks().take_keyboard_back();
    return chosen;
}

} // namespace tonex
