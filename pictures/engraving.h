// The parts that notes and rests are put together from: heads, stems, flags, dots, sharps, the 3 of a
// triplet. Strip and buttons share them. Lengths in pixels where nothing else is said; a space is the
// distance of two staff lines.
#pragma once

#include "pictures/raster.h"
#include "score/codes.h"

namespace tonex {

/// What a length in single precision may lack of a whole pixel.
inline constexpr float kRounding = 0.002F;

/// The sheet that is drawn on.
struct Pen {
    Raster& raster;
    float unit; ///< pixels of a space
    int line;   ///< pixels of a staff line, and of a stem
};

/// Dots behind a head or a rest. They stand on whole pixels.
struct Dots {
    int count = 0;
    int size = 0;  ///< of one
    int gap = 0;   ///< before the first
    int apart = 0; ///< between two
    float left = 0;
    float middle = 0; ///< their height
};

/// The flags at a stem's free end.
struct Flags {
    int count = 0;
    float stem_left = 0, stem_end = 0;
    bool up = true;     ///< the way of the stem
    bool brief = false; ///< shorter, because dots stand below them
};

/// A sharp; none when the width is 0.
struct Sharp {
    float left = 0, width = 0;
};

/// The 3 of a triplet.
struct Three {
    float middle = 0; ///< from left to right
    float bottom = 0, height = 0;
};

/// Where the parts of a note stand.
struct Note {
    NoteLength form{};
    bool up = true;
    float head_left = 0, head_width = 0;
    float head_middle = 0; ///< height of the head's centre
    float stem_end = 0;    ///< height of the stem's free end
    Dots dots;
    Sharp sharp;
    Three three;
};

/// The nearest whole pixel, from two alike the upper one.
float WholePixel(float value);

/// How many flags a length has, 0 to 3.
int FlagsOf(const NoteLength& form);
/// Whole pixels, so that a head is as wide beside a stem up as beside a stem down.
float BlackHeadWidth(float unit);
float WholeHeadWidth(float unit);
/// 3, 4, 5 and 6 pixels for spaces of 8, 10, 12 and 16.
int DotSize(float unit);
/// Gap before the dots, and between two, where there is room.
int DotGap(float unit);
int DotsApart(float unit);
/// How wide dots are together, with the gap before them.
float WidthOf(const Dots& dots);
/// How far the flags of a stem reach from its left edge.
float FlagWidth(float unit, bool up);

/// Adds an outline whose origin is at (x, y), in the size that the pen's space gives it, but so many times as
/// wide and as high; below 0 it is turned over.
void Put(const Pen& pen, Outline outline, float x, float y, float wide = 1, float high = 1);
/// Adds all parts of a note but its ledger lines.
void DrawNote(const Pen& pen, const Note& note);
/// Adds round dots that stand alike on the pixels: on the middle of one when they are an odd number of pixels
/// wide, else between two.
void DrawDots(const Pen& pen, const Dots& dots);
/// Adds the 3 of a triplet.
void DrawThree(const Pen& pen, const Three& three);

/// How far a rest reaches from its middle without dots and 3, in spaces: to both sides, above the middle line
/// and below it. The bars of whole and half rests go by their line instead.
struct RestExtent {
    float half_width, top = 0, bottom = 0;
};
RestExtent ExtentOf(const NoteLength& form);
/// How wide a rest is; whole pixels for the bars of whole and half rests.
float RestWidth(const NoteLength& form, float unit);
/// A rest from `left` on whose middle line is at the height `middle`; `line_row` is where the pixel rows of
/// the staff line begin that a whole rest hangs from or a half rest sits on.
void DrawRest(const Pen& pen, const NoteLength& form, float left, float middle, float line_row);

} // namespace tonex
