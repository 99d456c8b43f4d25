// The codes that name a melody's entries, in the score and in its file, and what they stand for: twenty
// lengths and the twelve half tones of an octave. What writes, names, draws or plays an entry takes them from
// here.
#pragma once

#include "score/rows.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace tonex {

inline constexpr int kLengthCodes = 20;

// Entry codes, in the score.

inline constexpr std::uint16_t kEmpty = 65535; ///< entry code of an empty slot; pitch of what has none
inline constexpr std::uint16_t kSeparator = 0; ///< entry code of the blank entry that Insert creates

/// Whether an entry code is that of a note, 1 to 20.
constexpr bool IsNote(std::uint16_t code) {
    return code >= 1 && code <= kLengthCodes;
}
/// Whether an entry code is that of a rest, 21 to 40.
constexpr bool IsRest(std::uint16_t code) {
    return code > kLengthCodes && code <= 2 * kLengthCodes;
}
/// Whether the entry code is above 0 as a signed number: a note, a rest, or a foreign file's unknown code.
constexpr bool IsSounding(std::uint16_t code) {
    return static_cast<std::int16_t>(code) > 0;
}

// File codes. A list of them is closed by kEmpty.

inline constexpr std::uint16_t kFileRests = 100; ///< the rests are 100 to 119, the notes 0 to 19
inline constexpr std::uint16_t kFileSeparator = 200;
inline constexpr int kFileRestDistance = kFileRests - kLengthCodes - 1; ///< file code minus entry code: 79
inline constexpr std::uint8_t kFileRestPitch = 86;                      ///< pitch byte of a rest
inline constexpr std::uint16_t kFileMaxPitch = 255;                     ///< pitch bytes are the pitch minus 1

enum class EntryKind { Note, Rest, Separator, Foreign };

/// What a file code stands for. Foreign: no writer of ours makes it; the end of a list counts as foreign too.
constexpr EntryKind KindOfFileCode(std::uint16_t code) {
    if (code < kLengthCodes) return EntryKind::Note;
    if (code >= kFileRests && code < kFileRests + kLengthCodes) return EntryKind::Rest;
    return code == kFileSeparator ? EntryKind::Separator : EntryKind::Foreign;
}

/// Length code 0 to 19 of a note's or rest's file code.
constexpr int LengthCodeOfFileCode(std::uint16_t code) {
    return code < kFileRests ? code : code - kFileRests;
}

// Lengths.

/// A length as it is written: the part of a whole note, the dots behind it, and whether three stand in the
/// time of two.
struct NoteLength {
    int division; ///< 1 = whole to 32 = thirty-second
    int dots;     ///< 0 to 2
    bool triplet;
};

/// By length code 0 to 19, the entry code of the note minus 1. A triplet is named after the note that it
/// shortens by a third.
inline constexpr std::array<NoteLength, kLengthCodes> kNoteLengths = {{
    {32, 0, false}, {32, 0, true},                                 //
    {16, 0, false}, {16, 1, false}, {16, 2, false}, {16, 0, true}, //
    {8, 0, false},  {8, 1, false},  {8, 2, false},  {8, 0, true},  //
    {4, 0, false},  {4, 1, false},  {4, 2, false},  {4, 0, true},  //
    {2, 0, false},  {2, 1, false},  {2, 2, false},                 //
    {1, 0, false},  {1, 1, false},  {1, 2, false},
}};

// Pitches: half tones counted from 1, read as signed numbers. Pitch 27 is c4.

inline constexpr int kOctave = 12; ///< half tones

struct Semitone {
    char letter;      ///< 'a' to 'g'
    bool sharp;       ///< a black key
    int octave_shift; ///< of the octave's number, which changes between b and c
    int step;         ///< staff steps below the octave's a; a sharp stands on the step of its natural
};

/// By the remainder (pitch - 1) mod 12.
inline constexpr std::array<Semitone, kOctave> kSemitones = {{
    {'a', true, -1, 7},
    {'b', false, -1, 6},
    {'c', false, 0, 5},
    {'c', true, 0, 5},
    {'d', false, 0, 4},
    {'d', true, 0, 4},
    {'e', false, 0, 3},
    {'f', false, 0, 2},
    {'f', true, 0, 2},
    {'g', false, 0, 1},
    {'g', true, 0, 1},
    {'a', false, 0, 0},
}};

/// The half tone of a pitch; null where the remainder is negative (below pitch 1), which no half tone belongs
/// to.
constexpr const Semitone* SemitoneOf(int pitch) {
    const int remainder = (pitch - 1) % kOctave;
    return remainder < 0 ? nullptr : &At(kSemitones, remainder);
}

/// The number behind the letter of a pitch: 4 for c4.
constexpr int OctaveNumberOf(int pitch, const Semitone& semitone) {
    return (pitch - 1) / kOctave + 2 + semitone.octave_shift;
}

} // namespace tonex
