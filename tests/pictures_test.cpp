// The engraver's rules, and pictures kept as golden files in tests/golden/. To draw the golden files anew
// after a deliberate change run the tests once with TONEX_WRITE_GOLDEN=1: they are written and the tests
// fail, so that a run that writes is never taken for one that compares.
#include "pictures/glyphs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace tonex {

namespace {

struct TestScale {
    int percent;
    float pixels_per_twip;
    int staff_offset;
};

constexpr TestScale kScales[] = {
    {100, 1 / 15.0F, 0}, {125, 1 / 12.0F, 40}, {150, 1 / 10.0F, 67}, {200, 1 / 7.5F, 100}};

bool IsNote(int picture) {
    return picture <= 20 || (picture >= 41 && picture <= 57);
}

int At(const CoverageMask& mask, int x, int y) {
    return mask.alpha[static_cast<std::size_t>(y * mask.width + x)];
}

long long Sum(const CoverageMask& mask) {
    long long sum = 0;
    for (const std::uint8_t a : mask.alpha)
        sum += a;
    return sum;
}

CoverageMask Picture(int picture, const TestScale& scale, bool sharp = false, bool on_line = false) {
    return NotePictureMask(
        {.picture = picture, .sharp = sharp, .staff_offset = scale.staff_offset, .head_on_line = on_line},
        {scale.pixels_per_twip});
}

/// How many separate pieces of ink there are, touching corners included.
int Pieces(const CoverageMask& mask, int threshold = 110) {
    std::vector<char> seen(mask.alpha.size(), 0);
    int pieces = 0;
    for (int start = 0; start < static_cast<int>(mask.alpha.size()); ++start) {
        if (seen[static_cast<std::size_t>(start)] || mask.alpha[static_cast<std::size_t>(start)] < threshold)
            continue;
        ++pieces;
        std::vector<int> open{start};
        seen[static_cast<std::size_t>(start)] = 1;
        while (!open.empty()) {
            const int at = open.back(), x = at % mask.width, y = at / mask.width;
            open.pop_back();
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) {
                    const int nx = x + dx, ny = y + dy;
                    if (nx < 0 || ny < 0 || nx >= mask.width || ny >= mask.height) continue;
                    const int next = ny * mask.width + nx;
                    if (seen[static_cast<std::size_t>(next)] ||
                        mask.alpha[static_cast<std::size_t>(next)] < threshold)
                        continue;
                    seen[static_cast<std::size_t>(next)] = 1;
                    open.push_back(next);
                }
        }
    }
    return pieces;
}

/// Dots and triplet of a length code, as the table of lengths has them.
struct Ornament {
    int dots;
    bool triplet;
};
constexpr Ornament kOrnaments[20] = {{0, false}, {0, true},  {0, false}, {1, false}, {2, false},
                                     {0, true},  {0, false}, {1, false}, {2, false}, {0, true},
                                     {0, false}, {1, false}, {2, false}, {0, true},  {0, false},
                                     {1, false}, {2, false}, {0, false}, {1, false}, {2, false}};

/// The pixel row that holds a height in the staff panel. What single precision lacks of a whole pixel does
/// not count.
int RowOf(int twips, const TestScale& scale) {
    return static_cast<int>(std::floor(static_cast<float>(twips) * scale.pixels_per_twip + 0.001F));
}

/// Where in its pixel row a height lies, 0 to 1.
float FractionOf(int twips, const TestScale& scale) {
    return std::max(0.0F, static_cast<float>(twips) * scale.pixels_per_twip -
                              static_cast<float>(RowOf(twips, scale)));
}

int LengthOf(int picture) {
    return picture >= 41 ? picture - 40 : (picture - 1) % 20 + 1;
}

} // namespace

TEST(Raster, RectanglesCoverTheirArea) {
    Raster raster = MakeRaster(4, 3);
    AddRectangle(raster, 0.5F, 1.0F, 3.0F, 2.5F);
    const CoverageMask mask = FinishMask(raster);
    const std::vector<std::uint8_t> expected = {0, 0, 0, 0, 128, 255, 255, 0, 64, 128, 128, 0};
    EXPECT_EQ(mask.alpha, expected);
}

