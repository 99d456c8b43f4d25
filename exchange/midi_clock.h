// What a MIDI file's ticks last. Pure.
#pragma once

#include "exchange/midi_reader.h"

#include <vector>

namespace tonex {

/// Where each tempo begins.
struct MidiClock {
    struct Stretch {
        double tick;
        double seconds; ///< at its begin
        double seconds_of_tick;
    };
    std::vector<Stretch> stretches; ///< by tick, at least one
};

/// The clock of a track: by the tempos of all tracks, in format 2 by its own.
MidiClock ClockOf(const MidiFile& file, int track);

/// Seconds from the file's begin to a tick.
double SecondsAt(const MidiClock& clock, double tick);

/// The tick, or the part of one, that is reached so many seconds, 0 or more, behind the file's begin.
double TickAt(const MidiClock& clock, double seconds);

} // namespace tonex
