#include "pictures/glyphs.h"

#include "pictures/engraving.h"
#include "pictures/outlines.h"
#include "score/codes.h"
#include "score/rows.h"
#include "view/staff.h"

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

constexpr int kFirstStemDown = 41, kLastStemDown = 57;
constexpr int kLedgerReach = 40; ///< of a ledger line beyond the head, twips
/// Beside a sharp ledger lines up to here above and below the head are shortened, twips.
constexpr int kSharpReach = 180;

// Stems, in twips.
constexpr int kStem = 420, kThirtySecondStem = 510;
constexpr int kFlagStep = 60; ///< the middle line is passed by this for each flag beyond the first

/// A column of the strip while its picture is planned: all lengths in pixels.
struct Strip {
    float scale; ///< pixels of a twip
    float unit;  ///< of a staff space
    float line;  ///< of a staff line, and of a stem
    int head;    ///< from the column's left edge to the head's
    int width;   ///< what every column has, also where some are a pixel wider
};

Strip StripOf(const StripColumn& column) {
    Strip strip{};
    strip.scale = column.pixels_per_twip;
    strip.unit = kStaffSpace * strip.scale;
    strip.line = static_cast<float>(StaffLinePixels(strip.scale));
    strip.head = static_cast<int>(WholePixel(strip.unit));
    strip.width = std::min(column.width, static_cast<int>(kColumnWidth * strip.scale + kRounding));
    return strip;
}

NoteLength FormOf(int picture) {
    // Rests and notes with stem down follow the notes with stem up, each in the same order.
    return At(kNoteLengths, (picture - 1) % kLengthCodes);
}

/// The first pixel row of a line at a height of the panel, in twips.
float LineRow(const Strip& strip, int y) {
    return static_cast<float>(StaffLineRow(static_cast<float>(y) * strip.scale));
}

bool StandsOnLine(int y) {
    return (y - kTopStaffLine) % kStaffSpace == 0;
}

/// The middle of a line's rows, or of the space between two lines as they are drawn.
float MiddleOf(const Strip& strip, int y) {
    if (StandsOnLine(y)) return LineRow(strip, y) + strip.line / 2;
    return (LineRow(strip, y - kStepHeight) + LineRow(strip, y + kStepHeight) + strip.line) / 2;
}

// ---- from left to right ----

/// Black heads are narrower than they should be where two dots would not fit behind them.
float HeadWidth(const Strip& strip, const NoteLength& form) {
    const int room = strip.width - strip.head - 2 * DotSize(strip.unit) - 2;
    const float black = std::min(BlackHeadWidth(strip.unit), static_cast<float>(room));
    // Behind a whole note's own head there is room for one dot.
    return form.division == 1 && form.dots < 2 ? WholeHeadWidth(strip.unit) : black;
}

/// Dots behind a head or a rest that ends at `left`: as far apart as the column allows.
Dots DotsBehind(const Strip& strip, int count, float left, float middle) {
    Dots dots{.count = count, .size = DotSize(strip.unit), .left = left, .middle = middle};
    const int room = strip.width - static_cast<int>(std::ceil(left - kRounding)) - count * dots.size;
    dots.apart = count == 1 ? 0 : std::clamp(room / 2, 1, DotsApart(strip.unit));
    dots.gap = std::clamp(room - dots.apart, 1, DotGap(strip.unit));
    return dots;
}

int SharpGap(const Strip& strip) {
    return std::max(1, static_cast<int>(WholePixel(0.15F * strip.unit + kRounding)));
}

/// The column's edge stays free, so that a sharp keeps away from the dots before it.
Sharp SharpBefore(const Strip& strip) {
    const int right = strip.head - SharpGap(strip);
    const float edge = strip.unit < 6 ? 0 : std::max(1.0F, WholePixel(0.1F * strip.unit));
    const float width = std::min(WholePixel(0.85F * strip.unit), static_cast<float>(right) - edge);
    return {.left = static_cast<float>(right) - width, .width = width};
}