TEST(Raster, SlantedEdgesCoverTheirArea) {
    const PathStep triangle[] = {{PathStep::Move, 0, 0, 0, 0, 1, 1},
                                 {PathStep::Line, 0, 0, 0, 0, 23, 4},
                                 {PathStep::Line, 0, 0, 0, 0, 9, 17},
                                 {PathStep::Close, 0, 0, 0, 0, 0, 0}};
    const float area = 0.5F * ((23 - 1) * (17 - 1) - (9 - 1) * (4 - 1));
    for (const float yy : {1.0F, -1.0F}) {
        Raster raster = MakeRaster(25, 20);
        Placement placement;
        placement.yy = yy;
        placement.dy = yy < 0 ? 19.0F : 0.3F;
        AddOutline(raster, triangle, placement);
        EXPECT_NEAR(static_cast<double>(Sum(FinishMask(raster))) / 255, area, 0.3);
    }
}

TEST(Raster, EllipsesCoverTheirArea) {
    Raster raster = MakeRaster(40, 30);
    AddEllipse(raster, 19.3F, 14.6F, 15, 10);
    EXPECT_NEAR(static_cast<double>(Sum(FinishMask(raster))) / 255, 3.14159 * 150, 1.5);
}

TEST(Raster, WhatLiesOutsideIsCutOff) {
    Raster raster = MakeRaster(5, 5);
    AddEllipse(raster, 2.5F, 2.5F, 50, 50);
    AddEllipse(raster, -100, 2, 20, 20);
    AddEllipse(raster, 100, -90, 20, 20);
    AddStroke(raster, -50, -50, 60, 61, 1);
    for (const std::uint8_t a : FinishMask(raster).alpha)
        EXPECT_EQ(a, 255);
}

TEST(Raster, NoSizeGivesAnEmptyMask) {
    Raster raster = MakeRaster(0, 7);
    AddRectangle(raster, 0, 0, 1, 1);
    AddEllipse(raster, 0, 0, 1, 1);
    AddStroke(raster, 0, 0, 1, 1, 1);
    EXPECT_EQ(FinishMask(raster), CoverageMask{});
}

TEST(Pictures, EveryNumberDrawsSomethingAtEveryScale) {
    for (const TestScale& scale : kScales)
        for (int picture = 1; picture <= kLastPicture; ++picture)
            for (const bool sharp : {false, true})
                EXPECT_GT(Sum(Picture(picture, scale, sharp)), 20 * 255)
                    << picture << " at " << scale.percent;
}

TEST(Pictures, UnknownNumbersGiveAnEmptyMask) {
    for (const int picture : {-32768, -1, 0, 60, 61, 80, 32767, 65535}) {
        EXPECT_EQ(Picture(picture, kScales[0]), CoverageMask{}) << picture;
        EXPECT_FALSE(HasRoomForSharp(picture)) << picture;
    }
    for (const int picture : {-1, 0, 41, 58, 59})
        EXPECT_EQ(ButtonPictureMask(picture, 31, 34, 1 / 15.0F), CoverageMask{}) << picture;
}

TEST(Pictures, NothingIsDrawnOutsideTheBox) {
    for (const TestScale& scale : kScales) {
        for (const float origin_x : {0.0F, 0.25F, 0.5F, 0.9F}) {
            for (const float origin_y : {0.0F, 0.33F, 0.7F}) {
                for (int picture = 1; picture <= kLastPicture; ++picture) {
                    if (picture == kBarLinePicture) continue;
                    SCOPED_TRACE(testing::Message() << picture << " at " << scale.percent << " from "
                                                    << origin_x << ", " << origin_y);
                    const float right = origin_x + kPictureWidth * scale.pixels_per_twip;
                    const float bottom = origin_y + kPictureHeight * scale.pixels_per_twip;
                    const CoverageMask mask = NotePictureMask({.picture = picture,
                                                               .sharp = true,
                                                               .staff_offset = scale.staff_offset,
                                                               .head_on_line = true},
                                                              {scale.pixels_per_twip, origin_x, origin_y});
                    ASSERT_EQ(mask.width, static_cast<int>(std::ceil(right - 0.01F)));
                    ASSERT_EQ(mask.height, static_cast<int>(std::ceil(bottom - 0.01F)));
                    // A pixel that the box's edge cuts is inked at most as far as it belongs to the box.
                    int first_column = 0, last_column = 0, first_row = 0, last_row = 0;
                    for (int y = 0; y < mask.height; ++y) {
                        first_column = std::max(first_column, At(mask, 0, y));
                        last_column = std::max(last_column, At(mask, mask.width - 1, y));
                    }
                    for (int x = 0; x < mask.width; ++x) {
                        first_row = std::max(first_row, At(mask, x, 0));
                        last_row = std::max(last_row, At(mask, x, mask.height - 1));
                    }
                    EXPECT_LE(static_cast<float>(first_column), (1 - origin_x) * 255 + 2);
                    EXPECT_LE(static_cast<float>(first_row), (1 - origin_y) * 255 + 2);
                    EXPECT_LE(static_cast<float>(last_column),
                              (right - static_cast<float>(mask.width - 1)) * 255 + 2);
                    EXPECT_LE(static_cast<float>(last_row),
                              (bottom - static_cast<float>(mask.height - 1)) * 255 + 2);
                }
            }
        }
    }
}

