#include "exchange/chains.h"
#include "exchange/fit.h"
#include "exchange/played.h"
#include "score/melody_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <tuple>

namespace tonex::exchange_fit_test {
namespace {

const TimingTables& Tables() {
    static const TimingTables tables = BuildTimingTables();
    return tables;
}

/// Notes of these lengths in quarter notes; negative ones are rests.
Tune TuneOf(double tempo, const std::vector<double>& quarters) {
    Tune tune;
    tune.tempo = tempo;
    for (const double length : quarters) {
        const bool note = length > 0.0;
        tune.items.push_back({note ? TuneKind::Note : TuneKind::Rest, note ? 39 : 0, std::abs(length),
                              std::abs(length) * 60.0 / tempo});
    }
    return tune;
}

std::vector<double> Times(std::vector<double> lengths, int times) {
    std::vector<double> all;
    for (int i = 0; i < times; ++i)
        all.insert(all.end(), lengths.begin(), lengths.end());
    return all;
}

/// The lengths of a melody's entries, as the melody text writes them.
std::string LengthsOf(const Fit& fit) {
    std::string text;
    for (const FileEntry& entry : fit.melody.entries) {
        text += text.empty() ? "" : " ";
        text += KindOfFileCode(entry.code) == EntryKind::Rest ? "r" : "";
        text += LengthTextOf(LengthCodeOfFileCode(entry.code));
    }
    return text;
}

TEST(FitScore, KeepsATempoOfTheListAndItsLengths) {
    const Fit fit = FitTune(Tables(), TuneOf(120.0, {1.0, 0.5, 0.5, 1.5, -0.5, 4.0}), false);
    EXPECT_EQ(fit.melody.tempo, 120);
    EXPECT_EQ(fit.melody.scale, 1.0);
    EXPECT_EQ(fit.deviation.j, 0.0);
    EXPECT_TRUE(fit.whole);
    EXPECT_EQ(fit.records, 7); // the last note has two
}

TEST(FitScore, HalvesOrDoublesLengthsWhereThatComesNearer) {
    // 140 lies between 160 and 128; at half the lengths 70 plays 68.6.
    const Fit fast = FitTune(Tables(), TuneOf(140.0, Times({1.0, 0.5, 0.5, 2.0}, 4)), false);
    EXPECT_EQ(fast.melody.tempo, 70);
    EXPECT_EQ(fast.melody.scale, 0.5);
    EXPECT_NEAR(fast.deviation.duration, 140.0 / (2.0 * 480.0 / 7.0), 1e-9);
    const Fit faster = FitTune(Tables(), TuneOf(200.0, Times({1.0, 0.5, 0.5, 2.0}, 4)), false);
    EXPECT_EQ(faster.melody.tempo, 96);
    EXPECT_EQ(faster.melody.scale, 0.5);
    const Fit slow = FitTune(Tables(), TuneOf(24.0, Times({1.0, 0.5, 0.5, 2.0}, 4)), false);
    EXPECT_EQ(slow.melody.tempo, 48);
    EXPECT_EQ(slow.melody.scale, 2.0);
    EXPECT_NEAR(slow.deviation.j, 0.0, 1e-9);
}

TEST(FitScore, GoesByWhatTheWriterMakesNotByTheTempoOfThatName) {
    // 128 has timing mode 2 only, in which a sixteenth plays a third too short.
    const Tune tune = TuneOf(128.0, Times({0.25, 0.25, 0.5, 1.0}, 8));
    Candidate named = WriteLengths(tune, 1.0);
    named.tempo = 128;
    const Fit bent = Evaluate(Tables(), tune, named);
    const Fit fit = FitTune(Tables(), tune, false);
    EXPECT_NE(fit.melody.tempo, 128);
    EXPECT_LT(fit.deviation.j, bent.deviation.j / 2.0);
}

TEST(FitScore, KeepsWhatIsWrittenWhenToldTo) {
    Tune tune = TuneOf(128.0, Times({0.25, 0.25, 0.5, 1.0}, 8));
    tune.as_written = true;
    EXPECT_EQ(FitTune(Tables(), tune, false).melody.tempo, 128);
}

TEST(FitScore, KeepsWhatIsWrittenWhereTheDifferenceIsHardlyHeard) {
    const Tune tune = TuneOf(70.0, Times({1.0, 0.5, 0.5, 2.0}, 4));
    Candidate nearer = WriteLengths(tune, 1.0);
    nearer.tempo = 72;
    EXPECT_NEAR(Evaluate(Tables(), tune, nearer).deviation.j, 0.52, 0.01);
    const Fit fit = FitTune(Tables(), tune, false);
    EXPECT_NEAR(fit.deviation.j, 0.69, 0.01);
    EXPECT_EQ(fit.melody.tempo, 70);
    EXPECT_EQ(fit.melody.scale, 1.0);
}

TEST(FitScore, ATempoIsAsWrittenWithinAThousandth) {
    for (const auto& [tempo, fitted] : {std::pair{70.065, 70}, {70.075, 72}})
        EXPECT_EQ(FitTune(Tables(), TuneOf(tempo, Times({1.0, 0.5, 0.5, 2.0}, 4)), false).melody.tempo,
                  fitted);
}

TEST(FitScore, OfNothingIsAnEmptyMelody) {
    for (const bool exact : {false, true}) {
        const Fit fit = FitTune(Tables(), TuneOf(120.0, {}), exact);
        EXPECT_EQ(fit.encoding.result, kSndDone);
        EXPECT_TRUE(fit.whole);
        EXPECT_EQ(fit.intervals_written, 0);
        EXPECT_TRUE(fit.melody.entries.empty());
        EXPECT_EQ(fit.melody.tempo, 120);
    }
}

TEST(FitScore, TellsHowMuchOfALongTuneFits) {
    const Fit fit = FitTune(Tables(), TuneOf(120.0, Times({0.5}, 600)), false);
    EXPECT_FALSE(fit.whole);
    EXPECT_EQ(fit.intervals_written, 509);
    EXPECT_NEAR(fit.seconds_written, 509 * 0.25, 1e-6);
    const Fit full = FitTune(Tables(), TuneOf(120.0, Times({6.0}, 400)), false);
    EXPECT_FALSE(full.whole);
    EXPECT_LT(full.intervals_written, 400);
    EXPECT_EQ(full.intervals_written, full.encoding.entries_written);
}

TEST(FitScore, WritesNoTuneManyTimesTooFastOnlyToHoldAllOfIt) {
    // At half the lengths all of it would go in, but 30 is the slowest tempo: half as fast again.
    const Fit fit = FitTune(Tables(), TuneOf(40.0, Times({4.0}, 400)), false);
    EXPECT_FALSE(fit.whole);
    EXPECT_LE(fit.deviation.j, 1.0);
}

TEST(FitScore, TakesALittleUnevennessToHoldAll) {
    Fit near;
    near.deviation.j = 0.2;
    Fit whole;
    whole.whole = true;
    whole.deviation.j = 0.9;
    EXPECT_TRUE(IsBetterFit(whole, near));
    EXPECT_FALSE(IsBetterFit(near, whole));
    whole.deviation.j = 5.0;
    EXPECT_FALSE(IsBetterFit(whole, near));
    EXPECT_TRUE(IsBetterFit(near, whole));
}

TEST(FitScore, TheBetterOfTwoIsHeardNearerOrHoldsAllAndIsHardlyHeardFarther) {
    struct Row {
        bool whole;
        double j;
        bool other_whole;
        double other_j;
        bool better;
        bool other_better;
    };
    for (const Row& row : {
             Row{true, 0.5, true, 0.50105, true, false}, // from 0.001 on
             {true, 0.5, true, 0.50095, false, false},
             {true, 0.0, true, 0.001, false, false},
             {false, 0.5, false, 0.50105, true, false},
             {true, 1.0, false, 0.0, true, false}, // hardly heard
             {true, 1.05, false, 0.45, false, true},
             {true, 1.05, false, 0.56, true, false}, // 0.5 more to hold all
             {true, 1.52, false, 1.0, false, true},
             {true, 1.49, false, 1.0, true, false},
         }) {
        Fit one, other;
        one.whole = row.whole;
        one.deviation.j = row.j;
        other.whole = row.other_whole;
        other.deviation.j = row.other_j;
        EXPECT_EQ(IsBetterFit(one, other), row.better) << row.j << ' ' << row.other_j;
        EXPECT_EQ(IsBetterFit(other, one), row.other_better) << row.j << ' ' << row.other_j;
    }
}

TEST(FitScore, WhatCanNotBeWrittenIsNeverBetter) {
    Fit good, bad;
    bad.encoding.result = kSndWriteError;
    good.deviation.j = 9.0;
    EXPECT_TRUE(IsBetterFit(good, bad));
    EXPECT_FALSE(IsBetterFit(bad, good));
    EXPECT_FALSE(IsBetterFit(bad, bad));
}

TEST(FitScore, CountsNotesThatARestCutsShort) {
    // Two and a half quarter notes are a half note and the rest of an eighth: 0.25 s of silence at 120.
    const Fit fit = FitTune(Tables(), TuneOf(120.0, {1.0, 2.5, 1.0, -0.5, 2.5}), false);
    EXPECT_EQ(LengthsOf(fit), "1/4 1/2 r1/8 1/4 r1/8 1/2 r1/8");
    EXPECT_EQ(fit.melody.entries[2].pitch, kFileRestPitch);
    EXPECT_EQ(fit.early_notes, 2);
    EXPECT_NEAR(fit.most_early, 0.25, 1e-9);
    EXPECT_EQ(FitTune(Tables(), TuneOf(120.0, {1.0, 2.0, -0.5, 1.75}), false).early_notes, 0);
    EXPECT_EQ(FitTune(Tables(), TuneOf(120.0, {2.5}), false).early_notes, 1);
}

TEST(FitScore, ANoteThatIsPlayedTooShortIsNotCutShortWithoutARest) {
    Tune tune = TuneOf(128.0, {1.0, 0.25, 1.0}); // the sixteenth has one unit instead of one and a half
    tune.as_written = true;
    const Fit fit = FitTune(Tables(), tune, false);
    EXPECT_LT(fit.played[1], tune.items[1].seconds - 0.035);
    EXPECT_EQ(fit.early_notes, 0);
}

TEST(FitScore, ANoteIsCutShortFrom30MillisecondsOfWhatItIsPlayed) {
    // A quarter note and the rest of a 32nd are 8 units and 1. At 250 the tune is played a little too slow.
    Tune tune = TuneOf(250.0, {1.125});
    tune.as_written = true;
    const Fit fit = FitTune(Tables(), tune, false);
    EXPECT_EQ(fit.melody.tempo, 240);
    EXPECT_EQ(fit.early_notes, 1);
    EXPECT_NEAR(fit.most_early, 2.0 / 64.0, 1e-9);
    tune = TuneOf(480.0, {1.125});
    tune.as_written = true;
    EXPECT_EQ(FitTune(Tables(), tune, false).early_notes, 0); // 16 ms
}

TEST(FitScore, CountsNoNoteWhoseRestsAreNotAllWritten) {
    // A half note and two rests; the 509 entries of a melody end with the first rest of the 170th.
    Tune tune = TuneOf(240.0, Times({2.5625}, 180));
    tune.as_written = true;
    const Fit fit = FitTune(Tables(), tune, false);
    EXPECT_EQ(fit.encoding.entries_written, 509);
    EXPECT_EQ(fit.intervals_written, 169);
    EXPECT_EQ(fit.early_notes, 169);
    EXPECT_NEAR(fit.seconds_written, 169 * 2.5625 / 4.0, 1e-9);
}

TEST(FitScore, WritesLengthsThatThereAreAndMakesUpForOthers) {
    const auto lengths = [](const std::vector<double>& quarters, double scale) {
        Fit fit;
        fit.melody = WriteLengths(TuneOf(120.0, quarters), scale);
        EXPECT_EQ(fit.melody.scale, scale);
        return LengthsOf(fit);
    };
    // In 48ths of a quarter note: 9.95 is written as 8, then 1.95 are missing, and 12 is nearest.
    const double odd = 9.95 / 48.0;
    EXPECT_EQ(lengths({odd, odd, odd, odd}, 1.0), "1/16t 1/16 1/16t 1/16");
    EXPECT_EQ(lengths({2.0 * odd, 2.0 * odd}, 0.5), "1/16t 1/16");
    EXPECT_EQ(lengths({odd, 0.125, 1.0, odd}, 1.0), "1/16t 1/32 1/4 1/16");
    EXPECT_EQ(lengths({odd, -odd}, 1.0), "1/16t r1/16");
}

TEST(FitScore, SeparatorsBelongToTheNoteBefore) {
    Tune tune = TuneOf(120.0, {1.0, 1.0});
    const TuneItem separator{TuneKind::Separator};
    tune.items.insert(tune.items.begin() + 1, separator);
    tune.items.insert(tune.items.begin(), separator);
    const Candidate candidate = WriteLengths(tune, 1.0);
    ASSERT_EQ(candidate.entries.size(), 4u);
    EXPECT_EQ(candidate.entries[0].code, kFileSeparator);
    EXPECT_EQ(candidate.entries[2].code, kFileSeparator);
    EXPECT_EQ(candidate.interval_of, (std::vector<int>{0, 1, 1, 2}));
}

TEST(FitScore, HoldsAsManyNotesAsAMelodyHasEntries) {
    EXPECT_TRUE(FitScore(Tables(), TuneOf(120.0, Times({0.5}, kMaxEntries))).whole);
    EXPECT_FALSE(FitScore(Tables(), TuneOf(120.0, Times({0.5}, kMaxEntries + 1))).whole);
}

TEST(FitScore, IsNoneForANoteThatNoFileHolds) {
    Tune tune = TuneOf(120.0, {1.0, 1.0});
    tune.items[1].pitch = 257;
    EXPECT_EQ(FitScore(Tables(), tune).encoding.result, kSndNotFound);
    Candidate candidate = WriteLengths(tune, 1.0);
    candidate.tempo = 120;
    EXPECT_EQ(Evaluate(Tables(), tune, candidate).encoding.result, kSndWriteError);
    candidate.tempo = 121;
    EXPECT_EQ(Evaluate(Tables(), tune, candidate).encoding.result, kSndNotFound);
    tune.items[1].pitch = 256;
    EXPECT_EQ(FitScore(Tables(), tune).encoding.result, kSndDone);
}

TEST(FitTune, HoldsNoMoreThan5000Seconds) {
    for (const auto& [seconds, notes, whole] : {std::tuple{50.0, 100, true},
                                                {50.0, 101, false},
                                                {49.9995, 101, true},
                                                {49.9995, 102, false},
                                                {5000.0, 1, true},
                                                {5001.0, 1, false}}) {
        Tune tune = TuneOf(1.0, Times({1.0}, notes));
        for (TuneItem& item : tune.items)
            item.seconds = seconds;
        EXPECT_EQ(FitTune(Tables(), tune, false).whole, whole) << seconds << ' ' << notes;
    }
}

TEST(FitTune, AnEndlessLengthTakesNoTimeAndNoRoom) {
    for (const bool exact : {false, true}) {
        const Fit fit = FitTune(Tables(), TuneOf(120.0, {1.0, 1e11, 1.0, 1.0}), exact);
        EXPECT_FALSE(fit.whole);
        EXPECT_LE(fit.melody.entries.size(), 5000u); // of 100000 million quarter notes
    }
}

// FitExact once more, in the plainest way: every place of every onset with every length that a note may have,
// from the last onset to the first.

constexpr int kPlaces = 7; // up to 3 units before and behind
constexpr int kMostRestUnits = 8000;

/// The length codes of a timing mode in units, and rests of them.
struct Ruler {
    std::array<int, kLengthCodes> units{};
    std::array<int, kLengthCodes> cheapest{}; // of the codes with the same units
    std::vector<int> rests{0};                // by units: the fewest
    std::vector<int> first_rest{0};           // by units: the first code among them
};

Ruler RulerOf(int mode) {
    Ruler ruler;
    for (int code = 0; code < kLengthCodes; ++code) {
        int toggle = 0;
        At(ruler.units, code) = RoundUnits(At(At(Tables().length_units, mode), code), toggle);
    }
    const auto& costs = At(Tables().length_cost, mode);
    for (int code = 0; code < kLengthCodes; ++code) {
        int cheapest = code;
        for (int other = 0; other < kLengthCodes; ++other) {
            const bool same = At(ruler.units, other) == At(ruler.units, code);
            if (same && At(costs, other) < At(costs, cheapest)) cheapest = other;
        }
        At(ruler.cheapest, code) = cheapest;
    }
    for (int units = 1; units < kMostRestUnits; ++units) {
        int fewest = units + 1, first = 0;
        for (int code = 0; code < kLengthCodes; ++code) {
            const int left = units - At(ruler.units, code);
            if (left < 0 || At(ruler.rests, left) + 1 >= fewest) continue;
            fewest = At(ruler.rests, left) + 1;
            first = code;
        }
        ruler.rests.push_back(fewest);
        ruler.first_rest.push_back(first);
    }
    return ruler;
}

/// How an interval is filled, and what that costs with all behind it.
struct Way {
    double cost = 1e18;
    int units = 0;
    int note = -1; // length code
    int to = 0;    // place of the next onset
};

Way FillPlainly(const Ruler& ruler, const Interval& interval, double unit, int units, double price) {
    Way way;
    way.units = units;
    const double off = (units * unit - interval.seconds) / HeardFrom(interval.seconds);
    if (interval.pitch == 0) way.cost = off * off + price * At(ruler.rests, units);
    const double just_minded = std::max(0.03, 0.25 * interval.seconds);
    for (int code = 0; code < kLengthCodes && interval.pitch != 0; ++code) {
        const int rest = units - At(ruler.units, code);
        if (rest < 0) continue;
        const double silent = (rest * unit - (interval.seconds - interval.sounding)) / just_minded;
        const double cost = off * off + silent * silent + price * At(ruler.rests, rest);
        if (cost < way.cost) way = {cost, units, code, 0};
    }
    return way;
}

void AddWay(const Ruler& ruler, const Way& way, int pitch, int interval, Candidate& candidate) {
    int rest = way.units;
    if (way.note >= 0) {
        rest -= At(ruler.units, way.note);
        candidate.entries.push_back({static_cast<std::uint16_t>(At(ruler.cheapest, way.note)),
                                     static_cast<std::uint16_t>(pitch - 1)});
    }
    while (rest > 0) {
        const int code = At(ruler.first_rest, rest);
        candidate.entries.push_back(
            {static_cast<std::uint16_t>(kFileRests + At(ruler.cheapest, code)), kFileRestPitch});
        rest -= At(ruler.units, code);
    }
    candidate.interval_of.resize(candidate.entries.size(), interval);
}

/// All ways from each onset and place, the first onset's in front.
std::vector<std::array<Way, kPlaces>> WaysOf(const Ruler& ruler, const std::vector<Interval>& intervals,
                                             double unit, double price) {
    std::vector<std::array<Way, kPlaces>> ways(intervals.size() + 1);
    for (Way& end : ways.back())
        end.cost = 0.0;
    double end = 0.0;
    for (const Interval& interval : intervals)
        end += interval.seconds;
    for (std::size_t i = intervals.size(); i-- > 0;) {
        const double start = end - intervals[i].seconds;
        const int distance = static_cast<int>(std::lround(end / unit) - std::lround(start / unit));
        for (int units = std::max(1, distance - 6); units <= distance + 6; ++units) {
            const Way filled = FillPlainly(ruler, intervals[i], unit, units, price);
            for (int from = 0; from < kPlaces; ++from) {
                const int to = from + units - distance;
                if (to < 0 || to >= kPlaces) continue;
                const double cost = filled.cost + At(ways[i + 1], to).cost;
                if (cost < At(ways[i], from).cost) At(ways[i], from) = {cost, units, filled.note, to};
            }
        }
        end = start;
    }
    return ways;
}

Fit FitPlainly(const Tune& tune, int mode, int index, double price) {
    static const std::array<Ruler, 3> rulers = {RulerOf(0), RulerOf(1), RulerOf(2)};
    const double unit = At(At(Tables().mode_tempo_bytes, mode), index) / 64.0;
    const std::vector<Interval> intervals = IntervalsOf(tune);
    const auto ways = WaysOf(At(rulers, mode), intervals, unit, price);
    Candidate candidate;
    candidate.tempo = At(Tables().tempo_list, index);
    int place = 3;
    for (std::size_t i = 0; i < intervals.size(); ++i) {
        const Way& way = At(ways[i], place);
        AddWay(At(rulers, mode), way, intervals[i].pitch, static_cast<int>(i), candidate);
        place = way.to;
        if (candidate.entries.size() > kMaxEntries) break;
    }
    return Evaluate(Tables(), tune, candidate);
}

/// Of all tempos up to byte 4 in the modes that the writer takes for them; the dearer entries where those
/// before do not hold all of it.
Fit FitExactPlainly(const Tune& tune) {
    Fit best;
    double least = 0.0;
    for (const double price : {0.5, 2.0, 8.0}) {
        for (int i = 0; i < 3 * kTempoListSize; ++i) {
            const int mode = i / kTempoListSize, index = i % kTempoListSize;
            const int byte = At(At(Tables().mode_tempo_bytes, mode), index);
            if (At(Tables().tempo_list, index) == 0 || byte == 0 || byte > 4) continue;
            Fit fit = FitPlainly(tune, mode, index, price);
            if (!IsWritten(fit.encoding.result) || fit.mode != mode || fit.whole < best.whole) continue;
            const double entries = static_cast<double>(fit.melody.entries.size());
            const double heard = fit.deviation.j + 0.2 * entries / static_cast<double>(tune.items.size());
            if (!best.encoding.bytes.empty() && fit.whole == best.whole && heard >= least) continue;
            best = std::move(fit);
            least = heard;
        }
        if (best.whole) break;
    }
    return best;
}

std::string TextOf(const Fit& fit) {
    return std::to_string(fit.melody.tempo) + " mode " + std::to_string(fit.mode) + ": " + LengthsOf(fit);
}

/// Notes of any lengths up to `longest` seconds, some of them with silence behind.
Tune AnyTune(unsigned seed, int notes, double longest, double silence) {
    std::mt19937 random(seed);
    const auto up_to = [&](double most) { return most * static_cast<double>(random() % 10007) / 10007.0; };
    Tune tune;
    if (seed % 3 == 0) tune.items.push_back({TuneKind::Rest, 0, 0.0, up_to(seed % 2 == 0 ? 0.1 : 3.0)});
    for (int i = 0; i < notes; ++i) {
        tune.items.push_back({TuneKind::Note, 30 + i % 40, 0.0, up_to(longest)});
        if (up_to(1.0) < silence) tune.items.push_back({TuneKind::Rest, 0, 0.0, up_to(2.0 * longest)});
    }
    return tune;
}

TEST(FitExact, IsTheCheapestOfAllPathsInAllTempos) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        const double longest = (seed % 10 == 9 ? 3.0 : seed % 4 == 0 ? 0.3 : 0.03) * (1 + seed % 11);
        const Tune tune = AnyTune(seed, 2 + static_cast<int>(seed % 14), longest, 0.4);
        EXPECT_EQ(TextOf(FitExact(Tables(), tune)), TextOf(FitExactPlainly(tune))) << seed;
    }
}

