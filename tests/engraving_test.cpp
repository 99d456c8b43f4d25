// The engraver's rules on the masks of the strip: every length on every key, at every scale.
#include "pictures/engraving.h"
#include "pictures/glyphs.h"
#include "score/codes.h"
#include "score/rows.h"
#include "score/score.h"
#include "tests/masks.h"
#include "view/keyboard.h"
#include "view/note_names.h"
#include "view/staff.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace tonex::engraving_test {
namespace {

using testing::AllScales;
using testing::InkAt;
using testing::InkOf;
using testing::kScreenScales;
using testing::PiecesOf;
using testing::TestScale;

constexpr int kPanelHeight = 2520; ///< of the staff panel, twips

/// A picture in its column.
struct Drawn {
    std::string what;
    StripPicture shown;
    NoteLength form{};
    float unit = 0; ///< pixels of a staff space
    int line = 0;   ///< pixels of a staff line
    PlacedMask placed;
    std::vector<PixelBox> pieces; ///< of all that is a third black and more
    std::vector<PixelBox> ledgers;
};

/// The narrowest column of a scale.
int ColumnPixels(const TestScale& scale) {
    return static_cast<int>(390 * scale.pixels_per_twip + 0.01F);
}

Drawn DrawAfresh(const StripPicture& shown, const TestScale& scale) {
    const StripColumn column{scale.pixels_per_twip, ColumnPixels(scale)};
    Drawn drawn;
    drawn.what = "picture " + std::to_string(shown.picture) + (shown.sharp ? " sharp" : "") + " at height " +
                 std::to_string(shown.y) + ", scale " + std::to_string(scale.percent);
    drawn.shown = shown;
    if (shown.picture < kBarLinePicture) drawn.form = At(kNoteLengths, (shown.picture - 1) % kLengthCodes);
    drawn.unit = 120 * scale.pixels_per_twip;
    drawn.line = StaffLinePixels(scale.pixels_per_twip);
    drawn.placed = StripPictureMask(shown, column);
    drawn.pieces = PiecesOf(drawn.placed.mask, 90);
    drawn.ledgers = LedgerLineBoxes(shown, column);
    return drawn;
}

/// Every picture is drawn once for all tests, which takes longer than looking at it.
const Drawn& Draw(const StripPicture& shown, const TestScale& scale) {
    static std::map<std::tuple<int, bool, int, float>, Drawn> pictures;
    const auto [place, fresh] =
        pictures.try_emplace({shown.picture, shown.sharp, shown.y, scale.pixels_per_twip});
    if (fresh) place->second = DrawAfresh(shown, scale);
    return place->second;
}

/// A note of a length code 1 to 20 as the strip shows it for a key.
StripPicture NoteOn(int pitch, int code) {
    const auto key = static_cast<std::uint16_t>(pitch);
    const int picture = PictureOf(static_cast<std::uint16_t>(code), key);
    return {picture, IsSharp(key), PictureStandsAt(picture, StaffPositionOf(key, 0).value(), 0)};
}

StripPicture RestOf(int code) {
    return {code + kLengthCodes, false, kMiddleStaffLine};
}

template <class Check> void ForEveryNote(const Check& check) {
    for (const TestScale& scale : AllScales())
        for (int pitch = kLowestKeyPitch; pitch <= kHighestKeyPitch; ++pitch)
            for (int code = 1; code <= kLengthCodes; ++code) {
                const Drawn& drawn = Draw(NoteOn(pitch, code), scale);
                SCOPED_TRACE(drawn.what);
                check(drawn, scale);
                if (::testing::Test::HasFailure()) return; // the rest would say the same
            }
}

template <class Check> void ForEveryRest(const Check& check) {
    for (const TestScale& scale : AllScales())
        for (int code = 1; code <= kLengthCodes; ++code) {
            const Drawn& drawn = Draw(RestOf(code), scale);
            SCOPED_TRACE(drawn.what);
            check(drawn, scale);
            if (::testing::Test::HasFailure()) return;
        }
}

/// Ink at a pixel of the column, its row counted from the top of the panel.
int PanelInk(const Drawn& drawn, int x, int row) {
    return InkAt(drawn.placed.mask, x, row - drawn.placed.top);
}

/// The first row of the staff or ledger line at a height.
int LineRow(int twips, const TestScale& scale) {
    return StaffLineRow(static_cast<float>(twips) * scale.pixels_per_twip);
}

int HeadLeft(const Drawn& drawn) {
    return static_cast<int>(drawn.unit + 0.5F);
}

bool Up(const Drawn& drawn) {
    return drawn.shown.picture <= kLengthCodes;
}

bool HasStem(const Drawn& drawn) {
    return drawn.form.division > 1;
}

/// Where the head ends to the right, as a note without dots and flags shows it.
int HeadRight(const Drawn& drawn) {
    static std::map<std::pair<float, int>, int> measured;
    const int plain = drawn.form.division == 1 && drawn.form.dots < 2 ? 18 : 11;
    const auto [place, fresh] = measured.try_emplace({drawn.unit, plain}, 0);
    if (fresh) {
        const StripColumn column{drawn.unit / 120, static_cast<int>(3.25F * drawn.unit + 0.01F)};
        place->second = PiecesOf(StripPictureMask({.picture = plain}, column).mask, 60).front().right;
    }
    return place->second;
}

/// A column of pixels that the stem fills.
int StemColumn(const Drawn& drawn) {
    return Up(drawn) ? HeadRight(drawn) - 1 : HeadLeft(drawn);
}

/// The row at which a stem's free end begins (up), or before which it ends (down).
int StemEnd(const Drawn& drawn, const TestScale& scale) {
    const int way = Up(drawn) ? -1 : 1, x = StemColumn(drawn);
    int row = LineRow(drawn.shown.y, scale) + way * static_cast<int>(drawn.unit);
    while (PanelInk(drawn, x, row + way) == 255)
        row += way;
    return Up(drawn) ? row : row + 1;
}

/// Where the stem of a note ends by rule, in twips.
int StemEndByRule(const Drawn& drawn) {
    const int flags = FlagsOf(drawn.form), length = flags == 3 ? 510 : 420;
    const int beyond = flags > 1 ? 60 * (flags - 1) : 0, head = drawn.shown.y;
    return Up(drawn) ? std::min(head - length, 1410 - beyond) : std::max(head + length, 1410 + beyond);
}

int PiecesByRule(const Drawn& drawn) {
    return 1 + drawn.form.dots + (drawn.form.triplet ? 1 : 0) + (drawn.shown.sharp ? 1 : 0);
}

/// The dots of a picture: its last pieces to the right.
std::vector<PixelBox> DotsOf(const Drawn& drawn) {
    if (drawn.form.dots == 0) return {};
    std::vector<PixelBox> pieces = drawn.pieces;
    pieces.erase(pieces.begin(), pieces.end() - drawn.form.dots);
    for (PixelBox& box : pieces) {
        box.top += drawn.placed.top;
        box.bottom += drawn.placed.top;
    }
    return pieces;
}

/// The 3 of a picture: the piece farthest from the head on the stem's side, above a rest.
PixelBox ThreeOf(const Drawn& drawn) {
    std::vector<PixelBox> pieces = drawn.pieces;
    std::sort(pieces.begin(), pieces.end(),
              [](const PixelBox& a, const PixelBox& b) { return a.top < b.top; });
    const bool above = Up(drawn) || !IsNotePicture(drawn.shown.picture);
    PixelBox box = above ? pieces.front() : pieces.back();
    box.top += drawn.placed.top;
    box.bottom += drawn.placed.top;
    return box;
}

/// A rest without dots, apart from its 3: the lowest piece.
PixelBox RestBox(const Drawn& drawn) {
    const std::vector<PixelBox>& pieces = drawn.pieces;
    return *std::max_element(pieces.begin(), pieces.end(),
                             [](const PixelBox& a, const PixelBox& b) { return a.bottom < b.bottom; });
}

/// Runs of ink down a column of pixels: the rows at which they begin and end.
struct Inked {
    int from, to;
};
std::vector<Inked> RunsDown(const Drawn& drawn, int x, int from, int to) {
    std::vector<Inked> runs;
    for (int row = from; row < to; ++row) {
        if (PanelInk(drawn, x, row) < 100) continue;
        if (runs.empty() || runs.back().to != row) runs.push_back({row, row});
        runs.back().to = row + 1;
    }
    return runs;
}

// ---- where ink may be ----

TEST(Engraving, EveryPictureHasInk) {
    ForEveryNote([](const Drawn& drawn, const TestScale&) { EXPECT_GT(InkOf(drawn.placed.mask), 15 * 255); });
    ForEveryRest([](const Drawn& drawn, const TestScale&) { EXPECT_GT(InkOf(drawn.placed.mask), 8 * 255); });
}

/// Drawn on a wider sheet a picture has no ink beyond its column: nothing was cut off at the edge.
TEST(Engraving, NothingLeavesItsColumn) {
    const auto check = [](const Drawn& drawn, const TestScale& scale) {
        const int width = ColumnPixels(scale);
        ASSERT_EQ(drawn.placed.left, 0);
        ASSERT_EQ(drawn.placed.mask.width, width);
        const PlacedMask wide = StripPictureMask(drawn.shown, {scale.pixels_per_twip, width + 20});
        ASSERT_EQ(wide.mask.height, drawn.placed.mask.height);
        for (int y = 0; y < wide.mask.height; ++y)
            for (int x = 0; x < wide.mask.width; ++x)
                ASSERT_EQ(InkAt(wide.mask, x, y), InkAt(drawn.placed.mask, x, y)) << x << ", " << y;
        for (const PixelBox& box : drawn.ledgers) {
            EXPECT_GE(box.left, 0);
            EXPECT_LE(box.right, width);
        }
    };
    ForEveryNote(check);
    ForEveryRest(check);
}

TEST(Engraving, NothingIsCutAtThePanelsEdgeOrAtTheMasks) {
    const auto check = [](const Drawn& drawn, const TestScale& scale) {
        const CoverageMask& mask = drawn.placed.mask;
        EXPECT_GE(drawn.placed.top, 0);
        EXPECT_LT(static_cast<float>(drawn.placed.top + mask.height), kPanelHeight * scale.pixels_per_twip);
        for (int x = 0; x < mask.width; ++x) {
            // A stem and the flag that begins with it may end with the mask; nothing else comes so far.
            const bool stem =
                IsNotePicture(drawn.shown.picture) && HasStem(drawn) && x > StemColumn(drawn) - drawn.line;
            if (!stem || !Up(drawn)) {
                EXPECT_EQ(InkAt(mask, x, 0), 0) << x;
            }
            if (!stem || Up(drawn)) {
                EXPECT_EQ(InkAt(mask, x, mask.height - 1), 0) << x;
            }
        }
    };
    ForEveryNote(check);
    ForEveryRest(check);
}

/// Heads, dots, sharps and 3s have white around them: the least is a pixel with hardly any ink.
TEST(Engraving, PartsDoNotTouch) {
    const auto check = [](const Drawn& drawn, const TestScale&) {
        EXPECT_EQ(static_cast<int>(drawn.pieces.size()), PiecesByRule(drawn));
    };
    ForEveryNote(check);
    ForEveryRest(check);
}

/// What ends at the right edge of a column and what begins at the left edge of the next stay apart.
TEST(Engraving, NeighboursDoNotTouch) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        if (drawn.unit < 6) return; // there is no pixel left for it
        const int free = std::max(1, static_cast<int>(0.1F * drawn.unit + 0.5F));
        for (int y = 0; y < drawn.placed.mask.height; ++y)
            for (int x = 0; x < free; ++x)
                ASSERT_EQ(InkAt(drawn.placed.mask, x, y), 0) << x;
        for (const PixelBox& box : drawn.ledgers) {
            EXPECT_GE(box.left, 1);
            EXPECT_LE(box.right, ColumnPixels(scale) - 1);
        }
    });
}

