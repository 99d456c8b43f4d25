#include "exchange/chains.h"
#include "exchange/fit.h"
#include "exchange/played.h"
#include "score/melody_text.h"

#include <cmath>
#include <gtest/gtest.h>

namespace tonex {
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

TEST(Deviation, IsNoneForTheSameLengths) {
    const std::vector<double> meant = {0.5, 0.25, 1.0};
    const Deviation deviation = DeviationOf(meant, meant);
    EXPECT_EQ(deviation.j, 0.0);
    EXPECT_EQ(deviation.worst, -1);
    EXPECT_EQ(DeviationOf({}, {}).j, 0.0);
}

TEST(Deviation, CountsSpeedAndUnevennessApart) {
    const std::vector<double> meant = {0.5, 0.5, 0.5, 0.5};
    const std::vector<double> slower = {0.515, 0.515, 0.515, 0.515};
    EXPECT_NEAR(DeviationOf(meant, slower).j, std::log(1.03) / 0.03, 1e-9);
    EXPECT_EQ(DeviationOf(meant, slower).worst, -1);
    const std::vector<double> late_first = {0.53, 0.5, 0.5, 0.5};
    EXPECT_NEAR(DeviationOf(meant, late_first).duration, 2.03 / 2.0, 1e-9);
    const std::vector<double> uneven = {0.5, 0.5, 0.525, 0.475};
    const Deviation deviation = DeviationOf(meant, uneven);
    EXPECT_NEAR(deviation.j, std::sqrt((2.0 * 2.0 + 2.0 * 2.0) / 4.0), 1e-9);
    EXPECT_EQ(deviation.worst, 2);
    EXPECT_NEAR(deviation.worst_seconds, 0.025, 1e-9);
    EXPECT_NEAR(deviation.worst_part, 0.05, 1e-9);
    EXPECT_NEAR(deviation.mean_seconds, 0.0125, 1e-9);
}

TEST(Deviation, ShortLengthsAreHeardFrom6Milliseconds) {
    EXPECT_DOUBLE_EQ(HeardFrom(0.1), 0.006);
    EXPECT_DOUBLE_EQ(HeardFrom(1.0), 0.025);
}

TEST(Chains, ALengthOfTheEditorIsOneEntry) {
    for (int code = 0; code < kLengthCodes; ++code)
        EXPECT_EQ(ChainOf(QuartersOf(code)), std::vector<int>{code});
}

TEST(Chains, OthersAreTheFewestEntriesThatComeNearest) {
    EXPECT_EQ(ChainOf(2.5), (std::vector<int>{14, 6}));
    EXPECT_NEAR(QuartersOfChain(ChainOf(5.0)), 5.0, 1e-9);
    EXPECT_EQ(ChainOf(5.0).size(), 2u);
    EXPECT_EQ(ChainOf(0.0).size(), 1u);
    EXPECT_NEAR(QuartersOfChain(ChainOf(100.0)), 100.0, 0.05);
}

TEST(Chains, AnEntryMoreIsTakenWhereItComesNearerByHalfOfTheShortest) {
    constexpr double part = 1.0 / 48.0;                          // quarter notes; the shortest entry has 4
    EXPECT_EQ(ChainOf(9.95 * part), std::vector<int>{5});        // 8; 6 and 4 are 1.9 nearer
    EXPECT_EQ(ChainOf(51.05 * part), (std::vector<int>{10, 1})); // 48 and 4, which are 2.1 nearer than 48
}

TEST(Played, TempoBytesGiveTheirTrueTempo) {
    EXPECT_DOUBLE_EQ(TrueTempoOf(0, 4), 120.0);
    EXPECT_DOUBLE_EQ(TrueTempoOf(1, 4), 80.0);
    EXPECT_DOUBLE_EQ(TrueTempoOf(2, 15), 640.0 / 15.0);
}

TEST(Played, AMelodyAsATuneIsAsWrittenWithoutItsUnknownCodes) {
    Melody melody;
    melody.tempo = 60;
    melody.list[0] = {10, 26};
    melody.list[1] = {50, 26};
    melody.list[2] = {kFileRests + 6, kFileRestPitch};
    const Tune tune = TuneOfMelody(melody);
    EXPECT_TRUE(tune.as_written);
    EXPECT_EQ(tune.tempo, 60.0);
    ASSERT_EQ(tune.items.size(), 2u);
    EXPECT_EQ(tune.items[0].pitch, 27);
    EXPECT_EQ(tune.items[0].seconds, 1.0);
    EXPECT_EQ(tune.items[1].kind, TuneKind::Rest);
    EXPECT_EQ(tune.items[1].seconds, 0.5);
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

TEST(FitScore, CountsNotesThatARestCutsShort) {
    // Two and a half quarter notes are a half note and the rest of an eighth: 0.25 s of silence at 120.
    const Fit fit = FitTune(Tables(), TuneOf(120.0, {1.0, 2.5, 1.0, -0.5, 2.5}), false);
    EXPECT_EQ(fit.early_notes, 2);
    EXPECT_NEAR(fit.most_early, 0.25, 1e-9);
    EXPECT_EQ(FitTune(Tables(), TuneOf(120.0, {1.0, 2.0, -0.5, 1.75}), false).early_notes, 0);
}

TEST(FitTune, AnEndlessLengthTakesNoTimeAndNoRoom) {
    for (const bool exact : {false, true}) {
        const Fit fit = FitTune(Tables(), TuneOf(120.0, {1.0, 1e11, 1.0, 1.0}), exact);
        EXPECT_FALSE(fit.whole);
        EXPECT_LE(fit.melody.entries.size(), 5000u); // of 100000 million quarter notes
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
    EXPECT_FALSE(FitTune(Tables(), TuneOf(120.0, lengths), true).whole);
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
    for (const FileEntry& entry : fit.melody.entries)
        notes += KindOfFileCode(entry.code) == EntryKind::Note ? 1 : 0;
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
} // namespace tonex
