// Shows in the controls of the main window what differs from the record; nothing else is drawn again.
// Windows-only by nature.
#include "platform/windows/main_window_showing.h"

#include "platform/windows/dialogs.h"
#include "platform/windows/main_window.h"
#include "score/rows.h"
#include "view/drawing_commands.h"

#include <commctrl.h>

#include <algorithm>

namespace tonex {

namespace {

// ---- places ----

Rect Union(const Rect& a, const Rect& b) {
    const int left = std::min(a.Left, b.Left), top = std::min(a.Top, b.Top);
    const int right = std::max(a.Left + a.Width, b.Left + b.Width);
    const int bottom = std::max(a.Top + a.Height, b.Top + b.Height);
    return {left, top, right - left, bottom - top};
}

Rect PanelPlace(const sndmain& w, PanelId id) {
    switch (id) {
    case PanelId::Staff: return w.picStaff;
    case PanelId::Grid: return w.grdScore.place;
    case PanelId::Lengths: {
        Rect place = w.imgNow.place;
        for (const LengthButton& button : w.cbtNote)
            place = Union(place, button.place);
        return place;
    }
    case PanelId::Piano: {
        Rect place = w.kenWhite[0].place;
        for (const PianoKeyControl& key : w.kenWhite)
            place = Union(place, key.place);
        for (const KeyLabel& label : w.lblBNote)
            place = Union(place, label.place);
        return place;
    }
    default: return {};
    }
}

/// Whether a value differs from the one shown, which becomes the same.
template <class Value> bool Differs(Value& shown, const Value& now) {
    if (now == shown) return false;
    shown = now;
    return true;
}

void MoveToPlace(const MainWindow& main, HWND control, const Rect& place, int extra_height = 0) {
    const RECT area = ToPixels(main.theme.scale, place);
    // Its old picture is not taken along: a neighbour that moved before may stand in it by now.
    SetWindowPos(control, nullptr, static_cast<int>(area.left), static_cast<int>(area.top),
                 static_cast<int>(area.right - area.left),
                 static_cast<int>(area.bottom - area.top) + extra_height,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

void PlacePanel(MainWindow& main, PanelId id) {
    const Rect place = PanelPlace(main.record, id);
    Panel& panel = main.panel(id);
    if (!Differs(At(main.shown.places, id), place)) return;
    panel.origin_x = place.Left;
    panel.origin_y = place.Top;
    MoveToPlace(main, panel.window, place);
    InvalidateRect(panel.window, nullptr, FALSE);
}

bool PlaceControl(MainWindow& main, PlacedControl which, HWND control, const Rect& place) {
    // A combo box is given the height that it has with its list open.
    const int list_height = which == PlacedControl::Tempo ? Scaled(main.theme.scale, 320) : 0;
    if (!Differs(At(main.shown.places, which), place)) return false;
    MoveToPlace(main, control, place, list_height);
    return true;
}

void PlaceTempoLine(MainWindow& main) {
    const sndmain& w = main.record;
    bool moved = PlaceControl(main, PlacedControl::TempoCaption, main.tempo_caption, w.Label2.place);
    moved |= PlaceControl(main, PlacedControl::Tempo, main.tempo, w.TempoCombo.place);
    moved |= PlaceControl(main, PlacedControl::TempoLabel, main.tempo_label, w.lblTempo.place);
    if (moved) AlignTempoLine(main);
}

void ShowPlaces(MainWindow& main) {
    for (int i = 0; i < kPanels; ++i)
        PlacePanel(main, static_cast<PanelId>(i));
    PlaceTempoLine(main);
    if (PlaceControl(main, PlacedControl::LengthCaption, main.length_caption, main.record.Label3.place))
        CentreInPlace(main, main.length_caption);
}

// ---- texts and the tempo box ----

void ShowText(HWND control, const std::wstring& text, std::wstring& shown) {
    if (Differs(shown, text)) SetWindowTextW(control, text.c_str());
}

void ShowTempo(MainWindow& main) {
    Shown& shown = main.shown;
    ShowText(main.tempo_caption, main.record.Label2.Caption, shown.tempo_caption);
    ShowText(main.length_caption, main.record.Label3.Caption, shown.length_caption);
    ShowText(main.tempo_label, main.record.lblTempo.Caption, shown.tempo_label);
    ShowTempoBox(main);
}

// ---- panels ----

void ShowStrip(MainWindow& main) {
    const sndmain& w = main.record;
    Shown& shown = main.shown;
    Panel& panel = main.panel(PanelId::Staff);
    const GridView& view = w.grdScore.view;
    const bool view_moved = w.score.first_shown != shown.first_shown || view.Col != shown.view.Col ||
                            view.ColSel != shown.view.ColSel;
    HRGN stale = nullptr;
    for (int i = 0; i < kStripPictures; ++i) {
        const int old_slot = shown.first_shown + i, new_slot = w.score.first_shown + i;
        const bool picture = Differs(At(shown.imgNote, i), At(w.imgNote, i));
        const bool cursor = (old_slot == shown.view.Col) != (new_slot == view.Col);
        const bool selection = view_moved && IsSelected(shown.view, old_slot) != IsSelected(view, new_slot);
        if (picture || cursor || selection) AddArea(stale, panel.kind->item_area(panel, i));
    }
    InvalidateAreas(panel, stale);
    if (w.score.first_shown != shown.first_shown && panel.tooltip)
        SendMessageW(panel.tooltip, TTM_POP, 0, 0); // it names what was under the mouse before
    if (SideOfCursor(view) != SideOfCursor(shown.view)) InvalidateRect(panel.window, nullptr, FALSE);
}

void ShowScrollBar(MainWindow& main) {
    const ScoreGrid& grid = main.record.grdScore;
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
    info.nMax = std::max(grid.Cols, grid.view.LeftCol + kGridColumnsShown) - 1;
    info.nPage = kGridColumnsShown;
    info.nPos = grid.view.LeftCol;
    SetScrollInfo(main.panel(PanelId::Grid).window, SB_HORZ, &info, TRUE);
}

void ShowGrid(MainWindow& main) {
    const ScoreGrid& grid = main.record.grdScore;
    Shown& shown = main.shown;
    Panel& panel = main.panel(PanelId::Grid);
    const bool moved = grid.view.LeftCol != shown.view.LeftCol;
    if (moved || grid.Cols != shown.Cols) ShowScrollBar(main);
    HRGN stale = nullptr;
    for (int i = 0; i < kGridColumnsShown; ++i) {
        const int column = grid.view.LeftCol + i;
        const bool is = column < grid.Cols, was = column < shown.Cols;
        const int slot = std::min(column, kSlots - 1);
        const bool text = Differs(At(shown.cells, slot), At(grid.Text, slot));
        const bool changed = moved || is != was || text ||
                             IsSelected(grid.view, column) != IsSelected(shown.view, column) ||
                             (column == grid.view.ColSel) != (column == shown.view.ColSel);
        if (changed) AddArea(stale, panel.kind->item_area(panel, i));
    }
    InvalidateAreas(panel, stale);
}

/// The view's own numbers, after both strip and grid were compared with them.
void RememberView(MainWindow& main) {
    const ScoreGrid& grid = main.record.grdScore;
    main.shown.Cols = grid.Cols;
    main.shown.view = grid.view;
    main.shown.first_shown = main.record.score.first_shown;
}

void ShowLengths(MainWindow& main) {
    const sndmain& w = main.record;
    Shown& shown = main.shown;
    Panel& panel = main.panel(PanelId::Lengths);
    HRGN stale = nullptr;
    for (int i = 0; i < kLengthButtons; ++i) {
        if (Differs(At(shown.buttons, i), At(w.cbtNote, i).Picture))
            AddArea(stale, panel.kind->item_area(panel, i));
    }
    if (Differs(shown.current_picture, w.imgNow.Picture)) AddArea(stale, AreaInPanel(panel, w.imgNow.place));
    InvalidateAreas(panel, stale);
}

void ShowPiano(MainWindow& main) {
    const sndmain& w = main.record;
    Shown& shown = main.shown;
    Panel& panel = main.panel(PanelId::Piano);
    bool captions = false;
    HRGN stale = nullptr;
    for (int item = 0; item < kPianoKeys; ++item) {
        const PianoKey key = KeyAbove(item);
        captions |= Differs(At(shown.key_captions, item), LabelOf(w, key).Caption);
        if (Differs(At(shown.key_colours, item), ControlOf(w, key).BackColor))
            AddArea(stale, panel.kind->item_area(panel, item));
    }
    InvalidateAreas(panel, stale);
    if (captions) InvalidateRect(panel.window, nullptr, FALSE);
}

// ---- menu, toolbar, the window itself ----

void ShowMenu(MainWindow& main) {
    for (int i = 0; i < kMenuItems; ++i) {
        const MenuState& now = At(main.record.menu, i);
        if (!Differs(At(main.shown.menu, i), now)) continue;
        const UINT id = kFirstMenuId + static_cast<UINT>(i);
        EnableMenuItem(main.menu, id, MF_BYCOMMAND | (now.Enabled ? MF_ENABLED : MF_GRAYED));
        CheckMenuItem(main.menu, id, MF_BYCOMMAND | (now.Checked ? MF_CHECKED : MF_UNCHECKED));
    }
}

void ShowToolbar(MainWindow& main) {
    for (int i = 0; i < kToolButtons; ++i) {
        const bool now = At(main.record.toolbar_enabled, i);
        if (!Differs(At(main.shown.toolbar, i), now)) continue;
        SendMessageW(main.toolbar, TB_ENABLEBUTTON, kFirstToolId + static_cast<UINT>(i), MAKELPARAM(now, 0));
    }
}

void ShowEnabled(MainWindow& main) {
    if (Differs(main.shown.enabled, main.record.Enabled)) EnableWindow(main.window, main.record.Enabled);
}

/// The bar goes on with every note, but the system takes milliseconds to draw it: for a short melody longer
/// than the whole conversion. Steps that nobody could tell apart are left out.
constexpr DWORD kBarPause = 20; // milliseconds

bool IsBarStepTooSoon(const MainWindow& main) {
    const ConvertWindow& convert = main.record.FrmWavConvert;
    if (!convert.Loaded || !main.shown.convert.Loaded) return false;
    return GetTickCount() - main.shown.convert_at < kBarPause;
}

void ShowConvert(MainWindow& main) {
    if (IsBarStepTooSoon(main) || !Differs(main.shown.convert, main.record.FrmWavConvert)) return;
    ShowConvertWindow(main);
    main.shown.convert_at = GetTickCount();
}

} // namespace

void ShowDifferences(MainWindow& main) {
    if (main.showing || !main.window || !IsWindow(main.window)) return;
    main.showing = true;
    ShowText(main.window, main.record.Caption, main.shown.Caption);
    ShowPlaces(main);
    ShowStrip(main);
    ShowGrid(main);
    RememberView(main);
    ShowLengths(main);
    ShowPiano(main);
    for (Panel& panel : main.panels)
        TellCursor(panel);
    ShowTempo(main);
    ShowMenu(main);
    ShowToolbar(main);
    ShowEnabled(main);
    ShowConvert(main);
    main.showing = false;
}

} // namespace tonex
