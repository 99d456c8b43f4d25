// The Edit menu: clipboard, insertion and deletion, transposition, one level of Undo. No command shows a
// message: one that can not act does nothing.
#pragma once

#include "score/score.h"

namespace tonex {

struct sndmain;

/// The highest end count that Insert leads to. One entry short of what the score can hold and Paste fills;
/// kept as it is.
inline constexpr int kInsertLimit = kMaxEndCount - 1;

/// Copies score, current length and view into the undo copy. Every edit command but Copy begins with it,
/// before any condition is tested: one that then does nothing has replaced the undo copy all the same, kept
/// as it is.
void SaveUndo(sndmain& window);
/// Undo: exchanges score and undo copy. Its own inverse, kept as it is: a second Undo takes the first one
/// back.
void SwapUndo(sndmain& window);

/// Copies the selected entries to the clipboard; nothing on the end column.
void mnuCopy_Click(sndmain& window);
/// Copy, then Delete.
void mnuCut_Click(sndmain& window);
/// Deletes the selected entries; later ones move left.
void mnuDelete_Click(sndmain& window);
/// Inserts as many blank entries as columns are selected in front of the selection, up to kInsertLimit.
void mnuInsert_Click(sndmain& window);
/// Inserts the clipboard in front of the selection, up to a full score.
void mnuPaste_Click(sndmain& window);

/// Transpositions of every note of the score by 12 half tones or by one, whatever is selected. They know no
/// bounds but those of 16 bits: where one note would leave them, all notes stay as they are.
void mnuOctUp_Click(sndmain& window);
void mnuOctDown_Click(sndmain& window);
void mnuSoundUp_Click(sndmain& window);
void mnuSoundDown_Click(sndmain& window);

} // namespace tonex