TEST(FitExact, TakesNoTempoOfUnitsLongerThanA16thSecond) {
    // 96 has units of 5/64 s and would need no rests at all.
    EXPECT_LE(FitExact(Tables(), TuneOf(96.0, Times({1.0, 0.5, 0.5, 2.0}, 3))).tempo_byte, 4);
    EXPECT_EQ(FitExact(Tables(), TuneOf(120.0, Times({4.0, 2.0, 7.0}, 3))).tempo_byte, 4);
}

TEST(FitExact, TakesTheFastestOfTemposThatDoAsWell) {
    // Half or a quarter of these lengths at 240 or 120 are played the same.
    const Fit fit = FitExact(Tables(), TuneOf(480.0, Times({1.0, 0.5, 2.0}, 3)));
    EXPECT_EQ(fit.melody.tempo, 480);
    EXPECT_EQ(fit.deviation.j, 0.0);
}

TEST(FitExact, IsNoneForMoreNotesOfNoLengthThanPlacesToMoveThem) {
    Tune tune = TuneOf(120.0, Times({1.0}, 9));
    for (std::size_t i = 1; i + 1 < tune.items.size(); ++i)
        tune.items[i].seconds = 0.0;
    EXPECT_EQ(FitExact(Tables(), tune).encoding.result, kSndNotFound);
    EXPECT_FALSE(FitTune(Tables(), tune, true).melody.exact);
    tune.items.erase(tune.items.begin() + 1);
    EXPECT_EQ(FitExact(Tables(), tune).encoding.result, kSndDone);
    // The one between gets 6 units shorter, so that those behind have room as well.
    const std::vector<TuneItem> once = tune.items;
    tune.items.insert(tune.items.end(), once.begin() + 1, once.end());
    EXPECT_EQ(FitExact(Tables(), tune).encoding.result, kSndDone);
}

