#include "pictures/glyphs.h"

#include "pictures/outlines.h"
#include "score/codes.h"
#include "score/rows.h"

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

constexpr int kFirstStemDown = 41, kLastStemDown = 57;

// Lengths in staff spaces from here on, where nothing else is said.
constexpr float kHeadWidth = 1.19F, kWholeWidth = 1.52F, kHeadHalfHeight = 0.46F;
constexpr float kStemJoin = 0.17F; ///< how far above its centre a head is widest to the right
constexpr float kFlagWidth = 0.71F, kFlagHeight = 1.49F, kInnerFlagHeight = 1.0F;
/// What a length in single precision may lack of a whole pixel.
constexpr float kRounding = 0.002F;
constexpr float kRestSlant = 0.25F; ///< a short rest's stem leans by this for each space of height

/// The sheet that is drawn on.
struct Pen {
    Raster& raster;
    float unit; ///< pixels of a staff space
    int line;   ///< pixels of a stem
};

/// Dots behind a head or a rest, in pixels.
struct Dots {
    int count = 0;
    float gap = 0;         ///< before the first
    float size = 0;        ///< of one
    float step = 0;        ///< from one to the next
    float right_limit = 0; ///< how far right they may reach
};

/// The flags at a stem's free end, in pixels.
struct Flags {
    int count = 0;
    float stem_left = 0, stem_end = 0;
    bool up = true;              ///< the way of the stem
    float length = 0, width = 0; ///< of all together
};

/// A sharp, in pixels; none when the width is 0.
struct Sharp {
    float left = 0, width = 0;
};

/// The 3 of a triplet, in pixels.
struct Three {
    float left = 0, bottom = 0, height = 0;
};

/// Where the parts of a note stand, in pixels.
struct NotePlan {
    NoteLength form{};
    bool up = true;
    bool head_on_line = false;
    float head_x = 0, head_y = 0; ///< centre of the head
    float head_half = 0;          ///< half of its width
    float stem_end = 0;           ///< height of the stem's free end
    float flag_width = 0;
    Dots dots;
    Sharp sharp;
    Three three;
};

int FlagsOf(const NoteLength& form) {
    return form.division >= 32 ? 3 : form.division >= 16 ? 2 : form.division >= 8;
}

float HeadWidth(const NoteLength& form) {
    return form.division == 1 ? kWholeWidth : kHeadWidth;
}

/// In the strip's narrow box dots take some of the head's width.
float HeadWidthInBox(const NoteLength& form) {
    if (form.division == 1) return form.dots == 2 ? 1.18F : 1.42F;
    return form.dots == 2 ? 1.12F : kHeadWidth;
}

float WholePixel(float value) {
    return std::floor(value + 0.5F);
}

void Put(Pen& pen, Outline outline, float x, float y, float wide = 1, float high = 1) {
    Placement placement;
    placement.xx = pen.unit * wide / kOutlineUnits;
    placement.yy = -pen.unit * high / kOutlineUnits;
    placement.dx = x;
    placement.dy = y;
    AddOutline(pen.raster, outline, placement);
}

/// Flags from the stem's free end towards its head.
void DrawFlags(Pen& pen, const Flags& flags) {
    if (flags.count == 0) return;
    const float way = flags.up ? 1.0F : -1.0F;
    const float wide = flags.width / (kFlagWidth * pen.unit);
    if (flags.count == 1) {
        Put(pen, kFlag, flags.stem_left, flags.stem_end, wide, way * flags.length / (kFlagHeight * pen.unit));
        return;
    }
    // Whole pixels apart, so that all of them look alike.
    const float step = std::max(1.0F, WholePixel(flags.length * (flags.count == 2 ? 0.38F : 0.28F)));
    const float height = flags.length - step * static_cast<float>(flags.count - 1);
    for (int i = 0; i < flags.count; ++i)
        Put(pen, kInnerFlag, flags.stem_left, flags.stem_end + way * step * static_cast<float>(i), wide,
            way * height / (kInnerFlagHeight * pen.unit));
}

