// What commands ask of the window around them.
#pragma once

#include "link/window_placement.h"

namespace tonex {

/// Reads the main window's placement. False when the system refuses.
bool GetMainWindowPlacement(WindowPlacement& placement);
/// Applies a placement to the main window, moved onto a screen when it lies outside all of them. False when
/// the system refuses.
bool SetMainWindowPlacement(const WindowPlacement& placement);

inline constexpr int kBorderFixedSingle = 1;
inline constexpr int kBorderSizable = 2;
inline constexpr int kBorderSizableToolWindow = 5;
/// The main window's border style, one of the constants above: whether the user can change its size.
int MainWindowBorderStyle();

/// A size in twips.
struct WindowSize {
    int width = 0, height = 0;
};
/// The main window's outer size in twips.
WindowSize MainWindowSize();
/// Moves the main window's upper left corner, in twips of the screen; its size stays.
void MoveMainWindow(int left, int top);

/// Brings the main window to the foreground.
void BringMainWindowToForeground();
/// Gives the keyboard to the score grid.
void FocusScoreGrid();
/// Asks the main window to close, as its close box does.
void CloseMainWindow();
/// Opens the Edit menu at the pointer and runs what is chosen.
void PopUpEditMenu();

/// Shows the About window and waits until it is closed.
void ShowAboutWindow();
/// Shows the transfer reminder and waits until it is closed. True when its check box was ticked.
bool ShowTransferReminder();

} // namespace tonex
