// The scripted desktop keeps its own promises: what the other tests lean on is tested here.
#include "platform/clock.h"
#include "platform/events.h"
#include "platform/files.h"
#include "platform/link_library.h"
#include "platform/player.h"
#include "platform/registry.h"
#include "platform/settings.h"
#include "platform/sound_devices.h"
#include "platform/temporary_files.h"
#include "platform/text.h"
#include "platform/window_list.h"
#include "tests/desktop/desktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace tonex::desktop_test {

namespace {

using Bytes = std::vector<std::uint8_t>;

struct DesktopTest : ::testing::Test {
    desktop::Desktop& desk = desktop::Reset();

    static Bytes Read(const std::wstring& path, std::size_t limit = 1000) {
        Bytes bytes;
        EXPECT_TRUE(ReadWholeFile(path, bytes, limit));
        return bytes;
    }
};

const Bytes kBytes = {1, 2, 3, 4, 5, 6};

} // namespace

// Questions.

TEST_F(DesktopTest, AQuestionWithoutAnAnswerFailsTheTest) {
    FileDialog dialog;
    EXPECT_THROW(ShowMessage(L"Save?", MessageButtons::YesNoCancel), std::logic_error);
    EXPECT_THROW(ShowOpenDialog(dialog), std::logic_error);
    EXPECT_THROW(ShowSaveDialog(dialog), std::logic_error);
}

TEST_F(DesktopTest, AMessageWithOnlyOkNeedsNoAnswer) {
    EXPECT_EQ(ShowMessage(L"Told"), MessageAnswer::Ok);
    ASSERT_EQ(desk.messages.size(), 1u);
    EXPECT_EQ(desk.messages[0].text, L"Told");
    EXPECT_EQ(desk.messages[0].icon, MessageIcon::Exclamation);
}

TEST_F(DesktopTest, AnswersAreGivenInTheirOrder) {
    desk.answers = {MessageAnswer::Yes, MessageAnswer::Cancel};
    EXPECT_EQ(ShowMessage(L"1", MessageButtons::YesNoCancel), MessageAnswer::Yes);
    EXPECT_EQ(ShowMessage(L"2", MessageButtons::YesNoCancel), MessageAnswer::Cancel);
}

TEST_F(DesktopTest, ACancelledDialogLeavesItsName) {
    FileDialog dialog;
    dialog.FileName = L"A.SND";
    desk.open_choices = {std::nullopt, L"C:\\B.SND"};
    EXPECT_FALSE(ShowOpenDialog(dialog));
    EXPECT_EQ(dialog.FileName, L"A.SND");
    EXPECT_TRUE(ShowOpenDialog(dialog));
    EXPECT_EQ(dialog.FileName, L"C:\\B.SND");
    ASSERT_EQ(desk.dialogs.size(), 2u);
    EXPECT_EQ(desk.dialogs[1].FileName, L"A.SND");
}

// The disk.

TEST_F(DesktopTest, PathsCompareWithoutRegardToLetterCase) {
    desk.files[L"C:\\Songs\\Tune.snd"] = {kBytes};
    EXPECT_EQ(Read(L"c:\\SONGS\\tune.SND"), kBytes);
}

TEST_F(DesktopTest, FilesAreNoFoldersAndFoldersNoFiles) {
    desk.files[L"C:\\A.SND"] = {kBytes, kAttributeArchive | kAttributeReadOnly};
    desk.files[L"C:\\H.SND"] = {kBytes, kAttributeHidden};
    desk.files[L"C:\\S.SND"] = {kBytes, kAttributeSystem};
    desk.folders.insert(L"C:\\Songs");
    for (const wchar_t* file : {L"C:\\a.snd", L"C:\\H.SND", L"C:\\S.SND"})
        EXPECT_TRUE(FileExists(file)) << desktop::Utf8(file);
    EXPECT_FALSE(FileExists(L"C:\\Songs"));
    EXPECT_TRUE(FolderExists(L"C:\\Songs"));
    EXPECT_TRUE(FolderExists(L"C:\\Songs\\"));
    EXPECT_FALSE(FolderExists(L"C:\\a.snd"));
    EXPECT_FALSE(FolderExists(L"C:\\H.SND"));
    EXPECT_FALSE(FolderExists(L"C:\\S.SND"));
    EXPECT_FALSE(FileExists(L"C:\\none"));
    EXPECT_FALSE(FolderExists(L"C:\\none"));
    EXPECT_EQ(AttributesOf(L"C:\\Songs"), kAttributeDirectory);
    EXPECT_EQ(AttributesOf(L"C:\\none"), std::nullopt);
}

