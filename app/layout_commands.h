// Where everything stands in the main window, and in which order the Tab key reaches it. All lengths in
// twips, so that a scale only changes the pixels.
#pragma once

#include "platform/screen.h"
#include "view/measures.h"

#include <cstdint>
#include <vector>

namespace tonex {

struct sndmain;

inline constexpr int kMargin = 180;
inline constexpr int kToolbarHeight = 540;
inline constexpr int kClefWidth = 720; ///< staff in front of the first picture
inline constexpr int kStripRight = kClefWidth + kStripPictures * kColumnWidth; ///< in the staff panel
inline constexpr int kStaffEnd = 60; ///< of the staff panel right of the last column
inline constexpr int kStaffPanelWidth = kStripRight + kStaffEnd;
inline constexpr int kMinClientWidth = kStaffPanelWidth + 2 * kMargin;
inline constexpr int kMinClientHeight = 7650; ///< with a scroll bar of kScrollBarHeight
inline constexpr int kScrollBarHeight = 255;

/// Places every control for a client area of the size given (twips, at least the minimum): the content is
/// centred; what is left in height goes to the piano. A scroll bar higher than kScrollBarHeight gets its
/// room. Numbers what the Tab key reaches.
void LayoutWindow(sndmain& window, int client_width, int client_height,
                  int scroll_bar_height = kScrollBarHeight);

// How large the content is drawn. Its measure is the staff space, in pixels: lines and note heads stay on
// whole pixels, and everything else follows.

/// The space on the screen's own scale.
float OwnStaffSpace(const ScreenMeasures& screen);
/// Below it notes can not be told apart.
inline constexpr float kSmallestStaffSpace = 5;

/// A size in pixels.
struct PixelSize {
    int width = 0, height = 0;
};
/// What the content needs of a window at a staff space. `scroll_bar` is the height that the system gives the
/// grid's scroll bar, in pixels: it does not follow.
PixelSize ContentSize(const ScreenMeasures& screen, float staff_space, int scroll_bar);
/// The largest staff space at which the content fits a client area: larger than the screen's own by two
/// pixels a step, up to four times that; smaller by one, down to kSmallestStaffSpace, at which it may be cut.
float FittingStaffSpace(const ScreenMeasures& screen, PixelSize client, int scroll_bar);

/// Works StaffOffset out from the screen's scale and the first two staff lines, hides the strip's pictures
/// and moves each right by the offset (horizontal by a vertical amount; kept as it is). Run once, at set-up.
void ComputeStaffOffset(sndmain& window);

/// Captions the piano keys in the current name mode and places each label at its key.
void LayoutKeyLabels(sndmain& window);

/// What holds the keyboard: some panes have a Tab stop for each item, the others keep their own place.
enum class Pane : std::uint8_t { grdScore, cbtNote, TempoCombo, Keys, Toolbar1, imgNote };
inline constexpr int kWholePane = -1;

/// A place that the Tab key reaches.
struct TabStop {
    std::int16_t TabIndex;
    Pane pane;
    int item; ///< of cbtNote its place there, of the keys half tones above the lowest; or kWholePane
    bool operator==(const TabStop&) const = default;
};

/// All Tab stops in the order of their TabIndex.
std::vector<TabStop> TabOrder(const sndmain& window);

} // namespace tonex
