#include "tools/linksetup/link_setup.h"

#include "link/install_entry_services.h"
#include "tests/windows/support.h"

#include <gtest/gtest.h>

using namespace tonex;
using namespace tonex::windows_test;

namespace {

const std::wstring kEntryKey = L"Software\\QMT\\Corvane-e\\PC";
const std::wstring kTitle = L"Sound Editor Link Setup";

// A user without link software, and a folder to try in.
struct FreshUser {
    TestKey key{L"Software\\QMT"};
    TestFolder folder;
};

bool HasKey(const std::wstring& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key)) return false;
    RegCloseKey(key);
    return true;
}

// LinkSetup.exe as a user starts it.
struct Program {
    PROCESS_INFORMATION process = {};

    explicit Program(const std::wstring& arguments) {
        const std::wstring test = TestProgram();
        std::wstring line = L"\"" + test.substr(0, test.rfind(L'\\')) +
                            L"\\..\\..\\sound-editor\\LinkSetup.exe\" " + arguments;
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                   &startup, &process));
    }
    ~Program() {
        TerminateProcess(process.hProcess, 97);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    DWORD ExitCode() {
        EXPECT_EQ(WaitForSingleObject(process.hProcess, 10'000), WAIT_OBJECT_0);
        DWORD code = 0xDEAD;
        GetExitCodeProcess(process.hProcess, &code);
        return code;
    }

    // Answers the next box; gives its text.
    std::wstring Answer(int button) {
        for (int i = 0; i < 1000; ++i, Sleep(10)) {
            const HWND box = FindWindowW(L"#32770", kTitle.c_str());
            if (!box || box == answered || !IsWindowVisible(box) || !GetDlgItem(box, button)) continue;
            answered = box;
            const std::wstring text = ControlText(box, 0xFFFF);
            Press(box, button);
            return text;
        }
        return L"(no box came)";
    }
    HWND answered = nullptr;
};

} // namespace

TEST(LinkSetup, MakesTheEntryAndTheFoldersWithWhichTheEditorStarts) {
    const FreshUser user;
    EXPECT_EQ(GetInstallDir(), std::nullopt);
    ASSERT_EQ(SetUpLink(user.folder / L"Corvane"), SetupResult::Done);
    EXPECT_EQ(UserText(kEntryKey, L"InstallDir"), user.folder / L"Corvane");
    EXPECT_EQ(GetInstallDir(), user.folder / L"Corvane");
    EXPECT_TRUE(IsFolder(user.folder / L"Corvane\\userdata\\sound"));
    EXPECT_TRUE(IsFolder(user.folder / L"Corvane\\pcferry\\cache\\System\\sound"));
    EXPECT_EQ(InstalledFolder(), user.folder / L"Corvane");
}

TEST(LinkSetup, RemovingTakesAwayAllThatWasMade) {
    const FreshUser user;
    ASSERT_EQ(SetUpLink(user.folder / L"a\\Corvane\\"), SetupResult::Done);
    std::vector<std::wstring> kept;
    EXPECT_EQ(RemoveLink(kept), SetupResult::Done);
    EXPECT_TRUE(kept.empty());
    EXPECT_FALSE(HasKey(L"Software\\QMT"));
    EXPECT_FALSE(IsFolder(user.folder / L"a"));
    EXPECT_TRUE(IsFolder(user.folder.path));
    EXPECT_EQ(RemoveLink(kept), SetupResult::NothingToRemove);
}

TEST(LinkSetup, RemovingLeavesFoldersAndKeysThatWereThereBefore) {
    const FreshUser user;
    const TestKey other(L"Software\\QMT\\Other");
    other.SetText(L"x", L"y");
    MakeFolder(user.folder / L"Corvane");
    MakeFolder(user.folder / L"Corvane\\userdata");
    ASSERT_EQ(SetUpLink(user.folder / L"Corvane"), SetupResult::Done);
    std::vector<std::wstring> kept;
    EXPECT_EQ(RemoveLink(kept), SetupResult::Done);
    EXPECT_TRUE(kept.empty());
    EXPECT_TRUE(IsFolder(user.folder / L"Corvane\\userdata"));
    EXPECT_FALSE(IsFolder(user.folder / L"Corvane\\userdata\\sound"));
    EXPECT_FALSE(IsFolder(user.folder / L"Corvane\\pcferry"));
    EXPECT_EQ(UserText(L"Software\\QMT\\Other", L"x"), L"y");
    EXPECT_FALSE(HasKey(L"Software\\QMT\\Corvane-e"));
}

TEST(LinkSetup, RemovingLeavesMelodies) {
    const FreshUser user;
    ASSERT_EQ(SetUpLink(user.folder / L"Corvane"), SetupResult::Done);
    WriteBytes(user.folder / L"Corvane\\userdata\\sound\\TUNE.SND", "tune");
    std::vector<std::wstring> kept;
    EXPECT_EQ(RemoveLink(kept), SetupResult::Done);
    EXPECT_EQ(kept,
              (std::vector<std::wstring>{user.folder / L"Corvane\\userdata\\sound",
                                         user.folder / L"Corvane\\userdata", user.folder / L"Corvane"}));
    EXPECT_EQ(ReadBytes(user.folder / L"Corvane\\userdata\\sound\\TUNE.SND"), "tune");
    EXPECT_FALSE(HasKey(L"Software\\QMT"));
}

TEST(LinkSetup, AnExistingEntryIsNeverTouched) {
    const FreshUser user;
    const TestKey entry(kEntryKey);
    // A folder that is there, and ones whose drive or server is away.
    for (const std::wstring& text : {user.folder.path, user.folder.path + L"\\", std::wstring(L"Q:\\Link"),
                                     std::wstring(L"\\\\server\\Link")}) {
        entry.SetText(L"InstallDir", text);
        EXPECT_EQ(SetUpLink(user.folder / L"Corvane"), SetupResult::AlreadyThere);
        EXPECT_EQ(UserText(kEntryKey, L"InstallDir"), text);
        EXPECT_FALSE(IsFolder(user.folder / L"Corvane"));
        std::vector<std::wstring> kept;
        EXPECT_EQ(RemoveLink(kept), SetupResult::NothingToRemove);
        EXPECT_EQ(UserText(kEntryKey, L"InstallDir"), text);
    }
}

TEST(LinkSetup, AUselessEntryCountsAsMissingAndIsPutBack) {
    const FreshUser user;
    const TestKey entry(kEntryKey);
    const std::wstring gone = user.folder / L"gone";
    for (const std::wstring& text :
         {std::wstring(L" "), std::wstring(L"\\"), std::wstring(L"Link"), std::wstring(L"C:Link"), gone}) {
        entry.SetText(L"InstallDir", text);
        EXPECT_EQ(InstalledFolder(), L"");
        EXPECT_EQ(SetUpLink(user.folder / L"Corvane"), SetupResult::Done);
        EXPECT_EQ(UserText(kEntryKey, L"InstallDir"), user.folder / L"Corvane");
        EXPECT_TRUE(IsFolder(user.folder / L"Corvane\\userdata\\sound"));
        std::vector<std::wstring> kept;
        EXPECT_EQ(RemoveLink(kept), SetupResult::Done);
        EXPECT_EQ(UserText(kEntryKey, L"InstallDir"), text);
        EXPECT_EQ(UserText(kEntryKey, L"LinkSetup before"), L"(missing)");
    }
}

TEST(LinkSetup, WhatItMadeItselfIsMadeAnewWhereTheFolderIsGone) {
    const FreshUser user;
    ASSERT_EQ(SetUpLink(user.folder / L"Corvane"), SetupResult::Done);
    for (const wchar_t* part : {L"userdata\\sound", L"userdata", L"pcferry\\cache\\System\\sound",
                                L"pcferry\\cache\\System", L"pcferry\\cache", L"pcferry", L""})
        RemoveDirectoryW((user.folder / L"Corvane\\" + part).c_str());
    EXPECT_EQ(InstalledFolder(), L"");
    EXPECT_EQ(SetUpLink(user.folder / L"Corvane"), SetupResult::Done);
    EXPECT_TRUE(IsFolder(user.folder / L"Corvane\\userdata\\sound"));
    std::vector<std::wstring> kept;
    EXPECT_EQ(RemoveLink(kept), SetupResult::Done);
    EXPECT_FALSE(HasKey(L"Software\\QMT"));
    EXPECT_FALSE(IsFolder(user.folder / L"Corvane"));
}

TEST(LinkSetup, AnEmptyEntryCountsAsMissing) {
    const FreshUser user;
    const TestKey entry(kEntryKey);
    entry.SetText(L"InstallDir", L"");
    EXPECT_EQ(SetUpLink(user.folder / L"Corvane"), SetupResult::Done);
    EXPECT_EQ(GetInstallDir(), user.folder / L"Corvane");
    std::vector<std::wstring> kept;
    EXPECT_EQ(RemoveLink(kept), SetupResult::Done);
    EXPECT_EQ(GetInstallDir(), std::nullopt);
}

TEST(LinkSetup, AnEntryThatLinkSoftwareTookOverStays) {
    const FreshUser user;
    ASSERT_EQ(SetUpLink(user.folder / L"Corvane"), SetupResult::Done);
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, kEntryKey.c_str(), 0, KEY_WRITE, &key), 0);
        RegSetValueExW(key, L"InstallDir", 0, REG_SZ, reinterpret_cast<const BYTE*>(L"C:\\Link"), 16);
        RegCloseKey(key);
    }
    std::vector<std::wstring> kept;
    EXPECT_EQ(RemoveLink(kept), SetupResult::Done);
    EXPECT_EQ(UserText(kEntryKey, L"InstallDir"), L"C:\\Link");
    EXPECT_FALSE(IsFolder(user.folder / L"Corvane"));
    EXPECT_EQ(RemoveLink(kept), SetupResult::NothingToRemove);
}

