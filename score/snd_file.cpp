#include "score/snd_file.h"

#include "score/int16.h"

#include <array>
#include <cassert>
#include <cmath>

namespace tonex {
namespace {

constexpr std::size_t kBlockHeader = 4;
constexpr std::uint8_t kFormatByte = 7;
constexpr std::uint8_t kEndByte = 255;
constexpr std::uint8_t kRestPitch = 86;
constexpr std::uint16_t kRestCodes = 100;
constexpr std::uint16_t kSeparatorCode = 200;
constexpr int kMostEntries = 510;

constexpr int kUnitsPerRecord = 16;
constexpr int kLastRecordBase = 48;  ///< three quarters of the record sound
constexpr int kWholeRecordBase = 64; ///< all of the record sounds, a longer note goes on
constexpr int kPlayFullAt = 1026;
constexpr int kPlayLimit = 1024;

enum class Kind { Note, Rest, Separator, Unknown };

Kind KindOf(std::uint16_t code) {
    if (code < kLengthCodes) return Kind::Note;
    if (code >= kRestCodes && code < kRestCodes + kLengthCodes) return Kind::Rest;
    if (code == kSeparatorCode) return Kind::Separator;
    return Kind::Unknown;
}

/// Place of a note's or rest's code in the length tables.
std::size_t LengthCodeOf(std::uint16_t code) {
    return static_cast<std::size_t>(code < kLengthCodes ? code : code - kRestCodes);
}

/// A block under construction: a buffer and the index behind its last byte.
struct Block {
    std::array<std::uint8_t, kSndBlockSize> bytes{};
    std::size_t size = 0;
};

void AddPair(Block& block, int first, int second) {
    assert(block.size + 2 <= block.bytes.size());
    block.bytes[block.size] = static_cast<std::uint8_t>(first);
    block.bytes[block.size + 1] = static_cast<std::uint8_t>(second);
    block.size += 2;
}

int RecordsOf(int units) {
    return (units + kUnitsPerRecord - 1) / kUnitsPerRecord;
}

/// The tone records of one entry: full records first, what is left in the last one.
void EmitPlayRecords(Block& play, int pitch_byte, int units, int last_base, int whole_base) {
    while (units > kUnitsPerRecord) {
        AddPair(play, pitch_byte, whole_base);
        units -= kUnitsPerRecord;
    }
    AddPair(play, pitch_byte, last_base + units % kUnitsPerRecord);
}

/// Whether the next entry's records can not be written any more.
bool IsPlayBlockFull(const Block& play, Kind kind, int units) {
    const int p = static_cast<int>(play.size);
    const int records = RecordsOf(units);
    // A count of records is compared with an index of bytes, and a separator counts as the entry before it:
    // kept as it is, so that the same melodies fit as always.
    if (p + records >= kPlayLimit) return true;
    // Five or six records just below that limit would push the end mark out of the block.
    return kind != Kind::Separator && p + 2 * records + 2 > kSndBlockSize;
}

struct EntryWriter {
    const TimingTables& tables;
    std::size_t mode;
    Block play;
    Block edit;
    int pitch_byte = 0; ///< a separator repeats these two from the entry before it, kept as it is
    int units = 0;
    int toggle = 0;
};

SndResult WriteEntry(EntryWriter& writer, const FileEntry& entry) {
    if (writer.play.size >= kPlayFullAt) return kSndFull;
    const Kind kind = KindOf(entry.code);
    if (kind == Kind::Unknown) return kSndWriteError;
    if (kind == Kind::Note && entry.pitch > 255) return kSndWriteError;
    if (kind != Kind::Separator) {
        writer.pitch_byte = kind == Kind::Note ? entry.pitch : kRestPitch;
        writer.units =
            RoundUnits(writer.tables.length_units[writer.mode][LengthCodeOf(entry.code)], writer.toggle);
    }
    if (IsPlayBlockFull(writer.play, kind, writer.units)) return kSndFull;
    AddPair(writer.edit, writer.pitch_byte, entry.code);
    if (kind == Kind::Note) {
        EmitPlayRecords(writer.play, writer.pitch_byte, writer.units, kLastRecordBase, kWholeRecordBase);
    } else if (kind == Kind::Rest) {
        EmitPlayRecords(writer.play, writer.pitch_byte, writer.units, 0, 0);
    }
    return kSndDone;
}

/// Reads pairs up to and with 255, 255. Gives false when the block is longer than its buffer or the file
/// ends.
bool ReadBlock(std::span<const std::uint8_t> file, std::size_t& offset, Block& block) {
    while (block.size + 2 <= block.bytes.size() && offset + 2 <= file.size()) {
        const std::uint8_t first = file[offset];
        const std::uint8_t second = file[offset + 1];
        AddPair(block, first, second);
        offset += 2;
        if (first == kEndByte && second == kEndByte) return true;
    }
    return false;
}

SndResult Refuse(SndFault* fault, std::size_t offset, const char* what, int value = -1) {
    if (fault == nullptr) return kSndBadFormat;
    fault->offset = offset;
    fault->reason = what;
    if (value >= 0) fault->reason += ", not " + std::to_string(value);
    return kSndBadFormat;
}

SndResult RefuseBlock(SndFault* fault, std::size_t start, std::size_t offset, const Block& block,
                      const char* too_long, const char* cut) {
    if (block.size + 2 > block.bytes.size()) return Refuse(fault, start, too_long);
    return Refuse(fault, offset, cut);
}

} // namespace

std::int32_t ModeCostOf(const TimingTables& tables, const FileList& list, int mode) {
    assert(mode >= 0 && mode < kTimingModes);
    std::int32_t cost = 0;
    for (const FileEntry& entry : list) {
        if (entry.code == kEmpty) break;
        const Kind kind = KindOf(entry.code);
        if (kind != Kind::Note && kind != Kind::Rest) continue;
        cost += tables.length_cost[static_cast<std::size_t>(mode)][LengthCodeOf(entry.code)];
    }
    return cost;
}

int ChooseTimingMode(const TimingTables& tables, const FileList& list, int tempo_index) {
    assert(tempo_index >= 0 && tempo_index < kTempoListSize);
    int chosen = 0;
    std::int32_t best = 32767;
    for (int mode = 0; mode < kTimingModes; ++mode) {
        const auto& bytes = tables.mode_tempo_bytes[static_cast<std::size_t>(mode)];
        if (bytes[static_cast<std::size_t>(tempo_index)] <= 0) continue;
        const std::int32_t cost = ModeCostOf(tables, list, mode);
        if (cost >= best) continue;
        best = cost;
        chosen = mode;
    }
    return chosen;
}

std::int16_t RoundUnits(float units, int& toggle) {
    assert(units >= 0.0F && units < 32767.0F);
    const float floor = std::floor(units);
    const float fraction = units - floor;
    float rounded = floor;
    if (fraction <= 0.4F || fraction >= 0.6F) {
        rounded = std::nearbyint(units);
    } else {
        // Both settings of the toggle round down, kept as it is.
        toggle = 1 - toggle;
    }
    return rounded < 1.0F ? std::int16_t{1} : static_cast<std::int16_t>(rounded);
}

SndEncoding EncodeSnd(const TimingTables& tables, std::int16_t tempo, const FileList& list) {
    SndEncoding encoding;
    const int tempo_index = TempoIndexOf(tables, tempo);
    if (tempo_index < 0) {
        encoding.result = kSndNotFound;
        return encoding;
    }
    const int mode = ChooseTimingMode(tables, list, tempo_index);
    EntryWriter writer{.tables = tables, .mode = static_cast<std::size_t>(mode), .play = {}, .edit = {}};
    AddPair(writer.play, kFormatByte, 0);
    AddPair(writer.play, tables.mode_tempo_bytes[writer.mode][static_cast<std::size_t>(tempo_index)], 0);
    AddPair(writer.edit, mode, 0);
    AddPair(writer.edit, tempo % 256, tempo / 256);

    for (int k = 0; k < kMostEntries && list[static_cast<std::size_t>(k)].code != kEmpty; ++k) {
        encoding.result = WriteEntry(writer, list[static_cast<std::size_t>(k)]);
        if (encoding.result == kSndWriteError) {
            encoding.fault_entry = k;
            return encoding;
        }
        if (encoding.result == kSndFull) break;
    }

    encoding.entries_written = static_cast<std::int16_t>((writer.edit.size - kBlockHeader) / 2);
    AddPair(writer.play, kEndByte, kEndByte);
    AddPair(writer.edit, kEndByte, kEndByte);
    encoding.bytes.reserve(writer.play.size + writer.edit.size);
    for (const Block* block : {&writer.play, &writer.edit}) {
        encoding.bytes.insert(encoding.bytes.end(), block->bytes.begin(),
                              block->bytes.begin() + static_cast<std::ptrdiff_t>(block->size));
    }
    return encoding;
}

SndResult DecodeSnd(std::span<const std::uint8_t> file, std::int16_t& tempo, FileList& list,
                    std::int16_t* mode, SndFault* fault) {
    if (fault != nullptr) *fault = SndFault{};
    std::size_t offset = 0;
    Block play;
    if (!ReadBlock(file, offset, play)) {
        return RefuseBlock(fault, 0, offset, play, "the play block is longer than 1028 bytes",
                           "the file ends before the play block does");
    }
    const std::size_t edit_start = offset;
    Block edit;
    if (!ReadBlock(file, offset, edit)) {
        return RefuseBlock(fault, edit_start, offset, edit, "the edit block is longer than 1028 bytes",
                           "the file ends before the edit block does");
    }

    if (play.bytes[0] != kFormatByte) return Refuse(fault, 0, "the format byte must be 7", play.bytes[0]);
    if (play.bytes[1] != 0) return Refuse(fault, 1, "this byte must be 0", play.bytes[1]);
    if (play.bytes[2] < 1 || play.bytes[2] > kTempoBytes) {
        return Refuse(fault, 2, "the tempo byte must be 1 to 32", play.bytes[2]);
    }
    if (play.bytes[3] != 0) return Refuse(fault, 3, "this byte must be 0", play.bytes[3]);
    if (edit.bytes[0] >= kTimingModes) {
        return Refuse(fault, edit_start, "the timing mode must be 0 to 2", edit.bytes[0]);
    }
    if (edit.bytes[1] != 0) return Refuse(fault, edit_start + 1, "this byte must be 0", edit.bytes[1]);
    const int beats = edit.bytes[2] + 256 * edit.bytes[3];
    // Given out even when it is refused; what does not fit 16 bits is given as the largest number that does.
    tempo = ToInt16(beats).value_or(32767);
    if (beats < kMinTempo || beats > kMaxTempo) {
        return Refuse(fault, edit_start + 2, "the tempo must be 30 to 640", beats);
    }

    if (mode != nullptr) *mode = edit.bytes[0];
    list.fill(FileEntry{});
    const std::size_t entries = (edit.size - kBlockHeader) / 2 - 1;
    assert(entries < kFileListRows);
    for (std::size_t k = 0; k < entries; ++k) {
        list[k] = {edit.bytes[kBlockHeader + 2 * k + 1], edit.bytes[kBlockHeader + 2 * k]};
    }
    return kSndDone;
}

} // namespace tonex
