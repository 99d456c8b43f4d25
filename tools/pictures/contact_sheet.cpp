// Writes one picture with everything that the program draws, at 100, 125, 150, 175 and 200 %, to
// look at; or at another scale.
#include "pictures/glyphs.h"
#include "tools/pictures/png_file.h"
#include "view/measures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace tonex;

struct Sheet {
    int width, height;
    std::vector<std::uint8_t> rgb;
};

void Blend(Sheet& sheet, int x, int y, std::uint32_t colour, int alpha) {
    if (x < 0 || y < 0 || x >= sheet.width || y >= sheet.height) return;
    std::uint8_t* p = &sheet.rgb[(static_cast<std::size_t>(y) * static_cast<std::size_t>(sheet.width) +
                                  static_cast<std::size_t>(x)) *
                                 3];
    for (int i = 0; i < 3; ++i) {
        const int c = static_cast<int>(colour >> (16 - 8 * i)) & 255;
        p[i] = static_cast<std::uint8_t>((p[i] * (255 - alpha) + c * alpha + 127) / 255);
    }
}

void Fill(Sheet& sheet, int x, int y, int w, int h, std::uint32_t colour) {
    for (int j = y; j < y + h; ++j)
        for (int i = x; i < x + w; ++i)
            Blend(sheet, i, j, colour, 255);
}

void Paint(Sheet& sheet, int x, int y, const CoverageMask& mask, std::uint32_t colour) {
    for (int j = 0; j < mask.height; ++j)
        for (int i = 0; i < mask.width; ++i)
            Blend(sheet, x + i, y + j, colour,
                  mask.alpha[static_cast<std::size_t>(j) * static_cast<std::size_t>(mask.width) +
                             static_cast<std::size_t>(i)]);
}

constexpr int kClefEnd = 720; ///< where the first picture's column starts, twips
constexpr std::uint32_t kLineColour = 0x737373, kDarkLineColour = 0x414141;

/// One staff with clef and pictures, heads at the given step of 60 twips from the middle line (up is
/// negative).
void Staff(Sheet& sheet, float scale, int left_px, int top_px, const std::vector<int>& pictures,
           const std::vector<int>& steps, bool sharps) {
    const auto edge = [&](std::size_t column) {
        return left_px + static_cast<int>(std::lround(
                             static_cast<float>(kClefEnd + kColumnWidth * static_cast<int>(column)) * scale));
    };
    const int line = StaffLinePixels(scale);
    const std::uint32_t ledger = BarLinePixels(scale) > line ? kLineColour : kDarkLineColour;
    for (int y = kTopStaffLine; y <= kBottomStaffLine; y += kStaffSpace)
        Fill(sheet, left_px, top_px + StaffLineRow(static_cast<float>(y) * scale),
             edge(pictures.size()) - left_px, line, kLineColour);
    const PlacedMask clef = ClefMask(scale);
    Paint(sheet, left_px + clef.left, top_px + clef.top, clef.mask, 0);
    for (std::size_t k = 0; k < pictures.size(); ++k) {
        StripPicture shown{.picture = pictures[k], .sharp = sharps};
        if (IsNotePicture(shown.picture)) shown.y += kStepHeight * steps[k % steps.size()];
        if (shown.picture == kBarLinePicture) shown.y = kTopStaffLine;
        const StripColumn column{scale, edge(k + 1) - edge(k)};
        for (const PixelBox& box : LedgerLineBoxes(shown, column))
            Fill(sheet, edge(k) + box.left, top_px + box.top, box.right - box.left, box.bottom - box.top,
                 ledger);
        const PlacedMask placed = StripPictureMask(shown, column);
        Paint(sheet, edge(k), top_px + placed.top, placed.mask, 0);
    }
}

std::string Pgm(const Sheet& sheet) {
    std::string bytes = "P5\n" + std::to_string(sheet.width) + " " + std::to_string(sheet.height) + "\n255\n";
    for (std::size_t i = 0; i < sheet.rgb.size(); i += 3)
        bytes +=
            static_cast<char>((sheet.rgb[i] * 299 + sheet.rgb[i + 1] * 587 + sheet.rgb[i + 2] * 114) / 1000);
    return bytes;
}

