// The menu and the toolbar as tables, and what runs when.
#include "app/menu_routes.h"
#include "app/sndmain.h"
#include "link/device_commands.h"
#include "link/settings_commands.h"
#include "preview/preview_commands.h"
#include "score/document_commands.h"
#include "tests/set_up_window.h"
#include "view/edit_commands.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tonex::menu_routes_test {

using namespace tonex::testing;

namespace {

struct ExpectedRow {
    Menu menu;
    MenuItem item;
    std::wstring_view name;
    std::wstring_view caption;
    bool control;
    char key;
    void (*command)(sndmain&); ///< null where another test looks at what runs
};

// clang-format off
const ExpectedRow kExpectedMenu[] = {
    {Menu::mnuFile, MenuItem::mnuNewFile, L"mnuNewFile", L"&New", false, 0, mnuNewFile_Click},
    {Menu::mnuFile, MenuItem::kubun0, L"kubun0", L"-", false, 0, nullptr},
    {Menu::mnuFile, MenuItem::mnuFileOpen, L"mnuFileOpen", L"&Open on PC...", true, 'O', mnuFileOpen_Click},
    {Menu::mnuFile, MenuItem::mnuFileOverWrite, L"mnuFileOverWrite", L"&Save to PC", true, 'S', mnuFileOverWrite_Click},
    {Menu::mnuFile, MenuItem::mnuFileSaveWithName, L"mnuFileSaveWithName", L"Save to PC &as...", false, 0, mnuFileSaveWithName_Click},
    {Menu::mnuFile, MenuItem::mnukubun1, L"mnukubun1", L"-", false, 0, nullptr},
    {Menu::mnuFile, MenuItem::mnuFileOpenZ730, L"mnuFileOpenZ730", L"Open on Velo&xa...", false, 0, mnuFileOpenZ730_Click},
    {Menu::mnuFile, MenuItem::mnuFileOverWriteZ730, L"mnuFileOverWriteZ730", L"Save to Ve&loxa", false, 0, mnuFileOverWriteZ730_Click},
    {Menu::mnuFile, MenuItem::mnuFileSaveWithNameZ730, L"mnuFileSaveWithNameZ730", L"Save &to Veloxa as...", false, 0, mnuFileSaveWithNameZ730_Click},
    {Menu::mnuFile, MenuItem::mnuKubun2, L"mnuKubun2", L"-", false, 0, nullptr},
    {Menu::mnuFile, MenuItem::Disconnection, L"Disconnection", L"Dis&connection Setup...", false, 0, Disconnection_Click},
    {Menu::mnuFile, MenuItem::mnuKubun6, L"mnuKubun6", L"-", false, 0, nullptr},
    {Menu::mnuFile, MenuItem::mnuSoundEnd, L"mnuSoundEnd", L"&Exit", false, 0, nullptr},
    {Menu::mnuEdit, MenuItem::mnuUndo, L"mnuUndo", L"&Undo", true, 'Z', SwapUndo},
    {Menu::mnuEdit, MenuItem::mnuKubun5, L"mnuKubun5", L"-", false, 0, nullptr},
    {Menu::mnuEdit, MenuItem::mnuCut, L"mnuCut", L"Cu&t", true, 'X', mnuCut_Click},
    {Menu::mnuEdit, MenuItem::mnuCopy, L"mnuCopy", L"&Copy", true, 'C', mnuCopy_Click},
    {Menu::mnuEdit, MenuItem::mnuPaste, L"mnuPaste", L"&Paste", true, 'V', mnuPaste_Click},
    {Menu::mnuEdit, MenuItem::mnuInsert, L"mnuInsert", L"&Insert", true, 'I', mnuInsert_Click},
    {Menu::mnuEdit, MenuItem::mnuDelete, L"mnuDelete", L"&Delete", false, 0x2E, mnuDelete_Click},
    {Menu::mnuEdit, MenuItem::mnuKubun3, L"mnuKubun3", L"-", false, 0, nullptr},
    {Menu::mnuEdit, MenuItem::mnuOctUp, L"mnuOctUp", L"Up &an octave", false, 0, mnuOctUp_Click},
    {Menu::mnuEdit, MenuItem::mnuOctDown, L"mnuOctDown", L"Down an &octave", false, 0, mnuOctDown_Click},
    {Menu::mnuEdit, MenuItem::mnuSoundUp, L"mnuSoundUp", L"Up &half a tone", false, 0, mnuSoundUp_Click},
    {Menu::mnuEdit, MenuItem::mnuSoundDown, L"mnuSoundDown", L"Down half a to&ne", false, 0, mnuSoundDown_Click},
    {Menu::mnuEdit, MenuItem::mnuKubun4, L"mnuKubun4", L"-", false, 0, nullptr},
    {Menu::mnuEdit, MenuItem::mnuPreview, L"mnuPreview", L"Pre&view", false, 0, mnuPreview_Click},
    {Menu::mnuDisp, MenuItem::mnuDoremi, L"mnuDoremi", L"\xFF84\xFF9E\xFF9A\xFF90\x8868\x793A(&D)", false, 0, ToggleDoremi},
    {Menu::MenuDefine, MenuItem::MenuCheckMsg, L"MenuCheckMsg", L"&Verify to transfer all data", false, 0, MenuCheckMsg_Click},
    {Menu::MenuHelp, MenuItem::MenuTopic, L"MenuTopic", L"&Help Topics", false, 0, MenuTopic_Click},
    {Menu::MenuHelp, MenuItem::kubunhelp, L"kubunhelp", L"-", false, 0, nullptr},
    {Menu::MenuHelp, MenuItem::MenuVersion, L"MenuVersion", L"&About Sound Editor...", false, 0, MenuVersion_Click},
};

const struct {
    std::wstring_view key;
    std::wstring_view tooltip;
    MenuItem item;
} kExpectedToolbar[] = {
    {L"mnuNewFile", L"New", MenuItem::mnuNewFile},
    {L"mnuFileOpen", L"Open on PC", MenuItem::mnuFileOpen},
    {L"mnuFileOverWrite", L"Save to PC", MenuItem::mnuFileOverWrite},
    {L"mnuZ730FileOpen", L"Open on Veloxa", MenuItem::mnuFileOpenZ730},
    {L"mnuZ730FileOverWrite", L"Save to Veloxa", MenuItem::mnuFileOverWriteZ730},
    {L"mnuCut", L"Cut", MenuItem::mnuCut},
    {L"mnuCopy", L"Copy", MenuItem::mnuCopy},
    {L"mnuPaste", L"Paste", MenuItem::mnuPaste},
    {L"mnuDelete", L"Delete", MenuItem::mnuDelete},
    {L"mnuInsert", L"Insert", MenuItem::mnuInsert},
    {L"mnuPreview", L"Preview Sound", MenuItem::mnuPreview},
};
// clang-format on

struct Commands : ::testing::Test {
    std::unique_ptr<sndmain> owner = SetUpWindow();
    sndmain& window = *owner;
    desktop::Desktop& desk = desktop::Current();

