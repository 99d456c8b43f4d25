#include "exchange/fit.h"
#include "exchange/midi_clock.h"
#include "exchange/midi_nominal.h"
#include "exchange/midi_writer.h"
#include "exchange/played.h"
#include "tests/midi_files.h"

#include <gtest/gtest.h>
#include <random>

namespace tonex::exchange_midi_writer_test {
namespace {

using testing::Read;

const TimingTables& Tables() {
    static const TimingTables tables = BuildTimingTables();
    return tables;
}

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

void ExpectSameItems(const Tune& one, const Tune& other) {
    ASSERT_EQ(one.items.size(), other.items.size());
    for (std::size_t i = 0; i < one.items.size(); ++i) {
        EXPECT_EQ(one.items[i].kind, other.items[i].kind) << i;
        EXPECT_EQ(one.items[i].pitch, other.items[i].pitch) << i;
        EXPECT_NEAR(one.items[i].quarters, other.items[i].quarters, 1e-9) << i;
        EXPECT_NEAR(one.items[i].seconds, other.items[i].seconds, 1e-9) << i;
    }
}

TEST(MidiRoundTrip, OfTheNominalWayGivesTheSameFile) {
    std::mt19937 random(5);
    for (int i = 0; i < 200; ++i) {
        const Melody melody = RandomMelody(random);
        const MidiBytes made = WriteNominalMidi(melody, "r"); // as the marker of a rest
        ASSERT_FALSE(made.bytes.empty()) << made.reason;
        const auto tune = TuneOfNominal(Read(made.bytes));
        ASSERT_TRUE(tune.has_value());
        ExpectSameItems(*tune, TuneOfMelody(melody));
        EXPECT_EQ(tune->tempo, melody.tempo);
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
    MidiFile of_no_tempo = Read(made.bytes);
    of_no_tempo.texts[1].text += 'x';
    EXPECT_FALSE(TuneOfNominal(of_no_tempo).has_value());
}

using Bytes = std::vector<std::uint8_t>;

/// A note, a separator, a rest and a second note, each as long as its code.
Melody FourEntries(std::uint16_t note, std::uint16_t rest, std::uint16_t last) {
    Melody melody;
    melody.tempo = 120;
    melody.list[0] = {note, 26};
    melody.list[1] = {kFileSeparator, 0};
    melody.list[2] = {static_cast<std::uint16_t>(kFileRests + rest), kFileRestPitch};
    melody.list[3] = {last, 28};
    return melody;
}

TEST(MidiWriter, WritesLengthsByteByByte) {
    Bytes bytes = {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0, 0, 1, 0x01, 0xE0, 'M', 'T', 'r', 'k', 0, 0, 0, 67};
    const auto add = [&](const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); };
    add({0, 0xFF, 3, 2, 'a', 'b'});
    add({0,   0xFF, 1,   17,  's', 'n', 'd', 't', 'o', 'o', 'l',
         ' ', 't',  'e', 'm', 'p', 'o', ' ', '1', '2', '0'});
    add({0, 0xFF, 0x51, 3, 0x07, 0xA1, 0x20});
    add({0, 0x90, 60, 100, 0x83, 0x60, 0x80, 60, 0}); // 480 ticks
    add({0, 0xFF, 6, 1, '|', 0, 0xFF, 6, 1, 'r'});
    add({0x81, 0x70, 0x90, 62, 100, 0x81, 0x70, 0x80, 62, 0}); // 240 and 240
    add({0, 0xFF, 0x2F, 0});
    const MidiBytes made = WriteNominalMidi(FourEntries(10, 6, 6), "ab");
    EXPECT_EQ(made.bytes, bytes);
    EXPECT_EQ(made.ticks, 960);
}

TEST(MidiWriter, NumbersFrom128OnTakeASecondByte) {
    const Bytes short_one = WriteNominalMidi(FourEntries(10, 6, 6), std::string(127, 'x')).bytes;
    EXPECT_EQ(Bytes(short_one.begin() + 22, short_one.begin() + 27), (Bytes{0, 0xFF, 3, 0x7F, 'x'}));
    const Bytes long_one = WriteNominalMidi(FourEntries(10, 6, 6), std::string(128, 'x')).bytes;
    EXPECT_EQ(Bytes(long_one.begin() + 22, long_one.begin() + 28), (Bytes{0, 0xFF, 3, 0x81, 0, 'x'}));
}

TEST(MidiWriter, WritesRecordsByteByByte) {
    // 8 time units of which half sound, a rest of 290 in 19 records, and 20 of which the last of 4 does not
    // sound.
    Bytes records = {26, 0x28};
    for (int i = 0; i < 18; ++i)
        records.insert(records.end(), {200, 0});
    records.insert(records.end(), {200, 2, 28, 0x80, 28, 0x34});
    Bytes bytes = {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0, 0, 1, 0x01, 0xE0, 'M', 'T', 'r', 'k', 0, 0, 0, 42};
    const auto add = [&](const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); };
    add({0, 0xFF, 3, 1, 'p', 0, 0xFF, 0x51, 3, 0x07, 0xA1, 0x20});
    add({0, 0x90, 60, 100, 0x81, 0x70, 0x80, 60, 0});  // 240 of 480 ticks
    add({0x81, 0x70, 0xFF, 6, 1, '|'});                // 240
    add({0x81, 0x87, 0x78, 0x90, 62, 100});            // 17,400
    add({0x88, 0x74, 0x80, 62, 0, 60, 0xFF, 0x2F, 0}); // 1,140 of 1,200
    const MidiBytes made = WritePlayedMidi({4, records}, FourEntries(10, 10, 10), 0, {8, 0, 290, 20}, "p");
    EXPECT_EQ(made.reason, "");
    EXPECT_EQ(made.bytes, bytes);
    EXPECT_EQ(made.ticks, 480 + 17400 + 1200);
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
    melody.list[0] = {50, 20};
    EXPECT_EQ(WriteNominalMidi(melody, "x").reason, "entry 1 has the unknown code 50");
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
    const std::vector<std::uint8_t> first = {94, 24, 26, 24};
    EXPECT_EQ(WritePlayedMidi({4, first}, melody, 0, {8, 8}, "x").reason,
              "record 1 is higher than MIDI goes");
    EXPECT_EQ(Read(written(94, 15).bytes).notes.size(), 1u);
}

} // namespace
} // namespace tonex::exchange_midi_writer_test