/// Heads on their lines and in their spaces, from c8 down to c4, as the window places pictures and draws
/// lines.
TEST(Pictures, HeadsStandOnLinesAndInSpacesAtEveryScale) {
    for (const TestScale& scale : kScales) {
        const float s = scale.pixels_per_twip, line = static_cast<float>(StaffLinePixels(s));
        const auto line_centre = [&](int y_twips) {
            return static_cast<float>(RowOf(y_twips, scale)) + line / 2;
        };
        for (int step = -15; step <= 13; ++step) {
            for (int picture = 1; picture <= 57; ++picture) {
                if (!IsNote(picture) || kOrnaments[LengthOf(picture) - 1].triplet) continue;
                const int head_y = 1410 + 60 * step, top = 1140 + 60 * step + scale.staff_offset;
                const CoverageMask mask = NotePictureMask(
                    {.picture = picture, .staff_offset = scale.staff_offset, .head_on_line = step % 2 == 0},
                    {s, 0, FractionOf(top, scale)});
                const float wanted = step % 2 == 0
                                         ? line_centre(head_y)
                                         : (line_centre(head_y - 60) + line_centre(head_y + 60)) / 2;
                const HeadSpan head = HeadSpanOf(picture);
                const int from = static_cast<int>(std::ceil(static_cast<float>(head.left) * s)) + 2;
                const int to = static_cast<int>(static_cast<float>(head.left + head.width) * s) - 2;
                if (LengthOf(picture) <= 10) {
                    // Flags may reach the head's height: the head is the one of the quarter with as many
                    // dots.
                    const int quarter = (picture > 40 ? 51 : 11) + kOrnaments[LengthOf(picture) - 1].dots;
                    const CoverageMask plain = NotePictureMask({.picture = quarter,
                                                                .staff_offset = scale.staff_offset,
                                                                .head_on_line = step % 2 == 0},
                                                               {s, 0, FractionOf(top, scale)});
                    for (int y = 0; y < mask.height; ++y)
                        for (int x = from; x <= to; ++x)
                            ASSERT_GE(At(mask, x, y) + 1, At(plain, x, y))
                                << picture << " at " << scale.percent;
                    continue;
                }
                double weight = 0, moment = 0;
                for (int y = 0; y < mask.height; ++y) {
                    const float centre = static_cast<float>(RowOf(top, scale) + y) + 0.5F;
                    if (std::abs(centre - wanted) > 0.75F * kStaffSpace * s) continue;
                    for (int x = from; x <= to; ++x) {
                        weight += At(mask, x, y);
                        moment += static_cast<double>(At(mask, x, y)) * centre;
                    }
                }
                ASSERT_GT(weight, 0);
                EXPECT_NEAR(moment / weight, wanted, 0.25)
                    << picture << " step " << step << " at " << scale.percent;
            }
        }
    }
}

TEST(Pictures, RestsSitAndHangOnTheirLines) {
    for (const TestScale& scale : kScales) {
        const float s = scale.pixels_per_twip;
        // As the window places them: the box from 1200 down, the staff's middle line at 1410, the fourth at
        // 1290.
        const int line = StaffLinePixels(s), top = RowOf(1200, scale), middle = RowOf(1410, scale) - top;
        const int fourth = RowOf(1290, scale) - top, half_space = static_cast<int>(60 * s);
        const int x = static_cast<int>(150 * s);
        const float origin = FractionOf(1200, scale);
        const CoverageMask half =
            NotePictureMask({.picture = 35, .staff_offset = scale.staff_offset}, {s, 0, origin});
        const CoverageMask whole =
            NotePictureMask({.picture = 38, .staff_offset = scale.staff_offset}, {s, 0, origin});
        EXPECT_EQ(At(half, x, middle + line - 1), 255) << scale.percent;
        EXPECT_EQ(At(half, x, middle + line), 0) << "a half rest ends with the middle line";
        EXPECT_EQ(At(half, x, middle - half_space / 2), 255);
        EXPECT_EQ(At(half, x, middle - half_space - 2), 0);
        EXPECT_EQ(At(whole, x, fourth - 1), 0) << "a whole rest begins with the fourth line";
        EXPECT_EQ(At(whole, x, fourth), 255);
        EXPECT_EQ(At(whole, x, fourth + half_space / 2 + line), 255);
        EXPECT_EQ(At(whole, x, fourth + half_space + line + 2), 0);
    }
}

