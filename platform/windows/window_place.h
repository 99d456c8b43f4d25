// Where windows stand on the screen, in pixels.
#pragma once

#include "platform/windows/desktop_windows.h"

namespace tonex {

/// The whole of the first screen.
RECT WholeScreen();
/// What task bars leave free of the screen that has most of a window.
RECT FreeScreenAround(HWND window);
/// A window's outer area on the screen.
RECT AreaOf(HWND window);
/// Whether the user can get hold of a window with that outer area: enough of its caption shows on a screen,
/// and it is not larger than all screens together.
bool CanBeReached(const RECT& area);
/// An area moved onto the screen nearest to it so that all of it shows, its corner first of all. What is
/// larger than the screen's free area is made smaller.
RECT OntoScreen(RECT area);
/// The window's size in the middle of an area.
RECT InTheMiddle(HWND window, const RECT& area);
/// Moves a window's corner; its size, its order and the keyboard stay.
void MoveTo(HWND window, const RECT& area);

} // namespace tonex
