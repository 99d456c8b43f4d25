#include "preview/synthesis.h"
#include "tests/plain_synthesis.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace tonex::synthesis_test {

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Collected {
    Bytes bytes;
    std::size_t writes = 0;
    std::optional<std::size_t> refuse_at; ///< the write with this number is refused
};

bool Collect(void* context, const std::uint8_t* bytes, std::size_t count) {
    auto& collected = *static_cast<Collected*>(context);
    EXPECT_GT(count, 0U) << "an empty write";
    if (collected.refuse_at == collected.writes++) return false;
    collected.bytes.insert(collected.bytes.end(), bytes, bytes + count);
    return true;
}

struct Tone {
    SynthesisResult result;
    Bytes samples;
};

Tone Synthesise(int pitch, int length, int tempo) {
    Collected collected;
    const SynthesisResult result =
        WriteNoteSamples(Table(), {&collected, Collect}, static_cast<std::uint8_t>(pitch),
                         static_cast<std::uint8_t>(length), static_cast<std::uint8_t>(tempo));
    return {result, collected.bytes};
}

void ExpectLikeModel(int pitch, int length, int tempo) {
    const PlainNote expected = PlainNoteSamples(Table(), pitch, length, tempo);
    const Tone actual = Synthesise(pitch, length, tempo);
    ASSERT_EQ(actual.result, expected.result)
        << "pitch " << pitch << ", length " << length << ", tempo " << tempo;
    if (expected.result != SynthesisResult::Done || actual.samples == expected.samples) return;
    ASSERT_EQ(actual.samples.size(), expected.samples.size())
        << "pitch " << pitch << ", length " << length << ", tempo " << tempo;
    for (std::size_t k = 0; k < expected.samples.size(); ++k) {
        ASSERT_EQ(actual.samples[k], expected.samples[k])
            << "sample " << k << " of pitch " << pitch << ", length " << length << ", tempo " << tempo;
    }
}

std::size_t SilentTail(const Bytes& samples) {
    std::size_t count = 0;
    while (count < samples.size() && samples[samples.size() - 1 - count] == 128)
        ++count;
    return count;
}

/// Cycles counted by their rises through the middle.
int RisesOf(const Bytes& samples) {
    int rises = 0;
    for (std::size_t k = 1; k < samples.size(); ++k)
        rises += samples[k - 1] < 128 && samples[k] >= 128 ? 1 : 0;
    return rises;
}

TEST(WaveTable, PeriodsWhole) {
    const std::array<std::int16_t, 12> expected = {378, 357, 337, 318, 300, 283,
                                                   267, 252, 238, 225, 212, 200};
    EXPECT_EQ(Table().period, expected);
}

TEST(WaveTable, EveryCycleIsASineAndTheRestStaysZero) {
    for (std::size_t i = 0; i < 12; ++i) {
        const int period = Table().period[i];
        for (int j = 0; j < 384; ++j) {
            const int expected =
                j < period ? static_cast<int>(std::floor(std::sin(j * 6.283185307 / period) * 127.5 + 128.0))
                           : 0;
            EXPECT_EQ(At(Table().wave[i], j), expected) << "class " << i << ", phase " << j;
        }
    }
}

TEST(WaveTable, KnownSamplesOfClass11) {
    // 200 phases: quarter turns at 0, 50, 100 and 150.
    const auto& wave = Table().wave[11];
    EXPECT_EQ(wave[0], 128);
    EXPECT_EQ(wave[1], 132);
    EXPECT_EQ(wave[25], 218);
    EXPECT_EQ(wave[50], 255);
    EXPECT_EQ(wave[75], 218);
    EXPECT_EQ(wave[100], 128);
    EXPECT_EQ(wave[125], 37);
    EXPECT_EQ(wave[150], 0);
    EXPECT_EQ(wave[199], 123);
    EXPECT_EQ(wave[200], 0);
}

TEST(WaveTable, AllOfItIsTheSameOnEveryMachine) {
    // FNV-1a over all phases of all classes: one sample that differs between builds is seen here.
    std::uint64_t hash = 14695981039346656037U;
    for (const auto& wave : Table().wave) {
        for (const std::uint8_t sample : wave)
            hash = (hash ^ sample) * 1099511628211U;
    }
    EXPECT_EQ(hash, 12460551447109228487U);
}

TEST(WaveTable, BuildingTwiceGivesTheSame) {
    WaveTable table;
    table.period.fill(77);
    for (auto& wave : table.wave)
        wave.fill(77);
    BuildWaveTable(table, kSampleRate);
    EXPECT_EQ(table.period, Table().period);
    EXPECT_EQ(table.wave, Table().wave);
}

