// The common dialogs. Their library is loaded with the first one.
#include "platform/windows/desktop_windows.h"
#include "platform/windows/file_dialog_kinds.h"

#include <commdlg.h>

#include <cderr.h>

#include <algorithm>
#include <vector>

namespace tonex {

namespace {

constexpr std::size_t kPathRoom = 32 * 1024; // characters; the longest path that the system knows

using FileNameFunction = BOOL(WINAPI*)(OPENFILENAMEW*);

// "Sound Files(*.snd)|*.snd" as the list of pairs that it is, with a NUL behind each text and one more.
std::wstring FilterList(std::wstring filter) {
    std::replace(filter.begin(), filter.end(), L'|', L'\0');
    return filter.append(2, L'\0');
}

OPENFILENAMEW RequestFor(const FileDialog& dialog, DialogTask task) {
    OPENFILENAMEW request = {};
    request.lStructSize = sizeof request;
    request.hwndOwner = Hooks().main_window;
    request.hInstance = Hooks().instance;
    request.nFilterIndex = 1;
    request.lpstrInitialDir = dialog.InitDir.empty() ? nullptr : dialog.InitDir.c_str();
    request.lpstrTitle = dialog.Title.c_str();
    request.lpstrDefExt = dialog.DefaultExt.c_str();
    request.Flags = OFN_EXPLORER | OFN_ENABLESIZING | OFN_NOCHANGEDIR | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST;
    // The save itself finds out whether the folder takes the file; the dialog need not try with an empty one.
    request.Flags |=
        task == DialogTask::Open ? OFN_FILEMUSTEXIST : OFN_OVERWRITEPROMPT | OFN_NOTESTFILECREATE;
    return request;
}

} // namespace

DialogAnswer ShowCommonDialog(FileDialog& dialog, DialogTask task) {
    const HMODULE library = SystemLibrary(L"comdlg32.dll");
    const char* function = task == DialogTask::Open ? "GetOpenFileNameW" : "GetSaveFileNameW";
    const auto show = LibraryFunction<FileNameFunction>(library, function);
    const auto last_error = LibraryFunction<DWORD(WINAPI*)()>(library, "CommDlgExtendedError");
    if (!show || !last_error) return DialogAnswer::Missing;

    const std::wstring filter = FilterList(dialog.Filter);
    std::vector<wchar_t> path(kPathRoom, L'\0');
    std::copy_n(dialog.FileName.begin(), std::min(dialog.FileName.size(), kPathRoom - 1), path.begin());
    OPENFILENAMEW request = RequestFor(dialog, task);
    request.lpstrFilter = filter.c_str();
    request.lpstrFile = path.data();
    request.nMaxFile = static_cast<DWORD>(path.size());
    bool chosen = show(&request) != 0;
    if (!chosen && last_error() == FNERR_INVALIDFILENAME) { // the name offered is none; offer nothing
        path[0] = L'\0';
        chosen = show(&request) != 0;
    }
    if (!chosen) return DialogAnswer::Cancelled;
    dialog.FileName = path.data();
    return DialogAnswer::Chosen;
}

} // namespace tonex
