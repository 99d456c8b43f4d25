// Settings: the last document, window placement, the transfer reminder's choice, help and About.
#include "app/sndmain.h"
#include "link/settings_commands.h"
#include "tests/desktop/desktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tonex::settings_commands_test {

namespace {

constexpr const wchar_t* kPlacement = L"Corvane\\Tonex\\WindwInformation";
constexpr const wchar_t* kReminder = L"Corvane\\Global\\MsgDsp";

struct Settings : ::testing::Test {
    desktop::Desktop& desk = desktop::Reset();
    sndmain window;

    Settings() {
        window.screen.width = 15360;
        window.screen.height = 11520;
        desk.window_width = 12000;
        desk.window_height = 8000;
    }
};

constexpr const char* kCentred = "MoveMainWindow 1680 1760";

} // namespace

TEST_F(Settings, StoreLastDocumentWritesFile1) {
    window.document.current_path = L"C:\\x\\A.SND";
    window.document.location_flag = 0;
    StoreLastDocument(window);
    EXPECT_EQ(desk.settings.at(L"Corvane\\Tonex\\File1"), L"0,Veloxa:A.SND,C:\\x\\A.SND");
}

TEST_F(Settings, TheLastDocumentIsReadFromTheSectionThatIsAskedFor) {
    EXPECT_EQ(ReadLastDocument(L"Tonex").path, L"");
    desk.settings[L"Corvane\\Tonex\\File1"] = L"1,PC:A.SND,C:\\x\\A.SND";
    EXPECT_EQ(ReadLastDocument(L"Tonex").path, L"C:\\x\\A.SND");
    EXPECT_EQ(ReadLastDocument(L"Tonex").location_flag, 1);
    EXPECT_EQ(ReadLastDocument(L"Sclview").path, L"");
}

TEST_F(Settings, SaveWindowPlacementStoresUnderTheHistoricalKey) {
    desk.placement = WindowPlacement{};
    desk.placement->right = 500;
    desk.placement->bottom = 600;
    SaveWindowPlacement(L"Tonex");
    EXPECT_EQ(desk.settings.at(kPlacement), L"1,600,0,500,0");
}

TEST_F(Settings, SaveWindowPlacementStoresNothingWhenTheSystemRefuses) {
    desk.placement.reset();
    SaveWindowPlacement(L"Tonex");
    EXPECT_TRUE(desk.settings.empty());
}

TEST_F(Settings, StoredPlacementRestoresASizableWindowAsNormalNotMinimised) {
    for (const int style : {kBorderSizable, kBorderSizableToolWindow}) {
        desk.log.clear();
        desk.border_style = style;
        desk.settings[kPlacement] = L"2,600,100,500,200";
        EXPECT_TRUE(RestoreWindowPlacement(window, L"Tonex"));
        EXPECT_TRUE(desktop::Asked("SetMainWindowPlacement 1 100 200 500 600"));
        EXPECT_FALSE(desktop::Asked("MoveMainWindow"));
    }
}

TEST_F(Settings, AMaximisedWindowComesBackMaximised) {
    desk.settings[kPlacement] = L"3,600,100,500,200";
    EXPECT_TRUE(RestoreWindowPlacement(window, L"Tonex"));
    EXPECT_TRUE(desktop::Asked("SetMainWindowPlacement 3 100 200 500 600"));
}

TEST_F(Settings, AFixedSizeWindowOnlyMoves) {
    desk.border_style = kBorderFixedSingle;
    desk.settings[kPlacement] = L"2,600,100,500,200";
    EXPECT_FALSE(RestoreWindowPlacement(window, L"Tonex"));
    EXPECT_TRUE(desktop::Asked("MoveMainWindow 1500 3000"));
    EXPECT_FALSE(desktop::Asked("SetMainWindowPlacement"));
}

TEST_F(Settings, AFixedSizeWindowsPixelsAreTurnedIntoTheScreensUnits) {
    desk.border_style = kBorderFixedSingle;
    window.screen.twips_per_pixel_x = 7.5F;
    window.screen.twips_per_pixel_y = 10;
    desk.settings[kPlacement] = L"1,600,101,500,-20";
    EXPECT_FALSE(RestoreWindowPlacement(window, L"Tonex"));
    EXPECT_TRUE(desktop::Asked("MoveMainWindow 757 -200"));
}

TEST_F(Settings, AFixedSizeWindowFarOutsideEveryNumberIsCentred) {
    desk.border_style = kBorderFixedSingle;
    desk.settings[kPlacement] = L"1,600,2147483647,500,200";
    EXPECT_FALSE(RestoreWindowPlacement(window, L"Tonex"));
    EXPECT_TRUE(desktop::Asked(kCentred));
}

TEST_F(Settings, AFixedSizeWindowThatIsTooFarOnOneSideOnlyIsCentredToo) {
    desk.border_style = kBorderFixedSingle;
    for (const wchar_t* text : {L"1,600,2147483647,500,200", L"1,600,100,500,2147483647"}) {
        desk.log.clear();
        desk.settings[kPlacement] = text;
        EXPECT_FALSE(RestoreWindowPlacement(window, L"Tonex"));
        EXPECT_TRUE(desktop::Asked(kCentred)) << desktop::Utf8(text);
    }
}

