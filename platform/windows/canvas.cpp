// Drawing into a device-independent bitmap. Windows-only because text and the copy to the screen are GDI's.
#include "platform/windows/canvas.h"

#include "score/rows.h"

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

std::uint32_t ToPixel(COLORREF colour) {
    return static_cast<std::uint32_t>(GetRValue(colour)) << 16 |
           static_cast<std::uint32_t>(GetGValue(colour)) << 8 | GetBValue(colour);
}

RECT Clipped(const Canvas& canvas, const RECT& area) {
    return {std::max<LONG>(area.left, 0), std::max<LONG>(area.top, 0),
            std::min<LONG>(area.right, canvas.width), std::min<LONG>(area.bottom, canvas.height)};
}

/// The part of a pixel at distance (x, y) from a corner circle's centre that lies inside the circle, 0 to
/// 255.
unsigned CornerCoverage(int x, int y, int radius) {
    const float dx = static_cast<float>(x) + 0.5f, dy = static_cast<float>(y) + 0.5f;
    const float inside = static_cast<float>(radius) + 0.5f - std::sqrt(dx * dx + dy * dy);
    return static_cast<unsigned>(std::clamp(inside, 0.0f, 1.0f) * 255.0f);
}

} // namespace

bool Overlap(const RECT& a, const RECT& b) {
    RECT common;
    return IntersectRect(&common, &a, &b);
}

bool ResizeCanvas(Canvas& canvas, int width, int height) {
    if (canvas.bitmap && width <= canvas.width && height <= canvas.height) return false;
    width = std::max(width, canvas.width);
    height = std::max(height, canvas.height);
    FreeCanvas(canvas);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = std::max(width, 1);
    info.bmiHeader.biHeight = -std::max(height, 1);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!bitmap) return false;
    canvas.dc = CreateCompatibleDC(nullptr);
    canvas.bitmap = bitmap;
    canvas.old_bitmap = SelectObject(canvas.dc, bitmap);
    canvas.bits = static_cast<std::uint32_t*>(bits);
    canvas.width = std::max(width, 1);
    canvas.height = std::max(height, 1);
    SetBkMode(canvas.dc, TRANSPARENT);
    return true;
}

void FreeCanvas(Canvas& canvas) {
    if (canvas.dc) {
        SelectObject(canvas.dc, canvas.old_bitmap);
        DeleteDC(canvas.dc);
    }
    if (canvas.bitmap) DeleteObject(canvas.bitmap);
    canvas = {};
}

void FillArea(Canvas& canvas, const RECT& area, COLORREF colour) {
    const RECT r = Clipped(canvas, area);
    if (r.left >= r.right) return;
    GdiFlush();
    const std::uint32_t pixel = ToPixel(colour);
    for (LONG y = r.top; y < r.bottom; ++y) {
        std::uint32_t* row = canvas.bits + y * canvas.width;
        std::fill(row + r.left, row + r.right, pixel);
    }
}

void DrawFrame(Canvas& canvas, const RECT& area, int thick, COLORREF colour) {
    FillArea(canvas, {area.left, area.top, area.right, area.top + thick}, colour);
    FillArea(canvas, {area.left, area.bottom - thick, area.right, area.bottom}, colour);
    FillArea(canvas, {area.left, area.top, area.left + thick, area.bottom}, colour);
    FillArea(canvas, {area.right - thick, area.top, area.right, area.bottom}, colour);
}

void TintArea(Canvas& canvas, const RECT& area, COLORREF colour, int share) {
    const RECT r = Clipped(canvas, area);
    GdiFlush();
    const std::uint32_t pixel = ToPixel(colour);
    for (LONG y = r.top; y < r.bottom; ++y)
        for (LONG x = r.left; x < r.right; ++x) {
            std::uint32_t& p = canvas.bits[y * canvas.width + x];
            p = MixPixels(p, pixel, static_cast<unsigned>(share));
        }
}

void BlendMask(Canvas& canvas, const CoverageMask& mask, int x, int y, COLORREF colour, const RECT& clip) {
    const RECT r = Clipped(canvas, clip);
    GdiFlush();
    const std::uint32_t pixel = ToPixel(colour);
    const int top = std::max<int>(0, static_cast<int>(r.top) - y);
    const int bottom = std::min<int>(mask.height, static_cast<int>(r.bottom) - y);
    const int left = std::max<int>(0, static_cast<int>(r.left) - x);
    const int right = std::min<int>(mask.width, static_cast<int>(r.right) - x);
    if (left >= right) return;
    for (int row = top; row < bottom; ++row) {
        const std::uint8_t* alpha = &At(mask.alpha, row * mask.width);
        std::uint32_t* pixels = canvas.bits + (y + row) * canvas.width + x;
        BlendRow(pixels + left, alpha + left, right - left, pixel);
    }
}

void FillRound(Canvas& canvas, const RECT& area, int radius, COLORREF colour, bool square_top) {
    const RECT r = Clipped(canvas, area);
    GdiFlush();
    const std::uint32_t pixel = ToPixel(colour);
    for (LONG y = r.top; y < r.bottom; ++y)
        for (LONG x = r.left; x < r.right; ++x) {
            // Distance of the pixel into the corner's square, counted from the circle's centre.
            const int from_left = radius - 1 - static_cast<int>(x - area.left);
            const int from_right = radius - static_cast<int>(area.right - x);
            const int from_top = square_top ? -1 : radius - 1 - static_cast<int>(y - area.top);
            const int from_bottom = radius - static_cast<int>(area.bottom - y);
            const int dx = std::max(from_left, from_right), dy = std::max(from_top, from_bottom);
            std::uint32_t& p = canvas.bits[y * canvas.width + x];
            p = dx < 0 || dy < 0 ? pixel : MixPixels(p, pixel, CornerCoverage(dx, dy, radius));
        }
}

int WidthOf(const Canvas& canvas, std::wstring_view text, HFONT font) {
    const HGDIOBJ old = SelectObject(canvas.dc, font);
    SIZE size{};
    GetTextExtentPoint32W(canvas.dc, text.data(), static_cast<int>(text.size()), &size);
    SelectObject(canvas.dc, old);
    return static_cast<int>(size.cx);
}

void DrawCentred(Canvas& canvas, const RECT& area, std::wstring_view text, HFONT font, COLORREF colour) {
    if (text.empty()) return;
    const HGDIOBJ old = SelectObject(canvas.dc, font);
    SetTextColor(canvas.dc, colour);
    RECT r = area;
    DrawTextW(canvas.dc, text.data(), static_cast<int>(text.size()), &r,
              DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    SelectObject(canvas.dc, old);
}

} // namespace tonex
