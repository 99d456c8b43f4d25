// The outlines of all engraved signs, in units of 1/250 of a staff space, y upwards.
#pragma once

#include "pictures/raster.h"

namespace tonex {

inline constexpr float kOutlineUnits = 250; ///< a staff space

// Heads: the centre is at (0, 0).
extern const Outline kBlackHead; ///< 1.19 spaces wide, tilted
extern const Outline kHalfHead;  ///< the same with a slanting counter
extern const Outline kWholeHead; ///< 1.52 spaces wide

// Flags of a stem that points up: the stem's top left is at (0, 0).
extern const Outline kFlag;      ///< the only flag: 0.71 spaces wide, 1.49 high
extern const Outline kInnerFlag; ///< one of two or three: 0.71 wide, 1 high

extern const Outline kQuarterRest; ///< around the middle line, from x = 0.08 to 1.08 spaces
extern const Outline kRestHook;    ///< of a short rest: ball and crescent; the stem's top right is at (0, 0)

extern const Outline kTrebleClef; ///< (0, 0) is on the line that the curl encircles, at the left edge
extern const Outline kThree;      ///< an italic digit, one space high from (0, 0) up
extern const Outline kEight;      ///< the same

extern const Outline kQuestionMark; ///< one space high, its middle 56.5 units above (0, 0)

} // namespace tonex
