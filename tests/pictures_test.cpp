// The rasteriser, buttons, clef and icons, and pictures kept as golden files in tests/golden/. To draw the
// golden files anew after a deliberate change run the tests once with TONEX_WRITE_GOLDEN=1: they are written
// and the tests fail, so that a run that writes is never taken for one that compares.
#include "pictures/glyphs.h"
#include "score/codes.h"
#include "score/rows.h"
#include "tests/masks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace tonex {

using testing::InkAt;
using testing::InkOf;
using testing::kScreenScales;
using testing::PiecesOf;
using testing::TestScale;

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
                                                0, 0, 255, 255, 128, 0,   1, 0, 0, 0};
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

TEST(Pictures, ButtonsShowTheirDotsAndTriplets) {
    for (const TestScale& scale : kScreenScales) {
        const int width = 31 * scale.percent / 100, height = 34 * scale.percent / 100;
        for (int picture = 1; picture <= 40; ++picture) {
            const NoteLength& form = At(kNoteLengths, (picture - 1) % kLengthCodes);
            const CoverageMask mask = ButtonPictureMask(picture, width, height, scale.pixels_per_twip);
            ASSERT_EQ(mask.width, width);
            ASSERT_EQ(mask.height, height);
            EXPECT_EQ(static_cast<int>(PiecesOf(mask).size()), 1 + form.dots + (form.triplet ? 1 : 0))
                << picture << " at " << scale.percent;
            for (int x = 0; x < width; ++x) {
                EXPECT_EQ(InkAt(mask, x, 0), 0) << picture;
                EXPECT_EQ(InkAt(mask, x, height - 1), 0) << picture;
            }
            for (int y = 0; y < height; ++y) {
                EXPECT_EQ(InkAt(mask, 0, y), 0) << picture;
                EXPECT_EQ(InkAt(mask, width - 1, y), 0) << picture;
            }
        }
    }
}

TEST(Pictures, ButtonsShowNotesInTheMiddle) {
    for (const TestScale& scale : kScreenScales)
        for (int picture = 1; picture <= kLengthCodes; ++picture) {
            const int height = 34 * scale.percent / 100 - 2;
            const CoverageMask mask =
                ButtonPictureMask(picture, 29 * scale.percent / 100, height, scale.pixels_per_twip);
            int above = height, below = height;
            for (const PixelBox& box : PiecesOf(mask)) {
                above = std::min(above, box.top);
                below = std::min(below, height - box.bottom);
            }
            EXPECT_LE(std::abs(above - below), 1) << picture << " at " << scale.percent;
        }
}

TEST(Pictures, SmallButtonsStillShowTheirPicture) {
    for (int picture = 1; picture <= 40; ++picture) {
        EXPECT_GT(InkOf(ButtonPictureMask(picture, 16, 16, 1 / 7.5F)), 0);
        EXPECT_NO_FATAL_FAILURE(ButtonPictureMask(picture, 1, 1, 1 / 15.0F));
    }
    EXPECT_EQ(ButtonPictureMask(1, 0, 10, 1 / 15.0F), CoverageMask{});
}

TEST(Pictures, OnButtonsTheLineOfAHalfRestIsInTheMiddle) {
    constexpr float large = 1 / 5.0F; // 300 %, where the line has three pixels
    for (const int height : {100, 101, 102, 103}) {
        const std::vector<PixelBox> pieces = PiecesOf(ButtonPictureMask(35, 93, height, large));
        ASSERT_EQ(pieces.size(), 1u);
        EXPECT_LE(std::abs(pieces[0].bottom - 1.5 - height / 2.0), 0.5) << height;
    }
}

TEST(Pictures, OnLargeButtonsTheyAreAsLargeAsOnTheStaff) {
    for (const TestScale& scale : kScreenScales) {
        const std::vector<PixelBox> pieces = PiecesOf(ButtonPictureMask(18, 400, 400, scale.pixels_per_twip));
        ASSERT_EQ(pieces.size(), 1u); // a whole note is its head
        EXPECT_NEAR(pieces[0].bottom - pieces[0].top, kStaffSpace * scale.pixels_per_twip, 1.5)
            << scale.percent;
    }
}