TEST(Engraving, AColumnThatIsAPixelWiderShowsTheSame) {
    for (const TestScale& scale : AllScales())
        for (int picture = 1; picture <= kLastPicture; ++picture) {
            const int width = ColumnPixels(scale);
            const StripPicture shown{picture, picture == 12, kTopStaffLine};
            const PlacedMask one = StripPictureMask(shown, {scale.pixels_per_twip, width}),
                             other = StripPictureMask(shown, {scale.pixels_per_twip, width + 1});
            ASSERT_EQ(one.top, other.top);
            for (int y = 0; y < one.mask.height; ++y)
                for (int x = 0; x < width; ++x)
                    ASSERT_EQ(InkAt(one.mask, x, y), InkAt(other.mask, x, y)) << picture;
        }
}

TEST(Engraving, TheSamePictureIsDrawnInEveryRun) {
    for (int picture = 1; picture <= kLastPicture; ++picture) {
        const StripPicture shown{picture, true, 1290};
        EXPECT_EQ(StripPictureMask(shown, {1 / 12.0F, 32}).mask,
                  StripPictureMask(shown, {1 / 12.0F, 32}).mask);
    }
}

// ---- heads ----

TEST(Engraving, HeadsBeginAtOnePlaceOfTheirColumn) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        if (drawn.shown.sharp) return;
        const int row = LineRow(drawn.shown.y, scale);
        int first = drawn.placed.mask.width;
        for (int y = row - static_cast<int>(drawn.unit / 2); y <= row + static_cast<int>(drawn.unit / 2); ++y)
            for (int x = 0; x < first; ++x)
                if (PanelInk(drawn, x, y) > 0) first = x;
        EXPECT_EQ(first, HeadLeft(drawn));
    });
}

