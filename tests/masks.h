// Looking at masks: ink, pieces, and the scales at which pictures are looked at.
#pragma once

#include "pictures/glyphs.h"
#include "pictures/raster.h"

#include <algorithm>
#include <vector>

namespace tonex::testing {

struct TestScale {
    int percent;
    float pixels_per_twip;
};

/// 96, 120, 144, 168 and 192 DPI.
inline constexpr TestScale kScreenScales[] = {
    {100, 1 / 15.0F}, {125, 1 / 12.0F}, {150, 1 / 10.0F}, {175, 7 / 60.0F}, {200, 1 / 7.5F}};

/// Those, and staff spaces of other whole pixels, as small and large windows have them.
inline std::vector<TestScale> AllScales() {
    std::vector<TestScale> scales(std::begin(kScreenScales), std::end(kScreenScales));
    for (const int space : {5, 6, 7, 9, 11, 13, 15, 18, 24, 32})
        scales.push_back({space * 100 / 8, static_cast<float>(space) / 120});
    return scales;
}

inline int InkAt(const CoverageMask& mask, int x, int y) {
    if (x < 0 || y < 0 || x >= mask.width || y >= mask.height) return 0;
    return mask.alpha[static_cast<std::size_t>(y * mask.width + x)];
}

inline long long InkOf(const CoverageMask& mask) {
    long long sum = 0;
    for (const std::uint8_t a : mask.alpha)
        sum += a;
    return sum;
}

/// Separate pieces of ink as the boxes around them, from left to right; pixels that touch at a corner are one
/// piece.
inline std::vector<PixelBox> PiecesOf(const CoverageMask& mask, int threshold = 110) {
    std::vector<char> seen(mask.alpha.size(), 0);
    std::vector<PixelBox> pieces;
    const auto visit = [&](int x, int y, std::vector<int>& open) {
        if (InkAt(mask, x, y) < threshold) return;
        char& done = seen[static_cast<std::size_t>(y * mask.width + x)];
        if (done) return;
        done = 1;
        open.push_back(y * mask.width + x);
    };
    for (int start = 0; start < mask.width * mask.height; ++start) {
        std::vector<int> open;
        visit(start % mask.width, start / mask.width, open);
        if (open.empty()) continue;
        PixelBox box{mask.width, mask.height, 0, 0};
        while (!open.empty()) {
            const int x = open.back() % mask.width, y = open.back() / mask.width;
            open.pop_back();
            box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                   std::max(box.bottom, y + 1)};
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx)
                    visit(x + dx, y + dy, open);
        }
        pieces.push_back(box);
    }
    std::sort(pieces.begin(), pieces.end(),
              [](const PixelBox& a, const PixelBox& b) { return a.left < b.left; });
    return pieces;
}

} // namespace tonex::testing
