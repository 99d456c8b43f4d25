#include "view/note_entry_commands.h"

#include "tests/set_up_window.h"

#include <gtest/gtest.h>

#include <utility>

namespace tonex::note_entry_commands_test {
namespace {

using namespace tonex::testing;

constexpr std::uint16_t kC4 = 27;

// --- Entering at the cursor

TEST(NoteEntry, WhiteKey0WithLength5OnAnEmptyScore) {
    auto window = SetUpWindow();
    cbtNote_Click(*window, 5);
    kenWhite_Click(*window, 0);
    EXPECT_EQ(SlotOf(*window, 0).code, 5);
    EXPECT_EQ(SlotOf(*window, 0).pitch, 27);
    EXPECT_EQ(SlotOf(*window, 0).position, 1920);
    EXPECT_EQ(window->score.end_count, 2);
    EXPECT_EQ(window->grdScore.Cols, 2);
    EXPECT_EQ(window->grdScore.view.Col, 1);
    EXPECT_EQ(window->grdScore.view.ColSel, 1);
    EXPECT_EQ(window->score.strip_cursor, 1);
    EXPECT_EQ(TextOf(*window, 0), L"c4");
    EXPECT_EQ(TextOf(*window, 1), L" - ");
    EXPECT_EQ(ImageOf(*window, 0).Picture, 5);
    EXPECT_TRUE(ImageOf(*window, 0).Visible);
    EXPECT_EQ(window->highlighted_button, 0) << "the cursor is on the end column";
    EXPECT_TRUE(window->score.changed);
    EXPECT_TRUE(window->item(MenuItem::mnuCut).Enabled);
}

TEST(NoteEntry, StartsWithAQuarterNote) {
    auto window = SetUpWindow();
    EXPECT_EQ(window->imgNow.Picture, 11);
    kenBlack_Click(*window, 0);
    EXPECT_EQ(SlotOf(*window, 0).code, 11);
    EXPECT_EQ(SlotOf(*window, 0).pitch, 28);
}

TEST(NoteEntry, AKeyOnANoteChangesOnlyItsPitch) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 7, kC4)});
    window->current_length = 3;
    kenWhite_Click(*window, 28);
    EXPECT_EQ(SlotOf(*window, 0), MakeNote(*window, 7, 75));
    EXPECT_EQ(window->score.end_count, 2);
    EXPECT_EQ(window->grdScore.view.Col, 1);
    EXPECT_EQ(window->score.strip_cursor, 1);
}

TEST(NoteEntry, AKeyOnTheFirstAndTheLastLengthCodeKeepsItAndOnARestTakesTheCurrentOne) {
    auto window = SetUpWindow();
    for (const auto& [before, after] : {std::pair{1, 1}, {20, 20}, {21, 3}, {40, 3}}) {
        FillScore(*window, {Entry{static_cast<std::uint16_t>(before), kC4, 0}});
        window->current_length = 3;
        kenWhite_Click(*window, 28);
        EXPECT_EQ(SlotOf(*window, 0).code, after) << before;
    }
}

TEST(NoteEntry, AKeyOnARestMakesItANoteOfTheCurrentLength) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeRest(*window, 23)});
    window->current_length = 9;
    kenWhite_Click(*window, 1);
    EXPECT_EQ(SlotOf(*window, 0), MakeNote(*window, 9, 29));
}

TEST(NoteEntry, AKeyOnASeparatorMakesItANoteOfTheCurrentLength) {
    auto window = SetUpWindow();
    FillScore(*window, {Entry{0, 0, 0}});
    window->current_length = 9;
    kenWhite_Click(*window, 1);
    EXPECT_EQ(SlotOf(*window, 0), MakeNote(*window, 9, 29));
}

TEST(NoteEntry, AKeyOnAForeignCodeMakesItANote) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeEntry(*window, 60, 65535)});
    kenWhite_Click(*window, 0);
    EXPECT_EQ(SlotOf(*window, 0), MakeNote(*window, 11, kC4));
}

TEST(NoteEntry, RestButton103WritesCode23) {
    auto window = SetUpWindow();
    cbtNote_Click(*window, 103);
    EXPECT_EQ(SlotOf(*window, 0).code, 23);
    EXPECT_EQ(SlotOf(*window, 0).pitch, 65535);
    EXPECT_EQ(SlotOf(*window, 0).position, 1200);
    EXPECT_EQ(TextOf(*window, 0), L" - ");
    EXPECT_EQ(window->score.end_count, 2);
}