/// Dots, flags and the way of the stem change nothing about a black head: between the sides, where stems are,
/// its ink is that of a quarter note on the same place.
TEST(Engraving, BlackHeadsAreAlike) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        if (drawn.form.division <= 2) return;
        const Drawn& quarter = Draw({.picture = Up(drawn) ? 11 : 51, .y = drawn.shown.y}, scale);
        const int row = LineRow(drawn.shown.y, scale), half = static_cast<int>(0.6F * drawn.unit);
        for (int y = row - half; y <= row + half; ++y)
            for (int x = HeadLeft(drawn) + drawn.line; x < HeadRight(drawn) - drawn.line; ++x)
                ASSERT_GE(PanelInk(drawn, x, y) + 1, PanelInk(quarter, x, y));
    });
}

TEST(Engraving, HeadsStandOnLinesAndInSpaces) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        if (drawn.form.division > 4 || drawn.form.triplet || drawn.form.dots > 0) return;
        const float line = static_cast<float>(drawn.line);
        const auto middle_of = [&](int y) { return static_cast<float>(LineRow(y, scale)) + line / 2; };
        const int y = drawn.shown.y;
        const bool on_line = (y - kTopStaffLine) % kStaffSpace == 0;
        const float wanted = on_line ? middle_of(y) : (middle_of(y - 60) + middle_of(y + 60)) / 2;
        double weight = 0, moment = 0;
        for (int row = static_cast<int>(wanted - 0.8F * drawn.unit);
             row < static_cast<int>(wanted + 0.8F * drawn.unit); ++row)
            for (int x = HeadLeft(drawn) + drawn.line; x < HeadRight(drawn) - drawn.line; ++x) {
                weight += PanelInk(drawn, x, row);
                moment += PanelInk(drawn, x, row) * (row + 0.5);
            }
        ASSERT_GT(weight, 0);
        EXPECT_NEAR(moment / weight, wanted, 0.2);
    });
}

