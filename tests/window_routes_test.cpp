// Start-up and close: the order of events line by line, what is opened first, what keeps the window open.
#include "app/layout_commands.h"
#include "app/menu_routes.h"
#include "app/sndmain.h"
#include "app/window_routes.h"
#include "platform/text.h"
#include "score/document_commands.h"
#include "score/snd_file.h"
#include "tests/desktop/desktop.h"
#include "tests/set_up_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace tonex::window_routes_test {

using namespace tonex::testing;

namespace {

using Bytes = std::vector<std::uint8_t>;
using Log = std::vector<std::string>;

constexpr const wchar_t* kTune = L"C:\\Songs\\TUNE.SND";
constexpr const wchar_t* kCacheTune = L"C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND";
constexpr const wchar_t* kLastFile = L"Corvane\\Tonex\\File1";
const Bytes kOneNote = {7, 0, 8, 0, 26, 52, 255, 255, 0, 0, 120, 0, 26, 10, 255, 255};

struct StartUpTest : ::testing::Test {
    desktop::Desktop& desk = desktop::Reset();
    std::unique_ptr<sndmain> owner = std::make_unique<sndmain>();
    sndmain& window = *owner;

    StartUpTest() { desktop::InstallLinkSoftware(); }

    StartResult Start(const wchar_t* command_line = L"") { return StartUp(window, command_line); }
    void StartAndCompose() {
        ASSERT_EQ(Start(), StartResult::Run);
        FillScore(window, 3);
        window.score.changed = true;
        window.document.current_path = kTune;
        desk.log.clear();
    }
};

using Texts = std::vector<std::wstring>;

} // namespace

TEST_F(StartUpTest, TheOrderOfDesktopCallsIsTheListsOrder) {
    desk.settings[L"Corvane\\Tonex\\WindwInformation"] = L"1,600,100,500,200";
    EXPECT_EQ(Start(), StartResult::Run);
    // One line an event; the device count is asked each time the enabling is refreshed with entries there.
    const Log expected = {
        "PreviousInstanceRunning",
        "MeasureScreen",
        "ReadSetting Corvane\\Tonex\\WindwInformation",
        "SetMainWindowPlacement 1 100 200 500 600",
        "OpenUserKey Software\\QMT\\Corvane-e\\PC",
        "QueryTextSize InstallDir",
        "QueryText InstallDir 10",
        "CloseKey",
        "FolderExists C:\\Link\\userdata\\sound",
        "LoadLinkLibrary C:\\Link",
        "ProgramFolder",
        "ReadSetting Corvane\\Tonex\\DoremiFlag",
        "ReadSetting Corvane\\Tonex\\File1",
        "TemporaryFolder",
        "TemporaryFolder",
        "ListFiles C:\\Temp\\ $$\?\?\?\?\?\?.wav",
        "ListFiles C:\\Temp\\ $$\?\?\?\?\?\?.snd",
        "ListFiles C:\\Temp\\ Snd*.tmp",
        "ListFiles C:\\Temp\\ ~snd*.tmp",
    };
    EXPECT_EQ(desk.log, expected);
}

TEST_F(StartUpTest, TheEditorStartsEmptyAndUntitled) {
    EXPECT_EQ(Start(), StartResult::Run);
    EXPECT_EQ(window.Caption, L"Sound Editor - Untitled");
    EXPECT_EQ(window.score.end_count, 1);
    EXPECT_FALSE(window.score.changed);
    EXPECT_FALSE(window.second_copy);
    EXPECT_EQ(window.document.location_flag, 1);
    EXPECT_EQ(window.TempoCombo.Text, L" 120");
    EXPECT_EQ(window.TempoCombo.ListIndex, 7);
    EXPECT_EQ(window.TempoCombo.List.size(), 28u);
    EXPECT_EQ(window.lblTempo.Caption, L"Allegro");
    EXPECT_EQ(window.link.HelpFilePath, L"C:\\Program Files\\Tonex\\Veloxa.hlp");
    EXPECT_EQ(window.grdScore.Cols, 1);
    EXPECT_EQ(TextOf(window, 0), L" - ");
    EXPECT_GE(window.ClientWidth, kMinClientWidth);
    EXPECT_FALSE(window.item(MenuItem::mnuCut).Enabled);
    EXPECT_FALSE(window.item(MenuItem::mnuPreview).Enabled);
    EXPECT_FALSE(window.item(MenuItem::mnuPaste).Enabled);
    EXPECT_FALSE(window.lblWNote[0].Caption == CellText());
    EXPECT_FALSE(desk.settings.contains(kLastFile));
}

