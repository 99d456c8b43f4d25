#include "view/drawing_commands.h"

#include "app/enabling_commands.h"
#include "app/sndmain.h"
#include "link/settings_commands.h"
#include "pictures/glyphs.h"
#include "platform/settings.h"
#include "score/int16.h"
#include "view/note_names.h"
#include "view/tempo_commands.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace tonex {

namespace {

constexpr int kBottomStaffLine = kTopStaffLine + 4 * kStaffSpace;
constexpr std::int16_t kBarLinePicture = 58;
constexpr const wchar_t* kDoremiKey = L"DoremiFlag";

std::size_t At(int index) {
    return static_cast<std::size_t>(index);
}

int RoundHalfToEven(double value) {
    return static_cast<int>(std::nearbyint(value));
}

// 19 and 15 pixels of the ordinary screen, in whole pixels of this one, as twips.
int KeyWidth(int pixels, float twips_per_pixel) {
    const float whole_pixels = std::trunc(static_cast<float>(pixels * 15) / twips_per_pixel);
    return RoundHalfToEven(static_cast<double>(whole_pixels * twips_per_pixel));
}

// Shows a slot in a picture; the pressed key is left to the caller.
void DrawPicture(sndmain& window, int image, int slot) {
    const Entry& entry = window.score.sound[At(slot)];
    NoteImage& picture = window.imgNote[At(image)];
    picture.Picture = PictureOf(entry.code, entry.pitch);
    picture.place.Width = kPictureWidth;
    picture.Sharp = IsNote(entry.code) && IsSharp(entry.pitch);
    if (entry.code == kSeparator) {
        picture.place.Top = window.linSub[9].Y;
        picture.place.Height = window.linSub[4].Y - window.linSub[9].Y;
        picture.Stretch = true;
        picture.Visible = true;
        return;
    }
    picture.place.Top = AsSigned(entry.position);
    picture.place.Height = kPictureHeight;
    picture.Stretch = false;
    picture.Visible = picture.Picture != 0;
}

// Draws pictures `from` to `to` - 1 of the strip that starts with slot `first`, hides those behind the end.
void DrawPictures(sndmain& window, int first, int from, int to) {
    int image = from;
    for (; image < to; ++image) {
        const int slot = first + image;
        if (slot >= kUsableSlots || window.score.sound[At(slot)].code == kEmpty) break;
        DrawPicture(window, image, slot);
    }
    for (; image < to; ++image)
        window.imgNote[At(image)].Visible = false;
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
        window.cbtNote[At(slot)].Picture = static_cast<std::int16_t>(slot + 1);
        window.highlighted_button = 0;
    }
    if (!window.highlighted_key) return;
    const PianoKey key = *window.highlighted_key;
    if (key.kind == KeyKind::White) window.kenWhite[At(key.index)].BackColor = kWhiteKeyColour;
    if (key.kind == KeyKind::Black) window.kenBlack[At(key.index)].BackColor = kBlackKeyColour;
    window.highlighted_key.reset();
}

void HighlightKey(sndmain& window, PianoKey key) {
    PianoKeyControl& control =
        key.kind == KeyKind::White ? window.kenWhite[At(key.index)] : window.kenBlack[At(key.index)];
    control.BackColor = kPressedKeyColour;
    window.highlighted_key = key;
}

} // namespace

void ComputeStaffOffset(sndmain& window) {
    const int scale = RoundHalfToEven(static_cast<double>(window.screen.twips_per_pixel_y) * 16);
    const int spacing = window.Line1[1].Y - window.Line1[0].Y;
    window.StaffOffset = static_cast<std::int16_t>(RoundHalfToEven((2 * spacing - scale) * 5 / 6.0));
    for (NoteImage& picture : window.imgNote) {
        picture.Visible = false;
        // A horizontal shift by a vertical amount; kept as it is.
        picture.place.Left += window.StaffOffset;
    }
}

void LayoutKeys(sndmain& window) {
    const int white_width = KeyWidth(19, window.screen.twips_per_pixel_x);
    const int black_width = KeyWidth(15, window.screen.twips_per_pixel_x);
    const int left = (window.ClientWidth - kWhiteKeys * white_width) / 2;

    for (int i = 0; i < kWhiteKeys; ++i) {
        window.kenWhite[At(i)].place.Left = left + i * white_width;
        window.kenWhite[At(i)].place.Width = white_width;
    }
    int black_left = left + 140; // not scaled with the screen; kept as it is
    for (int i = 0; i < kBlackKeys; ++i) {
        window.kenBlack[At(i)].place.Left = black_left;
        window.kenBlack[At(i)].place.Width = black_width;
        const bool gap_follows = i % 5 == 1 || i % 5 == 4;
        black_left += gap_follows ? 2 * white_width : white_width;
    }

    std::int16_t tab_index = window.kenWhite[0].TabIndex;
    int black = 0;
    for (int j = 0; j < kWhiteKeys; ++j) {
        window.kenWhite[At(j)].TabIndex = tab_index++;
        if (j % 7 == 2 || j % 7 == 6 || j == 28) continue;
        window.kenBlack[At(black++)].TabIndex = tab_index++;
    }
}

