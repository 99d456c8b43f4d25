#include "score/temporary_names.h"

#include "link/paths.h"
#include "score/number_text.h"

#include <algorithm>

namespace tonex {
namespace {

constexpr std::wstring_view kSaveStart = L"~snd";
constexpr std::wstring_view kPreviewStart = L"$$";
constexpr std::wstring_view kEnd = L".tmp";
constexpr std::uint32_t kSaveNumbers = 1000;
constexpr std::size_t kMostUploadDigits = 4;

bool IsUpperHexDigit(wchar_t digit) {
    return IsDigit(digit) || (digit >= L'A' && digit <= L'F');
}

/// What stands between a name's start and its end, which can not overlap; empty when it has another start or
/// end.
std::wstring_view Between(std::wstring_view name, std::wstring_view start, std::wstring_view end) {
    if (!name.starts_with(start) || !name.ends_with(end)) return {};
    return name.substr(start.size(), name.size() - start.size() - end.size());
}

bool IsTimeOfDay(std::wstring_view digits) {
    const int number = NumberOfDigits(digits, 235959).value_or(-1);
    return digits.size() == 6 && number >= 0 && number / 100 % 100 < 60 && number % 100 < 60;
}

} // namespace

std::wstring SaveName(std::uint32_t number) {
    std::wstring name(kSaveStart);
    name += std::to_wstring(number % kSaveNumbers);
    return name += kEnd;
}

bool IsSaveName(std::wstring_view name) {
    return NumberOfDigits(Between(name, kSaveStart, kEnd), kSaveNumbers - 1).has_value();
}

bool IsUploadName(std::wstring_view name) {
    // Systems write the digits and the ending in different letter cases.
    const std::wstring upper = UpperCase(name);
    const std::wstring_view digits = Between(upper, UpperCase(kUploadPrefix), UpperCase(kEnd));
    return !digits.empty() && digits.size() <= kMostUploadDigits &&
           std::all_of(digits.begin(), digits.end(), IsUpperHexDigit);
}

std::wstring PreviewFileName(int second_of_day, std::wstring_view extension) {
    std::wstring name(kPreviewStart);
    for (const int part : {second_of_day / 3600, second_of_day / 60 % 60, second_of_day % 60}) {
        name += static_cast<wchar_t>(L'0' + part / 10);
        name += static_cast<wchar_t>(L'0' + part % 10);
    }
    return name += extension;
}

bool IsPreviewFileName(std::wstring_view name) {
    return IsTimeOfDay(Between(name, kPreviewStart, L".snd")) ||
           IsTimeOfDay(Between(name, kPreviewStart, L".wav"));
}

} // namespace tonex
