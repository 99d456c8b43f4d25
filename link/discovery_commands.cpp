#include "link/discovery_commands.h"

#include "app/sndmain.h"
#include "link/folder_device_services.h"
#include "link/install_entry_services.h"
#include "link/paths.h"
#include "platform/files.h"
#include "platform/message_box.h"
#include "platform/text.h"

namespace tonex {

namespace {

/// kOnPc, or kOnDevice for a file of the device cache. Where the library can not answer, or can not be told
/// the path, what lies below the cache folder is a device file.
std::int16_t LocationOf(const sndmain& window, const std::wstring& path) {
    if (window.link_library.Cor_IsOnPcFile && FitsAnsi(path)) {
        return window.link_library.Cor_IsOnPcFile(ToAnsi(path).c_str()) != 0 ? kOnPc : kOnDevice;
    }
    const std::wstring cache = UpperCase(window.link.InstallDir + L"\\pcferry\\cache\\");
    return UpperCase(path).starts_with(cache) ? kOnDevice : kOnPc;
}

} // namespace

void ResolveUserSoundDir(const std::wstring& install, std::wstring& pc_sound_dir,
                         const std::wstring& /*cache_sound_dir*/, bool& show_message) {
    const std::wstring user_data = install + L"\\UserData";
    // The link software's cache is not asked for, its place is only written down; kept as it is.
    [[maybe_unused]] const std::wstring cache = install + L"\\PcFerry\\Cache";
    if (FolderExists(pc_sound_dir)) return;
    if (FolderExists(user_data)) {
        pc_sound_dir = user_data;
        return;
    }
    if (!show_message) return;
    ShowLinkSoftwareMissing();
    show_message = false;
}

void ShowLinkSoftwareMissing() {
    ShowMessage(L"Directory does not exist.\r\nPlease install the PC Application again.");
}

bool DiscoverLinkSoftware(sndmain& window) {
    const std::optional<std::wstring> install = GetInstallDir();
    if (!install) return false; // the program ends without a word: it has no use without the link software
    LinkState& link = window.link;
    link.InstallDir = *install;
    // "userdata" here and "UserData" in the fallback: the file system ignores it, kept as it is.
    link.PcSoundDir = *install + L"\\userdata\\sound";
    link.CacheSoundDir = *install + L"\\pcferry\\cache\\System\\sound";
    link.SystemIniPath = *install + L"\\pcferry\\cache\\System\\System.ini";
    bool show_message = true;
    ResolveUserSoundDir(*install, link.PcSoundDir, link.CacheSoundDir, show_message);
    window.document.ComOpen.InitDir = link.PcSoundDir;
    window.document.ComSave.InitDir = link.PcSoundDir;
    window.link_library = LoadLinkLibrary(*install);
    return true;
}

void RememberFolderOfFile(sndmain& window, std::wstring& path, std::wstring& folder, std::int16_t& is_on_pc) {
    path = WithoutQuotes(path);
    const std::wstring home = WithoutTrailingBackslash(FolderOfPath(path));
    is_on_pc = LocationOf(window, path);
    if (is_on_pc == kOnDevice && FolderExists(home)) folder = home;
}

} // namespace tonex
