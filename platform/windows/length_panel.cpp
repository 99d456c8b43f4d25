// The note-length buttons and the picture of the current length. Windows-only drawing.
#include "platform/windows/main_window.h"

#include "pictures/glyphs.h"
#include "view/note_entry_commands.h"
#include "view/note_names.h"

#include <oleacc.h>

namespace tonex {

namespace {

const sndmain& Record(const Panel& panel) {
    return panel.main->record;
}

int Count(const Panel&) {
    return kLengthButtons;
}

RECT ItemArea(const Panel& panel, int item) {
    return AreaInPanel(panel, Record(panel).cbtNote[static_cast<std::size_t>(item)].place);
}

/// The entry code 1 to 40 of a button.
std::uint16_t CodeOf(int item) {
    return static_cast<std::uint16_t>(item + 1);
}

std::wstring ItemName(const Panel&, int item) {
    return LengthNameOf(CodeOf(item));
}

bool ItemChosen(const Panel& panel, int item) {
    return Record(panel).cbtNote[static_cast<std::size_t>(item)].Picture > kLengthButtons;
}

int ItemAt(const Panel& panel, POINT point) {
    for (int item = 0; item < kLengthButtons; ++item) {
        const RECT area = ItemArea(panel, item);
        if (PtInRect(&area, point)) return item;
    }
    return -1;
}

void Press(Panel& panel, int item) {
    cbtNote_Click(panel.main->record, LengthButtonIndex(item));
}

/// Arrows move along a row and between the rows of notes and rests.
int Neighbour(const Panel&, int item, WPARAM key) {
    switch (key) {
    case VK_LEFT: return item - 1;
    case VK_RIGHT: return item + 1;
    case VK_UP: return item - 20;
    case VK_DOWN: return item + 20;
    case VK_HOME: return 0;
    case VK_END: return kLengthButtons - 1;
    default: return -1;
    }
}

// ---- painting ----

void PaintPicture(Panel& panel, const RECT& area, int picture, COLORREF colour, const RECT& dirty) {
    const int width = static_cast<int>(area.right - area.left),
              height = static_cast<int>(area.bottom - area.top);
    const CoverageMask mask =
        ButtonPictureMask(picture, width, height, 1 / panel.main->theme.scale.twips_per_pixel_y);
    RECT part;
    if (IntersectRect(&part, &area, &dirty))
        BlendMask(panel.canvas, mask, static_cast<int>(area.left), static_cast<int>(area.top), colour, part);
}

void PaintButton(Panel& panel, int item, const RECT& dirty) {
    const Colours& colours = panel.main->theme.colours;
    const Scale& scale = panel.main->theme.scale;
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

/// The length that the next key gets, in a frame of its own.
void PaintCurrent(Panel& panel, const RECT& dirty) {
    const NoteImage& now = Record(panel).imgNow;
    const Colours& colours = panel.main->theme.colours;
    const Scale& scale = panel.main->theme.scale;
    RECT area = AreaInPanel(panel, now.place);
    FillRound(panel.canvas, area, Scaled(scale, 3), colours.select);
    InflateRect(&area, -Scaled(scale, 2), -Scaled(scale, 2));
    FillRound(panel.canvas, area, Scaled(scale, 2), colours.paper);
    if (now.Picture > 0) PaintPicture(panel, area, now.Picture, colours.ink, dirty);
}

void PaintPanel(Panel& panel, const RECT& dirty) {
    FillArea(panel.canvas, dirty, panel.main->theme.colours.face);
    RECT part;
    for (int item = 0; item < kLengthButtons; ++item) {
        const RECT area = ItemArea(panel, item);
        if (IntersectRect(&part, &area, &dirty)) PaintButton(panel, item, dirty);
    }
    const RECT current = AreaInPanel(panel, Record(panel).imgNow.place);
    if (IntersectRect(&part, &current, &dirty)) PaintCurrent(panel, dirty);
}

} // namespace

const PanelKind kLengthPanel = {L"TonexLengths",
                                L"Note lengths",
                                ROLE_SYSTEM_PUSHBUTTON,
                                0,
                                true,
                                true,
                                Count,
                                ItemArea,
                                ItemName,
                                ItemChosen,
                                ItemAt,
                                Press,
                                Neighbour,
                                PaintPanel,
                                nullptr};

} // namespace tonex
