// Start-up and close of the main window: two procedures whose lines are the order of events.
#pragma once

#include <string>

namespace tonex {

struct sndmain;

enum class StartResult {
    Run,       ///< the window is ready to be shown
    EndSilent, ///< the program ends at once: second copy, or no link software installed
};

/// Sets the record up: single instance, placement, folders, title, grid and strip, enabling, tables, an empty
/// score, then the file of the command line (its quotes may still be there) or the last document.
StartResult StartUp(sndmain& window, const std::wstring& command_line_path);

/// Whether the window may close: asks to save, disconnects, stores the placement.
bool CloseAllowed(sndmain& window);

/// Opens the first of the files dropped on the window.
void OpenDroppedFile(sndmain& window, const std::wstring& path);

} // namespace tonex
