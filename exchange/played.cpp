#include "exchange/played.h"

namespace tonex {

namespace {

/// Time units of a whole note, by timing mode.
constexpr std::array<int, kTimingModes> kUnitsOfWhole = {32, 48, 24};
constexpr double kDotted = 1.5;
constexpr double kDoubleDotted = 1.75;

TuneItem ItemOf(const FileEntry& entry, double tempo) {
    TuneItem item;
    const EntryKind kind = KindOfFileCode(entry.code);
    if (kind == EntryKind::Separator) return {TuneKind::Separator};
    item.kind = kind == EntryKind::Note ? TuneKind::Note : TuneKind::Rest;
    item.pitch = kind == EntryKind::Note ? entry.pitch + 1 : 0;
    item.quarters = QuartersOf(LengthCodeOfFileCode(entry.code));
    item.seconds = item.quarters * 60.0 / tempo;
    return item;
}

} // namespace

double QuartersOf(int length_code) {
    const NoteLength& length = At(kNoteLengths, length_code);
    const double quarters = 4.0 / length.division;
    if (length.triplet) return quarters * 2.0 / 3.0;
    return length.dots == 0 ? quarters : quarters * (length.dots == 1 ? kDotted : kDoubleDotted);
}

double TrueTempoOf(int mode, int tempo_byte) {
    const double units_of_quarter = At(kUnitsOfWhole, mode) / 4.0;
    return 60.0 / SecondsOfUnits(units_of_quarter, tempo_byte);
}

std::optional<std::vector<int>> UnitsPlayed(const TimingTables& tables, const PlayBlock& block,
                                            const FileList& list, int mode) {
    std::vector<int> played;
    std::size_t record = 0;
    int toggle = 0;
    const int count = CountEntries(list);
    for (int i = 0; i < count; ++i) {
        const std::uint16_t code = At(list, i).code;
        const EntryKind kind = KindOfFileCode(code);
        played.push_back(0);
        if (kind == EntryKind::Separator) continue;
        if (kind == EntryKind::Foreign) return std::nullopt;
        const int units = RoundUnits(At(At(tables.length_units, mode), LengthCodeOfFileCode(code)), toggle);
        for (int left = units; left > 0; left -= kUnitsPerRecord) {
            if (2 * record + 1 >= block.records.size()) return std::nullopt;
            played.back() += UnitsOfRecord(block.records[2 * record++ + 1]);
        }
    }
    if (2 * record != block.records.size()) return std::nullopt;
    return played;
}

Tune TuneOfMelody(const Melody& melody) {
    Tune tune;
    tune.tempo = melody.tempo;
    tune.as_written = true;
    const int count = CountEntries(melody.list);
    for (int i = 0; i < count; ++i) {
        const FileEntry& entry = At(melody.list, i);
        if (KindOfFileCode(entry.code) != EntryKind::Foreign) tune.items.push_back(ItemOf(entry, tune.tempo));
    }
    return tune;
}

std::vector<double> SecondsPlayed(const Tune& tune, std::span<const int> units, int tempo_byte) {
    std::vector<double> seconds;
    for (const Interval& interval : IntervalsOf(tune)) {
        int sum = 0;
        for (int i = 0; i < interval.items; ++i)
            sum += At(units, interval.first_item + i);
        seconds.push_back(SecondsOfUnits(sum, tempo_byte));
    }
    return seconds;
}

std::vector<double> SecondsMeant(const Tune& tune) {
    std::vector<double> seconds;
    for (const Interval& interval : IntervalsOf(tune))
        seconds.push_back(interval.seconds);
    return seconds;
}

} // namespace tonex
