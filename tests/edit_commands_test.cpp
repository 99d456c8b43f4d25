#include "app/enabling_commands.h"
#include "view/edit_commands.h"

#include "score/document_commands.h"
#include "tests/set_up_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace tonex::edit_commands_test {
namespace {

using namespace tonex::testing;

// The score's invariants and the views that have to agree with it.
void ExpectWhole(const sndmain& window) {
    const Score& score = window.score;
    ASSERT_GE(score.end_count, 1);
    ASSERT_LE(score.end_count, 510);
    for (int i = 0; i < 511; ++i)
        EXPECT_EQ(SlotOf(window, i).code == kEmpty, i >= score.end_count - 1) << i;
    for (int i = score.end_count - 1; i < 511; ++i)
        EXPECT_EQ(SlotOf(window, i), Entry()) << i;
    EXPECT_EQ(window.grdScore.Cols, std::min<int>(score.end_count, 509));
    for (int i = 0; i < window.grdScore.Cols; ++i) {
        EXPECT_EQ(At(window.grdScore.Text, i), NoteNameOf(SlotOf(window, i).pitch, window.doremi));
    }
    EXPECT_GE(score.strip_cursor, 0);
    EXPECT_LT(score.strip_cursor, 30);
    EXPECT_EQ(score.first_shown, window.grdScore.view.LeftCol);
    for (int i = 0; i < 30; ++i) {
        EXPECT_EQ(ImageOf(window, i).Visible, score.first_shown + i < score.end_count - 1) << "picture " << i;
    }
}

// --- Copy and Cut

TEST(Copy, TakesTheSelectedEntriesWhole) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    Select(*window, 7, 4);
    mnuCopy_Click(*window);
    ASSERT_EQ(window->clipboard.columns.size(), 4u);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(At(window->clipboard.columns, i), SlotOf(*window, 4 + i));
    }
    EXPECT_TRUE(window->clipboard.filled);
    EXPECT_TRUE(window->item(MenuItem::mnuPaste).Enabled);
    EXPECT_FALSE(window->score.changed);
}

TEST(Copy, OnTheEndColumnCopiesNothingAndLeavesTheFlag) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    MoveCursor(*window, 10);
    mnuCopy_Click(*window);
    EXPECT_FALSE(window->clipboard.filled);
    EXPECT_TRUE(window->clipboard.columns.empty());
    MoveCursor(*window, 2);
    mnuCopy_Click(*window);
    MoveCursor(*window, 10);
    mnuCopy_Click(*window);
    EXPECT_TRUE(window->clipboard.filled);
    EXPECT_EQ(window->clipboard.columns.size(), 1u);
}

TEST(Copy, OfARangeEndingOnTheEndColumnEndsBeforeIt) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    Select(*window, 7, 10);
    mnuCopy_Click(*window);
    EXPECT_EQ(window->clipboard.columns.size(), 3u);
}

TEST(Copy, TakesTheLastColumnOfAFullScore) {
    auto window = SetUpWindow();
    FillScore(*window, 509);
    Select(*window, 500, 508);
    mnuCopy_Click(*window);
    EXPECT_EQ(window->clipboard.columns.size(), 9u);
    EXPECT_FALSE(window->item(MenuItem::mnuPaste).Enabled) << "the score is full";
}

TEST(Copy, TheClipboardOnceFilledNeverCountsAsEmptyAgain) {
    auto window = SetUpWindow();
    FillScore(*window, 3);
    mnuCopy_Click(*window);
    mnuNewFile_Click(*window);
    EXPECT_TRUE(window->clipboard.filled);
    window->document.current_path = L"C:\\Songs\\GONE.SND";
    EXPECT_TRUE(LoadDocument(*window, kSuffixPc));
    EXPECT_TRUE(window->clipboard.filled);
    mnuPaste_Click(*window);
    EXPECT_EQ(window->score.end_count, 2);
    EXPECT_EQ(TextOf(*window, 0), L"c4");
}

