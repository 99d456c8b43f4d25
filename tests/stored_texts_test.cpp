// The texts of the settings store: what is written, and what damaged or foreign ones are read as.
#include "link/stored_texts.h"
#include "tests/desktop/desktop.h"

#include <gtest/gtest.h>

#include <string>

namespace tonex::stored_texts_test {

TEST(StoredTexts, LastDocumentHoldsFlagDisplayNameAndPath) {
    EXPECT_EQ(LastDocumentText(1, L"C:\\x\\A.SND"), L"1,PC:A.SND,C:\\x\\A.SND");
    EXPECT_EQ(LastDocumentText(0, L"C:\\x\\A.SND"), L"0,Veloxa:A.SND,C:\\x\\A.SND");
    EXPECT_EQ(LastDocumentText(2, L"C:\\x\\A.SND"), L"2,Veloxa:A.SND,C:\\x\\A.SND");
    EXPECT_EQ(LastDocumentText(-1, L"A.SND"), L"-1,Veloxa:A.SND,A.SND");
    EXPECT_EQ(LastDocumentText(1, L""), L"1,PC:,");
}

TEST(StoredTexts, TheLastDocumentIsReadAtTheFirstTwoCommas) {
    const struct {
        const wchar_t* text;
        std::int16_t location_flag;
        const wchar_t* path;
    } cases[] = {
        {L"1,PC:A.SND,C:\\x\\A.SND", 1, L"C:\\x\\A.SND"},
        {L"0,Veloxa:A.SND,C:\\x\\A.SND", 0, L"C:\\x\\A.SND"},
        {L"-1,,A.SND", -1, L"A.SND"},
        {L"7,anything,C:\\a folder, with a comma\\A.SND", 7, L"C:\\a folder, with a comma\\A.SND"},
        {L"1,PC:A,B.SND,C:\\x\\A,B.SND", 1, L"B.SND,C:\\x\\A,B.SND"}, // cut wrongly; kept as it is
        {L"", 0, L""},
        {L"1", 1, L""},
        {L"1,PC:A.SND", 1, L""},
        {L"1,PC:,", 1, L""},
        {L"PC,A,C:\\A.SND", 0, L"C:\\A.SND"},
    };
    for (const auto& [text, location_flag, path] : cases) {
        const LastDocument last = ParseLastDocument(text);
        EXPECT_EQ(last.location_flag, location_flag) << desktop::Utf8(text);
        EXPECT_EQ(last.path, path) << desktop::Utf8(text);
    }
}

TEST(StoredTexts, PlacementTextPutsBottomBeforeLeft) {
    WindowPlacement placement;
    placement.show_state = 3;
    placement.left = 100;
    placement.top = 200;
    placement.right = 500;
    placement.bottom = 600;
    EXPECT_EQ(PlacementText(placement), L"3,600,100,500,200");
    placement.left = -8;
    placement.top = -2147483647 - 1;
    EXPECT_EQ(PlacementText(placement), L"3,600,-8,500,-2147483648");
}

TEST(StoredTexts, PlacementIsReadBackAsItWasWritten) {
    WindowPlacement placement;
    placement.show_state = 1;
    placement.left = -1200;
    placement.top = 0;
    placement.right = 2147483647;
    placement.bottom = 7;
    const auto read = ParsePlacement(PlacementText(placement));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->show_state, 1);
    EXPECT_EQ(read->left, -1200);
    EXPECT_EQ(read->top, 0);
    EXPECT_EQ(read->right, 2147483647);
    EXPECT_EQ(read->bottom, 7);
}

TEST(StoredTexts, PlacementWithoutFiveWholeNumbersIsNone) {
    for (const wchar_t* text :
         {L"", L",", L"1", L"2,600,100,500", L"2,600,100,500,", L",600,100,500,200", L"2,600,,500,200",
          L"2,600,100,500,200,7", L"2,600,abc,500,200", L"2,600,100,500,200 ", L"2, 600,100,500,200",
          L"2,600,100.5,500,200", L"2,600,2147483648,500,200", L"2,600,-2147483649,500,200",
          L"2,600,99999999999999999999999999,500,200", L"2,600,-,500,200", L"2,600,--1,500,200",
          L"a,b,c,d,e"}) {
        EXPECT_FALSE(ParsePlacement(text)) << desktop::Utf8(text);
    }
}

} // namespace tonex::stored_texts_test
