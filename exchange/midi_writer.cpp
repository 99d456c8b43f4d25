#include "exchange/midi_writer.h"

#include "exchange/midi_reader.h"
#include "exchange/played.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tonex {

namespace {

constexpr int kStrength = 100;   ///< of every note, of 127
constexpr int kHighestByte = 93; ///< pitch byte of MIDI's 127
constexpr int kKeyOfByteZero = 34;
/// By timing mode: ticks of a time unit, and microseconds of a quarter note at tempo byte 1. The quarter note
/// has 480 ticks in all of them.
constexpr std::array<int, kTimingModes> kTicksOfUnit = {60, 40, 80};
constexpr std::array<int, kTimingModes> kMicrosecondsOfQuarter = {125000, 187500, 93750};

struct Writer {
    std::vector<std::uint8_t> track;
    std::int64_t tick = 0;    ///< of the place that is reached in the melody
    std::int64_t written = 0; ///< of the last event
};

void AddNumber(std::vector<std::uint8_t>& bytes, std::uint32_t number, int count) {
    for (int i = count - 1; i >= 0; --i)
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

/// Seven bits a byte, the highest first; `mark` is the eighth bit of the last one.
void AddVariable(std::vector<std::uint8_t>& bytes, std::int64_t number, int mark = 0) {
    if (number > 127) AddVariable(bytes, number >> 7, 128);
    bytes.push_back(static_cast<std::uint8_t>((number & 127) | mark));
}

/// The time since the last event, in front of one that stands at `tick`.
void AddTime(Writer& writer, std::int64_t tick) {
    AddVariable(writer.track, tick - writer.written);
    writer.written = tick;
}

void AddText(Writer& writer, int kind, std::string_view text) {
    AddTime(writer, writer.tick);
    writer.track.push_back(0xFF);
    writer.track.push_back(static_cast<std::uint8_t>(kind));
    AddVariable(writer.track, static_cast<std::int64_t>(text.size()));
    writer.track.insert(writer.track.end(), text.begin(), text.end());
}

void AddTempo(Writer& writer, int microseconds) {
    AddTime(writer, writer.tick);
    for (const int byte : {0xFF, 0x51, 3})
        writer.track.push_back(static_cast<std::uint8_t>(byte));
    AddNumber(writer.track, static_cast<std::uint32_t>(microseconds), 3);
}

/// A note from where the melody is, of `sounding` ticks.
void AddNote(Writer& writer, int pitch_byte, std::int64_t sounding) {
    const auto key = static_cast<std::uint8_t>(pitch_byte + kKeyOfByteZero);
    AddTime(writer, writer.tick);
    writer.track.insert(writer.track.end(), {0x90, key, kStrength});
    AddTime(writer, writer.tick + sounding);
    writer.track.insert(writer.track.end(), {0x80, key, 0});
}

MidiBytes Finish(Writer& writer) {
    MidiBytes result;
    result.ticks = writer.tick;
    AddTime(writer, writer.tick);
    writer.track.insert(writer.track.end(), {0xFF, 0x2F, 0});
    for (const char letter : std::string_view("MThd"))
        result.bytes.push_back(static_cast<std::uint8_t>(letter));
    AddNumber(result.bytes, 6, 4);
    AddNumber(result.bytes, 0, 2);
    AddNumber(result.bytes, 1, 2);
    AddNumber(result.bytes, kMidiTicksOfQuarter, 2);
    for (const char letter : std::string_view("MTrk"))
        result.bytes.push_back(static_cast<std::uint8_t>(letter));
    AddNumber(result.bytes, static_cast<std::uint32_t>(writer.track.size()), 4);
    result.bytes.insert(result.bytes.end(), writer.track.begin(), writer.track.end());
    return result;
}

/// Why MIDI can not hold the melody; empty when it can.
std::string ReasonAgainstMidi(const Melody& melody) {
    const int count = CountEntries(melody.list);
    for (int i = 0; i < count; ++i) {
        const FileEntry& entry = At(melody.list, i);
        const std::string number = "entry " + std::to_string(i + 1);
        if (KindOfFileCode(entry.code) == EntryKind::Foreign)
            return number + " has the unknown code " + std::to_string(entry.code);
        if (KindOfFileCode(entry.code) == EntryKind::Note && entry.pitch > kHighestByte)
            return number + " is " + PitchTextOf(entry.pitch + 1) + "; MIDI ends at " +
                   PitchTextOf(kHighestByte + 1);
    }
    return {};
}

/// Ticks that a record sounds: quarters of it, all when the tone goes on.
int SoundingTicks(std::uint8_t length_byte, int ticks_of_unit) {
    const int quarters = std::min(4, length_byte >> 4);
    return UnitsOfRecord(length_byte) * ticks_of_unit * quarters / 4;
}

/// The records of one entry as one note, or none where they are silent.
void AddRecords(Writer& writer, const PlayBlock& block, std::size_t& record, int units, int ticks_of_unit) {
    const std::int64_t start = writer.tick;
    std::int64_t sounding = 0;
    std::int64_t whole = 0;
    const int pitch_byte = block.records[2 * record];
    while (units > 0) {
        const std::uint8_t length = block.records[2 * record++ + 1];
        const int sounds = SoundingTicks(length, ticks_of_unit);
        if (sounds != 0) sounding = whole + sounds;
        whole += std::int64_t{UnitsOfRecord(length)} * ticks_of_unit;
        units -= UnitsOfRecord(length);
    }
    if (sounding != 0) AddNote(writer, pitch_byte, sounding);
    writer.tick = start + whole;
}

} // namespace

MidiBytes WritePlayedMidi(const PlayBlock& block, const Melody& melody, int mode,
                          const std::vector<int>& units, std::string_view name) {
    MidiBytes refused;
    for (std::size_t i = 0; i < block.records.size() / 2; ++i) {
        if (block.records[2 * i] <= kHighestByte || block.records[2 * i + 1] < 16) continue;
        refused.reason = "record " + std::to_string(i + 1) + " is higher than MIDI goes";
        return refused;
    }
    Writer writer;
    AddText(writer, kMidiTrackName, name);
    AddTempo(writer, At(kMicrosecondsOfQuarter, mode) * block.tempo_byte);
    std::size_t record = 0;
    for (int i = 0; i < static_cast<int>(units.size()); ++i) {
        if (At(melody.list, i).code == kFileSeparator) {
            AddText(writer, kMidiMarker, "|");
        } else {
            AddRecords(writer, block, record, At(units, i), At(kTicksOfUnit, mode));
        }
    }
    return Finish(writer);
}

MidiBytes WriteNominalMidi(const Melody& melody, std::string_view name) {
    MidiBytes refused;
    refused.reason = ReasonAgainstMidi(melody);
    if (!refused.reason.empty()) return refused;
    Writer writer;
    AddText(writer, kMidiTrackName, name);
    AddText(writer, kMidiText, "sndtool tempo " + std::to_string(melody.tempo));
    AddTempo(writer, static_cast<int>(std::lround(60e6 / melody.tempo)));
    const int count = CountEntries(melody.list);
    for (int i = 0; i < count; ++i) {
        const FileEntry& entry = At(melody.list, i);
        const EntryKind kind = KindOfFileCode(entry.code);
        if (kind == EntryKind::Separator) {
            AddText(writer, kMidiMarker, "|");
            continue;
        }
        const double quarters = QuartersOf(LengthCodeOfFileCode(entry.code));
        const std::int64_t ticks = std::lround(quarters * kMidiTicksOfQuarter);
        if (kind == EntryKind::Rest) AddText(writer, kMidiMarker, "r");
        if (kind == EntryKind::Note) AddNote(writer, entry.pitch, ticks);
        writer.tick += ticks;
    }
    return Finish(writer);
}

} // namespace tonex
