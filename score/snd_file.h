// SND files as bytes: the play block that the organiser plays, then the edit block that the editor loads.
// Pure: bytes in, bytes out.
#pragma once

#include "preview/timing_tables.h"
#include "score/score.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tonex {

inline constexpr int kSndBlockSize = 1029; ///< bytes a block can have at most, its end mark included
inline constexpr std::int16_t kMinTempo = 30;
inline constexpr std::int16_t kMaxTempo = 640;

/// Result codes of the SND reader and writer.
enum SndResult : std::int16_t {
    kSndDone = 0,
    kSndNotFound = -1,   ///< reader: no file at the path; writer: the tempo is not in the tempo list
    kSndBadFormat = -2,  ///< reader: not a valid SND file
    kSndFull = -3,       ///< writer: the play block is full; the entries that fit are written
    kSndWriteError = -4, ///< writer: a pitch or code outside the file's tables, or the disk refused
};

/// Whether a result of the writer means that there is a file: with the whole melody or as much as fits.
constexpr bool IsWritten(SndResult result) {
    return result == kSndDone || result == kSndFull;
}

/// What EncodeSnd made.
struct SndEncoding {
    SndResult result = kSndDone;
    std::vector<std::uint8_t> bytes;  ///< the whole file; empty unless result is kSndDone or kSndFull
    std::int16_t entries_written = 0; ///< entries of the list that are in the file
    int entries_left_out = 0;         ///< kSndFull: the entries behind them, which are not
    int fault_entry = -1;             ///< kSndWriteError: index of the entry that no file can hold
};

/// Where and why DecodeSnd refused.
struct SndFault {
    std::size_t offset = 0; ///< byte offset in the file
    std::string reason;     ///< plain English, empty when the file is good
};

/// The play block's tone records.
struct PlayBlock {
    std::uint8_t tempo_byte = 0;           ///< length of a time unit in 1/64 seconds
    std::span<const std::uint8_t> records; ///< pairs of pitch byte and length byte, the end mark left out
};

/// Most time units of one tone record.
inline constexpr int kUnitsPerRecord = 16;

/// Time units 1 to 16 in a tone record's length byte: its low nibble, where 0 stands for 16.
constexpr int UnitsOfRecord(std::uint8_t length_byte) {
    const int nibble = length_byte & 15;
    return nibble == 0 ? kUnitsPerRecord : nibble;
}

/// The cost of a melody in one timing mode: the sum of the length costs of its notes and rests.
std::int32_t ModeCostOf(const TimingTables& tables, const FileList& list, int mode);

/// The timing mode the writer chooses for a tempo index: the cheapest that can express the tempo, ties to the
/// lower mode number.
int ChooseTimingMode(const TimingTables& tables, const FileList& list, int tempo_index);

/// A duration in whole time units, at least 1. `toggle` flips on durations in the band between 0.4 and 0.6;
/// both of its settings round down (kept as it is).
std::int16_t RoundUnits(float units, int& toggle);

/// Encodes a melody. Results: kSndDone, kSndNotFound (tempo not in the list), kSndFull, kSndWriteError.
SndEncoding EncodeSnd(const TimingTables& tables, std::int16_t tempo, const FileList& list);

/// Decodes a file. Results: kSndDone or kSndBadFormat. `tempo` is given out even when it fails its range.
/// `mode` and `fault` may be null.
SndResult DecodeSnd(std::span<const std::uint8_t> file, std::int16_t& tempo, FileList& list,
                    std::int16_t* mode = nullptr, SndFault* fault = nullptr);

/// Finds the play block, which may be of any length and alone, as a player needs no more. False when its
/// header is not 7, 0, 1 to 32, 0 or the end mark 255, 255 is missing.
bool ReadPlayBlock(std::span<const std::uint8_t> file, PlayBlock& block);

} // namespace tonex