TEST_F(StartUpTest, TheScreensMeasuresAreTakenBeforeTheStaffOffsetIsWorkedOut) {
    desk.screen.twips_per_pixel_x = 7.5F;
    desk.screen.twips_per_pixel_y = 7.5F;
    EXPECT_EQ(Start(), StartResult::Run);
    EXPECT_EQ(window.screen.twips_per_pixel_y, 7.5F);
    EXPECT_EQ(window.StaffOffset, 100); // (240 - 120) x 5 / 6
}

TEST_F(StartUpTest, TheNoteNameSettingIsRead) {
    desk.settings[L"Corvane\\Tonex\\DoremiFlag"] = L"-1";
    EXPECT_EQ(Start(), StartResult::Run);
    EXPECT_TRUE(window.doremi);
    EXPECT_TRUE(window.item(MenuItem::mnuDoremi).Checked);
    EXPECT_EQ(window.lblWNote[0].Caption.View(), L"ド");
}

TEST_F(StartUpTest, ASecondCopyActivatesTheFirstAndEnds) {
    desk.previous_instance = true;
    desk.windows = {{L"Sound Editor - Untitled", 900, true}};
    EXPECT_EQ(Start(kTune), StartResult::EndSilent);
    EXPECT_TRUE(window.second_copy);
    EXPECT_EQ(desk.log,
              (Log{"PreviousInstanceRunning", "ReadCaption 1", "RestoreWindow 1", "BringToForeground 1"}));
}

TEST_F(StartUpTest, ASecondCopyDoesNotHandItsFileOver) {
    desk.previous_instance = true;
    desk.files[kTune] = {kOneNote};
    desk.windows = {{L"Sound Editor - Untitled", 900, true}};
    EXPECT_EQ(Start(kTune), StartResult::EndSilent);
    EXPECT_EQ(window.document.current_path, L"");
    EXPECT_EQ(window.score.end_count, 1);
    EXPECT_FALSE(desktop::Asked("ReadWholeFile"));
}

TEST_F(StartUpTest, ASecondCopyEndsWhenNoWindowMatchesToo) {
    desk.previous_instance = true;
    EXPECT_EQ(Start(), StartResult::EndSilent);
    EXPECT_EQ(desk.log, Log{"PreviousInstanceRunning"});
}

TEST_F(StartUpTest, WithoutTheLinkSoftwareTheProgramEndsInSilence) {
    desk.registry.clear();
    EXPECT_EQ(Start(kTune), StartResult::EndSilent);
    EXPECT_TRUE(desk.messages.empty());
    EXPECT_TRUE(desk.settings.empty());
    EXPECT_FALSE(window.second_copy);
}

TEST_F(StartUpTest, StartingTwiceGivesTheSameRecord) {
    desk.files[kTune] = {kOneNote};
    EXPECT_EQ(Start(kTune), StartResult::Run);
    sndmain again;
    EXPECT_EQ(StartUp(again, kTune), StartResult::Run);
    EXPECT_EQ(again.score.sound, window.score.sound);
    EXPECT_EQ(again.imgNote, window.imgNote);
    EXPECT_EQ(again.kenWhite, window.kenWhite);
    EXPECT_EQ(again.TempoCombo.List, window.TempoCombo.List);
    EXPECT_EQ(again.Caption, window.Caption);
}

// What is opened first.

