// The score grid: one row of cells with cursor, selection and scroll bar. Windows-only drawing and input;
// every event becomes a call of the note-entry procedures.
#include "platform/main_window.h"
#include "platform/windows/main_window.h"

#include "score/rows.h"
#include "view/drawing_commands.h"
#include "view/note_entry_commands.h"

#include <oleacc.h>
#include <windowsx.h>

#include <algorithm>

namespace tonex {

namespace {

constexpr UINT kMouseHWheel = 0x020E; ///< WM_MOUSEHWHEEL, newer than the oldest system served
constexpr UINT_PTR kDragTimer = 1;
constexpr UINT kDragPeriod =
    60; ///< milliseconds a column while a selection is dragged beyond the grid's edge

const ScoreGrid& Grid(const Panel& panel) {
    return panel.main->record.grdScore;
}

int Count(const Panel& panel) {
    return std::min(kGridColumnsShown, std::max(0, Grid(panel).Cols - Grid(panel).view.LeftCol));
}

RECT ItemArea(const Panel& panel, int item) {
    const ScoreGrid& grid = Grid(panel);
    const Scale& scale = ScaleOf(panel);
    const int left = grid.place.Left + item * RecordOf(panel).standard_col_width;
    RECT client;
    GetClientRect(panel.window, &client);
    return {ToPixelsX(scale, left) - ToPixelsX(scale, grid.place.Left), 0,
            ToPixelsX(scale, left + RecordOf(panel).standard_col_width) - ToPixelsX(scale, grid.place.Left),
            client.bottom};
}

std::wstring ItemName(const Panel& panel, int item) {
    return SlotName(panel, Grid(panel).view.LeftCol + item);
}

bool ItemChosen(const Panel& panel, int item) {
    return IsSelected(Grid(panel).view, Grid(panel).view.LeftCol + item);
}

void Press(Panel& panel, int item) {
    const int column = Grid(panel).view.LeftCol + item;
    grdScore_SelChange(panel.main->record, column, column);
}

/// The grid's keyboard is where its cursor is, the end of the selection that keys move.
int Cursor(const Panel& panel) {
    const GridView& view = Grid(panel).view;
    return SideOfCursor(view) == 0 ? view.ColSel - view.LeftCol : -1;
}

void TakeCursor(Panel& panel, int item) {
    Press(panel, item);
    FocusItem(panel, item);
}

// ---- events ----

void Select(Panel& panel, int column, int far_end) {
    grdScore_SelChange(panel.main->record, column, far_end);
    ShowDifferences(*panel.main);
}

void ScrollTo(Panel& panel, int left_col) {
    const int last = std::max(0, Grid(panel).Cols - kGridColumnsShown);
    grdScore_Scroll(panel.main->record, std::clamp(left_col, 0, last));
    ShowDifferences(*panel.main);
}

void Scroll(Panel& panel, int code) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    GetScrollInfo(panel.window, SB_HORZ, &info);
    const int left = Grid(panel).view.LeftCol;
    switch (code) {
    case SB_LINELEFT: ScrollTo(panel, left - 1); break;
    case SB_LINERIGHT: ScrollTo(panel, left + 1); break;
    case SB_PAGELEFT: ScrollTo(panel, left - kGridColumnsShown); break;
    case SB_PAGERIGHT: ScrollTo(panel, left + kGridColumnsShown); break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: ScrollTo(panel, info.nTrackPos); break;
    case SB_LEFT: ScrollTo(panel, 0); break;
    case SB_RIGHT: ScrollTo(panel, Grid(panel).Cols); break;
    default: break;
    }
}

/// Three columns a notch; what is less than a column waits for the next turn.
void Wheel(Panel& panel, int delta) {
    panel.wheel += delta * 3;
    const int columns = panel.wheel / WHEEL_DELTA;
    panel.wheel -= columns * WHEEL_DELTA;
    if (columns != 0) ScrollTo(panel, Grid(panel).view.LeftCol - columns);
}

/// The visible cell painted at a place, -1 or 30 beyond the grid's edges. At a fractional scale cells are not
/// all equally wide. The strip of paper behind the last cell belongs to it.
int CellAt(const Panel& panel, int x) {
    RECT client;
    GetClientRect(panel.window, &client);
    if (x < 0) return -1;
    if (x >= client.right) return kGridColumnsShown;
    int item = 0;
    while (item + 1 < kGridColumnsShown && x >= ItemArea(panel, item).right)
        ++item;
    return item;
}

/// The column under a point, also left and right of the grid while a selection is dragged there.
int ColumnAt(const Panel& panel, int x) {
    const int column = Grid(panel).view.LeftCol + CellAt(panel, x);
    return std::clamp(column, 0, std::max(0, Grid(panel).Cols - 1));
}

void ButtonDown(Panel& panel, LPARAM lparam) {
    SetFocus(panel.window);
    const int column = ColumnAt(panel, GET_X_LPARAM(lparam));
    SetCapture(panel.window);
    SetTimer(panel.window, kDragTimer, kDragPeriod, nullptr);
    const bool extend = GetKeyState(VK_SHIFT) < 0;
    Select(panel, extend ? Grid(panel).view.Col : column, column);
}

void Drag(Panel& panel, int x) {
    const int column = ColumnAt(panel, x);
    if (column != Grid(panel).view.ColSel) Select(panel, Grid(panel).view.Col, column);
}

/// Beyond the edges the selection goes on column by column while the button is held.
void DragTimer(Panel& panel) {
    POINT point;
    GetCursorPos(&point);
    ScreenToClient(panel.window, &point);
    RECT client;
    GetClientRect(panel.window, &client);
    if (point.x >= 0 && point.x < client.right) return;
    const int next = Grid(panel).view.ColSel + (point.x < 0 ? -1 : 1);
    if (next >= 0 && next < Grid(panel).Cols) Select(panel, Grid(panel).view.Col, next);
}

void ButtonUp(Panel& panel) {
    if (GetCapture() != panel.window) return;
    ReleaseCapture();
    grdScore_MouseUp(panel.main->record);
    ShowDifferences(*panel.main);
}

/// Whether a movement key leads on from the cursor, not to one of the score's ends.
bool LeadsOn(WPARAM key) {
    return key == VK_LEFT || key == VK_RIGHT || key == VK_PRIOR || key == VK_NEXT;
}

/// Where a movement key leads from a column; -kSlots for other keys.
int Destination(const ScoreGrid& grid, WPARAM key) {
    switch (key) {
    case VK_LEFT: return grid.view.ColSel - 1;
    case VK_RIGHT: return grid.view.ColSel + 1;
    case VK_PRIOR: return grid.view.ColSel - kGridColumnsShown;
    case VK_NEXT: return grid.view.ColSel + kGridColumnsShown;
    case VK_HOME: return 0;
    case VK_END: return grid.Cols - 1;
    default: return -kSlots;
    }
}

bool KeyDown(Panel& panel, WPARAM key) {
    const int to = Destination(Grid(panel), key);
    if (to == -kSlots) return key == VK_SPACE || key == VK_RETURN;
    if (LeadsOn(key) && ShowHiddenCursor(panel.main->record)) {
        ShowDifferences(*panel.main);
        return true;
    }
    const int column = std::clamp(to, 0, std::max(0, Grid(panel).Cols - 1));
    const bool extend = GetKeyState(VK_SHIFT) < 0;
    Select(panel, extend ? Grid(panel).view.Col : column, column);
    return true;
}

void Character(Panel& panel, wchar_t character) {
    grdScore_KeyPress(panel.main->record, character);
    ShowDifferences(*panel.main);
}

bool Message(Panel& panel, UINT message, WPARAM wparam, LPARAM lparam, LRESULT&) {
    switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: ButtonDown(panel, lparam); return true;
    case WM_MOUSEMOVE:
        if (GetCapture() != panel.window) return false;
        Drag(panel, GET_X_LPARAM(lparam));
        return true;
    case WM_LBUTTONUP: ButtonUp(panel); return true;
    case WM_CAPTURECHANGED: KillTimer(panel.window, kDragTimer); return true;
    case WM_TIMER: DragTimer(panel); return true;
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK: // the second of two quick presses
        PopUpEditMenu();
        ShowDifferences(*panel.main);
        return true;
    case WM_HSCROLL: Scroll(panel, LOWORD(wparam)); return true;
    case WM_MOUSEWHEEL: Wheel(panel, GET_WHEEL_DELTA_WPARAM(wparam)); return true;
    case kMouseHWheel: Wheel(panel, -GET_WHEEL_DELTA_WPARAM(wparam)); return true;
    case WM_KEYDOWN: return KeyDown(panel, wparam);
    case WM_CHAR: Character(panel, static_cast<wchar_t>(wparam)); return true;
    default: return false;
    }
}

