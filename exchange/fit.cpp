#include "exchange/fit.h"

#include "exchange/chains.h"
#include "exchange/played.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace tonex {

namespace {

constexpr std::size_t kMostItems = std::size_t{4} * kMaxEntries; ///< separators among them
constexpr double kMostSeconds = 5000.0;         ///< a play block of the longest tones lasts 4080
constexpr double kSameJ = 0.001;                ///< differences below are none
constexpr double kSameTempo = 0.001;            ///< part of a tempo
constexpr double kPriceOfAll = 0.5;             ///< as J: what may be heard more to hold the whole tune
constexpr double kHardlyHeard = 1.0;            ///< as J
constexpr double kEarly = 0.03;                 ///< seconds that a note may end too early
constexpr std::array kScales = {1.0, 0.5, 2.0}; ///< the first wins where all do as well

/// The first entries of a candidate, as many as a melody has.
FileList ListOf(const Candidate& candidate) {
    FileList list{};
    const std::size_t count = std::min<std::size_t>(candidate.entries.size(), kMaxEntries);
    std::copy_n(candidate.entries.begin(), count, list.begin());
    return list;
}

/// Intervals all of whose entries are among the first `written`.
int IntervalsWithin(const Candidate& candidate, int written) {
    if (written >= static_cast<int>(candidate.entries.size()))
        return candidate.interval_of.empty() ? 0 : candidate.interval_of.back() + 1;
    return At(candidate.interval_of, written);
}

/// Counts the notes that a rest follows before they should end; `units` are by entry.
void CountEarlyNotes(const std::vector<Interval>& intervals, const std::vector<int>& units, Fit& fit) {
    for (int i = 0; i + 1 < fit.encoding.entries_written; ++i) {
        const int interval = At(fit.melody.interval_of, i);
        const bool first = i == 0 || At(fit.melody.interval_of, i - 1) != interval;
        if (!first || At(fit.melody.interval_of, i + 1) != interval || interval >= fit.intervals_written)
            continue;
        const double lasts = SecondsOfUnits(At(units, i), fit.tempo_byte);
        const double early = At(intervals, interval).sounding * fit.deviation.duration - lasts;
        if (early <= kEarly) continue;
        ++fit.early_notes;
        fit.most_early = std::max(fit.most_early, early);
    }
}

/// Adds up what the file plays, and compares.
void Measure(const TimingTables& tables, const Tune& tune, const FileList& list, Fit& fit) {
    PlayBlock block;
    if (!ReadPlayBlock(fit.encoding.bytes, block)) return;
    fit.tempo_byte = block.tempo_byte;
    fit.records = static_cast<int>(block.records.size() / 2);
    FileList written = list;
    At(written, fit.encoding.entries_written) = FileEntry{};
    const auto units = UnitsPlayed(tables, block, written, fit.mode);
    assert(units);
    fit.intervals_written = IntervalsWithin(fit.melody, fit.encoding.entries_written);
    fit.played.assign(static_cast<std::size_t>(fit.intervals_written), 0.0);
    for (int i = 0; i < fit.encoding.entries_written; ++i) {
        const int interval = At(fit.melody.interval_of, i);
        if (interval < fit.intervals_written)
            At(fit.played, interval) += SecondsOfUnits(At(*units, i), fit.tempo_byte);
    }
    std::vector<double> meant = SecondsMeant(tune);
    meant.resize(fit.played.size());
    for (const double seconds : meant)
        fit.seconds_written += seconds;
    fit.deviation = DeviationOf(meant, fit.played);
    CountEarlyNotes(IntervalsOf(tune), *units, fit);
}

void AddEntries(Candidate& candidate, const TuneItem& item, const std::vector<int>& chain, int interval) {
    bool sounds = item.kind == TuneKind::Note;
    for (const int code : chain) {
        FileEntry entry;
        entry.code = static_cast<std::uint16_t>(sounds ? code : kFileRests + code);
        entry.pitch = sounds ? static_cast<std::uint16_t>(item.pitch - 1) : kFileRestPitch;
        candidate.entries.push_back(entry);
        candidate.interval_of.push_back(interval);
        sounds = false;
    }
}

/// Whether the fit is the tune as it is written: its own lengths at its own tempo.
bool IsAsWritten(const Fit& fit, const Tune& tune) {
    return fit.melody.scale == 1.0 && std::abs(fit.melody.tempo / tune.tempo - 1.0) < kSameTempo;
}

/// The best so far: of those that hold the whole tune, and of all.
struct Contest {
    Fit whole;
    Fit any;
};

void Enter(Contest& contest, Fit next, const Tune& tune) {
    const auto stays = [&](const Fit& fit) {
        return fit.whole && IsAsWritten(fit, tune) && fit.deviation.j <= kHardlyHeard;
    };
    if (!IsWritten(next.encoding.result)) return;
    const bool nearer = next.deviation.j < contest.any.deviation.j - kSameJ;
    if (!IsWritten(contest.any.encoding.result) || nearer) contest.any = next;
    if (!next.whole || stays(contest.whole)) return;
    const bool first = !IsWritten(contest.whole.encoding.result);
    // What is written wins where it is hardly heard.
    if (first || stays(next) || next.deviation.j < contest.whole.deviation.j - kSameJ)
        contest.whole = std::move(next);
}

/// The tempo of the list that is nearest by its name.
std::int16_t NearestListed(const TimingTables& tables, double tempo) {
    std::int16_t nearest = tables.tempo_list.front();
    for (const std::int16_t listed : tables.tempo_list) {
        if (listed == 0) break;
        if (std::abs(std::log(listed / tempo)) < std::abs(std::log(nearest / tempo))) nearest = listed;
    }
    return nearest;
}

} // namespace

