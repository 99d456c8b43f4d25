// The item dialogs are objects of the shell, looked up with the first dialog: Windows XP has none. Only their
// declarations are those of a later system.
#undef WINVER
#undef _WIN32_WINNT
#define WINVER 0x0600
#define _WIN32_WINNT 0x0600

#include "platform/windows/desktop_windows.h"
#include "platform/windows/file_dialog_kinds.h"

#include <initguid.h>
#include <shobjidl.h>

#include <memory>

namespace tonex {

namespace {

struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface> using Owned = std::unique_ptr<Interface, Release>;

Owned<IFileDialog> CreateFileDialog(const CLSID& kind) {
    using Create = HRESULT(WINAPI*)(REFCLSID, IUnknown*, DWORD, REFIID, void**);
    const auto create = LibraryFunction<Create>(SystemLibrary(L"ole32.dll"), "CoCreateInstance");
    void* made = nullptr;
    if (!create || FAILED(create(kind, nullptr, CLSCTX_INPROC_SERVER, IID_IFileDialog, &made)))
        return nullptr;
    return Owned<IFileDialog>(static_cast<IFileDialog*>(made));
}

Owned<IShellItem> FolderItem(const std::wstring& path) {
    using Parse = HRESULT(WINAPI*)(PCWSTR, IBindCtx*, REFIID, void**);
    const auto parse = LibraryFunction<Parse>(SystemLibrary(L"shell32.dll"), "SHCreateItemFromParsingName");
    // A backslash at the end is part of a drive's name only.
    const std::wstring folder =
        path.size() > 3 && path.ends_with(L'\\') ? path.substr(0, path.size() - 1) : path;
    void* found = nullptr;
    if (!parse || FAILED(parse(folder.c_str(), nullptr, IID_IShellItem, &found))) return nullptr;
    return Owned<IShellItem>(static_cast<IShellItem*>(found));
}

// "Sound Files(*.snd)|*.snd" as the pair that it is.
void SetFilter(IFileDialog& shown, const std::wstring& filter) {
    const std::size_t bar = filter.find(L'|');
    if (bar == std::wstring::npos) return;
    const std::wstring name = filter.substr(0, bar), pattern = filter.substr(bar + 1);
    const COMDLG_FILTERSPEC type = {name.c_str(), pattern.c_str()};
    shown.SetFileTypes(1, &type);
}

bool Prepare(IFileDialog& shown, const FileDialog& dialog, DWORD options) {
    DWORD usual = 0;
    if (FAILED(shown.GetOptions(&usual))) return false;
    if (FAILED(shown.SetOptions(usual | options | FOS_FORCEFILESYSTEM | FOS_NOCHANGEDIR | FOS_PATHMUSTEXIST)))
        return false;
    shown.SetTitle(dialog.Title.c_str());
    SetFilter(shown, dialog.Filter);
    shown.SetDefaultExtension(dialog.DefaultExt.c_str());
    shown.SetFileName(dialog.FileName.c_str());
    if (const Owned<IShellItem> folder = FolderItem(dialog.InitDir)) shown.SetFolder(folder.get());
    return true;
}

std::wstring ChosenPath(IFileDialog& shown) {
    IShellItem* item = nullptr;
    if (FAILED(shown.GetResult(&item))) return {};
    const Owned<IShellItem> chosen(item);
    wchar_t* path = nullptr;
    if (FAILED(chosen->GetDisplayName(SIGDN_FILESYSPATH, &path))) return {};
    std::wstring text = path;
    const auto free = LibraryFunction<void(WINAPI*)(void*)>(SystemLibrary(L"ole32.dll"), "CoTaskMemFree");
    if (free) free(path);
    return text;
}

} // namespace

DialogAnswer ShowItemDialog(FileDialog& dialog, DialogTask task) {
    const bool open = task == DialogTask::Open;
    const Owned<IFileDialog> shown = CreateFileDialog(open ? CLSID_FileOpenDialog : CLSID_FileSaveDialog);
    // The save itself finds out whether the folder takes the file; the dialog need not try with an empty one.
    const DWORD options = open ? FOS_FILEMUSTEXIST : FOS_OVERWRITEPROMPT | FOS_NOTESTFILECREATE;
    if (!shown || !Prepare(*shown, dialog, options)) return DialogAnswer::Missing;
    if (FAILED(shown->Show(Hooks().main_window))) return DialogAnswer::Cancelled;
    const std::wstring path = ChosenPath(*shown);
    if (path.empty()) return DialogAnswer::Cancelled;
    dialog.FileName = path;
    return DialogAnswer::Chosen;
}

} // namespace tonex
