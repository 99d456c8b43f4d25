// The rasteriser: how much of each pixel it says is covered, against areas worked out in double precision.
#include "pictures/raster.h"
#include "score/rows.h"
#include "tests/masks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

namespace tonex::raster_test {

using testing::InkAt;
using testing::InkOf;

namespace {

struct Corner {
    double x, y;
};
using Corners = std::vector<Corner>;

/// What of a shape lies where `side` gives 0 or more.
template <class Side> Corners CutAlong(const Corners& shape, const Side& side) {
    Corners kept;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        const Corner &a = shape[i], &b = shape[(i + 1) % shape.size()];
        const double from = side(a), to = side(b);
        if (from >= 0) kept.push_back(a);
        const double part = from / (from - to);
        if ((from < 0) != (to < 0)) kept.push_back({a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part});
    }
    return kept;
}

double AreaOf(const Corners& shape) {
    double twice = 0;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        const Corner &a = shape[i], &b = shape[(i + 1) % shape.size()];
        twice += a.x * b.y - b.x * a.y;
    }
    return std::abs(twice) / 2;
}

/// How much of a pixel a convex shape covers, 0 to 1.
double ShareOf(const Corners& shape, int x, int y) {
    const Corners right = CutAlong(shape, [&](const Corner& c) { return c.x - x; });
    const Corners column = CutAlong(right, [&](const Corner& c) { return x + 1 - c.x; });
    const Corners below = CutAlong(column, [&](const Corner& c) { return c.y - y; });
    return AreaOf(CutAlong(below, [&](const Corner& c) { return y + 1 - c.y; }));
}

/// A triangle with the corners in a counterclockwise order where y is upwards.
std::vector<PathStep> TriangleOf(const PathStep& a, const PathStep& b, const PathStep& c) {
    const int turn = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    std::vector<PathStep> steps = {a, turn < 0 ? c : b, turn < 0 ? b : c};
    steps[0].kind = PathStep::Move;
    steps.push_back({PathStep::Close, 0, 0, 0, 0, 0, 0});
    return steps;
}

Corners CornersOf(const std::vector<PathStep>& triangle, const Placement& p) {
    Corners corners;
    for (int i = 0; i < 3; ++i) {
        const double x = At(triangle, i).x, y = At(triangle, i).y;
        corners.push_back({double{p.xx} * x + double{p.xy} * y + double{p.dx},
                           double{p.yx} * x + double{p.yy} * y + double{p.dy}});
    }
    return corners;
}

struct Box {
    double left, top, right, bottom;
};

/// A box with elliptic corners, as a shape of very many straight sides.
Corners RoundBoxOf(const Box& box, double radius_x, double radius_y) {
    Corners corners;
    for (int i = 0; i < 1000; ++i) {
        const double angle = (i + 0.5) * 2 * 3.14159265358979 / 1000;
        const double x = radius_x * (std::cos(angle) + (i < 250 || i >= 750 ? -1 : 1));
        const double y = radius_y * (std::sin(angle) + (i < 500 ? -1 : 1));
        corners.push_back(
            {x + (i < 250 || i >= 750 ? box.right : box.left), y + (i < 500 ? box.bottom : box.top)});
    }
    return corners;
}

template <class Share> void ExpectShares(const CoverageMask& mask, double most, const Share& share) {
    for (int y = 0; y < mask.height; ++y)
        for (int x = 0; x < mask.width; ++x)
            ASSERT_NEAR(InkAt(mask, x, y), 255 * share(x, y), most) << x << ", " << y;
}

constexpr double kRounded = 0.51; ///< what a rounded byte may be beside its value
constexpr double kChords = 6;     ///< the same where a curve is drawn by its chords

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
        EXPECT_NEAR(static_cast<double>(InkOf(FinishMask(raster))) / 255, area, 0.3);
    }
}

