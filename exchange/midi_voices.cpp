#include "exchange/midi_voices.h"

#include "score/codes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <string_view>

namespace tonex {

namespace {

constexpr double kMoment = 0.03; ///< seconds; what overlaps or follows closer is one
constexpr int kFewNotes = 8;
constexpr int kFirstBassProgram = 32;
constexpr int kLastBassProgram = 39;
constexpr std::array<std::string_view, 10> kMelodyWords = {"melod", "lead", "solo",   "vocal", "voice",
                                                           "sing",  "tune", "gesang", "canto", "theme"};
constexpr std::array<std::string_view, 9> kOtherWords = {"bass",   "drum",    "perc",    "accomp", "chord",
                                                         "rhythm", "harmony", "backing", "pad"};

template <std::size_t Count>
bool HasWord(std::string_view name, const std::array<std::string_view, Count>& words) {
    std::string small(name);
    std::transform(small.begin(), small.end(), small.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return std::any_of(words.begin(), words.end(),
                       [&](std::string_view word) { return small.find(word) != std::string::npos; });
}

std::string NameOfTrack(const MidiFile& file, int track) {
    constexpr int kind_name = 3;
    for (const MidiText& text : file.texts) {
        if (text.kind == kind_name && text.track == track && !text.text.empty()) return text.text;
    }
    return {};
}

int ProgramOf(const MidiFile& file, int track, int channel) {
    for (const MidiProgram& program : file.programs) {
        if (program.track == track && program.channel == channel) return program.program;
    }
    return -1;
}

void Describe(const MidiFile& file, MidiVoice& voice) {
    voice.name = NameOfTrack(file, voice.track);
    voice.program = ProgramOf(file, voice.track, voice.channel);
    voice.drums = voice.channel == kMidiDrums;
    voice.lowest = 1000;
    voice.highest = -1000;
    const MidiClock clock = ClockOf(file, voice.track);
    double last_end = -1.0;
    for (const MidiNote& note : voice.notes) {
        voice.lowest = std::min(voice.lowest, note.key - kMidiPitchDistance);
        voice.highest = std::max(voice.highest, note.key - kMidiPitchDistance);
        if (SecondsAt(clock, static_cast<double>(note.start)) < last_end - kMoment) ++voice.overlapping;
        last_end = std::max(last_end, SecondsAt(clock, static_cast<double>(note.end)));
    }
    voice.seconds = last_end - SecondsAt(clock, static_cast<double>(voice.notes.front().start));
}

/// A note's begin or end.
struct Edge {
    std::int64_t tick;
    bool begins;
    int key;
    int voice;
};

struct Shares {
    std::vector<double> on_top;   ///< ticks in which the voice is the highest, by voice
    std::vector<double> sounding; ///< ticks in which it sounds
    double any = 0.0;             ///< ticks in which anything sounds
};

std::vector<Edge> EdgesOf(const std::vector<MidiVoice>& voices) {
    std::vector<Edge> edges;
    for (int i = 0; i < static_cast<int>(voices.size()); ++i) {
        if (At(voices, i).drums) continue;
        for (const MidiNote& note : At(voices, i).notes) {
            if (note.end <= note.start) continue;
            edges.push_back({note.start, true, note.key, i});
            edges.push_back({note.end, false, note.key, i});
        }
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.tick < b.tick; });
    return edges;
}

/// Who lies highest, and who sounds, from one edge to the next.
Shares SharesOf(const std::vector<MidiVoice>& voices) {
    Shares shares;
    shares.on_top.assign(voices.size(), 0.0);
    shares.sounding.assign(voices.size(), 0.0);
    std::multiset<std::pair<int, int>> active; // key and voice
    std::vector<int> active_notes(voices.size(), 0);
    std::vector<std::int64_t> since(voices.size(), 0);
    std::int64_t before = 0;
    for (const Edge& edge : EdgesOf(voices)) {
        if (!active.empty()) {
            const double ticks = static_cast<double>(edge.tick - before);
            At(shares.on_top, active.rbegin()->second) += ticks;
            shares.any += ticks;
        }
        before = edge.tick;
        int& notes = At(active_notes, edge.voice);
        if (edge.begins) {
            active.insert({edge.key, edge.voice});
            if (notes++ == 0) At(since, edge.voice) = edge.tick;
            continue;
        }
        const auto found = active.find({edge.key, edge.voice});
        if (found == active.end()) continue; // its begin is sorted behind its end
        active.erase(found);
        if (--notes == 0)
            At(shares.sounding, edge.voice) += static_cast<double>(edge.tick - At(since, edge.voice));
    }
    return shares;
}

double PointsOf(const MidiVoice& voice, double on_top, double sounding) {
    if (voice.drums) return 0.0;
    std::set<int> pitches;
    for (const MidiNote& note : voice.notes)
        pitches.insert(note.key);
    const auto notes = static_cast<double>(voice.notes.size());
    constexpr double most_pitches = 12.0;
    double points = 40.0 * on_top + 25.0 * (1.0 - voice.overlapping / notes) + 20.0 * sounding +
                    15.0 * std::min(1.0, static_cast<double>(pitches.size()) / most_pitches);
    const bool bass = voice.program >= kFirstBassProgram && voice.program <= kLastBassProgram;
    if (HasWord(voice.name, kMelodyWords)) points += 30.0;
    if (bass || HasWord(voice.name, kOtherWords)) points -= 30.0;
    return voice.notes.size() < kFewNotes ? points / 2.0 : points;
}

// The voice as a line.

/// A note of the line, in ticks and seconds.
struct Sound {
    double start; ///< ticks
    double end;
    double start_seconds;
    double end_seconds;
    int key;
};

std::vector<Sound> SoundsOf(const MidiClock& clock, const MidiVoice& voice, double from, double to) {
    std::vector<Sound> sounds;
    for (const MidiNote& note : voice.notes) {
        Sound sound{static_cast<double>(note.start), static_cast<double>(note.end), 0.0, 0.0, note.key};
        sound.start_seconds = SecondsAt(clock, sound.start);
        sound.end_seconds = SecondsAt(clock, sound.end);
        if (sound.start_seconds < from || sound.start_seconds >= to) continue;
        if (sound.end_seconds > to) {
            const double part = (to - sound.start_seconds) / (sound.end_seconds - sound.start_seconds);
            sound.end = sound.start + part * (sound.end - sound.start);
            sound.end_seconds = to;
        }
        sounds.push_back(sound);
    }
    return sounds;
}

/// Whether a note that starts at the same moment as the one before belongs to its chord.
bool IsSameOnset(const Sound& first, const Sound& next) {
    return next.start_seconds - first.start_seconds < kMoment &&
           next.start_seconds < first.start_seconds + 0.5 * (first.end_seconds - first.start_seconds) &&
           next.start_seconds < first.start_seconds + 0.5 * (next.end_seconds - next.start_seconds);
}

/// Whether a lower note starts under one that goes on for most of it.
bool IsUnder(const Sound& held, const Sound& next) {
    if (next.key >= held.key) return false;
    const double length = next.end_seconds - next.start_seconds;
    const double common = std::min(held.end_seconds, next.end_seconds) - next.start_seconds;
    return common > kMoment && common > 0.5 * length;
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
            if (last.end > next.start) {
                last.end = next.start;
                last.end_seconds = next.start_seconds;
            }
            line.push_back(next);
        }
    }
    return line;
}

