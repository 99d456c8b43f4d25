// The main window: messages become calls of the commands, and after each call what differs is shown. No rule
// lives here. Windows-only by nature.
#include "platform/windows/main_window.h"
#include "app/enabling_commands.h"
#include "app/menu_routes.h"

#include "app/layout_commands.h"
#include "app/window_routes.h"
#include "link/settings_commands.h"
#include "platform/main_window.h"
#include "platform/windows/dialogs.h"
#include "platform/windows/resource.h"
#include "view/tempo_commands.h"

#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>

namespace tonex {

MainWindow& TheMainWindow() {
    static MainWindow main;
    return main;
}

namespace {

constexpr const wchar_t* kMainClass = L"TonexMain";
constexpr const wchar_t* kOwnerClass = L"TonexApplication";
constexpr Rect kNowhere = {-1, -1, -1, -1}; ///< a place that no control has
constexpr const PanelKind* kKinds[kPanels] = {&kStaffPanel, &kGridPanel, &kLengthPanel, &kPianoPanel};

// ---- controls ----

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

HWND CreateStatic(MainWindow& main, HINSTANCE instance) {
    HWND made =
        CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX, 0,
                        0, 0, 0, main.window, nullptr, instance, nullptr);
    SendMessageW(made, WM_SETFONT, reinterpret_cast<WPARAM>(main.theme.fonts.ui), 0);
    return made;
}

void CreateTempo(MainWindow& main, HINSTANCE instance) {
    main.tempo_caption = CreateStatic(main, instance);
    main.tempo = CreateWindowExW(
        0, L"COMBOBOX", L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWN | CBS_AUTOHSCROLL,
        0, 0, 10, 300, main.window, reinterpret_cast<HMENU>(static_cast<UINT_PTR>(kTempoId)), instance,
        nullptr);
    SendMessageW(main.tempo, WM_SETFONT, reinterpret_cast<WPARAM>(main.theme.fonts.ui), 0);
    main.tempo_label = CreateStatic(main, instance);
    main.length_caption = CreateStatic(main, instance);
}

void CreateControls(MainWindow& main, HINSTANCE instance) {
    CreateToolbar(main, instance);
    for (int i = 0; i < kPanels; ++i)
        CreatePanel(main.panels[i], *kKinds[i], main, instance);
    CreateTempo(main, instance);
    // The panel of the lengths reaches around the tempo box, which must stay in front of it to be clicked.
    SetWindowPos(main.panel(PanelId::Lengths).window, HWND_BOTTOM, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

// ---- showing what differs ----

void PlacePanel(MainWindow& main, PanelId id) {
    const Rect place = PanelPlace(main.record, id);
    Rect& shown = main.shown.places[static_cast<std::size_t>(id)];
    Panel& panel = main.panel(id);
    if (place == shown) return;
    shown = place;
    panel.origin_x = place.Left;
    panel.origin_y = place.Top;
    RECT area = ToPixels(main.theme.scale, place);
    MoveWindow(panel.window, area.left, area.top, area.right - area.left, area.bottom - area.top, TRUE);
    InvalidateRect(panel.window, nullptr, FALSE);
}

void PlaceControl(MainWindow& main, HWND control, const Rect& place, int slot, int extra_height) {
    Rect& shown = main.shown.places[static_cast<std::size_t>(kPanels + slot)];
    if (place == shown) return;
    shown = place;
    const RECT area = ToPixels(main.theme.scale, place);
    MoveWindow(control, area.left, area.top, area.right - area.left, area.bottom - area.top + extra_height,
               TRUE);
}

/// The combo box decides its own height from its font; it is centred on the place that the layout gives it.
void PlaceTempo(MainWindow& main) {
    const sndmain& w = main.record;
    PlaceControl(main, main.tempo_caption, w.Label2.place, 0, 0);
    PlaceControl(main, main.tempo, w.TempoCombo.place, 1, Scaled(main.theme.scale, 320));
    PlaceControl(main, main.tempo_label, w.lblTempo.place, 2, 0);
    PlaceControl(main, main.length_caption, w.Label3.place, 3, 0);
}

void ShowPlaces(MainWindow& main) {
    for (int i = 0; i < kPanels; ++i)
        PlacePanel(main, static_cast<PanelId>(i));
    PlaceTempo(main);
}

void ShowText(HWND control, const std::wstring& text, std::wstring& shown) {
    if (text == shown) return;
    shown = text;
    SetWindowTextW(control, text.c_str());
}

void ShowTempo(MainWindow& main) {
    const TempoBox& box = main.record.TempoCombo;
    Shown& shown = main.shown;
    ShowText(main.tempo_caption, main.record.Label2.Caption, shown.tempo_caption);
    ShowText(main.length_caption, main.record.Label3.Caption, shown.length_caption);
    ShowText(main.tempo_label, main.record.lblTempo.Caption, shown.tempo_label);
    if (box.List != shown.tempo_list) {
        shown.tempo_list = box.List;
        SendMessageW(main.tempo, CB_RESETCONTENT, 0, 0);
        for (const std::wstring& item : box.List)
            SendMessageW(main.tempo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item.c_str()));
        shown.tempo_index = -2;
    }
    if (box.ListIndex != shown.tempo_index) {
        shown.tempo_index = box.ListIndex;
        // Typing a number deselects the list's item; the text and its caret stay as typed.
        if (box.ListIndex >= 0) {
            SendMessageW(main.tempo, CB_SETCURSEL, static_cast<WPARAM>(box.ListIndex), 0);
            shown.tempo_text = box.List[static_cast<std::size_t>(box.ListIndex)];
        }
    }
    ShowText(main.tempo, box.Text, shown.tempo_text);
}

void ShowStrip(MainWindow& main) {
    const sndmain& w = main.record;
    Shown& shown = main.shown;
    Panel& panel = main.panel(PanelId::Staff);
    const GridView& view = w.grdScore.view;
    const bool view_moved = w.score.first_shown != shown.first_shown || view.Col != shown.view.Col ||
                            view.ColSel != shown.view.ColSel;
    for (int i = 0; i < kStripPictures; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const int old_slot = shown.first_shown + i, new_slot = w.score.first_shown + i;
        const bool picture = !(w.imgNote[at] == shown.imgNote[at]);
        const bool cursor = (old_slot == shown.view.Col) != (new_slot == view.Col);
        const bool selection = view_moved && IsSelected(shown.view, old_slot) != IsSelected(view, new_slot);
        if (!picture && !cursor && !selection) continue;
        shown.imgNote[at] = w.imgNote[at];
        RECT area = panel.kind->item_area(panel, i);
        InvalidateRect(panel.window, &area, FALSE);
    }
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
    for (int i = 0; i < kGridColumnsShown; ++i) {
        const int column = grid.view.LeftCol + i;
        const bool is = column < grid.Cols, was = column < shown.Cols;
        const auto at = static_cast<std::size_t>(std::min(column, kSlots - 1));
        const bool changed = moved || is != was || !(grid.Text[at] == shown.cells[at]) ||
                             IsSelected(grid.view, column) != IsSelected(shown.view, column) ||
                             (column == grid.view.ColSel) != (column == shown.view.ColSel);
        if (!changed) continue;
        shown.cells[at] = grid.Text[at];
        const RECT area = panel.kind->item_area(panel, i);
        InvalidateRect(panel.window, &area, FALSE);
    }
}

/// The view's own numbers, after both strip and grid were compared with them.
void RememberView(MainWindow& main) {
    const ScoreGrid& grid = main.record.grdScore;
    main.shown.Cols = grid.Cols;
    main.shown.view = grid.view;
    main.shown.first_shown = main.record.score.first_shown;
}

void ShowLengths(MainWindow& main) {
    Panel& panel = main.panel(PanelId::Lengths);
    for (int i = 0; i < kLengthButtons; ++i) {
        const auto at = static_cast<std::size_t>(i);
        if (main.record.cbtNote[at].Picture == main.shown.buttons[at]) continue;
        main.shown.buttons[at] = main.record.cbtNote[at].Picture;
        InvalidateItem(panel, i);
    }
    if (main.record.imgNow.Picture == main.shown.current_picture) return;
    main.shown.current_picture = main.record.imgNow.Picture;
    const RECT area = AreaInPanel(panel, main.record.imgNow.place);
    InvalidateRect(panel.window, &area, FALSE);
}

void ShowPiano(MainWindow& main) {
    const sndmain& w = main.record;
    Shown& shown = main.shown;
    Panel& panel = main.panel(PanelId::Piano);
    bool captions = false;
    for (std::size_t i = 0; i < kWhiteKeys; ++i) {
        captions |= !(w.lblWNote[i].Caption == shown.white_captions[i]);
        shown.white_captions[i] = w.lblWNote[i].Caption;
    }
    for (std::size_t i = 0; i < kBlackKeys; ++i) {
        captions |= !(w.lblBNote[i].Caption == shown.black_captions[i]);
        shown.black_captions[i] = w.lblBNote[i].Caption;
    }
    if (captions) InvalidateRect(panel.window, nullptr, FALSE);
    for (int item = 0; item < kWhiteKeys + kBlackKeys; ++item) {
        const PianoKey key = *KeyOfPitch(static_cast<std::uint16_t>(kLowestKeyPitch + item));
        const auto at = static_cast<std::size_t>(key.index);
        const bool white = key.kind == KeyKind::White;
        const std::uint32_t now = white ? w.kenWhite[at].BackColor : w.kenBlack[at].BackColor;
        std::uint32_t& before = white ? shown.white[at] : shown.black[at];
        if (now == before) continue;
        before = now;
        InvalidateItem(panel, item);
    }
}

void ShowMenu(MainWindow& main) {
    for (UINT i = 0; i < kMenuItems; ++i) {
        const MenuState& now = main.record.menu[i];
        MenuState& shown = main.shown.menu[i];
        if (now == shown) continue;
        shown = now;
        EnableMenuItem(main.menu, kFirstMenuId + i, MF_BYCOMMAND | (now.Enabled ? MF_ENABLED : MF_GRAYED));
        CheckMenuItem(main.menu, kFirstMenuId + i, MF_BYCOMMAND | (now.Checked ? MF_CHECKED : MF_UNCHECKED));
    }
    for (UINT i = 0; i < kToolButtons; ++i) {
        if (main.record.toolbar_enabled[i] == main.shown.toolbar[i]) continue;
        main.shown.toolbar[i] = main.record.toolbar_enabled[i];
        SendMessageW(main.toolbar, TB_ENABLEBUTTON, kFirstToolId + i, MAKELPARAM(main.shown.toolbar[i], 0));
    }
}

void ShowEnabled(MainWindow& main) {
    if (main.record.Enabled == main.shown.enabled) return;
    main.shown.enabled = main.record.Enabled;
    EnableWindow(main.window, main.record.Enabled);
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
    if (main.record.FrmWavConvert == main.shown.convert || IsBarStepTooSoon(main)) return;
    main.shown.convert = main.record.FrmWavConvert;
    ShowConvertWindow(main);
    main.shown.convert_at = GetTickCount();
}

// ---- events ----

void RunFromMenu(MainWindow& main, UINT id) {
    RunMenuItem(main.record, static_cast<MenuItem>(id - kFirstMenuId));
}

void RunFromToolbar(MainWindow& main, UINT id) {
    RunToolButton(main.record, ToolButtonRows()[id - kFirstToolId].key);
}

void TempoTyped(MainWindow& main) {
    wchar_t text[64] = L"";
    GetWindowTextW(main.tempo, text, 64);
    main.shown.tempo_text = text;
    TempoComboChange(main.record, text);
}

void TempoChosen(MainWindow& main) {
    const auto index = static_cast<int>(SendMessageW(main.tempo, CB_GETCURSEL, 0, 0));
    if (index >= 0) TempoComboClick(main.record, index);
}

void TempoEvent(MainWindow& main, UINT notification) {
    if (main.showing) return;
    if (notification == CBN_EDITCHANGE) TempoTyped(main);
    // The same item chosen again sends no change, but ends the selection all the same.
    if (notification == CBN_SELENDOK || notification == CBN_SELCHANGE) TempoChosen(main);
}

void Command(MainWindow& main, WPARAM wparam) {
    const UINT id = LOWORD(wparam);
    if (id >= kFirstMenuId && id < kFirstMenuId + kMenuItems)
        RunFromMenu(main, id);
    else if (id >= kFirstToolId && id < kFirstToolId + kToolButtons)
        RunFromToolbar(main, id);
    else if (id == kTempoId)
        TempoEvent(main, HIWORD(wparam));
    ShowDifferences(main);
}

void MenuOpens(MainWindow& main, HMENU menu) {
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
    const SIZE smallest = MinimumWindowSize(main);
    info.ptMinTrackSize = {smallest.cx, smallest.cy};
}

void Close(MainWindow& main) {
    const bool allowed = CloseAllowed(main.record);
    ShowDifferences(main);
    if (allowed) DestroyWindow(main.window);
}

void Destroyed(MainWindow& main) {
    main.up = false;
    Hooks().main_window = nullptr;
    PostQuitMessage(0);
}

void Dropped(MainWindow& main, HDROP drop) {
    const UINT length = DragQueryFileW(drop, 0, nullptr, 0);
    std::wstring path(length, L'\0');
    if (length > 0) DragQueryFileW(drop, 0, path.data(), length + 1);
    DragFinish(drop);
    if (path.empty() || !main.record.Enabled) return;
    SetForegroundWindow(main.window);
    OpenDroppedFile(main.record, path);
    ShowDifferences(main);
}

/// A sound device may have come or gone, and Preview with it.
void DeviceChanged(MainWindow& main) {
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

LRESULT Notify(const NMHDR& header) {
    if (header.code != TTN_GETDISPINFOW) return 0;
    auto& info = reinterpret_cast<NMTTDISPINFOW&>(const_cast<NMHDR&>(header));
    const UINT_PTR id = header.idFrom;
    if (id < kFirstToolId || id >= kFirstToolId + kToolButtons) return 0;
    info.lpszText = const_cast<wchar_t*>(ToolButtonRows()[id - kFirstToolId].tooltip.data());
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
    return DefWindowProcW(main.window, WM_ACTIVATE, wparam, lparam);
}

/// The wheel belongs to the window under the pointer's focus; anywhere in the main window it scrolls the
/// grid.
LRESULT PassWheel(MainWindow& main, WPARAM wparam, LPARAM lparam) {
    return SendMessageW(main.panel(PanelId::Grid).window, WM_MOUSEWHEEL, wparam, lparam);
}

LRESULT CALLBACK MainProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    MainWindow& main = TheMainWindow();
    switch (message) {
    case WM_COMMAND: Command(main, wparam); return 0;
    case WM_INITMENUPOPUP: MenuOpens(main, reinterpret_cast<HMENU>(wparam)); return 0;
    case WM_NOTIFY: return Notify(*reinterpret_cast<const NMHDR*>(lparam));
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
    case WM_DEVICECHANGE: DeviceChanged(main); return TRUE;
    case WM_QUERYENDSESSION: return CloseAllowed(main.record);
    case WM_CLOSE: Close(main); return 0;
    case WM_DESTROY: Destroyed(main); return 0;
    default: return DefWindowProcW(window, message, wparam, lparam);
    }
}

/// Everything is drawn again at another scale: nothing that was placed or drawn counts any more.
void Magnify(MainWindow& main, const Scale& scale) {
    Fonts old = main.theme.fonts;
    main.theme.scale = scale;
    main.theme.fonts = CreateFonts(scale, main.screen_scale.twips_per_pixel_y / scale.twips_per_pixel_y);
    for (HWND control : {main.tempo, main.tempo_caption, main.tempo_label, main.length_caption})
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(main.theme.fonts.ui), FALSE);
    for (const Panel& panel : main.panels)
        if (panel.tooltip)
            SendMessageW(panel.tooltip, WM_SETFONT, reinterpret_cast<WPARAM>(main.theme.fonts.ui), FALSE);
    DeleteFonts(old);
    SizeToolbar(main);
    for (Rect& place : main.shown.places)
        place = kNowhere;
    RedrawWindow(main.window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

// ---- creation ----

void RegisterClasses(HINSTANCE instance) {
    WNDCLASSEXW main_class{};
    main_class.cbSize = sizeof main_class;
    main_class.lpfnWndProc = MainProc;
    main_class.hInstance = instance;
    main_class.hIcon = LoadIconW(instance, MAKEINTRESOURCEW(IDI_TONEX));
    main_class.hIconSm = static_cast<HICON>(LoadImageW(instance, MAKEINTRESOURCEW(IDI_TONEX), IMAGE_ICON,
                                                       GetSystemMetrics(SM_CXSMICON),
                                                       GetSystemMetrics(SM_CYSMICON), LR_SHARED));
    main_class.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    main_class.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    main_class.lpszClassName = kMainClass;
    RegisterClassExW(&main_class);
    WNDCLASSEXW owner_class{};
    owner_class.cbSize = sizeof owner_class;
    owner_class.lpfnWndProc = DefWindowProcW;
    owner_class.hInstance = instance;
    owner_class.lpszClassName = kOwnerClass;
    RegisterClassExW(&owner_class);
    for (const PanelKind* kind : kKinds)
        RegisterPanelClass(*kind, instance);
}

bool TranslateForLoops(MSG& message) {
    return TranslateMainKey(TheMainWindow(), message);
}
void ShowForLoops() {
    ShowDifferences(TheMainWindow());
}

/// Values that no record has, so that the first showing shows everything.
void ForgetShown(Shown& shown) {
    shown = {};
    shown.buttons.fill(-1);
    shown.white.fill(0x01000000);
    shown.black.fill(0x01000000);
    shown.toolbar.fill(true);
    shown.Cols = -1;
    for (Rect& place : shown.places)
        place = kNowhere;
}

} // namespace

SIZE MinimumWindowSize(const MainWindow& main) {
    RECT area = {0, 0, ToPixelsX(main.screen_scale, kMinClientWidth),
                 ToPixelsY(main.screen_scale, kMinClientHeight)};
    AdjustWindowRectEx(&area, WS_OVERLAPPEDWINDOW, TRUE, WS_EX_APPWINDOW);
    return {area.right - area.left, area.bottom - area.top};
}

bool CreateMainWindow(HINSTANCE instance) {
    MainWindow& main = TheMainWindow();
    ForgetShown(main.shown);
    main.record.screen = MeasureScreen();
    main.screen_scale = {main.record.screen.twips_per_pixel_x, main.record.screen.twips_per_pixel_y};
    main.theme.scale = main.screen_scale;
    main.theme.colours = ReadColours();
    main.theme.fonts = CreateFonts(main.theme.scale, 1);
    main.menu = CreateMainMenu();
    RegisterClasses(instance);
    main.owner = CreateWindowExW(0, kOwnerClass, L"Sound Editor", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                                 instance, nullptr);
    const SIZE size = MinimumWindowSize(main);
    // No caption before start-up gives it one: a second copy looks for the first by caption and must not find
    // itself.
    main.window =
        CreateWindowExW(WS_EX_APPWINDOW, kMainClass, L"", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
                        CW_USEDEFAULT, 0, size.cx, size.cy, main.owner, main.menu, instance, nullptr);
    if (!main.window) return false;
    Hooks() = {instance, main.window, ShowForLoops, BringMainWindowToForeground, TranslateForLoops};
    CreateControls(main, instance);
    DragAcceptFiles(main.window, TRUE);
    return true;
}

void FitContent(MainWindow& main) {
    RECT client;
    GetClientRect(main.window, &client);
    const Scale fitting =
        MagnifiedToFit(main.screen_scale, kMinClientWidth, kMinClientHeight, {client.right, client.bottom});
    if (fitting.twips_per_pixel_y != main.theme.scale.twips_per_pixel_y) Magnify(main, fitting);
    SendMessageW(main.toolbar, TB_AUTOSIZE, 0, 0);
    LayoutWindow(main.record, ToTwipsX(fitting, static_cast<int>(client.right)),
                 ToTwipsY(fitting, static_cast<int>(client.bottom)));
}

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
    ShowTempo(main);
    ShowMenu(main);
    ShowEnabled(main);
    ShowConvert(main);
    main.showing = false;
}

} // namespace tonex