TEST(Copy, DoesNotTouchTheUndoCopy) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    mnuCopy_Click(*window);
    EXPECT_EQ(window->undo.score.end_count, 1);
}

TEST(Cut, CopiesAndDeletes) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    const Entry second = SlotOf(*window, 1), fifth = SlotOf(*window, 4);
    Select(*window, 1, 3);
    mnuCut_Click(*window);
    EXPECT_EQ(window->clipboard.columns.size(), 3u);
    EXPECT_EQ(window->clipboard.columns[0], second);
    EXPECT_EQ(SlotOf(*window, 1), fifth);
    EXPECT_EQ(window->score.end_count, 8);
    ExpectWhole(*window);
}

TEST(Cut, OnTheEndColumnDoesNothing) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    MoveCursor(*window, 10);
    mnuCut_Click(*window);
    EXPECT_EQ(window->score.end_count, 11);
    EXPECT_FALSE(window->clipboard.filled);
    EXPECT_FALSE(window->score.changed);
}

// --- Delete

TEST(Delete, MovesLaterEntriesLeft) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    const auto before = window->score.sound;
    Select(*window, 2, 5);
    mnuDelete_Click(*window);
    EXPECT_EQ(window->score.end_count, 7);
    for (std::size_t i = 0; i < 2; ++i)
        EXPECT_EQ(window->score.sound[i], before[i]);
    for (std::size_t i = 2; i < 6; ++i)
        EXPECT_EQ(window->score.sound[i], before[i + 4]);
    EXPECT_EQ(window->grdScore.view.Col, 2);
    EXPECT_EQ(window->grdScore.view.ColSel, 2);
    EXPECT_TRUE(window->score.changed);
    ExpectWhole(*window);
}

TEST(Delete, OnTheEndColumnStopsButReplacesTheUndoCopy) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    MoveCursor(*window, 10);
    mnuDelete_Click(*window);
    EXPECT_EQ(window->score.end_count, 11);
    EXPECT_FALSE(window->score.changed);
    EXPECT_EQ(window->undo.score.end_count, 11);
}

TEST(Delete, OfARangeEndingOnTheEndColumnEndsBeforeIt) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    Select(*window, 10, 7);
    mnuDelete_Click(*window);
    EXPECT_EQ(window->score.end_count, 8);
    EXPECT_EQ(window->grdScore.view.Col, 7) << "now the end column";
    ExpectWhole(*window);
}

TEST(Delete, OfEverythingLeavesAnEmptyScore) {
    for (const int count : {1, 10, 508, 509}) {
        auto window = SetUpWindow();
        FillScore(*window, count);
        Select(*window, 0, 510);
        mnuDelete_Click(*window);
        EXPECT_EQ(window->score.end_count, 1);
        EXPECT_FALSE(window->item(MenuItem::mnuDelete).Enabled);
        ExpectWhole(*window);
    }
}

TEST(Delete, TheLastColumnOfAFullScoreIsAnEntry) {
    auto window = SetUpWindow();
    FillScore(*window, 509);
    MoveCursor(*window, 508);
    mnuDelete_Click(*window);
    EXPECT_EQ(window->score.end_count, 509);
    EXPECT_EQ(window->grdScore.view.Col, 508) << "the end column is back";
    ExpectWhole(*window);
}

TEST(Delete, With508EntriesColumn508IsTheEndColumn) {
    auto window = SetUpWindow();
    FillScore(*window, 508);
    Select(*window, 506, 508);
    mnuDelete_Click(*window);
    EXPECT_EQ(window->score.end_count, 507) << "two entries, not the end column";
    ExpectWhole(*window);
    FillScore(*window, 508);
    MoveCursor(*window, 508);
    mnuDelete_Click(*window);
    EXPECT_EQ(window->score.end_count, 509);
}

