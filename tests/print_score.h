// How failing tests show a score's entries.
#pragma once

#include "score/int16.h"
#include "score/score.h"

#include <ostream>

namespace tonex {

inline void PrintTo(const Entry& entry, std::ostream* out) {
    *out << "{code " << entry.code << ", pitch " << entry.pitch << ", position " << AsSigned(entry.position)
         << "}";
}

inline void PrintTo(const FileEntry& entry, std::ostream* out) {
    *out << "{code " << entry.code << ", pitch " << entry.pitch << "}";
}

} // namespace tonex
