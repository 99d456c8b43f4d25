#include "view/drawing_commands.h"

#include "platform/settings.h"
#include "tests/set_up_window.h"
#include "view/staff.h"

#include <gtest/gtest.h>

#include <string>

namespace tonex::drawing_commands_test {
namespace {

using namespace tonex::testing;

std::wstring CaptionOf(const KeyLabel& label) {
    return std::wstring(label.Caption.View());
}

int HighlightedButtons(const sndmain& window) {
    int count = 0;
    for (std::size_t i = 0; i < window.cbtNote.size(); ++i) {
        if (window.cbtNote[i].Picture != static_cast<std::int16_t>(i + 1)) ++count;
    }
    return count;
}

int HighlightedKeys(const sndmain& window) {
    int count = 0;
    for (const auto& key : window.kenWhite)
        count += key.BackColor != kWhiteKeyColour;
    for (const auto& key : window.kenBlack)
        count += key.BackColor != kBlackKeyColour;
    return count;
}

// --- One picture of the strip

TEST(DrawStripImage, ANoteStandsAtItsStaffPosition) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 39)});
    const NoteImage& image = ImageOf(*window, 0);
    EXPECT_EQ(image.Picture, 11);
    EXPECT_EQ(image.place.Top, 1500);
    EXPECT_EQ(image.place.Height, 480);
    EXPECT_EQ(image.place.Width, 300);
    EXPECT_FALSE(image.Sharp);
    EXPECT_TRUE(image.Visible);
}

TEST(DrawStripImage, ARestStandsAt1200AtEveryScale) {
    auto window = SetUpWindow(7.5f);
    FillScore(*window, {MakeRest(*window, 25)});
    EXPECT_EQ(ImageOf(*window, 0).Picture, 25);
    EXPECT_EQ(ImageOf(*window, 0).place.Top, 1200);
    EXPECT_FALSE(ImageOf(*window, 0).Sharp);
}

TEST(DrawStripImage, ASeparatorStandsBetweenStaffLines9And4) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeEntry(*window, 0, 0)});
    const NoteImage& image = ImageOf(*window, 0);
    EXPECT_EQ(image.Picture, 58);
    EXPECT_EQ(image.place.Top, window->linSub[9].Y);
    EXPECT_EQ(image.place.Height, window->linSub[4].Y - window->linSub[9].Y);
    EXPECT_EQ(image.place.Top, 1170);
    EXPECT_EQ(image.place.Height, 480);
    EXPECT_EQ(image.place.Width, 300);
    EXPECT_TRUE(image.Visible);
}

TEST(DrawStripImage, ASharpHasItsSign) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 28), MakeNote(*window, 11, 27)});
    EXPECT_TRUE(ImageOf(*window, 0).Sharp);
    EXPECT_FALSE(ImageOf(*window, 1).Sharp);
    for (const Entry& other : {Entry{0, 0, 0}, Entry{25, 28, 1200}}) {
        window->score.sound[0] = MakeNote(*window, 11, 28);
        DrawStripImage(*window, 0, 0);
        ASSERT_TRUE(ImageOf(*window, 0).Sharp);
        window->score.sound[0] = other;
        DrawStripImage(*window, 0, 0);
        EXPECT_FALSE(ImageOf(*window, 0).Sharp) << "code " << other.code;
    }
}

TEST(DrawStripImage, AForeignCodeHasASignOfItsOwn) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeEntry(*window, 99, 65535), MakeNote(*window, 11, 27)});
    EXPECT_EQ(ImageOf(*window, 0).Picture, 59);
    EXPECT_TRUE(ImageOf(*window, 0).Visible);
    EXPECT_FALSE(ImageOf(*window, 0).Sharp);
    EXPECT_EQ(ImageOf(*window, 0).place.Top, 1200) << "where rests stand";
    EXPECT_TRUE(ImageOf(*window, 1).Visible) << "the strip goes on behind it";
}

