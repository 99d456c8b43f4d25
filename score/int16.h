// Checked 16-bit arithmetic: the machine this editor writes for counts in 16 bits, and a value that does not
// fit is an error to report or refuse, never a silent wrap.
#pragma once

#include <cstdint>
#include <optional>

namespace tonex {

/// The value as a 16-bit signed number, or nothing when it is outside -32768 to 32767.
constexpr std::optional<std::int16_t> ToInt16(std::int64_t value) {
    if (value < -32768 || value > 32767) return std::nullopt;
    return static_cast<std::int16_t>(value);
}

/// A 16-bit cell read as a signed number (65535 reads as -1).
constexpr std::int16_t AsSigned(std::uint16_t cell) {
    return static_cast<std::int16_t>(cell);
}

/// A signed number stored in a 16-bit cell (-1 is stored as 65535).
constexpr std::uint16_t AsCell(std::int16_t value) {
    return static_cast<std::uint16_t>(value);
}

} // namespace tonex