TEST(NoteEntry, ARestButtonOnANoteMakesItARest) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 7, 28)});
    cbtNote_Click(*window, 120);
    EXPECT_EQ(SlotOf(*window, 0), MakeRest(*window, 40));
    EXPECT_EQ(ImageOf(*window, 0).Picture, 40);
    EXPECT_FALSE(ImageOf(*window, 0).Sharp);
}

TEST(NoteEntry, RestIndicesAbove100BecomeRestCodes) {
    auto window = SetUpWindow();
    EnterAtCursor(*window, 103, kEmpty);
    EXPECT_EQ(SlotOf(*window, 0).code, 23);
    EnterAtCursor(*window, 101, kEmpty);
    EXPECT_EQ(SlotOf(*window, 1).code, 21);
}

TEST(NoteEntry, ARangeOfTwoColumnsTakesNothing) {
    auto window = SetUpWindow();
    FillScore(*window, 5);
    Select(*window, 1, 2);
    window->score.changed = false;
    const auto sound = window->score.sound;
    kenWhite_Click(*window, 3);
    cbtNote_Click(*window, 103);
    cbtNote_Click(*window, 3);
    EXPECT_EQ(window->score.sound, sound);
    EXPECT_EQ(window->score.end_count, 6);
    EXPECT_EQ(window->current_length, 11);
    EXPECT_FALSE(window->score.changed);
}

TEST(NoteEntry, KeysRestsAndLengthsOfNotesReplaceTheUndoCopy) {
    auto window = SetUpWindow();
    FillScore(*window, 5);
    void (*const entries[])(sndmain&) = {
        [](sndmain& w) { kenWhite_Click(w, 3); }, [](sndmain& w) { kenBlack_Click(w, 3); },
        [](sndmain& w) { cbtNote_Click(w, 103); }, [](sndmain& w) { cbtNote_Click(w, 7); }};
    for (std::size_t i = 0; i < std::size(entries); ++i) {
        FillScore(*window, 5);
        MoveCursor(*window, 2);
        const auto before = window->score.sound;
        window->undo = UndoCopy();
        entries[i](*window);
        EXPECT_NE(window->score.sound, before) << i;
        EXPECT_EQ(window->undo.score.sound, before) << i;
        EXPECT_EQ(window->undo.view.Col, 2) << i;
    }
}

TEST(NoteEntry, AKeyOnARangeReplacesTheUndoCopyAllTheSame) {
    auto window = SetUpWindow();
    FillScore(*window, 5);
    Select(*window, 1, 2);
    kenWhite_Click(*window, 3);
    EXPECT_EQ(window->undo.score.end_count, 6);
    EXPECT_EQ(window->undo.view.Col, 1);
    EXPECT_EQ(window->undo.view.ColSel, 2);
}

// --- Length buttons

TEST(NoteEntry, ALengthButtonOnANoteChangesItsLengthAndMovesOn) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 7, 28), MakeNote(*window, 8, 29)});
    cbtNote_Click(*window, 14);
    EXPECT_EQ(SlotOf(*window, 0), MakeNote(*window, 14, 28));
    EXPECT_EQ(ImageOf(*window, 0).Picture, 14);
    EXPECT_EQ(window->grdScore.view.Col, 1);
    EXPECT_EQ(window->score.strip_cursor, 1);
    EXPECT_EQ(window->current_length, 11) << "the current length is not changed";
    EXPECT_EQ(window->imgNow.Picture, 11);
    EXPECT_TRUE(window->score.changed);
    EXPECT_EQ(window->highlighted_button, 8);
}

TEST(NoteEntry, ALengthButtonOnTheLastNoteMovesToTheEndColumn) {
    auto window = SetUpWindow();
    FillScore(*window, 30);
    MoveCursor(*window, 29);
    cbtNote_Click(*window, 1);
    EXPECT_EQ(window->grdScore.view.Col, 30);
    EXPECT_EQ(window->grdScore.view.LeftCol, 1) << "kept in view";
    EXPECT_EQ(window->score.first_shown, 1);
    EXPECT_EQ(window->score.strip_cursor, 29);
}

TEST(NoteEntry, ALengthButtonInColumn508OfAFullScoreStaysThere) {
    auto window = SetUpWindow();
    FillScore(*window, 509);
    MoveCursor(*window, 508);
    cbtNote_Click(*window, 2);
    EXPECT_EQ(SlotOf(*window, 508).code, 2);
    EXPECT_EQ(window->grdScore.view.Col, 508);
    EXPECT_EQ(window->score.strip_cursor, 29);
}

