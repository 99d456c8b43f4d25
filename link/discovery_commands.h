// Finding the link software's folders, and telling PC files from device files.
#pragma once

#include <cstdint>
#include <string>

namespace tonex {

struct sndmain;

/// Fallback for the PC sound folder; warns once when neither folder is there.
void ResolveUserSoundDir(const std::wstring& install, std::wstring& pc_sound_dir,
                         const std::wstring& cache_sound_dir, bool& show_message);
/// Warns that the link software's folders are missing.
void ShowLinkSoftwareMissing();
/// Sets the path variables, the dialogs' start folders and the link library table. False: end the program.
bool DiscoverLinkSoftware(sndmain& window);
/// Strips quotes from the path, classifies it (kOnPc or kOnDevice), and keeps its folder when that
/// exists and the file is a device file.
void RememberFolderOfFile(sndmain& window, std::wstring& path, std::wstring& folder, std::int16_t& is_on_pc);

} // namespace tonex
