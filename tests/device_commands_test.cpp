// The organiser's side of the File menu on a library whose every answer the test bends.
#include "link/device_commands.h"
#include "link/discovery_commands.h"
#include "platform/text.h"
#include "score/document_commands.h"
#include "score/snd_file.h"
#include "tests/desktop/desktop.h"
#include "tests/set_up_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tonex::device_commands_test {

using namespace tonex::testing;

namespace {

using Bytes = std::vector<std::uint8_t>;
using Texts = std::vector<std::wstring>;

constexpr const wchar_t* kSoundFolder = L"C:\\Link\\pcferry\\cache\\System\\sound";
constexpr const wchar_t* kCacheTune = L"C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND";
constexpr const char* kDeviceTune = "\\System\\sound\\TUNE.SND";
constexpr const wchar_t* kLastFile = L"Corvane\\Tonex\\File1";

struct Device : ::testing::Test {
    std::unique_ptr<sndmain> owner = SetUpWindow();
    sndmain& window = *owner;
    desktop::Desktop& desk = desktop::Current();

    Device() {
        desktop::InstallLinkSoftware();
        DiscoverLinkSoftware(window);
        desk.log.clear();
    }
    void Compose(int notes = 3) {
        FillScore(window, notes);
        window.score.changed = true;
        window.Caption = L"before";
    }
    void ComposeOnDevice(const wchar_t* path = kCacheTune) {
        Compose();
        window.document.current_path = path;
        window.document.location_flag = 0;
    }
    Bytes EncodedScore() const { return EncodeSnd(window.tables, 120, BuildSaveList(window.score)).bytes; }
    int TemporaryFiles() const {
        return static_cast<int>(std::count_if(desk.files.begin(), desk.files.end(), [](const auto& file) {
            return file.first.starts_with(L"C:\\Temp\\") || file.first.find(L"~snd") != std::wstring::npos;
        }));
    }
    void ExpectUntouched(const wchar_t* path, std::int16_t location) {
        EXPECT_EQ(window.score.end_count, 4);
        EXPECT_TRUE(window.score.changed);
        EXPECT_EQ(window.document.current_path, path);
        EXPECT_EQ(window.document.location_flag, location);
        EXPECT_EQ(window.Caption, L"before");
        EXPECT_FALSE(desk.settings.contains(kLastFile));
    }
};

} // namespace

// Save to Veloxa.

TEST_F(Device, SaveDeletesTheCacheCopyConvertsAndHandsOver) {
    ComposeOnDevice();
    desk.files[kCacheTune] = {{1, 2, 3}, 1 | 2};
    window.item(MenuItem::mnuCut).Enabled = false;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_TRUE(window.item(MenuItem::mnuCut).Enabled) << "the enabling is refreshed";
    const auto place = [&](const std::string& beginning) {
        const auto found = std::find_if(desk.log.begin(), desk.log.end(),
                                        [&](const std::string& line) { return line.starts_with(beginning); });
        EXPECT_NE(found, desk.log.end()) << beginning;
        return found - desk.log.begin();
    };
    EXPECT_LT(place("RemoveFile C:\\Link\\pcferry\\cache"),
              place("Cor_ConvPathCacheToCorvane C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND 200"));
    EXPECT_LT(place("Cor_ConvPathCacheToCorvane"), place("CreateTemporaryFile C:\\Temp\\ Snd"));
    EXPECT_LT(place("CreateTemporaryFile"), place("Cor_PutFile \\System\\sound\\TUNE.SND C:\\Temp\\Snd"));
    EXPECT_LT(place("Cor_PutFile"), place("RemoveFile C:\\Temp\\Snd"));
    EXPECT_LT(place("RemoveFile C:\\Temp\\Snd"), place("WriteSetting Corvane\\Tonex\\File1"));
    EXPECT_EQ(desk.link.uploads.at(kDeviceTune), EncodedScore());
    EXPECT_EQ(window.Caption, L"Sound Editor - Veloxa:TUNE.SND");
    EXPECT_EQ(desk.settings.at(kLastFile),
              L"0,Veloxa:TUNE.SND,C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND");
    EXPECT_EQ(window.document.device_path, L"\\System\\sound\\TUNE.SND");
    EXPECT_FALSE(window.score.changed);
    EXPECT_TRUE(window.link.device_work);
    EXPECT_EQ(TemporaryFiles(), 0);
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(Device, SaveOnAnUntitledScoreBehavesExactlyLikeSaveAs) {
    std::vector<std::string> logs[2];
    Bytes uploads[2];
    for (int i = 0; i < 2; ++i) {
        Compose();
        window.link.CacheSoundDir = kSoundFolder;
        window.document = {};
        desk.files.clear();
        desk.unique_number = 0;
        desk.log.clear();
        desk.link.save_choices = {kDeviceTune};
        (i == 0 ? mnuFileOverWriteZ730_Click : mnuFileSaveWithNameZ730_Click)(window);
        logs[i] = desk.log;
        uploads[i] = desk.link.uploads.at(kDeviceTune);
        EXPECT_EQ(window.document.current_path, kCacheTune);
        EXPECT_EQ(window.document.location_flag, 0);
    }
    EXPECT_EQ(logs[0], logs[1]);
    EXPECT_EQ(uploads[0], uploads[1]);
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(Device, SaveOfAPcFileRunsSaveAs) {
    Compose();
    window.document.current_path = L"C:\\Songs\\SONG.SND";
    desk.files[L"C:\\Songs\\SONG.SND"] = {{1, 2, 3}};
    desk.link.save_choices = {std::nullopt};
    mnuFileOverWriteZ730_Click(window);
    EXPECT_TRUE(desktop::Asked("Cor_PIMSaveFileDialog \\System\\sound\\SONG.SND snd 200"));
    EXPECT_EQ(desk.files.at(L"C:\\Songs\\SONG.SND").bytes, (Bytes{1, 2, 3}));
    ExpectUntouched(L"C:\\Songs\\SONG.SND", 1);
}

TEST_F(Device, SaveOfANameOfNineCharactersIsToldAndRunsSaveAs) {
    const wchar_t* path = L"C:\\Link\\pcferry\\cache\\System\\sound\\NINECHARS.SND";
    ComposeOnDevice(path);
    desk.files[path] = {{1, 2, 3}};
    desk.link.save_choices = {std::nullopt};
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"File name cannot exceed 8 characters.  Change the file name."});
    EXPECT_TRUE(desktop::Asked("Cor_PIMSaveFileDialog \\System\\sound\\NINECHARS.SND snd 200"));
    EXPECT_TRUE(desk.files.contains(path));
    ExpectUntouched(path, 0);
}

