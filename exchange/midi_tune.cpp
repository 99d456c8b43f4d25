#include "exchange/midi_tune.h"

#include "exchange/midi_clock.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace tonex {

namespace {

constexpr double kNoGap = 0.005; ///< seconds; silence that is none

/// A note of the line, in ticks and seconds.
struct Sound {
    double start; ///< ticks
    double end;
    double start_seconds;
    double end_seconds;
    int key;
};

std::vector<Sound> SoundsOf(const MidiClock& clock, const MidiVoice& voice, double from, double to,
                            Remarks& remarks) {
    std::vector<Sound> sounds;
    for (const MidiNote& note : voice.notes) {
        const auto start = static_cast<double>(note.start);
        const auto end = static_cast<double>(note.end);
        Sound sound{start, end, SecondsAt(clock, start), SecondsAt(clock, end), note.key};
        if (sound.start_seconds < from || sound.start_seconds >= to) continue;
        if (start == end) {
            Remark(remarks, "left out a note that lasts no time");
            continue;
        }
        if (sound.end_seconds > to) {
            sound.end = TickAt(clock, to);
            sound.end_seconds = to;
        }
        sounds.push_back(sound);
    }
    return sounds;
}

/// Whether a note that starts at the same moment as the one before belongs to its chord.
bool IsSameOnset(const Sound& first, const Sound& next) {
    return next.start_seconds - first.start_seconds < kMidiMoment &&
           next.start_seconds < first.start_seconds + 0.5 * (first.end_seconds - first.start_seconds) &&
           next.start_seconds < first.start_seconds + 0.5 * (next.end_seconds - next.start_seconds);
}

/// Whether a lower note starts under one that goes on for most of it.
bool IsUnder(const Sound& held, const Sound& next) {
    if (next.key >= held.key) return false;
    const double length = next.end_seconds - next.start_seconds;
    const double common = std::min(held.end_seconds, next.end_seconds) - next.start_seconds;
    return common > kMidiMoment && common > 0.5 * length;
}

/// One sound at a time, each ending no later than the next begins.
std::vector<Sound> LineOf(const std::vector<Sound>& sounds, Remarks& remarks) {
    std::vector<Sound> line;
    for (const Sound& next : sounds) {
        if (line.empty()) {
            line.push_back(next);
            continue;
        }
        Sound& last = line.back();
        if (IsSameOnset(last, next)) {
            Remark(remarks, "took the highest note of a chord");
            if (next.key > last.key) {
                last.key = next.key;
                last.end = next.end;
                last.end_seconds = next.end_seconds;
            }
        } else if (IsUnder(last, next)) {
            Remark(remarks, "left out a lower note under one that goes on");
        } else {
            last.end = std::min(last.end, next.start);
            line.push_back(next);
        }
    }
    return line;
}

// Places in quarter notes.

constexpr double kGridNear = 0.0125; ///< quarter notes that an onset may be off

/// The nearest multiple of an eighth of a quarter note, or of a part of it that triplets have: 12 or 6 a
/// quarter.
double NearestOf(double quarters, double triplet_parts) {
    const double straight = std::round(quarters * 8.0) / 8.0;
    const double triplet = std::round(quarters * triplet_parts) / triplet_parts;
    return std::abs(straight - quarters) <= std::abs(triplet - quarters) + 1e-9 ? straight : triplet;
}

/// Whether a place is as good as written: off by half a tick or what a hand does not mean.
bool IsNear(double place, double quarters, int ticks_of_quarter) {
    return std::abs(place - quarters) <= std::max(kGridNear, 0.5 / ticks_of_quarter);
}

double NearestPlace(double quarters) {
    return NearestOf(quarters, 12.0);
}

bool IsOnPlace(double quarters, int ticks_of_quarter) {
    return IsNear(NearestPlace(quarters), quarters, ticks_of_quarter);
}

/// Where a tick is written.
double PlaceOf(double tick, int ticks_of_quarter) {
    const double quarters = tick / ticks_of_quarter;
    return IsOnPlace(quarters, ticks_of_quarter) ? NearestPlace(quarters)
                                                 : std::round(quarters * 24.0) / 24.0;
}

/// Where a score would end a note: at a multiple of an eighth or a sixth of a quarter note.
double EndPlaceOf(double quarters) {
    return NearestOf(quarters, 6.0);
}

bool IsOnEndPlace(double quarters, int ticks_of_quarter) {
    return IsNear(EndPlaceOf(quarters), quarters, ticks_of_quarter);
}

/// Nine onsets of ten lie where a score has them.
bool LiesOnGrid(const std::vector<Sound>& line, int ticks_of_quarter) {
    if (ticks_of_quarter == 0) return false;
    const auto near = std::count_if(line.begin(), line.end(), [&](const Sound& sound) {
        return IsOnPlace(sound.start / ticks_of_quarter, ticks_of_quarter);
    });
    return static_cast<double>(near) >= 0.9 * static_cast<double>(line.size());
}

/// Whether the silence behind a note belongs to how it is played: less than 40 % of the way to the next
/// onset, or less than 60 % where the note does not end where a score would end it.
bool IsShortGap(double sounding, double all, bool ends_on_place) {
    return all - sounding < (ends_on_place ? 0.4 : 0.6) * all - 1e-9;
}

/// Writes one sound, up to the next onset, into the tune.
struct LineWriter {
    const MidiClock& clock;
    int ticks_of_quarter;
    bool on_grid;
    Tune& tune;
};

double SecondsFrom(const LineWriter& writer, double from, double to) {
    return SecondsAt(writer.clock, to) - SecondsAt(writer.clock, from);
}

double QuartersFrom(const LineWriter& writer, double from, double to) {
    const int ticks = writer.ticks_of_quarter;
    if (ticks == 0) return 2.0 * SecondsFrom(writer, from, to); // as if at 120
    if (!writer.on_grid) return (to - from) / ticks;
    return PlaceOf(to, ticks) - PlaceOf(from, ticks);
}

void WriteSound(const LineWriter& writer, const Sound& sound, double next_start) {
    double end = sound.end;
    const int ticks = writer.ticks_of_quarter;
    const bool on_place = writer.on_grid && IsOnEndPlace(end / ticks, ticks);
    const double gap = SecondsFrom(writer, end, next_start);
    const double all = SecondsFrom(writer, sound.start, next_start);
    if (IsShortGap(all - gap, all, on_place)) {
        if (gap > kNoGap) Remark(writer.tune.remarks, "let a note last through the short gap behind it");
        end = next_start;
    } else if (writer.on_grid) {
        // A note that is followed by a rest ends where a score would end it.
        const double place = EndPlaceOf(end / ticks) * ticks;
        if (place > sound.start && place < next_start) end = place;
    }
    const int pitch = sound.key - kMidiPitchDistance;
    writer.tune.items.push_back({TuneKind::Note, pitch, QuartersFrom(writer, sound.start, end),
                                 SecondsFrom(writer, sound.start, end)});
    const double rest = QuartersFrom(writer, end, next_start);
    if (rest > 0.0)
        writer.tune.items.push_back({TuneKind::Rest, 0, rest, SecondsFrom(writer, end, next_start)});
}

// The last note, behind which there is no onset.

/// How much of the way to the next onset the notes usually sound, short gaps only.
double UsualPart(const LineWriter& writer, const std::vector<Sound>& line) {
    std::vector<double> parts;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const double all = line[i + 1].start - line[i].start;
        const double sounding = line[i].end - line[i].start;
        const bool on_place = IsOnEndPlace(line[i].end / writer.ticks_of_quarter, writer.ticks_of_quarter);
        if (IsShortGap(sounding, all, on_place)) parts.push_back(sounding / all);
    }
    if (parts.empty()) return 1.0;
    const auto middle = parts.begin() + static_cast<std::ptrdiff_t>(parts.size() / 2);
    std::nth_element(parts.begin(), middle, parts.end());
    return *middle;
}

