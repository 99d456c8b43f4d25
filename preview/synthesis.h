// SND melody to WAV samples: a table-driven sine oscillator. Pure: bytes in, bytes out through a callback.
#pragma once

#include "score/snd_file.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace tonex {

inline constexpr std::int32_t kSampleRate = 22050;
inline constexpr int kPitchClasses = kOctave;
inline constexpr int kPhases = 384;
inline constexpr std::uint8_t kSilence = 128;
inline constexpr std::size_t kWavHeaderSize = 44;

/// One cycle a pitch class, filled by BuildWaveTable.
struct WaveTable {
    std::array<std::int16_t, kPitchClasses> period{}; ///< length of one cycle in samples
    std::array<std::array<std::uint8_t, kPhases>, kPitchClasses> wave{};
};

/// Fills the periods and the sine cycles for a sample rate in samples a second.
void BuildWaveTable(WaveTable& table, std::int32_t sample_rate);

/// Receives samples or header bytes in order; gives false when they could not be stored.
struct ByteSink {
    void* context;
    bool (*write)(void* context, const std::uint8_t* bytes, std::size_t count);
};

enum class SynthesisResult {
    Done,
    Overflow,   ///< tempo byte x units x quarters reaches 32768
    PhaseError, ///< a sounding phase left the 384 phases of the table, or its cycle is longer than they are
    WriteError, ///< the sink refused
};

/// The number of samples that one record of a melody lasts: tempo byte x units / 64 seconds.
std::uint32_t NoteSampleCount(std::uint8_t length_byte, std::uint8_t tempo_byte);

/// The size in bytes of a melody's samples; nothing when a WAV file's 32-bit sizes could not tell it.
std::optional<std::uint32_t> DataSizeOf(const PlayBlock& block);

/// Appends the samples of one tone record. Every note starts its cycle at phase 0 and ends on a cycle
/// boundary where its span allows.
SynthesisResult WriteNoteSamples(const WaveTable& table, const ByteSink& sink, std::uint8_t pitch_byte,
                                 std::uint8_t length_byte, std::uint8_t tempo_byte);

/// The 44 bytes in front of `data_size` bytes of samples.
std::array<std::uint8_t, kWavHeaderSize> WavHeader(std::uint32_t data_size);

} // namespace tonex
