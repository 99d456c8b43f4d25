// Buttons, clef and icons, and pictures kept as golden files in tests/golden/. To draw the golden files anew
// after a deliberate change run the tests once with TONEX_WRITE_GOLDEN=1: they are written and the tests
// fail, so that a run that writes is never taken for one that compares.
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
#include <utility>
#include <vector>

namespace tonex::pictures_test {

using testing::AllScales;
using testing::InkAt;
using testing::InkOf;
using testing::kScreenScales;
using testing::PiecesOf;
using testing::TestScale;

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
    EXPECT_EQ(ButtonPictureMask(1, 10, 0, 1 / 15.0F), CoverageMask{});
    EXPECT_EQ(ButtonPictureMask(35, -10, -10, 1 / 15.0F), CoverageMask{});
    EXPECT_EQ(ButtonPictureMask(0, 31, 34, 1 / 15.0F), CoverageMask{});
    EXPECT_EQ(ButtonPictureMask(41, 31, 34, 1 / 15.0F), CoverageMask{});
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
    EXPECT_FALSE(ToolIconLayers(ToolIcon::New, 1).empty());
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

/// Worked out in double precision: what is below shows as far as the layer above leaves it.
TEST(Pictures, FlattenedLayersAreRoundedOnce) {
    for (int low = 0; low < 256; low += 3)
        for (int high = 0; high < 256; high += 5) {
            const auto layer = [](std::uint32_t rgb, int alpha) {
                return ColourLayer{rgb, {1, 1, {static_cast<std::uint8_t>(alpha)}}};
            };
            const std::uint32_t pixel =
                FlattenLayers({layer(0x10C8FF, low), layer(0xF00A64, high)}, 1).front();
            const double left = low * (255 - high) / 255.0, whole = high + left;
            ASSERT_EQ(pixel >> 24, std::lround(whole)) << low << ", " << high;
            const auto mixed = [&](int below, int above) {
                if (whole == 0) return 0.0;
                return std::floor((above * high + below * left) / whole + 0.5 + 1e-9); // a half is rounded up
            };
            ASSERT_EQ(pixel >> 16 & 255, mixed(0x10, 0xF0)) << low << ", " << high;
            ASSERT_EQ(pixel >> 8 & 255, mixed(0xC8, 0x0A)) << low << ", " << high;
            ASSERT_EQ(pixel & 255, mixed(0xFF, 0x64)) << low << ", " << high;
        }
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
    EXPECT_TRUE(ProgramIconPixels(-1).empty());
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

/// A sum of many pictures, for those that are too many for files.
struct Sum {
    std::uint64_t value = 14695981039346656037U;
};

void AddNumber(Sum& sum, std::uint32_t number) {
    sum.value = (sum.value ^ number) * 1099511628211U;
}

void AddMask(Sum& sum, const CoverageMask& mask) {
    AddNumber(sum, static_cast<std::uint32_t>(mask.width));
    AddNumber(sum, static_cast<std::uint32_t>(mask.height));
    for (const std::uint8_t alpha : mask.alpha)
        AddNumber(sum, alpha);
}

std::string SumLine(const std::string& what, const Sum& sum) {
    char line[80];
    std::snprintf(line, sizeof line, "%s %08x%08x\n", what.c_str(), static_cast<unsigned>(sum.value >> 32),
                  static_cast<unsigned>(sum.value & 0xFFFFFFFF));
    return line;
}

/// All pictures of the strip in a column, with and without a sharp, on lines and between them.
Sum SumOfStrip(const StripColumn& column) {
    Sum sum;
    for (int picture = 1; picture <= kLastPicture; ++picture)
        for (const bool sharp : {false, true})
            for (const int steps : {-5, 0, 9, 13}) {
                const StripPicture shown{picture, sharp, kTopStaffLine + steps * kStepHeight};
                const PlacedMask placed = StripPictureMask(shown, column);
                AddNumber(sum, static_cast<std::uint32_t>(placed.top));
                AddMask(sum, placed.mask);
                for (const PixelBox& box : LedgerLineBoxes(shown, column))
                    for (const int edge : {box.left, box.top, box.right, box.bottom})
                        AddNumber(sum, static_cast<std::uint32_t>(edge));
            }
    return sum;
}

/// Clef and buttons.
Sum SumOfPanels(const TestScale& scale) {
    Sum sum;
    AddMask(sum, ClefMask(scale.pixels_per_twip).mask);
    for (int picture = 1; picture <= 2 * kLengthCodes; ++picture)
        for (const auto& [width, height] : {std::pair{31, 34}, {23, 34}, {31, 25}, {12, 12}, {200, 200}})
            AddMask(sum, ButtonPictureMask(picture, width * scale.percent / 100, height * scale.percent / 100,
                                           scale.pixels_per_twip));
    return sum;
}

/// The toolbar's icons with their colours.
Sum SumOfToolIcons(int size) {
    Sum sum;
    for (int icon = 0; icon < kToolIcons; ++icon)
        for (const bool on_dark : {false, true})
            for (const std::uint32_t pixel :
                 FlattenLayers(ToolIconLayers(static_cast<ToolIcon>(icon), size, on_dark), size))
                AddNumber(sum, pixel);
    return sum;
}

Sum SumOfProgramIcon(int size) {
    Sum sum;
    for (const std::uint32_t pixel : ProgramIconPixels(size))
        AddNumber(sum, pixel);
    return sum;
}

} // namespace

/// The pictures at more scales than there are files of. What changes here without a deliberate change is
/// looked at in the program.
TEST(PicturesGolden, SumsOfAllPictures) {
    std::string sums;
    for (const TestScale& scale : AllScales()) {
        const StripColumn column{scale.pixels_per_twip,
                                 static_cast<int>(kColumnWidth * scale.pixels_per_twip + 0.01F)};
        sums += SumLine("strip " + std::to_string(scale.percent), SumOfStrip(column));
        sums += SumLine("panels " + std::to_string(scale.percent), SumOfPanels(scale));
    }
    for (const int size : {8, 12, 16, 18, 20, 22, 24, 25, 28, 30, 32, 36, 40, 44, 48, 56, 64})
        sums += SumLine("icons " + std::to_string(size), SumOfToolIcons(size));
    for (const int size : {8, 16, 20, 24, 31, 32, 40, 48, 64, 72, 96, 128, 256})
        sums += SumLine("program icon " + std::to_string(size), SumOfProgramIcon(size));
    const std::string golden = ReadGolden(GoldenPath("sums.txt"));
    for (std::size_t from = 0, to; (to = sums.find('\n', from)) != std::string::npos; from = to + 1)
        EXPECT_TRUE(golden.find(sums.substr(from, to + 1 - from)) != std::string::npos)
            << sums.substr(from, to - from) << " is drawn otherwise than it was";
    CompareWithGolden("sums.txt", sums);
}

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

} // namespace tonex::pictures_test
