#include "exchange/fit.h"
#include "exchange/midi_voices.h"
#include "exchange/played.h"
#include "exchange/rtttl.h"
#include "score/number_text.h"
#include "tools/sndtool/console.h"
#include "tools/sndtool/exchange.h"
#include "tools/sndtool/inputs.h"
#include "tools/sndtool/outputs.h"
#include "tools/sndtool/reports.h"

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

constexpr int kLowestPitch = 1; ///< that a file can hold
constexpr int kHighestPitch = kFileMaxPitch + 1;
constexpr int kMostHalfTones = 200;
constexpr std::size_t kMostNameBytes = 8; ///< that the organiser knows

/// One tune on its way from a file to a melody.
struct Import {
    std::string input;
    Tune tune;
    std::string source; ///< "tune 2 \"Name\"", "track 3 \"Lead\", channel 1"
    std::string chosen; ///< why this one; empty when it was asked for or there is no other
    nlohmann::ordered_json json = nlohmann::ordered_json::object(); ///< what the report has of it
};

std::string Named(const std::string& what, const std::string& name) {
    return name.empty() ? what : what + " \"" + name + "\"";
}

bool Refuse(const std::string& input, const std::string& reason) {
    Complain(input, reason);
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

bool GatherRtttl(const std::string& input, std::string_view text, const ImportWish& wish,
                 std::vector<Import>& imports) {
    RtttlFault fault;
    auto tunes = ReadRtttl(text, fault);
    if (!tunes) {
        return Refuse(input, "line " + std::to_string(fault.line) + ", column " +
                                 std::to_string(fault.column) + ": " + fault.reason);
    }
    const int count = static_cast<int>(tunes->size());
    if (wish.channel != 0) return Refuse(input, "ring tones have no channels");
    if (wish.track > count) return Refuse(input, "there are only " + std::to_string(count) + " tunes");
    for (int i = 0; i < count; ++i) {
        if (wish.track != 0 && wish.track != i + 1) continue;
        Tune& tune = At(*tunes, i);
        Import import;
        import.input = input;
        import.source = Named("tune " + std::to_string(i + 1), tune.name);
        import.json["tune"] = i + 1;
        KeepPart(tune, wish.from, wish.to);
        import.tune = std::move(tune);
        imports.push_back(std::move(import));
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

bool ReadMidiInput(const std::string& input, std::span<const std::uint8_t> bytes, MidiFile& file) {
    MidiFault fault;
    if (ReadMidi(bytes, file, fault)) return true;
    ComplainOffset(input, fault.offset, fault.reason);
    return false;
}

/// Adds the melody among the voices of a track, or of all.
bool AddVoice(const std::string& input, const MidiFile& file, const std::vector<MidiVoice>& voices,
              const ImportWish& wish, int track, std::vector<Import>& imports) {
    const int chosen = MelodyOf(voices, track, wish.channel - 1);
    if (chosen < 0) {
        return Refuse(input, wish.channel - 1 == kMidiDrums ? "channel 10 has drums, which are no melody"
                                                            : "there is no melody in what was asked for");
    }
    const MidiVoice& voice = At(voices, chosen);
    Import import;
    import.input = input;
    import.source = SourceOf(voice);
    import.tune = TuneOfVoice(file, voice, wish.from, wish.to);
    const auto others = std::count_if(voices.begin(), voices.end(), [&](const MidiVoice& other) {
        return !other.drums && (track < 0 || other.track == track);
    });
    if (others > 1 && wish.channel == 0)
        import.chosen = "most points as a melody, " + Decimal(voice.points, 0) + ", of " +
                        std::to_string(others) + " voices; see --list";
    import.json = {{"track", voice.track + 1},
                   {"channel", voice.channel + 1},
                   { "points",
                     Rounded(voice.points, 1) }};
    for (const auto& [what, times] : file.remarks)
        import.tune.remarks.emplace_back(what, times);
    imports.push_back(std::move(import));
    return true;
}

bool GatherMidi(const std::string& input, std::span<const std::uint8_t> bytes, const ImportWish& wish,
                std::vector<Import>& imports) {
    MidiFile file;
    if (!ReadMidiInput(input, bytes, file)) return false;
    if (auto nominal = TuneOfNominal(file); nominal && wish.track <= 1 && wish.channel <= 1) {
        Import import;
        import.input = input;
        import.source = "track 1, channel 1";
        import.tune = std::move(*nominal);
        Remark(import.tune.remarks, "took lengths and tempo as the file's maker wrote them");
        KeepPart(import.tune, wish.from, wish.to);
        imports.push_back(std::move(import));
        return true;
    }
    const std::vector<MidiVoice> voices = VoicesOf(file);
    if (voices.empty()) return Refuse(input, "there is no note in it");
    if (file.format != 2 || wish.track != 0)
        return AddVoice(input, file, voices, wish, wish.track - 1, imports);
    bool good = true; // every track is a tune
    for (int track = 0; track < file.tracks; ++track) {
        const bool sounds = std::any_of(voices.begin(), voices.end(), [&](const MidiVoice& voice) {
            return voice.track == track && !voice.drums;
        });
        if (sounds) good = AddVoice(input, file, voices, wish, track, imports) && good;
    }
    return good;
}

/// Reads a file and tells its kind by its content.
bool Gather(const std::string& input, const ImportWish& wish, std::vector<Import>& imports) {
    std::vector<std::uint8_t> bytes;
    if (!ReadInput(input, bytes)) return false;
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (LooksLikeMidi(bytes)) return GatherMidi(input, bytes, wish, imports);
    if (LooksLikeRtttl(text)) return GatherRtttl(input, text, wish, imports);
    PlayBlock block;
    if (ReadPlayBlock(bytes, block)) return Refuse(input, "is a SND file already");
    return Refuse(input, "offset 0: neither a MIDI file nor a ring tone");
}

bool List(const std::string& input, const ImportWish& wish, std::vector<Report>& reports) {
    std::vector<std::uint8_t> bytes;
    if (!ReadInput(input, bytes)) return false;
    if (LooksLikeMidi(bytes)) {
        MidiFile file;
        if (!ReadMidiInput(input, bytes, file)) return false;
        const std::vector<MidiVoice> voices = VoicesOf(file);
        for (int i = 0; i < static_cast<int>(voices.size()); ++i) {
            const int among = file.format == 2 ? At(voices, i).track : -1;
            reports.push_back(VoiceListing(input, At(voices, i), i == MelodyOf(voices, among, -1)));
        }
        return !voices.empty() || Refuse(input, "there is no note in it");
    }
    std::vector<Import> imports;
    if (!Gather(input, wish, imports)) return false;
    for (const Import& import : imports)
        reports.push_back(ListingOf(input, import.tune, import.source));
    return true;
}

// From a tune to a melody.

/// The half tones by which a tune is moved. False, with the user told, when it can not lie on the piano.
bool ChooseTransposition(const Import& import, const ImportWish& wish, int& half_tones) {
    const auto [lowest, highest] = RangeOf(import.tune);
    const bool given = !wish.transpose.empty() && wish.transpose != "fit";
    if (given) {
        half_tones = std::stoi(wish.transpose) + kOctave * wish.octave;
    } else {
        const int octaves = kOctave * wish.octave;
        int more = 0;
        if (!HalfTonesToPiano({lowest + octaves, highest + octaves}, wish.transpose.empty(), more)) {
            return Refuse(import.input,
                          import.source + " spans " + std::to_string(highest - lowest + 1) +
                              " half tones, the piano has 49: choose a part with --from and --to, or "
                              "take it as it is with --transpose 0");
        }
        half_tones = octaves + more;
    }
    if (lowest + half_tones >= kLowestPitch && highest + half_tones <= kHighestPitch) return true;
    return Refuse(import.input, import.source + " lies outside what a SND file can hold");
}

/// "12 half tones up"
std::string ShiftText(int half_tones) {
    return std::to_string(std::abs(half_tones)) + " half tone" + (std::abs(half_tones) == 1 ? "" : "s") +
           (half_tones > 0 ? " up" : " down");
}

void TellTempo(Report& report, const Tune& tune, const Fit& fit) {
    std::string text = std::to_string(fit.melody.tempo) + " for " + Decimal(tune.tempo, 1);
    if (fit.melody.exact) {
        text += ", lengths by the clock";
    } else if (fit.melody.scale != 1.0) {
        text += fit.melody.scale < 1.0 ? ", all lengths halved" : ", all lengths doubled";
    }
    Tell(report, "tempo", text);
    report.json["tempo"] = fit.melody.tempo;
    report.json["source_tempo"] = Rounded(tune.tempo, 3);
    report.json["true_tempo"] = Rounded(TrueTempoOf(fit.mode, fit.tempo_byte), 3);
    report.json["method"] = fit.melody.exact ? "exact" : "score";
    report.json["scale"] = fit.melody.scale;
}

void TellSize(Report& report, const Tune& tune, const Fit& fit) {
    const int entries = fit.encoding.entries_written;
    double seconds = 0.0;
    for (const double played : fit.played)
        seconds += played;
    Tell(report, "size",
         std::to_string(entries) + " of 509 entries, " + std::to_string(fit.records) + " of " +
             std::to_string(kMostRecords) + " tones, " + Decimal(seconds, 1) + " s");
    report.json["notes"] = CountNotes(tune);
    report.json["entries"] = entries;
    report.json["records"] = fit.records;
    report.json["most_records"] = kMostRecords;
    report.json["seconds"] = Rounded(seconds, 3);
    report.json["whole"] = fit.whole;
    report.json["seconds_that_fit"] = Rounded(fit.seconds_written, 3);
}

/// The entry with which an interval begins, -1 for none.
int EntryOfInterval(const Candidate& melody, int interval) {
    const auto found = std::find(melody.interval_of.begin(), melody.interval_of.end(), interval);
    return found == melody.interval_of.end() ? -1 : static_cast<int>(found - melody.interval_of.begin());
}

FileList ListOfEntries(const Candidate& melody) {
    FileList list{};
    std::copy_n(melody.entries.begin(), std::min<std::size_t>(melody.entries.size(), kMaxEntries),
                list.begin());
    return list;
}

void TellFit(Report& report, const Import& import, const Fit& fit, int half_tones) {
    const Tune& tune = import.tune;
    if (!import.chosen.empty()) Tell(report, "chosen", import.chosen);
    TellTempo(report, tune, fit);
    if (half_tones != 0) Tell(report, "transposed", ShiftText(half_tones));
    report.json["half_tones"] = half_tones;
    TellSize(report, tune, fit);
    TellDeviation(report, fit.deviation, ListOfEntries(fit.melody),
                  EntryOfInterval(fit.melody, fit.deviation.worst));
    const auto [lowest, highest] = RangeOf(tune);
    if (lowest < kLowestKey || highest > kHighestKey)
        Tell(report, "remark", "some notes lie outside the piano");
    TellRemarks(report, tune.remarks);
}

/// What the other way of fitting would do, where this one is heard.
void TellHint(const TimingTables& tables, Report& report, const Tune& tune, const Fit& fit) {
    report.json["exact_j"] = nullptr;
    if (fit.melody.exact || fit.deviation.j <= 1.0) return;
    const Fit exact = FitExact(tables, tune);
    if (!exact.whole || exact.deviation.j >= fit.deviation.j) return;
    Tell(report, "hint",
         "with --exact J would be " + Decimal(exact.deviation.j, 2) + ", in " +
             std::to_string(exact.melody.entries.size()) + " entries");
    report.json["exact_j"] = Rounded(exact.deviation.j, 3);
}

/// Tells why a fit is refused; an empty text when it is not.
std::string ReasonAgainst(const Fit& fit, const Tune& tune, const ImportWish& wish) {
    if (!IsWritten(fit.encoding.result)) return "no tempo of the list can be had for it";
    if (wish.strict && fit.deviation.j > 1.0) return "would be bent by J = " + Decimal(fit.deviation.j, 2);
    if (fit.whole || wish.fit) return {};
    return "is too long: " + Decimal(fit.seconds_written, 1) + " of " + Decimal(LengthOf(tune), 1) +
           " s fit; take them with --fit, or choose others with --from and --to";
}

/// Fits, writes and reports one tune.
bool ImportOne(const TimingTables& tables, Import& import, const Job& job, const ImportWish& wish,
               std::vector<Report>& reports) {
    Report report;
    report.head = import.input + ": " + import.source + " -> " + job.output;
    report.json = {{"file", import.input}, {"source", import.source}, {"name", import.tune.name}};
    report.json.update(import.json);
    report.json["output"] = job.output;
    const auto refuse = [&](const std::string& reason) {
        report.json["error"] = reason;
        reports.push_back(std::move(report));
        return Refuse(import.input, import.source + " " + reason);
    };
    if (CountNotes(import.tune) == 0) return refuse("has no note in what was asked for");
    int half_tones = 0;
    if (!ChooseTransposition(import, wish, half_tones)) {
        report.json["error"] = "can not be transposed";
        reports.push_back(std::move(report));
        return false;
    }
    TransposeTune(import.tune, half_tones);
    SpeedUp(import.tune, wish.speed);
    if (wish.speed != 1.0) import.tune.as_written = false;
    if (wish.as_written) import.tune.as_written = true;
    const Fit fit = FitTune(tables, import.tune, wish.exact);
    if (const std::string reason = ReasonAgainst(fit, import.tune, wish); !reason.empty()) {
        report.json["seconds_that_fit"] = Rounded(fit.seconds_written, 3);
        return refuse(reason);
    }
    TellFit(report, import, fit, half_tones);
    if (!fit.whole)
        Tell(report, "left out",
             "all behind " + Decimal(fit.seconds_written, 1) + " s of " + Decimal(LengthOf(import.tune), 1) +
                 " s");
    TellHint(tables, report, import.tune, fit);
    const bool written = WriteJobOutput(job, fit.encoding.bytes);
    if (!written) report.json["error"] = "can not be written";
    reports.push_back(std::move(report));
    return written;
}

// Names of results.

/// A name that the organiser takes: at most eight letters, digits or signs.
std::string ShortName(const std::string& name) {
    std::string plain;
    for (const char letter : name) {
        const bool kept = IsDigit(letter) || (letter >= 'a' && letter <= 'z') ||
                          (letter >= 'A' && letter <= 'Z') || letter == '-' || letter == '_';
        if (kept && plain.size() < kMostNameBytes) plain += letter;
    }
    return plain.empty() ? "TUNE" : plain;
}

std::string SmallLetters(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

/// A name that no tune before it has, letter case aside.
std::string UnusedName(const std::string& name, std::vector<std::string>& used) {
    std::string next = ShortName(name);
    for (int number = 2; std::find(used.begin(), used.end(), SmallLetters(next)) != used.end(); ++number) {
        const std::string digits = std::to_string(number);
        next = ShortName(name).substr(0, kMostNameBytes - digits.size()) + digits;
    }
    used.push_back(SmallLetters(next));
    return next;
}

/// The names from which the outputs are worked out: a file's own when it has one tune, else each tune's
/// beside it.
std::vector<std::string> NamesOf(const std::vector<Import>& imports) {
    std::vector<std::string> names;
    std::vector<std::string> used;
    for (const Import& import : imports) {
        const auto tunes = std::count_if(imports.begin(), imports.end(),
                                         [&](const Import& other) { return other.input == import.input; });
        if (tunes == 1) {
            names.push_back(import.input);
            continue;
        }
        const std::string folder =
            import.input == kStandardStream ? "" : import.input.substr(0, NameStartOf(import.input));
        names.push_back(folder + UnusedName(import.tune.name, used) + ".x");
    }
    return names;
}

/// Whether the options make sense together; tells what does not.
bool MakesSense(const ImportWish& wish) {
    const auto refuse = [](const std::string& reason) {
        WriteErrorText("sndtool: " + reason + "\n");
        return false;
    };
    if (wish.from >= wish.to) return refuse("--from does not lie in front of --to");
    if (wish.exact && wish.as_written) return refuse("--exact and --as-written exclude each other");
    if (wish.transpose.empty() || wish.transpose == "fit") return true;
    std::string_view digits = wish.transpose;
    if (digits.starts_with('-') || digits.starts_with('+')) digits.remove_prefix(1);
    if (NumberOfDigits(digits, kMostHalfTones)) return true;
    return refuse("--transpose takes half tones or fit, not \"" + wish.transpose + "\"");
}

int ListCommand(const Arguments& files, const ImportWish& wish) {
    std::vector<Report> reports;
    int status = kExitGood;
    for (const std::string& file : files) {
        if (!List(file, wish, reports)) status = kExitBadInput;
    }
    if (wish.as_json) return EndReports(reports, true, status);
    std::string text;
    for (const Report& report : reports)
        text += TextOf(report);
    if (WriteText(text)) return status;
    ComplainOfStandardOutput();
    return kExitBadInput;
}

} // namespace

int ImportCommand(const Arguments& files, const std::string& output, const ImportWish& wish) {
    if (!MakesSense(wish) || !StandardInputOnce(files)) return kExitWrongUsage;
    if (wish.list) return ListCommand(files, wish);
    std::vector<Job>
        jobs; // as if each file had one tune: what is wrong with the words is told before any is read
    if (!PlanJobs(files, output, ".snd", jobs)) return kExitWrongUsage;
    if (wish.as_json && GoesToStandardOutput(jobs)) {
        WriteErrorText("sndtool: --json and the result both want standard output\n");
        return kExitWrongUsage;
    }
    jobs.clear();
    std::vector<Import> imports;
    int status = kExitGood;
    for (const std::string& file : files) {
        if (!Gather(file, wish, imports)) status = kExitBadInput;
    }
    if (!PlanJobs(NamesOf(imports), output, ".snd", jobs)) return kExitWrongUsage;
    const TimingTables tables = BuildTimingTables();
    std::vector<Report> reports;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        if (!ImportOne(tables, imports[i], jobs[i], wish, reports)) status = kExitBadInput;
    }
    // A refused tune has been told of; the others are reported.
    if (!wish.as_json)
        std::erase_if(reports, [](const Report& report) { return report.json.contains("error"); });
    return EndReports(reports, wish.as_json, status);
}

} // namespace tonex
