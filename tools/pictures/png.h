// A small PNG writer for the tools that draw: 8 bits a channel, rows stored as differences to the row above,
// packed with repeats of at most 258 bytes and the fixed codes.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tonex {

namespace png {

inline std::uint32_t Crc(const std::string& bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char c : bytes) {
        crc ^= static_cast<std::uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
    }
    return ~crc;
}

inline std::string BigEndian(std::uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 255);
    return bytes;
}

inline std::string Chunk(const std::string& kind, const std::string& data) {
    return BigEndian(static_cast<std::uint32_t>(data.size())) + kind + data + BigEndian(Crc(kind + data));
}

struct BitWriter {
    std::string bytes;
    std::uint32_t held = 0;
    int count = 0;

    void Bits(std::uint32_t value, int bits) {
        held |= value << count;
        for (count += bits; count >= 8; count -= 8, held >>= 8)
            bytes += static_cast<char>(held & 255);
    }
    /// Huffman codes go out with their highest bit first.
    void Code(std::uint32_t code, int bits) {
        for (int bit = bits - 1; bit >= 0; --bit)
            Bits(code >> bit & 1, 1);
    }
    void Symbol(int symbol) {
        const auto s = static_cast<std::uint32_t>(symbol);
        if (symbol < 144)
            Code(0x30 + s, 8);
        else if (symbol < 256)
            Code(0x190 + s - 144, 9);
        else if (symbol < 280)
            Code(s - 256, 7);
        else
            Code(0xC0 + s - 280, 8);
    }
};

/// A repeat's length (3 to 258) and distance (1 to 32768).
inline void PutRepeat(BitWriter& out, int length, int distance) {
    static constexpr int kLengths[] = {3,  4,  5,  6,  7,  8,  9,  10, 11,  13,  15,  17,  19,  23, 27,
                                       31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258};
    int symbol = 28;
    while (kLengths[symbol] > length)
        --symbol;
    out.Symbol(257 + symbol);
    const int extra = symbol < 8 || symbol == 28 ? 0 : symbol / 4 - 1;
    out.Bits(static_cast<std::uint32_t>(length - kLengths[symbol]), extra);
    int code = 0, base = 1, bits = 0;
    while (code < 29 && distance >= base + (1 << bits)) {
        base += 1 << bits;
        ++code;
        bits = code < 4 ? 0 : code / 2 - 1;
    }
    out.Code(static_cast<std::uint32_t>(code), 5);
    out.Bits(static_cast<std::uint32_t>(distance - base), bits);
}

inline std::string Pack(const std::string& data) {
    BitWriter out;
    out.Bits(1, 1); // the only block
    out.Bits(1, 2); // fixed codes
    std::array<int, 1 << 14> last;
    last.fill(-1);
    const int size = static_cast<int>(data.size());
    for (int at = 0; at < size;) {
        int length = 0, from = -1;
        if (at + 3 <= size) {
            std::uint32_t key = 0;
            for (int i = 0; i < 3; ++i)
                key = key * 257 + static_cast<std::uint8_t>(data[static_cast<std::size_t>(at + i)]);
            int& slot = last[key * 2654435761U >> 18];
            from = slot;
            slot = at;
            while (from >= 0 && at - from <= 32768 && at + length < size && length < 258 &&
                   data[static_cast<std::size_t>(from + length)] ==
                       data[static_cast<std::size_t>(at + length)])
                ++length;
        }
        if (length >= 3) {
            PutRepeat(out, length, at - from);
            at += length;
        } else {
            out.Symbol(static_cast<std::uint8_t>(data[static_cast<std::size_t>(at++)]));
        }
    }
    out.Symbol(256);
    out.Bits(0, 7);
    return out.bytes;
}

} // namespace png

/// The bytes of a PNG file of `pixels`, row-major, with 3 (red, green, blue) or 4 (and alpha, not
/// premultiplied) bytes a pixel.
inline std::string PngFile(int width, int height, int channels, const std::vector<std::uint8_t>& pixels) {
    const std::size_t row = static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    std::string rows;
    for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y) {
        rows += '\x02'; // differences to the row above
        for (std::size_t x = 0; x < row; ++x)
            rows += static_cast<char>(pixels[y * row + x] - (y > 0 ? pixels[(y - 1) * row + x] : 0));
    }
    std::uint32_t a = 1, b = 0;
    for (const char c : rows) {
        a = (a + static_cast<std::uint8_t>(c)) % 65521;
        b = (b + a) % 65521;
    }
    const std::string head = png::BigEndian(static_cast<std::uint32_t>(width)) +
                             png::BigEndian(static_cast<std::uint32_t>(height)) + '\x08' +
                             static_cast<char>(channels == 4 ? 6 : 2) + std::string(3, '\0');
    return std::string("\x89PNG\r\n\x1A\n", 8) + png::Chunk("IHDR", head) +
           png::Chunk("IDAT", "\x78\x01" + png::Pack(rows) + png::BigEndian(b << 16 | a)) +
           png::Chunk("IEND", "");
}

} // namespace tonex
