// Messages of the main window become calls of the commands, and after each call what differs is shown. No
// rule lives here. Windows-only by nature.
#include "platform/windows/main_window_events.h"

#include "app/enabling_commands.h"
#include "app/menu_routes.h"
#include "app/window_routes.h"
#include "platform/windows/main_window.h"

#include <commctrl.h>
#include <shellapi.h>

namespace tonex {

namespace {

void RunFromMenu(MainWindow& main, UINT id) {
    RunMenuItem(main.record, static_cast<MenuItem>(id - kFirstMenuId));
}

void RunFromToolbar(MainWindow& main, UINT id) {
    RunToolButton(main.record, ToolButtonRows()[id - kFirstToolId].key);
}

void CommandGiven(MainWindow& main, WPARAM wparam) {
    const UINT id = LOWORD(wparam);
    if (id == kTempoId)
        TempoEvent(main, HIWORD(wparam));
    else if (!TakesInput(main))
        return;
    else if (id >= kFirstMenuId && id < kFirstMenuId + kMenuItems)
        RunFromMenu(main, id);
    else if (id >= kFirstToolId && id < kFirstToolId + kToolButtons)
        RunFromToolbar(main, id);
    ShowDifferences(main);
}

void MenuOpens(MainWindow& main, HMENU menu) {
    ForgetWaveOutputs();
    for (int i = 0; i < kMenus; ++i)
        if (GetSubMenu(main.menu, i) == menu) OpenMenu(main.record, static_cast<Menu>(i));
    ShowDifferences(main);
}

void Resized(MainWindow& main, LPARAM size) {
    if (!main.up || LOWORD(size) == 0) return;
    FitContent(main);
    ShowDifferences(main);
}

void MinimumSize(MainWindow& main, MINMAXINFO& info) {
    info.ptMinTrackSize = {main.smallest.cx, main.smallest.cy};
}

/// Whether a question, a message or a dialog waits for its answer, which comes first. Programs can send what
/// a disabled window does not get from the user.
bool BoxOpen(const MainWindow& main) {
    return !IsWindowEnabled(main.window);
}

void Close(MainWindow& main) {
    if (BoxOpen(main)) return;
    const bool allowed = CloseAllowed(main.record);
    ShowDifferences(main);
    if (allowed) DestroyWindow(main.window);
}

// ---- the end of the session ----

/// What the system shows beside the program's name while the program keeps the session; systems before Vista
/// show nothing. An empty text takes it back.
void ShowReasonToStay(const MainWindow& main, const std::wstring& reason) {
    HMODULE library = GetModuleHandleW(L"user32.dll");
    using Destroy = BOOL(WINAPI*)(HWND);
    using Create = BOOL(WINAPI*)(HWND, const wchar_t*);
    const auto destroy = LibraryFunction<Destroy>(library, "ShutdownBlockReasonDestroy");
    const auto create = LibraryFunction<Create>(library, "ShutdownBlockReasonCreate");
    if (!destroy || !create) return;
    destroy(main.window);
    if (!reason.empty()) create(main.window, reason.c_str());
}

bool SessionAsks(MainWindow& main) {
    if (!main.up) return true;
    // Before the question is asked: the system shows the reason when the answer takes its time.
    ShowReasonToStay(main, ReasonToStay(main.record));
    const bool allowed = SessionMayEnd(main.record, BoxOpen(main));
    ShowDifferences(main);
    return allowed;
}

void SessionDecided(MainWindow& main, bool ends) {
    ShowReasonToStay(main, {});
    if (ends && main.up) EndSession(main.record);
}

void Destroyed(MainWindow& main) {
    CloseHelpFile();
    main.up = false;
    Hooks().main_window = nullptr;
    PostQuitMessage(0);
}

void Dropped(MainWindow& main, HDROP drop) {
    // The shell's library is loaded with the first file that is dropped: loading it takes a part of the
    // start.
    const HMODULE shell = SystemLibrary(L"shell32.dll");
    const auto query = LibraryFunction<decltype(&DragQueryFileW)>(shell, "DragQueryFileW");
    const auto finish = LibraryFunction<decltype(&DragFinish)>(shell, "DragFinish");
    if (!query || !finish) return;
    const UINT length = query(drop, 0, nullptr, 0);
    std::wstring path(length, L'\0');
    if (length > 0) query(drop, 0, path.data(), length + 1);
    finish(drop);
    if (path.empty() || BoxOpen(main)) return;
    SetForegroundWindow(main.window);
    OpenDroppedFile(main.record, path);
    ShowDifferences(main);
}

/// A sound device may have come or gone, and Preview with it. The system does not tell every program.
void CountDevicesAgain(MainWindow& main) {
    ForgetWaveOutputs();
    if (!main.up) return;
    RefreshEnabling(main.record);
    ShowDifferences(main);
}

void ColoursChanged(MainWindow& main) {
    main.theme.colours = ReadColours();
    LoadToolbarPictures(main);
    RedrawWindow(main.window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

LRESULT Notify(const MainWindow& main, const NMHDR& header) {
    if (header.code != TTN_GETDISPINFOW) return 0;
    auto& info = reinterpret_cast<NMTTDISPINFOW&>(const_cast<NMHDR&>(header));
    const UINT_PTR id = header.idFrom;
    if (id < kFirstToolId || id >= kFirstToolId + kToolButtons) return 0;
    lstrcpynW(info.szText, TooltipOf(main.record, static_cast<int>(id - kFirstToolId)).c_str(),
              static_cast<int>(std::size(info.szText)));
    info.lpszText = info.szText;
    return 0;
}

/// Text on the window's face: the captions beside the tempo box.
LRESULT StaticColours(MainWindow& main, HDC dc) {
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, main.theme.colours.face_text);
    return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_BTNFACE));
}

/// Coming back to the window leads to the control that was left; the score grid is where work begins.
void GiveFocusBack(MainWindow& main) {
    const bool known = main.last_focus && IsChild(main.window, main.last_focus);
    SetFocus(known ? main.last_focus : main.panel(PanelId::Grid).window);
}

LRESULT Activated(MainWindow& main, WPARAM wparam, LPARAM lparam) {
    HWND focus = GetFocus();
    if (LOWORD(wparam) == WA_INACTIVE && focus && IsChild(main.window, focus)) main.last_focus = focus;
    if (LOWORD(wparam) != WA_INACTIVE) CountDevicesAgain(main);
    return DefWindowProcW(main.window, WM_ACTIVATE, wparam, lparam);
}

/// The wheel belongs to the window under the pointer's focus; anywhere in the main window it scrolls the
/// grid.
LRESULT PassWheel(MainWindow& main, WPARAM wparam, LPARAM lparam) {
    return SendMessageW(main.panel(PanelId::Grid).window, WM_MOUSEWHEEL, wparam, lparam);
}

} // namespace