/// Whether the dots of a head on a line stand below it: beside a short stem there is no place for flags above
/// a dot that is raised off its line.
bool DotsBelow(const Pen& pen, const NotePlan& plan) {
    const int flags = FlagsOf(plan.form);
    const float stem_length = std::abs(plan.head_y - plan.stem_end) / pen.unit;
    return plan.head_on_line && plan.up && flags > 0 && stem_length < (flags > 1 ? 2.5F : 1.9F);
}

/// How high the flags are together, in pixels: as high as they look best, less where the dots or the head are
/// in their way.
float FlagLength(const Pen& pen, const NotePlan& plan) {
    constexpr float kShare[] = {0, 0.72F, 0.8F, 0.9F};
    constexpr float kLeast[] = {0, 1.2F, 1.35F, 1.5F};
    const float stem = std::abs(plan.head_y - plan.stem_end);
    // Beside a very short stem they reach down to the head, which is better than flags pressed flat.
    const float wish = std::max(stem * kShare[FlagsOf(plan.form)], kLeast[FlagsOf(plan.form)] * pen.unit);
    // A flag that rises from below ends right of the head's lowest part.
    float room = stem - (FlagsOf(plan.form) > 2 ? 0.4F : 0.48F) * pen.unit;
    if (plan.up && plan.form.dots == 0) room = stem + 0.4F * pen.unit;
    if (plan.up && plan.form.dots > 0)
        room = stem - (DotsBelow(pen, plan) ? -0.1F : plan.head_on_line ? 0.84F : 0.36F) * pen.unit;
    return std::max(std::min(wish, room), 0.4F * pen.unit);
}

/// Round dots that stand alike on the pixels: on the middle of one when they are an odd number of pixels
/// wide, else between two. `after` is where what they follow ends, `y` the height of their middle.
void DrawDots(Pen& pen, const Dots& dots, float after, float y) {
    if (dots.count == 0) return;
    const float pixels = std::max(1.0F, WholePixel(dots.size)), half = pixels / 2;
    const float centre_y = std::floor(y - half + 0.5F) + half;
    const float apart = std::max(pixels + 1, WholePixel(dots.step));
    // At least one pixel stays free between the dots and what stands before them.
    const float first = std::max(std::ceil(after + dots.gap - 0.3F), std::ceil(after - 0.25F) + 1);
    const float wide = pixels + apart * static_cast<float>(dots.count - 1);
    const float x = std::min(first, std::floor(dots.right_limit + kRounding) - wide) + half;
    const float radius = std::max(dots.size, pixels) / 2;
    for (int i = 0; i < dots.count; ++i)
        AddEllipse(pen.raster, x + apart * static_cast<float>(i), centre_y, radius, radius);
}

/// A bar of a sharp: `reach` to both sides of its middle, rising to the right.
void DrawSharpBar(Pen& pen, float middle, float y, float reach, float lean) {
    const PathStep steps[] = {{PathStep::Move, 0, 0, 0, 0, -1, -1},
                              {PathStep::Line, 0, 0, 0, 0, 1, -1},
                              {PathStep::Line, 0, 0, 0, 0, 1, 1},
                              {PathStep::Line, 0, 0, 0, 0, -1, 1},
                              {PathStep::Close, 0, 0, 0, 0, 0, 0}};
    const float thick = 0.24F * pen.unit;
    Placement slanted;
    slanted.xx = reach;
    slanted.yx = -lean;
    slanted.yy = -thick / 2;
    slanted.dx = middle;
    slanted.dy = y;
    AddOutline(pen.raster, steps, slanted);
}

