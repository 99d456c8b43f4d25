// Melody text: one entry a line, for people and version control. Pure.
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

/// Parses melody text (UTF-8, any line ends). Nothing, with the fault told, when a line is wrong, the tempo is
/// not in the list, or there are more than 509 entries.
std::optional<Melody> ParseMelodyText(const TimingTables& tables, std::string_view text,
                                      MelodyTextFault& fault);

/// The melody as text that ParseMelodyText reads back to the same melody. Nothing, with the index of the entry
/// in `fault_entry`, when an entry has a code or pitch that the text can not name.
std::optional<std::string> FormatMelodyText(const Melody& melody, int& fault_entry);

/// "1/8." for a length code 0 to 19.
std::string_view LengthTextOf(int length_code);

} // namespace tonex
