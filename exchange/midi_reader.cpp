#include "exchange/midi_reader.h"

#include "score/rows.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace tonex {

namespace {

constexpr std::size_t kChunkHeader = 8;
constexpr std::size_t kFileHeader = 6;
constexpr int kLongestNumber = 4; ///< bytes of a variable-length number
constexpr std::int64_t kLastTick = std::int64_t{1} << 40;
constexpr int kChannels = 16;

/// Bytes read one after another; once something is wrong, it stays so.
struct Bytes {
    std::span<const std::uint8_t> all;
    std::size_t at = 0;
    std::size_t end = all.size(); ///< of the chunk
    bool good = true;
    std::size_t fault_at = 0;
    std::string reason{};
};

void Fail(Bytes& bytes, std::size_t at, std::string reason) {
    if (!bytes.good) return;
    bytes.good = false;
    bytes.fault_at = at;
    bytes.reason = std::move(reason);
}

int TakeByte(Bytes& bytes) {
    if (bytes.at < bytes.end) return bytes.all[bytes.at++];
    Fail(bytes, bytes.at, "an event goes on beyond the end of its track");
    return 0;
}

std::uint32_t TakeNumber(Bytes& bytes, int count) {
    std::uint32_t number = 0;
    for (int i = 0; i < count; ++i)
        number = number << 8 | static_cast<std::uint32_t>(TakeByte(bytes));
    return number;
}

/// Seven bits a byte; all but the last have the eighth set.
std::int64_t TakeVariable(Bytes& bytes) {
    const std::size_t start = bytes.at;
    std::int64_t number = 0;
    for (int i = 0; i < kLongestNumber; ++i) {
        const int byte = TakeByte(bytes);
        number = number << 7 | (byte & 127);
        if (byte < 128) return number;
    }
    Fail(bytes, start, "a variable-length number has more than 4 bytes");
    return 0;
}

bool HasName(std::span<const std::uint8_t> bytes, std::size_t at, std::string_view name) {
    if (bytes.size() < at + name.size()) return false;
    return std::equal(
        name.begin(), name.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at),
        [](char letter, std::uint8_t byte) { return static_cast<std::uint8_t>(letter) == byte; });
}

/// A key is struck or let go.
struct KeyEvent {
    std::int64_t tick;
    std::ptrdiff_t note; ///< -1 = let go
};
using KeyEvents = std::vector<KeyEvent>;

/// A track while it is read.
struct Track {
    int number;
    std::int64_t tick = 0;
    int status = 0;           ///< of the channel message before; 0 = none
    bool interrupted = false; ///< by an event after which the status must not be left out
    bool ended = false;
    std::array<bool, kChannels> has_program{};
    std::array<std::array<KeyEvents, kMidiKeys>, kChannels> keys{};
};

MidiNote& NoteOf(MidiFile& file, std::ptrdiff_t note) {
    return file.notes[static_cast<std::size_t>(note)];
}

/// Gives each stroke an end of its own, the first to the first. False when there are too few.
bool EndEach(MidiFile& file, const KeyEvents& events) {
    std::vector<std::ptrdiff_t> strokes;
    std::size_t ended = 0;
    for (const KeyEvent& event : events) {
        if (event.note >= 0) {
            strokes.push_back(event.note);
        } else if (ended < strokes.size()) {
            NoteOf(file, strokes[ended++]).end = event.tick;
        }
    }
    return ended == strokes.size();
}

/// Lets one end do for all strokes in front of it, and the track's end for the last.
void EndTogether(MidiFile& file, const KeyEvents& events, std::int64_t track_end) {
    std::vector<std::ptrdiff_t> strokes;
    for (const KeyEvent& event : events) {
        if (event.note >= 0) {
            strokes.push_back(event.note);
            continue;
        }
        for (const std::ptrdiff_t stroke : std::exchange(strokes, {}))
            NoteOf(file, stroke).end = event.tick;
    }
    if (!strokes.empty()) Remark(file.remarks, "ended a note with its track");
    for (const std::ptrdiff_t stroke : strokes)
        NoteOf(file, stroke).end = track_end;
}

/// The ends of all strokes of a key. One that is struck again ends there at the latest.
void EndNotes(MidiFile& file, const KeyEvents& events, std::int64_t track_end) {
    if (!EndEach(file, events)) EndTogether(file, events, track_end);
    MidiNote* before = nullptr;
    for (const KeyEvent& event : events) {
        if (event.note < 0) continue;
        if (before != nullptr) before->end = std::min(before->end, event.tick);
        before = &NoteOf(file, event.note);
    }
}

void StartNote(MidiFile& file, Track& track, int channel, int key, std::size_t order) {
    At(At(track.keys, channel), key).push_back({track.tick, static_cast<std::ptrdiff_t>(file.notes.size())});
    file.notes.push_back({track.tick, track.tick, track.number, channel, key, order});
}