// Places in quarter notes.

constexpr double kGridNear = 0.0125; ///< quarter notes that an onset may be off

/// The nearest multiple of an eighth or a twelfth of a quarter note.
double NearestPlace(double quarters) {
    const double straight = std::round(quarters * 8.0) / 8.0;
    const double triplet = std::round(quarters * 12.0) / 12.0;
    return std::abs(straight - quarters) <= std::abs(triplet - quarters) + 1e-9 ? straight : triplet;
}

bool IsOnPlace(double quarters, int ticks_of_quarter) {
    const double near = std::max(kGridNear, 0.5 / ticks_of_quarter);
    return std::abs(NearestPlace(quarters) - quarters) <= near;
}

/// Where a tick is written.
double PlaceOf(double tick, int ticks_of_quarter) {
    const double quarters = tick / ticks_of_quarter;
    return IsOnPlace(quarters, ticks_of_quarter) ? NearestPlace(quarters)
                                                 : std::round(quarters * 24.0) / 24.0;
}

/// Where a score would end a note: at a multiple of an eighth or a sixth of a quarter note.
double EndPlaceOf(double quarters) {
    const double straight = std::round(quarters * 8.0) / 8.0;
    const double triplet = std::round(quarters * 6.0) / 6.0;
    return std::abs(straight - quarters) <= std::abs(triplet - quarters) + 1e-9 ? straight : triplet;
}

