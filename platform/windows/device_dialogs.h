// The device's dialogs, and folders made on demand. Windows only: nothing else has dialogs.
#pragma once

#include "link/folder_device_services.h"

#include "platform/windows/desktop_windows.h"

#include <optional>
#include <string>
#include <vector>

namespace tonex {

/// What a save dialog thinks of a name before it closes.
enum class NameVerdict { Good, Empty, NotAName, MoreThanEight, TooLong };

/// The file name that is meant by what a user typed: without blanks around it and with the extension.
std::wstring CompletedName(std::wstring_view typed, std::wstring_view extension);

/// Whether a name can be a file of the folder, asked for through a buffer of `size` characters. The
/// organiser's names have at most 8 bytes before the extension; a double-byte character counts as two.
NameVerdict JudgeName(std::wstring_view device_folder, std::wstring_view name, std::int32_t size);

// The two file dialogs of the link libraries: a list of the folder's files and, to save, a name. Modal to the
// owner, which may be null. Arguments and results as platform/link_library.h has them.
std::int32_t FolderOpenFileDialog(HWND owner, const FolderDevice& device, const char* start,
                                  const char* extension, char* device_path, std::int32_t size);
std::int32_t FolderSaveFileDialog(HWND owner, const FolderDevice& device, const char* start,
                                  const char* extension, char* device_path, std::int32_t size);

/// Tells where the device's files are and that there is no connection to set up.
void FolderSetupDisconnection(HWND owner, const FolderDevice& device);

/// Makes the folder of a device path's file where it is missing.
void MakeDeviceFolderOf(const FolderDevice& device, const char* device_path);

/// Makes a folder and those above it. `made` gets the ones that were not there, outermost first. False when
/// one could not be made; those before it are there then.
bool MakeFolders(const std::wstring& folder, std::vector<std::wstring>& made);

} // namespace tonex
