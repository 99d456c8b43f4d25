// Where everything stands in the main window. All lengths in twips, so that a scale only changes the pixels.
#pragma once

namespace tonex {

struct sndmain;

inline constexpr int kMargin = 180;
inline constexpr int kToolbarHeight = 540;
inline constexpr int kClefWidth = 720;   ///< staff in front of the first picture
inline constexpr int kColumnWidth = 390; ///< of a grid column and of the strip's pitch
inline constexpr int kImageInset = 15;   ///< from a column's left edge to its picture, before the offset
inline constexpr int kStaffPanelHeight = 2520;
inline constexpr int kMinClientWidth = 2 * kMargin + kClefWidth + 30 * kColumnWidth + 60;
inline constexpr int kMinClientHeight = 7650;

/// Places every control for a client area of the size given (twips, at least the minimum): the content is
/// centred; what is left in height goes to the piano.
void LayoutWindow(sndmain& window, int client_width, int client_height);

} // namespace tonex
