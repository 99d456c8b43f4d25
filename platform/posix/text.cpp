#include "platform/text.h"

#include "platform/posix/utf8.h"

#include <cstddef>
#include <cstdint>

namespace tonex {

namespace {

constexpr std::uint32_t kEscapeBase = 0xDC00; ///< a stray byte b is carried as kEscapeBase + b

bool IsContinuation(std::uint8_t byte) {
    return (byte & 0xC0) == 0x80;
}

/// Length of the character that starts at the front of `bytes`, or 0 when none does. Overlong forms, halves
/// of surrogate pairs and values above U+10FFFF are no characters.
std::size_t CharacterAt(std::string_view bytes, std::uint32_t& character) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(bytes[i]); };
    const std::uint8_t lead = byte(0);
    std::size_t length = 0;
    std::uint32_t smallest = 0;
    if (lead < 0x80) {
        character = lead;
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2, smallest = 0x80, character = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, smallest = 0x800, character = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4, smallest = 0x10000, character = lead & 0x07;
    } else {
        return 0;
    }
    if (bytes.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if (!IsContinuation(byte(i))) return 0;
        character = (character << 6) | (byte(i) & 0x3F);
    }
    if (character < smallest || character > 0x10FFFF) return 0;
    if (character >= 0xD800 && character <= 0xDFFF) return 0;
    return length;
}

void AppendCharacter(std::string& bytes, std::uint32_t character) {
    const auto put = [&](std::uint32_t byte) { bytes.push_back(static_cast<char>(byte)); };
    if (character >= kEscapeBase + 0x80 && character <= kEscapeBase + 0xFF)
        return put(character - kEscapeBase);
    if ((character >= 0xD800 && character <= 0xDFFF) || character > 0x10FFFF) character = 0xFFFD;
    if (character < 0x80) return put(character);
    if (character < 0x800) {
        put(0xC0 | (character >> 6));
        return put(0x80 | (character & 0x3F));
    }
    if (character < 0x10000) {
        put(0xE0 | (character >> 12));
    } else {
        put(0xF0 | (character >> 18));
        put(0x80 | ((character >> 12) & 0x3F));
    }
    put(0x80 | ((character >> 6) & 0x3F));
    put(0x80 | (character & 0x3F));
}

} // namespace

std::string BytesOfText(std::wstring_view text) {
    static_assert(sizeof(wchar_t) == 4, "one wide character holds any character here");
    std::string bytes;
    bytes.reserve(text.size());
    for (const wchar_t character : text)
        AppendCharacter(bytes, static_cast<std::uint32_t>(character));
    return bytes;
}

std::wstring TextOfBytes(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        std::uint32_t character = 0;
        std::size_t length = CharacterAt(bytes, character);
        if (length == 0) {
            character = kEscapeBase + static_cast<std::uint8_t>(bytes[0]);
            length = 1;
        }
        text.push_back(static_cast<wchar_t>(character));
        bytes.remove_prefix(length);
    }
    return text;
}

// A POSIX system has no ANSI code page: its narrow text is UTF-8.
std::string ToAnsi(std::wstring_view text) {
    return BytesOfText(text);
}
std::wstring FromAnsi(std::string_view text) {
    return TextOfBytes(text);
}

} // namespace tonex