TEST_F(Device, ACountOfZeroEndsSaveWithTheCacheCopyAlreadyDeleted) {
    // The order is kept as it is.
    ComposeOnDevice();
    desk.files[kCacheTune] = {{1, 2, 3}};
    desk.link.conversion_count = 0;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_FALSE(desk.files.contains(kCacheTune));
    EXPECT_FALSE(desktop::Asked("Cor_PutFile"));
    EXPECT_TRUE(desk.messages.empty());
    ExpectUntouched(kCacheTune, 0);
}

TEST_F(Device, AnyFailureBehindTheDeletionMakesAnUnchangedMelodyCountAsChanged) {
    const std::function<void()> failures[] = {
        [&] { desk.link.put_result = 9; },      [&] { desk.link.conversion_count = 0; },
        [&] { desk.temporary_folder.clear(); }, [&] { desk.refused = {"CreateTemporaryFile"}; },
        [&] { desk.refused = {"RenameOver"}; }, [&] { window.TempoCombo.Text = L"121"; },
    };
    for (const auto& fail : failures) {
        desk.link = {};
        desk.refused.clear();
        desk.temporary_folder = L"C:\\Temp\\";
        ComposeOnDevice();
        window.TempoCombo.Text = L" 120";
        window.score.changed = false;
        desk.files[kCacheTune] = {{1, 2, 3}};
        fail();
        mnuFileOverWriteZ730_Click(window);
        EXPECT_FALSE(desk.files.contains(kCacheTune));
        EXPECT_TRUE(window.score.changed) << &fail - failures;
    }
}

TEST_F(Device, AFailedSaveUnderAnotherNameCountsAsChangedToo) {
    ComposeOnDevice();
    window.score.changed = false;
    desk.link.save_choices = {"\\System\\sound\\OTHER.SND"};
    desk.link.put_result = 9;
    mnuFileSaveWithNameZ730_Click(window);
    EXPECT_TRUE(window.score.changed);
}

TEST_F(Device, ANameThatTheCodePageSpellsAsAnotherNeverTouchesTheOther) {
    desk.code_page = 1252;
    const std::wstring other = std::wstring(kSoundFolder) + L"\\a.SND";
    const std::wstring own = std::wstring(kSoundFolder) + L"\\\x0105.SND";
    desk.files[other] = {{1, 2, 3}};
    desk.files[own] = {{4, 5, 6}};
    ComposeOnDevice(own.c_str());
    desk.link.save_choices = {std::nullopt};
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desk.files.at(other).bytes, (Bytes{1, 2, 3}));
    EXPECT_EQ(desk.files.at(own).bytes, (Bytes{4, 5, 6})) << "found before anything is deleted";
    EXPECT_FALSE(desktop::Asked("Cor_PutFile"));
    EXPECT_TRUE(desktop::Asked("Cor_PIMSaveFileDialog \\System\\sound\\Untitled"))
        << "another name is asked for";
}

TEST_F(Device, ALastDocumentThatTheCodePageSpellsAsAnotherIsNotReopened) {
    desk.code_page = 1252;
    desk.files[std::wstring(kSoundFolder) + L"\\a.SND"] = {{1, 2, 3}};
    desk.files[std::wstring(kSoundFolder) + L"\\\x0105.SND"] = {{1, 2, 3}};
    desk.settings[kLastFile] = L"0,Veloxa:\x0105.SND," + std::wstring(kSoundFolder) + L"\\\x0105.SND";
    EXPECT_FALSE(ReopenLastFile(window, L"Tonex"));
    EXPECT_EQ(window.document.current_path, L"");
}

TEST_F(Device, ARefusedUploadLeavesTheMelodyAndKeepsAsking) {
    ComposeOnDevice();
    desk.link.put_result = 9;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"File translate error when upload to Veloxa!"});
    EXPECT_EQ(window.score.end_count, 4);
    EXPECT_TRUE(window.score.changed);
    EXPECT_EQ(window.document.current_path, kCacheTune);
    EXPECT_EQ(window.Caption, L"Sound Editor - Veloxa:TUNE.SND");
    EXPECT_FALSE(window.link.device_work);
    EXPECT_EQ(TemporaryFiles(), 0);
    const auto place = [&](const std::string& beginning) {
        return std::find_if(desk.log.begin(), desk.log.end(),
                            [&](const std::string& line) { return line.starts_with(beginning); });
    };
    EXPECT_LT(place("ShowMessage File translate error"), place("RemoveFile C:\\Temp\\Snd"))
        << "it is told while the file is still there";

    desk.link.put_result = 0;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_FALSE(window.score.changed);
    EXPECT_EQ(desk.link.uploads.at(kDeviceTune), EncodedScore());
}

TEST_F(Device, ADiskThatRefusesTheTemporaryFileLeavesEverything) {
    ComposeOnDevice();
    window.document.device_path = L"\\before";
    desk.refused = {"CreateTemporaryFile"};
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Write error!"});
    EXPECT_EQ(window.document.device_path, L"\\before");
    ExpectUntouched(kCacheTune, 0);
}

