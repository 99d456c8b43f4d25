// The pictures of the program: notes, rests, bar line, clef, toolbar and program icons, all drawn from our
// own outlines at the scale asked for. Lengths in twips where nothing else is said; masks are in pixels.
#pragma once

#include "pictures/raster.h"
#include "view/measures.h"

#include <cstdint>
#include <vector>

namespace tonex {

inline constexpr int kRestMiddle = 210; ///< the middle line in a rest's picture
inline constexpr int kBarLinePicture = 58;
inline constexpr int kUnknownPicture = 59; ///< of an entry that the editor does not know
inline constexpr int kLastPicture = 59;

/// A box in the coordinates of the staff panel, in twips.
struct PictureBox {
    int left, top, width, height;
};

/// Where the treble clef with its small 8 stands when the staff lines are at 1170, 1290, 1410, 1530 and 1650.
inline constexpr PictureBox kClefBox{60, 810, 600, 1080};

/// How thick staff and ledger lines are at this scale, in pixels (1 up to 150 %, 2 at 200 %).
int StaffLinePixels(float pixels_per_twip);

/// The first pixel row of a staff or ledger line at the height `y` (in pixels, 0 or more): lines are always
/// whole rows, also where a scale puts them between two (125 %), and the pictures are fitted to lines so
/// drawn.
int StaffLineRow(float y);

/// How twips fall on pixels.
struct PixelGrid {
    float pixels_per_twip = 1 / 15.0F;
    /// Where in its pixel (0 to 1) the top left corner of a picture's box lies: mask pixel (0, 0) is the
    /// pixel that holds the corner.
    float origin_x = 0, origin_y = 0;
};

/// A picture of the strip as it is asked for.
struct StripPicture {
    int picture = 0; ///< 1 to 20 notes with stem up (20 lengths), 21 to 40 rests of the same lengths, 41 to
                     ///< 57 notes of lengths 1 to 17 with stem down, 58 the bar line, 59 the sign of an
                     ///< unknown entry
    bool sharp = false;        ///< with a sharp sign, drawn where HasRoomForSharp says so
    int staff_offset = 0;      ///< twips
    bool head_on_line = false; ///< the head stands on a staff or ledger line, so that dots belong to the
                               ///< space above it
};

/// A picture of the strip in its box of 300 x 480 twips. Nothing is drawn outside the box, but for the bar
/// line, which covers the rows of the staff lines at the box's top and bottom whole. A note's head has its
/// centre `kHeadCentre - staff_offset` below the box's top, as the rows of the lines have it; a rest's middle
/// line lies at `kRestMiddle`, as does the middle of the unknown entry's sign. An unknown picture number
/// gives an empty mask (width and height 0).
CoverageMask NotePictureMask(const StripPicture& shown, const PixelGrid& grid);

/// From where to where a note's head reaches in its picture, in twips from the left edge of the box: ledger
/// lines follow it.
struct HeadSpan {
    int left, width;
};
HeadSpan HeadSpanOf(int picture);

/// Whether a picture of the strip has room for a sharp sign left of its head. False for all but notes.
bool HasRoomForSharp(int picture);

/// The picture of a length button (1 to 20 notes, 21 to 40 rests), optically centred in `width` x `height`
/// pixels and made smaller where it does not fit.
CoverageMask ButtonPictureMask(int picture, int width, int height, float pixels_per_twip);

/// The treble clef with a small 8 above it, in the box kClefBox.
CoverageMask ClefMask(const PixelGrid& grid);

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

/// A toolbar icon of `size_px` x `size_px` pixels (16 to 64 look best).
std::vector<ColourLayer> ToolIconLayers(ToolIcon icon, int size_px);

/// Layers of `size_px` x `size_px` pixels painted over each other, row-major, as straight alpha, red, green,
/// blue from the highest byte down: a pixel that is covered by half has its colour whole and its alpha half.
std::vector<std::uint32_t> FlattenLayers(const std::vector<ColourLayer>& layers, int size_px);

/// The program icon, `size_px` x `size_px`, row-major, as premultiplied alpha, red, green, blue from the
/// highest byte down.
std::vector<std::uint32_t> ProgramIconPixels(int size_px);

} // namespace tonex
