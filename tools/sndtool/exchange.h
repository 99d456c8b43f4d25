// Melodies from other formats and to them.
#pragma once

#include "tools/sndtool/sndtool.h"

#include <optional>

namespace tonex {

/// What a user asks of an import.
struct ImportWish {
    int track = 0;   ///< a MIDI file's track or a text's tune, counted from 1; 0 = not asked for
    int channel = 0; ///< 1 to 16; 0 = not asked for
    double from = 0.0;
    double to = 1e9;       ///< seconds
    std::string transpose; ///< half tones, "fit", or empty
    int octave = 0;
    double speed = 1.0;
    bool exact = false;
    bool as_written = false;
    bool fit = false;
    bool strict = false;
    bool list = false;
    bool as_json = false;
};

struct ExportWish {
    std::string format; ///< "rtttl" or "mid"
    bool nominal = false;
    bool strict = false;
    bool as_json = false;
};

/// Makes SND files from ring tones and MIDI files, or lists what is in them.
int ImportCommand(const Arguments& files, const std::string& output, const ImportWish& wish);

/// Writes SND files as ring tones or MIDI files.
int ExportCommand(const Arguments& files, const std::string& output, const ExportWish& wish);

} // namespace tonex