TEST(DrawStripImage, RefreshesThePressedKeyForANote) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 28)});
    window->score.sound[0] = MakeNote(*window, 12, 30);
    DrawStripImage(*window, 0, 0);
    EXPECT_EQ(window->highlighted_button, 12);
    EXPECT_EQ(window->highlighted_key, (PianoKey{KeyKind::Black, 1}));
}

// --- The strip

TEST(DrawStrip, ShowsSlotsUpToTheEndAndHidesTheRest) {
    auto window = SetUpWindow();
    FillScore(*window, 40);
    DrawStrip(*window, 5);
    EXPECT_EQ(window->score.first_shown, 5);
    for (int i = 0; i < 30; ++i) {
        EXPECT_TRUE(ImageOf(*window, i).Visible);
        EXPECT_EQ(ImageOf(*window, i).Picture,
                  PictureOf(SlotOf(*window, i + 5).code, SlotOf(*window, i + 5).pitch));
    }
    DrawStrip(*window, 35);
    for (int i = 0; i < 30; ++i)
        EXPECT_EQ(ImageOf(*window, i).Visible, i < 5) << i;
}

TEST(DrawStrip, OfAFullScoreEndsAtSlot508) {
    auto window = SetUpWindow();
    FillScore(*window, 509);
    DrawStrip(*window, 490);
    for (int i = 0; i < 30; ++i)
        EXPECT_EQ(ImageOf(*window, i).Visible, i < 19) << i;
    // Slot 510 is the table's guard, whatever it holds.
    window->score.sound[509] = window->score.sound[510] = MakeNote(*window, 5, 30);
    DrawStrip(*window, 490);
    for (int i = 0; i < 30; ++i)
        EXPECT_EQ(ImageOf(*window, i).Visible, i < 20) << i;
}

TEST(ScrollStrip, ShowsWhatDrawingAnewShows) {
    auto window = SetUpWindow(10);
    FillScore(*window, 100);
    window->score.sound[50] = Entry{0, 0, 0};
    window->score.sound[60] = MakeRest(*window, 25);
    DrawStrip(*window, 0);
    for (const int first : {1, 0, 5, 5, 34, 64, 63, 71, 40, 69, 0, 71, 2}) {
        ScrollStrip(*window, first);
        EXPECT_EQ(window->score.first_shown, first);
        EXPECT_EQ(window->grdScore.view.LeftCol, first);
        const auto scrolled = window->imgNote;
        DrawStrip(*window, first);
        for (int i = 0; i < kStripPictures; ++i) {
            EXPECT_EQ(At(scrolled, i).Visible, ImageOf(*window, i).Visible);
            EXPECT_EQ(At(scrolled, i).place.Left, ImageOf(*window, i).place.Left);
            if (!ImageOf(*window, i).Visible) continue;
            EXPECT_EQ(At(scrolled, i), ImageOf(*window, i)) << first << ", picture " << i;
        }
    }
}

// --- The grid

TEST(Grid, AnEmptyScoreHasOneColumnTheEndColumn) {
    const auto window = SetUpWindow();
    EXPECT_EQ(window->grdScore.Cols, 1);
    EXPECT_EQ(window->grdScore.view.Col, 0);
    EXPECT_EQ(window->grdScore.view.ColSel, 0);
    EXPECT_EQ(TextOf(*window, 0), L" - ");
}

TEST(Grid, AColumnASlotAndTheEndColumn) {
    auto window = SetUpWindow();
    FillScore(*window,
              {MakeNote(*window, 1, 27), MakeNote(*window, 2, 28), MakeRest(*window, 23), Entry{0, 0, 0}});
    EXPECT_EQ(window->grdScore.Cols, 5);
    EXPECT_EQ(TextOf(*window, 0), L"c4");
    EXPECT_EQ(TextOf(*window, 1), L"c4 #");
    EXPECT_EQ(TextOf(*window, 2), L" - ");
    EXPECT_EQ(TextOf(*window, 3), L"");
    EXPECT_EQ(TextOf(*window, 4), L" - ");
}

