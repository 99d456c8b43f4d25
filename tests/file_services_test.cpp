// Melodies as files: reading and writing them, and that saving is all or nothing: every single disk operation
// fails in turn, the disk fills up at every byte, the machine stops at every moment.
#include "platform/files.h"
#include "score/file_services.h"
#include "tests/desktop/desktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tonex::file_services_test {

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr const wchar_t* kPath = L"C:\\Songs\\TUNE.SND";
const Bytes kOld(37, 0xAA);
const Bytes kNew = {7, 0, 8, 0, 86, 4, 255, 255, 0, 0, 120, 0, 86, 111, 255, 255};

desktop::Desktop& DiskWithOldFile(std::uint32_t attributes = kAttributeArchive) {
    desktop::Desktop& desk = desktop::Reset();
    desk.files[kPath] = {kOld, attributes};
    return desk;
}

int TemporaryFiles() {
    const auto& files = desktop::Current().files;
    return static_cast<int>(std::count_if(files.begin(), files.end(), [](const auto& file) {
        return file.first.find(L"~snd") != std::wstring::npos;
    }));
}

int TimesAsked(const std::string& beginning) {
    const auto& log = desktop::Current().log;
    return static_cast<int>(std::count_if(
        log.begin(), log.end(), [&](const std::string& line) { return line.starts_with(beginning); }));
}

int OperationsOfAGoodSave(std::uint32_t attributes) {
    const desktop::Desktop& desk = DiskWithOldFile(attributes);
    EXPECT_TRUE(SaveWholeFile(kPath, kNew));
    return desk.file_operations;
}

} // namespace

TEST(SaveFile, WritesANewFile) {
    const desktop::Desktop& desk = desktop::Reset();
    EXPECT_TRUE(SaveWholeFile(kPath, kNew));
    ASSERT_TRUE(desk.files.contains(kPath));
    EXPECT_EQ(desk.files.at(kPath).bytes, kNew);
    EXPECT_EQ(desk.files.size(), 1u);
}

TEST(SaveFile, GoesThroughACheckedTemporaryFileInTheSameFolder) {
    const desktop::Desktop& desk = DiskWithOldFile();
    EXPECT_TRUE(SaveWholeFile(kPath, kNew));
    const std::vector<std::string> expected = {
        "CreateOutput C:\\Songs\\~snd1.tmp",
        "WriteOutput C:\\Songs\\~snd1.tmp 16",
        "FlushOutput C:\\Songs\\~snd1.tmp",
        "CloseOutput C:\\Songs\\~snd1.tmp",
        "ReadWholeFile C:\\Songs\\~snd1.tmp",
        "AttributesOf C:\\Songs\\TUNE.SND",
        "RenameOver C:\\Songs\\~snd1.tmp C:\\Songs\\TUNE.SND",
    };
    EXPECT_EQ(desk.log, expected);
}

TEST(SaveFile, ReplacesReadOnlyHiddenAndSystemFiles) {
    for (std::uint32_t guard = 0; guard < 8; ++guard) {
        const desktop::Desktop& desk = DiskWithOldFile(kAttributeArchive | guard);
        EXPECT_TRUE(SaveWholeFile(kPath, kNew)) << "attributes " << guard;
        EXPECT_EQ(desk.files.at(kPath).bytes, kNew);
        EXPECT_EQ(desk.files.at(kPath).attributes, kAttributeArchive);
        EXPECT_EQ(TemporaryFiles(), 0);
    }
}

TEST(SaveFile, TakesAnotherTemporaryNameWhenOneIsThere) {
    desktop::Desktop& desk = DiskWithOldFile();
    desk.files[L"C:\\Songs\\~snd1.tmp"] = {{1, 2, 3}};
    EXPECT_TRUE(SaveWholeFile(kPath, kNew));
    EXPECT_EQ(desk.files.at(kPath).bytes, kNew);
    EXPECT_EQ(desk.files.at(L"C:\\Songs\\~snd1.tmp").bytes, (Bytes{1, 2, 3}));
}