bool IsOnEndPlace(double quarters, int ticks_of_quarter) {
    const double near = std::max(kGridNear, 0.5 / ticks_of_quarter);
    return std::abs(EndPlaceOf(quarters) - quarters) <= near;
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

double QuartersFrom(const LineWriter& writer, double from, double to) {
    const int ticks = writer.ticks_of_quarter;
    if (ticks == 0) return 2.0 * (to - from); // seconds; as if at 120
    if (!writer.on_grid) return (to - from) / ticks;
    return std::max(0.0, PlaceOf(to, ticks) - PlaceOf(from, ticks));
}

/// What the written part lasts: by the clock, at the places where it is written.
double SecondsFrom(const LineWriter& writer, double from, double to) {
    const int ticks = writer.ticks_of_quarter;
    if (ticks == 0 || !writer.on_grid) return SecondsAt(writer.clock, to) - SecondsAt(writer.clock, from);
    return SecondsAt(writer.clock, PlaceOf(to, ticks) * ticks) -
           SecondsAt(writer.clock, PlaceOf(from, ticks) * ticks);
}

void WriteSound(const LineWriter& writer, const Sound& sound, double next_start) {
    double end = sound.end;
    const int ticks = writer.ticks_of_quarter;
    const bool on_place = writer.on_grid && IsOnEndPlace(end / ticks, ticks);
    const double sounding = SecondsAt(writer.clock, end) - sound.start_seconds;
    const double all = SecondsAt(writer.clock, next_start) - sound.start_seconds;
    if (IsShortGap(sounding, all, on_place)) {
        if (next_start - end > 0.5)
            Remark(writer.tune.remarks, "let a note last through the short gap behind it");
        end = next_start;
    } else if (writer.on_grid && end < next_start) {
        // A note that is followed by a rest ends where a score would end it.
        const double place = EndPlaceOf(end / ticks) * ticks;
        if (place > sound.start && place < next_start) end = place;
    }
    const int pitch = sound.key - kMidiPitchDistance;
    writer.tune.items.push_back({TuneKind::Note, pitch, QuartersFrom(writer, sound.start, end),
                                 SecondsFrom(writer, sound.start, end)});
    const double rest = QuartersFrom(writer, end, next_start);
    if (rest > 1e-6)
        writer.tune.items.push_back({TuneKind::Rest, 0, rest, SecondsFrom(writer, end, next_start)});
}

/// The tempo that lasts longest, and whether another one is heard.
void TakeTempo(Tune& tune) {
    std::map<long, double> lasts; // by thousandths of a quarter note a minute
    for (const TuneItem& item : tune.items) {
        if (item.seconds > 0.0 && item.quarters > 0.0)
            lasts[std::lround(item.quarters * 60000.0 / item.seconds)] += item.seconds;
    }
    if (lasts.empty()) return;
    const auto longest = std::max_element(lasts.begin(), lasts.end(),
                                          [](const auto& a, const auto& b) { return a.second < b.second; });
    tune.tempo = static_cast<double>(longest->first) / 1000.0;
    const double slowest = static_cast<double>(lasts.begin()->first) / 1000.0;
    const double fastest = static_cast<double>(lasts.rbegin()->first) / 1000.0;
    tune.bends = slowest < 0.99 * tune.tempo || fastest > 1.01 * tune.tempo;
    if (!tune.bends) return;
    Remark(tune.remarks, "the tempo changes between " + std::to_string(std::lround(slowest)) + " and " +
                             std::to_string(std::lround(fastest)));
}

// Files of written lengths.

constexpr std::string_view kNominalMark = "sndtool tempo ";

/// What a nominal file's track says, in order.
struct NominalEvent {
    std::size_t order;
    std::int64_t tick;
    TuneKind kind;
    int pitch = 0;
    std::int64_t end = -1; ///< of a note
};

int NominalTempoOf(const MidiFile& file) {
    for (const MidiText& text : file.texts) {
        if (text.kind != 1 || text.tick != 0 || !text.text.starts_with(kNominalMark)) continue;
        int tempo = 0;
        for (const char digit : text.text.substr(kNominalMark.size())) {
            if (digit < '0' || digit > '9' || tempo > 1000) return 0;
            tempo = tempo * 10 + (digit - '0');
        }
        return tempo;
    }
    return 0;
}

std::vector<NominalEvent> NominalEventsOf(const MidiFile& file) {
    std::vector<NominalEvent> events;
    for (const MidiNote& note : file.notes)
        events.push_back({note.order, note.start, TuneKind::Note, note.key - kMidiPitchDistance, note.end});
    constexpr int kind_marker = 6;
    for (const MidiText& text : file.texts) {
        if (text.kind != kind_marker) continue;
        if (text.text == "|") events.push_back({text.order, text.tick, TuneKind::Separator});
        if (text.text == "r") events.push_back({text.order, text.tick, TuneKind::Rest});
    }
    std::sort(events.begin(), events.end(),
              [](const NominalEvent& a, const NominalEvent& b) { return a.order < b.order; });
    return events;
}

} // namespace

