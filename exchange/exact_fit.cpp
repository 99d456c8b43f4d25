// Fitting by seconds: a path through whole time units, one place an onset, that costs least.
#include "exchange/fit.h"
#include "exchange/played.h"

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

constexpr int kReach = 3; ///< units that an onset may be off its place, either way
constexpr int kPlaces = 2 * kReach + 1;
constexpr int kCoinLimit = 1024;       ///< units up to which rests are made of the fewest entries
constexpr int kFinestByte = 4;         ///< tempo bytes up to here have units that are short enough
constexpr double kSilenceHeard = 0.25; ///< of a length: silence behind a note that is just minded
constexpr double kLeastSilence = 0.03; ///< seconds
constexpr double kNever = 1e18;
/// What an entry more costs, in squares of just heard differences. The dearer ones are tried when the melody
/// does not fit otherwise.
constexpr std::array<double, 3> kEntryPrices = {0.5, 2.0, 8.0};

/// The lengths of a timing mode in whole units.
struct UnitTable {
    std::vector<std::pair<int, int>> lengths; ///< units and the length code that has them, each units once
    std::vector<int> rests_for;               ///< by units: the fewest rests; 0 for none
    std::vector<int> last_rest;               ///< by units: index in `lengths` of one of them
};

/// How much more a length costs in a mode than in the cheapest one, so that the writer keeps to the mode.
int LossOf(const TimingTables& tables, int code, int mode) {
    int least = At(At(tables.length_cost, 0), code);
    for (int other = 1; other < kTimingModes; ++other)
        least = std::min<int>(least, At(At(tables.length_cost, other), code));
    return At(At(tables.length_cost, mode), code) - least;
}

void AddLength(const TimingTables& tables, UnitTable& table, int code, int mode) {
    int toggle = 0;
    const int units = RoundUnits(At(At(tables.length_units, mode), code), toggle);
    for (auto& [known, known_code] : table.lengths) {
        if (known != units) continue;
        if (LossOf(tables, code, mode) < LossOf(tables, known_code, mode)) known_code = code;
        return;
    }
    table.lengths.emplace_back(units, code);
}

UnitTable UnitTableOf(const TimingTables& tables, int mode) {
    UnitTable table;
    for (int code = 0; code < kLengthCodes; ++code)
        AddLength(tables, table, code, mode);
    table.rests_for.assign(kCoinLimit + 1, kCoinLimit);
    table.last_rest.assign(kCoinLimit + 1, -1);
    table.rests_for[0] = 0;
    for (int sum = 1; sum <= kCoinLimit; ++sum) {
        for (int i = 0; i < static_cast<int>(table.lengths.size()); ++i) {
            const int before = sum - At(table.lengths, i).first;
            if (before < 0 || At(table.rests_for, before) + 1 >= At(table.rests_for, sum)) continue;
            At(table.rests_for, sum) = At(table.rests_for, before) + 1;
            At(table.last_rest, sum) = i;
        }
    }
    return table;
}

/// Whole longest rests in front of what the coin table knows.
int LongestOf(const UnitTable& table) {
    return std::max_element(table.lengths.begin(), table.lengths.end())->first;
}

int RestsFor(const UnitTable& table, int units) {
    if (units <= kCoinLimit) return At(table.rests_for, units);
    const int longest = LongestOf(table);
    const int whole = (units - kCoinLimit + longest - 1) / longest;
    return whole + At(table.rests_for, units - whole * longest);
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
    int from = -1;   ///< place of the onset before
    int length = -1; ///< index of the note's length; -1 for rests only
};

struct Path {
    std::vector<std::array<Choice, kPlaces>> at; ///< by onset and place
};

/// The cheapest way to fill `units` with the step: a note and rests, or rests.
Choice Fill(const UnitTable& table, const Step& step, int units, double price) {
    Choice best;
    const double off = (units - step.units) / step.heard;
    if (!step.note) return {off * off + price * RestsFor(table, units), -1, -1};
    for (int i = 0; i < static_cast<int>(table.lengths.size()); ++i) {
        const int note = At(table.lengths, i).first;
        if (note > units) continue;
        const double silent = (units - note - (step.units - step.sounding)) / step.silence;
        const double cost = off * off + silent * silent + price * RestsFor(table, units - note);
        if (cost < best.cost) best = {cost, -1, i};
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
            if (cost < At(next, to).cost) At(next, to) = {cost, from, filled.length};
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

void AddRests(const UnitTable& table, int units, int interval, Candidate& candidate) {
    const int longest = LongestOf(table);
    while (units > 0) {
        int length = units;
        if (units > kCoinLimit) {
            length = longest;
        } else {
            length = At(table.lengths, At(table.last_rest, units)).first;
        }
        const auto found = std::find_if(table.lengths.begin(), table.lengths.end(),
                                        [&](const auto& known) { return known.first == length; });
        candidate.entries.push_back({static_cast<std::uint16_t>(kFileRests + found->second), kFileRestPitch});
        candidate.interval_of.push_back(interval);
        units -= length;
    }
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
        const int length = At(At(path.at, i + 1), At(places, i + 1)).length;
        if (length >= 0) {
            const auto& [note, code] = At(table.lengths, length);
            const int pitch = At(intervals, i).pitch - 1;
            candidate.entries.push_back(
                {static_cast<std::uint16_t>(code), static_cast<std::uint16_t>(pitch)});
            candidate.interval_of.push_back(i);
            units -= note;
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