TEST(SaveFile, GivesUpWhenEightTemporaryNamesAreTaken) {
    for (const int taken : {7, 8}) {
        desktop::Desktop& desk = DiskWithOldFile();
        for (int i = 1; i <= taken; ++i)
            desk.files[L"C:\\Songs\\~snd" + std::to_wstring(i) + L".tmp"] = {{1, 2, 3}};
        EXPECT_EQ(SaveWholeFile(kPath, kNew), taken == 7);
        EXPECT_EQ(desk.files.at(kPath).bytes, taken == 7 ? kNew : kOld);
        EXPECT_EQ(TemporaryFiles(), taken);
    }
}

TEST(SaveFile, InAPathThatStartsWithASlashABackslashIsACharacter) {
    const desktop::Desktop& desk = desktop::Reset();
    EXPECT_TRUE(SaveWholeFile(L"/home/user/A\\B.SND", kNew));
    EXPECT_TRUE(desktop::Asked("CreateOutput /home/user/~snd1.tmp"));
    EXPECT_EQ(desk.files.at(L"/home/user/A\\B.SND").bytes, kNew);
}

TEST(SaveFile, OldWholeOrNewWholeWhenAnyOperationFailsOnce) {
    for (const std::uint32_t attributes : {kAttributeArchive, kAttributeArchive | kAttributeReadOnly}) {
        const int operations = OperationsOfAGoodSave(attributes);
        ASSERT_GE(operations, 7);
        for (int fail_at = 0; fail_at < operations; ++fail_at) {
            desktop::Desktop& desk = DiskWithOldFile(attributes);
            desk.fail_at = fail_at;
            const bool saved = SaveWholeFile(kPath, kNew);
            const std::string where =
                "operation " + std::to_string(fail_at) + ", attributes " + std::to_string(attributes);
            ASSERT_TRUE(desk.files.contains(kPath)) << where;
            EXPECT_EQ(desk.files.at(kPath).bytes, saved ? kNew : kOld) << where;
            EXPECT_EQ(desk.files.at(kPath).attributes, saved ? kAttributeArchive : attributes) << where;
            EXPECT_EQ(TemporaryFiles(), 0) << where;
        }
    }
}

TEST(SaveFile, OldWholeOrNewWholeWhenTheDiskFailsForGood) {
    for (const std::uint32_t attributes : {kAttributeArchive, kAttributeArchive | kAttributeHidden}) {
        const int operations = OperationsOfAGoodSave(attributes);
        for (int fail_at = 0; fail_at < operations; ++fail_at) {
            desktop::Desktop& desk = DiskWithOldFile(attributes);
            desk.fail_at = fail_at;
            desk.fail_for_good = true;
            EXPECT_FALSE(SaveWholeFile(kPath, kNew)) << "operation " << fail_at;
            ASSERT_TRUE(desk.files.contains(kPath));
            EXPECT_EQ(desk.files.at(kPath).bytes, kOld) << "operation " << fail_at;
        }
    }
}

TEST(SaveFile, OldWholeOrNewWholeWhenOneKindOfOperationIsRefused) {
    for (const char* call : {"CreateOutput", "WriteOutput", "FlushOutput", "CloseOutput", "ReadWholeFile",
                             "AttributesOf", "SetAttributesOf", "RenameOver"}) {
        for (const std::uint32_t attributes : {kAttributeArchive, kAttributeArchive | kAttributeReadOnly}) {
            desktop::Desktop& desk = DiskWithOldFile(attributes);
            desk.refused = {call};
            const bool saved = SaveWholeFile(kPath, kNew);
            EXPECT_EQ(desk.files.at(kPath).bytes, saved ? kNew : kOld) << call;
            EXPECT_EQ(desk.files.at(kPath).attributes, saved ? kAttributeArchive : attributes) << call;
            EXPECT_EQ(TemporaryFiles(), 0) << call;
        }
    }
}

