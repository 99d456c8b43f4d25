// A melody as a Standard MIDI file of format 0. Pure.
#pragma once

#include "score/melody_text.h"
#include "score/snd_file.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tonex {

inline constexpr int kMidiTicksOfQuarter = 480;

struct MidiBytes {
    std::vector<std::uint8_t> bytes; ///< empty when refused
    std::string reason;
    std::int64_t ticks = 0; ///< of the whole
};

/// What the play block plays, to the tick: 60, 40 or 80 ticks a time unit by timing mode, and as long as each
/// record sounds. Separators become markers. Refuses a pitch byte above 93, which MIDI does not have.
/// `units` are those of UnitsPlayed.
MidiBytes WritePlayedMidi(const PlayBlock& block, const Melody& melody, int mode,
                          const std::vector<int>& units, std::string_view name);

/// The lengths and the tempo that are written. Texts in it tell TuneOfNominal what MIDI has no events for, so
/// that the same melody comes back.
MidiBytes WriteNominalMidi(const Melody& melody, std::string_view name);

} // namespace tonex
