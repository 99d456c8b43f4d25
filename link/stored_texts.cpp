#include "link/stored_texts.h"

#include "link/link_state.h"
#include "link/paths.h"
#include "score/number_text.h"

#include <array>
#include <limits>
#include <string_view>

namespace tonex {

namespace {

constexpr std::size_t kPlacementFields = 5;

/// Optional minus sign and digits, nothing else; nothing when the number leaves 32 bits.
std::optional<int> WholeField(std::wstring_view text) {
    const bool negative = text.starts_with(L'-');
    if (negative) text.remove_prefix(1);
    const std::optional<int> value = NumberOfDigits(text, std::numeric_limits<std::int32_t>::max());
    return value && negative ? -*value : value;
}

} // namespace

std::wstring LastDocumentText(std::int16_t location_flag, const std::wstring& path) {
    return std::to_wstring(location_flag) + (location_flag == kOnPc ? L",PC:" : L",Veloxa:") +
           FileNameOfPath(path) + L"," + path;
}

// Other programs of the suite read and write this text too, so a comma in a name stays what it is to them.
LastDocument ParseLastDocument(const std::wstring& text) {
    LastDocument last;
    const std::size_t first = text.find(L',');
    last.location_flag = WholeNumberOf(std::wstring_view(text).substr(0, first));
    const std::size_t second = text.find(L',', first + 1); // none where there is no first
    if (second != std::wstring::npos) last.path = text.substr(second + 1);
    return last;
}

std::wstring PlacementText(const WindowPlacement& placement) {
    // Bottom stands before left: kept as it is, because users' stores hold this order.
    return std::to_wstring(placement.show_state) + L"," + std::to_wstring(placement.bottom) + L"," +
           std::to_wstring(placement.left) + L"," + std::to_wstring(placement.right) + L"," +
           std::to_wstring(placement.top);
}

std::optional<WindowPlacement> ParsePlacement(const std::wstring& text) {
    std::array<int, kPlacementFields> fields{};
    std::wstring_view rest = text;
    for (std::size_t i = 0; i < kPlacementFields; ++i) {
        const bool last = i + 1 == kPlacementFields;
        const std::size_t end = last ? rest.size() : rest.find(L',');
        if (end == std::wstring_view::npos) return std::nullopt;
        const std::optional<int> field = WholeField(rest.substr(0, end));
        if (!field) return std::nullopt;
        fields[i] = *field;
        if (!last) rest.remove_prefix(end + 1);
    }
    WindowPlacement placement;
    placement.show_state = fields[0];
    placement.bottom = fields[1];
    placement.left = fields[2];
    placement.right = fields[3];
    placement.top = fields[4];
    return placement;
}

} // namespace tonex
