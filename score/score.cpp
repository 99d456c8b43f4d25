#include "score/score.h"

#include "score/int16.h"

#include <algorithm>

namespace tonex {
namespace {

/// A file code that no table knows, so that the writer refuses it.
constexpr std::uint16_t kFileUnknown = 255;

constexpr int kZeroOctave = 3; ///< the octave whose positions start at kRestPosition

Entry FromFileEntry(const FileEntry& entry) {
    if (KindOfFileCode(entry.code) == EntryKind::Note) {
        return {static_cast<std::uint16_t>(entry.code + 1), static_cast<std::uint16_t>(entry.pitch + 1),
                kEmpty};
    }
    const auto code = static_cast<std::uint16_t>(entry.code - kFileRestDistance);
    if (entry.code == kFileSeparator || code == kSeparator) return {kSeparator, 0, 0};
    return {code, kEmpty, kEmpty};
}

} // namespace

int CountEntries(const FileList& list) {
    int count = 0;
    while (count < kFileListRows && At(list, count).code != kEmpty)
        ++count;
    return count;
}

std::optional<std::int16_t> StaffPositionOf(std::uint16_t pitch, std::int16_t staff_offset) {
    if (pitch == kEmpty) return kRestPosition;
    const std::optional<std::int16_t> from_zero = ToInt16(AsSigned(pitch) - 1);
    if (!from_zero) return std::nullopt;
    const Semitone* semitone = SemitoneOf(AsSigned(pitch));
    const int step = semitone == nullptr ? 0 : semitone->step;
    const std::optional<std::int16_t> rise =
        ToInt16(std::int64_t{*from_zero / kOctave - kZeroOctave} * kOctaveHeight);
    if (!rise) return std::nullopt;
    const std::optional<std::int16_t> position = ToInt16(step * kStepHeight + kRestPosition - *rise);
    if (!position) return std::nullopt;
    return ToInt16(*position + staff_offset);
}

void ClearScore(Score& score) {
    // Slot 510 is not written, kept as it is: it only guards the table's end.
    std::fill_n(score.sound.begin(), kUsableSlots, Entry{});
    score.end_count = 1;
    score.first_shown = 0;
    score.strip_cursor = 0;
    score.changed = false;
}

void RecomputePositions(Score& score, std::int16_t staff_offset) {
    for (Entry& entry : score.sound) {
        if (entry.code == kEmpty) return;
        if (entry.code == kSeparator) continue;
        entry.position = AsCell(StaffPositionOf(entry.pitch, staff_offset).value_or(kRestPosition));
    }
}

FileEntry ToFileEntry(const Entry& entry) {
    if (entry.code == kSeparator) return {kFileSeparator, 0};
    if (IsNote(entry.code)) {
        return {static_cast<std::uint16_t>(entry.code - 1), static_cast<std::uint16_t>(entry.pitch - 1)};
    }
    const auto code = static_cast<std::uint16_t>(entry.code + kFileRestDistance);
    const bool known = KindOfFileCode(code) != EntryKind::Foreign || code == kEmpty;
    if (!IsRest(entry.code) && known) return {kFileUnknown, 0};
    return {code, 0};
}

FileList BuildSaveList(const Score& score) {
    FileList list{};
    for (int slot = 0; slot < kMaxEntries && At(score.sound, slot).code != kEmpty; ++slot)
        At(list, slot) = ToFileEntry(At(score.sound, slot));
    return list; // its rows are end codes until they are filled
}

int FillFromFileList(Score& score, const FileList& list, std::int16_t staff_offset) {
    ClearScore(score);
    const int count = CountEntries(list);
    int taken = 0;
    while (taken < count && taken < kMaxEntries) {
        const Entry entry = FromFileEntry(At(list, taken));
        // The foreign code 78 becomes the code of an empty slot: the melody ends there.
        if (entry.code == kEmpty) break;
        At(score.sound, taken) = entry;
        ++taken;
    }
    RecomputePositions(score, staff_offset);
    score.end_count = static_cast<std::int16_t>(taken + 1);
    score.strip_cursor = static_cast<std::int16_t>(taken % kStripPictures);
    return count - taken;
}

} // namespace tonex