/// A sharp whose middle is at the height y. Its two uprights stand on whole pixels.
void DrawSharp(Pen& pen, const Sharp& sharp, float y) {
    const float thin = std::max(1.0F, WholePixel(0.1F * pen.unit));
    const float first = WholePixel(sharp.left + sharp.width * 0.16F);
    const float second = first + std::max(thin + 1, WholePixel(sharp.width * 0.68F - thin));
    const float lean = 0.11F * pen.unit, high = 1.15F * pen.unit;
    AddRectangle(pen.raster, first, y - high + lean, first + thin, y + high + lean / 2);
    AddRectangle(pen.raster, second, y - high - lean / 2, second + thin, y + high - lean);
    const float middle = (first + second + thin) / 2;
    const float reach = std::min(sharp.width / 2, middle - sharp.left);
    for (const float bar : {-0.42F * pen.unit, 0.42F * pen.unit})
        DrawSharpBar(pen, middle, y + bar, reach, lean);
}

void DrawThree(Pen& pen, const Three& three) {
    Put(pen, kThree, three.left, three.bottom, three.height / pen.unit, three.height / pen.unit);
}

Outline HeadOf(const NoteLength& form) {
    if (form.division == 1) return kWholeHead;
    return form.division == 2 ? kHalfHead : kBlackHead;
}

void DrawStem(Pen& pen, const NotePlan& plan) {
    if (plan.form.division == 1) return;
    const float half = plan.head_half, line = static_cast<float>(pen.line);
    const float left = plan.up ? plan.head_x + half - line : plan.head_x - half;
    const float join = plan.head_y + (plan.up ? -kStemJoin : kStemJoin) * pen.unit;
    AddRectangle(pen.raster, left, std::min(join, plan.stem_end), left + line, std::max(join, plan.stem_end));
    DrawFlags(pen, {.count = FlagsOf(plan.form),
                    .stem_left = left,
                    .stem_end = plan.stem_end,
                    .up = plan.up,
                    .length = FlagLength(pen, plan),
                    .width = plan.flag_width});
}

void DrawNote(Pen& pen, const NotePlan& plan) {
    Put(pen, HeadOf(plan.form), plan.head_x, plan.head_y,
        2 * plan.head_half / (HeadWidth(plan.form) * pen.unit));
    DrawStem(pen, plan);
    const float raised = plan.head_on_line ? (DotsBelow(pen, plan) ? 0.5F : -0.5F) * pen.unit : 0;
    DrawDots(pen, plan.dots, plan.head_x + plan.head_half, plan.head_y + raised);
    if (plan.sharp.width > 0) DrawSharp(pen, plan.sharp, plan.head_y);
    if (plan.form.triplet) DrawThree(pen, plan.three);
}

/// How wide and high a rest is without dots and 3, in spaces: from `left` of its anchor to `right`, from
/// `top` above the middle line to `bottom` below it.
struct RestExtent {
    float left, right, top, bottom;
};

RestExtent ExtentOf(const NoteLength& form) {
    switch (form.division) {
    case 1:
    case 2: return {0.6F, 0.6F, form.division == 1 ? 1.0F : 0.55F, form.division == 1 ? -0.45F : 0.0F};
    case 4: return {0.5F, 0.5F, 1.47F, 1.47F};
    case 8: return {0.5F, 0.5F, 0.78F, 1.0F};
    case 16: return {0.62F, 0.62F, 0.78F, 1.95F};
    default: return {0.75F, 0.75F, 0.78F, 2.42F};
    }
}

/// A rest around x whose middle line is at the height y; `line_row` is where the pixel rows of the staff line
/// begin that a whole rest hangs from or a half rest sits on.
void DrawRest(Pen& pen, const NoteLength& form, float x, float y, float line_row) {
    const RestExtent extent = ExtentOf(form);
    const float unit = pen.unit;
    if (form.division <= 2) {
        const float left = WholePixel(x - extent.left * unit);
        const float right = left + WholePixel((extent.left + extent.right) * unit);
        const float high = WholePixel(0.52F * unit), line = static_cast<float>(pen.line);
        if (form.division == 1)
            AddRectangle(pen.raster, left, line_row, right, line_row + line + high - 1);
        else
            AddRectangle(pen.raster, left, line_row - high + 1, right, line_row + line);
        return;
    }
    if (form.division == 4) {
        Put(pen, kQuarterRest, x - 0.58F * unit, y);
        return;
    }
    const float stem = x + extent.right * unit, top = y - 0.76F * unit, foot = y + extent.bottom * unit;
    const auto at = [&](float height) { return stem - (height - top) * kRestSlant; };
    const float thick = std::max(0.13F * unit, 1.0F);
    AddStroke(pen.raster, at(top) - thick / 2, top, at(foot) - thick / 2, foot, thick);
    for (int i = 0; i < FlagsOf(form); ++i) {
        const float height = top + static_cast<float>(i) * unit;
        Put(pen, kRestHook, at(height), height);
    }
}