TEST(Pictures, StemsAndBarLineStandOnWholePixels) {
    for (const TestScale& scale : kScales) {
        for (const float origin_x : {0.0F, 0.3F, 0.5F, 0.8F}) {
            const int line = StaffLinePixels(scale.pixels_per_twip);
            const CoverageMask bar = NotePictureMask({.picture = 58}, {scale.pixels_per_twip, origin_x, 0});
            const CoverageMask quarter = NotePictureMask({.picture = 11, .staff_offset = scale.staff_offset},
                                                         {scale.pixels_per_twip, origin_x, 0});
            const CoverageMask down = NotePictureMask({.picture = 51, .staff_offset = scale.staff_offset},
                                                      {scale.pixels_per_twip, origin_x, 0});
            int bars = 0, stems = 0, stems_down = 0;
            for (int x = 0; x < bar.width; ++x) {
                const int ink = At(bar, x, bar.height / 2), up = At(quarter, x, 1),
                          low = At(down, x, down.height - 2);
                EXPECT_TRUE(ink == 0 || ink == 255) << ink;
                EXPECT_TRUE(up == 0 || up == 255) << up;
                EXPECT_TRUE(low == 0 || low == 255) << low;
                bars += ink == 255;
                stems += up == 255;
                stems_down += low == 255;
            }
            EXPECT_EQ(bars, line) << scale.percent;
            EXPECT_EQ(stems, line) << scale.percent;
            EXPECT_EQ(stems_down, line) << scale.percent;
        }
    }
    EXPECT_EQ(StaffLinePixels(kScales[0].pixels_per_twip), 1);
    EXPECT_EQ(StaffLinePixels(kScales[1].pixels_per_twip), 1);
    EXPECT_EQ(StaffLinePixels(kScales[2].pixels_per_twip), 1);
    EXPECT_EQ(StaffLinePixels(kScales[3].pixels_per_twip), 2);
}

TEST(Pictures, BarLineCoversTheRowsOfTheTopAndTheBottomLineAndAllBetween) {
    for (const TestScale& scale : kScales) {
        const CoverageMask bar = NotePictureMask({.picture = 58, .staff_offset = scale.staff_offset},
                                                 {scale.pixels_per_twip, 0, FractionOf(1170, scale)});
        const int line = StaffLinePixels(scale.pixels_per_twip);
        EXPECT_EQ(bar.height, RowOf(1650, scale) + line - RowOf(1170, scale)) << scale.percent;
        EXPECT_EQ(bar.width, static_cast<int>(kPictureWidth * scale.pixels_per_twip + 0.01F));
        const int x = static_cast<int>(150 * scale.pixels_per_twip);
        for (int y = 0; y < bar.height; ++y) {
            EXPECT_EQ(At(bar, x, y), 255) << y << " at " << scale.percent;
            EXPECT_EQ(At(bar, 0, y), 0);
            EXPECT_EQ(At(bar, bar.width - 1, y), 0);
        }
    }
}

TEST(Pictures, LinesBetweenTwoPixelRowsTakeTheUpperOne) {
    EXPECT_EQ(StaffLineRow(97.5F), 97) << "the top line at 125 %";
    EXPECT_EQ(StaffLineRow(137.5F), 137) << "the bottom line at 125 %";
    EXPECT_EQ(StaffLineRow(140.0F), 140);
    EXPECT_EQ(StaffLineRow(139.9999F), 140) << "what single precision lacks of a whole pixel";
}

TEST(Pictures, StemsUpAndDownHaveFairRoomAtEveryScale) {
    for (const TestScale& scale : kScales) {
        const int up = kHeadCentre - scale.staff_offset, down = kPictureHeight - up;
        EXPECT_GE(up, 170) << scale.percent;
        EXPECT_GE(down, 210) << scale.percent;
    }
}