TEST(WaveTable, OtherSampleRatesStayInsideTheTable) {
    for (const std::int32_t rate : {1, 8000, 11025, 22400, 44100, 2147483647}) {
        WaveTable table;
        BuildWaveTable(table, rate);
        for (const std::int16_t period : table.period)
            EXPECT_GE(period, 1) << rate;
        Collected collected;
        const SynthesisResult result = WriteNoteSamples(table, {&collected, Collect}, 0, 50, 1);
        // A cycle longer than the table has phases that the table does not hold.
        EXPECT_EQ(result, rate > 22400 ? SynthesisResult::PhaseError : SynthesisResult::Done) << rate;
        EXPECT_EQ(WriteNoteSamples(table, {&collected, Collect}, 0, 2, 1), SynthesisResult::Done) << "a rest";
    }
}

TEST(Synthesis, HighNibble0IsSilenceOfTheWholeSpan) {
    for (const int length : {0, 1, 5, 15}) {
        const int units = length == 0 ? 16 : length;
        const Tone tone = Synthesise(40, length, 7);
        EXPECT_EQ(tone.result, SynthesisResult::Done);
        EXPECT_EQ(tone.samples.size(), static_cast<std::size_t>(7 * units * 22050 / 64));
        EXPECT_EQ(SilentTail(tone.samples), tone.samples.size());
    }
}

TEST(Synthesis, HighNibble4SoundsForItsWholeSpanAndIsCutAtItsEnd) {
    const Tone tone = Synthesise(11, 64 + 1, 1); // 344 samples of 200 a cycle
    ASSERT_EQ(tone.samples.size(), 344U);
    for (std::size_t k = 0; k < 344; ++k)
        EXPECT_EQ(tone.samples[k], Table().wave[11][k % 200]) << k;
    EXPECT_NE(tone.samples.back(), 128) << "the cycle was not cut";
}

TEST(Synthesis, LowNibble0CountsAs16Units) {
    EXPECT_EQ(NoteSampleCount(48, 4), 22050U);
    EXPECT_EQ(Synthesise(30, 48, 4).samples.size(), 22050U);
    EXPECT_EQ(NoteSampleCount(48 + 15, 4), 20671U);
}

TEST(Synthesis, TheSpanDoesNotDependOnTheArticulation) {
    for (int tempo = 1; tempo <= 32; ++tempo) {
        for (int length = 0; length <= 255; ++length) {
            const int units = length % 16 == 0 ? 16 : length % 16;
            const auto expected = static_cast<std::uint32_t>(tempo * units * 22050 / 64);
            EXPECT_EQ(NoteSampleCount(static_cast<std::uint8_t>(length), static_cast<std::uint8_t>(tempo)),
                      expected);
        }
    }
    EXPECT_EQ(NoteSampleCount(48, 32), 176400U);
}

TEST(Synthesis, SinglePrecisionProductsGiveTheSameSpans) {
    for (int tempo = 1; tempo <= 32; ++tempo) {
        for (int units = 1; units <= 16; ++units) {
            for (int quarters = 0; quarters <= 4; ++quarters) {
                const float seconds = static_cast<float>(tempo * units * quarters) / 256.0F;
                const auto single = static_cast<int>(std::floor(seconds * 22050.0F));
                EXPECT_EQ(single, tempo * units * quarters * 22050 / 256)
                    << tempo << ", " << units << ", " << quarters;
            }
        }
    }
}

TEST(Synthesis, TheToneEndsAtTheNextCycleBehindItsSound) {
    // Class 11, octave 0, three quarters of 344 samples: the tone may stop behind sample 258, at a cycle's
    // end, which would be 400; the span ends before.
    EXPECT_EQ(SilentTail(Synthesise(11, 48 + 1, 1).samples), 0U);
    // Two units: 689 samples, 516 sounding, three cycles = 600.
    const Tone tone = Synthesise(11, 48 + 2, 1);
    ASSERT_EQ(tone.samples.size(), 689U);
    EXPECT_EQ(tone.samples[599], 123);
    EXPECT_EQ(SilentTail(tone.samples), 89U);
    // One quarter: 344 samples, 86 sounding, one cycle of 200.
    EXPECT_EQ(SilentTail(Synthesise(11, 16 + 1, 1).samples), 144U);
}

TEST(Synthesis, EveryNoteStartsItsCycleAnew) {
    const Tone once = Synthesise(30, 49, 3);
    Collected collected;
    for (int i = 0; i < 2; ++i)
        WriteNoteSamples(Table(), {&collected, Collect}, 30, 49, 3);
    Bytes twice = once.samples;
    twice.insert(twice.end(), once.samples.begin(), once.samples.end());
    EXPECT_EQ(collected.bytes, twice);
}

