#include "exchange/midi_nominal.h"

#include "score/number_text.h"
#include "score/snd_file.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace tonex {

namespace {

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
        if (text.kind != kMidiText || text.tick != 0 || !text.text.starts_with(kNominalMark)) continue;
        const std::string_view digits = std::string_view(text.text).substr(kNominalMark.size());
        return NumberOfDigits(digits, kMaxTempo).value_or(0);
    }
    return 0;
}

std::vector<NominalEvent> NominalEventsOf(const MidiFile& file) {
    std::vector<NominalEvent> events;
    for (const MidiNote& note : file.notes)
        events.push_back({note.order, note.start, TuneKind::Note, note.key - kMidiPitchDistance, note.end});
    for (const MidiText& text : file.texts) {
        if (text.kind != kMidiMarker) continue;
        if (text.text == "|") events.push_back({text.order, text.tick, TuneKind::Separator});
        if (text.text == "r") events.push_back({text.order, text.tick, TuneKind::Rest});
    }
    std::sort(events.begin(), events.end(),
              [](const NominalEvent& a, const NominalEvent& b) { return a.order < b.order; });
    return events;
}

} // namespace

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
