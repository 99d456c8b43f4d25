// Corfldlg.dll on a folder: transfers.
#include "platform/link_library.h"
#include "tools/link/library_calls.h"

#include <cstring>

using namespace tonex;

extern "C" {

std::int32_t __stdcall Cor_GetFile(char* cache_path, const char* device_path, std::int32_t) {
    const std::int32_t result =
        Fault(L"getfile") ? 1 : FolderGetFile(InstalledDevice(), cache_path, device_path);
    if (result == 0) Spoiled(cache_path, kLinkBufferSize, static_cast<int>(std::strlen(cache_path)));
    RecordCall("Cor_GetFile", {device_path}, result);
    return result;
}

std::int32_t __stdcall Cor_PutFile(const char* device_path, const char* path, std::int32_t) {
    std::int32_t result = 1;
    if (!Fault(L"putfile")) {
        const FolderDevice device = InstalledDevice();
        MakeDeviceFolderOf(device, device_path);
        result = FolderPutFile(device, device_path, path);
    }
    RecordCall("Cor_PutFile", {device_path, path}, result);
    return result;
}

} // extern "C"