/// Where the last note would end in a score, quarter notes: at once where that is half a quarter note's
/// place, else as long behind its begin as the others' gaps let expect.
double LastPlace(const LineWriter& writer, const std::vector<Sound>& line) {
    const Sound& last = line.back();
    const int ticks = writer.ticks_of_quarter;
    const double half = std::round(last.end / ticks * 2.0) / 2.0;
    if (std::abs(half - last.end / ticks) <= std::max(kGridNear, 0.5 / ticks)) return half;
    double near = 0.09; // quarter notes
    const double expected = (last.start + (last.end - last.start) / UsualPart(writer, line)) / ticks;
    double place = EndPlaceOf(expected);
    for (const double parts : {4.0, 3.0}) {
        const double coarse = std::round(expected * parts) / parts;
        if (std::abs(coarse - expected) >= near) continue;
        near = std::abs(coarse - expected);
        place = coarse;
    }
    return place;
}

/// The tick at which the last note ends when it is as long as it would be written.
double LastEnd(const LineWriter& writer, const std::vector<Sound>& line) {
    const Sound& last = line.back();
    const int ticks = writer.ticks_of_quarter;
    if (!writer.on_grid) return last.end;
    const double quarters = LastPlace(writer, line) - PlaceOf(last.start, ticks);
    return quarters > 0.0 ? last.start + quarters * ticks : last.end;
}