TEST(NoteEntry, ALengthButtonInColumn507OfAFullScoreMovesToTheLast) {
    auto window = SetUpWindow();
    FillScore(*window, 509);
    MoveCursor(*window, 507);
    cbtNote_Click(*window, 2);
    EXPECT_EQ(window->grdScore.view.Col, 508);
}

TEST(NoteEntry, ALengthButtonRedrawsThePictureOfItsNoteWhereTheStripShowsIt) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    for (const int first : {0, 40}) {
        for (const int image : {0, kStripPictures - 1}) {
            grdScore_Scroll(*window, first);
            window->grdScore.view.Col = window->grdScore.view.ColSel = first + image;
            SlotAt(*window, first + image).code = 7;
            cbtNote_Click(*window, 2);
            // Pictures of notes with the stem down are 40 behind those with the stem up.
            EXPECT_EQ(ImageOf(*window, first + image - window->score.first_shown).Picture % 40, 2)
                << first << " + " << image;
        }
    }
    // One column to the right of the strip, and one to its left.
    for (const int column : {40 + kStripPictures, 39}) {
        grdScore_Scroll(*window, 40);
        window->grdScore.view.Col = window->grdScore.view.ColSel = column;
        cbtNote_Click(*window, 2);
        EXPECT_EQ(SlotOf(*window, column).code, 2);
        EXPECT_EQ(window->grdScore.view.Col, column + 1);
    }
}

TEST(NoteEntry, ALengthButtonOnANoteOutOfViewBringsTheCursorIntoView) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    grdScore_Scroll(*window, 50);
    cbtNote_Click(*window, 2);
    EXPECT_EQ(SlotOf(*window, 0).code, 2);
    EXPECT_EQ(window->grdScore.view.Col, 1);
    EXPECT_EQ(window->grdScore.view.LeftCol, 1);
    EXPECT_EQ(window->score.first_shown, 1);
    EXPECT_EQ(window->score.strip_cursor, 0);
}

TEST(NoteEntry, ALengthButtonElsewhereChoosesTheLengthAndSetsTheChangedFlag) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeRest(*window, 23), Entry{0, 0, 0}});
    for (const int column : {0, 1, 2}) {
        MoveCursor(*window, column);
        window->score.changed = false;
        const auto sound = window->score.sound;
        const int undo_end_count = window->undo.score.end_count;
        cbtNote_Click(*window, 4 + column);
        EXPECT_EQ(window->current_length, 4 + column);
        EXPECT_EQ(window->imgNow.Picture, 4 + column);
        EXPECT_EQ(window->score.sound, sound);
        EXPECT_EQ(window->grdScore.view.Col, column);
        EXPECT_TRUE(window->score.changed) << "though the score is untouched";
        EXPECT_EQ(window->undo.score.end_count, undo_end_count);
    }
}

TEST(NoteEntry, ALengthButtonElsewhereShowsThePressedKeyAnew) {
    auto window = SetUpWindow();
    FillScore(*window, {Entry{0, 0, 0}});
    window->score.sound[0] = MakeRest(*window, 23);
    cbtNote_Click(*window, 4);
    EXPECT_EQ(window->highlighted_button, 103);
}

// --- Appending up to the full score

TEST(NoteEntry, AppendingScrollsTheStripFromTheThirtyFirstColumnOn) {
    auto window = SetUpWindow();
    for (int i = 0; i < 29; ++i)
        kenWhite_Click(*window, i);
    EXPECT_EQ(window->score.strip_cursor, 29);
    EXPECT_EQ(window->score.first_shown, 0);
    kenWhite_Click(*window, 0);
    EXPECT_EQ(window->score.end_count, 31);
    EXPECT_EQ(window->score.strip_cursor, 29);
    EXPECT_EQ(window->score.first_shown, 1);
    EXPECT_EQ(window->grdScore.view.LeftCol, 1) << "31 columns less 30";
    EXPECT_EQ(window->grdScore.view.Col, 30);
    EXPECT_TRUE(ImageOf(*window, 28).Visible);
    EXPECT_FALSE(ImageOf(*window, 29).Visible);
}

