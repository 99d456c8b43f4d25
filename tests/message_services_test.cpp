// What the user is told about melodies and their files, and the rules of names.
#include "score/message_services.h"
#include "tests/desktop/desktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tonex::message_services_test {

namespace {

using Texts = std::vector<std::wstring>;

struct Messages : ::testing::Test {
    desktop::Desktop& desk = desktop::Reset();

    ~Messages() override {
        for (const desktop::Message& message : desk.messages) {
            EXPECT_EQ(message.icon, MessageIcon::Exclamation);
            EXPECT_EQ(message.buttons, MessageButtons::Ok);
        }
    }
};

} // namespace

TEST_F(Messages, TheNumberOfEntriesStandsBetweenTheWordsWithoutBlanks) {
    TellHowManyDidNotFit(173);
    EXPECT_EQ(desktop::Told(), Texts{L"Cannot input the last173music notes."});
}

TEST_F(Messages, ErrorsAreToldInTwoWords) {
    TellReadError();
    TellWriteError();
    EXPECT_EQ(desktop::Told(), (Texts{L"Read error!", L"Write error!"}));
}

TEST_F(Messages, AnEntryThatNoFileHoldsIsToldByItsNumber) {
    TellEntryNotSaved(12, true);
    TellEntryNotSaved(1, false);
    EXPECT_EQ(desktop::Told(), (Texts{L"The pitch of entry 12 is out of range and cannot be saved.",
                                      L"Entry 1 is unknown and cannot be saved."}));
}

TEST_F(Messages, ExtensionSndPassesInAnyLetterCase) {
    for (const wchar_t* path : {L"C:\\ABC.snd", L"ABC.SND", L"ABC.sNd", L".snd"})
        EXPECT_TRUE(CheckSndExtension(path)) << desktop::Utf8(path);
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(Messages, OtherExtensionsAreNoSoundFiles) {
    for (const wchar_t* path :
         {L"C:\\ABC.SN", L"ABC.wav", L"", L"snd", L"ABCsnd", L"ABC.snd ", L"ABC.sndx"}) {
        desk.messages.clear();
        EXPECT_FALSE(CheckSndExtension(path)) << desktop::Utf8(path);
        EXPECT_EQ(desktop::Told(), Texts{L"This is not a sound file."});
    }
}

TEST_F(Messages, ANameOfEightCharactersIsAccepted) {
    for (const wchar_t* path : {L"C:\\Songs\\12345678.snd", L"12345678.SND", L"12345678", L"", L"C:\\Songs\\",
                                L"C:\\a long folder name\\A.SND", L"音符編集.snd", L"ﾒﾛﾃﾞｨｰ12.Snd"}) {
        EXPECT_TRUE(CheckNameLength(path)) << desktop::Utf8(path);
    }
    EXPECT_TRUE(desk.messages.empty());
}

TEST_F(Messages, ANameOfNineCharactersIsRefused) {
    for (const wchar_t* path : {L"C:\\Songs\\123456789.snd", L"123456789", L"12345.wav", L"音符編集1.snd",
                                L"ﾒﾛﾃﾞｨｰ123.snd", L"12345678.snd.snd"}) {
        desk.messages.clear();
        EXPECT_FALSE(CheckNameLength(path)) << desktop::Utf8(path);
        EXPECT_EQ(desktop::Told(), Texts{L"File name cannot exceed 8 characters.  Change the file name."});
    }
}

TEST_F(Messages, ADoubleByteCharacterCountsAsTwo) {
    EXPECT_TRUE(CheckNameLength(L"メロディ.snd"));
    EXPECT_FALSE(CheckNameLength(L"メロディー.snd"));
    desk.code_page = 1252;
    EXPECT_TRUE(CheckNameLength(L"メロディー.snd"));
}

} // namespace tonex::message_services_test