TEST(Pictures, RestsFollowTheRowOfTheMiddleLine) {
    // At 125 % the middle line lies in the middle of a pixel: 17.5 and 17.9 below the box's first row are
    // both row 17.
    const float s = 1 / 12.0F;
    for (int picture = 21; picture <= 40; ++picture) {
        const CoverageMask early = NotePictureMask({.picture = picture, .staff_offset = 40}, {s});
        const CoverageMask late = NotePictureMask({.picture = picture, .staff_offset = 40}, {s, 0, 0.4F});
        ASSERT_EQ(early.width, late.width);
        for (int y = 0; y < early.height; ++y)
            for (int x = 0; x < early.width; ++x)
                ASSERT_EQ(At(early, x, y), At(late, x, y)) << picture << ", row " << y;
    }
}

TEST(Pictures, TheClefStandsOnTheRowOfItsLine) {
    // At 125 % its box begins in the middle of a pixel, and so does the line that it curls around.
    const float s = 1 / 12.0F;
    const CoverageMask between = ClefMask({s, 0, 0.5F}), whole = ClefMask({s});
    ASSERT_EQ(between.width, whole.width);
    ASSERT_EQ(between.height, whole.height + 1);
    for (std::size_t i = 0; i < whole.alpha.size(); ++i)
        ASSERT_EQ(between.alpha[i], whole.alpha[i]) << i;
}

TEST(Pictures, DotsAndTripletsStandApart) {
    for (const TestScale& scale : kScales) {
        for (const bool on_line : {false, true}) {
            for (int picture = 1; picture <= 57; ++picture) {
                const Ornament& ornament = kOrnaments[LengthOf(picture) - 1];
                const CoverageMask mask = Picture(picture, scale, false, on_line);
                EXPECT_EQ(Pieces(mask), 1 + ornament.dots + (ornament.triplet ? 1 : 0))
                    << picture << " at " << scale.percent << (on_line ? " on a line" : "");
            }
        }
    }
}

TEST(Pictures, DotsOfAHeadOnALineLeaveTheLine) {
    for (const TestScale& scale : kScales)
        for (const int picture : {4, 5, 8, 9, 12, 13, 16, 17, 19, 20, 52, 53, 56, 57}) {
            EXPECT_NE(Picture(picture, scale, false, false), Picture(picture, scale, false, true)) << picture;
            if (picture < 10) continue; // flags hang beside these heads
            const float s = scale.pixels_per_twip;
            const CoverageMask mask = Picture(picture, scale, false, true);
            const int row = RowOf(kHeadCentre - scale.staff_offset, scale);
            const HeadSpan head = HeadSpanOf(picture);
            int ink = 0;
            for (int x = static_cast<int>(static_cast<float>(head.left + head.width) * s) + 2; x < mask.width;
                 ++x)
                ink += At(mask, x, row);
            EXPECT_EQ(ink, 0) << picture << " at " << scale.percent;
        }
}

TEST(Pictures, StemUpAndStemDownDiffer) {
    for (const TestScale& scale : kScales)
        for (int picture = 1; picture <= 17; ++picture)
            EXPECT_NE(Picture(picture, scale), Picture(picture + 40, scale)) << picture;
}

TEST(Pictures, AllPicturesDiffer) {
    for (int a = 1; a <= kLastPicture; ++a)
        for (int b = a + 1; b <= kLastPicture; ++b)
            EXPECT_NE(Picture(a, kScales[0]), Picture(b, kScales[0])) << a << " and " << b;
}

TEST(Pictures, TheSignOfAnUnknownEntryIsABoxWithAQuestionMarkCutOut) {
    for (const TestScale& scale : kScales) {
        const CoverageMask mask = Picture(kUnknownPicture, scale);
        EXPECT_EQ(Pieces(mask), 1) << scale.percent;
        EXPECT_EQ(At(mask, 0, 0), 0) << scale.percent;
        const auto pixel = [&](int twips) {
            return static_cast<int>(static_cast<float>(twips) * scale.pixels_per_twip);
        };
        for (const int x : {60, 240})
            for (const int y : {90, 330})
                EXPECT_EQ(At(mask, pixel(x), pixel(y)), 255) << x << ", " << y << " at " << scale.percent;
        // Down its middle: the hook, the stem, the dot.
        int cuts = 0;
        for (int y = pixel(60); y < pixel(360); ++y)
            cuts += At(mask, pixel(150), y) < 128 && At(mask, pixel(150), y - 1) >= 128;
        EXPECT_EQ(cuts, 3) << scale.percent;
    }
}

