#include "exchange/chains.h"
#include "exchange/deviation.h"
#include "exchange/played.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>

namespace tonex::exchange_played_test {
namespace {

const TimingTables& Tables() {
    static const TimingTables tables = BuildTimingTables();
    return tables;
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

TEST(Deviation, LeavesLengthsOfNothingOutAndNamesTheWorst) {
    const std::vector<double> meant = {0.5, 0.0, 0.1, 1.0, 0.3};
    const std::vector<double> played = {0.52, 0.02, 0.09, 1.06, 0.24};
    const Deviation deviation = DeviationOf(meant, played);
    EXPECT_NEAR(deviation.duration, 1.93 / 1.9, 1e-12);
    // What each is off by what is heard of it: 12.1 by 12.5 ms, 11.6 by 6, 44.2 by 25, 64.7 by 7.5.
    EXPECT_NEAR(deviation.unevenness, 4.535789, 1e-6);
    EXPECT_NEAR(deviation.j, 4.565751, 1e-6);
    EXPECT_EQ(deviation.worst, 4);
    EXPECT_NEAR(deviation.worst_seconds, -0.064737, 1e-6);
    EXPECT_NEAR(deviation.worst_part, -0.212435, 1e-6);
    EXPECT_NEAR(deviation.mean_seconds, 0.033158, 1e-6);
    EXPECT_NEAR(deviation.mean_part, 0.098446, 1e-6);
}

TEST(Deviation, HasNoSpeedWhereNothingWasMeantOrIsPlayed) {
    const std::vector<double> none = {0.0, 0.0};
    const std::vector<double> some = {1.0, 0.5};
    EXPECT_EQ(DeviationOf(none, some).duration, 1.0);
    EXPECT_EQ(DeviationOf(none, some).j, 0.0);
    EXPECT_EQ(DeviationOf(some, none).duration, 1.0);
    EXPECT_EQ(DeviationOf(some, none).worst, 0); // both are 40 times what is heard
}

TEST(Deviation, AMillionthOfWhatIsHeardIsRounding) {
    const std::vector<double> meant = {1.0, 1.0};
    EXPECT_EQ(DeviationOf(meant, std::vector<double>{1.0 - 3e-6 * 0.025, 1.0 + 3e-6 * 0.025}).worst, 0);
    EXPECT_EQ(DeviationOf(meant, std::vector<double>{1.0 - 3e-7 * 0.025, 1.0 + 3e-7 * 0.025}).worst, -1);
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
    EXPECT_EQ(ChainOf(0.0), std::vector<int>{1}); // the shortest
    EXPECT_EQ(ChainOf(-3.0), std::vector<int>{1});
    EXPECT_NEAR(QuartersOfChain(ChainOf(100.0)), 100.0, 0.05);
}

TEST(Chains, AnEntryMoreIsTakenWhereItComesNearerByHalfOfTheShortest) {
    constexpr double part = 1.0 / 48.0;                          // quarter notes; the shortest entry has 4
    EXPECT_EQ(ChainOf(9.95 * part), std::vector<int>{5});        // 8; 6 and 4 are 1.9 nearer
    EXPECT_EQ(ChainOf(51.05 * part), (std::vector<int>{10, 1})); // 48 and 4, which are 2.1 nearer than 48
}

TEST(Chains, AreAsGoodAsTheBestOfAllOf3Entries) {
    for (int step = 1; step < 300; ++step) {
        const double quarters = step * 0.0471; // up to twice the longest
        double least = 1e9;
        for (int first = 0; first < kLengthCodes; ++first) {
            for (int second = -1; second <= first; ++second) {
                for (int third = -1; third <= second; ++third) {
                    double sum = QuartersOf(first);
                    if (second >= 0) sum += QuartersOf(second);
                    if (third >= 0) sum += QuartersOf(third);
                    const int entries = 1 + (second >= 0 ? 1 : 0) + (third >= 0 ? 1 : 0);
                    least = std::min(least, std::abs(sum - quarters) + entries / 24.0);
                }
            }
        }
        const std::vector<int> chain = ChainOf(quarters);
        const double off = std::abs(QuartersOfChain(chain) - quarters);
        EXPECT_NEAR(off + static_cast<double>(chain.size()) / 24.0, least, 1.01e-4) << quarters;
        for (std::size_t i = 1; i < chain.size(); ++i)
            EXPECT_LE(QuartersOf(chain[i]), QuartersOf(chain[i - 1])) << quarters;
    }
}

TEST(Chains, ALengthIsThatOfACodeWithinATenThousandthOfAQuarterNote) {
    EXPECT_EQ(CodeOfQuarters(1.00009), 10);
    EXPECT_EQ(CodeOfQuarters(0.99991), 10);
    EXPECT_EQ(CodeOfQuarters(1.00011), -1);
    EXPECT_EQ(CodeOfQuarters(7.0), 19);
    EXPECT_EQ(CodeOfQuarters(1.0 / 12.0), 1);
}

TEST(Chains, OfMoreThanTwiceTheLongestBeginWithTheLongest) {
    EXPECT_EQ(ChainOf(14.0), (std::vector<int>{19, 19}));
    EXPECT_EQ(ChainOf(14.5), (std::vector<int>{19, 19, 6}));
    EXPECT_EQ(ChainOf(15.25), (std::vector<int>{19, 19, 10, 2}));
    EXPECT_EQ(ChainOf(21.0), (std::vector<int>{19, 19, 19}));
    EXPECT_EQ(ChainOf(1e9), std::vector<int>(kMaxEntries + 3, 19)); // no melody holds all of them
}

TEST(Played, TempoBytesGiveTheirTrueTempo) {
    EXPECT_DOUBLE_EQ(TrueTempoOf(0, 4), 120.0);
    EXPECT_DOUBLE_EQ(TrueTempoOf(1, 4), 80.0);
    EXPECT_DOUBLE_EQ(TrueTempoOf(2, 15), 640.0 / 15.0);
}

TEST(Played, LengthsAreDottedDoublyDottedOrOfATriplet) {
    for (const auto& [code, quarters] : {std::pair{0, 0.125},
                                         {3, 0.375},
                                         {4, 0.4375},
                                         {5, 1.0 / 6.0},
                                         {10, 1.0},
                                         {11, 1.5},
                                         {12, 1.75},
                                         {13, 2.0 / 3.0},
                                         {19, 7.0}})
        EXPECT_DOUBLE_EQ(QuartersOf(code), quarters);
}

TEST(Played, AMelodyAsATuneIsAsWrittenWithoutItsUnknownCodes) {
    Melody melody;
    melody.tempo = 60;
    melody.list[0] = {10, 26};
    melody.list[1] = {50, 26};
    melody.list[2] = {kFileRests + 6, kFileRestPitch};
    melody.list[3] = {kFileSeparator, 0};
    const Tune tune = TuneOfMelody(melody);
    EXPECT_TRUE(tune.as_written);
    EXPECT_EQ(tune.tempo, 60.0);
    ASSERT_EQ(tune.items.size(), 3u);
    EXPECT_EQ(tune.items[0].kind, TuneKind::Note);
    EXPECT_EQ(tune.items[0].pitch, 27);
    EXPECT_EQ(tune.items[0].quarters, 1.0);
    EXPECT_EQ(tune.items[0].seconds, 1.0);
    EXPECT_EQ(tune.items[1].kind, TuneKind::Rest);
    EXPECT_EQ(tune.items[1].pitch, 0);
    EXPECT_EQ(tune.items[1].seconds, 0.5);
    EXPECT_EQ(tune.items[2].kind, TuneKind::Separator);
    EXPECT_EQ(tune.items[2].seconds, 0.0);
    melody.list.fill({10, 26}); // no end
    EXPECT_EQ(TuneOfMelody(melody).items.size(), std::size_t{kFileListRows});
}

/// A quarter note, a separator, a rest of two whole notes but a quarter, a thirty-second: at 120 of timing
/// mode 0 these are 8, 0, 56 and 1 units.
FileList FourEntries() {
    FileList list{};
    list[0] = {10, 26};
    list[1] = {kFileSeparator, 0};
    list[2] = {kFileRests + 19, kFileRestPitch};
    list[3] = {0, 26};
    list[4] = FileEntry{};
    return list;
}

TEST(Played, UnitsAreThoseOfTheRecordsOfEachEntry) {
    const FileList list = FourEntries();
    const SndEncoding encoding = EncodeSnd(Tables(), 120, list);
    PlayBlock block;
    ASSERT_TRUE(ReadPlayBlock(encoding.bytes, block));
    EXPECT_EQ(UnitsPlayed(Tables(), block, list, 0), (std::vector<int>{8, 0, 56, 1}));
    // A file may be shorter in its records than its entries are.
    const std::array<std::uint8_t, 12> records = {26, 3, 86, 0, 86, 0, 86, 0, 86, 5, 26, 49};
    EXPECT_EQ(UnitsPlayed(Tables(), {4, records}, list, 0), (std::vector<int>{3, 0, 53, 1}));
}

TEST(Played, RecordsOfOtherEntriesOrOfUnknownOnesHaveNoUnits) {
    FileList list = FourEntries();
    const std::array<std::uint8_t, 14> records = {26, 8, 86, 0, 86, 0, 86, 0, 86, 8, 26, 1, 26, 1};
    const std::span<const std::uint8_t> all = records;
    EXPECT_TRUE(UnitsPlayed(Tables(), {4, all.first(12)}, list, 0));
    EXPECT_FALSE(UnitsPlayed(Tables(), {4, all.first(11)}, list, 0));
    EXPECT_FALSE(UnitsPlayed(Tables(), {4, all.first(10)}, list, 0));
    EXPECT_FALSE(UnitsPlayed(Tables(), {4, all}, list, 0));
    EXPECT_FALSE(UnitsPlayed(Tables(), {4, all.first(12)}, list, 1)); // 84 units there
    list[1].code = 50;
    EXPECT_FALSE(UnitsPlayed(Tables(), {4, all.first(12)}, list, 0));
}

TEST(Played, SecondsAreThoseOfTheEntriesOfEachInterval) {
    Tune tune;
    tune.items = {{TuneKind::Rest, 0, 1.0, 1.0},
                  {TuneKind::Note, 39, 1.0, 1.0},
                  {TuneKind::Rest, 0, 1.0, 1.0},
                  {TuneKind::Note, 39, 2.0, 2.0},
                  {TuneKind::Separator}};
    const std::vector<int> units = {16, 8, 4, 32, 0};
    EXPECT_EQ(SecondsPlayed(tune, units, 2), (std::vector<double>{0.5, 0.375, 1.0}));
    EXPECT_EQ(SecondsMeant(tune), (std::vector<double>{1.0, 2.0, 2.0}));
}

} // namespace
} // namespace tonex::exchange_played_test