TEST_F(Device, ATempoOutsideTheListUploadsNothingAndKeepsTheChangedFlag) {
    ComposeOnDevice();
    window.TempoCombo.Text = L"121";
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Read error!"});
    EXPECT_FALSE(desktop::Asked("Cor_PutFile"));
    EXPECT_TRUE(window.score.changed);
}

TEST_F(Device, ATempoOutsideTheListMakesNoTemporaryFile) {
    ComposeOnDevice();
    window.TempoCombo.Text = L"121";
    desk.temporary_folder.clear(); // the tempo counts for more than what the disk would refuse
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Read error!"});
    EXPECT_FALSE(desktop::Asked("CreateTemporaryFile"));
}

TEST_F(Device, AMelodyThatNoFileHoldsIsToldOfBeforeAnythingIsDeleted) {
    for (const bool by_name : {false, true}) {
        ComposeOnDevice();
        desk.messages.clear();
        desk.log.clear();
        desk.files[kCacheTune] = {{1, 2, 3}};
        desk.link.save_choices = {kDeviceTune};
        window.score.sound[1].pitch = 257;
        by_name ? mnuFileSaveWithNameZ730_Click(window) : mnuFileOverWriteZ730_Click(window);
        EXPECT_EQ(desktop::Told(), Texts{L"The pitch of entry 2 is out of range and cannot be saved."});
        EXPECT_EQ(window.grdScore.view.Col, 1);
        EXPECT_EQ(desk.files.at(kCacheTune).bytes, (Bytes{1, 2, 3}));
        EXPECT_FALSE(desktop::Asked("CreateTemporaryFile"));
        EXPECT_FALSE(desktop::Asked("Cor_PutFile"));
        ExpectUntouched(kCacheTune, 0);
    }
}

TEST_F(Device, AMelodyThatNoFileHoldsCountsNoMoreAsChangedThanBefore) {
    ComposeOnDevice();
    window.score.changed = false;
    window.score.sound[1].code = 41;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Entry 2 is unknown and cannot be saved."});
    EXPECT_FALSE(window.score.changed);
}

TEST_F(Device, AMelodyThatDoesNotFitIsHandedOverAsFarAsItFits) {
    // 56 units are four records of two bytes: 127 such notes fit the play block.
    ComposeOnDevice();
    FillScore(window, 300);
    for (std::size_t i = 0; i < 300; ++i)
        window.score.sound[i] = MakeNote(window, 20, 40);
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Cannot input the last173music notes."});
    EXPECT_EQ(desk.link.uploads.at(kDeviceTune), EncodedScore());
    EXPECT_FALSE(window.score.changed);
    EXPECT_EQ(TemporaryFiles(), 0);
}

TEST_F(Device, AMelodyThatDoesNotFitAndIsRefusedIsToldOfTwice) {
    ComposeOnDevice();
    FillScore(window, 300);
    for (std::size_t i = 0; i < 300; ++i)
        window.score.sound[i] = MakeNote(window, 20, 40);
    desk.link.put_result = 9;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desktop::Told(), (Texts{L"File translate error when upload to Veloxa!",
                                      L"Cannot input the last173music notes."}));
    EXPECT_TRUE(window.score.changed);
}

TEST_F(Device, AnUploadGoesThroughATemporaryFileWithThePrefixSnd) {
    ComposeOnDevice();
    mnuFileOverWriteZ730_Click(window);
    EXPECT_TRUE(desktop::Asked("CreateTemporaryFile C:\\Temp\\ Snd"));
    EXPECT_TRUE(desktop::Asked("Cor_PutFile \\System\\sound\\TUNE.SND C:\\Temp\\Snd1.tmp 0"));
    EXPECT_FALSE(desktop::Asked("CreateOutput C:\\Link")) << "the cache is the library's to fill";
    EXPECT_EQ(TemporaryFiles(), 0);
}

TEST_F(Device, ATemporaryFolderInAnotherScriptIsSpelledByItsShortName) {
    desk.code_page = 1252;
    desk.temporary_folder = L"C:\\Users\\\x5F20\x4E09\\Temp\\";
    desk.short_names[desk.temporary_folder] = L"C:\\Users\\5F20~1\\Temp\\";
    ComposeOnDevice();
    mnuFileOverWriteZ730_Click(window);
    EXPECT_TRUE(desktop::Asked("Cor_PutFile \\System\\sound\\TUNE.SND C:\\Users\\5F20~1\\Temp\\Snd1.tmp 0"));
    EXPECT_EQ(desk.link.uploads.at(kDeviceTune), EncodedScore());
    EXPECT_FALSE(window.score.changed);
    EXPECT_TRUE(desk.messages.empty());
    EXPECT_EQ(desk.files.size(), 1u) << "the cache's copy alone";
}

TEST_F(Device, WhereTheDiskKeepsNoShortNamesTheUploadLiesInTheInstallationFolder) {
    desk.code_page = 1252;
    desk.temporary_folder = L"C:\\Users\\\x5F20\x4E09\\Temp\\";
    ComposeOnDevice();
    mnuFileOverWriteZ730_Click(window);
    EXPECT_TRUE(desktop::Asked("Cor_PutFile \\System\\sound\\TUNE.SND C:\\Link\\Snd1.tmp 0"));
    EXPECT_EQ(desk.link.uploads.at(kDeviceTune), EncodedScore());
    EXPECT_FALSE(window.score.changed);
    EXPECT_TRUE(desk.messages.empty());
    EXPECT_EQ(desk.files.size(), 1u) << "the cache's copy alone";
}

TEST_F(Device, AnUploadThatIsHeldIsDeletedAtTheNextOccasion) {
    ComposeOnDevice();
    desk.refused = {"RemoveFile"};
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(window.leftovers, Texts{L"C:\\Temp\\Snd1.tmp"});
    EXPECT_EQ(TemporaryFiles(), 1);
    EXPECT_FALSE(window.score.changed) << "the device has it";
}

