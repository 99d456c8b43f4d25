#include "view/drawing_commands.h"

#include "app/enabling_commands.h"
#include "app/layout_commands.h"
#include "app/sndmain.h"
#include "link/settings_commands.h"
#include "platform/settings.h"
#include "score/int16.h"
#include "score/number_text.h"
#include "view/note_names.h"
#include "view/staff.h"
#include "view/tempo_commands.h"

#include <algorithm>
#include <cassert>

namespace tonex {

namespace {

constexpr const wchar_t* kDoremiKey = L"DoremiFlag";

// Shows a slot in a picture; the pressed key is left to the caller.
void DrawPicture(sndmain& window, int image, int slot) {
    const Entry& entry = SlotAt(window, slot);
    NoteImage& picture = At(window.imgNote, image);
    picture.Picture = PictureOf(entry.code, entry.pitch);
    picture.Sharp = IsNote(entry.code) && IsSharp(entry.pitch);
    picture.Visible = picture.Picture != 0;
    if (entry.code == kSeparator) {
        picture.place.Top = window.linSub[9].Y;
        picture.place.Height = window.linSub[4].Y - window.linSub[9].Y;
        return;
    }
    picture.place.Top = AsSigned(entry.position);
    picture.place.Height = kPictureHeight;
}

// Draws pictures `from` to `to` - 1 of the strip that starts with slot `first`, hides those behind the end.
void DrawPictures(sndmain& window, int first, int from, int to) {
    int image = from;
    for (; image < to; ++image) {
        const int slot = first + image;
        if (slot >= kUsableSlots || SlotAt(window, slot).code == kEmpty) break;
        DrawPicture(window, image, slot);
    }
    for (; image < to; ++image)
        At(window.imgNote, image).Visible = false;
}

// Everything of a picture but its place from left to right.
void TakeOver(NoteImage& picture, const NoteImage& other) {
    const int left = picture.place.Left;
    picture = other;
    picture.place.Left = left;
}

void ClearHighlight(sndmain& window) {
    if (window.highlighted_button != 0) {
        const int slot = LengthButtonSlot(window.highlighted_button);
        At(window.cbtNote, slot).Picture = static_cast<std::int16_t>(slot + 1);
        window.highlighted_button = 0;
    }
    if (!window.highlighted_key) return;
    const PianoKey key = *window.highlighted_key;
    ControlOf(window, key).BackColor = key.kind == KeyKind::White ? kWhiteKeyColour : kBlackKeyColour;
    window.highlighted_key.reset();
}

void HighlightKey(sndmain& window, PianoKey key) {
    ControlOf(window, key).BackColor = kPressedKeyColour;
    window.highlighted_key = key;
}

} // namespace

void ClearAll(sndmain& window) {
    ClearScore(window.score);
    RedrawGrid(window); // one column, so that cursor, selection and view are on it
    SelectTempo(window, At(window.tables.tempo_list, window.tables.default_tempo_index));
    RefreshNoteDisplay(window);
    RefreshEnabling(window);
}

void RedrawGrid(sndmain& window) {
    ScoreGrid& grid = window.grdScore;
    // A full score has 509 columns and no end column; kept as it is.
    grid.Cols = std::min<int>(window.score.end_count, kMaxEntries);
    for (int column = 0; column < grid.Cols; ++column)
        SetCellText(window, column, SlotAt(window, column).pitch);
    std::fill(grid.Text.begin() + grid.Cols, grid.Text.end(), CellText());
    grid.view.Col = std::clamp(grid.view.Col, 0, grid.Cols - 1);
    grid.view.ColSel = std::clamp(grid.view.ColSel, 0, grid.Cols - 1);
    grid.view.LeftCol = std::clamp(grid.view.LeftCol, 0, LastLeftCol(grid));
}

void SetCellText(sndmain& window, int column, std::uint16_t pitch) {
    At(window.grdScore.Text, column) = NoteNameOf(pitch, window.doremi);
}

void DrawStrip(sndmain& window, int first) {
    assert(first >= 0);
    DrawPictures(window, first, 0, kStripPictures);
    window.score.first_shown = static_cast<std::int16_t>(first);
    ShowPressedKey(window);
}

void ScrollStrip(sndmain& window, int first) {
    assert(first >= 0);
    auto& pictures = window.imgNote;
    const int by = first - window.score.first_shown;
    window.grdScore.view.LeftCol = first;
    if (by == 0) return;
    if (by > 0) {
        const int kept = std::max(kStripPictures - by, 0);
        for (int image = 0; image < kept; ++image)
            TakeOver(At(pictures, image), At(pictures, image + by));
        DrawPictures(window, first, kept, kStripPictures);
    } else {
        const int drawn = std::min(-by, kStripPictures);
        for (int image = kStripPictures - 1; image >= drawn; --image)
            TakeOver(At(pictures, image), At(pictures, image + by));
        DrawPictures(window, first, 0, drawn);
    }
    window.score.first_shown = static_cast<std::int16_t>(first);
}

void DrawStripImage(sndmain& window, int image, int slot) {
    assert(image >= 0 && image < kStripPictures && slot >= 0 && slot < kUsableSlots);
    DrawPicture(window, image, slot);
    if (SlotAt(window, slot).code != kSeparator) ShowPressedKey(window);
}

void ShowPressedKey(sndmain& window) {
    ClearHighlight(window);
    const ScoreGrid& grid = window.grdScore;
    if (RangeSelected(grid.view)) return;
    if (grid.view.Col == EndColumn(window.score) && window.score.end_count < kMaxEndCount) return;
    const Entry& entry = SlotAt(window, grid.view.Col);
    if (!IsNote(entry.code) && !IsRest(entry.code)) return;

    const int slot = entry.code - 1;
    At(window.cbtNote, slot).Picture = static_cast<std::int16_t>(entry.code + kLengthButtons);
    window.highlighted_button = static_cast<std::int16_t>(LengthButtonIndex(slot));
    if (!IsNote(entry.code)) return;
    if (const auto key = KeyOfPitch(entry.pitch)) HighlightKey(window, *key);
}

void UpdateStripCursor(sndmain& window) {
    const int place = window.grdScore.view.Col - window.score.first_shown;
    window.score.strip_cursor = static_cast<std::int16_t>(std::clamp(place, 0, kStripPictures - 1));
}

void KeepColumnInView(sndmain& window, int column) {
    const int left = window.grdScore.view.LeftCol;
    ScrollStrip(window, std::clamp(left, column - kGridColumnsShown + 1, column));
    UpdateStripCursor(window);
}

int SideOfCursor(const GridView& view) {
    if (view.ColSel < view.LeftCol) return -1;
    return view.ColSel >= view.LeftCol + kGridColumnsShown ? 1 : 0;
}

void ToggleDoremi(sndmain& window) {
    window.doremi = !window.doremi;
    window.item(MenuItem::mnuDoremi).Checked = window.doremi;
    LayoutKeyLabels(window);
    RedrawGrid(window);
    // The flag as a 16-bit truth value: all bits set reads -1.
    WriteSetting(kSettingsApplication, kSettingsSection, kDoremiKey, window.doremi ? L"-1" : L"0");
}

void LoadDoremiSetting(sndmain& window) {
    const std::wstring text = ReadSetting(kSettingsApplication, kSettingsSection, kDoremiKey, L"0");
    window.doremi = NumericValueOf(text) != 0;
    window.item(MenuItem::mnuDoremi).Checked = window.doremi;
}

void RefreshNoteDisplay(sndmain& window) {
    DrawStrip(window, window.score.first_shown);
}

} // namespace tonex
