// Finding the link software's folders, and telling PC files from device files.
#include "app/sndmain.h"
#include "link/discovery_commands.h"
#include "link/install_entry_services.h"
#include "tests/desktop/desktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tonex::discovery_commands_test {

namespace {

constexpr const wchar_t* kInstallDir = L"Software\\QMT\\Corvane-e\\PC\\InstallDir";
constexpr const wchar_t* kMissing = L"Directory does not exist.\r\nPlease install the PC Application again.";

struct Discovery : ::testing::Test {
    desktop::Desktop& desk = desktop::Reset();
    sndmain window;

    void Install(const std::wstring& folder) { desk.registry[kInstallDir] = folder + L'\0'; }
};

} // namespace

TEST_F(Discovery, OneTrailingBackslashOfTheInstallationFolderIsRemoved) {
    Install(L"C:\\Link\\");
    EXPECT_EQ(GetInstallDir(), L"C:\\Link");
    Install(L"C:\\Link");
    EXPECT_EQ(GetInstallDir(), L"C:\\Link");
    Install(L"C:\\Link\\\\");
    EXPECT_EQ(GetInstallDir(), L"C:\\Link\\");
}

TEST_F(Discovery, TheInstallationFolderIsQueriedWithTwoQuestions) {
    Install(L"C:\\Link");
    GetInstallDir();
    const std::vector<std::string> expected = {
        "OpenUserKey Software\\QMT\\Corvane-e\\PC",
        "QueryTextSize InstallDir",
        "QueryText InstallDir 9", // seven characters and their NUL, and one blank more
        "CloseKey",
    };
    EXPECT_EQ(desk.log, expected);
    EXPECT_EQ(desk.open_registry_keys, 0);
}

TEST_F(Discovery, AMissingKeyOrValueEndsInSilence) {
    EXPECT_EQ(GetInstallDir(), std::nullopt);
    EXPECT_FALSE(desktop::Asked("QueryTextSize"));
    desk.registry_keys.insert(L"Software\\QMT\\Corvane-e\\PC");
    EXPECT_EQ(GetInstallDir(), std::nullopt);
    EXPECT_FALSE(desktop::Asked("QueryText InstallDir"));
    EXPECT_TRUE(desk.messages.empty());
    EXPECT_EQ(desk.open_registry_keys, 0);
}

TEST_F(Discovery, AnEmptyValueEndsInSilence) {
    Install(L"");
    EXPECT_EQ(GetInstallDir(), std::nullopt);
    EXPECT_FALSE(desktop::Asked("QueryText InstallDir"));
    desk.registry[kInstallDir] = L"";
    EXPECT_EQ(GetInstallDir(), std::nullopt);
    EXPECT_TRUE(desk.messages.empty());
    EXPECT_EQ(desk.open_registry_keys, 0);
}

TEST_F(Discovery, ASingleBackslashIsTrimmedAndGoesOn) {
    Install(L"\\");
    EXPECT_EQ(GetInstallDir(), L"");
}

TEST_F(Discovery, TheTrimLooksFirstAtTheCharacterAtTheReportedSize) {
    EXPECT_EQ(TrimRegistryText(std::wstring(L"C:\\Link\0 ", 9), 8), L"C:\\Link");
    // NULs in front of the reported size are kept as they are.
    EXPECT_EQ(TrimRegistryText(std::wstring(L"C:\0ink\0 ", 8), 7), std::wstring(L"C:\0ink", 6));
    // A size that counts past the terminator walks back to it.
    EXPECT_EQ(TrimRegistryText(std::wstring(L"C:\\Link\0   ", 11), 11), L"C:\\Link");
    EXPECT_EQ(TrimRegistryText(std::wstring(L"C:\\Link\0xy ", 11), 10), L"C:\\Link");
    EXPECT_EQ(TrimRegistryText(L"no terminator ", 13), L"");
    EXPECT_EQ(TrimRegistryText(L"", 0), L"");
    EXPECT_EQ(TrimRegistryText(L"", 5), L"");
    EXPECT_EQ(TrimRegistryText(std::wstring(L"ab\0", 3), 4000000000u), L"ab");
}