// ---- up and down ----

/// Where a stem ends: at its length from the head, but not before the middle line; the flags of short values
/// go beyond it.
float StemEnd(const Strip& strip, const Note& note) {
    const int flags = FlagsOf(note.form), beyond = std::max(flags - 1, 0) * kFlagStep;
    const float length = static_cast<float>(flags > 2 ? kThirtySecondStem : kStem) * strip.scale;
    if (note.up)
        return std::min(WholePixel(note.head_middle - length), LineRow(strip, kMiddleStaffLine - beyond));
    return std::max(WholePixel(note.head_middle + length),
                    LineRow(strip, kMiddleStaffLine + beyond) + strip.line);
}

float ThreeHeight(const Strip& strip) {
    return WholePixel(1.2F * strip.unit);
}

/// Half a space above `y`, or above the staff if that is higher.
float ThreeAbove(const Strip& strip, float y) {
    return std::min(y, LineRow(strip, kTopStaffLine)) - WholePixel(strip.unit / 2);
}

/// The 3 stands on the stem's side, outside the staff.
Three ThreeOf(const Strip& strip, const Note& note) {
    Three three{.middle = note.head_left + note.head_width / 2, .height = ThreeHeight(strip)};
    const float staff_end = LineRow(strip, kBottomStaffLine) + strip.line;
    three.bottom = note.up ? ThreeAbove(strip, note.stem_end)
                           : std::max(note.stem_end, staff_end) + WholePixel(strip.unit / 2) + three.height;
    return three;
}

Note PlanNote(const StripPicture& shown, const Strip& strip) {
    Note note;
    note.form = FormOf(shown.picture);
    note.up = shown.picture < kFirstStemDown;
    note.head_left = static_cast<float>(strip.head);
    note.head_width = HeadWidth(strip, note.form);
    note.head_middle = MiddleOf(strip, shown.y);
    note.stem_end = note.form.division == 1 ? note.head_middle : StemEnd(strip, note);
    // On a line a dot would be taken for a part of it: the space above is its place.
    const float dots = MiddleOf(strip, StandsOnLine(shown.y) ? shown.y - kStepHeight : shown.y);
    note.dots = DotsBehind(strip, note.form.dots, note.head_left + note.head_width, dots);
    if (shown.sharp) note.sharp = SharpBefore(strip);
    note.three = ThreeOf(strip, note);
    return note;
}

/// Rows of the panel from `top` to before `bottom`.
struct Rows {
    float top, bottom;
};

Rows RowsOf(const Strip& strip, const Note& note) {
    // Head, dots and sharp.
    const float around = (note.sharp.width > 0 ? 1.5F : 0.8F) * strip.unit + 1;
    Rows rows{std::min(note.head_middle - around, note.stem_end),
              std::max(note.head_middle + around, note.stem_end)};
    if (note.form.triplet) {
        rows.top = std::min(rows.top, note.three.bottom - note.three.height - strip.unit / 4);
        rows.bottom = std::max(rows.bottom, note.three.bottom + strip.unit / 4);
    }
    return {std::floor(rows.top), std::ceil(rows.bottom)};
}

/// An empty sheet of those rows, as wide as the column.
Raster RasterOf(const StripColumn& column, const Rows& rows) {
    return MakeRaster(column.width, static_cast<int>(rows.bottom - rows.top));
}

PlacedMask Placed(const Raster& raster, const Rows& rows) {
    return {0, static_cast<int>(rows.top), FinishMask(raster)};
}

PlacedMask NoteMask(const StripPicture& shown, const StripColumn& column) {
    const Strip strip = StripOf(column);
    Note note = PlanNote(shown, strip);
    const Rows rows = RowsOf(strip, note);
    for (float* height : {&note.head_middle, &note.stem_end, &note.dots.middle, &note.three.bottom})
        *height -= rows.top;
    Raster raster = RasterOf(column, rows);
    DrawNote({raster, strip.unit, static_cast<int>(strip.line)}, note);
    return Placed(raster, rows);
}

