#include "score/codes.h"

#include <gtest/gtest.h>

namespace tonex::codes_test {
namespace {

TEST(Codes, CodesAreNotesRestsOrNeither) {
    for (int code = 0; code <= 65535; ++code) {
        const auto cell = static_cast<std::uint16_t>(code);
        EXPECT_EQ(IsNote(cell), code >= 1 && code <= 20) << code;
        EXPECT_EQ(IsRest(cell), code >= 21 && code <= 40) << code;
        EXPECT_EQ(IsSounding(cell), code >= 1 && code <= 32767) << code;
    }
}

TEST(Codes, FileCodesAreNotesRestsSeparatorsOrForeign) {
    for (int code = 0; code <= 65535; ++code) {
        const bool rest = code >= 100 && code < 120;
        const EntryKind expected = code < 20     ? EntryKind::Note
                                   : rest        ? EntryKind::Rest
                                   : code == 200 ? EntryKind::Separator
                                                 : EntryKind::Foreign;
        const auto cell = static_cast<std::uint16_t>(code);
        EXPECT_EQ(KindOfFileCode(cell), expected) << code;
        if (code < 20 || rest) {
            EXPECT_EQ(LengthCodeOfFileCode(cell), code % 100) << code;
        }
    }
    EXPECT_EQ(kFileRestDistance, 79);
}

TEST(Codes, SemitonesCountFromPitchOne) {
    for (int pitch = 1; pitch <= 256; ++pitch)
        EXPECT_EQ(SemitoneOf(pitch), &At(kSemitones, (pitch - 1) % 12)) << pitch;
    EXPECT_EQ(SemitoneOf(27)->letter, 'c');
    EXPECT_EQ(SemitoneOf(0), nullptr) << "remainder -1";
    EXPECT_EQ(SemitoneOf(-10), nullptr) << "remainder -11";
    EXPECT_EQ(SemitoneOf(-11), &kSemitones[0]) << "remainder 0";
    EXPECT_EQ(SemitoneOf(-32768), nullptr);
}

TEST(Codes, TheOctavesNumberChangesBetweenBAndC) {
    const int expected[] = {1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 3};
    for (int pitch = 1; pitch <= 15; ++pitch)
        EXPECT_EQ(OctaveNumberOf(pitch, *SemitoneOf(pitch)), expected[pitch - 1]) << pitch;
    EXPECT_EQ(OctaveNumberOf(27, *SemitoneOf(27)), 4);
}

} // namespace
} // namespace tonex::codes_test