TEST(Engraving, HeadsAreAsWideAndHighAsTheyShouldBe) {
    for (const TestScale& scale : kScreenScales) {
        const Drawn& drawn = Draw({.picture = 11}, scale);
        const float width = static_cast<float>(HeadRight(drawn) - HeadLeft(drawn)) / drawn.unit;
        EXPECT_NEAR(width, 1.18F, 0.07F) << scale.percent;
        double ink = 0;
        const int x = (HeadLeft(drawn) + HeadRight(drawn)) / 2;
        for (int y = 0; y < drawn.placed.mask.height; ++y)
            ink += InkAt(drawn.placed.mask, x, y) / 255.0;
        EXPECT_NEAR(ink, 1.02 * static_cast<double>(drawn.unit), 0.6) << scale.percent;
    }
}

TEST(Engraving, TheStaffOffsetMovesNoPicture) {
    const std::int16_t offsets[] = {0, 40, 67, 83, 100};
    for (const std::int16_t offset : offsets)
        for (int pitch = kLowestKeyPitch; pitch <= kHighestKeyPitch; ++pitch) {
            const auto key = static_cast<std::uint16_t>(pitch);
            EXPECT_EQ(PictureStandsAt(11, StaffPositionOf(key, offset).value(), offset),
                      PictureStandsAt(11, StaffPositionOf(key, 0).value(), 0));
        }
}

// ---- stems and flags ----

TEST(Engraving, StemsEndWhereTheRuleSays) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        if (!HasStem(drawn)) return;
        const float wanted = static_cast<float>(StemEndByRule(drawn)) * scale.pixels_per_twip;
        EXPECT_NEAR(static_cast<float>(StemEnd(drawn, scale)), wanted, 0.8F + static_cast<float>(drawn.line));
    });
}

TEST(Engraving, StemsOfLedgerLineNotesReachTheMiddleLine) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        if (!HasStem(drawn) || drawn.ledgers.empty()) return;
        const int middle = LineRow(kMiddleStaffLine, scale);
        if (Up(drawn))
            EXPECT_LE(StemEnd(drawn, scale), middle);
        else
            EXPECT_GE(StemEnd(drawn, scale), middle + drawn.line);
    });
}

TEST(Engraving, StemsAreWholePixelsAsThickAsStaffLines) {
    for (const TestScale& scale : AllScales())
        for (const int picture : {11, 15, 51, 55}) {
            const Drawn& drawn = Draw({.picture = picture}, scale);
            const int row =
                LineRow(kMiddleStaffLine, scale) + (Up(drawn) ? -2 : 2) * static_cast<int>(drawn.unit);
            int stem = 0;
            for (int x = 0; x < drawn.placed.mask.width; ++x) {
                const int ink = PanelInk(drawn, x, row);
                EXPECT_TRUE(ink == 0 || ink == 255) << drawn.what;
                stem += ink == 255;
            }
            EXPECT_EQ(stem, drawn.line) << drawn.what;
        }
}

/// White between two flags, in pixels, at the staff space given.
int LeastWhite(float unit) {
    return unit < 7 ? 1 : unit < 10 ? 3 : static_cast<int>(0.3F * unit);
}

/// Beside the stem, and as far as the flags reach together, a line downwards crosses every flag once.
TEST(Engraving, FlagsCanBeCounted) {
    const float reaches[] = {0, 1.6F, 2.1F, 2.9F}; // spaces from the stem's end that hold all flags
    ForEveryNote([&](const Drawn& drawn, const TestScale& scale) {
        const int flags = FlagsOf(drawn.form);
        if (flags == 0) return;
        const int end = StemEnd(drawn, scale), reach = static_cast<int>(At(reaches, flags) * drawn.unit);
        const int from = Up(drawn) ? end : end - reach;
        const int stem = StemColumn(drawn) + (Up(drawn) ? 1 : drawn.line);
        for (int x = stem + 1; x < stem + static_cast<int>(0.6F * drawn.unit); ++x) {
            const std::vector<Inked> runs = RunsDown(drawn, x, from, from + reach);
            ASSERT_EQ(static_cast<int>(runs.size()), flags) << "column " << x;
            for (std::size_t i = 1; i < runs.size(); ++i)
                EXPECT_GE(runs[i].from - runs[i - 1].to, LeastWhite(drawn.unit)) << "column " << x;
        }
    });
}

