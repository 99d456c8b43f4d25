// The toolbar's icons and the program icon. Drawn on a grid of 16 x 16 units; what is straight is moved to
// whole pixels at every size.
#include "pictures/glyphs.h"

#include "pictures/outlines.h"

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

constexpr std::uint32_t kInk = 0x3B4656, kPaper = 0xFFFFFF, kBlue = 0x2B74C0, kPaleBlue = 0xCFE2F5;
constexpr std::uint32_t kAmber = 0xE0A030, kPaleAmber = 0xF6CE77, kGrey = 0x8E99A8, kPaleGrey = 0xD9DEE5;
constexpr std::uint32_t kRed = 0xC93F38, kGreen = 0x2E9B57, kScreen = 0xCDE9DA;

/// An icon while it is being drawn: a colour after the other.
struct Easel {
    int size;
    float unit; ///< pixels of one of the 16 grid steps
    std::vector<ColourLayer> layers;
    Raster raster;
};

/// A grid position on a whole pixel.
float Snap(const Easel& easel, float at) {
    return std::floor(at * easel.unit + 0.5F);
}

/// Pixels of a thin line: 1 up to 20, 2 at 24 to 40.
float Thin(const Easel& easel) {
    return std::max(1.0F, std::floor(easel.unit + 0.4F));
}

void Begin(Easel& easel) {
    easel.raster = MakeRaster(easel.size, easel.size);
}

void End(Easel& easel, std::uint32_t rgb) {
    easel.layers.push_back({rgb, FinishMask(easel.raster)});
}

/// A box with round corners, in grid units.
struct GridBox {
    float left, top, right, bottom;
    float radius = 0;
};

/// Adds a box whose edges lie on whole pixels, `inset` pixels inside it.
void AddBox(Easel& easel, const GridBox& box, float inset = 0) {
    AddRoundRectangle(easel.raster, Snap(easel, box.left) + inset, Snap(easel, box.top) + inset,
                      Snap(easel, box.right) - inset, Snap(easel, box.bottom) - inset,
                      std::max(0.0F, box.radius * easel.unit - inset));
}

void Box(Easel& easel, std::uint32_t rgb, const GridBox& box) {
    Begin(easel);
    AddBox(easel, box);
    End(easel, rgb);
}

/// A box with a border of one thin line.
void FramedBox(Easel& easel, std::uint32_t frame, std::uint32_t inside, const GridBox& box) {
    Box(easel, frame, box);
    Begin(easel);
    AddBox(easel, box, Thin(easel));
    End(easel, inside);
}

/// Adds a thin line of writing.
void AddWriting(Easel& easel, float left, float right, float y) {
    AddRectangle(easel.raster, Snap(easel, left), Snap(easel, y), Snap(easel, right),
                 Snap(easel, y) + Thin(easel));
}

struct GridPoint {
    float x, y;
};

/// Adds a polygon; its points in grid units, counterclockwise as seen.
void AddPolygon(Easel& easel, std::initializer_list<GridPoint> points) {
    std::vector<PathStep> steps;
    for (const GridPoint& p : points) {
        // 64 units a grid step, so that the tables' whole numbers are fine enough.
        const auto x = static_cast<std::int16_t>(p.x * 64), y = static_cast<std::int16_t>(-p.y * 64);
        steps.push_back({.kind = steps.empty() ? PathStep::Move : PathStep::Line, .x = x, .y = y});
    }
    steps.push_back({PathStep::Close});
    Placement placement;
    placement.xx = easel.unit / 64;
    placement.yy = -easel.unit / 64;
    AddOutline(easel.raster, steps, placement);
}

void AddGridStroke(Easel& easel, GridPoint from, GridPoint to, float width) {
    const float u = easel.unit;
    AddStroke(easel.raster, from.x * u, from.y * u, to.x * u, to.y * u, width * u);
}

/// An eighth note in one colour: the head's centre, the height of the whole.
void DrawEighth(Easel& easel, std::uint32_t rgb, float x, float y, float high) {
    Begin(easel);
    const float space = high * easel.unit / 3.6F;
    Placement placement;
    placement.xx = space / kOutlineUnits;
    placement.yy = -placement.xx;
    const float thin = Thin(easel);
    const float stem = std::floor((x * easel.unit + 0.59F * space) + 0.5F) - thin;
    placement.dx = stem + thin - 0.59F * space;
    placement.dy = y * easel.unit;
    AddOutline(easel.raster, kBlackHead, placement);
    const float top = std::floor(placement.dy - 3.1F * space + 0.5F);
    AddRectangle(easel.raster, stem, top, stem + thin, placement.dy);
    placement.dx = stem + thin * 0.4F;
    placement.dy = top;
    // Wider than on the staff, and no longer than the shorter stem allows.
    placement.xx *= 1.15F;
    placement.yy *= 0.78F;
    AddOutline(easel.raster, kFlag, placement);
    End(easel, rgb);
}

