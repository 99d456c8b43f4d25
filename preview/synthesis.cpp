#include "preview/synthesis.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstring>
#include <numeric>
#include <span>

namespace tonex {
namespace {

/// Samples handed over at once: the longest record, 176,400 samples, goes to the system in one write. It
/// stands on the stack; smaller parts cost the system up to twice the time.
constexpr std::size_t kBufferSize = std::size_t{256} * 1024;

/// What one record asks for.
struct PlayedRecord {
    std::uint64_t samples;  ///< the whole span
    std::uint64_t sounding; ///< at this sample the tone starts to end; 0 = all silent
    std::uint32_t step;     ///< table phases a sample
    std::uint32_t period;   ///< table phases a cycle
    std::span<const std::uint8_t> wave;
};

/// Samples in a number of 1/256 seconds, rounded down. The product is exact, so no float is needed.
std::uint64_t SamplesIn(int quarter_units) {
    return static_cast<std::uint64_t>(quarter_units) * kSampleRate / 256;
}

std::size_t AtMost(std::uint64_t count, std::size_t limit) {
    return static_cast<std::size_t>(std::min<std::uint64_t>(count, limit));
}

/// Samples of the tone before it stops. It starts to end behind sample `sounding` and stops at the next start
/// of a cycle, or where the note's span does.
std::uint64_t ToneLength(const PlayedRecord& record) {
    const std::uint64_t cycles = (record.sounding + 1) * record.step / record.period + 1;
    const std::uint64_t length = (cycles * record.period + record.step - 1) / record.step;
    return std::min(length, record.samples);
}

/// Samples after which the phase is back at 0 and the tone repeats.
std::size_t RepetitionOf(const PlayedRecord& record) {
    const std::size_t samples = record.period / std::gcd(record.period, record.step);
    assert(samples > 0);
    return samples;
}

/// Fills a buffer with the start of a tone: the first repetition from the table, the rest by copying.
void FillTone(const PlayedRecord& record, std::span<std::uint8_t> buffer) {
    std::uint32_t phase = 0;
    std::size_t filled = std::min(RepetitionOf(record), buffer.size());
    for (std::size_t k = 0; k < filled; ++k) {
        buffer[k] = record.wave[phase];
        phase += record.step;
        if (phase >= record.period) phase -= record.period;
    }
    while (filled < buffer.size()) {
        const std::size_t count = std::min(filled, buffer.size() - filled);
        std::memcpy(buffer.data() + filled, buffer.data(), count);
        filled += count;
    }
}

/// Writes what stands at the front of the buffer, and silence behind it.
SynthesisResult WriteEnd(std::span<std::uint8_t> buffer, std::size_t front, std::uint64_t silence,
                         const ByteSink& sink) {
    std::fill_n(buffer.data() + front, AtMost(silence, buffer.size() - front), kSilence);
    while (front + silence > 0) {
        const std::size_t gap = AtMost(silence, buffer.size() - front);
        if (!sink.write(sink.context, buffer.data(), front + gap)) return SynthesisResult::WriteError;
        silence -= gap;
        std::fill_n(buffer.data(), AtMost(silence, front), kSilence);
        front = 0;
    }
    return SynthesisResult::Done;
}

/// A tone whose step is no longer than its cycle: the phase never leaves the cycle and the samples repeat.
SynthesisResult WriteRepeatingTone(const PlayedRecord& record, const ByteSink& sink) {
    std::array<std::uint8_t, kBufferSize> buffer;
    std::uint64_t tone = record.sounding == 0 ? 0 : ToneLength(record);
    const std::uint64_t silence = record.samples - tone;

    FillTone(record, std::span(buffer).first(AtMost(tone, buffer.size())));
    const std::size_t whole = buffer.size() / RepetitionOf(record) * RepetitionOf(record);
    while (tone > buffer.size()) {
        if (!sink.write(sink.context, buffer.data(), whole)) return SynthesisResult::WriteError;
        tone -= whole;
    }
    return WriteEnd(buffer, static_cast<std::size_t>(tone), silence, sink);
}

/// A tone whose step is longer than its cycle. The phase goes back by one cycle a sample at most, so it grows
/// with every sample, drifts into the unfilled part of the table and in the end out of it.
SynthesisResult WriteDriftingTone(const PlayedRecord& record, const ByteSink& sink) {
    std::array<std::uint8_t, kBufferSize> buffer;
    std::size_t filled = 0;
    std::uint32_t phase = 0;
    bool silent = false;
    bool finishing = false;
    for (; filled < record.samples && !silent; ++filled) {
        if (phase >= record.wave.size()) return SynthesisResult::PhaseError;
        buffer[filled] = record.wave[phase];
        phase += record.step;
        if (phase >= record.period) {
            phase -= record.period;
            silent = finishing;
        }
        finishing = filled >= record.sounding;
    }
    return WriteEnd(buffer, filled, record.samples - filled, sink);
}

constexpr std::uint8_t kRateLow = kSampleRate & 255;
constexpr std::uint8_t kRateHigh = kSampleRate >> 8;

/// Without the two sizes, at bytes 4 and 40.
constexpr std::array<std::uint8_t, kWavHeaderSize> kWavHeader = {
    'R',      'I',       'F', 'F', 0,  0, 0, 0, 'W', 'A', 'V', 'E', //
    'f',      'm',       't', ' ', 16, 0, 0, 0,                     // size of the format chunk
    1,        0,         1,   0,                                    // PCM, channels
    kRateLow, kRateHigh, 0,   0,                                    // samples a second
    kRateLow, kRateHigh, 0,   0,                                    // bytes a second
    1,        0,         8,   0, // bytes a sample of all channels, bits a sample
    'd',      'a',       't', 'a', 0,  0, 0, 0};

void PutSize(std::uint8_t* at, std::uint32_t size) {
    for (int i = 0; i < 4; ++i)
        at[i] = static_cast<std::uint8_t>(size >> (8 * i));
}

} // namespace

void BuildWaveTable(WaveTable& table, std::int32_t sample_rate) {
    assert(sample_rate > 0);
    table = WaveTable{};
    for (std::size_t i = 0; i < kPitchClasses; ++i) {
        const auto frequency = static_cast<float>(55.0 * std::pow(2.0, static_cast<double>(i + 1) / 12.0));
        const double length = std::floor(sample_rate / static_cast<double>(frequency));
        const int period = static_cast<int>(std::clamp(length, 1.0, 32767.0));
        table.period[i] = static_cast<std::int16_t>(period);
        for (int j = 0; j < std::min(period, kPhases); ++j) {
            // Two pi with nine decimals, kept as it is.
            const double height = std::sin(j * 6.283185307 / period) * 127.5 + 128.0;
            At(table.wave[i], j) = static_cast<std::uint8_t>(std::floor(height));
        }
    }
}

std::uint32_t NoteSampleCount(std::uint8_t length_byte, std::uint8_t tempo_byte) {
    return static_cast<std::uint32_t>(SamplesIn(tempo_byte * UnitsOfRecord(length_byte) * 4));
}

std::optional<std::uint32_t> DataSizeOf(const PlayBlock& block) {
    std::uint64_t samples = 0;
    for (std::size_t i = 1; i < block.records.size(); i += 2)
        samples += NoteSampleCount(block.records[i], block.tempo_byte);
    if (samples > 0xFFFFFFFFU - kWavHeaderSize) return std::nullopt;
    return static_cast<std::uint32_t>(samples);
}

SynthesisResult WriteNoteSamples(const WaveTable& table, const ByteSink& sink, std::uint8_t pitch_byte,
                                 std::uint8_t length_byte, std::uint8_t tempo_byte) {
    const int sounding = tempo_byte * UnitsOfRecord(length_byte) * (length_byte >> 4);
    if (sounding >= 32768) return SynthesisResult::Overflow;
    const int pitch_class = pitch_byte % kPitchClasses;
    const PlayedRecord record{
        .samples = NoteSampleCount(length_byte, tempo_byte),
        .sounding = SamplesIn(sounding),
        .step = std::uint32_t{1} << (pitch_byte / kPitchClasses),
        .period = static_cast<std::uint32_t>(At(table.period, pitch_class)),
        .wave = At(table.wave, pitch_class),
    };
    if (record.sounding > 0 && record.period > kPhases) return SynthesisResult::PhaseError;
    if (record.sounding > 0 && record.step > record.period) return WriteDriftingTone(record, sink);
    return WriteRepeatingTone(record, sink);
}

std::array<std::uint8_t, kWavHeaderSize> WavHeader(std::uint32_t data_size) {
    std::array<std::uint8_t, kWavHeaderSize> header = kWavHeader;
    PutSize(&header[4], data_size + 36);
    PutSize(&header[40], data_size);
    return header;
}

} // namespace tonex
