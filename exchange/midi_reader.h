// Standard MIDI files taken apart: what sounds when, by track and channel. Pure: bytes in, values out.
//
//     "MThd" 4 bytes length, 2 format 0 to 2, 2 tracks, 2 division; big-endian
//     "MTrk" 4 bytes length, events: time since the last one as a variable-length number, then
//            80 to EF   channel message; its first byte may be left out when it is the one before
//            F0, F7     a variable-length number of bytes, left out
//            FF         kind, variable-length number of bytes; 2F ends the track, 51 is the tempo
//
// Nothing is reserved by numbers that the file claims.
#pragma once

#include "exchange/tune.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tonex {

inline constexpr int kMostMidiTracks = 1000;
inline constexpr int kMostMidiEvents = 1000000;
inline constexpr int kMidiKeys = 128;
inline constexpr int kMidiDrums = 9;              ///< channel, counted from 0
inline constexpr int kMidiPitchDistance = 33;     ///< MIDI's number minus the pitch: middle c is 60 and c4 27
inline constexpr std::size_t kMostMidiName = 100; ///< bytes of a text that are kept

/// Kinds of texts.
inline constexpr int kMidiText = 1;
inline constexpr int kMidiTrackName = 3;
inline constexpr int kMidiMarker = 6;

struct MidiNote {
    std::int64_t start = 0; ///< ticks
    std::int64_t end = 0;
    int track = 0; ///< counted from 0
    int channel = 0;
    int key = 0;           ///< 0 to 127
    std::size_t order = 0; ///< of its start among all events
};

struct MidiTempo {
    std::int64_t tick = 0;
    int track = 0;
    int microseconds = 500000; ///< of a quarter note
};

struct MidiText {
    std::int64_t tick = 0;
    int track = 0;
    int kind = 0;
    std::string text;
    std::size_t order = 0;
};

struct MidiProgram {
    int track = 0;
    int channel = 0;
    int program = 0; ///< the first that the channel is given, 0 to 127
};

struct MidiFile {
    int format = 0;
    int ticks_of_quarter = 0;     ///< 0 when ticks are parts of a second
    double seconds_of_tick = 0.0; ///< then
    int tracks = 0;
    std::vector<MidiNote> notes;   ///< by start, then by order
    std::vector<MidiTempo> tempos; ///< by tick
    std::vector<MidiText> texts;   ///< in file order
    std::vector<MidiProgram> programs;
    std::vector<std::int64_t> ends; ///< of each track, ticks
    Remarks remarks;
};

struct MidiFault {
    std::size_t offset = 0;
    std::string reason;
};

/// Whether the bytes begin like a MIDI file, bare or in a RIFF file.
bool LooksLikeMidi(std::span<const std::uint8_t> bytes);

/// False, with the fault told, when the file is broken beyond what can be repaired.
bool ReadMidi(std::span<const std::uint8_t> bytes, MidiFile& file, MidiFault& fault);

} // namespace tonex
