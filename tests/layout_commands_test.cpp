#include "app/layout_commands.h"

#include "tests/set_up_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <tuple>
#include <vector>

namespace tonex::layout_commands_test {
namespace {

using namespace tonex::testing;

int Right(const Rect& rect) {
    return rect.Left + rect.Width;
}
int Bottom(const Rect& rect) {
    return rect.Top + rect.Height;
}
bool Overlap(const Rect& a, const Rect& b) {
    return a.Left < Right(b) && b.Left < Right(a) && a.Top < Bottom(b) && b.Top < Bottom(a);
}

std::wstring CaptionOf(const KeyLabel& label) {
    return std::wstring(label.Caption.View());
}

// Everything that stands beside or above something else; keys and labels overlap on purpose.
std::vector<Rect> Blocks(const sndmain& window) {
    std::vector<Rect> blocks = {window.picStaff,         window.grdScore.place, window.Label2.place,
                                window.TempoCombo.place, window.lblTempo.place, window.imgNow.place,
                                window.Label3.place};
    for (const auto& button : window.cbtNote)
        blocks.push_back(button.place);
    for (const auto& key : window.kenWhite)
        blocks.push_back(key.place);
    return blocks;
}

void ExpectTidy(const sndmain& window) {
    const auto blocks = Blocks(window);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        EXPECT_GE(blocks[i].Left, kMargin) << i;
        EXPECT_GE(blocks[i].Top, kToolbarHeight) << i;
        EXPECT_LE(Right(blocks[i]), window.ClientWidth - kMargin) << i;
        EXPECT_LE(Bottom(blocks[i]), window.ClientHeight - kMargin) << i;
        EXPECT_GT(blocks[i].Width, 0);
        EXPECT_GT(blocks[i].Height, 0);
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_FALSE(Overlap(blocks[i], blocks[j])) << i << " and " << j;
    }
    for (const auto& label : window.lblBNote) {
        for (const auto& block : blocks)
            EXPECT_FALSE(Overlap(label.place, block));
    }
}

TEST(Layout, NothingOverlapsOrIsClippedAtAnyScaleOrSize) {
    for (const float scale : {15.f, 12.f, 10.f, 7.5f}) {
        for (const auto& [width, height] : {std::pair{0, 0}, {4000, 600}, {7000, 9000}}) {
            SCOPED_TRACE(::testing::Message() << scale << ", " << width << ", " << height);
            auto window = SetUpWindow(scale);
            LayoutWindow(*window, kMinClientWidth + width, kMinClientHeight + height);
            ExpectTidy(*window);
        }
    }
}

TEST(Layout, TheSmallestWindowFitsAnOldScreen) {
    EXPECT_LE(kMinClientWidth / 15, 1000);
    EXPECT_LE(kMinClientHeight / 15, 520);
    EXPECT_GE(kMinClientWidth / 15, 852);
    EXPECT_GE(kMinClientHeight / 15, 510);
}

std::vector<int> PlaceOf(const Rect& rect) {
    return {rect.Left, rect.Top, rect.Width, rect.Height};
}

TEST(Layout, EveryPlaceInTheSmallestWindow) {
    using Place = std::vector<int>;
    const auto window = SetUpWindow();
    EXPECT_EQ(PlaceOf(window->picStaff), (Place{180, 600, 12480, 2520}));
    EXPECT_EQ(PlaceOf(window->grdScore.place), (Place{900, 3120, 11760, 645}));
    EXPECT_EQ(PlaceOf(window->Label2.place), (Place{180, 4087, 705, 225}));
    EXPECT_EQ(PlaceOf(window->TempoCombo.place), (Place{885, 4042, 975, 315}));
    EXPECT_EQ(PlaceOf(window->lblTempo.place), (Place{1935, 4087, 975, 225}));
    EXPECT_EQ(PlaceOf(window->Label3.place), (Place{180, 4627, 705, 225}));
    EXPECT_EQ(PlaceOf(window->imgNow.place), (Place{885, 4485, 465, 510}));
    EXPECT_EQ(PlaceOf(window->cbtNote[0].place), (Place{2910, 3945, 465, 510}));
    EXPECT_EQ(PlaceOf(window->cbtNote[19].place), (Place{12195, 3945, 465, 510}));
    EXPECT_EQ(PlaceOf(window->cbtNote[20].place), (Place{2910, 4485, 465, 510}));
    EXPECT_EQ(PlaceOf(window->cbtNote[39].place), (Place{12195, 4485, 465, 510}));
    EXPECT_EQ(PlaceOf(window->kenWhite[0].place), (Place{2287, 5400, 285, 2070}));
    EXPECT_EQ(PlaceOf(window->kenBlack[0].place), (Place{2427, 5400, 225, 1283}));
    EXPECT_EQ(PlaceOf(window->lblWNote[0].place), (Place{2287, 7200, 285, 225}));
    EXPECT_EQ(PlaceOf(window->lblBNote[0].place), (Place{2397, 5175, 285, 225}));
    for (const auto& [line, from, to] : {std::tuple{window->Line1[0], 720, 12420},
                                         {window->linSub[0], 30, 720},
                                         {window->linSub[9], 12420, 12450}}) {
        EXPECT_EQ(line.X1, from);
        EXPECT_EQ(line.X2, to);
    }
}

TEST(Layout, ASizeBelowTheSmallestIsTakenAsTheSmallest) {
    auto window = SetUpWindow();
    LayoutWindow(*window, 100, 100);
    EXPECT_EQ(window->ClientWidth, kMinClientWidth);
    EXPECT_EQ(window->ClientHeight, kMinClientHeight);
}

TEST(Layout, AHigherScrollBarGetsItsRoomAndTheRestMovesDown) {
    auto window = SetUpWindow();
    const int lengths_top = window->cbtNote[0].place.Top;
    const int keys_high = window->kenWhite[0].place.Height;
    LayoutWindow(*window, 0, 0, kScrollBarHeight + 300);
    EXPECT_EQ(window->grdScore.place.Height, 390 + kScrollBarHeight + 300);
    EXPECT_EQ(window->cbtNote[0].place.Top, lengths_top + 300);
    EXPECT_EQ(window->ClientHeight, kMinClientHeight + 300);
    EXPECT_EQ(window->kenWhite[0].place.Height, keys_high);
    ExpectTidy(*window);
    LayoutWindow(*window, 0, 0, kScrollBarHeight - 100);
    EXPECT_EQ(window->grdScore.place.Height, 390 + kScrollBarHeight) << "a lower one leaves it to the cells";
}

TEST(Layout, TheGridsColumnsStandUnderThePictures) {
    auto window = SetUpWindow();
    LayoutWindow(*window, kMinClientWidth + 3000, kMinClientHeight);
    EXPECT_EQ(window->grdScore.place.Width, 30 * 390 + 60);
    EXPECT_EQ(Right(window->grdScore.place), Right(window->picStaff));
    EXPECT_EQ(window->grdScore.place.Top, Bottom(window->picStaff));
    for (int i = 0; i < 30; ++i) {
        const int column_left = window->grdScore.place.Left + i * 390;
        const int picture_left = window->picStaff.Left + ImageOf(*window, i).place.Left;
        EXPECT_GE(picture_left, column_left);
        EXPECT_LE(picture_left + 300, column_left + 390);
    }
}

TEST(Layout, ThePicturesStayInThePanelAtEveryScale) {
    for (const float scale : {15.f, 12.f, 10.f, 7.5f}) {
        const auto window = SetUpWindow(scale);
        for (int i = 0; i < 30; ++i)
            EXPECT_LE(Right(ImageOf(*window, i).place), window->picStaff.Width);
    }
}

TEST(Layout, TheStaffLinesAreThoseOfTheStrip) {
    const auto window = SetUpWindow();
    const int expected[] = {1170, 1290, 1410, 1530, 1650};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(window->Line1[i].Y, expected[i]);
        EXPECT_EQ(window->linSub[i].Y, expected[i]) << "left of the strip from the top down";
        EXPECT_EQ(window->linSub[9 - i].Y, expected[i]) << "right of the strip from the bottom up";
        EXPECT_EQ(window->linSub[i].X2, window->Line1[i].X1);
        EXPECT_EQ(window->linSub[9 - i].X1, window->Line1[i].X2);
        EXPECT_LT(window->linSub[i].X1, window->linSub[i].X2);
        EXPECT_LT(window->linSub[9 - i].X1, window->linSub[9 - i].X2);
    }
}