TEST_F(StartUpTest, TheFileOfTheCommandLineIsOpened) {
    for (const wchar_t* command_line : {kTune, L"\"C:\\Songs\\TUNE.SND\""}) {
        desk.files[kTune] = {kOneNote};
        desk.settings[kLastFile] = L"1,PC:OTHER.SND,C:\\Songs\\OTHER.SND";
        *owner = sndmain{};
        EXPECT_EQ(Start(command_line), StartResult::Run);
        EXPECT_EQ(window.score.end_count, 2);
        EXPECT_EQ(window.document.current_path, kTune);
        EXPECT_EQ(window.document.location_flag, 1);
        EXPECT_EQ(window.link.PcSoundDir, L"C:\\Songs\\");
        EXPECT_EQ(window.Caption, L"Sound Editor - PC:TUNE.SND");
        EXPECT_EQ(desk.settings.at(kLastFile), L"1,PC:TUNE.SND,C:\\Songs\\TUNE.SND");
    }
    EXPECT_FALSE(desktop::Asked("ReadSetting Corvane\\Tonex\\File1"));
}

TEST_F(StartUpTest, ADeviceFileOfTheCommandLineIsOpenedAsOne) {
    desk.files[kCacheTune] = {kOneNote};
    EXPECT_EQ(Start(kCacheTune), StartResult::Run);
    EXPECT_EQ(window.document.location_flag, 0);
    EXPECT_EQ(window.Caption, L"Sound Editor - Veloxa:TUNE.SND");
    EXPECT_EQ(window.link.CacheSoundDir, L"C:\\Link\\pcferry\\cache\\System\\sound\\");
    EXPECT_EQ(window.link.PcSoundDir, L"C:\\Link\\userdata\\sound");
}

TEST_F(StartUpTest, AnotherKindOfFileOnTheCommandLineLeavesAnUntitledScore) {
    EXPECT_EQ(Start(L"C:\\Songs\\TUNE.wav"), StartResult::Run);
    EXPECT_EQ(desktop::Told(), Texts{L"This is not a sound file."});
    EXPECT_EQ(window.document.current_path, L"");
    EXPECT_EQ(window.Caption, L"Sound Editor - Untitled");
}

TEST_F(StartUpTest, AMissingFileOnTheCommandLineIsAReadError) {
    EXPECT_EQ(Start(kTune), StartResult::Run);
    EXPECT_EQ(desktop::Told(), Texts{L"Read error!"});
    EXPECT_EQ(window.Caption, L"Sound Editor - Untitled");
}

TEST_F(StartUpTest, EmptyQuotesOnTheCommandLineNameNoFile) {
    desk.files[kTune] = {kOneNote};
    desk.settings[kLastFile] = L"1,PC:TUNE.SND,C:\\Songs\\TUNE.SND";
    EXPECT_EQ(Start(L"\"\""), StartResult::Run);
    EXPECT_EQ(window.document.current_path, kTune);
}

TEST_F(StartUpTest, TheLastDocumentIsReopened) {
    desk.files[kTune] = {kOneNote};
    desk.settings[kLastFile] = L"1,PC:TUNE.SND,C:\\Songs\\TUNE.SND";
    EXPECT_EQ(Start(), StartResult::Run);
    EXPECT_EQ(window.score.end_count, 2);
    EXPECT_EQ(window.document.current_path, kTune);
    EXPECT_EQ(window.Caption, L"Sound Editor - PC:TUNE.SND");
    EXPECT_EQ(window.link.PcSoundDir, L"C:\\Songs\\");
}

TEST_F(StartUpTest, APcFileIsReopenedWithoutAnyLibraryCallBeyondCorIsOnPcFile) {
    desk.files[L"C:\\x\\A.SND"] = {kOneNote};
    desk.settings[kLastFile] = L"1,PC:A.SND,C:\\x\\A.SND";
    EXPECT_EQ(Start(), StartResult::Run);
    for (const std::string& line : desk.log) {
        EXPECT_TRUE(!line.starts_with("Cor_") || line == "Cor_IsOnPcFile C:\\x\\A.SND") << line;
    }
    EXPECT_EQ(window.document.current_path, L"C:\\x\\A.SND");
}