void Page(Easel& easel, float left, float top, float right, float bottom) {
    FramedBox(easel, kInk, kPaper, {left, top, right, bottom, 0.8F});
}

void Folder(Easel& easel) {
    Begin(easel);
    AddBox(easel, {1, 2, 7, 7, 0.8F});
    AddBox(easel, {1, 4, 14, 14, 0.8F});
    End(easel, kAmber);
    Begin(easel);
    AddPolygon(easel, {{3.4F, 7}, {1.4F, 14}, {13.8F, 14}, {15.8F, 7}});
    End(easel, kPaleAmber);
}

void Disk(Easel& easel) {
    Box(easel, kBlue, {1, 1, 15, 15, 1.2F});
    Box(easel, kPaper, {4, 1, 12, 6});
    Box(easel, kBlue, {9, 2, 11, 5});
    Box(easel, kPaleBlue, {3, 9, 13, 15});
    Begin(easel);
    for (const float y : {10.5F, 12.5F})
        AddWriting(easel, 5, 11, y);
    End(easel, kBlue);
}

/// The organiser with its strap, in the lower right corner, with a rim that parts it from what it covers.
void Organiser(Easel& easel) {
    Box(easel, kPaper, {8, 4, 16, 16, 1.5F});
    Box(easel, kGrey, {10, 5, 15, 16, 0.5F});
    Box(easel, kInk, {9, 6, 16, 15, 1.2F});
    Box(easel, kScreen, {10.4F, 8, 14.6F, 11, 0.3F});
    Begin(easel);
    for (const float x : {10.6F, 13.0F})
        AddRectangle(easel.raster, Snap(easel, x), Snap(easel, 12.4F), Snap(easel, x + 1.4F),
                     Snap(easel, 13.6F));
    End(easel, kGrey);
}

void Scissors(Easel& easel, std::uint32_t blades) {
    Begin(easel);
    AddPolygon(easel, {{3.2F, 0.8F}, {9.3F, 11.2F}, {10.6F, 10.2F}, {5.0F, 0.8F}});
    AddPolygon(easel, {{11.0F, 0.8F}, {5.4F, 10.2F}, {6.7F, 11.2F}, {12.8F, 0.8F}});
    End(easel, blades);
    const float u = easel.unit, thick = std::max(1.4F, 1.3F * u);
    Begin(easel);
    AddEllipse(easel.raster, 4.4F * u, 12.4F * u, 2.7F * u, 2.7F * u);
    AddEllipse(easel.raster, 11.6F * u, 12.4F * u, 2.7F * u, 2.7F * u);
    CoverageMask rings = FinishMask(easel.raster);
    Begin(easel);
    AddEllipse(easel.raster, 4.4F * u, 12.4F * u, 2.7F * u - thick, 2.7F * u - thick);
    AddEllipse(easel.raster, 11.6F * u, 12.4F * u, 2.7F * u - thick, 2.7F * u - thick);
    CutOut(rings, FinishMask(easel.raster));
    easel.layers.push_back({kBlue, rings});
}

void Clipboard(Easel& easel) {
    Box(easel, kAmber, {2, 2, 14, 15, 1});
    Box(easel, kPaper, {4, 4, 12, 13});
    Box(easel, kInk, {5, 1, 11, 4, 0.8F});
    Begin(easel);
    for (const float y : {6.0F, 8.0F, 10.0F})
        AddWriting(easel, 5.5F, y > 9 ? 9.0F : 10.5F, y);
    End(easel, kGrey);
}

void Pages(Easel& easel) {
    Page(easel, 2, 1, 10, 11);
    Page(easel, 6, 5, 14, 15);
    Begin(easel);
    for (const float y : {8.0F, 10.0F, 12.0F})
        AddWriting(easel, 8, 12, y);
    End(easel, kBlue);
}

void Cross(Easel& easel) {
    Begin(easel);
    AddGridStroke(easel, {2.7F, 2.7F}, {13.3F, 13.3F}, 2.5F);
    AddGridStroke(easel, {13.3F, 2.7F}, {2.7F, 13.3F}, 2.5F);
    End(easel, kRed);
}

/// A new entry between two others.
void Between(Easel& easel) {
    FramedBox(easel, kGrey, kPaleGrey, {0, 3, 5, 13, 0.6F});
    FramedBox(easel, kGrey, kPaleGrey, {11, 3, 16, 13, 0.6F});
    Begin(easel);
    const float thick = std::max(2.0F, Snap(easel, 1.8F));
    const float half = std::floor(easel.unit * 3.4F), middle = static_cast<float>(easel.size) / 2;
    const float low = std::floor(middle - thick / 2 + 0.5F), from = low - half + thick / 2,
                to = from + 2 * half;
    AddRectangle(easel.raster, low, std::floor(from), low + thick, std::floor(to));
    AddRectangle(easel.raster, std::floor(from), low, std::floor(to), low + thick);
    End(easel, kGreen);
}

