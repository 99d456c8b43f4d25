// Ring tones as text: "name:d=4,o=5,b=120:8c,8d#,p,4e.". Pure.
//
//     file     tunes, each on lines of its own; it begins where a line with a colon follows a whole one
//     tune     name : controls : items, both between commas; blanks and line ends between them mean nothing
//     control  d = length of an item without one (4), o = its octave (6), b = quarter notes a minute (63)
//     item     length 1 2 4 8 16 32, also 64 and 128, then c c# d d# e f f# g g# a a# b or p for a rest, a
//              dot, the octave; the dot may stand anywhere behind the length; or a control
//
// The a of octave 4 has 440 Hz, as c4 is the piano's first key. What else is met with in the world is read
// too, and remarked upon.
#pragma once

#include "exchange/tune.h"
#include "preview/timing_tables.h"
#include "score/melody_text.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tonex {

struct RtttlFault {
    int line = 0;   ///< counted from 1
    int column = 0; ///< in bytes, counted from 1
    std::string reason;
};

inline constexpr int kMostTunes = 1000;      ///< of a file
inline constexpr int kMostTuneItems = 20000; ///< of a tune
inline constexpr int kMostRtttlName = 10;    ///< characters

/// Whether a text may hold ring tones: there is a colon in it and no byte that texts do not have. One or,
/// with a byte order mark, two bytes a letter.
bool LooksLikeRtttl(std::string_view bytes);

/// All tunes of a text. Nothing, with the fault told, when one of them is wrong or there is none.
std::optional<std::vector<Tune>> ReadRtttl(std::string_view bytes, RtttlFault& fault);

/// What was written, and what it could not hold.
struct RtttlText {
    std::string text;            ///< with a line end; empty when refused
    std::string reason;          ///< why it was refused
    int beats = 0;               ///< b
    double scale = 1.0;          ///< lengths in the text by those in the melody
    int half_tones = 0;          ///< by which the tune was moved to lie in the octaves 4 to 7
    std::vector<double> seconds; ///< by interval of TuneOfMelody, what a reader plays
    Remarks remarks;
};

/// A melody as a ring tone, as near to what its file plays as the format goes. `played` is what each interval
/// of TuneOfMelody lasts there, seconds, and `true_tempo` what TrueTempoOf says of it. Refuses a melody that
/// is wider than four octaves, or has no note or an entry with an unknown code.
RtttlText WriteRtttl(const Melody& melody, const std::vector<double>& played, double true_tempo,
                     std::string_view name);

} // namespace tonex