TEST_F(Discovery, AReportedSizeThatIsTooLargeStillFindsTheTerminator) {
    Install(L"C:\\Link");
    desk.registry_size = 12;
    EXPECT_EQ(GetInstallDir(), L"C:\\Link");
}

TEST_F(Discovery, AValueThatGrewBetweenTheTwoQuestionsEndsInSilence) {
    Install(L"C:\\Link");
    desk.registry_size = 5;
    EXPECT_EQ(GetInstallDir(), std::nullopt);
    EXPECT_TRUE(desktop::Asked("QueryText InstallDir 6"));
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(Discovery, EveryPathVariableHasItsPlaceBelowTheInstallation) {
    desktop::InstallLinkSoftware();
    EXPECT_TRUE(DiscoverLinkSoftware(window));
    EXPECT_EQ(window.link.InstallDir, L"C:\\Link");
    EXPECT_EQ(window.link.PcSoundDir, L"C:\\Link\\userdata\\sound");
    EXPECT_EQ(window.link.CacheSoundDir, L"C:\\Link\\pcferry\\cache\\System\\sound");
    EXPECT_EQ(window.link.SystemIniPath, L"C:\\Link\\pcferry\\cache\\System\\System.ini");
    EXPECT_EQ(window.document.ComOpen.InitDir, L"C:\\Link\\userdata\\sound");
    EXPECT_EQ(window.document.ComSave.InitDir, L"C:\\Link\\userdata\\sound");
    EXPECT_NE(window.link_library.Cor_IsOnPcFile, nullptr);
    EXPECT_TRUE(desktop::Asked("LoadLinkLibrary C:\\Link"));
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(Discovery, WithoutTheSoftwareNothingIsSetAndNothingIsSaid) {
    EXPECT_FALSE(DiscoverLinkSoftware(window));
    EXPECT_EQ(window.link.PcSoundDir, L"");
    EXPECT_FALSE(desktop::Asked("LoadLinkLibrary"));
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(Discovery, TheUserFolderIsTheFallbackOfTheSoundFolder) {
    desktop::InstallLinkSoftware();
    desk.folders.erase(L"C:\\Link\\userdata\\sound");
    EXPECT_TRUE(DiscoverLinkSoftware(window));
    EXPECT_EQ(window.link.PcSoundDir, L"C:\\Link\\UserData");
    EXPECT_EQ(window.document.ComOpen.InitDir, L"C:\\Link\\UserData");
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(Discovery, UserDataIsSpelledInTwoWays) {
    desktop::InstallLinkSoftware();
    desk.folders.clear();
    EXPECT_TRUE(DiscoverLinkSoftware(window));
    EXPECT_TRUE(desktop::Asked("FolderExists C:\\Link\\userdata\\sound"));
    EXPECT_TRUE(desktop::Asked("FolderExists C:\\Link\\UserData"));
}

TEST_F(Discovery, TheCacheFolderIsFormedAndNotAskedFor) {
    desktop::InstallLinkSoftware();
    desk.folders.clear();
    EXPECT_TRUE(DiscoverLinkSoftware(window));
    int asked = 0;
    for (const std::string& line : desk.log)
        asked += line.starts_with("FolderExists");
    EXPECT_EQ(asked, 2) << "the sound folder and the user folder";
}

TEST_F(Discovery, AFileOfTheFoldersNameIsNotTheFolder) {
    desktop::InstallLinkSoftware();
    desk.folders.erase(L"C:\\Link\\userdata\\sound");
    desk.folders.erase(L"C:\\Link\\UserData");
    desk.files[L"C:\\Link\\userdata\\sound"] = {{1, 2, 3}};
    desk.files[L"C:\\Link\\UserData"] = {{1, 2, 3}};
    EXPECT_TRUE(DiscoverLinkSoftware(window));
    EXPECT_EQ(desktop::Told(), std::vector<std::wstring>{kMissing});
}

TEST_F(Discovery, WithNeitherUserFolderOneWarningAndTheProgramGoesOn) {
    desktop::InstallLinkSoftware();
    desk.folders.clear();
    EXPECT_TRUE(DiscoverLinkSoftware(window));
    EXPECT_EQ(window.link.PcSoundDir, L"C:\\Link\\userdata\\sound");
    ASSERT_EQ(desk.messages.size(), 1u);
    EXPECT_EQ(desk.messages[0].text, kMissing);
    EXPECT_EQ(desk.messages[0].buttons, MessageButtons::Ok);
    EXPECT_EQ(desk.messages[0].icon, MessageIcon::Exclamation);
}

TEST_F(Discovery, TheWarningIsShownOnce) {
    std::wstring folder = L"C:\\Link\\userdata\\sound";
    bool show_message = true;
    ResolveUserSoundDir(L"C:\\Link", folder, L"", show_message);
    EXPECT_FALSE(show_message);
    ResolveUserSoundDir(L"C:\\Link", folder, L"", show_message);
    EXPECT_EQ(desk.messages.size(), 1u);
}

// PC files and device files.

namespace {

std::int32_t TONEX_STDCALL AllBitsSet(const char*) {
    return -1;
}

struct Remember : Discovery {
    std::wstring path;
    std::wstring folder = L"before";
    std::int16_t is_on_pc = 7;

    Remember() {
        desktop::InstallLinkSoftware();
        DiscoverLinkSoftware(window);
        desk.log.clear();
    }
    void Run(const wchar_t* text) {
        path = text;
        folder = L"before";
        RememberFolderOfFile(window, path, folder, is_on_pc);
    }
};

} // namespace

TEST_F(Remember, APathInQuotesIsHandledAsThePathWithoutThem) {
    Run(L"\"C:\\Songs\\A B.SND\"");
    EXPECT_EQ(path, L"C:\\Songs\\A B.SND");
    EXPECT_TRUE(desktop::Asked("Cor_IsOnPcFile C:\\Songs\\A B.SND"));
    Run(L"C:\\Songs\\A.SND\"");
    EXPECT_EQ(path, L"C:\\Songs\\A.SND");
    Run(L"\"C:\\Songs\\A.SND");
    EXPECT_EQ(path, L"C:\\Songs\\A.SND");
    Run(L"\"\"C:\\A.SND\"\"");
    EXPECT_EQ(path, L"\"C:\\A.SND\"");
}

TEST_F(Remember, ADeviceFilesFolderIsKeptWhenItExists) {
    Run(L"C:\\Link\\pcferry\\cache\\System\\sound\\A.SND");
    EXPECT_EQ(is_on_pc, 0);
    EXPECT_EQ(folder, L"C:\\Link\\pcferry\\cache\\System\\sound");
    Run(L"C:\\Link\\pcferry\\cache\\gone\\A.SND");
    EXPECT_EQ(is_on_pc, 0);
    EXPECT_EQ(folder, L"before");
}

TEST_F(Remember, APcFilesFolderIsNotKept) {
    desk.folders.insert(L"C:\\Songs");
    Run(L"C:\\Songs\\A.SND");
    EXPECT_EQ(is_on_pc, 1);
    EXPECT_EQ(folder, L"before");
}

TEST_F(Remember, TheFlagIsOneOrZeroWhateverTheLibraryAnswers) {
    window.link_library.Cor_IsOnPcFile = &AllBitsSet;
    Run(L"C:\\Songs\\A.SND");
    EXPECT_EQ(is_on_pc, 1);
}

TEST_F(Remember, WithoutTheLibraryWhatLiesBelowTheCacheIsADeviceFile) {
    window.link_library.Cor_IsOnPcFile = nullptr;
    Run(L"C:\\Link\\pcferry\\cache\\System\\sound\\A.SND");
    EXPECT_EQ(is_on_pc, 0);
    Run(L"c:\\LINK\\PcFerry\\CACHE\\A.SND");
    EXPECT_EQ(is_on_pc, 0);
    Run(L"C:\\Link\\pcferry\\cachex\\A.SND");
    EXPECT_EQ(is_on_pc, 1);
    Run(L"C:\\Link\\pcferry\\cache");
    EXPECT_EQ(is_on_pc, 1);
    Run(L"D:\\A.SND");
    EXPECT_EQ(is_on_pc, 1);
    Run(L"");
    EXPECT_EQ(is_on_pc, 1);
}

} // namespace tonex::discovery_commands_test