TEST(Grid, AFullScoreHas509Columns) {
    auto window = SetUpWindow();
    FillScore(*window, 508);
    EXPECT_EQ(window->grdScore.Cols, 509) << "508 entries and the end column";
    FillScore(*window, 509);
    EXPECT_EQ(window->grdScore.Cols, 509) << "509 entries and no end column";
}

TEST(Grid, RedrawKeepsCursorSelectionAndFirstColumnInsideTheColumns) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    window->grdScore.view.Col = 60;
    window->grdScore.view.ColSel = 70;
    window->grdScore.view.LeftCol = 50;
    RedrawGrid(*window);
    EXPECT_EQ(window->grdScore.view.Col, 60);
    EXPECT_EQ(window->grdScore.view.ColSel, 70);
    EXPECT_EQ(window->grdScore.view.LeftCol, 50);
    window->score.sound[40] = Entry();
    window->score.end_count = 41;
    RedrawGrid(*window);
    EXPECT_EQ(window->grdScore.view.Col, 40);
    EXPECT_EQ(window->grdScore.view.ColSel, 40);
    EXPECT_EQ(window->grdScore.view.LeftCol, 11);
}

TEST(Grid, ClearEmptiesEverythingTheUserSees) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    Select(*window, 80, 90);
    window->score.changed = true;
    ClearAll(*window);
    EXPECT_EQ(window->score.end_count, 1);
    EXPECT_EQ(SlotOf(*window, 0).code, 65535);
    EXPECT_EQ(window->grdScore.Cols, 1);
    EXPECT_EQ(window->grdScore.view.LeftCol, 0);
    EXPECT_EQ(window->grdScore.view.Col, 0);
    EXPECT_EQ(window->grdScore.view.ColSel, 0);
    EXPECT_EQ(TextOf(*window, 1), L"");
    EXPECT_EQ(window->score.first_shown, 0);
    EXPECT_EQ(window->score.strip_cursor, 0);
    EXPECT_FALSE(window->score.changed);
    EXPECT_FALSE(window->item(MenuItem::mnuCut).Enabled);
    for (const auto& picture : window->imgNote)
        EXPECT_FALSE(picture.Visible);
    EXPECT_EQ(HighlightedButtons(*window), 0);
    EXPECT_EQ(HighlightedKeys(*window), 0);
}

TEST(Grid, ClearLeavesSlot510Alone) {
    auto window = SetUpWindow();
    window->score.sound[510] = Entry{7, 8, 9};
    ClearAll(*window);
    EXPECT_EQ(window->score.sound[510], (Entry{7, 8, 9}));
}

// --- The pressed key

TEST(PressedKey, ANoteLightsItsLengthAndItsKey) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 27), MakeNote(*window, 5, 73)});
    EXPECT_EQ(window->highlighted_button, 11);
    EXPECT_EQ(window->cbtNote[10].Picture, 51);
    EXPECT_EQ(window->kenWhite[0].BackColor, kPressedKeyColour);
    EXPECT_EQ(HighlightedButtons(*window), 1);
    EXPECT_EQ(HighlightedKeys(*window), 1);

    MoveCursor(*window, 1);
    EXPECT_EQ(window->highlighted_button, 5);
    EXPECT_EQ(window->kenWhite[0].BackColor, 0xFFFFFFu);
    EXPECT_EQ(window->kenBlack[19].BackColor, kPressedKeyColour);
    EXPECT_EQ(HighlightedButtons(*window), 1);
    EXPECT_EQ(HighlightedKeys(*window), 1);
}

