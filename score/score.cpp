#include "score/score.h"

#include "score/int16.h"

namespace tonex {
namespace {

constexpr std::uint16_t kFileSeparator = 200;
constexpr int kRestDistance = 79; ///< file code of a rest minus its entry code

/// A file code that no table knows, so that the writer refuses it.
constexpr std::uint16_t kFileUnknown = 255;

constexpr int kZeroOctave = 3; ///< the octave whose positions start at kRestPosition

/// Steps below the top of the octave, by semitone; the two semitones of a sharpened name share a step.
constexpr std::array<std::int16_t, 12> kSteps = {7, 6, 5, 5, 4, 4, 3, 2, 2, 1, 1, 0};

bool IsFileCode(std::uint16_t code) {
    return code < 20 || (code >= 100 && code < 120) || code == kFileSeparator || code == kEmpty;
}

Entry FromFileEntry(const FileEntry& entry) {
    if (entry.code < 20) {
        return {static_cast<std::uint16_t>(entry.code + 1), static_cast<std::uint16_t>(entry.pitch + 1),
                kEmpty};
    }
    const auto code = static_cast<std::uint16_t>(entry.code - kRestDistance);
    if (entry.code == kFileSeparator || code == kSeparator) return {kSeparator, 0, 0};
    return {code, kEmpty, kEmpty};
}

} // namespace

int CountEntries(const FileList& list) {
    int count = 0;
    while (count < kFileListRows && list[static_cast<std::size_t>(count)].code != kEmpty)
        ++count;
    return count;
}

std::optional<std::int16_t> StaffPositionOf(std::uint16_t pitch, std::int16_t staff_offset) {
    if (pitch == kEmpty) return kRestPosition;
    const std::optional<std::int16_t> from_zero = ToInt16(AsSigned(pitch) - 1);
    if (!from_zero) return std::nullopt;
    const int semitone = *from_zero % 12;
    // Below pitch 1 the remainder is negative and no step belongs to it.
    const int step = semitone < 0 ? 0 : kSteps[static_cast<std::size_t>(semitone)];
    const std::optional<std::int16_t> rise = ToInt16((*from_zero / 12 - kZeroOctave) * kOctaveHeight);
    if (!rise) return std::nullopt;
    const std::optional<std::int16_t> position = ToInt16(step * kStepHeight + kRestPosition - *rise);
    if (!position) return std::nullopt;
    return ToInt16(*position + staff_offset);
}

void ClearScore(Score& score) {
    // Slot 510 is not written, kept as it is: it only guards the table's end.
    for (std::size_t slot = 0; slot < kUsableSlots; ++slot)
        score.sound[slot] = Entry{};
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
    const auto code = static_cast<std::uint16_t>(entry.code + kRestDistance);
    if (!IsRest(entry.code) && IsFileCode(code)) return {kFileUnknown, 0};
    return {code, 0};
}

FileList BuildSaveList(const Score& score) {
    FileList list{};
    std::size_t row = 0;
    while (row < kMaxEntries && score.sound[row].code != kEmpty) {
        list[row] = ToFileEntry(score.sound[row]);
        ++row;
    }
    list[row] = FileEntry{};
    return list;
}

int FillFromFileList(Score& score, const FileList& list, std::int16_t staff_offset) {
    ClearScore(score);
    const int count = CountEntries(list);
    int taken = 0;
    while (taken < count && taken < kMaxEntries) {
        const Entry entry = FromFileEntry(list[static_cast<std::size_t>(taken)]);
        // The foreign code 78 becomes the code of an empty slot: the melody ends there.
        if (entry.code == kEmpty) break;
        score.sound[static_cast<std::size_t>(taken)] = entry;
        ++taken;
    }
    RecomputePositions(score, staff_offset);
    score.end_count = static_cast<std::int16_t>(taken + 1);
    score.strip_cursor = static_cast<std::int16_t>(taken % kStripPictures);
    return count - taken;
}

} // namespace tonex
