#include "platform/player.h"

#include "platform/program_folder.h"
#include "tests/windows/support.h"

#include <gtest/gtest.h>

using namespace tonex;
using namespace tonex::windows_test;

namespace {

std::wstring Quoted(const std::wstring& path) {
    return L"\"" + path + L"\"";
}

std::uint32_t WaitForEnd(ProcessHandle process) {
    for (int i = 0; i < 1000; ++i) {
        const std::uint32_t code = ExitCodeOf(process);
        if (code != kStillActive) return code;
        Sleep(10);
    }
    return kStillActive;
}

// A kind of document for which the system knows a program, made for the test.
struct PlayableKind {
    TestKey extension{L".tnxtest", HKEY_CLASSES_ROOT};
    TestKey program{L"Tonex.Test", HKEY_CLASSES_ROOT};
    TestKey command{L"Tonex.Test\\shell\\Play\\command", HKEY_CLASSES_ROOT};
    explicit PlayableKind(const std::wstring& command_line = Quoted(TestProgram()) + L" child-exit 5") {
        extension.SetText(L"", L"Tonex.Test");
        command.SetText(L"", command_line);
    }
};

} // namespace

TEST(Player, RunsACommandLineAndTellsItsExitCode) {
    const std::uint32_t id = StartCommandLine(Quoted(TestProgram()) + L" child-sleep");
    ASSERT_NE(id, 0u);
    const ProcessHandle process = OpenProcessForQuery(id);
    ASSERT_NE(process, 0u);
    EXPECT_EQ(ExitCodeOf(process), kStillActive);
    const HANDLE killer = OpenProcess(PROCESS_TERMINATE, FALSE, id);
    ASSERT_TRUE(TerminateProcess(killer, 7)); // a player that is killed has ended too
    CloseHandle(killer);
    EXPECT_EQ(WaitForEnd(process), 7u);
    CloseProcess(process);
}

TEST(Player, AProgramThatEndsWithTheNumberOfRunningOnesHasEnded) {
    const std::uint32_t id = StartCommandLine(Quoted(TestProgram()) + L" child-exit 259");
    const ProcessHandle process = OpenProcessForQuery(id);
    if (process) { // it may be gone before it can be opened
        EXPECT_EQ(WaitForEnd(process), 0u);
        CloseProcess(process);
    }
    Child child(L"child-exit 259");
    EXPECT_EQ(child.ExitCode(), 259u);
    EXPECT_EQ(ExitCodeOf(reinterpret_cast<ProcessHandle>(child.process.hProcess)), 0u);
}

TEST(Player, AProgramIsToldTheSoundsNameAndTheNextOneIsNot) {
    const auto code_of = [](const std::wstring& name) {
        const std::wstring line = L"cmd /c if \"%SOUND_PLAYER_NAME%\"==\"A b.SND\" (exit 5) else exit 6";
        const ProcessHandle process = OpenProcessForQuery(StartCommandLine(line, name));
        const std::uint32_t code = WaitForEnd(process);
        CloseProcess(process);
        return code;
    };
    EXPECT_EQ(code_of(L"A b.SND"), 5u);
    EXPECT_EQ(code_of(L""), 6u);
    EXPECT_EQ(GetEnvironmentVariableW(kSoundNameVariable, nullptr, 0), 0u);
}

TEST(Player, AProgramIsAskedToShowItselfAsUsual) {
    const HANDLE opened = CreateEventW(nullptr, TRUE, FALSE, kChildOpened);
    const ProcessHandle process =
        OpenProcessForQuery(StartCommandLine(Quoted(TestProgram()) + L" child-show-state"));
    ASSERT_NE(process, 0u);
    SetEvent(opened);
    EXPECT_EQ(WaitForEnd(process), static_cast<std::uint32_t>(SW_SHOWNORMAL));
    CloseProcess(process);
    CloseHandle(opened);
}

TEST(Player, ADocumentsProgramIsAskedToShowItselfAsUsual) {
    const PlayableKind kind(Quoted(TestProgram()) + L" child-show-state");
    const TestFolder folder;
    WriteBytes(folder / L"a.tnxtest", "x");
    const HANDLE opened = CreateEventW(nullptr, TRUE, FALSE, kChildOpened);
    ProcessHandle process = 0;
    ASSERT_TRUE(StartDocument(folder / L"a.tnxtest", L"Play", process));
    ASSERT_NE(process, 0u);
    SetEvent(opened);
    CloseHandle(opened);
    EXPECT_EQ(WaitForEnd(process), static_cast<std::uint32_t>(SW_SHOWNORMAL));
    CloseProcess(process);
}