TEST(PressedKey, ARestLightsItsButtonOnly) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeRest(*window, 25)});
    EXPECT_EQ(window->highlighted_button, 105) << "entry code + 80";
    EXPECT_EQ(window->cbtNote[24].Picture, 65) << "entry code + 40";
    EXPECT_EQ(HighlightedKeys(*window), 0);
}

TEST(PressedKey, TheBlackKeyGetsBlackBack) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 28)});
    MoveCursor(*window, 1);
    EXPECT_EQ(window->kenBlack[0].BackColor, 0u);
    EXPECT_EQ(HighlightedButtons(*window), 0);
}

TEST(PressedKey, NothingOnARangeTheEndColumnASeparatorAndAForeignCode) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 28), Entry{0, 0, 0}, MakeEntry(*window, 60, 30)});
    for (const auto& [column, far_end] : {std::pair{0, 1}, {1, 1}, {2, 2}, {3, 3}}) {
        Select(*window, 0, 0);
        ASSERT_EQ(window->highlighted_button, 11);
        Select(*window, column, far_end);
        EXPECT_EQ(HighlightedButtons(*window), 0) << column << " to " << far_end;
        EXPECT_EQ(HighlightedKeys(*window), 0) << column << " to " << far_end;
        EXPECT_EQ(window->highlighted_button, 0);
        EXPECT_FALSE(window->highlighted_key.has_value());
    }
}

TEST(PressedKey, TheLastColumnOfAFullScoreIsAnEntry) {
    auto window = SetUpWindow();
    FillScore(*window, 509);
    MoveCursor(*window, 508);
    EXPECT_EQ(window->highlighted_button, 1 + 508 % 20);
}

TEST(PressedKey, APitchThatLeavesThePianoLightsNoKey) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 76), MakeNote(*window, 11, 26)});
    EXPECT_EQ(window->highlighted_button, 11);
    EXPECT_EQ(HighlightedKeys(*window), 0);
    MoveCursor(*window, 1);
    EXPECT_EQ(HighlightedKeys(*window), 0);
}

TEST(PressedKey, ARestLightsItsButtonAndNoKeyWhateverItsPitch) {
    auto window = SetUpWindow();
    FillScore(*window, {Entry{25, 40, 0}});
    EXPECT_EQ(window->highlighted_button, 105);
    EXPECT_EQ(HighlightedKeys(*window), 0);
}

TEST(PressedKey, EveryNameFindsTheKeyWithThatCaption) {
    auto window = SetUpWindow();
    for (std::uint16_t pitch = 27; pitch <= 75; ++pitch) {
        FillScore(*window, {MakeNote(*window, 11, pitch)});
        ASSERT_TRUE(window->highlighted_key.has_value());
        std::wstring caption = CaptionOf(LabelOf(*window, *window->highlighted_key));
        if (caption.back() == L'#') caption.insert(caption.size() - 1, L" ");
        EXPECT_EQ(caption, TextOf(*window, 0));
    }
}

// --- The view follows

TEST(KeepColumnInView, ScrollsByTheLeastAmount) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    KeepColumnInView(*window, 29);
    EXPECT_EQ(window->grdScore.view.LeftCol, 0);
    KeepColumnInView(*window, 30);
    EXPECT_EQ(window->grdScore.view.LeftCol, 1);
    EXPECT_EQ(window->score.first_shown, 1);
    KeepColumnInView(*window, 80);
    EXPECT_EQ(window->grdScore.view.LeftCol, 51);
    KeepColumnInView(*window, 50);
    EXPECT_EQ(window->grdScore.view.LeftCol, 50);
    EXPECT_EQ(window->score.first_shown, 50);
    EXPECT_EQ(ImageOf(*window, 0).Picture, PictureOf(SlotOf(*window, 50).code, SlotOf(*window, 50).pitch));
}