    Commands() { desk.log.clear(); }
};

} // namespace

TEST_F(Commands, TheMenuIsTheWholeTable) {
    const auto rows = MenuRows();
    ASSERT_EQ(rows.size(), std::size(kExpectedMenu));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const ExpectedRow& expected = kExpectedMenu[i];
        const std::string where = "row " + std::to_string(i);
        EXPECT_EQ(rows[i].menu, expected.menu) << where;
        EXPECT_EQ(rows[i].item, expected.item) << where;
        EXPECT_EQ(static_cast<std::size_t>(rows[i].item), i) << where;
        EXPECT_EQ(rows[i].name, expected.name) << where;
        EXPECT_EQ(rows[i].caption, expected.caption) << where;
        EXPECT_EQ(rows[i].shortcut.control, expected.control) << where;
        EXPECT_EQ(rows[i].shortcut.key, expected.key) << where;
        if (expected.command) {
            EXPECT_EQ(CommandOf(rows[i].item), expected.command) << where;
        }
        EXPECT_EQ(CommandOf(rows[i].item) == nullptr, rows[i].caption == L"-") << where;
    }
}

TEST_F(Commands, TheDoremiCaptionIsHalfWidthKatakanaAndKanji) {
    const auto& row = MenuRows()[static_cast<std::size_t>(MenuItem::mnuDoremi)];
    EXPECT_EQ(row.caption, L"\xFF84\xFF9E\xFF9A\xFF90\x8868\x793A(&D)");
}

TEST_F(Commands, TheMenuBarIsTheWholeTable) {
    const auto titles = MenuTitles();
    const std::wstring_view names[] = {L"mnuFile", L"mnuEdit", L"mnuDisp", L"MenuDefine", L"MenuHelp"};
    const std::wstring_view captions[] = {L"&File", L"&Edit", L"&View", L"&Setting", L"&Help"};
    ASSERT_EQ(titles.size(), 5u);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(static_cast<std::size_t>(titles[i].menu), i);
        EXPECT_EQ(titles[i].name, names[i]);
        EXPECT_EQ(titles[i].caption, captions[i]);
    }
}

