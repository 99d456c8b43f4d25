#include "score/int16.h"
#include "score/score.h"
#include "tests/print_score.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace tonex::score_test {

namespace {

constexpr Entry kEmptySlot{65535, 65535, 65535};

FileList ListOf(std::initializer_list<FileEntry> entries) {
    FileList list{};
    std::size_t row = 0;
    for (const FileEntry& entry : entries)
        list[row++] = entry;
    return list;
}

FileList NotesOf(int count, std::uint16_t code = 10, std::uint16_t pitch = 26) {
    FileList list{};
    for (int i = 0; i < count; ++i)
        At(list, i) = {code, pitch};
    return list;
}

void ExpectInvariants(const Score& score) {
    ASSERT_GE(score.end_count, 1);
    ASSERT_LE(score.end_count, 510);
    for (int slot = 0; slot < 511; ++slot) {
        const Entry& entry = At(score.sound, slot);
        if (slot < score.end_count - 1) {
            EXPECT_NE(entry.code, 65535) << "slot " << slot;
        } else {
            EXPECT_EQ(entry, kEmptySlot) << "slot " << slot;
        }
    }
    EXPECT_GE(score.strip_cursor, 0);
    EXPECT_LT(score.strip_cursor, 30);
}

TEST(Score, EmptyHasEndCountOneAndAnEmptyFirstSlot) {
    Score score;
    ClearScore(score);
    EXPECT_EQ(score.end_count, 1);
    EXPECT_EQ(score.sound[0].code, 65535);
    ExpectInvariants(score);
}

TEST(Score, AFreshScoreIsAnEmptyScore) {
    const Score score;
    EXPECT_EQ(score.end_count, 1);
    ExpectInvariants(score);
}

TEST(Score, AFullScoreHas509EntriesAndEndCount510) {
    Score score;
    EXPECT_EQ(FillFromFileList(score, NotesOf(509), 0), 0);
    EXPECT_EQ(score.end_count, 510);
    EXPECT_EQ(score.sound[508].code, 11);
    EXPECT_EQ(score.sound[509], kEmptySlot);
    ExpectInvariants(score);
}

TEST(Score, NoFurtherEntryThan509IsTakenFromAList) {
    for (const int count : {510, 511}) {
        Score score;
        EXPECT_EQ(FillFromFileList(score, NotesOf(count), 0), count - 509);
        EXPECT_EQ(score.end_count, 510);
        ExpectInvariants(score);
    }
}

TEST(Score, AListThatEndsEarlyLeavesTheRestOfTheSlotsEmpty) {
    Score score;
    FillFromFileList(score, NotesOf(400), 0);
    EXPECT_EQ(FillFromFileList(score, ListOf({{10, 26}, {110, 86}}), 0), 0);
    EXPECT_EQ(score.end_count, 3);
    for (std::size_t slot = 2; slot < 511; ++slot)
        EXPECT_EQ(score.sound[slot], kEmptySlot) << slot;
}

TEST(Score, ARestKeepsNoPitchAndPosition1200) {
    Score score;
    FillFromFileList(score, ListOf({{100, 86}, {119, 86}}), 75);
    EXPECT_EQ(score.sound[0], (Entry{21, 65535, 1200}));
    EXPECT_EQ(score.sound[1], (Entry{40, 65535, 1200}));
}

TEST(Score, PitchOneIsAtStep7OfOctaveMinus3) {
    EXPECT_EQ(StaffPositionOf(1, 0), 2880);
    EXPECT_EQ(StaffPositionOf(1, 55), 2935);
    EXPECT_EQ(StaffPositionOf(1, -55), 2825);
}

TEST(Score, Pitch12AndPitch13StandAtTheSamePlace) {
    EXPECT_EQ(StaffPositionOf(12, 0), 2460);
    EXPECT_EQ(StaffPositionOf(13, 0), 2460);
    EXPECT_EQ(StaffPositionOf(12, 67), 2527);
    EXPECT_EQ(StaffPositionOf(13, 67), 2527);
}

TEST(Score, FillingMapsEveryFileCode) {
    for (std::uint16_t code = 0; code < 20; ++code) {
        Score score;
        FillFromFileList(score, ListOf({{code, 36}}), 0);
        EXPECT_EQ(score.sound[0], (Entry{static_cast<std::uint16_t>(code + 1), 37, 1620})) << code;
    }
    for (std::uint16_t code = 100; code < 120; ++code) {
        Score score;
        FillFromFileList(score, ListOf({{code, 86}}), 0);
        EXPECT_EQ(score.sound[0], (Entry{static_cast<std::uint16_t>(code - 79), 65535, 1200})) << code;
    }
    Score score;
    FillFromFileList(score, ListOf({{200, 36}}), 75);
    EXPECT_EQ(score.sound[0], (Entry{0, 0, 0}));
}

TEST(Score, FillingSetsTheStripCursorModulo30AndClearsTheRest) {
    const std::vector<std::pair<int, int>> cases = {{0, 0}, {1, 1}, {29, 29}, {30, 0}, {31, 1}, {509, 29}};
    for (const auto& [count, cursor] : cases) {
        Score score;
        score.first_shown = 12;
        score.strip_cursor = 5;
        score.changed = true;
        FillFromFileList(score, NotesOf(count), 0);
        EXPECT_EQ(score.strip_cursor, cursor) << count;
        EXPECT_EQ(score.first_shown, 0) << count;
        EXPECT_FALSE(score.changed) << count;
    }
}

TEST(Score, ForeignCodesNeverBreakTheInvariants) {
    for (int code = 0; code <= 255; ++code) {
        Score score;
        const auto cell = static_cast<std::uint16_t>(code);
        const int dropped = FillFromFileList(score, ListOf({{5, 40}, {cell, 40}, {5, 40}}), 0);
        ExpectInvariants(score);
        // Code 78 is the one that becomes the mark of an empty slot; it ends the melody.
        EXPECT_EQ(dropped, code == 78 ? 2 : 0) << code;
        EXPECT_EQ(score.end_count, code == 78 ? 2 : 4) << code;
    }
}

TEST(Score, ForeignCodesCount79BelowIn16Bits) {
    Score score;
    FillFromFileList(score,
                     ListOf({{20, 1}, {77, 1}, {79, 1}, {99, 1}, {120, 1}, {199, 1}, {201, 1}, {255, 1}}), 0);
    const std::uint16_t expected[] = {65477, 65534, 0, 20, 41, 120, 122, 176};
    for (std::size_t i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(score.sound[i].code, expected[i]) << i;
}

TEST(Score, AForeignSeparatorHasEmptyRowsLikeAnyOther) {
    Score score;
    FillFromFileList(score, ListOf({{79, 40}}), 75);
    EXPECT_EQ(score.sound[0], (Entry{0, 0, 0}));
}

TEST(Score, EveryPitchByteOfAFileHasAPosition) {
    for (int pitch = 0; pitch <= 255; ++pitch) {
        Score score;
        FillFromFileList(score, ListOf({{0, static_cast<std::uint16_t>(pitch)}}), 0);
        EXPECT_EQ(score.sound[0].pitch, pitch + 1);
        EXPECT_TRUE(StaffPositionOf(score.sound[0].pitch, 0).has_value()) << pitch;
        EXPECT_EQ(AsSigned(score.sound[0].position), *StaffPositionOf(score.sound[0].pitch, 0)) << pitch;
    }
}

TEST(Score, ClearNeverWritesSlot510) {
    Score score;
    EXPECT_EQ(score.sound[510], kEmptySlot);
    const Entry guard{1, 2, 3};
    score.sound.fill(guard);
    score.end_count = 77;
    score.first_shown = 30;
    score.strip_cursor = 4;
    score.changed = true;
    ClearScore(score);
    EXPECT_EQ(score.sound[510], guard);
    for (std::size_t slot = 0; slot < 510; ++slot)
        EXPECT_EQ(score.sound[slot], kEmptySlot) << slot;
    EXPECT_EQ(score.end_count, 1);
    EXPECT_EQ(score.first_shown, 0);
    EXPECT_EQ(score.strip_cursor, 0);
    EXPECT_FALSE(score.changed);
}

TEST(Score, StepsOfAnOctave) {
    const std::int16_t expected[] = {1620, 1560, 1500, 1500, 1440, 1440, 1380, 1320, 1320, 1260, 1260, 1200};
    for (std::uint16_t s = 0; s < 12; ++s) {
        const auto pitch = static_cast<std::uint16_t>(37 + s);
        EXPECT_EQ(StaffPositionOf(pitch, 0), expected[s]) << pitch;
        EXPECT_EQ(StaffPositionOf(static_cast<std::uint16_t>(pitch - 12), 0), expected[s] + 420) << pitch;
        EXPECT_EQ(StaffPositionOf(static_cast<std::uint16_t>(pitch + 36), 0), expected[s] - 1260) << pitch;
        EXPECT_EQ(StaffPositionOf(pitch, -30), expected[s] - 30) << pitch;
    }
}

TEST(Score, PositionsOfTheKeyboardsEnds) {
    EXPECT_EQ(StaffPositionOf(27, 0), 1920);
    EXPECT_EQ(StaffPositionOf(75, 0), 240);
}

TEST(Score, NoPitchIsAt1200WithoutTheOffset) {
    EXPECT_EQ(StaffPositionOf(65535, 0), 1200);
    EXPECT_EQ(StaffPositionOf(65535, 300), 1200);
}

TEST(Score, PitchesBelowOneUseStep0) {
    // Pitch 0 has the remainder -1, pitch -10 the remainder -11, pitch -11 the remainder 0 again.
    EXPECT_EQ(StaffPositionOf(0, 0), 2460);
    EXPECT_EQ(StaffPositionOf(AsCell(-10), 0), 2460);
    EXPECT_EQ(StaffPositionOf(AsCell(-11), 0), 420 + 2880);
    EXPECT_EQ(StaffPositionOf(AsCell(-12), 0), 2880);
}

TEST(Score, PositionsThatOverflow16BitsAreRefused) {
    EXPECT_FALSE(StaffPositionOf(AsCell(-32768), 0).has_value());
    EXPECT_FALSE(StaffPositionOf(32767, 0).has_value());
    // 78 octaves of 420 twips are the last that fit.
    EXPECT_EQ(StaffPositionOf(12 * 80 + 1, 0), 420 + 1200 - 77 * 420);
    EXPECT_EQ(StaffPositionOf(12 * 81 + 12, 0), 1200 - 78 * 420);
    EXPECT_FALSE(StaffPositionOf(12 * 82 + 1, 0).has_value());
    EXPECT_EQ(StaffPositionOf(12 * 81 + 12, -1208), -32768);
    EXPECT_FALSE(StaffPositionOf(12 * 81 + 12, -1209).has_value());
    EXPECT_EQ(StaffPositionOf(37, 32767 - 1620), 32767);
    EXPECT_FALSE(StaffPositionOf(37, 32768 - 1620).has_value());
}

TEST(Score, EverySigned16BitPitchIsDefined) {
    for (int pitch = 0; pitch <= 65535; ++pitch) {
        const auto position = StaffPositionOf(static_cast<std::uint16_t>(pitch), 0);
        if (position && pitch != 65535) {
            EXPECT_EQ((*position - 1200) % 60, 0) << pitch;
        }
    }
}

TEST(Score, RecomputeSkipsSeparatorsAndStopsAtTheFirstEmptySlot) {
    Score score;
    score.sound[0] = {11, 37, 7};
    score.sound[1] = {0, 0, 0};
    score.sound[2] = {21, 65535, 7};
    score.sound[4] = {11, 37, 7};
    score.end_count = 4;
    RecomputePositions(score, 15);
    EXPECT_EQ(score.sound[0].position, 1635);
    EXPECT_EQ(score.sound[1].position, 0);
    EXPECT_EQ(score.sound[2].position, 1200);
    EXPECT_EQ(score.sound[4].position, 7);
}

TEST(Score, RecomputePutsAnOverflowingPitchWhereARestIs) {
    Score score;
    score.sound[0] = {11, 32767, 7};
    score.end_count = 2;
    RecomputePositions(score, 0);
    EXPECT_EQ(score.sound[0].position, 1200);
}

TEST(Score, RecomputeReadsNothingBehindTheTable) {
    Score score;
    score.sound.fill({11, 37, 0});
    RecomputePositions(score, 0);
    EXPECT_EQ(score.sound[510].position, 1620);
}

TEST(Score, TheSaveListHasTheFilesCodes) {
    Score score;
    score.sound[0] = {1, 27, 0};
    score.sound[1] = {20, 75, 0};
    score.sound[2] = {0, 0, 0};
    score.sound[3] = {21, 65535, 1200};
    score.sound[4] = {40, 65535, 1200};
    score.end_count = 6;
    const FileList list = BuildSaveList(score);
    EXPECT_EQ(list[0], (FileEntry{0, 26}));
    EXPECT_EQ(list[1], (FileEntry{19, 74}));
    EXPECT_EQ(list[2], (FileEntry{200, 0}));
    EXPECT_EQ(list[3], (FileEntry{100, 0}));
    EXPECT_EQ(list[4], (FileEntry{119, 0}));
    EXPECT_EQ(list[5], (FileEntry{65535, 0}));
    EXPECT_EQ(CountEntries(list), 5);
}

TEST(Score, TheSaveListOfAFullScoreHas509EntriesAndTheEnd) {
    Score score;
    FillFromFileList(score, NotesOf(509, 3, 40), 0);
    const FileList list = BuildSaveList(score);
    EXPECT_EQ(CountEntries(list), 509);
    EXPECT_EQ(list[508], (FileEntry{3, 40}));
    EXPECT_EQ(list[509].code, 65535);
    score.sound.fill({4, 41, 0}); // which no command does
    EXPECT_EQ(BuildSaveList(score), list);
}

TEST(Score, TheSaveListOfAnEmptyScoreIsTheEndAlone) {
    EXPECT_EQ(CountEntries(BuildSaveList(Score{})), 0);
}

TEST(Score, AListComesBackAsItWas) {
    FileList list{};
    std::size_t row = 0;
    for (std::uint16_t code = 0; code < 20; ++code)
        list[row++] = {code, static_cast<std::uint16_t>(255 - code)};
    for (std::uint16_t code = 100; code < 120; ++code)
        list[row++] = {code, 0};
    list[row++] = {200, 0};
    Score score;
    EXPECT_EQ(FillFromFileList(score, list, 0), 0);
    EXPECT_EQ(BuildSaveList(score), list);
}

TEST(Score, ForeignCodesComeBackAsCodesThatNoFileHas) {
    for (int code = 20; code <= 255; ++code) {
        if ((code >= 100 && code < 120) || code == 200 || code == 78) continue;
        Score score;
        FillFromFileList(score, ListOf({{static_cast<std::uint16_t>(code), 40}}), 0);
        const std::uint16_t saved = BuildSaveList(score)[0].code;
        if (code >= 79 && code <= 99) continue; // they land on separator and note codes
        EXPECT_EQ(saved, code);
    }
}

TEST(Score, NoUnknownEntryCodeIsSavedAsAKnownOne) {
    Score score;
    score.end_count = 510;
    for (int first = 41; first < 65535; first += 509) {
        const auto code_at = [=](int slot) { return std::min(first + slot, 65534); };
        for (int slot = 0; slot < 509; ++slot)
            At(score.sound, slot) = {static_cast<std::uint16_t>(code_at(slot)), 40, 0};
        const FileList list = BuildSaveList(score);
        for (int slot = 0; slot < 509; ++slot) {
            const int saved = At(list, slot).code;
            EXPECT_TRUE(saved >= 20 && !(saved >= 100 && saved < 120) && saved != 200 && saved != 65535)
                << code_at(slot);
        }
    }
}

TEST(Score, ANoteWithoutPitchIsSavedWithAPitchThatNoFileHas) {
    Score score;
    score.sound[0] = {11, 65535, 1200};
    score.sound[1] = {11, 0, 1200};
    score.end_count = 3;
    EXPECT_GT(BuildSaveList(score)[0].pitch, 255);
    EXPECT_GT(BuildSaveList(score)[1].pitch, 255);
}

TEST(Score, CountOfAListWithoutAnEndIsItsLength) {
    FileList list{};
    list.fill({0, 0});
    EXPECT_EQ(CountEntries(list), 512);
}

} // namespace

} // namespace tonex::score_test
