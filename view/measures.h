// Lengths that several rooms place and draw by, in twips (1/1440 inch; 15 are a pixel of the ordinary
// screen). Pure.
#pragma once

#include "score/score.h"

namespace tonex {

// The score grid, and the strip of pictures above it: a picture over each column.
inline constexpr int kGridColumnsShown = kStripPictures; ///< columns that the grid shows at once
inline constexpr int kColumnWidth = 390;
inline constexpr int kPictureWidth = 300;
inline constexpr int kPictureHeight = 480;

// The staff. Heights count from the top of its panel.
inline constexpr int kStaffSpace = 2 * kStepHeight; ///< between two lines
inline constexpr int kTopStaffLine = 1170;
inline constexpr int kBottomStaffLine = kTopStaffLine + 4 * kStaffSpace;
inline constexpr int kMiddleStaffLine = kTopStaffLine + 2 * kStaffSpace;
/// The centre of a note's head in its picture's box, before the staff offset (0 at 100 %, 100 at 200 %) is
/// taken away.
inline constexpr int kHeadCentre = 270;

/// The widest caption of a key: as wide as a white key of the ordinary screen.
inline constexpr int kKeyLabelWidth = 285;

} // namespace tonex
