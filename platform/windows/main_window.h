// The real main window around the record: its controls, and what they show.
#pragma once

#include "app/sndmain.h"
#include "platform/windows/main_window_showing.h"
#include "platform/windows/panel.h"
#include "platform/windows/tempo_box.h"
#include "platform/windows/theme.h"

#include "platform/windows/desktop_windows.h"

namespace tonex {

struct MainWindow {
    sndmain record; ///< the truth
    Shown shown;
    Theme theme;
    Scale screen_scale;   ///< the screen's own; the theme's follows the window's size
    SIZE smallest = {};   ///< outer size in pixels that the user can make the window
    HWND owner = nullptr; ///< hidden application window; what finds a running copy asks for an owned window
    HWND window = nullptr;
    HWND toolbar = nullptr;
    WNDPROC toolbar_procedure = nullptr; ///< the system's own
    int tool_left_behind =
        -1; ///< the button that had the toolbar's frame when the keyboard left it; -1 = none
    HWND tempo = nullptr;
    TempoBoxState tempo_state;
    HWND tempo_caption = nullptr;
    HWND tempo_label = nullptr;
    HWND length_caption = nullptr;
    HWND convert = nullptr;
    HWND last_focus = nullptr; ///< the control that had the keyboard when the window was left
    HMENU menu = nullptr;
    Panel panels[kPanels];
    bool showing = false;           ///< the controls are being changed by the program, not by the user
    bool up = false;                ///< start-up is over
    int first_show = SW_SHOWNORMAL; ///< how the window is shown first, as its stored placement says

    Panel& panel(PanelId id) { return panels[static_cast<int>(id)]; }
};

/// Whether the window takes input: not while a box is open or a preview plays. What assistive tools and other
/// programs send comes all the same; a command that the user can not give then is not taken from them either,
/// or it would run inside another.
bool TakesInput(const MainWindow& main);

/// The program's one main window.
MainWindow& TheMainWindow();

/// Creates the window and its controls, hidden. False when the system refuses.
bool CreateMainWindow(HINSTANCE instance);
/// Ctrl and function keys, Tab and the panes; true when the message was used up.
bool TranslateMainKey(MainWindow& main, const MSG& message);

/// Lays the content out for the client area as it is, as large as fits.
void FitContent(MainWindow& main);

/// Reads colours and fonts from the system again, and shows everything in them.
void RenewTheme(MainWindow& main);

/// The main window's first outer size, in pixels: its content at the screen's own scale, menu and frame;
/// where that is larger than the screen, the content at a smaller one.
SIZE FirstWindowSize(const MainWindow& main);

// Toolbar and menu, made from the command tables.
HMENU CreateMainMenu();
void CreateToolbar(MainWindow& main, HINSTANCE instance);
void LoadToolbarPictures(MainWindow& main);
void SizeToolbar(MainWindow& main);
inline constexpr UINT kFirstMenuId = 1000;
inline constexpr UINT kFirstToolId = 1200;

} // namespace tonex
