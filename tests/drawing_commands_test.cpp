#include "view/drawing_commands.h"

#include "platform/settings.h"
#include "tests/set_up_window.h"

#include <gtest/gtest.h>

#include <string>

namespace tonex {
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

// --- Staff offset

TEST(StaffOffset, IsZeroAt100PercentAndGrowsWithTheScale) {
    EXPECT_EQ(SetUpWindow(15)->StaffOffset, 0);
    EXPECT_EQ(SetUpWindow(12)->StaffOffset, 40) << "(240 - 192) * 5 / 6";
    EXPECT_EQ(SetUpWindow(10)->StaffOffset, 67) << "(240 - 160) * 5 / 6 = 66.7";
    EXPECT_EQ(SetUpWindow(7.5f)->StaffOffset, 100) << "(240 - 120) * 5 / 6";
}

TEST(StaffOffset, MovesThePicturesRightByAVerticalAmount) {
    const auto plain = SetUpWindow(15);
    const auto scaled = SetUpWindow(7.5f);
    for (int i = 0; i < kStripPictures; ++i) {
        EXPECT_EQ(ImageOf(*plain, i).place.Left, 720 + i * 390 + 15);
        EXPECT_EQ(ImageOf(*scaled, i).place.Left, 720 + i * 390 + 15 + 100);
    }
}

TEST(StaffOffset, SetUpHidesThePictures) {
    auto window = SetUpWindow();
    for (auto& picture : window->imgNote)
        picture.Visible = true;
    ComputeStaffOffset(*window);
    for (const auto& picture : window->imgNote)
        EXPECT_FALSE(picture.Visible);
}

TEST(StaffOffset, IsTakenOutAgainWhereTheHeadIsDrawn) {
    const float scales[] = {15, 12, 10, 7.5f};
    for (const float scale : scales) {
        const auto window = SetUpWindow(scale);
        const auto head = [&](std::uint16_t pitch) {
            return HeadCentreOf(StaffPositionOf(pitch, window->StaffOffset).value(), window->StaffOffset);
        };
        EXPECT_EQ(head(43), 1650) << "e5 on the lowest line";
        EXPECT_EQ(head(46), 1530) << "g5";
        EXPECT_EQ(head(50), 1410) << "b5";
        EXPECT_EQ(head(53), 1290) << "d6";
        EXPECT_EQ(head(56), 1170) << "f6 on the highest line";
        EXPECT_EQ(head(44), 1590) << "f5 in the lowest space";
    }
}

// --- Pictures

TEST(Picture, StemsGoDownFromPitch50) {
    EXPECT_EQ(PictureOf(5, 49), 5);
    EXPECT_EQ(PictureOf(5, 50), 45);
}

TEST(Picture, ARestUsesItsOwnWhateverItsPitch) {
    EXPECT_EQ(PictureOf(25, 65535), 25);
    EXPECT_EQ(PictureOf(25, 60), 25);
}

TEST(Picture, WholeNotesHaveNoStem) {
    EXPECT_EQ(PictureOf(17, 60), 57);
    EXPECT_EQ(PictureOf(18, 60), 18);
    EXPECT_EQ(PictureOf(20, 60), 20);
}

TEST(Picture, ThePitchIsReadAsASignedNumber) {
    EXPECT_EQ(PictureOf(5, 65000), 5);
}

TEST(Picture, EveryCodeHasAPictureOf58OrNone) {
    const std::uint16_t pitches[] = {27, 50, 75, 200, 65535};
    for (int code = 0; code <= 65535; ++code) {
        for (const std::uint16_t pitch : pitches) {
            const int picture = PictureOf(static_cast<std::uint16_t>(code), pitch);
            if (code == 0) {
                ASSERT_EQ(picture, 58);
            } else if (code <= 40) {
                ASSERT_TRUE(picture == code || (code <= 17 && picture == code + 40));
            } else {
                ASSERT_EQ(picture, 0) << "foreign code " << code;
            }
        }
    }
}

// --- Ledger lines

TEST(LedgerLines, C4HasFourBelowTheStaff) {
    const auto lines = LedgerLinesOf(StaffPositionOf(27, 0).value(), 0);
    EXPECT_EQ(lines.first_y, 1770);
    EXPECT_EQ(lines.step_y, 120);
    EXPECT_EQ(lines.count, 4);
}

TEST(LedgerLines, C8HasFiveAboveTheStaff) {
    const auto lines = LedgerLinesOf(StaffPositionOf(75, 0).value(), 0);
    EXPECT_EQ(lines.first_y, 1050);
    EXPECT_EQ(lines.step_y, -120);
    EXPECT_EQ(lines.count, 5);
}

TEST(LedgerLines, FromD5ToG6ThereAreNone) {
    for (std::uint16_t pitch = 41; pitch <= 58; ++pitch) {
        EXPECT_EQ(LedgerLinesOf(StaffPositionOf(pitch, 0).value(), 0).count, 0) << pitch;
    }
    EXPECT_EQ(LedgerLinesOf(StaffPositionOf(39, 0).value(), 0).count, 1) << "c5";
    EXPECT_EQ(LedgerLinesOf(StaffPositionOf(60, 0).value(), 0).count, 1) << "a6";
}

TEST(LedgerLines, AreTheSameAtEveryScale) {
    for (std::uint16_t pitch = 27; pitch <= 75; ++pitch) {
        const auto plain = LedgerLinesOf(StaffPositionOf(pitch, 0).value(), 0);
        const auto scaled = LedgerLinesOf(StaffPositionOf(pitch, 67).value(), 67);
        EXPECT_EQ(plain.count, scaled.count);
        EXPECT_EQ(plain.first_y, scaled.first_y);
    }
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
    EXPECT_FALSE(image.Stretch);
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

TEST(DrawStripImage, ASeparatorIsStretchedBetweenStaffLines9And4) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeEntry(*window, 0, 0)});
    const NoteImage& image = ImageOf(*window, 0);
    EXPECT_EQ(image.Picture, 58);
    EXPECT_EQ(image.place.Top, window->linSub[9].Y);
    EXPECT_EQ(image.place.Height, window->linSub[4].Y - window->linSub[9].Y);
    EXPECT_EQ(image.place.Top, 1170);
    EXPECT_EQ(image.place.Height, 480);
    EXPECT_EQ(image.place.Width, 300);
    EXPECT_TRUE(image.Stretch);
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

