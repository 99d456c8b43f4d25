#include "tests/set_up_window.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace tonex::tempo_commands_test {
namespace {

using testing::SetUpWindow;

std::wstring NameOf(sndmain& window, const std::wstring& typed) {
    TempoComboChange(window, typed);
    return window.lblTempo.Caption;
}

TEST(TempoBox, HoldsThe28TemposEachWithALeadingBlank) {
    const auto window = SetUpWindow();
    const std::vector<std::wstring> expected = {L" 640", L" 480", L" 320", L" 240", L" 214", L" 160", L" 128",
                                                L" 120", L" 108", L" 96",  L" 92",  L" 80",  L" 72",  L" 70",
                                                L" 64",  L" 60",  L" 58",  L" 54",  L" 50",  L" 48",  L" 46",
                                                L" 44",  L" 40",  L" 38",  L" 36",  L" 34",  L" 32",  L" 30"};
    EXPECT_EQ(window->TempoCombo.List, expected);
}

TEST(TempoBox, StartsWith120) {
    const auto window = SetUpWindow();
    EXPECT_EQ(window->TempoCombo.ListIndex, 7);
    EXPECT_EQ(window->TempoCombo.Text, L" 120");
    EXPECT_EQ(window->lblTempo.Caption, L"Allegro");
    EXPECT_EQ(TempoForWriting(*window), 120);
    EXPECT_FALSE(window->score.changed);
}

TEST(TempoBox, IsWholeRightAfterItIsFilledHoweverOften) {
    sndmain window;
    window.tables = BuildTimingTables();
    for (int times = 0; times < 2; ++times) {
        FillTempoCombo(window);
        EXPECT_EQ(window.TempoCombo.List.size(), 28u);
        EXPECT_EQ(window.TempoCombo.ListIndex, 7);
        EXPECT_EQ(window.TempoCombo.Text, L" 120");
        EXPECT_EQ(window.lblTempo.Caption, L"Allegro");
    }
}

TEST(TempoBox, ItsFirstItemCanBeChosenAndSelected) {
    const auto window = SetUpWindow();
    TempoComboClick(*window, 0);
    EXPECT_EQ(window->TempoCombo.ListIndex, 0);
    EXPECT_EQ(window->TempoCombo.Text, L" 640");
    SelectTempo(*window, 30);
    EXPECT_EQ(window->TempoCombo.ListIndex, 27);
    SelectTempo(*window, 640);
    EXPECT_EQ(window->TempoCombo.ListIndex, 0);
    EXPECT_EQ(window->TempoCombo.Text, L" 640");
}

TEST(TempoBox, LowerBoundsAreInclusiveUpperBoundsExclusive) {
    const auto window = SetUpWindow();
    EXPECT_EQ(NameOf(*window, L"50"), L"Lento");
    EXPECT_EQ(NameOf(*window, L"49"), L"Largo");
    EXPECT_EQ(NameOf(*window, L"49.9"), L"Largo");
    EXPECT_EQ(NameOf(*window, L"57"), L"Lento");
    EXPECT_EQ(NameOf(*window, L"58"), L"Adagio");
    EXPECT_EQ(NameOf(*window, L"67"), L"Andante");
    EXPECT_EQ(NameOf(*window, L"81"), L"Moderato");
    EXPECT_EQ(NameOf(*window, L"102"), L"Allegro");
    EXPECT_EQ(NameOf(*window, L"138"), L"Vivace");
    EXPECT_EQ(NameOf(*window, L"167"), L"Presto");
    EXPECT_EQ(NameOf(*window, L"319"), L"Presto");
}

TEST(TempoBox, NoNameBelow40AndFrom320Up) {
    const auto window = SetUpWindow();
    EXPECT_EQ(NameOf(*window, L"320"), L"");
    EXPECT_EQ(NameOf(*window, L"39"), L"");
    EXPECT_EQ(NameOf(*window, L""), L"");
    EXPECT_EQ(NameOf(*window, L"fast"), L"");
    EXPECT_EQ(NameOf(*window, L"99999999999"), L"");
}

TEST(TempoBox, ANumberWithWordsBehindItNamesATempoButIsNone) {
    const auto window = SetUpWindow();
    EXPECT_EQ(NameOf(*window, L"120x"), L"Allegro");
    EXPECT_EQ(TempoForWriting(*window), 0);
}

TEST(TempoBox, TypingSetsTheChangedFlagAndSelectsNoItem) {
    const auto window = SetUpWindow();
    TempoComboChange(*window, L"77");
    EXPECT_TRUE(window->score.changed);
    EXPECT_EQ(window->TempoCombo.ListIndex, -1);
    EXPECT_EQ(TempoForWriting(*window), 77);
}

TEST(TempoBox, ChoosingTheSameTempoAgainStillSetsTheChangedFlag) {
    const auto window = SetUpWindow();
    TempoComboClick(*window, 7);
    EXPECT_TRUE(window->score.changed);
    EXPECT_EQ(window->TempoCombo.Text, L" 120");
}

TEST(TempoBox, AnItemThatIsNotThereIsIgnored) {
    const auto window = SetUpWindow();
    TempoComboClick(*window, 28);
    TempoComboClick(*window, -1);
    EXPECT_FALSE(window->score.changed);
    EXPECT_EQ(window->TempoCombo.ListIndex, 7);
}

TEST(TempoBox, ChoosingAnItemShowsItsName) {
    const auto window = SetUpWindow();
    TempoComboClick(*window, 27);
    EXPECT_EQ(window->TempoCombo.Text, L" 30");
    EXPECT_EQ(window->lblTempo.Caption, L"");
    TempoComboClick(*window, 18);
    EXPECT_EQ(window->lblTempo.Caption, L"Lento");
}

TEST(TempoBox, SelectingATempoFindsItsItem) {
    const auto window = SetUpWindow();
    SelectTempo(*window, 96);
    EXPECT_EQ(window->TempoCombo.ListIndex, 9);
    EXPECT_EQ(window->TempoCombo.Text, L" 96");
    EXPECT_FALSE(window->score.changed);
}

TEST(TempoBox, SelectingATempoThatIsNotInTheListSelectsNone) {
    const auto window = SetUpWindow();
    SelectTempo(*window, 121);
    EXPECT_EQ(window->TempoCombo.ListIndex, -1);
    EXPECT_EQ(TempoForWriting(*window), 121);
    EXPECT_EQ(window->lblTempo.Caption, L"Allegro");
}

TEST(TempoBox, ClearGoesBackTo120) {
    const auto window = SetUpWindow();
    TempoComboChange(*window, L"50");
    ClearAll(*window);
    EXPECT_EQ(window->TempoCombo.ListIndex, 7);
    EXPECT_EQ(window->TempoCombo.Text, L" 120");
    EXPECT_EQ(window->lblTempo.Caption, L"Allegro");
    EXPECT_FALSE(window->score.changed);
}

// ---- the list and its neighbours ----

TEST(TempoList, AnItemIsFoundByItsNumberNotByItsBeginning) {
    const auto window = SetUpWindow();
    EXPECT_EQ(TempoItemOf(*window, L" 64"), 14) << "not 640";
    EXPECT_EQ(TempoItemOf(*window, L"48"), 19) << "not 480";
    EXPECT_EQ(TempoItemOf(*window, L"32"), 26) << "not 320";
    EXPECT_EQ(TempoItemOf(*window, L"120"), 7) << "typed without the list's blank";
    for (const wchar_t* none : {L"100", L"6", L"120x", L"", L"0", L"x"})
        EXPECT_EQ(TempoItemOf(*window, none), -1);
}

std::pair<std::wstring, std::wstring> NeighboursOf(sndmain& window, const std::wstring& typed) {
    TempoComboChange(window, typed);
    const auto text = [&](int item) { return item < 0 ? L"none" : At(window.TempoCombo.List, item); };
    return {text(TempoNeighbour(window, -1)), text(TempoNeighbour(window, 1))};
}

TEST(TempoList, NeighboursAreTheNextFasterAndSlowerTempos) {
    using Pair = std::pair<std::wstring, std::wstring>;
    const auto window = SetUpWindow();
    EXPECT_EQ(NeighboursOf(*window, L"120"), (Pair{L" 128", L" 108"}));
    EXPECT_EQ(NeighboursOf(*window, L" 64"), (Pair{L" 70", L" 60"}));
    EXPECT_EQ(NeighboursOf(*window, L"100"), (Pair{L" 108", L" 96"})) << "of a tempo that is in no list too";
    EXPECT_EQ(NeighboursOf(*window, L"640"), (Pair{L"none", L" 480"}));
    EXPECT_EQ(NeighboursOf(*window, L"30"), (Pair{L" 32", L"none"}));
    EXPECT_EQ(NeighboursOf(*window, L"700"), (Pair{L"none", L" 640"}));
    EXPECT_EQ(NeighboursOf(*window, L""), (Pair{L" 30", L"none"}));
}

TEST(TempoList, LeavingItWithoutChoosingBringsEverythingBack) {
    const auto window = SetUpWindow();
    SelectTempo(*window, 64);
    for (const bool changed : {false, true}) {
        window->score.changed = changed;
        const TempoChoice before = CurrentTempo(*window);
        TempoComboClick(*window, 16);
        RestoreTempo(*window, before);
        EXPECT_EQ(window->TempoCombo.Text, L" 64");
        EXPECT_EQ(window->TempoCombo.ListIndex, 14);
        EXPECT_EQ(window->lblTempo.Caption, L"Adagio");
        EXPECT_EQ(window->score.changed, changed);
    }
}

} // namespace
} // namespace tonex::tempo_commands_test
