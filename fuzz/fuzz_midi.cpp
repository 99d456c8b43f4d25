// Any bytes as a MIDI file: read, its voices weighed, each made a tune; a fitted one goes out and in again.
#include "exchange/fit.h"
#include "exchange/midi_nominal.h"
#include "exchange/midi_tune.h"
#include "exchange/midi_writer.h"
#include "exchange/played.h"
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
    for (const TuneItem& item : tune.items) {
        Require(std::isfinite(item.seconds) && item.seconds >= 0.0);
        Require(std::isfinite(item.quarters) && item.quarters >= 0.0);
    }
}

MidiFile ReadBack(const MidiBytes& made) {
    Require(!made.bytes.empty());
    MidiFile file;
    MidiFault fault;
    Require(ReadMidi(made.bytes, file, fault) && file.remarks.empty());
    Require(file.ends.front() == made.ticks);
    return file;
}

/// The nominal way gives the same file, and the played way as many notes.
void RequireWritten(const TimingTables& tables, const Fit& fit) {
    std::int16_t tempo = 0;
    std::int16_t mode = -1;
    FileList list{};
    Require(DecodeSnd(fit.encoding.bytes, tempo, list, &mode) == kSndDone);
    PlayBlock block;
    Require(ReadPlayBlock(fit.encoding.bytes, block));
    const auto units = UnitsPlayed(tables, block, list, mode);
    Require(units.has_value());
    const Melody melody{tempo, list};
    const MidiFile nominal = ReadBack(WriteNominalMidi(melody, "fuzz"));
    const auto tune = TuneOfNominal(nominal);
    Require(tune.has_value());
    const MidiFile played = ReadBack(WritePlayedMidi(block, melody, mode, *units, "fuzz"));
    Require(played.notes.size() == nominal.notes.size());
    if (fit.whole) Require(FitTune(tables, *tune, false).encoding.bytes == fit.encoding.bytes);
}

void TryVoice(const TimingTables& tables, const MidiFile& file, const MidiVoice& voice, bool exact,
              bool fitted) {
    Tune tune = TuneOfVoice(file, voice, 0.0, 1e9);
    RequireSound(tune);
    int shift = 0;
    if (!fitted) return;
    if (tune.items.empty() || tune.items.size() > 200 || !HalfTonesToPiano(RangeOf(tune), true, shift))
        return;
    TransposeTune(tune, shift);
    const Fit fit = FitTune(tables, tune, exact);
    if (IsWritten(fit.encoding.result)) RequireWritten(tables, fit);
}

void Try(std::span<const std::uint8_t> bytes) {
    static const TimingTables tables = BuildTimingTables();
    LooksLikeMidi(bytes);
    MidiFile file;
    MidiFault fault;
    if (!ReadMidi(bytes, file, fault)) {
        Require(!fault.reason.empty() && fault.offset <= bytes.size());
        return;
    }
    Require(file.ends.size() == static_cast<std::size_t>(file.tracks));
    for (const MidiNote& note : file.notes)
        Require(note.end >= note.start && note.key >= 0 && note.key < 128 && note.channel < 16);
    const std::vector<MidiVoice> voices = VoicesOf(file);
    const int melody = MelodyOf(voices, -1, -1);
    if (melody >= 0)
        TryVoice(tables, file, At(voices, melody), bytes.size() % 2 == 1, IsOneOf(kFitShare, bytes));
    if (const auto tune = TuneOfNominal(file)) RequireSound(*tune);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Try({bytes, size});
    return 0;
}
