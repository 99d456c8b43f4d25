// A voice of a MIDI file as a tune of one sound at a time. Pure.
#pragma once

#include "exchange/midi_voices.h"
#include "exchange/tune.h"

namespace tonex {

/// Of a chord the highest note is taken; a lower note under one that goes on is left out; a new onset ends
/// the note before; a short gap belongs to the note before it; a note that lasts no time is left out. What
/// sounds from `from` to `to`, seconds, only. The silence in front of it is left out.
Tune TuneOfVoice(const MidiFile& file, const MidiVoice& voice, double from, double to);

} // namespace tonex
