#include "link/paths.h"

#include <gtest/gtest.h>

namespace tonex::paths_test {

namespace {

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

TEST(Paths, AnExtensionIsPutBehindANameThatHasAnother) {
    EXPECT_EQ(WithExtension(L"C:\\a\\TUNE", L".snd"), L"C:\\a\\TUNE.snd");
    EXPECT_EQ(WithExtension(L"C:\\a\\TUNE.SND", L".snd"), L"C:\\a\\TUNE.SND");
    EXPECT_EQ(WithExtension(L"max", L".snd"), L"max.snd");
    EXPECT_EQ(WithExtension(L"TUNE.wav", L".snd"), L"TUNE.wav.snd");
    for (const wchar_t* name : {L"TUNE.", L"TUNE ", L"TUNE. .", L"TUNE ...  "})
        EXPECT_EQ(WithExtension(name, L".snd"), L"TUNE.snd") << "Windows drops what stands there";
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

TEST(Paths, APatternsStarIsAnyRunAndItsQuestionMarkAnyOneCharacter) {
    const auto same = [](wchar_t a, wchar_t b) { return a == b; };
    const struct {
        const wchar_t* name;
        const wchar_t* pattern;
        bool matches;
    } cases[] = {{L"TUNE.SND", L"*.SND", true},
                 {L"TUNE.SNDX", L"*.SND", false},
                 {L"TUNE", L"*.SND", false},
                 {L".SND", L"*.SND", true},
                 {L"A.SND.SND", L"*.SND", true},
                 {L"aXbXc", L"a*X*c", true},
                 {L"aXbXc", L"a*Y*c", false},
                 {L"ab", L"?b", true},
                 {L"b", L"?b", false},
                 {L"abc", L"a?", false},
                 {L"", L"", true},
                 {L"", L"**", true},
                 {L"", L"?", false},
                 {L"abc", L"", false},
                 {L"abc", L"abc**", true},
                 {L"*", L"?", true},
                 {L"a", L"A", false}};
    for (const auto& [name, pattern, matches] : cases)
        EXPECT_EQ(MatchesPattern(name, pattern, same), matches) << name << " " << pattern;
}

TEST(Paths, APatternsLettersAreComparedByTheRuleThatIsGiven) {
    const auto any = [](wchar_t, wchar_t) { return true; };
    EXPECT_TRUE(MatchesPattern(L"abc", L"xyz", any));
    EXPECT_FALSE(MatchesPattern(L"abc", L"xy", any));
}

TEST(Paths, UpperCaseChangesPlainLettersOnly) {
    EXPECT_EQ(UpperCase(L"az AZ 09.snd`{"), L"AZ AZ 09.SND`{");
    EXPECT_EQ(UpperCase(L"\u00e9\u00df\u30e1"), L"\u00e9\u00df\u30e1");
}

} // namespace

} // namespace tonex::paths_test
