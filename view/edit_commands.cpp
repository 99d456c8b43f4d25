#include "view/edit_commands.h"

#include "app/enabling_commands.h"
#include "app/sndmain.h"
#include "score/int16.h"
#include "view/drawing_commands.h"

#include <algorithm>
#include <optional>

namespace tonex {

namespace {

// The selection without the end column; nothing when it holds no entry.
std::optional<ColumnRange> SelectedEntries(const sndmain& window) {
    ColumnRange range = SelectedColumns(window.grdScore.view);
    const int end = EndColumn(window.score);
    if (range.lo >= end) return std::nullopt;
    range.hi = std::min(range.hi, end - 1);
    return range;
}

// Entries from a column to the end, and the empty slot that ends them, move right. The caller knows that they
// fit.
void MoveRight(sndmain& window, int column, int count) {
    const auto begin = window.score.sound.begin();
    const auto behind_end = begin + window.score.end_count;
    std::move_backward(begin + column, behind_end, behind_end + count);
}

void PutCursor(sndmain& window, int column) {
    ScoreGrid& grid = window.grdScore;
    grid.view.Col = std::clamp(column, 0, grid.Cols - 1);
    grid.view.ColSel = grid.view.Col;
    KeepColumnInView(window, grid.view.Col);
}

void FinishEdit(sndmain& window) {
    window.score.changed = true;
    RefreshEnabling(window);
}

// What a transposition makes of a note's pitch and staff position; false when 16 bits do not hold it.
using Transposition = bool (*)(Entry& entry, int amount, std::int16_t staff_offset);

// The position moves by an octave's height; it is not worked out anew, which below pitch 1 would differ. Kept
// as it is.
bool ShiftOctave(Entry& entry, int octaves, std::int16_t) {
    const auto pitch = ToInt16(AsSigned(entry.pitch) + 12 * octaves);
    const auto position = ToInt16(AsSigned(entry.position) - kOctaveHeight * octaves);
    if (!pitch || !position) return false;
    entry.pitch = AsCell(*pitch);
    entry.position = AsCell(*position);
    return true;
}

bool ShiftHalfTone(Entry& entry, int half_tones, std::int16_t staff_offset) {
    const auto pitch = ToInt16(AsSigned(entry.pitch) + half_tones);
    if (!pitch) return false;
    const auto position = StaffPositionOf(AsCell(*pitch), staff_offset);
    if (!position) return false;
    entry.pitch = AsCell(*pitch);
    entry.position = AsCell(*position);
    return true;
}

void Transpose(sndmain& window, Transposition transposition, int amount) {
    SaveUndo(window);
    // Tried on a copy: a melody with one note that can not follow stays as it is.
    auto sound = window.score.sound;
    const int end = EndColumn(window.score);
    for (int slot = 0; slot < end; ++slot) {
        Entry& entry = At(sound, slot);
        if (IsNote(entry.code) && !transposition(entry, amount, window.StaffOffset)) return;
    }
    window.score.sound = sound;
    for (int slot = 0; slot < end; ++slot) {
        const Entry& entry = SlotAt(window, slot);
        if (IsNote(entry.code)) SetCellText(window, slot, entry.pitch);
    }
    DrawStrip(window, window.grdScore.view.LeftCol);
    FinishEdit(window);
}

} // namespace

void SaveUndo(sndmain& window) {
    window.undo = {window.score, window.current_length, window.grdScore.view};
}

void SwapUndo(sndmain& window) {
    const UndoCopy before = window.undo;
    SaveUndo(window);
    window.score = before.score;
    window.current_length = before.current_length;
    window.imgNow.Picture = before.current_length;
    RedrawGrid(window);
    window.grdScore.view = before.view;
    DrawStrip(window, window.score.first_shown);
    FinishEdit(window);
}

void mnuCopy_Click(sndmain& window) {
    const auto range = SelectedEntries(window);
    if (!range) return;
    const auto begin = window.score.sound.begin();
    window.clipboard.columns.assign(begin + range->lo, begin + range->hi + 1);
    window.clipboard.filled = true;
    RefreshEnabling(window);
}

void mnuCut_Click(sndmain& window) {
    mnuCopy_Click(window);
    mnuDelete_Click(window);
}

void mnuDelete_Click(sndmain& window) {
    SaveUndo(window);
    Score& score = window.score;
    ColumnRange range = SelectedColumns(window.grdScore.view);
    // With 508 entries counted and one more in the last column the selection stands as it is: the column that
    // would be the end column holds an entry. Kept as it is.
    const bool last_column_filled =
        score.end_count == kMaxEntries && SlotAt(window, kLastColumn).code != kEmpty;
    if (!last_column_filled) {
        const auto entries = SelectedEntries(window);
        if (!entries) return;
        range = *entries;
    }

    const int count = range.hi - range.lo + 1;
    const auto begin = score.sound.begin();
    const auto is_empty = [](const Entry& entry) { return entry.code == kEmpty; };
    const auto old_end = std::find_if(begin, begin + kUsableSlots, is_empty);
    const auto behind_selection = std::min(begin + range.lo + count, old_end);
    const auto new_end = std::move(behind_selection, old_end, begin + range.lo);
    std::fill(new_end, old_end, Entry());
    score.end_count = static_cast<std::int16_t>(new_end - begin + 1);

    RedrawGrid(window);
    PutCursor(window, range.lo);
    DrawStrip(window, window.grdScore.view.LeftCol);
    FinishEdit(window);
}

void mnuInsert_Click(sndmain& window) {
    SaveUndo(window);
    Score& score = window.score;
    ScoreGrid& grid = window.grdScore;
    ColumnRange range = SelectedColumns(grid.view);
    const int count = std::min(range.hi - range.lo + 1, kInsertLimit - score.end_count);
    if (count <= 0) return;
    range.hi = range.lo + count - 1;

    MoveRight(window, range.lo, count);
    const Entry blank{kSeparator, 0, 0};
    std::fill_n(score.sound.begin() + range.lo, count, blank);
    score.end_count = static_cast<std::int16_t>(score.end_count + count);
    // The selection lies on the blanks, its ends the way round that they were.
    const bool backwards = grid.view.ColSel < grid.view.Col;
    grid.view.Col = backwards ? range.hi : range.lo;
    grid.view.ColSel = backwards ? range.lo : range.hi;
    RedrawGrid(window);
    DrawStrip(window, score.first_shown);
    UpdateStripCursor(window);
    FinishEdit(window);
}

void mnuPaste_Click(sndmain& window) {
    SaveUndo(window);
    Score& score = window.score;
    const auto& columns = window.clipboard.columns;
    const int position = SelectedColumns(window.grdScore.view).lo;
    const int count = std::min(static_cast<int>(columns.size()), kMaxEndCount - score.end_count);
    if (count <= 0) return;

    MoveRight(window, position, count);
    std::copy_n(columns.begin(), count, score.sound.begin() + position);
    score.end_count = static_cast<std::int16_t>(score.end_count + count);
    RedrawGrid(window);
    PutCursor(window, position + count);
    DrawStrip(window, window.grdScore.view.LeftCol);
    FinishEdit(window);
}

void mnuOctUp_Click(sndmain& window) {
    Transpose(window, ShiftOctave, 1);
}

void mnuOctDown_Click(sndmain& window) {
    Transpose(window, ShiftOctave, -1);
}

void mnuSoundUp_Click(sndmain& window) {
    Transpose(window, ShiftHalfTone, 1);
}

void mnuSoundDown_Click(sndmain& window) {
    Transpose(window, ShiftHalfTone, -1);
}

} // namespace tonex
