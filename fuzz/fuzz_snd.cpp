// Any bytes as a SND file: read, into the score, out of the score, written, read again.
#include "score/score.h"
#include "score/snd_file.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace tonex;

void Require(bool condition) {
    if (!condition) std::abort();
}

void RequireInvariants(const Score& score) {
    Require(score.end_count >= 1 && score.end_count <= kMaxEndCount);
    for (int slot = 0; slot < kSlots; ++slot) {
        const Entry& entry = At(score.sound, slot);
        Require((entry.code == kEmpty) == (slot >= EndColumn(score)));
        if (entry.code == kEmpty || entry.code == kSeparator) {
            Require(entry.pitch == entry.code && entry.position == entry.code);
        }
    }
    Require(score.first_shown == 0 && score.strip_cursor == EndColumn(score) % 30 && !score.changed);
}

/// What was written loads to the entries that were written, and saves to the same bytes.
void RequireRoundTrip(const TimingTables& tables, std::int16_t tempo, const Score& score,
                      const SndEncoding& encoding) {
    std::int16_t tempo_again = 0;
    FileList list{};
    Require(DecodeSnd(encoding.bytes, tempo_again, list) == kSndDone);
    Require(tempo_again == tempo);
    Require(CountEntries(list) == encoding.entries_written);
    Score again;
    Require(FillFromFileList(again, list, 15) == 0);
    RequireInvariants(again);
    for (int slot = 0; slot < encoding.entries_written; ++slot) {
        Require(At(again.sound, slot) == At(score.sound, slot));
    }
    const SndEncoding twice = EncodeSnd(tables, tempo, BuildSaveList(again));
    Require(twice.result == kSndDone || encoding.result == kSndFull);
    if (encoding.result == kSndDone) Require(twice.bytes == encoding.bytes);
}

void Try(std::span<const std::uint8_t> file) {
    static const TimingTables tables = BuildTimingTables();
    std::int16_t tempo = 0;
    std::int16_t mode = 0;
    FileList list{};
    SndFault fault;
    const SndResult result = DecodeSnd(file, tempo, list, &mode, &fault);
    Require((result == kSndDone) == fault.reason.empty());
    Require(fault.offset <= file.size());
    if (result != kSndDone) return;
    Require(tempo >= kMinTempo && tempo <= kMaxTempo && mode >= 0 && mode < kTimingModes);

    Score score;
    const int dropped = FillFromFileList(score, list, 15);
    RequireInvariants(score);
    Require(dropped >= 0 && dropped + EndColumn(score) == CountEntries(list));

    // A tempo that is not listed would hide the writer from most files.
    const std::int16_t listed = TempoIndexOf(tables, tempo) >= 0 ? tempo : At(tables.tempo_list, tempo % 28);
    const SndEncoding encoding = EncodeSnd(tables, listed, BuildSaveList(score));
    Require(encoding.result == kSndDone || encoding.result == kSndFull || encoding.result == kSndWriteError);
    Require((encoding.fault_entry >= 0) == (encoding.result == kSndWriteError));
    Require(encoding.bytes.empty() == (encoding.result == kSndWriteError));
    if (encoding.result == kSndWriteError) return;
    Require(encoding.bytes.size() <= std::size_t{2} * kSndBlockSize);
    if (encoding.result == kSndDone) Require(encoding.entries_written == EndColumn(score));
    RequireRoundTrip(tables, listed, score, encoding);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Try({bytes, size});
    return 0;
}