TEST(NoteEntry, The509thEntryFillsTheScore) {
    auto window = SetUpWindow();
    FillScore(*window, 508);
    MoveCursor(*window, 508);
    kenWhite_Click(*window, 0);
    EXPECT_EQ(window->score.end_count, 510);
    EXPECT_EQ(window->grdScore.Cols, 509) << "no column is added";
    EXPECT_EQ(window->grdScore.view.Col, 508) << "the cursor stays on the last entry";
    EXPECT_EQ(window->score.strip_cursor, 29);
    EXPECT_EQ(SlotOf(*window, 508), MakeNote(*window, 11, kC4));
    EXPECT_EQ(SlotOf(*window, 509), Entry());
    EXPECT_TRUE(ImageOf(*window, 29).Visible);
    EXPECT_EQ(window->highlighted_button, 11);
    EXPECT_FALSE(window->item(MenuItem::mnuInsert).Enabled);
}

TEST(NoteEntry, InAFullScoreColumn508IsRewrittenAndTheCursorStays) {
    auto window = SetUpWindow();
    FillScore(*window, 509);
    MoveCursor(*window, 508);
    kenWhite_Click(*window, 0);
    kenWhite_Click(*window, 28);
    EXPECT_EQ(SlotOf(*window, 508).pitch, 75);
    EXPECT_EQ(window->score.end_count, 510);
    EXPECT_EQ(window->grdScore.view.Col, 508);
}

TEST(NoteEntry, TheEndColumnOfAFullScoreIsWrittenButDoesNotGrow) {
    auto window = SetUpWindow();
    FillScore(*window, 509);
    window->grdScore.view.Col = window->grdScore.view.ColSel = 509; // no event leads there
    EnterAtCursor(*window, 5, kC4);
    EXPECT_EQ(SlotOf(*window, 509), MakeNote(*window, 5, kC4));
    EXPECT_EQ(SlotOf(*window, 510), Entry());
    EXPECT_EQ(window->score.end_count, 510);
    EXPECT_EQ(window->grdScore.Cols, 509);
    EXPECT_EQ(window->grdScore.view.Col, 509) << "there is no column to step to";
    EXPECT_EQ(window->highlighted_button, 5) << "it counts as an entry, not as an end column";
}

TEST(NoteEntry, EnteringWhereTheViewIsNotBringsItThere) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    MoveCursor(*window, 90);
    grdScore_Scroll(*window, 10);
    kenWhite_Click(*window, 0);
    EXPECT_EQ(window->score.first_shown, 62) << "first shown 61 for column 90, one more for the cursor in 91";
    EXPECT_EQ(window->grdScore.view.LeftCol, 62);
    EXPECT_EQ(window->score.strip_cursor, 29);

    MoveCursor(*window, 5);
    grdScore_Scroll(*window, 50);
    kenWhite_Click(*window, 0);
    EXPECT_EQ(window->score.first_shown, 5);
    EXPECT_EQ(window->score.strip_cursor, 1);
    EXPECT_EQ(window->grdScore.view.Col, 6);

    MoveCursor(*window, 70);
    grdScore_Scroll(*window, 40); // the first column that is not shown
    kenWhite_Click(*window, 0);
    EXPECT_EQ(window->score.first_shown, 42);
    EXPECT_EQ(window->score.strip_cursor, 29);
}

// --- Typed characters

TEST(TypedCharacter, PlusAndMinusMoveANoteByAHalfToneAndWalkOn) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 7, 50), MakeNote(*window, 8, 50)});
    window->current_length = 3;
    grdScore_KeyPress(*window, L'+');
    grdScore_KeyPress(*window, L'-');
    EXPECT_EQ(SlotOf(*window, 0), MakeNote(*window, 7, 51)) << "the note keeps its length";
    EXPECT_EQ(SlotOf(*window, 1), MakeNote(*window, 8, 49));
    EXPECT_EQ(window->grdScore.view.Col, 2);
    EXPECT_TRUE(window->score.changed);
}

TEST(TypedCharacter, ResultsStayOnThePiano) {
    auto window = SetUpWindow();
    const struct {
        wchar_t character;
        std::uint16_t before, after;
    } cases[] = {{L'+', 74, 75}, {L'+', 75, 75}, {L'-', 28, 27}, {L'-', 27, 27},
                 {L'+', 26, 27}, {L'-', 80, 79}, {L'+', 80, 80}, {L'-', 20, 20}};
    for (const auto& [character, before, after] : cases) {
        FillScore(*window, {MakeNote(*window, 7, before)});
        window->score.changed = false;
        grdScore_KeyPress(*window, character);
        EXPECT_EQ(SlotOf(*window, 0).pitch, after);
        EXPECT_EQ(window->score.changed, before != after);
        EXPECT_EQ(window->grdScore.view.Col, before != after ? 1 : 0);
    }
}