TEST(Layout, ResizingAddsTheStaffOffsetOnlyOnceAndLeavesPicturesVisible) {
    auto window = SetUpWindow(7.5f);
    FillScore(*window, 40);
    const auto images = window->imgNote;
    LayoutWindow(*window, kMinClientWidth + 900, kMinClientHeight + 900);
    LayoutWindow(*window, kMinClientWidth, kMinClientHeight);
    EXPECT_EQ(window->imgNote, images);
    EXPECT_TRUE(images[0].Visible);
}

TEST(Layout, RestsStandUnderTheNotesOfTheirLength) {
    const auto window = SetUpWindow();
    for (std::size_t i = 0; i < 20; ++i) {
        EXPECT_EQ(window->cbtNote[i].place.Left, window->cbtNote[i + 20].place.Left);
        EXPECT_EQ(window->cbtNote[i].place.Top, window->cbtNote[0].place.Top);
        EXPECT_EQ(window->cbtNote[i + 20].place.Top, window->cbtNote[20].place.Top);
        EXPECT_EQ(window->cbtNote[i].Picture, static_cast<int>(i) + 1);
        EXPECT_EQ(window->cbtNote[i + 20].Picture, static_cast<int>(i) + 21);
    }
    EXPECT_GT(window->cbtNote[20].place.Top, window->cbtNote[0].place.Top);
    EXPECT_EQ(Right(window->cbtNote[19].place), Right(window->picStaff));
}

