// The document on the PC: titles, the save prompt, loading and saving, and that nothing is lost
// when the disk or the device refuses.
#include "platform/files.h"
#include "score/document_commands.h"
#include "score/snd_file.h"
#include "tests/desktop/desktop.h"
#include "tests/set_up_window.h"
#include "view/edit_commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace tonex::document_commands_test {

using namespace tonex::testing;

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr const wchar_t* kTune = L"C:\\Songs\\TUNE.SND";
constexpr const wchar_t* kLastFile = L"Corvane\\Tonex\\File1";
constexpr const wchar_t* kCacheTune = L"C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND";

/// A file of so many whole-note rests, or whatever code is given; 511 fit an edit block.
Bytes FileOf(int entries, std::uint8_t code = 0, std::uint8_t pitch = 26, std::uint16_t tempo = 120) {
    Bytes bytes = {7, 0, 8, 0, 255, 255, 0, 0};
    bytes.push_back(static_cast<std::uint8_t>(tempo & 255));
    bytes.push_back(static_cast<std::uint8_t>(tempo >> 8));
    for (int i = 0; i < entries; ++i) {
        bytes.push_back(pitch);
        bytes.push_back(code);
    }
    bytes.insert(bytes.end(), {255, 255});
    return bytes;
}

struct DocumentTest : ::testing::Test {
    std::unique_ptr<sndmain> owner = SetUpWindow();
    sndmain& window = *owner;
    desktop::Desktop& desk = desktop::Current();

    DocumentTest() {
        window.link.PcSoundDir = L"C:\\Link\\userdata\\sound";
        desk.log.clear();
    }

    /// Three notes that were not saved yet.
    void Compose(int notes = 3) {
        FillScore(window, notes);
        window.score.changed = true;
    }
    void ComposeAt(const wchar_t* path, std::int16_t location = 1) {
        Compose();
        window.document.current_path = path;
        window.document.location_flag = location;
        window.Caption = L"before";
    }
    Bytes EncodedScore() const { return EncodeSnd(window.tables, 120, BuildSaveList(window.score)).bytes; }
    int FilesWith(const std::wstring& part) const {
        return static_cast<int>(std::count_if(desk.files.begin(), desk.files.end(), [&](const auto& file) {
            return file.first.find(part) != std::wstring::npos;
        }));
    }
};

using Texts = std::vector<std::wstring>;

} // namespace

// The title.

TEST_F(DocumentTest, TitleOfAnUntitledScoreStoresNothing) {
    SetTitle(window, kSuffixUntitled);
    EXPECT_EQ(window.Caption, L"Sound Editor - Untitled");
    EXPECT_FALSE(desk.settings.contains(kLastFile));
}

TEST_F(DocumentTest, TitleOfAPcFileStoresTheLastDocument) {
    window.document.current_path = L"C:\\Songs\\MELODY.SND";
    SetTitle(window, kSuffixPc);
    EXPECT_EQ(window.Caption, L"Sound Editor - PC:MELODY.SND");
    EXPECT_EQ(desk.settings.at(kLastFile), L"1,PC:MELODY.SND,C:\\Songs\\MELODY.SND");
}

TEST_F(DocumentTest, TitleOfADeviceFile) {
    window.document.current_path = kCacheTune;
    window.document.location_flag = 0;
    SetTitle(window, kSuffixVeloxa);
    EXPECT_EQ(window.Caption, L"Sound Editor - Veloxa:TUNE.SND");
    EXPECT_EQ(desk.settings.at(kLastFile),
              L"0,Veloxa:TUNE.SND,C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND");
}

// The save prompt.