TEST(LinkSetup, WhatCanNotBeMadeLeavesNothingBehind) {
    const FreshUser user;
    MakeFolder(user.folder / L"Corvane");
    WriteBytes(user.folder / L"Corvane\\pcferry", "a file is in the way");
    EXPECT_EQ(SetUpLink(user.folder / L"Corvane"), SetupResult::Failed);
    EXPECT_FALSE(HasKey(L"Software\\QMT"));
    EXPECT_FALSE(IsFolder(user.folder / L"Corvane\\userdata"));
    EXPECT_EQ(ReadBytes(user.folder / L"Corvane\\pcferry"), "a file is in the way");
}

TEST(LinkSetup, FoldersThatTheEditorCouldNotUseAreRefused) {
    for (const wchar_t* folder : {L"", L"Corvane", L"\\Corvane", L"C:", L"C:\\", L"C:Corvane", L"C:\\a*b",
                                  L"C:/a", L"C:\\a:b", L"C:\\\u0E01"})
        EXPECT_FALSE(IsUsableFolder(folder)) << folder;
    EXPECT_TRUE(IsUsableFolder(L"C:\\Corvane"));
    EXPECT_TRUE(IsUsableFolder(L"C:\\Corvane\\"));
    EXPECT_TRUE(IsUsableFolder(L"\\\\server\\share\\Corvane"));
    // The folder, the cache folder below it and a name of 12 characters: 199 in all, and a NUL.
    const std::size_t longest = 199 - std::wstring(L"\\pcferry\\cache\\System\\sound\\").size() - 12;
    EXPECT_TRUE(IsUsableFolder(L"C:\\" + std::wstring(longest - 3, L'a')));
    EXPECT_FALSE(IsUsableFolder(L"C:\\" + std::wstring(longest - 2, L'a')));
}

