// Scale, colours and fonts. Windows-only because system colours, fonts and DPI are the system's.
#include "platform/windows/theme.h"

#include "view/measures.h"

#include <algorithm>
#include <cmath>

namespace tonex {

int ToPixelsX(const Scale& scale, int twips) {
    return static_cast<int>(std::lround(static_cast<float>(twips) / scale.twips_per_pixel_x));
}
int ToPixelsY(const Scale& scale, int twips) {
    return static_cast<int>(std::lround(static_cast<float>(twips) / scale.twips_per_pixel_y));
}
int ToTwipsX(const Scale& scale, int pixels) {
    return static_cast<int>(std::lround(static_cast<float>(pixels) * scale.twips_per_pixel_x));
}
int ToTwipsY(const Scale& scale, int pixels) {
    return static_cast<int>(std::lround(static_cast<float>(pixels) * scale.twips_per_pixel_y));
}

RECT ToPixels(const Scale& scale, const Rect& rect) {
    return {ToPixelsX(scale, rect.Left), ToPixelsY(scale, rect.Top), ToPixelsX(scale, rect.Left + rect.Width),
            ToPixelsY(scale, rect.Top + rect.Height)};
}

int Scaled(const Scale& scale, int pixels_at_96_dpi) {
    return std::max(1, ToPixelsY(scale, pixels_at_96_dpi * 15));
}

int Hairline(const Scale& scale) {
    return std::max(1, static_cast<int>(15.0f / scale.twips_per_pixel_y));
}

COLORREF Mix(COLORREF a, COLORREF b, int share) {
    const auto channel = [&](int shift) {
        const int from = static_cast<int>(a >> shift & 0xFF), to = static_cast<int>(b >> shift & 0xFF);
        return static_cast<COLORREF>(from + (to - from) * share / 255) << shift;
    };
    return channel(0) | channel(8) | channel(16);
}

namespace {

bool HighContrastOn() {
    HIGHCONTRASTW contrast{};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

/// Light text on a dark ground: such schemes are chosen for their contrast, so no colour is mixed from
/// theirs.
bool LightOnDark(COLORREF ink, COLORREF paper) {
    const auto light = [](COLORREF c) { return GetRValue(c) * 30 + GetGValue(c) * 59 + GetBValue(c) * 11; };
    return light(ink) > light(paper);
}

LOGFONTW MessageFont() {
    NONCLIENTMETRICSW metrics{};
    // The structure grew after XP; the size that XP knows is accepted everywhere.
    metrics.cbSize = sizeof metrics;
    if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0))
        return metrics.lfMessageFont;
    LOGFONTW font{};
    GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
    return font;
}

int TextWidth(HFONT font, const wchar_t* text) {
    HDC screen = GetDC(nullptr);
    const HGDIOBJ old = SelectObject(screen, font);
    SIZE size{};
    GetTextExtentPoint32W(screen, text, lstrlenW(text), &size);
    SelectObject(screen, old);
    ReleaseDC(nullptr, screen);
    return static_cast<int>(size.cx);
}

/// The largest font of a family up to `height` pixels in which the widest of the texts fits `width` pixels.
HFONT FittingFont(LOGFONTW font, int height, int width, const wchar_t* widest) {
    for (;; --height) {
        font.lfHeight = -height;
        HFONT made = CreateFontIndirectW(&font);
        if (height <= 6 || TextWidth(made, widest) <= width) return made;
        DeleteObject(made);
    }
}

int CALLBACK NoteFamily(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found) {
    *reinterpret_cast<bool*>(found) = true;
    return 0;
}

bool FamilyExists(const wchar_t* name) {
    HDC screen = GetDC(nullptr);
    LOGFONTW wanted{};
    wanted.lfCharSet = DEFAULT_CHARSET;
    lstrcpynW(wanted.lfFaceName, name, LF_FACESIZE);
    bool found = false;
    EnumFontFamiliesExW(screen, &wanted, NoteFamily, reinterpret_cast<LPARAM>(&found), 0);
    ReleaseDC(nullptr, screen);
    return found;
}

/// The interface font with a family that has kana; the system links fonts for us only on some versions.
LOGFONTW JapaneseFont(LOGFONTW font) {
    static constexpr const wchar_t* kFamilies[] = {L"Yu Gothic UI", L"Meiryo UI", L"MS UI Gothic",
                                                   L"VL PGothic", L"VL Gothic"};
    for (const wchar_t* family : kFamilies) {
        if (!FamilyExists(family)) continue;
        lstrcpynW(font.lfFaceName, family, LF_FACESIZE);
        font.lfCharSet = SHIFTJIS_CHARSET;
        break;
    }
    return font;
}

} // namespace