TEST_F(Device, NoTemporaryFolderIsAWriteError) {
    ComposeOnDevice();
    desk.temporary_folder.clear();
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Write error!"});
    EXPECT_FALSE(desktop::Asked("CreateTemporaryFile"));
    EXPECT_FALSE(desktop::Asked("Cor_PutFile"));
    ExpectUntouched(kCacheTune, 0);
}

TEST_F(Device, AFullDiskIsAWriteErrorWithNothingLeft) {
    ComposeOnDevice();
    desk.disk_space = 5;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Write error!"});
    EXPECT_FALSE(desktop::Asked("Cor_PutFile"));
    EXPECT_EQ(TemporaryFiles(), 0);
    ExpectUntouched(kCacheTune, 0);
}

TEST_F(Device, NoFailingDiskOperationLeavesATemporaryFileBehind) {
    for (int fail_at = 0; fail_at < 15; ++fail_at) {
        ComposeOnDevice();
        desk.messages.clear();
        desk.link.uploads.clear();
        desk.fail_at = desk.file_operations + fail_at;
        const bool taken = SaveToDevice(window);
        desk.fail_at = -1;
        EXPECT_EQ(desktop::Told(), taken ? Texts{} : Texts{L"Write error!"}) << "operation " << fail_at;
        EXPECT_EQ(desk.link.uploads.size(), taken ? 1u : 0u) << "operation " << fail_at;
        EXPECT_EQ(window.score.changed, !taken) << "operation " << fail_at;
        EXPECT_EQ(window.document.current_path, kCacheTune);
        // A scanner that blocks the deletion for a moment is waited for.
        EXPECT_EQ(TemporaryFiles(), 0) << "operation " << fail_at;
        desk.log.clear();
    }
}

TEST_F(Device, SaveToDeviceSaysWhetherTheDeviceTookTheScore) {
    ComposeOnDevice();
    EXPECT_TRUE(SaveToDevice(window));
    desk.link.put_result = 1;
    EXPECT_FALSE(SaveToDevice(window));
    desk.link.conversion_count = 0;
    EXPECT_FALSE(SaveToDevice(window));
}

TEST_F(Device, SaveToDeviceIsTrueOnlyWhereItCameToTheEnd) {
    const struct {
        std::function<void()> bend;
        bool saved, saved_by_name;
    } cases[] = {
        {[] {}, true, true},
        {[&] { window.link_library.Cor_PutFile = nullptr; }, false, false},
        {[&] { desk.link.conversion_count = 0; }, false, false},
        {[&] { window.score.sound[1].pitch = 257; }, false, false},
        {[&] { desk.link.save_choices = {std::nullopt}; }, true, false},
        {[&] { window.link_library.Cor_ConvPathCorvaneToCache = nullptr; }, true, false},
    };
    for (const auto& [bend, saved, saved_by_name] : cases) {
        for (const bool by_name : {false, true}) {
            desk.link = {};
            window.link_library = LoadLinkLibrary(L"C:\\Link");
            window.link.CacheSoundDir = kSoundFolder;
            ComposeOnDevice(by_name ? L"" : kCacheTune);
            desk.link.save_choices = {kDeviceTune};
            bend();
            EXPECT_EQ(SaveToDevice(window), by_name ? saved_by_name : saved) << &bend - &cases[0].bend;
        }
    }
}

// Open on Veloxa.

TEST_F(Device, OpenLoadsTheChosenFile) {
    ComposeOnDevice();
    const Bytes bytes = EncodedScore();
    desk.files[L"C:\\Link\\pcferry\\cache\\System\\other\\SONG.SND"] = {bytes};
    window.document = {};
    ClearAll(window);
    desk.link.open_choices = {"\\System\\other\\SONG.SND"};
    mnuFileOpenZ730_Click(window);
    EXPECT_TRUE(desktop::Asked("Cor_ConvPathCacheToCorvane C:\\Link\\pcferry\\cache\\System\\sound 200"));
    EXPECT_TRUE(desktop::Asked("Cor_PIMOpenFileDialog \\System\\sound snd 200"));
    EXPECT_TRUE(desktop::Asked("Cor_ConvPathCorvaneToCache \\System\\other\\SONG.SND 200"));
    EXPECT_EQ(window.score.end_count, 4);
    EXPECT_EQ(window.document.location_flag, 0);
    EXPECT_EQ(window.document.current_path, L"C:\\Link\\pcferry\\cache\\System\\other\\SONG.SND");
    EXPECT_EQ(window.link.CacheSoundDir, L"C:\\Link\\pcferry\\cache\\System\\other\\");
    EXPECT_EQ(window.Caption, L"Sound Editor - Veloxa:SONG.SND");
    EXPECT_EQ(desk.settings.at(kLastFile),
              L"0,Veloxa:SONG.SND,C:\\Link\\pcferry\\cache\\System\\other\\SONG.SND");
    EXPECT_FALSE(window.link.device_work);
}

TEST_F(Device, OpenAsksToSaveFirst) {
    Compose();
    desk.answers = {MessageAnswer::Cancel};
    mnuFileOpenZ730_Click(window);
    EXPECT_FALSE(desktop::Asked("Cor_"));
    EXPECT_EQ(window.score.end_count, 4);
}

TEST_F(Device, OpenEndsSilentlyOnCancelAndOnPathsThatDoNotConvert) {
    ComposeOnDevice();
    const auto open = [&] {
        desk.answers = {MessageAnswer::No};
        desk.messages.clear();
        mnuFileOpenZ730_Click(window);
        EXPECT_EQ(desk.messages.size(), 1u); // the prompt
        ExpectUntouched(kCacheTune, 0);
        EXPECT_EQ(window.link.CacheSoundDir, kSoundFolder);
    };
    desk.link.open_choices = {std::nullopt};
    open();
    desk.link.conversion_count = 0;
    open();
    desk.link.conversion_count = -5;
    open();
    desk.link.conversion_count.reset();
    desk.link.conversion_bytes = std::string(1, '\0');
    open();
}

