// The tempo box with its list, and the texts on its line.
#pragma once

#include "view/tempo_commands.h"

#include "platform/windows/desktop_windows.h"

#include <optional>

namespace tonex {

struct MainWindow;

inline constexpr UINT kTempoId = 1300; ///< what WM_COMMAND calls the box

/// What the box has to remember between two events.
struct TempoBoxState {
    std::optional<TempoChoice> before_list; ///< while the list is open: what to go back to
    WNDPROC edit_procedure = nullptr;       ///< the system's own, of the text field
    WNDPROC list_procedure = nullptr;       ///< of the list
    int wheel = 0;                          ///< mouse wheel travel not yet used
};

void CreateTempoBox(MainWindow& main, HINSTANCE instance);
/// A notification (CBN_...) of the box.
void TempoEvent(MainWindow& main, UINT notification);
/// Shows what of list, text and chosen item differs from the record.
void ShowTempoBox(MainWindow& main);
/// Puts the box in the middle of its row and the texts beside it on the line of its number: only the system
/// knows where in the box that is. For after they were placed.
void AlignTempoLine(MainWindow& main);
/// Gives a text the height of a line, its middle where it is.
void CentreInPlace(const MainWindow& main, HWND label);

} // namespace tonex
