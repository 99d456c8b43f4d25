#include "exchange/midi_clock.h"
#include "exchange/midi_tune.h"
#include "tests/midi_files.h"
#include "tests/tune_items.h"

#include <array>
#include <gtest/gtest.h>

namespace tonex::exchange_midi_tune_test {
namespace {

using testing::AddTrack;
using testing::Bytes;
using testing::HasRemark;
using testing::Header;
using testing::ItemsOf;
using testing::OneTrack;
using testing::Read;
using testing::RemarksOf;

Tune Melody0(const Bytes& bytes) {
    const MidiFile file = Read(bytes);
    const auto voices = VoicesOf(file);
    const int melody = MelodyOf(voices, -1, -1);
    return melody < 0 ? Tune{} : TuneOfVoice(file, At(voices, melody), 0.0, 1e9);
}

/// Notes by start, end and key, at 120 quarter notes a minute.
Tune OfNotes(int ticks_of_quarter, const std::vector<std::array<int, 3>>& notes, double to = 1e9) {
    MidiFile file;
    file.ticks_of_quarter = ticks_of_quarter;
    MidiVoice voice;
    for (const auto& [start, end, key] : notes)
        voice.notes.push_back({start, end, 0, 0, key, voice.notes.size()});
    return TuneOfVoice(file, voice, 0.0, to);
}

/// The same where ticks are parts of a second.
Tune OfSeconds(double seconds_of_tick, const std::vector<std::array<int, 3>>& notes, double from = 0.0,
               double to = 1e9) {
    MidiFile file;
    file.seconds_of_tick = seconds_of_tick;
    MidiVoice voice;
    for (const auto& [start, end, key] : notes)
        voice.notes.push_back({start, end, 0, 0, key, voice.notes.size()});
    return TuneOfVoice(file, voice, from, to);
}

TEST(MidiTune, OfAChordTheHighestAndALowerNoteUnderAHeldOneIsLeftOut) {
    const Tune chord =
        Melody0(OneTrack({0, 0x90, 60, 100, 0, 67, 100, 0, 64, 100, 96, 60, 0, 0, 67, 0, 0, 64, 0}));
    EXPECT_EQ(ItemsOf(chord), "g4 1");
    EXPECT_TRUE(HasRemark(chord.remarks, "took the highest note of a chord"));
    const Tune held = Melody0(OneTrack({0, 0x90, 72, 100, 48, 60, 100, 48, 60, 0, 96, 72, 0}));
    EXPECT_EQ(ItemsOf(held), "c5 2");
    EXPECT_TRUE(HasRemark(held.remarks, "left out a lower note under one that goes on"));
    // A chord lasts as long as its highest note: the lowest one's end frees nothing.
    EXPECT_EQ(ItemsOf(Melody0(
                  OneTrack({0, 0x90, 60, 100, 0, 67, 100, 24, 60, 0, 24, 64, 100, 48, 64, 0, 96, 67, 0}))),
              "g4 2");
    // Half of a lower note stands alone, then a little less than half.
    EXPECT_EQ(ItemsOf(Melody0(OneTrack({0, 0x90, 72, 100, 48, 60, 100, 48, 72, 0, 48, 60, 0}))),
              "c5 0.5, c4 1");
    EXPECT_EQ(ItemsOf(Melody0(OneTrack({0, 0x90, 72, 100, 48, 60, 100, 49, 72, 0, 47, 60, 0}))), "c5 1");
}

TEST(MidiTune, OnsetsAreAChordWithinAMomentAndWithinHalfOfEitherNote) {
    constexpr double tick = 1.0 / 128.0; // seconds, the 64th part of a quarter note; a moment is 3.84
    for (const int at : {0, 640}) {
        const auto items = [&](int first_end, int next, int next_end) {
            return ItemsOf(OfSeconds(tick, {{at, at + first_end, 60}, {at + next, at + next_end, 64}}));
        };
        EXPECT_EQ(items(20, 3, 20), "e4 0.3125");
        EXPECT_EQ(items(20, 4, 20), "c4 0.0625, e4 0.25");
        EXPECT_EQ(items(7, 3, 20), "e4 0.3125");
        EXPECT_EQ(items(6, 3, 20), "c4 0.04688, e4 0.2656");
        EXPECT_EQ(items(20, 3, 10), "e4 0.1562");
        EXPECT_EQ(items(20, 3, 9), "c4 0.04688, e4 0.09375");
    }
    EXPECT_EQ(ItemsOf(OfSeconds(kMidiMoment, {{0, 10, 60}, {1, 10, 64}})), "c4 0.06, e4 0.54");
}

TEST(MidiTune, ALowerNoteLiesUnderAHeldOneFromMoreThanAMomentOn) {
    const auto items = [](double tick) { return ItemsOf(OfSeconds(tick, {{0, 2, 64}, {1, 2, 60}})); };
    EXPECT_EQ(items(kMidiMoment), "e4 0.06, c4 0.06");
    EXPECT_EQ(items(0.0305), "e4 0.122");
}

TEST(MidiTune, APartHasWhatBeginsInItAndANoteThatGoesOnIsCut) {
    constexpr double tick = 1.0 / 128.0; // seconds
    const std::vector<std::array<int, 3>> three = {{0, 64, 60}, {64, 128, 62}, {128, 192, 64}};
    EXPECT_EQ(ItemsOf(OfSeconds(tick, three, 0.5, 1.0)), "d4 1");
    // A fifth of the lower note is under the other; of what the part has of it more than half.
    const std::vector<std::array<int, 3>> under = {{0, 128, 72}, {96, 256, 60}};
    EXPECT_EQ(ItemsOf(OfSeconds(tick, under)), "c5 1.5, c4 2.5");
    EXPECT_EQ(ItemsOf(OfSeconds(tick, under, 0.0, 150.0 / 128.0)), "c5 2");
}

TEST(MidiTune, ANoteThatLastsNoTimeIsLeftOut) {
    // The same key twice at once, as in files whose tracks were merged, and then one by itself.
    const Tune doubled = Melody0(OneTrack({0, 0x90, 60, 100, 0, 60, 100, 96, 60, 0, 0, 60, 0,
                                           0, 0x90, 62, 100, 0, 62, 100, 96, 62, 0, 0, 62, 0}));
    EXPECT_EQ(ItemsOf(doubled), "c4 1, d4 1");
    EXPECT_EQ(RemarksOf(doubled.remarks), "left out a note that lasts no time 2");
    EXPECT_EQ(ItemsOf(OfNotes(96, {{0, 96, 60}, {48, 48, 72}, {96, 192, 62}})), "c4 1, d4 1");
    const Tune none = OfNotes(96, {{0, 0, 60}});
    EXPECT_EQ(ItemsOf(none), "");
    EXPECT_EQ(none.tempo, 120.0);
}

TEST(MidiTune, WritesPlacesLengthsAndRests) {
    const Tune tune = OfNotes(480, {
                                       {0, 480, 60},
                                       {480, 640, 62}, // a triplet
                                       {640, 800, 64},
                                       {800, 960, 65},
                                       {960, 1040, 67},  // ends at a place of a triplet
                                       {1440, 1581, 69}, // to an onset at no place: the nearest 24th part
                                       {1581, 1680, 71},
                                       {1680, 1750, 72}, // as near to an eighth as to a sixth part
                                       {1920, 2400, 74},
                                       {2400, 2412, 76}, // nearest to its own begin
                                       {2880, 3080, 77},
                                       {3080, 3095, 79}, // nearest to the next onset
                                       {3120, 3360, 81},
                                   });
    EXPECT_TRUE(tune.on_grid);
    EXPECT_EQ(ItemsOf(tune), "c4 1, d4 0.3333, e4 0.3333, f4 0.3333, g4 0.1667, r 0.8333, a4 0.2917, "
                             "b4 0.2083, c5 0.125, r 0.375, d5 1, e5 0.04167, r 0.9583, f5 0.4167, "
                             "g5 0.04167, r 0.04167, a5 0.5");
    EXPECT_EQ(RemarksOf(tune.remarks), "");
    EXPECT_NEAR(LengthOf(tune), 3.5, 1e-9);
    for (const TuneItem& item : tune.items)
        EXPECT_EQ(item.pitch == 0, item.kind == TuneKind::Rest);
    // Where ticks are long, half of one is near a place.
    EXPECT_EQ(ItemsOf(OfNotes(10, {{0, 3, 60}, {3, 10, 62}})), "c4 0.3333, d4 0.6667");
}

TEST(MidiTune, NineOnsetsOfTenMakeAGrid) {
    const auto on_grid = [](int ticks_of_quarter, int notes, int late) {
        std::vector<std::array<int, 3>> quarters;
        for (int i = 0; i < notes; ++i)
            quarters.push_back({i * ticks_of_quarter, (i + 1) * ticks_of_quarter, 60});
        quarters.back()[0] += late;
        return OfNotes(ticks_of_quarter, quarters).on_grid;
    };
    EXPECT_TRUE(on_grid(96, 10, 4));
    EXPECT_FALSE(on_grid(96, 9, 4));
    // An eightieth part of a quarter note is near.
    EXPECT_TRUE(on_grid(80, 1, 1));
    EXPECT_TRUE(on_grid(1000, 1, 12));
    EXPECT_FALSE(on_grid(1000, 1, 13));
    // So is half a tick.
    EXPECT_TRUE(on_grid(10, 1, 1));
    EXPECT_TRUE(on_grid(1, 1, 0));
    EXPECT_FALSE(OfSeconds(0.5, {{0, 1, 60}}).on_grid);
}

TEST(MidiTune, SecondsAreWrittenAsIfAt120) {
    const Tune tune = OfSeconds(0.25, {{0, 3, 60}, {8, 10, 62}});
    EXPECT_EQ(ItemsOf(tune), "c4 1.5, r 2.5, d4 1");
    EXPECT_NEAR(LengthOf(tune), 2.5, 1e-9);
    EXPECT_EQ(tune.tempo, 120.0);
    EXPECT_FALSE(tune.bends);
}

TEST(MidiTune, AGapBelowFiveThousandthsOfASecondIsNone) {
    EXPECT_EQ(RemarksOf(OfSeconds(0.005, {{0, 1, 60}, {2, 10, 62}}).remarks), "");
    EXPECT_EQ(RemarksOf(OfNotes(96, {{0, 95, 60}, {96, 191, 62}, {192, 288, 64}}).remarks),
              "let a note last through the short gap behind it 2");
}

TEST(MidiTune, AnOnsetEndsTheNoteBefore) {
    // A legato of a tenth of a quarter note.
    EXPECT_EQ(ItemsOf(Melody0(OneTrack({0, 0x90, 60, 100, 96, 58, 100, 10, 60, 0, 86, 58, 0}))),
              "c4 1, a3# 1");
}

TEST(MidiTune, ShortGapsAreAbsorbedAndRestsAreKept) {
    // 95 of 96 ticks, then 40 of 96 that end off every place, then a quarter note of three.
    const Tune tune = Melody0(OneTrack({0,  0x90, 60,  100, 95, 60, 0,    1,    62, 100, 41, 62, 0,
                                        55, 64,   100, 96,  64, 0,  0x81, 0x40, 65, 100, 96, 65, 0}));
    EXPECT_EQ(ItemsOf(tune), "c4 1, d4 1, e4 1, r 2, f4 1");
    EXPECT_TRUE(HasRemark(tune.remarks, "let a note last through the short gap behind it"));
    EXPECT_TRUE(tune.on_grid);
}

TEST(MidiTune, ASilenceIsPlayedBelow40PartsOf100BehindAPlaceAndBelow60BehindNone) {
    const auto played = [](int sounding, int all) {
        const auto silent = static_cast<std::uint8_t>(all - sounding);
        return ItemsOf(Melody0(OneTrack(
            {0, 0x90, 60, 100, static_cast<std::uint8_t>(sounding), 60, 0, silent, 62, 100, 96, 62, 0})));
    };
    EXPECT_EQ(played(120, 192), "c4 2, d4 1");
    EXPECT_EQ(played(112, 192), "c4 1.167, r 0.8333, d4 1");
    EXPECT_EQ(played(39, 96), "c4 1, d4 1");
    EXPECT_EQ(played(38, 96), "c4 0.375, r 0.625, d4 1");
    EXPECT_EQ(ItemsOf(OfNotes(96, {{0, 36, 60}, {60, 144, 62}})), "c4 0.375, r 0.25, d4 0.875"); // just 40
    EXPECT_EQ(played(20, 50), "c4 0.2083, r 0.3125, d4 1");                                      // just 60
    // On no grid there is no place.
    EXPECT_EQ(ItemsOf(OfNotes(96, {{0, 48, 60}, {101, 150, 62}, {203, 300, 64}})),
              "c4 1.052, d4 1.062, e4 1.01");
}

TEST(MidiTune, SilenceInFrontIsLeftOutAndAPartCanBeTaken) {
    const Bytes bytes =
        OneTrack({96, 0x90, 60, 100, 96, 60, 0, 0, 62, 100, 96, 62, 0, 0, 64, 100, 96, 64, 0});
    EXPECT_EQ(ItemsOf(Melody0(bytes)), "c4 1, d4 1, e4 1");
    const MidiFile file = Read(bytes);
    const auto voices = VoicesOf(file);
    EXPECT_EQ(ItemsOf(TuneOfVoice(file, voices[0], 0.9, 1.75)), "d4 1, e4 0.5");
}

TEST(MidiTune, TheLastNoteIsAsLongAsTheOthersGapsLetExpect) {
    const auto played = [](std::uint8_t sounding, std::uint8_t last) {
        Bytes events;
        for (int i = 0; i < 4; ++i) {
            const auto silent = static_cast<std::uint8_t>(96 - sounding);
            events.insert(events.end(), {0, 0x90, 60, 100, sounding, 60, 0, silent, 0xB0, 7, 100});
        }
        events.insert(events.end(), {0, 0x90, 62, 100, last, 62, 0});
        const Tune tune = Melody0(OneTrack(events));
        EXPECT_NEAR(tune.items.back().seconds, tune.items.back().quarters * 0.5, 1e-9);
        return tune.items.back().quarters;
    };
    EXPECT_DOUBLE_EQ(played(86, 86), 1.0); // nine tenths of each sound
    EXPECT_DOUBLE_EQ(played(72, 72), 1.0);
    EXPECT_DOUBLE_EQ(played(96, 72), 0.75);
    EXPECT_DOUBLE_EQ(played(95, 95), 1.0);
    EXPECT_DOUBLE_EQ(played(72, 96), 1.0); // held where the others were not
    EXPECT_DOUBLE_EQ(played(96, 102), 1.0);
    EXPECT_NEAR(played(86, 29), 1.0 / 3.0, 1e-9);
}

/// What the last of some notes is written as.
std::string LastOf(int ticks_of_quarter, const std::vector<std::array<int, 3>>& notes, double to = 1e9) {
    Tune tune = OfNotes(ticks_of_quarter, notes, to);
    tune.items.erase(tune.items.begin(), tune.items.end() - 1);
    return ItemsOf(tune);
}

TEST(MidiTune, TheLastNoteEndsAtAQuarterOrAThirdOfAQuarterNoteIfOneIsNear) {
    for (const auto& [ticks, length] : {std::pair{16, "c4 0.1667"}, // 0.25 is 0.09 away
                                        {17, "c4 0.25"},
                                        {60, "c4 0.6667"}, // not 0.625, which is nearer
                                        {65, "c4 0.6667"},
                                        {74, "c4 0.75"},
                                        {425, "c4 4.25"}})
        EXPECT_EQ(LastOf(100, {{0, ticks, 60}}), length);
}

TEST(MidiTune, TheLastNoteEndsAtOnceAtHalfAQuarterNote) {
    // Three quarters of each sound; the eightieth part of a quarter note beside the place is near.
    EXPECT_EQ(LastOf(1000, {{0, 750, 60}, {1000, 1750, 60}, {2000, 2512, 62}}), "d4 0.5");
    EXPECT_EQ(LastOf(1000, {{0, 750, 60}, {1000, 1750, 60}, {2000, 2513, 62}}), "d4 0.6667");
    // So is half a tick, which a part's end can come to.
    EXPECT_EQ(LastOf(10, {{0, 7, 60}, {10, 17, 60}, {20, 30, 62}}, 25.45 * 0.05), "d4 0.5");
    EXPECT_EQ(LastOf(10, {{0, 7, 60}, {10, 17, 60}, {20, 30, 62}}, 25.53 * 0.05), "d4 0.75");
    EXPECT_EQ(LastOf(2, {{0, 2, 60}}, 0.125), "c4 0.5");
}

TEST(MidiTune, AsManyNotesSoundLongerThanUsualAsShorter) {
    EXPECT_EQ(LastOf(100, {{0, 70, 60}, {100, 190, 60}, {200, 280, 60}, {300, 360, 62}}), "d4 0.75");
    EXPECT_EQ(LastOf(100, {{0, 70, 60}, {100, 190, 60}, {200, 260, 62}}), "d4 0.6667");
    // A note sounds to the next onset at most.
    EXPECT_EQ(LastOf(100, {{0, 110, 60}, {100, 210, 62}, {200, 275, 64}}), "e4 0.75");
    // Notes in front of a rest tell nothing: half a quarter note ends at a place, 0.55 at none.
    EXPECT_EQ(LastOf(100, {{0, 50, 60}, {100, 145, 62}}), "d4 0.5");
    EXPECT_EQ(LastOf(100, {{0, 55, 60}, {100, 145, 62}}), "d4 0.75");
}

TEST(MidiTune, ALastNoteTooShortForAnyPlaceKeepsItsTime) {
    const Tune tune = Melody0(OneTrack({0, 0x90, 60, 100, 96, 60, 0, 0, 62, 100, 1, 62, 0}));
    ASSERT_EQ(tune.items.size(), 2u);
    EXPECT_NEAR(tune.items[1].seconds, 0.5 / 96.0, 1e-9);
    // From the 40th tick to the place at the 48th there is room.
    EXPECT_NEAR(OfNotes(96, {{0, 40, 60}, {40, 47, 62}}).items[1].seconds, 0.5 * 8.0 / 96.0, 1e-9);
}

TEST(MidiTune, SecondsAreThoseOfTheFileAndNotOfThePlacesWhereNotesAreWritten) {
    // The second note comes a hundredth of a quarter note late: near enough to be on the grid.
    Bytes bytes = Header(0, 1, 100);
    AddTrack(bytes, {0, 0x90, 60, 100, 101, 60, 0, 0, 62, 100, 99, 62, 0, 0, 64, 100, 100, 64, 0});
    const Tune tune = Melody0(bytes);
    EXPECT_EQ(ItemsOf(tune), "c4 1, d4 1, e4 1");
    EXPECT_NEAR(tune.items[0].seconds, 0.505, 1e-9);
    EXPECT_NEAR(tune.items[1].seconds, 0.495, 1e-9);
    EXPECT_EQ(tune.tempo, 120.0);
    EXPECT_FALSE(tune.bends);
}

TEST(MidiTune, TellsWhereItBegins) {
    const Bytes bytes = OneTrack({96, 0x90, 60, 100, 96, 60, 0, 0, 62, 100, 96, 62, 0});
    EXPECT_DOUBLE_EQ(Melody0(bytes).start, 0.5);
    const MidiFile file = Read(bytes);
    EXPECT_DOUBLE_EQ(TuneOfVoice(file, VoicesOf(file).front(), 0.75, 9.0).start, 1.0);
}

TEST(MidiTune, ATempoOfAMillionthOfASecondIsNoFault) {
    const Tune tune = Melody0(OneTrack({0, 0xFF, 0x51, 3, 0, 0, 1, 0, 0x90, 60, 100, 96, 60, 0}));
    EXPECT_NEAR(tune.tempo, 6e7, 1.0);
    EXPECT_FALSE(tune.bends);
}

TEST(MidiTune, OnsetsOffThePlacesOfAScoreAreOnNoGrid) {
    Bytes events;
    for (int i = 0; i < 20; ++i) {
        const auto length = static_cast<std::uint8_t>(90 + 7 * (i % 4));
        events.insert(events.end(), {0, 0x90, 60, 100, length, 60, 0});
    }
    EXPECT_FALSE(Melody0(OneTrack(events)).on_grid);
}

TEST(MidiTune, OnNoGridANoteInFrontOfARestEndsWhereItDoes) {
    Bytes events;
    for (int i = 0; i < 20; ++i) {
        const auto silent = static_cast<std::uint8_t>(70 + 7 * (i % 4));
        events.insert(events.end(), {0, 0x90, 60, 100, 20, 60, 0, silent, 0xB0, 7, 100});
    }
    const Tune tune = Melody0(OneTrack(events));
    EXPECT_FALSE(tune.on_grid);
    EXPECT_NEAR(tune.items[0].quarters, 20.0 / 96.0, 1e-9);
    EXPECT_NEAR(tune.items[1].quarters, 70.0 / 96.0, 1e-9);
    EXPECT_NEAR(tune.items.back().quarters, 20.0 / 96.0, 1e-9);
}

TEST(MidiTune, ChangingTemposAreTold) {
    const Tune tune = Melody0(OneTrack({0,    0x90, 60, 100,  96,   60,   0, 0,    62, 100, 96, 62, 0, 0,
                                        0xFF, 0x51, 3,  0x0F, 0x42, 0x40, 0, 0x90, 64, 100, 96, 64, 0}));
    EXPECT_TRUE(tune.bends);
    EXPECT_TRUE(HasRemark(tune.remarks, "the tempo changes between 60 and 120"));
    EXPECT_NEAR(LengthOf(tune), 2.0, 1e-9);
    EXPECT_EQ(tune.tempo, 60.0); // either lasts for a second: the slower one counts
}

TEST(MidiTune, TheTempoIsTheOneThatLastsLongestInAll) {
    // A second at 60, one and a half at 120, another at 60, and what is before and behind is not heard.
    MidiFile file;
    file.ticks_of_quarter = 100;
    file.tempos = {{0, 0, 300000}, {100, 0, 1000000}, {200, 0, 500000}, {500, 0, 1000000}, {600, 0, 250000}};
    MidiVoice voice;
    voice.name = "Lead";
    voice.notes = {{100, 500, 0, 0, 60, 0}, {500, 600, 0, 0, 62, 1}};
    const Tune tune = TuneOfVoice(file, voice, 0.0, 1e9);
    EXPECT_EQ(tune.tempo, 60.0);
    EXPECT_TRUE(tune.bends);
    EXPECT_EQ(RemarksOf(tune.remarks), "the tempo changes between 60 and 120 1");
    EXPECT_EQ(tune.name, "Lead");
    EXPECT_DOUBLE_EQ(tune.start, 0.3);
    // It is told to the thousandth part of a quarter note a minute.
    file.tempos = {{0, 0, 300000}, {100, 0, 662983}, {600, 0, 250000}};
    const Tune even = TuneOfVoice(file, voice, 0.0, 1e9);
    EXPECT_DOUBLE_EQ(even.tempo, 90.5);
    EXPECT_FALSE(even.bends);
    EXPECT_EQ(RemarksOf(even.remarks), "");
}

TEST(MidiTune, ANoteThatIsCutWhileTheTempoChangesLastsUpToThere) {
    // A tick lasts 5 ms, from the 96th on twice as long. The note begins at no place of a score.
    MidiFile file;
    file.ticks_of_quarter = 100;
    file.tempos = {{96, 0, 1000000}};
    MidiVoice voice;
    voice.notes = {{5, 200, 0, 0, 60, 0}};
    const Tune tune = TuneOfVoice(file, voice, 0.0, 0.68);
    EXPECT_NEAR(tune.items[0].seconds, 0.68 - 0.025, 1e-9);
    EXPECT_NEAR(tune.items[0].quarters, 1.16 - 0.05, 1e-9);
    // However little of another tempo is heard, it is told.
    EXPECT_TRUE(TuneOfVoice(file, voice, 0.0, 0.4805).bends);
    EXPECT_FALSE(TuneOfVoice(file, voice, 0.0, 0.48).bends);
}

TEST(MidiTune, TemposWithinAHundredthOfEachOtherAreOne) {
    for (const auto& [microseconds, bends] : {std::pair{495000, true},
                                              {495050, false},
                                              {495100, false},
                                              {505000, false},
                                              {505051, false},
                                              {506000, true}}) {
        const auto byte = [&, all = microseconds](int shift) {
            return static_cast<std::uint8_t>(all >> shift);
        };
        const Tune tune = Melody0(OneTrack({0,        0x90,    60,      100, 96,   60, 0,   0,  0xFF, 0x51, 3,
                                            byte(16), byte(8), byte(0), 0,   0x90, 64, 100, 48, 64,   0}));
        EXPECT_EQ(tune.tempo, 120.0);
        EXPECT_EQ(tune.bends, bends) << microseconds;
    }
}

} // namespace
} // namespace tonex::exchange_midi_tune_test