void Scale(Sheet& sheet, int percent, int top) {
    const float scale = static_cast<float>(percent) / 1500;
    const int row = static_cast<int>(1900 * scale);
    const auto range = [](int from, int to) {
        std::vector<int> numbers;
        for (int i = from; i <= to; ++i)
            numbers.push_back(i);
        return numbers;
    };
    top -= static_cast<int>(600 * scale);
    Staff(sheet, scale, 4, top, range(1, 20), {1, 2, 3, 4, 5, 6, 7, 8, 2, 3}, false);
    Staff(sheet, scale, 4, top + row, range(1, 20), {1, 2, 3, 4}, true);
    Staff(sheet, scale, 4, top + 2 * row, range(41, 57), {0, -1, -2, -3, -4, -5, -6}, false);
    Staff(sheet, scale, 4, top + 3 * row, range(41, kLastPicture), {0, -1}, true);
    Staff(sheet, scale, 4, top + 4 * row, range(21, 40), {0}, false);
    // The lowest and the highest key, c4 and c8.
    Staff(sheet, scale, 4, top + 5 * row, {1, 2, 3, 5, 7, 8, 10, 11, 13, 14, 15, 17, 18, 20}, {13}, true);
    Staff(sheet, scale, 4, top + 6 * row + static_cast<int>(900 * scale),
          {41, 42, 43, 45, 47, 48, 50, 51, 53, 54, 55, 57, 18, 20}, {-15}, true);
    int x = 4, y = top + 7 * row + static_cast<int>(1600 * scale);
    const int w = 31 * percent / 100, h = 34 * percent / 100;
    for (int picture = 1; picture <= 40; ++picture) {
        Fill(sheet, x, y, w, h, 0xF0F0F0);
        Paint(sheet, x, y, ButtonPictureMask(picture, w, h, scale), 0);
        x += w + 4;
        if (picture == 20) {
            x = 4;
            y += h + 4;
        }
    }
    x = 4;
    y += h + 8;
    const int icon = 16 * percent / 100;
    for (int size : {icon, 24 * percent / 100}) {
        for (int i = 0; i < kToolIcons; ++i) {
            Fill(sheet, x, y, size, size, 0xF0F0F0);
            for (const ColourLayer& layer : ToolIconLayers(static_cast<ToolIcon>(i), size))
                Paint(sheet, x, y, layer.mask, layer.rgb);
            x += size + 4;
        }
    }
}

void ProgramIcons(Sheet& sheet, int x, int y) {
    for (const int size : {16, 20, 24, 32, 48, 64, 256}) {
        const std::vector<std::uint32_t> pixels = ProgramIconPixels(size);
        for (int j = 0; j < size; ++j)
            for (int i = 0; i < size; ++i) {
                const std::uint32_t p = pixels[static_cast<std::size_t>(j) * static_cast<std::size_t>(size) +
                                               static_cast<std::size_t>(i)];
                const int alpha = static_cast<int>(p >> 24);
                if (alpha == 0) continue;
                std::uint32_t colour = 0;
                for (int shift = 16; shift >= 0; shift -= 8)
                    colour =
                        colour << 8 | std::min(255U, (p >> shift & 255) * 255 / static_cast<unsigned>(alpha));
                Blend(sheet, x + i, y + j, colour, alpha);
            }
        x += size + 6;
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::fputs("contact_sheet OUT.png|OUT.pgm [PERCENT]\n", stderr);
        return 2;
    }
    std::vector<int> scales = {100, 125, 150, 175, 200};
    if (argc == 3) scales = {std::clamp(std::atoi(argv[2]), 30, 800)};
    int width = 520, height = 270;
    for (const int percent : scales) {
        width = std::max(width, (8600 * percent) / 1500);
        height += 17300 * percent / 1500;
    }
    Sheet sheet{width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width * height * 3), 255)};
    int top = 0;
    for (const int percent : scales) {
        Scale(sheet, percent, top);
        top += 17300 * percent / 1500;
    }
    ProgramIcons(sheet, 4, top + 4);
    const std::string name = argv[1];
    const std::string bytes =
        name.ends_with(".pgm") ? Pgm(sheet) : PngFile(sheet.width, sheet.height, 3, sheet.rgb);
    return WriteFile(argv[1], bytes);
}