// End count 509 with an entry in slot 508, which no command leaves behind: the selection then stands as it
// is.
TEST(Delete, SpecialCaseAt508WhateverTheSelection) {
    for (const auto& [lo, hi] : {std::pair{508, 508}, {500, 508}, {0, 508}, {0, 0}, {1, 507}, {3, 3}}) {
        SCOPED_TRACE(::testing::Message() << lo << " to " << hi);
        auto window = SetUpWindow();
        FillScore(*window, 509);
        window->score.end_count = 509;
        RedrawGrid(*window);
        const auto before = window->score.sound;
        Select(*window, lo, hi);
        mnuDelete_Click(*window);
        EXPECT_EQ(window->score.end_count, 510 - (hi - lo + 1));
        for (int i = hi + 1; i < 509; ++i) {
            EXPECT_EQ(SlotOf(*window, lo + i - hi - 1), At(before, i));
        }
        ExpectWhole(*window);
    }
}

TEST(Delete, OnTheEndColumnOf508EntriesChangesNothing) {
    auto window = SetUpWindow();
    FillScore(*window, 508);
    window->score.changed = false;
    const auto before = window->score.sound;
    MoveCursor(*window, 508);
    mnuDelete_Click(*window);
    EXPECT_FALSE(window->score.changed);
    EXPECT_EQ(window->score.sound, before);
    EXPECT_EQ(window->score.end_count, 509);
}

TEST(Delete, ShowsTheStripFromTheFirstVisibleColumn) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    MoveCursor(*window, 60);
    Select(*window, 60, 95);
    mnuDelete_Click(*window);
    EXPECT_EQ(window->grdScore.Cols, 65);
    EXPECT_EQ(window->grdScore.view.LeftCol, 35);
    EXPECT_EQ(window->score.first_shown, 35);
    EXPECT_EQ(window->score.strip_cursor, 25);
    ExpectWhole(*window);
}

TEST(Delete, OfASelectionOutOfViewBringsTheCursorIntoView) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    Select(*window, 3, 5);
    grdScore_Scroll(*window, 60);
    mnuDelete_Click(*window);
    EXPECT_EQ(window->grdScore.view.Col, 3);
    EXPECT_EQ(window->grdScore.view.LeftCol, 3);
    EXPECT_EQ(window->score.strip_cursor, 0);
    ExpectWhole(*window);
}

// --- Insert

TEST(Insert, PutsBlankEntriesInFrontOfTheSelection) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    const auto before = window->score.sound;
    Select(*window, 5, 3);
    mnuInsert_Click(*window);
    EXPECT_EQ(window->score.end_count, 14);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(window->score.sound[i], before[i]);
    for (std::size_t i = 3; i < 6; ++i) {
        EXPECT_EQ(window->score.sound[i], (Entry{0, 0, 0}));
        EXPECT_EQ(window->grdScore.Text[i].View(), L"");
    }
    for (std::size_t i = 3; i < 11; ++i)
        EXPECT_EQ(window->score.sound[i + 3], before[i]);
    EXPECT_EQ(window->grdScore.view.Col, 5) << "the selection lies on the blanks";
    EXPECT_EQ(window->grdScore.view.ColSel, 3);
    EXPECT_TRUE(window->score.changed);
    ExpectWhole(*window);
}

TEST(Insert, WithEndCount500And20ColumnsInserts9) {
    auto window = SetUpWindow();
    FillScore(*window, 499);
    Select(*window, 10, 29);
    mnuInsert_Click(*window);
    EXPECT_EQ(window->score.end_count, 509);
    for (int i = 10; i <= 18; ++i)
        EXPECT_EQ(SlotOf(*window, i).code, 0);
    EXPECT_NE(SlotOf(*window, 19).code, 0);
    EXPECT_EQ(window->grdScore.view.Col, 10);
    EXPECT_EQ(window->grdScore.view.ColSel, 18);
    EXPECT_FALSE(window->item(MenuItem::mnuInsert).Enabled);
    ExpectWhole(*window);
}