/// The tempo that lasts longest from one tick to another, and whether others are heard.
void TakeTempo(const LineWriter& writer, double from, double to) {
    if (writer.ticks_of_quarter == 0) return;
    const auto& stretches = writer.clock.stretches;
    std::map<long long, double> lasts; // seconds, by thousandths of a quarter note a minute
    for (std::size_t i = 0; i < stretches.size(); ++i) {
        const double end = i + 1 < stretches.size() ? std::min(to, stretches[i + 1].tick) : to;
        const double ticks = end - std::max(from, stretches[i].tick);
        const double of_tick = stretches[i].seconds_of_tick;
        if (ticks > 0.0)
            lasts[std::llround(60000.0 / (of_tick * writer.ticks_of_quarter))] += ticks * of_tick;
    }
    if (lasts.empty()) return;
    const auto longest = std::max_element(lasts.begin(), lasts.end(),
                                          [](const auto& a, const auto& b) { return a.second < b.second; });
    Tune& tune = writer.tune;
    tune.tempo = static_cast<double>(longest->first) / 1000.0;
    const double slowest = static_cast<double>(lasts.begin()->first) / 1000.0;
    const double fastest = static_cast<double>(lasts.rbegin()->first) / 1000.0;
    tune.bends = slowest < 0.99 * tune.tempo || fastest > 1.01 * tune.tempo;
    if (!tune.bends) return;
    Remark(tune.remarks, "the tempo changes between " + std::to_string(std::llround(slowest)) + " and " +
                             std::to_string(std::llround(fastest)));
}

} // namespace

Tune TuneOfVoice(const MidiFile& file, const MidiVoice& voice, double from, double to) {
    Tune tune;
    tune.name = voice.name;
    const MidiClock clock = ClockOf(file, voice.track);
    std::vector<Sound> line = LineOf(SoundsOf(clock, voice, from, to, tune.remarks), tune.remarks);
    if (line.empty()) return tune;
    tune.on_grid = LiesOnGrid(line, file.ticks_of_quarter);
    const LineWriter writer{clock, file.ticks_of_quarter, tune.on_grid, tune};
    line.back().end = LastEnd(writer, line);
    for (std::size_t i = 0; i < line.size(); ++i)
        WriteSound(writer, line[i], i + 1 < line.size() ? line[i + 1].start : line[i].end);
    TakeTempo(writer, line.front().start, line.back().end);
    tune.start = line.front().start_seconds;
    return tune;
}

} // namespace tonex
