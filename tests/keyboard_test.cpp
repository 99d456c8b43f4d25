#include "view/keyboard.h"

#include <gtest/gtest.h>

namespace tonex::keyboard_test {
namespace {

TEST(Keyboard, WhiteKeyPitches) {
    const std::int16_t expected[29] = {27, 29, 31, 32, 34, 36, 38, 39, 41, 43, 44, 46, 48, 50, 51,
                                       53, 55, 56, 58, 60, 62, 63, 65, 67, 68, 70, 72, 74, 75};
    for (int i = 0; i < kWhiteKeys; ++i)
        EXPECT_EQ(WhiteKeyPitch(i), expected[i]) << "white key " << i;
}

TEST(Keyboard, BlackKeyPitches) {
    const std::int16_t expected[20] = {28, 30, 33, 35, 37, 40, 42, 45, 47, 49,
                                       52, 54, 57, 59, 61, 64, 66, 69, 71, 73};
    for (int i = 0; i < kBlackKeys; ++i)
        EXPECT_EQ(BlackKeyPitch(i), expected[i]) << "black key " << i;
}

TEST(Keyboard, EveryKeyIsFoundByItsPitch) {
    for (std::int16_t i = 0; i < kWhiteKeys; ++i) {
        const auto key = KeyOfPitch(static_cast<std::uint16_t>(WhiteKeyPitch(i)));
        ASSERT_TRUE(key.has_value());
        EXPECT_EQ(*key, (PianoKey{KeyKind::White, i}));
    }
    for (std::int16_t i = 0; i < kBlackKeys; ++i) {
        const auto key = KeyOfPitch(static_cast<std::uint16_t>(BlackKeyPitch(i)));
        ASSERT_TRUE(key.has_value());
        EXPECT_EQ(*key, (PianoKey{KeyKind::Black, i}));
    }
}

TEST(Keyboard, APitchThatLeavesThePianoHasNoKey) {
    int keys = 0;
    for (int pitch = 0; pitch <= 65535; ++pitch) {
        if (KeyOfPitch(static_cast<std::uint16_t>(pitch))) ++keys;
    }
    EXPECT_EQ(keys, 49);
    EXPECT_FALSE(KeyOfPitch(26));
    EXPECT_FALSE(KeyOfPitch(76));
    EXPECT_FALSE(KeyOfPitch(65535));
}

TEST(Keyboard, KeyWidthsAreWholePixelsAtEveryScale) {
    const struct {
        float scale;
        int white, black;
    } cases[] = {{15, 285, 225}, {12, 276, 216}, {10, 280, 220}, {7.5f, 285, 225}};
    for (const auto& [scale, white, black] : cases) {
        EXPECT_EQ(WhiteKeyWidth(scale), white) << scale;
        EXPECT_EQ(BlackKeyWidth(scale), black) << scale;
    }
}

} // namespace
} // namespace tonex::keyboard_test