TEST(Insert, ACutSelectionTakesTheStripCursorWithIt) {
    auto window = SetUpWindow();
    FillScore(*window, 499);
    Select(*window, 25, 6);
    mnuInsert_Click(*window);
    EXPECT_EQ(window->grdScore.view.Col, 14);
    EXPECT_EQ(window->grdScore.view.ColSel, 6);
    EXPECT_EQ(window->score.strip_cursor, 14);
    ExpectWhole(*window);
}

TEST(Insert, StopsAtEndCount509) {
    auto window = SetUpWindow();
    FillScore(*window, 508);
    MoveCursor(*window, 10);
    const auto before = window->score.sound;
    mnuInsert_Click(*window);
    EXPECT_EQ(window->score.end_count, 509);
    EXPECT_EQ(window->score.sound, before);
    EXPECT_FALSE(window->score.changed);
    EXPECT_EQ(window->undo.score.end_count, 509) << "the undo copy is replaced before any condition";
}

TEST(Insert, IntoAFullScoreDoesNothingThoughTheCountIsNegative) {
    auto window = SetUpWindow();
    FillScore(*window, 509);
    const auto before = window->score.sound;
    Select(*window, 500, 508);
    mnuInsert_Click(*window);
    EXPECT_EQ(window->score.sound, before);
    EXPECT_EQ(window->score.end_count, 510);
    ExpectWhole(*window);
}

TEST(Insert, OnTheEndColumnAddsBlanksBehindTheLastEntry) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    Select(*window, 9, 10);
    mnuInsert_Click(*window);
    EXPECT_EQ(window->score.end_count, 13);
    MoveCursor(*window, 12);
    mnuInsert_Click(*window);
    EXPECT_EQ(window->score.end_count, 14);
    EXPECT_EQ(SlotOf(*window, 12).code, 0);
    ExpectWhole(*window);
}

// --- Paste

TEST(Paste, PutsTheClipboardInFrontOfTheSelection) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    Select(*window, 0, 2);
    mnuCopy_Click(*window);
    const auto before = window->score.sound;
    Select(*window, 7, 5);
    mnuPaste_Click(*window);
    EXPECT_EQ(window->score.end_count, 14);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(window->score.sound[i], before[i]);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(window->score.sound[i + 5], before[i]);
    for (std::size_t i = 5; i < 11; ++i)
        EXPECT_EQ(window->score.sound[i + 3], before[i]);
    EXPECT_EQ(window->grdScore.view.Col, 8) << "the cursor stands behind what was pasted";
    EXPECT_EQ(window->grdScore.view.ColSel, 8);
    EXPECT_TRUE(window->score.changed);
    ExpectWhole(*window);
}

TEST(Paste, FillsTheScoreTo510AndThenHas509Columns) {
    auto window = SetUpWindow();
    FillScore(*window, 508);
    Select(*window, 0, 4);
    mnuCopy_Click(*window);
    MoveCursor(*window, 508);
    mnuPaste_Click(*window);
    EXPECT_EQ(window->score.end_count, 510) << "one entry of the five";
    EXPECT_EQ(window->grdScore.Cols, 509) << "no end column";
    EXPECT_EQ(window->grdScore.view.Col, 508);
    EXPECT_EQ(SlotOf(*window, 508), SlotOf(*window, 0));
    EXPECT_FALSE(window->item(MenuItem::mnuPaste).Enabled);
    ExpectWhole(*window);
}

TEST(Paste, IntoAFullScoreDoesNothing) {
    auto window = SetUpWindow();
    FillScore(*window, 509);
    mnuCopy_Click(*window);
    const auto before = window->score.sound;
    mnuPaste_Click(*window);
    EXPECT_EQ(window->score.sound, before);
    EXPECT_EQ(window->score.end_count, 510);
    EXPECT_FALSE(window->score.changed);
    EXPECT_EQ(window->undo.score.end_count, 510);
}

TEST(Paste, OfAnEmptyClipboardDoesNothing) {
    auto window = SetUpWindow();
    FillScore(*window, 3);
    mnuPaste_Click(*window);
    EXPECT_EQ(window->score.end_count, 4);
    EXPECT_FALSE(window->score.changed);
    EXPECT_EQ(window->undo.score.end_count, 4);
}