TEST_F(DesktopTest, AFileIsWrittenPatchedAndClosed) {
    OutputFilePtr file = CreateOutput(L"C:\\A.SND");
    ASSERT_TRUE(file);
    EXPECT_TRUE(WriteOutput(*file, kBytes.data(), 4));
    const std::uint8_t patch[] = {9, 9};
    EXPECT_TRUE(PatchOutput(*file, 1, patch, 2));
    EXPECT_FALSE(PatchOutput(*file, 3, patch, 2)) << "beyond what was written";
    EXPECT_TRUE(WriteOutput(*file, kBytes.data() + 4, 2));
    EXPECT_TRUE(FlushOutput(*file));
    EXPECT_TRUE(CloseOutput(std::move(file)));
    EXPECT_EQ(Read(L"C:\\A.SND"), (Bytes{1, 9, 9, 4, 5, 6}));
    EXPECT_EQ(Read(L"C:\\A.SND", 2), (Bytes{1, 9}));
}

TEST_F(DesktopTest, AFileThatIsThereIsNotCreated) {
    desk.files[L"C:\\A.SND"] = {kBytes};
    EXPECT_FALSE(CreateOutput(L"C:\\a.SND"));
    desk.refusing_folders.insert(L"C:\\Songs");
    EXPECT_FALSE(CreateOutput(L"C:\\Songs\\B.SND"));
}

TEST_F(DesktopTest, AFileDroppedWithoutClosingKeepsHalfItsBytes) {
    {
        OutputFilePtr file = CreateOutput(L"C:\\A.SND");
        WriteOutput(*file, kBytes.data(), 6);
    }
    EXPECT_EQ(Read(L"C:\\A.SND"), (Bytes{1, 2, 3}));
    desk.in_flight_truncated = false;
    {
        OutputFilePtr file = CreateOutput(L"C:\\B.SND");
        WriteOutput(*file, kBytes.data(), 6);
    }
    EXPECT_EQ(Read(L"C:\\B.SND"), kBytes);
}

TEST_F(DesktopTest, AFullDiskTakesSomeBytes) {
    desk.disk_space = 4;
    OutputFilePtr file = CreateOutput(L"C:\\A.SND");
    EXPECT_TRUE(WriteOutput(*file, kBytes.data(), 3));
    EXPECT_FALSE(WriteOutput(*file, kBytes.data() + 3, 3));
    CloseOutput(std::move(file));
    EXPECT_EQ(Read(L"C:\\A.SND"), (Bytes{1, 2, 3, 4}));
}

TEST_F(DesktopTest, AReadOnlyFileIsNeitherDeletedNorReplaced) {
    desk.files[L"C:\\A.SND"] = {kBytes, kAttributeReadOnly};
    desk.files[L"C:\\B.SND"] = {{9}};
    EXPECT_FALSE(RemoveFile(L"C:\\A.SND"));
    EXPECT_FALSE(RenameOver(L"C:\\B.SND", L"C:\\A.SND"));
    EXPECT_TRUE(SetAttributesOf(L"C:\\A.SND", kAttributeArchive));
    EXPECT_TRUE(RenameOver(L"C:\\B.SND", L"C:\\A.SND"));
    EXPECT_EQ(Read(L"C:\\A.SND"), Bytes{9});
    EXPECT_FALSE(desk.files.contains(L"C:\\B.SND"));
    EXPECT_TRUE(RemoveFile(L"C:\\A.SND"));
    EXPECT_FALSE(RemoveFile(L"C:\\A.SND"));
}

