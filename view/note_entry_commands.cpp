#include "view/note_entry_commands.h"

#include "app/enabling_commands.h"
#include "app/sndmain.h"
#include "score/int16.h"
#include "view/drawing_commands.h"
#include "view/edit_commands.h"
#include "view/note_names.h"

#include <algorithm>
#include <cassert>

namespace tonex {

namespace {

constexpr std::int16_t kHighestRaised = 74; ///< "+" leaves notes above it alone
constexpr std::int16_t kLowestLowered = 28; ///< "-" leaves notes below it alone

void MoveTo(sndmain& window, int column) {
    window.grdScore.view.Col = column;
    window.grdScore.view.ColSel = column;
}

// A rest that is entered, and everything that is not a note, takes the code; a note keeps its length. The
// empty slot's code counts as one of 21 or more.
bool TakesCode(const Score& score, int column, std::uint16_t pitch) {
    const std::uint16_t code = At(score.sound, column).code;
    const bool appends = column == EndColumn(score) && score.end_count < kMaxEndCount;
    return appends || code > 20 || code == kSeparator || pitch == kEmpty;
}

void AppendColumn(sndmain& window) {
    ScoreGrid& grid = window.grdScore;
    Score& score = window.score;
    ++score.end_count;
    if (score.end_count == kMaxEndCount) return; // a full score shows no end column
    grid.Cols = score.end_count;
    const int end = EndColumn(score);
    SetCellText(window, end, SlotAt(window, end).pitch);
    MoveTo(window, end);
    if (score.strip_cursor < kStripPictures - 1) {
        ++score.strip_cursor;
    } else {
        ScrollStrip(window, score.first_shown + 1);
    }
}

void MoveOn(sndmain& window, int column) {
    // A full score has no end column behind its last column, 508: the cursor stays.
    if (column + 1 >= window.grdScore.Cols) return;
    MoveTo(window, column + 1);
    KeepColumnInView(window, column + 1);
}

// EnterAtCursor leaves grid, strip and pressed key as the score has them: of the window's state only the
// enabling is behind.
void EnterKey(sndmain& window, std::int16_t pitch) {
    SaveUndo(window);
    EnterAtCursor(window, window.current_length, AsCell(pitch));
    RefreshEnabling(window);
}

void ChangeLength(sndmain& window, int column, std::uint16_t code) {
    SaveUndo(window);
    SlotAt(window, column).code = code;
    const int image = column - window.score.first_shown;
    if (image >= 0 && image < kStripPictures) DrawStripImage(window, image, column);
    if (column != kLastColumn) MoveTo(window, column + 1);
    KeepColumnInView(window, window.grdScore.view.Col);
    window.score.changed = true;
    ShowPressedKey(window);
}

void ChooseLength(sndmain& window, std::int16_t code) {
    window.imgNow.Picture = code;
    window.current_length = code;
    // Choosing a length counts as a change though the score is untouched; kept as it is.
    window.score.changed = true;
    ShowPressedKey(window);
}

} // namespace

void EnterAtCursor(sndmain& window, int code, std::uint16_t pitch) {
    const ScoreGrid& grid = window.grdScore;
    Score& score = window.score;
    if (RangeSelected(grid.view)) return;
    const int column = grid.view.Col;
    assert(column >= 0 && column < kUsableSlots);
    if (code > 100) code -= 80;

    // In a full score the slot behind the last entry is written all the same, but the score does not grow;
    // kept as it is. No event leads there.
    const bool appends = column == EndColumn(score) && score.end_count < kMaxEndCount;
    Entry& entry = SlotAt(window, column);
    if (TakesCode(score, column, pitch)) entry.code = static_cast<std::uint16_t>(code);
    entry.pitch = pitch;
    SetCellText(window, column, pitch);
    entry.position = AsCell(StaffPositionOf(pitch, window.StaffOffset).value_or(kRestPosition));

    if (column >= score.first_shown + kStripPictures) ScrollStrip(window, column - kStripPictures + 1);
    if (column < score.first_shown) ScrollStrip(window, column);
    score.strip_cursor = static_cast<std::int16_t>(column - score.first_shown);
    DrawStripImage(window, score.strip_cursor, column);

    if (appends) {
        AppendColumn(window);
    } else {
        MoveOn(window, column);
    }
    score.changed = true;
    ShowPressedKey(window);
}

void kenWhite_Click(sndmain& window, int index) {
    EnterKey(window, WhiteKeyPitch(index));
}

void kenBlack_Click(sndmain& window, int index) {
    EnterKey(window, BlackKeyPitch(index));
}

void cbtNote_Click(sndmain& window, int index) {
    assert((index >= 1 && index <= 20) || (index >= 101 && index <= 120));
    if (RangeSelected(window.grdScore.view)) return;
    if (index > 100) {
        SaveUndo(window);
        EnterAtCursor(window, index - 80, kEmpty);
        RefreshEnabling(window);
        return;
    }
    const int column = window.grdScore.view.Col;
    if (IsNote(SlotAt(window, column).code)) {
        ChangeLength(window, column, static_cast<std::uint16_t>(index));
    } else {
        ChooseLength(window, static_cast<std::int16_t>(index));
    }
}

void grdScore_KeyPress(sndmain& window, wchar_t character) {
    const Entry entry = SlotAt(window, window.grdScore.view.Col);
    if (!IsSounding(entry.code)) return;
    SaveUndo(window); // whatever the character; kept as it is
    if (RangeSelected(window.grdScore.view) || !IsNote(entry.code)) return;

    // Narrower than the transpositions of the Edit menu, which have no bounds: what "+" and "-" reach stays
    // on the piano.
    const std::int16_t pitch = AsSigned(entry.pitch);
    int step = 0;
    if (character == L'+' && pitch <= kHighestRaised) step = 1;
    if (character == L'-' && pitch >= kLowestLowered) step = -1;
    if (step == 0) return;
    EnterAtCursor(window, window.current_length, AsCell(static_cast<std::int16_t>(pitch + step)));
    RefreshEnabling(window);
}

void grdScore_SelChange(sndmain& window, int column, int far_end) {
    ScoreGrid& grid = window.grdScore;
    const GridView before = grid.view;
    grid.view.Col = std::clamp(column, 0, grid.Cols - 1);
    grid.view.ColSel = std::clamp(far_end, 0, grid.Cols - 1);
    // The view follows the end of the selection that the user moves: the far one, also where it can go no
    // further.
    const bool only_anchor_moved = grid.view.ColSel == before.ColSel && grid.view.Col != before.Col;
    KeepColumnInView(window, only_anchor_moved ? grid.view.Col : grid.view.ColSel);
    ShowPressedKey(window);
}

bool ShowHiddenCursor(sndmain& window) {
    // A melody is opened with its beginning in view and the cursor behind its last entry, and the view can be
    // scrolled away from the cursor at any time. A step from a place out of sight would throw the view to
    // where nobody looked for it; once the cursor is seen, the next press is a step that can be followed.
    if (SideOfCursor(window.grdScore.view) == 0) return false;
    KeepColumnInView(window, window.grdScore.view.ColSel);
    return true;
}

void grdScore_MouseUp(sndmain& window) {
    UpdateStripCursor(window);
}

void grdScore_Scroll(sndmain& window, int left_col) {
    ScoreGrid& grid = window.grdScore;
    ScrollStrip(window, std::clamp(left_col, 0, LastLeftCol(grid)));
    const int place = grid.view.Col - window.score.first_shown;
    if (place >= 0 && place < kStripPictures) window.score.strip_cursor = static_cast<std::int16_t>(place);
}

void imgNote_Click(sndmain& window, int index) {
    assert(index >= 0 && index < kStripPictures);
    const int column = window.score.first_shown + index;
    if (column >= window.grdScore.Cols) return;
    MoveTo(window, column);
    window.score.strip_cursor = static_cast<std::int16_t>(index);
    ShowPressedKey(window);
}

} // namespace tonex
