// Any bytes as melody text: what is taken gives the same melody again, what is refused names a line.
#include "fuzz/share.h"
#include "score/melody_text.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace tonex;

void Require(bool condition) {
    if (!condition) std::abort();
}

bool Same(const FileEntry& a, const FileEntry& b) {
    return a.code == b.code && a.pitch == b.pitch;
}

void TryAgain(const TimingTables& tables, const Melody& melody) {
    int fault_entry = -1;
    const std::optional<std::string> text = FormatMelodyText(melody, fault_entry);
    Require(text.has_value());
    MelodyTextFault fault;
    const std::optional<Melody> again = ParseMelodyText(tables, *text, fault);
    Require(again && again->tempo == melody.tempo);
    Require(std::equal(melody.list.begin(), melody.list.end(), again->list.begin(), Same));
}

/// The line of each entry is searched from the text's begin: all of them are asked for in one of so many
/// tries.
constexpr std::uint32_t kAllLinesShare = 64;

void RequireLines(std::string_view text, int entries, bool all) {
    Require(LineOfEntry(text, entries) == 0);
    for (int k = all ? 0 : std::max(0, entries - 1); k < entries; ++k)
        Require(LineOfEntry(text, k) > (k == 0 ? 0 : LineOfEntry(text, k - 1)));
}

void Try(std::string_view text, bool all_lines) {
    static const TimingTables tables = BuildTimingTables();
    MelodyTextFault fault;
    const std::optional<Melody> melody = ParseMelodyText(tables, text, fault);
    const auto lines =
        1 + std::count(text.begin(), text.end(), '\n') + std::count(text.begin(), text.end(), '\r');
    if (!melody) {
        Require(!fault.reason.empty() && fault.line >= 1 && fault.line <= lines);
        return;
    }
    Require(fault.reason.empty());
    RequireLines(text, CountEntries(melody->list), all_lines);
    TryAgain(tables, *melody);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Try({reinterpret_cast<const char*>(bytes), size}, IsOneOf(kAllLinesShare, {bytes, size}));
    return 0;
}