TEST(DrawStripImage, AForeignCodeDrawsNothing) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeEntry(*window, 99, 60), MakeNote(*window, 11, 27)});
    EXPECT_EQ(ImageOf(*window, 0).Picture, 0);
    EXPECT_FALSE(ImageOf(*window, 0).Visible);
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
            EXPECT_EQ(scrolled[static_cast<std::size_t>(i)].Visible, ImageOf(*window, i).Visible);
            EXPECT_EQ(scrolled[static_cast<std::size_t>(i)].place.Left, ImageOf(*window, i).place.Left);
            if (!ImageOf(*window, i).Visible) continue;
            EXPECT_EQ(scrolled[static_cast<std::size_t>(i)], ImageOf(*window, i))
                << first << ", picture " << i;
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
    EXPECT_EQ(window->grdScore.ColWidth[0], 390);
    EXPECT_EQ(window->grdScore.ColWidth[1], 0);
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
    EXPECT_EQ(window->grdScore.ColWidth[508], 390);
    EXPECT_EQ(window->grdScore.ColWidth[509], 0);
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
    EXPECT_TRUE(window->grdScore.Redraw);
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

TEST(PressedKey, EveryNameFindsTheKeyWithThatCaption) {
    auto window = SetUpWindow();
    for (std::uint16_t pitch = 27; pitch <= 75; ++pitch) {
        FillScore(*window, {MakeNote(*window, 11, pitch)});
        ASSERT_TRUE(window->highlighted_key.has_value());
        const auto index = static_cast<std::size_t>(window->highlighted_key->index);
        std::wstring caption = window->highlighted_key->kind == KeyKind::White
                                   ? CaptionOf(window->lblWNote[index])
                                   : CaptionOf(window->lblBNote[index]);
        if (caption.back() == L'#') caption.insert(caption.size() - 1, L" ");
        EXPECT_EQ(caption, TextOf(*window, 0));
    }
}

// --- The keys' labels

TEST(KeyLabels, LetterCaptions) {
    const auto window = SetUpWindow();
    const wchar_t* white[29] = {L"c4", L"d4", L"e4", L"f4", L"g4", L"a4", L"b4", L"c5", L"d5", L"e5",
                                L"f5", L"g5", L"a5", L"b5", L"c6", L"d6", L"e6", L"f6", L"g6", L"a6",
                                L"b6", L"c7", L"d7", L"e7", L"f7", L"g7", L"a7", L"b7", L"c8"};
    const wchar_t* black[20] = {L"c4#", L"d4#", L"f4#", L"g4#", L"a4#", L"c5#", L"d5#",
                                L"f5#", L"g5#", L"a5#", L"c6#", L"d6#", L"f6#", L"g6#",
                                L"a6#", L"c7#", L"d7#", L"f7#", L"g7#", L"a7#"};
    for (std::size_t i = 0; i < 29; ++i)
        EXPECT_EQ(CaptionOf(window->lblWNote[i]), white[i]);
    for (std::size_t i = 0; i < 20; ++i)
        EXPECT_EQ(CaptionOf(window->lblBNote[i]), black[i]);
}

TEST(KeyLabels, DoremiCaptionsCarryNoOctave) {
    auto window = SetUpWindow();
    ToggleDoremi(*window);
    const wchar_t* white[7] = {L"ド", L"レ", L"ミ", L"ﾌｧ", L"ソ", L"ラ", L"シ"};
    const wchar_t* black[5] = {L"ド#", L"レ#", L"ﾌｧ#", L"ソ#", L"ラ#"};
    for (std::size_t i = 0; i < 29; ++i)
        EXPECT_EQ(CaptionOf(window->lblWNote[i]), white[i % 7]);
    for (std::size_t i = 0; i < 20; ++i)
        EXPECT_EQ(CaptionOf(window->lblBNote[i]), black[i % 5]);
}

TEST(KeyLabels, FollowTheBaseOctave) {
    auto window = SetUpWindow();
    window->KeyboardBaseOctave = 2;
    LayoutKeyLabels(*window);
    EXPECT_EQ(CaptionOf(window->lblWNote[0]), L"c2");
    EXPECT_EQ(CaptionOf(window->lblWNote[28]), L"c6");
    EXPECT_EQ(CaptionOf(window->lblBNote[19]), L"a5#");
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
} // namespace tonex
