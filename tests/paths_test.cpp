#include "link/paths.h"

#include <gtest/gtest.h>

namespace {

using namespace tonex;

TEST(Paths, FileNameIsBehindTheLastBackslash) {
    EXPECT_EQ(FileNameOfPath(L"abc"), L"abc");
    EXPECT_EQ(FileNameOfPath(L"C:\\a\\b.snd"), L"b.snd");
    EXPECT_EQ(FileNameOfPath(L"\\b.snd"), L"b.snd");
    EXPECT_EQ(FileNameOfPath(L"C:\\a\\"), L"");
    EXPECT_EQ(FileNameOfPath(L""), L"");
    EXPECT_EQ(FileNameOfPath(L"C:/a/b.snd"), L"C:/a/b.snd");
}

TEST(Paths, FolderIsUpToAndWithTheLastBackslash) {
    EXPECT_EQ(FolderOfPath(L"abc"), L"");
    EXPECT_EQ(FolderOfPath(L"C:\\a\\b.snd"), L"C:\\a\\");
    EXPECT_EQ(FolderOfPath(L"C:\\a\\"), L"C:\\a\\");
    EXPECT_EQ(FolderOfPath(L"\\b.snd"), L"\\");
    EXPECT_EQ(FolderOfPath(L""), L"");
}

TEST(Paths, FolderAndFileNameJoinToThePath) {
    for (const std::wstring path : {L"abc", L"C:\\a\\b.snd", L"\\\\host\\share\\x", L"", L"\\"}) {
        EXPECT_EQ(FolderOfPath(path) + FileNameOfPath(path), path);
    }
}

TEST(Paths, ExtensionIsComparedInAnyLetterCase) {
    EXPECT_TRUE(HasExtension(L"TUNE.SND", L".snd"));
    EXPECT_TRUE(HasExtension(L"tune.snd", L".SND"));
    EXPECT_TRUE(HasExtension(L"C:\\a\\Tune.Snd", L".sNd"));
    EXPECT_FALSE(HasExtension(L"TUNE.SNDX", L".snd"));
    EXPECT_FALSE(HasExtension(L"TUNE.WAV", L".snd"));
    EXPECT_FALSE(HasExtension(L"TUNESND", L".snd"));
    EXPECT_FALSE(HasExtension(L"", L".snd"));
}

TEST(Paths, ANameShorterThanFourCharactersIsComparedWhole) {
    EXPECT_FALSE(HasExtension(L"snd", L".snd"));
    EXPECT_TRUE(HasExtension(L"snd", L"SND"));
    EXPECT_TRUE(HasExtension(L".snd", L".snd"));
    EXPECT_TRUE(HasExtension(L"", L""));
}

TEST(Paths, OnlyTheLastFourCharactersCount) {
    EXPECT_FALSE(HasExtension(L"tune.melody", L".melody"));
    EXPECT_TRUE(HasExtension(L"tune.melody", L"lody"));
}

TEST(Paths, QuotesAtBothEndsAreDropped) {
    EXPECT_EQ(WithoutQuotes(L"\"C:\\a b.snd\""), L"C:\\a b.snd");
    EXPECT_EQ(WithoutQuotes(L"C:\\a b.snd"), L"C:\\a b.snd");
    EXPECT_EQ(WithoutQuotes(L"C:\\a.snd\""), L"C:\\a.snd");
    EXPECT_EQ(WithoutQuotes(L"\"C:\\a.snd"), L"C:\\a.snd");
    EXPECT_EQ(WithoutQuotes(L"\"\"a\"\""), L"\"a\"");
    EXPECT_EQ(WithoutQuotes(L"\""), L"");
    EXPECT_EQ(WithoutQuotes(L"\"\""), L"");
    EXPECT_EQ(WithoutQuotes(L""), L"");
}

TEST(Paths, ExactlyOneTrailingBackslashIsDropped) {
    EXPECT_EQ(WithoutTrailingBackslash(L"C:\\Link\\"), L"C:\\Link");
    EXPECT_EQ(WithoutTrailingBackslash(L"C:\\Link"), L"C:\\Link");
    EXPECT_EQ(WithoutTrailingBackslash(L"C:\\Link\\\\"), L"C:\\Link\\");
    EXPECT_EQ(WithoutTrailingBackslash(L"\\"), L"");
    EXPECT_EQ(WithoutTrailingBackslash(L""), L"");
}

TEST(Paths, UpperCaseChangesPlainLettersOnly) {
    EXPECT_EQ(UpperCase(L"az AZ 09.snd`{"), L"AZ AZ 09.SND`{");
    EXPECT_EQ(UpperCase(L"\u00e9\u00df\u30e1"), L"\u00e9\u00df\u30e1");
}

} // namespace
