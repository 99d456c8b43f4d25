// Any list of entries, encoded with any tempo: the writer keeps inside its blocks and its reader agrees.
#include "score/snd_file.h"

#include <cstdlib>

namespace {

using namespace tonex;

void Require(bool condition) {
    if (!condition) std::abort();
}

bool IsKnown(const FileEntry& entry) {
    if (entry.code < 20) return entry.pitch <= 255;
    return (entry.code >= 100 && entry.code < 120) || entry.code == 200;
}

void Try(std::span<const std::uint8_t> input) {
    static const TimingTables tables = BuildTimingTables();
    if (input.empty()) return;
    const std::int16_t tempo = tables.tempo_list[input[0] % 28];
    input = input.subspan(1);
    FileList list{};
    std::size_t rows = 0;
    // Three bytes an entry: how often, the code, the pitch.
    while (input.size() >= 3 && rows < kFileListRows) {
        for (int i = 0; i <= input[0] && rows < kFileListRows; ++i)
            list[rows++] = {input[1], input[2]};
        input = input.subspan(3);
    }

    const SndEncoding encoding = EncodeSnd(tables, tempo, list);
    const int count = CountEntries(list);
    if (encoding.result == kSndWriteError) {
        Require(encoding.bytes.empty() && encoding.fault_entry >= 0 && encoding.fault_entry < count);
        Require(!IsKnown(At(list, encoding.fault_entry)));
        return;
    }
    Require(encoding.result == kSndDone || encoding.result == kSndFull);
    Require(encoding.entries_written <= count);
    if (encoding.result == kSndDone) Require(encoding.entries_written == std::min(count, 510));
    if (encoding.result == kSndFull) Require(encoding.entries_written < count);

    std::int16_t tempo_again = 0;
    std::int16_t mode = -1;
    FileList again{};
    Require(DecodeSnd(encoding.bytes, tempo_again, again, &mode) == kSndDone);
    Require(tempo_again == tempo);
    Require(mode == ChooseTimingMode(tables, list, TempoIndexOf(tables, tempo)));
    Require(CountEntries(again) == encoding.entries_written);
    for (int k = 0; k < encoding.entries_written; ++k) {
        const FileEntry& before = At(list, k);
        const FileEntry& after = At(again, k);
        Require(IsKnown(before) && after.code == before.code);
        if (before.code < 20) Require(after.pitch == before.pitch);
        if (before.code >= 100 && before.code < 120) Require(after.pitch == 86);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Try({bytes, size});
    return 0;
}
