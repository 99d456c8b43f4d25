// LinkSetup.exe [/quiet] [/remove] [/folder PATH]: for a user who has no link software. Asks, makes or
// removes, tells what was done; /quiet does neither ask nor tell. Exit codes: 0 done or nothing to do, 1
// failed, 2 wrong usage, 3 the user said no.
#include "tools/linksetup/link_setup.h"

#include "platform/windows/device_dialogs.h"

#include <shellapi.h>
#include <shlobj.h>

#include <iterator>

using namespace tonex;

namespace {

constexpr int kDone = 0, kFailed = 1, kWrongUsage = 2, kDeclined = 3;
constexpr const wchar_t* kTitle = L"Sound Editor Link Setup";
constexpr const wchar_t* kUsage = L"LinkSetup [/quiet] [/remove] [/folder PATH]\r\n\r\n"
                                  L"/quiet\tneither asks nor tells\r\n"
                                  L"/remove\ttakes away what an earlier run made\r\n"
                                  L"/folder\tuses this folder instead of the usual one";

struct Talk {
    bool quiet;

    void Tell(const std::wstring& text, UINT icon) const {
        if (!quiet) MessageBoxW(nullptr, text.c_str(), kTitle, MB_OK | icon);
    }
    bool Ask(const std::wstring& text) const {
        return quiet || MessageBoxW(nullptr, text.c_str(), kTitle, MB_YESNO | MB_ICONQUESTION) == IDYES;
    }
};

// In the user's documents; on the system's drive when a name on the way there can not be spelled in the code
// page.
std::wstring UsualFolder() {
    wchar_t path[MAX_PATH] = L"";
    if (SUCCEEDED(SHGetFolderPathW(nullptr, CSIDL_PERSONAL, nullptr, SHGFP_TYPE_CURRENT, path))) {
        std::wstring folder = std::wstring(path) + L"\\Corvane";
        if (IsUsableFolder(folder)) return folder;
    }
    const UINT length = GetWindowsDirectoryW(path, static_cast<UINT>(std::size(path)));
    return std::wstring(path, length >= 2 ? 2 : 0) + L"\\Corvane";
}

std::wstring FullPath(const std::wstring& path) {
    wchar_t full[MAX_PATH] = L"";
    const DWORD length = GetFullPathNameW(path.c_str(), static_cast<DWORD>(std::size(full)), full, nullptr);
    return length < std::size(full) ? std::wstring(full, length) : path;
}

int SetUp(const Talk& talk, const std::wstring& folder) {
    const std::wstring installed = InstalledFolder();
    if (!installed.empty()) {
        talk.Tell(L"The link software's entry is there already and stays as it is. It names the folder\r\n" +
                      installed,
                  MB_ICONINFORMATION);
        return kDone;
    }
    if (!talk.Ask(
            L"The Sound Editor works in the folders of the organiser's link software and does not start "
            L"without them.\r\n\r\nMake these folders, and the registry entry that names them, for use "
            L"without "
            L"the link software? They will be in\r\n" +
            folder))
        return kDeclined;
    switch (SetUpLink(folder)) {
    case SetupResult::Done:
        talk.Tell(L"The Sound Editor can be started now. Its folders are in\r\n" + folder,
                  MB_ICONINFORMATION);
        return kDone;
    case SetupResult::AlreadyThere:
        talk.Tell(L"The link software's entry is there already and stays as it is.", MB_ICONINFORMATION);
        return kDone;
    default:
        talk.Tell(L"The folders or the registry entry could not be made. Nothing was changed.\r\n" + folder,
                  MB_ICONEXCLAMATION);
        return kFailed;
    }
}

int Remove(const Talk& talk) {
    if (!talk.Ask(L"Remove the registry entry and the folders that this program made?\r\n\r\n"
                  L"Folders with melodies in them stay."))
        return kDeclined;
    std::vector<std::wstring> kept;
    switch (RemoveLink(kept)) {
    case SetupResult::Done: break;
    case SetupResult::NothingToRemove:
        talk.Tell(L"There is nothing to remove that this program made.", MB_ICONINFORMATION);
        return kDone;
    default: talk.Tell(L"The registry entry could not be removed.", MB_ICONEXCLAMATION); return kFailed;
    }
    std::wstring text = L"The registry entry was removed.";
    if (!kept.empty()) text += L"\r\n\r\nThere is something in these folders, so they were left:";
    for (const std::wstring& folder : kept)
        text += L"\r\n" + folder;
    talk.Tell(text, MB_ICONINFORMATION);
    return kDone;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    const std::optional<SetupOptions> options =
        words ? ParseSetupOptions({words + (count > 0), words + count}) : std::nullopt;
    if (!options) {
        MessageBoxW(nullptr, kUsage, kTitle, MB_OK | MB_ICONINFORMATION);
        return kWrongUsage;
    }
    const Talk talk = {options->quiet};
    if (options->remove) return Remove(talk);
    return SetUp(talk, options->folder.empty() ? UsualFolder() : FullPath(options->folder));
}
