#include "app/layout_commands.h"

#include "app/sndmain.h"
#include "view/note_names.h"
#include "view/staff.h"

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

// Twips; 15 are a pixel of the ordinary screen.
constexpr int kGap = 180;       ///< between the blocks of the window
constexpr int kToolbarGap = 60; ///< below the toolbar
constexpr int kStaffPanelHeight = 2520;
constexpr int kStaffInset = 30; ///< between the panel's edges and the staff lines
constexpr int kImageInset = 15; ///< from a column's left edge to its picture, before the offset
constexpr int kGridRowHeight = 390;
constexpr int kButtonWidth = 465;
constexpr int kButtonHeight = 510;
constexpr int kButtonRowGap = 30;
constexpr int kFamilyGap = 90; ///< between lengths of different note values
constexpr int kCaptionWidth = 705;
constexpr int kTempoBoxWidth = 975;
constexpr int kTempoNameGap = 75;
constexpr int kTextHeight = 225;
constexpr int kTempoBoxHeight = 315;
constexpr int kFirstBlackKey =
    140; ///< right of the first white key; not scaled with the screen, kept as it is
constexpr int kKeyLabelHeight = 225;
constexpr int kWhiteLabelInset = 45; ///< between a label and the lower end of its key
constexpr int kMaxKeyHeight = 3600;

constexpr int kLengths = kLengthButtons / 2; ///< buttons in the row of notes and in that of rests

// Length buttons to the left of a column that start a family: after the thirty-second, and after each group
// of triplet, plain, dotted and double-dotted.
constexpr int FamiliesBefore(int column) {
    return (column + 3) / 4;
}

constexpr int LengthButtonLeft(int column) {
    return column * kButtonWidth + FamiliesBefore(column) * kFamilyGap;
}

constexpr int kLengthButtonsWidth = LengthButtonLeft(kLengths - 1) + kButtonWidth;
constexpr int kLengthButtonsHeight = 2 * kButtonHeight + kButtonRowGap;

// The offset is part of the place from ComputeStaffOffset on; before, it is 0.
void PlacePictures(sndmain& window) {
    for (int i = 0; i < kStripPictures; ++i) {
        Rect& place = At(window.imgNote, i).place;
        place.Left = kClefWidth + i * kColumnWidth + kImageInset + window.StaffOffset;
        place.Width = kPictureWidth;
    }
}

void PlaceStaff(sndmain& window, int left, int top) {
    window.picStaff = {left, top, kStaffPanelWidth, kStaffPanelHeight};
    for (int i = 0; i < 5; ++i) {
        const int y = kTopStaffLine + i * kStaffSpace;
        At(window.Line1, i) = {kClefWidth, kStripRight, y};
        At(window.linSub, i) = {kStaffInset, kClefWidth, y};
        At(window.linSub, 9 - i) = {kStripRight, kStaffPanelWidth - kStaffInset, y};
    }
    PlacePictures(window);
}

void PlaceGrid(sndmain& window, int left, int top, int scroll_bar_height) {
    // As wide as the staff panel above it behind the clef; the columns end a little before.
    window.grdScore.place = {left + kClefWidth, top, kStaffPanelWidth - kClefWidth,
                             kGridRowHeight + scroll_bar_height};
}

// One row says the tempo and its name, the row below it the length that a key click gives: they stand beside
// the rows of notes and rests.
void PlaceTempo(sndmain& window, int left, int top, int scroll_bar) {
    const int box_left = left + kCaptionWidth;
    // The box's arrow is as large as the scroll bar's and shrinks with nothing: what it takes more is shared
    // by the number and the name.
    const int box_width = kTempoBoxWidth + (scroll_bar - kScrollBarHeight) / 2;
    const int name_left = box_left + box_width + kTempoNameGap;
    const int buttons_left = left + kStaffPanelWidth - kLengthButtonsWidth;
    const int label_top = top + (kButtonHeight - kTextHeight) / 2;
    window.Label2.place = {left, label_top, kCaptionWidth, kTextHeight};
    window.TempoCombo.place = {box_left, top + (kButtonHeight - kTempoBoxHeight) / 2, box_width,
                               kTempoBoxHeight};
    window.lblTempo.place = {name_left, label_top, buttons_left - name_left, kTextHeight};
    const int second_row = top + kButtonHeight + kButtonRowGap;
    window.Label3.place = {left, second_row + (kButtonHeight - kTextHeight) / 2, kCaptionWidth, kTextHeight};
    window.imgNow.place = {box_left, second_row, kButtonWidth, kButtonHeight};
}

