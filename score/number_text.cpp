#include "score/number_text.h"

#include <cmath>

namespace tonex {

namespace {

struct ReadNumber {
    double value = 0;       ///< 0 when there is none
    std::wstring_view rest; ///< the text behind the number
};

ReadNumber ReadNumberFrom(std::wstring_view text) {
    text = SkipBlanks(text);
    bool negative = false;
    if (!text.empty() && (text.front() == L'-' || text.front() == L'+')) {
        negative = text.front() == L'-';
        text.remove_prefix(1);
    }
    ReadNumber number;
    while (!text.empty() && IsDigit(text.front())) {
        number.value = number.value * 10 + (text.front() - L'0');
        text.remove_prefix(1);
    }
    if (!text.empty() && text.front() == L'.') {
        text.remove_prefix(1);
        double fraction = 0;
        double weight = 1;
        while (!text.empty() && IsDigit(text.front())) {
            // Digits beyond what a double holds would only let both numbers grow out of range.
            if (weight < 1e15) {
                fraction = fraction * 10 + (text.front() - L'0');
                weight *= 10;
            }
            text.remove_prefix(1);
        }
        number.value += fraction / weight;
    }
    if (negative) number.value = -number.value;
    number.rest = text;
    return number;
}

} // namespace

double NumericValueOf(std::wstring_view text) {
    return ReadNumberFrom(text).value;
}

std::int16_t WholeNumberOf(std::wstring_view text) {
    const ReadNumber number = ReadNumberFrom(text);
    if (!SkipBlanks(number.rest).empty()) return 0;
    const double rounded = std::nearbyint(number.value);
    if (!(rounded >= -32768.0 && rounded <= 32767.0)) return 0;
    return static_cast<std::int16_t>(rounded);
}

std::wstring NumberToText(std::int16_t value) {
    const std::wstring digits = std::to_wstring(value);
    return value < 0 ? digits : L" " + digits;
}

} // namespace tonex