TEST(FitExact, OfTwoLengthsThatAreAsNearTakesTheShorterOne) {
    Tune tune = TuneOf(480.0, {1.0, -1.0});
    tune.items[0].seconds = 13.0 / 64.0; // between the 12 and the 14 units of 1/4. and 1/4..
    tune.items[1].seconds = 4.0 / 64.0;
    EXPECT_EQ(TextOf(FitExact(Tables(), tune)), "480 mode 0: 1/4. r1/4t");
    tune.items.pop_back();
    tune.items[0].seconds = 6.5 / 64.0; // between 1/8. and 1/8..
    EXPECT_EQ(TextOf(FitExact(Tables(), tune)), "480 mode 0: 1/8.");
}

TEST(FitExact, MovesAnOnset3UnitsBackAndTheNext3UnitsOnWhereThatSavesRests) {
    // Units of a 16th second: 451 are 8 rests of 56 and 3 more, 442 are 8 of 56 without 6.
    Tune tune = TuneOf(120.0, {-1.0, 1.0, -1.0});
    tune.items[0].seconds = 451.0 / 16.0;
    tune.items[1].seconds = 56.0 / 16.0;
    tune.items[2].seconds = 386.0 / 16.0;
    std::string expected = "120 mode 0:";
    for (int i = 0; i < 16; ++i)
        expected += i == 8 ? " 1/1.." : " r1/1..";
    EXPECT_EQ(TextOf(FitExact(Tables(), tune)), expected);
}