// ---- rests, bar line, unknown entry ----

/// A rest has its middle where heads have theirs, unless its dots need the room.
float RestLeft(const Strip& strip, const NoteLength& form) {
    const float centre = static_cast<float>(strip.head) + BlackHeadWidth(strip.unit) / 2;
    const float width = RestWidth(form, strip.unit);
    Dots dots{.count = form.dots,
              .size = DotSize(strip.unit),
              .gap = DotGap(strip.unit),
              .apart = DotsApart(strip.unit)};
    const float limit = static_cast<float>(strip.width) - width - WidthOf(dots);
    const float left = std::min(centre - width / 2, limit);
    return form.division <= 2 ? std::floor(left) : left;
}

PlacedMask RestMask(const StripPicture& shown, const StripColumn& column) {
    const Strip strip = StripOf(column);
    const NoteLength form = FormOf(shown.picture);
    const float three_bottom = ThreeAbove(strip, LineRow(strip, kTopStaffLine));
    const float middle = MiddleOf(strip, shown.y), left = RestLeft(strip, form);
    const float high =
        form.triplet ? three_bottom - ThreeHeight(strip) - strip.unit / 4 : middle - 1.8F * strip.unit - 1;
    const Rows rows{std::floor(high), std::ceil(middle + 2.1F * strip.unit) + 1};
    Raster raster = RasterOf(column, rows);
    const Pen pen{raster, strip.unit, static_cast<int>(strip.line)};
    const int line = form.division == 1 ? shown.y - kStaffSpace : shown.y;
    DrawRest(pen, form, left, middle - rows.top, LineRow(strip, line) - rows.top);
    const float right = left + RestWidth(form, strip.unit);
    DrawDots(pen, DotsBehind(strip, form.dots, right, MiddleOf(strip, shown.y - kStepHeight) - rows.top));
    if (form.triplet) DrawThree(pen, {(left + right) / 2, three_bottom - rows.top, ThreeHeight(strip)});
    return Placed(raster, rows);
}

/// From the first row of the top line to the last row of the bottom line.
PlacedMask BarLineMask(const StripPicture& shown, const StripColumn& column) {
    const Strip strip = StripOf(column);
    const Rows rows{LineRow(strip, shown.y), LineRow(strip, shown.y + 4 * kStaffSpace) + strip.line};
    Raster raster = RasterOf(column, rows);
    const int thick = BarLinePixels(strip.scale), left = (strip.width - thick) / 2;
    AddRectangle(raster, static_cast<float>(left), 0, static_cast<float>(left + thick),
                 rows.bottom - rows.top);
    return Placed(raster, rows);
}

/// The sign of an entry that the editor does not know: a black box, like nothing that is played, with a
/// question mark cut out of it.
PlacedMask UnknownMask(const StripPicture& shown, const StripColumn& column) {
    const Strip strip = StripOf(column);
    const float unit = strip.unit, high = 1.7F, mark_middle = 56.5F * high / kOutlineUnits;
    const float middle = MiddleOf(strip, shown.y), x = static_cast<float>(strip.width) / 2;
    const Rows rows{std::floor(middle - 1.5F * unit), std::ceil(middle + 1.5F * unit)};
    const float y = middle - rows.top;
    Raster box = RasterOf(column, rows), mark = RasterOf(column, rows);
    AddRoundRectangle(box, WholePixel(x - unit), WholePixel(y - 1.4F * unit), WholePixel(x + unit),
                      WholePixel(y + 1.4F * unit), 0.3F * unit);
    Put({mark, unit, static_cast<int>(strip.line)}, kQuestionMark, x, y + mark_middle * unit, high, high);
    PlacedMask placed = Placed(box, rows);
    CutOut(placed.mask, FinishMask(mark));
    return placed;
}

