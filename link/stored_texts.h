// The texts that the settings store keeps: what they hold and how they are read again. Pure.
#pragma once

#include "link/window_placement.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tonex {

/// What the text of the last document says.
struct LastDocument {
    std::int16_t location_flag = 0; ///< 0 when the text begins with no number
    std::wstring path;              ///< empty when the text names none
};

/// The last document's text: flag, display name ("PC:" exactly when the flag is 1, else "Veloxa:"), full
/// path.
std::wstring LastDocumentText(std::int16_t location_flag, const std::wstring& path);
/// Splits that text at its first two commas; a display name with a comma in it cuts the path wrongly.
LastDocument ParseLastDocument(const std::wstring& text);

/// The five fields of a placement: show state, bottom, left, right, top.
std::wstring PlacementText(const WindowPlacement& placement);
/// Nothing when the text has fewer than five whole numbers, or one that overflows.
std::optional<WindowPlacement> ParsePlacement(const std::wstring& text);

} // namespace tonex
