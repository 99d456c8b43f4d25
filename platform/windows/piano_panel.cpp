// The piano: 29 white and 20 black keys with their captions. Windows-only drawing. Items count half tones up
// from c4, as the keys lie from left to right.
#include "platform/windows/main_window.h"

#include "view/note_entry_commands.h"

#include <oleacc.h>

namespace tonex {

namespace {

int Count(const Panel&) {
    return kPianoKeys;
}

RECT ItemArea(const Panel& panel, int item) {
    return AreaInPanel(panel, ControlOf(RecordOf(panel), KeyAbove(item)).place);
}

std::wstring ItemName(const Panel& panel, int item) {
    return std::wstring(LabelOf(RecordOf(panel), KeyAbove(item)).Caption.View());
}

bool Lit(const Panel& panel, PianoKey key) {
    const std::uint32_t rest = key.kind == KeyKind::White ? kWhiteKeyColour : kBlackKeyColour;
    return ControlOf(RecordOf(panel), key).BackColor != rest;
}

bool ItemChosen(const Panel& panel, int item) {
    return Lit(panel, KeyAbove(item));
}

/// Black keys lie over the white ones.
int ItemAt(const Panel& panel, POINT point) {
    int found = -1;
    for (int item = 0; item < kPianoKeys; ++item) {
        const RECT area = ItemArea(panel, item);
        if (!PtInRect(&area, point)) continue;
        if (KeyAbove(item).kind == KeyKind::Black) return item;
        found = item;
    }
    return found;
}

void Press(Panel& panel, int item) {
    const PianoKey key = KeyAbove(item);
    if (key.kind == KeyKind::White)
        kenWhite_Click(panel.main->record, key.index);
    else
        kenBlack_Click(panel.main->record, key.index);
}

int NextWhite(int item, int step) {
    for (item += step; item >= 0 && item < kPianoKeys; item += step)
        if (KeyAbove(item).kind == KeyKind::White) return item;
    return -1;
}

/// Left and right go by semitones, up to the black key on the right, down to the white key on the left, Page
/// Up and Page Down by octaves.
int Neighbour(const Panel& panel, int item, WPARAM key) {
    const bool black = KeyAbove(item).kind == KeyKind::Black;
    switch (key) {
    case VK_UP:
        return !black && item + 1 < kPianoKeys && KeyAbove(item + 1).kind == KeyKind::Black ? item + 1 : -1;
    case VK_DOWN: return black ? NextWhite(item, -1) : -1;
    case VK_PRIOR: return item + 12;
    case VK_NEXT: return item - 12;
    default: return NeighbourInRow(panel, item, key);
    }
}

// ---- painting ----

COLORREF ToColour(std::uint32_t rgb) {
    return RGB(static_cast<BYTE>(rgb >> 16), static_cast<BYTE>(rgb >> 8), static_cast<BYTE>(rgb));
}

void PaintCaption(Panel& panel, const KeyLabel& label, COLORREF colour) {
    const Fonts& fonts = panel.main->theme.fonts;
    const std::wstring_view text = label.Caption.View();
    const HFONT letters = text.ends_with(L'#') ? fonts.sharp_key : fonts.key;
    DrawCentred(panel.canvas, AreaInPanel(panel, label.place), text,
                FontFor(text, letters, fonts.key_japanese), colour);
}

COLORREF LitColour(const Panel& panel, PianoKey key) {
    const Colours& colours = ColoursOf(panel);
    return colours.high_contrast ? colours.select : ToColour(ControlOf(RecordOf(panel), key).BackColor);
}

void PaintWhite(Panel& panel, int item, const RECT& dirty) {
    const PianoKey key = KeyAbove(item);
    const Scale& scale = ScaleOf(panel);
    const RECT area = ItemArea(panel, item);
    if (!Overlap(area, dirty)) return;
    const COLORREF edge = RGB(120, 124, 130);
    COLORREF face = Lit(panel, key) ? LitColour(panel, key) : RGB(255, 255, 255);
    if (panel.pressed_item == item)
        face = Mix(face, RGB(120, 130, 145), 70);
    else if (panel.hot_item == item && !Lit(panel, key))
        face = RGB(240, 244, 249);
    FillRound(panel.canvas, area, Scaled(scale, 3), edge, true);
    const int line = Hairline(scale);
    // Neighbours share one line between them; the first key has its own at the left.
    const RECT inner = {area.left + (item == 0 ? line : 0), area.top + line, area.right - line,
                        area.bottom - line};
    FillRound(panel.canvas, inner, Scaled(scale, 2), face, true);
    if (!Lit(panel, key) && panel.pressed_item != item)
        TintArea(panel.canvas,
                 {inner.left + 1, inner.bottom - Scaled(scale, 4), inner.right - 1, inner.bottom - line},
                 edge, 36);
    if (FocusShown(panel, item)) DrawFocusMark(panel, inner, ColoursOf(panel).select);
    const COLORREF text = Lit(panel, key) ? RGB(255, 255, 255) : RGB(32, 36, 42);
    PaintCaption(panel, LabelOf(RecordOf(panel), key), text);
}

void PaintBlack(Panel& panel, int item, const RECT& dirty) {
    const PianoKey key = KeyAbove(item);
    const Scale& scale = ScaleOf(panel);
    const RECT area = ItemArea(panel, item);
    if (!Overlap(area, dirty)) return;
    const COLORREF face = Lit(panel, key) ? LitColour(panel, key) : RGB(38, 40, 44);
    FillRound(panel.canvas, area, Scaled(scale, 2), RGB(16, 17, 19), true);
    // A lighter top face with a darker rim reads as a raised key.
    const int rim = Scaled(scale, 2);
    const RECT top = {area.left + rim, area.top, area.right - rim,
                      area.bottom - Scaled(scale, panel.pressed_item == item ? 3 : 7)};
    COLORREF shade = Lit(panel, key) ? face : Mix(face, RGB(255, 255, 255), panel.hot_item == item ? 70 : 38);
    if (panel.pressed_item == item) shade = Mix(shade, RGB(0, 0, 0), 60);
    if (Lit(panel, key)) FillRound(panel.canvas, area, Scaled(scale, 2), Mix(face, RGB(0, 0, 0), 60), true);
    FillRound(panel.canvas, top, Scaled(scale, 2), shade, true);
    if (FocusShown(panel, item)) DrawFocusMark(panel, area, ColoursOf(panel).select);
}

void PaintPanel(Panel& panel, const RECT& dirty) {
    const Colours& colours = ColoursOf(panel);
    FillArea(panel.canvas, dirty, colours.face);
    for (int item = 0; item < kPianoKeys; ++item)
        if (KeyAbove(item).kind == KeyKind::White) PaintWhite(panel, item, dirty);
    for (int item = 0; item < kPianoKeys; ++item)
        if (KeyAbove(item).kind == KeyKind::Black) PaintBlack(panel, item, dirty);
    for (const KeyLabel& label : RecordOf(panel).lblBNote)
        if (Overlap(AreaInPanel(panel, label.place), dirty)) PaintCaption(panel, label, colours.face_text);
}

} // namespace

const PanelKind kPianoPanel = {
    .class_name = L"TonexPiano",
    .title = L"Piano",
    .item_role = ROLE_SYSTEM_PUSHBUTTON,
    .tooltips = true,
    .count = Count,
    .item_area = ItemArea,
    .item_name = ItemName,
    .item_chosen = ItemChosen,
    .item_at = ItemAt,
    .press = Press,
    .neighbour = Neighbour,
    .paint = PaintPanel,
};

} // namespace tonex
