// Scale, colours and fonts of the main window. Lengths in the record are twips; this is where pixels begin.
#pragma once

#include "app/sndmain.h"

#include "platform/windows/desktop_windows.h"

#include <array>

namespace tonex {

/// A scale: the screen's own, a larger one in a large window, a smaller one in a small one.
struct Scale {
    float twips_per_pixel_x = 15;
    float twips_per_pixel_y = 15;
};

/// Colours of everything the program draws itself, from the system's so that high contrast is respected.
struct Colours {
    bool high_contrast = false;
    COLORREF face = 0; ///< of the window
    COLORREF face_text = 0;
    COLORREF paper = 0; ///< of staff and grid
    COLORREF ink = 0;   ///< notes and texts on paper
    COLORREF staff_line = 0;
    COLORREF rule = 0; ///< between grid cells and around panels
    COLORREF select = 0;
    COLORREF select_text = 0;
    COLORREF button = 0; ///< a length button
    COLORREF button_hot = 0;
    COLORREF button_pressed = 0;
    COLORREF button_edge = 0;
};

inline constexpr int kCellFonts = 4;

struct Fonts {
    HFONT tooltip = nullptr; ///< the system's message font as it is
    HFONT ui = nullptr;      ///< of the tempo box and the texts beside it, no larger than their places
    /// Letter names in the grid, each of these smaller than the one before: names with an octave of two
    /// digits and more are wider than what the piano reaches.
    std::array<HFONT, kCellFonts> cells{};
    HFONT cell_japanese = nullptr;
    HFONT key = nullptr;       ///< captions of the white piano keys
    HFONT sharp_key = nullptr; ///< of the black ones, which are longer
    HFONT key_japanese = nullptr;
};

struct Theme {
    Scale scale;
    Colours colours;
    Fonts fonts;
};

int ToPixelsX(const Scale& scale, int twips);
int ToPixelsY(const Scale& scale, int twips);
int ToTwipsX(const Scale& scale, int pixels);
int ToTwipsY(const Scale& scale, int pixels);
/// A rectangle of the record in pixels; neighbours that touch in twips touch in pixels.
RECT ToPixels(const Scale& scale, const Rect& rect);
/// A length at 100 % in pixels of this scale.
int Scaled(const Scale& scale, int pixels_at_96_dpi);
/// The thickness of a thin line: whole pixels, rounded down so that it stays thin between the round scales.
int Hairline(const Scale& scale);

/// Reads colours from the system; again after WM_SYSCOLORCHANGE.
Colours ReadColours();
/// Creates the fonts from the system's message font, no larger than fits the places of the record's texts, a
/// grid cell and a key. `magnified` is how much larger than on the screen's own scale the window's content
/// is (below 1: smaller).
Fonts CreateFonts(const sndmain& window, const Scale& scale, float magnified);
/// The pixels that a grid cell has for its text.
int CellTextWidth(const Scale& scale);
void DeleteFonts(Fonts& fonts);
/// The scale that gives two staff lines a distance of `staff_space` pixels.
Scale ScaleWithSpace(const Scale& screen, float staff_space);
/// The font for a text: the Japanese one when the text has characters beyond Latin.
HFONT FontFor(std::wstring_view text, HFONT latin, HFONT japanese);
/// Between two colours, `share` 0 to 255 of the second.
COLORREF Mix(COLORREF a, COLORREF b, int share);

} // namespace tonex
