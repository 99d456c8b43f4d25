// The small sound player's pure parts: its command line and its WAV reader.
#include "preview/synthesis.h"
#include "tools/player/command_line.h"
#include "tools/player/wav_format.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

namespace tonex::player_test {

namespace {

struct Expected {
    const wchar_t* arguments;
    bool play, close, unknown;
    const wchar_t* path;
};

void Check(const Expected& expected) {
    const PlayerCommand command = ParsePlayerArguments(expected.arguments);
    EXPECT_EQ(command.play, expected.play);
    EXPECT_EQ(command.close, expected.close);
    EXPECT_EQ(command.unknown, expected.unknown);
    EXPECT_EQ(std::wstring(command.path), expected.path);
}

using Bytes = std::vector<std::uint8_t>;

void Put(Bytes& bytes, const char* tag) {
    std::copy_n(tag, 4, std::back_inserter(bytes));
}
void Put(Bytes& bytes, std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

struct Fields {
    std::uint32_t fmt_size = 16, tag = 1, channels = 1, rate = 22050, bytes_a_second = 22050, frame = 1,
                  bits = 8;
    std::uint32_t data_size = 5;
};

Bytes Wav(const Fields& fields = {}) {
    Bytes file;
    Put(file, "RIFF");
    Put(file, 36 + fields.data_size, 4);
    Put(file, "WAVE");
    Put(file, "fmt ");
    Put(file, fields.fmt_size, 4);
    Put(file, fields.tag, 2);
    Put(file, fields.channels, 2);
    Put(file, fields.rate, 4);
    Put(file, fields.bytes_a_second, 4);
    Put(file, fields.frame, 2);
    Put(file, fields.bits, 2);
    Put(file, "data");
    Put(file, fields.data_size, 4);
    for (std::uint32_t i = 0; i < 5; ++i)
        Put(file, i, 1);
    return file;
}

bool ReadBytes(void* context, std::uint64_t offset, std::uint8_t* bytes, std::uint32_t count) {
    const Bytes& file = *static_cast<const Bytes*>(context);
    if (offset > file.size() || count > file.size() - offset) return false;
    std::memcpy(bytes, file.data() + offset, count);
    return true;
}

WavFault Read(Bytes file, WavFormat& format) {
    return ReadWavFormat({&file, ReadBytes, file.size()}, format);
}

WavFault FaultOf(const Fields& fields) {
    WavFormat format;
    return Read(Wav(fields), format);
}

} // namespace

TEST(PlayerCommandLine, PathWithBlanksQuotedOrNot) {
    Check({L" /play /close C:\\Temp\\$$123456.wav", true, true, false, L"C:\\Temp\\$$123456.wav"});
    Check({L"/play /close C:\\My sounds\\a b.wav", true, true, false, L"C:\\My sounds\\a b.wav"});
    Check({L"/play /close \"C:\\My sounds\\a b.wav\"", true, true, false, L"C:\\My sounds\\a b.wav"});
    Check({L"  /play\t/close  C:\\a.wav  ", true, true, false, L"C:\\a.wav"});
}

TEST(PlayerCommandLine, OptionsInAnyLetterCase) {
    Check({L"/PLAY /Close a.wav", true, true, false, L"a.wav"});
    Check({L"-play -CLOSE a.wav", true, true, false, L"a.wav"});
}

TEST(PlayerCommandLine, OptionsBehindThePath) {
    Check({L"\"C:\\a b.wav\" /play /close", true, true, false, L"C:\\a b.wav"});
    Check({L"C:\\a b.wav /close /play", true, true, false, L"C:\\a b.wav"});
    Check({L"/play C:\\a /b c.wav", true, false, false, L"C:\\a /b c.wav"});
}

TEST(PlayerCommandLine, WithoutPlayOrPath) {
    Check({L"", false, false, false, L""});
    Check({L"a.wav", false, false, false, L"a.wav"});
    Check({L"/close a.wav", false, true, false, L"a.wav"});
    Check({L"/play /close", true, true, false, L""});
    Check({L"/play \"", true, false, false, L""});
    Check({L"/play \"a.wav", true, false, false, L"a.wav"});
}

TEST(PlayerCommandLine, UnknownOptionsAreTold) {
    Check({L"/record a.wav", false, false, true, L"a.wav"});
    Check({L"/play /close \"a.wav\" b.wav", true, true, true, L"a.wav"});
    Check({L"/play \"a.wav\" /loop", true, false, true, L"a.wav"});
}

TEST(PlayerCommandLine, ProgramNameIsSkipped) {
    EXPECT_EQ(std::wstring(ArgumentsOf(L"sndrec32 /play a")), L" /play a");
    EXPECT_EQ(std::wstring(ArgumentsOf(L"\"C:\\A b\\sndrec32.exe\" /play a")), L" /play a");
    EXPECT_EQ(std::wstring(ArgumentsOf(L"sndrec32")), L"");
    EXPECT_EQ(std::wstring(ArgumentsOf(L"\"sndrec32")), L"");
    EXPECT_EQ(std::wstring(ArgumentsOf(L"")), L"");
}

TEST(PlayerWav, FindsTheSamplesOfThePreviewsHeader) {
    const auto header = WavHeader(3);
    Bytes file(header.begin(), header.end());
    file.insert(file.end(), {1, 2, 3});
    WavFormat format;
    ASSERT_EQ(Read(file, format), WavFault::None);
    EXPECT_EQ(format.channels, 1);
    EXPECT_EQ(format.rate, 22050u);
    EXPECT_EQ(format.bits, 8);
    EXPECT_EQ(format.frame, 1);
    EXPECT_EQ(format.data_offset, 44u);
    EXPECT_EQ(format.data_size, 3u);
}

TEST(PlayerWav, SkipsForeignChunksWithTheirPadByte) {
    const Bytes plain = Wav();
    Bytes file(plain.begin(), plain.begin() + 12);
    Put(file, "LIST");
    Put(file, 3, 4);
    Put(file, 0, 4); // three bytes and the pad byte
    file.insert(file.end(), plain.begin() + 12, plain.end());
    WavFormat format;
    ASSERT_EQ(Read(file, format), WavFault::None);
    EXPECT_EQ(format.data_offset, 56u);
    EXPECT_EQ(format.data_size, 5u);
}

TEST(PlayerWav, SixteenBitStereoKeepsWholeFramesOnly) {
    WavFormat format;
    const Fields fields{.channels = 2, .rate = 44100, .bytes_a_second = 176400, .frame = 4, .bits = 16};
    ASSERT_EQ(Read(Wav(fields), format), WavFault::None);
    EXPECT_EQ(format.data_size, 4u);
}

TEST(PlayerWav, RefusesWhatIsNotPlainPcm) {
    EXPECT_EQ(FaultOf({.fmt_size = 14}), WavFault::NoFormat);
    EXPECT_EQ(FaultOf({.tag = 2}), WavFault::NotPcm);
    EXPECT_EQ(FaultOf({.channels = 0, .bytes_a_second = 0, .frame = 0}), WavFault::NotPcm);
    EXPECT_EQ(FaultOf({.channels = 3, .bytes_a_second = 66150, .frame = 3}), WavFault::NotPcm);
    EXPECT_EQ(FaultOf({.rate = 999, .bytes_a_second = 999}), WavFault::NotPcm);
    EXPECT_EQ(FaultOf({.rate = 192001, .bytes_a_second = 192001}), WavFault::NotPcm);
    EXPECT_EQ(FaultOf({.frame = 2}), WavFault::NotPcm);
    EXPECT_EQ(FaultOf({.bytes_a_second = 1}), WavFault::NotPcm);
    EXPECT_EQ(FaultOf({.bits = 12}), WavFault::NotPcm);
}

TEST(PlayerWav, RefusesSamplesLongerThanTheFile) {
    EXPECT_EQ(FaultOf({.data_size = 6}), WavFault::Truncated);
    EXPECT_EQ(FaultOf({.data_size = 0xFFFFFFFF}), WavFault::Truncated);
}

TEST(PlayerWav, NoSamplesAtAllIsASoundOfLengthZero) {
    WavFormat format;
    ASSERT_EQ(Read(Wav({.data_size = 0}), format), WavFault::None);
    EXPECT_EQ(format.data_size, 0u);
}

TEST(PlayerWav, SamplesInFrontOfTheFormatAreRefused) {
    const Bytes plain = Wav();
    Bytes file(plain.begin(), plain.begin() + 12);
    file.insert(file.end(), plain.begin() + 36, plain.end());
    WavFormat format;
    EXPECT_EQ(Read(file, format), WavFault::NoFormat);
}

TEST(PlayerWav, EveryShorterFileIsRefused) {
    const Bytes whole = Wav();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        WavFormat format;
        EXPECT_NE(Read(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)), format),
                  WavFault::None)
            << size << " bytes";
    }
}

TEST(PlayerWav, EveryDamagedLetterOfATagIsRefused) {
    for (const std::size_t tag : {0u, 8u, 12u, 36u}) {
        for (std::size_t i = tag; i < tag + 4; ++i) {
            Bytes file = Wav();
            file[i] ^= 1;
            WavFormat format;
            EXPECT_NE(Read(file, format), WavFault::None) << "byte " << i;
        }
    }
}

TEST(PlayerWav, AChunkSizeThatWouldWrapEndsTheSearch) {
    const Bytes plain = Wav();
    Bytes file(plain.begin(), plain.begin() + 12);
    Put(file, "LIST");
    Put(file, 0xFFFFFFFF, 4);
    file.insert(file.end(), plain.begin() + 12, plain.end());
    WavFormat format;
    EXPECT_EQ(Read(file, format), WavFault::NoFormat);
}

} // namespace tonex::player_test
