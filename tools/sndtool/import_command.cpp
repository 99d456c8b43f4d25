#include "exchange/fit.h"
#include "exchange/played.h"
#include "score/number_text.h"
#include "tools/sndtool/console.h"
#include "tools/sndtool/exchange.h"
#include "tools/sndtool/gathering.h"
#include "tools/sndtool/inputs.h"
#include "tools/sndtool/outputs.h"
#include "tools/sndtool/reports.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <set>

namespace tonex {

namespace {

constexpr int kLowestPitch = 1; ///< that a file can hold
constexpr int kHighestPitch = kFileMaxPitch + 1;
constexpr int kMostHalfTones = 200;
constexpr std::size_t kMostNameBytes = 8; ///< that the organiser knows

bool Refuse(const std::string& input, const std::string& reason) {
    Complain(input, reason);
    return false;
}

/// The half tones by which a tune is moved. False, with the reason, when it can not lie on the piano.
bool ChooseTransposition(const Import& import, const ImportWish& wish, int& half_tones, std::string& reason) {
    const auto [lowest, highest] = RangeOf(import.tune);
    const int octaves = kOctave * wish.octave;
    const bool given = !wish.transpose.empty() && wish.transpose != "fit";
    int more = 0;
    if (given) {
        more = std::stoi(wish.transpose);
    } else if (!HalfTonesToPiano({lowest + octaves, highest + octaves}, wish.transpose.empty(), more)) {
        reason =
            "spans " + std::to_string(highest - lowest + 1) +
            " half tones, the piano has 49: choose a part with --from and --to, or take it as it is with "
            "--transpose 0";
        return false;
    }
    half_tones = octaves + more;
    if (lowest + half_tones >= kLowestPitch && highest + half_tones <= kHighestPitch) return true;
    reason = "lies outside what a SND file can hold";
    return false;
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

/// Where the tune begins in its file, and what of it is silence or left out.
void TellPart(Report& report, const Tune& tune, const Fit& fit) {
    report.json["start"] = Rounded(tune.start, 3);
    report.json["early_notes"] = fit.early_notes;
    report.json["most_early_milliseconds"] = Rounded(1000.0 * fit.most_early, 2);
    constexpr double told_from = 0.05; // seconds
    if (tune.start > told_from) Tell(report, "begins", Decimal(tune.start, 1) + " s into the file");
    if (fit.early_notes > 0) {
        Tell(report, "silence",
             "behind " + std::to_string(fit.early_notes) + (fit.early_notes == 1 ? " note" : " notes") +
                 ", at most " + Decimal(1000.0 * fit.most_early, 0) +
                 " ms: no entry has that length, so a rest follows");
    }
    if (!fit.whole) {
        Tell(report, "left out",
             "all behind " + Decimal(fit.seconds_written, 1) + " s of " + Decimal(LengthOf(tune), 1) + " s");
    }
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
    TellPart(report, tune, fit);
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

/// Where in the file what does not fit begins, seconds, as --from takes it. A little early: what begins
/// there is taken.
std::string RestOf(const Fit& fit, const Tune& tune, const ImportWish& wish) {
    constexpr double hundredth = 100.0;
    return Decimal(std::floor((tune.start + fit.seconds_written * wish.speed) * hundredth) / hundredth, 2);
}

/// Tells why a fit is refused; an empty text when it is not.
std::string ReasonAgainst(const Fit& fit, const Tune& tune, const ImportWish& wish) {
    if (!IsWritten(fit.encoding.result)) return "no tempo of the list can be had for it";
    if (wish.strict && fit.deviation.j > 1.0) return "would be bent by J = " + Decimal(fit.deviation.j, 2);
    if (fit.whole || wish.fit) return {};
    return "is too long: " + Decimal(fit.seconds_written, 1) + " of " + Decimal(LengthOf(tune), 1) +
           " s fit; take them with --fit, and what is behind them with --from " + RestOf(fit, tune, wish);
}

/// Moves and speeds up a tune as was asked for. False, with the reason, when it can not be.
bool Prepare(Import& import, const ImportWish& wish, int& half_tones, std::string& reason) {
    reason = "has no note in what was asked for";
    if (CountNotes(import.tune) == 0 || !ChooseTransposition(import, wish, half_tones, reason)) return false;
    TransposeTune(import.tune, half_tones);
    SpeedUp(import.tune, wish.speed);
    if (wish.speed != 1.0 || wish.exact) import.tune.as_written = false;
    if (wish.as_written) import.tune.as_written = true;
    return true;
}

/// Fits, writes and reports one tune.
bool ImportOne(const TimingTables& tables, Import& import, const Job& job, const ImportWish& wish,
               std::vector<Report>& reports) {
    Report& report = reports.emplace_back();
    report.head = import.input + ": " + import.source + " -> " + job.output;
    report.json = {{"file", import.input}, {"source", import.source}, {"name", import.tune.name}};
    report.json.update(import.json);
    report.json["output"] = job.output;
    const auto refuse = [&](const std::string& reason) {
        report.json["error"] = reason;
        return Refuse(import.input, import.source + " " + reason);
    };
    int half_tones = 0;
    std::string reason;
    if (!Prepare(import, wish, half_tones, reason)) return refuse(reason);
    const Fit fit = FitTune(tables, import.tune, wish.exact);
    reason = ReasonAgainst(fit, import.tune, wish);
    if (!reason.empty()) {
        report.json["seconds_that_fit"] = Rounded(fit.seconds_written, 3);
        return refuse(reason);
    }
    TellFit(report, import, fit, half_tones);
    TellHint(tables, report, import.tune, fit);
    if (WriteJobOutput(job, fit.encoding.bytes)) return true;
    report.json["error"] = "can not be written";
    return false;
}

// Names of results.

std::string SmallLetters(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), SmallLetter);
    return text;
}

/// Whether a system takes a file of that name for a device, whatever its extension.
bool IsDeviceName(const std::string& small) {
    if (small == "con" || small == "prn" || small == "aux" || small == "nul") return true;
    return small.size() == 4 && (small.starts_with("com") || small.starts_with("lpt")) && IsDigit(small[3]);
}

/// A name that the organiser takes: at most eight letters, digits or signs.
std::string ShortName(const std::string& name) {
    std::string plain;
    for (const char letter : name) {
        const bool kept = IsDigit(letter) || (letter >= 'a' && letter <= 'z') ||
                          (letter >= 'A' && letter <= 'Z') || letter == '-' || letter == '_';
        if (kept && plain.size() < kMostNameBytes) plain += letter;
    }
    if (IsDeviceName(SmallLetters(plain))) plain += '_';
    return plain.empty() ? "TUNE" : plain;
}

/// A name that no tune before it has, letter case aside.
std::string UnusedName(const std::string& name, std::set<std::string>& used) {
    std::string next = ShortName(name);
    for (int number = 2; !used.insert(SmallLetters(next)).second; ++number) {
        const std::string digits = std::to_string(number);
        next = ShortName(name).substr(0, kMostNameBytes - digits.size()) + digits;
    }
    return next;
}

/// The names from which the outputs are worked out: a file's own when it has one tune, else each tune's
/// beside it.
std::vector<std::string> NamesOf(const std::vector<Import>& imports) {
    std::map<std::string, int> tunes; // by file
    for (const Import& import : imports)
        ++tunes[import.input];
    std::vector<std::string> names;
    std::set<std::string> used;
    for (const Import& import : imports) {
        if (tunes[import.input] == 1) {
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

/// What a report has of a file that was refused before a tune of it was known.
Report RefusalOf(const Gathering& gathering) {
    Report report;
    report.json = {{"file", gathering.input}, {"error", gathering.reason}};
    return report;
}

/// Who reads the text has been told of what was refused.
void LeaveOutRefused(std::vector<Report>& reports) {
    std::erase_if(reports, [](const Report& report) { return report.json.contains("error"); });
}

int ListCommand(const Arguments& files, const ImportWish& wish) {
    std::vector<Report> reports;
    int status = kExitGood;
    for (const std::string& file : files) {
        Gathering gathering{file, {}, {}};
        if (ListTunes(gathering, wish, reports)) continue;
        reports.push_back(RefusalOf(gathering));
        status = kExitBadInput;
    }
    if (wish.as_json) return EndReports(reports, true, status);
    LeaveOutRefused(reports);
    std::string text;
    for (const Report& report : reports)
        text += TextOf(report);
    if (WriteText(text)) return status;
    ComplainOfStandardOutput();
    return kExitBadInput;
}

/// Reads all files; what is wrong with one keeps no other back.
std::vector<Import> GatherAll(const Arguments& files, const ImportWish& wish, std::vector<Report>& reports) {
    std::vector<Import> imports;
    for (const std::string& file : files) {
        Gathering gathering{file, {}, {}};
        if (!Gather(gathering, wish)) reports.push_back(RefusalOf(gathering));
        std::move(gathering.imports.begin(), gathering.imports.end(), std::back_inserter(imports));
    }
    return imports;
}

} // namespace

int ImportCommand(const Arguments& files, const std::string& output, const ImportWish& wish) {
    if (!MakesSense(wish) || !StandardInputOnce(files)) return kExitWrongUsage;
    if (wish.list) return ListCommand(files, wish);
    // As if each file had one tune: what is wrong with the words is told before any is read.
    std::vector<Job> jobs;
    if (!PlanJobs(files, output, ".snd", jobs)) return kExitWrongUsage;
    if (wish.as_json && GoesToStandardOutput(jobs)) {
        WriteErrorText("sndtool: --json and the result both want standard output\n");
        return kExitWrongUsage;
    }
    jobs.clear();
    std::vector<Report> reports;
    std::vector<Import> imports = GatherAll(files, wish, reports);
    int status = reports.empty() ? kExitGood : kExitBadInput;
    if (!PlanJobs(NamesOf(imports), output, ".snd", jobs)) return kExitWrongUsage;
    const TimingTables tables = BuildTimingTables();
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        if (!ImportOne(tables, imports[i], jobs[i], wish, reports)) status = kExitBadInput;
    }
    if (!wish.as_json) LeaveOutRefused(reports);
    return EndReports(reports, wish.as_json, status);
}

} // namespace tonex