TEST_F(Device, OpenOfAChoiceThatHasNoPathInTheCacheLeavesTheMelody) {
    desk.link.missing = {"Cor_ConvPathCorvaneToCache"};
    window.link_library = LoadLinkLibrary(L"C:\\Link");
    ComposeOnDevice();
    desk.answers = {MessageAnswer::No};
    desk.link.open_choices = {kDeviceTune};
    mnuFileOpenZ730_Click(window);
    EXPECT_TRUE(desktop::Asked("Cor_PIMOpenFileDialog"));
    EXPECT_EQ(window.link.CacheSoundDir, kSoundFolder);
    ExpectUntouched(kCacheTune, 0);
}

TEST_F(Device, AnyAnswerOfADialogButZeroIsAChoice) {
    desk.files[kCacheTune] = {EncodedScore()};
    desk.link.dialog_result = -1;
    desk.link.open_choices = {kDeviceTune};
    mnuFileOpenZ730_Click(window);
    EXPECT_EQ(window.document.current_path, kCacheTune);
    EXPECT_EQ(window.Caption, L"Sound Editor - Veloxa:TUNE.SND");
}

TEST_F(Device, OpenOfAFileThatIsGoneLeavesAnUntitledPcDocument) {
    desk.link.open_choices = {kDeviceTune};
    mnuFileOpenZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Read error!"});
    EXPECT_EQ(window.document.location_flag, 1);
    EXPECT_EQ(window.document.current_path, L"");
    EXPECT_EQ(window.Caption, L"Sound Editor - Untitled");
}

// Save to Veloxa as.

TEST_F(Device, SaveAsProposesTheNameOrUntitled) {
    Compose();
    desk.link.save_choices = {std::nullopt, std::nullopt, std::nullopt};
    mnuFileSaveWithNameZ730_Click(window);
    EXPECT_TRUE(desktop::Asked("Cor_PIMSaveFileDialog \\System\\sound\\Untitled snd 200"));
    window.document.current_path = L"D:\\x\\SONG.SND";
    mnuFileSaveWithNameZ730_Click(window);
    EXPECT_TRUE(desktop::Asked("Cor_PIMSaveFileDialog \\System\\sound\\SONG.SND snd 200"));
    // A folder that already ends in a backslash gets no second one.
    window.link.CacheSoundDir = L"C:\\Link\\pcferry\\cache\\System\\other\\";
    mnuFileSaveWithNameZ730_Click(window);
    EXPECT_TRUE(desktop::Asked("Cor_PIMSaveFileDialog \\System\\other\\SONG.SND snd 200"));
    EXPECT_TRUE(window.score.changed);
}

TEST_F(Device, SaveAsInAFolderThatIsNotTheDevicesAsksForNoName) {
    Compose();
    desk.link.conversion_count = 0;
    mnuFileSaveWithNameZ730_Click(window);
    EXPECT_FALSE(desktop::Asked("Cor_PIMSaveFileDialog"));
    ExpectUntouched(L"", 1);
}

TEST_F(Device, SaveAsReplacesTheCacheCopyAndHandsOver) {
    Compose();
    window.document.current_path = L"D:\\x\\SONG.SND";
    const wchar_t* path = L"C:\\Link\\pcferry\\cache\\System\\other\\NEW.SND";
    desk.files[path] = {{1, 2, 3}, 1};
    desk.link.save_choices = {"\\System\\other\\NEW.SND"};
    mnuFileSaveWithNameZ730_Click(window);
    EXPECT_TRUE(desktop::Asked("RemoveFile C:\\Link\\pcferry\\cache\\System\\other\\NEW.SND"));
    EXPECT_EQ(desk.link.uploads.at("\\System\\other\\NEW.SND"), EncodedScore());
    EXPECT_EQ(window.document.current_path, path);
    EXPECT_EQ(window.document.location_flag, 0);
    EXPECT_EQ(window.document.device_path, L"\\System\\other\\NEW.SND");
    EXPECT_EQ(window.link.CacheSoundDir, L"C:\\Link\\pcferry\\cache\\System\\other\\");
    EXPECT_EQ(window.Caption, L"Sound Editor - Veloxa:NEW.SND");
    EXPECT_FALSE(window.score.changed);
}

TEST_F(Device, ADiskThatRefusesSaveAsLeavesThePcDocument) {
    Compose();
    window.document.current_path = L"D:\\x\\SONG.SND";
    desk.link.save_choices = {kDeviceTune};
    desk.refused = {"CreateTemporaryFile"};
    mnuFileSaveWithNameZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Write error!"});
    EXPECT_EQ(window.document.device_path, L"");
    ExpectUntouched(L"D:\\x\\SONG.SND", 1);
}

TEST_F(Device, SaveAsTakesTheNameThatTheLibrarysDialogAllowed) {
    // The dialog is the library's; the next Save then asks for a shorter name.
    Compose();
    desk.link.save_choices = {"\\System\\sound\\NINECHARS.SND", std::nullopt};
    mnuFileSaveWithNameZ730_Click(window);
    EXPECT_TRUE(desk.link.uploads.contains("\\System\\sound\\NINECHARS.SND"));
    EXPECT_TRUE(desk.messages.empty());
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"File name cannot exceed 8 characters.  Change the file name."});
}

TEST_F(Device, ARefusedSaveAsKeepsTheMelodyAndTheChangedFlag) {
    Compose();
    desk.link.save_choices = {kDeviceTune};
    desk.link.put_result = 1;
    mnuFileSaveWithNameZ730_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"File translate error when upload to Veloxa!"});
    EXPECT_EQ(window.score.end_count, 4);
    EXPECT_TRUE(window.score.changed);
    EXPECT_EQ(TemporaryFiles(), 0);
}

