#include "pictures/engraving.h"

#include "pictures/outlines.h"
#include "score/rows.h"

#include <algorithm>
#include <cmath>

namespace tonex {

namespace {

// Lengths in spaces.
constexpr float kStemJoin = 0.12F;  ///< how far above its centre a head is widest to the right
constexpr float kRestSlant = 0.25F; ///< a short rest's stem leans by this for each space of height

/// How high the only flag of a stem up is above dots, which stand below it.
constexpr float kShortFlag = 0.8F;

Outline HeadOf(const NoteLength& form) {
    if (form.division == 1) return kWholeHead;
    return form.division == 2 ? kHalfHead : kBlackHead;
}

float OutlineWidth(const NoteLength& form) {
    return form.division == 1 ? kWholeHeadWidth : kHeadWidth;
}

/// The last of several flags has the tail, those before it end sooner. Dots below it and the head above three
/// flags of a stem down make the tail shorter.
Outline FlagOf(const Flags& flags, int index) {
    if (flags.count == 1) return kFlag;
    if (index < flags.count - 1) return kInnerFlag;
    return flags.brief || (flags.count == 3 && !flags.up) ? kShortLastFlag : kLastFlag;
}

/// Flags from the stem's free end towards its head, whole pixels apart, so that all of them look alike.
void DrawFlags(const Pen& pen, const Flags& flags) {
    const float way = flags.up ? 1.0F : -1.0F, pitch = WholePixel(0.8F * pen.unit);
    const float high = flags.count == 1 && flags.brief ? kShortFlag : 1;
    for (int i = 0; i < flags.count; ++i)
        Put(pen, FlagOf(flags, i), flags.stem_left, flags.stem_end + way * pitch * static_cast<float>(i),
            FlagWidth(pen.unit, flags.up) / pen.unit, way * high);
}

/// A bar of a sharp: `reach` to both sides of its middle, rising to the right.
void DrawSharpBar(const Pen& pen, float middle, float y, float reach, float lean) {
    const PathStep steps[] = {{.kind = PathStep::Move, .x = -1, .y = -1},
                              {.kind = PathStep::Line, .x = 1, .y = -1},
                              {.kind = PathStep::Line, .x = 1, .y = 1},
                              {.kind = PathStep::Line, .x = -1, .y = 1},
                              {PathStep::Close}};
    const float thick = 0.24F * pen.unit;
    Placement slanted;
    slanted.xx = reach;
    slanted.yx = -lean;
    slanted.yy = -thick / 2;
    slanted.dx = middle;
    slanted.dy = y;
    AddOutline(pen.raster, steps, slanted);
}

/// A sharp whose middle is at the height y. Its two uprights stand on whole pixels, the bars reach beyond
/// them.
void DrawSharp(const Pen& pen, const Sharp& sharp, float y) {
    const float thin = std::max(1.0F, WholePixel(0.1F * pen.unit));
    const float inside = sharp.width - 2 * thin - 0.14F * pen.unit;
    const float clear = std::max(1.0F, std::min(WholePixel(0.47F * pen.unit) - thin, std::floor(inside)));
    const float first = sharp.left + std::floor((sharp.width - clear - 2 * thin) / 2);
    const float second = first + thin + clear;
    const float lean = 0.11F * pen.unit, high = 1.35F * pen.unit;
    AddRectangle(pen.raster, first, y - high + lean, first + thin, y + high + lean / 2);
    AddRectangle(pen.raster, second, y - high - lean / 2, second + thin, y + high - lean);
    for (const float bar : {-0.46F * pen.unit, 0.46F * pen.unit})
        DrawSharpBar(pen, sharp.left + sharp.width / 2, y + bar, sharp.width / 2, lean);
}

void DrawStem(const Pen& pen, const Note& note) {
    if (note.form.division == 1) return;
    const float line = static_cast<float>(pen.line);
    const float left = note.up ? note.head_left + note.head_width - line : note.head_left;
    const float join = note.head_middle + (note.up ? -kStemJoin : kStemJoin) * pen.unit;
    AddRectangle(pen.raster, left, std::min(join, note.stem_end), left + line, std::max(join, note.stem_end));
    DrawFlags(pen, {.count = FlagsOf(note.form),
                    .stem_left = left,
                    .stem_end = note.stem_end,
                    .up = note.up,
                    .brief = note.up && note.form.dots > 0});
}

/// The bar of a whole rest below the rows of its line, or of a half rest above them, with them.
void DrawBarRest(const Pen& pen, const NoteLength& form, float left, float line_row) {
    const float right = left + RestWidth(form, pen.unit);
    const float high = WholePixel(0.52F * pen.unit) - 1, line = static_cast<float>(pen.line);
    const bool hangs = form.division == 1;
    AddRectangle(pen.raster, left, hangs ? line_row : line_row - high, right,
                 hangs ? line_row + line + high : line_row + line);
}

} // namespace

float WholePixel(float value) {
    return std::floor(value + 0.5F);
}

int FlagsOf(const NoteLength& form) {
    return form.division >= 32 ? 3 : form.division >= 16 ? 2 : form.division >= 8;
}

float BlackHeadWidth(float unit) {
    return WholePixel(kHeadWidth * unit);
}

float WholeHeadWidth(float unit) {
    return WholePixel(1.45F * unit);
}

int DotSize(float unit) {
    return std::max(1, static_cast<int>(0.41F * unit + 0.1F));
}

int DotGap(float unit) {
    return std::max(1, static_cast<int>(0.25F * unit + 0.5F + kRounding));
}

int DotsApart(float unit) {
    return std::max(1, static_cast<int>(std::floor(0.2F * unit + 0.5F)));
}

float WidthOf(const Dots& dots) {
    if (dots.count == 0) return 0;
    return static_cast<float>(dots.gap + dots.count * dots.size + (dots.count - 1) * dots.apart);
}

float FlagWidth(float unit, bool up) {
    return (up ? 0.95F : 1.1F) * unit;
}

void Put(const Pen& pen, Outline outline, float x, float y, float wide, float high) {
    Placement placement;
    placement.xx = pen.unit * wide / kOutlineUnits;
    placement.yy = -pen.unit * high / kOutlineUnits;
    placement.dx = x;
    placement.dy = y;
    AddOutline(pen.raster, outline, placement);
}

void DrawDots(const Pen& pen, const Dots& dots) {
    const float radius = static_cast<float>(dots.size) / 2;
    const float y = std::floor(dots.middle - radius + 0.5F) + radius;
    float x = std::ceil(dots.left - 0.25F) + static_cast<float>(dots.gap) + radius;
    for (int i = 0; i < dots.count; ++i) {
        AddEllipse(pen.raster, x, y, radius, radius);
        x += static_cast<float>(dots.size + dots.apart);
    }
}

void DrawThree(const Pen& pen, const Three& three) {
    const float size = three.height / pen.unit;
    Put(pen, kThree, three.middle - kThreeMiddle * three.height, three.bottom, size, size);
}

void DrawNote(const Pen& pen, const Note& note) {
    Put(pen, HeadOf(note.form), note.head_left + note.head_width / 2, note.head_middle,
        note.head_width / (OutlineWidth(note.form) * pen.unit));
    DrawStem(pen, note);
    DrawDots(pen, note.dots);
    if (note.sharp.width > 0) DrawSharp(pen, note.sharp, note.head_middle);
    if (note.form.triplet) DrawThree(pen, note.three);
}

RestExtent ExtentOf(const NoteLength& form) {
    switch (form.division) {
    case 1:
    case 2: return {.half_width = 0.6F};
    case 4: return {0.5F, 1.47F, 1.47F};
    case 8: return {0.5F, 0.78F, 1.0F};
    case 16: return {0.62F, 0.78F, 2.0F};
    default: return {0.75F, 1.78F, 2.0F};
    }
}

float RestWidth(const NoteLength& form, float unit) {
    const float width = 2 * ExtentOf(form).half_width * unit;
    return form.division <= 2 ? WholePixel(width) : width;
}

void DrawRest(const Pen& pen, const NoteLength& form, float left, float middle, float line_row) {
    const RestExtent extent = ExtentOf(form);
    const float unit = pen.unit;
    if (form.division <= 2) {
        DrawBarRest(pen, form, left, line_row);
        return;
    }
    if (form.division == 4) {
        Put(pen, kQuarterRest, left - 0.08F * unit, middle);
        return;
    }
    const float stem = left + RestWidth(form, unit);
    const float top = middle - (extent.top - 0.02F) * unit, foot = middle + extent.bottom * unit;
    const auto at = [&](float height) { return stem - (height - top) * kRestSlant; };
    const float thick = std::max(0.13F * unit, 1.0F);
    AddStroke(pen.raster, at(top) - thick / 2, top, at(foot) - thick / 2, foot, thick);
    for (int i = 0; i < FlagsOf(form); ++i) {
        const float height = top + static_cast<float>(i) * unit;
        Put(pen, kRestHook, at(height), height);
    }
}

} // namespace tonex