TEST(FitExact, TakesNoNoteForARest) {
    Tune tune = TuneOf(480.0, {0.1, 1.0});
    tune.items[0].pitch = 0; // a half tone below what a file can hold
    EXPECT_EQ(FitExact(Tables(), tune).encoding.result, kSndNotFound);
}

TEST(FitExact, TakesFewerEntriesWhereTheMelodyWouldNotBeWhole) {
    struct Row {
        int notes;
        double longest;
        double silence;
        bool whole;
    };
    for (const Row& row : {Row{250, 2.0, 0.1, true}, {400, 1.0, 0.0, true}, {250, 2.0, 0.3, false}}) {
        const Tune tune = AnyTune(7, row.notes, row.longest, row.silence);
        const Fit fit = FitExact(Tables(), tune);
        EXPECT_EQ(fit.whole, row.whole) << row.notes;
        EXPECT_EQ(TextOf(fit), TextOf(FitExactPlainly(tune)));
    }
}

TEST(FitExact, MeetsAnySpeedWithWholeUnits) {
    for (const double tempo : {137.0, 151.3, 187.0, 233.0, 285.0}) {
        Tune tune = TuneOf(tempo, Times({0.5, 0.25, 0.25, 1.0}, 10));
        const Fit score = FitTune(Tables(), tune, false);
        const Fit exact = FitTune(Tables(), tune, true);
        EXPECT_TRUE(exact.melody.exact);
        EXPECT_TRUE(exact.whole) << tempo;
        EXPECT_NEAR(exact.deviation.duration, 1.0, 0.016) << tempo;
        EXPECT_LE(exact.deviation.unevenness, 1.1) << tempo;
        EXPECT_LE(exact.deviation.j, score.deviation.j + 0.2) << tempo;
        EXPECT_LE(exact.melody.entries.size(), tune.items.size() * 2) << tempo;
    }
}

