// The path variables that the link software's installation decides, set once at start-up.
#pragma once

#include <string>

namespace tonex {

struct LinkState {
    std::wstring InstallDir;    ///< no backslash at its end
    std::wstring PcSoundDir;    ///< later the folder of each file opened or saved on the PC
    std::wstring CacheSoundDir; ///< later the folder of each device file opened or saved
    std::wstring SystemIniPath; ///< held for the link operations
    std::wstring HelpFilePath;
};

} // namespace tonex
