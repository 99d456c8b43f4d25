// The outlines of all engraved signs, in units of 1/250 of a staff space, y upwards.
#pragma once

#include "pictures/raster.h"

namespace tonex {

inline constexpr float kOutlineUnits = 250; ///< a staff space

// Heads: the centre is at (0, 0). All are 1.05 spaces high.
extern const Outline kBlackHead;                                    ///< kHeadWidth wide, tilted
extern const Outline kHalfHead;                                     ///< the same with a slanting counter
extern const Outline kWholeHead;                                    ///< kWholeHeadWidth wide
inline constexpr float kHeadWidth = 1.18F, kWholeHeadWidth = 1.52F; ///< spaces

// Flags of a stem that points up: the stem's top left is at (0, 0). All are a space wide.
extern const Outline kFlag;          ///< the only flag: 2.75 spaces high
extern const Outline kInnerFlag;     ///< one of several that has another below it: 1.2 spaces high
extern const Outline kLastFlag;      ///< the last of several: 2 spaces high
extern const Outline kShortLastFlag; ///< the same with a shorter tail: 1.7 spaces high

extern const Outline kQuarterRest; ///< around the middle line, from x = 0.08 to 1.08 spaces
extern const Outline kRestHook;    ///< of a short rest: ball and crescent; the stem's top right is at (0, 0)

extern const Outline kTrebleClef; ///< (0, 0) is on the line that the curl encircles, at the left edge
extern const Outline kThree;      ///< an italic digit, one space high from (0, 0) up
extern const Outline kEight;      ///< the same
inline constexpr float kThreeMiddle = 0.39F; ///< how far right of (0, 0) the 3 has its middle, spaces

extern const Outline kQuestionMark; ///< one space high, its middle 56.5 units above (0, 0)

} // namespace tonex