void PlaceLengthButtons(sndmain& window, int left, int top) {
    const int rest_top = top + kButtonHeight + kButtonRowGap;
    for (int column = 0; column < kLengths; ++column) {
        const int x = left + LengthButtonLeft(column);
        At(window.cbtNote, column).place = {x, top, kButtonWidth, kButtonHeight};
        At(window.cbtNote, column + kLengths).place = {x, rest_top, kButtonWidth, kButtonHeight};
    }
}

// The keyboard is centred. Widths follow the screen's pixels, so that all keys of a colour are alike.
void PlaceKeys(sndmain& window, int top, int height) {
    const int white_width = WhiteKeyWidth(window.screen.twips_per_pixel_x);
    const int black_width = BlackKeyWidth(window.screen.twips_per_pixel_x);
    const int left = (window.ClientWidth - kWhiteKeys * white_width) / 2;
    for (int i = 0; i < kWhiteKeys; ++i)
        At(window.kenWhite, i).place = {left + i * white_width, top, white_width, height};
    int black_left = left + kFirstBlackKey;
    for (int i = 0; i < kBlackKeys; ++i) {
        At(window.kenBlack, i).place = {black_left, top, black_width, height * 62 / 100};
        const bool gap_follows = i % 5 == 1 || i % 5 == 4;
        black_left += gap_follows ? 2 * white_width : white_width;
    }
}

CellText CaptionOfKey(const sndmain& window, std::int16_t pitch) {
    const int half_tones = pitch - kLowestKeyPitch;
    return KeyCaptionOf(half_tones % 12, window.KeyboardBaseOctave + half_tones / 12, window.doremi);
}

// From top to bottom and along the keyboard from left to right. Toolbar and strip come last: menu and grid do
// what they do.
void NumberTabStops(sndmain& window) {
    std::int16_t next = 0;
    window.grdScore.TabIndex = next++;
    for (LengthButton& button : window.cbtNote)
        button.TabIndex = next++;
    window.TempoCombo.TabIndex = next++;
    for (int key = 0; key < kPianoKeys; ++key)
        ControlOf(window, KeyAbove(key)).TabIndex = next++;
    window.toolbar_tab_index = next++;
    window.strip_tab_index = next;
}

} // namespace

float OwnStaffSpace(const ScreenMeasures& screen) {
    return kStaffSpace / screen.twips_per_pixel_y;
}

PixelSize ContentSize(const ScreenMeasures& screen, float staff_space, int scroll_bar) {
    const float pixels_y = staff_space / kStaffSpace;
    const float pixels_x = pixels_y * screen.twips_per_pixel_y / screen.twips_per_pixel_x;
    const auto pixels = [](int twips, float scale) {
        constexpr float kNothing = 0.01f; // of a pixel: what single precision adds to a whole number
        return static_cast<int>(std::ceil(static_cast<float>(twips) * scale - kNothing));
    };
    const int more_bar = std::max(0, scroll_bar - pixels(kScrollBarHeight, pixels_y));
    return {pixels(kMinClientWidth, pixels_x), pixels(kMinClientHeight, pixels_y) + more_bar};
}