TEST_F(DesktopTest, TheOperationThatIsToFailFailsOnce) {
    desk.files[L"C:\\A.SND"] = {kBytes};
    desk.fail_at = 1;
    EXPECT_TRUE(FileExists(L"C:\\A.SND"));
    EXPECT_FALSE(FileExists(L"C:\\A.SND"));
    EXPECT_TRUE(FileExists(L"C:\\A.SND"));
    EXPECT_EQ(desk.file_operations, 3);
}

TEST_F(DesktopTest, TheDiskFailsForGood) {
    desk.files[L"C:\\A.SND"] = {kBytes};
    desk.fail_at = 1;
    desk.fail_for_good = true;
    EXPECT_EQ(AttributesOf(L"C:\\A.SND"), kAttributeArchive);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(AttributesOf(L"C:\\A.SND"), std::nullopt);
    EXPECT_EQ(CreateTemporaryFile(L"C:\\Temp\\", L"Snd"), L"");
}

TEST_F(DesktopTest, EveryFileOperationCountsAndCanFail) {
    const auto counts = [&](auto operation) {
        desk.files[L"C:\\A.SND"] = {kBytes};
        const int before = desk.file_operations;
        desk.fail_at = before;
        EXPECT_FALSE(operation());
        EXPECT_EQ(desk.file_operations, before + 1);
        desk.fail_at = -1;
    };
    const std::wstring path = L"C:\\A.SND";
    counts([&] { return FileExists(path); });
    counts([&] { return FolderExists(path); });
    counts([&] { return AttributesOf(path).has_value(); });
    counts([&] { return SetAttributesOf(path, 0); });
    counts([&] { return RemoveFile(path); });
    Bytes bytes;
    counts([&] { return ReadWholeFile(path, bytes, 10); });
    counts([&] { return CreateOutput(L"C:\\NEW.SND") != nullptr; });
    counts([&] { return RenameOver(path, L"C:\\B.SND"); });
    counts([&] { return !ListFiles(L"C:", L"*.SND").empty(); });
    counts([&] { return AgeOfFile(path).has_value(); });
    counts([&] { return !CreateTemporaryFile(L"C:\\Temp\\", L"Snd").empty(); });
    OutputFilePtr file = CreateOutput(L"C:\\C.SND");
    counts([&] { return WriteOutput(*file, kBytes.data(), 6); });
    counts([&] { return PatchOutput(*file, 0, kBytes.data(), 1); });
    counts([&] { return FlushOutput(*file); });
    counts([&] { return CloseOutput(std::move(file)); });
}

TEST_F(DesktopTest, AStoppedMachineLosesHalfOfWhatWasNotFlushed) {
    const auto write = [](const wchar_t* path, bool flush) {
        OutputFilePtr file = CreateOutput(path);
        WriteOutput(*file, kBytes.data(), 6);
        if (flush) FlushOutput(*file);
        CloseOutput(std::move(file));
    };
    write(L"C:\\FLUSHED.SND", true);
    write(L"C:\\NOT.SND", false);
    RenameOver(L"C:\\NOT.SND", L"C:\\MOVED.SND");
    desk.stop_at = desk.file_operations;
    EXPECT_THROW(FileExists(L"C:\\A.SND"), desktop::MachineStopped);
    EXPECT_EQ(Read(L"C:\\FLUSHED.SND"), kBytes);
    EXPECT_EQ(Read(L"C:\\MOVED.SND"), (Bytes{1, 2, 3}));
}

TEST_F(DesktopTest, FilesOfAFolderAreListedByPattern) {
    for (const wchar_t* path :
         {L"C:\\S\\A.SND", L"C:\\S\\b.snd", L"C:\\S\\A.SNDX", L"C:\\S\\T\\C.SND", L"C:\\S2\\D.SND"})
        desk.files[path] = {};
    const auto listed = [](const wchar_t* folder, const wchar_t* pattern) {
        std::vector<std::wstring> names = ListFiles(folder, pattern);
        std::sort(names.begin(), names.end());
        return names;
    };
    EXPECT_EQ(listed(L"C:\\S", L"*.snd"), (std::vector<std::wstring>{L"A.SND", L"b.snd"}));
    EXPECT_EQ(listed(L"C:\\S\\", L"?.SNDX"), std::vector<std::wstring>{L"A.SNDX"});
    EXPECT_EQ(listed(L"C:\\S\\T", L"*"), std::vector<std::wstring>{L"C.SND"});
    EXPECT_TRUE(listed(L"C:\\none", L"*").empty());
}

