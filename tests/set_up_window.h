// A window as start-up leaves it, for the tests of the view: laid out, tables built, an empty score.
#pragma once

#include "app/enabling_commands.h"
#include "app/layout_commands.h"
#include "app/sndmain.h"
#include "tests/desktop/desktop.h"
#include "tests/print_score.h"
#include "view/drawing_commands.h"
#include "view/note_entry_commands.h"
#include "view/note_names.h"
#include "view/tempo_commands.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>

namespace tonex::testing {

/// On a fresh desktop with one wave output, at a scale of so many twips a pixel.
inline std::unique_ptr<sndmain> SetUpWindow(float twips_per_pixel = 15) {
    desktop::Reset();
    auto window = std::make_unique<sndmain>();
    window->screen.twips_per_pixel_x = twips_per_pixel;
    window->screen.twips_per_pixel_y = twips_per_pixel;
    window->tables = BuildTimingTables();
    LayoutWindow(*window, kMinClientWidth, kMinClientHeight);
    ComputeStaffOffset(*window);
    FillTempoCombo(*window);
    ClearAll(*window);
    return window;
}

inline Entry MakeEntry(const sndmain& window, std::uint16_t code, std::uint16_t pitch) {
    if (code == kSeparator) return {0, 0, 0};
    const auto position = StaffPositionOf(pitch, window.StaffOffset);
    return {code, pitch, static_cast<std::uint16_t>(position.value_or(kRestPosition))};
}

inline Entry MakeNote(const sndmain& window, std::uint16_t code, std::uint16_t pitch) {
    return MakeEntry(window, code, pitch);
}

inline Entry MakeRest(const sndmain& window, std::uint16_t code) {
    return MakeEntry(window, code, kEmpty);
}

/// Puts a number of notes into the score, pitch 27 + index mod 49 and code 1 + index mod 20, and shows it
/// with the cursor on the first one.
inline void FillScore(sndmain& window, int count) {
    ClearAll(window);
    for (int i = 0; i < count; ++i) {
        At(window.score.sound, i) =
            MakeNote(window, static_cast<std::uint16_t>(1 + i % 20), static_cast<std::uint16_t>(27 + i % 49));
    }
    window.score.end_count = static_cast<std::int16_t>(count + 1);
    RedrawGrid(window);
    RefreshNoteDisplay(window);
    RefreshEnabling(window);
}

/// Puts entries into the score and shows it with the cursor on the first one.
inline void FillScore(sndmain& window, std::initializer_list<Entry> entries) {
    ClearAll(window);
    std::size_t slot = 0;
    for (const Entry& entry : entries)
        window.score.sound[slot++] = entry;
    window.score.end_count = static_cast<std::int16_t>(entries.size() + 1);
    RedrawGrid(window);
    RefreshNoteDisplay(window);
    RefreshEnabling(window);
}

/// Selects columns as the user does.
inline void Select(sndmain& window, int column, int far_end) {
    grdScore_SelChange(window, column, far_end);
}
inline void MoveCursor(sndmain& window, int column) {
    grdScore_SelChange(window, column, column);
}

inline const Entry& SlotOf(const sndmain& window, int slot) {
    return At(window.score.sound, slot);
}
inline std::wstring TextOf(const sndmain& window, int column) {
    return std::wstring(At(window.grdScore.Text, column).View());
}
inline const NoteImage& ImageOf(const sndmain& window, int image) {
    return At(window.imgNote, image);
}

} // namespace tonex::testing