TEST(Player, AMissingProgramDoesNotStart) {
    EXPECT_EQ(StartCommandLine(L"no-such-player-here /play /close C:\\a.wav"), 0u);
    EXPECT_EQ(StartCommandLine(L""), 0u);
}

TEST(Player, AProcessThatIsNotThereIsNotOpened) {
    EXPECT_EQ(OpenProcessForQuery(0xFFFFFFF0u), 0u);
}

TEST(Player, AHandleThatIsNoneCountsAsEnded) {
    EXPECT_EQ(ExitCodeOf(0), 0u);
    CloseProcess(0);
}

TEST(Player, AProgramBesideTheEditorIsFoundAndOneInTheCurrentFolderIsNot) {
    const TestFolder folder;
    ASSERT_TRUE(CopyFileW(TestProgram().c_str(), (folder / L"planted-player.exe").c_str(), TRUE));
    const CurrentFolder current(folder.path);
    EXPECT_EQ(StartCommandLine(L"planted-player child-exit 0"), 0u);

    const std::wstring beside = ProgramFolder() + L"\\beside-player.exe";
    ASSERT_TRUE(CopyFileW(TestProgram().c_str(), beside.c_str(), FALSE));
    const std::uint32_t id = StartCommandLine(L"beside-player child-sleep");
    EXPECT_NE(id, 0u);
    if (const HANDLE process = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, id)) {
        TerminateProcess(process, 0);
        WaitForSingleObject(process, 5000);
        CloseHandle(process);
    }
    DeleteFileW(beside.c_str());
    wchar_t after[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, after);
    EXPECT_EQ(folder.path, after);
}

TEST(Player, ADocumentIsStartedWithItsVerb) {
    const PlayableKind kind;
    const TestFolder folder;
    WriteBytes(folder / L"a.tnxtest", "x");
    ProcessHandle process = 99;
    ASSERT_TRUE(StartDocument(folder / L"a.tnxtest", L"Play", process));
    ASSERT_NE(process, 0u);
    EXPECT_EQ(WaitForEnd(process), 5u);
    CloseProcess(process);
}

TEST(Player, ADocumentWithoutTheVerbOrWithoutAProgramIsNot) {
    const PlayableKind kind;
    const TestFolder folder;
    WriteBytes(folder / L"a.tnxnone", "x");
    ProcessHandle process = 99;
    EXPECT_FALSE(StartDocument(folder / L"a.tnxnone", L"Play", process));
    EXPECT_EQ(process, 0u);
    process = 99;
    EXPECT_FALSE(StartDocument(folder / L"missing.tnxtest", L"Sing", process));
    EXPECT_EQ(process, 0u);
}

TEST(Player, ADocumentsFolderIsNotSearchedForItsProgram) {
    const PlayableKind kind(L"planted-player.exe child-exit 5");
    const TestFolder folder;
    WriteBytes(folder / L"a.tnxtest", "x");
    ASSERT_TRUE(CopyFileW(TestProgram().c_str(), (folder / L"planted-player.exe").c_str(), TRUE));
    const CurrentFolder current(folder.path);
    ProcessHandle process = 99;
    EXPECT_FALSE(StartDocument(folder / L"a.tnxtest", L"Play", process));
    EXPECT_EQ(process, 0u);
    wchar_t after[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, after);
    EXPECT_EQ(folder.path, after);
}

TEST(Player, ADocumentsProgramStartsInTheProgramsFolder) {
    const PlayableKind kind(Quoted(TestProgram()) + L" child-at-home");
    const TestFolder folder;
    WriteBytes(folder / L"a.tnxtest", "x");
    const CurrentFolder current(folder.path);
    ProcessHandle process = 0;
    ASSERT_TRUE(StartDocument(folder / L"a.tnxtest", L"Play", process));
    EXPECT_EQ(WaitForEnd(process), 0u);
    CloseProcess(process);
}
