// The messages of the main window.
#pragma once

#include "platform/windows/desktop_windows.h"

namespace tonex {

/// Makes messages calls of the commands, and shows what they changed.
LRESULT CALLBACK MainWindowProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

} // namespace tonex
