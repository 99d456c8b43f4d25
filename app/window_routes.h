// Start-up, close and the session's end, of the main window: procedures whose lines are the order of events.
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

/// Whether the session of the user may end, as far as the melody goes: asks to save, does nothing else. With
/// `box_open` a question or message is on the screen already: then nothing is asked, and the answer is no
/// where a melody would be lost.
bool SessionMayEnd(sndmain& window, bool box_open);
/// What the system may tell the user while the answer to that is no, or not given yet; empty when nothing
/// speaks against the end.
std::wstring ReasonToStay(const sndmain& window);
/// The session ends now, whatever happens: disconnects, stores the placement.
void EndSession(sndmain& window);

/// Opens the first of the files dropped on the window.
void OpenDroppedFile(sndmain& window, const std::wstring& path);

} // namespace tonex
