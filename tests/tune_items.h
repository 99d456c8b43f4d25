// A tune's notes and rests as text, for tests of the formats that tunes are read from.
#pragma once

#include "exchange/tune.h"
#include "score/melody_text.h"

#include <cstdio>
#include <string>

namespace tonex::testing {

/// "c5 0.5" an item, in one line; rests are r.
inline std::string ItemsOf(const Tune& tune) {
    std::string text;
    for (const TuneItem& item : tune.items) {
        char length[32];
        std::snprintf(length, sizeof length, "%.4g", item.quarters);
        text += (text.empty() ? "" : ", ") + (item.kind == TuneKind::Note ? PitchTextOf(item.pitch) : "r") +
                " " + length;
    }
    return text;
}

} // namespace tonex::testing
