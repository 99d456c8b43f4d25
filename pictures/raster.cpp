#include "pictures/raster.h"

#include "score/rows.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>

namespace tonex {

namespace {

struct Point {
    float x, y;
};

Point Place(const Placement& p, float x, float y) {
    return {p.xx * x + p.xy * y + p.dx, p.yx * x + p.yy * y + p.dy};
}

/// Adds what one edge within one pixel row covers to its right: `height` is signed, x0 and x1 are where the
/// edge enters and leaves the row.
void AddRowPiece(float* row, int width, float x0, float x1, float height) {
    const float left = std::min(x0, x1), right = std::max(x0, x1);
    if (left >= static_cast<float>(width)) return;
    if (right <= 0) {
        row[0] += height;
        return;
    }
    // Nothing is below 0 here, so that cutting off the fraction is rounding down.
    const int first = static_cast<int>(left), floor = static_cast<int>(right);
    const int last = static_cast<float>(floor) < right ? floor + 1 : floor;
    if (last <= first + 1) {
        const float middle = 0.5F * (left + right) - static_cast<float>(first);
        row[first] += height * (1 - middle);
        row[first + 1] += height * middle;
        return;
    }
    // The edge crosses several pixels: the covered share grows as a triangle, then evenly, then as the rest
    // of a triangle. Each pixel gets the difference to the one before it.
    const float slope = 1 / (right - left);
    float before = 0;
    for (int column = first; column < last; ++column) {
        const float from = std::max(left, static_cast<float>(column));
        const float to = std::min(right, static_cast<float>(column + 1));
        const float passed = (from - left) * slope, gained = (to - from) * slope;
        const float covered = passed + gained * (static_cast<float>(column + 1) - 0.5F * (from + to));
        row[column] += height * (covered - before);
        before = covered;
    }
    row[last] += height * (1 - before);
}

/// Cuts a row's piece at the raster's left and right border so that AddRowPiece stays inside its row.
void AddClippedRowPiece(float* row, int width, float x0, float x1, float height) {
    const float limit = static_cast<float>(width);
    const float low = std::min(x0, x1), high = std::max(x0, x1);
    if (high <= 0 || low >= limit || (low >= 0 && high <= limit)) {
        AddRowPiece(row, width, x0, x1, height);
        return;
    }
    const float length = high - low;
    const float outside_left = std::max(0.0F, -low) / length,
                outside_right = std::max(0.0F, high - limit) / length;
    row[0] += height * outside_left;
    AddRowPiece(row, width, std::max(low, 0.0F), std::min(high, limit),
                height * (1 - outside_left - outside_right));
}

/// What an upright edge from y0 to y1, inside the raster, covers to its right: the same in every row.
void AddUpright(Raster& raster, float x, float y0, float y1, float direction) {
    const int column = static_cast<int>(x);
    const float right = x - static_cast<float>(column);
    for (int line = static_cast<int>(y0); static_cast<float>(line) < y1; ++line) {
        const float height =
            direction * (std::min(y1, static_cast<float>(line + 1)) - std::max(y0, static_cast<float>(line)));
        float* at = &At(raster.area, line * (raster.width + 2) + column);
        at[0] += height * (1 - right);
        at[1] += height * right;
    }
}

void AddEdge(Raster& raster, Point a, Point b, float sign) {
    if (a.y == b.y) return;
    float direction = sign;
    if (a.y > b.y) {
        std::swap(a, b);
        direction = -sign;
    }
    const float bottom = static_cast<float>(raster.height);
    const float slope = (b.x - a.x) / (b.y - a.y);
    // Above and below the raster no row is left of it.
    const float y0 = std::max(a.y, 0.0F), y1 = std::min(b.y, bottom);
    if (a.x == b.x && a.x > 0 && a.x < static_cast<float>(raster.width)) {
        AddUpright(raster, a.x, y0, y1, direction);
        return;
    }
    const int first = static_cast<int>(y0), last = static_cast<int>(std::ceil(y1));
    for (int line = first; line < last; ++line) {
        const float top = std::max(y0, static_cast<float>(line)),
                    end = std::min(y1, static_cast<float>(line + 1));
        float* row = &At(raster.area, line * (raster.width + 2));
        AddClippedRowPiece(row, raster.width, a.x + (top - a.y) * slope, a.x + (end - a.y) * slope,
                           direction * (end - top));
    }
}

void AddCurve(Raster& raster, Point a, Point b, Point c, Point d, float sign) {
    // A step of about a pixel and a half: the chords take no more than 6 of 255 from a pixel's coverage.
    const float length = std::abs(b.x - a.x) + std::abs(b.y - a.y) + std::abs(c.x - b.x) +
                         std::abs(c.y - b.y) + std::abs(d.x - c.x) + std::abs(d.y - c.y);
    const int steps = std::clamp(static_cast<int>(length * 0.7F) + 3, 4, 24);
    Point from = a;
    for (int i = 1; i <= steps; ++i) {
        const float t = static_cast<float>(i) / static_cast<float>(steps), u = 1 - t;
        const float ka = u * u * u, kb = 3 * u * u * t, kc = 3 * u * t * t, kd = t * t * t;
        // The last is `d` to the bit.
        const Point to = {ka * a.x + kb * b.x + kc * c.x + kd * d.x,
                          ka * a.y + kb * b.y + kc * c.y + kd * d.y};
        AddEdge(raster, from, to, sign);
        from = to;
    }
}

std::uint8_t ToByte(float coverage) {
    // Never negative, and a call for each pixel would be slow. NOLINTNEXTLINE(bugprone-incorrect-roundings)
    return static_cast<std::uint8_t>(std::min(std::abs(coverage), 1.0F) * 255.0F + 0.5F);
}

constexpr int kRun = 4; ///< pixels that are looked at together

/// Whether nothing begins or ends in a run of pixels: its differences are zeros to the bit.
bool IsEvenRun(const float* differences) {
    std::uint64_t halves[2];
    static_assert(sizeof halves == kRun * sizeof(float));
    std::memcpy(halves, differences, sizeof halves);
    return (halves[0] | halves[1]) == 0;
}

/// Whether a run of pixels is not covered at all.
bool IsEmptyRun(const std::uint8_t* coverage) {
    std::uint32_t run;
    static_assert(sizeof run == kRun);
    std::memcpy(&run, coverage, sizeof run);
    return run == 0;
}

} // namespace

Raster MakeRaster(int width, int height) {
    Raster raster;
    if (width < 1 || height < 1) return raster;
    raster.width = width;
    raster.height = height;
    raster.area.assign(static_cast<std::size_t>(width + 2) * static_cast<std::size_t>(height), 0.0F);
    return raster;
}

void AddOutline(Raster& raster, Outline outline, const Placement& placement) {
    const float sign = placement.xx * placement.yy - placement.xy * placement.yx < 0 ? 1.0F : -1.0F;
    Point start{}, at{};
    for (const PathStep& step : outline) {
        const Point end = Place(placement, step.x, step.y);
        switch (step.kind) {
        case PathStep::Move: start = at = end; break;
        case PathStep::Line:
            AddEdge(raster, at, end, sign);
            at = end;
            break;
        case PathStep::Curve:
            AddCurve(raster, at, Place(placement, step.x1, step.y1), Place(placement, step.x2, step.y2), end,
                     sign);
            at = end;
            break;
        case PathStep::Close:
            AddEdge(raster, at, start, sign);
            at = start;
            break;
        }
    }
}

void AddRectangle(Raster& raster, float left, float top, float right, float bottom) {
    if (left >= right || top >= bottom) return;
    AddEdge(raster, {left, top}, {left, bottom}, 1);
    AddEdge(raster, {right, bottom}, {right, top}, 1);
}

void AddEllipse(Raster& raster, float centre_x, float centre_y, float radius_x, float radius_y) {
    AddRoundRectangle(raster, centre_x - radius_x, centre_y - radius_y, centre_x + radius_x,
                      centre_y + radius_y, -1);
}

void AddRoundRectangle(Raster& raster, float left, float top, float right, float bottom, float radius) {
    constexpr float kRound = 0.4477F; // what a quarter circle's control points leave free of its radius
    const float rx = radius < 0 ? (right - left) / 2 : std::min(radius, (right - left) / 2);
    const float ry = radius < 0 ? (bottom - top) / 2 : std::min(radius, (bottom - top) / 2);
    const float kx = rx * kRound, ky = ry * kRound;
    AddCurve(raster, {left + rx, top}, {left + kx, top}, {left, top + ky}, {left, top + ry}, 1);
    AddEdge(raster, {left, top + ry}, {left, bottom - ry}, 1);
    AddCurve(raster, {left, bottom - ry}, {left, bottom - ky}, {left + kx, bottom}, {left + rx, bottom}, 1);
    AddCurve(raster, {right - rx, bottom}, {right - kx, bottom}, {right, bottom - ky}, {right, bottom - ry},
             1);
    AddEdge(raster, {right, bottom - ry}, {right, top + ry}, 1);
    AddCurve(raster, {right, top + ry}, {right, top + ky}, {right - kx, top}, {right - rx, top}, 1);
}

void AddStroke(Raster& raster, float x1, float y1, float x2, float y2, float width) {
    const float length = std::sqrt((x2 - x1) * (x2 - x1) + (y2 - y1) * (y2 - y1));
    if (!(length > 0)) return;
    const float nx = (y2 - y1) / length * width / 2, ny = -(x2 - x1) / length * width / 2;
    const Point corner[] = {{x1 + nx, y1 + ny}, {x1 - nx, y1 - ny}, {x2 - nx, y2 - ny}, {x2 + nx, y2 + ny}};
    for (int i = 0; i < 4; ++i)
        AddEdge(raster, corner[i], corner[(i + 1) % 4], 1);
}

CoverageMask FinishMask(const Raster& raster) {
    CoverageMask mask;
    mask.width = raster.width;
    mask.height = raster.height;
    mask.alpha.resize(static_cast<std::size_t>(raster.width) * static_cast<std::size_t>(raster.height));
    for (int y = 0; y < raster.height; ++y) {
        const float* row = &At(raster.area, y * (raster.width + 2));
        std::uint8_t* out = &At(mask.alpha, y * raster.width);
        float sum = 0;
        std::uint8_t covered = 0;
        for (int x = 0;; ++x) {
            // Most pixels are covered as their neighbour is.
            for (; x + kRun <= raster.width && IsEvenRun(row + x); x += kRun)
                std::memset(out + x, covered, kRun);
            if (x == raster.width) break;
            if (row[x] != 0) {
                sum += row[x];
                covered = ToByte(sum);
            }
            out[x] = covered;
        }
    }
    return mask;
}

std::uint32_t MixPixels(std::uint32_t below, std::uint32_t above, unsigned share) {
    std::uint32_t mixed = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        const unsigned sum = (below >> shift & 255) * (255 - share) + (above >> shift & 255) * share + 128;
        mixed |= (sum + (sum >> 8)) >> 8 << shift; // sum / 255, to the nearest, without a division
    }
    return mixed;
}

void BlendRow(std::uint32_t* pixels, const std::uint8_t* coverage, int count, std::uint32_t colour) {
    for (int x = 0; x < count; ++x) {
        while (x + kRun <= count && IsEmptyRun(coverage + x))
            x += kRun;
        if (x == count) return;
        if (coverage[x] == 255)
            pixels[x] = colour;
        else if (coverage[x] != 0)
            pixels[x] = MixPixels(pixels[x], colour, coverage[x]);
    }
}

void CutOut(CoverageMask& mask, const CoverageMask& hole) {
    assert(mask.alpha.size() == hole.alpha.size());
    for (std::size_t i = 0; i < mask.alpha.size(); ++i)
        mask.alpha[i] = static_cast<std::uint8_t>((mask.alpha[i] * (255 - hole.alpha[i]) + 127) / 255);
}

} // namespace tonex
