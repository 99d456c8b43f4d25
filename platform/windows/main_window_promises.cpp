// The promises of platform/main_window.h: placement, focus, menus and small windows, as commands ask for
// them. Windows-only by nature.
#include "platform/main_window.h"

#include "platform/events.h"
#include "platform/windows/dialogs.h"
#include "platform/windows/main_window.h"
#include "platform/windows/window_place.h"

#include <algorithm>

namespace tonex {

namespace {

HWND Window() {
    return TheMainWindow().window;
}

/// A stored number as a coordinate of a window; those have 16 bits, a damaged store any number.
LONG Coordinate(int stored) {
    return std::clamp(stored, -32768, 32767);
}

/// A stored rectangle that no user made, from a damaged store, gets the first size.
RECT WithSize(RECT area) {
    const bool made = area.right - area.left >= GetSystemMetrics(SM_CXMINTRACK) &&
                      area.bottom - area.top >= GetSystemMetrics(SM_CYMINTRACK);
    if (made) return area;
    const SIZE first = FirstWindowSize(TheMainWindow());
    return {area.left, area.top, area.left + first.cx, area.top + first.cy};
}

/// The window is restored as it was left, also where that is smaller than it can be made now.
void AllowSize(const RECT& area) {
    SIZE& smallest = TheMainWindow().smallest;
    smallest.cx = std::min(smallest.cx, area.right - area.left);
    smallest.cy = std::min(smallest.cy, area.bottom - area.top);
}

/// Stored places count from the corner of the free screen, areas of screens from the screen's own: only where
/// the window has come to stand is compared.
void BringBack() {
    const RECT area = AreaOf(Window());
    if (CanBeReached(area)) return;
    const RECT on_screen = OntoScreen(area);
    SetWindowPos(Window(), nullptr, static_cast<int>(on_screen.left), static_cast<int>(on_screen.top),
                 static_cast<int>(on_screen.right - on_screen.left),
                 static_cast<int>(on_screen.bottom - on_screen.top), SWP_NOZORDER | SWP_NOACTIVATE);
}

// ---- the keyboard under Wine ----

constexpr DWORD kOfferLook = 5;       // milliseconds
constexpr DWORD kOfferPatience = 300; // milliseconds
constexpr wchar_t kOfferClass[] = L"STATIC";

/// Wine asks a window whether it wants the keyboard by the message that a mouse click would send.
LRESULT CALLBACK NoteOffer(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_MOUSEACTIVATE) {
        SetWindowLongPtrW(window, GWLP_USERDATA, TRUE);
        return MA_ACTIVATE;
    }
    return DefWindowProcW(window, message, wparam, lparam);
}

/// Under Wine a window gets the keyboard only when the window manager offers it. When a player's window
/// closes, the manager offers it to the main window, which is disabled at that time and has to turn it down;
/// it is not asked again; the same befalls it when a file dialog has asked a question of its own. So a window
/// of one pixel is offered the keyboard, and hands it on when it closes.
void TakeKeyboardUnderWine() {
    if (!UnderWine() || IsIconic(Window()) || !IsWindowVisible(Window())) return;
    const RECT area = AreaOf(Window());
    HWND small =
        CreateWindowExW(WS_EX_TOOLWINDOW, kOfferClass, L"", WS_POPUP, static_cast<int>(area.left),
                        static_cast<int>(area.top), 1, 1, Window(), nullptr, Hooks().instance, nullptr);
    if (!small) return;
    SetWindowLongPtrW(small, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(NoteOffer));
    ShowWindow(small, SW_SHOW);
    for (const DWORD begin = GetTickCount(); GetTickCount() - begin < kOfferPatience;) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, kOfferLook, QS_ALLINPUT);
        // Its own messages only: a command may be under way, and no other may begin inside it.
        MSG message;
        while (PeekMessageW(&message, small, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
        if (!IsWindow(small) || GetWindowLongPtrW(small, GWLP_USERDATA)) break;
    }
    if (IsWindow(small)) DestroyWindow(small);
}

} // namespace

bool GetMainWindowPlacement(WindowPlacement& placement) {
    WINDOWPLACEMENT system{};
    system.length = sizeof system; // 44
    if (!GetWindowPlacement(Window(), &system)) return false;
    placement.show_state = static_cast<int>(system.showCmd);
    placement.left = static_cast<int>(system.rcNormalPosition.left);
    placement.top = static_cast<int>(system.rcNormalPosition.top);
    placement.right = static_cast<int>(system.rcNormalPosition.right);
    placement.bottom = static_cast<int>(system.rcNormalPosition.bottom);
    return true;
}

bool SetMainWindowPlacement(const WindowPlacement& placement) {
    const RECT area = WithSize({Coordinate(placement.left), Coordinate(placement.top),
                                Coordinate(placement.right), Coordinate(placement.bottom)});
    AllowSize(area);
    WINDOWPLACEMENT system{};
    system.length = sizeof system;
    // The window is not on the screen yet: a maximised one is maximised when it is first shown.
    system.showCmd = SW_HIDE;
    system.ptMaxPosition = {-1, -1};
    system.ptMinPosition = {-1, -1};
    system.rcNormalPosition = area;
    if (!SetWindowPlacement(Window(), &system)) return false;
    BringBack();
    TheMainWindow().first_show = placement.show_state == SW_SHOWMAXIMIZED ? SW_SHOWMAXIMIZED : SW_SHOWNORMAL;
    return true;
}

int MainWindowBorderStyle() {
    return (GetWindowLongW(Window(), GWL_STYLE) & WS_THICKFRAME) != 0 ? kBorderSizable : kBorderFixedSingle;
}

WindowSize MainWindowSize() {
    const RECT area = AreaOf(Window());
    const Scale& scale = TheMainWindow().screen_scale;
    return {ToTwipsX(scale, static_cast<int>(area.right - area.left)),
            ToTwipsY(scale, static_cast<int>(area.bottom - area.top))};
}

void MoveMainWindow(int left, int top) {
    RECT area = AreaOf(Window());
    const Scale& scale = TheMainWindow().screen_scale;
    OffsetRect(&area, ToPixelsX(scale, left) - static_cast<int>(area.left),
               ToPixelsY(scale, top) - static_cast<int>(area.top));
    MoveTo(Window(), OntoScreen(area));
}

void BringMainWindowToForeground() {
    ShowDifferences(TheMainWindow());
    TakeKeyboardUnderWine();
    SetForegroundWindow(Window());
}

void FocusScoreGrid() {
    SetFocus(TheMainWindow().panel(PanelId::Grid).window);
}

void CloseMainWindow() {
    PostMessageW(Window(), WM_CLOSE, 0, 0);
}

void PopUpEditMenu() {
    MainWindow& main = TheMainWindow();
    POINT point;
    GetCursorPos(&point);
    TrackPopupMenu(GetSubMenu(main.menu, static_cast<int>(Menu::mnuEdit)), TPM_RIGHTBUTTON, point.x, point.y,
                   0, main.window, nullptr);
}

void ShowAboutWindow() {
    ShowGlobalVersion(TheMainWindow());
}
bool ShowTransferReminder() {
    return ShowFormZ730Msg(TheMainWindow());
}

} // namespace tonex
