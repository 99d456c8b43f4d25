#include "tools/sndtool/sndtool.h"

#include "exchange/fit.h"
#include "exchange/played.h"
#include "preview/timing_tables.h"
#include "score/melody_text.h"
#include "score/snd_file.h"
#include "tools/sndtool/console.h"
#include "tools/sndtool/inputs.h"
#include "tools/sndtool/reports.h"

namespace tonex {

namespace {

struct Facts {
    int entries = 0;
    int notes = 0;
    int rests = 0;
    int separators = 0;
    int unknown = 0; ///< entries with a code that no writer of ours makes
    int lowest = 0;  ///< pitch, 0 when there is no note
    int highest = 0;
    double seconds = 0.0;
};

void CountNote(Facts& facts, int pitch) {
    if (facts.notes++ == 0 || pitch < facts.lowest) facts.lowest = pitch;
    if (pitch > facts.highest) facts.highest = pitch;
}

Facts FactsOf(const SndInput& snd) {
    Facts facts;
    facts.entries = CountEntries(snd.list);
    for (int i = 0; i < facts.entries; ++i) {
        const FileEntry& entry = At(snd.list, i);
        switch (KindOfFileCode(entry.code)) {
        case EntryKind::Separator: ++facts.separators; break;
        case EntryKind::Rest: ++facts.rests; break;
        case EntryKind::Foreign: ++facts.unknown; break;
        case EntryKind::Note: CountNote(facts, entry.pitch + 1); break;
        }
    }
    PlayBlock block;
    if (!ReadPlayBlock(snd.bytes, block)) return facts;
    int units = 0;
    for (std::size_t i = 0; i + 1 < block.records.size(); i += 2) {
        units += UnitsOfRecord(block.records[i + 1]);
    }
    facts.seconds = SecondsOfUnits(units, block.tempo_byte);
    return facts;
}

/// How evenly a file plays what is written in it.
struct Evenness {
    bool known = false; ///< the play block is what the entries give
    Deviation deviation;
    int worst_entry = -1; ///< counted from 0
    double true_tempo = 0.0;
    bool mended = false; ///< another tempo would be heard less
    Fit mending;
};

Evenness EvennessOf(const TimingTables& tables, const SndInput& snd, const Facts& facts) {
    Evenness evenness;
    PlayBlock block;
    if (facts.unknown > 0 || !ReadPlayBlock(snd.bytes, block)) return evenness;
    evenness.true_tempo = TrueTempoOf(snd.mode, block.tempo_byte);
    const auto units = UnitsPlayed(tables, block, snd.list, snd.mode);
    if (!units) return evenness;
    evenness.known = true;
    Tune tune = TuneOfMelody({snd.tempo, snd.list});
    evenness.deviation = DeviationOf(SecondsMeant(tune), SecondsPlayed(tune, *units, block.tempo_byte));
    const std::vector<Interval> intervals = IntervalsOf(tune);
    if (evenness.deviation.worst >= 0)
        evenness.worst_entry = At(intervals, evenness.deviation.worst).first_item;
    if (evenness.deviation.j <= 1.0) return evenness;
    tune.as_written = false;
    evenness.mending = FitScore(tables, tune);
    evenness.mended = evenness.mending.whole && evenness.mending.deviation.j < evenness.deviation.j - 0.1;
    return evenness;
}

/// "120 with all lengths halved (J 0.50)"
std::string MendingText(const Fit& mending) {
    std::string text = std::to_string(mending.melody.tempo);
    if (mending.melody.scale != 1.0)
        text += mending.melody.scale < 1.0 ? " with all lengths halved" : " with all lengths doubled";
    return text + " (J " + Decimal(mending.deviation.j, 2) + ")";
}

std::string Narrow(std::wstring_view ascii) {
    return std::string(ascii.begin(), ascii.end());
}

/// What is played against what is written, for people and as JSON.
void TellEvenness(Report& report, const SndInput& snd, const Evenness& evenness) {
    report.json["true_tempo"] = nullptr;
    if (evenness.true_tempo > 0.0) {
        report.json["true_tempo"] = Rounded(evenness.true_tempo, 3);
        Tell(report, "really plays", Decimal(evenness.true_tempo, 2));
    }
    report.json["j"] = nullptr;
    if (!evenness.known) return;
    TellDeviation(report, evenness.deviation, snd.list, evenness.worst_entry);
    report.json["mending_tempo"] = nullptr;
    report.json["mending_scale"] = nullptr;
    if (!evenness.mended) return;
    Tell(report, "more even at", "tempo " + MendingText(evenness.mending));
    report.json["mending_tempo"] = evenness.mending.melody.tempo;
    report.json["mending_scale"] = evenness.mending.melody.scale;
}

std::string PlainText(const std::string& name, const SndInput& snd, const Facts& facts) {
    const std::string tempo_name = Narrow(TempoNameOf(snd.tempo));
    std::string text = name + "\n";
    text += "  tempo        " + std::to_string(snd.tempo);
    text += tempo_name.empty() ? "\n" : " (" + tempo_name + ")\n";
    text += "  timing mode  " + std::to_string(snd.mode) + "\n";
    text += "  entries      " + std::to_string(facts.entries) + "\n";
    text += "  notes        " + std::to_string(facts.notes) + "\n";
    text += "  rests        " + std::to_string(facts.rests) + "\n";
    text += "  separators   " + std::to_string(facts.separators) + "\n";
    if (facts.unknown > 0) text += "  unknown      " + std::to_string(facts.unknown) + "\n";
    text += "  lowest note  " + (facts.notes > 0 ? PitchTextOf(facts.lowest) : "-") + "\n";
    text += "  highest note " + (facts.notes > 0 ? PitchTextOf(facts.highest) : "-") + "\n";
    text += "  duration     " + Decimal(facts.seconds, 3) + " s\n";
    return text;
}

nlohmann::ordered_json JsonOf(const std::string& name, const SndInput& snd, const Facts& facts) {
    nlohmann::ordered_json object;
    object["file"] = name;
    object["tempo"] = snd.tempo;
    object["timing_mode"] = snd.mode;
    object["entries"] = facts.entries;
    object["notes"] = facts.notes;
    object["rests"] = facts.rests;
    object["separators"] = facts.separators;
    object["unknown"] = facts.unknown;
    object["lowest_note"] = nullptr;
    object["highest_note"] = nullptr;
    if (facts.notes > 0) {
        object["lowest_note"] = PitchTextOf(facts.lowest);
        object["highest_note"] = PitchTextOf(facts.highest);
    }
    object["duration_seconds"] = facts.seconds;
    return object;
}

} // namespace

int InfoCommand(const Arguments& files, bool as_json) {
    if (!StandardInputOnce(files)) return kExitWrongUsage;
    const TimingTables tables = BuildTimingTables();
    int status = kExitGood;
    std::string text;
    auto array = nlohmann::ordered_json::array();
    for (const std::string& file : files) {
        SndInput snd;
        std::string reason;
        if (!ReadSnd(file, snd, reason)) {
            status = kExitBadInput;
            array.push_back({{"file", file}, {"error", reason}});
            continue;
        }
        const Facts facts = FactsOf(snd);
        Report report;
        report.json = JsonOf(file, snd, facts);
        TellEvenness(report, snd, EvennessOf(tables, snd, facts));
        array.push_back(report.json);
        text += (text.empty() ? "" : "\n") + PlainText(file, snd, facts) + LinesOf(report);
    }
    // JSON is UTF-8; a byte of a file name that is not becomes the replacement character.
    if (as_json) text = array.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    if (WriteText(text)) return status;
    ComplainOfStandardOutput();
    return kExitBadInput;
}

} // namespace tonex