TEST_F(Device, DoubleByteNamesPassTheBorderAndComeBack) {
    Compose();
    // The chosen name has characters of two bytes, and the count is of bytes.
    desk.link.save_choices = {ToAnsi(L"\\System\\sound\\音符ﾒﾛ.SND")};
    mnuFileSaveWithNameZ730_Click(window);
    EXPECT_EQ(window.document.current_path, L"C:\\Link\\pcferry\\cache\\System\\sound\\音符ﾒﾛ.SND");
    EXPECT_EQ(window.document.device_path, L"\\System\\sound\\音符ﾒﾛ.SND");
    EXPECT_EQ(desk.link.uploads.at(ToAnsi(L"\\System\\sound\\音符ﾒﾛ.SND")), EncodedScore());
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(window.document.device_path, L"\\System\\sound\\音符ﾒﾛ.SND");
}

// The library's border: whatever it writes and claims, 200 characters and no more are read.

TEST_F(Device, ACountLargerThanTheBufferIsCutAtItsEnd) {
    ComposeOnDevice();
    for (const std::int16_t count : std::initializer_list<std::int16_t>{200, 201, 1000, 32767}) {
        desk.link.conversion_bytes = std::string(200, 'x');
        desk.link.conversion_count = count;
        mnuFileOverWriteZ730_Click(window);
        EXPECT_EQ(window.document.device_path, std::wstring(200, L'x')) << count;
    }
}

namespace {

/// A careless library: it writes 40 characters more than it was told of, and counts them.
std::int16_t TONEX_STDCALL WriteBeyondTheBuffer(char* buffer, std::int32_t size, const char*) {
    std::fill_n(buffer, size + 40, 'x');
    return static_cast<std::int16_t>(size + 40);
}

} // namespace

TEST_F(Device, WhatALibraryWritesBeyondItsBufferIsNotRead) {
    ComposeOnDevice();
    window.link_library.Cor_ConvPathCacheToCorvane = &WriteBeyondTheBuffer;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(window.document.device_path, std::wstring(200, L'x'));
}

TEST_F(Device, ACountSmallerThanTheTextKeepsThatManyCharacters) {
    ComposeOnDevice();
    desk.link.conversion_bytes = "\\System\\sound\\TUNE.SND and more";
    desk.link.conversion_count = 22;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(window.document.device_path, L"\\System\\sound\\TUNE.SND");
    desk.link.conversion_count = 1;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(window.document.device_path, L"\\");
}

TEST_F(Device, ACountBeyondTheTextStopsAtItsNul) {
    ComposeOnDevice();
    desk.link.conversion_bytes = std::string("\\A.SND\0garbage", 14);
    desk.link.conversion_count = 14;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(window.document.device_path, L"\\A.SND");
}

TEST_F(Device, ANegativeCountIsNotConvertible) {
    ComposeOnDevice();
    for (const std::int16_t count : std::initializer_list<std::int16_t>{-1, -32768}) {
        desk.link.conversion_count = count;
        mnuFileOverWriteZ730_Click(window);
        EXPECT_FALSE(desktop::Asked("Cor_PutFile"));
        ExpectUntouched(kCacheTune, 0);
    }
}

TEST_F(Device, AChoiceThatFillsTheWholeBufferHasTwoHundredCharacters) {
    Compose();
    desk.link.dialogs_omit_nul = true;
    desk.link.save_choices = {"\\A.SND"};
    mnuFileSaveWithNameZ730_Click(window);
    EXPECT_EQ(window.document.device_path, L"\\A.SND" + std::wstring(194, L'#'));
}

TEST_F(Device, AFetchedPathWithoutANulHasTwoHundredCharacters) {
    desk.settings[kLastFile] = L"0,Veloxa:TUNE.SND,C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND";
    desk.link.exists = 1;
    const std::string full = "C:\\" + std::string(193, 'y') + ".SND";
    ASSERT_EQ(full.size(), 200u);
    desk.link.get_bytes = full;
    desk.files[FromAnsi(full)] = {{1}};
    EXPECT_TRUE(ReopenLastFile(window, L"Tonex"));
    EXPECT_EQ(window.document.current_path, FromAnsi(full));
}

TEST_F(Device, AHalfCharacterAtTheEndOfTheBufferIsNotReadBeyondIt) {
    ComposeOnDevice();
    desk.link.conversion_bytes = std::string(199, 'x') + '\x81';
    desk.link.conversion_count = 200;
    mnuFileOverWriteZ730_Click(window);
    EXPECT_EQ(window.document.device_path.size(), 200u);
    EXPECT_EQ(window.document.device_path.substr(0, 199), std::wstring(199, L'x'));
}

TEST_F(Device, TheLibraryMayFillEveryBufferToItsLastCharacter) {
    // Each function writes all of its 200 characters; the sanitizers watch what lies behind them.
    Compose();
    desk.link.dialogs_omit_nul = true;
    desk.link.conversion_bytes = std::string(200, 'z');
    desk.link.open_choices = {std::string(200, 'a')};
    desk.link.save_choices = {std::string(200, 'b')};
    desk.answers = {MessageAnswer::No};
    mnuFileSaveWithNameZ730_Click(window);
    window.link.CacheSoundDir = kSoundFolder;
    mnuFileOpenZ730_Click(window);
    EXPECT_TRUE(desktop::Asked("Cor_ConvPathCorvaneToCache " + std::string(200, 'a') + " 200"));
    EXPECT_TRUE(desktop::Asked("Cor_ConvPathCorvaneToCache " + std::string(200, 'b') + " 200"));
}

TEST_F(Device, SaveNeedsBothTheConversionAndTheUploadBeforeItDeletesTheCacheCopy) {
    for (const char* name : {"Cor_ConvPathCacheToCorvane", "Cor_PutFile"}) {
        desk.link.missing = {name};
        window.link_library = LoadLinkLibrary(L"C:\\Link");
        ComposeOnDevice();
        desk.files[kCacheTune] = {EncodedScore()};
        mnuFileOverWriteZ730_Click(window);
        EXPECT_TRUE(desk.files.contains(kCacheTune)) << name;
        ExpectUntouched(kCacheTune, 0);
    }
}