NoteLength FormOf(int picture) {
    // Rests and notes with stem down follow the notes with stem up, each in the same order.
    return At(kNoteLengths, (picture - 1) % kLengthCodes);
}

/// A picture's box of twips in pixels; where it ends on a whole pixel, rounding must not add one more.
struct PixelBox {
    float left, top, right, bottom;
};

PixelBox BoxOf(int width, int height, const PixelGrid& grid) {
    return {grid.origin_x, grid.origin_y, grid.origin_x + static_cast<float>(width) * grid.pixels_per_twip,
            grid.origin_y + static_cast<float>(height) * grid.pixels_per_twip};
}

Raster BoxRaster(const PixelBox& box) {
    return MakeRaster(static_cast<int>(std::ceil(box.right - kRounding)),
                      static_cast<int>(std::ceil(box.bottom - kRounding)));
}

/// Pixels that an edge of the box cuts get no more ink than belongs to the box.
void KeepInside(CoverageMask& mask, const PixelBox& box) {
    const auto share = [](float inside) {
        return static_cast<std::uint8_t>(std::clamp(inside, 0.0F, 1.0F) * 255 + 0.5F);
    };
    const std::uint8_t left = share(1 - box.left), top = share(1 - box.top);
    const std::uint8_t right = share(box.right - static_cast<float>(mask.width - 1));
    const std::uint8_t bottom = share(box.bottom - static_cast<float>(mask.height - 1));
    const auto limit = [&](int x, int y, std::uint8_t most) {
        std::uint8_t& alpha = At(mask.alpha, y * mask.width + x);
        alpha = std::min(alpha, most);
    };
    for (int y = 0; y < mask.height; ++y) {
        limit(0, y, left);
        limit(mask.width - 1, y, right);
    }
    for (int x = 0; x < mask.width; ++x) {
        limit(x, 0, top);
        limit(x, mask.height - 1, bottom);
    }
}

/// The parts of a note in the strip's narrow box, in twips: left edge of the head, gap to the dots, their
/// size and step, and what a sharp may take.
struct BoxPlan {
    int head_left, dot_gap, dot_size, dot_step, sharp_width;
};

BoxPlan BoxPlanOf(const NoteLength& form) {
    if (form.division == 1) return form.dots == 2 ? BoxPlan{61, 6, 29, 37, 58} : BoxPlan{80, 10, 36, 0, 72};
    return form.dots == 2 ? BoxPlan{74, 9, 31, 37, 68} : BoxPlan{82, 16, 42, 0, 72};
}

/// The strip's narrow box while its picture is planned.
struct Strip {
    float unit, line; ///< pixels of a staff space and of a stem
    float scale;      ///< pixels of a twip
    PixelBox edges;
};

/// Places the head, and gives where its column begins.
float PlaceHead(NotePlan& plan, const Strip& strip, int head_left, int staff_offset) {
    plan.head_half = HeadWidthInBox(plan.form) * strip.unit / 2;
    const float left = strip.edges.left + static_cast<float>(head_left) * strip.scale;
    // The whole picture moves with its stem to the next whole pixel, so that the parts keep their distances.
    const float edge = plan.up ? left + 2 * plan.head_half - strip.line : left;
    const float shift = plan.form.division == 1 ? 0 : WholePixel(edge) - edge;
    plan.head_x = left + plan.head_half;
    plan.head_x += shift;
    // Lines and spaces are whole steps of 60 twips apart and share their fraction of a pixel: a head follows
    // the row that a line at its height would have.
    const float head = strip.edges.top + static_cast<float>(kHeadCentre - staff_offset) * strip.scale;
    plan.head_y = static_cast<float>(StaffLineRow(head)) + strip.line / 2;
    return left + shift;
}

