#include "view/keyboard.h"

#include "score/codes.h"

#include <array>
#include <cassert>
#include <cmath>

namespace tonex {

namespace {

/// The keys of the lowest octave; the others are the same higher up.
struct OctaveKeys {
    std::array<std::int16_t, kWhitesAnOctave> white{}; ///< pitches
    std::array<std::int16_t, kBlacksAnOctave> black{};
    std::array<PianoKey, kOctave> keys{}; ///< by half tones above the lowest key
};

constexpr OctaveKeys kLowestOctave = [] {
    OctaveKeys octave;
    std::int16_t whites = 0;
    std::int16_t blacks = 0;
    for (int above = 0; above < kOctave; ++above) {
        const auto pitch = static_cast<std::int16_t>(kLowestKeyPitch + above);
        const bool black = SemitoneOf(pitch)->sharp;
        At(octave.keys, above) = black ? PianoKey{KeyKind::Black, blacks} : PianoKey{KeyKind::White, whites};
        (black ? At(octave.black, blacks++) : At(octave.white, whites++)) = pitch;
    }
    return octave;
}();

/// Pitch of the key `index` of a kind, whose keys in the lowest octave are given.
template <class Pitches> std::int16_t PitchOf(const Pitches& lowest, int index) {
    const int keys = static_cast<int>(lowest.size());
    return static_cast<std::int16_t>(At(lowest, index % keys) + kOctave * (index / keys));
}

// `pixels` of the ordinary screen, of 15 twips each.
int KeyWidth(int pixels, float twips_per_pixel) {
    const float whole_pixels = std::trunc(static_cast<float>(pixels * 15) / twips_per_pixel);
    return static_cast<int>(std::nearbyint(static_cast<double>(whole_pixels * twips_per_pixel)));
}

} // namespace

std::int16_t WhiteKeyPitch(int index) {
    assert(index >= 0 && index < kWhiteKeys);
    return PitchOf(kLowestOctave.white, index);
}

std::int16_t BlackKeyPitch(int index) {
    assert(index >= 0 && index < kBlackKeys);
    return PitchOf(kLowestOctave.black, index);
}

int WhiteKeyWidth(float twips_per_pixel) {
    return KeyWidth(19, twips_per_pixel);
}

int BlackKeyWidth(float twips_per_pixel) {
    return KeyWidth(15, twips_per_pixel);
}

std::optional<PianoKey> KeyOfPitch(std::uint16_t pitch) {
    if (pitch < kLowestKeyPitch || pitch > kHighestKeyPitch) return std::nullopt;
    const int above_lowest = pitch - kLowestKeyPitch;
    PianoKey key = At(kLowestOctave.keys, above_lowest % kOctave);
    const int keys_an_octave = key.kind == KeyKind::White ? kWhitesAnOctave : kBlacksAnOctave;
    key.index = static_cast<std::int16_t>(key.index + above_lowest / kOctave * keys_an_octave);
    return key;
}

PianoKey KeyAbove(int half_tones) {
    assert(half_tones >= 0 && half_tones < kPianoKeys);
    return *KeyOfPitch(static_cast<std::uint16_t>(kLowestKeyPitch + half_tones));
}

} // namespace tonex