bool IsBetterFit(const Fit& one, const Fit& other) {
    const bool one_good = IsWritten(one.encoding.result);
    if (!one_good || !IsWritten(other.encoding.result)) return one_good;
    if (one.whole == other.whole) return one.deviation.j < other.deviation.j - kSameJ;
    const double whole = one.whole ? one.deviation.j : other.deviation.j;
    const double part = one.whole ? other.deviation.j : one.deviation.j;
    return one.whole == (whole <= std::max(kHardlyHeard, part + kPriceOfAll));
}

Fit Evaluate(const TimingTables& tables, const Tune& tune, Candidate candidate) {
    Fit fit;
    fit.melody = std::move(candidate);
    const FileList list = ListOf(fit.melody);
    const int index = TempoIndexOf(tables, fit.melody.tempo);
    fit.encoding = EncodeSnd(tables, fit.melody.tempo, list);
    if (!IsWritten(fit.encoding.result)) return fit;
    fit.mode = ChooseTimingMode(tables, list, index);
    fit.whole = fit.encoding.result == kSndDone && fit.melody.entries.size() <= kMaxEntries;
    Measure(tables, tune, list, fit);
    return fit;
}

Candidate WriteLengths(const Tune& tune, double scale) {
    Candidate candidate;
    candidate.scale = scale;
    int interval = -1;
    double late = 0.0; // quarter notes by which what is written lags behind the tune
    for (const TuneItem& item : tune.items) {
        if (candidate.entries.size() > kMaxEntries) break; // it will not be whole
        if (item.kind == TuneKind::Note || interval < 0) ++interval;
        if (item.kind == TuneKind::Separator) {
            candidate.entries.push_back({kFileSeparator, 0});
            candidate.interval_of.push_back(interval);
            continue;
        }
        const double quarters = item.quarters * scale;
        // A length that can be written is written, and later ones make up for what those before it could not.
        const int code = CodeOfQuarters(quarters);
        const std::vector<int> chain = code >= 0 ? std::vector<int>{code} : ChainOf(quarters - late);
        late += QuartersOfChain(chain) - quarters;
        AddEntries(candidate, item, chain, interval);
    }
    return candidate;
}

Fit FitScore(const TimingTables& tables, const Tune& tune) {
    if (tune.as_written) {
        Candidate candidate = WriteLengths(tune, 1.0);
        candidate.tempo = NearestListed(tables, tune.tempo);
        return Evaluate(tables, tune, std::move(candidate));
    }
    Contest contest;
    contest.whole.encoding.result = kSndNotFound;
    contest.any.encoding.result = kSndNotFound;
    for (const double scale : kScales) {
        Candidate candidate = WriteLengths(tune, scale);
        for (const std::int16_t tempo : tables.tempo_list) {
            if (tempo == 0) break;
            candidate.tempo = tempo;
            Enter(contest, Evaluate(tables, tune, candidate), tune);
        }
    }
    return IsBetterFit(contest.whole, contest.any) || contest.any.whole ? contest.whole : contest.any;
}

/// Keeps as much of a tune as could ever fit, and a little more. True when that is not all of it.
bool TakeFront(Tune& tune) {
    double seconds = 0.0;
    std::size_t items = 0;
    bool cut = false;
    while (items < tune.items.size() && items < kMostItems && seconds < kMostSeconds) {
        TuneItem& item = tune.items[items++];
        if (item.seconds > kMostSeconds) {
            item.seconds = kMostSeconds;
            cut = true;
        }
        seconds += item.seconds;
    }
    cut = cut || items < tune.items.size();
    tune.items.resize(items);
    return cut;
}

Fit FitTune(const TimingTables& tables, const Tune& all, bool exact) {
    Tune tune = all;
    const bool cut = TakeFront(tune);
    Fit score = FitScore(tables, tune);
    if (cut) score.whole = false;
    const bool may_be_exact = exact || !tune.on_grid || (tune.bends && score.deviation.j > kHardlyHeard);
    if (!may_be_exact || tune.as_written) return score;
    Fit by_seconds = FitExact(tables, tune);
    if (!IsWritten(by_seconds.encoding.result)) return score;
    if (cut) by_seconds.whole = false;
    if (exact) return by_seconds;
    return IsBetterFit(by_seconds, score) ? by_seconds : score;
}

} // namespace tonex