TEST(Synthesis, Pitch0Is58HzPitch11Is110HzAndPitch12TwicePitch0) {
    // 16 units of 4/64 s are one second, sounding whole.
    EXPECT_EQ(RisesOf(Synthesise(0, 64, 4).samples), 58);
    EXPECT_EQ(RisesOf(Synthesise(11, 64, 4).samples), 110);
    EXPECT_EQ(RisesOf(Synthesise(12, 64, 4).samples), 116);
    const Bytes low = Synthesise(0, 64, 4).samples;
    const Bytes high = Synthesise(12, 64, 4).samples;
    for (std::size_t k = 0; 2 * k < low.size(); ++k)
        ASSERT_EQ(high[k], low[2 * k]) << k;
}

TEST(Synthesis, EqualsTheModelForEveryPitchAndArticulation) {
    for (int pitch = 0; pitch <= 255; ++pitch) {
        for (int articulation = 0; articulation <= 15; ++articulation) {
            ExpectLikeModel(pitch, articulation * 16 + 1, 1);
            ExpectLikeModel(pitch, articulation * 16 + 3, 5);
        }
    }
}

TEST(Synthesis, EqualsTheModelForEveryTempoAndLength) {
    for (int tempo = 0; tempo <= 32; ++tempo) {
        for (int units = 0; units <= 15; ++units) {
            const int pitch = (tempo * 16 + units) % 96;
            for (const int articulation : {0, 1, 2, 3, 4})
                ExpectLikeModel(pitch, articulation * 16 + units, tempo);
        }
    }
}

TEST(Synthesis, EqualsTheModelForLongNotesOfEveryPitch) {
    for (int pitch = 0; pitch <= 255; ++pitch) {
        for (const int length : {0, 16, 48, 64, 96})
            ExpectLikeModel(pitch, length, 32);
    }
}

TEST(Synthesis, EqualsTheModelAroundTheBuffersSize) {
    // 47 x 16 units are 259,087 samples, 48 x 16 are 264,600, the buffer holds 262,144: spans, tones and gaps
    // just beside it, and several times as long.
    for (const int tempo : {46, 47, 48, 49, 50, 63, 64, 65, 95, 96, 127, 128, 255}) {
        for (const int length : {0, 16, 48, 64, 80, 63}) {
            ExpectLikeModel(26, length, tempo);
            ExpectLikeModel(74, length, tempo);
        }
    }
}

TEST(Synthesis, TempoBytesBeyondTheFormatAreDefinedToo) {
    for (const int tempo : {33, 100, 255}) {
        for (const int length : {0, 1, 63, 79, 240, 255}) {
            for (const int pitch : {0, 47, 86, 95})
                ExpectLikeModel(pitch, length, tempo);
        }
    }
}

TEST(Synthesis, AProductOf32768IsAnOverflow) {
    EXPECT_EQ(Synthesise(30, 128, 255).result, SynthesisResult::Done); // 255 x 16 x 8 = 32640
    EXPECT_EQ(Synthesise(30, 128, 0).result, SynthesisResult::Done);
    EXPECT_EQ(Synthesise(30, 144, 227).result, SynthesisResult::Done);         // 32688
    EXPECT_EQ(Synthesise(30, 144, 228).result, SynthesisResult::Overflow);     // 32832
    EXPECT_EQ(Synthesise(30, 240, 136).result, SynthesisResult::Done);         // 32640
    EXPECT_EQ(Synthesise(30, 240, 137).result, SynthesisResult::Overflow);     // 32880
    EXPECT_EQ(Synthesise(30, 248, 255).samples.size(), 255U * 8 * 22050 / 64); // 30600
    EXPECT_EQ(Synthesise(30, 128 | 0, 32 * 8 - 1).result, SynthesisResult::Done);
}

TEST(Synthesis, UpToOctave7EveryPitchSounds) {
    for (int pitch = 0; pitch <= 95; ++pitch)
        EXPECT_EQ(Synthesise(pitch, 64, 32).result, SynthesisResult::Done);
}

TEST(Synthesis, FromOctave8OnTheShortCyclesLeaveTheTable) {
    for (int pitch = 96; pitch <= 255; ++pitch) {
        const SynthesisResult result = Synthesise(pitch, 64, 32).result;
        // The step of octave 8 is 256: still below the cycles of the seven lowest classes.
        EXPECT_EQ(result, pitch <= 102 ? SynthesisResult::Done : SynthesisResult::PhaseError) << pitch;
    }
}

