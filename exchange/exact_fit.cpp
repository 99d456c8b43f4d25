// Fitting by seconds: a path through whole time units, one place an onset, that costs least.
#include "exchange/fit.h"
#include "exchange/played.h"

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

constexpr int kReach = 3; ///< units that an onset may be off its place, either way
constexpr int kPlaces = 2 * kReach + 1;
constexpr int kFinestByte = 4;         ///< tempo bytes up to here have units that are short enough
constexpr double kSilenceHeard = 0.25; ///< of a length: silence behind a note that is just minded
constexpr double kLeastSilence = 0.03; ///< seconds
constexpr double kNever = 1e18;
/// What an entry more costs, in squares of just heard differences. The dearer ones are tried when the melody
/// does not fit otherwise.
constexpr std::array kEntryPrices = {0.5, 2.0, 8.0};

/// A length in whole units and the length code that has it.
struct Length {
    int units;
    int code;
};

/// The fewest rests that fill so many units, and the first of them.
struct Rests {
    int count{};
    Length first{};
};

/// The lengths of a timing mode.
struct UnitTable {
    std::vector<Length> lengths; ///< each of its units once; the last one is the longest
    std::vector<Rests> rests;    ///< by units, below twice the longest
};

/// Of lengths with the same units the cheapest is kept, so that the writer keeps to the mode.
void AddLength(const TimingTables& tables, UnitTable& table, int code, int mode) {
    int toggle = 0;
    const int units = RoundUnits(At(At(tables.length_units, mode), code), toggle);
    const auto& costs = At(tables.length_cost, mode);
    const auto known = std::find_if(table.lengths.begin(), table.lengths.end(),
                                    [&](const Length& length) { return length.units == units; });
    if (known == table.lengths.end()) {
        table.lengths.push_back({units, code});
    } else if (At(costs, code) < At(costs, known->code)) {
        known->code = code;
    }
}

Rests FewestRests(const UnitTable& table, int units) {
    Rests fewest{kMaxEntries, {}};
    for (const Length& length : table.lengths) {
        if (length.units > units) continue;
        const int count = At(table.rests, units - length.units).count + 1;
        if (count < fewest.count) fewest = {count, length};
    }
    return fewest;
}

UnitTable UnitTableOf(const TimingTables& tables, int mode) {
    UnitTable table;
    for (int code = 0; code < kLengthCodes; ++code)
        AddLength(tables, table, code, mode);
    table.rests.emplace_back();
    for (int units = 1; units < 2 * table.lengths.back().units; ++units)
        table.rests.push_back(FewestRests(table, units));
    return table;
}

/// Whole longest rests behind what the table knows. From there on they are the fewest in every mode.
int LongestRests(const UnitTable& table, int units) {
    return std::max(0, units / table.lengths.back().units - 1);
}

int RestsFor(const UnitTable& table, int units) {
    const int longest = LongestRests(table, units);
    return At(table.rests, units - longest * table.lengths.back().units).count + longest;
}

/// One interval on its way through the table: what it should be, in units, and what it may cost.
struct Step {
    double units;    ///< from onset to onset
    double sounding; ///< of these
    double heard;    ///< units just heard
    double silence;  ///< units of silence just minded
    bool note;
};

struct Choice {
    double cost = kNever;
    int from{};                   ///< place of the onset before
    const Length* note = nullptr; ///< in the table; none for rests only
};

struct Path {
    std::vector<std::array<Choice, kPlaces>> at; ///< by onset and place
};

/// The cheapest way to fill `units` with the step: a note and rests, or rests.
Choice Fill(const UnitTable& table, const Step& step, int units, double price) {
    Choice best;
    const double off = (units - step.units) / step.heard;
    if (!step.note) return {off * off + price * RestsFor(table, units)};
    for (const Length& note : table.lengths) {
        if (note.units > units) continue;
        const double silent = (units - note.units - (step.units - step.sounding)) / step.silence;
        const double cost = off * off + silent * silent + price * RestsFor(table, units - note.units);
        if (cost < best.cost) best = {cost, {}, &note};
    }
    return best;
}

std::vector<Step> StepsOf(const std::vector<Interval>& intervals, double unit) {
    std::vector<Step> steps;
    for (const Interval& interval : intervals) {
        Step step{};
        step.units = interval.seconds / unit;
        step.sounding = interval.sounding / unit;
        step.heard = HeardFrom(interval.seconds) / unit;
        step.silence = std::max(kLeastSilence, kSilenceHeard * interval.seconds) / unit;
        step.note = interval.pitch != 0 || interval.sounding > 0.0;
        steps.push_back(step);
    }
    return steps;
}

/// Whole units nearest to each onset, the end of the last interval among them.
std::vector<int> OnsetsOf(const std::vector<Step>& steps) {
    std::vector<int> onsets = {0};
    double onset = 0.0;
    for (const Step& step : steps) {
        onset += step.units;
        onsets.push_back(static_cast<int>(std::lround(onset)));
    }
    return onsets;
}