TEST_F(DesktopTest, TemporaryFilesHaveNamesOfTheirOwn) {
    EXPECT_EQ(TemporaryFolder(), L"C:\\Temp\\");
    const std::wstring first = CreateTemporaryFile(L"C:\\Temp\\", L"Snd");
    const std::wstring second = CreateTemporaryFile(L"C:\\Temp", L"Sndfile");
    EXPECT_NE(first, second);
    EXPECT_TRUE(first.starts_with(L"C:\\Temp\\Snd"));
    EXPECT_TRUE(second.starts_with(L"C:\\Temp\\Snd"));
    EXPECT_TRUE(second.ends_with(L".tmp"));
    EXPECT_TRUE(desk.files.contains(first));
    EXPECT_NE(UniqueNumber(), UniqueNumber());
}

// Text.

TEST_F(DesktopTest, CodePage932CountsBytesAndComesBack) {
    EXPECT_EQ(ToAnsi(L"メロディー").size(), 10u);
    EXPECT_EQ(ToAnsi(L"ﾒﾛﾃﾞｨｰ").size(), 6u);
    EXPECT_EQ(ToAnsi(L"音符").size(), 4u);
    EXPECT_EQ(ToAnsi(L"C:\\A b.SND"), "C:\\A b.SND");
    const std::wstring all = L"メロディーﾒﾛﾃﾞｨｰ音符 c4# \\ソ表.SND";
    EXPECT_EQ(FromAnsi(ToAnsi(all)), all);
    EXPECT_EQ(FromAnsi(ToAnsi(L"\xFF61\xFF9F")), L"\xFF61\xFF9F");
    EXPECT_EQ(ToAnsi(L"\xFF61"), "\xA1");
    EXPECT_EQ(ToAnsi(L"\xFF9F"), "\xDF");
}

TEST_F(DesktopTest, EachCharacterKeepsItsOwnPairOfBytes) {
    std::wstring all;
    for (int c = 0x4E00; c < 0x4E00 + 1000; ++c)
        all += static_cast<wchar_t>(c);
    const std::string ansi = ToAnsi(all);
    EXPECT_EQ(ansi.size(), 2000u);
    for (std::size_t i = 0; i < ansi.size(); i += 2) {
        const auto lead = static_cast<unsigned char>(ansi[i]);
        const auto trail = static_cast<unsigned char>(ansi[i + 1]);
        ASSERT_TRUE(lead >= 0x81 && lead <= 0x9F);
        ASSERT_TRUE(trail >= 0x40 && trail <= 0xFC && trail != 0x7F);
    }
    EXPECT_EQ(FromAnsi(ansi), all);
}

TEST_F(DesktopTest, KatakanaHaveTheCodePagesOwnBytes) {
    EXPECT_EQ(ToAnsi(L"ァソムメヶ"), "\x83\x40\x83\x5C\x83\x80\x83\x81\x83\x96");
    EXPECT_EQ(FromAnsi(ToAnsi(L"ソ.SND")), L"ソ.SND");
}

TEST_F(DesktopTest, CharactersThatTheCodePageLacksBecomeQuestionMarks) {
    EXPECT_EQ(ToAnsi(L"\x0E01\x00E9"), "??");
    EXPECT_EQ(ToAnsi(L"\x0416").size(), 2u);
}

TEST_F(DesktopTest, AHalfCharacterBecomesAQuestionMark) {
    EXPECT_EQ(FromAnsi("ab\x81"), L"ab?");
}

