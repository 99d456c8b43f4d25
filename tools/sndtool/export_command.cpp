#include "exchange/fit.h"
#include "exchange/midi_clock.h"
#include "exchange/midi_reader.h"
#include "exchange/midi_writer.h"
#include "exchange/played.h"
#include "exchange/rtttl.h"
#include "tools/sndtool/console.h"
#include "tools/sndtool/exchange.h"
#include "tools/sndtool/inputs.h"
#include "tools/sndtool/outputs.h"
#include "tools/sndtool/reports.h"

#include <numeric>

namespace tonex {

namespace {

/// A melody on its way out.
struct Export {
    SndInput snd;
    PlayBlock block;
    Melody melody;
    Tune tune;                  ///< what is written
    bool as_written = true;     ///< the play block is what the entries give
    std::vector<int> units;     ///< by entry
    std::vector<double> played; ///< seconds, by interval
};

/// Units of a play block that is not what its entries give: a note a run of records.
void TakeRecords(Export& melody) {
    melody.melody.list.fill(FileEntry{});
    melody.units.clear();
    const auto records = melody.block.records;
    bool goes_on = false;
    for (std::size_t i = 0; i + 1 < records.size(); i += 2) {
        const bool same = i > 0 && records[i] == records[i - 2];
        if (!goes_on || !same) melody.units.push_back(0);
        melody.units.back() += UnitsOfRecord(records[i + 1]);
        goes_on = records[i + 1] >> 4 >= 4;
    }
}

/// The stem of a file name, for the result's own name.
std::string StemOf(const std::string& input) {
    if (input == kStandardStream) return "melody";
    const std::string name = input.substr(NameStartOf(input));
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

bool Prepare(const TimingTables& tables, const std::string& input, Export& melody, std::string& reason) {
    if (!ReadSnd(input, melody.snd, reason)) return false;
    if (!ReadPlayBlock(melody.snd.bytes, melody.block)) return false;
    melody.melody = {melody.snd.tempo, melody.snd.list};
    melody.tune = TuneOfMelody(melody.melody);
    const auto units = UnitsPlayed(tables, melody.block, melody.snd.list, melody.snd.mode);
    melody.as_written = units.has_value();
    melody.played = SecondsMeant(melody.tune);
    if (units) {
        melody.units = *units;
        melody.played = SecondsPlayed(melody.tune, melody.units, melody.block.tempo_byte);
    }
    return true;
}

/// The entry with which an interval begins.
int EntryOfInterval(const Tune& tune, int interval) {
    const std::vector<Interval> intervals = IntervalsOf(tune);
    return interval < 0 ? -1 : At(intervals, interval).first_item;
}

/// Whether importing the text again gives the melody, separators aside.
bool ComesBack(const TimingTables& tables, const Export& melody, const std::string& text) {
    RtttlFault fault;
    auto tunes = ReadRtttl(text, fault);
    if (!tunes || tunes->size() != 1) return false;
    const Fit fit = FitTune(tables, tunes->front(), false);
    std::vector<FileEntry> entries;
    const int count = CountEntries(melody.snd.list);
    for (int i = 0; i < count; ++i) {
        const FileEntry& entry = At(melody.snd.list, i);
        if (entry.code != kFileSeparator) entries.push_back(entry);
    }
    return fit.melody.tempo == melody.snd.tempo && fit.melody.entries == entries;
}

bool MakeRtttl(const TimingTables& tables, const Export& melody, const std::string& input, Report& report,
               std::vector<std::uint8_t>& bytes, std::string& reason) {
    const RtttlText made = WriteRtttl(melody.melody, melody.played,
                                      TrueTempoOf(melody.snd.mode, melody.block.tempo_byte), StemOf(input));
    reason = made.reason;
    if (made.text.empty()) return false;
    bytes.assign(made.text.begin(), made.text.end());
    std::string tempo = std::to_string(made.beats) + " for " + std::to_string(melody.snd.tempo);
    if (made.scale != 1.0) tempo += ", all lengths times " + Decimal(made.scale, 2);
    Tell(report, "tempo", tempo);
    report.json["beats"] = made.beats;
    report.json["scale"] = made.scale;
    if (made.half_tones != 0)
        Tell(report, "transposed", std::to_string(made.half_tones) + " half tones, into the octaves 4 to 7");
    report.json["half_tones"] = made.half_tones;
    const Deviation deviation = DeviationOf(melody.played, made.seconds);
    TellDeviation(report, deviation, melody.snd.list, EntryOfInterval(melody.tune, deviation.worst));
    const bool back = ComesBack(tables, melody, made.text);
    Tell(report, "read back",
         back ? "the same melody" : "another melody; import --as-written keeps what is written");
    report.json["comes_back"] = back;
    TellRemarks(report, made.remarks);
    return true;
}

/// Seconds of each interval as the MIDI file has them, read back; empty when it has other intervals.
std::vector<double> SecondsInMidi(std::span<const std::uint8_t> bytes, const Tune& tune) {
    MidiFile file;
    MidiFault fault;
    if (!ReadMidi(bytes, file, fault)) return {};
    const MidiClock clock = ClockOf(file, 0);
    std::vector<double> starts;
    for (const MidiNote& note : file.notes)
        starts.push_back(SecondsAt(clock, static_cast<double>(note.start)));
    const std::vector<Interval> intervals = IntervalsOf(tune);
    if (!intervals.empty() && intervals.front().pitch == 0) starts.insert(starts.begin(), 0.0);
    if (starts.size() != intervals.size()) return {};
    starts.push_back(SecondsAt(clock, static_cast<double>(file.ends.front())));
    std::vector<double> seconds;
    for (std::size_t i = 0; i + 1 < starts.size(); ++i)
        seconds.push_back(starts[i + 1] - starts[i]);
    return seconds;
}

bool MakeMidi(Export& melody, const std::string& input, bool nominal, Report& report,
              std::vector<std::uint8_t>& bytes, std::string& reason) {
    if (!melody.as_written && !nominal) TakeRecords(melody);
    const MidiBytes made =
        nominal ? WriteNominalMidi(melody.melody, StemOf(input))
                : WritePlayedMidi(melody.block, melody.melody, melody.snd.mode, melody.units, StemOf(input));
    reason = made.reason;
    bytes = made.bytes;
    if (bytes.empty()) return false;
    const double true_tempo = TrueTempoOf(melody.snd.mode, melody.block.tempo_byte);
    Tell(report, "tempo",
         nominal ? std::to_string(melody.snd.tempo) + ", as it is written"
                 : Decimal(true_tempo, 2) + ", as the file plays");
    Tell(report, "size", std::to_string(made.ticks) + " ticks, 480 a quarter note");
    report.json["tempo"] = Rounded(nominal ? melody.snd.tempo : true_tempo, 3);
    report.json["ticks"] = made.ticks;
    // What the MIDI file has against what the organiser plays: no more than rounding, unless the written
    // lengths were wanted.
    const std::vector<double> seconds = SecondsInMidi(bytes, melody.tune);
    report.json["j"] = nullptr;
    if (melody.as_written && seconds.size() == melody.played.size()) {
        const Deviation deviation = DeviationOf(melody.played, seconds);
        TellDeviation(report, deviation, melody.snd.list, EntryOfInterval(melody.tune, deviation.worst));
    }
    TellRemarks(report, {});
    return true;
}

bool ExportOne(const TimingTables& tables, const Job& job, const ExportWish& wish,
               std::vector<Report>& reports) {
    Report report;
    report.head = job.input + " -> " + job.output;
    report.json = {{"file", job.input}, {"output", job.output}};
    Export melody;
    std::string reason;
    std::vector<std::uint8_t> bytes;
    bool good = Prepare(tables, job.input, melody, reason);
    const bool read = good;
    if (good) {
        good = wish.format == "rtttl" ? MakeRtttl(tables, melody, job.input, report, bytes, reason)
                                      : MakeMidi(melody, job.input, wish.nominal, report, bytes, reason);
    }
    if (good && wish.strict && report.json["j"].is_number() && report.json["j"].get<double>() > 1.0) {
        reason = "would be bent by J = " + Decimal(report.json["j"].get<double>(), 2);
        good = false;
    }
    if (read && !good) Complain(job.input, reason);
    if (good && !melody.as_written)
        Tell(report, "remark",
             "the play block is not what the entries give: MIDI has the one, a ring tone the other");
    if (good && !WriteJobOutput(job, bytes)) {
        reason = "can not be written";
        good = false;
    }
    if (!good) report.json["error"] = reason;
    reports.push_back(std::move(report));
    return good;
}

} // namespace

int ExportCommand(const Arguments& files, const std::string& output, const ExportWish& wish) {
    const auto refuse = [](const std::string& reason) {
        WriteErrorText("sndtool: " + reason + "\n");
        return kExitWrongUsage;
    };
    if (wish.format != "rtttl" && wish.format != "mid") {
        return refuse("--to takes rtttl or mid" +
                      (wish.format.empty() ? "" : ", not \"" + wish.format + "\""));
    }
    if (wish.nominal && wish.format != "mid") return refuse("--nominal is for --to mid");
    std::vector<Job> jobs;
    if (!PlanJobs(files, output, wish.format == "mid" ? ".mid" : ".rtttl", jobs)) return kExitWrongUsage;
    if (wish.as_json && GoesToStandardOutput(jobs))
        return refuse("--json and the result both want standard output");
    const TimingTables tables = BuildTimingTables();
    std::vector<Report> reports;
    int status = kExitGood;
    for (const Job& job : jobs) {
        if (!ExportOne(tables, job, wish, reports)) status = kExitBadInput;
    }
    if (!wish.as_json)
        std::erase_if(reports, [](const Report& report) { return report.json.contains("error"); });
    return EndReports(reports, wish.as_json, status);
}

} // namespace tonex
