// CorCalen.dll on a folder: paths, dialogs, listing, disconnection.
#include "platform/link_library.h"
#include "tools/link/library_calls.h"

#include <cstring>

using namespace tonex;

namespace {

// The caller's active window is what a dialog belongs to.
HWND Owner() {
    return GetActiveWindow();
}

std::int16_t Converted(char* buffer, std::int32_t size, int count) {
    if (Fault(L"conv0")) return 0;
    if (count == 0) return 0;
    if (Fault(L"convnegative")) return -1;
    if (Fault(L"convbig")) return 32767;
    return static_cast<std::int16_t>(Spoiled(buffer, size, count));
}

std::int32_t Chosen(char* device_path, std::int32_t size, std::int32_t chosen) {
    if (chosen) Spoiled(device_path, size, static_cast<int>(std::strlen(device_path)));
    return chosen;
}

} // namespace

extern "C" {

std::int32_t __stdcall Cor_IsOnPcFile(const char* path) {
    std::int32_t result = FolderIsOnPcFile(InstalledDevice(), path);
    if (Fault(L"pcfile")) result = 1;
    if (Fault(L"cachefile")) result = 0;
    RecordCall("Cor_IsOnPcFile", {path}, result);
    return result;
}

std::int32_t __stdcall Cor_IsExist(const char* device_path) {
    const std::int32_t result = Fault(L"unknown") ? 0 : FolderIsExist(InstalledDevice(), device_path);
    RecordCall("Cor_IsExist", {device_path}, result);
    return result;
}

std::int16_t __stdcall Cor_ConvPathCacheToCorvane(char* device_path, std::int32_t size,
                                                  const char* cache_path) {
    const int count = FolderConvPathCacheToCorvane(InstalledDevice(), device_path, size, cache_path);
    const std::int16_t result = Converted(device_path, size, count);
    RecordCall("Cor_ConvPathCacheToCorvane", {cache_path}, result);
    return result;
}

std::int16_t __stdcall Cor_ConvPathCorvaneToCache(char* cache_path, std::int32_t size,
                                                  const char* device_path) {
    const int count = FolderConvPathCorvaneToCache(InstalledDevice(), cache_path, size, device_path);
    const std::int16_t result = Converted(cache_path, size, count);
    RecordCall("Cor_ConvPathCorvaneToCache", {device_path}, result);
    return result;
}

std::int32_t __stdcall Cor_PIMOpenFileDialog(const char* start, const char* extension, char* device_path,
                                             std::int32_t size) {
    std::int32_t result = 0;
    if (Fault(L"open"))
        result = WriteFixedChoice(device_path, size) > 0;
    else if (!Fault(L"opencancel"))
        result =
            Chosen(device_path, size,
                   FolderOpenFileDialog(Owner(), InstalledDevice(), start, extension, device_path, size));
    RecordCall("Cor_PIMOpenFileDialog", {start, extension}, result);
    return result;
}

std::int32_t __stdcall Cor_PIMSaveFileDialog(const char* start, const char* extension, char* device_path,
                                             std::int32_t size) {
    std::int32_t result = 0;
    if (Fault(L"save"))
        result = WriteFixedChoice(device_path, size) > 0;
    else if (!Fault(L"savecancel"))
        result =
            Chosen(device_path, size,
                   FolderSaveFileDialog(Owner(), InstalledDevice(), start, extension, device_path, size));
    RecordCall("Cor_PIMSaveFileDialog", {start, extension}, result);
    return result;
}

std::int32_t __stdcall Cor_DirByExt(const char* device_folder, const char* extension, char* names,
                                    std::int32_t size) {
    std::int32_t result = 0;
    if (Fault(L"dir"))
        WriteAnsi(names, size, L"");
    else
        result = FolderDirByExt(InstalledDevice(), device_folder, extension, names, size);
    RecordCall("Cor_DirByExt", {device_folder, extension}, result);
    return result;
}

void __stdcall Cor_SetupDisconnection() {
    RecordCall("Cor_SetupDisconnection", {}, 0);
    if (!Fault(L"setup")) FolderSetupDisconnection(Owner(), InstalledDevice());
}

std::int16_t __stdcall Cor_DoDisconnect() {
    const std::int16_t result = Fault(L"disconnect") ? 5 : 0;
    RecordCall("Cor_DoDisconnect", {}, result);
    return result;
}

} // extern "C"