TEST(LinkSetup, OptionsAreWordsWithASlashOrAHyphen) {
    const auto all = ParseSetupOptions({L"/QUIET", L"-remove", L"/Folder", L"C:\\My Corvane"});
    ASSERT_TRUE(all);
    EXPECT_TRUE(all->quiet);
    EXPECT_TRUE(all->remove);
    EXPECT_EQ(all->folder, L"C:\\My Corvane");
    const auto none = ParseSetupOptions({});
    ASSERT_TRUE(none);
    EXPECT_FALSE(none->quiet);
    EXPECT_FALSE(none->remove);
    EXPECT_EQ(none->folder, L"");
    for (const std::vector<std::wstring>& words : {std::vector<std::wstring>{L"quiet"},
                                                   {L"/?"},
                                                   {L"/folder"},
                                                   {L"/folder", L""},
                                                   {L"/quiet", L"C:\\x"},
                                                   {L""}})
        EXPECT_FALSE(ParseSetupOptions(words));
}

TEST(LinkSetupProgram, QuietlyMakesAndRemoves) {
    const FreshUser user;
    const std::wstring folder = user.folder / L"My Corvane";
    Program make(L"/quiet /folder \"" + folder + L"\"");
    EXPECT_EQ(make.ExitCode(), 0u);
    EXPECT_EQ(GetInstallDir(), folder);
    Program again(L"/quiet /folder \"" + folder + L" 2\"");
    EXPECT_EQ(again.ExitCode(), 0u);
    EXPECT_EQ(GetInstallDir(), folder);
    EXPECT_FALSE(IsFolder(folder + L" 2"));
    Program remove(L"/quiet /remove");
    EXPECT_EQ(remove.ExitCode(), 0u);
    EXPECT_EQ(GetInstallDir(), std::nullopt);
    EXPECT_FALSE(IsFolder(folder));
}

