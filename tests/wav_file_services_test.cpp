#include "preview/wav_file_services.h"

#include "tests/desktop/desktop.h"
#include "tests/plain_synthesis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace tonex::wav_file_services_test {

namespace {

using Bytes = std::vector<std::uint8_t>;

const std::wstring kSnd = L"C:\\Temp\\$$123456.snd";
const std::wstring kWav = L"C:\\Temp\\$$123456.wav";

Bytes Melody() {
    return {7, 0, 4, 0, 26, 56, 86, 8, 30, 48, 255, 255, 0, 0, 120, 0, 255, 255};
}

bool Append(void* context, const std::uint8_t* bytes, std::size_t count) {
    auto& all = *static_cast<Bytes*>(context);
    all.insert(all.end(), bytes, bytes + count);
    return true;
}

/// The WAV file that a melody's records must give.
Bytes ExpectedWav(const Bytes& records, std::uint8_t tempo_byte) {
    Bytes samples;
    for (std::size_t i = 0; i < records.size(); i += 2) {
        EXPECT_EQ(WriteNoteSamples(Table(), {&samples, Append}, records[i], records[i + 1], tempo_byte),
                  SynthesisResult::Done);
    }
    const auto header = WavHeader(static_cast<std::uint32_t>(samples.size()));
    Bytes wav(header.begin(), header.end());
    std::copy(samples.begin(), samples.end(), std::back_inserter(wav));
    return wav;
}

struct Told {
    std::vector<int> numbers; ///< the count of notes, then the notes done; -1 = the end
    bool created_at_begin = false;
    bool sizes_open_at_end = false;
};

void Begin(void* context, int notes) {
    static_cast<Told*>(context)->numbers.push_back(notes);
    static_cast<Told*>(context)->created_at_begin = desktop::Current().files.contains(kWav);
}
void Advance(void* context, int done) {
    static_cast<Told*>(context)->numbers.push_back(done);
}
void End(void* context) {
    auto& told = *static_cast<Told*>(context);
    told.numbers.push_back(-1);
    const auto& files = desktop::Current().files;
    if (const auto found = files.find(kWav); found != files.end() && found->second.bytes.size() >= 44) {
        auto header = WavHeader(0);
        std::copy_n("SIZE", 4, header.begin() + 4);
        std::copy_n("size", 4, header.begin() + 40);
        told.sizes_open_at_end = std::equal(header.begin(), header.end(), found->second.bytes.begin());
    }
}

std::int16_t Convert() {
    return sndfile2wavfile(Table(), kSnd, kWav, {});
}

std::int16_t Convert(Told& told) {
    return sndfile2wavfile(Table(), kSnd, kWav, {&told, Begin, Advance, End});
}

bool WavIsThere() {
    return desktop::Current().files.contains(kWav);
}

const Bytes& Wav() {
    return desktop::Current().files.at(kWav).bytes;
}

TEST(WavFile, AMelodyByteForByte) {
    desktop::Reset().files[kSnd].bytes = Melody();
    EXPECT_EQ(Convert(), 0);
    EXPECT_EQ(Wav(), ExpectedWav({26, 56, 86, 8, 30, 48}, 4));
    EXPECT_EQ(Wav().size(), 44U + 2 * 11025 + 22050);
}

TEST(WavFile, TheSndFileStaysAsItWas) {
    desktop::Reset().files[kSnd].bytes = Melody();
    Convert();
    EXPECT_EQ(desktop::Current().files.at(kSnd).bytes, Melody());
    EXPECT_EQ(desktop::Current().files.size(), 2U);
}

TEST(WavFile, TheEndMarkAloneGives44Bytes) {
    desktop::Reset().files[kSnd].bytes = {7, 0, 4, 0, 255, 255};
    Told told;
    EXPECT_EQ(Convert(told), 0);
    const auto header = WavHeader(0);
    EXPECT_EQ(Wav(), Bytes(header.begin(), header.end()));
    EXPECT_EQ(Wav()[4], 36);
    EXPECT_EQ(Wav()[40], 0);
    EXPECT_EQ(told.numbers, (std::vector<int>{0, -1}));
}

TEST(WavFile, TwoConversionsInARowGiveTheSameFile) {
    desktop::Reset().files[kSnd].bytes = Melody();
    ASSERT_EQ(Convert(), 0);
    const Bytes first = Wav();
    EXPECT_EQ(Convert(), 0);
    EXPECT_EQ(Wav(), first);
}

TEST(WavFile, AnOldLongerWavFileIsDeletedFirst) {
    for (const std::uint32_t attributes : {0U, 1U, 2U, 4U, 7U, 32U, 39U}) {
        auto& desk = desktop::Reset();
        desk.files[kSnd].bytes = Melody();
        desk.files[kWav].bytes = Bytes(1000000, 99);
        desk.files[kWav].attributes = attributes;
        EXPECT_EQ(Convert(), 0) << attributes;
        EXPECT_EQ(Wav(), ExpectedWav({26, 56, 86, 8, 30, 48}, 4)) << attributes;
    }
}

TEST(WavFile, WithoutASndFileNothingIsCreatedOrTouched) {
    auto& desk = desktop::Reset();
    desk.files[kWav].bytes = {1, 2, 3};
    Told told;
    EXPECT_EQ(Convert(told), -1);
    EXPECT_EQ(Wav(), (Bytes{1, 2, 3}));
    EXPECT_TRUE(told.numbers.empty());
}

TEST(WavFile, ARejectedHeaderCreatesNothing) {
    const std::vector<Bytes> files = {
        {},
        {7},
        {7, 0, 4},
        {8, 0, 4, 0, 255, 255},
        {7, 1, 4, 0, 255, 255},
        {7, 0, 0, 0, 255, 255},
        {7, 0, 33, 0, 255, 255},
        {7, 0, 255, 0, 255, 255},
        {7, 0, 4, 1, 255, 255},
    };
    for (const Bytes& file : files) {
        auto& desk = desktop::Reset();
        desk.files[kSnd].bytes = file;
        Told told;
        EXPECT_EQ(Convert(told), -1) << ::testing::PrintToString(file);
        EXPECT_FALSE(WavIsThere());
        EXPECT_TRUE(told.numbers.empty());
        desk.files[kWav].bytes = {1, 2, 3};
        EXPECT_EQ(Convert(), -1);
        EXPECT_EQ(Wav(), (Bytes{1, 2, 3}));
    }
}

TEST(WavFile, ASndFileWithoutItsEndMarkIsRefused) {
    const Bytes whole = {7, 0, 4, 0, 26, 56, 86, 8, 255, 255};
    for (std::size_t size = 0; size < whole.size(); ++size) {
        auto& desk = desktop::Reset();
        desk.files[kSnd].bytes = Bytes(whole.begin(), whole.begin() + static_cast<int>(size));
        EXPECT_EQ(Convert(), -1) << size;
        EXPECT_FALSE(WavIsThere()) << size;
    }
}

TEST(WavFile, AHiddenSndFileIsFound) {
    auto& desk = desktop::Reset();
    desk.files[kSnd].bytes = Melody();
    desk.files[kSnd].attributes = 2;
    EXPECT_EQ(Convert(), 0);
}

TEST(WavFile, ProgressCountsEveryNoteAndEndsOnceBeforeTheSizesAreWritten) {
    desktop::Reset().files[kSnd].bytes = Melody();
    Told told;
    EXPECT_EQ(Convert(told), 0);
    EXPECT_EQ(told.numbers, (std::vector<int>{3, 1, 2, 3, -1}));
    EXPECT_FALSE(told.created_at_begin);
    EXPECT_TRUE(told.sizes_open_at_end);
}

TEST(WavFile, ANoteThatLeavesTheTableFailsAndLeavesNoFile) {
    for (const Bytes& record : {Bytes{107, 48}, {200, 49}, {254, 255}}) {
        auto& desk = desktop::Reset();
        desk.files[kSnd].bytes = {7, 0, 4, 0, 26, 56, record[0], record[1], 26, 56, 255, 255};
        desk.files[kWav].bytes = {1, 2, 3};
        Told told;
        EXPECT_EQ(Convert(told), -4);
        EXPECT_FALSE(WavIsThere());
        EXPECT_EQ(told.numbers, (std::vector<int>{3, 1, -1}));
    }
}

TEST(WavFile, HighOctavesThatStayInTheTableAreWritten) {
    desktop::Reset().files[kSnd].bytes = {7, 0, 1, 0, 102, 48, 103, 17, 255, 255};
    EXPECT_EQ(Convert(), 0);
    EXPECT_EQ(Wav(), ExpectedWav({102, 48, 103, 17}, 1));
}

TEST(WavFile, TheLongestMelodyOfTheFormatIs90Megabytes) {
    Bytes file = {7, 0, 32, 0};
    for (int i = 0; i < 510; ++i)
        file.insert(file.end(), {static_cast<std::uint8_t>(26 + i % 49), 48});
    file.insert(file.end(), {255, 255});
    desktop::Reset().files[kSnd].bytes = file;
    EXPECT_EQ(Convert(), 0);
    EXPECT_EQ(Wav().size(), 44U + 510U * 176400U);
    const auto header = WavHeader(510 * 176400);
    EXPECT_TRUE(std::equal(header.begin(), header.end(), Wav().begin()));
    desktop::Reset();
}

TEST(WavFile, AMelodyBeyondAWavFilesSizesIsRefusedBeforeAnythingIsTouched) {
    Bytes file = {7, 0, 32, 0};
    file.insert(file.end(), std::size_t{2} * 24348, 0); // 24348 x 176400 is just above 32 bits
    file.insert(file.end(), {255, 255});
    auto& desk = desktop::Reset();
    desk.files[kSnd].bytes = file;
    desk.files[kWav].bytes = {1, 2, 3};
    Told told;
    EXPECT_EQ(Convert(told), -4);
    EXPECT_EQ(Wav(), (Bytes{1, 2, 3}));
    EXPECT_TRUE(told.numbers.empty());
}

TEST(WavFile, OnlyTheFirstMegabyteOfASndFileIsRead) {
    Bytes file = {7, 0, 1, 0};
    file.insert(file.end(), std::size_t{1024} * 1024 - 4, 1);
    file.insert(file.end(), {255, 255});
    desktop::Reset().files[kSnd].bytes = file;
    EXPECT_EQ(Convert(), -1);
    EXPECT_FALSE(WavIsThere());
    // An end mark that just fits is found: only the disk, which is full, refuses then.
    file.erase(file.end() - 4, file.end() - 2);
    ASSERT_EQ(file.size(), std::size_t{1024} * 1024);
    desktop::Reset().files[kSnd].bytes = file;
    desktop::Current().disk_space = 0;
    EXPECT_EQ(Convert(), -4);
}

TEST(WavFile, AFullDiskLeavesNoFile) {
    const std::size_t size = ExpectedWav({26, 56, 86, 8, 30, 48}, 4).size();
    for (const std::size_t space :
         {std::size_t{0}, std::size_t{1}, std::size_t{43}, std::size_t{44}, size / 2, size - 1}) {
        auto& desk = desktop::Reset();
        desk.files[kSnd].bytes = Melody();
        desk.disk_space = space;
        Told told;
        EXPECT_EQ(Convert(told), -4) << space;
        EXPECT_FALSE(WavIsThere()) << space;
        EXPECT_EQ(std::count(told.numbers.begin(), told.numbers.end(), -1), 1) << space;
    }
    auto& desk = desktop::Reset();
    desk.files[kSnd].bytes = Melody();
    desk.disk_space = size;
    EXPECT_EQ(Convert(), 0);
}

TEST(WavFile, AFolderInPlaceOfTheWavFileFails) {
    auto& desk = desktop::Reset();
    desk.files[kSnd].bytes = Melody();
    desk.folders.insert(kWav);
    EXPECT_EQ(Convert(), -4);
}

int OperationsOfAConversion(bool old_wav) {
    auto& desk = desktop::Reset();
    desk.files[kSnd].bytes = Melody();
    if (old_wav) desk.files[kWav].bytes = {1, 2, 3};
    desk.file_operations = 0;
    EXPECT_EQ(Convert(), 0);
    return desk.file_operations;
}

/// The file operations in the log, without their arguments behind the path.
std::string FailedOperation(int number) {
    const char* const kinds[] = {"FileExists",    "AttributesOf", "SetAttributesOf", "RemoveFile",
                                 "ReadWholeFile", "CreateOutput", "WriteOutput",     "PatchOutput",
                                 "FlushOutput",   "CloseOutput"};
    for (const std::string& line : desktop::Current().log) {
        const bool counts = std::any_of(std::begin(kinds), std::end(kinds),
                                        [&](const char* kind) { return line.starts_with(kind); });
        if (counts && number-- == 0) return line;
    }
    return {};
}

TEST(WavFile, WhateverOperationFailsOnceNoBrokenFileIsLeft) {
    const Bytes expected = ExpectedWav({26, 56, 86, 8, 30, 48}, 4);
    const int operations = OperationsOfAConversion(false);
    ASSERT_GE(operations, 8);
    for (int at = 0; at < operations; ++at) {
        auto& desk = desktop::Reset();
        desk.files[kSnd].bytes = Melody();
        desk.file_operations = 0;
        desk.fail_at = at;
        Told told;
        const std::int16_t result = Convert(told);
        const std::string failed = FailedOperation(at);
        const auto ends = std::count(told.numbers.begin(), told.numbers.end(), -1);
        EXPECT_EQ(ends, told.numbers.empty() ? 0 : 1) << failed;
        if (failed.starts_with("FileExists C:\\Temp\\$$123456.wav")) {
            // An existence query that fails means: nothing there.
            EXPECT_EQ(result, 0) << failed;
            EXPECT_EQ(Wav(), expected) << failed;
            continue;
        }
        EXPECT_NE(result, 0) << failed;
        EXPECT_FALSE(WavIsThere()) << failed;
    }
}

TEST(WavFile, WhateverOperationFailsOnceAnOldFileIsNeverMixedWithTheNew) {
    const Bytes expected = ExpectedWav({26, 56, 86, 8, 30, 48}, 4);
    const int operations = OperationsOfAConversion(true);
    for (int at = 0; at < operations; ++at) {
        auto& desk = desktop::Reset();
        desk.files[kSnd].bytes = Melody();
        desk.files[kWav].bytes = {1, 2, 3};
        desk.file_operations = 0;
        desk.fail_at = at;
        const std::int16_t result = Convert();
        const std::string failed = FailedOperation(at);
        if (result == 0) {
            EXPECT_EQ(Wav(), expected) << failed;
        } else if (WavIsThere()) {
            // What could not be deleted, or was not touched yet, is the old file whole.
            EXPECT_EQ(Wav(), (Bytes{1, 2, 3})) << failed;
        }
        // A deletion whose parts are tried again does no harm; the rest does.
        const bool harmless = failed.starts_with("SetAttributesOf") || failed.starts_with("FileExists") ||
                              failed.starts_with("RemoveFile");
        EXPECT_TRUE(result != 0 || harmless) << failed;
    }
}

TEST(WavFile, TheSystemsReasonIsThatOfTheFirstCallThatFailed) {
    const int operations = OperationsOfAConversion(false);
    int told = 0;
    for (int at = 0; at <= operations; ++at) {
        auto& desk = desktop::Reset();
        desk.files[kSnd].bytes = Melody();
        desk.file_operations = 0;
        desk.fail_at = at;
        std::string reason;
        const std::int16_t result = sndfile2wavfile(Table(), kSnd, kWav, {}, &reason);
        const std::string failed = FailedOperation(at);
        EXPECT_EQ(reason, result == -4 ? "refused: " + failed : "") << failed;
        told += reason.empty() ? 0 : 1;
    }
    EXPECT_GE(told, 5);
}

TEST(WavFile, ItsHeaderTellsTheSecondsOfItsSound) {
    auto& desk = desktop::Reset();
    const auto put = [&](const auto& header) { desk.files[kWav].bytes.assign(header.begin(), header.end()); };
    EXPECT_EQ(SecondsOfSound(kWav), std::nullopt) << "no file";
    put(WavHeader(0));
    EXPECT_EQ(SecondsOfSound(kWav), 1);
    put(WavHeader(3 * kSampleRate - 1));
    EXPECT_EQ(SecondsOfSound(kWav), 3);
    put(WavHeader(3 * kSampleRate));
    EXPECT_EQ(SecondsOfSound(kWav), 4);
    put(WavHeader(0x12345678)); // 13851 seconds and a part of one
    EXPECT_EQ(SecondsOfSound(kWav), 13852);
    for (std::size_t place = 0; place < kWavHeaderSize; ++place) {
        auto header = WavHeader(3 * kSampleRate);
        header[place] ^= 0x40;
        put(header);
        EXPECT_EQ(SecondsOfSound(kWav), std::nullopt) << "byte " << place;
    }
    desk.files[kWav].bytes.resize(kWavHeaderSize - 1);
    EXPECT_EQ(SecondsOfSound(kWav), std::nullopt) << "too short";
}

TEST(WavFile, WhereverTheDiskFailsForGoodTheResultSaysSo) {
    const int operations = OperationsOfAConversion(false);
    for (int at = 0; at < operations; ++at) {
        auto& desk = desktop::Reset();
        desk.files[kSnd].bytes = Melody();
        desk.file_operations = 0;
        desk.fail_at = at;
        desk.fail_for_good = true;
        Told told;
        EXPECT_NE(Convert(told), 0) << at;
        EXPECT_EQ(std::count(told.numbers.begin(), told.numbers.end(), -1), told.numbers.empty() ? 0 : 1)
            << at;
    }
}

} // namespace

} // namespace tonex::wav_file_services_test