float FittingStaffSpace(const ScreenMeasures& screen, PixelSize client, int scroll_bar) {
    constexpr float kGrowth = 2;    // pixels a step
    constexpr float kMostTimes = 4; // larger than any screen of today needs
    const auto fits = [&](float space) {
        const PixelSize content = ContentSize(screen, space, scroll_bar);
        return content.width <= client.width && content.height <= client.height;
    };
    const float own = OwnStaffSpace(screen);
    float space = own;
    if (fits(own)) {
        while (space + kGrowth <= kMostTimes * own && fits(space + kGrowth))
            space += kGrowth;
        return space;
    }
    while (space > kSmallestStaffSpace && !fits(space))
        space = std::ceil(space) - 1;
    return space;
}

void LayoutWindow(sndmain& window, int client_width, int client_height, int scroll_bar_height) {
    const int scroll_bar = std::max(scroll_bar_height, kScrollBarHeight);
    window.ClientWidth = std::max(client_width, kMinClientWidth);
    window.ClientHeight = std::max(client_height, kMinClientHeight + scroll_bar - kScrollBarHeight);
    NumberTabStops(window);

    const int left = (window.ClientWidth - kStaffPanelWidth) / 2;
    const int staff_top = kToolbarHeight + kToolbarGap;
    PlaceStaff(window, left, staff_top);
    const int grid_top = staff_top + kStaffPanelHeight;
    PlaceGrid(window, left, grid_top, scroll_bar);
    const int lengths_top = grid_top + kGridRowHeight + scroll_bar + kGap;
    PlaceTempo(window, left, lengths_top, scroll_bar);
    PlaceLengthButtons(window, left + kStaffPanelWidth - kLengthButtonsWidth, lengths_top);
    const int keys_top = lengths_top + kLengthButtonsHeight + kGap + kKeyLabelHeight;
    PlaceKeys(window, keys_top, std::min(window.ClientHeight - kMargin - keys_top, kMaxKeyHeight));
    LayoutKeyLabels(window);
}

void ComputeStaffOffset(sndmain& window) {
    const int line_space = window.Line1[1].Y - window.Line1[0].Y;
    window.StaffOffset = StaffOffsetOf(line_space, window.screen.twips_per_pixel_y);
    for (NoteImage& picture : window.imgNote)
        picture.Visible = false;
    PlacePictures(window);
}

void LayoutKeyLabels(sndmain& window) {
    for (int i = 0; i < kWhiteKeys; ++i) {
        const Rect& key = At(window.kenWhite, i).place;
        const int top = key.Top + key.Height - kWhiteLabelInset - kKeyLabelHeight;
        At(window.lblWNote, i) = {{key.Left, top, key.Width, kKeyLabelHeight},
                                  CaptionOfKey(window, WhiteKeyPitch(i))};
    }
    for (int i = 0; i < kBlackKeys; ++i) {
        const Rect& key = At(window.kenBlack, i).place;
        // The label is wider than the key and stands centred over it.
        const int left = key.Left - (kKeyLabelWidth - key.Width) / 2;
        At(window.lblBNote, i) = {{left, key.Top - kKeyLabelHeight, kKeyLabelWidth, kKeyLabelHeight},
                                  CaptionOfKey(window, BlackKeyPitch(i))};
    }
}

std::vector<TabStop> TabOrder(const sndmain& window) {
    std::vector<TabStop> stops = {{window.grdScore.TabIndex, Pane::grdScore, kWholePane},
                                  {window.TempoCombo.TabIndex, Pane::TempoCombo, kWholePane},
                                  {window.toolbar_tab_index, Pane::Toolbar1, kWholePane},
                                  {window.strip_tab_index, Pane::imgNote, kWholePane}};
    for (int i = 0; i < kLengthButtons; ++i)
        stops.push_back({At(window.cbtNote, i).TabIndex, Pane::cbtNote, i});
    for (int key = 0; key < kPianoKeys; ++key)
        stops.push_back({ControlOf(window, KeyAbove(key)).TabIndex, Pane::Keys, key});
    std::stable_sort(stops.begin(), stops.end(),
                     [](const TabStop& a, const TabStop& b) { return a.TabIndex < b.TabIndex; });
    return stops;
}

} // namespace tonex