TEST(SideOfCursor, TellsWhereACursorOutOfViewIs) {
    EXPECT_EQ(SideOfCursor({.Col = 10, .ColSel = 10, .LeftCol = 10}), 0);
    EXPECT_EQ(SideOfCursor({.Col = 9, .ColSel = 9, .LeftCol = 10}), -1);
    EXPECT_EQ(SideOfCursor({.Col = 39, .ColSel = 39, .LeftCol = 10}), 0);
    EXPECT_EQ(SideOfCursor({.Col = 40, .ColSel = 40, .LeftCol = 10}), 1);
    EXPECT_EQ(SideOfCursor({.Col = 0, .ColSel = 40, .LeftCol = 10}), 1) << "the end that keys move";
    EXPECT_EQ(SideOfCursor({.Col = 40, .ColSel = 20, .LeftCol = 10}), 0) << "the end that keys move";
}

TEST(KeepColumnInView, TheStripCursorStaysWithinThePictures) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    MoveCursor(*window, 10);
    KeepColumnInView(*window, 99);
    EXPECT_EQ(window->score.strip_cursor, 0) << "the cursor is left of the pictures";
    window->grdScore.view.Col = window->grdScore.view.ColSel = 100;
    KeepColumnInView(*window, 0);
    EXPECT_EQ(window->score.strip_cursor, 29) << "the cursor is right of the pictures";
}

// --- Do-re-mi

TEST(Doremi, SwitchingChangesTextsAndCheckMarkAndIsStoredAtOnce) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 27), MakeNote(*window, 11, 33), MakeRest(*window, 30)});
    ToggleDoremi(*window);
    EXPECT_TRUE(window->doremi);
    EXPECT_TRUE(window->item(MenuItem::mnuDoremi).Checked);
    EXPECT_EQ(TextOf(*window, 0), L"ド");
    EXPECT_EQ(TextOf(*window, 1), L"ﾌｧ #");
    EXPECT_EQ(TextOf(*window, 2), L" - ");
    EXPECT_EQ(ReadSetting(L"Corvane", L"Tonex", L"DoremiFlag", L"none"), L"-1") << "all bits of the flag set";
    ToggleDoremi(*window);
    EXPECT_FALSE(window->item(MenuItem::mnuDoremi).Checked);
    EXPECT_EQ(TextOf(*window, 0), L"c4");
    EXPECT_EQ(ReadSetting(L"Corvane", L"Tonex", L"DoremiFlag", L"none"), L"0");
}

TEST(Doremi, SwitchingLeavesScoreViewAndChangedFlagAlone) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    Select(*window, 40, 60);
    grdScore_Scroll(*window, 45);
    window->score.changed = false;
    const auto sound = window->score.sound;
    ToggleDoremi(*window);
    EXPECT_EQ(window->score.sound, sound);
    EXPECT_FALSE(window->score.changed);
    EXPECT_EQ(window->grdScore.view.Col, 40);
    EXPECT_EQ(window->grdScore.view.ColSel, 60);
    EXPECT_EQ(window->grdScore.view.LeftCol, 45);
    EXPECT_EQ(window->score.first_shown, 45);
}

TEST(Doremi, TheSettingIsOnWhenItsNumberIsNotZero) {
    const std::pair<const wchar_t*, bool> cases[] = {{L"0", false}, {L"-1", true}, {L"1", true},
                                                     {L"", false},  {L"x", false}, {L"65535", true}};
    for (const auto& [text, expected] : cases) {
        auto window = SetUpWindow();
        WriteSetting(L"Corvane", L"Tonex", L"DoremiFlag", text);
        LoadDoremiSetting(*window);
        EXPECT_EQ(window->doremi, expected);
        EXPECT_EQ(window->item(MenuItem::mnuDoremi).Checked, expected);
    }
}

TEST(Doremi, IsOffWhenTheSettingIsMissing) {
    auto window = SetUpWindow();
    window->doremi = true;
    LoadDoremiSetting(*window);
    EXPECT_FALSE(window->doremi);
}

} // namespace
} // namespace tonex::drawing_commands_test