TEST(Engraving, FlagsAreEvenlyApart) {
    const int wanted[] = {6, 8, 10, 11, 13};
    for (std::size_t i = 0; i < std::size(kScreenScales); ++i)
        for (const int picture : {1, 3, 41, 43}) {
            const Drawn& drawn = Draw({.picture = picture}, kScreenScales[i]);
            const int end = StemEnd(drawn, kScreenScales[i]);
            const int x = StemColumn(drawn) + (Up(drawn) ? 1 : drawn.line);
            const int reach = static_cast<int>(2.6F * drawn.unit);
            const std::vector<Inked> runs =
                Up(drawn) ? RunsDown(drawn, x, end, end + reach) : RunsDown(drawn, x, end - reach, end);
            ASSERT_EQ(static_cast<int>(runs.size()), FlagsOf(drawn.form)) << drawn.what;
            for (std::size_t k = 1; k < runs.size(); ++k)
                EXPECT_EQ(runs[k].from - runs[k - 1].from, At(wanted, static_cast<int>(i))) << drawn.what;
        }
}

/// Under a head a line downwards meets white before it meets the flags of a stem down.
TEST(Engraving, FlagsEndBeforeTheHead) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        if (FlagsOf(drawn.form) == 0 || Up(drawn)) return;
        const int least = drawn.unit < 8 ? 1 : std::max(2, static_cast<int>(0.15F * drawn.unit));
        const int middle = LineRow(drawn.shown.y, scale), end = StemEnd(drawn, scale);
        for (int x = HeadLeft(drawn) + drawn.line; x < HeadRight(drawn); ++x) {
            const std::vector<Inked> runs = RunsDown(drawn, x, middle, end);
            if (runs.size() < 2 || runs[0].from != middle) continue;
            EXPECT_GE(runs[1].from - runs[0].to, least) << "column " << x;
        }
    });
}

/// Flags and dots stay off the rows of ledger lines, with a row of white. Nothing but the stem crosses the
/// lines that are farther from the head.
TEST(Engraving, NothingBesideTheHeadTouchesALedgerLine) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        const auto is_stem = [&](int x) {
            const int last = StemColumn(drawn) + (Up(drawn) ? 0 : drawn.line - 1);
            return HasStem(drawn) && x > last - drawn.line && x <= last;
        };
        for (const PixelBox& box : drawn.ledgers) {
            const bool at_head =
                std::abs(box.top - LineRow(drawn.shown.y, scale)) < static_cast<int>(0.8F * drawn.unit);
            const int from = at_head ? HeadRight(drawn) + 1 : HeadLeft(drawn);
            for (int row = box.top - 1; row < box.bottom + 1; ++row)
                for (int x = from; x < drawn.placed.mask.width; ++x) {
                    if (is_stem(x)) continue;
                    EXPECT_LT(PanelInk(drawn, x, row), 60) << x << ", " << row;
                }
        }
    });
}

// ---- dots ----

TEST(Engraving, DotsHaveOneSize) {
    const int sizes[] = {3, 4, 5, 5, 6};
    const auto check = [&](const Drawn& drawn, const TestScale& scale) {
        int wanted = DotSize(drawn.unit);
        for (std::size_t i = 0; i < std::size(kScreenScales); ++i)
            if (kScreenScales[i].percent == scale.percent) wanted = At(sizes, static_cast<int>(i));
        for (const PixelBox& dot : DotsOf(drawn)) {
            EXPECT_EQ(dot.right - dot.left, wanted);
            EXPECT_EQ(dot.bottom - dot.top, wanted);
        }
    };
    ForEveryNote(check);
    ForEveryRest(check);
}

TEST(Engraving, DotsAndTheirGapsGrowByWholePixels) {
    for (const auto& [space, size, gap, apart] : {std::tuple{1.0F, 1, 1, 1},
                                                  {8.0F, 3, 2, 2},
                                                  {9.5F, 3, 2, 2},
                                                  {9.9F, 4, 2, 2},
                                                  {10.0F, 4, 3, 2},
                                                  {12.0F, 5, 3, 2},
                                                  {12.4F, 5, 3, 2},
                                                  {12.6F, 5, 3, 3},
                                                  {16.0F, 6, 4, 3}}) {
        EXPECT_EQ(DotSize(space), size) << space;
        EXPECT_EQ(DotGap(space), gap) << space;
        EXPECT_EQ(DotsApart(space), apart) << space;
    }
}

/// Rests leave more room than heads.
TEST(Engraving, DoubleDotsAreAsFarApartAsTheColumnAllows) {
    const int behind_heads[] = {1, 1, 1, 2, 2}, behind_rests[] = {2, 2, 2, 3, 3};
    for (std::size_t i = 0; i < std::size(kScreenScales); ++i)
        for (const int picture : {5, 13, 17, 20, 45, 57, 25, 33}) {
            const Drawn& drawn = Draw({.picture = picture}, kScreenScales[i]);
            const std::vector<PixelBox> dots = DotsOf(drawn);
            ASSERT_EQ(dots.size(), 2U) << drawn.what;
            EXPECT_EQ(dots[1].left - dots[0].right,
                      At(IsNotePicture(picture) ? behind_heads : behind_rests, static_cast<int>(i)))
                << drawn.what;
        }
}