TEST(FitExact, NoOnsetIsMoreThan3UnitsOffItsPlace) {
    for (const double tempo : {137.0, 151.3, 187.0, 233.0, 285.0}) {
        const Tune tune = TuneOf(tempo, Times({0.5}, 60));
        const Fit fit = FitTune(Tables(), tune, true);
        double meant = 0.0, played = 0.0;
        for (std::size_t i = 0; i < fit.played.size(); ++i) {
            meant += tune.items[i].seconds;
            played += fit.played[i];
            EXPECT_LE(std::abs(played - meant), SecondsOfUnits(3.5, fit.tempo_byte) + 1e-9) << tempo;
        }
    }
}

TEST(FitExact, FillsEachIntervalWithANoteAndTheFewestRests) {
    const Fit odd = FitTune(Tables(), TuneOf(137.0, {0.5, 0.25, 0.25, 1.0, -0.75, 1.5}), true);
    EXPECT_EQ(odd.melody.tempo, 480);
    EXPECT_EQ(LengthsOf(odd), "1/4.. 1/8.. 1/8.. 1/2.. r1/8.. r1/4.. 1/1 r1/16 r1/4");
    // In timing mode 2 one unit is a 1/16t, which costs nothing there; a 1/32 would.
    const Fit triplets = FitTune(Tables(), TuneOf(201.0, Times({1.0, 0.5, 0.5, 2.0}, 2)), true);
    EXPECT_EQ(triplets.mode, 2);
    EXPECT_EQ(LengthsOf(triplets), "1/2. r1/16t 1/4.. 1/4.. 1/1. r1/8t 1/2. r1/16t 1/4.. 1/4.. 1/1. r1/8t");
    const Fit rests = FitTune(Tables(), TuneOf(60.0, {1.0, -70.0, 1.0}), true);
    EXPECT_EQ(rests.melody.tempo, 120);
    std::string expected = "1/2";
    for (int i = 0; i < 20; ++i)
        expected += " r1/1..";
    EXPECT_EQ(LengthsOf(rests), expected + " 1/2");
}