void Play(Easel& easel) {
    const float middle = static_cast<float>(easel.size) / 2;
    Begin(easel);
    AddEllipse(easel.raster, middle, middle, 7.4F * easel.unit, 7.4F * easel.unit);
    End(easel, kGreen);
    Begin(easel);
    AddPolygon(easel, {{6.2F, 4.2F}, {6.2F, 11.8F}, {12.2F, 8}});
    End(easel, kPaper);
}

std::uint32_t Mix(std::uint32_t low, std::uint32_t high, float share) {
    std::uint32_t mixed = 0;
    for (int shift = 16; shift >= 0; shift -= 8) {
        const float a = static_cast<float>(low >> shift & 255), b = static_cast<float>(high >> shift & 255);
        mixed |= static_cast<std::uint32_t>(std::lround(a + (b - a) * share)) << shift;
    }
    return mixed;
}

/// A colour put over what is below it, both with straight alpha.
std::uint32_t Over(std::uint32_t below, std::uint32_t rgb, unsigned alpha) {
    const unsigned rest = (below >> 24) * (255 - alpha); // of 255 * 255
    const unsigned whole = alpha * 255 + rest;
    if (whole == 0) return 0;
    std::uint32_t pixel = (whole + 127) / 255 << 24;
    for (int shift = 0; shift <= 16; shift += 8) {
        const unsigned old = below >> shift & 255, now = rgb >> shift & 255;
        pixel |= (now * alpha * 255 + old * rest + whole / 2) / whole << shift;
    }
    return pixel;
}

} // namespace

std::vector<std::uint32_t> FlattenLayers(const std::vector<ColourLayer>& layers, int size_px) {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(size_px) * static_cast<std::size_t>(size_px));
    for (const ColourLayer& layer : layers)
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = Over(pixels[i], layer.rgb, layer.mask.alpha[i]);
    return pixels;
}

std::vector<ColourLayer> ToolIconLayers(ToolIcon icon, int size_px, bool on_dark) {
    if (size_px < 1) return {};
    Easel easel{size_px, static_cast<float>(size_px) / 16, {}, {}};
    switch (icon) {
    case ToolIcon::New:
        Page(easel, 2, 1, 14, 15);
        DrawEighth(easel, kBlue, 6.8F, 11.2F, 9.6F);
        break;
    case ToolIcon::OpenPc: Folder(easel); break;
    case ToolIcon::SavePc: Disk(easel); break;
    case ToolIcon::OpenVeloxa:
        Folder(easel);
        Organiser(easel);
        break;
    case ToolIcon::SaveVeloxa:
        Disk(easel);
        Organiser(easel);
        break;
    case ToolIcon::Cut: Scissors(easel, on_dark ? kPaleGrey : kInk); break;
    case ToolIcon::Copy: Pages(easel); break;
    case ToolIcon::Paste: Clipboard(easel); break;
    case ToolIcon::Delete: Cross(easel); break;
    case ToolIcon::Insert: Between(easel); break;
    case ToolIcon::Preview: Play(easel); break;
    }
    return easel.layers;
}

std::vector<std::uint32_t> ProgramIconPixels(int size_px) {
    Easel easel{size_px, static_cast<float>(size_px) / 16, {}, {}};
    const float size = static_cast<float>(size_px), inset = std::floor(size / 32);
    Begin(easel);
    AddRoundRectangle(easel.raster, inset, inset, size - inset, size - inset, size * 0.2F);
    const CoverageMask tile = FinishMask(easel.raster);
    Begin(easel);
    // Below 32 pixels staff lines would only be noise behind the note.
    const float thin = std::max(1.0F, std::floor(size / 48 + 0.5F));
    for (int i = 0; size_px >= 32 && i < 5; ++i) {
        const float y = std::floor(size * (0.28F + 0.125F * static_cast<float>(i)));
        AddRectangle(easel.raster, inset, y, size - inset, y + thin);
    }
    const CoverageMask lines = FinishMask(easel.raster);
    DrawEighth(easel, kPaper, 6.6F, 11.6F, 11.6F);
    const CoverageMask note = easel.layers.front().mask;

    std::vector<std::uint32_t> pixels(tile.alpha.size());
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const std::size_t row = i / static_cast<std::size_t>(size_px);
        const float down = static_cast<float>(row) / size;
        std::uint32_t rgb = Mix(0x3F8FD8, 0x1C4A86, down);
        rgb = Mix(rgb, 0xFFFFFF, static_cast<float>(lines.alpha[i]) / 255 * 0.28F);
        rgb = Mix(rgb, 0xFFFFFF, static_cast<float>(note.alpha[i]) / 255);
        pixels[i] = static_cast<std::uint32_t>(tile.alpha[i]) << 24 |
                    Mix(0, rgb, static_cast<float>(tile.alpha[i]) / 255);
    }
    return pixels;
}

} // namespace tonex
