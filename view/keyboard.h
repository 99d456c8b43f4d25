// Which pitch a piano key plays, and which key a pitch lights. Pure.
#pragma once

#include <cstdint>
#include <optional>

namespace tonex {

inline constexpr int kWhiteKeys = 29;
inline constexpr int kBlackKeys = 20;
inline constexpr int kPianoKeys = kWhiteKeys + kBlackKeys;
inline constexpr int kWhitesAnOctave = 7;
inline constexpr int kBlacksAnOctave = 5;
inline constexpr std::int16_t kLowestKeyPitch = 27;  ///< c4, white key 0
inline constexpr std::int16_t kHighestKeyPitch = 75; ///< c8, white key 28

enum class KeyKind : std::uint8_t { White, Black };

struct PianoKey {
    KeyKind kind = KeyKind::White;
    std::int16_t index = 0; ///< 0 to 28 white, 0 to 19 black
    bool operator==(const PianoKey&) const = default;
};

/// Pitch of white key 0 to 28.
std::int16_t WhiteKeyPitch(int index);
/// Pitch of black key 0 to 19.
std::int16_t BlackKeyPitch(int index);
/// The key so many half tones above the lowest one, 0 to 48: so the keys lie from left to right.
PianoKey KeyAbove(int half_tones);
/// Widths of the keys in twips: 19 and 15 pixels of the ordinary screen, as whole pixels of this one.
int WhiteKeyWidth(float twips_per_pixel);
int BlackKeyWidth(float twips_per_pixel);
/// The key of a pitch; nothing for a pitch that leaves the keyboard.
std::optional<PianoKey> KeyOfPitch(std::uint16_t pitch);

} // namespace tonex