TEST_F(StartUpTest, TheLastDeviceDocumentIsFetchedAndReopened) {
    desk.files[kCacheTune] = {kOneNote};
    desk.settings[kLastFile] = L"0,Veloxa:TUNE.SND,C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND";
    EXPECT_EQ(Start(), StartResult::Run);
    EXPECT_TRUE(desktop::Asked("Cor_GetFile \\System\\sound\\TUNE.SND -1"));
    EXPECT_EQ(window.document.location_flag, 0);
    EXPECT_EQ(window.Caption, L"Sound Editor - Veloxa:TUNE.SND");
}

TEST_F(StartUpTest, ALastDocumentThatIsGoneLeavesAnUntitledScoreInSilence) {
    for (const wchar_t* text :
         {L"1,PC:TUNE.SND,C:\\Songs\\TUNE.SND",
          L"0,Veloxa:TUNE.SND,C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND", L"", L"nonsense"}) {
        desk.settings[kLastFile] = text;
        *owner = sndmain{};
        EXPECT_EQ(Start(), StartResult::Run);
        EXPECT_TRUE(desk.messages.empty()) << desktop::Utf8(text);
        EXPECT_EQ(window.document.current_path, L"");
        EXPECT_EQ(window.Caption, L"Sound Editor - Untitled");
    }
}

TEST_F(StartUpTest, ALastDocumentOfAnotherKindIsNotTheTargetOfALaterSave) {
    desk.files[L"C:\\x\\LETTER.TXT"] = {{1, 2, 3}};
    desk.settings[kLastFile] = L"1,PC:LETTER.TXT,C:\\x\\LETTER.TXT";
    EXPECT_EQ(Start(), StartResult::Run);
    EXPECT_EQ(desktop::Told(), Texts{L"This is not a sound file."});
    EXPECT_EQ(window.document.current_path, L"");
    EXPECT_EQ(desk.settings.at(kLastFile), L"1,PC:,") << "the next start does not tell of it again";
}

TEST_F(StartUpTest, ARelativePathOfTheCommandLineIsCompleted) {
    desk.current_folder = L"C:\\Songs";
    desk.files[kTune] = {kOneNote};
    EXPECT_EQ(Start(L"\"TUNE.SND\""), StartResult::Run);
    EXPECT_EQ(window.document.current_path, kTune);
    EXPECT_EQ(desk.settings.at(kLastFile), L"1,PC:TUNE.SND,C:\\Songs\\TUNE.SND");
}

TEST_F(StartUpTest, ARelativePathInsideTheCacheIsADevicesFile) {
    desk.current_folder = L"C:\\Link\\pcferry\\cache\\System\\sound";
    desk.files[kCacheTune] = {kOneNote};
    EXPECT_EQ(Start(L"TUNE.SND"), StartResult::Run);
    EXPECT_EQ(window.document.location_flag, 0);
    EXPECT_EQ(window.Caption, L"Sound Editor - Veloxa:TUNE.SND");
}

// Dropped files.

TEST_F(StartUpTest, ADroppedFileIsOpened) {
    ASSERT_EQ(Start(), StartResult::Run);
    desk.files[kTune] = {kOneNote};
    desk.files[kCacheTune] = {kOneNote};
    OpenDroppedFile(window, kTune);
    EXPECT_EQ(window.Caption, L"Sound Editor - PC:TUNE.SND");
    EXPECT_EQ(window.document.location_flag, 1);
    OpenDroppedFile(window, kCacheTune);
    EXPECT_EQ(window.Caption, L"Sound Editor - Veloxa:TUNE.SND");
    EXPECT_EQ(window.document.location_flag, 0);
    EXPECT_EQ(window.link.PcSoundDir, L"C:\\Songs\\");
    EXPECT_EQ(window.link.CacheSoundDir, L"C:\\Link\\pcferry\\cache\\System\\sound\\");
}

TEST_F(StartUpTest, DroppingAFileWithAnotherExtensionLeavesTheDocumentUnchanged) {
    StartAndCompose();
    window.score.changed = false;
    const std::wstring caption = window.Caption;
    OpenDroppedFile(window, L"C:\\Songs\\TUNE.mid");
    EXPECT_EQ(desktop::Told(), Texts{L"This is not a sound file."});
    EXPECT_EQ(window.score.end_count, 4);
    EXPECT_EQ(window.document.current_path, kTune);
    EXPECT_EQ(window.document.location_flag, 1);
    EXPECT_EQ(window.Caption, caption);
}

