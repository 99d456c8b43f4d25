// What the user sees of the score: grid texts, the strip's pictures, the pressed key, and do-re-mi names.
#pragma once

#include <cstdint>

namespace tonex {

struct GridView;
struct sndmain;

/// Clear: an empty score, grid and strip; the default tempo; changed flag off; enabling refreshed.
void ClearAll(sndmain& window);

/// Rebuilds the grid from the score: column count and texts. Cursor, selection and first visible
/// column are kept, brought inside the columns there are.
void RedrawGrid(sndmain& window);

/// Sets a cell's text from a pitch.
void SetCellText(sndmain& window, int column, std::uint16_t pitch);

/// Draws slots `first` to `first` + 29 into the strip's pictures up to the first empty slot, hides the rest;
/// first shown = `first`.
void DrawStrip(sndmain& window, int first);

/// As DrawStrip, when the strip agrees with the score: pictures that stay in sight move along, only the
/// others are drawn. The grid's first visible column goes with the strip.
void ScrollStrip(sndmain& window, int first);

/// Shows one slot (0 to 509) in one picture (0 to 29).
void DrawStripImage(sndmain& window, int image, int slot);

/// Highlights the length button and the piano key of the slot under the cursor, and no other.
void ShowPressedKey(sndmain& window);

/// Strip cursor = current column - first shown, brought within 0 to 29 while the cursor is out of view.
void UpdateStripCursor(sndmain& window);

/// Brings a column into the grid's 30 visible ones by the least scrolling; strip and strip cursor follow.
void KeepColumnInView(sndmain& window, int column);

/// On which side of the 30 visible columns the end of the selection lies that keys move: -1 left of them, 1
/// right of them, 0 among them.
int SideOfCursor(const GridView& view);

/// Do-re-mi names on or off: captions, texts and setting; score and changed flag untouched.
void ToggleDoremi(sndmain& window);

/// Reads the do-re-mi setting into the record and the menu's check mark.
void LoadDoremiSetting(sndmain& window);

/// Draws the strip anew from the slot that it starts with, and the pressed key.
void RefreshNoteDisplay(sndmain& window);

} // namespace tonex
