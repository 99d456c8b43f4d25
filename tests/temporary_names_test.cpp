// The names of temporary files: what is made, and that nothing else is taken for it.
#include "score/temporary_names.h"

#include <gtest/gtest.h>

namespace tonex::temporary_names_test {

TEST(TemporaryNames, OfSavesAreNoLongerThanTheShortestNamesThatFitEverywhere) {
    EXPECT_EQ(SaveName(7), L"~snd7.tmp");
    EXPECT_EQ(SaveName(4294967295u), L"~snd295.tmp");
    for (std::uint32_t number = 0; number < 2500; ++number) {
        EXPECT_LT(SaveName(number).size(), 12u) << "8 characters, a dot and 3, less one";
        EXPECT_TRUE(IsSaveName(SaveName(number)));
    }
    EXPECT_NE(SaveName(1), SaveName(2));
}

TEST(TemporaryNames, OfSavesAreToldFromOthers) {
    for (const wchar_t* name : {L"~snd.tmp", L"~snd1000.tmp", L"~sndbox.tmp", L"~snd17.tmp.snd", L"snd17.tmp",
                                L"~snd17", L"~snd-1.tmp", L"", L"~sn.tmp"})
        EXPECT_FALSE(IsSaveName(name));
}

TEST(TemporaryNames, OfUploadsHaveUpToFourHexadecimalDigitsInAnyLetterCase) {
    for (const wchar_t* name : {L"Snd1.tmp", L"SndFFFF.tmp", L"Snd1a2b.tmp", L"SND1A2B.TMP"})
        EXPECT_TRUE(IsUploadName(name));
    for (const wchar_t* name : {L"Snd.tmp", L"Snd12345.tmp", L"SndG.tmp", L"Sound1.tmp", L"Snd1.tmp.snd",
                                L"xSnd1.tmp", L"Snd1.snd", L""})
        EXPECT_FALSE(IsUploadName(name));
}

TEST(TemporaryNames, OfPreviewsAreTwoDollarsHourMinuteSecond) {
    EXPECT_EQ(PreviewFileName(0, L".snd"), L"$$000000.snd");
    EXPECT_EQ(PreviewFileName(45296, L".wav"), L"$$123456.wav");
    EXPECT_EQ(PreviewFileName(32949, L".snd"), L"$$090909.snd");
    EXPECT_EQ(PreviewFileName(36000, L".snd"), L"$$100000.snd");
    EXPECT_EQ(PreviewFileName(37230, L".wav"), L"$$102030.wav");
    EXPECT_EQ(PreviewFileName(86399, L".snd"), L"$$235959.snd");
}

TEST(TemporaryNames, OfPreviewsAreToldFromOthers) {
    for (int second = 0; second < 24 * 60 * 60; second += 997) {
        EXPECT_TRUE(IsPreviewFileName(PreviewFileName(second, L".wav")));
        EXPECT_TRUE(IsPreviewFileName(PreviewFileName(second, L".snd")));
    }
    EXPECT_TRUE(IsPreviewFileName(L"$$235959.wav"));
    for (const wchar_t* name :
         {L"$$240000.wav", L"$$126056.wav", L"$$125660.wav", L"$$12345.wav", L"$$1234567.wav", L"$123456.wav",
          L"$$123456.txt", L"$$12345x.wav", L"$$123456", L""})
        EXPECT_FALSE(IsPreviewFileName(name));
}

} // namespace tonex::temporary_names_test
