#include "link/folder_device_services.h"

#include "link/paths.h"
#include "platform/files.h"
#include "platform/link_library.h"
#include "platform/text.h"
#include "score/file_services.h"

#include <algorithm>
#include <cstring>

namespace tonex {

namespace {

constexpr std::size_t kLargestDeviceFile = std::size_t{1024} * 1024; // bytes; a melody has two thousand

// Every part of a path names something inside the folder before it.
bool StaysInside(std::wstring_view path) {
    if (path.find_first_of(L":*?<>|\"/") != std::wstring_view::npos) return false;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find(L'\\'), path.size());
        const std::wstring_view part = path.substr(0, end);
        if (part == L"." || part == L"..") return false;
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return true;
}

// The text of a caller's pointer, from the code page; a null pointer is empty text.
std::wstring TextOf(const char* text) {
    return text ? FromAnsi(text) : std::wstring();
}

} // namespace

FolderDevice DeviceOfInstallation(std::wstring_view install_dir) {
    if (install_dir.empty()) return {};
    return {WithoutTrailingBackslash(install_dir) + L"\\pcferry\\cache"};
}

std::wstring DevicePathOf(const FolderDevice& device, std::wstring_view cache_path) {
    const std::size_t length = device.root.size();
    if (length == 0 || cache_path.size() < length) return {};
    if (UpperCase(cache_path.substr(0, length)) != UpperCase(device.root)) return {};
    const std::wstring_view rest = cache_path.substr(length);
    if (rest.empty()) return L"\\";
    if (rest.front() != L'\\' || !StaysInside(rest)) return {};
    return std::wstring(rest);
}

std::wstring CachePathOf(const FolderDevice& device, std::wstring_view device_path) {
    if (device.root.empty() || device_path.empty() || !StaysInside(device_path)) return {};
    if (device_path.front() == L'\\') device_path.remove_prefix(1);
    return WithoutTrailingBackslash(device.root + L"\\" + std::wstring(device_path));
}

bool DeviceFileExists(const FolderDevice& device, std::wstring_view device_path) {
    const std::wstring path = CachePathOf(device, device_path);
    return !path.empty() && FileExists(path);
}

std::vector<std::wstring> DeviceFiles(const FolderDevice& device, std::wstring_view device_folder,
                                      std::wstring_view extension) {
    const std::wstring folder = CachePathOf(device, device_folder);
    if (folder.empty()) return {};
    std::vector<std::wstring> names = ListFiles(folder, L"*." + std::wstring(extension));
    std::erase_if(names, [](const std::wstring& name) { return !FitsAnsi(name); });
    std::sort(names.begin(), names.end(),
              [](const std::wstring& a, const std::wstring& b) { return UpperCase(a) < UpperCase(b); });
    return names;
}

bool PutDeviceFile(const FolderDevice& device, std::wstring_view device_path, const std::wstring& path) {
    const std::wstring target = CachePathOf(device, device_path);
    if (target.size() <= device.root.size() + 1) return false; // the folder itself, or none
    std::vector<std::uint8_t> bytes;
    if (!ReadWholeFile(path, bytes, kLargestDeviceFile + 1) || bytes.size() > kLargestDeviceFile)
        return false;
    return SaveWholeFile(target, bytes);
}

bool FitsAnsi(std::wstring_view text) {
    return FromAnsi(ToAnsi(text)) == text;
}

int WriteAnsi(char* buffer, std::int32_t size, std::wstring_view text) {
    if (!buffer || size <= 0) return 0;
    const std::string ansi = ToAnsi(text);
    const bool fits = ansi.size() < static_cast<std::size_t>(size);
    const std::size_t count = fits ? ansi.size() : 0;
    std::memcpy(buffer, ansi.data(), count);
    buffer[count] = '\0';
    return static_cast<int>(count);
}

std::int32_t FolderIsOnPcFile(const FolderDevice& device, const char* path) {
    return DevicePathOf(device, TextOf(path)).empty() ? 1 : 0;
}

std::int32_t FolderIsExist(const FolderDevice& device, const char* device_path) {
    return DeviceFileExists(device, TextOf(device_path)) ? 1 : 0;
}

std::int16_t FolderConvPathCacheToCorvane(const FolderDevice& device, char* device_path, std::int32_t size,
                                          const char* cache_path) {
    return static_cast<std::int16_t>(WriteAnsi(device_path, size, DevicePathOf(device, TextOf(cache_path))));
}

std::int16_t FolderConvPathCorvaneToCache(const FolderDevice& device, char* cache_path, std::int32_t size,
                                          const char* device_path) {
    return static_cast<std::int16_t>(WriteAnsi(cache_path, size, CachePathOf(device, TextOf(device_path))));
}

std::int32_t FolderGetFile(const FolderDevice& device, char* cache_path, const char* device_path) {
    const std::wstring path = TextOf(device_path);
    if (!DeviceFileExists(device, path)) return 1;
    return WriteAnsi(cache_path, kLinkBufferSize, CachePathOf(device, path)) > 0 ? 0 : 1;
}

std::int32_t FolderPutFile(const FolderDevice& device, const char* device_path, const char* path) {
    return PutDeviceFile(device, TextOf(device_path), TextOf(path)) ? 0 : 1;
}

std::int32_t FolderDirByExt(const FolderDevice& device, const char* device_folder, const char* extension,
                            char* names, std::int32_t size) {
    if (!names || size <= 0) return 0;
    std::int32_t count = 0, used = 0;
    for (const std::wstring& name : DeviceFiles(device, TextOf(device_folder), TextOf(extension))) {
        // One character is kept for the NUL that ends the list.
        const int length = WriteAnsi(names + used, size - used - 1, name);
        if (length == 0) break;
        used += length + 1;
        ++count;
    }
    names[used] = '\0';
    return count;
}

} // namespace tonex