TEST(Raster, AnEdgeHardlySlantedInTheFirstColumnCoversItsArea) {
    const PathStep box[] = {{PathStep::Move, 0, 0, 0, 0, 0, 0},
                            {PathStep::Line, 0, 0, 0, 0, 2, 0},
                            {PathStep::Line, 0, 0, 0, 0, 2, 10},
                            {PathStep::Line, 0, 0, 0, 0, 0, 10},
                            {PathStep::Close, 0, 0, 0, 0, 0, 0}};
    Raster raster = MakeRaster(4, 10);
    Placement placement;
    placement.xy = 1.2e-8F; // in one row no step of a single-precision number
    placement.dx = 0.5F;
    AddOutline(raster, box, placement);
    EXPECT_NEAR(static_cast<double>(InkOf(FinishMask(raster))) / 255, 20.0, 0.1);
}

TEST(Raster, EllipsesCoverTheirArea) {
    Raster raster = MakeRaster(40, 30);
    AddEllipse(raster, 19.3F, 14.6F, 15, 10);
    EXPECT_NEAR(static_cast<double>(InkOf(FinishMask(raster))) / 255, 3.14159 * 150, 1.5);
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

TEST(Raster, MixedPixelsAreRounded) {
    for (unsigned below = 0; below < 256; ++below)
        for (unsigned above = 0; above < 256; above += 5)
            for (unsigned share = 0; share < 256; ++share) {
                const unsigned each = (below * (255 - share) + above * share + 127) / 255;
                ASSERT_EQ(MixPixels(below * 0x010101, above * 0x010101, share), each * 0x010101)
                    << below << ", " << above << ", " << share;
            }
    EXPECT_EQ(MixPixels(0x102030, 0xFFFFFF, 0), 0x102030U);
    EXPECT_EQ(MixPixels(0x102030, 0xA0B0C0, 255), 0xA0B0C0U);
}

TEST(Raster, WhatIsCutOutIsRounded) {
    for (unsigned ink = 0; ink < 256; ++ink)
        for (unsigned hole = 0; hole < 256; ++hole) {
            CoverageMask mask{1, 1, {static_cast<std::uint8_t>(ink)}};
            CutOut(mask, {1, 1, {static_cast<std::uint8_t>(hole)}});
            ASSERT_EQ(mask.alpha[0], std::lround(ink * (255 - hole) / 255.0)) << ink << ", " << hole;
        }
}

TEST(Raster, ABlendedRowIsMixedPixelByPixel) {
    const std::vector<std::uint8_t> coverage = {0, 0, 0,   0,   0,   255, 0, 0, 7, 0, 0,
                                                0, 0, 255, 254, 128, 0,   1, 0, 0, 0};
    const int most = static_cast<int>(coverage.size());
    for (int from = 0; from <= most; ++from)
        for (int count = 0; from + count <= most; ++count) {
            std::vector<std::uint32_t> row(coverage.size(), 0x204060), expected = row;
            for (int x = from; x < from + count; ++x)
                At(expected, x) = MixPixels(0x204060, 0xF08010, At(coverage, x));
            BlendRow(row.data() + from, coverage.data() + from, count, 0xF08010);
            EXPECT_EQ(row, expected) << from << ", " << count;
        }
}

/// Many of the corners lie on the raster's border, beyond it, and on the borders of pixels.
TEST(Raster, EveryPixelOfATriangleIsCoveredByItsShare) {
    std::mt19937 random(1);
    const auto corner = [&] {
        const auto number = [&](unsigned count) { return static_cast<std::int16_t>(random() % count); };
        return PathStep{PathStep::Line, 0, 0, 0, 0, number(29), number(25)};
    };
    Placement halves; // a pixel is two units; the raster begins at (6, 6) and ends at (22, 18)
    halves.xx = halves.yy = 0.5F;
    halves.dx = halves.dy = -3;
    for (int i = 0; i < 2000; ++i) {
        const std::vector<PathStep> triangle = TriangleOf(corner(), corner(), corner());
        const Corners shape = CornersOf(triangle, halves);
        Raster raster = MakeRaster(8, 6);
        AddOutline(raster, triangle, halves);
        ExpectShares(FinishMask(raster), kRounded, [&](int x, int y) { return ShareOf(shape, x, y); });
        if (::testing::Test::HasFatalFailure()) FAIL() << "triangle " << i;
    }
}

/// Every placement that turns, slants or mirrors by steps of a half.
TEST(Raster, AnOutlineFillsOrCutsTheSameHoweverItIsPlaced) {
    std::vector<PathStep> fills =
        TriangleOf({PathStep::Line, 0, 0, 0, 0, -3, -2}, {PathStep::Line, 0, 0, 0, 0, 3, -1},
                   {PathStep::Line, 0, 0, 0, 0, -1, 3});
    std::vector<PathStep> cuts = fills;
    std::swap(cuts[1], cuts[2]);
    for (int i = 0; i < 81; ++i) {
        const auto factor = [&](int place) { return static_cast<float>(i / place % 3 - 1) / 2; };
        const Placement placement{factor(1), factor(3), 8, factor(9), factor(27), 8};
        if (placement.xx * placement.yy == placement.xy * placement.yx) continue; // nothing is left of it
        const Corners shape = CornersOf(fills, placement);
        const auto covered_by = [&](const std::vector<PathStep>& outline) {
            Raster raster = MakeRaster(16, 16);
            AddRectangle(raster, 0, 0, 16, 16);
            AddOutline(raster, outline, placement);
            return FinishMask(raster);
        };
        ExpectShares(covered_by(fills), kRounded, [](int, int) { return 1; });
        ExpectShares(covered_by(cuts), kRounded, [&](int x, int y) { return 1 - ShareOf(shape, x, y); });
        if (::testing::Test::HasFatalFailure()) FAIL() << "placement " << i;
    }
}

/// Without a move the next begins where the last one began.
TEST(Raster, AContourBeginsAnewWhereItMoves) {
    const PathStep two[] = {{PathStep::Move, 0, 0, 0, 0, 1, 1},  {PathStep::Line, 0, 0, 0, 0, 3, 1},
                            {PathStep::Line, 0, 0, 0, 0, 3, 3},  {PathStep::Line, 0, 0, 0, 0, 1, 3},
                            {PathStep::Close, 0, 0, 0, 0, 0, 0}, {PathStep::Move, 0, 0, 0, 0, 5, 0},
                            {PathStep::Line, 0, 0, 0, 0, 6, 0},  {PathStep::Line, 0, 0, 0, 0, 6, 4},
                            {PathStep::Line, 0, 0, 0, 0, 5, 4},  {PathStep::Close, 0, 0, 0, 0, 0, 0},
                            {PathStep::Line, 0, 0, 0, 0, 5, 1},  {PathStep::Line, 0, 0, 0, 0, 4, 1},
                            {PathStep::Line, 0, 0, 0, 0, 4, 0},  {PathStep::Close, 0, 0, 0, 0, 0, 0}};
    Raster raster = MakeRaster(8, 5), same = MakeRaster(8, 5);
    AddOutline(raster, two, {});
    AddRectangle(same, 1, 1, 3, 3);
    AddRectangle(same, 5, 0, 6, 4);
    AddRectangle(same, 4, 0, 5, 1);
    EXPECT_EQ(FinishMask(raster), FinishMask(same));
}

TEST(Raster, AShapeOverAnotherFillsItTwiceAndNotMore) {
    Raster raster = MakeRaster(12, 12);
    AddRectangle(raster, 0, 0, 12, 12);
    AddRoundRectangle(raster, 1, 1, 8, 7, 2);
    AddEllipse(raster, 6, 6, 5, 4);
    for (const float turn : {0.0F, 1.0F, 2.0F, 3.0F, 4.0F, 5.0F})
        AddStroke(raster, 6, 6, 6 + 5 * std::cos(turn), 6 + 5 * std::sin(turn), 2);
    ExpectShares(FinishMask(raster), 0, [](int, int) { return 1; });
}

TEST(Raster, EveryPixelOfAnEllipseIsCoveredByItsShare) {
    for (const float wide : {0.4F, 0.8F, 1.5F, 2.5F, 4.0F, 7.0F, 11.0F, 16.0F, 24.0F}) {
        const float middle = wide + 1.3F, high = wide * 0.8F;
        const double x = double{middle}, rx = double{wide}, ry = double{high};
        const Corners shape = RoundBoxOf({x - rx, x - ry, x + rx, x + ry}, rx, ry);
        Raster raster = MakeRaster(static_cast<int>(2 * wide) + 4, static_cast<int>(2 * wide) + 4);
        AddEllipse(raster, middle, middle, wide, high);
        ExpectShares(FinishMask(raster), kChords, [&](int px, int py) { return ShareOf(shape, px, py); });
    }
}

TEST(Raster, ARoundCornerIsAQuarterOfACircleOrOfWhatTheBoxLeaves) {
    struct Case {
        float right, bottom, radius;
        double rx, ry; // of the corners that are drawn
    };
    for (const Case& c :
         {Case{13.5F, 11, 3, 3, 3}, Case{13.5F, 11, 20, 6.5, 5}, Case{13.5F, 4, 3, 3, 1.5},
          Case{4.5F, 11, 3, 2, 3}, Case{13.5F, 11, 0, 0, 0}, Case{13.5F, 11, 0.5F, 0.5, 0.5}}) {
        Raster raster = MakeRaster(16, 12);
        AddRoundRectangle(raster, 0.5F, 1, c.right, c.bottom, c.radius);
        const Corners shape = RoundBoxOf({0.5, 1, double{c.right}, double{c.bottom}}, c.rx, c.ry);
        ExpectShares(FinishMask(raster), kChords, [&](int x, int y) { return ShareOf(shape, x, y); });
    }
}

TEST(Raster, AStrokeEndsSquareAtItsEnds) {
    struct Case {
        float x1, y1, x2, y2, width;
    };
    for (const Case& c : {Case{2, 3, 9, 3, 2}, Case{2, 3, 2.5F, 3, 1}, Case{4, 3, 4, 4, 2},
                          Case{3, 8, 3, 2, 1.5F}, Case{2, 2, 9, 8, 3}, Case{9, 3, 3, 7, 0.5F}}) {
        Raster raster = MakeRaster(12, 10);
        AddStroke(raster, c.x1, c.y1, c.x2, c.y2, c.width);
        const double x1 = double{c.x1}, y1 = double{c.y1}, x2 = double{c.x2}, y2 = double{c.y2};
        const double half = double{c.width} / 2 / std::hypot(x2 - x1, y2 - y1);
        const double nx = (y2 - y1) * half, ny = (x1 - x2) * half;
        const Corners shape = {
            {x1 + nx, y1 + ny}, {x1 - nx, y1 - ny}, {x2 - nx, y2 - ny}, {x2 + nx, y2 + ny}};
        ExpectShares(FinishMask(raster), kRounded, [&](int x, int y) { return ShareOf(shape, x, y); });
    }
}

TEST(Raster, WhatHasNoSizeCoversNothing) {
    Raster raster = MakeRaster(4, 4);
    AddRectangle(raster, 1, 1, 1, 3);
    AddRectangle(raster, 1, 2, 3, 2);
    AddRectangle(raster, 3, 1, 1, 3);
    AddRectangle(raster, 1, 3, 3, 1);
    AddStroke(raster, 2, 2, 2, 2, 3);
    AddEllipse(raster, 2, 2, 0, 0);
    EXPECT_EQ(InkOf(FinishMask(raster)), 0);
}

TEST(Raster, SizesBelow1GiveAnEmptyRaster) {
    EXPECT_EQ(FinishMask(MakeRaster(1, 1)), (CoverageMask{1, 1, {0}}));
    for (const auto& [width, height] : {std::pair{0, 7}, {7, 0}, {-1, 7}, {7, -1}, {0, 0}}) {
        const Raster raster = MakeRaster(width, height);
        EXPECT_EQ(raster.width, 0);
        EXPECT_EQ(raster.height, 0);
        EXPECT_TRUE(raster.area.empty());
    }
}

} // namespace tonex::raster_test
