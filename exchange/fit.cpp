#include "exchange/fit.h"

#include "exchange/chains.h"
#include "exchange/played.h"

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

constexpr double kSameJ = 0.001;                           ///< differences below are none
constexpr double kSameTempo = 0.001;                       ///< part of a tempo
constexpr double kHardlyHeard = 1.0;                       ///< as J
constexpr std::array<double, 3> kScales = {1.0, 0.5, 2.0}; ///< the first wins where all do as well

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

/// Adds up what the file plays, and compares.
void Measure(const TimingTables& tables, const Tune& tune, const FileList& list, Fit& fit) {
    PlayBlock block;
    if (!ReadPlayBlock(fit.encoding.bytes, block)) return;
    fit.tempo_byte = block.tempo_byte;
    fit.records = static_cast<int>(block.records.size() / 2);
    FileList written = list;
    At(written, fit.encoding.entries_written) = FileEntry{};
    const auto units = UnitsPlayed(tables, block, written, fit.mode);
    if (!units) return;
    fit.intervals_written = IntervalsWithin(fit.melody, fit.encoding.entries_written);
    fit.played.assign(static_cast<std::size_t>(fit.intervals_written), 0.0);
    for (int i = 0; i < fit.encoding.entries_written; ++i) {
        const int interval = At(fit.melody.interval_of, i);
        if (interval < fit.intervals_written)
            At(fit.played, interval) += At(*units, i) * fit.tempo_byte / 64.0;
    }
    std::vector<double> meant = SecondsMeant(tune);
    meant.resize(fit.played.size());
    for (const double seconds : meant)
        fit.seconds_written += seconds;
    fit.deviation = DeviationOf(meant, fit.played);
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

/// Keeps the better of two. What is written wins where it is hardly heard.
void Prefer(Fit& best, Fit next, const Tune& tune) {
    const auto stays = [&](const Fit& fit) {
        return fit.whole && IsAsWritten(fit, tune) && fit.deviation.j <= kHardlyHeard;
    };
    if (!stays(best) && (stays(next) || IsBetterFit(next, best))) best = std::move(next);
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
    if (one_good != IsWritten(other.encoding.result)) return one_good;
    if (one.whole != other.whole) return one.whole;
    return one.deviation.j < other.deviation.j - kSameJ;
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
    Fit best;
    best.encoding.result = kSndNotFound;
    if (tune.as_written) {
        Candidate candidate = WriteLengths(tune, 1.0);
        candidate.tempo = NearestListed(tables, tune.tempo);
        return Evaluate(tables, tune, std::move(candidate));
    }
    for (const double scale : kScales) {
        Candidate candidate = WriteLengths(tune, scale);
        for (const std::int16_t tempo : tables.tempo_list) {
            if (tempo == 0) break;
            candidate.tempo = tempo;
            Prefer(best, Evaluate(tables, tune, candidate), tune);
        }
    }
    return best;
}

Fit FitTune(const TimingTables& tables, const Tune& tune, bool exact) {
    Fit score = FitScore(tables, tune);
    const bool may_be_exact = exact || !tune.on_grid || (tune.bends && score.deviation.j > kHardlyHeard);
    if (!may_be_exact || tune.as_written) return score;
    Fit by_seconds = FitExact(tables, tune);
    if (!IsWritten(by_seconds.encoding.result)) return score;
    if (exact) return by_seconds;
    return IsBetterFit(by_seconds, score) ? by_seconds : score;
}

} // namespace tonex