TEST_F(StartUpTest, ADropAsksToSaveFirst) {
    StartAndCompose();
    desk.answers = {MessageAnswer::Cancel};
    OpenDroppedFile(window, kTune);
    EXPECT_EQ(window.score.end_count, 4);
    EXPECT_TRUE(window.score.changed);
}

TEST_F(StartUpTest, ADropAsksBeforeItLooksAtTheExtension) {
    StartAndCompose();
    desk.answers = {MessageAnswer::No};
    OpenDroppedFile(window, L"C:\\Songs\\TUNE.mid");
    EXPECT_EQ(desktop::Told(), (Texts{L"Do you want to save the changes?", L"This is not a sound file."}));
    EXPECT_EQ(window.score.end_count, 4);
}

TEST_F(StartUpTest, ADropOnADisabledWindowIsNotTaken) {
    StartAndCompose();
    window.Enabled = false;
    OpenDroppedFile(window, kTune);
    EXPECT_EQ(window.score.end_count, 4);
    EXPECT_TRUE(desk.log.empty());
}

// Closing.

TEST_F(StartUpTest, ClosingAsksDisconnectsAndStoresThePlacementInThisOrder) {
    StartAndCompose();
    desk.answers = {MessageAnswer::No};
    EXPECT_TRUE(CloseAllowed(window));
    EXPECT_EQ(desk.log,
              (Log{"ShowMessage Do you want to save the changes?", "Cor_DoDisconnect",
                   "GetMainWindowPlacement", "WriteSetting Corvane\\Tonex\\WindwInformation 1,0,0,0,0"}));
}

TEST_F(StartUpTest, AStartDeletesWhatKilledRunsLeftInBothFoldersForTemporaryFiles) {
    constexpr std::uint64_t kOld = 100000; // seconds
    desk.code_page = 1252;
    desk.temporary_folder = L"C:\\Users\\\x5F20\\Temp\\";
    desk.files[desk.temporary_folder + L"$$235959.wav"] = {{1}, 32, kOld};
    desk.files[desk.temporary_folder + L"$$235959.txt"] = {{1}, 32, kOld};
    desk.files[L"C:\\Link\\Snd1A.tmp"] = {{1}, 32, kOld};
    desk.files[L"C:\\Link\\Snd1B.tmp"] = {{1}, 32, 5};
    ASSERT_EQ(Start(), StartResult::Run);
    EXPECT_FALSE(desk.files.contains(desk.temporary_folder + L"$$235959.wav"));
    EXPECT_TRUE(desk.files.contains(desk.temporary_folder + L"$$235959.txt"));
    EXPECT_FALSE(desk.files.contains(L"C:\\Link\\Snd1A.tmp"));
    EXPECT_TRUE(desk.files.contains(L"C:\\Link\\Snd1B.tmp"));
}

TEST_F(StartUpTest, ASecondCopyDeletesNothing) {
    desk.previous_instance = true;
    desk.files[L"C:\\Temp\\$$235959.wav"] = {{1}, 32, 100000};
    EXPECT_EQ(Start(), StartResult::EndSilent);
    EXPECT_TRUE(desk.files.contains(L"C:\\Temp\\$$235959.wav"));
}

TEST_F(StartUpTest, ClosingDeletesWhatAPlayerHeld) {
    StartAndCompose();
    desk.files[L"C:\\Temp\\$$235959.wav"] = {{1}};
    window.leftovers = {L"C:\\Temp\\$$235959.wav"};
    desk.answers = {MessageAnswer::Cancel, MessageAnswer::No};
    EXPECT_FALSE(CloseAllowed(window));
    EXPECT_TRUE(desk.files.contains(L"C:\\Temp\\$$235959.wav"));
    EXPECT_TRUE(CloseAllowed(window));
    EXPECT_FALSE(desk.files.contains(L"C:\\Temp\\$$235959.wav"));
}