Colours ReadColours() {
    Colours c;
    c.face = GetSysColor(COLOR_BTNFACE);
    c.face_text = GetSysColor(COLOR_BTNTEXT);
    c.paper = GetSysColor(COLOR_WINDOW);
    c.ink = GetSysColor(COLOR_WINDOWTEXT);
    c.select = GetSysColor(COLOR_HIGHLIGHT);
    c.select_text = GetSysColor(COLOR_HIGHLIGHTTEXT);
    c.high_contrast = HighContrastOn() || LightOnDark(c.ink, c.paper);
    c.staff_line = c.high_contrast ? c.ink : Mix(c.paper, c.ink, 140);
    c.rule = c.high_contrast ? c.ink : Mix(c.paper, c.ink, 44);
    c.button = c.high_contrast ? c.face : Mix(c.face, RGB(255, 255, 255), 150);
    c.button_hot = c.high_contrast ? c.face : Mix(c.button, c.select, 36);
    c.button_pressed = c.high_contrast ? c.face : Mix(c.button, c.select, 80);
    c.button_edge = c.high_contrast ? c.face_text : Mix(c.face, c.face_text, 62);
    return c;
}

Fonts CreateFonts(const Scale& scale, float magnified) {
    LOGFONTW message = MessageFont();
    message.lfHeight = std::lround(static_cast<float>(message.lfHeight) * magnified);
    const LOGFONTW japanese = JapaneseFont(message);
    const int height = std::max<int>(Scaled(scale, 12), std::abs(static_cast<int>(message.lfHeight)));
    const int cell = ToPixelsX(scale, kColumnWidth) - Scaled(scale, 3);
    const int key = ToPixelsX(scale, kKeyLabelWidth) - Scaled(scale, 2);
    Fonts fonts;
    fonts.ui = CreateFontIndirectW(&message);
    fonts.cell = FittingFont(message, height, cell, L"g8 #");
    fonts.cell_japanese = FittingFont(japanese, height, cell, L"\xFF8C\xFF67 #");
    fonts.key = FittingFont(message, Scaled(scale, 11), key, L"g8#");
    fonts.key_japanese = FittingFont(japanese, Scaled(scale, 11), key, L"\x30C9#");
    return fonts;
}

void DeleteFonts(Fonts& fonts) {
    for (HFONT font : {fonts.ui, fonts.cell, fonts.cell_japanese, fonts.key, fonts.key_japanese})
        if (font) DeleteObject(font);
    fonts = {};
}

Scale MagnifiedToFit(const Scale& screen, int content_width, int content_height, SIZE window) {
    constexpr int kStep = 2;        // pixels a staff space grows
    constexpr float kMostTimes = 4; // larger than any screen of today needs
    const float own_space = kStaffSpace / screen.twips_per_pixel_y;
    Scale best = screen;
    for (float space = own_space; space <= kMostTimes * own_space; space += kStep) {
        const Scale larger{screen.twips_per_pixel_x * own_space / space, kStaffSpace / space};
        if (ToPixelsX(larger, content_width) > window.cx || ToPixelsY(larger, content_height) > window.cy)
            break;
        best = larger;
    }
    return best;
}

HFONT FontFor(std::wstring_view text, HFONT latin, HFONT japanese) {
    const bool kana = std::any_of(text.begin(), text.end(), [](wchar_t c) { return c > 0x2FFF; });
    return kana ? japanese : latin;
}

} // namespace tonex
