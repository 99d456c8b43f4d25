// Numbers as texts: what the tempo box lists and users type, what settings hold. Pure.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tonex {

/// Whether a character is a blank or a tab.
template <class Character> constexpr bool IsBlank(Character character) {
    return character == ' ' || character == '\t';
}

/// Whether a character is a digit 0 to 9; digits of other scripts are none.
template <class Character> constexpr bool IsDigit(Character character) {
    return character >= '0' && character <= '9';
}

/// A capital letter A to Z as the small one; anything else as it is.
constexpr char SmallLetter(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/// A text without the blanks and tabs in front of it.
template <class Character>
constexpr std::basic_string_view<Character> SkipBlanks(std::basic_string_view<Character> text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

/// The number that digits and nothing else make; nothing when there is no digit or it is above `largest`.
template <class Character>
constexpr std::optional<int> NumberOfDigits(std::basic_string_view<Character> digits, int largest) {
    if (digits.empty()) return std::nullopt;
    std::int64_t number = 0;
    for (const Character digit : digits) {
        if (!IsDigit(digit)) return std::nullopt;
        number = number * 10 + (digit - '0');
        if (number > largest) return std::nullopt;
    }
    return static_cast<int>(number);
}

/// The number at the front of a text, as the tempo box is read: leading blanks skipped, digits, a decimal
/// point; 0 when there is none.
double NumericValueOf(std::wstring_view text);

/// The whole number in a text, rounded with ties to even; 0 when it does not fit 16 bits or is no number.
std::int16_t WholeNumberOf(std::wstring_view text);

/// A number as the tempo box lists it: a blank before a positive number (" 120").
std::wstring NumberToText(std::int16_t value);

} // namespace tonex
