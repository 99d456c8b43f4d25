// A short text without an allocation, for the cells of the score grid and the key captions.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace tonex {

/// Up to 11 characters; what is longer is cut (the longest note name has 9).
struct CellText {
    std::array<wchar_t, 12> characters{}; ///< NUL behind the last
    std::uint8_t length = 0;

    constexpr CellText() = default;
    constexpr CellText(std::wstring_view text) { // NOLINT: a text is a cell text
        for (const wchar_t c : text)
            Append(c);
    }
    constexpr void Append(wchar_t c) {
        if (length + 1u < characters.size()) characters[length++] = c;
    }
    constexpr void Append(std::wstring_view text) {
        for (const wchar_t c : text)
            Append(c);
    }
    constexpr std::wstring_view View() const { return {characters.data(), length}; }
    friend constexpr bool operator==(const CellText& a, const CellText& b) { return a.View() == b.View(); }
};

} // namespace tonex