// ---- painting ----

/// The largest of the cells' fonts in which a name is not cut.
HFONT FontOfCell(const Panel& panel, std::wstring_view name) {
    const Fonts& fonts = panel.main->theme.fonts;
    const int room = CellTextWidth(ScaleOf(panel));
    const auto fits = [&](HFONT font) { return WidthOf(panel.canvas, name, font) <= room; };
    const auto found = std::find_if(fonts.cells.begin(), fonts.cells.end(), fits);
    return FontFor(name, found == fonts.cells.end() ? fonts.cells.back() : *found, fonts.cell_japanese);
}

void PaintCell(Panel& panel, int item) {
    const ScoreGrid& grid = Grid(panel);
    const Theme& theme = panel.main->theme;
    const int column = grid.view.LeftCol + item;
    const RECT area = ItemArea(panel, item);
    const bool chosen = IsSelected(grid.view, column);
    FillArea(panel.canvas, area, chosen ? theme.colours.select : theme.colours.paper);
    FillArea(panel.canvas, {area.right - 1, area.top, area.right, area.bottom}, theme.colours.rule);
    const CellText& text = At(grid.Text, column);
    DrawCentred(panel.canvas, {area.left, area.top, area.right - 1, area.bottom}, text.View(),
                FontOfCell(panel, text.View()), chosen ? theme.colours.select_text : theme.colours.ink);
    if (panel.focused && column == grid.view.ColSel) {
        RECT mark = {area.left, area.top, area.right - 1, area.bottom};
        InflateRect(&mark, -1, -1);
        DrawFocusMark(panel, mark, theme.colours.select_text);
    }
}

void PaintPanel(Panel& panel, const RECT& dirty) {
    const Colours& colours = ColoursOf(panel);
    FillArea(panel.canvas, dirty, Mix(colours.paper, colours.face, colours.high_contrast ? 0 : 128));
    for (int item = 0; item < Count(panel); ++item)
        if (Overlap(ItemArea(panel, item), dirty)) PaintCell(panel, item);
    RECT client;
    GetClientRect(panel.window, &client);
    // No line at the top: the staff's stands there.
    DrawFrame(panel.canvas, {client.left, client.top - 1, client.right, client.bottom}, 1, colours.rule);
}

} // namespace

const PanelKind kGridPanel = {
    .class_name = L"TonexGrid",
    .title = L"Score",
    .item_role = ROLE_SYSTEM_CELL,
    .style = WS_HSCROLL,
    .count = Count,
    .item_area = ItemArea,
    .item_name = ItemName,
    .item_chosen = ItemChosen,
    .press = Press,
    .cursor = Cursor,
    .take_cursor = TakeCursor,
    .paint = PaintPanel,
    .message = Message, // it moves its cursor itself
};

} // namespace tonex
