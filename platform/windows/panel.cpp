// What all panels share: painting through a canvas, mouse, keyboard, tooltips. Windows-only by nature.
#include "platform/windows/panel.h"

#include "platform/windows/main_window.h"
#include "score/rows.h"
#include "view/note_names.h"

#include <commctrl.h>
#include <imm.h>
#include <windowsx.h>

#include <algorithm>

namespace tonex {

namespace {

// ---- painting ----

void Paint(Panel& panel) {
    PAINTSTRUCT paint;
    HDC screen = BeginPaint(panel.window, &paint);
    RECT client;
    GetClientRect(panel.window, &client);
    const bool fresh = ResizeCanvas(panel.canvas, client.right, client.bottom);
    const RECT dirty = fresh ? client : paint.rcPaint;
    if (panel.canvas.bits) {
        panel.kind->paint(panel, dirty);
        BitBlt(screen, dirty.left, dirty.top, dirty.right - dirty.left, dirty.bottom - dirty.top,
               panel.canvas.dc, dirty.left, dirty.top, SRCCOPY);
    }
    EndPaint(panel.window, &paint);
}

// ---- tooltips ----

void ShowTooltipFor(Panel& panel, int item) {
    if (!panel.kind->tooltips) return;
    if (!panel.tooltip) {
        panel.tooltip = CreateWindowExW(
            WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
            CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, panel.window, nullptr, nullptr, nullptr);
        SendMessageW(panel.tooltip, WM_SETFONT, reinterpret_cast<WPARAM>(panel.main->theme.fonts.tooltip), 0);
    }
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V1_SIZE; // the size that XP's and Wine's controls both accept
    tool.hwnd = panel.window;
    tool.uId = 1;
    SendMessageW(panel.tooltip, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    if (item < 0) return;
    tool.rect = panel.kind->item_area(panel, item);
    tool.lpszText =
        LPSTR_TEXTCALLBACKW; // asked for when it is shown: scrolling changes what is under the mouse
    SendMessageW(panel.tooltip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void AnswerTooltip(const Panel& panel, NMHDR& header) {
    if (header.code != TTN_GETDISPINFOW || panel.hot_item >= panel.kind->count(panel)) return;
    auto& info = reinterpret_cast<NMTTDISPINFOW&>(header);
    lstrcpynW(info.szText, panel.kind->item_name(panel, panel.hot_item).c_str(),
              static_cast<int>(std::size(info.szText)));
    info.lpszText = info.szText;
}

void RelayToTooltip(Panel& panel, UINT message, WPARAM wparam, LPARAM lparam) {
    if (!panel.tooltip) return;
    MSG relayed{};
    relayed.hwnd = panel.window;
    relayed.message = message;
    relayed.wParam = wparam;
    relayed.lParam = lparam;
    SendMessageW(panel.tooltip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&relayed));
}

// ---- mouse ----

void SetHot(Panel& panel, int item) {
    if (panel.hot_item == item) return;
    InvalidateItem(panel, panel.hot_item);
    panel.hot_item = item;
    InvalidateItem(panel, item);
    ShowTooltipFor(panel, item);
}

void MouseMove(Panel& panel, LPARAM lparam) {
    if (panel.hot_item < 0) {
        TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, panel.window, 0};
        TrackMouseEvent(&track);
    }
    SetHot(panel, panel.kind->item_at(panel, {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}));
}

/// A click by mouse leaves the keyboard on the score grid, so that typing and the edit keys go on there.
void MouseDown(Panel& panel, LPARAM lparam) {
    SetFocus(panel.main->panel(PanelId::Grid).window);
    panel.pressed_item = panel.kind->item_at(panel, {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)});
    if (panel.pressed_item < 0) return;
    SetCapture(panel.window);
    InvalidateItem(panel, panel.pressed_item);
}

void MouseUp(Panel& panel, LPARAM lparam) {
    const int pressed = panel.pressed_item;
    if (pressed < 0) return;
    ReleaseCapture(); // forgets the pressed item
    if (panel.kind->item_at(panel, {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)}) != pressed) return;
    panel.kind->press(panel, pressed);
    ShowDifferences(*panel.main);
}

void CaptureLost(Panel& panel) {
    InvalidateItem(panel, panel.pressed_item);
    panel.pressed_item = -1;
}

// ---- keyboard ----

void KeyDown(Panel& panel, WPARAM key) {
    const int count = panel.kind->count(panel);
    if (count == 0) return;
    panel.keyboard_used = true;
    const int item = panel.kind->cursor(panel);
    if (key == VK_RETURN || key == VK_SPACE) {
        panel.kind->press(panel, item);
        ShowDifferences(*panel.main);
        return;
    }
    const int next = panel.kind->neighbour(panel, item, key);
    if (next >= 0 && next < count) FocusItem(panel, next);
}

void GotFocus(Panel& panel, bool focused) {
    panel.focused = focused;
    if (!focused) panel.keyboard_used = false;
    panel.told = {};
    InvalidateItem(panel, panel.kind->cursor(panel));
    TellCursor(panel);
}

/// Keys are keys on a panel: a Japanese input method that is on would keep "+" and "-" for a text to be
/// composed.
void TurnInputMethodOff(HWND window) {
    using Associate = HIMC(WINAPI*)(HWND, HIMC);
    static const auto associate =
        LibraryFunction<Associate>(SystemLibrary(L"imm32.dll"), "ImmAssociateContext");
    if (associate) associate(window, nullptr);
}

LRESULT CALLBACK PanelProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_NCCREATE) {
        auto* created = static_cast<Panel*>(reinterpret_cast<CREATESTRUCTW*>(lparam)->lpCreateParams);
        created->window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
        return DefWindowProcW(window, message, wparam, lparam);
    }
    auto* panel = reinterpret_cast<Panel*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!panel) return DefWindowProcW(window, message, wparam, lparam);
    LRESULT result = 0;
    if (panel->kind->message && panel->kind->message(*panel, message, wparam, lparam, result)) return result;
    if (message == WM_MOUSEMOVE) MouseMove(*panel, lparam); // tells the tooltip which item it hears of next
    if (message >= WM_MOUSEFIRST && message <= WM_MBUTTONDBLCLK)
        RelayToTooltip(*panel, message, wparam, lparam);
    switch (message) {
    case WM_PAINT: Paint(*panel); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_MOUSEMOVE: return 0;
    case WM_MOUSELEAVE: SetHot(*panel, -1); return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: MouseDown(*panel, lparam); return 0;
    case WM_LBUTTONUP: MouseUp(*panel, lparam); return 0;
    case WM_CAPTURECHANGED: CaptureLost(*panel); return 0;
    case WM_KEYDOWN: KeyDown(*panel, wparam); return 0;
    case WM_SETFOCUS: GotFocus(*panel, true); return 0;
    case WM_KILLFOCUS: GotFocus(*panel, false); return 0;
    case WM_NOTIFY: AnswerTooltip(*panel, *reinterpret_cast<NMHDR*>(lparam)); return 0;
    case WM_GETOBJECT: return AnswerGetObject(*panel, wparam, lparam);
    case WM_DESTROY: FreeCanvas(panel->canvas); return 0;
    default: return DefWindowProcW(window, message, wparam, lparam);
    }
}

} // namespace

