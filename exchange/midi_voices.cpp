#include "exchange/midi_voices.h"

#include "exchange/midi_clock.h"
#include "score/number_text.h"
#include "score/rows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace tonex {

namespace {

constexpr int kFewNotes = 8;
constexpr int kWidestStep = 4; ///< half tones; wider is a leap
constexpr int kFirstBassProgram = 32;
constexpr int kLastBassProgram = 39;

/// Words in names, in small letters; one that ends in * stands for all that begin like it.
constexpr std::array<std::string_view, 12> kMelodyWords = {"melod*",  "lead*", "solo",    "vocal*",
                                                           "voice*",  "sing",  "singer*", "singst*",
                                                           "gesang*", "canto", "tune",    "theme"};
constexpr std::array<std::string_view, 13> kOtherWords = {
    "bass",   "bassline", "contrabass", "drum*",   "perc*", "accomp*", "chord",
    "chords", "rhythm",   "harmony",    "backing", "pad",   "pads"};

/// The words of a name in small letters: runs of letters.
std::vector<std::string> WordsOf(std::string_view name) {
    std::vector<std::string> words(1);
    for (const char c : name) {
        const char small = SmallLetter(c);
        if (small >= 'a' && small <= 'z') {
            words.back() += small;
        } else if (!words.back().empty()) {
            words.emplace_back();
        }
    }
    return words;
}

bool IsMeant(std::string_view word, std::string_view entry) {
    if (!entry.ends_with('*')) return word == entry;
    return word.starts_with(entry.substr(0, entry.size() - 1));
}

bool HasWord(std::string_view name, std::span<const std::string_view> entries) {
    const std::vector<std::string> words = WordsOf(name);
    return std::any_of(words.begin(), words.end(), [&](const std::string& word) {
        return std::any_of(entries.begin(), entries.end(),
                           [&](std::string_view entry) { return IsMeant(word, entry); });
    });
}

/// What a file says of its voices.
struct Labels {
    std::map<int, std::string_view> names;       ///< by track: the first that is not empty
    std::map<std::pair<int, int>, int> programs; ///< by track and channel
};

Labels LabelsOf(const MidiFile& file) {
    Labels labels;
    for (const MidiText& text : file.texts) {
        if (text.kind == kMidiTrackName && !text.text.empty()) labels.names.emplace(text.track, text.text);
    }
    for (const MidiProgram& program : file.programs)
        labels.programs.emplace(std::pair{program.track, program.channel}, program.program);
    return labels;
}

void TakeLabels(const Labels& labels, MidiVoice& voice) {
    if (const auto name = labels.names.find(voice.track); name != labels.names.end())
        voice.name = name->second;
    const auto program = labels.programs.find({voice.track, voice.channel});
    if (program != labels.programs.end()) voice.program = program->second;
    voice.drums = voice.channel == kMidiDrums;
}

/// Range, length and overlaps.
void Measure(const MidiClock& clock, MidiVoice& voice) {
    voice.lowest = voice.highest = voice.notes.front().key - kMidiPitchDistance;
    double last_end = 0.0;
    for (const MidiNote& note : voice.notes) {
        voice.lowest = std::min(voice.lowest, note.key - kMidiPitchDistance);
        voice.highest = std::max(voice.highest, note.key - kMidiPitchDistance);
        if (SecondsAt(clock, static_cast<double>(note.start)) < last_end - kMidiMoment) ++voice.overlapping;
        last_end = std::max(last_end, SecondsAt(clock, static_cast<double>(note.end)));
    }
    voice.seconds = last_end - SecondsAt(clock, static_cast<double>(voice.notes.front().start));
}

/// Where a voice goes on, by its highest notes.
struct Onset {
    double seconds;
    int key;
};

std::vector<Onset> OnsetsOf(const MidiClock& clock, const MidiVoice& voice) {
    std::vector<Onset> onsets;
    for (const MidiNote& note : voice.notes) {
        const double seconds = SecondsAt(clock, static_cast<double>(note.start));
        if (onsets.empty() || seconds - onsets.back().seconds >= kMidiMoment) {
            onsets.push_back({seconds, note.key});
        } else {
            onsets.back().key = std::max(onsets.back().key, note.key);
        }
    }
    return onsets;
}

/// How a voice moves.
void MeasureMotion(const MidiClock& clock, MidiVoice& voice) {
    const std::vector<Onset> onsets = OnsetsOf(clock, voice);
    if (onsets.size() < 2) return;
    std::vector<double> gaps;
    int steps = 0;
    int half_tones = 0;
    for (std::size_t i = 1; i < onsets.size(); ++i) {
        const int interval = std::abs(onsets[i].key - onsets[i - 1].key);
        if (interval >= 1 && interval <= kWidestStep) ++steps;
        half_tones += interval;
        gaps.push_back(onsets[i].seconds - onsets[i - 1].seconds);
    }
    const auto middle = gaps.begin() + static_cast<std::ptrdiff_t>(gaps.size() / 2);
    std::nth_element(gaps.begin(), middle, gaps.end());
    voice.steps = static_cast<double>(steps) / static_cast<double>(gaps.size());
    voice.mean_interval = static_cast<double>(half_tones) / static_cast<double>(gaps.size());
    voice.usual_gap = *middle;
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
    double any;                   ///< ticks in which anything sounds
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
    // Ends come first: a key that is struck again is let go before.
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) {
        return a.tick != b.tick ? a.tick < b.tick : a.begins < b.begins;
    });
    return edges;
}