TEST(Layout, LengthsStandInFamilies) {
    const auto window = SetUpWindow();
    std::vector<int> family_starts;
    for (std::size_t i = 1; i < 20; ++i) {
        const int gap = window->cbtNote[i].place.Left - Right(window->cbtNote[i - 1].place);
        if (gap > 0) family_starts.push_back(static_cast<int>(i) + 1);
    }
    EXPECT_EQ(family_starts, (std::vector<int>{2, 6, 10, 14, 18}));
}

TEST(Layout, WhiteKeysStandSideBySideInTheMiddle) {
    for (const float scale : {15.f, 12.f, 10.f, 7.5f}) {
        const auto window = SetUpWindow(scale);
        const int width = WhiteKeyWidth(scale);
        const int left = (window->ClientWidth - 29 * width) / 2;
        for (int i = 0; i < 29; ++i) {
            EXPECT_EQ(At(window->kenWhite, i).place.Left, left + i * width);
            EXPECT_EQ(At(window->kenWhite, i).place.Width, width);
        }
        for (const auto& key : window->kenBlack)
            EXPECT_EQ(key.place.Width, BlackKeyWidth(scale));
    }
}

TEST(Layout, BlackKeysStartAFixed140TwipsInAndSkipTheGaps) {
    for (const float scale : {15.f, 12.f}) {
        const auto window = SetUpWindow(scale);
        const int w = window->kenWhite[0].place.Width;
        const int left = window->kenWhite[0].place.Left;
        const int whites_before[5] = {0, 1, 3, 4, 5};
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ(At(window->kenBlack, i).place.Left,
                      left + 140 + (i / 5 * 7 + whites_before[i % 5]) * w);
        }
    }
}

TEST(Layout, KeysAreHighEnoughAndBlackOnesShorter) {
    auto window = SetUpWindow();
    EXPECT_GE(window->kenWhite[0].place.Height, 105 * 15);
    const double ratio = 1.0 * window->kenBlack[0].place.Height / window->kenWhite[0].place.Height;
    EXPECT_NEAR(ratio, 0.62, 0.01);
    const int smallest = window->kenWhite[0].place.Height;
    LayoutWindow(*window, kMinClientWidth, kMinClientHeight + 600);
    EXPECT_EQ(window->kenWhite[0].place.Height, smallest + 600) << "extra height goes to the keys";
    LayoutWindow(*window, kMinClientWidth, kMinClientHeight + 20000);
    EXPECT_EQ(window->kenWhite[0].place.Height, 3600) << "but only so much";
}

TEST(Layout, LabelsStandAtTheirKeys) {
    const auto window = SetUpWindow();
    for (std::size_t i = 0; i < 29; ++i) {
        const Rect& key = window->kenWhite[i].place;
        const Rect& label = window->lblWNote[i].place;
        EXPECT_EQ(label.Left, key.Left);
        EXPECT_EQ(label.Width, key.Width);
        EXPECT_GT(label.Top, Bottom(window->kenBlack[0].place));
        EXPECT_LT(Bottom(label), Bottom(key));
    }
    for (std::size_t i = 0; i < 20; ++i) {
        const Rect& key = window->kenBlack[i].place;
        const Rect& label = window->lblBNote[i].place;
        EXPECT_EQ(2 * label.Left + label.Width, 2 * key.Left + key.Width) << "centred over the key";
        EXPECT_EQ(Bottom(label), key.Top);
        if (i > 0) {
            EXPECT_LE(Right(window->lblBNote[i - 1].place), label.Left);
        }
    }
}

