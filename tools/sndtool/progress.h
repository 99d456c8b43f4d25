// A progress bar on a terminal, for work that takes longer than a second.
#pragma once

#include <chrono>
#include <cstddef>

namespace tonex {

struct Progress {
    std::chrono::steady_clock::time_point started;
    std::chrono::steady_clock::time_point shown; ///< when the bar was drawn last
    std::size_t files = 0;                       ///< how many there are to do
    std::size_t files_done = 0;
    int notes = 0; ///< of the file in work
    bool on_terminal = false;
    bool visible = false;
};

/// Starts the clock.
Progress StartProgress(std::size_t files);
/// Starts a file of that many notes.
void BeginFile(Progress& progress, int notes);
/// Notes of the file done so far; draws the bar when it is due.
void AdvanceFile(Progress& progress, int notes_done);
/// The file is done.
void EndFile(Progress& progress);
/// Takes the bar off the terminal, before a message and at the end.
void HideProgress(Progress& progress);

} // namespace tonex
