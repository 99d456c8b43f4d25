// Any texts as the settings store may give them back: the last document and the window's place.
#include "link/stored_texts.h"
#include "score/number_text.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace tonex;

void Require(bool condition) {
    if (!condition) std::abort();
}

/// Wide text of bytes: two a character, so that all of them occur.
std::wstring WideOf(const std::uint8_t* bytes, std::size_t size) {
    std::wstring text;
    for (std::size_t i = 0; i + 1 < size; i += 2)
        text += static_cast<wchar_t>(bytes[i] | bytes[i + 1] << 8);
    return text;
}

void TryLastDocument(const std::wstring& text) {
    const LastDocument last = ParseLastDocument(text);
    Require(text.ends_with(last.path));
    if (std::count(text.begin(), text.end(), L',') < 2) Require(last.path.empty());
    // What was stored comes back, but for a comma in the name, which cuts the path.
    if (last.path.empty() || last.path.find(L',') != std::wstring::npos) return;
    const LastDocument again = ParseLastDocument(LastDocumentText(last.location_flag, last.path));
    Require(again.path == last.path && again.location_flag == last.location_flag);
}

void TryPlacement(const std::wstring& text) {
    const std::optional<WindowPlacement> placement = ParsePlacement(text);
    if (!placement) return;
    const std::optional<WindowPlacement> again = ParsePlacement(PlacementText(*placement));
    Require(again && PlacementText(*again) == PlacementText(*placement));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    // The same bytes as plain letters and as any characters.
    for (const std::wstring& text : {std::wstring(bytes, bytes + size), WideOf(bytes, size)}) {
        TryLastDocument(text);
        TryPlacement(text);
    }
    return 0;
}
