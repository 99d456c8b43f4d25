#include "app/layout_commands.h"

#include "app/sndmain.h"
#include "pictures/glyphs.h"
#include "view/drawing_commands.h"

#include <algorithm>

namespace tonex {

namespace {

// Twips; 15 are a pixel of the ordinary screen.
constexpr int kGap = 180;         ///< between the blocks of the window
constexpr int kToolbarGap = 60;   ///< below the toolbar
constexpr int kStaffEnd = 60;     ///< of the panel right of the last picture
constexpr int kStaffInset = 30;   ///< between the panel's edges and the staff lines
constexpr int kPictureTop = 1140; ///< in the middle of the panel, until a slot is shown
constexpr int kGridRowHeight = 390;
constexpr int kScrollBarHeight = 255;
constexpr int kButtonWidth = 465;
constexpr int kButtonHeight = 510;
constexpr int kButtonRowGap = 30;
constexpr int kFamilyGap = 90; ///< between lengths of different note values
constexpr int kCaptionWidth = 705;
constexpr int kTempoBoxWidth = 975;
constexpr int kTempoNameGap = 75;
constexpr int kTextHeight = 225;
constexpr int kTempoBoxHeight = 315;
constexpr int kBlackLabelWidth = 285;
constexpr int kKeyLabelHeight = 225;
constexpr int kWhiteLabelInset = 45; ///< between a label and the lower end of its key
constexpr int kMaxKeyHeight = 3600;

constexpr int kPanelWidth = kClefWidth + kStripPictures * kColumnWidth + kStaffEnd;
constexpr int kStripRight = kClefWidth + kStripPictures * kColumnWidth; ///< in the panel

std::size_t At(int index) {
    return static_cast<std::size_t>(index);
}

// Length buttons to the left of a column that start a family: after the thirty-second, and after each group
// of triplet, plain, dotted and double-dotted.
int FamiliesBefore(int column) {
    return (column + 3) / 4;
}

int LengthButtonLeft(int column) {
    return column * kButtonWidth + FamiliesBefore(column) * kFamilyGap;
}

constexpr int kLengthButtonsWidth = 20 * kButtonWidth + 5 * kFamilyGap;
constexpr int kLengthButtonsHeight = 2 * kButtonHeight + kButtonRowGap;

void PlaceStaff(sndmain& window, int left, int top) {
    window.picStaff = {left, top, kPanelWidth, kStaffPanelHeight};
    for (int i = 0; i < 5; ++i) {
        const int y = kTopStaffLine + i * kStaffSpace;
        window.Line1[At(i)] = {kClefWidth, kStripRight, y};
        window.linSub[At(i)] = {kStaffInset, kClefWidth, y};
        window.linSub[At(9 - i)] = {kStripRight, kPanelWidth - kStaffInset, y};
    }
    for (int i = 0; i < kStripPictures; ++i) {
        Rect& place = window.imgNote[At(i)].place;
        // The offset is part of the place from ComputeStaffOffset on; before, it is 0.
        place.Left = kClefWidth + i * kColumnWidth + kImageInset + window.StaffOffset;
        if (place.Width != 0) continue;
        place.Top = kPictureTop;
        place.Width = kPictureWidth;
        place.Height = kPictureHeight;
    }
}

void PlaceGrid(sndmain& window, int left, int top) {
    // As wide as the staff panel above it; the columns end a little before.
    const int width = kGridColumnsShown * kColumnWidth + kStaffEnd;
    window.grdScore.place = {left + kClefWidth, top, width, kGridRowHeight + kScrollBarHeight};
}

// One row says the tempo and its name, the row below it the length that a key click gives: they stand beside
// the rows of notes and rests.
void PlaceTempo(sndmain& window, int left, int top) {
    const int box_left = left + kCaptionWidth;
    const int name_left = box_left + kTempoBoxWidth + kTempoNameGap;
    const int buttons_left = left + kPanelWidth - kLengthButtonsWidth;
    const int label_top = top + (kButtonHeight - kTextHeight) / 2;
    window.Label2.place = {left, label_top, kCaptionWidth, kTextHeight};
    window.TempoCombo.place = {box_left, top + (kButtonHeight - kTempoBoxHeight) / 2, kTempoBoxWidth,
                               kTempoBoxHeight};
    window.lblTempo.place = {name_left, label_top, buttons_left - name_left, kTextHeight};
    const int second_row = top + kButtonHeight + kButtonRowGap;
    window.Label3.place = {left, second_row + (kButtonHeight - kTextHeight) / 2, kCaptionWidth, kTextHeight};
    window.imgNow.place = {box_left, second_row, kButtonWidth, kButtonHeight};
}

void PlaceLengthButtons(sndmain& window, int left, int top) {
    const int rest_top = top + kButtonHeight + kButtonRowGap;
    for (int column = 0; column < 20; ++column) {
        const int x = left + LengthButtonLeft(column);
        window.cbtNote[At(column)].place = {x, top, kButtonWidth, kButtonHeight};
        window.cbtNote[At(column + 20)].place = {x, rest_top, kButtonWidth, kButtonHeight};
    }
}

// Lengths and heights of keys and labels; LayoutKeys and LayoutKeyLabels know where they stand side by side.
void PlaceKeys(sndmain& window, int top, int bottom) {
    const int height = std::min(bottom - top - kKeyLabelHeight, kMaxKeyHeight);
    const int keys_top = top + kKeyLabelHeight;
    for (PianoKeyControl& key : window.kenWhite) {
        key.place.Top = keys_top;
        key.place.Height = height;
    }
    for (PianoKeyControl& key : window.kenBlack) {
        key.place.Top = keys_top;
        key.place.Height = height * 62 / 100;
    }
    LayoutKeys(window);

    for (int i = 0; i < kWhiteKeys; ++i) {
        const int label_top = keys_top + height - kKeyLabelHeight - kWhiteLabelInset;
        window.lblWNote[At(i)].place = {0, label_top, window.kenWhite[At(i)].place.Width, kKeyLabelHeight};
    }
    for (KeyLabel& label : window.lblBNote)
        label.place = {0, top, kBlackLabelWidth, kKeyLabelHeight};
    LayoutKeyLabels(window);
}

// The Tab key goes from top to bottom; LayoutKeys counts on from the first white key.
void NumberTabStops(sndmain& window) {
    std::int16_t next = 0;
    window.grdScore.TabIndex = next++;
    for (LengthButton& button : window.cbtNote)
        button.TabIndex = next++;
    window.TempoCombo.TabIndex = next++;
    window.kenWhite[0].TabIndex = next;
}

} // namespace

void LayoutWindow(sndmain& window, int client_width, int client_height) {
    window.ClientWidth = std::max(client_width, kMinClientWidth);
    window.ClientHeight = std::max(client_height, kMinClientHeight);
    NumberTabStops(window);

    const int left = (window.ClientWidth - kPanelWidth) / 2;
    const int staff_top = kToolbarHeight + kToolbarGap;
    PlaceStaff(window, left, staff_top);
    const int grid_top = staff_top + kStaffPanelHeight;
    PlaceGrid(window, left, grid_top);
    const int lengths_top = grid_top + kGridRowHeight + kScrollBarHeight + kGap;
    PlaceTempo(window, left, lengths_top);
    PlaceLengthButtons(window, left + kPanelWidth - kLengthButtonsWidth, lengths_top);
    PlaceKeys(window, lengths_top + kLengthButtonsHeight + kGap, window.ClientHeight - kMargin);
}

} // namespace tonex