TEST(Layout, TheTabKeyGoesFromTopToBottomAndAlongTheKeyboard) {
    const auto window = SetUpWindow();
    EXPECT_EQ(window->grdScore.TabIndex, 0);
    for (std::size_t i = 0; i < 40; ++i)
        EXPECT_EQ(window->cbtNote[i].TabIndex, static_cast<int>(i) + 1);
    EXPECT_EQ(window->TempoCombo.TabIndex, 41);

    // Pitch by pitch: the keys of an octave stand in the order of their pitches.
    std::int16_t expected = 42;
    for (int pitch = 27; pitch <= 75; ++pitch) {
        const PianoKey key = KeyOfPitch(static_cast<std::uint16_t>(pitch)).value();
        EXPECT_EQ(ControlOf(*window, key).TabIndex, expected++) << "pitch " << pitch;
    }
}

// Which panes the Tab key comes to, and at how many stops in a row.
std::vector<std::pair<Pane, int>> PanesInOrder(const sndmain& window) {
    std::vector<std::pair<Pane, int>> panes;
    for (const TabStop& stop : TabOrder(window)) {
        if (panes.empty() || panes.back().first != stop.pane) panes.emplace_back(stop.pane, 0);
        ++panes.back().second;
    }
    return panes;
}

TEST(TabOrder, HasAStopForEachButtonAndKeyAndOneForEachOtherPane) {
    const auto window = SetUpWindow();
    const std::vector<std::pair<Pane, int>> expected = {{Pane::grdScore, 1},   {Pane::cbtNote, 40},
                                                        {Pane::TempoCombo, 1}, {Pane::Keys, 49},
                                                        {Pane::Toolbar1, 1},   {Pane::imgNote, 1}};
    EXPECT_EQ(PanesInOrder(*window), expected);
    const auto order = TabOrder(*window);
    EXPECT_EQ(order[0], (TabStop{0, Pane::grdScore, kWholePane}));
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(At(order, 1 + i).item, i);
    for (int i = 0; i < 49; ++i)
        EXPECT_EQ(At(order, 42 + i).item, i) << "half tones above the lowest key";
}

TEST(TabOrder, IsThatOfTheTabIndexes) {
    auto window = SetUpWindow();
    std::swap(window->grdScore.TabIndex, window->TempoCombo.TabIndex);
    std::swap(window->cbtNote[3].TabIndex, window->kenWhite[28].TabIndex);
    const auto order = TabOrder(*window);
    EXPECT_EQ(order[0].pane, Pane::TempoCombo);
    EXPECT_EQ(order[41].pane, Pane::grdScore);
    EXPECT_EQ(order[4], (TabStop{4, Pane::Keys, 48}));
    EXPECT_EQ(order[90], (TabStop{90, Pane::cbtNote, 3}));
}

TEST(Layout, ExtraWidthCentresTheContent) {
    auto window = SetUpWindow();
    LayoutWindow(*window, kMinClientWidth + 2000, kMinClientHeight);
    EXPECT_EQ(window->picStaff.Left, kMargin + 1000);
    const int left = window->kenWhite[0].place.Left;
    const int right = window->ClientWidth - Right(window->kenWhite[28].place);
    EXPECT_LE(std::abs(left - right), 1);
}

TEST(Layout, WhatALargerArrowTakesOfTheTempoBoxIsSharedByNumberAndName) {
    auto window = SetUpWindow();
    const Rect box = window->TempoCombo.place, name = window->lblTempo.place;
    constexpr int kUsual = 255, kMore = 200; // of a scroll bar, twips
    LayoutWindow(*window, kMinClientWidth, kMinClientHeight, kUsual);
    EXPECT_EQ(window->TempoCombo.place, box);
    EXPECT_EQ(window->lblTempo.place, name);
    LayoutWindow(*window, kMinClientWidth, kMinClientHeight, kUsual + kMore);
    EXPECT_EQ(window->TempoCombo.place.Left, box.Left);
    EXPECT_EQ(window->TempoCombo.place.Width, box.Width + kMore / 2);
    EXPECT_EQ(window->lblTempo.place.Left, name.Left + kMore / 2);
    EXPECT_EQ(window->lblTempo.place.Width, name.Width - kMore / 2);
}

// --- How large the content is drawn

ScreenMeasures ScreenOf(int dpi) {
    const float twips = 1440.0f / static_cast<float>(dpi);
    return {.twips_per_pixel_x = twips, .twips_per_pixel_y = twips};
}