TEST(Engraving, DotsStandBetweenTwoLinesAtOneHeight) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        const bool on_line = (drawn.shown.y - kTopStaffLine) % kStaffSpace == 0;
        const int space = on_line ? drawn.shown.y - 60 : drawn.shown.y;
        const int above = LineRow(space - 60, scale) + drawn.line, below = LineRow(space + 60, scale);
        for (const PixelBox& dot : DotsOf(drawn)) {
            EXPECT_GT(dot.top, above);
            EXPECT_LT(dot.bottom, below);
            EXPECT_LE(std::abs((dot.top - above) - (below - dot.bottom)), 1) << "not in the middle";
        }
    });
}

TEST(Engraving, TheDotsOfRestsStandAboveTheMiddleLine) {
    ForEveryRest([](const Drawn& drawn, const TestScale& scale) {
        for (const PixelBox& dot : DotsOf(drawn)) {
            EXPECT_GT(dot.top, LineRow(1290, scale) + drawn.line);
            EXPECT_LT(dot.bottom, LineRow(1410, scale));
        }
    });
}

// ---- the 3 of a triplet ----

TEST(Engraving, TheThreeStandsOutsideTheStaffOnTheStemsSide) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        if (!drawn.form.triplet) return;
        const PixelBox three = ThreeOf(drawn);
        const int end = StemEnd(drawn, scale), air = static_cast<int>(0.4F * drawn.unit);
        const int staff_end = LineRow(kBottomStaffLine, scale) + drawn.line;
        if (Up(drawn))
            EXPECT_LE(three.bottom, std::min(end, LineRow(kTopStaffLine, scale)) - air + 1);
        else
            EXPECT_GE(three.top, std::max(end, staff_end) + air - 1);
        const int head = HeadLeft(drawn) + HeadRight(drawn);
        EXPECT_LE(std::abs(three.left + three.right - head), 3) << "not over its head";
        EXPECT_NEAR(static_cast<float>(three.bottom - three.top), 1.2F * drawn.unit,
                    1.2F + 0.1F * drawn.unit);
    });
}

TEST(Engraving, TheThreeOfARestStandsAboveTheStaff) {
    ForEveryRest([](const Drawn& drawn, const TestScale& scale) {
        if (!drawn.form.triplet) return;
        const PixelBox three = ThreeOf(drawn), rest = RestBox(drawn);
        EXPECT_LT(three.bottom, LineRow(kTopStaffLine, scale) - static_cast<int>(0.3F * drawn.unit));
        EXPECT_NEAR(static_cast<float>(three.left + three.right) / 2,
                    static_cast<float>(rest.left + rest.right) / 2, 1 + 0.1F * drawn.unit);
    });
}

// ---- sharps ----

TEST(Engraving, SharpsHaveAirInsideAndBeforeTheHead) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        if (!drawn.shown.sharp) return;
        // A little below the upper bar only the uprights are met.
        const int head = HeadLeft(drawn), row = LineRow(drawn.shown.y, scale) - static_cast<int>(drawn.unit);
        std::vector<int> columns;
        for (int x = 0; x < head; ++x)
            if (PanelInk(drawn, x, row) > 200) columns.push_back(x);
        ASSERT_GE(columns.size(), 2U);
        int clear = 0;
        for (std::size_t i = 1; i < columns.size(); ++i)
            clear = std::max(clear, columns[i] - columns[i - 1] - 1);
        EXPECT_GE(clear, drawn.unit < 8 ? 1 : 2);
        const int air = std::max(1, static_cast<int>(0.15F * drawn.unit + 0.5F));
        for (int y = 0; y < drawn.placed.mask.height; ++y)
            for (int x = head - air; x < head; ++x)
                EXPECT_EQ(InkAt(drawn.placed.mask, x, y), 0) << "before the head";
    });
}

TEST(Engraving, ASharpDoesNotMoveItsNote) {
    for (const TestScale& scale : AllScales())
        for (int picture = 1; picture < kBarLinePicture; ++picture) {
            if (!IsNotePicture(picture)) continue;
            const Drawn& plain = Draw({.picture = picture}, scale);
            const Drawn& sharp = Draw({.picture = picture, .sharp = true}, scale);
            for (int row = plain.placed.top; row < plain.placed.top + plain.placed.mask.height; ++row)
                for (int x = HeadLeft(plain); x < plain.placed.mask.width; ++x)
                    ASSERT_NEAR(PanelInk(sharp, x, row), PanelInk(plain, x, row), 1) << plain.what;
            EXPECT_GT(InkOf(sharp.placed.mask), InkOf(plain.placed.mask)) << plain.what;
        }
}

