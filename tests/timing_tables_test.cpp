#include "preview/timing_tables.h"
#include "score/number_text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace tonex::timing_tables_test {

namespace {

struct TempoRow {
    std::int16_t tempo;
    std::int16_t bytes[3];
};

constexpr TempoRow kTempoRows[] = {
    {640, {0, 0, 1}},  {480, {1, 0, 0}},   {320, {0, 1, 2}},   {240, {2, 0, 0}},  {214, {0, 0, 3}},
    {160, {3, 2, 4}},  {128, {0, 0, 5}},   {120, {4, 0, 0}},   {108, {0, 3, 6}},  {96, {5, 0, 0}},
    {92, {0, 0, 7}},   {80, {6, 4, 8}},    {72, {0, 0, 9}},    {70, {7, 0, 0}},   {64, {0, 5, 10}},
    {60, {8, 0, 0}},   {58, {0, 0, 11}},   {54, {9, 6, 12}},   {50, {0, 0, 13}},  {48, {10, 0, 0}},
    {46, {0, 7, 14}},  {44, {11, 0, 15}},  {40, {12, 8, 16}},  {38, {13, 0, 17}}, {36, {0, 9, 18}},
    {34, {14, 0, 19}}, {32, {15, 10, 20}}, {30, {16, 11, 21}},
};

constexpr double kThird = 1.0 / 3.0;

struct LengthRow {
    double units[3];
    std::int16_t cost[3];
};

constexpr LengthRow kLengthRows[] = {
    {{1, 1.5, 0.75}, {0, 4, 1}},     {{2 * kThird, 1, 0.5}, {2, 0, 4}}, {{2, 3, 1.5}, {0, 0, 4}},
    {{3, 4.5, 2.25}, {0, 4, 1}},     {{3.5, 5.25, 2.625}, {4, 1, 2}},   {{4 * kThird, 2, 1}, {2, 0, 0}},
    {{4, 6, 3}, {0, 0, 0}},          {{6, 9, 4.5}, {0, 0, 4}},          {{7, 10.5, 5.25}, {0, 4, 1}},
    {{8 * kThird, 4, 2}, {2, 0, 0}}, {{8, 12, 6}, {0, 0, 0}},           {{12, 18, 9}, {0, 1, 0}},
    {{14, 21, 10.5}, {0, 1, 4}},     {{16 * kThird, 8, 4}, {2, 0, 0}},  {{16, 24, 12}, {0, 1, 0}},
    {{24, 36, 18}, {1, 2, 1}},       {{28, 42, 21}, {1, 2, 1}},         {{32, 48, 24}, {1, 2, 1}},
    {{48, 72, 36}, {2, 4, 2}},       {{56, 84, 42}, {3, 5, 2}},
};

TEST(TimingTables, TempoRangesWhole) {
    const struct {
        std::wstring_view name;
        std::int16_t lower, upper;
    } expected[] = {{L"Largo", 40, 50},    {L"Lento", 50, 58},     {L"Adagio", 58, 67},
                    {L"Andante", 67, 81},  {L"Moderato", 81, 102}, {L"Allegro", 102, 138},
                    {L"Vivace", 138, 167}, {L"Presto", 167, 320}};
    ASSERT_EQ(kTempoRanges.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(kTempoRanges[i].name, expected[i].name) << i;
        EXPECT_EQ(kTempoRanges[i].lower, expected[i].lower) << i;
        EXPECT_EQ(kTempoRanges[i].upper, expected[i].upper) << i;
    }
}

TEST(TimingTables, TempoListWhole) {
    const TimingTables tables = BuildTimingTables();
    static_assert(std::size(kTempoRows) == 28);
    for (std::size_t i = 0; i < 28; ++i)
        EXPECT_EQ(tables.tempo_list[i], kTempoRows[i].tempo) << i;
    for (std::size_t i = 28; i < 100; ++i)
        EXPECT_EQ(tables.tempo_list[i], 0) << i;
}

TEST(TimingTables, ModeTempoBytesWhole) {
    const TimingTables tables = BuildTimingTables();
    for (std::size_t i = 0; i < 28; ++i) {
        for (std::size_t mode = 0; mode < 3; ++mode) {
            EXPECT_EQ(tables.mode_tempo_bytes[mode][i], kTempoRows[i].bytes[mode])
                << "index " << i << ", mode " << mode;
        }
    }
}

TEST(TimingTables, TheTempo30OfMode2UsesByte21Not22) {
    const TimingTables tables = BuildTimingTables();
    EXPECT_EQ(At(tables.mode_tempo_bytes[2], TempoIndexOf(tables, 30)), 21);
    // The dropped duplicate's bytes stay behind the end of the list.
    EXPECT_EQ(tables.mode_tempo_bytes[2][28], 22);
}

TEST(TimingTables, LengthUnitsWhole) {
    const TimingTables tables = BuildTimingTables();
    static_assert(std::size(kLengthRows) == 20);
    for (std::size_t code = 0; code < 20; ++code) {
        for (std::size_t mode = 0; mode < 3; ++mode) {
            EXPECT_FLOAT_EQ(tables.length_units[mode][code],
                            static_cast<float>(kLengthRows[code].units[mode]))
                << "code " << code << ", mode " << mode;
        }
    }
}

TEST(TimingTables, UnitsThatAreWholeAreExactlyWhole) {
    const TimingTables tables = BuildTimingTables();
    for (std::size_t code = 0; code < 20; ++code) {
        for (std::size_t mode = 0; mode < 3; ++mode) {
            const double expected = kLengthRows[code].units[mode];
            if (expected * 8 != static_cast<int>(expected * 8)) continue;
            EXPECT_EQ(static_cast<double>(tables.length_units[mode][code]), expected)
                << "code " << code << ", mode " << mode;
        }
    }
}

TEST(TimingTables, LengthCostWhole) {
    const TimingTables tables = BuildTimingTables();
    for (std::size_t code = 0; code < 20; ++code) {
        for (std::size_t mode = 0; mode < 3; ++mode) {
            EXPECT_EQ(tables.length_cost[mode][code], kLengthRows[code].cost[mode])
                << "code " << code << ", mode " << mode;
        }
    }
}

TEST(TimingTables, TheDefaultIs120AtIndex7) {
    const TimingTables tables = BuildTimingTables();
    EXPECT_EQ(tables.default_tempo_index, 7);
    EXPECT_EQ(tables.tempo_list[7], 120);
}

TEST(TimingTables, EveryBuildIsTheSame) {
    const TimingTables first = BuildTimingTables();
    const TimingTables second = BuildTimingTables();
    EXPECT_EQ(first.tempo_list, second.tempo_list);
    EXPECT_EQ(first.mode_tempo_bytes, second.mode_tempo_bytes);
    EXPECT_EQ(first.length_units, second.length_units);
    EXPECT_EQ(first.length_cost, second.length_cost);
}

TEST(TimingTables, TheComboHolds28ItemsEachWithALeadingBlank) {
    const TimingTables tables = BuildTimingTables();
    std::vector<std::wstring> items;
    for (const std::int16_t tempo : tables.tempo_list) {
        if (tempo == 0) break;
        items.push_back(NumberToText(tempo));
    }
    ASSERT_EQ(items.size(), 28U);
    EXPECT_EQ(items.front(), L" 640");
    EXPECT_EQ(items.back(), L" 30");
    EXPECT_EQ(At(items, tables.default_tempo_index), L" 120");
    for (const std::wstring& item : items)
        EXPECT_EQ(item.front(), L' ') << item.size();
}

TEST(TimingTables, EveryListedTempoReadsBack) {
    for (const TempoRow& row : kTempoRows) {
        EXPECT_EQ(WholeNumberOf(NumberToText(row.tempo)), row.tempo);
        EXPECT_EQ(NumericValueOf(NumberToText(row.tempo)), row.tempo);
    }
}

TEST(TimingTables, EveryListedTempoIsFoundAndNoOther) {
    const TimingTables tables = BuildTimingTables();
    int found = 0;
    for (int tempo = -32768; tempo <= 32767; ++tempo) {
        const int index = TempoIndexOf(tables, static_cast<std::int16_t>(tempo));
        if (index < 0) continue;
        ++found;
        EXPECT_EQ(kTempoRows[index].tempo, tempo);
    }
    EXPECT_EQ(found, 28);
    EXPECT_EQ(TempoIndexOf(tables, 0), -1);
}

TEST(TimingTables, AListOf100TemposIsSearchedToItsEndAndNoFurther) {
    TimingTables tables;
    tables.tempo_list.fill(50);
    tables.tempo_list.back() = 40;
    EXPECT_EQ(TempoIndexOf(tables, 50), 0);
    EXPECT_EQ(TempoIndexOf(tables, 40), 99);
    EXPECT_EQ(TempoIndexOf(tables, 30), -1);
}

TEST(TempoNames, LowerBoundsAreInclusiveUpperBoundsExclusive) {
    EXPECT_EQ(TempoNameOf(50), L"Lento");
    EXPECT_EQ(TempoNameOf(49), L"Largo");
    EXPECT_EQ(TempoNameOf(40), L"Largo");
    EXPECT_EQ(TempoNameOf(57.9), L"Lento");
    EXPECT_EQ(TempoNameOf(58), L"Adagio");
    EXPECT_EQ(TempoNameOf(67), L"Andante");
    EXPECT_EQ(TempoNameOf(81), L"Moderato");
    EXPECT_EQ(TempoNameOf(102), L"Allegro");
    EXPECT_EQ(TempoNameOf(120), L"Allegro");
    EXPECT_EQ(TempoNameOf(138), L"Vivace");
    EXPECT_EQ(TempoNameOf(167), L"Presto");
    EXPECT_EQ(TempoNameOf(319), L"Presto");
    EXPECT_EQ(TempoNameOf(319.9), L"Presto");
}

TEST(TempoNames, NoNameOutside40To319) {
    EXPECT_EQ(TempoNameOf(320), L"");
    EXPECT_EQ(TempoNameOf(39), L"");
    EXPECT_EQ(TempoNameOf(39.9), L"");
    EXPECT_EQ(TempoNameOf(0), L"");
    EXPECT_EQ(TempoNameOf(-50), L"");
    EXPECT_EQ(TempoNameOf(std::numeric_limits<double>::infinity()), L"");
    EXPECT_EQ(TempoNameOf(std::numeric_limits<double>::quiet_NaN()), L"");
}

TEST(TimingTables, LengthCostOfEveryBandOfHundredths) {
    const struct {
        int from, to;
        std::int16_t cost;
    } bands[] = {{0, 19, 0}, {20, 29, 1}, {30, 39, 2}, {40, 59, 4}, {60, 69, 2}, {70, 79, 1}, {80, 99, 0}};
    for (const int whole : {0, 1, 16}) {
        for (const auto& band : bands) {
            for (int hundredths = band.from; hundredths <= band.to; ++hundredths) {
                // A quarter of a hundredth above, so that single precision does not fall below.
                const float units = static_cast<float>(whole * 400 + hundredths * 4 + 1) / 400.0F;
                EXPECT_EQ(LengthCostOf(units), band.cost) << whole << " and " << hundredths << " hundredths";
            }
        }
    }
}

TEST(TimingTables, LengthCostOfLongDurationsHasItsGapAt81) {
    const struct {
        int from, to;
        std::int16_t cost;
    } bands[] = {{17, 32, 1}, {33, 48, 2}, {49, 64, 3}, {65, 80, 4}, {81, 81, 0}, {82, 327, 5}};
    for (const auto& band : bands) {
        for (int whole = band.from; whole <= band.to; ++whole) {
            EXPECT_EQ(LengthCostOf(static_cast<float>(whole)), band.cost) << whole;
            EXPECT_EQ(LengthCostOf(static_cast<float>(whole) + 0.5F), band.cost) << whole << ".5";
        }
    }
}

} // namespace

} // namespace tonex::timing_tables_test