TEST_F(StartUpTest, ClosingASecondCopyEndsItWithoutTheSavePrompt) {
    StartAndCompose();
    window.second_copy = true;
    EXPECT_TRUE(CloseAllowed(window));
    EXPECT_TRUE(desk.log.empty());
}

TEST_F(StartUpTest, CancellingThePromptKeepsTheWindowOpen) {
    StartAndCompose();
    desk.answers = {MessageAnswer::Cancel};
    EXPECT_FALSE(CloseAllowed(window));
    EXPECT_EQ(desk.log, Log{"ShowMessage Do you want to save the changes?"});
    EXPECT_EQ(window.score.end_count, 4);
}

TEST_F(StartUpTest, ARefusedDisconnectKeepsTheWindowOpenWithTheScoreUntouched) {
    StartAndCompose();
    const auto before = window.score.sound;
    desk.link.disconnect_result = 3;
    desk.answers = {MessageAnswer::No};
    EXPECT_FALSE(CloseAllowed(window));
    EXPECT_EQ(window.score.sound, before);
    EXPECT_TRUE(window.score.changed);
    EXPECT_FALSE(desktop::Asked("GetMainWindowPlacement"));
    EXPECT_FALSE(desktop::Asked("WriteSetting"));
}

TEST_F(StartUpTest, AnUnwritableDiskKeepsTheWindowOpen) {
    StartAndCompose();
    desk.refusing_folders.insert(L"C:\\Songs");
    desk.answers = {MessageAnswer::Yes};
    EXPECT_FALSE(CloseAllowed(window));
    EXPECT_EQ(desktop::Told(), (Texts{L"Do you want to save the changes?", L"Write error!"}));
    EXPECT_TRUE(window.score.changed);
    EXPECT_FALSE(desktop::Asked("Cor_DoDisconnect"));
}

TEST_F(StartUpTest, TheWindowStaysOpenWhileAPreviewRuns) {
    StartAndCompose();
    window.preview_busy = true;
    EXPECT_FALSE(CloseAllowed(window));
    EXPECT_TRUE(desk.log.empty());
}

// The end of the session.

TEST_F(StartUpTest, AtTheQueryForTheSessionsEndTheUserIsAskedAndNothingElseIsDone) {
    for (const MessageAnswer answer : {MessageAnswer::No, MessageAnswer::Cancel}) {
        StartAndCompose();
        desk.answers = {answer};
        EXPECT_EQ(SessionMayEnd(window, false), answer == MessageAnswer::No);
        EXPECT_EQ(desk.log, Log{"ShowMessage Do you want to save the changes?"});
        EXPECT_TRUE(window.score.changed) << "another program may still keep the session";
    }
}

TEST_F(StartUpTest, TheSessionMayEndAtOnceWithNothingToLose) {
    StartAndCompose();
    window.score.changed = false;
    EXPECT_EQ(ReasonToStay(window), L"");
    EXPECT_TRUE(SessionMayEnd(window, false));
    EXPECT_TRUE(SessionMayEnd(window, true));
    EXPECT_TRUE(desk.log.empty());
}

TEST_F(StartUpTest, WithABoxOpenTheSessionMayEndOnlyWhereNoMelodyWouldBeLost) {
    StartAndCompose();
    EXPECT_EQ(ReasonToStay(window), L"The melody has not been saved.");
    EXPECT_FALSE(SessionMayEnd(window, true));
    EXPECT_TRUE(desk.log.empty()) << "a second box";
    FillScore(window, {Entry{0, 0, 0}});
    window.score.changed = true;
    EXPECT_EQ(ReasonToStay(window), L"") << "separators alone are no melody";
    EXPECT_TRUE(SessionMayEnd(window, true));
}

TEST_F(StartUpTest, APreviewKeepsTheSessionAndSaysWhy) {
    StartAndCompose();
    window.score.changed = false;
    window.preview_busy = true;
    EXPECT_EQ(ReasonToStay(window), L"A melody is being played.");
    EXPECT_FALSE(SessionMayEnd(window, false));
    EXPECT_FALSE(SessionMayEnd(window, true));
    EXPECT_TRUE(desk.log.empty());
}

