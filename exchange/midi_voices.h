// The voices of a MIDI file, which of them is the melody, and a voice as a tune. Pure.
#pragma once

#include "exchange/midi_reader.h"
#include "exchange/tune.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tonex {

/// The notes of a channel in a track.
struct MidiVoice {
    int track = 0;   ///< counted from 0
    int channel = 0; ///< counted from 0
    std::string name;
    int program = -1;
    bool drums = false;
    std::vector<MidiNote> notes; ///< by start
    int lowest = 0;              ///< pitches, 27 = c4
    int highest = 0;
    double seconds = 0.0; ///< from the first note to the last one's end
    int overlapping = 0;  ///< notes that start while another sounds for longer than a moment
    double points = 0.0;  ///< as a melody; see PointsOf
};

/// What a file's ticks last: where each tempo begins.
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
double SecondsAt(const MidiClock& clock, double tick);

/// All voices that have notes, by track and channel, with their points as a melody: 40 for the part of the
/// file's sound in which no other voice lies higher, 25 for notes that overlap no other of the voice, 20 for
/// the part of the file in which it sounds, 15 for twelve pitches or more (fewer: fewer points), 30 more for
/// a name such as melody, lead, solo or voice, 30 less for a bass, a drum or an accompaniment by name or a
/// bass by its program, and only half of all with fewer than 8 notes. Drums have none.
std::vector<MidiVoice> VoicesOf(const MidiFile& file);

/// The voice with the most points among those asked for; the first of equal ones. -1 when there is none.
/// Track and channel are counted from 0, -1 = any; drums only count when nothing else is asked for.
int MelodyOf(const std::vector<MidiVoice>& voices, int track, int channel);

/// The voice as a tune of one sound at a time. Of a chord the highest note is taken; a lower note under one
/// that goes on is left out; a new onset ends the note before; a short gap belongs to the note before it.
/// What sounds from `from` to `to`, seconds, only. The silence in front of it is left out.
Tune TuneOfVoice(const MidiFile& file, const MidiVoice& voice, double from, double to);

/// The tune of a file that WriteMidi made of written lengths: separators, rests and tempo come back as they
/// were. Nothing when the file is another.
std::optional<Tune> TuneOfNominal(const MidiFile& file);

} // namespace tonex