TEST(Engraving, ASharpWithoutWidthIsNone) {
    const auto ink = [](const Sharp& sharp) {
        Raster raster = MakeRaster(40, 60);
        Note note;
        note.form = kNoteLengths[10];
        note.head_left = 12;
        note.head_width = 9;
        note.head_middle = 40;
        note.stem_end = 12;
        note.sharp = sharp;
        DrawNote({raster, 8, 1}, note);
        return InkOf(FinishMask(raster));
    };
    EXPECT_EQ(ink({.left = 2, .width = 0}), ink({}));
    EXPECT_GT(ink({.left = 2, .width = 1}), ink({}));
    EXPECT_GT(ink({.left = 2, .width = 7}), ink({.left = 2, .width = 1}));
}

TEST(Engraving, OnlyNotesHaveASharp) {
    for (int picture = 1; picture <= kLastPicture; ++picture) {
        const StripPicture plain{.picture = picture}, sharp{.picture = picture, .sharp = true};
        EXPECT_EQ(StripPictureMask(plain, {}).mask != StripPictureMask(sharp, {}).mask,
                  IsNotePicture(picture));
    }
}

// ---- ledger lines ----

TEST(Engraving, LedgerLinesReachEvenlyBeyondTheHead) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        const int reach = static_cast<int>(40 * scale.pixels_per_twip + 0.5F);
        for (const PixelBox& box : drawn.ledgers) {
            EXPECT_EQ(box.right - HeadRight(drawn), reach);
            if (!drawn.shown.sharp) {
                EXPECT_EQ(HeadLeft(drawn) - box.left, reach);
            }
        }
    });
}

TEST(Engraving, LedgerLinesEndBeforeASharp) {
    ForEveryNote([](const Drawn& drawn, const TestScale&) {
        if (!drawn.shown.sharp) return;
        for (const PixelBox& box : drawn.ledgers)
            for (int row = box.top; row < box.bottom; ++row)
                for (int x = box.left - 1; x < HeadLeft(drawn); ++x)
                    EXPECT_EQ(PanelInk(drawn, x, row), 0) << x << ", " << row;
    });
}

TEST(Engraving, LedgerLinesCoverTheirRowsAndAreAsThickAsBarLines) {
    ForEveryNote([](const Drawn& drawn, const TestScale& scale) {
        const LedgerLines lines = LedgerLinesOf(drawn.shown.y);
        ASSERT_EQ(static_cast<int>(drawn.ledgers.size()), lines.count);
        for (int i = 0; i < lines.count; ++i) {
            const PixelBox& box = At(drawn.ledgers, i);
            const int row = LineRow(lines.first_y + i * lines.step_y, scale);
            if (lines.step_y < 0)
                EXPECT_EQ(box.bottom, row + drawn.line) << "thicker on the side away from the staff";
            else
                EXPECT_EQ(box.top, row) << "thicker on the side away from the staff";
            EXPECT_EQ(box.bottom - box.top, BarLinePixels(scale.pixels_per_twip));
        }
    });
}

// ---- rests and bar line ----

TEST(Engraving, RestsSitAndHangOnTheirLines) {
    for (const TestScale& scale : AllScales()) {
        const Drawn &half = Draw(RestOf(15), scale), &whole = Draw(RestOf(18), scale);
        const int x = HeadLeft(half) + static_cast<int>(half.unit / 2), line = half.line;
        const int middle = LineRow(1410, scale), fourth = LineRow(1290, scale);
        const int space = static_cast<int>(half.unit);
        EXPECT_EQ(PanelInk(half, x, middle + line - 1), 255) << scale.percent;
        EXPECT_EQ(PanelInk(half, x, middle + line), 0) << "a half rest ends with the middle line";
        EXPECT_EQ(PanelInk(half, x, middle - space / 2 + 1), 255);
        EXPECT_EQ(PanelInk(half, x, middle - space / 2 - 2), 0);
        EXPECT_EQ(PanelInk(whole, x, fourth - 1), 0) << "a whole rest begins with the fourth line";
        EXPECT_EQ(PanelInk(whole, x, fourth), 255);
        EXPECT_EQ(PanelInk(whole, x, fourth + line + space / 2 - 2), 255);
        EXPECT_EQ(PanelInk(whole, x, fourth + space / 2 + line + 2), 0);
    }
}

/// How far short rests reach above and below the middle line, in spaces.
TEST(Engraving, ShortRestsReachWhereTheyShould) {
    struct Reach {
        int code;
        float above, below;
    };
    for (const TestScale& scale : AllScales())
        for (const Reach& reach : {Reach{1, 1.75F, 2}, Reach{3, 0.75F, 2}, Reach{7, 0.75F, 1}}) {
            const Drawn& drawn = Draw(RestOf(reach.code), scale);
            const PixelBox box = PiecesOf(drawn.placed.mask, 30).front();
            const float middle =
                static_cast<float>(LineRow(1410, scale)) + static_cast<float>(drawn.line) / 2;
            const float top = middle - static_cast<float>(drawn.placed.top + box.top);
            const float bottom = static_cast<float>(drawn.placed.top + box.bottom) - middle;
            EXPECT_NEAR(top, reach.above * drawn.unit, 1 + 0.05F * drawn.unit) << drawn.what;
            EXPECT_NEAR(bottom, reach.below * drawn.unit, 1 + 0.05F * drawn.unit) << drawn.what;
        }
}