TEST(Synthesis, ADriftingToneReadsTheUnfilledPartOfTheTable) {
    // Pitch 103: cycle 252, step 256, 86 samples sound. The phase drifts up by 4 a sample and passes the end
    // of the cycle after 63 samples; what is read there is 0. It stops before phase 384.
    const Tone tone = Synthesise(103, 16 + 1, 1);
    ASSERT_EQ(tone.result, SynthesisResult::Done);
    ASSERT_EQ(tone.samples.size(), 344U);
    EXPECT_EQ(tone.samples[62], Table().wave[7][248]);
    EXPECT_EQ(tone.samples[63], 0);
    EXPECT_EQ(tone.samples[87], 0);
    EXPECT_EQ(SilentTail(tone.samples), 256U);
    // Twice as long a tone leaves the table.
    EXPECT_EQ(Synthesise(103, 16 + 2, 1).result, SynthesisResult::PhaseError);
}

TEST(Synthesis, ADriftingToneThatStaysInTheTableIsCutAtItsSpansEnd) {
    // One phase a sample: step 256, cycle 255. The span ends before the table's 384 phases do.
    WaveTable table;
    table.period[0] = 255;
    for (int j = 0; j < kPhases; ++j)
        At(table.wave[0], j) = static_cast<std::uint8_t>(j % 251);
    Collected collected;
    EXPECT_EQ(WriteNoteSamples(table, {&collected, Collect}, 96, 64 + 1, 1), SynthesisResult::Done);
    const auto& wave = table.wave[0];
    EXPECT_EQ(collected.bytes, Bytes(wave.begin(), wave.begin() + 344));
}

TEST(Synthesis, RestsAreHarmlessAtEveryPitch) {
    for (int pitch = 0; pitch <= 255; ++pitch) {
        const Tone tone = Synthesise(pitch, 1, 1);
        EXPECT_EQ(tone.result, SynthesisResult::Done) << pitch;
        EXPECT_EQ(SilentTail(tone.samples), 344U) << pitch;
    }
}

TEST(Synthesis, ARefusedWriteEndsTheNote) {
    for (const int pitch : {26, 103}) { // a repeating and a drifting tone
        Collected counted;
        const std::uint8_t length = pitch == 26 ? 48 : 17;
        const std::uint8_t tempo = pitch == 26 ? 255 : 1; // five buffers, or one
        ASSERT_EQ(
            WriteNoteSamples(Table(), {&counted, Collect}, static_cast<std::uint8_t>(pitch), length, tempo),
            SynthesisResult::Done);
        ASSERT_GE(counted.writes, pitch == 26 ? 5U : 1U);
        for (std::size_t at = 0; at < counted.writes; ++at) {
            Collected collected;
            collected.refuse_at = at;
            EXPECT_EQ(WriteNoteSamples(Table(), {&collected, Collect}, static_cast<std::uint8_t>(pitch),
                                       length, tempo),
                      SynthesisResult::WriteError);
            EXPECT_EQ(collected.writes, at + 1) << "it went on writing";
        }
    }
}

/// A block at tempo byte 1 with so many records of 16, 3 and 1 units: 5512, 1033 and 344 samples each.
std::optional<std::uint32_t> DataSizeOfRecords(int of_16, int of_3, int of_1) {
    Bytes records;
    for (const auto& [count, length] : {std::pair{of_16, 48}, {of_3, 51}, {of_1, 49}})
        records.insert(records.end(), 2 * static_cast<std::size_t>(count), static_cast<std::uint8_t>(length));
    return DataSizeOf({.tempo_byte = 1, .records = records});
}

TEST(WavHeader, HasRoomForTheSizesOf4294967251SamplesAndNotOneMore) {
    EXPECT_EQ(DataSizeOfRecords(779192, 59, 0), 4294967251U);
    EXPECT_EQ(DataSizeOfRecords(779193, 52, 5), std::nullopt);
    EXPECT_EQ(DataSizeOfRecords(0, 0, 0), 0U);
}

TEST(WavHeader, ByteForByte) {
    const std::array<std::uint8_t, 44> expected = {
        'R', 'I', 'F', 'F', 0x34, 0x56, 0x34, 0x12, 'W',  'A',  'V',  'E', 'f',  'm',  't', ' ', //
        16,  0,   0,   0,   1,    0,    1,    0,    0x22, 0x56, 0,    0,   0x22, 0x56, 0,   0,   //
        1,   0,   8,   0,   'd',  'a',  't',  'a',  0x10, 0x56, 0x34, 0x12};
    EXPECT_EQ(WavHeader(0x12345610), expected);
}

TEST(WavHeader, WithoutSamplesTheRiffSizeIs36) {
    const auto header = WavHeader(0);
    EXPECT_EQ(header[4], 36);
    EXPECT_EQ(header[5] + header[6] + header[7], 0);
    EXPECT_EQ(header[40] + header[41] + header[42] + header[43], 0);
}

} // namespace

} // namespace tonex::synthesis_test
