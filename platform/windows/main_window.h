// The real main window around the record: its controls, and the shadow of what they show.
#pragma once

#include "app/sndmain.h"
#include "platform/windows/panel.h"
#include "platform/windows/theme.h"

#include "platform/windows/desktop_windows.h"

namespace tonex {

enum class PanelId { Staff, Grid, Lengths, Piano, Count };
inline constexpr int kPanels = static_cast<int>(PanelId::Count);

/// What the controls show now. Only what differs from the record is shown again.
struct Shown {
    std::wstring Caption, tempo_text, tempo_label, tempo_caption, length_caption;
    std::vector<std::wstring> tempo_list;
    int tempo_index = -2;
    bool enabled = true;
    std::array<NoteImage, kStripPictures> imgNote{};
    std::array<CellText, kSlots> cells{};
    int Cols = 0, first_shown = 0;
    GridView view;
    bool doremi = false;
    std::array<std::int16_t, kLengthButtons> buttons{};
    std::int16_t current_picture = 0;
    std::array<std::uint32_t, kWhiteKeys> white{};
    std::array<std::uint32_t, kBlackKeys> black{};
    std::array<CellText, kWhiteKeys> white_captions{};
    std::array<CellText, kBlackKeys> black_captions{};
    std::array<MenuState, kMenuItems> menu{};
    std::array<bool, kToolButtons> toolbar{};
    std::array<Rect, kPanels + 4> places{};
    ConvertWindow convert;
    DWORD convert_at = 0; ///< tick count when the converting window was drawn last
};

struct MainWindow {
    sndmain record; ///< the truth
    Shown shown;
    Theme theme;
    Scale screen_scale;   ///< the screen's own; the theme's is larger in a large window
    HWND owner = nullptr; ///< hidden application window; what finds a running copy asks for an owned window
    HWND window = nullptr;
    HWND toolbar = nullptr;
    HWND tempo = nullptr;
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

/// The program's one main window.
MainWindow& TheMainWindow();

/// Creates the window and its controls, hidden. False when the system refuses.
bool CreateMainWindow(HINSTANCE instance);
/// Shows what differs between record and controls, nothing else.
void ShowDifferences(MainWindow& main);
/// Ctrl and function keys, Tab and the panes; true when the message was used up.
bool TranslateMainKey(MainWindow& main, const MSG& message);

/// Lays the content out for the client area as it is, as large as fits.
void FitContent(MainWindow& main);

/// Pixels between the outer window and its client area at the smallest size.
SIZE MinimumWindowSize(const MainWindow& main);

// Toolbar and menu, made from the command tables.
HMENU CreateMainMenu();
void CreateToolbar(MainWindow& main, HINSTANCE instance);
void LoadToolbarPictures(MainWindow& main);
void SizeToolbar(MainWindow& main);
inline constexpr UINT kFirstMenuId = 1000;
inline constexpr UINT kFirstToolId = 1200;
inline constexpr UINT kTempoId = 1300;

} // namespace tonex
