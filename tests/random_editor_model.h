// A second, deliberately simple model of the editor: a growing list of entries, a cursor and a selection. It
// shares no code with the rooms but the names of the types.
#pragma once

#include "score/score.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tonex::testing {

struct Model {
    struct View {
        int left = 0, first = 0, strip = 0;
    };
    struct Copy {
        std::vector<Entry> entries;
        int length = 11, col = 0, far = 0;
        View view;
    };

    std::vector<Entry> entries;
    int col = 0, far = 0;
    int length = 11;
    int tempo = 120;
    bool changed = false;
    bool doremi = false;
    Copy undo;
    std::vector<Entry> clipboard;
    bool filled = false;

    int offset = 0; ///< twips added to every position
    View view;      ///< of the window before the command: what a saved undo copy holds

    // What the command before has to have done to the view.
    std::optional<int> in_view;        ///< a column that has to be visible
    std::optional<View> view_restored; ///< the view has to be this one

    int Size() const { return static_cast<int>(entries.size()); }
    int Cols() const { return Size() < 509 ? Size() + 1 : 509; }
    int Lo() const { return col < far ? col : far; }
    int Hi() const { return col < far ? far : col; }

    void Key(int pitch);
    void LengthButton(int index);
    void Character(wchar_t character);
    void Select(int column, int far_end);
    void StripClick(int first_shown, int image);
    void CopyColumns();
    void Delete();
    void Insert();
    void Paste();
    void Octave(int direction);
    void HalfTone(int direction);
    void Undo();
    void Clear();
    /// Pairs of pitch byte and code byte, as an edit block holds them in front of its end.
    void Load(const std::vector<std::uint8_t>& pairs, int tempo_of_file);

    /// The first entry that no file can hold; the size when there is none.
    int FirstUnwritable() const;
    /// What of the score is left when its first so many entries are saved and loaded.
    void Reload(int entries_saved);

  private:
    void Save();
    void Enter(int code, int pitch);
    bool Position(int pitch, std::uint16_t& cell) const;
};

/// The grid's text of a pitch.
std::wstring ModelText(std::uint16_t pitch, bool doremi);
/// The number of a slot's picture, 0 = none.
int ModelPicture(const Entry& entry);

} // namespace tonex::testing
