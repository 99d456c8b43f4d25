#include "score/snd_file.h"

#include "score/int16.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <utility>

namespace tonex {
namespace {

constexpr std::size_t kBlockHeader = 4;
constexpr std::uint8_t kFormatByte = 7;
constexpr std::uint8_t kEndByte = 255;
constexpr int kMostEntries = 510;
constexpr std::size_t kLongestBlock = kSndBlockSize - 1; ///< whole pairs

constexpr int kLastRecordBase = 48;  ///< three quarters of the record sound
constexpr int kWholeRecordBase = 64; ///< all of the record sounds, a longer note goes on
constexpr int kPlayFullAt = 1026;
constexpr int kPlayLimit = 1024;

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
bool IsPlayBlockFull(const Block& play, EntryKind kind, int units) {
    const int p = static_cast<int>(play.size);
    const int records = RecordsOf(units);
    // A count of records is compared with an index of bytes, and a separator counts as the entry before it:
    // kept as it is, so that the same melodies fit as always.
    if (p + records >= kPlayLimit) return true;
    // Five or six records just below that limit would push the end mark out of the block.
    return kind != EntryKind::Separator && p + 2 * records + 2 > kSndBlockSize;
}

struct EntryWriter {
    const TimingTables& tables;
    int mode;
    Block play;
    Block edit;
    int pitch_byte = 0; ///< a separator repeats these two from the entry before it, kept as it is
    int units = 0;
    int toggle = 0;
};

SndResult WriteEntry(EntryWriter& writer, const FileEntry& entry) {
    if (writer.play.size >= kPlayFullAt) return kSndFull;
    const EntryKind kind = KindOfFileCode(entry.code);
    if (kind == EntryKind::Foreign) return kSndWriteError;
    if (kind == EntryKind::Note && entry.pitch > kFileMaxPitch) return kSndWriteError;
    if (kind != EntryKind::Separator) {
        writer.pitch_byte = kind == EntryKind::Note ? entry.pitch : kFileRestPitch;
        const auto& units = At(writer.tables.length_units, writer.mode);
        writer.units = RoundUnits(At(units, LengthCodeOfFileCode(entry.code)), writer.toggle);
    }
    if (IsPlayBlockFull(writer.play, kind, writer.units)) return kSndFull;
    AddPair(writer.edit, writer.pitch_byte, entry.code);
    if (kind == EntryKind::Note) {
        EmitPlayRecords(writer.play, writer.pitch_byte, writer.units, kLastRecordBase, kWholeRecordBase);
    } else if (kind == EntryKind::Rest) {
        EmitPlayRecords(writer.play, writer.pitch_byte, writer.units, 0, 0);
    }
    return kSndDone;
}

SndResult Refuse(SndFault* fault, std::size_t offset, std::string reason, int value = -1) {
    if (fault == nullptr) return kSndBadFormat;
    if (value >= 0) reason += ", not " + std::to_string(value);
    *fault = {offset, std::move(reason)};
    return kSndBadFormat;
}

/// Size of the block at the front of the bytes: whole pairs up to and with 255, 255. `closed` = that end mark
/// is there.
std::size_t SizeOfBlock(std::span<const std::uint8_t> bytes, bool& closed) {
    closed = false;
    std::size_t size = 0;
    while (!closed && size + 2 <= bytes.size()) {
        closed = bytes[size] == kEndByte && bytes[size + 1] == kEndByte;
        size += 2;
    }
    return size;
}

/// Finds the block that stands at `start` and is no longer than the editor's buffers.
SndResult FindBlock(std::span<const std::uint8_t> file, std::size_t start, const std::string& name,
                    std::span<const std::uint8_t>& block, SndFault* fault) {
    bool closed = false;
    block = file.subspan(start, std::min(file.size() - start, kLongestBlock));
    block = block.first(SizeOfBlock(block, closed));
    if (closed) return kSndDone;
    if (block.size() == kLongestBlock) {
        return Refuse(fault, start, "the " + name + " block is longer than 1028 bytes");
    }
    return Refuse(fault, start + block.size(), "the file ends before the " + name + " block does");
}

/// What stands between a closed block's header and its end mark.
std::span<const std::uint8_t> RecordsIn(std::span<const std::uint8_t> block) {
    return block.subspan(kBlockHeader, block.size() - kBlockHeader - 2);
}

// The bytes of a closed block's header are looked at in order. An end mark in their place is wrong by itself,
// so none behind it is read.

SndResult CheckPlayHeader(std::span<const std::uint8_t> play, SndFault* fault) {
    if (play[0] != kFormatByte) return Refuse(fault, 0, "the format byte must be 7", play[0]);
    if (play[1] != 0) return Refuse(fault, 1, "this byte must be 0", play[1]);
    if (play[2] < 1 || play[2] > kTempoBytes) {
        return Refuse(fault, 2, "the tempo byte must be 1 to 32", play[2]);
    }
    if (play[3] != 0) return Refuse(fault, 3, "this byte must be 0", play[3]);
    return kSndDone;
}

/// `start` is where the block stands in the file.
SndResult CheckEditHeader(std::span<const std::uint8_t> edit, std::size_t start, std::int16_t& tempo,
                          SndFault* fault) {
    if (edit[0] >= kTimingModes) return Refuse(fault, start, "the timing mode must be 0 to 2", edit[0]);
    if (edit[1] != 0) return Refuse(fault, start + 1, "this byte must be 0", edit[1]);
    const int beats = edit[2] + 256 * edit[3];
    // Given out even when it is refused; what does not fit 16 bits is given as the largest number that does.
    tempo = ToInt16(beats).value_or(32767);
    if (beats < kMinTempo || beats > kMaxTempo) {
        return Refuse(fault, start + 2, "the tempo must be 30 to 640", beats);
    }
    return kSndDone;
}

} // namespace

std::int32_t ModeCostOf(const TimingTables& tables, const FileList& list, int mode) {
    assert(mode >= 0 && mode < kTimingModes);
    std::int32_t cost = 0;
    for (const FileEntry& entry : list) {
        if (entry.code == kEmpty) break;
        const EntryKind kind = KindOfFileCode(entry.code);
        if (kind != EntryKind::Note && kind != EntryKind::Rest) continue;
        cost += At(At(tables.length_cost, mode), LengthCodeOfFileCode(entry.code));
    }
    return cost;
}

int ChooseTimingMode(const TimingTables& tables, const FileList& list, int tempo_index) {
    assert(tempo_index >= 0 && tempo_index < kTempoListSize);
    int chosen = 0;
    std::int32_t best = 32767;
    for (int mode = 0; mode < kTimingModes; ++mode) {
        if (At(At(tables.mode_tempo_bytes, mode), tempo_index) <= 0) continue;
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
    return std::max(std::int16_t{1}, static_cast<std::int16_t>(rounded));
}

SndEncoding EncodeSnd(const TimingTables& tables, std::int16_t tempo, const FileList& list) {
    SndEncoding encoding;
    const int tempo_index = TempoIndexOf(tables, tempo);
    if (tempo_index < 0) {
        encoding.result = kSndNotFound;
        return encoding;
    }
    const int mode = ChooseTimingMode(tables, list, tempo_index);
    EntryWriter writer{.tables = tables, .mode = mode, .play = {}, .edit = {}};
    AddPair(writer.play, kFormatByte, 0);
    AddPair(writer.play, At(At(tables.mode_tempo_bytes, mode), tempo_index), 0);
    AddPair(writer.edit, mode, 0);
    AddPair(writer.edit, tempo % 256, tempo / 256);

    for (int k = 0; k < kMostEntries && At(list, k).code != kEmpty; ++k) {
        encoding.result = WriteEntry(writer, At(list, k));
        if (encoding.result == kSndWriteError) {
            encoding.fault_entry = k;
            return encoding;
        }
        if (encoding.result == kSndFull) break;
    }

    encoding.entries_written = static_cast<std::int16_t>((writer.edit.size - kBlockHeader) / 2);
    if (encoding.result == kSndFull)
        encoding.entries_left_out = CountEntries(list) - encoding.entries_written;
    AddPair(writer.play, kEndByte, kEndByte);
    AddPair(writer.edit, kEndByte, kEndByte);
    for (const Block* block : {&writer.play, &writer.edit}) {
        const auto bytes = std::span(block->bytes).first(block->size);
        encoding.bytes.insert(encoding.bytes.end(), bytes.begin(), bytes.end());
    }
    return encoding;
}

SndResult DecodeSnd(std::span<const std::uint8_t> file, std::int16_t& tempo, FileList& list,
                    std::int16_t* mode, SndFault* fault) {
    if (fault != nullptr) *fault = SndFault{};
    std::span<const std::uint8_t> play;
    std::span<const std::uint8_t> edit;
    SndResult result = FindBlock(file, 0, "play", play, fault);
    if (result == kSndDone) result = FindBlock(file, play.size(), "edit", edit, fault);
    if (result == kSndDone) result = CheckPlayHeader(play, fault);
    if (result == kSndDone) result = CheckEditHeader(edit, play.size(), tempo, fault);
    if (result != kSndDone) return result;

    if (mode != nullptr) *mode = edit[0];
    list.fill(FileEntry{});
    const std::span<const std::uint8_t> records = RecordsIn(edit);
    assert(records.size() / 2 < list.size());
    for (std::size_t k = 0; k < records.size() / 2; ++k)
        list[k] = {records[2 * k + 1], records[2 * k]};
    return kSndDone;
}

bool ReadPlayBlock(std::span<const std::uint8_t> file, PlayBlock& block) {
    bool closed = false;
    const auto play = file.first(SizeOfBlock(file, closed));
    if (!closed || CheckPlayHeader(play, nullptr) != kSndDone) return false;
    block.tempo_byte = play[2];
    block.records = RecordsIn(play);
    return true;
}

} // namespace tonex
