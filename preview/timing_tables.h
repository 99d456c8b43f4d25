// Tempo names and the four timing tables that the SND writer uses. Pure values, built once at start-up.
#pragma once

#include "score/codes.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace tonex {

inline constexpr int kTempoListSize = 100;
inline constexpr int kTimingModes = 3;
inline constexpr int kTempoBytes = 32; ///< tempo bytes run from 1 to 32; one time unit lasts byte/64 seconds

/// A classical tempo name and the beats per minute it covers: lower inclusive, upper exclusive.
struct TempoRange {
    std::wstring_view name;
    std::int16_t lower;
    std::int16_t upper;
};

/// "Largo" to "Presto", joined without gaps from 40 to 319.
extern const std::array<TempoRange, 8> kTempoRanges;

struct TimingTables {
    std::array<std::int16_t, kTempoListSize> tempo_list{}; ///< falling order; the first 0 ends it
    /// [mode][tempo index]: the tempo byte that gives that tempo in that mode, 0 when the mode has none.
    std::array<std::array<std::int16_t, kTempoListSize>, kTimingModes> mode_tempo_bytes{};
    /// [mode][length code 0 to 19]: duration in time units.
    std::array<std::array<float, kLengthCodes>, kTimingModes> length_units{};
    /// [mode][length code 0 to 19]: how badly the units round to whole numbers; 0 = well.
    std::array<std::array<std::int16_t, kLengthCodes>, kTimingModes> length_cost{};
    std::int16_t default_tempo_index = 0; ///< the last list entry that is 120 or more
};

/// How badly a duration in time units rounds to whole units, 0 = well, 5 = worst. Long durations cost by
/// their count of records; 81 whole units cost nothing.
std::int16_t LengthCostOf(float units);

/// The tables, the same every time.
TimingTables BuildTimingTables();

/// Index of a tempo in the list, or -1.
int TempoIndexOf(const TimingTables& tables, std::int16_t tempo);

/// The classical name of a tempo, empty outside 40 to 319. `beats` is the numeric value of the tempo box.
std::wstring_view TempoNameOf(double beats);

} // namespace tonex
