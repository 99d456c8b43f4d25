#include "tools/sndtool/gathering.h"

#include "exchange/midi_nominal.h"
#include "exchange/midi_tune.h"
#include "exchange/midi_voices.h"
#include "exchange/rtttl.h"
#include "score/melody_text.h"
#include "score/snd_file.h"
#include "tools/sndtool/inputs.h"

#include <algorithm>
#include <utility>

namespace tonex {

namespace {

std::string Named(const std::string& what, const std::string& name) {
    return name.empty() ? what : what + " \"" + name + "\"";
}

bool Refuse(Gathering& gathering, const std::string& reason) {
    Complain(gathering.input, reason);
    gathering.reason = reason;
    return false;
}

// Ring tones.

/// What `--list` tells of a tune.
Report ListingOf(const std::string& input, const Tune& tune, const std::string& source) {
    Report report;
    report.head = input + ": " + source;
    const auto [lowest, highest] = RangeOf(tune);
    const std::string from = lowest >= 1 ? PitchTextOf(lowest) : "-";
    const std::string to = highest >= 1 ? PitchTextOf(highest) : "-";
    Tell(report, "notes", std::to_string(CountNotes(tune)) + ", " + from + " to " + to);
    Tell(report, "length", Decimal(LengthOf(tune), 1) + " s at tempo " + Decimal(tune.tempo, 1));
    report.json = {{"file", input},
                   {"source", source},
                   {"name", tune.name},
                   {"notes", CountNotes(tune)},
                   {"lowest_note", from},
                   {"highest_note", to},
                   {"seconds", Rounded(LengthOf(tune), 3)},
                   {"tempo", Rounded(tune.tempo, 3)}};
    return report;
}

bool GatherRtttl(Gathering& gathering, std::string_view text, const ImportWish& wish) {
    RtttlFault fault;
    auto tunes = ReadRtttl(text, fault);
    if (!tunes) {
        return Refuse(gathering, "line " + std::to_string(fault.line) + ", column " +
                                     std::to_string(fault.column) + ": " + fault.reason);
    }
    const int count = static_cast<int>(tunes->size());
    if (wish.channel != 0) return Refuse(gathering, "ring tones have no channels");
    if (wish.track > count) return Refuse(gathering, "there are only " + std::to_string(count) + " tunes");
    for (int i = 0; i < count; ++i) {
        if (wish.track != 0 && wish.track != i + 1) continue;
        Import import;
        import.input = gathering.input;
        import.tune = std::move(At(*tunes, i));
        import.source = Named("tune " + std::to_string(i + 1), import.tune.name);
        import.json["tune"] = i + 1;
        KeepPart(import.tune, wish.from, wish.to);
        gathering.imports.push_back(std::move(import));
    }
    return true;
}

// MIDI.

std::string SourceOf(const MidiVoice& voice) {
    return Named("track " + std::to_string(voice.track + 1), voice.name) + ", channel " +
           std::to_string(voice.channel + 1);
}

Report VoiceListing(const std::string& input, const MidiVoice& voice, bool melody) {
    Report report;
    report.head =
        input + ": " + SourceOf(voice) + (melody ? " (the melody, if nothing else is asked for)" : "");
    const auto text = [](int pitch) {
        return pitch >= 1 ? PitchTextOf(pitch) : "MIDI " + std::to_string(pitch + 33);
    };
    Tell(report, "notes",
         std::to_string(voice.notes.size()) + ", " + text(voice.lowest) + " to " + text(voice.highest) +
             (voice.drums ? "; drums" : ""));
    Tell(report, "length", Decimal(voice.seconds, 1) + " s");
    Tell(report, "overlaps", voice.overlapping == 0 ? "none" : std::to_string(voice.overlapping) + " notes");
    Tell(report, "points", Decimal(voice.points, 0) + " as a melody");
    report.json = {{"file", input},
                   {"source", SourceOf(voice)},
                   {"track", voice.track + 1},
                   {"channel", voice.channel + 1},
                   {"name", voice.name},
                   {"drums", voice.drums},
                   {"notes", voice.notes.size()},
                   {"lowest_note", text(voice.lowest)},
                   {"highest_note", text(voice.highest)},
                   {"seconds", Rounded(voice.seconds, 3)},
                   {"overlapping", voice.overlapping},
                   {"points", Rounded(voice.points, 1)},
                   {"melody", melody}};
    return report;
}

bool ReadMidiInput(Gathering& gathering, std::span<const std::uint8_t> bytes, MidiFile& file) {
    MidiFault fault;
    if (ReadMidi(bytes, file, fault)) return true;
    return Refuse(gathering, "offset " + std::to_string(fault.offset) + ": " + fault.reason);
}

/// Why a voice was chosen; empty when there was no choice.
std::string ReasonFor(const std::vector<MidiVoice>& voices, const MidiVoice& voice, const ImportWish& wish,
                      int track) {
    const auto others = std::count_if(voices.begin(), voices.end(), [&](const MidiVoice& other) {
        return !other.drums && (track < 0 || other.track == track);
    });
    if (others <= 1 || wish.channel != 0) return {};
    return "most points as a melody, " + Decimal(voice.points, 0) + ", of " + std::to_string(others) +
           " voices; see --list";
}

/// Adds the melody among the voices of a track, or of all.
bool AddVoice(Gathering& gathering, const MidiFile& file, const std::vector<MidiVoice>& voices,
              const ImportWish& wish, int track) {
    const int chosen = MelodyOf(voices, track, wish.channel - 1);
    if (chosen < 0) {
        return Refuse(gathering, wish.channel - 1 == kMidiDrums ? "channel 10 has drums, which are no melody"
                                                                : "there is no melody in what was asked for");
    }
    const MidiVoice& voice = At(voices, chosen);
    Import import;
    import.input = gathering.input;
    import.source = SourceOf(voice);
    import.tune = TuneOfVoice(file, voice, wish.from, wish.to);
    import.chosen = ReasonFor(voices, voice, wish, track);
    import.json["track"] = voice.track + 1;
    import.json["channel"] = voice.channel + 1;
    import.json["points"] = Rounded(voice.points, 1);
    for (const auto& [what, times] : file.remarks)
        import.tune.remarks.emplace_back(what, times);
    gathering.imports.push_back(std::move(import));
    return true;
}

void AddNominal(Gathering& gathering, Tune tune, const ImportWish& wish) {
    Import import;
    import.input = gathering.input;
    import.source = "track 1, channel 1";
    import.json["track"] = 1;
    import.json["channel"] = 1;
    import.tune = std::move(tune);
    Remark(import.tune.remarks, "took lengths and tempo as the file's maker wrote them");
    KeepPart(import.tune, wish.from, wish.to);
    gathering.imports.push_back(std::move(import));
}

/// Adds the melody of each track that has one.
bool AddTracks(Gathering& gathering, const MidiFile& file, const std::vector<MidiVoice>& voices,
               const ImportWish& wish) {
    bool good = true;
    int before = -1;
    for (const MidiVoice& voice : voices) {
        if (voice.drums || std::exchange(before, voice.track) == voice.track) continue;
        good = AddVoice(gathering, file, voices, wish, voice.track) && good;
    }
    return good;
}

bool GatherMidi(Gathering& gathering, std::span<const std::uint8_t> bytes, const ImportWish& wish) {
    MidiFile file;
    if (!ReadMidiInput(gathering, bytes, file)) return false;
    if (auto nominal = TuneOfNominal(file); nominal && wish.track <= 1 && wish.channel <= 1) {
        AddNominal(gathering, std::move(*nominal), wish);
        return true;
    }
    const std::vector<MidiVoice> voices = VoicesOf(file);
    if (voices.empty()) return Refuse(gathering, "there is no note in it");
    if (file.format != 2 || wish.track != 0) return AddVoice(gathering, file, voices, wish, wish.track - 1);
    return AddTracks(gathering, file, voices, wish); // every track is a tune
}

bool ListMidi(Gathering& gathering, std::span<const std::uint8_t> bytes, std::vector<Report>& reports) {
    MidiFile file;
    if (!ReadMidiInput(gathering, bytes, file)) return false;
    const std::vector<MidiVoice> voices = VoicesOf(file);
    int melody = MelodyOf(voices, -1, -1);
    int track = -1; // whose melody is known
    for (int i = 0; i < static_cast<int>(voices.size()); ++i) {
        const MidiVoice& voice = At(voices, i);
        if (file.format == 2 && std::exchange(track, voice.track) != voice.track)
            melody = MelodyOf(voices, voice.track, -1);
        reports.push_back(VoiceListing(gathering.input, voice, i == melody));
    }
    return !voices.empty() || Refuse(gathering, "there is no note in it");
}

} // namespace

bool Gather(Gathering& gathering, const ImportWish& wish) {
    std::vector<std::uint8_t> bytes;
    if (!ReadInput(gathering.input, bytes, &gathering.reason)) return false;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (LooksLikeMidi(bytes)) return GatherMidi(gathering, bytes, wish);
    if (LooksLikeRtttl(text)) return GatherRtttl(gathering, text, wish);
    PlayBlock block;
    if (ReadPlayBlock(bytes, block)) return Refuse(gathering, "is a SND file already");
    return Refuse(gathering, "offset 0: neither a MIDI file nor a ring tone");
}

bool ListTunes(Gathering& gathering, const ImportWish& wish, std::vector<Report>& reports) {
    std::vector<std::uint8_t> bytes;
    if (!ReadInput(gathering.input, bytes, &gathering.reason)) return false;
    if (LooksLikeMidi(bytes)) return ListMidi(gathering, bytes, reports);
    if (!Gather(gathering, wish)) return false;
    for (const Import& import : gathering.imports)
        reports.push_back(ListingOf(import.input, import.tune, import.source));
    return true;
}

} // namespace tonex