TEST(Pictures, EveryNoteHasRoomForASharp) {
    for (int picture = 1; picture <= kLastPicture; ++picture) {
        EXPECT_EQ(HasRoomForSharp(picture), IsNote(picture)) << picture;
        for (const TestScale& scale : kScales)
            EXPECT_EQ(Picture(picture, scale, true) != Picture(picture, scale, false), IsNote(picture))
                << picture;
    }
}

TEST(Pictures, ASharpDoesNotMoveItsNote) {
    for (const TestScale& scale : kScales)
        for (int picture = 1; picture <= 57; ++picture) {
            if (!IsNote(picture)) continue;
            const CoverageMask plain = Picture(picture, scale), sharp = Picture(picture, scale, true);
            for (std::size_t i = 0; i < plain.alpha.size(); ++i)
                ASSERT_GE(sharp.alpha[i] + 1, plain.alpha[i]) << picture << " at " << scale.percent;
        }
}

TEST(Pictures, AreTheSameInEveryRun) {
    for (int picture = 1; picture <= kLastPicture; ++picture)
        EXPECT_EQ(Picture(picture, kScales[1], true), Picture(picture, kScales[1], true));
    EXPECT_EQ(ClefMask({0.1F, 0.2F, 0.3F}), ClefMask({0.1F, 0.2F, 0.3F}));
}

TEST(Pictures, ButtonsShowTheirDotsAndTriplets) {
    for (const TestScale& scale : kScales) {
        const int width = 31 * scale.percent / 100, height = 34 * scale.percent / 100;
        for (int picture = 1; picture <= 40; ++picture) {
            const Ornament& ornament = kOrnaments[LengthOf(picture) - 1];
            const CoverageMask mask = ButtonPictureMask(picture, width, height, scale.pixels_per_twip);
            ASSERT_EQ(mask.width, width);
            ASSERT_EQ(mask.height, height);
            EXPECT_EQ(Pieces(mask), 1 + ornament.dots + (ornament.triplet ? 1 : 0))
                << picture << " at " << scale.percent;
            for (int x = 0; x < width; ++x) {
                EXPECT_EQ(At(mask, x, 0), 0) << picture;
                EXPECT_EQ(At(mask, x, height - 1), 0) << picture;
            }
            for (int y = 0; y < height; ++y) {
                EXPECT_EQ(At(mask, 0, y), 0) << picture;
                EXPECT_EQ(At(mask, width - 1, y), 0) << picture;
            }
        }
    }
}

TEST(Pictures, SmallButtonsStillShowTheirPicture) {
    for (int picture = 1; picture <= 40; ++picture) {
        EXPECT_GT(Sum(ButtonPictureMask(picture, 16, 16, 1 / 7.5F)), 0);
        EXPECT_NO_FATAL_FAILURE(ButtonPictureMask(picture, 1, 1, 1 / 15.0F));
    }
    EXPECT_EQ(ButtonPictureMask(1, 0, 10, 1 / 15.0F), CoverageMask{});
}

TEST(Pictures, TheClefHasAnEightAboveItAndStaysInItsBox) {
    for (const TestScale& scale : kScales) {
        const float s = scale.pixels_per_twip;
        const CoverageMask clef = ClefMask({s});
        EXPECT_EQ(clef.width, static_cast<int>(std::ceil(kClefBox.width * s - 0.01F)));
        EXPECT_EQ(clef.height, static_cast<int>(std::ceil(kClefBox.height * s - 0.01F)));
        EXPECT_EQ(Pieces(clef), 2) << scale.percent;
        for (int x = 0; x < clef.width; ++x) {
            EXPECT_EQ(At(clef, x, 0), 0);
            EXPECT_EQ(At(clef, x, clef.height - 1), 0);
        }
        for (int y = 0; y < clef.height; ++y) {
            EXPECT_EQ(At(clef, 0, y), 0);
            EXPECT_EQ(At(clef, clef.width - 1, y), 0);
        }
    }
}

TEST(Pictures, ToolIconsDifferAndHaveTheSizeAskedFor) {
    for (const int size : {16, 20, 24, 32}) {
        std::vector<std::vector<CoverageMask>> all;
        for (int icon = 0; icon < kToolIcons; ++icon) {
            const std::vector<ColourLayer> layers = ToolIconLayers(static_cast<ToolIcon>(icon), size);
            ASSERT_FALSE(layers.empty());
            std::vector<CoverageMask> masks;
            for (const ColourLayer& layer : layers) {
                EXPECT_EQ(layer.mask.width, size);
                EXPECT_EQ(layer.mask.height, size);
                EXPECT_GT(Sum(layer.mask), 0);
                masks.push_back(layer.mask);
            }
            EXPECT_EQ(std::count(all.begin(), all.end(), masks), 0) << icon;
            all.push_back(masks);
        }
    }
    EXPECT_TRUE(ToolIconLayers(ToolIcon::New, 0).empty());
}