/// The staff space in a window whose client area is so large; the system's scroll bar is 17 pixels at 96 DPI.
float SpaceIn(int dpi, int width, int height) {
    return FittingStaffSpace(ScreenOf(dpi), {width, height}, 17 * dpi / 96);
}

TEST(StaffSpace, IsTheScreensOwnWhereTheContentJustFits) {
    EXPECT_EQ(SpaceIn(96, 856, 510), 8);
    EXPECT_EQ(SpaceIn(120, 1070, 638), 10);
    EXPECT_EQ(SpaceIn(144, 1284, 765), 12);
    EXPECT_EQ(SpaceIn(192, 1712, 1020), 16);
}

TEST(StaffSpace, ShrinksByWholePixels) {
    EXPECT_EQ(SpaceIn(96, 855, 510), 7);
    EXPECT_EQ(SpaceIn(96, 856, 509), 7);
    EXPECT_EQ(SpaceIn(96, 748, 510), 6) << "749 wide at 7";
    EXPECT_EQ(SpaceIn(96, 749, 510), 7);
    EXPECT_EQ(SpaceIn(96, 600, 510), 5);
    EXPECT_EQ(SpaceIn(110, 900, 560), 8) << "the screen's own space is 9.2";
    EXPECT_EQ(SpaceIn(110, 963, 574), 9) << "the first whole one below it";
}

TEST(StaffSpace, FitsSmallScreens) {
    EXPECT_EQ(SpaceIn(96, 792, 540), 7);
    EXPECT_EQ(SpaceIn(144, 1012, 690), 9);
    EXPECT_EQ(SpaceIn(144, 1354, 690), 10);
    EXPECT_EQ(SpaceIn(192, 1900, 970), 15);
}

TEST(StaffSpace, EndsAt5PixelsBelowWhichNothingIsReadable) {
    EXPECT_EQ(SpaceIn(96, 300, 200), 5);
    EXPECT_EQ(SpaceIn(192, 1, 1), 5);
    EXPECT_EQ(FittingStaffSpace({.twips_per_pixel_x = 30, .twips_per_pixel_y = 30}, {1, 1}, 9), 4)
        << "unless the screen's own is smaller";
}

TEST(StaffSpace, GrowsByTwoPixelsAStepUpToFourTimes) {
    EXPECT_EQ(SpaceIn(96, 1069, 640), 8);
    EXPECT_EQ(SpaceIn(96, 1070, 640), 10);
    EXPECT_EQ(SpaceIn(96, 20000, 20000), 32);
}

TEST(StaffSpace, TheScrollBarKeepsItsHeightInAShrunkWindow) {
    // 7650 twips are 318.8 pixels at a space of 5, the bar's part of them 10.6.
    EXPECT_EQ(ContentSize(ScreenOf(96), 5, 17).height, 319 + 17 - 11);
    EXPECT_EQ(ContentSize(ScreenOf(192), 5, 34).height, 319 + 34 - 11);
    EXPECT_EQ(ContentSize(ScreenOf(96), 16, 17).height, 1020) << "in a magnified one its room grows";
    EXPECT_EQ(ContentSize(ScreenOf(192), 5, 34).width, 535);
}

TEST(StaffSpace, TheContentOfTheFittingSpaceFits) {
    for (const int dpi : {96, 110, 120, 144, 168, 192})
        for (int width = 560; width < 2600; width += 47)
            for (int height = 380; height < 1500; height += 53) {
                const PixelSize content =
                    ContentSize(ScreenOf(dpi), SpaceIn(dpi, width, height), 17 * dpi / 96);
                ASSERT_LE(content.width, width) << dpi;
                ASSERT_LE(content.height, height) << dpi;
            }
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

TEST(StaffOffset, IsNoneBeforeItIsComputed) {
    const auto window = std::make_unique<sndmain>();
    LayoutWindow(*window, kMinClientWidth, kMinClientHeight);
    for (int i = 0; i < kStripPictures; ++i)
        EXPECT_EQ(ImageOf(*window, i).place.Left, 720 + i * 390 + 15);
}

TEST(StaffOffset, SetUpHidesThePictures) {
    auto window = SetUpWindow();
    for (auto& picture : window->imgNote)
        picture.Visible = true;
    ComputeStaffOffset(*window);
    for (const auto& picture : window->imgNote)
        EXPECT_FALSE(picture.Visible);
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

} // namespace
} // namespace tonex::layout_commands_test