TEST(Pictures, TheClefHasAnEightAboveItAndStaysInItsBox) {
    for (const TestScale& scale : kScreenScales) {
        const float s = scale.pixels_per_twip;
        const PlacedMask placed = ClefMask(s);
        const CoverageMask& clef = placed.mask;
        EXPECT_EQ(placed.left, static_cast<int>(std::floor(kClefBox.left * s + 0.001F)));
        EXPECT_EQ(placed.top, static_cast<int>(std::floor(kClefBox.top * s + 0.001F)));
        EXPECT_EQ(clef.width, static_cast<int>(std::ceil(kClefBox.width * s - 0.01F)));
        EXPECT_EQ(clef.height,
                  static_cast<int>(std::ceil((kClefBox.top + kClefBox.height) * s - 0.01F)) - placed.top);
        EXPECT_EQ(PiecesOf(clef).size(), 2U) << scale.percent;
        for (int x = 0; x < clef.width; ++x) {
            EXPECT_EQ(InkAt(clef, x, 0), 0);
            EXPECT_EQ(InkAt(clef, x, clef.height - 1), 0);
        }
        for (int y = 0; y < clef.height; ++y) {
            EXPECT_EQ(InkAt(clef, 0, y), 0);
            EXPECT_EQ(InkAt(clef, clef.width - 1, y), 0);
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
                EXPECT_GT(InkOf(layer.mask), 0);
                masks.push_back(layer.mask);
            }
            EXPECT_EQ(std::count(all.begin(), all.end(), masks), 0) << icon;
            all.push_back(masks);
        }
    }
    EXPECT_TRUE(ToolIconLayers(ToolIcon::New, 0).empty());
}

TEST(Pictures, OnADarkToolbarNoIconIsDarkWhereItHasNoPaperBehindIt) {
    for (int i = 0; i < kToolIcons; ++i) {
        const auto icon = static_cast<ToolIcon>(i);
        const std::vector<ColourLayer> plain = ToolIconLayers(icon, 16),
                                       light = ToolIconLayers(icon, 16, true);
        ASSERT_EQ(light.size(), plain.size());
        for (std::size_t layer = 0; layer < light.size(); ++layer)
            EXPECT_EQ(light[layer].mask, plain[layer].mask) << "only colours differ";
        const std::uint32_t bottom = light.front().rgb;
        const unsigned brightness =
            (bottom >> 16 & 255) * 30 + (bottom >> 8 & 255) * 59 + (bottom & 255) * 11;
        const bool has_paper = icon == ToolIcon::New || icon == ToolIcon::Copy || icon == ToolIcon::Paste;
        EXPECT_TRUE(has_paper || brightness > 9000) << brightness << " of 25500, icon " << i;
    }
    EXPECT_NE(ToolIconLayers(ToolIcon::Cut, 16, true).front().rgb,
              ToolIconLayers(ToolIcon::Cut, 16).front().rgb);
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
                bytes += static_cast<char>(255 - (y < mask.height ? InkAt(mask, x, y) : 0));
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
    for (const TestScale& scale : kScreenScales) {
        Plate plate;
        const StripColumn column{scale.pixels_per_twip,
                                 static_cast<int>(kColumnWidth * scale.pixels_per_twip + 0.01F)};
        // Sharp and plain, on ledger lines, on and between the staff's.
        for (const int picture :
             {1, 2, 5, 8, 11, 14, 15, 18, 20, 41, 44, 47, 50, 51, 57, 58, 59, 21, 23, 30, 31, 35, 39}) {
            StripPicture shown{.picture = picture, .sharp = picture % 2 == 0};
            if (IsNotePicture(picture)) shown.y += (picture > 40 ? -60 : 60) * (picture % 9);
            if (picture == kBarLinePicture) shown.y = kTopStaffLine;
            Append(plate, StripPictureMask(shown, column).mask);
        }
        CompareWithGolden(Name("strip-", scale.percent), PlateFile(plate));
    }
}

TEST(PicturesGolden, ClefAndButtons) {
    for (const TestScale& scale : kScreenScales) {
        Plate plate;
        Append(plate, ClefMask(scale.pixels_per_twip).mask);
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
