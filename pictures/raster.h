// Fills outlines with exact area coverage. Portable, no library; single precision throughout, so that the
// native and the 32-bit build (SSE) give the same bytes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tonex {

/// Row-major coverage of pixels, 0 = nothing to 255 = whole pixel.
struct CoverageMask {
    int width = 0, height = 0;
    std::vector<std::uint8_t> alpha;
    bool operator==(const CoverageMask&) const = default;
};

/// One step of an outline, in the outline's own units. Only the points that the kind needs are used: `Move`
/// and `Line` the last (x, y), `Curve` (a cubic) all three.
struct PathStep {
    enum Kind : std::uint8_t { Move, Line, Curve, Close } kind;
    std::int16_t x1 = 0, y1 = 0, x2 = 0, y2 = 0, x = 0, y = 0;
};

using Outline = std::span<const PathStep>;

/// From outline units to pixels: x' = xx * x + xy * y + dx, y' = yx * x + yy * y + dy.
struct Placement {
    float xx = 1, xy = 0, dx = 0;
    float yx = 0, yy = 1, dy = 0;
};

/// Coverage while it is being gathered: signed area differences, one row after the other.
struct Raster {
    int width = 0, height = 0;
    std::vector<float> area;
};

/// An empty raster of the size given; sizes below 1 give an empty one.
Raster MakeRaster(int width, int height);

/// Adds an outline. Contours that run counterclockwise in a system with y upwards fill, those inside them
/// that run the other way cut holes; a mirroring placement keeps that meaning. What overlaps something filled
/// stays filled. What lies outside the raster is cut off.
void AddOutline(Raster& raster, Outline outline, const Placement& placement);

/// Adds an axis-parallel rectangle in pixels; edges on whole pixels are crisp.
void AddRectangle(Raster& raster, float left, float top, float right, float bottom);

/// Adds an ellipse in pixels.
void AddEllipse(Raster& raster, float centre_x, float centre_y, float radius_x, float radius_y);

/// Adds a filled rectangle with round corners, in pixels.
void AddRoundRectangle(Raster& raster, float left, float top, float right, float bottom, float radius);

/// Adds a stroke of the given width with butt ends from one point to another, in pixels.
void AddStroke(Raster& raster, float x1, float y1, float x2, float y2, float width);

/// The gathered coverage as bytes.
CoverageMask FinishMask(const Raster& raster);

/// Mixes two colours (0x00RRGGBB), `share` 0 to 255 of `above`, each channel rounded.
std::uint32_t MixPixels(std::uint32_t below, std::uint32_t above, unsigned share);

/// Puts a colour through `count` pixels of a mask's row into those at `pixels`, all 0x00RRGGBB.
void BlendRow(std::uint32_t* pixels, const std::uint8_t* coverage, int count, std::uint32_t colour);

/// `mask` minus what `hole` covers. Both have the same size.
void CutOut(CoverageMask& mask, const CoverageMask& hole);

} // namespace tonex