TEST(Paste, OfARestAndASeparatorShowsTheirTexts) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 28), MakeRest(*window, 25), Entry{0, 0, 0}});
    Select(*window, 0, 2);
    mnuCopy_Click(*window);
    MoveCursor(*window, 3);
    mnuPaste_Click(*window);
    EXPECT_EQ(TextOf(*window, 3), L"c4 #");
    EXPECT_EQ(TextOf(*window, 4), L" - ");
    EXPECT_EQ(TextOf(*window, 5), L"");
    ExpectWhole(*window);
}

TEST(Paste, TheLimitsOfInsertAndPasteDiffer) {
    auto window = SetUpWindow();
    FillScore(*window, 508);
    mnuCopy_Click(*window);
    RefreshEnabling(*window);
    EXPECT_FALSE(window->item(MenuItem::mnuInsert).Enabled);
    EXPECT_TRUE(window->item(MenuItem::mnuPaste).Enabled);
}

// --- Transpositions

TEST(Transpose, EveryNoteOfTheScoreWhateverIsSelected) {
    const struct {
        void (*command)(sndmain&);
        int by;
    } cases[] = {
        {mnuOctUp_Click, 12}, {mnuOctDown_Click, -12}, {mnuSoundUp_Click, 1}, {mnuSoundDown_Click, -1}};
    for (const auto& [command, by] : cases) {
        SCOPED_TRACE(by);
        auto window = SetUpWindow(10);
        FillScore(*window, 60);
        window->score.sound[3] = MakeRest(*window, 30);
        window->score.sound[4] = Entry{0, 0, 0};
        const auto before = window->score.sound;
        Select(*window, 40, 50);
        command(*window);
        for (std::size_t i = 0; i < 60; ++i) {
            if (!IsNote(before[i].code)) {
                EXPECT_EQ(window->score.sound[i], before[i]);
                continue;
            }
            const auto pitch = static_cast<std::uint16_t>(before[i].pitch + by);
            EXPECT_EQ(window->score.sound[i], MakeNote(*window, before[i].code, pitch));
        }
        EXPECT_EQ(window->grdScore.view.Col, 40);
        EXPECT_EQ(window->grdScore.view.ColSel, 50);
        EXPECT_TRUE(window->score.changed);
        EXPECT_EQ(window->undo.score.sound, before);
        RedrawGrid(*window);
        ExpectWhole(*window);
    }
}

TEST(Transpose, AnOctaveMovesThePositionDirectlyAHalfToneWorksItOutAnew) {
    auto window = SetUpWindow(10);
    FillScore(*window, {MakeNote(*window, 11, 5)});
    ASSERT_EQ(SlotOf(*window, 0).position, 2700 + 67);
    mnuOctDown_Click(*window);
    EXPECT_EQ(SlotOf(*window, 0).pitch, 65529) << "-7";
    EXPECT_EQ(SlotOf(*window, 0).position, 3120 + 67) << "420 lower, where the rule of positions says 2460";
    mnuSoundUp_Click(*window);
    EXPECT_EQ(SlotOf(*window, 0).pitch, 65530) << "-6";
    EXPECT_EQ(SlotOf(*window, 0).position, 2460 + 67) << "step 0 of octave -3";
    mnuOctUp_Click(*window);
    EXPECT_EQ(SlotOf(*window, 0).pitch, 6);
    EXPECT_EQ(SlotOf(*window, 0).position, 2040 + 67);
}

TEST(Transpose, RewritesTheGridTexts) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 27), MakeRest(*window, 30)});
    mnuSoundUp_Click(*window);
    EXPECT_EQ(TextOf(*window, 0), L"c4 #");
    mnuOctDown_Click(*window);
    EXPECT_EQ(TextOf(*window, 0), L"c3 #");
    EXPECT_EQ(TextOf(*window, 1), L" - ");
}

