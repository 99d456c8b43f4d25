// A folder that stands for the organiser. The device path \System\sound\TUNE.SND is the file
// pcferry\cache\System\sound\TUNE.SND below the installation folder; whatever is done to the device is done
// to that file. The editor uses it where the maker's libraries are missing, and the two libraries of this
// folder are made of it.
//
// The first half works on wide text. The second half is what the link libraries look like from outside: 8-bit
// text in the ANSI code page, buffers with their sizes, counts as results.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tonex {

struct FolderDevice {
    std::wstring root; ///< the folder of the device's "\", without a backslash at its end
};

/// The device of an installation folder. Without a folder the device is empty and refuses everything.
FolderDevice DeviceOfInstallation(std::wstring_view install_dir);

/// The device path of a path below the device's folder; empty for every other path.
std::wstring DevicePathOf(const FolderDevice& device, std::wstring_view cache_path);

/// The path of a device path's file; empty when that would not lie in the device's folder (a drive, "..",
/// wildcards). A path without a backslash in front counts from the device's root.
std::wstring CachePathOf(const FolderDevice& device, std::wstring_view device_path);

bool DeviceFileExists(const FolderDevice& device, std::wstring_view device_path);

/// The names of a device folder's files with an extension (without its dot), in alphabetical order. Names
/// that the ANSI code page can not spell are left out: nothing could ask for them.
std::vector<std::wstring> DeviceFiles(const FolderDevice& device, std::wstring_view device_folder,
                                      std::wstring_view extension);

/// Copies a file onto the device. False when it is missing or the device refuses; the device's old file is
/// then whole.
bool PutDeviceFile(const FolderDevice& device, std::wstring_view device_path, const std::wstring& path);

/// Whether the ANSI code page spells the text so that it reads the same again.
bool FitsAnsi(std::wstring_view text);

/// Writes text and a NUL into a buffer. The count of characters without the NUL; 0, with an empty buffer,
/// when they do not fit.
int WriteAnsi(char* buffer, std::int32_t size, std::wstring_view text);

// The link libraries' functions, without their dialogs. Results as platform/link_library.h has them.
std::int32_t FolderIsOnPcFile(const FolderDevice& device, const char* path);
std::int32_t FolderIsExist(const FolderDevice& device, const char* device_path);
std::int16_t FolderConvPathCacheToCorvane(const FolderDevice& device, char* device_path, std::int32_t size,
                                          const char* cache_path);
std::int16_t FolderConvPathCorvaneToCache(const FolderDevice& device, char* cache_path, std::int32_t size,
                                          const char* device_path);
std::int32_t FolderGetFile(const FolderDevice& device, char* cache_path, const char* device_path);
std::int32_t FolderPutFile(const FolderDevice& device, const char* device_path, const char* path);
std::int32_t FolderDirByExt(const FolderDevice& device, const char* device_folder, const char* extension,
                            char* names, std::int32_t size);

} // namespace tonex
