#include "view/staff.h"

#include "score/score.h"

#include <gtest/gtest.h>

namespace tonex::staff_test {
namespace {

// --- Pictures

TEST(Picture, StemsGoDownFromPitch50) {
    EXPECT_EQ(PictureOf(5, 49), 5);
    EXPECT_EQ(PictureOf(5, 50), 45);
}

TEST(Picture, ARestUsesItsOwnWhateverItsPitch) {
    EXPECT_EQ(PictureOf(25, 65535), 25);
    EXPECT_EQ(PictureOf(25, 60), 25);
}

TEST(Picture, WholeNotesHaveNoStem) {
    EXPECT_EQ(PictureOf(17, 60), 57);
    EXPECT_EQ(PictureOf(18, 60), 18);
    EXPECT_EQ(PictureOf(20, 60), 20);
}

TEST(Picture, ThePitchIsReadAsASignedNumber) {
    EXPECT_EQ(PictureOf(5, 65000), 5);
}

TEST(Picture, EveryCodeHasAPictureOf59OrNone) {
    const std::uint16_t pitches[] = {27, 50, 75, 200, 65535};
    for (int code = 0; code <= 65535; ++code) {
        for (const std::uint16_t pitch : pitches) {
            const int picture = PictureOf(static_cast<std::uint16_t>(code), pitch);
            if (code == 0) {
                ASSERT_EQ(picture, 58);
            } else if (code <= 40) {
                ASSERT_TRUE(picture == code || (code <= 17 && picture == code + 40));
            } else if (code == 65535) {
                ASSERT_EQ(picture, 0);
            } else {
                ASSERT_EQ(picture, 59) << "foreign code " << code;
            }
        }
    }
}

// --- Ledger lines

LedgerLines LedgersOf(std::uint16_t pitch, std::int16_t staff_offset) {
    return LedgerLinesOf(HeadCentreOf(StaffPositionOf(pitch, staff_offset).value(), staff_offset));
}

TEST(LedgerLines, C4HasFourBelowTheStaff) {
    const auto lines = LedgersOf(27, 0);
    EXPECT_EQ(lines.first_y, 1770);
    EXPECT_EQ(lines.step_y, 120);
    EXPECT_EQ(lines.count, 4);
}

TEST(LedgerLines, C8HasFiveAboveTheStaff) {
    const auto lines = LedgersOf(75, 0);
    EXPECT_EQ(lines.first_y, 1050);
    EXPECT_EQ(lines.step_y, -120);
    EXPECT_EQ(lines.count, 5);
}

TEST(LedgerLines, FromD5ToG6ThereAreNone) {
    for (std::uint16_t pitch = 41; pitch <= 58; ++pitch) {
        EXPECT_EQ(LedgersOf(pitch, 0).count, 0) << pitch;
    }
    EXPECT_EQ(LedgersOf(39, 0).count, 1) << "c5";
    EXPECT_EQ(LedgersOf(60, 0).count, 1) << "a6";
}

TEST(LedgerLines, AreTheSameAtEveryScale) {
    for (std::uint16_t pitch = 27; pitch <= 75; ++pitch) {
        const auto plain = LedgersOf(pitch, 0);
        const auto scaled = LedgersOf(pitch, 67);
        EXPECT_EQ(plain.count, scaled.count);
        EXPECT_EQ(plain.first_y, scaled.first_y);
    }
}

// --- Where pictures stand

TEST(Picture, NotesStandAtTheirHeadAndRestsAtTheMiddleLine) {
    EXPECT_EQ(PictureStandsAt(11, 1140, 0), 1410);
    EXPECT_EQ(PictureStandsAt(51, 1240, 100), 1410);
    EXPECT_EQ(PictureStandsAt(31, 1200, 0), 1410);
    EXPECT_EQ(PictureStandsAt(31, 1200, 100), 1410) << "rests have no offset";
    EXPECT_EQ(PictureStandsAt(58, 1170, 100), 1170) << "the bar line begins with the first line";
    EXPECT_EQ(PictureStandsAt(59, 32000, 0), 1410) << "whatever pitch an unknown entry may have";
}

// --- The staff offset

TEST(StaffOffset, GrowsWithTheScale) {
    EXPECT_EQ(StaffOffsetOf(120, 15), 0);
    EXPECT_EQ(StaffOffsetOf(120, 12), 40) << "(240 - 192) * 5 / 6";
    EXPECT_EQ(StaffOffsetOf(120, 10), 67) << "(240 - 160) * 5 / 6 = 66.7";
    EXPECT_EQ(StaffOffsetOf(120, 7.5f), 100) << "(240 - 120) * 5 / 6";
}

TEST(StaffOffset, IsTakenOutAgainWhereTheHeadIsDrawn) {
    const std::int16_t offsets[] = {0, 40, 67, 100};
    for (const std::int16_t offset : offsets) {
        const auto head = [&](std::uint16_t pitch) {
            return HeadCentreOf(StaffPositionOf(pitch, offset).value(), offset);
        };
        EXPECT_EQ(head(43), 1650) << "e5 on the lowest line";
        EXPECT_EQ(head(46), 1530) << "g5";
        EXPECT_EQ(head(50), 1410) << "b5";
        EXPECT_EQ(head(53), 1290) << "d6";
        EXPECT_EQ(head(56), 1170) << "f6 on the highest line";
        EXPECT_EQ(head(44), 1590) << "f5 in the lowest space";
    }
}

} // namespace
} // namespace tonex::staff_test