void KeepProgram(MidiFile& file, Track& track, int channel, int program) {
    if (std::exchange(At(track.has_program, channel), true)) return;
    file.programs.push_back({track.number, channel, program});
}

/// A data byte. One above 127 is no status here: it is brought down.
int TakeData(Bytes& bytes, MidiFile& file) {
    const int byte = TakeByte(bytes);
    if (byte < 128) return byte;
    Remark(file.remarks, "brought a data byte above 127 down to 127");
    return 127;
}

void TakeChannelMessage(Bytes& bytes, MidiFile& file, Track& track, std::size_t order) {
    const int kind = track.status >> 4;
    const int channel = track.status % kChannels;
    const int first = TakeData(bytes, file);
    if (kind == 0xC) KeepProgram(file, track, channel, first);
    if (kind == 0xC || kind == 0xD) return;
    const int second = TakeData(bytes, file);
    if (!bytes.good) return;
    if (kind == 9 && second > 0) {
        StartNote(file, track, channel, first, order);
    } else if (kind == 8 || kind == 9) {
        At(At(track.keys, channel), first).push_back({track.tick, -1});
    }
}

/// The bytes behind a length that the file gives; empty and failed when there are fewer.
std::span<const std::uint8_t> TakeBlock(Bytes& bytes) {
    const std::size_t start = bytes.at;
    const auto length = static_cast<std::size_t>(TakeVariable(bytes));
    if (!bytes.good) return {};
    if (length > bytes.end - bytes.at) {
        Fail(bytes, start, "a length goes beyond the end of its track");
        return {};
    }
    bytes.at += length;
    return bytes.all.subspan(bytes.at - length, length);
}

void KeepText(MidiFile& file, const Track& track, int kind, std::span<const std::uint8_t> block,
              std::size_t order) {
    const std::size_t size = std::min(block.size(), kMostMidiName);
    std::string text(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(size));
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    file.texts.push_back({track.tick, track.number, kind, std::move(text), order});
}

void KeepTempo(MidiFile& file, const Track& track, std::span<const std::uint8_t> block) {
    if (block.size() < 3) {
        Remark(file.remarks, "left out a tempo that has not three bytes");
        return;
    }
    const int microseconds = block[0] << 16 | block[1] << 8 | block[2];
    if (microseconds > 0) {
        file.tempos.push_back({track.tick, track.number, microseconds});
    } else {
        Remark(file.remarks, "left out a tempo of 0");
    }
}

void TakeMeta(Bytes& bytes, MidiFile& file, Track& track, std::size_t order) {
    constexpr int end = 0x2F, tempo = 0x51;
    const int kind = TakeByte(bytes);
    const auto block = TakeBlock(bytes);
    if (!bytes.good) return;
    if (kind == end) track.ended = true;
    if (kind == tempo) KeepTempo(file, track, block);
    if (kind == kMidiText || kind == kMidiTrackName || kind == kMidiMarker)
        KeepText(file, track, kind, block, order);
}

void TakeEvent(Bytes& bytes, MidiFile& file, Track& track, std::size_t order) {
    track.tick += TakeVariable(bytes);
    if (track.tick > kLastTick) Fail(bytes, bytes.at, "the track is longer than any melody");
    const std::size_t start = bytes.at;
    const int byte = TakeByte(bytes);
    if (!bytes.good) return;
    if (byte == 0xFF) {
        track.interrupted = true;
        TakeMeta(bytes, file, track, order);
    } else if (byte == 0xF0 || byte == 0xF7) {
        track.interrupted = true;
        TakeBlock(bytes);
    } else if (byte >> 4 == 0xF) {
        Fail(bytes, start, "byte " + std::to_string(byte) + " where an event begins");
    } else {
        if (byte < 128) {
            bytes.at = start;
            if (track.status == 0) return Fail(bytes, start, "an event without the status that it needs");
            if (track.interrupted) Remark(file.remarks, "kept a status beyond an event that ends it");
        } else {
            track.status = byte;
        }
        track.interrupted = false;
        TakeChannelMessage(bytes, file, track, order);
    }
}

/// All events of a track. One that the file's end cuts short is read as far as it goes.
void TakeTrack(Bytes& bytes, MidiFile& file, bool cut, std::size_t& order) {
    Track track{file.tracks++};
    while (bytes.good && bytes.at < bytes.end && !track.ended) {
        TakeEvent(bytes, file, track, order);
        if (++order > kMostMidiEvents) {
            Fail(bytes, bytes.at, "more than " + std::to_string(kMostMidiEvents) + " events");
            cut = false;
        }
    }
    if (!bytes.good && cut) bytes.good = true;
    if (!track.ended) Remark(file.remarks, "a track has no end event");
    for (const auto& channel : track.keys) {
        for (const KeyEvents& events : channel)
            EndNotes(file, events, track.tick);
    }
    file.ends.push_back(track.tick);
}