TEST_F(DesktopTest, AnotherCodePageHasOneByteACharacter) {
    desk.code_page = 1252;
    EXPECT_EQ(ToAnsi(L"caf\xE9"), "caf\xE9");
    EXPECT_EQ(FromAnsi("caf\xE9"), L"caf\xE9");
    EXPECT_EQ(ToAnsi(L"音"), "?");
}

// Settings, registry, clock, sound.

TEST_F(DesktopTest, SettingsAreKeptByApplicationSectionAndKey) {
    EXPECT_EQ(ReadSetting(L"A", L"S", L"K", L"none"), L"none");
    EXPECT_TRUE(WriteSetting(L"A", L"S", L"K", L"text"));
    EXPECT_EQ(ReadSetting(L"A", L"S", L"K", L"none"), L"text");
    EXPECT_EQ(ReadSetting(L"A", L"T", L"K", L"none"), L"none");
    desk.settings_refused = true;
    EXPECT_FALSE(WriteSetting(L"A", L"S", L"K", L"other"));
    EXPECT_EQ(ReadSetting(L"A", L"S", L"K", L"none"), L"text");
}

TEST_F(DesktopTest, TheRegistryGivesTextsAsTheyAreStored) {
    desk.registry[L"Key\\Sub\\Value"] = std::wstring(L"ab\0", 3);
    EXPECT_FALSE(OpenUserKey(L"Key\\Su"));
    {
        const RegistryKeyPtr key = OpenUserKey(L"Key\\Sub");
        ASSERT_TRUE(key);
        EXPECT_EQ(QueryTextSize(*key, L"Value"), 3u);
        EXPECT_EQ(QueryTextSize(*key, L"Other"), 0u);
        std::wstring buffer(5, L' ');
        EXPECT_TRUE(QueryText(*key, L"Value", buffer));
        EXPECT_EQ(buffer, std::wstring(L"ab\0  ", 5));
        EXPECT_FALSE(QueryText(*key, L"Other", buffer));
        EXPECT_EQ(desk.open_registry_keys, 1);
    }
    EXPECT_EQ(desk.open_registry_keys, 0);
}

TEST_F(DesktopTest, ClockAndDevicesAreAsScripted) {
    const TimeOfDay time = CurrentTime();
    EXPECT_EQ(time.hour, 12);
    EXPECT_EQ(time.minute, 34);
    EXPECT_EQ(time.second, 56);
    desk.wave_outputs = 3;
    EXPECT_EQ(CountWaveOutputs(), 3);
}

TEST_F(DesktopTest, APlayerRunsForSoManyPolls) {
    desk.polls_until_exit = 2;
    desk.exit_code = 7;
    const ProcessHandle process = OpenProcessForQuery(StartCommandLine(L"player"));
    ASSERT_NE(process, 0u);
    EXPECT_EQ(ExitCodeOf(process), kStillActive);
    EXPECT_EQ(ExitCodeOf(process), kStillActive);
    EXPECT_EQ(ExitCodeOf(process), 7u);
    CloseProcess(process);
    EXPECT_EQ(desk.open_processes, 0);
    EXPECT_EQ(OpenProcessForQuery(0), 0u);
    EXPECT_THROW(ExitCodeOf(1), std::logic_error);
    EXPECT_THROW(CloseProcess(1), std::logic_error);
}

TEST_F(DesktopTest, EventsRunWhatTheTestHangsIn) {
    int runs = 0;
    desk.during_events = [&] { ++runs; };
    ProcessPendingEvents();
    WaitForEvents(10);
    EXPECT_EQ(runs, 2);
}

TEST_F(DesktopTest, WindowsAreWalkedInTheirOrder) {
    EXPECT_EQ(FirstTopLevelWindow(), 0u);
    desk.windows = {{L"one", 0, false}, {L"two", 5, true}};
    const WindowId first = FirstTopLevelWindow();
    const WindowId second = NextWindow(first);
    EXPECT_EQ(NextWindow(second), 0u);
    EXPECT_EQ(CaptionLength(second), 3);
    EXPECT_EQ(OwnerOf(first), 0u);
    EXPECT_EQ(OwnerOf(second), 5u);
    EXPECT_FALSE(IsMinimised(first));
    EXPECT_TRUE(IsMinimised(second));
    std::wstring buffer(3, L' ');
    EXPECT_EQ(ReadCaption(second, buffer), 2) << "the last place is the ending NUL's";
    EXPECT_EQ(CaptionLength(99), 0);
}