TEST(SaveFile, AFullDiskLeavesTheOldFileAtEveryByte) {
    for (std::size_t space = 0; space < kNew.size(); ++space) {
        desktop::Desktop& desk = DiskWithOldFile();
        desk.disk_space = space;
        EXPECT_FALSE(SaveWholeFile(kPath, kNew)) << space << " bytes free";
        EXPECT_EQ(desk.files.at(kPath).bytes, kOld);
        EXPECT_EQ(TemporaryFiles(), 0);
    }
    desktop::Desktop& desk = DiskWithOldFile();
    desk.disk_space = kNew.size();
    EXPECT_TRUE(SaveWholeFile(kPath, kNew));
    EXPECT_EQ(desk.files.at(kPath).bytes, kNew);
}

TEST(SaveFile, OldWholeOrNewWholeWhenTheMachineStopsAtAnyMoment) {
    for (const std::uint32_t attributes : {kAttributeArchive, kAttributeArchive | kAttributeReadOnly}) {
        const int operations = OperationsOfAGoodSave(attributes);
        for (int stop_at = 0; stop_at < operations; ++stop_at) {
            desktop::Desktop& desk = DiskWithOldFile(attributes);
            desk.stop_at = stop_at;
            EXPECT_THROW(SaveWholeFile(kPath, kNew), desktop::MachineStopped) << "operation " << stop_at;
            ASSERT_TRUE(desk.files.contains(kPath)) << "operation " << stop_at;
            EXPECT_EQ(desk.files.at(kPath).bytes, kOld) << "operation " << stop_at;
        }
    }
}

TEST(SaveFile, NothingOrTheWholeFileWhenTheMachineStopsDuringAFirstSave) {
    desktop::Reset();
    ASSERT_TRUE(SaveWholeFile(kPath, kNew));
    const int operations = desktop::Current().file_operations;
    for (int stop_at = 0; stop_at < operations; ++stop_at) {
        desktop::Desktop& desk = desktop::Reset();
        desk.stop_at = stop_at;
        EXPECT_THROW(SaveWholeFile(kPath, kNew), desktop::MachineStopped);
        EXPECT_FALSE(desk.files.contains(kPath)) << "operation " << stop_at;
    }
}

TEST(SaveFile, WhatWasSavedSurvivesAStopRightAfterIt) {
    desktop::Desktop& desk = DiskWithOldFile();
    ASSERT_TRUE(SaveWholeFile(kPath, kNew));
    desk.stop_at = desk.file_operations;
    EXPECT_THROW(FileExists(kPath), desktop::MachineStopped);
    EXPECT_EQ(desk.files.at(kPath).bytes, kNew) << "the bytes were not brought to the disk before the rename";
}

TEST(SaveFile, ReadsBackWhatTheDiskTook) {
    desktop::Desktop& desk = DiskWithOldFile();
    desk.garbles_writes = true;
    EXPECT_FALSE(SaveWholeFile(kPath, kNew));
    EXPECT_EQ(desk.files.at(kPath).bytes, kOld);
    EXPECT_EQ(TemporaryFiles(), 0);
}

TEST(SaveFile, ReadsAByteMoreThanItWroteSoThatALongerFileShows) {
    desktop::Desktop& desk = DiskWithOldFile();
    desk.lengthens_writes = true;
    EXPECT_FALSE(SaveWholeFile(kPath, kNew));
    EXPECT_EQ(desk.files.at(kPath).bytes, kOld);
    EXPECT_EQ(TemporaryFiles(), 0);
}

TEST(SaveFile, ARenameThatAScannerBlocksIsTriedAgain) {
    desktop::Desktop& desk = DiskWithOldFile();
    desk.fail_at = 6; // the rename
    EXPECT_TRUE(SaveWholeFile(kPath, kNew));
    EXPECT_EQ(desk.files.at(kPath).bytes, kNew);
    EXPECT_EQ(TimesAsked("RenameOver"), 2);
    EXPECT_EQ(TimesAsked("PauseBriefly"), 1);
}