TEST(Engraving, BarLinesCoverTheStaffAndAreThickerThanItsLinesFrom125PercentOn) {
    const int wanted[] = {1, 2, 2, 3, 3};
    for (std::size_t i = 0; i < std::size(kScreenScales); ++i) {
        const TestScale& scale = kScreenScales[i];
        EXPECT_EQ(BarLinePixels(scale.pixels_per_twip), At(wanted, static_cast<int>(i)));
        if (scale.percent > 100) {
            EXPECT_GT(BarLinePixels(scale.pixels_per_twip), StaffLinePixels(scale.pixels_per_twip));
        }
        const Drawn& drawn = Draw({.picture = kBarLinePicture, .y = kTopStaffLine}, scale);
        EXPECT_EQ(drawn.placed.top, LineRow(kTopStaffLine, scale));
        EXPECT_EQ(drawn.placed.top + drawn.placed.mask.height, LineRow(kBottomStaffLine, scale) + drawn.line);
        for (int y = 0; y < drawn.placed.mask.height; ++y) {
            int inked = 0, first = -1;
            for (int x = 0; x < drawn.placed.mask.width; ++x) {
                const int ink = InkAt(drawn.placed.mask, x, y);
                ASSERT_TRUE(ink == 0 || ink == 255);
                if (ink == 255 && inked++ == 0) first = x;
            }
            ASSERT_EQ(inked, At(wanted, static_cast<int>(i))) << scale.percent;
            ASSERT_LE(std::abs(2 * first + inked - drawn.placed.mask.width), 1) << "not in the middle";
        }
    }
}

TEST(Engraving, StaffLinesAreThinAndLieOnWholeRows) {
    const int thick[] = {1, 1, 1, 2, 2};
    for (std::size_t i = 0; i < std::size(kScreenScales); ++i)
        EXPECT_EQ(StaffLinePixels(kScreenScales[i].pixels_per_twip), At(thick, static_cast<int>(i)));
    EXPECT_EQ(StaffLineRow(97.5F), 97) << "the top line at 125 %";
    EXPECT_EQ(StaffLineRow(137.5F), 137) << "the bottom line at 125 %";
    EXPECT_EQ(StaffLineRow(140.0F), 140);
    EXPECT_EQ(StaffLineRow(139.9999F), 140) << "what single precision lacks of a whole pixel";
}

// ---- all pictures ----

TEST(Engraving, AllPicturesDiffer) {
    for (const TestScale& scale : AllScales())
        for (int a = 1; a <= kLastPicture; ++a)
            for (int b = a + 1; b <= kLastPicture; ++b)
                EXPECT_NE(Draw({.picture = a}, scale).placed.mask, Draw({.picture = b}, scale).placed.mask)
                    << a << " and " << b << " at " << scale.percent;
}

TEST(Engraving, UnknownNumbersGiveAnEmptyMask) {
    for (const int picture : {-32768, -1, 0, 60, 61, 80, 32767, 65535}) {
        const StripPicture shown{.picture = picture};
        EXPECT_EQ(StripPictureMask(shown, {}).mask, CoverageMask{}) << picture;
        EXPECT_TRUE(LedgerLineBoxes(shown, {}).empty()) << picture;
        EXPECT_FALSE(IsNotePicture(picture)) << picture;
    }
}

TEST(Engraving, OnlyNotesHaveLedgerLines) {
    for (const int picture : {21, 40, kBarLinePicture, kUnknownPicture})
        EXPECT_TRUE(LedgerLineBoxes({.picture = picture, .y = 510}, {}).empty()) << picture;
    EXPECT_EQ(LedgerLineBoxes({.picture = 51, .y = 510}, {}).size(), 5U);
}

TEST(Engraving, TheSignOfAnUnknownEntryIsABoxWithAQuestionMarkCutOut) {
    for (const TestScale& scale : kScreenScales) {
        const Drawn& drawn = Draw({.picture = kUnknownPicture}, scale);
        const int middle = drawn.placed.mask.width / 2, row = LineRow(kMiddleStaffLine, scale);
        EXPECT_EQ(PiecesOf(drawn.placed.mask).size(), 1U) << scale.percent;
        for (const int x : {-1, 1})
            for (const int y : {-1, 1})
                EXPECT_EQ(PanelInk(drawn, middle + x * static_cast<int>(0.8F * drawn.unit),
                                   row + y * static_cast<int>(drawn.unit)),
                          255)
                    << x << ", " << y << " at " << scale.percent;
        // Down its middle: the hook, the stem, the dot.
        int cuts = 0;
        for (int y = row - static_cast<int>(1.2F * drawn.unit); y < row + static_cast<int>(1.2F * drawn.unit);
             ++y)
            cuts += PanelInk(drawn, middle, y) < 128 && PanelInk(drawn, middle, y - 1) >= 128;
        EXPECT_EQ(cuts, 3) << scale.percent;
    }
}

} // namespace
} // namespace tonex::engraving_test
