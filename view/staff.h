// How entries stand on the staff: which picture, where its head is, which ledger lines it needs. Pure.
#pragma once

#include "view/measures.h"

#include <cstdint>

namespace tonex {

/// Number of a slot's picture: 1 to 20 notes with stem up, 21 to 40 rests, 41 to 57 notes with stem down, 58
/// bar line, 59 the sign of an entry that the editor does not know; 0 for an empty slot.
std::int16_t PictureOf(std::uint16_t code, std::uint16_t pitch);

/// The offset of every staff position, in twips, from the space between two staff lines and the screen's
/// scale: 0 at 15 twips a pixel, 100 at 7.5.
std::int16_t StaffOffsetOf(int line_space, float twips_per_pixel_y);

/// Vertical place of the centre of a note head in the strip for a staff position, in twips: the same at every
/// scale, because the offset that the position contains is taken out again.
int HeadCentreOf(std::int16_t staff_position, std::int16_t staff_offset);

/// Where a picture of the strip stands whose box begins at `top`, in twips below the panel's upper edge: the
/// centre of a note's head, the middle line for rests and for what the editor does not know, whatever pitch
/// that may have, the upper end of the bar line.
int PictureStandsAt(int picture, std::int16_t top, std::int16_t staff_offset);

/// Ledger lines that a note in the strip needs.
struct LedgerLines {
    int first_y = 0; ///< of the line nearest to the staff, in the strip's coordinates, twips
    int step_y = 0;  ///< to the next one: -120 above the staff, 120 below it
    int count = 0;
};

/// The ledger lines of a note whose head has its centre at the height `head`.
constexpr LedgerLines LedgerLinesOf(int head) {
    constexpr int kAbove = kTopStaffLine - kStaffSpace, kBelow = kBottomStaffLine + kStaffSpace;
    if (head <= kAbove) return {kAbove, -kStaffSpace, (kTopStaffLine - head) / kStaffSpace};
    if (head >= kBelow) return {kBelow, kStaffSpace, (head - kBottomStaffLine) / kStaffSpace};
    return {};
}

} // namespace tonex