/// The 3 stands on the side of the head, where no stem is.
Three ThreeOf(const NotePlan& plan, const Strip& strip) {
    const float unit = strip.unit;
    const float above = plan.head_y - kHeadHalfHeight * unit - strip.edges.top;
    Three three;
    three.height = plan.up ? 0.95F * unit : std::min(0.95F * unit, above - 0.14F * unit - 2 * strip.scale);
    three.left = plan.head_x - 0.36F * three.height;
    three.bottom = plan.up
                       ? plan.head_y + (kHeadHalfHeight + 0.3F) * unit + three.height
                       : strip.edges.top + three.height + std::max(0.0F, above - three.height - 0.3F * unit);
    return three;
}

NotePlan StripNotePlan(const StripPicture& shown, const Strip& strip) {
    NotePlan plan;
    plan.form = FormOf(shown.picture);
    plan.up = shown.picture < kFirstStemDown;
    plan.head_on_line = shown.head_on_line;
    const BoxPlan box = BoxPlanOf(plan.form);
    const float column = PlaceHead(plan, strip, box.head_left, shown.staff_offset);
    plan.stem_end = plan.up ? std::ceil(strip.edges.top) : std::floor(strip.edges.bottom + kRounding);
    const float room = strip.edges.right - 3 * strip.scale - (plan.head_x + plan.head_half);
    plan.flag_width = plan.up ? room + strip.line : 0.95F * strip.unit;
    plan.dots = {.count = plan.form.dots,
                 .gap = static_cast<float>(box.dot_gap) * strip.scale,
                 .size = static_cast<float>(box.dot_size) * strip.scale,
                 .step = static_cast<float>(box.dot_step) * strip.scale,
                 .right_limit = strip.edges.right};
    if (shown.sharp) {
        plan.sharp.width = static_cast<float>(box.sharp_width) * strip.scale;
        plan.sharp.left = std::max(strip.edges.left, column - plan.sharp.width - 6 * strip.scale);
    }
    plan.three = ThreeOf(plan, strip);
    return plan;
}

/// How far dots and the 3 reach beyond a rest, in spaces.
float RestExtras(const NoteLength& form) {
    if (form.triplet) return form.division == 4 ? 0.7F : 0.85F;
    return form.dots == 0 ? 0 : form.dots == 1 ? 0.65F : 1.15F;
}

void DrawRestExtras(Pen& pen, const NoteLength& form, float x, float y, float right_limit) {
    const RestExtent extent = ExtentOf(form);
    float right = x + extent.right * pen.unit;
    if (form.division <= 2)
        right = WholePixel(x - extent.left * pen.unit) + WholePixel((extent.left + extent.right) * pen.unit);
    DrawDots(pen,
             {.count = form.dots,
              .gap = 0.16F * pen.unit,
              .size = 0.34F * pen.unit,
              .step = 0.48F * pen.unit,
              .right_limit = right_limit},
             right, y - pen.unit / 2);
    if (form.triplet)
        DrawThree(pen, {.left = form.division == 4 ? x + 0.55F * pen.unit : right + 0.16F * pen.unit,
                        .bottom = y - 0.6F * pen.unit,
                        .height = 0.85F * pen.unit});
}

void DrawStripRest(Pen& pen, int picture, float scale, const PixelBox& edges) {
    const NoteLength form = FormOf(picture);
    const float exact = edges.top + kRestMiddle * scale;
    const float middle = static_cast<float>(StaffLineRow(exact));
    const int line_row = form.division == 1 ? StaffLineRow(exact - kStaffSpace * scale) : StaffLineRow(exact);
    const float half_line = static_cast<float>(StaffLinePixels(scale)) / 2;
    const float wide = (ExtentOf(form).right + RestExtras(form)) * pen.unit;
    const float x = std::min((edges.left + edges.right) / 2, edges.right - 6 * scale - wide);
    DrawRest(pen, form, x, middle + half_line, static_cast<float>(line_row));
    DrawRestExtras(pen, form, x, middle + half_line, edges.right);
}

