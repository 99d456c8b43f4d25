// The pictures of the program: notes, rests, bar line, clef, toolbar and program icons, all drawn from our
// own outlines at the scale asked for. Lengths in twips where nothing else is said; masks are in pixels.
#pragma once

#include "pictures/raster.h"
#include "view/measures.h"

#include <cstdint>
#include <vector>

namespace tonex {

inline constexpr int kBarLinePicture = 58;
inline constexpr int kUnknownPicture = 59; ///< of an entry that the editor does not know
inline constexpr int kLastPicture = 59;

/// A box in the coordinates of the staff panel, in twips.
struct PictureBox {
    int left, top, width, height;
};

/// Where the treble clef with its small 8 stands when the staff lines are at 1170, 1290, 1410, 1530 and 1650.
inline constexpr PictureBox kClefBox{60, 810, 600, 1080};

/// How thick staff lines and stems are at this scale, in pixels (1 up to 150 %, 2 at 175 and 200 %).
int StaffLinePixels(float pixels_per_twip);

/// How thick bar lines and ledger lines are, in pixels (1 at 100 %, 2 at 125 and 150 %, 3 at 175 and 200 %):
/// thicker than staff lines, but for small scales, where a second pixel would be too much.
int BarLinePixels(float pixels_per_twip);

/// The first pixel row of a staff line at the height `y` (in pixels, 0 or more): lines are always whole rows,
/// also where a scale puts them between two (125 %), and the pictures are fitted to lines so drawn.
int StaffLineRow(float y);

/// Whether a picture of the strip is a note's.
bool IsNotePicture(int picture);

/// A picture of the strip as it is asked for.
struct StripPicture {
    int picture = 0; ///< 1 to 20 notes with stem up (20 lengths), 21 to 40 rests of the same lengths, 41 to
                     ///< 57 notes of lengths 1 to 17 with stem down, 58 the bar line, 59 the sign of an
                     ///< unknown entry
    bool sharp = false;       ///< with a sharp sign; only notes have one
    int y = kMiddleStaffLine; ///< twips below the panel's top: of the centre of a note's head, of the middle
                              ///< line for rests and the unknown entry, of the first line for the bar line
};

/// A column of the strip as it falls on pixels. Its left edge is a whole pixel, so that all heads stand
/// alike.
struct StripColumn {
    float pixels_per_twip = 1 / 15.0F;
    int width = 26; ///< pixels
};

/// A mask and the pixel of its upper left corner.
struct PlacedMask {
    int left = 0, top = 0;
    CoverageMask mask;
};

/// A picture of the strip, as wide as its column and as high as its ink; `left` is 0, the column's edge,
/// `top` counts from the panel's. An unknown picture number gives an empty mask (width and height 0).
PlacedMask StripPictureMask(const StripPicture& shown, const StripColumn& column);

/// A rectangle of whole pixels.
struct PixelBox {
    int left, top, right, bottom;
    bool operator==(const PixelBox&) const = default;
};

/// The ledger lines of a picture of the strip, from the staff to the head. They reach beyond the head evenly;
/// beside a sharp they end before it. Coordinates as for the mask.
std::vector<PixelBox> LedgerLineBoxes(const StripPicture& shown, const StripColumn& column);

/// The picture of a length button (1 to 20 notes, 21 to 40 rests), optically centred in `width` x `height`
/// pixels and made smaller where it does not fit.
CoverageMask ButtonPictureMask(int picture, int width, int height, float pixels_per_twip);

/// The treble clef with a small 8 above it, in the box kClefBox; its corner counts from the panel's.
PlacedMask ClefMask(float pixels_per_twip);

enum class ToolIcon {
    New,
    OpenPc,
    SavePc,
    OpenVeloxa,
    SaveVeloxa,
    Cut,
    Copy,
    Paste,
    Delete,
    Insert,
    Preview
};
inline constexpr int kToolIcons = 11;

/// One colour of a toolbar icon. Layers are painted in order, the first at the bottom.
struct ColourLayer {
    std::uint32_t rgb = 0; ///< red, green, blue from the highest byte down
    CoverageMask mask;
};

/// A toolbar icon of `size_px` x `size_px` pixels (16 to 64 look best). On a dark toolbar what has no paper
/// of its own behind it is light.
std::vector<ColourLayer> ToolIconLayers(ToolIcon icon, int size_px, bool on_dark = false);

/// Layers of `size_px` x `size_px` pixels painted over each other, row-major, as straight alpha, red, green,
/// blue from the highest byte down: a pixel that is covered by half has its colour whole and its alpha half.
std::vector<std::uint32_t> FlattenLayers(const std::vector<ColourLayer>& layers, int size_px);

/// The program icon, `size_px` x `size_px`, row-major, as premultiplied alpha, red, green, blue from the
/// highest byte down.
std::vector<std::uint32_t> ProgramIconPixels(int size_px);

} // namespace tonex
