// Entering notes: piano keys, length buttons, the grid's and the strip's events.
#pragma once

#include <cstdint>

namespace tonex {

struct sndmain;

/// Writes one entry at the grid's cursor and moves on. Codes above 100 are the rest buttons' indices.
void EnterAtCursor(sndmain& window, int code, std::uint16_t pitch);

/// A click on white key 0 to 28, black key 0 to 19.
void kenWhite_Click(sndmain& window, int index);
void kenBlack_Click(sndmain& window, int index);
/// A click on a note-length button, index 1 to 20 or 101 to 120.
void cbtNote_Click(sndmain& window, int index);

/// A character typed on the grid: "+" and "-" raise and lower a note.
void grdScore_KeyPress(sndmain& window, wchar_t character);
/// The grid's cursor moved to `column` by mouse or keyboard; the selection runs to `far_end` (equal: no
/// range).
void grdScore_SelChange(sndmain& window, int column, int far_end);
/// A key was pressed that leads on from the cursor, such as an arrow. A cursor out of view is shown first,
/// and stays where it is: true, the key is used up.
bool ShowHiddenCursor(sndmain& window);
/// The mouse was released on the grid.
void grdScore_MouseUp(sndmain& window);
/// The grid was scrolled to a first visible column.
void grdScore_Scroll(sndmain& window, int left_col);
/// A click on strip picture 0 to 29.
void imgNote_Click(sndmain& window, int index);

} // namespace tonex
