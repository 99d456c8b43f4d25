// The path variables that the link software's installation decides, set once at start-up, and what device
// work has been done.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tonex {

// Values of the location flag. 1 and 0, not the all-ones truth value of other flags: kept as it is, because
// the last document's setting holds the flag as a number.
inline constexpr std::int16_t kOnPc = 1;
inline constexpr std::int16_t kOnDevice = 0;

struct LinkState {
    std::wstring InstallDir;    ///< no backslash at its end
    std::wstring PcSoundDir;    ///< later the folder of each file opened or saved on the PC
    std::wstring CacheSoundDir; ///< later the folder of each device file opened or saved
    std::wstring SystemIniPath; ///< held for the link operations
    std::wstring HelpFilePath;
    bool device_work = false;                ///< a document was saved to the device in this run
    std::vector<std::wstring> device_sounds; ///< device paths, listed only for the suite's viewer
};

} // namespace tonex
