// The score: one melody as a fixed table of entries in playing order. Pure values; no window, no file.
#pragma once

#include "score/codes.h"

#include <array>
#include <cstdint>
#include <optional>

namespace tonex {

inline constexpr int kSlots = 511;                  ///< slots of the table; slot 510 is a guard, never used
inline constexpr int kUsableSlots = 510;            ///< slots that Clear resets: 0 to 509
inline constexpr int kMaxEntries = 509;             ///< the longest melody
inline constexpr int kLastColumn = 508;             ///< slot of the last entry of the longest melody
inline constexpr std::int16_t kMaxEndCount = 510;   ///< end count of the longest melody
inline constexpr int kStripPictures = 30;           ///< entries that the strip shows at once
inline constexpr std::int16_t kRestPosition = 1200; ///< staff position of what has no pitch, in twips
inline constexpr int kStepHeight = 60;              ///< twips from a line of the staff to the space beside it
inline constexpr int kOctaveHeight = 7 * kStepHeight;

/// One slot: the three rows of the table that belong together.
struct Entry {
    std::uint16_t code = kEmpty;     ///< 0 separator, 1 to 20 note, 21 to 40 rest, 65535 empty
    std::uint16_t pitch = kEmpty;    ///< semitone number counted from 1 (27 = c4); 65535 = no pitch
    std::uint16_t position = kEmpty; ///< staff position in twips, a signed number stored in the cell
    bool operator==(const Entry&) const = default;
};

/// The melody and the state that goes with it.
/// Invariants: entries are contiguous from slot 0; end_count is 1 to 510; slot end_count - 1 is empty.
struct Score {
    std::array<Entry, kSlots> sound{};
    std::int16_t end_count = 1;    ///< index of the first empty slot plus 1
    std::int16_t first_shown = 0;  ///< slot drawn in the first picture of the strip
    std::int16_t strip_cursor = 0; ///< place of the cursor within the strip, 0 to 29
    bool changed = false;          ///< set by every edit; asks for saving
};

/// Index of the first empty slot, the column behind the last entry.
constexpr int EndColumn(const Score& score) {
    return score.end_count - 1;
}

/// An entry as SND files encode it.
struct FileEntry {
    std::uint16_t code = kEmpty; ///< 0 to 19 note, 100 to 119 rest, 200 separator, 65535 end of the list
    std::uint16_t pitch = 0;     ///< score pitch - 1
    bool operator==(const FileEntry&) const = default;
};

/// The 511 entries that an edit block of 1,029 bytes can hold, and the end.
inline constexpr int kFileListRows = 512;

/// The two-row list that passes between score and SND reader or writer; the first code 65535 ends it.
using FileList = std::array<FileEntry, kFileListRows>;

/// Number of entries in front of the end code.
int CountEntries(const FileList& list);

/// The staff position of a pitch in twips: 60 a step, 420 an octave, smaller = higher.
/// `staff_offset` is the display's vertical offset in twips. A pitch of 65535 gives 1200 without the offset.
/// Nothing when the 16-bit arithmetic overflows.
std::optional<std::int16_t> StaffPositionOf(std::uint16_t pitch, std::int16_t staff_offset);

/// Empties slots 0 to 509 (slot 510 is not written, kept as it is), end count 1, first shown and strip cursor
/// 0, changed flag off.
void ClearScore(Score& score);

/// Sets the staff position of every entry but separators, from slot 0 to the first empty slot.
/// A position that overflows becomes that of a rest; no file can hold such a pitch.
void RecomputePositions(Score& score, std::int16_t staff_offset);

/// An entry in the file's encoding; rests and separators have pitch 0. A code or pitch that no file can hold
/// keeps a value that the writer refuses.
FileEntry ToFileEntry(const Entry& entry);

/// The score in the file's encoding, closed by 65535. Codes that no table knows keep a value that the writer
/// refuses.
FileList BuildSaveList(const Score& score);

/// Clears the score and fills it from a list as the reader gives it. Codes 0 to 19 become notes, 200 a
/// separator, any other code a rest (code - 79 in 16-bit arithmetic). At most 509 entries are taken.
/// Returns how many entries of the list did not fit.
int FillFromFileList(Score& score, const FileList& list, std::int16_t staff_offset);

} // namespace tonex
