#include "score/number_text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace tonex::number_text_test {
namespace {

TEST(NumberText, NumericValueReadsTheNumberAtTheFront) {
    EXPECT_EQ(NumericValueOf(L" 120"), 120);
    EXPECT_EQ(NumericValueOf(L"120"), 120);
    EXPECT_EQ(NumericValueOf(L"\t 49.5"), 49.5);
    EXPECT_EQ(NumericValueOf(L"120bpm"), 120);
    EXPECT_EQ(NumericValueOf(L"12.5.7"), 12.5);
    EXPECT_EQ(NumericValueOf(L".5"), 0.5);
    EXPECT_EQ(NumericValueOf(L"5."), 5);
    EXPECT_EQ(NumericValueOf(L"-40"), -40);
    EXPECT_EQ(NumericValueOf(L"+40"), 40);
    EXPECT_EQ(NumericValueOf(L""), 0);
    EXPECT_EQ(NumericValueOf(L"   "), 0);
    EXPECT_EQ(NumericValueOf(L"."), 0);
    EXPECT_EQ(NumericValueOf(L"-"), 0);
    EXPECT_EQ(NumericValueOf(L"Largo"), 0);
    EXPECT_EQ(NumericValueOf(L"\uff11\uff12\uff10"), 0);
}

TEST(NumberText, NumericValueOfVeryLongTextsIsDefined) {
    EXPECT_GT(NumericValueOf(std::wstring(5000, L'9')), 1e300);
    EXPECT_NEAR(NumericValueOf(L"1." + std::wstring(5000, L'9')), 2.0, 1e-12);
    EXPECT_EQ(NumericValueOf(std::wstring(5000, L' ') + L"7"), 7);
}

TEST(NumberText, WholeNumberRoundsTiesToEven) {
    EXPECT_EQ(WholeNumberOf(L" 120"), 120);
    EXPECT_EQ(WholeNumberOf(L"120 "), 120);
    EXPECT_EQ(WholeNumberOf(L"120.5"), 120);
    EXPECT_EQ(WholeNumberOf(L"121.5"), 122);
    EXPECT_EQ(WholeNumberOf(L"119.51"), 120);
    EXPECT_EQ(WholeNumberOf(L"-2.5"), -2);
    EXPECT_EQ(WholeNumberOf(L"-40"), -40);
}

TEST(NumberText, WholeNumberIs0ForWhatIsNoNumberOrDoesNotFit) {
    EXPECT_EQ(WholeNumberOf(L""), 0);
    EXPECT_EQ(WholeNumberOf(L" "), 0);
    EXPECT_EQ(WholeNumberOf(L"abc"), 0);
    EXPECT_EQ(WholeNumberOf(L"120x"), 0);
    EXPECT_EQ(WholeNumberOf(L"1 20"), 0);
    EXPECT_EQ(WholeNumberOf(L"32767"), 32767);
    EXPECT_EQ(WholeNumberOf(L"32767.5"), 0);
    EXPECT_EQ(WholeNumberOf(L"32768"), 0);
    EXPECT_EQ(WholeNumberOf(L"-32768"), -32768);
    EXPECT_EQ(WholeNumberOf(L"-32769"), 0);
    EXPECT_EQ(WholeNumberOf(std::wstring(5000, L'9')), 0);
}

TEST(NumberText, APositiveNumberHasABlankInFront) {
    EXPECT_EQ(NumberToText(120), L" 120");
    EXPECT_EQ(NumberToText(0), L" 0");
    EXPECT_EQ(NumberToText(-5), L"-5");
    EXPECT_EQ(NumberToText(-32768), L"-32768");
    EXPECT_EQ(NumberToText(32767), L" 32767");
}

TEST(NumberText, DigitsAloneAreANumberUpToTheLargest) {
    constexpr int kMost = std::numeric_limits<int>::max();
    EXPECT_EQ(NumberOfDigits(std::wstring_view(L"0"), 0), 0);
    EXPECT_EQ(NumberOfDigits(std::string_view("007"), 9), 7);
    EXPECT_EQ(NumberOfDigits(std::string_view("2147483647"), kMost), kMost);
    EXPECT_FALSE(NumberOfDigits(std::string_view("2147483648"), kMost));
    EXPECT_FALSE(NumberOfDigits(std::string_view("10"), 9));
    EXPECT_FALSE(NumberOfDigits(std::wstring_view(std::wstring(5000, L'9')), kMost));
    for (const char* text : {"", "-1", "+1", " 1", "1 ", "1.0", "1x"})
        EXPECT_FALSE(NumberOfDigits(std::string_view(text), 9)) << text;
    EXPECT_FALSE(NumberOfDigits(std::wstring_view(L"\uff11"), 9));
}

TEST(NumberText, BlanksAndTabsInFrontAreSkipped) {
    EXPECT_EQ(SkipBlanks(std::string_view(" \t a b ")), "a b ");
    EXPECT_EQ(SkipBlanks(std::wstring_view(L"\u3000a")), L"\u3000a");
    EXPECT_EQ(SkipBlanks(std::string_view(" ")), "");
}

} // namespace
} // namespace tonex::number_text_test