TEST_F(DocumentTest, AnUnchangedScoreNeverAsks) {
    Compose();
    window.score.changed = false;
    EXPECT_TRUE(AskToSaveChanges(window));
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(DocumentTest, SeparatorsOnlyNeverAskAndClearTheChangedFlag) {
    FillScore(window, {MakeEntry(window, 0, 0), MakeEntry(window, 0, 0)});
    window.score.changed = true;
    EXPECT_TRUE(AskToSaveChanges(window));
    EXPECT_FALSE(window.score.changed);
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(DocumentTest, ANoteAloneInTheFirstSlotAsks) {
    Compose(1);
    desk.answers = {MessageAnswer::Cancel};
    EXPECT_FALSE(AskToSaveChanges(window));
    EXPECT_EQ(desktop::Told(), Texts{L"Do you want to save the changes?"});
}

TEST_F(DocumentTest, ARestAloneAsks) {
    FillScore(window, {MakeEntry(window, 0, 0), MakeRest(window, 21)});
    window.score.changed = true;
    desk.answers = {MessageAnswer::No};
    EXPECT_TRUE(AskToSaveChanges(window));
    ASSERT_EQ(desktop::Told(), Texts{L"Do you want to save the changes?"});
    EXPECT_EQ(desk.messages[0].buttons, MessageButtons::YesNoCancel);
    EXPECT_EQ(desk.messages[0].icon, MessageIcon::Exclamation);
    EXPECT_TRUE(desk.files.empty());
    EXPECT_TRUE(window.score.changed);
}

TEST_F(DocumentTest, CancelDoesNotGoOn) {
    Compose();
    desk.answers = {MessageAnswer::Cancel};
    EXPECT_FALSE(AskToSaveChanges(window));
    EXPECT_TRUE(window.score.changed);
}

TEST_F(DocumentTest, YesSavesAPcFileAndGoesOn) {
    ComposeAt(kTune);
    desk.files[kTune] = {{1, 2, 3}};
    desk.answers = {MessageAnswer::Yes};
    EXPECT_TRUE(AskToSaveChanges(window));
    EXPECT_EQ(desk.files.at(kTune).bytes, EncodedScore());
    EXPECT_EQ(window.Caption, L"Sound Editor - PC:TUNE.SND");
    EXPECT_FALSE(window.score.changed);
    EXPECT_TRUE(desk.dialogs.empty());
}

TEST_F(DocumentTest, YesOnAnUntitledScoreAsksForANameUntilItFits) {
    Compose();
    desk.answers = {MessageAnswer::Yes};
    desk.save_choices = {L"D:\\New\\123456789.SND", L"D:\\New\\12345678.SND"};
    EXPECT_TRUE(AskToSaveChanges(window));
    ASSERT_EQ(desk.dialogs.size(), 2u);
    EXPECT_EQ(desk.dialogs[0].FileName, L"");
    EXPECT_EQ(desk.dialogs[0].InitDir, L"C:\\Link\\userdata\\sound");
    EXPECT_EQ(desk.dialogs[1].FileName, L"123456789.SND");
    EXPECT_EQ(window.document.current_path, L"D:\\New\\12345678.SND");
    EXPECT_EQ(window.link.PcSoundDir, L"D:\\New\\");
    EXPECT_EQ(window.document.location_flag, 1);
    EXPECT_EQ(desk.files.at(L"D:\\New\\12345678.SND").bytes, EncodedScore());
    EXPECT_EQ(desktop::Told(), (Texts{L"Do you want to save the changes?",
                                      L"File name cannot exceed 8 characters.  Change the file name."}));
}

TEST_F(DocumentTest, YesThenCancelOfTheDialogDoesNotGoOn) {
    Compose();
    desk.answers = {MessageAnswer::Yes};
    desk.save_choices = {std::nullopt};
    EXPECT_FALSE(AskToSaveChanges(window));
    EXPECT_TRUE(window.score.changed);
    EXPECT_TRUE(desk.files.empty());
    EXPECT_EQ(window.document.current_path, L"");
}

TEST_F(DocumentTest, YesOnANameThatIsTooLongOffersItInTheDialog) {
    ComposeAt(L"C:\\Songs\\123456789.SND", 0);
    desk.answers = {MessageAnswer::Yes};
    desk.save_choices = {kTune};
    EXPECT_TRUE(AskToSaveChanges(window));
    ASSERT_EQ(desk.dialogs.size(), 1u);
    EXPECT_EQ(desk.dialogs[0].FileName, L"123456789.SND");
    EXPECT_EQ(desk.settings.at(kLastFile), L"1,PC:TUNE.SND,C:\\Songs\\TUNE.SND");
}

TEST_F(DocumentTest, YesOnAnUnwritableDiskLosesNothing) {
    ComposeAt(kTune);
    desk.refusing_folders.insert(L"C:\\Songs");
    desk.answers = {MessageAnswer::Yes};
    EXPECT_FALSE(AskToSaveChanges(window));
    EXPECT_EQ(desktop::Told(), (Texts{L"Do you want to save the changes?", L"Write error!"}));
    EXPECT_TRUE(window.score.changed);
    EXPECT_EQ(window.Caption, L"before");
}

TEST_F(DocumentTest, YesWithATempoOutsideTheListLosesNothing) {
    ComposeAt(kTune);
    window.TempoCombo.Text = L"121";
    desk.answers = {MessageAnswer::Yes};
    EXPECT_FALSE(AskToSaveChanges(window));
    EXPECT_EQ(desktop::Told(), (Texts{L"Do you want to save the changes?", L"Read error!"}));
    EXPECT_TRUE(window.score.changed);
    EXPECT_TRUE(desk.files.empty());
}

TEST_F(DocumentTest, YesOnAMelodyThatDoesNotFitSavesWhatFitsAndGoesOn) {
    ComposeAt(kTune);
    FillScore(window, 300);
    for (int i = 0; i < 300; ++i)
        window.score.sound[static_cast<std::size_t>(i)] = MakeNote(window, 20, 40);
    window.score.changed = true;
    desk.answers = {MessageAnswer::Yes};
    EXPECT_TRUE(AskToSaveChanges(window));
    EXPECT_EQ(desktop::Told(),
              (Texts{L"Do you want to save the changes?", L"Cannot input the last173music notes."}));
    EXPECT_TRUE(desk.files.contains(kTune));
}

TEST_F(DocumentTest, YesOnADeviceFileUploadsIt) {
    ComposeAt(kCacheTune, 0);
    desktop::InstallLinkSoftware();
    window.link_library = LoadLinkLibrary(L"C:\\Link");
    desk.answers = {MessageAnswer::Yes};
    EXPECT_TRUE(AskToSaveChanges(window));
    EXPECT_EQ(desk.link.uploads.at("\\System\\sound\\TUNE.SND"), EncodedScore());
    EXPECT_FALSE(window.score.changed);
}

TEST_F(DocumentTest, YesOnADeviceFileThatTheDeviceRefusesLosesNothing) {
    ComposeAt(kCacheTune, 0);
    window.link_library = LoadLinkLibrary(L"C:\\Link");
    desk.link.put_result = 5;
    desk.answers = {MessageAnswer::Yes};
    EXPECT_FALSE(AskToSaveChanges(window));
    EXPECT_TRUE(window.score.changed);
}

TEST_F(DocumentTest, YesOnADeviceFileWithoutTheLibraryLosesNothing) {
    ComposeAt(kCacheTune, 0);
    desk.files[kCacheTune] = {{1, 2, 3}};
    window.link_library = {};
    desk.answers = {MessageAnswer::Yes};
    EXPECT_FALSE(AskToSaveChanges(window));
    EXPECT_TRUE(window.score.changed);
    EXPECT_EQ(desk.files.at(kCacheTune).bytes, (Bytes{1, 2, 3}));
}

TEST_F(DocumentTest, YesOnADeviceFileWhosePathCanNotBeConvertedLosesNothing) {
    ComposeAt(kCacheTune, 0);
    window.link_library = LoadLinkLibrary(L"C:\\Link");
    desk.link.conversion_count = 0;
    desk.answers = {MessageAnswer::Yes};
    EXPECT_FALSE(AskToSaveChanges(window));
    EXPECT_TRUE(window.score.changed);
}

// New.

TEST_F(DocumentTest, NewOnAChangedScoreAsksFirstAndCancelKeepsTheScore) {
    ComposeAt(kTune);
    desk.answers = {MessageAnswer::Cancel};
    mnuNewFile_Click(window);
    EXPECT_EQ(window.score.end_count, 4);
    EXPECT_EQ(window.document.current_path, kTune);
    EXPECT_EQ(window.Caption, L"before");
}

TEST_F(DocumentTest, NewClearsScorePathAndTitle) {
    ComposeAt(kTune);
    desk.answers = {MessageAnswer::No};
    mnuNewFile_Click(window);
    EXPECT_EQ(window.score.end_count, 1);
    EXPECT_EQ(window.document.current_path, L"");
    EXPECT_EQ(window.Caption, L"Sound Editor - Untitled");
    EXPECT_FALSE(window.score.changed);
    EXPECT_FALSE(desk.settings.contains(kLastFile));
}

TEST_F(DocumentTest, NewLeavesTheLocationFlagAsItWas) {
    for (const std::int16_t location : {std::int16_t{0}, std::int16_t{1}}) {
        ComposeAt(kTune, location);
        window.score.changed = false;
        mnuNewFile_Click(window);
        EXPECT_EQ(window.document.current_path, L"");
        EXPECT_EQ(window.document.location_flag, location);
    }
}

// Open.

TEST_F(DocumentTest, OpenShowsItsDialogAsItAlwaysIs) {
    window.document.current_path = kTune;
    window.document.ComOpen.FileName = L"C:\\Songs\\LAST.SND";
    desk.open_choices = {std::nullopt};
    mnuFileOpen_Click(window);
    ASSERT_EQ(desk.dialogs.size(), 1u);
    EXPECT_EQ(desk.dialogs[0].Title, L"Open on PC");
    EXPECT_EQ(desk.dialogs[0].Filter, L"Sound Files(*.snd)|*.snd");
    EXPECT_EQ(desk.dialogs[0].DefaultExt, L"SND");
    EXPECT_EQ(desk.dialogs[0].InitDir, L"C:\\Link\\userdata\\sound");
    EXPECT_EQ(desk.dialogs[0].FileName, L"");
    EXPECT_EQ(window.document.current_path, kTune);
    EXPECT_EQ(window.link.PcSoundDir, L"C:\\Link\\userdata\\sound");
}

TEST_F(DocumentTest, OpenLoadsTheChosenFile) {
    desk.files[kTune] = {FileOf(3)};
    desk.open_choices = {kTune};
    window.document.location_flag = 0;
    mnuFileOpen_Click(window);
    EXPECT_EQ(window.score.end_count, 4);
    EXPECT_EQ(window.document.current_path, kTune);
    EXPECT_EQ(window.document.location_flag, 1);
    EXPECT_EQ(window.link.PcSoundDir, L"C:\\Songs\\");
    EXPECT_EQ(window.Caption, L"Sound Editor - PC:TUNE.SND");
    EXPECT_EQ(desk.settings.at(kLastFile), L"1,PC:TUNE.SND,C:\\Songs\\TUNE.SND");
    EXPECT_FALSE(window.score.changed);
}

TEST_F(DocumentTest, UndoAfterOpenGivesBackTheMelodyBefore) {
    kenWhite_Click(window, 0);
    const auto before_the_last_change = window.score.sound;
    kenWhite_Click(window, 1);
    window.score.changed = false;
    desk.files[kTune] = {FileOf(5)};
    desk.open_choices = {kTune};
    mnuFileOpen_Click(window);
    ASSERT_EQ(window.score.end_count, 6);
    SwapUndo(window);
    EXPECT_EQ(window.score.sound, before_the_last_change);
    EXPECT_EQ(window.score.end_count, 2);
    EXPECT_EQ(window.document.current_path, kTune);
}

TEST_F(DocumentTest, OpenOfAnotherKindOfFileChangesNothing) {
    ComposeAt(kTune);
    window.score.changed = false;
    desk.open_choices = {L"C:\\Songs\\TUNE.wav"};
    mnuFileOpen_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"This is not a sound file."});
    EXPECT_EQ(window.score.end_count, 4);
    EXPECT_EQ(window.document.current_path, kTune);
    EXPECT_EQ(window.link.PcSoundDir, L"C:\\Link\\userdata\\sound");
    EXPECT_EQ(window.Caption, L"before");
}