TEST_F(Commands, TheToolbarIsTheWholeTableWithItsTwoHistoricalSpellings) {
    const auto rows = ToolButtonRows();
    ASSERT_EQ(rows.size(), std::size(kExpectedToolbar));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].key, kExpectedToolbar[i].key) << i;
        EXPECT_EQ(rows[i].tooltip, kExpectedToolbar[i].tooltip) << i;
        EXPECT_EQ(rows[i].item, kExpectedToolbar[i].item) << i;
    }
}

TEST_F(Commands, AMenuItemRunsOnlyWhenItIsEnabled) {
    window.item(MenuItem::MenuVersion).Enabled = false;
    RunMenuItem(window, MenuItem::MenuVersion);
    EXPECT_TRUE(desk.log.empty());
    window.item(MenuItem::MenuVersion).Enabled = true;
    RunMenuItem(window, MenuItem::MenuVersion);
    EXPECT_EQ(desk.log, std::vector<std::string>{"ShowAboutWindow"});
}

TEST_F(Commands, ExitAsksTheMainWindowToClose) {
    RunMenuItem(window, MenuItem::mnuSoundEnd);
    EXPECT_EQ(desk.log, std::vector<std::string>{"CloseMainWindow"});
}

TEST_F(Commands, SeparatorLinesAndNumbersOutsideTheMenuRunNothing) {
    for (const MenuRow& row : MenuRows()) {
        if (row.caption == L"-") RunMenuItem(window, row.item);
    }
    RunMenuItem(window, MenuItem::Count);
    RunMenuItem(window, static_cast<MenuItem>(255));
    EXPECT_TRUE(desk.log.empty());
}

TEST_F(Commands, ADisabledWindowRunsNothing) {
    window.Enabled = false;
    RunMenuItem(window, MenuItem::MenuVersion);
    RunToolButton(window, L"mnuNewFile");
    EXPECT_TRUE(desk.log.empty());
}

TEST_F(Commands, AToolButtonRunsItsMenuItemsCommand) {
    FillScore(window, 2);
    RunToolButton(window, L"mnuNewFile");
    EXPECT_EQ(window.score.end_count, 1);
    desk.open_choices = {std::nullopt};
    RunToolButton(window, L"mnuFileOpen");
    EXPECT_TRUE(desktop::Asked("ShowOpenDialog"));

    desk.log.clear();
    window.link_library = LoadLinkLibrary(L"C:\\Link");
    window.link.CacheSoundDir = L"C:\\Link\\pcferry\\cache\\System\\sound";
    desk.link.open_choices = {std::nullopt};
    RunToolButton(window, L"mnuZ730FileOpen");
    EXPECT_TRUE(desktop::Asked("Cor_PIMOpenFileDialog"));
    desk.link.save_choices = {std::nullopt};
    RunToolButton(window, L"mnuZ730FileOverWrite");
    EXPECT_TRUE(desktop::Asked("Cor_PIMSaveFileDialog"));
}

TEST_F(Commands, ADisabledToolButtonRunsNothing) {
    window.toolbar_enabled[1] = false;
    RunToolButton(window, L"mnuFileOpen");
    EXPECT_TRUE(desk.log.empty());
}

TEST_F(Commands, AButtonKeyThatMatchesNoneDoesNothing) {
    for (const wchar_t* key : {L"", L"mnuFileOpenZ730", L"mnuFileOverWriteZ730", L"mnuUndo", L"MNUNEWFILE"})
        RunToolButton(window, key);
    EXPECT_TRUE(desk.log.empty());
}

TEST_F(Commands, OpeningTheSettingMenuRefreshesItsCheckMark) {
    desk.settings[L"Corvane\\Global\\MsgDsp"] = L"1";
    window.item(MenuItem::MenuCheckMsg).Checked = true;
    for (const Menu other : {Menu::mnuFile, Menu::mnuEdit, Menu::mnuDisp, Menu::MenuHelp}) {
        OpenMenu(window, other);
        EXPECT_TRUE(window.item(MenuItem::MenuCheckMsg).Checked);
    }
    OpenMenu(window, Menu::MenuDefine);
    EXPECT_FALSE(window.item(MenuItem::MenuCheckMsg).Checked);
}

TEST_F(Commands, OpeningTheEditMenuAsksForSoundDevicesAnew) {
    FillScore(window, 2);
    for (const int outputs : {0, 1, 0}) {
        desk.wave_outputs = outputs;
        OpenMenu(window, Menu::mnuEdit);
        EXPECT_EQ(window.item(MenuItem::mnuPreview).Enabled, outputs > 0);
    }
}

TEST_F(Commands, TheViewMenuTogglesTheNames) {
    RunMenuItem(window, MenuItem::mnuDoremi);
    EXPECT_TRUE(window.doremi);
    RunMenuItem(window, MenuItem::mnuDoremi);
    EXPECT_FALSE(window.doremi);
}

} // namespace tonex::menu_routes_test