/// From the first row of the line at the box's top to the last row of the line at its bottom.
CoverageMask BarLineMask(const PixelBox& edges, int line) {
    PixelBox box = edges;
    box.top = 0;
    box.bottom = static_cast<float>(StaffLineRow(edges.bottom) + line);
    Raster raster = BoxRaster(box);
    const float left = std::floor((edges.left + edges.right) / 2 + kRounding);
    AddRectangle(raster, left, box.top, left + static_cast<float>(line), box.bottom);
    return FinishMask(raster);
}

/// The sign of an entry that the editor does not know: a black box, like nothing that is played, with a
/// question mark cut out of it. It stands on the staff's middle, whatever the entry's pitch may mean.
CoverageMask UnknownMask(const PixelBox& edges, float scale) {
    const float unit = kStaffSpace * scale, high = 1.7F, mark_middle = 56.5F * high / kOutlineUnits;
    const float x = (edges.left + edges.right) / 2;
    const float y = static_cast<float>(StaffLineRow(edges.top + kRestMiddle * scale)) +
                    static_cast<float>(StaffLinePixels(scale)) / 2;
    Raster box = BoxRaster(edges);
    AddRoundRectangle(box, WholePixel(x - unit), WholePixel(y - 1.4F * unit), WholePixel(x + unit),
                      WholePixel(y + 1.4F * unit), 0.3F * unit);
    Raster mark = BoxRaster(edges);
    Pen pen{mark, unit, StaffLinePixels(scale)};
    Put(pen, kQuestionMark, x, y + mark_middle * unit, high, high);
    CoverageMask mask = FinishMask(box);
    CutOut(mask, FinishMask(mark));
    return mask;
}

/// A rest in the middle of a button of `width` x `height` pixels.
void DrawButtonRest(Pen& pen, const NoteLength& form, float width, float height) {
    const float unit = pen.unit, line = static_cast<float>(pen.line);
    const RestExtent extent = ExtentOf(form);
    const float wide = extent.left + extent.right + RestExtras(form);
    const float x = (width - wide * unit) / 2 + extent.left * unit;
    if (form.division <= 2) {
        // Without a staff line the two bars could not be told apart.
        const float row = WholePixel(height / 2 - line / 2);
        AddRectangle(pen.raster, WholePixel(x - 0.95F * unit), row, WholePixel(x + 0.95F * unit), row + line);
        DrawRest(pen, form, x, row, row);
        const float y = row + line / 2 + (form.division == 1 ? unit : 0);
        DrawRestExtras(pen, form, x + 0.25F * unit, y, width - 1);
        return;
    }
    const float top = form.triplet ? std::max(extent.top, 1.47F) : extent.top;
    const float y = (height + (top - extent.bottom) * unit) / 2;
    DrawRest(pen, form, x, y, 0);
    DrawRestExtras(pen, form, x, y, width - 1);
}

/// A note in the middle of a button of `width` x `height` pixels.
NotePlan ButtonNotePlan(const Pen& pen, const NoteLength& form, float width, float height) {
    const float unit = pen.unit, line = static_cast<float>(pen.line);
    const float dots = form.dots == 0 ? 0 : 0.22F + 0.36F + (form.dots == 2 ? 0.5F : 0);
    const float flags = FlagsOf(form) > 0 ? 0.85F : 0;
    const float wide = HeadWidth(form) + std::max(dots, flags);
    const float stem = form.division == 1 ? 0.5F : 3.5F;
    const float left = (width - wide * unit) / 2;
    const float edge = left + HeadWidth(form) * unit - line;
    NotePlan plan;
    plan.form = form;
    plan.head_half = HeadWidth(form) * unit / 2;
    plan.head_x = WholePixel(edge) + line - plan.head_half;
    plan.head_y = WholePixel(height / 2 + (stem - 0.46F) * unit / 2) + 0.5F;
    if (form.division == 1) plan.head_y = height / 2;
    plan.stem_end = WholePixel(plan.head_y - stem * unit);
    plan.flag_width = 0.92F * unit;
    plan.dots = {.count = form.dots,
                 .gap = 0.22F * unit,
                 .size = 0.36F * unit,
                 .step = 0.5F * unit,
                 .right_limit = width - 1};
    plan.three = {
        .left = plan.head_x - 0.62F * unit, .bottom = plan.head_y - 0.9F * unit, .height = 1.1F * unit};
    return plan;
}

