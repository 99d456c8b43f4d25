#include "view/note_names.h"

#include <gtest/gtest.h>

#include <string>

namespace tonex::note_names_test {
namespace {

std::wstring Grid(int pitch, bool doremi = false) {
    return std::wstring(NoteNameOf(static_cast<std::uint16_t>(pitch), doremi).View());
}

std::wstring Caption(int semitone, int octave, bool doremi) {
    return std::wstring(KeyCaptionOf(semitone, octave, doremi).View());
}

TEST(NoteNames, EveryPitchOfThePianoInLetters) {
    const wchar_t* expected[49] = {
        L"c4",   L"c4 #", L"d4",   L"d4 #", L"e4",   L"f4",   L"f4 #", L"g4",   L"g4 #", L"a4",
        L"a4 #", L"b4",   L"c5",   L"c5 #", L"d5",   L"d5 #", L"e5",   L"f5",   L"f5 #", L"g5",
        L"g5 #", L"a5",   L"a5 #", L"b5",   L"c6",   L"c6 #", L"d6",   L"d6 #", L"e6",   L"f6",
        L"f6 #", L"g6",   L"g6 #", L"a6",   L"a6 #", L"b6",   L"c7",   L"c7 #", L"d7",   L"d7 #",
        L"e7",   L"f7",   L"f7 #", L"g7",   L"g7 #", L"a7",   L"a7 #", L"b7",   L"c8",
    };
    for (int i = 0; i < 49; ++i)
        EXPECT_EQ(Grid(27 + i), expected[i]) << "pitch " << 27 + i;
}

TEST(NoteNames, EverySemitoneInDoremi) {
    const wchar_t* expected[12] = {L"ラ #", L"シ", L"ド",   L"ド #", L"レ",   L"レ #",
                                   L"ミ",   L"ﾌｧ", L"ﾌｧ #", L"ソ",   L"ソ #", L"ラ"};
    for (int pitch = 1; pitch <= 96; ++pitch) {
        EXPECT_EQ(Grid(pitch, true), expected[(pitch - 1) % 12]) << "pitch " << pitch;
    }
}

TEST(NoteNames, Pitch65535IsADashBetweenBlanks) {
    EXPECT_EQ(Grid(65535, false), L" - ");
    EXPECT_EQ(Grid(65535, true), L" - ");
}

TEST(NoteNames, Pitch1IsASharp1) {
    EXPECT_EQ(Grid(1, false), L"a1 #");
    EXPECT_EQ(Grid(1, true), L"ラ #");
}

TEST(NoteNames, Pitch12IsA2AndPitch13ASharp2) {
    EXPECT_EQ(Grid(12), L"a2");
    EXPECT_EQ(Grid(13), L"a2 #");
}

TEST(NoteNames, TheOctaveNumberChangesBetweenBAndC) {
    EXPECT_EQ(Grid(2), L"b1");
    EXPECT_EQ(Grid(3), L"c2");
    EXPECT_EQ(Grid(4), L"c2 #");
    EXPECT_EQ(Grid(14), L"b2");
    EXPECT_EQ(Grid(15), L"c3");
}

TEST(NoteNames, ASeparatorsPitchHasNoText) {
    EXPECT_EQ(Grid(0, false), L"");
    EXPECT_EQ(Grid(0, true), L"");
}

TEST(NoteNames, PitchesBelowOneAreReadAsSignedNumbers) {
    EXPECT_EQ(Grid(65536 - 10), L"") << "remainder -11";
    EXPECT_EQ(Grid(65536 - 11), L"a0 #") << "remainder 0, octave -1 + 2 - 1";
    EXPECT_EQ(Grid(65536 - 35), L"a-2 #");
    EXPECT_EQ(Grid(32768), L"") << "the lowest number of 16 bits";
    EXPECT_EQ(Grid(32767), L"e2732");
}

TEST(NoteNames, KeyCaptionsHaveNoBlankBeforeTheSharpSign) {
    const wchar_t* letters[12] = {L"c4",  L"c4#", L"d4",  L"d4#", L"e4",  L"f4",
                                  L"f4#", L"g4",  L"g4#", L"a4",  L"a4#", L"b4"};
    const wchar_t* doremi[12] = {L"ド",  L"ド#", L"レ",  L"レ#", L"ミ",  L"ﾌｧ",
                                 L"ﾌｧ#", L"ソ",  L"ソ#", L"ラ",  L"ラ#", L"シ"};
    for (int s = 0; s < 12; ++s) {
        EXPECT_EQ(Caption(s, 4, false), letters[s]);
        EXPECT_EQ(Caption(s, 4, true), doremi[s]);
    }
}

TEST(NoteNames, EveryLengthHasItsName) {
    const wchar_t* expected[20] = {
        L"Thirty-second",
        L"Triplet thirty-second",
        L"Sixteenth",
        L"Dotted sixteenth",
        L"Double-dotted sixteenth",
        L"Triplet sixteenth",
        L"Eighth",
        L"Dotted eighth",
        L"Double-dotted eighth",
        L"Triplet eighth",
        L"Quarter",
        L"Dotted quarter",
        L"Double-dotted quarter",
        L"Triplet quarter",
        L"Half",
        L"Dotted half",
        L"Double-dotted half",
        L"Whole",
        L"Dotted whole",
        L"Double-dotted whole",
    };
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(LengthNameOf(static_cast<std::uint16_t>(i + 1)), std::wstring(expected[i]) + L" note");
        EXPECT_EQ(LengthNameOf(static_cast<std::uint16_t>(i + 21)), std::wstring(expected[i]) + L" rest");
    }
    EXPECT_EQ(LengthNameOf(0), L"");
    EXPECT_EQ(LengthNameOf(41), L"");
    EXPECT_EQ(LengthNameOf(65535), L"");
}

TEST(NoteNames, AnEntryIsReadAloud) {
    EXPECT_EQ(EntryNameOf(11, 28, false), L"c4#, Quarter note");
    EXPECT_EQ(EntryNameOf(11, 28, true), L"ド#, Quarter note");
    EXPECT_EQ(EntryNameOf(8, 43, false), L"e5, Dotted eighth note");
    EXPECT_EQ(EntryNameOf(27, 65535, false), L"Eighth rest");
    EXPECT_EQ(EntryNameOf(0, 0, false), L"Separator");
    EXPECT_EQ(EntryNameOf(65535, 65535, false), L"End");
    EXPECT_EQ(EntryNameOf(99, 65535, false), L"Unknown entry");
    EXPECT_EQ(EntryNameOf(11, 65535, false), L"Quarter note") << "a note without a pitch";
}

TEST(NoteNames, SharpsAreTheFiveBlackKeysOfAnOctave) {
    const bool expected[12] = {true, false, false, true, false, true, false, false, true, false, true, false};
    for (int pitch = 1; pitch <= 96; ++pitch) {
        EXPECT_EQ(IsSharp(static_cast<std::uint16_t>(pitch)), expected[(pitch - 1) % 12]) << pitch;
    }
    EXPECT_FALSE(IsSharp(65535));
    EXPECT_FALSE(IsSharp(0));
}

TEST(CellText, WhatIsTooLongIsCut) {
    const CellText text(L"0123456789abc");
    EXPECT_EQ(text.View(), L"0123456789a");
    EXPECT_EQ(text.characters.back(), L'\0');
}

} // namespace
} // namespace tonex::note_names_test
