// Other programs' windows, for finding the copy of this program that already runs.
#pragma once

#include <cstdint>
#include <string>

namespace tonex {

/// A window as the system counts them; 0 = none.
using WindowId = std::uintptr_t;

/// Whether another copy of this program runs in the user's session. The first call of a process settles it.
bool PreviousInstanceRunning();

/// The first child of the desktop window in z-order; 0 = none.
WindowId FirstTopLevelWindow();
/// The next window in the same z-order list; 0 = none.
WindowId NextWindow(WindowId window);
/// Length of the caption in characters.
int CaptionLength(WindowId window);
/// Reads the caption into a buffer of the size that it has; gives the count read.
int ReadCaption(WindowId window, std::wstring& buffer);
/// The window's owner; 0 = none.
WindowId OwnerOf(WindowId window);
bool IsMinimised(WindowId window);
/// Undoes minimising (show command 9).
void RestoreWindow(WindowId window);
void BringToForeground(WindowId window);

} // namespace tonex