TEST(LinkSetupProgram, QuietlyFails) {
    const FreshUser user;
    WriteBytes(user.folder / L"file", "x");
    Program program(L"/quiet /folder \"" + (user.folder / L"file") + L"\"");
    EXPECT_EQ(program.ExitCode(), 1u);
    EXPECT_FALSE(HasKey(L"Software\\QMT"));
}

TEST(LinkSetupProgram, AsksFirstAndTakesNoForAnAnswer) {
    const FreshUser user;
    const std::wstring folder = user.folder / L"Corvane";
    Program declined(L"/folder \"" + folder + L"\"");
    EXPECT_NE(declined.Answer(IDNO).find(folder), std::wstring::npos);
    EXPECT_EQ(declined.ExitCode(), 3u);
    EXPECT_FALSE(IsFolder(folder));
    EXPECT_FALSE(HasKey(L"Software\\QMT"));

    Program accepted(L"/folder \"" + folder + L"\"");
    accepted.Answer(IDYES);
    EXPECT_NE(accepted.Answer(IDOK).find(folder), std::wstring::npos);
    EXPECT_EQ(accepted.ExitCode(), 0u);
    EXPECT_EQ(GetInstallDir(), folder);

    Program there(L"");
    EXPECT_NE(there.Answer(IDOK).find(folder), std::wstring::npos);
    EXPECT_EQ(there.ExitCode(), 0u);

    Program remove(L"/remove");
    remove.Answer(IDYES);
    remove.Answer(IDOK);
    EXPECT_EQ(remove.ExitCode(), 0u);
    EXPECT_FALSE(IsFolder(folder));
}

TEST(LinkSetupProgram, TellsItsOptionsWhenItDoesNotKnowOne) {
    const FreshUser user;
    Program program(L"/help");
    EXPECT_NE(program.Answer(IDOK).find(L"/quiet"), std::wstring::npos);
    EXPECT_EQ(program.ExitCode(), 2u);
    EXPECT_FALSE(HasKey(L"Software\\QMT"));
}