TEST_F(Device, AMissingFunctionLeavesTheCommandWithoutEffect) {
    for (const char* name : {"Cor_ConvPathCacheToCorvane", "Cor_ConvPathCorvaneToCache",
                             "Cor_PIMOpenFileDialog", "Cor_PIMSaveFileDialog", "Cor_PutFile"}) {
        desk.link.missing = {name};
        window.link_library = LoadLinkLibrary(L"C:\\Link");
        ComposeOnDevice();
        desk.files.clear();
        desk.files[kCacheTune] = {EncodedScore()};
        const bool opens = std::string(name) == "Cor_PutFile" || std::string(name) == "Cor_PIMSaveFileDialog";
        const bool saves_as = std::string(name) == "Cor_PIMOpenFileDialog";
        desk.link.save_choices = {kDeviceTune};
        desk.link.open_choices = {std::nullopt};
        if (!saves_as) {
            mnuFileSaveWithNameZ730_Click(window);
            EXPECT_FALSE(desktop::Asked("Cor_PutFile")) << name;
            EXPECT_TRUE(desk.files.contains(kCacheTune)) << name;
            ExpectUntouched(kCacheTune, 0);
        }
        if (!opens) {
            desk.answers = {MessageAnswer::No};
            mnuFileOpenZ730_Click(window);
            ExpectUntouched(kCacheTune, 0);
        }
        desk.answers.clear();
        desk.log.clear();
    }
}

TEST_F(Device, WithNoLibraryAtAllEveryDeviceCommandDoesNothing) {
    window.link_library = {};
    ComposeOnDevice();
    desk.files[kCacheTune] = {{1, 2, 3}};
    desk.answers = {MessageAnswer::No};
    mnuFileOverWriteZ730_Click(window);
    mnuFileSaveWithNameZ730_Click(window);
    mnuFileOpenZ730_Click(window);
    Disconnection_Click(window);
    EXPECT_TRUE(Disconnect(window));
    EXPECT_EQ(desk.files.at(kCacheTune).bytes, (Bytes{1, 2, 3}));
    ExpectUntouched(kCacheTune, 0);
    desk.settings[kLastFile] = L"0,Veloxa:TUNE.SND,C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND";
    EXPECT_FALSE(ReopenLastFile(window, L"Tonex"));
    EXPECT_EQ(window.document.current_path, L"");
}

// Disconnection.

TEST_F(Device, DisconnectionShowsTheLibrarysSetup) {
    Disconnection_Click(window);
    EXPECT_EQ(desk.log, std::vector<std::string>{"Cor_SetupDisconnection"});
}

TEST_F(Device, DisconnectAllowsTheCloseOnlyWhenTheLibraryReportsNoFailure) {
    EXPECT_TRUE(Disconnect(window));
    for (const std::int16_t failure : std::initializer_list<std::int16_t>{1, -1, 32767}) {
        desk.link.disconnect_result = failure;
        EXPECT_FALSE(Disconnect(window)) << failure;
    }
}

// The last document.

TEST_F(Device, NoLastDocument) {
    window.document.current_path = L"something";
    EXPECT_FALSE(ReopenLastFile(window, L"Tonex"));
    EXPECT_EQ(window.document.current_path, L"");
    EXPECT_FALSE(desktop::Asked("Cor_"));
}

TEST_F(Device, APcFileIsReopenedWithoutAnyCallIntoTheLibraryButOne) {
    desk.settings[kLastFile] = L"1,PC:A.SND,C:\\x\\A.SND";
    desk.files[L"C:\\x\\A.SND"] = {{1}};
    EXPECT_TRUE(ReopenLastFile(window, L"Tonex"));
    EXPECT_EQ(window.document.current_path, L"C:\\x\\A.SND");
    EXPECT_EQ(window.document.location_flag, 1);
    EXPECT_EQ(std::count_if(desk.log.begin(), desk.log.end(),
                            [](const std::string& line) { return line.starts_with("Cor_"); }),
              1);
    EXPECT_TRUE(desktop::Asked("Cor_IsOnPcFile C:\\x\\A.SND"));
}

TEST_F(Device, APcFileThatIsGoneIsNotReopened) {
    desk.settings[kLastFile] = L"1,PC:A.SND,C:\\x\\A.SND";
    EXPECT_FALSE(ReopenLastFile(window, L"Tonex"));
    EXPECT_EQ(window.document.current_path, L"");
}

TEST_F(Device, AHiddenFileIsReopened) {
    desk.settings[kLastFile] = L"1,PC:A.SND,C:\\x\\A.SND";
    desk.files[L"C:\\x\\A.SND"] = {{1}, 6};
    EXPECT_TRUE(ReopenLastFile(window, L"Tonex"));
    EXPECT_TRUE(desktop::Asked("FileExists C:\\x\\A.SND"));
}

TEST_F(Device, ADeviceFileIsFetched) {
    desk.settings[kLastFile] = L"0,Veloxa:TUNE.SND,C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND";
    desk.files[kCacheTune] = {{1}};
    window.link.CacheSoundDir = L"before";
    EXPECT_TRUE(ReopenLastFile(window, L"Tonex"));
    EXPECT_TRUE(desktop::Asked("Cor_IsExist \\System\\sound\\TUNE.SND"));
    EXPECT_TRUE(desktop::Asked("Cor_GetFile \\System\\sound\\TUNE.SND -1"));
    EXPECT_EQ(window.document.current_path, kCacheTune);
    EXPECT_EQ(window.document.location_flag, 0);
    EXPECT_EQ(window.link.CacheSoundDir, kSoundFolder);
}

