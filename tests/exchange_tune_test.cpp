#include "exchange/tune.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>

namespace tonex::exchange_tune_test {
namespace {

constexpr TuneKind kNote = TuneKind::Note;
constexpr TuneKind kRest = TuneKind::Rest;
constexpr TuneKind kSeparator = TuneKind::Separator;

Tune TuneFrom(std::vector<TuneItem> items) {
    Tune tune;
    tune.items = std::move(items);
    return tune;
}

TEST(Tune, AnIntervalIsANoteWithWhatFollowsItOrWhatStandsInFrontOfTheFirst) {
    const std::vector<Interval> intervals = IntervalsOf(TuneFrom({{kSeparator},
                                                                  {kRest, 0, 1.0, 0.5},
                                                                  {kNote, 30, 2.0, 1.0},
                                                                  {kRest, 0, 0.5, 0.25},
                                                                  {kSeparator},
                                                                  {kNote, 31, 4.0, 2.0}}));
    ASSERT_EQ(intervals.size(), 3u);
    const auto is = [](const Interval& interval, const Interval& wanted) {
        EXPECT_EQ(interval.first_item, wanted.first_item);
        EXPECT_EQ(interval.items, wanted.items);
        EXPECT_EQ(interval.pitch, wanted.pitch);
        EXPECT_EQ(interval.seconds, wanted.seconds);
        EXPECT_EQ(interval.sounding, wanted.sounding);
    };
    is(intervals[0], {0, 2, 0, 0.5, 0.0});
    is(intervals[1], {2, 3, 30, 1.25, 1.0});
    is(intervals[2], {5, 1, 31, 2.0, 2.0});
    EXPECT_TRUE(IntervalsOf({}).empty());
}

TEST(Tune, OnlyNotesCountHaveARangeAndAreMoved) {
    Tune tune = TuneFrom({{kRest, 0, 1.0, 0.5},
                          {kNote, 40, 1.0, 0.5},
                          {kSeparator},
                          {kNote, 27, 1.0, 0.5},
                          {kNote, 35, 1.0, 0.5},
                          {kNote, 50, 1.0, 0.5},
                          {kNote, 49, 1.0, 0.5}});
    EXPECT_EQ(CountNotes(tune), 5);
    EXPECT_EQ(LengthOf(tune), 3.0);
    EXPECT_EQ(RangeOf(tune), (std::pair{27, 50}));
    TransposeTune(tune, -60);
    EXPECT_EQ(RangeOf(tune), (std::pair{-33, -10}));
    EXPECT_EQ(tune.items[0].pitch, 0);
    EXPECT_EQ(tune.items[2].pitch, 0);
    const Tune silent = TuneFrom({{kRest, 5, 1.0, 0.5}});
    EXPECT_EQ(CountNotes(silent), 0);
    EXPECT_EQ(RangeOf(silent), (std::pair{0, 0}));
}

TEST(Tune, MovesToThePianoFromAnyDistance) {
    struct Case {
        int lowest, highest;
        int octaves_first, fewest;
    };
    for (const Case& wanted : std::initializer_list<Case>{{27, 75, 0, 0},
                                                          {26, 74, 1, 1},
                                                          {28, 76, -1, -1},
                                                          {26, 63, 12, 1},
                                                          {26, 64, 1, 1},
                                                          {39, 76, -12, -1},
                                                          {38, 76, -1, -1},
                                                          {15, 16, 12, 12},
                                                          {14, 16, 24, 13},
                                                          {86, 87, -12, -12},
                                                          {86, 88, -24, -13},
                                                          {-160, -160, 192, 187},
                                                          {206, 206, -132, -131}}) {
        int shift = 99;
        EXPECT_TRUE(HalfTonesToPiano({wanted.lowest, wanted.highest}, true, shift));
        EXPECT_EQ(shift, wanted.octaves_first) << wanted.lowest;
        EXPECT_TRUE(HalfTonesToPiano({wanted.lowest, wanted.highest}, false, shift));
        EXPECT_EQ(shift, wanted.fewest) << wanted.lowest;
    }
    for (const auto& range : {std::pair{27, 76}, {26, 75}, {0, 49}, {100, 149}}) {
        int shift = 99;
        EXPECT_FALSE(HalfTonesToPiano(range, true, shift));
        EXPECT_EQ(shift, 99);
    }
}

/// "n 40 0.5 1" an item: kind, pitch, quarter notes and seconds.
std::string TextOf(const Tune& tune) {
    std::string text;
    for (const TuneItem& item : tune.items) {
        char line[64];
        std::snprintf(line, sizeof line, "%c %d %.4g %.4g; ",
                      item.kind == kNote   ? 'n'
                      : item.kind == kRest ? 'r'
                                           : '|',
                      item.pitch, item.quarters, item.seconds);
        text += line;
    }
    return text;
}

/// What is kept of a note, a rest and two notes with separators between them, and where it begins.
std::string PartOf(double from, double to) {
    Tune tune = TuneFrom({{kNote, 40, 2.0, 1.0},
                          {kSeparator, 40},
                          {kRest, 0, 4.0, 2.0},
                          {kNote, 41, 2.0, 1.0},
                          {kSeparator, 41},
                          {kNote, 42, 1.0, 0.5}});
    tune.start = 9.0;
    KeepPart(tune, from, to);
    return TextOf(tune) + "at " + std::to_string(tune.start).substr(0, 4);
}

TEST(Tune, APartHasWhatStartsInItAndWhatIsLeftOfARest) {
    EXPECT_EQ(PartOf(0.0, 4.5), "n 40 2 1; | 40 0 0; r 0 4 2; n 41 2 1; | 41 0 0; n 42 1 0.5; at 0.00");
    EXPECT_EQ(PartOf(0.5, 9.0), "| 40 0 0; r 0 4 2; n 41 2 1; | 41 0 0; n 42 1 0.5; at 1.00");
    EXPECT_EQ(PartOf(1.0, 4.0), "| 40 0 0; r 0 4 2; n 41 2 1; at 1.00");
    EXPECT_EQ(PartOf(1.5, 3.5), "r 0 3 1.5; n 41 1 0.5; at 1.50");
    EXPECT_EQ(PartOf(1.5, 2.0), "r 0 1 0.5; at 1.50");
    EXPECT_EQ(PartOf(0.0, 1.0), "n 40 2 1; at 0.00");
    EXPECT_EQ(PartOf(3.5, 4.25), "| 41 0 0; n 42 0.5 0.25; at 4.00");
    EXPECT_EQ(PartOf(5.0, 6.0), "at 9.00");
    Tune quick = TuneFrom({{kNote, 40, 0.25, 0.0625}});
    KeepPart(quick, 0.0, 0.03125);
    EXPECT_EQ(TextOf(quick), "n 40 0.125 0.03125; ");
    // Less than a nanosecond is rounding.
    EXPECT_EQ(PartOf(3.0 + 5e-10, 4.0), "n 41 2 1; at 3.00");
    EXPECT_EQ(PartOf(3.0 + 5e-9, 4.0), "at 9.00");
    EXPECT_EQ(PartOf(0.0, 1.0 + 5e-10), "n 40 2 1; | 40 0 0; at 0.00");
    EXPECT_EQ(PartOf(1.5, 3.0 + 5e-9), "r 0 3 1.5; n 41 1e-08 5e-09; at 1.50");
}

TEST(Tune, SpeedChangesTempoAndSecondsOfAll) {
    Tune tune = TuneFrom({{kRest, 0, 1.0, 0.5}, {kNote, 40, 2.0, 1.0}});
    SpeedUp(tune, 4.0);
    EXPECT_EQ(tune.tempo, 480.0);
    EXPECT_EQ(TextOf(tune), "r 0 1 0.125; n 40 2 0.25; ");
}

TEST(Tune, ARemarkThatIsThereIsCounted) {
    Remarks remarks;
    Remark(remarks, "one");
    Remark(remarks, "two");
    Remark(remarks, "one");
    Remark(remarks, "one");
    EXPECT_EQ(remarks, (Remarks{{"one", 3}, {"two", 1}}));
}

} // namespace
} // namespace tonex::exchange_tune_test
