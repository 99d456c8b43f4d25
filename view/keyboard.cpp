#include "view/keyboard.h"

#include <cassert>
#include <cmath>

namespace tonex {

namespace {

constexpr std::int16_t kWhiteSemitones[7] = {0, 2, 4, 5, 7, 9, 11};
constexpr std::int16_t kBlackSemitones[5] = {1, 3, 6, 8, 10};

// The key within its octave for each semitone above c.
constexpr PianoKey kKeyOfSemitone[12] = {
    {KeyKind::White, 0}, {KeyKind::Black, 0}, {KeyKind::White, 1}, {KeyKind::Black, 1},
    {KeyKind::White, 2}, {KeyKind::White, 3}, {KeyKind::Black, 2}, {KeyKind::White, 4},
    {KeyKind::Black, 3}, {KeyKind::White, 5}, {KeyKind::Black, 4}, {KeyKind::White, 6},
};

// `pixels` of the ordinary screen, of 15 twips each.
int KeyWidth(int pixels, float twips_per_pixel) {
    const float whole_pixels = std::trunc(static_cast<float>(pixels * 15) / twips_per_pixel);
    return static_cast<int>(std::nearbyint(static_cast<double>(whole_pixels * twips_per_pixel)));
}

} // namespace

std::int16_t WhiteKeyPitch(int index) {
    assert(index >= 0 && index < kWhiteKeys);
    return static_cast<std::int16_t>(12 * (index / 7) + kWhiteSemitones[index % 7] + kLowestKeyPitch);
}

std::int16_t BlackKeyPitch(int index) {
    assert(index >= 0 && index < kBlackKeys);
    return static_cast<std::int16_t>(12 * (index / 5) + kBlackSemitones[index % 5] + kLowestKeyPitch);
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
    const int octave = above_lowest / 12;
    PianoKey key = kKeyOfSemitone[above_lowest % 12];
    const int keys_an_octave = key.kind == KeyKind::White ? 7 : 5;
    key.index = static_cast<std::int16_t>(key.index + octave * keys_an_octave);
    return key;
}

PianoKey KeyAbove(int half_tones) {
    assert(half_tones >= 0 && half_tones < kPianoKeys);
    return *KeyOfPitch(static_cast<std::uint16_t>(kLowestKeyPitch + half_tones));
}

} // namespace tonex