TEST_F(Device, ADeviceFileThatIsNoLongerKnownClearsTheCurrentPath) {
    desk.settings[kLastFile] = L"0,Veloxa:TUNE.SND,C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND";
    EXPECT_FALSE(ReopenLastFile(window, L"Tonex"));
    EXPECT_EQ(window.document.current_path, L"");
    EXPECT_FALSE(desktop::Asked("Cor_GetFile"));
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(Device, ADeviceFileThatCanNotBeFetchedOrFoundIsNotReopened) {
    desk.settings[kLastFile] = L"0,Veloxa:TUNE.SND,C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND";
    desk.files[kCacheTune] = {{1}};
    const auto refused = [&](const std::function<void()>& bend) {
        desk.link = {};
        bend();
        EXPECT_FALSE(ReopenLastFile(window, L"Tonex"));
        EXPECT_EQ(window.document.current_path, L"");
    };
    refused([&] { desk.link.get_result = 1; });
    refused([&] { desk.link.conversion_count = 0; });
    refused([&] { desk.link.exists = 0; });
    refused([&] { desk.link.get_bytes = std::string(1, '\0'); });
    refused([&] { desk.link.get_bytes = std::string("C:\\elsewhere\\A.SND\0", 19); });
}

TEST_F(Device, ALibraryThatCanNotAskOrNotFetchReopensNothing) {
    desk.settings[kLastFile] = L"0,Veloxa:TUNE.SND,C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND";
    desk.files[kCacheTune] = {{1}};
    for (const char* name : {"Cor_IsExist", "Cor_GetFile"}) {
        desk.link = {};
        desk.link.missing = {name};
        window.link_library = LoadLinkLibrary(L"C:\\Link");
        EXPECT_FALSE(ReopenLastFile(window, L"Tonex")) << name;
        EXPECT_EQ(window.document.current_path, L"") << name;
        EXPECT_FALSE(desktop::Asked("Cor_GetFile")) << name;
    }
}

TEST_F(Device, TheTextIsSplitAtItsFirstTwoCommas) {
    desk.files[L"C:\\x\\A.SND"] = {{1}};
    desk.files[L"C:\\x,y\\A,B.SND"] = {{1}};
    const auto reopened = [&](const wchar_t* text) {
        desk.settings[kLastFile] = text;
        ReopenLastFile(window, L"Tonex");
        return window.document.current_path;
    };
    EXPECT_EQ(reopened(L"1,,C:\\x\\A.SND"), L"C:\\x\\A.SND");
    EXPECT_EQ(reopened(L",,C:\\x\\A.SND"), L"C:\\x\\A.SND");
    EXPECT_EQ(reopened(L"99999,PC:A.SND,C:\\x\\A.SND"), L"C:\\x\\A.SND");
    EXPECT_EQ(reopened(L"1,PC:A.SND,\"C:\\x\\A.SND\""), L"C:\\x\\A.SND");
    EXPECT_EQ(reopened(L"1,PC:A,C:\\x,y\\A,B.SND"), L"C:\\x,y\\A,B.SND");
    for (const wchar_t* text : {L"1", L"1,PC:A.SND", L"1,PC:A.SND,", L",,", L"nonsense", L"C:\\x\\A.SND"})
        EXPECT_EQ(reopened(text), L"") << desktop::Utf8(text);
}

TEST_F(Device, ANameWithACommaIsNotFoundAgain) {
    // Kept as it is: the display name in the middle holds a comma too.
    desk.files[L"C:\\x\\A,B.SND"] = {{1}};
    desk.settings[kLastFile] = L"1,PC:A,B.SND,C:\\x\\A,B.SND";
    EXPECT_FALSE(ReopenLastFile(window, L"Tonex"));
    EXPECT_EQ(window.document.current_path, L"");
}

TEST_F(Device, WhatTheLibrarySaysOfAPathCountsForMoreThanTheStoredFlag) {
    desk.settings[kLastFile] = L"0,Veloxa:A.SND,C:\\x\\A.SND";
    desk.files[L"C:\\x\\A.SND"] = {{1}};
    EXPECT_TRUE(ReopenLastFile(window, L"Tonex"));
    EXPECT_EQ(window.document.location_flag, 1);
    EXPECT_FALSE(desktop::Asked("Cor_IsExist"));
}

// The listing for the suite's viewer.

TEST_F(Device, ThisEditorsSectionNeverListsTheDevice) {
    ReopenLastFile(window, L"Tonex");
    EXPECT_FALSE(desktop::Asked("Cor_DirByExt"));
}

TEST_F(Device, TheViewersSectionListsTheDevicesSounds) {
    desk.link.listing = {"A.SND", ToAnsi(L"音.SND")};
    ReopenLastFile(window, L"Sclview");
    EXPECT_TRUE(desktop::Asked("Cor_DirByExt \\system\\sound snd "));
    EXPECT_EQ(window.link.device_sounds, (Texts{L"\\system\\sound\\A.SND", L"\\system\\sound\\音.SND"}));
    EXPECT_TRUE(desktop::Asked("ReadSetting Corvane\\Sclview\\File1"));
}

TEST_F(Device, AListingIsReadOnlyAsFarAsItGoes) {
    desk.link.listing = {"A.SND", "B.SND"};
    desk.link.listing_count = 1000000;
    ReopenLastFile(window, L"Sclview");
    EXPECT_EQ(window.link.device_sounds.size(), 2u);
    desk.link.listing_count = -3;
    ReopenLastFile(window, L"Sclview");
    EXPECT_TRUE(window.link.device_sounds.empty());
    desk.link.listing_count = 1;
    ReopenLastFile(window, L"Sclview");
    EXPECT_EQ(window.link.device_sounds, Texts{L"\\system\\sound\\A.SND"});
    desk.link.listing_count = 1000000;
    desk.link.listing_bytes = std::string(100000, 'x');
    ReopenLastFile(window, L"Sclview");
    EXPECT_EQ(window.link.device_sounds, Texts{L"\\system\\sound\\" + std::wstring(8192, L'x')});
    window.link_library.Cor_DirByExt = nullptr;
    ReopenLastFile(window, L"Sclview");
    EXPECT_TRUE(window.link.device_sounds.empty());
}

} // namespace tonex::device_commands_test