bool IsNotePicture(int picture) {
    return (picture >= 1 && picture <= kLengthCodes) ||
           (picture >= kFirstStemDown && picture <= kLastStemDown);
}

} // namespace

int StaffLinePixels(float pixels_per_twip) {
    return std::max(1, static_cast<int>(pixels_per_twip * 0.115F * kStaffSpace + 0.5F));
}

int StaffLineRow(float y) {
    return static_cast<int>(y + kRounding);
}

CoverageMask NotePictureMask(const StripPicture& shown, const PixelGrid& grid) {
    if (shown.picture < 1 || shown.picture > kLastPicture) return {};
    const float scale = grid.pixels_per_twip;
    const PixelBox edges = BoxOf(kPictureWidth, kPictureHeight, grid);
    if (shown.picture == kBarLinePicture) return BarLineMask(edges, StaffLinePixels(scale));
    if (shown.picture == kUnknownPicture) return UnknownMask(edges, scale);
    Raster raster = BoxRaster(edges);
    Pen pen{raster, kStaffSpace * scale, StaffLinePixels(scale)};
    if (IsNotePicture(shown.picture)) {
        DrawNote(pen, StripNotePlan(shown, {pen.unit, static_cast<float>(pen.line), scale, edges}));
    } else {
        DrawStripRest(pen, shown.picture, scale, edges);
    }
    CoverageMask mask = FinishMask(raster);
    KeepInside(mask, edges);
    return mask;
}

HeadSpan HeadSpanOf(int picture) {
    const NoteLength form = FormOf(picture);
    return {BoxPlanOf(form).head_left, static_cast<int>(HeadWidthInBox(form) * kStaffSpace)};
}

bool HasRoomForSharp(int picture) {
    return IsNotePicture(picture);
}

CoverageMask ButtonPictureMask(int picture, int width, int height, float pixels_per_twip) {
    if (picture < 1 || picture > 2 * kLengthCodes || width < 1 || height < 1) return {};
    const float w = static_cast<float>(width), h = static_cast<float>(height);
    // One scale for all buttons: the tallest picture has 4 spaces, the widest 2.7.
    const float unit = std::max(2.0F, std::min({kStaffSpace * pixels_per_twip, (h - 6) / 4, (w - 6) / 2.7F}));
    Raster raster = MakeRaster(width, height);
    Pen pen{raster, unit, StaffLinePixels(unit / kStaffSpace)};
    if (picture > kLengthCodes)
        DrawButtonRest(pen, FormOf(picture), w, h);
    else
        DrawNote(pen, ButtonNotePlan(pen, FormOf(picture), w, h));
    return FinishMask(raster);
}

CoverageMask ClefMask(const PixelGrid& grid) {
    const float scale = grid.pixels_per_twip;
    Raster raster = BoxRaster(BoxOf(kClefBox.width, kClefBox.height, grid));
    Pen pen{raster, kStaffSpace * scale, StaffLinePixels(scale)};
    constexpr int kLineOfG = 1530;
    const float x = grid.origin_x + 120 * scale;
    const int row = StaffLineRow(grid.origin_y + static_cast<float>(kLineOfG - kClefBox.top) * scale);
    const float y = static_cast<float>(row) + static_cast<float>(pen.line) / 2;
    Put(pen, kTrebleClef, x, y);
    Put(pen, kEight, x + 1.42F * pen.unit, y - 4.5F * pen.unit, 1.25F, 1.25F);
    return FinishMask(raster);
}

} // namespace tonex
