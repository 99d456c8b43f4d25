// MIDI files of written lengths, as WriteNominalMidi makes them, taken back. Pure.
#pragma once

#include "exchange/midi_reader.h"
#include "exchange/tune.h"

#include <optional>

namespace tonex {

/// The tune of a file that WriteNominalMidi made: separators, rests and tempo come back as they were. Nothing
/// when the file is another, or was changed since.
std::optional<Tune> TuneOfNominal(const MidiFile& file);

} // namespace tonex
