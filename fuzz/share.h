// What a target does with a share of its tries only, because it takes a hundred times as long as the rest.
#pragma once

#include <cstdint>
#include <span>

namespace tonex {

/// True for one of `shares` inputs, always for the same ones, so that a failure is seen again when its input
/// is.
inline bool IsOneOf(std::uint32_t shares, std::span<const std::uint8_t> input) {
    std::uint32_t mixed = 2166136261;
    for (const std::uint8_t byte : input)
        mixed = (mixed ^ byte) * 16777619;
    return (mixed ^ mixed >> 15) % shares == 0;
}

} // namespace tonex