TEST(FitExact, OfALongTuneGivesWhatFits) {
    const Fit plain = FitTune(Tables(), TuneOf(120.0, Times({0.5}, 600)), true);
    EXPECT_TRUE(IsWritten(plain.encoding.result));
    EXPECT_FALSE(plain.whole);
    EXPECT_EQ(plain.intervals_written, 509);
    const Fit odd = FitTune(Tables(), TuneOf(151.0, Times({0.5, 0.25, 0.25}, 250)), true);
    EXPECT_TRUE(IsWritten(odd.encoding.result));
    EXPECT_FALSE(odd.whole);
    EXPECT_EQ(odd.intervals_written, 381);
}

TEST(FitExact, IsTakenByItselfForATuneThatIsOnNoGrid) {
    Tune tune = TuneOf(120.0, {0.93, 0.51, 0.47, 1.06, 0.22, 0.31, 0.49, 1.9});
    tune.on_grid = false;
    const Fit fit = FitTune(Tables(), tune, false);
    EXPECT_TRUE(fit.melody.exact);
    EXPECT_LE(fit.deviation.j, 1.1);
    EXPECT_EQ(LengthsOf(fit), "1/2.. r1/16 1/2 1/4.. r1/32 1/1 r1/16 1/8.. 1/4 r1/16 1/2 1/1.. r1/4t");
}