TEST_F(Settings, AFixedSizeWindowMovesToTheLargestAndTheSmallestNumber) {
    desk.border_style = kBorderFixedSingle;
    window.screen.twips_per_pixel_x = 1;
    window.screen.twips_per_pixel_y = 2;
    desk.settings[kPlacement] = L"1,600,2147483647,500,-1073741824";
    EXPECT_FALSE(RestoreWindowPlacement(window, L"Tonex"));
    EXPECT_TRUE(desktop::Asked("MoveMainWindow 2147483647 -2147483648"));
}

TEST_F(Settings, AMissingOrEmptyPlacementCentresTheWindow) {
    EXPECT_FALSE(RestoreWindowPlacement(window, L"Tonex"));
    EXPECT_TRUE(desktop::Asked(kCentred));
    desk.log.clear();
    desk.settings[kPlacement] = L"";
    EXPECT_FALSE(RestoreWindowPlacement(window, L"Tonex"));
    EXPECT_TRUE(desktop::Asked(kCentred));
}

TEST_F(Settings, ADamagedPlacementCentresTheWindowWhateverItsBorder) {
    for (const int style : {kBorderSizable, kBorderFixedSingle}) {
        for (const wchar_t* text : {L"2,600,100,500", L"x,600,100,500,200", L"1,600,4294967396,500,200"}) {
            desk.log.clear();
            desk.border_style = style;
            desk.settings[kPlacement] = text;
            EXPECT_FALSE(RestoreWindowPlacement(window, L"Tonex"));
            EXPECT_TRUE(desktop::Asked(kCentred)) << desktop::Utf8(text);
            EXPECT_FALSE(desktop::Asked("SetMainWindowPlacement"));
        }
    }
}

TEST_F(Settings, APlacementThatTheSystemRefusesCentresTheWindow) {
    desk.placement_accepted = false;
    desk.settings[kPlacement] = L"1,600,100,500,200";
    EXPECT_FALSE(RestoreWindowPlacement(window, L"Tonex"));
    EXPECT_TRUE(desktop::Asked(kCentred));
}

TEST_F(Settings, MsgDspOfOneMeansThatTheReminderIsNotWanted) {
    EXPECT_FALSE(ReadMsgDsp());
    for (const wchar_t* wanted : {L"0", L"2", L"-1", L"", L"yes", L"10", L"0.5", L"1.2"}) {
        desk.settings[kReminder] = wanted;
        EXPECT_FALSE(ReadMsgDsp()) << desktop::Utf8(wanted);
    }
    for (const wchar_t* not_wanted : {L"1", L" 1", L"1.0"}) {
        desk.settings[kReminder] = not_wanted;
        EXPECT_TRUE(ReadMsgDsp()) << desktop::Utf8(not_wanted);
    }
}

TEST_F(Settings, SaveMsgDspWritesToTheSuitesSection) {
    SaveMsgDsp(1);
    EXPECT_EQ(desk.settings.at(kReminder), L"1");
    SaveMsgDsp(0);
    EXPECT_EQ(desk.settings.at(kReminder), L"0");
}

TEST_F(Settings, TheSettingMenuReadsTheReminderEachTimeItOpens) {
    MenuState& entry = window.item(MenuItem::MenuCheckMsg);
    desk.settings[kReminder] = L"1";
    MenuDefine_Open(window);
    EXPECT_FALSE(entry.Checked);
    desk.settings[kReminder] = L"7";
    MenuDefine_Open(window);
    EXPECT_TRUE(entry.Checked);
    desk.settings.clear();
    MenuDefine_Open(window);
    EXPECT_TRUE(entry.Checked);
}

TEST_F(Settings, ChoosingTheEntryTurnsTheReminderOffAndOn) {
    MenuState& entry = window.item(MenuItem::MenuCheckMsg);
    MenuDefine_Open(window);
    ASSERT_TRUE(entry.Checked);
    MenuCheckMsg_Click(window);
    EXPECT_FALSE(entry.Checked);
    EXPECT_EQ(desk.settings.at(kReminder), L"1");
    MenuCheckMsg_Click(window);
    EXPECT_TRUE(entry.Checked);
    EXPECT_EQ(desk.settings.at(kReminder), L"0");
}

TEST_F(Settings, HelpOpensAtTheKeywordSearchWithAnEmptyKey) {
    window.link.HelpFilePath = L"C:\\Program Files\\Tonex\\Veloxa.hlp";
    MenuTopic_Click(window);
    EXPECT_TRUE(desktop::Asked("OpenHelpFile C:\\Program Files\\Tonex\\Veloxa.hlp 261 \"\""));
    EXPECT_FALSE(desktop::Asked("OpenHelpGuide"));
}

TEST_F(Settings, HelpFallsBackToTheGuide) {
    desk.help_opens = false;
    ShowHelp(window);
    EXPECT_TRUE(desktop::Asked("OpenHelpGuide"));
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(Settings, HelpSaysSoWhenThereIsNeitherFile) {
    desk.help_opens = false;
    desk.guide_opens = false;
    ShowHelp(window);
    ASSERT_EQ(desk.messages.size(), 1u);
    EXPECT_EQ(desk.messages[0].text, L"The help file is missing.");
}

TEST_F(Settings, AboutIsShown) {
    MenuVersion_Click(window);
    EXPECT_EQ(desk.log, std::vector<std::string>{"ShowAboutWindow"});
}

} // namespace tonex::settings_commands_test
