// MIDI files made byte by byte, and read, for tests.
#pragma once

#include "exchange/midi_reader.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace tonex::testing {

using Bytes = std::vector<std::uint8_t>;

inline void Add(Bytes& bytes, std::uint32_t number, int count) {
    for (int i = count - 1; i >= 0; --i)
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

inline Bytes Header(int format, int tracks, int division) {
    Bytes bytes = {'M', 'T', 'h', 'd'};
    Add(bytes, 6, 4);
    Add(bytes, static_cast<std::uint32_t>(format), 2);
    Add(bytes, static_cast<std::uint32_t>(tracks), 2);
    Add(bytes, static_cast<std::uint32_t>(division), 2);
    return bytes;
}

inline const Bytes kEnd = {0, 0xFF, 0x2F, 0};

inline void AddTrack(Bytes& bytes, const Bytes& events, const Bytes& end = kEnd) {
    for (const char letter : {'M', 'T', 'r', 'k'})
        bytes.push_back(static_cast<std::uint8_t>(letter));
    Add(bytes, static_cast<std::uint32_t>(events.size() + end.size()), 4);
    bytes.insert(bytes.end(), events.begin(), events.end());
    bytes.insert(bytes.end(), end.begin(), end.end());
}

/// A file of one track, 96 ticks a quarter note.
inline Bytes OneTrack(const Bytes& events) {
    Bytes bytes = Header(0, 1, 96);
    AddTrack(bytes, events);
    return bytes;
}

inline MidiFile Read(const Bytes& bytes) {
    MidiFile file;
    MidiFault fault;
    EXPECT_TRUE(ReadMidi(bytes, file, fault)) << fault.offset << ": " << fault.reason;
    return file;
}

inline MidiFault FaultOf(const Bytes& bytes) {
    MidiFile file;
    MidiFault fault;
    EXPECT_FALSE(ReadMidi(bytes, file, fault));
    return fault;
}

inline bool HasRemark(const Remarks& remarks, std::string_view what) {
    for (const auto& [remark, times] : remarks) {
        if (remark == what && times > 0) return true;
    }
    return false;
}

/// "what 2; what else 1"
inline std::string RemarksOf(const Remarks& remarks) {
    std::string text;
    for (const auto& [remark, times] : remarks)
        text += (text.empty() ? "" : "; ") + remark + " " + std::to_string(times);
    return text;
}

} // namespace tonex::testing
