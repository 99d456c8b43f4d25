// Scale, colours and fonts. Windows-only because system colours, fonts and DPI are the system's.
#include "platform/windows/theme.h"

#include "preview/timing_tables.h"
#include "score/rows.h"
#include "view/measures.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

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

/// A text, and the pixels that it has.
struct TextRoom {
    std::wstring text;
    int width, height;
};
using TextRooms = std::vector<TextRoom>;

/// The sizes of a text in the font of a device, in pixels; the height is that of a line.
SIZE SizeOf(HDC device, const std::wstring& text) {
    SIZE size{};
    GetTextExtentPoint32W(device, text.c_str(), static_cast<int>(text.size()), &size);
    return size;
}

bool FitsAll(HFONT font, const TextRooms& rooms) {
    HDC screen = GetDC(nullptr);
    const HGDIOBJ old = SelectObject(screen, font);
    const bool fits = std::all_of(rooms.begin(), rooms.end(), [&](const TextRoom& room) {
        const SIZE size = SizeOf(screen, room.text);
        return size.cx <= room.width && size.cy <= room.height;
    });
    SelectObject(screen, old);
    ReleaseDC(nullptr, screen);
    return fits;
}

constexpr int kTextGap = 4;     ///< pixels at 100 %, left free behind a text
constexpr int kTempoFrame = 10; ///< pixels at 100 %, of the tempo box around its text
/// The widest names of octaves of one digit, of two and three, and of the last that 16 bits hold.
constexpr std::array<const wchar_t*, kCellFonts> kCellNames = {L"g8 #", L"g88 #", L"g888 #", L"g-8888 #"};
constexpr int kSmallestText = 6; ///< pixels; below, letters are made narrower instead

/// The largest font of a family up to `height` pixels in which each text fits the room that it has.
HFONT FittingFont(LOGFONTW font, int height, const TextRooms& rooms) {
    for (;;) {
        font.lfHeight = -height;
        HFONT made = CreateFontIndirectW(&font);
        if (font.lfWidth == 1 || FitsAll(made, rooms)) return made;
        DeleteObject(made);
        if (height > kSmallestText)
            --height;
        else
            font.lfWidth = font.lfWidth == 0 ? kSmallestText / 2 : font.lfWidth - 1;
    }
}

/// The tempo box and the texts beside it have the room that the record gives them; a line of theirs must
/// leave the row room for the box's frame.
TextRooms RoomsOfControls(const sndmain& window, const Scale& scale) {
    const int line = ToPixelsY(scale, window.imgNow.place.Height) - Scaled(scale, kTempoFrame);
    const auto wide = [&](const Rect& place) {
        return ToPixelsX(scale, place.Width) - Scaled(scale, kTextGap);
    };
    const int arrow = GetSystemMetrics(SM_CXVSCROLL);
    TextRooms rooms = {{window.Label2.Caption, wide(window.Label2.place), line},
                       {window.Label3.Caption, wide(window.Label3.place), line},
                       {L" 640", wide(window.TempoCombo.place) - arrow - Scaled(scale, kTempoFrame), line}};
    for (const TempoRange& range : kTempoRanges)
        rooms.push_back({std::wstring(range.name), wide(window.lblTempo.place), line});
    return rooms;
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

Fonts CreateFonts(const sndmain& window, const Scale& scale, float magnified) {
    LOGFONTW message = MessageFont();
    LOGFONTW tooltip = message;
    tooltip.lfHeight = std::lround(static_cast<float>(message.lfHeight) * std::max(1.0f, magnified));
    message.lfHeight = std::lround(static_cast<float>(message.lfHeight) * magnified);
    const LOGFONTW japanese = JapaneseFont(message);
    const int wanted = std::abs(static_cast<int>(message.lfHeight));
    const int height = std::max<int>(Scaled(scale, 12), wanted);
    const int row = ToPixelsY(scale, kColumnWidth); // a cell is as high as it is wide
    const int cell = CellTextWidth(scale), key = ToPixelsX(scale, kKeyLabelWidth);
    const int white_key = key - Scaled(scale, 6), black_key = key - Scaled(scale, 2);
    const int key_height = Scaled(scale, 11);
    Fonts fonts;
    fonts.tooltip = CreateFontIndirectW(&tooltip); // a small window leaves it room enough
    fonts.ui = FittingFont(message, wanted, RoomsOfControls(window, scale));
    for (int i = 0; i < kCellFonts; ++i)
        At(fonts.cells, i) = FittingFont(message, height, {{At(kCellNames, i), cell, row}});
    fonts.cell_japanese = FittingFont(japanese, height, {{L"\xFF8C\xFF67 #", cell, row}});
    fonts.key = FittingFont(message, key_height, {{L"g8", white_key, row}, {L"a8", white_key, row}});
    fonts.sharp_key = FittingFont(message, key_height, {{L"g8#", black_key, row}, {L"a8#", black_key, row}});
    fonts.key_japanese = FittingFont(japanese, key_height, {{L"\x30C9#", black_key, row}});
    return fonts;
}

int CellTextWidth(const Scale& scale) {
    return ToPixelsX(scale, kColumnWidth) - Scaled(scale, 3);
}

void DeleteFonts(Fonts& fonts) {
    for (HFONT font :
         {fonts.tooltip, fonts.ui, fonts.cell_japanese, fonts.key, fonts.sharp_key, fonts.key_japanese})
        if (font) DeleteObject(font);
    for (HFONT font : fonts.cells)
        if (font) DeleteObject(font);
    fonts = {};
}

Scale ScaleWithSpace(const Scale& screen, float staff_space) {
    const float own_space = kStaffSpace / screen.twips_per_pixel_y;
    return {screen.twips_per_pixel_x * own_space / staff_space, kStaffSpace / staff_space};
}

HFONT FontFor(std::wstring_view text, HFONT latin, HFONT japanese) {
    const bool kana = std::any_of(text.begin(), text.end(), [](wchar_t c) { return c > 0x2FFF; });
    return kana ? japanese : latin;
}

} // namespace tonex