// ---- ledger lines ----

/// From where to where ledger lines reach that are `distance` twips away from the head.
PixelBox LedgerSpan(const StripPicture& shown, const Strip& strip, int distance) {
    const int width = static_cast<int>(HeadWidth(strip, FormOf(shown.picture)));
    const int reach = static_cast<int>(WholePixel(kLedgerReach * strip.scale));
    const bool beside_sharp = shown.sharp && std::abs(distance) <= kSharpReach;
    return {strip.head - (beside_sharp ? SharpGap(strip) / 2 : reach), 0, strip.head + width + reach, 0};
}

// ---- length buttons ----

void DrawButtonRest(const Pen& pen, const NoteLength& form, float width, float height) {
    const float unit = pen.unit, line = static_cast<float>(pen.line);
    const RestExtent extent = ExtentOf(form);
    Dots dots{.count = form.dots, .size = DotSize(unit), .gap = DotGap(unit), .apart = DotsApart(unit)};
    const float three = form.triplet ? 0.85F * unit : 0, wide = RestWidth(form, unit);
    const float bar =
        form.division <= 2 ? 0.35F * unit : 0; // a staff line, without which both bars look alike
    const float left = (width - wide - 2 * bar - WidthOf(dots) - three) / 2 + bar;
    const float top = form.triplet ? std::max(extent.top, 1.47F) : extent.top;
    float middle = (height + (top - extent.bottom) * unit) / 2, row = 0, start = left;
    if (bar > 0) {
        row = WholePixel(height / 2 - line / 2);
        start = WholePixel(left);
        AddRectangle(pen.raster, WholePixel(left - bar), row,
                     WholePixel(left - bar) + WholePixel(wide + 2 * bar), row + line);
        middle = row + line / 2 + (form.division == 1 ? unit : 0);
    }
    DrawRest(pen, form, start, middle, row);
    dots.left = start + wide + bar;
    dots.middle = middle - unit / 2;
    DrawDots(pen, dots);
    if (form.triplet) DrawThree(pen, {start + wide + 0.45F * unit, middle - 0.6F * unit, 0.85F * unit});
}

/// A note in the middle of a button of `width` x `height` pixels. The 3 stands beside the stem: above it
/// there is no room.
Note ButtonNote(const Pen& pen, const NoteLength& form, float width, float height) {
    const float unit = pen.unit, line = static_cast<float>(pen.line);
    const bool whole = form.division == 1;
    Note note;
    note.form = form;
    note.head_width = whole ? WholeHeadWidth(unit) : BlackHeadWidth(unit);
    note.dots = {.count = form.dots, .size = DotSize(unit), .gap = DotGap(unit), .apart = DotsApart(unit)};
    const float flags = FlagsOf(form) > 0 ? FlagWidth(unit, true) - line : 0;
    const float wide = note.head_width + std::max(WidthOf(note.dots), flags);
    const float stem = whole ? 0 : 3.5F;
    note.head_left = WholePixel((width - wide) / 2);
    note.head_middle = whole ? height / 2 : std::floor(height / 2 + (stem - 0.5F) * unit / 2) + 0.5F;
    note.stem_end = WholePixel(note.head_middle - stem * unit);
    note.dots.left = note.head_left + note.head_width;
    note.dots.middle = note.head_middle;
    note.three = {.middle = note.head_left + note.head_width / 2 - 0.6F * unit,
                  .bottom = note.head_middle - 0.9F * unit,
                  .height = 1.1F * unit};
    return note;
}

} // namespace

int StaffLinePixels(float pixels_per_twip) {
    return std::max(1, static_cast<int>(std::floor(pixels_per_twip * 0.115F * kStaffSpace + 0.5F)));
}

