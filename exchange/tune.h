// A tune between two formats: one sound at a time, each with its length as it is written and the time that it
// takes. Readers make tunes, the fitting makes melodies of them.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tonex {

inline constexpr int kLowestKey = 27;  ///< pitch of the piano's c4
inline constexpr int kHighestKey = 75; ///< pitch of the piano's c8

/// What was repaired, chosen or left out, each with how often.
using Remarks = std::vector<std::pair<std::string, int>>;

/// Adds a remark, or counts it once more.
void Remark(Remarks& remarks, std::string_view what);

enum class TuneKind { Note, Rest, Separator };

struct TuneItem {
    TuneKind kind = TuneKind::Rest;
    int pitch = 0;         ///< of a note: 27 = c4; may lie outside the piano
    double quarters = 0.0; ///< length in quarter notes, as it is written
    double seconds = 0.0;  ///< what it lasts
};

struct Tune {
    std::string name;
    std::vector<TuneItem> items;
    double tempo = 120.0; ///< quarter notes a minute, of most of the tune
    double start = 0.0;   ///< seconds from the begin of what it was read from
    bool on_grid = true;  ///< false: played by hand, or counted in no quarter notes: only the seconds count
    bool bends = false;   ///< the tempo changes on the way
    bool as_written = false; ///< lengths and tempo are those of a melody file and are to be kept
    Remarks remarks;
};

/// From one note to the next: what a listener hears as its length. A rest in front of the first note is one
/// too.
struct Interval {
    int first_item = 0;
    int items = 0;         ///< the note and the rests and separators behind it
    int pitch = 0;         ///< 0 = no note
    double seconds = 0.0;  ///< all of it
    double sounding = 0.0; ///< the note alone
};
std::vector<Interval> IntervalsOf(const Tune& tune);

/// All of it, seconds.
double LengthOf(const Tune& tune);
int CountNotes(const Tune& tune);

/// Lowest and highest pitch; both 0 without a note.
std::pair<int, int> RangeOf(const Tune& tune);

/// Moves all notes by half tones.
void TransposeTune(Tune& tune, int half_tones);

/// Half tones that bring a range of pitches into a room of others: 0 when it is there, else whole octaves
/// when they do, else the fewest half tones. False when it is wider than the room.
bool HalfTonesInto(std::pair<int, int> range, std::pair<int, int> room, bool whole_octaves_first,
                   int& half_tones);
/// The same onto the piano.
bool HalfTonesToPiano(std::pair<int, int> range, bool whole_octaves_first, int& half_tones);

/// Plays it `speed` times as fast.
void SpeedUp(Tune& tune, double speed);

/// Keeps what starts in `from` to `to`, seconds, and moves the tune's start there; a note that is cut at its
/// end gets shorter. What a rest loses is lost.
void KeepPart(Tune& tune, double from, double to);

} // namespace tonex