LRESULT CALLBACK MainWindowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    MainWindow& main = TheMainWindow();
    switch (message) {
    case WM_COMMAND: CommandGiven(main, wparam); return 0;
    case WM_INITMENUPOPUP: MenuOpens(main, reinterpret_cast<HMENU>(wparam)); return 0;
    case WM_NOTIFY: return Notify(main, *reinterpret_cast<const NMHDR*>(lparam));
    case WM_SIZE: Resized(main, lparam); return 0;
    case WM_GETMINMAXINFO: MinimumSize(main, *reinterpret_cast<MINMAXINFO*>(lparam)); return 0;
    case WM_ACTIVATE:
        return main.up ? Activated(main, wparam, lparam) : DefWindowProcW(window, message, wparam, lparam);
    case WM_SETFOCUS: GiveFocusBack(main); return 0;
    case WM_MOUSEWHEEL: return PassWheel(main, wparam, lparam);
    case WM_CTLCOLORSTATIC: return StaticColours(main, reinterpret_cast<HDC>(wparam));
    case WM_DROPFILES: Dropped(main, reinterpret_cast<HDROP>(wparam)); return 0;
    case WM_SYSCOLORCHANGE:
    case WM_THEMECHANGED: ColoursChanged(main); return 0;
    case WM_SETTINGCHANGE: RenewTheme(main); return DefWindowProcW(window, message, wparam, lparam);
    case WM_DEVICECHANGE: CountDevicesAgain(main); return TRUE;
    case WM_QUERYENDSESSION: return SessionAsks(main);
    case WM_ENDSESSION: SessionDecided(main, wparam != FALSE); return 0;
    case WM_CLOSE: Close(main); return 0;
    case WM_DESTROY: Destroyed(main); return 0;
    default: return DefWindowProcW(window, message, wparam, lparam);
    }
}

} // namespace tonex
