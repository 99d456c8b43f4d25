// What the user sees of the score: grid texts, the strip's pictures, key captions, the pressed key.
#pragma once

#include <cstdint>

namespace tonex {

struct sndmain;

/// Works StaffOffset out from the screen's scale and the first two staff lines, hides the strip's pictures
/// and moves each right by the offset (horizontal by a vertical amount; kept as it is). Run once, at set-up.
void ComputeStaffOffset(sndmain& window);

/// Sets sizes, places and tab order of the piano keys for the window's client width.
void LayoutKeys(sndmain& window);

/// Captions the piano keys in the current name mode and moves each label to its key.
void LayoutKeyLabels(sndmain& window);

/// Clear: an empty score, grid and strip; the default tempo; changed flag off; enabling refreshed.
void ClearAll(sndmain& window);

/// Rebuilds the grid from the score: column count, widths and texts. Col, ColSel and LeftCol are kept,
/// brought inside the columns there are.
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

/// Number of a slot's picture: 1 to 20 notes with stem up, 21 to 40 rests, 41 to 57 notes with stem down, 58
/// bar line; 0 when there is nothing to draw (empty slot, foreign code).
std::int16_t PictureOf(std::uint16_t code, std::uint16_t pitch);

/// Ledger lines that a note in the strip needs.
struct LedgerLines {
    int first_y = 0; ///< of the line nearest to the staff, in the strip's coordinates, twips
    int step_y = 0;  ///< to the next one: -120 above the staff, 120 below it
    int count = 0;
};
/// The ledger lines of a note at a staff position (StaffOffset included in both).
LedgerLines LedgerLinesOf(std::int16_t staff_position, std::int16_t staff_offset);

/// Vertical place of the centre of a note head in the strip for a staff position, in twips: the same at every
/// scale, because the offset that the position contains is taken out again.
int HeadCentreOf(std::int16_t staff_position, std::int16_t staff_offset);

/// Do-re-mi names on or off: captions, texts and setting; score and changed flag untouched.
void ToggleDoremi(sndmain& window);

/// Reads the do-re-mi setting into the record and the menu's check mark.
void LoadDoremiSetting(sndmain& window);

/// The window's state refresh after note entry: strip pictures, pressed key and grid agree with the score.
void RefreshNoteDisplay(sndmain& window);

} // namespace tonex
