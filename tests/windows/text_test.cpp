#include "platform/text.h"

#include "tests/windows/support.h"

#include <gtest/gtest.h>

using namespace tonex;

TEST(AnsiText, PlainLettersAreTheSameOnBothSides) {
    EXPECT_EQ(ToAnsi(L"C:\\Link\\TUNE.SND"), "C:\\Link\\TUNE.SND");
    EXPECT_EQ(FromAnsi("C:\\Link\\TUNE.SND"), L"C:\\Link\\TUNE.SND");
}

TEST(AnsiText, EmptyTextStaysEmptyAndNulsAreKept) {
    EXPECT_EQ(ToAnsi(L""), "");
    EXPECT_EQ(FromAnsi(""), L"");
    EXPECT_EQ(ToAnsi(std::wstring(L"a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(FromAnsi(std::string("a\0b", 3)), std::wstring(L"a\0b", 3));
}

TEST(AnsiText, FollowsTheSystemsCodePage) {
    const std::wstring katakana = L"\u30E1\u30ED\u30C7\u30A3\u30FC";
    switch (GetACP()) {
    case 932:
        EXPECT_EQ(ToAnsi(katakana), "\x83\x81\x83\x8D\x83\x66\x83\x42\x81\x5B");
        EXPECT_EQ(FromAnsi("\x83\x5C.snd"), L"\u30BD.snd"); // a backslash as a second byte is no backslash
        EXPECT_EQ(ToAnsi(L"\uFF92\uFF9B").size(), 2u);
        break;
    case 1252:
        EXPECT_EQ(ToAnsi(L"caf\u00E9"), "caf\xE9");
        EXPECT_EQ(FromAnsi("caf\xE9"), L"caf\u00E9");
        EXPECT_EQ(ToAnsi(katakana), "?????"); // one default character each
        break;
    default: FAIL() << "no expectation for code page " << GetACP();
    }
}