TEST_F(StartUpTest, TheSessionsEndDisconnectsAndStoresThePlacementWhateverTheLinkSays) {
    for (const int result : {0, 3}) {
        StartAndCompose();
        desk.link.disconnect_result = static_cast<std::int16_t>(result);
        EndSession(window);
        EXPECT_EQ(desk.log, (Log{"Cor_DoDisconnect", "GetMainWindowPlacement",
                                 "WriteSetting Corvane\\Tonex\\WindwInformation 1,0,0,0,0"}))
            << "result " << result;
    }
}

TEST_F(StartUpTest, TheSessionsEndDeletesWhatAPlayerHeld) {
    StartAndCompose();
    desk.files[L"C:\\Temp\\$$235959.wav"] = {{1}};
    window.leftovers = {L"C:\\Temp\\$$235959.wav"};
    EndSession(window);
    EXPECT_FALSE(desk.files.contains(L"C:\\Temp\\$$235959.wav"));
}

TEST_F(StartUpTest, ASecondCopyHasNothingToDoAtTheSessionsEnd) {
    StartAndCompose();
    window.second_copy = true;
    EXPECT_EQ(ReasonToStay(window), L"");
    EXPECT_TRUE(SessionMayEnd(window, false));
    EndSession(window);
    EXPECT_TRUE(desk.log.empty());
}

// The transfer reminder.

namespace {

struct Reminder : StartUpTest {
    Reminder() {
        StartAndCompose();
        desk.link.save_choices = {"\\System\\sound\\TUNE.SND"};
    }
    void WorkOnTheDevice() {
        RunMenuItem(window, MenuItem::mnuFileSaveWithNameZ730);
        desk.log.clear();
    }
    void Close() {
        desk.answers = {MessageAnswer::No};
        EXPECT_TRUE(CloseAllowed(window));
    }
};

} // namespace

TEST_F(Reminder, IsShownAfterDeviceWorkBetweenDisconnectAndPlacement) {
    WorkOnTheDevice();
    Close();
    EXPECT_EQ(desk.log,
              (Log{"Cor_DoDisconnect", "ReadSetting Corvane\\Global\\MsgDsp", "ShowTransferReminder",
                   "GetMainWindowPlacement", "WriteSetting Corvane\\Tonex\\WindwInformation 1,0,0,0,0"}));
}

TEST_F(Reminder, ItsCheckMarkIsStored) {
    WorkOnTheDevice();
    desk.reminder_ticked = true;
    Close();
    EXPECT_EQ(desk.settings.at(L"Corvane\\Global\\MsgDsp"), L"1");
}

TEST_F(Reminder, WithoutItsCheckMarkNothingIsStored) {
    WorkOnTheDevice();
    Close();
    EXPECT_FALSE(desk.settings.contains(L"Corvane\\Global\\MsgDsp"));
}

TEST_F(Reminder, IsNotShownWhenItIsNotWanted) {
    desk.settings[L"Corvane\\Global\\MsgDsp"] = L"1";
    WorkOnTheDevice();
    Close();
    EXPECT_FALSE(desktop::Asked("ShowTransferReminder"));
}

TEST_F(Reminder, IsNotShownWithoutDeviceWork) {
    Close();
    EXPECT_FALSE(desktop::Asked("ShowTransferReminder"));
}

TEST_F(Reminder, IsNotShownWhenTheDeviceRefusedTheUpload) {
    desk.link.put_result = 1;
    WorkOnTheDevice();
    Close();
    EXPECT_FALSE(desktop::Asked("ShowTransferReminder"));
}

TEST_F(Reminder, IsNotShownWhenTheDisconnectIsRefused) {
    WorkOnTheDevice();
    desk.link.disconnect_result = 1;
    EXPECT_FALSE(CloseAllowed(window));
    EXPECT_FALSE(desktop::Asked("ShowTransferReminder"));
}

} // namespace tonex::window_routes_test