MidiClock ClockOf(const MidiFile& file, int track) {
    MidiClock clock;
    const double quarter = file.ticks_of_quarter;
    clock.stretches.push_back({0.0, 0.0, file.ticks_of_quarter == 0 ? file.seconds_of_tick : 0.5 / quarter});
    if (file.ticks_of_quarter == 0) return clock;
    for (const MidiTempo& tempo : file.tempos) {
        if (file.format == 2 && tempo.track != track) continue;
        const auto tick = static_cast<double>(tempo.tick);
        clock.stretches.push_back({tick, SecondsAt(clock, tick), tempo.microseconds / 1e6 / quarter});
    }
    return clock;
}

double SecondsAt(const MidiClock& clock, double tick) {
    auto stretch =
        std::upper_bound(clock.stretches.begin(), clock.stretches.end(), tick,
                         [](double at, const MidiClock::Stretch& other) { return at < other.tick; });
    if (stretch != clock.stretches.begin()) --stretch;
    return stretch->seconds + (tick - stretch->tick) * stretch->seconds_of_tick;
}

std::vector<MidiVoice> VoicesOf(const MidiFile& file) {
    std::map<std::pair<int, int>, MidiVoice> found;
    for (const MidiNote& note : file.notes)
        found[{note.track, note.channel}].notes.push_back(note);
    std::vector<MidiVoice> voices;
    for (auto& [place, voice] : found) {
        voice.track = place.first;
        voice.channel = place.second;
        Describe(file, voice);
        voices.push_back(std::move(voice));
    }
    const Shares shares = SharesOf(voices);
    for (int i = 0; i < static_cast<int>(voices.size()) && shares.any > 0.0; ++i) {
        MidiVoice& voice = At(voices, i);
        voice.points =
            PointsOf(voice, At(shares.on_top, i) / shares.any, At(shares.sounding, i) / shares.any);
    }
    return voices;
}

int MelodyOf(const std::vector<MidiVoice>& voices, int track, int channel) {
    int best = -1;
    for (int i = 0; i < static_cast<int>(voices.size()); ++i) {
        const MidiVoice& voice = At(voices, i);
        if (voice.drums || (track >= 0 && voice.track != track) || (channel >= 0 && voice.channel != channel))
            continue;
        if (best < 0 || voice.points > At(voices, best).points) best = i;
    }
    return best;
}

Tune TuneOfVoice(const MidiFile& file, const MidiVoice& voice, double from, double to) {
    Tune tune;
    tune.name = voice.name;
    const MidiClock clock = ClockOf(file, voice.track);
    const std::vector<Sound> line = LineOf(SoundsOf(clock, voice, from, to), tune.remarks);
    if (line.empty()) return tune;
    const bool on_grid = LiesOnGrid(line, file.ticks_of_quarter);
    const LineWriter writer{clock, file.ticks_of_quarter, on_grid, tune};
    tune.on_grid = on_grid;
    for (std::size_t i = 0; i < line.size(); ++i)
        WriteSound(writer, line[i], i + 1 < line.size() ? line[i + 1].start : line[i].end);
    TakeTempo(tune);
    return tune;
}

std::optional<Tune> TuneOfNominal(const MidiFile& file) {
    const int tempo = NominalTempoOf(file);
    if (tempo == 0 || file.ticks_of_quarter == 0 || file.tracks != 1) return std::nullopt;
    Tune tune;
    tune.tempo = tempo;
    tune.as_written = true;
    const std::vector<NominalEvent> events = NominalEventsOf(file);
    std::int64_t reached = 0;
    for (std::size_t i = 0; i < events.size(); ++i) {
        const NominalEvent& event = events[i];
        if (event.tick != reached) return std::nullopt; // somebody changed the file
        const std::int64_t next = i + 1 < events.size() ? events[i + 1].tick : file.ends.front();
        if (event.kind != TuneKind::Separator) reached = event.kind == TuneKind::Note ? event.end : next;
        TuneItem item{event.kind, event.pitch};
        item.quarters = static_cast<double>(reached - event.tick) / file.ticks_of_quarter;
        item.seconds = item.quarters * 60.0 / tempo;
        if (event.kind != TuneKind::Separator && reached <= event.tick) return std::nullopt;
        tune.items.push_back(item);
    }
    if (reached != file.ends.front()) return std::nullopt;
    return tune;
}

} // namespace tonex
