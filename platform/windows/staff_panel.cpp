// The staff panel: clef, lines, and the strip of 30 note pictures. Windows-only drawing; what stands where is
// read from the record.
#include "platform/main_window.h"
#include "platform/windows/main_window.h"

#include "pictures/glyphs.h"
#include "score/rows.h"
#include "view/drawing_commands.h"
#include "view/note_entry_commands.h"
#include "view/staff.h"

#include <oleacc.h>

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

constexpr int kPointerLength = 8; ///< pixels at 100 %, of the arrow to a cursor out of view; twice as high
constexpr int kPointerInset = 4;  ///< pixels at 100 %, from the panel's edges

/// As many as the grid below has cells: the end column, too, takes the cursor.
int Count(const Panel& panel) {
    const sndmain& w = RecordOf(panel);
    return std::clamp(w.grdScore.Cols - w.score.first_shown, 0, kStripPictures);
}

/// The column of the panel that a picture stands in, from top to bottom, in pixels.
RECT ColumnArea(const Panel& panel, int image) {
    const sndmain& w = RecordOf(panel);
    const int left = w.grdScore.place.Left - w.picStaff.Left + image * w.standard_col_width;
    const Scale& scale = ScaleOf(panel);
    return {ToPixelsX(scale, w.picStaff.Left + left) - ToPixelsX(scale, w.picStaff.Left), 0,
            ToPixelsX(scale, w.picStaff.Left + left + w.standard_col_width) -
                ToPixelsX(scale, w.picStaff.Left),
            ToPixelsY(scale, w.picStaff.Height)};
}

std::wstring ItemName(const Panel& panel, int image) {
    return SlotName(panel, RecordOf(panel).score.first_shown + image);
}

bool ItemChosen(const Panel& panel, int image) {
    const sndmain& w = RecordOf(panel);
    return IsSelected(w.grdScore.view, w.score.first_shown + image);
}

void Press(Panel& panel, int image) {
    imgNote_Click(panel.main->record, image);
}

// ---- painting ----

/// Whether a column is selected, the empty one behind the last entry too.
bool InSelection(const sndmain& w, int image) {
    const int slot = w.score.first_shown + image;
    return IsSelected(w.grdScore.view, slot) && slot <= EndColumn(w.score);
}

/// In high contrast the selection is as solid as text's: what stands on it has the colour of selected text.
bool IsInverse(const Panel& panel, int image) {
    return ColoursOf(panel).high_contrast && InSelection(RecordOf(panel), image);
}

void PaintSelection(Panel& panel, const RECT& dirty) {
    const Colours& colours = ColoursOf(panel);
    for (int image = 0; image < kStripPictures; ++image) {
        if (!InSelection(RecordOf(panel), image)) continue;
        RECT area = ColumnArea(panel, image), part;
        if (IntersectRect(&part, &area, &dirty))
            TintArea(panel.canvas, part, colours.select, colours.high_contrast ? 255 : 40);
    }
}

void PaintLines(Panel& panel, LONG left, LONG right, COLORREF colour, const RECT& dirty) {
    const float pixels_per_twip = 1 / ScaleOf(panel).twips_per_pixel_y;
    for (const Line& line : RecordOf(panel).Line1) {
        const int y = StaffLineRow(static_cast<float>(line.Y) * pixels_per_twip);
        FillArea(panel.canvas,
                 {std::max(left, dirty.left), y, std::min(right, dirty.right),
                  y + StaffLinePixels(pixels_per_twip)},
                 colour);
    }
}

void PaintClef(Panel& panel, const RECT& dirty) {
    const Scale& scale = ScaleOf(panel);
    const float right = static_cast<float>(kClefBox.left + kClefBox.width) / scale.twips_per_pixel_x;
    if (static_cast<float>(dirty.left) > right) return;
    const PlacedMask clef = ClefMask(1 / scale.twips_per_pixel_y);
    BlendMask(panel.canvas, clef.mask, clef.left, clef.top, ColoursOf(panel).ink, dirty);
}

void PaintStaff(Panel& panel, const RECT& dirty) {
    const sndmain& w = RecordOf(panel);
    const Colours& colours = ColoursOf(panel);
    const Scale& scale = ScaleOf(panel);
    PaintLines(panel, ToPixelsX(scale, w.linSub[0].X1), ToPixelsX(scale, w.linSub[5].X2), colours.staff_line,
               dirty);
    for (int image = 0; image < kStripPictures; ++image) {
        if (!IsInverse(panel, image)) continue;
        const RECT area = ColumnArea(panel, image);
        PaintLines(panel, area.left, area.right, colours.select_text, dirty);
    }
    PaintClef(panel, dirty);
}

