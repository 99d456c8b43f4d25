#include "pictures/glyphs.h"

#include "pictures/outlines.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tonex {

namespace {

constexpr int kNotes = 20;
constexpr int kFirstStemDown = 41, kLastStemDown = 57, kBarLine = 58;

/// What a length code looks like.
struct NoteForm {
    int division; ///< 1, 2, 4, 8, 16, 32
    int dots;
    bool triplet;
};

/// By length code less 1.
constexpr NoteForm kForms[kNotes] = {{32, 0, false}, {32, 0, true}, {16, 0, false}, {16, 1, false},
                                     {16, 2, false}, {16, 0, true}, {8, 0, false},  {8, 1, false},
                                     {8, 2, false},  {8, 0, true},  {4, 0, false},  {4, 1, false},
                                     {4, 2, false},  {4, 0, true},  {2, 0, false},  {2, 1, false},
                                     {2, 2, false},  {1, 0, false}, {1, 1, false},  {1, 2, false}};

// Lengths in staff spaces from here on, where nothing else is said.
constexpr float kHeadWidth = 1.19F, kWholeWidth = 1.52F, kHeadHalfHeight = 0.46F;
constexpr float kStemJoin = 0.17F; ///< how far above its centre a head is widest to the right
constexpr float kFlagWidth = 0.71F, kFlagHeight = 1.49F, kInnerFlagHeight = 1.0F;
constexpr float kRestSlant = 0.25F; ///< a short rest's stem leans by this for each space of height

/// The sheet that is drawn on.
struct Pen {
    Raster& raster;
    float unit; ///< pixels of a staff space
    int line;   ///< pixels of a stem
};

/// Where the parts of a note stand, in pixels.
struct NotePlan {
    NoteForm form{};
    bool up = true;
    float head_x = 0, head_y = 0; ///< centre of the head
    float head_half = 0;          ///< half of its width
    float stem_end = 0;           ///< height of the stem's free end
    float flag_width = 0;
    float sharp_left = 0, sharp_width = 0; ///< no sharp when the width is 0
    float dot_gap = 0, dot_size = 0, dot_step = 0;
    float right_limit = 0; ///< of the dots
    bool head_on_line = false;
    float three_x = 0, three_y = 0, three_height = 0; ///< left and bottom of the triplet's 3
};

int FlagsOf(const NoteForm& form) {
    return form.division >= 32 ? 3 : form.division >= 16 ? 2 : form.division >= 8;
}

float HeadWidth(const NoteForm& form) {
    return form.division == 1 ? kWholeWidth : kHeadWidth;
}

/// In the strip's narrow box dots take some of the head's width.
float HeadWidthInBox(const NoteForm& form) {
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

/// Flags from a stem's free end towards its head, together `length` pixels high.
void DrawFlags(Pen& pen, int count, float stem_left, float end, bool up, float length, float width) {
    if (count == 0) return;
    const float way = up ? 1.0F : -1.0F;
    const float wide = width / (kFlagWidth * pen.unit);
    if (count == 1) {
        Put(pen, kFlag, stem_left, end, wide, way * length / (kFlagHeight * pen.unit));
        return;
    }
    // Whole pixels apart, so that all of them look alike.
    const float step = std::max(1.0F, WholePixel(length * (count == 2 ? 0.38F : 0.28F)));
    const float height = length - step * static_cast<float>(count - 1);
    for (int i = 0; i < count; ++i)
        Put(pen, kInnerFlag, stem_left, end + way * step * static_cast<float>(i), wide,
            way * height / (kInnerFlagHeight * pen.unit));
}

/// How high the flags are together, in pixels: as high as they look best, less where the dots or the head are
/// in their way.
float FlagLength(const Pen& pen, const NotePlan& plan, bool dots_below) {
    constexpr float kShare[] = {0, 0.72F, 0.8F, 0.9F};
    constexpr float kLeast[] = {0, 1.2F, 1.35F, 1.5F};
    const float stem = std::abs(plan.head_y - plan.stem_end);
    // Beside a very short stem they reach down to the head, which is better than flags pressed flat.
    const float wish = std::max(stem * kShare[FlagsOf(plan.form)], kLeast[FlagsOf(plan.form)] * pen.unit);
    // A flag that rises from below ends right of the head's lowest part.
    float room = stem - (FlagsOf(plan.form) > 2 ? 0.4F : 0.48F) * pen.unit;
    if (plan.up && plan.form.dots == 0) room = stem + 0.4F * pen.unit;
    if (plan.up && plan.form.dots > 0)
        room = stem - (dots_below ? -0.1F : plan.head_on_line ? 0.84F : 0.36F) * pen.unit;
    return std::max(std::min(wish, room), 0.4F * pen.unit);
}

/// Round dots that stand alike on the pixels: on the middle of one when they are an odd number of pixels
/// wide, else between two. `after` is where ends what
/// they follow, `limit` how far right they may reach.
void DrawDots(Pen& pen, int count, float after, float gap, float y, float size, float step, float limit) {
    if (count == 0) return;
    const float pixels = std::max(1.0F, WholePixel(size)), half = pixels / 2;
    const float centre_y = std::floor(y - half + 0.5F) + half;
    const float apart = std::max(pixels + 1, WholePixel(step));
    // At least one pixel stays free between the dots and what stands before them.
    const float first = std::max(std::ceil(after + gap - 0.3F), std::ceil(after - 0.25F) + 1);
    const float wide = pixels + apart * static_cast<float>(count - 1);
    const float x = std::min(first, std::floor(limit + 0.002F) - wide) + half;
    const float radius = std::max(size, pixels) / 2;
    for (int i = 0; i < count; ++i)
        AddEllipse(pen.raster, x + apart * static_cast<float>(i), centre_y, radius, radius);
}

/// A sharp whose middle is at the height y. Its two uprights stand on whole pixels.
void DrawSharp(Pen& pen, float left, float y, float width) {
    const float thin = std::max(1.0F, WholePixel(0.1F * pen.unit));
    const float first = WholePixel(left + width * 0.16F);
    const float second = first + std::max(thin + 1, WholePixel(width * 0.68F - thin));
    const float lean = 0.11F * pen.unit, high = 1.15F * pen.unit;
    AddRectangle(pen.raster, first, y - high + lean, first + thin, y + high + lean / 2);
    AddRectangle(pen.raster, second, y - high - lean / 2, second + thin, y + high - lean);
    const float middle = (first + second + thin) / 2, thick = 0.24F * pen.unit;
    const float reach = std::min(width / 2, middle - left);
    for (const float bar : {-0.42F * pen.unit, 0.42F * pen.unit}) {
        const PathStep steps[] = {{PathStep::Move, 0, 0, 0, 0, -1, -1},
                                  {PathStep::Line, 0, 0, 0, 0, 1, -1},
                                  {PathStep::Line, 0, 0, 0, 0, 1, 1},
                                  {PathStep::Line, 0, 0, 0, 0, -1, 1},
                                  {PathStep::Close, 0, 0, 0, 0, 0, 0}};
        Placement slanted;
        slanted.xx = reach;
        slanted.yx = -lean;
        slanted.yy = -thick / 2;
        slanted.dx = middle;
        slanted.dy = y + bar;
        AddOutline(pen.raster, steps, slanted);
    }
}

void DrawThree(Pen& pen, float left, float bottom, float height) {
    Put(pen, kThree, left, bottom, height / pen.unit, height / pen.unit);
}

void DrawNote(Pen& pen, const NotePlan& plan) {
    const NoteForm& form = plan.form;
    const float half = plan.head_half, line = static_cast<float>(pen.line);
    Put(pen,
        form.division == 1   ? kWholeHead
        : form.division == 2 ? kHalfHead
                             : kBlackHead,
        plan.head_x, plan.head_y, 2 * half / (HeadWidth(form) * pen.unit));
    const float stem_length = std::abs(plan.head_y - plan.stem_end) / pen.unit;
    // Beside a short stem there is no place for flags above a dot that is raised off its line.
    const bool dots_below =
        plan.head_on_line && plan.up && FlagsOf(form) > 0 && stem_length < (FlagsOf(form) > 1 ? 2.5F : 1.9F);
    if (form.division > 1) {
        const float left = plan.up ? plan.head_x + half - line : plan.head_x - half;
        const float join = plan.head_y + (plan.up ? -kStemJoin : kStemJoin) * pen.unit;
        AddRectangle(pen.raster, left, std::min(join, plan.stem_end), left + line,
                     std::max(join, plan.stem_end));
        DrawFlags(pen, FlagsOf(form), left, plan.stem_end, plan.up, FlagLength(pen, plan, dots_below),
                  plan.flag_width);
    }
    const float raised = plan.head_on_line ? (dots_below ? 0.5F : -0.5F) * pen.unit : 0;
    DrawDots(pen, form.dots, plan.head_x + half, plan.dot_gap, plan.head_y + raised, plan.dot_size,
             plan.dot_step, plan.right_limit);
    if (plan.sharp_width > 0) DrawSharp(pen, plan.sharp_left, plan.head_y, plan.sharp_width);
    if (form.triplet) DrawThree(pen, plan.three_x, plan.three_y, plan.three_height);
}

/// How wide and high a rest is without dots and 3, in spaces: from `left` of its anchor to `right`, from
/// `top` above the middle line to `bottom` below it.
struct RestExtent {
    float left, right, top, bottom;
};

RestExtent ExtentOf(const NoteForm& form) {
    switch (form.division) {
    case 1:
    case 2: return {0.6F, 0.6F, form.division == 1 ? 1.0F : 0.55F, form.division == 1 ? -0.45F : 0.0F};
    case 4: return {0.5F, 0.5F, 1.47F, 1.47F};
    case 8: return {0.5F, 0.5F, 0.78F, 1.0F};
    case 16: return {0.62F, 0.62F, 0.78F, 1.95F};
    default: return {0.75F, 0.75F, 0.78F, 2.42F};
    }
}

/// A rest around x whose middle line is at the height y; `bar_line` is where the pixel rows of the staff line
/// begin that a whole rest hangs from or a half rest sits on.
void DrawRest(Pen& pen, const NoteForm& form, float x, float y, float line_row) {
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

NoteForm FormOf(int picture) {
    if (picture >= kFirstStemDown) return kForms[picture - kFirstStemDown];
    return kForms[(picture - 1) % kNotes];
}

/// What a length in single precision may lack of a whole pixel.
constexpr float kRounding = 0.002F;

/// A picture's box of twips in pixels; where it ends on a whole pixel, rounding must not add one more.
struct PixelBox {
    float left, top, right, bottom;
};

PixelBox BoxOf(int width, int height, float scale, float origin_x, float origin_y) {
    return {origin_x, origin_y, origin_x + static_cast<float>(width) * scale,
            origin_y + static_cast<float>(height) * scale};
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
        std::uint8_t& alpha = mask.alpha[static_cast<std::size_t>(y * mask.width + x)];
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

BoxPlan BoxPlanOf(const NoteForm& form) {
    if (form.division == 1) return form.dots == 2 ? BoxPlan{61, 6, 29, 37, 58} : BoxPlan{80, 10, 36, 0, 72};
    return form.dots == 2 ? BoxPlan{74, 9, 31, 37, 68} : BoxPlan{82, 16, 42, 0, 72};
}

void DrawStripNote(Pen& pen, int picture, bool sharp, float scale, const PixelBox& edges, int staff_offset,
                   bool head_on_line) {
    NotePlan plan;
    plan.form = FormOf(picture);
    plan.up = picture < kFirstStemDown;
    plan.head_on_line = head_on_line;
    const BoxPlan box = BoxPlanOf(plan.form);
    const float half = HeadWidthInBox(plan.form) * pen.unit / 2, line = static_cast<float>(pen.line);
    plan.head_half = half;
    const float left = edges.left + static_cast<float>(box.head_left) * scale;
    plan.head_x = left + half;
    // The whole picture moves with its stem to the next whole pixel, so that the parts keep their distances.
    const float edge = plan.up ? left + 2 * half - line : left;
    const float shift = plan.form.division == 1 ? 0 : WholePixel(edge) - edge;
    plan.head_x += shift;
    // Lines and spaces are whole steps of 60 twips apart and share their fraction of a pixel: a head follows
    // the row that a line at its height would have.
    const float head = edges.top + static_cast<float>(kHeadCentre - staff_offset) * scale;
    plan.head_y = static_cast<float>(StaffLineRow(head)) + line / 2;
    plan.stem_end = plan.up ? std::ceil(edges.top) : std::floor(edges.bottom + kRounding);
    const float room = edges.right - 3 * scale - (plan.head_x + half);
    plan.flag_width = plan.up ? room + line : 0.95F * pen.unit;
    plan.right_limit = edges.right;
    plan.dot_gap = static_cast<float>(box.dot_gap) * scale;
    plan.dot_size = static_cast<float>(box.dot_size) * scale;
    plan.dot_step = static_cast<float>(box.dot_step) * scale;
    if (sharp) {
        plan.sharp_width = static_cast<float>(box.sharp_width) * scale;
        plan.sharp_left = std::max(edges.left, left + shift - plan.sharp_width - 6 * scale);
    }
    // The 3 stands on the side of the head, where no stem is.
    const float above = plan.head_y - kHeadHalfHeight * pen.unit - edges.top;
    plan.three_height = std::min(0.95F * pen.unit, above - 0.14F * pen.unit - 2 * scale);
    if (plan.up) plan.three_height = 0.95F * pen.unit;
    plan.three_x = plan.head_x - 0.36F * plan.three_height;
    plan.three_y =
        plan.up ? plan.head_y + (kHeadHalfHeight + 0.3F) * pen.unit + plan.three_height
                : edges.top + plan.three_height + std::max(0.0F, above - plan.three_height - 0.3F * pen.unit);
    DrawNote(pen, plan);
}

/// How far dots and the 3 reach beyond a rest, in spaces.
float RestExtras(const NoteForm& form) {
    if (form.triplet) return form.division == 4 ? 0.7F : 0.85F;
    return form.dots == 0 ? 0 : form.dots == 1 ? 0.65F : 1.15F;
}

void DrawRestExtras(Pen& pen, const NoteForm& form, float x, float y, float right_limit) {
    const RestExtent extent = ExtentOf(form);
    float right = x + extent.right * pen.unit;
    if (form.division <= 2)
        right = WholePixel(x - extent.left * pen.unit) + WholePixel((extent.left + extent.right) * pen.unit);
    DrawDots(pen, form.dots, right, 0.16F * pen.unit, y - pen.unit / 2, 0.34F * pen.unit, 0.48F * pen.unit,
             right_limit);
    if (form.triplet)
        DrawThree(pen, form.division == 4 ? x + 0.55F * pen.unit : right + 0.16F * pen.unit,
                  y - 0.6F * pen.unit, 0.85F * pen.unit);
}

void DrawStripRest(Pen& pen, int picture, float scale, const PixelBox& edges) {
    const NoteForm form = FormOf(picture);
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

bool IsNote(int picture) {
    return (picture >= 1 && picture <= kNotes) || (picture >= kFirstStemDown && picture <= kLastStemDown);
}

} // namespace

int StaffLinePixels(float pixels_per_twip) {
    return std::max(1, static_cast<int>(pixels_per_twip * 0.115F * kStaffSpace + 0.5F));
}

int StaffLineRow(float y) {
    return static_cast<int>(y + kRounding);
}

CoverageMask NotePictureMask(int picture, bool sharp, float pixels_per_twip, float origin_x, float origin_y,
                             int staff_offset, bool head_on_line) {
    if (picture < 1 || picture > kLastPicture) return {};
    const PixelBox edges = BoxOf(kPictureWidth, kPictureHeight, pixels_per_twip, origin_x, origin_y);
    if (picture == kBarLine) return BarLineMask(edges, StaffLinePixels(pixels_per_twip));
    Raster raster = BoxRaster(edges);
    Pen pen{raster, kStaffSpace * pixels_per_twip, StaffLinePixels(pixels_per_twip)};
    if (IsNote(picture)) {
        DrawStripNote(pen, picture, sharp, pixels_per_twip, edges, staff_offset, head_on_line);
    } else {
        DrawStripRest(pen, picture, pixels_per_twip, edges);
    }
    CoverageMask mask = FinishMask(raster);
    KeepInside(mask, edges);
    return mask;
}

HeadSpan HeadSpanOf(int picture) {
    const NoteForm form = FormOf(picture);
    return {BoxPlanOf(form).head_left, static_cast<int>(HeadWidthInBox(form) * kStaffSpace)};
}

bool HasRoomForSharp(int picture) {
    return IsNote(picture);
}

CoverageMask ButtonPictureMask(int picture, int width, int height, float pixels_per_twip) {
    if (picture < 1 || picture > 2 * kNotes || width < 1 || height < 1) return {};
    const NoteForm form = FormOf(picture);
    const float w = static_cast<float>(width), h = static_cast<float>(height);
    // One scale for all buttons: the tallest picture has 4 spaces, the widest 2.7.
    const float unit = std::max(2.0F, std::min({kStaffSpace * pixels_per_twip, (h - 6) / 4, (w - 6) / 2.7F}));
    Raster raster = MakeRaster(width, height);
    Pen pen{raster, unit, StaffLinePixels(unit / kStaffSpace)};
    const float line = static_cast<float>(pen.line);
    const float dots = form.dots == 0 ? 0 : 0.22F + 0.36F + (form.dots == 2 ? 0.5F : 0);
    if (picture > kNotes) {
        const RestExtent extent = ExtentOf(form);
        const float wide = extent.left + extent.right + RestExtras(form);
        const float x = (w - wide * unit) / 2 + extent.left * unit;
        const float top = form.triplet ? std::max(extent.top, 1.47F) : extent.top;
        float y = (h + (top - extent.bottom) * unit) / 2;
        if (form.division <= 2) {
            // Without a staff line the two bars could not be told apart.
            const float row = WholePixel(h / 2 - line / 2);
            AddRectangle(raster, WholePixel(x - 0.95F * unit), row, WholePixel(x + 0.95F * unit), row + line);
            DrawRest(pen, form, x, row, row);
            y = row + line / 2 + (form.division == 1 ? unit : 0);
        } else {
            DrawRest(pen, form, x, y, 0);
        }
        DrawRestExtras(pen, form, form.division <= 2 ? x + 0.25F * unit : x, y, w - 1);
        return FinishMask(raster);
    }
    NotePlan plan;
    plan.form = form;
    const float flags = FlagsOf(form) > 0 ? 0.85F : 0;
    const float wide = HeadWidth(form) + std::max(dots, flags);
    const float stem = form.division == 1 ? 0.5F : 3.5F;
    const float left = (w - wide * unit) / 2;
    const float edge = left + HeadWidth(form) * unit - line;
    plan.head_half = HeadWidth(form) * unit / 2;
    plan.head_x = WholePixel(edge) + line - plan.head_half;
    plan.head_y = WholePixel(h / 2 + (stem - 0.46F) * unit / 2) + 0.5F;
    if (form.division == 1) plan.head_y = h / 2;
    plan.stem_end = WholePixel(plan.head_y - stem * unit);
    plan.flag_width = 0.92F * unit;
    plan.right_limit = w - 1;
    plan.dot_gap = 0.22F * unit;
    plan.dot_size = 0.36F * unit;
    plan.dot_step = 0.5F * unit;
    plan.three_height = 1.1F * unit;
    plan.three_x = plan.head_x - 0.62F * unit;
    plan.three_y = plan.head_y - 0.9F * unit;
    DrawNote(pen, plan);
    return FinishMask(raster);
}

CoverageMask ClefMask(float pixels_per_twip, float origin_x, float origin_y) {
    Raster raster = BoxRaster(BoxOf(kClefBox.width, kClefBox.height, pixels_per_twip, origin_x, origin_y));
    Pen pen{raster, kStaffSpace * pixels_per_twip, StaffLinePixels(pixels_per_twip)};
    constexpr int kLineOfG = 1530;
    const float x = origin_x + 120 * pixels_per_twip;
    const int row = StaffLineRow(origin_y + static_cast<float>(kLineOfG - kClefBox.top) * pixels_per_twip);
    const float y = static_cast<float>(row) + static_cast<float>(pen.line) / 2;
    Put(pen, kTrebleClef, x, y);
    Put(pen, kEight, x + 1.42F * pen.unit, y - 4.5F * pen.unit, 1.25F, 1.25F);
    return FinishMask(raster);
}

} // namespace tonex
