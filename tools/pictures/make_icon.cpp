// Writes the program icon as an ICO file: make_icon OUT.ico SIZE... Sizes below 256 are plain bitmaps, which
// every Windows reads; 256 is a PNG, which Windows XP passes over.
#include "pictures/glyphs.h"
#include "tools/pictures/png_file.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace tonex;

std::string LittleEndian(std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> 8 * i & 255);
    return text;
}

/// Red, green and blue that are not multiplied by alpha, as both formats want them.
std::vector<std::uint8_t> PlainPixels(int size) {
    std::vector<std::uint8_t> bytes;
    for (const std::uint32_t pixel : ProgramIconPixels(size)) {
        const std::uint32_t alpha = pixel >> 24;
        for (int shift = 16; shift >= 0; shift -= 8) {
            const std::uint32_t value = pixel >> shift & 255;
            bytes.push_back(static_cast<std::uint8_t>(
                alpha == 0 ? 0 : std::min(255U, (value * 255 + alpha / 2) / alpha)));
        }
        bytes.push_back(static_cast<std::uint8_t>(alpha));
    }
    return bytes;
}

/// A bitmap without file header: rows from the bottom up, blue first, then the one-bit mask of what is
/// transparent.
std::string Bitmap(int size, const std::vector<std::uint8_t>& pixels) {
    const auto wide = static_cast<std::uint32_t>(size);
    const std::uint32_t mask_row = (wide + 31) / 32 * 4;
    std::string bytes = LittleEndian(40, 4) + LittleEndian(wide, 4) + LittleEndian(wide * 2, 4) +
                        LittleEndian(1, 2) + LittleEndian(32, 2) + LittleEndian(0, 4) +
                        LittleEndian(wide * wide * 4 + mask_row * wide, 4) + std::string(16, '\0');
    std::string mask;
    for (std::uint32_t y = wide; y-- > 0;) {
        std::string row(mask_row, '\0');
        for (std::uint32_t x = 0; x < wide; ++x) {
            const std::uint8_t* p = &pixels[(std::size_t{y} * wide + x) * 4];
            for (const int channel : {2, 1, 0, 3})
                bytes += static_cast<char>(p[channel]);
            if (p[3] < 128) row[x / 8] = static_cast<char>(row[x / 8] | 0x80 >> x % 8);
        }
        mask += row;
    }
    return bytes + mask;
}

std::string IconFile(const std::vector<int>& sizes) {
    const auto count = static_cast<std::uint32_t>(sizes.size());
    std::string head = LittleEndian(0, 2) + LittleEndian(1, 2) + LittleEndian(count, 2), body;
    for (const int size : sizes) {
        const std::vector<std::uint8_t> pixels = PlainPixels(size);
        const std::string picture = size < 256 ? Bitmap(size, pixels) : PngFile(size, size, 4, pixels);
        head += LittleEndian(static_cast<std::uint32_t>(size) & 255, 1) +
                LittleEndian(static_cast<std::uint32_t>(size) & 255, 1) + LittleEndian(0, 2) +
                LittleEndian(1, 2) + LittleEndian(32, 2) +
                LittleEndian(static_cast<std::uint32_t>(picture.size()), 4) +
                LittleEndian(static_cast<std::uint32_t>(6 + 16 * count + body.size()), 4);
        body += picture;
    }
    return head + body;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<int> sizes;
    for (int i = 2; i < argc; ++i)
        sizes.push_back(std::atoi(argv[i]));
    if (sizes.empty() || *std::min_element(sizes.begin(), sizes.end()) < 1 ||
        *std::max_element(sizes.begin(), sizes.end()) > 256) {
        std::fputs("make_icon OUT.ico SIZE...    sizes from 1 to 256 pixels\n", stderr);
        return 2;
    }
    return WriteFile(argv[1], IconFile(sizes));
}