/// A ledger line that can not be thicker than a staff line is darker, so that the eye finds it as well.
COLORREF LedgerColour(const Panel& panel) {
    const Colours& colours = ColoursOf(panel);
    const float pixels_per_twip = 1 / ScaleOf(panel).twips_per_pixel_y;
    const bool thicker = BarLinePixels(pixels_per_twip) > StaffLinePixels(pixels_per_twip);
    return thicker ? colours.staff_line : Mix(colours.staff_line, colours.ink, 110);
}

/// A foreign file's pitch can lie far above or below the panel: no stem or ledger line of it is drawn either.
bool StandsInPanel(const sndmain& w, int y) {
    return y >= 0 && y <= w.picStaff.Height;
}

void PaintImage(Panel& panel, int index, const RECT& dirty) {
    const sndmain& w = RecordOf(panel);
    const NoteImage& image = At(w.imgNote, index);
    if (!image.Visible || image.Picture == 0) return;
    const StripPicture shown{
        image.Picture, image.Sharp,
        PictureStandsAt(image.Picture, static_cast<std::int16_t>(image.place.Top), w.StaffOffset)};
    if (!StandsInPanel(w, shown.y)) return;
    const RECT area = ColumnArea(panel, index);
    const int left = static_cast<int>(area.left);
    const StripColumn column{1 / ScaleOf(panel).twips_per_pixel_y, static_cast<int>(area.right) - left};
    const Colours& colours = ColoursOf(panel);
    const bool inverse = IsInverse(panel, index);
    const COLORREF ledger = inverse ? colours.select_text : LedgerColour(panel);
    for (const PixelBox& box : LedgerLineBoxes(shown, column))
        FillArea(panel.canvas, {left + box.left, box.top, left + box.right, box.bottom}, ledger);
    const PlacedMask placed = StripPictureMask(shown, column);
    BlendMask(panel.canvas, placed.mask, left, placed.top, inverse ? colours.select_text : colours.ink,
              dirty);
}

/// An arrow at the panel's edge that points to a cursor out of view: left for -1, right for 1.
void PaintPointer(Panel& panel, int side, const RECT& dirty) {
    const Scale& scale = ScaleOf(panel);
    RECT client;
    GetClientRect(panel.window, &client);
    const int length = Scaled(scale, kPointerLength), inset = Scaled(scale, kPointerInset);
    const LONG tip = side < 0 ? client.left + inset : client.right - inset - 1;
    const LONG middle = client.bottom - inset - length;
    for (int i = 0; i < length; ++i) {
        const LONG x = tip - side * i;
        RECT part;
        const RECT line = {x, middle - i, x + 1, middle + i + 1};
        if (IntersectRect(&part, &line, &dirty)) FillArea(panel.canvas, part, ColoursOf(panel).select);
    }
}

/// The place of the cursor, also behind the last entry where no picture is: a small mark under the staff.
/// After opening a long melody and after scrolling the cursor may be out of view; then a pointer shows where
/// it is.
void PaintCursor(Panel& panel, const RECT& dirty) {
    const sndmain& w = RecordOf(panel);
    const int side = SideOfCursor(w.grdScore.view);
    if (side != 0) PaintPointer(panel, side, dirty);
    const int image = w.grdScore.view.Col - w.score.first_shown;
    if (image < 0 || image >= kStripPictures) return;
    RECT area = ColumnArea(panel, image);
    area.top = area.bottom - Scaled(ScaleOf(panel), 3);
    RECT part;
    if (IntersectRect(&part, &area, &dirty)) FillArea(panel.canvas, part, ColoursOf(panel).select);
}

void PaintPanel(Panel& panel, const RECT& dirty) {
    const Colours& colours = ColoursOf(panel);
    FillArea(panel.canvas, dirty, colours.paper);
    PaintSelection(panel, dirty);
    PaintStaff(panel, dirty);
    for (int image = 0; image < kStripPictures; ++image) {
        if (Overlap(ColumnArea(panel, image), dirty)) PaintImage(panel, image, dirty);
        if (FocusShown(panel, image)) DrawFocusMark(panel, ColumnArea(panel, image), colours.select);
    }
    PaintCursor(panel, dirty);
    RECT client;
    GetClientRect(panel.window, &client);
    DrawFrame(panel.canvas, client, 1, colours.rule);
}

bool Message(Panel& panel, UINT message, WPARAM, LPARAM, LRESULT&) {
    if (message != WM_RBUTTONDOWN && message != WM_RBUTTONDBLCLK) return false;
    PopUpEditMenu();
    ShowDifferences(*panel.main);
    return true;
}

} // namespace

const PanelKind kStaffPanel = {
    .class_name = L"TonexStaff",
    .title = L"Staff",
    .item_role = ROLE_SYSTEM_GRAPHIC,
    .tooltips = true,
    .count = Count,
    .item_area = ColumnArea,
    .item_name = ItemName,
    .item_chosen = ItemChosen,
    .press = Press,
    .paint = PaintPanel,
    .message = Message,
};

} // namespace tonex