TEST(Transpose, OctaveUpOnRestsOnlyReplacesTheUndoCopyAndMarksTheScoreChanged) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeRest(*window, 21), MakeRest(*window, 22)});
    const auto before = window->score.sound;
    mnuOctUp_Click(*window);
    EXPECT_EQ(window->score.sound, before);
    EXPECT_EQ(window->undo.score.end_count, 3);
    EXPECT_EQ(window->undo.score.sound, before);
    EXPECT_TRUE(window->score.changed);
}

TEST(Transpose, APitchThatLeavesThePianoStaysInTheScore) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 70)});
    mnuOctUp_Click(*window);
    EXPECT_EQ(SlotOf(*window, 0).pitch, 82);
    EXPECT_EQ(TextOf(*window, 0), L"g8");
    EXPECT_FALSE(window->highlighted_key.has_value());
    EXPECT_EQ(window->highlighted_button, 11);
}

TEST(Transpose, BeyondWhat16BitsHoldIsRefusedAsAWhole) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 11, 40), MakeNote(*window, 11, 27)});
    int steps = 0;
    for (;; ++steps) {
        ASSERT_LT(steps, 3000) << "the position never overflowed";
        window->score.changed = false;
        const auto before = window->score.sound;
        mnuOctUp_Click(*window);
        if (window->score.changed) continue;
        EXPECT_EQ(window->score.sound, before) << "not even the first note moved";
        EXPECT_EQ(window->undo.score.sound, before) << "the undo copy is replaced all the same";
        break;
    }
    // c4 and c5# stand at 1920 and 1500: one octave more would put the higher one below -32768.
    EXPECT_EQ(steps, 81);
    ExpectWhole(*window);
}

TEST(Transpose, HalfATonePastTheLastPositionIsRefused) {
    auto window = SetUpWindow();
    // Found by the rule: the highest pitch whose staff position still fits 16 bits.
    std::uint16_t highest = 75;
    while (StaffPositionOf(static_cast<std::uint16_t>(highest + 1), 0))
        ++highest;
    FillScore(*window, {MakeNote(*window, 11, 27), MakeNote(*window, 11, highest)});
    const auto before = window->score.sound;
    window->score.changed = false;
    mnuSoundUp_Click(*window);
    EXPECT_EQ(window->score.sound, before);
    EXPECT_FALSE(window->score.changed);
    EXPECT_EQ(TextOf(*window, 0), L"c4");
    mnuSoundDown_Click(*window);
    EXPECT_EQ(SlotOf(*window, 0).pitch, 26);
}

TEST(Transpose, ShowsTheStripFromTheFirstVisibleColumn) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    grdScore_Scroll(*window, 40);
    mnuSoundUp_Click(*window);
    EXPECT_EQ(window->score.first_shown, 40);
    ExpectWhole(*window);
}

// --- Undo

TEST(Undo, SaveUndoKeepsScoreAndView) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    window->current_length = 4;
    Select(*window, 50, 60);
    grdScore_Scroll(*window, 45);
    SaveUndo(*window);
    EXPECT_EQ(window->undo.score.sound, window->score.sound);
    EXPECT_EQ(window->undo.score.end_count, 101);
    EXPECT_EQ(window->undo.current_length, 4);
    EXPECT_EQ(window->undo.score.first_shown, 45);
    EXPECT_EQ(window->undo.score.strip_cursor, 5);
    EXPECT_EQ(window->undo.view.LeftCol, 45);
    EXPECT_EQ(window->undo.view.Col, 50);
    EXPECT_EQ(window->undo.view.ColSel, 60);
}

TEST(Undo, BringsScoreAndViewBack) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    Select(*window, 50, 60);
    const auto sound = window->score.sound;
    mnuDelete_Click(*window);
    MoveCursor(*window, 2);
    ASSERT_EQ(window->grdScore.view.LeftCol, 2);
    window->score.changed = false;
    SwapUndo(*window);
    EXPECT_TRUE(window->score.changed);
    EXPECT_EQ(window->score.sound, sound);
    EXPECT_EQ(window->score.end_count, 101);
    EXPECT_EQ(window->grdScore.view.LeftCol, 31);
    EXPECT_EQ(window->score.first_shown, 31);
    EXPECT_EQ(window->score.strip_cursor, 19);
    EXPECT_EQ(window->grdScore.view.Col, 50);
    EXPECT_EQ(window->grdScore.view.ColSel, 60);
    ExpectWhole(*window);
}