TEST(SaveFile, GivesTheReasonOfTheStepThatWasRefused) {
    for (const char* step : {"CreateOutput", "WriteOutput", "FlushOutput", "CloseOutput", "RenameOver"}) {
        desktop::Desktop& desk = DiskWithOldFile();
        desk.files.at(kPath).attributes = kAttributeReadOnly;
        desk.refused.insert(step);
        std::string reason;
        EXPECT_FALSE(SaveWholeFile(kPath, kNew, &reason)) << step;
        // The retries' pauses are asked of the desktop too, but never behind the last try.
        EXPECT_TRUE(reason.starts_with("refused: " + std::string(step))) << reason;
    }
}

TEST(SaveFile, GivesAReasonWhenTheDiskStoresSomethingElse) {
    DiskWithOldFile().garbles_writes = true;
    std::string reason;
    EXPECT_FALSE(SaveWholeFile(kPath, kNew, &reason));
    EXPECT_EQ(reason, "what was written can not be read back");
}

TEST(SaveFile, EveryOperationOfABusyFileIsTriedAgain) {
    for (const std::uint32_t attributes : {kAttributeArchive, kAttributeArchive | kAttributeReadOnly}) {
        const int operations = OperationsOfAGoodSave(attributes);
        for (int fail_at = 0; fail_at < operations; ++fail_at) {
            desktop::Desktop& desk = DiskWithOldFile(attributes);
            desk.fail_at = fail_at;
            const bool closing = [&] {
                const bool saved = SaveWholeFile(kPath, kNew);
                const bool gave_up = desktop::Asked("CloseOutput") && !desktop::Asked("ReadWholeFile");
                EXPECT_EQ(saved, !gave_up) << "operation " << fail_at;
                return gave_up;
            }();
            EXPECT_EQ(TimesAsked("PauseBriefly"), closing ? 0 : 1) << "operation " << fail_at;
        }
    }
}

TEST(SaveFile, WhatStaysBusyIsTriedForOneAndAHalfSecondsWithGrowingPauses) {
    for (const char* call : {"CreateOutput", "FlushOutput", "ReadWholeFile", "RenameOver"}) {
        desktop::Desktop& desk = DiskWithOldFile();
        desk.refused = {call};
        EXPECT_FALSE(SaveWholeFile(kPath, kNew)) << call;
        int total = 0, last = 0;
        for (const std::string& line : desk.log) {
            if (!line.starts_with("PauseBriefly ")) continue;
            const int pause = std::stoi(line.substr(line.find(' ')));
            EXPECT_GT(pause, last) << call;
            total += last = pause;
        }
        EXPECT_EQ(total, 1500) << call;
        EXPECT_EQ(desk.files.at(kPath).bytes, kOld);
        EXPECT_EQ(TemporaryFiles(), 0) << call;
    }
}

TEST(SaveFile, WhatIsRefusedForGoodIsNotWaitedFor) {
    for (const char* call : {"CreateOutput", "WriteOutput", "FlushOutput", "CloseOutput", "ReadWholeFile",
                             "SetAttributesOf", "RenameOver"}) {
        desktop::Desktop& desk = DiskWithOldFile(kAttributeArchive | kAttributeReadOnly);
        desk.refused = {call};
        desk.failing_is_busy = false;
        SaveWholeFile(kPath, kNew);
        EXPECT_EQ(TimesAsked("PauseBriefly"), 0) << call;
        EXPECT_EQ(desk.files.at(kPath).bytes, kOld);
    }
}

TEST(SaveFile, AFolderThatRefusesGivesUpSoon) {
    desktop::Desktop& desk = DiskWithOldFile();
    desk.refusing_folders.insert(L"C:\\Songs");
    EXPECT_FALSE(SaveWholeFile(kPath, kNew));
    EXPECT_EQ(desk.files.at(kPath).bytes, kOld);
    EXPECT_LE(TimesAsked("CreateOutput"), 10);
}

TEST(SaveFile, AGuardedFolderAtThePathKeepsItsAttributes) {
    DiskWithOldFile(kAttributeDirectory | kAttributeReadOnly).refused = {"RenameOver"};
    EXPECT_FALSE(SaveWholeFile(kPath, kNew));
    EXPECT_FALSE(desktop::Asked("SetAttributesOf C:\\Songs\\TUNE.SND"));
}

