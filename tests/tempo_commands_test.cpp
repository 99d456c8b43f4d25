#include "tests/set_up_window.h"

#include <gtest/gtest.h>

#include <string>

namespace tonex {
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

} // namespace
} // namespace tonex