TEST_F(DocumentTest, OpenDoesNotAskForAFileWhenTheUserCancelsThePrompt) {
    Compose();
    desk.answers = {MessageAnswer::Cancel};
    mnuFileOpen_Click(window);
    EXPECT_TRUE(desk.dialogs.empty());
}

// Loading.

TEST_F(DocumentTest, LoadShowsTheScoreFromItsFirstEntryWithTheCursorBehindTheLast) {
    desk.files[kTune] = {FileOf(40, 0, 26, 60)};
    window.document.current_path = kTune;
    window.score.changed = true;
    EXPECT_FALSE(LoadDocument(window, kSuffixPc));
    EXPECT_EQ(window.score.end_count, 41);
    EXPECT_EQ(window.score.first_shown, 0);
    EXPECT_EQ(window.score.strip_cursor, 40 % 30);
    EXPECT_EQ(window.grdScore.Cols, 41);
    EXPECT_EQ(window.grdScore.view.LeftCol, 0);
    EXPECT_EQ(window.grdScore.view.Col, 40);
    EXPECT_EQ(window.grdScore.view.ColSel, 40);
    EXPECT_EQ(TextOf(window, 39), L"c4");
    EXPECT_TRUE(ImageOf(window, 29).Visible);
    EXPECT_EQ(window.TempoCombo.Text, L" 60");
    EXPECT_TRUE(window.item(MenuItem::mnuCut).Enabled);
    EXPECT_FALSE(window.score.changed);
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(DocumentTest, LoadOfATempoThatNoItemHasSelectsNone) {
    desk.files[kTune] = {FileOf(1, 0, 26, 121)};
    window.document.current_path = kTune;
    EXPECT_FALSE(LoadDocument(window, kSuffixPc));
    EXPECT_EQ(window.TempoCombo.ListIndex, -1);
    EXPECT_FALSE(window.score.changed);
}

TEST_F(DocumentTest, LoadOfAFullScorePutsTheCursorOnTheLastColumn) {
    desk.files[kTune] = {FileOf(509)};
    window.document.current_path = kTune;
    EXPECT_FALSE(LoadDocument(window, kSuffixPc));
    EXPECT_EQ(window.score.end_count, 510);
    EXPECT_EQ(window.grdScore.Cols, 509);
    EXPECT_EQ(window.grdScore.view.Col, 508);
    EXPECT_EQ(window.score.strip_cursor, 509 % 30);
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(DocumentTest, WhatAFileHoldsBeyond509EntriesIsDroppedAndReported) {
    for (const int entries : {510, 511}) {
        desk.messages.clear();
        desk.files[kTune] = {FileOf(entries)};
        window.document.current_path = kTune;
        EXPECT_FALSE(LoadDocument(window, kSuffixPc));
        EXPECT_EQ(window.score.end_count, 510);
        EXPECT_EQ(window.score.sound[509].code, kEmpty);
        EXPECT_EQ(window.score.sound[510].code, kEmpty);
        EXPECT_EQ(desktop::Told(),
                  Texts{L"Cannot input the last" + std::to_wstring(entries - 509) + L"music notes."});
        EXPECT_EQ(window.Caption, L"Sound Editor - PC:TUNE.SND");
    }
}

TEST_F(DocumentTest, EveryEntryCodeAndPitchLoadsWithoutAnIndexOutsideATable) {
    for (int code = 0; code < 256; ++code) {
        for (const int pitch : {0, 26, 74, 75, 86, 255}) {
            if (code == 255 && pitch == 255) continue;
            desk.files[kTune] = {
                FileOf(31, static_cast<std::uint8_t>(code), static_cast<std::uint8_t>(pitch))};
            window.document.current_path = kTune;
            EXPECT_FALSE(LoadDocument(window, kSuffixPc));
            const int slots = window.score.end_count - 1;
            EXPECT_EQ(slots, code == 78 ? 0 : 31) << "code " << code;
            EXPECT_EQ(window.score.sound[static_cast<std::size_t>(slots)].code, kEmpty);
        }
    }
}

TEST_F(DocumentTest, AFileThatFailsToLoadLeavesAnEmptyUntitledScore) {
    for (const Bytes& bytes : {Bytes{}, Bytes{7, 0, 8}, FileOf(2, 0, 26, 29), FileOf(2, 0, 26, 641)}) {
        desk.messages.clear();
        FillScore(window, 5);
        window.score.changed = true;
        desk.files[kTune] = {bytes};
        window.document.current_path = kTune;
        window.document.location_flag = 0;
        EXPECT_TRUE(LoadDocument(window, kSuffixVeloxa));
        EXPECT_EQ(desktop::Told(), Texts{L"Read error!"});
        EXPECT_EQ(window.score.end_count, 1);
        EXPECT_EQ(window.document.current_path, L"");
        EXPECT_EQ(window.document.location_flag, 1);
        EXPECT_EQ(window.Caption, L"Sound Editor - Untitled");
        EXPECT_EQ(desk.settings.at(kLastFile), L"1,PC:,");
        EXPECT_FALSE(window.score.changed);
        EXPECT_FALSE(window.item(MenuItem::mnuCut).Enabled);
    }
}

TEST_F(DocumentTest, AMissingFileIsAReadError) {
    window.document.current_path = kTune;
    EXPECT_TRUE(LoadDocument(window, kSuffixPc));
    EXPECT_EQ(desktop::Told(), Texts{L"Read error!"});
}

TEST_F(DocumentTest, AHiddenFileLoads) {
    desk.files[kTune] = {FileOf(3), kAttributeHidden | kAttributeSystem};
    window.document.current_path = kTune;
    EXPECT_FALSE(LoadDocument(window, kSuffixPc));
    EXPECT_EQ(window.score.end_count, 4);
}

TEST_F(DocumentTest, AnyDiskOperationThatFailsWhileLoadingIsAReadError) {
    for (int fail_at = 0; fail_at < 2; ++fail_at) {
        desk.files[kTune] = {FileOf(3)};
        window.document.current_path = kTune;
        desk.fail_at = desk.file_operations + fail_at;
        EXPECT_TRUE(LoadDocument(window, kSuffixPc));
        EXPECT_EQ(desk.files.at(kTune).bytes, FileOf(3));
    }
}

// Save and Save as.

TEST_F(DocumentTest, SaveWritesTheFileInOneStepAndClearsTheChangedFlag) {
    ComposeAt(kTune);
    desk.files[kTune] = {{1, 2, 3}, kAttributeReadOnly | kAttributeHidden};
    mnuFileOverWrite_Click(window);
    EXPECT_EQ(desk.files.at(kTune).bytes, EncodedScore());
    EXPECT_EQ(window.Caption, L"Sound Editor - PC:TUNE.SND");
    EXPECT_FALSE(window.score.changed);
    EXPECT_EQ(window.document.location_flag, 1);
    EXPECT_FALSE(desktop::Asked("RemoveFile C:\\Songs\\TUNE.SND")) << "the old file must never be gone";
    EXPECT_EQ(desk.files.size(), 1u);
}

TEST_F(DocumentTest, SavedFilesLoadAgainAsTheyWere) {
    ComposeAt(kTune);
    const std::array<Entry, kSlots> before = window.score.sound;
    mnuFileOverWrite_Click(window);
    EXPECT_FALSE(LoadDocument(window, kSuffixPc));
    EXPECT_EQ(window.score.sound, before);
}

TEST_F(DocumentTest, SaveRunsSaveAsForUntitledLongNamedAndDeviceDocuments) {
    const struct {
        const wchar_t* path;
        std::int16_t location;
    } cases[] = {{L"", 1}, {L"C:\\Songs\\123456789.SND", 1}, {kCacheTune, 0}, {kCacheTune, 2}};
    for (const auto& [path, location] : cases) {
        desk.dialogs.clear();
        ComposeAt(path, location);
        desk.save_choices = {std::nullopt};
        mnuFileOverWrite_Click(window);
        ASSERT_EQ(desk.dialogs.size(), 1u) << desktop::Utf8(path);
        EXPECT_EQ(window.document.current_path, path);
        EXPECT_EQ(window.Caption, L"before");
        EXPECT_TRUE(window.score.changed);
    }
}

TEST_F(DocumentTest, ALongNameIsToldOfBeforeTheLocationIsLookedAt) {
    for (const std::int16_t location : {std::int16_t{0}, std::int16_t{1}}) {
        ComposeAt(L"C:\\Songs\\NINECHARS.SND", location);
        desk.messages.clear();
        desk.save_choices = {std::nullopt};
        mnuFileOverWrite_Click(window);
        EXPECT_EQ(desktop::Told(), Texts{L"File name cannot exceed 8 characters.  Change the file name."});
    }
}

TEST_F(DocumentTest, SaveAsShowsItsDialogAsItAlwaysIs) {
    ComposeAt(L"D:\\x\\OLD.SND");
    desk.save_choices = {std::nullopt};
    mnuFileSaveWithName_Click(window);
    ASSERT_EQ(desk.dialogs.size(), 1u);
    EXPECT_EQ(desk.dialogs[0].Title, L"Save to PC");
    EXPECT_EQ(desk.dialogs[0].Filter, L"Sound File(*.snd)|*.snd");
    EXPECT_EQ(desk.dialogs[0].DefaultExt, L"SND");
    EXPECT_EQ(desk.dialogs[0].InitDir, L"C:\\Link\\userdata\\sound");
    EXPECT_EQ(desk.dialogs[0].FileName, L"OLD.SND");
    EXPECT_EQ(window.document.current_path, L"D:\\x\\OLD.SND");
    EXPECT_TRUE(desk.files.empty());
}

TEST_F(DocumentTest, TheFiltersOfTheTwoDialogsDifferInFilesAndFile) {
    desk.open_choices = {std::nullopt};
    desk.save_choices = {std::nullopt};
    mnuFileOpen_Click(window);
    mnuFileSaveWithName_Click(window);
    ASSERT_EQ(desk.dialogs.size(), 2u);
    EXPECT_EQ(desk.dialogs[0].Filter, L"Sound Files(*.snd)|*.snd");
    EXPECT_EQ(desk.dialogs[1].Filter, L"Sound File(*.snd)|*.snd");
}

TEST_F(DocumentTest, SaveAsAsksAgainUntilTheNameFits) {
    ComposeAt(kCacheTune, 0);
    desk.save_choices = {L"E:\\123456789.SND", L"E:\\ABCDEFGHI.SND", L"E:\\Tunes\\NEW.SND"};
    mnuFileSaveWithName_Click(window);
    ASSERT_EQ(desk.dialogs.size(), 3u);
    EXPECT_EQ(desk.dialogs[0].FileName, L"TUNE.SND");
    EXPECT_EQ(desk.dialogs[1].FileName, L"123456789.SND");
    EXPECT_EQ(desk.dialogs[2].FileName, L"ABCDEFGHI.SND");
    EXPECT_EQ(window.document.current_path, L"E:\\Tunes\\NEW.SND");
    EXPECT_EQ(window.link.PcSoundDir, L"E:\\Tunes\\");
    EXPECT_EQ(window.document.location_flag, 1);
    EXPECT_FALSE(window.score.changed);
    EXPECT_EQ(desk.settings.at(kLastFile), L"1,PC:NEW.SND,E:\\Tunes\\NEW.SND");
    EXPECT_EQ(desk.files.at(L"E:\\Tunes\\NEW.SND").bytes, EncodedScore());
}

TEST_F(DocumentTest, ANameWithoutTheExtensionGetsItBeforeItsLengthIsLookedAt) {
    const std::pair<const wchar_t*, const wchar_t*> names[] = {
        {L"E:\\TEST.WAV", L"E:\\TEST.WAV.snd"}, {L"E:\\A.B", L"E:\\A.B.snd"}, {L"E:\\DOT.", L"E:\\DOT.snd"},
        {L"E:\\PLAIN", L"E:\\PLAIN.snd"},       {L"E:\\T.SnD", L"E:\\T.SnD"},
    };
    for (const auto& [chosen, saved] : names) {
        ComposeAt(L"");
        desk.save_choices = {chosen};
        mnuFileSaveWithName_Click(window);
        EXPECT_EQ(window.document.current_path, saved);
        EXPECT_TRUE(desk.files.contains(saved));
        EXPECT_FALSE(desk.files.contains(chosen) && std::wstring(chosen) != saved);
    }
}

TEST_F(DocumentTest, ACompletedNameThatIsTakenIsOfferedSoThatTheDialogAsks) {
    ComposeAt(L"");
    desk.files[L"E:\\A.B.snd"] = {{1, 2, 3}};
    desk.save_choices = {L"E:\\A.B", std::nullopt};
    mnuFileSaveWithName_Click(window);
    EXPECT_EQ(desk.files.at(L"E:\\A.B.snd").bytes, (Bytes{1, 2, 3}));
    ASSERT_EQ(desk.dialogs.size(), 2u);
    EXPECT_EQ(desk.dialogs[1].FileName, L"A.B.snd");
}

TEST_F(DocumentTest, SaveAsOnAnUntitledScoreOffersNoName) {
    Compose();
    desk.save_choices = {kTune};
    mnuFileSaveWithName_Click(window);
    EXPECT_EQ(desk.dialogs.at(0).FileName, L"");
    EXPECT_TRUE(desk.files.contains(kTune));
}

TEST_F(DocumentTest, SaveOfATempoOutsideTheListIsAReadErrorThatClearsTheChangedFlag) {
    // Kept as it is; the old file stays, because nothing new was written.
    ComposeAt(kTune);
    desk.files[kTune] = {{1, 2, 3}};
    window.TempoCombo.Text = L"121";
    mnuFileOverWrite_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Read error!"});
    EXPECT_EQ(desk.files.at(kTune).bytes, (Bytes{1, 2, 3}));
    EXPECT_EQ(window.Caption, L"Sound Editor - PC:TUNE.SND");
    EXPECT_FALSE(window.score.changed);
}

TEST_F(DocumentTest, SaveOfAPlayBlockThatIsFullSavesWhatFitsAndSaysHowManyDidNot) {
    Compose(509);
    for (int i = 0; i < 509; ++i)
        window.score.sound[static_cast<std::size_t>(i)] = MakeNote(window, 20, 40);
    window.document.current_path = kTune;
    const SndEncoding encoding = EncodeSnd(window.tables, 120, BuildSaveList(window.score));
    ASSERT_EQ(encoding.result, kSndFull);
    mnuFileOverWrite_Click(window);
    EXPECT_EQ(desk.files.at(kTune).bytes, encoding.bytes);
    EXPECT_EQ(desktop::Told(), Texts{L"Cannot input the last" +
                                     std::to_wstring(509 - encoding.entries_written) + L"music notes."});
    EXPECT_FALSE(window.score.changed);
    EXPECT_EQ(window.score.end_count, 510);
}

TEST_F(DocumentTest, TheNumberOfNotesStandsBetweenTheWordsWithoutBlanks) {
    // 56 units are four records of two bytes: 127 such notes fit the play block.
    Compose(300);
    for (int i = 0; i < 300; ++i)
        window.score.sound[static_cast<std::size_t>(i)] = MakeNote(window, 20, 40);
    window.document.current_path = kTune;
    window.TempoCombo.Text = L"120";
    mnuFileOverWrite_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Cannot input the last173music notes."});
}

TEST_F(DocumentTest, SaveOfAPitchThatNoFileHoldsPutsTheCursorOnItAndSaysSo) {
    for (const std::uint16_t pitch : {std::uint16_t{257}, std::uint16_t{0}, std::uint16_t{0xFFF0}}) {
        ComposeAt(kTune);
        desk.messages.clear();
        window.score.sound[1].pitch = pitch;
        mnuFileOverWrite_Click(window);
        EXPECT_EQ(desktop::Told(), Texts{L"The pitch of entry 2 is out of range and cannot be saved."});
        EXPECT_EQ(window.grdScore.view.Col, 1);
        EXPECT_EQ(window.grdScore.view.ColSel, 1);
    }
}

TEST_F(DocumentTest, SaveOfAnUnknownEntryPutsTheCursorOnItAndSaysSo) {
    Compose(60);
    window.document.current_path = kTune;
    window.score.sound[45].code = 41; // a foreign file's code 120
    grdScore_SelChange(window, 3, 6);
    mnuFileOverWrite_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Entry 46 is unknown and cannot be saved."});
    EXPECT_EQ(window.grdScore.view.Col, 45);
    EXPECT_EQ(window.grdScore.view.ColSel, 45);
    EXPECT_EQ(window.score.first_shown, 16) << "the entry is in view";
    EXPECT_EQ(window.score.strip_cursor, 29);
    EXPECT_TRUE(window.score.changed);
    EXPECT_FALSE(desk.files.contains(kTune));
    desk.messages.clear();
    window.score.sound[0].code = 41;
    mnuFileOverWrite_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Entry 1 is unknown and cannot be saved."});
    EXPECT_EQ(window.grdScore.view.Col, 0);
}

TEST_F(DocumentTest, ARefusedDiskLeavesTheCursorAlone) {
    Compose(60);
    window.document.current_path = kTune;
    desk.refusing_folders.insert(L"C:\\Songs");
    grdScore_SelChange(window, 3, 6);
    mnuFileOverWrite_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Write error!"});
    EXPECT_EQ(window.grdScore.view.Col, 3);
    EXPECT_EQ(window.grdScore.view.ColSel, 6);
}

TEST_F(DocumentTest, SaveOfAPitchThatNoFileHoldsChangesNothing) {
    ComposeAt(kTune);
    window.score.sound[1].pitch = 257;
    desk.files[kTune] = {{1, 2, 3}};
    mnuFileOverWrite_Click(window);
    ASSERT_EQ(desk.messages.size(), 1u);
    EXPECT_EQ(desk.messages[0].icon, MessageIcon::Exclamation);
    EXPECT_EQ(desk.messages[0].buttons, MessageButtons::Ok);
    EXPECT_EQ(desk.files.at(kTune).bytes, (Bytes{1, 2, 3}));
    EXPECT_TRUE(window.score.changed);
    EXPECT_EQ(window.Caption, L"before");
}

TEST_F(DocumentTest, SaveWhereWritingFailsLeavesFlagPathAndTitle) {
    ComposeAt(L"C:\\Songs\\OLD.SND", 0);
    desk.refusing_folders.insert(L"E:\\Tunes");
    desk.save_choices = {L"E:\\Tunes\\NEW.SND"};
    mnuFileSaveWithName_Click(window);
    EXPECT_EQ(desktop::Told(), Texts{L"Write error!"});
    EXPECT_EQ(window.document.current_path, L"C:\\Songs\\OLD.SND");
    EXPECT_EQ(window.document.location_flag, 0);
    EXPECT_EQ(window.Caption, L"before");
    EXPECT_TRUE(window.score.changed);
    EXPECT_FALSE(desk.settings.contains(kLastFile));
}

TEST_F(DocumentTest, TheLocationIsStoredAsTheSaveMadeIt) {
    ComposeAt(L"C:\\Songs\\OLD.SND", 0);
    desk.save_choices = {kTune};
    mnuFileSaveWithName_Click(window);
    EXPECT_EQ(window.document.location_flag, 1);
    EXPECT_EQ(desk.settings.at(kLastFile), L"1,PC:TUNE.SND,C:\\Songs\\TUNE.SND");
}

TEST_F(DocumentTest, SaveIsAllOrNothingAtEveryDiskOperation) {
    for (const bool for_good : {false, true}) {
        for (int fail_at = 0; fail_at < 20; ++fail_at) {
            ComposeAt(kTune);
            desk.messages.clear();
            desk.files.clear();
            desk.files[kTune] = {{1, 2, 3}};
            desk.fail_at = desk.file_operations + fail_at;
            desk.fail_for_good = for_good;
            mnuFileOverWrite_Click(window);
            const bool old_is_there = desk.files.at(kTune).bytes == Bytes{1, 2, 3};
            if (!old_is_there) {
                EXPECT_EQ(desk.files.at(kTune).bytes, EncodedScore());
            }
            EXPECT_EQ(window.score.changed, old_is_there) << "operation " << fail_at;
            EXPECT_EQ(desktop::Told(), old_is_there ? Texts{L"Write error!"} : Texts{})
                << "operation " << fail_at;
            EXPECT_EQ(window.Caption, old_is_there ? L"before" : L"Sound Editor - PC:TUNE.SND");
            EXPECT_EQ(window.document.current_path, kTune);
            if (!for_good) {
                EXPECT_EQ(FilesWith(L"~snd"), 0) << "operation " << fail_at;
            }
            desk.fail_at = -1;
        }
    }
}

TEST_F(DocumentTest, ASaveSweepsWhatKilledSavesLeftLongAgo) {
    ComposeAt(kTune);
    desk.files[L"C:\\Songs\\~snd5.tmp"] = {{1}, 32, 90000};
    mnuFileOverWrite_Click(window);
    EXPECT_EQ(FilesWith(L"~snd"), 0);
}

} // namespace tonex::document_commands_test
