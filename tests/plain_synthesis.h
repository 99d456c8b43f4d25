// The rules of one note, sample by sample, in the plainest words: the model that the fast synthesis must
// equal.
#pragma once

#include "preview/synthesis.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace tonex {

/// The wave table of the editor's sample rate.
inline const WaveTable& Table() {
    static const WaveTable table = [] {
        WaveTable built;
        BuildWaveTable(built, kSampleRate);
        return built;
    }();
    return table;
}

struct PlainNote {
    SynthesisResult result;
    std::vector<std::uint8_t> samples; ///< empty unless the result is Done
};

inline PlainNote PlainNoteSamples(const WaveTable& table, int pitch, int length, int tempo) {
    const int octave = pitch / 12;
    const int pitch_class = pitch % 12;
    const int units = (length & 15) == 0 ? 16 : length & 15;
    const int quarters = length >> 4;
    if (tempo * units * quarters >= 32768) return {SynthesisResult::Overflow, {}};
    const float sound_seconds = static_cast<float>(tempo * units * quarters) / 256.0F;
    const float gap_seconds = static_cast<float>(tempo * units * (4 - quarters)) / 256.0F;
    const double span_seconds = static_cast<double>(sound_seconds + gap_seconds);
    const auto sound_samples =
        static_cast<std::int64_t>(std::floor(static_cast<double>(sound_seconds) * 22050.0));
    const auto last_sample = static_cast<std::int64_t>(std::floor(span_seconds * 22050.0)) - 1;
    const std::int64_t period = At(table.period, pitch_class);
    enum { Sounding, Finishing, Silent } mode = sound_samples == 0 ? Silent : Sounding;
    std::int64_t phase = 0;
    std::int64_t counter = 0;
    PlainNote note{SynthesisResult::Done, {}};
    for (std::int64_t k = 0; k <= last_sample; ++k) {
        if (mode == Silent) {
            note.samples.push_back(128);
        } else {
            if (phase >= 384) return {SynthesisResult::PhaseError, {}};
            note.samples.push_back(At(At(table.wave, pitch_class), static_cast<int>(phase)));
        }
        phase += std::int64_t{1} << octave;
        if (phase >= period) {
            phase -= period;
            if (mode == Finishing) mode = Silent;
        }
        if (counter >= sound_samples && mode == Sounding) mode = Finishing;
        ++counter;
    }
    return note;
}

} // namespace tonex
