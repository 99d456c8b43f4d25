// Any bytes as ring tones: what is read fits into a melody that loads, and goes out and in again.
#include "exchange/fit.h"
#include "exchange/played.h"
#include "exchange/rtttl.h"
#include "fuzz/share.h"

#include <cmath>
#include <cstdlib>

namespace {

using namespace tonex;

void Require(bool condition) {
    if (!condition) std::abort();
}

/// A fit takes a thousand times as long as reading: one of so many tries is fitted.
constexpr std::uint32_t kFitShare = 4096;

void RequireSound(const Tune& tune) {
    Require(CountNotes(tune) > 0 && tune.tempo > 0.0);
    for (const TuneItem& item : tune.items)
        Require(std::isfinite(item.seconds) && item.seconds > 0.0 && item.quarters > 0.0);
}

void RequireWritten(const TimingTables& tables, const Fit& fit) {
    std::int16_t tempo = 0;
    std::int16_t mode = -1;
    FileList list{};
    Require(DecodeSnd(fit.encoding.bytes, tempo, list, &mode) == kSndDone);
    Require(tempo == fit.melody.tempo && mode == fit.mode && CountEntries(list) <= kMaxEntries);
    PlayBlock block;
    Require(ReadPlayBlock(fit.encoding.bytes, block));
    const auto units = UnitsPlayed(tables, block, list, mode);
    Require(units.has_value());
    const Melody melody{tempo, list};
    const Tune written = TuneOfMelody(melody);
    if (CountNotes(written) == 0) return;
    const RtttlText text = WriteRtttl(melody, SecondsPlayed(written, *units, block.tempo_byte),
                                      TrueTempoOf(mode, block.tempo_byte), "fuzz");
    if (text.text.empty()) return;
    RtttlFault fault;
    const auto again = ReadRtttl(text.text, fault);
    Require(again.has_value() && again->size() == 1);
    Require(CountNotes(again->front()) == CountNotes(written));
}

void Try(std::string_view text, bool fitted) {
    static const TimingTables tables = BuildTimingTables();
    LooksLikeRtttl(text);
    RtttlFault fault;
    auto tunes = ReadRtttl(text, fault);
    Require(tunes.has_value() == fault.reason.empty());
    if (!tunes) return Require(fault.line > 0 && fault.column > 0);
    Require(!tunes->empty());
    Tune tune = tunes->front();
    for (const Tune& each : *tunes)
        RequireSound(each);
    int shift = 0;
    if (!fitted) return;
    if (tune.items.size() > 300 || !HalfTonesToPiano(RangeOf(tune), true, shift)) return;
    TransposeTune(tune, shift);
    const Fit fit = FitTune(tables, tune, text.size() % 2 == 1);
    Require(IsWritten(fit.encoding.result));
    RequireWritten(tables, fit);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Try({reinterpret_cast<const char*>(bytes), size}, IsOneOf(kFitShare, {bytes, size}));
    return 0;
}