/// What sounds at a moment, and for how long each key was the highest up to then.
struct Sounding {
    std::array<int, kMidiKeys> notes{};             ///< by key
    std::array<double, kMidiKeys> highest{};        ///< ticks, by key
    std::map<std::pair<int, int>, double> at_begin; ///< the key's ticks when its note began, by voice and key
    double any = 0.0;                               ///< ticks in which anything sounds
};

void PassTicks(Sounding& sounding, double ticks) {
    for (int key = kMidiKeys - 1; key >= 0; --key) {
        if (At(sounding.notes, key) == 0) continue;
        At(sounding.highest, key) += ticks;
        sounding.any += ticks;
        return;
    }
}

/// Who lies highest, and who sounds, from one edge to the next.
Shares SharesOf(const std::vector<MidiVoice>& voices) {
    Shares shares;
    shares.on_top.assign(voices.size(), 0.0);
    shares.sounding.assign(voices.size(), 0.0);
    std::vector<int> notes(voices.size(), 0);
    Sounding sounding;
    std::int64_t before = 0;
    for (const Edge& edge : EdgesOf(voices)) {
        if (edge.tick != before) PassTicks(sounding, static_cast<double>(edge.tick - before));
        before = edge.tick;
        const double highest = At(sounding.highest, edge.key);
        const auto tick = static_cast<double>(edge.tick);
        if (edge.begins) {
            ++At(sounding.notes, edge.key);
            sounding.at_begin[{edge.voice, edge.key}] = highest;
            if (At(notes, edge.voice)++ == 0) At(shares.sounding, edge.voice) -= tick;
        } else {
            --At(sounding.notes, edge.key);
            At(shares.on_top, edge.voice) += highest - sounding.at_begin[{edge.voice, edge.key}];
            if (--At(notes, edge.voice) == 0) At(shares.sounding, edge.voice) += tick;
        }
    }
    shares.any = sounding.any;
    return shares;
}

/// 0 up to `from`, 1 from `to` on.
double PartBetween(double value, double from, double to) {
    return std::clamp((value - from) / (to - from), 0.0, 1.0);
}

double PointsOf(const MidiVoice& voice, double on_top, double sounding) {
    if (voice.drums) return 0.0;
    std::set<int> pitches;
    for (const MidiNote& note : voice.notes)
        pitches.insert(note.key);
    const auto notes = static_cast<double>(voice.notes.size());
    double points = 20.0 * on_top + 25.0 * (1.0 - voice.overlapping / notes) + 20.0 * sounding +
                    15.0 * PartBetween(static_cast<double>(pitches.size()), 0.0, 12.0) + 20.0 * voice.steps -
                    25.0 * PartBetween(voice.usual_gap, 1.0, 2.0) -
                    20.0 * PartBetween(voice.mean_interval, 4.0, 7.0);
    const bool bass = voice.program >= kFirstBassProgram && voice.program <= kLastBassProgram;
    if (HasWord(voice.name, kMelodyWords)) points += 30.0;
    if (bass || HasWord(voice.name, kOtherWords)) points -= 30.0;
    return voice.notes.size() < kFewNotes ? points / 2.0 : points;
}

} // namespace

std::vector<MidiVoice> VoicesOf(const MidiFile& file) {
    std::map<std::pair<int, int>, MidiVoice> found;
    for (const MidiNote& note : file.notes)
        found[{note.track, note.channel}].notes.push_back(note);
    const Labels labels = LabelsOf(file);
    std::vector<MidiVoice> voices;
    MidiClock clock;
    for (auto& [place, voice] : found) {
        const bool own_clock = file.format == 2 && !voices.empty() && voices.back().track != place.first;
        if (clock.stretches.empty() || own_clock) clock = ClockOf(file, place.first);
        voice.track = place.first;
        voice.channel = place.second;
        TakeLabels(labels, voice);
        Measure(clock, voice);
        MeasureMotion(clock, voice);
        voices.push_back(std::move(voice));
    }
    const Shares shares = SharesOf(voices);
    for (int i = 0; i < static_cast<int>(voices.size()) && shares.any != 0.0; ++i) {
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

} // namespace tonex
