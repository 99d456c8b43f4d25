#include "exchange/fit.h"
#include "exchange/midi_clock.h"
#include "exchange/midi_nominal.h"
#include "exchange/midi_tune.h"
#include "exchange/midi_writer.h"
#include "exchange/played.h"
#include "tests/tune_items.h"

#include <gtest/gtest.h>
#include <random>

namespace tonex {
namespace {

using testing::ItemsOf;

using Bytes = std::vector<std::uint8_t>;

const TimingTables& Tables() {
    static const TimingTables tables = BuildTimingTables();
    return tables;
}

void Add(Bytes& bytes, std::uint32_t number, int count) {
    for (int i = count - 1; i >= 0; --i)
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

Bytes Header(int format, int tracks, int division) {
    Bytes bytes = {'M', 'T', 'h', 'd'};
    Add(bytes, 6, 4);
    Add(bytes, static_cast<std::uint32_t>(format), 2);
    Add(bytes, static_cast<std::uint32_t>(tracks), 2);
    Add(bytes, static_cast<std::uint32_t>(division), 2);
    return bytes;
}

const Bytes kEnd = {0, 0xFF, 0x2F, 0};

void AddTrack(Bytes& bytes, const Bytes& events, const Bytes& end = kEnd) {
    for (const char letter : {'M', 'T', 'r', 'k'})
        bytes.push_back(static_cast<std::uint8_t>(letter));
    Add(bytes, static_cast<std::uint32_t>(events.size() + end.size()), 4);
    bytes.insert(bytes.end(), events.begin(), events.end());
    bytes.insert(bytes.end(), end.begin(), end.end());
}

/// A file of one track, 96 ticks a quarter note.
Bytes OneTrack(const Bytes& events) {
    Bytes bytes = Header(0, 1, 96);
    AddTrack(bytes, events);
    return bytes;
}

MidiFile Read(const Bytes& bytes) {
    MidiFile file;
    MidiFault fault;
    EXPECT_TRUE(ReadMidi(bytes, file, fault)) << fault.offset << ": " << fault.reason;
    return file;
}

MidiFault FaultOf(const Bytes& bytes) {
    MidiFile file;
    MidiFault fault;
    EXPECT_FALSE(ReadMidi(bytes, file, fault));
    return fault;
}

bool HasRemark(const Remarks& remarks, std::string_view what) {
    for (const auto& [remark, times] : remarks) {
        if (remark == what && times > 0) return true;
    }
    return false;
}

Tune Melody0(const Bytes& bytes) {
    const MidiFile file = Read(bytes);
    const auto voices = VoicesOf(file);
    const int melody = MelodyOf(voices, -1, -1);
    return melody < 0 ? Tune{} : TuneOfVoice(file, At(voices, melody), 0.0, 1e9);
}

// The reader.

TEST(MidiReader, ReadsNotesAndRunningStatus) {
    const MidiFile file = Read(OneTrack({0, 0x90, 60, 100, 96, 60, 0, 0, 62, 100, 48, 62, 0}));
    ASSERT_EQ(file.notes.size(), 2u);
    EXPECT_EQ(file.notes[0].key, 60);
    EXPECT_EQ(file.notes[0].end, 96);
    EXPECT_EQ(file.notes[1].start, 96);
    EXPECT_EQ(file.notes[1].end, 144);
    EXPECT_TRUE(file.remarks.empty());
}

TEST(MidiReader, NumbersHaveSevenBitsAByteAndUpToFourBytes) {
    for (const auto& [number, ticks] : {std::pair{Bytes{0x7F}, 127},
                                        {{0x81, 0x00}, 128},
                                        {{0xFF, 0x7F}, 16383},
                                        {{0x81, 0x80, 0x00}, 16384},
                                        {{0x81, 0x80, 0x80, 0x00}, 2097152}}) {
        Bytes events = {0, 0x90, 60, 100};
        events.insert(events.end(), number.begin(), number.end());
        events.insert(events.end(), {60, 0});
        EXPECT_EQ(Read(OneTrack(events)).notes.at(0).end, ticks);
    }
}

TEST(MidiReader, KeepsRunningStatusBeyondAMetaEventAndTells) {
    const MidiFile file = Read(OneTrack({0, 0x90, 60, 100, 0, 0xFF, 1, 1, 'x', 96, 60, 0}));
    ASSERT_EQ(file.notes.size(), 1u);
    EXPECT_EQ(file.notes[0].end, 96);
    EXPECT_TRUE(HasRemark(file.remarks, "kept a status beyond an event that ends it"));
}

/// "0 to 48, 48 to 96"
std::string TicksOf(const MidiFile& file) {
    std::string text;
    for (const MidiNote& note : file.notes)
        text += (text.empty() ? "" : ", ") + std::to_string(note.start) + " to " + std::to_string(note.end);
    return text;
}

TEST(MidiReader, StrikingAgainEndsTheStrokeBefore) {
    EXPECT_EQ(TicksOf(Read(OneTrack({0, 0x90, 60, 100, 48, 60, 100, 48, 0x80, 60, 0}))),
              "0 to 48, 48 to 96"); // one end for both
}

TEST(MidiReader, OfTwoEndsTheFirstBelongsToTheStrokeBefore) {
    // Legato of 6 ticks on one key: each stroke has an end of its own.
    EXPECT_EQ(
        TicksOf(Read(OneTrack({0, 0x90, 60, 100, 48, 60, 100, 6, 60, 0, 42, 60, 100, 6, 60, 0, 42, 60, 0}))),
        "0 to 48, 48 to 96, 96 to 144");
    // Where there are fewer ends than strokes, one is for all in front of it.
    const MidiFile file = Read(
        OneTrack({0, 0x90, 60, 100, 48, 60, 100, 48, 60, 0, 48, 60, 100, 48, 60, 0, 48, 60, 100, 48, 60, 0}));
    EXPECT_EQ(TicksOf(file), "0 to 48, 48 to 96, 144 to 192, 240 to 288");
    EXPECT_TRUE(file.remarks.empty());
}

TEST(MidiReader, RepairsWhatCanBeRepairedAndTells) {
    EXPECT_TRUE(HasRemark(Read(OneTrack({0, 0x90, 60, 200, 96, 60, 0})).remarks,
                          "brought a data byte above 127 down to 127"));
    EXPECT_EQ(Read(OneTrack({0, 0x90, 200, 100, 96, 200, 0})).notes.at(0).key, 127);
    EXPECT_TRUE(HasRemark(Read(OneTrack({0, 0x90, 60, 100})).remarks, "ended a note with its track"));
    Bytes more = OneTrack({0, 0x90, 60, 100, 96, 60, 0});
    more.resize(more.size() + 7);
    EXPECT_TRUE(HasRemark(Read(more).remarks, "left out bytes behind the last track"));
    Bytes open = Header(0, 1, 96);
    AddTrack(open, {0, 0x90, 60, 100, 96, 60, 0}, {});
    EXPECT_TRUE(HasRemark(Read(open).remarks, "a track has no end event"));
    Bytes counts = Header(1, 60000, 96);
    AddTrack(counts, {0, 0x90, 60, 100, 96, 60, 0});
    EXPECT_TRUE(HasRemark(Read(counts).remarks, "the header counts other tracks than there are"));
    Bytes cut = OneTrack({0, 0x90, 60, 100, 96, 60, 0, 0, 62, 100, 48, 62, 0});
    cut.resize(cut.size() - 6);
    EXPECT_TRUE(HasRemark(Read(cut).remarks, "a chunk goes on beyond the end of the file"));
    EXPECT_EQ(Read(cut).notes.size(), 2u);
    Bytes foreign = Header(0, 1, 96);
    foreign.insert(foreign.end(), {'X', 'F', 'I', 'H', 0, 0, 0, 1, 9});
    AddTrack(foreign, {0, 0x90, 60, 100, 96, 60, 0});
    EXPECT_TRUE(HasRemark(Read(foreign).remarks, "left out a chunk that is no track"));
    EXPECT_TRUE(HasRemark(Read(OneTrack({0, 0xFF, 0x51, 3, 0, 0, 0, 0, 0x90, 60, 100})).remarks,
                          "left out a tempo of 0"));
    EXPECT_TRUE(HasRemark(Read(OneTrack({0, 0xFF, 0x51, 1, 7, 0, 0x90, 60, 100})).remarks,
                          "left out a tempo that has not three bytes"));
}

TEST(MidiReader, LeavesOutSysexAndMetaUnread) {
    const MidiFile file = Read(OneTrack({0, 0xF0, 3, 1,    2, 0xF7, 0, 0xFF, 0x59, 5,   1,  2,  3,
                                         4, 5,    0, 0xF7, 1, 9,    0, 0x90, 60,   100, 10, 60, 0}));
    EXPECT_EQ(file.notes.size(), 1u);
}

TEST(MidiReader, TextsAreCutAndTheirControlCharactersAreBlanks) {
    Bytes events = {0, 0xFF, 1, 3, 'a', 0x1F, 'b', 0, 0xFF, 1, static_cast<std::uint8_t>(kMostMidiName + 1)};
    events.insert(events.end(), kMostMidiName + 1, 'n');
    const MidiFile file = Read(OneTrack(events));
    ASSERT_EQ(file.texts.size(), 2u);
    EXPECT_EQ(file.texts[0].text, "a b");
    EXPECT_EQ(file.texts[1].text, std::string(kMostMidiName, 'n'));
}

TEST(MidiReader, ALongerHeaderIsReadAsFarAsItIsKnown) {
    Bytes bytes = Header(0, 1, 96);
    bytes[7] = 8;
    bytes.insert(bytes.end(), {1, 2});
    AddTrack(bytes, {0, 0x90, 60, 100, 96, 60, 0});
    EXPECT_EQ(Read(bytes).notes.size(), 1u);
}

TEST(MidiReader, ReadsARiffWrapper) {
    const Bytes inner = OneTrack({0, 0x90, 60, 100, 96, 60, 0});
    Bytes riff = {'R', 'I', 'F', 'F', 0,   0,   0,   0,   'R',
                  'M', 'I', 'D', 'I', 'N', 'F', 'O', 1,   0,
                  0,   0,   7,   0,   'd', 'a', 't', 'a', static_cast<std::uint8_t>(inner.size()),
                  0,   0,   0};
    riff.insert(riff.end(), inner.begin(), inner.end());
    EXPECT_TRUE(LooksLikeMidi(riff));
    EXPECT_EQ(Read(riff).notes.size(), 1u);
    riff.resize(30);
    EXPECT_EQ(FaultOf(riff).reason, "\"MThd\" is missing");
    riff.resize(22);
    EXPECT_EQ(FaultOf(riff).reason, "the RIFF file has no data chunk");
}

TEST(MidiReader, RefusesWithTheOffset) {
    struct Case {
        Bytes bytes;
        std::size_t offset;
        std::string_view reason;
    };
    const Bytes note = {0, 0x90, 60, 100, 96, 60, 0};
    const auto header = [&](std::uint32_t length) {
        Bytes bytes = Header(0, 1, 96);
        for (int i = 0; i < 4; ++i)
            bytes[static_cast<std::size_t>(4 + i)] = static_cast<std::uint8_t>(length >> (24 - 8 * i));
        AddTrack(bytes, note);
        return bytes;
    };
    const auto with = [&](int format, int division) {
        Bytes bytes = Header(format, 1, division);
        AddTrack(bytes, note);
        return bytes;
    };
    const std::vector<Case> cases = {
        {{}, 0, "\"MThd\" is missing"},
        {{'M', 'T', 'h', 'd'}, 4, "an event goes on beyond the end of its track"},
        {header(0), 4, "the header's length is 0"},
        {header(5), 4, "the header's length is 5"},
        {header(0xFFFFFFFF), 4, "the header's length is 4294967295"},
        {with(3, 96), 8, "the format is 3, not 0 to 2"},
        {with(0, 0), 12, "the division is 0"},
        {with(0, 0x8000), 12, "the division is none of those that are known"},
        {with(0, 0xE800), 12, "the division is none of those that are known"},
        {with(0, 0xE128), 12, "the division is none of those that are known"},
        {Header(0, 1, 96), 14, "there is no track"},
        {OneTrack({0x81, 0x82, 0x83, 0x84, 0x05, 0x90, 60, 100}), 22,
         "a variable-length number has more than 4 bytes"},
        {OneTrack({0, 60, 100}), 23, "an event without the status that it needs"},
        {OneTrack({0, 0xF5, 0}), 23, "byte 245 where an event begins"},
        {OneTrack({0, 0xFF, 1, 0x7F, 'x'}), 25, "a length goes beyond the end of its track"},
        {OneTrack({0, 0xFF, 1, 0x8F, 0xFF, 0xFF, 0x7F}), 25, "a length goes beyond the end of its track"},
    };
    for (const Case& wrong : cases) {
        const MidiFault fault = FaultOf(wrong.bytes);
        EXPECT_EQ(fault.offset, wrong.offset) << wrong.reason << " / " << fault.reason;
        EXPECT_EQ(fault.reason, wrong.reason);
    }
}

TEST(MidiReader, CountsOfTracksAndEventsAreLimited) {
    Bytes tracks = Header(1, 5, 96);
    for (int i = 0; i <= kMostMidiTracks; ++i)
        AddTrack(tracks, {});
    EXPECT_EQ(FaultOf(tracks).reason, "more than 1000 tracks");
    Bytes events = {0, 0xC0};
    for (int i = 0; i < kMostMidiEvents; ++i)
        events.insert(events.end(), {1, 0});
    EXPECT_EQ(FaultOf(OneTrack(events)).reason, "more than " + std::to_string(kMostMidiEvents) + " events");
}

TEST(MidiReader, TheLengthOfATrackIsLimited) {
    Bytes events;
    for (int i = 0; i < 4096; ++i)
        events.insert(events.end(), {0xFF, 0xFF, 0xFF, 0x7F, 0xC0, 5});
    events.insert(events.end(), {0xA0, 0x00, 0xC0, 5}); // 4096 ticks more
    EXPECT_EQ(Read(OneTrack(events)).ends.at(0), std::int64_t{1} << 40);
    events.insert(events.end(), {1, 0xC0, 5});
    EXPECT_EQ(FaultOf(OneTrack(events)).reason, "the track is longer than any melody");
}

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

TEST(MidiReader, SmpteDivisionsAreSeconds) {
    for (const auto& [frames, rate] : {std::pair{24, 24.0}, {25, 25.0}, {29, 30000.0 / 1001.0}, {30, 30.0}}) {
        Bytes bytes = Header(0, 1, (256 - frames) << 8 | 40);
        AddTrack(bytes, {0, 0x90, 60, 100, 96, 60, 0});
        const MidiFile file = Read(bytes);
        EXPECT_NEAR(SecondsAt(ClockOf(file, 0), 40.0 * rate), 1.0, 1e-9) << frames;
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

TEST(MidiClock, TemposCountUnlessTicksArePartsOfASecond) {
    MidiFile file;
    file.tempos.push_back({0, 0, 1000000});
    file.ticks_of_quarter = 1;
    EXPECT_DOUBLE_EQ(SecondsAt(ClockOf(file, 0), 3.0), 3.0);
    file.ticks_of_quarter = 0;
    file.seconds_of_tick = 0.01;
    EXPECT_DOUBLE_EQ(SecondsAt(ClockOf(file, 0), 3.0), 0.03);
}

// Voices.

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
    for (const char* name : {"Paddy Whack", "Harpsichord", "Bassoon", "Fortune", "Single coil", "Resolution"})
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

TEST(MidiVoices, OfAChordTheHighestAndALowerNoteUnderAHeldOneIsLeftOut) {
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

TEST(MidiVoices, AnOnsetEndsTheNoteBefore) {
    // A legato of a tenth of a quarter note.
    EXPECT_EQ(ItemsOf(Melody0(OneTrack({0, 0x90, 60, 100, 96, 58, 100, 10, 60, 0, 86, 58, 0}))),
              "c4 1, a3# 1");
}

TEST(MidiVoices, ShortGapsAreAbsorbedAndRestsAreKept) {
    // 95 of 96 ticks, then 40 of 96 that end off every place, then a quarter note of three.
    const Tune tune = Melody0(OneTrack({0,  0x90, 60,  100, 95, 60, 0,    1,    62, 100, 41, 62, 0,
                                        55, 64,   100, 96,  64, 0,  0x81, 0x40, 65, 100, 96, 65, 0}));
    EXPECT_EQ(ItemsOf(tune), "c4 1, d4 1, e4 1, r 2, f4 1");
    EXPECT_TRUE(HasRemark(tune.remarks, "let a note last through the short gap behind it"));
    EXPECT_TRUE(tune.on_grid);
}

TEST(MidiVoices, ASilenceIsPlayedBelow40PartsOf100BehindAPlaceAndBelow60BehindNone) {
    const auto played = [](int sounding, int all) {
        const auto silent = static_cast<std::uint8_t>(all - sounding);
        return ItemsOf(Melody0(OneTrack(
            {0, 0x90, 60, 100, static_cast<std::uint8_t>(sounding), 60, 0, silent, 62, 100, 96, 62, 0})));
    };
    EXPECT_EQ(played(120, 192), "c4 2, d4 1");
    EXPECT_EQ(played(112, 192), "c4 1.167, r 0.8333, d4 1");
    EXPECT_EQ(played(39, 96), "c4 1, d4 1");
    EXPECT_EQ(played(38, 96), "c4 0.375, r 0.625, d4 1");
}

TEST(MidiVoices, SilenceInFrontIsLeftOutAndAPartCanBeTaken) {
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

TEST(MidiTune, ALastNoteTooShortForAnyPlaceKeepsItsTime) {
    const Tune tune = Melody0(OneTrack({0, 0x90, 60, 100, 96, 60, 0, 0, 62, 100, 1, 62, 0}));
    ASSERT_EQ(tune.items.size(), 2u);
    EXPECT_NEAR(tune.items[1].seconds, 0.5 / 96.0, 1e-9);
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
}

TEST(MidiVoices, OnsetsOffThePlacesOfAScoreAreOnNoGrid) {
    Bytes events;
    for (int i = 0; i < 20; ++i) {
        const auto length = static_cast<std::uint8_t>(90 + 7 * (i % 4));
        events.insert(events.end(), {0, 0x90, 60, 100, length, 60, 0});
    }
    EXPECT_FALSE(Melody0(OneTrack(events)).on_grid);
}

TEST(MidiVoices, OnNoGridANoteInFrontOfARestEndsWhereItDoes) {
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

TEST(MidiVoices, ChangingTemposAreTold) {
    const Tune tune = Melody0(OneTrack({0,    0x90, 60, 100,  96,   60,   0, 0,    62, 100, 96, 62, 0, 0,
                                        0xFF, 0x51, 3,  0x0F, 0x42, 0x40, 0, 0x90, 64, 100, 96, 64, 0}));
    EXPECT_TRUE(tune.bends);
    EXPECT_TRUE(HasRemark(tune.remarks, "the tempo changes between 60 and 120"));
    EXPECT_NEAR(LengthOf(tune), 2.0, 1e-9);
    EXPECT_EQ(tune.tempo, 60.0); // either lasts for a second: the slower one counts
}

TEST(MidiVoices, TemposWithinAHundredthOfEachOtherAreOne) {
    for (const auto& [microseconds, bends] :
         {std::pair{495000, true}, {495100, false}, {505000, false}, {506000, true}}) {
        const auto byte = [&, all = microseconds](int shift) {
            return static_cast<std::uint8_t>(all >> shift);
        };
        const Tune tune = Melody0(OneTrack({0,        0x90,    60,      100, 96,   60, 0,   0,  0xFF, 0x51, 3,
                                            byte(16), byte(8), byte(0), 0,   0x90, 64, 100, 48, 64,   0}));
        EXPECT_EQ(tune.tempo, 120.0);
        EXPECT_EQ(tune.bends, bends) << microseconds;
    }
}

// The writer.

Melody RandomMelody(std::mt19937& random) {
    Melody melody;
    melody.tempo = At(Tables().tempo_list, static_cast<int>(random() % 28));
    const int entries = 1 + static_cast<int>(random() % 80);
    for (int i = 0; i < entries; ++i) {
        FileEntry& entry = At(melody.list, i);
        const auto code = static_cast<std::uint16_t>(random() % kLengthCodes);
        switch (random() % 6) {
        case 0: entry = {kFileSeparator, 0}; break;
        case 1: entry = {static_cast<std::uint16_t>(kFileRests + code), kFileRestPitch}; break;
        default: entry = {code, static_cast<std::uint16_t>(random() % 94)};
        }
    }
    return melody;
}

TEST(MidiRoundTrip, OfTheNominalWayGivesTheSameFile) {
    std::mt19937 random(5);
    for (int i = 0; i < 200; ++i) {
        const Melody melody = RandomMelody(random);
        const MidiBytes made = WriteNominalMidi(melody, "x");
        ASSERT_FALSE(made.bytes.empty()) << made.reason;
        const auto tune = TuneOfNominal(Read(made.bytes));
        ASSERT_TRUE(tune.has_value());
        if (CountNotes(*tune) == 0) continue;
        const Fit fit = FitTune(Tables(), *tune, false);
        EXPECT_EQ(fit.encoding.bytes, EncodeSnd(Tables(), melody.tempo, melody.list).bytes) << "melody " << i;
    }
}

TEST(MidiRoundTrip, AChangedNominalFileIsReadLikeAnyOther) {
    Melody melody;
    melody.tempo = 120;
    melody.list[0] = {10, 26};
    melody.list[1] = {10, 28};
    const MidiBytes made = WriteNominalMidi(melody, "x");
    EXPECT_TRUE(TuneOfNominal(Read(made.bytes)).has_value());
    MidiFile moved = Read(made.bytes);
    moved.notes[1].start += 10;
    EXPECT_FALSE(TuneOfNominal(moved).has_value());
    MidiFile longer = Read(made.bytes);
    longer.ends[0] += 10;
    EXPECT_FALSE(TuneOfNominal(longer).has_value());
    MidiFile of_no_length = Read(made.bytes);
    of_no_length.notes[0].end = of_no_length.notes[1].start = 0;
    of_no_length.ends[0] = of_no_length.notes[1].end;
    EXPECT_FALSE(TuneOfNominal(of_no_length).has_value());
    MidiFile unmarked = Read(made.bytes);
    unmarked.texts.clear();
    EXPECT_FALSE(TuneOfNominal(unmarked).has_value());
    MidiFile in_seconds = Read(made.bytes);
    in_seconds.ticks_of_quarter = 0;
    EXPECT_FALSE(TuneOfNominal(in_seconds).has_value());
    MidiFile of_two_tracks = Read(made.bytes);
    of_two_tracks.tracks = 2;
    EXPECT_FALSE(TuneOfNominal(of_two_tracks).has_value());
}

TEST(MidiWriter, WritesWhatThePlayBlockPlaysToTheTick) {
    std::mt19937 random(6);
    for (int i = 0; i < 100; ++i) {
        const Melody melody = RandomMelody(random);
        const SndEncoding encoding = EncodeSnd(Tables(), melody.tempo, melody.list);
        if (encoding.result != kSndDone) continue;
        const int mode = ChooseTimingMode(Tables(), melody.list, TempoIndexOf(Tables(), melody.tempo));
        PlayBlock block;
        ASSERT_TRUE(ReadPlayBlock(encoding.bytes, block));
        const auto units = UnitsPlayed(Tables(), block, melody.list, mode);
        ASSERT_TRUE(units.has_value());
        const MidiBytes made = WritePlayedMidi(block, melody, mode, *units, "x");
        const MidiFile file = Read(made.bytes);
        EXPECT_EQ(made.ticks, file.ends[0]);
        const MidiClock clock = ClockOf(file, 0);
        std::size_t note = 0;
        double seconds = 0.0;
        for (int k = 0; k < CountEntries(melody.list); ++k) {
            const FileEntry& entry = At(melody.list, k);
            const int entry_units = At(*units, k);
            if (KindOfFileCode(entry.code) == EntryKind::Note) {
                ASSERT_LT(note, file.notes.size());
                EXPECT_EQ(file.notes[note].key, entry.pitch + 34);
                EXPECT_NEAR(SecondsAt(clock, static_cast<double>(file.notes[note].start)), seconds, 1e-9);
                const int last = (entry_units - 1) % 16 + 1;
                const double sounding = (entry_units - last / 4.0) * block.tempo_byte / 64.0;
                EXPECT_NEAR(SecondsAt(clock, static_cast<double>(file.notes[note].end)), seconds + sounding,
                            1e-9);
                ++note;
            }
            seconds += entry_units * block.tempo_byte / 64.0;
        }
        EXPECT_EQ(note, file.notes.size());
        EXPECT_NEAR(SecondsAt(clock, static_cast<double>(file.ends[0])), seconds, 1e-9);
    }
}

TEST(MidiWriter, RefusesWhatMidiDoesNotHave) {
    Melody melody;
    melody.tempo = 120;
    melody.list[0] = {10, 93};
    melody.list[1] = {10, 94};
    EXPECT_EQ(WriteNominalMidi(melody, "x").reason, "entry 2 is g9#; MIDI ends at g9");
    melody.list[1] = {50, 20};
    EXPECT_EQ(WriteNominalMidi(melody, "x").reason, "entry 2 has the unknown code 50");
}

TEST(MidiWriter, SoundsTheQuartersOfARecordAllFromFourOn) {
    Melody melody;
    melody.tempo = 120;
    melody.list[0] = {10, 26};
    for (const auto& [length_byte, ticks] :
         {std::pair{0x18, 120}, {0x28, 240}, {0x38, 360}, {0x48, 480}, {0x88, 480}}) {
        const std::vector<std::uint8_t> records = {26, static_cast<std::uint8_t>(length_byte)};
        const MidiFile file = Read(WritePlayedMidi({4, records}, melody, 0, {8}, "x").bytes);
        ASSERT_EQ(file.notes.size(), 1u);
        EXPECT_EQ(file.notes[0].end, ticks);
        EXPECT_EQ(file.ends[0], 480);
    }
}

TEST(MidiWriter, RefusesARecordAboveMidiFromTheShortestThatSounds) {
    Melody melody;
    melody.tempo = 120;
    melody.list[0] = melody.list[1] = {10, 26};
    const auto written = [&](std::uint8_t pitch_byte, std::uint8_t length_byte) {
        const std::vector<std::uint8_t> records = {26, 24, pitch_byte, length_byte};
        return WritePlayedMidi({4, records}, melody, 0, {8, UnitsOfRecord(length_byte)}, "x");
    };
    EXPECT_EQ(written(93, 16).reason, "");
    EXPECT_EQ(written(94, 16).reason, "record 2 is higher than MIDI goes");
    EXPECT_EQ(written(94, 15).reason, ""); // silent
    EXPECT_EQ(Read(written(94, 15).bytes).notes.size(), 1u);
}

} // namespace
} // namespace tonex
