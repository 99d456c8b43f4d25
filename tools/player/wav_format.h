// What the player must know of a WAV file before it plays: the format and where the samples lie. Pure: bytes
// come through a callback, every field is read by itself and checked before it is used.
//
//   offset  size
//        0     4  "RIFF"
//        4     4  file size - 8 (some writers leave it wrong; the real size counts)
//        8     4  "WAVE"
//       12     .  chunks: 4 letters, 32-bit size, data, one pad byte when the size is odd
//
// The chunk "fmt " holds format tag (1 = PCM), channels, samples a second, bytes a second, bytes a frame,
// bits a sample; the chunk "data" holds the samples.
#pragma once

#include <cstdint>

namespace tonex {

/// Gives `count` bytes from an offset of the file; false when they are not there.
struct WavReader {
    void* context;
    bool (*read)(void* context, std::uint64_t offset, std::uint8_t* bytes, std::uint32_t count);
    std::uint64_t size; ///< of the file, bytes
};

enum class WavFault {
    None,
    TooShort,  ///< ends inside a field that must be there
    NotRiff,   ///< no "RIFF" and "WAVE" at its beginning
    NoFormat,  ///< no complete "fmt " chunk in front of the samples
    NoSamples, ///< no "data" chunk
    NotPcm,    ///< compressed, or numbers that do not fit together
    Truncated, ///< the samples are announced longer than the file is
};

struct WavFormat {
    std::uint16_t channels = 0; ///< 1 or 2
    std::uint32_t rate = 0;     ///< frames a second, 1000 to 192000
    std::uint16_t bits = 0;     ///< of a sample, 8 or 16
    std::uint16_t frame = 0;    ///< bytes of one frame: one sample of every channel
    std::uint64_t data_offset = 0;
    std::uint32_t data_size = 0; ///< bytes, whole frames only
};

namespace wav_detail {

constexpr std::uint16_t U16(const std::uint8_t* at) {
    return static_cast<std::uint16_t>(at[0] | at[1] << 8);
}
constexpr std::uint32_t U32(const std::uint8_t* at) {
    return at[0] | std::uint32_t{at[1]} << 8 | std::uint32_t{at[2]} << 16 | std::uint32_t{at[3]} << 24;
}
constexpr bool Tagged(const std::uint8_t* at, const char (&tag)[5]) {
    for (int i = 0; i < 4; ++i) {
        if (at[i] != static_cast<std::uint8_t>(tag[i])) return false;
    }
    return true;
}

inline WavFault ReadFormatChunk(const WavReader& file, std::uint64_t offset, std::uint32_t size,
                                WavFormat& format) {
    constexpr std::uint32_t kFieldsSize = 16;
    std::uint8_t fields[kFieldsSize];
    if (size < kFieldsSize) return WavFault::NoFormat;
    if (!file.read(file.context, offset, fields, kFieldsSize)) return WavFault::TooShort;
    format.channels = U16(fields + 2);
    format.rate = U32(fields + 4);
    format.frame = U16(fields + 12);
    format.bits = U16(fields + 14);
    if (U16(fields) != 1) return WavFault::NotPcm;
    if (format.channels < 1 || format.channels > 2) return WavFault::NotPcm;
    if (format.rate < 1000 || format.rate > 192000) return WavFault::NotPcm;
    if (format.bits != 8 && format.bits != 16) return WavFault::NotPcm;
    if (format.frame != format.channels * format.bits / 8) return WavFault::NotPcm;
    if (U32(fields + 8) != format.rate * format.frame) return WavFault::NotPcm;
    return WavFault::None;
}

} // namespace wav_detail

/// Finds format and samples of a WAV file.
inline WavFault ReadWavFormat(const WavReader& file, WavFormat& format) {
    using namespace wav_detail;
    constexpr std::uint32_t kRiffSize = 12;
    constexpr std::uint32_t kChunkHeadSize = 8;
    std::uint8_t head[kRiffSize];
    if (file.size < kRiffSize || !file.read(file.context, 0, head, kRiffSize)) return WavFault::TooShort;
    if (!Tagged(head, "RIFF") || !Tagged(head + 8, "WAVE")) return WavFault::NotRiff;

    bool format_found = false;
    std::uint64_t offset = kRiffSize;
    while (offset + kChunkHeadSize <= file.size) {
        std::uint8_t chunk[kChunkHeadSize];
        if (!file.read(file.context, offset, chunk, kChunkHeadSize)) return WavFault::TooShort;
        const std::uint32_t size = U32(chunk + 4);
        offset += kChunkHeadSize;
        if (Tagged(chunk, "fmt ")) {
            const WavFault fault = ReadFormatChunk(file, offset, size, format);
            if (fault != WavFault::None) return fault;
            format_found = true;
        }
        if (Tagged(chunk, "data")) {
            if (!format_found) return WavFault::NoFormat;
            if (size > file.size - offset) return WavFault::Truncated;
            format.data_offset = offset;
            format.data_size = size - size % format.frame;
            return WavFault::None;
        }
        offset += std::uint64_t{size} + size % 2;
    }
    return format_found ? WavFault::NoSamples : WavFault::NoFormat;
}

} // namespace tonex
