#include "exchange/midi_clock.h"
#include "tests/midi_files.h"

#include <gtest/gtest.h>

namespace tonex::exchange_midi_reader_test {
namespace {

using testing::AddTrack;
using testing::Bytes;
using testing::FaultOf;
using testing::HasRemark;
using testing::Header;
using testing::OneTrack;
using testing::Read;
using testing::RemarksOf;

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

/// "0 to 48, track 1, channel 3, key 64, order 8" a note, and so on.
std::string AllOf(const MidiFile& file) {
    const auto text = [](auto number) { return std::to_string(number); };
    std::string all;
    for (const MidiNote& note : file.notes)
        all += text(note.start) + " to " + text(note.end) + ", track " + text(note.track) + ", channel " +
               text(note.channel) + ", key " + text(note.key) + ", order " + text(note.order) + "\n";
    for (const MidiTempo& tempo : file.tempos)
        all += "tempo " + text(tempo.tick) + ", track " + text(tempo.track) + ", " +
               text(tempo.microseconds) + "\n";
    for (const MidiText& said : file.texts)
        all += "text " + text(said.tick) + ", track " + text(said.track) + ", kind " + text(said.kind) +
               ", " + said.text + ", order " + text(said.order) + "\n";
    for (const MidiProgram& program : file.programs)
        all += "program of track " + text(program.track) + ", channel " + text(program.channel) + ", " +
               text(program.program) + "\n";
    for (const std::int64_t end : file.ends)
        all += "end " + text(end) + "\n";
    return all;
}

TEST(MidiReader, TakesAFileApart) {
    Bytes bytes = Header(1, 3, 480);
    // Copyrights and other texts are left out, of a longer tempo the first three bytes count.
    AddTrack(bytes, {0,    0xFF, 3,  2,    'h',  'i', 0, 0xFF, 2, 1, 'c', 0,    0xFF, 0x51, 3,  0x12,
                     0x34, 0x56, 10, 0xFF, 0x51, 4,   1, 0,    0, 0, 5,   0xFF, 6,    1,    '|'},
             {});
    // A legato of two notes, the first as soft as can be, with pressure, bend and pedal meanwhile.
    AddTrack(bytes,
             {0, 0xC3, 5, 0, 6, 0, 0xC4, 127, 0, 0x93, 64, 1, 24, 67, 100, 0, 0xD3, 9, 0, 0xE3, 0, 64, 0,
              0xA3, 67, 50, 0, 0xB3, 67, 0, 24, 0xF0, 1, 0xF7, 0, 0xF7, 1, 0, 0, 7, 100, 0, 7, 101, 0, 0x83,
              64, 0,
              // One end more than strokes, a key above 127, which is let go by its number.
              48, 0x83, 67, 64, 0, 67, 64, 0, 0x93, 128, 127, 10, 127, 0},
             {4, 0xFF, 0x2F, 0, 0, 0x90, 60, 100});
    AddTrack(bytes, {0,   0xFF, 0x51, 3, 7, 0xA1, 0x20, 10, 0xFF, 0x51, 3,    0, 0,   2, 0,    0xFF, 4, 1,
                     'i', 0,    0x9F, 0, 1, 14,   0x8F, 0,  0,    0,    0x9F, 1, 100, 0, 0xFF, 1,    1, 'x'},
             {6, 0xFF, 0x2F, 0});
    const MidiFile file = Read(bytes);
    EXPECT_EQ(AllOf(file), "0 to 48, track 1, channel 3, key 64, order 8\n"
                           "10 to 24, track 2, channel 15, key 0, order 27\n"
                           "24 to 96, track 1, channel 3, key 67, order 9\n"
                           "24 to 30, track 2, channel 15, key 1, order 29\n"
                           "96 to 106, track 1, channel 3, key 127, order 21\n"
                           "tempo 0, track 0, 1193046\n"
                           "tempo 0, track 2, 500000\n"
                           "tempo 10, track 0, 65536\n"
                           "tempo 10, track 2, 2\n"
                           "text 0, track 0, kind 3, hi, order 0\n"
                           "text 15, track 0, kind 6, |, order 4\n"
                           "text 24, track 2, kind 1, x, order 30\n"
                           "program of track 1, channel 3, 5\n"
                           "program of track 1, channel 4, 127\n"
                           "end 15\nend 110\nend 30\n");
    EXPECT_EQ(RemarksOf(file.remarks), "a track has no end event 1; "
                                       "kept a status beyond an event that ends it 1; "
                                       "brought a data byte above 127 down to 127 1; "
                                       "ended a note with its track 1");
    EXPECT_EQ(file.format, 1);
    EXPECT_EQ(file.ticks_of_quarter, 480);
    EXPECT_EQ(file.tracks, 3);
}

TEST(MidiReader, ATrackThatTheFilesEndCutsShortIsReadAsFarAsItGoes) {
    struct Case {
        Bytes events;
        std::string_view all;
        std::string_view more_remarks;
    };
    const std::string note = ", track 0, channel 0, key 60, order 0\n";
    for (const Case& cut : {
             // Half of a release is none.
             Case{{0, 0x90, 60, 100, 48, 60}, "0 to 48", "; ended a note with its track 1"},
             // Of a time the bits that are there count.
             {{0, 0x90, 60, 100, 0x81}, "0 to 128", "; ended a note with its track 1"},
             // A time that is none lasts no time.
             {{0, 0x90, 60, 100, 0x81, 0x82, 0x83, 0x84, 5, 60, 0},
              "0 to 0",
              "; ended a note with its track 1"},
             {{0, 0x90, 60, 100, 48, 60, 0, 0, 0xFF, 0x2F, 5}, "0 to 48", ""},
             {{0, 0x90, 60, 100, 48, 60, 0, 0, 0xFF, 2, 0, 0}, "0 to 48", ""},
             {{0, 0x90, 60, 100, 48, 60, 0, 0, 0xFF, 1, 5, 'x'}, "0 to 48", ""},
         }) {
        Bytes bytes = Header(0, 1, 96);
        AddTrack(bytes, cut.events, {});
        bytes[21] = 100;
        const MidiFile file = Read(bytes);
        EXPECT_EQ(AllOf(file), std::string(cut.all) + note + "end" + std::string(cut.all.substr(4)) + "\n");
        EXPECT_EQ(RemarksOf(file.remarks), "a chunk goes on beyond the end of the file 1; "
                                           "a track has no end event 1" +
                                               std::string(cut.more_remarks));
    }
}

TEST(MidiReader, ABlockMayFillItsTrackAndATrackMayBeEmpty) {
    Bytes bytes = Header(1, 2, 96);
    AddTrack(bytes, {0, 0xFF, 1, 1, 'x'}, {});
    AddTrack(bytes, {}, {});
    const MidiFile file = Read(bytes);
    EXPECT_EQ(AllOf(file), "text 0, track 0, kind 1, x, order 0\nend 0\nend 0\n");
    EXPECT_EQ(RemarksOf(file.remarks), "a track has no end event 2");
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
    EXPECT_TRUE(HasRemark(Read(OneTrack({0, 0xFF, 0x51, 2, 7, 7, 0, 0x90, 60, 100})).remarks,
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
    EXPECT_EQ(FaultOf(riff).offset, 22u);
}

/// A RIFF file of a chunk that is no MIDI file, so many bytes long, and of a data chunk that says to have
/// `length` bytes.
Bytes Riff(std::size_t other, std::size_t length, const Bytes& data) {
    Bytes riff = {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'R', 'M', 'I', 'D', 'I', 'N', 'F', 'O'};
    const auto add = [&](std::size_t number) {
        for (int i = 0; i < 4; ++i)
            riff.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
    };
    add(other);
    riff.insert(riff.end(), other, 0xFF);
    riff.insert(riff.end(), {'d', 'a', 't', 'a'});
    add(length);
    riff.insert(riff.end(), data.begin(), data.end());
    return riff;
}

TEST(MidiReader, ARiffWrappersChunksAreAsLongAsTheySay) {
    Bytes data = OneTrack({0, 0x90, 60, 100, 96, 60, 0});
    const std::size_t length = data.size();
    data.insert(data.end(), {1, 2, 3});
    const MidiFile file = Read(Riff(260, length, data));
    EXPECT_EQ(TicksOf(file), "0 to 96");
    EXPECT_EQ(RemarksOf(file.remarks), "");
    data.resize(length);
    for (const std::size_t claimed : {length, length + 1, std::size_t{0xFFFFFFFF}})
        EXPECT_EQ(TicksOf(Read(Riff(0, claimed, data))), "0 to 96");
    // Its end is the file's: the last note is cut off.
    EXPECT_EQ(RemarksOf(Read(Riff(0, length - 9, data)).remarks),
              "a chunk goes on beyond the end of the file 1; a track has no end event 1");
    Bytes other = Riff(0, 0, {});
    other[16] = 8; // the other chunk has all there is
    EXPECT_EQ(FaultOf(other).reason, "the RIFF file has no data chunk");
    EXPECT_EQ(FaultOf(other).offset, 12u);
    other[16] = 0;
    other[19] = 0xFF;
    EXPECT_EQ(FaultOf(other).offset, 12u);
    EXPECT_EQ(FaultOf({'R', 'I', 'F', 'F'}).offset, 4u);
}

TEST(MidiReader, KnowsAFileByItsNames) {
    EXPECT_TRUE(LooksLikeMidi(Bytes{'M', 'T', 'h', 'd'}));
    EXPECT_FALSE(LooksLikeMidi(Bytes{'M', 'T', 'h'}));
    Bytes riff = {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'R', 'M', 'I', 'D'};
    EXPECT_TRUE(LooksLikeMidi(riff));
    riff.pop_back();
    EXPECT_FALSE(LooksLikeMidi(riff));
    riff.push_back('E');
    EXPECT_FALSE(LooksLikeMidi(riff));
    riff.resize(4);
    EXPECT_FALSE(LooksLikeMidi(riff));
    EXPECT_FALSE(LooksLikeMidi(Bytes{'X', 'I', 'F', 'F', 0, 0, 0, 0, 'R', 'M', 'I', 'D'}));
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
    Bytes longer_header = Header(0, 1, 96); // than the file
    longer_header[7] = 7;
    Bytes two_tracks = Header(1, 2, 96);
    AddTrack(two_tracks, {0, 0x90, 60}, {});
    AddTrack(two_tracks, note);
    const std::vector<Case> cases = {
        {{}, 0, "\"MThd\" is missing"},
        {{'M', 'T', 'h', 'd'}, 4, "an event goes on beyond the end of its track"},
        {header(0), 4, "the header's length is 0"},
        {header(5), 4, "the header's length is 5"},
        {longer_header, 4, "the header's length is 7"},
        {header(0xFFFFFFFF), 4, "the header's length is 4294967295"},
        {with(3, 96), 8, "the format is 3, not 0 to 2"},
        {with(3, 0), 8, "the format is 3, not 0 to 2"}, // of two faults the first
        {with(0, 0), 12, "the division is 0"},
        {with(0, 0x8000), 12, "the division is none of those that are known"},
        {with(0, 0xE800), 12, "the division is none of those that are known"},
        {with(0, 0xE128), 12, "the division is none of those that are known"},
        {Header(0, 1, 96), 14, "there is no track"},
        {OneTrack({0x81, 0x82, 0x83, 0x84, 0x05, 0x90, 60, 100}), 22,
         "a variable-length number has more than 4 bytes"},
        {OneTrack({0, 60, 100}), 23, "an event without the status that it needs"},
        {OneTrack({0, 0xF5, 0}), 23, "byte 245 where an event begins"},
        {two_tracks, 25, "an event goes on beyond the end of its track"},
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
    for (int i = 0; i < kMostMidiTracks; ++i)
        AddTrack(tracks, {});
    EXPECT_EQ(Read(tracks).tracks, kMostMidiTracks);
    const std::size_t end = tracks.size();
    AddTrack(tracks, {});
    EXPECT_EQ(FaultOf(tracks).reason, "more than 1000 tracks");
    EXPECT_EQ(FaultOf(tracks).offset, end);
    Bytes events = {0, 0xC0, 1};
    for (int i = 0; i < kMostMidiEvents - 2; ++i)
        events.insert(events.end(), {0, 1});
    EXPECT_EQ(RemarksOf(Read(OneTrack(events)).remarks), "");
    events.insert(events.end(), {0, 1});
    Bytes more = OneTrack(events);
    EXPECT_EQ(FaultOf(more).reason, "more than " + std::to_string(kMostMidiEvents) + " events");
    EXPECT_EQ(FaultOf(more).offset, more.size());
    more[18] = 1; // a track that is cut short is no excuse
    EXPECT_EQ(FaultOf(more).reason, "more than " + std::to_string(kMostMidiEvents) + " events");
}

TEST(MidiReader, TheLengthOfATrackIsLimited) {
    Bytes events;
    for (int i = 0; i < 4096; ++i)
        events.insert(events.end(), {0xFF, 0xFF, 0xFF, 0x7F, 0xC0, 5});
    events.insert(events.end(), {0xA0, 0x00, 0xC0, 5}); // 4096 ticks more
    EXPECT_EQ(Read(OneTrack(events)).ends.at(0), std::int64_t{1} << 40);
    events.insert(events.end(), {1, 0xC0, 5});
    EXPECT_EQ(FaultOf(OneTrack(events)).reason, "the track is longer than any melody");
    EXPECT_EQ(FaultOf(OneTrack(events)).offset, 22 + events.size() - 2);
    // Where its last time is cut short, that is the fault.
    events.resize(events.size() - 3);
    events.push_back(0x81);
    Bytes cut = Header(1, 2, 96);
    AddTrack(cut, events, {});
    AddTrack(cut, {});
    EXPECT_EQ(FaultOf(cut).reason, "an event goes on beyond the end of its track");
}

TEST(MidiReader, SmpteDivisionsAreSeconds) {
    for (const auto& [frames, rate] : {std::pair{24, 24.0}, {25, 25.0}, {29, 30000.0 / 1001.0}, {30, 30.0}}) {
        Bytes bytes = Header(0, 1, (256 - frames) << 8 | 41);
        AddTrack(bytes, {0, 0x90, 60, 100, 96, 60, 0});
        const MidiFile file = Read(bytes);
        EXPECT_NEAR(SecondsAt(ClockOf(file, 0), 41.0 * rate), 1.0, 1e-9) << frames;
    }
}

} // namespace
} // namespace tonex::exchange_midi_reader_test