void Advance(const UnitTable& table, const Step& step, int distance, double price, Path& path) {
    std::array<Choice, kPlaces> next;
    const auto& before = path.at.back();
    for (int units = std::max(1, distance - 2 * kReach); units <= distance + 2 * kReach; ++units) {
        const Choice filled = Fill(table, step, units, price);
        for (int from = 0; from < kPlaces; ++from) {
            const int to = from + units - distance;
            if (to < 0 || to >= kPlaces) continue;
            const double cost = At(before, from).cost + filled.cost;
            if (cost < At(next, to).cost) At(next, to) = {cost, from, filled.note};
        }
    }
    path.at.push_back(next);
}

Path FindPath(const UnitTable& table, const std::vector<Step>& steps, const std::vector<int>& onsets,
              double price) {
    Path path;
    std::array<Choice, kPlaces> start;
    At(start, kReach).cost = 0.0;
    path.at.push_back(start);
    for (int i = 0; i < static_cast<int>(steps.size()); ++i)
        Advance(table, At(steps, i), At(onsets, i + 1) - At(onsets, i), price, path);
    return path;
}

void AddEntry(int code, int pitch, int interval, Candidate& candidate) {
    candidate.entries.push_back({static_cast<std::uint16_t>(code), static_cast<std::uint16_t>(pitch)});
    candidate.interval_of.push_back(interval);
}

void AddRests(const UnitTable& table, int units, int interval, Candidate& candidate) {
    const Length& longest = table.lengths.back();
    const int behind = LongestRests(table, units);
    for (int left = units - behind * longest.units; left > 0; left -= At(table.rests, left).first.units)
        AddEntry(kFileRests + At(table.rests, left).first.code, kFileRestPitch, interval, candidate);
    for (int i = 0; i < behind; ++i)
        AddEntry(kFileRests + longest.code, kFileRestPitch, interval, candidate);
}

/// Writes down the cheapest path. False when there is none.
bool Follow(const UnitTable& table, const std::vector<Interval>& intervals, const std::vector<int>& onsets,
            const Path& path, Candidate& candidate) {
    const auto& last = path.at.back();
    const auto least = std::min_element(last.begin(), last.end(),
                                        [](const Choice& a, const Choice& b) { return a.cost < b.cost; });
    if (least->cost >= kNever) return false;
    std::vector<int> places = {static_cast<int>(least - last.begin())};
    for (int i = static_cast<int>(intervals.size()); i > 0; --i)
        places.push_back(At(At(path.at, i), places.back()).from);
    std::reverse(places.begin(), places.end());
    for (int i = 0; i < static_cast<int>(intervals.size()) && candidate.entries.size() <= kMaxEntries; ++i) {
        int units = At(onsets, i + 1) + At(places, i + 1) - At(onsets, i) - At(places, i);
        if (const Length* note = At(At(path.at, i + 1), At(places, i + 1)).note) {
            AddEntry(note->code, At(intervals, i).pitch - 1, i, candidate);
            units -= note->units;
        }
        AddRests(table, units, i, candidate);
    }
    return true;
}

/// More intervals than a melody has entries need not be looked at.
std::vector<Interval> FirstOf(const std::vector<Interval>& intervals) {
    const auto count = std::min<std::size_t>(intervals.size(), kMaxEntries + 1);
    return {intervals.begin(), intervals.begin() + static_cast<std::ptrdiff_t>(count)};
}

/// Tries one tempo in one of its modes at one price of entries.
Fit TryExact(const TimingTables& tables, const Tune& tune, int mode, int index, double price) {
    Fit none;
    none.encoding.result = kSndNotFound;
    const int tempo_byte = At(At(tables.mode_tempo_bytes, mode), index);
    const std::vector<Interval> intervals = FirstOf(IntervalsOf(tune));
    const UnitTable table = UnitTableOf(tables, mode);
    const std::vector<Step> steps = StepsOf(intervals, SecondsOfUnits(1.0, tempo_byte));
    const std::vector<int> onsets = OnsetsOf(steps);
    Candidate candidate;
    candidate.tempo = At(tables.tempo_list, index);
    candidate.exact = true;
    if (!Follow(table, intervals, onsets, FindPath(table, steps, onsets, price), candidate)) return none;
    Fit fit = Evaluate(tables, tune, std::move(candidate));
    return fit.mode == mode ? fit : none;
}

/// By what is heard, with a little for every entry more than the tune has notes.
double PriceOf(const Fit& fit, const Tune& tune) {
    const double more =
        static_cast<double>(fit.melody.entries.size()) / static_cast<double>(tune.items.size());
    return fit.deviation.j + 0.2 * more;
}

} // namespace

Fit FitExact(const TimingTables& tables, const Tune& tune) {
    Fit best;
    best.encoding.result = kSndNotFound;
    if (tune.items.empty()) return best;
    for (const double price : kEntryPrices) {
        for (int mode = 0; mode < kTimingModes; ++mode) {
            for (int index = 0; At(tables.tempo_list, index) != 0; ++index) {
                const int tempo_byte = At(At(tables.mode_tempo_bytes, mode), index);
                if (tempo_byte == 0 || tempo_byte > kFinestByte) continue;
                Fit next = TryExact(tables, tune, mode, index, price);
                if (!IsWritten(next.encoding.result)) continue;
                const bool better = IsWritten(best.encoding.result) && next.whole == best.whole
                                        ? PriceOf(next, tune) < PriceOf(best, tune)
                                        : next.whole || !IsWritten(best.encoding.result);
                if (better) best = std::move(next);
            }
        }
        if (best.whole) break;
    }
    return best;
}

} // namespace tonex