TEST(FitExact, IsNotTakenByItselfWhereTheWrittenLengthsAreHeardNearer) {
    Tune tune = TuneOf(480.0 / 7.0, Times({1.0, 0.5, 0.5, 1.5}, 3)); // what the tempo 70 plays
    tune.on_grid = false;
    const Fit fit = FitTune(Tables(), tune, false);
    EXPECT_FALSE(fit.melody.exact);
    EXPECT_EQ(fit.melody.tempo, 70);
}

TEST(FitExact, IsTakenByItselfWhereTheTempoBendsAndIsHeardTo) {
    Tune tune = TuneOf(120.0, Times({1.0, 0.5, 0.5}, 4));
    for (std::size_t i = 6; i < tune.items.size(); ++i)
        tune.items[i].seconds *= 1.3;
    EXPECT_FALSE(FitTune(Tables(), tune, false).melody.exact);
    tune.bends = true;
    EXPECT_TRUE(FitTune(Tables(), tune, false).melody.exact);
}

TEST(FitExact, HoldsATuneOfFourTimesAsManyRestsAsAMelodyHasEntries) {
    std::vector<double> lengths(4 * kMaxEntries, -0.05);
    lengths.front() = lengths.back() = 1.0;
    EXPECT_TRUE(FitTune(Tables(), TuneOf(120.0, lengths), true).whole);
    lengths.push_back(1.0);
    const Fit cut = FitTune(Tables(), TuneOf(120.0, lengths), true);
    EXPECT_FALSE(cut.whole);
    EXPECT_EQ(cut.intervals_written, 2);
}