TEST(SaveFile, AFolderAtThePathIsNotReplaced) {
    desktop::Desktop& desk = desktop::Reset();
    desk.folders.insert(kPath);
    EXPECT_FALSE(SaveWholeFile(kPath, kNew));
    EXPECT_EQ(TemporaryFiles(), 0);
}

TEST(SweepAbandonedSaves, DeletesOnlyOurOwnFilesOlderThanADay) {
    desktop::Desktop& desk = desktop::Reset();
    constexpr std::uint64_t kDay = 24 * 60 * 60;
    const auto file = [&](const wchar_t* path, std::uint64_t age) { desk.files[path] = {{1}, 32, age}; };
    file(L"C:\\Songs\\~snd17.tmp", kDay + 1);
    file(L"C:\\Songs\\~snd18.tmp", kDay);
    file(L"C:\\Songs\\~snd19.tmp", 5);
    file(L"C:\\Songs\\~snd.tmp", 9 * kDay);
    file(L"C:\\Songs\\~sndbox.tmp", 9 * kDay);
    file(L"C:\\Songs\\~snd17.tmp.snd", 9 * kDay);
    file(L"C:\\Songs\\TUNE.SND", 9 * kDay);
    file(L"C:\\Other\\~snd17.tmp", 9 * kDay);
    for (const wchar_t* folder : {L"C:\\Songs\\", L"C:\\Songs"}) {
        SweepAbandonedSaves(folder);
        EXPECT_FALSE(desk.files.contains(L"C:\\Songs\\~snd17.tmp"));
        EXPECT_EQ(desk.files.size(), 7u);
        file(L"C:\\Songs\\~snd17.tmp", kDay + 1);
    }
}

TEST(DeleteFileIfExists, DeletesHiddenSystemAndReadOnlyFiles) {
    for (std::uint32_t attributes = 0; attributes < 8; ++attributes) {
        const desktop::Desktop& desk = DiskWithOldFile(attributes);
        DeleteFileIfExists(kPath);
        EXPECT_FALSE(desk.files.contains(kPath)) << "attributes " << attributes;
        EXPECT_TRUE(desktop::Asked("FileExists C:\\Songs\\TUNE.SND"));
        EXPECT_TRUE(desktop::Asked("SetAttributesOf C:\\Songs\\TUNE.SND 32"));
    }
}

TEST(DeleteFileIfExists, LeavesWhatIsNotThereAlone) {
    const desktop::Desktop& desk = desktop::Reset();
    DeleteFileIfExists(kPath);
    EXPECT_EQ(desk.log, std::vector<std::string>{"FileExists C:\\Songs\\TUNE.SND"});
}

TEST(DeleteFileIfExists, IgnoresEveryError) {
    for (const char* call : {"FileExists", "SetAttributesOf", "RemoveFile"}) {
        desktop::Desktop& desk = DiskWithOldFile(kAttributeReadOnly);
        desk.refused = {call};
        DeleteFileIfExists(kPath);
        EXPECT_EQ(desk.files.at(kPath).bytes, kOld) << call;
    }
}

// Melodies.

namespace {

/// Three notes; the second one's pitch may be one that no file holds.
FileList ThreeNotes(std::uint16_t pitch = 30) {
    FileList list{};
    list[0] = {10, 26};
    list[1] = {10, pitch};
    list[2] = {0, 40};
    return list;
}

/// 56 units are four records of two bytes: 127 such notes fit the play block.
FileList TooManyNotes() {
    FileList list{};
    std::fill_n(list.begin(), 300, FileEntry{19, 39});
    return list;
}

} // namespace

TEST(SoundDataToFile, WritesTheMelodyAndSaysHowManyEntriesAreInTheFile) {
    const desktop::Desktop& desk = DiskWithOldFile();
    const TimingTables tables = BuildTimingTables();
    std::int16_t written = -1;
    EXPECT_EQ(SoundDataToFile(tables, 120, ThreeNotes(), kPath, written), kSndDone);
    EXPECT_EQ(written, 3);
    EXPECT_EQ(desk.files.at(kPath).bytes, EncodeSnd(tables, 120, ThreeNotes()).bytes);
    EXPECT_EQ(TemporaryFiles(), 0);
}

