#include "tests/set_up_window.h"

#include "score/document_commands.h"
#include "view/edit_commands.h"

#include <gtest/gtest.h>

namespace tonex::enabling_commands_test {
namespace {

using namespace tonex::testing;

constexpr MenuItem kRuled[] = {MenuItem::mnuCut,    MenuItem::mnuCopy,    MenuItem::mnuDelete,
                               MenuItem::mnuInsert, MenuItem::mnuPreview, MenuItem::mnuPaste};

void ExpectEnabled(const sndmain& window, MenuItem item, bool expected) {
    EXPECT_EQ(window.item(item).Enabled, expected) << "menu item " << static_cast<int>(item);
    const auto rows = ToolButtonRows();
    int buttons = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].item != item) continue;
        ++buttons;
        EXPECT_EQ(window.toolbar_enabled[i], expected) << "toolbar button " << i;
    }
    EXPECT_EQ(buttons, 1);
}

TEST(Enabling, AnEmptyScoreDisablesCutCopyDeleteInsertAndPreview) {
    const auto window = SetUpWindow();
    for (const MenuItem item : kRuled)
        ExpectEnabled(*window, item, false);
}

TEST(Enabling, OneEntryEnablesThem) {
    auto window = SetUpWindow();
    FillScore(*window, 1);
    for (const MenuItem item : kRuled)
        ExpectEnabled(*window, item, item != MenuItem::mnuPaste);
}

TEST(Enabling, WithNoWaveOutputPreviewStaysDisabledHoweverFullTheScoreIs) {
    auto window = SetUpWindow();
    desktop::Current().wave_outputs = 0;
    for (const int count : {1, 300, 509}) {
        FillScore(*window, count);
        ExpectEnabled(*window, MenuItem::mnuPreview, false);
        ExpectEnabled(*window, MenuItem::mnuCut, true);
    }
}

TEST(Enabling, InsertIsRefusedFromEndCount509) {
    auto window = SetUpWindow();
    FillScore(*window, 507);
    ExpectEnabled(*window, MenuItem::mnuInsert, true);
    FillScore(*window, 508);
    ExpectEnabled(*window, MenuItem::mnuInsert, false);
    FillScore(*window, 509);
    ExpectEnabled(*window, MenuItem::mnuInsert, false);
}

TEST(Enabling, With508EntriesInsertIsDisabledWhilePasteCanStillBeEnabled) {
    auto window = SetUpWindow();
    FillScore(*window, 508);
    mnuCopy_Click(*window);
    ExpectEnabled(*window, MenuItem::mnuInsert, false);
    ExpectEnabled(*window, MenuItem::mnuPaste, true);
    FillScore(*window, 509);
    ExpectEnabled(*window, MenuItem::mnuPaste, false);
}

TEST(Enabling, PasteNeedsTheClipboardNotTheScore) {
    auto window = SetUpWindow();
    FillScore(*window, 1);
    mnuCopy_Click(*window);
    ClearAll(*window);
    ExpectEnabled(*window, MenuItem::mnuPaste, true);
    ExpectEnabled(*window, MenuItem::mnuCopy, false);
}

TEST(Enabling, IsRefreshedByEveryCommandThatChangesTheScore) {
    const struct {
        const char* name;
        void (*run)(sndmain&);
    } commands[] = {
        {"Copy", mnuCopy_Click},
        {"Cut", mnuCut_Click},
        {"Delete", mnuDelete_Click},
        {"Insert", mnuInsert_Click},
        {"Paste", mnuPaste_Click},
        {"Up an octave", mnuOctUp_Click},
        {"Down an octave", mnuOctDown_Click},
        {"Up half a tone", mnuSoundUp_Click},
        {"Down half a tone", mnuSoundDown_Click},
        {"Undo", SwapUndo},
        {"white key", [](sndmain& window) { kenWhite_Click(window, 0); }},
        {"black key", [](sndmain& window) { kenBlack_Click(window, 0); }},
        {"rest", [](sndmain& window) { cbtNote_Click(window, 101); }},
        {"plus", [](sndmain& window) { grdScore_KeyPress(window, L'+'); }},
        {"minus", [](sndmain& window) { grdScore_KeyPress(window, L'-'); }},
    };
    for (const auto& command : commands) {
        SCOPED_TRACE(command.name);
        auto window = SetUpWindow();
        FillScore(*window, 5);
        MoveCursor(*window, 2);
        mnuCopy_Click(*window);
        SaveUndo(*window);
        for (const MenuItem item : kRuled)
            window->item(item).Enabled = false;
        window->toolbar_enabled.fill(false);
        command.run(*window);
        for (const MenuItem item : kRuled)
            ExpectEnabled(*window, item, true);
    }
}

TEST(Enabling, IsRefreshedByNew) {
    auto window = SetUpWindow();
    FillScore(*window, 5);
    mnuNewFile_Click(*window);
    for (const MenuItem item : kRuled)
        ExpectEnabled(*window, item, false);
}

TEST(Tooltips, OfAGreyPreviewSaysWhy) {
    auto window = SetUpWindow();
    const int preview = kToolButtons - 1;
    EXPECT_EQ(TooltipOf(*window, preview), L"Preview Sound (the melody is empty)");
    FillScore(*window, 1);
    EXPECT_EQ(TooltipOf(*window, preview), L"Preview Sound");
    desktop::Current().wave_outputs = 0;
    RefreshEnabling(*window);
    EXPECT_EQ(TooltipOf(*window, preview), L"Preview Sound (there is no sound device)");
}

TEST(Tooltips, OfTheOthersAreThoseOfTheTableWhateverIsGrey) {
    auto window = SetUpWindow();
    window->toolbar_enabled.fill(false);
    for (int button = 0; button < kToolButtons - 1; ++button)
        EXPECT_EQ(TooltipOf(*window, button), ToolButtonRows()[static_cast<std::size_t>(button)].tooltip);
}

TEST(Enabling, LeavesTheOtherItemsAlone) {
    auto window = SetUpWindow();
    for (auto& item : window->menu)
        item.Enabled = false;
    FillScore(*window, 3);
    mnuCopy_Click(*window);
    int enabled = 0;
    for (const auto& item : window->menu)
        enabled += item.Enabled;
    EXPECT_EQ(enabled, 6);
}

} // namespace
} // namespace tonex::enabling_commands_test