void LayoutKeyLabels(sndmain& window) {
    for (int i = 0; i < kWhiteKeys; ++i) {
        KeyLabel& label = window.lblWNote[At(i)];
        const int semitone = (WhiteKeyPitch(i) - kLowestKeyPitch) % 12;
        label.Caption = KeyCaptionOf(semitone, window.KeyboardBaseOctave + i / 7, window.doremi);
        label.place.Left = window.kenWhite[At(i)].place.Left;
    }
    for (int i = 0; i < kBlackKeys; ++i) {
        KeyLabel& label = window.lblBNote[At(i)];
        const Rect& key = window.kenBlack[At(i)].place;
        const int semitone = (BlackKeyPitch(i) - kLowestKeyPitch) % 12;
        label.Caption = KeyCaptionOf(semitone, window.KeyboardBaseOctave + i / 5, window.doremi);
        // The label is wider than the key and stands centred over it.
        label.place.Left = key.Left - (label.place.Width - key.Width) / 2;
    }
}

void ClearAll(sndmain& window) {
    ClearScore(window.score);
    RedrawGrid(window); // one column, so that cursor, selection and view are on it
    DrawStrip(window, 0);
    const auto default_index = static_cast<std::size_t>(window.tables.default_tempo_index);
    SelectTempo(window, window.tables.tempo_list[default_index]);
    RefreshNoteDisplay(window);
    RefreshEnabling(window);
}

void RedrawGrid(sndmain& window) {
    ScoreGrid& grid = window.grdScore;
    grid.Redraw = false;
    // A full score has 509 columns and no end column; kept as it is.
    grid.Cols = std::min<int>(window.score.end_count, kMaxEntries);
    for (int column = 0; column < kSlots; ++column) {
        const bool exists = column < grid.Cols;
        grid.ColWidth[At(column)] = exists ? window.standard_col_width : std::int16_t{0};
        if (exists) SetCellText(window, column, window.score.sound[At(column)].pitch);
        if (!exists) grid.Text[At(column)] = CellText();
    }
    grid.view.Col = std::clamp(grid.view.Col, 0, grid.Cols - 1);
    grid.view.ColSel = std::clamp(grid.view.ColSel, 0, grid.Cols - 1);
    grid.view.LeftCol = std::clamp(grid.view.LeftCol, 0, LastLeftCol(grid));
    grid.Redraw = true;
}

void SetCellText(sndmain& window, int column, std::uint16_t pitch) {
    assert(column >= 0 && column < kSlots);
    window.grdScore.Text[At(column)] = NoteNameOf(pitch, window.doremi);
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
            TakeOver(pictures[At(image)], pictures[At(image + by)]);
        DrawPictures(window, first, kept, kStripPictures);
    } else {
        const int drawn = std::min(-by, kStripPictures);
        for (int image = kStripPictures - 1; image >= drawn; --image)
            TakeOver(pictures[At(image)], pictures[At(image + by)]);
        DrawPictures(window, first, 0, drawn);
    }
    window.score.first_shown = static_cast<std::int16_t>(first);
}

void DrawStripImage(sndmain& window, int image, int slot) {
    assert(image >= 0 && image < kStripPictures && slot >= 0 && slot < kUsableSlots);
    DrawPicture(window, image, slot);
    if (window.score.sound[At(slot)].code != kSeparator) ShowPressedKey(window);
}

void ShowPressedKey(sndmain& window) {
    ClearHighlight(window);
    const ScoreGrid& grid = window.grdScore;
    if (RangeSelected(grid.view)) return;
    if (grid.view.Col == EndColumn(window.score) && window.score.end_count < kMaxEndCount) return;
    const Entry& entry = window.score.sound[At(grid.view.Col)];
    if (!IsNote(entry.code) && !IsRest(entry.code)) return;

    const int slot = entry.code - 1;
    window.cbtNote[At(slot)].Picture = static_cast<std::int16_t>(entry.code + 40);
    window.highlighted_button = static_cast<std::int16_t>(LengthButtonIndex(slot));
    if (!IsNote(entry.code)) return;
    if (const auto key = KeyOfPitch(entry.pitch)) HighlightKey(window, *key);
}

void UpdateStripCursor(sndmain& window) {
    const int place = window.grdScore.view.Col - window.score.first_shown;
    window.score.strip_cursor = static_cast<std::int16_t>(std::clamp(place, 0, kStripPictures - 1));
}

void KeepColumnInView(sndmain& window, int column) {
    int left = window.grdScore.view.LeftCol;
    if (column < left) left = column;
    if (column >= left + kGridColumnsShown) left = column - kGridColumnsShown + 1;
    ScrollStrip(window, left);
    UpdateStripCursor(window);
}

std::int16_t PictureOf(std::uint16_t code, std::uint16_t pitch) {
    if (code == kSeparator) return kBarLinePicture;
    if (!IsNote(code) && !IsRest(code)) return 0;
    const bool stem_down = AsSigned(pitch) >= 50 && code <= 17;
    return static_cast<std::int16_t>(stem_down ? code + 40 : code);
}

LedgerLines LedgerLinesOf(std::int16_t staff_position, std::int16_t staff_offset) {
    const int head = HeadCentreOf(staff_position, staff_offset);
    if (head <= kTopStaffLine - kStaffSpace) {
        return {kTopStaffLine - kStaffSpace, -kStaffSpace, (kTopStaffLine - head) / kStaffSpace};
    }
    if (head >= kBottomStaffLine + kStaffSpace) {
        return {kBottomStaffLine + kStaffSpace, kStaffSpace, (head - kBottomStaffLine) / kStaffSpace};
    }
    return {};
}

int HeadCentreOf(std::int16_t staff_position, std::int16_t staff_offset) {
    return staff_position + kHeadCentre - staff_offset;
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
