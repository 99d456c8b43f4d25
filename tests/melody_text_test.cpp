#include "score/melody_text.h"

#include "score/snd_file.h"
#include "view/note_names.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace tonex::melody_text_test {
namespace {

const TimingTables& Tables() {
    static const TimingTables tables = BuildTimingTables();
    return tables;
}

Melody Parsed(std::string_view text) {
    MelodyTextFault fault;
    const auto melody = ParseMelodyText(Tables(), text, fault);
    EXPECT_TRUE(melody.has_value()) << "line " << fault.line << ": " << fault.reason << "\n" << text;
    EXPECT_EQ(fault.line, 0);
    EXPECT_EQ(fault.reason, "");
    return melody.value_or(Melody{});
}

std::string Formatted(const Melody& melody) {
    int entry = -2;
    const auto text = FormatMelodyText(melody, entry);
    EXPECT_TRUE(text.has_value()) << "entry " << entry;
    EXPECT_EQ(entry, -1);
    return text.value_or("");
}

MelodyTextFault FaultOf(std::string_view text) {
    MelodyTextFault fault;
    EXPECT_FALSE(ParseMelodyText(Tables(), text, fault).has_value()) << text;
    return fault;
}

std::vector<FileEntry> EntriesOf(const Melody& melody) {
    return {melody.list.begin(), melody.list.begin() + CountEntries(melody.list)};
}

std::vector<std::uint8_t> Encoded(const Melody& melody) {
    const SndEncoding encoding = EncodeSnd(Tables(), melody.tempo, melody.list);
    EXPECT_EQ(encoding.result, kSndDone);
    return encoding.bytes;
}

int NumberBelow(std::mt19937& random, int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

/// Notes of any pitch a file can hold, rests and separators of any length code.
Melody RandomMelody(std::mt19937& random, int entries) {
    Melody melody;
    melody.tempo = At(Tables().tempo_list, NumberBelow(random, 28));
    for (int i = 0; i < entries; ++i) {
        FileEntry& entry = At(melody.list, i);
        const int kind = NumberBelow(random, 10);
        if (kind == 0) {
            entry = {200, 0};
        } else if (kind <= 2) {
            entry = {static_cast<std::uint16_t>(100 + NumberBelow(random, 20)), 86};
        } else {
            entry = {static_cast<std::uint16_t>(NumberBelow(random, 20)),
                     static_cast<std::uint16_t>(NumberBelow(random, 256))};
        }
    }
    return melody;
}

std::string Repeated(std::string_view line, int times) {
    std::string text;
    for (int i = 0; i < times; ++i)
        text += line;
    return text;
}

TEST(MelodyText, TwentyLengthsOnePerLengthCode) {
    const std::string_view expected[20] = {"1/32", "1/32t", "1/16",  "1/16.", "1/16..", "1/16t", "1/8",
                                           "1/8.", "1/8..", "1/8t",  "1/4",   "1/4.",   "1/4..", "1/4t",
                                           "1/2",  "1/2.",  "1/2..", "1/1",   "1/1.",   "1/1.."};
    for (int code = 0; code < 20; ++code) {
        EXPECT_EQ(LengthTextOf(code), expected[code]) << code;
        const std::string text =
            "tempo 120\nc4 " + std::string(expected[code]) + "\nr " + std::string(expected[code]) + "\n";
        const auto entries = EntriesOf(Parsed(text));
        ASSERT_EQ(entries.size(), 2U) << text;
        EXPECT_EQ(entries[0], (FileEntry{static_cast<std::uint16_t>(code), 26})) << text;
        EXPECT_EQ(entries[1], (FileEntry{static_cast<std::uint16_t>(100 + code), 86})) << text;
    }
}

TEST(MelodyText, NoOtherLengthIsTaken) {
    for (const char* length : {"1/32.", "1/32..", "1/1t", "1/2t", "1/4t.", "1/4.t", "1/4...", "1/64", "1/3",
                               "2/4", "1/", "/4", "4", "1/04", "1/4T", "1/4#", "1/4|", "-1/4", "1 /4"}) {
        const MelodyTextFault fault = FaultOf(std::string("tempo 120\nc4 1/4\nr ") + length + "\n");
        EXPECT_EQ(fault.line, 3) << length;
        EXPECT_NE(fault.reason.find("is no length"), std::string::npos) << fault.reason;
    }
}

TEST(MelodyText, ThreeTripletsFillTheLengthTwiceAsLong) {
    const auto units = [](std::string_view length, int mode) {
        const auto entries = EntriesOf(Parsed("tempo 160\nr " + std::string(length) + "\n"));
        return At(At(Tables().length_units, mode), entries.at(0).code - 100);
    };
    for (int mode = 0; mode < kTimingModes; ++mode) {
        EXPECT_FLOAT_EQ(3 * units("1/8t", mode), units("1/4", mode));
        EXPECT_FLOAT_EQ(3 * units("1/4t", mode), units("1/2", mode));
        EXPECT_FLOAT_EQ(3 * units("1/16t", mode), units("1/8", mode));
        EXPECT_FLOAT_EQ(3 * units("1/32t", mode), units("1/16", mode));
    }
}

TEST(MelodyText, PitchesAreNamedLikeThePianoKeys) {
    EXPECT_EQ(PitchTextOf(1), "a1#");
    EXPECT_EQ(PitchTextOf(2), "b1");
    EXPECT_EQ(PitchTextOf(3), "c2");
    EXPECT_EQ(PitchTextOf(12), "a2");
    EXPECT_EQ(PitchTextOf(13), "a2#");
    EXPECT_EQ(PitchTextOf(14), "b2");
    EXPECT_EQ(PitchTextOf(15), "c3");
    EXPECT_EQ(PitchTextOf(27), "c4");
    EXPECT_EQ(PitchTextOf(28), "c4#");
    EXPECT_EQ(PitchTextOf(75), "c8");
    EXPECT_EQ(PitchTextOf(256), "c23#");
    for (int pitch = 1; pitch <= 256; ++pitch) {
        // The grid writes the sharp behind a blank, the keys and this text without.
        std::string grid;
        const CellText cell = NoteNameOf(static_cast<std::uint16_t>(pitch), false);
        for (const wchar_t character : cell.View()) {
            if (character != L' ') grid.push_back(static_cast<char>(character));
        }
        EXPECT_EQ(PitchTextOf(pitch), grid);
        const auto entries = EntriesOf(Parsed("tempo 30\n" + PitchTextOf(pitch) + " 1/32\n"));
        ASSERT_EQ(entries.size(), 1U);
        EXPECT_EQ(entries[0].pitch, pitch - 1);
    }
}

TEST(MelodyText, NoOtherPitchIsTaken) {
    for (const char* note :
         {"a1", "g1", "c1", "d23", "e4#", "b4#", "c0", "c24",  "c04", "c4##", "c#4",         "C4",
          "h4", "c",  "c#", "c-4", "c4b", "c+4", "R",  "rest", "||",  "|c4",  "c99999999999"}) {
        const MelodyTextFault fault = FaultOf(std::string("tempo 120\n") + note + " 1/4\n");
        EXPECT_EQ(fault.line, 2) << note;
        EXPECT_NE(fault.reason.find(std::string("\"") + note + "\""), std::string::npos) << fault.reason;
    }
}

TEST(MelodyText, AReasonSaysWhatIsWrongWithAPitchOrLength) {
    const std::string no_note = " is no note, r or |";
    const std::string no_octave = " is no note: an octave 1 to 23 follows the letter, then # for a sharp";
    const std::string outside = " is outside a1# to c23#";
    const std::pair<const char*, std::string> pitches[] = {{"C4", no_note},
                                                           {"h4", no_note},
                                                           {"c", no_octave},
                                                           {"c#", no_octave},
                                                           {"c04", no_octave},
                                                           {"c24", no_octave},
                                                           {"c4b", no_octave},
                                                           {"c0", outside},
                                                           {"a1", outside},
                                                           {"d23", outside},
                                                           {"e4#", " is no note: e and b have no sharp"}};
    for (const auto& [word, reason] : pitches)
        EXPECT_EQ(FaultOf(std::string("tempo 120\n") + word + " 1/4\n").reason,
                  "\"" + std::string(word) + "\"" + reason);
    EXPECT_EQ(FaultOf("tempo 120\nr 1/3\n").reason,
              "\"1/3\" is no length: 1/1 1/2 1/4 1/8 1/16 1/32, with . or .. on 1/1 to 1/16, "
              "with t on 1/4 to 1/32");
}

TEST(MelodyText, EveryKindOfLine) {
    const Melody melody = Parsed("# a comment, also after an entry\n"
                                 "tempo 120\n"
                                 "c4 1/4\n"
                                 "c4# 1/8.\n"
                                 "d5 1/4..   # like this\n"
                                 "\t e5\t1/8t \n"
                                 "\n"
                                 "r 1/2\n"
                                 "|\n"
                                 "   # the end\n");
    EXPECT_EQ(melody.tempo, 120);
    EXPECT_EQ(EntriesOf(melody),
              (std::vector<FileEntry>{{10, 26}, {7, 27}, {12, 40}, {9, 42}, {114, 86}, {200, 86}}));
    EXPECT_EQ(Formatted(melody), "tempo 120\nc4 1/4\nc4# 1/8.\nd5 1/4..\ne5 1/8t\nr 1/2\n|\n");
}

TEST(MelodyText, ASharpIsNoComment) {
    EXPECT_EQ(EntriesOf(Parsed("tempo 120\nf5# 1/4 #f5 1/4\n")), (std::vector<FileEntry>{{10, 44}}));
    EXPECT_EQ(FaultOf("tempo 120\nf5 # 1/4\n").reason, "a length follows \"f5\"");
}

TEST(MelodyText, AnyLineEnds) {
    const auto expected = EntriesOf(Parsed("tempo 60\nc5 1/4\nr 1/4\n"));
    ASSERT_EQ(expected.size(), 2U);
    for (const char* text : {"tempo 60\r\nc5 1/4\r\nr 1/4\r\n", "tempo 60\rc5 1/4\rr 1/4\r",
                             "tempo 60\nc5 1/4\nr 1/4", "\xEF\xBB\xBFtempo 60\nc5 1/4\n\n\r\n\rr 1/4\n\n"}) {
        EXPECT_EQ(EntriesOf(Parsed(text)), expected) << text;
    }
    EXPECT_EQ(FaultOf("tempo 60\r\n\r\nx\r\n").line, 3);
    EXPECT_EQ(FaultOf("tempo 60\r\rx").line, 3);
    EXPECT_EQ(FaultOf("tempo 60\n\nx").line, 3);
}

TEST(MelodyText, SeparatorsRepeatThePitchByteBefore) {
    EXPECT_EQ(EntriesOf(Parsed("tempo 120\n|\nc5 1/4\n|\n|\nr 1/4\n|\n")),
              (std::vector<FileEntry>{{200, 0}, {10, 38}, {200, 38}, {200, 38}, {110, 86}, {200, 86}}));
}

TEST(MelodyText, AnEmptyMelodyIsItsTempo) {
    const Melody melody = Parsed("tempo 640\n");
    EXPECT_EQ(CountEntries(melody.list), 0);
    EXPECT_EQ(Formatted(melody), "tempo 640\n");
    EXPECT_EQ(Encoded(melody).size(), 12U);
}

TEST(MelodyText, TheTempoComesFirstOnceAndIsInTheList) {
    EXPECT_EQ(FaultOf("").line, 1);
    EXPECT_EQ(FaultOf("").reason, "the tempo is missing");
    EXPECT_EQ(FaultOf("# nothing\n# at all\n").line, 2);
    EXPECT_EQ(FaultOf("# none\nc4 1/4\ntempo 120\n").line, 2);
    EXPECT_EQ(FaultOf("# none\nc4 1/4\ntempo 120\n").reason, "the tempo comes first");
    EXPECT_EQ(FaultOf("tempo 120\nc4 1/4\ntempo 120\n").line, 3);
    EXPECT_EQ(FaultOf("tempo 120\nc4 1/4\ntempo 120\n").reason, "the tempo comes once");
    EXPECT_EQ(FaultOf("tempo\n").reason, "a number follows tempo");
    EXPECT_EQ(
        FaultOf("tempo 121\n").reason,
        "\"121\" is not in the tempo list: 640 480 320 240 214 160 128 120 108 96 92 80 72 70 64 60 58 54 50 "
        "48 46 44 40 38 36 34 32 30");
    for (const char* tempo :
         {"0", "00", "0120", "-120", "+120", "120.0", "1e2", "65656", "120bpm", "4294967416"}) {
        const MelodyTextFault fault = FaultOf(std::string("tempo ") + tempo + "\n");
        EXPECT_EQ(fault.line, 1) << tempo;
        EXPECT_NE(fault.reason.find("is not in the tempo list"), std::string::npos) << fault.reason;
    }
    for (int i = 0; i < 28; ++i) {
        const std::int16_t tempo = At(Tables().tempo_list, i);
        EXPECT_EQ(Parsed("tempo " + std::to_string(tempo) + "\n").tempo, tempo);
    }
}

TEST(MelodyText, OneEntryALine) {
    EXPECT_EQ(FaultOf("tempo 120 c4 1/4\n").reason, "\"c4\" behind the tempo: one entry a line");
    EXPECT_EQ(FaultOf("tempo 120\nc4 1/4 d4 1/4\n").reason, "\"d4\" behind the entry: one entry a line");
    EXPECT_EQ(FaultOf("tempo 120\nr 1/4 |\n").reason, "\"|\" behind the entry: one entry a line");
    EXPECT_EQ(FaultOf("tempo 120\n| |\n").reason, "\"|\" behind the entry: one entry a line");
    EXPECT_EQ(FaultOf("tempo 120\nc4\n").reason, "a length follows \"c4\"");
    EXPECT_EQ(FaultOf("tempo 120\nr\n").reason, "a length follows \"r\"");
}

TEST(MelodyText, AtMost509EntriesAndTheLineOfTheNextIsNamed) {
    const std::string head = "# head\ntempo 640\n";
    const Melody melody = Parsed(head + Repeated("|\n", 509));
    EXPECT_EQ(CountEntries(melody.list), 509);
    EXPECT_EQ(CountEntries(Parsed(Formatted(melody)).list), 509);

    const MelodyTextFault fault = FaultOf(head + Repeated("|\n", 509) + "# one more\n\n|\n|\n");
    EXPECT_EQ(fault.line, 2 + 509 + 3);
    EXPECT_EQ(fault.reason, "entry 510: a melody has at most 509");
}

TEST(MelodyText, LinesOfEntries) {
    const std::string_view text = "# head\ntempo 120\nc4 1/4 # first\r\n\n|\nr 1/4";
    EXPECT_EQ(LineOfEntry(text, 0), 3);
    EXPECT_EQ(LineOfEntry(text, 1), 5);
    EXPECT_EQ(LineOfEntry(text, 2), 6);
    EXPECT_EQ(LineOfEntry(text, 3), 0);
}

TEST(MelodyText, WhatTheTextCanNotNameIsTold) {
    const auto fault_entry = [](FileEntry entry) {
        Melody melody{120, {}};
        melody.list[0] = {10, 26};
        melody.list[1] = entry;
        int fault = -2;
        EXPECT_FALSE(FormatMelodyText(melody, fault).has_value());
        return fault;
    };
    for (int code = 0; code < 256; ++code) {
        const bool known = code < 20 || (code >= 100 && code < 120) || code == 200;
        if (known) continue;
        EXPECT_EQ(fault_entry({static_cast<std::uint16_t>(code), 26}), 1) << code;
    }
    EXPECT_EQ(fault_entry({10, 256}), 1);
    EXPECT_EQ(fault_entry({10, 65534}), 1);

    Melody longest{120, {}};
    for (int i = 0; i < 511; ++i)
        At(longest.list, i) = {200, 0};
    int fault = -2;
    EXPECT_FALSE(FormatMelodyText(longest, fault).has_value());
    EXPECT_EQ(fault, 509);
}

TEST(MelodyText, TextOfAFileAndBuildOfThatTextGiveTheSameFile) {
    std::mt19937 random(20240229);
    int whole = 0;
    for (int round = 0; round < 400; ++round) {
        const Melody melody = RandomMelody(random, NumberBelow(random, 510));
        const SndEncoding first = EncodeSnd(Tables(), melody.tempo, melody.list);
        if (first.result == kSndFull) continue; // a cut melody's mode was chosen for the whole
        ASSERT_EQ(first.result, kSndDone);
        ++whole;

        Melody loaded;
        ASSERT_EQ(DecodeSnd(first.bytes, loaded.tempo, loaded.list), kSndDone);
        const Melody built = Parsed(Formatted(loaded));
        EXPECT_EQ(built.tempo, loaded.tempo);
        EXPECT_EQ(EntriesOf(built), EntriesOf(loaded)) << "round " << round;
        EXPECT_EQ(Encoded(built), first.bytes) << "round " << round;
        EXPECT_EQ(Formatted(built), Formatted(loaded));
    }
    EXPECT_GT(whole, 100);
}

TEST(MelodyText, AnyBytesAreReadOrRefusedWithALine) {
    std::mt19937 random(7);
    const std::string good = "# x\ntempo 120\n" + Repeated("c4# 1/8.\n|\nr 1/4t # y\n", 4);
    int refused = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string text = good.substr(0, 1 + random() % good.size());
        for (int i = 0; i < 3; ++i)
            text[random() % text.size()] = static_cast<char>(random() % 256);
        MelodyTextFault fault;
        const auto melody = ParseMelodyText(Tables(), text, fault);
        if (melody) {
            EXPECT_LE(CountEntries(melody->list), kMaxEntries);
            EXPECT_EQ(EntriesOf(Parsed(Formatted(*melody))), EntriesOf(*melody));
            continue;
        }
        ++refused;
        EXPECT_GE(fault.line, 1);
        EXPECT_NE(fault.reason, "");
        for (const char character : fault.reason)
            EXPECT_GE(static_cast<std::uint8_t>(character), 0x20);
    }
    EXPECT_GT(refused, 1000);
}

TEST(MelodyText, AReasonShowsAWrongWordShortAndWhole) {
    EXPECT_EQ(FaultOf("tempo 120\n" + std::string(500, 'x') + " 1/4\n").reason,
              "\"" + std::string(24, 'x') + "...\" is no note, r or |");
    EXPECT_EQ(FaultOf("tempo 120\n" + std::string(24, 'x') + " 1/4\n").reason,
              "\"" + std::string(24, 'x') + "\" is no note, r or |");
    // Never half a character: 23 letters, then one of two bytes that would be cut.
    EXPECT_EQ(FaultOf("tempo 120\n" + std::string(23, 'x') + "\xC3\xA9yyy 1/4\n").reason,
              "\"" + std::string(23, 'x') + "...\" is no note, r or |");
    EXPECT_EQ(FaultOf(std::string("tempo 120\n\x1b[2J 1/4\n")).reason, "\"?[2J\" is no note, r or |");
}

TEST(MelodyText, ParsingTwiceGivesTheSame) {
    const std::string text = "tempo 54\nc5 1/4\n|\ng5# 1/16t\n";
    const auto first = EntriesOf(Parsed(text));
    EXPECT_EQ(first, (std::vector<FileEntry>{{10, 38}, {200, 38}, {5, 46}}));
    FaultOf("tempo 54\nwrong\n");
    EXPECT_EQ(EntriesOf(Parsed(text)), first);
}

TEST(MelodyText, AWordOfContinuationBytesIsCutToNothing) {
    EXPECT_EQ(FaultOf("tempo 120\n" + std::string(30, '\x80') + " 1/4\n").reason,
              "\"...\" is no note, r or |");
}

TEST(MelodyText, ControlCharactersOfAWrongWordAreShownAsQuestionMarks) {
    EXPECT_EQ(FaultOf("tempo 120\nx!\x1F\x7Fy 1/4\n").reason, "\"x!??y\" is no note, r or |");
    EXPECT_EQ(FaultOf("tempo 120\nx~\xC2\x80y 1/4\n").reason, "\"x~\xC2\x80y\" is no note, r or |");
}

TEST(MelodyText, ACarriageReturnAloneEndsALineAlsoTheLast) {
    EXPECT_EQ(EntriesOf(Parsed("tempo 120\rc5 1/4\rd5 1/4\r")).size(), 2u);
    EXPECT_EQ(FaultOf("tempo 120\r\rwrong\r").line, 3);
    EXPECT_EQ(FaultOf("tempo 120\r\n\r\nwrong\r\n").line, 3);
    EXPECT_EQ(FaultOf("# no tempo\r\n").line, 1);
    EXPECT_EQ(FaultOf("# no tempo\r").line, 1);
}

} // namespace
} // namespace tonex::melody_text_test
