#include "exchange/midi_clock.h"
#include "exchange/midi_voices.h"
#include "score/rows.h"
#include "tests/midi_files.h"

#include <array>
#include <gtest/gtest.h>
#include <utility>

namespace tonex::exchange_midi_voices_test {
namespace {

using testing::AddTrack;
using testing::Bytes;
using testing::Header;
using testing::OneTrack;
using testing::Read;

/// Every channel of a track strikes a key.
Bytes StrokesOfAllChannels() {
    Bytes events;
    for (int channel = 0; channel < 16; ++channel) {
        const auto on = static_cast<std::uint8_t>(0x90 | channel);
        events.insert(events.end(), {0, on, 60, 100, 10, 60, 0});
    }
    return events;
}

/// An event, time in front, so many times.
Bytes ManyTimes(const Bytes& event, int times) {
    Bytes events;
    for (int i = 0; i < times; ++i)
        events.insert(events.end(), event.begin(), event.end());
    return events;
}

TEST(MidiVoices, ThousandsOfThemAndAHundredThousandTemposOrTextsOrProgramsTakeNoTime) {
    // To go through all of one for each of the other would last for minutes.
    constexpr int many = 200000;
    for (const Bytes& events : {ManyTimes({1, 0xFF, 0x51, 3, 7, 0xA1, 0x20}, many),
                                ManyTimes({0, 0xFF, 1, 1, 'x'}, many), ManyTimes({0, 0xC0, 5}, many)}) {
        Bytes bytes = Header(1, 901, 96);
        AddTrack(bytes, events);
        for (int i = 0; i < 900; ++i)
            AddTrack(bytes, StrokesOfAllChannels());
        const MidiFile file = Read(bytes);
        EXPECT_EQ(VoicesOf(file).size(), 900u * 16u);
    }
}

TEST(MidiClock, IsAt120UntilTheFirstTempoAndFollowsAllTracks) {
    Bytes bytes = Header(1, 2, 96);
    AddTrack(bytes, {96, 0xFF, 0x51, 3, 0x0F, 0x42, 0x40}); // one second from the second quarter note on
    AddTrack(bytes, {0, 0x90, 60, 100, 96, 60, 0});
    const MidiClock clock = ClockOf(Read(bytes), 1);
    EXPECT_DOUBLE_EQ(SecondsAt(clock, 96), 0.5);
    EXPECT_DOUBLE_EQ(SecondsAt(clock, 192), 1.5);
    Bytes own = bytes;
    own[9] = 2; // format 2: a track's own tempos only
    EXPECT_DOUBLE_EQ(SecondsAt(ClockOf(Read(own), 1), 192), 1.0);
    Bytes both = Header(2, 2, 96);
    AddTrack(both, {0, 0xFF, 0x51, 3, 0x03, 0xD0, 0x90});
    AddTrack(both, {96, 0xFF, 0x51, 3, 0x0F, 0x42, 0x40});
    EXPECT_DOUBLE_EQ(SecondsAt(ClockOf(Read(both), 0), 192), 0.5);
    EXPECT_DOUBLE_EQ(SecondsAt(ClockOf(Read(both), 1), 192), 1.5);
}

TEST(MidiClock, TakesTheTemposOfAllTracksByTheirTime) {
    Bytes bytes = Header(1, 2, 96);
    AddTrack(bytes,
             {0x81, 0x40, 0xFF, 0x51, 3, 0x0F, 0x42, 0x40}); // one second from the third quarter note on
    AddTrack(bytes, {96, 0xFF, 0x51, 3, 0x03, 0xD0, 0x90});  // a quarter of one from the second
    const MidiClock clock = ClockOf(Read(bytes), 0);
    EXPECT_DOUBLE_EQ(SecondsAt(clock, 192), 0.75);
    EXPECT_DOUBLE_EQ(SecondsAt(clock, 288), 1.75);
}

TEST(MidiClock, TellsTheTickOfASecond) {
    MidiFile file;
    file.ticks_of_quarter = 100;
    file.tempos = {{0, 0, 250000}, {100, 0, 1000000}, {200, 0, 1000000}, {200, 0, 500000}};
    const MidiClock clock = ClockOf(file, 0);
    for (const auto& [tick, seconds] :
         {std::pair{0.0, 0.0}, {50.0, 0.125}, {100.0, 0.25}, {110.0, 0.35}, {200.0, 1.25}, {300.0, 1.75}}) {
        EXPECT_NEAR(TickAt(clock, seconds), tick, 1e-9);
        EXPECT_NEAR(SecondsAt(clock, tick), seconds, 1e-9);
    }
}

TEST(MidiClock, TemposCountUnlessTicksArePartsOfASecond) {
    MidiFile file;
    file.tempos.push_back({0, 0, 1000000});
    file.ticks_of_quarter = 1;
    EXPECT_DOUBLE_EQ(SecondsAt(ClockOf(file, 0), 3.0), 3.0);
    file.ticks_of_quarter = 0;
    file.seconds_of_tick = 0.01;
    EXPECT_DOUBLE_EQ(SecondsAt(ClockOf(file, 0), 3.0), 0.03);
}

TEST(MidiVoices, FormatZeroIsSplitByChannelAndDrumsAreLeftOut) {
    const MidiFile file = Read(OneTrack({0,  0x91, 40, 100, 0, 0x90, 72, 100, 0, 0x99, 80, 100,
                                         96, 0x90, 72, 0,   0, 0x91, 40, 0,   0, 0x99, 80, 0}));
    const auto voices = VoicesOf(file);
    ASSERT_EQ(voices.size(), 3u);
    EXPECT_TRUE(voices[2].drums);
    EXPECT_EQ(voices[2].points, 0.0);
    EXPECT_EQ(MelodyOf(voices, -1, -1), 0);
    EXPECT_EQ(MelodyOf(voices, -1, 1), 1);
    EXPECT_EQ(MelodyOf(voices, -1, kMidiDrums), -1);
    EXPECT_EQ(MelodyOf(voices, 1, -1), -1);
    MidiFile no_drums = file;
    std::erase_if(no_drums.notes, [](const MidiNote& note) { return note.channel == kMidiDrums; });
    const auto alone = VoicesOf(no_drums);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(At(voices, i).points, At(alone, i).points) << "drums hide no voice";
}

/// The only voice of notes by start, end and key.
MidiVoice VoiceOf(double seconds_of_tick, const std::vector<std::array<int, 3>>& notes) {
    MidiFile file;
    file.seconds_of_tick = seconds_of_tick;
    for (const auto& [start, end, key] : notes)
        file.notes.push_back({start, end, 0, 0, key, file.notes.size()});
    return VoicesOf(file).front();
}

TEST(MidiVoices, OverlapIsWhatLastsLongerThanAMoment) {
    EXPECT_EQ(VoiceOf(kMidiMoment, {{0, 1, 60}, {0, 1, 64}}).overlapping, 0);
    EXPECT_EQ(VoiceOf(kMidiMoment, {{0, 2, 60}, {1, 3, 64}}).overlapping, 0);
    EXPECT_EQ(VoiceOf(kMidiMoment, {{0, 3, 60}, {1, 3, 64}}).overlapping, 1);
    // Both lie in the first.
    const MidiVoice held = VoiceOf(1.0, {{5, 15, 64}, {7, 8, 60}, {10, 11, 72}});
    EXPECT_EQ(held.overlapping, 2);
    EXPECT_EQ(held.seconds, 10.0);
    EXPECT_EQ(held.lowest, 27);
    EXPECT_EQ(held.highest, 39);
}

TEST(MidiVoices, MotionGoesFromOnsetToOnsetByTheHighestNotes) {
    const auto motion = [](double seconds_of_tick, const std::vector<std::array<int, 3>>& notes) {
        const MidiVoice voice = VoiceOf(seconds_of_tick, notes);
        return std::array{voice.steps, voice.mean_interval, voice.usual_gap};
    };
    using Three = std::array<double, 3>;
    EXPECT_EQ(motion(1.0, {{0, 1, 60}}), (Three{0.0, 0.0, 0.0}));
    EXPECT_EQ(motion(1.0, {{0, 1, 60}, {1, 2, 62}}), (Three{1.0, 2.0, 1.0}));
    EXPECT_EQ(motion(1.0, {{0, 1, 60}, {3, 4, 61}, {4, 5, 65}, {6, 7, 65}}),
              (Three{2.0 / 3.0, 5.0 / 3.0, 2.0}));
    EXPECT_EQ(motion(1.0, {{0, 1, 60}, {2, 3, 65}, {3, 4, 60}}), (Three{0.0, 5.0, 2.0}));
    // A chord is one onset from its first note on, up to a moment.
    EXPECT_EQ(motion(0.02, {{0, 50, 64}, {1, 50, 60}, {50, 60, 67}}), (Three{1.0, 3.0, 1.0}));
    EXPECT_EQ(motion(0.02, {{0, 50, 60}, {1, 50, 64}, {50, 60, 67}}), (Three{1.0, 3.0, 1.0}));
    EXPECT_EQ(motion(0.02, {{100, 150, 60}, {101, 150, 64}, {150, 160, 67}}), (Three{1.0, 3.0, 1.0}));
    EXPECT_EQ(motion(kMidiMoment, {{0, 9, 60}, {1, 9, 72}}), (Three{0.0, 12.0, kMidiMoment}));
}

TEST(MidiVoices, PointsAreForWhatLiesHighestSoundsAndMovesAndLabelsAreTheFirst) {
    MidiFile file;
    file.format = 1;
    file.ticks_of_quarter = 96;
    // Eight notes at MIDI's upper end for half a second each, one of no length and drums beside them; eight
    // at the lower end, the first in the middle of those, each half as long again as the way to the next.
    for (int i = 0; i < 8; ++i) {
        const int start = 96 * i;
        if (i == 4) file.notes.push_back({start, start, 0, 0, 127, 0});
        file.notes.push_back({start, start + 96, 0, 0, 127 - i % 2, 0});
        file.notes.push_back({start, start + 2000, 0, kMidiDrums, 127, 0});
    }
    for (int i = 0; i < 8; ++i)
        file.notes.push_back({384 + 96 * i, 384 + 96 * i + 144, 1, 0, i % 2, 0});
    file.texts = {{0, 0, kMidiText, "Lead", 0},
                  {0, 0, kMidiTrackName, "", 0},
                  {0, 0, kMidiTrackName, "Flute", 0},
                  {0, 0, kMidiTrackName, "Bass", 0}};
    file.programs = {{1, 0, 5}, {1, 0, 33}, {0, 1, 33}};
    const auto voices = VoicesOf(file);
    ASSERT_EQ(voices.size(), 3u);
    const MidiVoice& high = voices[0];
    const MidiVoice& low = voices[2];
    EXPECT_EQ(high.name, "Flute");
    EXPECT_EQ(high.program, -1);
    EXPECT_EQ(low.name, "");
    EXPECT_EQ(low.program, 5);
    EXPECT_EQ(low.track, 1);
    EXPECT_EQ(low.channel, 0);
    EXPECT_EQ(low.overlapping, 7);
    // Of 1,200 ticks the high one sounds for 768 and is always highest, the low one for 816 and 432 alone.
    EXPECT_NEAR(high.points, 20.0 * 0.64 + 25.0 + 20.0 * 0.64 + 15.0 * 2.0 / 12.0 + 20.0, 1e-9);
    EXPECT_NEAR(low.points, 20.0 * 0.36 + 25.0 / 8.0 + 20.0 * 0.68 + 15.0 * 2.0 / 12.0 + 20.0, 1e-9);
    EXPECT_EQ(voices[1].points, 0.0);
    EXPECT_EQ(MelodyOf(voices, -1, -1), 0);
    EXPECT_EQ(MelodyOf(voices, 1, -1), 2);
    EXPECT_EQ(MelodyOf(voices, 1, 0), 2);
    auto turned = voices;
    std::swap(turned[0], turned[2]);
    turned[0].points = 100.0;
    EXPECT_EQ(MelodyOf(turned, 0, -1), 2);
    turned[0].points = 1.0;
    EXPECT_EQ(MelodyOf(turned, 1, -1), 0);
    turned[2].channel = 1;
    EXPECT_EQ(MelodyOf(turned, -1, 0), 0);
}

TEST(MidiVoices, WhereNothingSoundsThereAreNoPoints) {
    EXPECT_EQ(VoiceOf(1.0, {{3, 3, 60}}).points, 0.0);
}

TEST(MidiVoices, InFormatTwoATrackGoesByItsOwnTempos) {
    Bytes bytes = Header(2, 2, 96);
    AddTrack(bytes, {0, 0xFF, 0x51, 3, 0x0F, 0x42, 0x40, 0, 0x90, 60, 100, 96, 60, 0});
    AddTrack(bytes, {0, 0x90, 60, 100, 96, 60, 0});
    const auto voices = VoicesOf(Read(bytes));
    ASSERT_EQ(voices.size(), 2u);
    EXPECT_DOUBLE_EQ(voices[0].seconds, 1.0);
    EXPECT_DOUBLE_EQ(voices[1].seconds, 0.5);
}

TEST(MidiVoices, ANameMakesAMelody) {
    Bytes bytes = Header(1, 2, 96);
    Bytes high, low = {0, 0xFF, 3, 4, 'L', 'e', 'a', 'd'};
    for (int i = 0; i < 10; ++i) {
        high.insert(high.end(), {0, 0x90, static_cast<std::uint8_t>(80 + i), 100, 96,
                                 static_cast<std::uint8_t>(80 + i), 0});
        low.insert(low.end(), {0, 0x91, static_cast<std::uint8_t>(60 + i), 100, 96,
                               static_cast<std::uint8_t>(60 + i), 0});
    }
    AddTrack(bytes, high);
    AddTrack(bytes, low);
    auto voices = VoicesOf(Read(bytes));
    ASSERT_EQ(voices.size(), 2u);
    EXPECT_EQ(voices[1].name, "Lead");
    // Both go by steps, alone in their voice and all the time; the upper one is on top, the lower one has the
    // name.
    EXPECT_NEAR(voices[0].points, 20.0 + 25.0 + 20.0 + 15.0 * 10.0 / 12.0 + 20.0, 1e-6);
    EXPECT_NEAR(voices[1].points, 25.0 + 20.0 + 15.0 * 10.0 / 12.0 + 20.0 + 30.0, 1e-6);
}

/// The points of one voice of ten notes, some half tones up and down in turns, a name in front.
double PointsOfName(std::string_view name, int interval = 2, std::uint8_t ticks = 48) {
    Bytes events = {0, 0xFF, 3, static_cast<std::uint8_t>(name.size())};
    events.insert(events.end(), name.begin(), name.end());
    for (int i = 0; i < 10; ++i) {
        const auto key = static_cast<std::uint8_t>(60 + i % 2 * interval);
        events.insert(events.end(), {0, 0x90, key, 100, ticks, key, 0});
    }
    return VoicesOf(Read(OneTrack(events))).front().points;
}

TEST(MidiVoices, NamesAreReadByWholeWords) {
    const double plain = PointsOfName("x");
    for (const char* name :
         {"Lead 1", "LeadVocals", "main melody", "Melodie", "Singstimme", "SOLO", "voice-2", "Vocals",
          "Sing along", "Singers", "Gesangsstimme", "Canto", "Tune", "Theme"})
        EXPECT_NEAR(PointsOfName(name), plain + 30.0, 1e-6) << name;
    for (const char* name :
         {"Bass", "Bassline", "Contrabass", "E-Bass (finger)", "Drums", "percussion", "Accompaniment",
          "a chord", "Piano chords", "Rhythm", "Harmony", "backing 2", "Pad", "Pads"})
        EXPECT_NEAR(PointsOfName(name), plain - 30.0, 1e-6) << name;
    for (const char* name : {"Paddy Whack", "Harpsichord", "Bassoon", "Fortune", "Single coil", "Resolution",
                             "Jazzsolo", "Voicing", "Bass solo"})
        EXPECT_NEAR(PointsOfName(name), plain, 1e-6) << name;
}

TEST(MidiVoices, FewerThanEightNotesHaveHalfThePoints) {
    const auto points = [](int notes) {
        Bytes events;
        for (int i = 0; i < notes; ++i) {
            const auto key = static_cast<std::uint8_t>(60 + i % 2 * 2);
            events.insert(events.end(), {0, 0x90, key, 100, 48, key, 0});
        }
        return VoicesOf(Read(OneTrack(events))).front().points;
    };
    EXPECT_NEAR(points(8), 2.0 * points(7), 1e-9);
    EXPECT_NEAR(points(9), points(8), 1e-9);
}

TEST(MidiVoices, ABassByItsFirstProgramLosesPoints) {
    const auto points = [](std::uint8_t program) {
        Bytes events = {0, 0xC0, program, 0, 0xC0, 33, 0, 0xB0, 7, 33};
        for (int i = 0; i < 10; ++i)
            events.insert(events.end(), {0, 0x90, 60, 100, 48, 60, 0});
        return VoicesOf(Read(OneTrack(events))).front().points;
    };
    for (const auto& [program, less] : {std::pair{31, 0.0}, {32, 30.0}, {39, 30.0}, {40, 0.0}})
        EXPECT_NEAR(points(static_cast<std::uint8_t>(program)), points(0) - less, 1e-6) << program;
}

TEST(MidiVoices, StepsGivePointsAndLeapsAndHeldNotesTakeThem) {
    const double steps = PointsOfName("x");
    EXPECT_NEAR(PointsOfName("x", 0), steps - 20.0 - 15.0 / 12.0,
                1e-6); // one note again and again, one pitch less
    EXPECT_NEAR(PointsOfName("x", 4), steps, 1e-6);
    EXPECT_NEAR(PointsOfName("x", 5), steps - 20.0 - 20.0 / 3.0, 1e-6);
    EXPECT_NEAR(PointsOfName("x", 12), steps - 20.0 - 20.0, 1e-6);
    EXPECT_NEAR(PointsOfName("x", 2, 96), steps, 1e-6);
    Bytes events = {0,    0xFF, 0x51, 3,
                    0x13, 0x12, 0xD0}; // 1.25 s a quarter note, a quarter of a second too many
    for (int i = 0; i < 10; ++i) {
        const auto key = static_cast<std::uint8_t>(60 + i % 2 * 2);
        events.insert(events.end(), {0, 0x90, key, 100, 96, key, 0});
    }
    EXPECT_NEAR(VoicesOf(Read(OneTrack(events))).front().points, steps - 25.0 * 0.25, 1e-6);
}

TEST(MidiVoices, TwoThatShareTheHighestNoteBothLieHighest) {
    Bytes bytes = Header(1, 2, 96);
    for (int track = 0; track < 2; ++track) {
        Bytes events;
        for (int i = 0; i < 10; ++i) {
            const auto key = static_cast<std::uint8_t>(60 + i);
            events.insert(events.end(), {0, 0x90, key, 100, 96, key, 0});
        }
        AddTrack(bytes, events);
    }
    const auto voices = VoicesOf(Read(bytes));
    EXPECT_NEAR(voices[0].points, voices[1].points, 1e-9);
    EXPECT_EQ(MelodyOf(voices, -1, -1), 0);
}

} // namespace
} // namespace tonex::exchange_midi_voices_test