/// A pixel with straight alpha put over a ground, as an image list draws it.
std::uint32_t OnGround(std::uint32_t pixel, std::uint32_t ground) {
    const unsigned alpha = pixel >> 24;
    std::uint32_t seen = 0;
    for (int shift = 0; shift <= 16; shift += 8)
        seen |= ((pixel >> shift & 255) * alpha + (ground >> shift & 255) * (255 - alpha) + 127) / 255
                << shift;
    return seen;
}

/// The largest difference of two colours in a channel.
int Apart(std::uint32_t a, std::uint32_t b) {
    int most = 0;
    for (int shift = 0; shift <= 16; shift += 8)
        most =
            std::max(most, std::abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255)));
    return most;
}

TEST(Pictures, FlattenedLayersLookLikeLayersPaintedOneByOneOnAnyGround) {
    for (const std::uint32_t ground : {0xF0F0F0U, 0x000000U, 0xFFFFFFU, 0x808080U})
        for (int icon = 0; icon < kToolIcons; ++icon) {
            const std::vector<ColourLayer> layers = ToolIconLayers(static_cast<ToolIcon>(icon), 25);
            const std::vector<std::uint32_t> pixels = FlattenLayers(layers, 25);
            ASSERT_EQ(pixels.size(), 625U);
            for (std::size_t i = 0; i < pixels.size(); ++i) {
                std::uint32_t painted = ground;
                for (const ColourLayer& layer : layers)
                    painted =
                        OnGround(static_cast<std::uint32_t>(layer.mask.alpha[i]) << 24 | layer.rgb, painted);
                ASSERT_LE(Apart(OnGround(pixels[i], ground), painted), 3) << icon << ", pixel " << i;
            }
        }
}

TEST(Pictures, AHalfCoveredPixelKeepsItsColourWhole) {
    const ColourLayer red{0xC93F38, {1, 1, {128}}};
    EXPECT_EQ(FlattenLayers({red}, 1), (std::vector<std::uint32_t>{0x80C93F38}));
    EXPECT_EQ(FlattenLayers({red, {0x00FF00, {1, 1, {255}}}}, 1), (std::vector<std::uint32_t>{0xFF00FF00}));
    EXPECT_EQ(FlattenLayers({{0xC93F38, {1, 1, {0}}}}, 1), (std::vector<std::uint32_t>{0}));
}

TEST(Pictures, OpenAndSaveOfTheOrganiserDifferAtAGlance) {
    for (const int size : {16, 20, 25, 30, 40}) {
        const auto open = FlattenLayers(ToolIconLayers(ToolIcon::OpenVeloxa, size), size);
        const auto save = FlattenLayers(ToolIconLayers(ToolIcon::SaveVeloxa, size), size);
        int inked = 0, differ = 0;
        for (std::size_t i = 0; i < open.size(); ++i) {
            inked += (open[i] | save[i]) >> 24 > 127;
            differ += Apart(OnGround(open[i], 0xF0F0F0), OnGround(save[i], 0xF0F0F0)) > 60;
        }
        EXPECT_GE(differ * 100, inked * 35) << size << ": " << differ << " of " << inked << " pixels differ";
    }
}

TEST(Pictures, TheProgramIconIsARoundedTileWithPremultipliedColours) {
    for (const int size : {16, 20, 24, 32, 48, 64, 256}) {
        const std::vector<std::uint32_t> pixels = ProgramIconPixels(size);
        ASSERT_EQ(pixels.size(), static_cast<std::size_t>(size * size));
        EXPECT_LT(pixels.front() >> 24, 128U);
        EXPECT_EQ(pixels[static_cast<std::size_t>(size / 2 * size + size / 2)] >> 24, 255U);
        for (const std::uint32_t pixel : pixels)
            for (int shift = 0; shift <= 16; shift += 8)
                ASSERT_LE(pixel >> shift & 255, pixel >> 24);
    }
    EXPECT_TRUE(ProgramIconPixels(0).empty());
}

// ---- golden files ----