void RegisterPanelClass(const PanelKind& kind, HINSTANCE instance) {
    WNDCLASSEXW window_class{};
    window_class.cbSize = sizeof window_class;
    window_class.style = CS_DBLCLKS;
    window_class.lpfnWndProc = PanelProc;
    window_class.hInstance = instance;
    window_class.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    window_class.lpszClassName = kind.class_name;
    RegisterClassExW(&window_class);
}

bool CreatePanel(Panel& panel, const PanelKind& kind, MainWindow& main, HINSTANCE instance) {
    panel.kind = &kind;
    panel.main = &main;
    HWND made = CreateWindowExW(0, kind.class_name, kind.title,
                                WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS | kind.style, 0, 0, 0, 0,
                                main.window, nullptr, instance, &panel);
    if (made) TurnInputMethodOff(made);
    return made != nullptr;
}

const sndmain& RecordOf(const Panel& panel) {
    return panel.main->record;
}
const Scale& ScaleOf(const Panel& panel) {
    return panel.main->theme.scale;
}
const Colours& ColoursOf(const Panel& panel) {
    return panel.main->theme.colours;
}

std::wstring SlotName(const Panel& panel, int slot) {
    const sndmain& w = RecordOf(panel);
    if (slot >= kSlots) return {};
    const Entry& entry = At(w.score.sound, slot);
    return EntryNameOf(entry.code, entry.pitch, w.doremi);
}