TEST(FitExact, WritesANoteOfNoLengthToo) {
    Tune tune = TuneOf(120.0, {1.0, 1.0, 1.0});
    tune.items[1].quarters = tune.items[1].seconds = 0.0;
    const Fit fit = FitTune(Tables(), tune, true);
    EXPECT_EQ(LengthsOf(fit).find('r'), std::string::npos) << LengthsOf(fit);
    EXPECT_EQ(fit.melody.interval_of, (std::vector<int>{0, 1, 2}));
}

TEST(FitExact, KeepsRestsAndPitches) {
    const Fit fit = FitTune(Tables(), TuneOf(151.0, {-2.0, 1.0, -1.0, 1.0, -3.0, 2.0}), true);
    int notes = 0;
    for (const FileEntry& entry : fit.melody.entries) {
        const bool note = KindOfFileCode(entry.code) == EntryKind::Note;
        notes += note ? 1 : 0;
        EXPECT_EQ(entry.pitch, note ? 38 : kFileRestPitch);
    }
    EXPECT_EQ(notes, 3);
    EXPECT_LE(fit.deviation.j, 1.0);
}

TEST(Tune, MovesToThePianoByOctavesWhereTheyDoAndElseByTheLeast) {
    int shift = 0;
    EXPECT_TRUE(HalfTonesToPiano({30, 60}, true, shift));
    EXPECT_EQ(shift, 0);
    EXPECT_TRUE(HalfTonesToPiano({20, 50}, true, shift));
    EXPECT_EQ(shift, 12);
    EXPECT_TRUE(HalfTonesToPiano({20, 50}, false, shift));
    EXPECT_EQ(shift, 7);
    EXPECT_TRUE(HalfTonesToPiano({20, 68}, true, shift));
    EXPECT_EQ(shift, 7);
    EXPECT_FALSE(HalfTonesToPiano({20, 69}, true, shift));
}

TEST(Tune, KeepsThePartFromOneSecondToAnother) {
    Tune tune = TuneOf(60.0, {1.0, 1.0, -1.0, 1.0, 2.0});
    KeepPart(tune, 1.0, 4.5);
    EXPECT_NEAR(tune.start, 1.0, 1e-9);
    ASSERT_EQ(tune.items.size(), 4u);
    EXPECT_NEAR(LengthOf(tune), 3.5, 1e-9);
    EXPECT_NEAR(tune.items.back().quarters, 0.5, 1e-9);
    Tune middle = TuneOf(60.0, {1.0, -2.0, 1.0});
    KeepPart(middle, 1.5, 10.0);
    ASSERT_EQ(middle.items.size(), 2u);
    EXPECT_NEAR(middle.items[0].seconds, 1.5, 1e-9);
}

TEST(Tune, APartHasTheSeparatorAtItsBeginAndNotTheOneAtItsEnd) {
    Tune tune = TuneOf(60.0, {1.0, 1.0, 1.0});
    const TuneItem separator{TuneKind::Separator};
    tune.items.insert(tune.items.begin() + 2, separator);
    tune.items.insert(tune.items.begin() + 1, separator);
    KeepPart(tune, 1.0, 2.0);
    ASSERT_EQ(tune.items.size(), 2u);
    EXPECT_EQ(tune.items[0].kind, TuneKind::Separator);
    EXPECT_EQ(tune.items[1].kind, TuneKind::Note);
}

TEST(Tune, SpeedChangesSecondsAndTempoOnly) {
    Tune tune = TuneOf(60.0, {1.0, 2.0});
    SpeedUp(tune, 2.0);
    EXPECT_EQ(tune.tempo, 120.0);
    EXPECT_EQ(tune.items[1].quarters, 2.0);
    EXPECT_EQ(tune.items[1].seconds, 1.0);
}

} // namespace
} // namespace tonex::exchange_fit_test