int BarLinePixels(float pixels_per_twip) {
    const int thick = static_cast<int>(std::floor(pixels_per_twip * 0.16F * kStaffSpace + 0.5F));
    return thick < 2 ? 1 : std::max(thick, StaffLinePixels(pixels_per_twip) + 1);
}

int StaffLineRow(float y) {
    return static_cast<int>(y + kRounding);
}

bool IsNotePicture(int picture) {
    return (picture >= 1 && picture <= kLengthCodes) ||
           (picture >= kFirstStemDown && picture <= kLastStemDown);
}

PlacedMask StripPictureMask(const StripPicture& shown, const StripColumn& column) {
    if (shown.picture < 1 || shown.picture > kLastPicture) return {};
    if (shown.picture == kBarLinePicture) return BarLineMask(shown, column);
    if (shown.picture == kUnknownPicture) return UnknownMask(shown, column);
    return IsNotePicture(shown.picture) ? NoteMask(shown, column) : RestMask(shown, column);
}

std::vector<PixelBox> LedgerLineBoxes(const StripPicture& shown, const StripColumn& column) {
    std::vector<PixelBox> boxes;
    if (!IsNotePicture(shown.picture)) return boxes;
    const Strip strip = StripOf(column);
    const LedgerLines ledger = LedgerLinesOf(shown.y);
    const int thick = BarLinePixels(strip.scale), line = StaffLinePixels(strip.scale);
    for (int i = 0; i < ledger.count; ++i) {
        const int y = ledger.first_y + i * ledger.step_y;
        PixelBox box = LedgerSpan(shown, strip, y - shown.y);
        // The odd pixel of a thicker line is on the side away from the staff.
        box.top = static_cast<int>(LineRow(strip, y)) - (ledger.step_y < 0 ? thick - line : 0);
        box.bottom = box.top + thick;
        boxes.push_back(box);
    }
    return boxes;
}

CoverageMask ButtonPictureMask(int picture, int width, int height, float pixels_per_twip) {
    if (picture < 1 || picture > 2 * kLengthCodes) return {};
    const float w = static_cast<float>(width), h = static_cast<float>(height);
    // One scale for all buttons: the tallest picture has 4 spaces, the widest 2.7.
    const float unit = std::max(2.0F, std::min({kStaffSpace * pixels_per_twip, (h - 6) / 4, (w - 6) / 2.7F}));
    Raster raster = MakeRaster(width, height);
    const Pen pen{raster, unit, StaffLinePixels(unit / kStaffSpace)};
    if (picture > kLengthCodes)
        DrawButtonRest(pen, FormOf(picture), w, h);
    else
        DrawNote(pen, ButtonNote(pen, FormOf(picture), w, h));
    return FinishMask(raster);
}

PlacedMask ClefMask(float pixels_per_twip) {
    constexpr int kLineOfG = kBottomStaffLine - kStaffSpace;
    const auto pixel = [&](int twips) { return static_cast<float>(twips) * pixels_per_twip; };
    const float left = std::floor(pixel(kClefBox.left)), top = std::floor(pixel(kClefBox.top));
    const float right = pixel(kClefBox.left + kClefBox.width), bottom = pixel(kClefBox.top + kClefBox.height);
    Raster raster = MakeRaster(static_cast<int>(std::ceil(right - kRounding) - left),
                               static_cast<int>(std::ceil(bottom - kRounding) - top));
    const Pen pen{raster, pixel(kStaffSpace), StaffLinePixels(pixels_per_twip)};
    const float x = pixel(kClefBox.left + 120) - left;
    const float y =
        static_cast<float>(StaffLineRow(pixel(kLineOfG))) + static_cast<float>(pen.line) / 2 - top;
    Put(pen, kTrebleClef, x, y);
    Put(pen, kEight, x + 1.42F * pen.unit, y - 4.5F * pen.unit, 1.25F, 1.25F);
    return {static_cast<int>(left), static_cast<int>(top), FinishMask(raster)};
}

} // namespace tonex
