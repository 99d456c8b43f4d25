// Melody text: one entry a line, for people and version control. Pure.
//
//     # a comment, also after an entry
//     tempo 120        the first that is no comment; a tempo of the tempo list
//     c4# 1/8.         a note as the piano keys name it, and its length
//     r 1/2            a rest
//     |                a separator
//
// A '#' starts a comment at the front of a line or behind a blank; inside a word it is a sharp.
#pragma once

#include "preview/timing_tables.h"
#include "score/score.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tonex {

struct Melody {
    std::int16_t tempo = 0;
    FileList list{};
};

struct MelodyTextFault {
    int line = 0;       ///< counted from 1
    std::string reason; ///< plain English; empty when the text is good
};

/// Parses melody text (UTF-8, any line ends, a byte order mark or none). Nothing, with the fault told, when a
/// line is wrong, the tempo is not in the list, or there are more than 509 entries. Rests and separators get
/// the pitch that the SND writer gives them: 86, and that of the entry before.
std::optional<Melody> ParseMelodyText(const TimingTables& tables, std::string_view text,
                                      MelodyTextFault& fault);

/// The melody as text that ParseMelodyText reads back to the same melody. Nothing, with the index of the
/// entry in `fault_entry`, when an entry has a code or pitch that the text can not name or is one too many.
std::optional<std::string> FormatMelodyText(const Melody& melody, int& fault_entry);

/// The line, counted from 1, of an entry, counted from 0, of a text that ParseMelodyText takes; 0 when it has
/// fewer entries.
int LineOfEntry(std::string_view text, int entry);

/// "1/8." for a length code 0 to 19.
std::string LengthTextOf(int length_code);

/// "c4#" for a pitch 1 to 256, as the piano keys are named.
std::string PitchTextOf(int pitch);

} // namespace tonex
