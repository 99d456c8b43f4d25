// The voices of a MIDI file, and which of them is the melody. Pure.
#pragma once

#include "exchange/midi_reader.h"

#include <string>
#include <vector>

namespace tonex {

inline constexpr double kMidiMoment = 0.03; ///< seconds; what overlaps or follows closer is one

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
    double seconds = 0.0;       ///< from the first note to the last one's end
    int overlapping = 0;        ///< notes that start while another sounds for longer than a moment
    double steps = 0.0;         ///< part of its intervals that are 1 to 4 half tones
    double mean_interval = 0.0; ///< half tones
    double usual_gap = 0.0;     ///< seconds from one onset to the next; as many are shorter as longer
    double points = 0.0;        ///< as a melody; see VoicesOf
};

/// All voices that have notes, by track and channel, with their points as a melody: 20 for the part of the
/// file's sound in which no other voice lies higher, 25 for notes that overlap no other of the voice, 20 for
/// the part of the file in which it sounds, 15 for twelve pitches or more (fewer: fewer points), 20 for
/// intervals of 1 to 4 half tones. Down to 25 less where more than a second is usual from note to note, as in
/// held chords, down to 20 less where the mean interval is more than 4 half tones, as in broken ones. 30 more
/// for a name such as melody, lead, solo or voice, 30 less for a bass, a drum or an accompaniment by name or
/// a bass by its program, and only half of all with fewer than 8 notes. Drums have none.
std::vector<MidiVoice> VoicesOf(const MidiFile& file);

/// The voice with the most points among those asked for; the first of equal ones. -1 when there is none.
/// Track and channel are counted from 0, -1 = any; drums are no melody, even when they are asked for.
int MelodyOf(const std::vector<MidiVoice>& voices, int track, int channel);

} // namespace tonex