TEST(TypedCharacter, OnARestOrSeparatorOrTheEndNothingChanges) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeRest(*window, 23), Entry{0, 0, 0}});
    const auto sound = window->score.sound;
    for (const int column : {0, 1, 2}) {
        MoveCursor(*window, column);
        grdScore_KeyPress(*window, L'+');
        grdScore_KeyPress(*window, L'-');
        EXPECT_EQ(window->score.sound, sound);
        EXPECT_EQ(window->grdScore.view.Col, column);
    }
}

TEST(TypedCharacter, AnyCharacterOnANoteOrRestReplacesTheUndoCopy) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 7, 50), MakeRest(*window, 23), Entry{0, 0, 0}});
    const bool expected[] = {true, true, false, false};
    for (const int column : {0, 1, 2, 3}) {
        MoveCursor(*window, column);
        window->undo = UndoCopy();
        grdScore_KeyPress(*window, L'x');
        EXPECT_EQ(window->undo.score.end_count == 4, expected[column]) << column;
    }
}

TEST(TypedCharacter, OnARangeOnlyTheUndoCopyIsReplaced) {
    auto window = SetUpWindow();
    FillScore(*window, {MakeNote(*window, 7, 50), MakeNote(*window, 7, 50)});
    const auto sound = window->score.sound;
    Select(*window, 0, 1);
    grdScore_KeyPress(*window, L'+');
    EXPECT_EQ(window->score.sound, sound);
    EXPECT_EQ(window->undo.score.end_count, 3);
}

// --- Mouse, scrolling, strip

TEST(GridEvents, TheCursorStaysInsideTheColumns) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    Select(*window, -3, 999);
    EXPECT_EQ(window->grdScore.view.Col, 0);
    EXPECT_EQ(window->grdScore.view.ColSel, 10);
    Select(*window, 999, -3);
    EXPECT_EQ(window->grdScore.view.Col, 10);
    EXPECT_EQ(window->grdScore.view.ColSel, 0);
}

TEST(GridEvents, TheCursorOfAFullScoreEndsAtColumn508) {
    auto window = SetUpWindow();
    FillScore(*window, 509);
    MoveCursor(*window, 509);
    EXPECT_EQ(window->grdScore.view.Col, 508);
    EXPECT_EQ(window->grdScore.view.LeftCol, 479);
}

TEST(GridEvents, TheViewStaysWithTheEndThatCanMoveNoFurther) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    grdScore_SelChange(*window, 5, 5);
    for (int i = 0; i < 2; ++i) {
        grdScore_SelChange(*window, 5, 100);
        EXPECT_EQ(window->grdScore.view.LeftCol, 71) << "after " << i << " repetitions";
    }
}

TEST(GridEvents, TheViewFollowsTheEndThatMoves) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    MoveCursor(*window, 20);
    Select(*window, 20, 60);
    EXPECT_EQ(window->grdScore.view.LeftCol, 31);
    EXPECT_EQ(window->score.first_shown, 31);
    EXPECT_GE(window->score.strip_cursor, 0);
    Select(*window, 20, 25);
    EXPECT_EQ(window->grdScore.view.LeftCol, 25);
    EXPECT_EQ(window->grdScore.view.Col, 20) << "the anchor stays";
    Select(*window, 2, 25);
    EXPECT_EQ(window->grdScore.view.LeftCol, 2) << "only the anchor moved";
    Select(*window, 3, 40);
    EXPECT_EQ(window->grdScore.view.LeftCol, 11) << "both moved";
}

TEST(GridEvents, AKeyFirstShowsACursorOutOfViewAndLeavesItThere) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    MoveCursor(*window, 60);
    EXPECT_FALSE(ShowHiddenCursor(*window)) << "in view the key acts";
    grdScore_Scroll(*window, 0);
    EXPECT_TRUE(ShowHiddenCursor(*window));
    EXPECT_EQ(window->grdScore.view.LeftCol, 31);
    EXPECT_EQ(window->score.first_shown, 31);
    EXPECT_EQ(window->score.strip_cursor, 29);
    EXPECT_EQ(window->grdScore.view.Col, 60);
    EXPECT_EQ(window->grdScore.view.ColSel, 60);
    EXPECT_FALSE(ShowHiddenCursor(*window));
    grdScore_Scroll(*window, 70); // the cursor is out of view on the other side
    EXPECT_TRUE(ShowHiddenCursor(*window));
    EXPECT_EQ(window->grdScore.view.LeftCol, 60);
    EXPECT_EQ(window->score.strip_cursor, 0);
    EXPECT_EQ(window->grdScore.view.ColSel, 60);
}

