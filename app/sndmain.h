// The main window as data: one record of all that the user can see or lose. Lengths are twips (1/1440 inch).
// Commands read and write this record; the Windows layer shows what differs from what it showed last.
#pragma once

#include "app/menus.h"
#include "link/link_state.h"
#include "platform/file_dialogs.h"
#include "platform/link_library.h"
#include "platform/screen.h"
#include "preview/timing_tables.h"
#include "score/rows.h"
#include "score/score.h"
#include "view/cell_text.h"
#include "view/keyboard.h"
#include "view/measures.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tonex {

inline constexpr int kLengthButtons = 40;
inline constexpr std::int16_t kFirstLength = 11; ///< current length at start-up, a quarter note
inline constexpr std::uint32_t kWhiteKeyColour = 0xFFFFFF;
inline constexpr std::uint32_t kBlackKeyColour = 0x000000;
inline constexpr std::uint32_t kPressedKeyColour = 0x3D8BD4; ///< red, green, blue from the highest byte down

struct Rect {
    int Left = 0, Top = 0, Width = 0, Height = 0;
    bool operator==(const Rect&) const = default;
};

/// A horizontal staff line.
struct Line {
    int X1 = 0, X2 = 0, Y = 0;
};

/// A note picture of the strip. Left and Top are relative to the staff panel.
struct NoteImage {
    Rect place;
    std::int16_t Picture = 0; ///< 1 to 59 in ImlNote; 0 = none
    bool Sharp = false;       ///< a sharp sign stands beside the head
    bool Visible = false;
    bool operator==(const NoteImage&) const = default;
};

struct LengthButton {
    Rect place;
    std::int16_t Picture = 0; ///< 1 to 40 normal, 41 to 80 chosen (code + 40)
    std::int16_t TabIndex = 0;
};

/// The picture of the current length.
struct LengthPicture {
    Rect place;
    std::int16_t Picture = 0; ///< 1 to 20
};

struct PianoKeyControl {
    Rect place;
    std::uint32_t BackColor = kWhiteKeyColour;
    std::int16_t TabIndex = 0;
    bool operator==(const PianoKeyControl&) const = default;
};

struct KeyLabel {
    Rect place;
    CellText Caption;
};

/// Cursor, selection and scrolling of the grid: what Undo brings back with the score.
struct GridView {
    int Col = 0;     ///< current column, the cursor
    int ColSel = 0;  ///< far end of the selection; equal to Col when no range is selected
    int LeftCol = 0; ///< first visible column
};

/// The one-row score grid. Column index = slot index.
struct ScoreGrid {
    Rect place;
    int Cols = 1; ///< columns it has, the end column included; 509 when the score is full
    GridView view;
    std::array<CellText, kSlots> Text{};
    std::int16_t TabIndex = 0;
};

struct TempoBox {
    Rect place;
    std::wstring Text;
    std::vector<std::wstring> List;
    int ListIndex = -1; ///< -1 = none selected
    std::int16_t TabIndex = 0;
};

struct Label {
    Rect place;
    std::wstring Caption;
};

struct MenuState {
    bool Enabled = true;
    bool Checked = false;
    bool operator==(const MenuState&) const = default;
};

/// The window with the moving bar while a melody is converted.
struct ConvertWindow {
    bool Loaded = false;
    int Left = 0, Top = 0, Width = 5400, Height = 1950; ///< on the screen
    int Min = 0, Max = 100, Value = 0;                  ///< of the bar
    bool operator==(const ConvertWindow&) const = default;
};

/// The document: where the score lives.
struct Document {
    std::wstring current_path;          ///< full path; empty for an untitled score
    std::int16_t location_flag = kOnPc; ///< kOnPc = a PC file, any other value = a device file
    std::wstring device_path;           ///< device-side path of the last device file saved
    FileDialog ComOpen;
    FileDialog ComSave;
};

/// A whole score and view, as the one level of Undo keeps it; an empty score before the first command that
/// saves it. The changed flag in it is not brought back: undoing is a change.
struct UndoCopy {
    Score score;
    std::int16_t current_length = kFirstLength;
    GridView view;
};

struct Clipboard {
    std::vector<Entry> columns;
    bool filled = false; ///< set by Copy, never cleared, not even by New; kept as it is
};

struct sndmain {
    // What the user would lose.
    Score score;
    Document document;
    UndoCopy undo;
    Clipboard clipboard;