void TakeDivision(Bytes& bytes, MidiFile& file, std::size_t at, int division) {
    if (division == 0) return Fail(bytes, at, "the division is 0");
    if (division < 0x8000) {
        file.ticks_of_quarter = division;
        return;
    }
    const int frames = 256 - (division >> 8);
    const int ticks = division & 255;
    const bool known = frames == 24 || frames == 25 || frames == 29 || frames == 30;
    if (!known || ticks == 0) return Fail(bytes, at, "the division is none of those that are known");
    const double rate = frames == 29 ? 30000.0 / 1001.0 : frames;
    file.seconds_of_tick = 1.0 / (rate * ticks);
}

/// The number of tracks that the header claims.
int TakeHeader(Bytes& bytes, MidiFile& file) {
    const std::size_t start = bytes.at;
    if (!HasName(bytes.all, start, "MThd")) Fail(bytes, start, "\"MThd\" is missing");
    bytes.at += 4;
    const std::uint32_t length = TakeNumber(bytes, 4);
    if (length < kFileHeader || length > bytes.end - bytes.at)
        Fail(bytes, start + 4, "the header's length is " + std::to_string(length));
    const std::size_t header = bytes.at;
    file.format = static_cast<int>(TakeNumber(bytes, 2));
    const int tracks = static_cast<int>(TakeNumber(bytes, 2));
    const int division = static_cast<int>(TakeNumber(bytes, 2));
    if (file.format > 2) Fail(bytes, header, "the format is " + std::to_string(file.format) + ", not 0 to 2");
    TakeDivision(bytes, file, header + 4, division);
    bytes.at = header + length;
    return tracks;
}

void TakeChunk(Bytes& bytes, MidiFile& file, std::size_t file_end, std::size_t& order) {
    const std::size_t start = bytes.at;
    if (file_end - start < kChunkHeader) {
        Remark(file.remarks, "left out bytes behind the last track");
        bytes.at = file_end;
        return;
    }
    const bool track = HasName(bytes.all, start, "MTrk");
    bytes.end = file_end;
    bytes.at += 4;
    const std::uint32_t length = TakeNumber(bytes, 4);
    const bool cut = length > file_end - bytes.at;
    const std::size_t end = cut ? file_end : bytes.at + length;
    bytes.end = end;
    if (cut) Remark(file.remarks, "a chunk goes on beyond the end of the file");
    if (track) {
        TakeTrack(bytes, file, cut, order);
    } else {
        Remark(file.remarks, "left out a chunk that is no track");
    }
    bytes.at = end;
}

/// Where the MIDI file begins and ends: the whole, or the data chunk of a RIFF file.
void FindFile(Bytes& bytes) {
    if (!HasName(bytes.all, 0, "RIFF")) return;
    std::size_t at = 12;
    while (at + kChunkHeader <= bytes.all.size()) {
        std::size_t length = 0;
        for (int i = 3; i >= 0; --i)
            length = length << 8 | bytes.all[at + 4 + static_cast<std::size_t>(i)];
        const std::size_t left = bytes.all.size() - at - kChunkHeader;
        if (HasName(bytes.all, at, "data")) {
            bytes.at = at + kChunkHeader;
            bytes.end = bytes.at + std::min(length, left);
            return;
        }
        if (length >= left) break;
        at += kChunkHeader + length + length % 2;
    }
    Fail(bytes, at, "the RIFF file has no data chunk");
}

void SortByTime(MidiFile& file) {
    std::stable_sort(file.notes.begin(), file.notes.end(),
                     [](const MidiNote& a, const MidiNote& b) { return a.start < b.start; });
    std::stable_sort(file.tempos.begin(), file.tempos.end(),
                     [](const MidiTempo& a, const MidiTempo& b) { return a.tick < b.tick; });
}

} // namespace

bool LooksLikeMidi(std::span<const std::uint8_t> bytes) {
    return HasName(bytes, 0, "MThd") || (HasName(bytes, 0, "RIFF") && HasName(bytes, 8, "RMID"));
}

bool ReadMidi(std::span<const std::uint8_t> all, MidiFile& file, MidiFault& fault) {
    Bytes bytes{all};
    FindFile(bytes);
    const int claimed = TakeHeader(bytes, file);
    const std::size_t file_end = bytes.end;
    std::size_t order = 0;
    while (bytes.good && bytes.at < file_end) {
        if (file.tracks >= kMostMidiTracks) Fail(bytes, bytes.at, "more than 1000 tracks");
        if (bytes.good) TakeChunk(bytes, file, file_end, order);
    }
    if (bytes.good && file.tracks == 0) Fail(bytes, bytes.at, "there is no track");
    if (!bytes.good) {
        fault = {std::min(bytes.fault_at, all.size()), bytes.reason};
        return false;
    }
    if (file.tracks != claimed) Remark(file.remarks, "the header counts other tracks than there are");
    SortByTime(file);
    return true;
}

} // namespace tonex
