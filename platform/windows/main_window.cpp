// The main window: its controls are made here, and made larger in a larger window. Windows-only by nature.
#include "platform/windows/main_window.h"

#include "app/layout_commands.h"
#include "platform/main_window.h"
#include "platform/windows/main_window_events.h"
#include "platform/windows/resource.h"
#include "platform/windows/window_place.h"

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
constexpr const PanelKind* kKinds[kPanels] = {&kStaffPanel, &kGridPanel, &kLengthPanel, &kPianoPanel};

HWND CreateStatic(MainWindow& main, HINSTANCE instance) {
    HWND made =
        CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX, 0,
                        0, 0, 0, main.window, nullptr, instance, nullptr);
    SendMessageW(made, WM_SETFONT, reinterpret_cast<WPARAM>(main.theme.fonts.ui), 0);
    return made;
}

void CreateTempo(MainWindow& main, HINSTANCE instance) {
    main.tempo_caption = CreateStatic(main, instance);
    CreateTempoBox(main, instance);
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

void RegisterClasses(HINSTANCE instance) {
    WNDCLASSEXW main_class{};
    main_class.cbSize = sizeof main_class;
    main_class.lpfnWndProc = MainWindowProcedure;
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

SIZE SizeOf(const RECT& area) {
    return {area.right - area.left, area.bottom - area.top};
}

/// The outer size of a window around a client area, with frame and menu.
SIZE WithFrame(PixelSize client) {
    RECT area = {0, 0, client.width, client.height};
    AdjustWindowRectEx(&area, WS_OVERLAPPEDWINDOW, TRUE, WS_EX_APPWINDOW);
    return SizeOf(area);
}

int ScrollBarHeight() {
    return GetSystemMetrics(SM_CYHSCROLL);
}

SIZE AtMost(const SIZE& size, const SIZE& limit) {
    return {std::min(size.cx, limit.cx), std::min(size.cy, limit.cy)};
}

/// The outer size that shows the content at a staff space; never larger than the screen.
SIZE SizeAtSpace(const MainWindow& main, float staff_space) {
    const PixelSize content = ContentSize(main.record.screen, staff_space, ScrollBarHeight());
    return AtMost(WithFrame(content), SizeOf(FreeScreenAround(main.window)));
}

/// Everything is drawn again at another scale: nothing that was placed or drawn counts any more.
void Magnify(MainWindow& main, const Scale& scale) {
    Fonts old = main.theme.fonts;
    main.theme.scale = scale;
    main.theme.fonts =
        CreateFonts(main.record, scale, main.screen_scale.twips_per_pixel_y / scale.twips_per_pixel_y);
    for (HWND control : {main.tempo, main.tempo_caption, main.tempo_label, main.length_caption})
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(main.theme.fonts.ui), FALSE);
    for (const Panel& panel : main.panels)
        if (panel.tooltip)
            SendMessageW(panel.tooltip, WM_SETFONT, reinterpret_cast<WPARAM>(main.theme.fonts.tooltip),
                         FALSE);
    DeleteFonts(old);
    SizeToolbar(main);
    main.shown.places.fill(kNowhere);
    RedrawWindow(main.window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

} // namespace

bool TakesInput(const MainWindow& main) {
    return main.record.Enabled && IsWindowEnabled(main.window);
}

SIZE FirstWindowSize(const MainWindow& main) {
    const SIZE free = SizeOf(FreeScreenAround(main.window)), frame = WithFrame({});
    const PixelSize client = {static_cast<int>(free.cx - frame.cx), static_cast<int>(free.cy - frame.cy)};
    const ScreenMeasures& screen = main.record.screen;
    const float space = FittingStaffSpace(screen, client, ScrollBarHeight());
    return SizeAtSpace(main, std::min(space, OwnStaffSpace(screen)));
}

bool CreateMainWindow(HINSTANCE instance) {
    MainWindow& main = TheMainWindow();
    main.record.screen = MeasureScreen();
    main.screen_scale = {main.record.screen.twips_per_pixel_x, main.record.screen.twips_per_pixel_y};
    main.theme.scale = main.screen_scale;
    main.theme.colours = ReadColours();
    LayoutWindow(main.record, 0, 0); // the fonts are fitted to the texts' places
    main.theme.fonts = CreateFonts(main.record, main.theme.scale, 1);
    main.menu = CreateMainMenu();
    RegisterClasses(instance);
    main.owner = CreateWindowExW(0, kOwnerClass, L"Sound Editor", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                                 instance, nullptr);
    main.smallest = SizeAtSpace(main, std::min(kSmallestStaffSpace, OwnStaffSpace(main.record.screen)));
    const SIZE size = FirstWindowSize(main);
    // No caption before start-up gives it one: a second copy looks for the first by caption and must not find
    // itself.
    main.window = CreateWindowExW(WS_EX_APPWINDOW | WS_EX_ACCEPTFILES, kMainClass, L"",
                                  WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT, 0, size.cx, size.cy,
                                  main.owner, main.menu, instance, nullptr);
    if (!main.window) return false;
    Hooks() = {instance, main.window, ShowForLoops, BringMainWindowToForeground, TranslateForLoops};
    CreateControls(main, instance);
    return true;
}

void RenewTheme(MainWindow& main) {
    main.theme.colours = ReadColours();
    Magnify(main, main.theme.scale);
    if (!main.up || IsIconic(main.window)) return; // a minimised window has no client area to lay out
    FitContent(main);
    ShowDifferences(main);
}

void FitContent(MainWindow& main) {
    RECT client;
    GetClientRect(main.window, &client);
    const PixelSize size = {static_cast<int>(client.right), static_cast<int>(client.bottom)};
    const float space = FittingStaffSpace(main.record.screen, size, ScrollBarHeight());
    const Scale fitting = ScaleWithSpace(main.screen_scale, space);
    LayoutWindow(main.record, ToTwipsX(fitting, size.width), ToTwipsY(fitting, size.height),
                 ToTwipsY(fitting, ScrollBarHeight())); // first: the fonts are fitted to the texts' places
    if (fitting.twips_per_pixel_y != main.theme.scale.twips_per_pixel_y) Magnify(main, fitting);
    SendMessageW(main.toolbar, TB_AUTOSIZE, 0, 0);
}

} // namespace tonex