TEST(SoundDataToFile, AFullPlayBlockIsWrittenAsFarAsItFits) {
    const desktop::Desktop& desk = DiskWithOldFile();
    const TimingTables tables = BuildTimingTables();
    std::int16_t written = -1;
    EXPECT_EQ(SoundDataToFile(tables, 120, TooManyNotes(), kPath, written), kSndFull);
    EXPECT_EQ(written, 127);
    EXPECT_EQ(desk.files.at(kPath).bytes, EncodeSnd(tables, 120, TooManyNotes()).bytes);
}

TEST(SoundDataToFile, WhatNoFileHoldsWritesNothing) {
    const TimingTables tables = BuildTimingTables();
    const struct {
        std::int16_t tempo;
        FileList list;
        SndResult result;
    } cases[] = {{121, ThreeNotes(), kSndNotFound}, {120, ThreeNotes(256), kSndWriteError}};
    for (const auto& [tempo, list, result] : cases) {
        const desktop::Desktop& desk = DiskWithOldFile();
        std::int16_t written = -1;
        EXPECT_EQ(SoundDataToFile(tables, tempo, list, kPath, written), result);
        EXPECT_EQ(written, 0);
        EXPECT_EQ(desk.files.at(kPath).bytes, kOld);
        EXPECT_TRUE(desk.log.empty()) << "the disk is not even asked";
    }
}

TEST(SoundDataToFile, ADiskThatRefusesIsAWriteErrorAndTheOldFileStays) {
    desktop::Desktop& desk = DiskWithOldFile();
    desk.refused = {"RenameOver"};
    std::int16_t written = -1;
    EXPECT_EQ(SoundDataToFile(BuildTimingTables(), 120, ThreeNotes(), kPath, written), kSndWriteError);
    EXPECT_EQ(desk.files.at(kPath).bytes, kOld);
    EXPECT_EQ(TemporaryFiles(), 0);
}

TEST(FileToSoundData, TellsAMissingFileFromABadOne) {
    desktop::Desktop& desk = desktop::Reset();
    std::int16_t tempo = 0;
    FileList list{};
    EXPECT_EQ(FileToSoundData(tempo, list, kPath), kSndNotFound);
    EXPECT_FALSE(desktop::Asked("ReadWholeFile")) << "it may be the name of a device";
    desk.files[kPath] = {{7, 0, 8, 0, 255}};
    EXPECT_EQ(FileToSoundData(tempo, list, kPath), kSndBadFormat);
    desk.files[kPath] = {{7, 0, 8, 0, 255, 255, 0, 0, 60, 0, 40, 3, 40, 3, 255, 255}};
    EXPECT_EQ(FileToSoundData(tempo, list, kPath), kSndDone);
    EXPECT_EQ(tempo, 60);
    EXPECT_EQ(list[0], (FileEntry{3, 40}));
    EXPECT_EQ(list[1], (FileEntry{3, 40}));
    EXPECT_EQ(list[2].code, kEmpty);
}

TEST(FileToSoundData, FindsAHiddenFile) {
    desktop::Desktop& desk = desktop::Reset();
    desk.files[kPath] = {kNew, kAttributeHidden | kAttributeSystem};
    std::int16_t tempo = 0;
    FileList list{};
    EXPECT_EQ(FileToSoundData(tempo, list, kPath), kSndDone);
}

TEST(FileToSoundData, AHugeFileIsReadOnlyAsFarAsASoundFileCanReach) {
    desktop::Desktop& desk = desktop::Reset();
    desk.files[kPath] = {Bytes(1000000, 1)};
    std::int16_t tempo = 0;
    FileList list{};
    EXPECT_EQ(FileToSoundData(tempo, list, kPath), kSndBadFormat);
    EXPECT_EQ(desk.read_limit, 2u * 1029) << "as much as two of the editor's buffers hold";
}

} // namespace tonex::file_services_test
