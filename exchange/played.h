// What a SND file plays, entry by entry, and what is written there.
#pragma once

#include "exchange/tune.h"
#include "score/melody_text.h"
#include "score/snd_file.h"

#include <optional>
#include <span>
#include <vector>

namespace tonex {

/// What so many time units last, seconds.
constexpr double SecondsOfUnits(double units, int tempo_byte) {
    constexpr double units_a_second = 64.0; // at tempo byte 1
    return units * tempo_byte / units_a_second;
}

/// Length in quarter notes of a length code 0 to 19.
double QuartersOf(int length_code);

/// The tempo that a tempo byte 1 to 32 really gives in a timing mode, quarter notes a minute.
double TrueTempoOf(int mode, int tempo_byte);

/// Time units of each entry as the play block has them; 0 for separators. Nothing when the block's records
/// are not those of the entries in that mode.
std::optional<std::vector<int>> UnitsPlayed(const TimingTables& tables, const PlayBlock& block,
                                            const FileList& list, int mode);

/// A SND file's entries as a tune: what is written, at the tempo that is written. Entries with unknown codes
/// are left out.
Tune TuneOfMelody(const Melody& melody);

/// Seconds of each interval of a tune whose items were played with these units.
std::vector<double> SecondsPlayed(const Tune& tune, std::span<const int> units, int tempo_byte);

/// Seconds of each interval as the tune has them.
std::vector<double> SecondsMeant(const Tune& tune);

} // namespace tonex
