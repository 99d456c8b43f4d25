// The note-length buttons and the picture of the current length. Windows-only drawing.
#include "platform/windows/main_window.h"

#include "pictures/glyphs.h"
#include "score/rows.h"
#include "view/note_entry_commands.h"
#include "view/note_names.h"

#include <oleacc.h>

namespace tonex {

namespace {

int Count(const Panel&) {
    return kLengthButtons;
}

RECT ItemArea(const Panel& panel, int item) {
    return AreaInPanel(panel, At(RecordOf(panel).cbtNote, item).place);
}

/// The entry code 1 to 40 of a button.
std::uint16_t CodeOf(int item) {
    return static_cast<std::uint16_t>(item + 1);
}

std::wstring ItemName(const Panel&, int item) {
    return LengthNameOf(CodeOf(item));
}

bool ItemChosen(const Panel& panel, int item) {
    return At(RecordOf(panel).cbtNote, item).Picture > kLengthButtons;
}

void Press(Panel& panel, int item) {
    cbtNote_Click(panel.main->record, LengthButtonIndex(item));
}

/// Arrows also move between the rows of notes and rests.
int Neighbour(const Panel& panel, int item, WPARAM key) {
    if (key == VK_UP) return item - kLengthButtons / 2;
    if (key == VK_DOWN) return item + kLengthButtons / 2;
    return NeighbourInRow(panel, item, key);
}

// ---- painting ----

void PaintPicture(Panel& panel, const RECT& area, int picture, COLORREF colour, const RECT& dirty) {
    const int width = static_cast<int>(area.right - area.left),
              height = static_cast<int>(area.bottom - area.top);
    const CoverageMask mask = ButtonPictureMask(picture, width, height, 1 / ScaleOf(panel).twips_per_pixel_y);
    BlendMask(panel.canvas, mask, static_cast<int>(area.left), static_cast<int>(area.top), colour, dirty);
}

void PaintButton(Panel& panel, int item, const RECT& dirty) {
    const Colours& colours = ColoursOf(panel);
    const Scale& scale = ScaleOf(panel);
    RECT area = ItemArea(panel, item);
    const bool chosen = ItemChosen(panel, item);
    COLORREF face = colours.button;
    if (chosen)
        face = colours.select;
    else if (panel.pressed_item == item)
        face = colours.button_pressed;
    else if (panel.hot_item == item)
        face = colours.button_hot;
    const int radius = Scaled(scale, 3), edge = Hairline(scale);
    FillRound(panel.canvas, area, radius, chosen ? colours.select : colours.button_edge);
    InflateRect(&area, -edge, -edge);
    FillRound(panel.canvas, area, radius - edge > 0 ? radius - edge : 1, face);
    if (FocusShown(panel, item)) DrawFocusMark(panel, area, chosen ? colours.select_text : colours.select);
    const COLORREF ink =
        chosen ? colours.select_text : (colours.high_contrast ? colours.face_text : colours.ink);
    PaintPicture(panel, area, item + 1, ink, dirty);
}

/// The length that the next key gets: a picture in a thin line on the paper of the score. Nothing presses it
/// and the keyboard never reaches it, so it looks neither like a button nor like the mark of the focus.
void PaintCurrent(Panel& panel, const RECT& dirty) {
    const LengthPicture& now = RecordOf(panel).imgNow;
    const Colours& colours = ColoursOf(panel);
    const Scale& scale = ScaleOf(panel);
    RECT area = AreaInPanel(panel, now.place);
    const int edge = Hairline(scale);
    FillArea(panel.canvas, area, colours.button_edge);
    InflateRect(&area, -edge, -edge);
    FillArea(panel.canvas, area, colours.paper);
    if (now.Picture > 0) PaintPicture(panel, area, now.Picture, colours.ink, dirty);
}

void PaintPanel(Panel& panel, const RECT& dirty) {
    FillArea(panel.canvas, dirty, ColoursOf(panel).face);
    for (int item = 0; item < kLengthButtons; ++item)
        if (Overlap(ItemArea(panel, item), dirty)) PaintButton(panel, item, dirty);
    if (Overlap(AreaInPanel(panel, RecordOf(panel).imgNow.place), dirty)) PaintCurrent(panel, dirty);
}

} // namespace

const PanelKind kLengthPanel = {
    .class_name = L"TonexLengths",
    .title = L"Note lengths",
    .item_role = ROLE_SYSTEM_PUSHBUTTON,
    .tooltips = true,
    .count = Count,
    .item_area = ItemArea,
    .item_name = ItemName,
    .item_chosen = ItemChosen,
    .press = Press,
    .neighbour = Neighbour,
    .paint = PaintPanel,
};

} // namespace tonex
