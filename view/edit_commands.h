// The Edit menu: clipboard, insertion and deletion, transposition, one level of Undo. No command shows a
// message: one that can not act does nothing.
#pragma once

namespace tonex {

struct sndmain;

/// Copies score and view into the undo copy.
void SaveUndo(sndmain& window);
/// Undo: exchanges score and undo copy; its own inverse.
void SwapUndo(sndmain& window);

void mnuCopy_Click(sndmain& window);
void mnuCut_Click(sndmain& window);
void mnuDelete_Click(sndmain& window);
void mnuInsert_Click(sndmain& window);
void mnuPaste_Click(sndmain& window);
void mnuOctUp_Click(sndmain& window);
void mnuOctDown_Click(sndmain& window);
void mnuSoundUp_Click(sndmain& window);
void mnuSoundDown_Click(sndmain& window);

} // namespace tonex
