#include "preview/timing_tables.h"

#include "score/rows.h"

#include <algorithm>
#include <cmath>

namespace tonex {

// The last range is much wider than the others, kept as it is.
const std::array<TempoRange, 8> kTempoRanges = {{
    {L"Largo", 40, 50},
    {L"Lento", 50, 58},
    {L"Adagio", 58, 67},
    {L"Andante", 67, 81},
    {L"Moderato", 81, 102},
    {L"Allegro", 102, 138},
    {L"Vivace", 138, 167},
    {L"Presto", 167, 320},
}};

namespace {

constexpr std::int16_t kSlowestListed = 30;
constexpr std::int16_t kDefaultTempo = 120;

/// A timing mode: a whole note has a * b time units.
struct ModeFactors {
    float a;
    float b;
};
constexpr std::array<ModeFactors, kTimingModes> kModes = {{{16, 2}, {16, 3}, {12, 2}}};

constexpr float kTripletFactor = static_cast<float>(1.0 / 3.0);

/// By the number of dots.
constexpr std::array<float, 3> kDotFactors = {1.0F, 1.5F, 1.75F};

/// Time units of a length; the order of the factors decides the last bits.
float UnitsOf(const ModeFactors& mode, const NoteLength& length) {
    // Three triplets fill the length twice as long.
    const float factor = length.triplet ? kTripletFactor : At(kDotFactors, length.dots);
    const int division = length.triplet ? length.division / 2 : length.division;
    return mode.b * factor * mode.a / static_cast<float>(division);
}

/// Beats per minute that a tempo byte gives in a mode, made even.
std::int16_t TempoOf(const ModeFactors& mode, int tempo_byte) {
    const double beats = 15360.0 / tempo_byte / static_cast<double>(mode.a) / static_cast<double>(mode.b);
    const auto rounded = static_cast<int>(std::nearbyint(beats + 1.0));
    return static_cast<std::int16_t>(rounded / 2 * 2);
}

using TempoValues = std::array<std::array<std::int16_t, kTempoBytes + 2>, kTimingModes>;

/// [mode][tempo byte]; byte 0 and the byte behind the last one have no tempo and hold 0.
TempoValues BuildTempoValues() {
    TempoValues values{};
    for (std::size_t mode = 0; mode < kTimingModes; ++mode) {
        for (std::size_t byte = 1; byte <= kTempoBytes; ++byte) {
            values[mode][byte] = TempoOf(kModes[mode], static_cast<int>(byte));
        }
    }
    return values;
}

void BuildTempoList(TimingTables& tables, const TempoValues& values) {
    std::array<std::size_t, kTimingModes> cursor = {1, 1, 1};
    std::size_t n = 0;
    while (cursor[0] <= kTempoBytes) {
        const std::int16_t tempo =
            std::max({values[0][cursor[0]], values[1][cursor[1]], values[2][cursor[2]]});
        if (tempo < kSlowestListed) return;
        tables.tempo_list[n] = tempo;
        for (std::size_t mode = 0; mode < kTimingModes; ++mode) {
            const bool same = values[mode][cursor[mode]] == tempo;
            tables.mode_tempo_bytes[mode][n] =
                same ? static_cast<std::int16_t>(cursor[mode]) : std::int16_t{0};
            if (same) ++cursor[mode];
        }
        ++n;
        if (n >= 2 && tables.tempo_list[n - 1] == tables.tempo_list[n - 2]) {
            // A duplicate: its tempo bytes stay behind the list's end, where nobody reads them.
            --n;
            tables.tempo_list[n] = 0;
        }
    }
}

/// Index of the last tempo that is `tempo` or more; the list falls.
std::int16_t LastAtLeast(const TimingTables& tables, std::int16_t tempo) {
    std::size_t count = 0;
    while (tables.tempo_list[count] >= tempo)
        ++count;
    return static_cast<std::int16_t>(count - 1);
}

} // namespace

std::int16_t LengthCostOf(float units) {
    const auto hundredths = static_cast<int>(std::floor(units * 100.0F));
    if (hundredths < 1700) {
        const int rest = hundredths % 100;
        if (rest < 20 || rest >= 80) return 0;
        if (rest < 30 || rest >= 70) return 1;
        if (rest < 40 || rest >= 60) return 2;
        return 4;
    }
    const int whole = hundredths / 100;
    if (whole <= 32) return 1;
    if (whole <= 48) return 2;
    if (whole <= 64) return 3;
    if (whole <= 80) return 4;
    if (whole == 81) return 0; // a gap between the steps, kept as it is
    return 5;
}

TimingTables BuildTimingTables() {
    TimingTables tables;
    BuildTempoList(tables, BuildTempoValues());
    for (std::size_t mode = 0; mode < kTimingModes; ++mode) {
        for (std::size_t code = 0; code < kLengthCodes; ++code) {
            const float units = UnitsOf(kModes[mode], kNoteLengths[code]);
            tables.length_units[mode][code] = units;
            tables.length_cost[mode][code] = LengthCostOf(units);
        }
    }
    tables.default_tempo_index = LastAtLeast(tables, kDefaultTempo);
    return tables;
}

int TempoIndexOf(const TimingTables& tables, std::int16_t tempo) {
    for (std::size_t i = 0; i < kTempoListSize && tables.tempo_list[i] != 0; ++i) {
        if (tables.tempo_list[i] == tempo) return static_cast<int>(i);
    }
    return -1;
}

std::wstring_view TempoNameOf(double beats) {
    for (const TempoRange& range : kTempoRanges) {
        if (beats >= range.lower && beats < range.upper) return range.name;
    }
    return {};
}

} // namespace tonex