int FirstItemAt(const Panel& panel, POINT point, RECT (*area)(const Panel&, int item)) {
    for (int item = 0; item < panel.kind->count(panel); ++item) {
        const RECT place = area(panel, item);
        if (PtInRect(&place, point)) return item;
    }
    return -1;
}

int FirstItemAt(const Panel& panel, POINT point) {
    return FirstItemAt(panel, point, panel.kind->item_area);
}

int NeighbourInRow(const Panel& panel, int item, WPARAM key) {
    switch (key) {
    case VK_LEFT: return item - 1;
    case VK_RIGHT: return item + 1;
    case VK_HOME: return 0;
    case VK_END: return panel.kind->count(panel) - 1;
    default: return -1;
    }
}

int ItemLeftBehind(const Panel& panel) {
    return std::min(panel.focus_item, panel.kind->count(panel) - 1);
}

RECT AreaInPanel(const Panel& panel, const Rect& rect) {
    const Scale& scale = ScaleOf(panel);
    RECT area = ToPixels(scale, rect);
    OffsetRect(&area, -ToPixelsX(scale, panel.origin_x), -ToPixelsY(scale, panel.origin_y));
    return area;
}

void AddArea(HRGN& stale, const RECT& area) {
    const HRGN added = CreateRectRgnIndirect(&area);
    if (!stale) {
        stale = added;
        return;
    }
    CombineRgn(stale, stale, added, RGN_OR);
    DeleteObject(added);
}

void InvalidateAreas(Panel& panel, HRGN stale) {
    if (!stale) return;
    InvalidateRgn(panel.window, stale, FALSE);
    DeleteObject(stale);
}

void InvalidateItem(Panel& panel, int item) {
    if (item < 0 || item >= panel.kind->count(panel)) return;
    const RECT area = panel.kind->item_area(panel, item);
    InvalidateRect(panel.window, &area, FALSE);
}

void FocusItem(Panel& panel, int item) {
    panel.focus_item = item;
    panel.keyboard_used = true;
    InvalidateItem(panel, item);
    if (panel.focused)
        TellCursor(panel);
    else
        SetFocus(panel.window);
}

void TellCursor(Panel& panel) {
    if (!panel.focused) return;
    Panel::Told now{panel.kind->cursor(panel), {}};
    now.name = now.item < 0 ? panel.kind->title : panel.kind->item_name(panel, now.item);
    if (now == panel.told) return;
    InvalidateItem(panel, panel.told.item);
    InvalidateItem(panel, now.item);
    panel.told = now;
    NotifyWinEvent(EVENT_OBJECT_FOCUS, panel.window, OBJID_CLIENT,
                   now.item + 1); // no item = the panel itself, 0
}

bool FocusShown(const Panel& panel, int item) {
    return panel.focused && panel.keyboard_used && item == panel.kind->cursor(panel);
}

void DrawFocusMark(Panel& panel, const RECT& area, COLORREF colour) {
    DrawFrame(panel.canvas, area, Scaled(ScaleOf(panel), 2), colour);
}

} // namespace tonex