TEST(Undo, IsItsOwnInverse) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    Select(*window, 50, 60);
    mnuDelete_Click(*window);
    const auto score = window->score;
    const auto grid = window->grdScore;
    const auto images = window->imgNote;
    SwapUndo(*window);
    ASSERT_NE(window->score.sound, score.sound);
    SwapUndo(*window);
    EXPECT_EQ(window->score.sound, score.sound);
    EXPECT_EQ(window->score.end_count, score.end_count);
    EXPECT_EQ(window->score.first_shown, score.first_shown);
    EXPECT_EQ(window->score.strip_cursor, score.strip_cursor);
    EXPECT_EQ(window->grdScore.Cols, grid.Cols);
    EXPECT_EQ(window->grdScore.view.Col, grid.view.Col);
    EXPECT_EQ(window->grdScore.view.ColSel, grid.view.ColSel);
    EXPECT_EQ(window->grdScore.view.LeftCol, grid.view.LeftCol);
    EXPECT_EQ(window->grdScore.Text, grid.Text);
    for (std::size_t i = 0; i < 30; ++i) {
        EXPECT_EQ(window->imgNote[i].Visible, images[i].Visible);
        if (images[i].Visible) {
            EXPECT_EQ(window->imgNote[i], images[i]);
        }
    }
}

TEST(Undo, BringsTheCurrentLengthBackAndShowsIt) {
    auto window = SetUpWindow();
    kenWhite_Click(*window, 0);
    cbtNote_Click(*window, 5);
    SwapUndo(*window);
    EXPECT_EQ(window->current_length, 11);
    EXPECT_EQ(window->imgNow.Picture, 11);
    SwapUndo(*window);
    EXPECT_EQ(window->current_length, 5);
    EXPECT_EQ(window->imgNow.Picture, 5);
}

TEST(Undo, BeforeTheFirstCommandGivesAnEmptyScore) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    SwapUndo(*window);
    EXPECT_EQ(window->score.end_count, 1);
    EXPECT_EQ(window->current_length, 11);
    EXPECT_FALSE(window->item(MenuItem::mnuDelete).Enabled);
    ExpectWhole(*window);
    SwapUndo(*window);
    EXPECT_EQ(window->score.end_count, 11);
    EXPECT_TRUE(window->item(MenuItem::mnuDelete).Enabled);
    ExpectWhole(*window);
}

TEST(Undo, IsSavedBeforeAnyConditionByEveryEditCommand) {
    void (*const commands[])(sndmain&) = {mnuDelete_Click,   mnuInsert_Click,  mnuPaste_Click,
                                          mnuOctUp_Click,    mnuOctDown_Click, mnuSoundUp_Click,
                                          mnuSoundDown_Click};
    for (const auto command : commands) {
        auto window = SetUpWindow();
        FillScore(*window, 508);
        MoveCursor(*window, 508);
        window->undo = UndoCopy();
        command(*window);
        EXPECT_EQ(window->undo.score.end_count, 509);
    }
}

TEST(Undo, OfTheEntryThatFilledTheScore) {
    auto window = SetUpWindow();
    FillScore(*window, 508);
    MoveCursor(*window, 508);
    kenWhite_Click(*window, 0);
    ASSERT_EQ(window->score.end_count, 510);
    SwapUndo(*window);
    EXPECT_EQ(window->score.end_count, 509);
    EXPECT_EQ(window->grdScore.view.Col, 508);
    ExpectWhole(*window);
    SwapUndo(*window);
    EXPECT_EQ(window->score.end_count, 510);
    ExpectWhole(*window);
}

} // namespace
} // namespace tonex::edit_commands_test
