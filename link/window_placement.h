// Where the main window stands, in screen pixels: what of it outlives a run.
#pragma once

namespace tonex {

/// Show states: 1 normal, 2 minimised, 3 maximised.
struct WindowPlacement {
    int show_state = 1;
    int left = 0, top = 0, right = 0, bottom = 0; ///< normal rectangle
};

} // namespace tonex