TEST(GridEvents, ScrollingMovesTheStripsCursorWhileItsColumnIsInView) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    MoveCursor(*window, 50);
    for (const auto& [left, place] : {std::pair{40, 10}, {50, 0}, {51, 0}, {21, 29}, {20, 29}}) {
        grdScore_Scroll(*window, left);
        EXPECT_EQ(window->score.first_shown, left);
        EXPECT_EQ(window->score.strip_cursor, place) << left;
    }
}

TEST(GridEvents, OfARangeOutOfViewAKeyFirstShowsTheEndThatItMoves) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    Select(*window, 5, 60);
    EXPECT_FALSE(ShowHiddenCursor(*window)) << "its other end may be out of view";
    grdScore_Scroll(*window, 0);
    EXPECT_TRUE(ShowHiddenCursor(*window));
    EXPECT_EQ(window->grdScore.view.LeftCol, 31);
    EXPECT_EQ(window->grdScore.view.Col, 5);
    EXPECT_EQ(window->grdScore.view.ColSel, 60);
}

TEST(GridEvents, TheStripCursorFollowsTheCursor) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    MoveCursor(*window, 45);
    EXPECT_EQ(window->score.first_shown, 16);
    EXPECT_EQ(window->score.strip_cursor, 29);
    MoveCursor(*window, 20);
    EXPECT_EQ(window->score.strip_cursor, 4);
    window->score.strip_cursor = 0;
    grdScore_MouseUp(*window);
    EXPECT_EQ(window->score.strip_cursor, 4);
}

TEST(GridEvents, ScrollingMovesTheStripAndNotTheCursor) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    MoveCursor(*window, 20);
    grdScore_Scroll(*window, 15);
    EXPECT_EQ(window->score.first_shown, 15);
    EXPECT_EQ(window->score.strip_cursor, 5);
    EXPECT_EQ(window->grdScore.view.Col, 20);
    grdScore_Scroll(*window, 60);
    EXPECT_EQ(window->score.first_shown, 60);
    EXPECT_EQ(window->score.strip_cursor, 5) << "out of view it stays";
    grdScore_Scroll(*window, 1000);
    EXPECT_EQ(window->grdScore.view.LeftCol, 71) << "101 columns, 30 of them shown";
    grdScore_Scroll(*window, -4);
    EXPECT_EQ(window->grdScore.view.LeftCol, 0);
}

TEST(GridEvents, AShortScoreDoesNotScroll) {
    auto window = SetUpWindow();
    FillScore(*window, 10);
    grdScore_Scroll(*window, 5);
    EXPECT_EQ(window->grdScore.view.LeftCol, 0);
    EXPECT_EQ(window->score.first_shown, 0);
}

TEST(StripEvents, AClickOnAPictureMovesTheCursorThere) {
    auto window = SetUpWindow();
    FillScore(*window, 100);
    Select(*window, 3, 7);
    grdScore_Scroll(*window, 40);
    imgNote_Click(*window, 12);
    EXPECT_EQ(window->grdScore.view.Col, 52);
    EXPECT_EQ(window->grdScore.view.ColSel, 52);
    EXPECT_EQ(window->score.strip_cursor, 12);
    EXPECT_EQ(window->highlighted_button, 1 + 52 % 20);
}

TEST(StripEvents, AClickOnTheBlankEndColumnPutsTheCursorThere) {
    auto window = SetUpWindow();
    FillScore(*window, 3);
    MoveCursor(*window, 0);
    imgNote_Click(*window, 3);
    EXPECT_EQ(window->grdScore.view.Col, 3);
    EXPECT_EQ(window->score.strip_cursor, 3);
}

TEST(StripEvents, AClickBehindTheEndDoesNothing) {
    auto window = SetUpWindow();
    FillScore(*window, 3);
    imgNote_Click(*window, 4);
    EXPECT_EQ(window->grdScore.view.Col, 0);
    imgNote_Click(*window, 3);
    EXPECT_EQ(window->grdScore.view.Col, 3) << "the end column";
}

} // namespace
} // namespace tonex::note_entry_commands_test
