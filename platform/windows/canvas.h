// An off-screen picture that a panel draws into before it reaches the screen in one copy, so nothing
// flickers.
#pragma once

#include "pictures/raster.h"

#include "platform/windows/desktop_windows.h"

#include <cstdint>
#include <string_view>

namespace tonex {

struct Canvas {
    HDC dc = nullptr;
    HBITMAP bitmap = nullptr;
    HGDIOBJ old_bitmap = nullptr;
    std::uint32_t* bits = nullptr; ///< 0x00RRGGBB, rows from the top down
    int width = 0, height = 0;
};

/// Whether two areas share a pixel.
bool Overlap(const RECT& a, const RECT& b);

/// Makes the canvas at least as large as asked. Its content is undefined afterwards when it grew (true).
bool ResizeCanvas(Canvas& canvas, int width, int height);
void FreeCanvas(Canvas& canvas);

void FillArea(Canvas& canvas, const RECT& area, COLORREF colour);
/// The edge of an area, `thick` pixels inside it.
void DrawFrame(Canvas& canvas, const RECT& area, int thick, COLORREF colour);
/// Mixes a colour into an area, share 0 to 255.
void TintArea(Canvas& canvas, const RECT& area, COLORREF colour, int share);
/// Puts a colour through a mask whose corner lies at x, y; nothing outside `clip` changes.
void BlendMask(Canvas& canvas, const CoverageMask& mask, int x, int y, COLORREF colour, const RECT& clip);
/// A filled rectangle with antialiased round corners; `square_top` keeps the upper two corners square.
void FillRound(Canvas& canvas, const RECT& area, int radius, COLORREF colour, bool square_top = false);
/// The width of a line of text in a font, in pixels.
int WidthOf(const Canvas& canvas, std::wstring_view text, HFONT font);
/// One line of text, centred both ways, cut at the area.
void DrawCentred(Canvas& canvas, const RECT& area, std::wstring_view text, HFONT font, COLORREF colour);

} // namespace tonex
