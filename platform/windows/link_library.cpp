// platform/link_library.h on Win32: the maker's two libraries, and the folder-backed device for what they
// lack.
#include "platform/link_library.h"

#include "link/folder_device_services.h"
#include "platform/text.h"
#include "platform/windows/desktop_windows.h"
#include "platform/windows/device_dialogs.h"

#include <string>

namespace tonex {

namespace {

// The table's functions have no argument for the device they work on, so the process has one.
FolderDevice folder_device;

// The libraries' own dialogs, called through the procedures below that first show what is still to be shown.
LinkLibrary loaded;

// Keeps the system from asking the user about libraries it can not load.
struct QuietErrors {
    QuietErrors() : previous(SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX)) {}
    ~QuietErrors() { SetErrorMode(previous); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
    UINT previous;
};

bool IsFullPath(const std::wstring& path) {
    const bool drive = path.size() >= 3 && path[1] == L':' && path[2] == L'\\';
    return drive || path.starts_with(L"\\\\");
}

// In the installation folder, then where the system looks: the program's folder, the system's, the search
// path. Never in the current folder, which may be a document's.
HMODULE LoadMakersLibrary(const std::wstring& install_dir, const wchar_t* name) {
    const QuietErrors quiet;
    if (IsFullPath(install_dir)) {
        const std::wstring path = install_dir + L"\\" + name;
        if (const HMODULE library = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH))
            return library;
    }
    SecureLibrarySearch();
    const InProgramFolder no_document_folder;
    return LoadLibraryW(name);
}

// Compilers export a stdcall function by its plain name, with the bytes of its arguments behind it, or with
// an underscore before that.
template <typename Function>
bool Fill(Function& entry, HMODULE library, const char* name, int argument_bytes) {
    const std::string plain = name;
    const std::string counted = plain + "@" + std::to_string(argument_bytes);
    for (const std::string& spelling : {plain, "_" + counted, counted}) {
        entry = LibraryFunction<Function>(library, spelling.c_str());
        if (entry) return true;
    }
    return false;
}

std::int32_t __stdcall IsOnPcFile(const char* path) {
    return FolderIsOnPcFile(folder_device, path);
}

std::int32_t __stdcall IsExist(const char* device_path) {
    return FolderIsExist(folder_device, device_path);
}

std::int16_t __stdcall ConvPathCacheToCorvane(char* device_path, std::int32_t size, const char* cache_path) {
    return FolderConvPathCacheToCorvane(folder_device, device_path, size, cache_path);
}

std::int16_t __stdcall ConvPathCorvaneToCache(char* cache_path, std::int32_t size, const char* device_path) {
    return FolderConvPathCorvaneToCache(folder_device, cache_path, size, device_path);
}

std::int32_t __stdcall OpenFileDialog(const char* start, const char* extension, char* device_path,
                                      std::int32_t size) {
    return FolderOpenFileDialog(Hooks().main_window, folder_device, start, extension, device_path, size);
}

std::int32_t __stdcall SaveFileDialog(const char* start, const char* extension, char* device_path,
                                      std::int32_t size) {
    return FolderSaveFileDialog(Hooks().main_window, folder_device, start, extension, device_path, size);
}

std::int32_t __stdcall GetFile(char* cache_path, const char* device_path, std::int32_t) {
    return FolderGetFile(folder_device, cache_path, device_path);
}

std::int32_t __stdcall PutFile(const char* device_path, const char* path, std::int32_t) {
    MakeDeviceFolderOf(folder_device, device_path);
    return FolderPutFile(folder_device, device_path, path);
}

std::int32_t __stdcall DirByExt(const char* device_folder, const char* extension, char* names,
                                std::int32_t size) {
    return FolderDirByExt(folder_device, device_folder, extension, names, size);
}

void __stdcall SetupDisconnection() {
    FolderSetupDisconnection(Hooks().main_window, folder_device);
}

std::int16_t __stdcall DoDisconnect() {
    return 0;
}

std::int32_t __stdcall ShownOpenFileDialog(const char* start, const char* extension, char* device_path,
                                           std::int32_t size) {
    ShowDifferencesNow();
    return loaded.Cor_PIMOpenFileDialog(start, extension, device_path, size);
}

std::int32_t __stdcall ShownSaveFileDialog(const char* start, const char* extension, char* device_path,
                                           std::int32_t size) {
    ShowDifferencesNow();
    return loaded.Cor_PIMSaveFileDialog(start, extension, device_path, size);
}

void __stdcall ShownSetupDisconnection() {
    ShowDifferencesNow();
    loaded.Cor_SetupDisconnection();
}

} // namespace

LinkLibrary LoadLinkLibrary(const std::wstring& install_dir) {
    folder_device = DeviceOfInstallation(install_dir);
    const HMODULE calen = LoadMakersLibrary(install_dir, L"CorCalen.dll");
    const HMODULE dialogs = LoadMakersLibrary(install_dir, L"Corfldlg.dll");
    if (calen || dialogs) EnterApartment(); // start-up asks them too, before the window is shown

    LinkLibrary& table = loaded;
    const auto fill = [](auto& entry, HMODULE library, const char* name, int argument_bytes, auto fallback) {
        if (!Fill(entry, library, name, argument_bytes)) entry = fallback;
    };
    fill(table.Cor_IsOnPcFile, calen, "Cor_IsOnPcFile", 4, IsOnPcFile);
    fill(table.Cor_IsExist, calen, "Cor_IsExist", 4, IsExist);
    fill(table.Cor_ConvPathCacheToCorvane, calen, "Cor_ConvPathCacheToCorvane", 12, ConvPathCacheToCorvane);
    fill(table.Cor_ConvPathCorvaneToCache, calen, "Cor_ConvPathCorvaneToCache", 12, ConvPathCorvaneToCache);
    fill(table.Cor_PIMOpenFileDialog, calen, "Cor_PIMOpenFileDialog", 16, OpenFileDialog);
    fill(table.Cor_PIMSaveFileDialog, calen, "Cor_PIMSaveFileDialog", 16, SaveFileDialog);
    fill(table.Cor_GetFile, dialogs, "Cor_GetFile", 12, GetFile);
    fill(table.Cor_PutFile, dialogs, "Cor_PutFile", 12, PutFile);
    fill(table.Cor_DirByExt, calen, "Cor_DirByExt", 16, DirByExt);
    fill(table.Cor_SetupDisconnection, calen, "Cor_SetupDisconnection", 0, SetupDisconnection);
    fill(table.Cor_DoDisconnect, calen, "Cor_DoDisconnect", 0, DoDisconnect);

    LinkLibrary shown = loaded;
    shown.Cor_PIMOpenFileDialog = ShownOpenFileDialog;
    shown.Cor_PIMSaveFileDialog = ShownSaveFileDialog;
    shown.Cor_SetupDisconnection = ShownSetupDisconnection;
    return shown;
}

} // namespace tonex