    // Values that several rooms share.
    TimingTables tables;
    ScreenMeasures screen;
    bool doremi = false;                        ///< note names as do-re-mi
    std::int16_t StaffOffset = 0;               ///< twips added to every staff position
    std::int16_t KeyboardBaseOctave = 4;        ///< printed on the leftmost group of piano keys
    std::int16_t current_length = kFirstLength; ///< entry code 1 to 20 that a key click gives to a new note
    std::int16_t standard_col_width = kColumnWidth; ///< of a grid column, twips
    bool preview_busy = false;
    bool second_copy = false;            ///< this copy only hands over to the first
    std::vector<std::wstring> leftovers; ///< temporary files that could not be deleted yet
    LinkState link;
    LinkLibrary link_library{};

    // The window and its controls.
    std::wstring Caption;
    bool Enabled = true;
    int ClientWidth = 0, ClientHeight = 0; ///< twips
    Rect picStaff;                         ///< the staff panel; the strip's coordinates start at its corner
    std::array<Line, 5> Line1{};           ///< the staff's lines from the top down
    std::array<Line, 10> linSub{};         ///< their ends: 0 to 4 left of the strip from the top down, 5 to 9
                                           ///< right of it from the bottom up
    std::array<NoteImage, kStripPictures> imgNote{};
    ScoreGrid grdScore;
    std::array<LengthButton, kLengthButtons> cbtNote{}; ///< by LengthButtonSlot
    LengthPicture imgNow;
    TempoBox TempoCombo;
    Label lblTempo; ///< the classical name
    Label Label2;   ///< "Tempo"
    Label Label3;   ///< "Length"
    std::array<PianoKeyControl, kWhiteKeys> kenWhite{};
    std::array<PianoKeyControl, kBlackKeys> kenBlack{};
    std::array<KeyLabel, kWhiteKeys> lblWNote{};
    std::array<KeyLabel, kBlackKeys> lblBNote{};
    std::array<MenuState, kMenuItems> menu{};
    std::array<bool, kToolButtons> toolbar_enabled{};
    std::int16_t toolbar_tab_index = 0, strip_tab_index = 0;
    ConvertWindow FrmWavConvert;

    // What ShowPressedKey highlighted last.
    std::int16_t highlighted_button = 0; ///< index 1 to 20 or 101 to 120; 0 = none
    std::optional<PianoKey> highlighted_key;

    sndmain() {
        toolbar_enabled.fill(true);
        for (std::size_t slot = 0; slot < cbtNote.size(); ++slot) {
            cbtNote[slot].Picture = static_cast<std::int16_t>(slot + 1);
        }
        for (PianoKeyControl& key : kenBlack)
            key.BackColor = kBlackKeyColour;
        imgNow.Picture = current_length;
        Label2.Caption = L"Tempo";
        Label3.Caption = L"Length";
    }

    MenuState& item(MenuItem which) { return At(menu, which); }
    const MenuState& item(MenuItem which) const { return At(menu, which); }
};

/// Place in cbtNote of a note-length button's index: 1 to 20 give 0 to 19, 101 to 120 give 20 to 39.
constexpr int LengthButtonSlot(int index) {
    return index <= 20 ? index - 1 : index - 81;
}
/// The index of the button at a place in cbtNote.
constexpr int LengthButtonIndex(int slot) {
    return slot < 20 ? slot + 1 : slot + 81;
}
/// The highest first visible column: the last column then stands at the right edge.
constexpr int LastLeftCol(const ScoreGrid& grid) {
    return grid.Cols > kGridColumnsShown ? grid.Cols - kGridColumnsShown : 0;
}
/// The slot under a column of the grid, 0 to 510.
inline Entry& SlotAt(sndmain& window, int column) {
    return At(window.score.sound, column);
}
/// Control and label of a piano key.
inline PianoKeyControl& ControlOf(sndmain& window, PianoKey key) {
    return key.kind == KeyKind::White ? At(window.kenWhite, key.index) : At(window.kenBlack, key.index);
}
inline const PianoKeyControl& ControlOf(const sndmain& window, PianoKey key) {
    return key.kind == KeyKind::White ? At(window.kenWhite, key.index) : At(window.kenBlack, key.index);
}
inline const KeyLabel& LabelOf(const sndmain& window, PianoKey key) {
    return key.kind == KeyKind::White ? At(window.lblWNote, key.index) : At(window.lblBNote, key.index);
}
/// Columns of the grid, both included.
struct ColumnRange {
    int lo = 0, hi = 0;
};
/// The selected columns, from left to right whichever way they were selected.
constexpr ColumnRange SelectedColumns(const GridView& view) {
    return view.Col < view.ColSel ? ColumnRange{view.Col, view.ColSel} : ColumnRange{view.ColSel, view.Col};
}
/// Whether a column is one of those selected.
constexpr bool IsSelected(const GridView& view, int column) {
    const ColumnRange range = SelectedColumns(view);
    return column >= range.lo && column <= range.hi;
}
/// Whether more than one column is selected.
constexpr bool RangeSelected(const GridView& view) {
    return view.Col != view.ColSel;
}

} // namespace tonex
