#include "app/layout_commands.h"

#include "tests/set_up_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

namespace tonex {
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

TEST(Layout, ASizeBelowTheSmallestIsTakenAsTheSmallest) {
    auto window = SetUpWindow();
    LayoutWindow(*window, 100, 100);
    EXPECT_EQ(window->ClientWidth, kMinClientWidth);
    EXPECT_EQ(window->ClientHeight, kMinClientHeight);
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

TEST(Layout, KeyWidthsAreWholePixelsAtEveryScale) {
    const struct {
        float scale;
        int white, black;
    } cases[] = {{15, 285, 225}, {12, 276, 216}, {10, 280, 220}, {7.5f, 285, 225}};
    for (const auto& [scale, white, black] : cases) {
        const auto window = SetUpWindow(scale);
        EXPECT_EQ(window->kenWhite[0].place.Width, white) << scale;
        EXPECT_EQ(window->kenBlack[0].place.Width, black) << scale;
        const int left = (window->ClientWidth - 29 * white) / 2;
        for (int i = 0; i < 29; ++i) {
            EXPECT_EQ(window->kenWhite[static_cast<std::size_t>(i)].place.Left, left + i * white);
        }
    }
}

TEST(Layout, BlackKeysStartAFixed140TwipsInAndSkipTheGaps) {
    for (const float scale : {15.f, 12.f}) {
        const auto window = SetUpWindow(scale);
        const int w = window->kenWhite[0].place.Width;
        const int left = window->kenWhite[0].place.Left;
        const int whites_before[5] = {0, 1, 3, 4, 5};
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ(window->kenBlack[static_cast<std::size_t>(i)].place.Left,
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
    EXPECT_LE(window->kenWhite[0].place.Height, 2 * smallest) << "but only so much";
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
        const auto index = static_cast<std::size_t>(key.index);
        const auto tab =
            key.kind == KeyKind::White ? window->kenWhite[index].TabIndex : window->kenBlack[index].TabIndex;
        EXPECT_EQ(tab, expected++) << "pitch " << pitch;
    }
}

TEST(Layout, ExtraWidthCentresTheContent) {
    auto window = SetUpWindow();
    LayoutWindow(*window, kMinClientWidth + 2000, kMinClientHeight);
    EXPECT_EQ(window->picStaff.Left, kMargin + 1000);
    const int left = window->kenWhite[0].place.Left;
    const int right = window->ClientWidth - Right(window->kenWhite[28].place);
    EXPECT_LE(std::abs(left - right), 1);
}

} // namespace
} // namespace tonex