// The link library.

TEST_F(DesktopTest, TheLibraryStaysInsideItsBuffers) {
    const LinkLibrary library = LoadLinkLibrary(L"C:\\Link");
    std::array<char, kLinkBufferSize + 16> buffer;
    const auto guard_holds = [&] {
        return std::all_of(buffer.begin() + kLinkBufferSize, buffer.end(), [](char c) { return c == 'G'; });
    };
    buffer.fill('G');
    desk.link.conversion_bytes = std::string(1000, 'x');
    library.Cor_ConvPathCorvaneToCache(buffer.data(), kLinkBufferSize, "\\A.SND");
    EXPECT_TRUE(guard_holds());
    EXPECT_EQ(buffer[kLinkBufferSize - 1], 'x');
    desk.link.dialogs_omit_nul = true;
    desk.link.open_choices = {std::string(1000, 'y')};
    library.Cor_PIMOpenFileDialog("\\", "snd", buffer.data(), kLinkBufferSize);
    EXPECT_TRUE(guard_holds());
    EXPECT_EQ(buffer[kLinkBufferSize - 1], 'y');
}

TEST_F(DesktopTest, CachePathsAndDevicePathsConvertIntoEachOther) {
    const LinkLibrary library = LoadLinkLibrary(L"C:\\Link");
    std::array<char, kLinkBufferSize> buffer{};
    EXPECT_EQ(library.Cor_ConvPathCacheToCorvane(buffer.data(), kLinkBufferSize,
                                                 "c:\\LINK\\pcferry\\cache\\System\\sound\\A.SND"),
              19);
    EXPECT_STREQ(buffer.data(), "\\System\\sound\\A.SND");
    EXPECT_EQ(library.Cor_ConvPathCorvaneToCache(buffer.data(), kLinkBufferSize, "\\A.SND"), 27);
    EXPECT_STREQ(buffer.data(), "C:\\Link\\pcferry\\cache\\A.SND");
    EXPECT_EQ(library.Cor_ConvPathCacheToCorvane(buffer.data(), kLinkBufferSize, "D:\\A.SND"), 0);
    EXPECT_NE(library.Cor_IsOnPcFile("D:\\A.SND"), 0);
    EXPECT_EQ(library.Cor_IsOnPcFile("C:\\Link\\pcferry\\cache\\A.SND"), 0);
}

TEST_F(DesktopTest, AMissingLibraryIsATableOfNulls) {
    desk.link.loads = false;
    const LinkLibrary library = LoadLinkLibrary(L"C:\\Link");
    EXPECT_EQ(library.Cor_IsOnPcFile, nullptr);
    EXPECT_EQ(library.Cor_DoDisconnect, nullptr);
    desk.link.loads = true;
    desk.link.missing = {"Cor_PutFile"};
    EXPECT_EQ(LoadLinkLibrary(L"").Cor_PutFile, nullptr);
    EXPECT_NE(LoadLinkLibrary(L"").Cor_GetFile, nullptr);
}

TEST_F(DesktopTest, AFreshDesktopRemembersNothing) {
    desk.files[L"C:\\A.SND"] = {kBytes};
    ShowMessage(L"Told");
    EXPECT_TRUE(desktop::Asked("ShowMessage Told"));
    const desktop::Desktop& fresh = desktop::Reset();
    EXPECT_TRUE(fresh.files.empty());
    EXPECT_TRUE(fresh.log.empty());
    EXPECT_FALSE(desktop::Asked("ShowMessage"));
}

TEST_F(DesktopTest, TheLogIsUtf8) {
    ShowMessage(L"ド é \xD83C\xDFB5");
    EXPECT_EQ(desk.log.back(), "ShowMessage \xE3\x83\x89 \xC3\xA9 \xF0\x9F\x8E\xB5");
}

} // namespace tonex::desktop_test