namespace {

/// Pictures side by side, one grey value a pixel, 0 = white paper (as coverage).
struct Plate {
    int width = 0, height = 0;
    std::vector<CoverageMask> masks;
};

void Append(Plate& plate, const CoverageMask& mask) {
    plate.width += mask.width;
    plate.height = std::max(plate.height, mask.height);
    plate.masks.push_back(mask);
}

/// As a PGM file, ink black.
std::string PlateFile(const Plate& plate) {
    std::string bytes = "P5\n" + std::to_string(plate.width) + " " + std::to_string(plate.height) + "\n255\n";
    for (int y = 0; y < plate.height; ++y)
        for (const CoverageMask& mask : plate.masks)
            for (int x = 0; x < mask.width; ++x)
                bytes += static_cast<char>(255 - (y < mask.height ? At(mask, x, y) : 0));
    return bytes;
}

std::string GoldenPath(const std::string& name) {
    std::string path = TONEX_TESTS_FOLDER "/golden/" + name;
#ifdef _WIN32
    if (path.front() == '/') path = "Z:" + path; // built on another system: its root is the drive Z
#endif
    return path;
}

std::string ReadGolden(const std::string& path) {
    std::string bytes;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return bytes;
    char buffer[4096];
    for (std::size_t count; (count = std::fread(buffer, 1, sizeof buffer, file)) > 0;)
        bytes.append(buffer, count);
    std::fclose(file);
    return bytes;
}

void CompareWithGolden(const std::string& name, const std::string& bytes) {
    const std::string path = GoldenPath(name);
    if (std::getenv("TONEX_WRITE_GOLDEN") != nullptr) {
        std::FILE* file = std::fopen(path.c_str(), "wb");
        ASSERT_NE(file, nullptr) << path;
        const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
        ASSERT_TRUE(std::fclose(file) == 0 && written) << path;
        FAIL() << path << " has been written anew; look at it and run again without TONEX_WRITE_GOLDEN";
    }
    const std::string golden = ReadGolden(path);
    ASSERT_FALSE(golden.empty()) << path << " is missing";
    ASSERT_EQ(golden.size(), bytes.size()) << path;
    std::size_t different = 0, first = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        if (bytes[i] != golden[i]) {
            ++different;
            first = i;
        }
    EXPECT_EQ(different, 0U) << path << ": first at byte " << first << ", expected "
                             << static_cast<int>(static_cast<unsigned char>(golden[first])) << ", drawn "
                             << static_cast<int>(static_cast<unsigned char>(bytes[first]));
}

std::string Name(const char* what, int number) {
    return what + std::to_string(number) + ".pgm";
}

} // namespace

TEST(PicturesGolden, NotesAndRests) {
    for (const TestScale& scale : kScales) {
        Plate plate;
        for (const int picture :
             {1, 2, 5, 8, 11, 14, 15, 18, 20, 41, 44, 47, 50, 51, 57, 58, 21, 23, 30, 31, 35, 39})
            Append(plate, NotePictureMask({.picture = picture,
                                           .sharp = picture % 2 == 0,
                                           .staff_offset = scale.staff_offset,
                                           .head_on_line = picture % 3 == 0},
                                          {scale.pixels_per_twip, 0.5F, 0.25F}));
        CompareWithGolden(Name("strip-", scale.percent), PlateFile(plate));
    }
}

TEST(PicturesGolden, ClefAndButtons) {
    for (const TestScale& scale : kScales) {
        Plate plate;
        Append(plate, ClefMask({scale.pixels_per_twip}));
        for (const int picture : {1, 4, 10, 15, 20, 21, 29, 34, 36, 38})
            Append(plate, ButtonPictureMask(picture, 31 * scale.percent / 100, 34 * scale.percent / 100,
                                            scale.pixels_per_twip));
        CompareWithGolden(Name("panels-", scale.percent), PlateFile(plate));
    }
}

TEST(PicturesGolden, Icons) {
    for (const int size : {16, 20, 24, 32}) {
        Plate plate;
        for (int icon = 0; icon < kToolIcons; ++icon)
            for (const ColourLayer& layer : ToolIconLayers(static_cast<ToolIcon>(icon), size))
                Append(plate, layer.mask);
        // The program icon's channels, alpha first.
        const std::vector<std::uint32_t> pixels = ProgramIconPixels(size);
        for (int shift = 24; shift >= 0; shift -= 8) {
            CoverageMask channel{size, size, {}};
            for (const std::uint32_t pixel : pixels)
                channel.alpha.push_back(static_cast<std::uint8_t>(pixel >> shift));
            Append(plate, channel);
        }
        CompareWithGolden(Name("icons-", size), PlateFile(plate));
    }
}

} // namespace tonex
