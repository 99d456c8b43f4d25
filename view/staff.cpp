#include "view/staff.h"

#include "pictures/glyphs.h"
#include "score/int16.h"
#include "view/measures.h"

#include <cmath>

namespace tonex {

namespace {

constexpr std::int16_t kStemDownFrom = 50;      ///< pitch
constexpr std::uint16_t kLastCodeWithStem = 17; ///< whole notes have none
constexpr int kStemDownPictures = 40;           ///< from a note's picture to the same with its stem down

} // namespace

std::int16_t PictureOf(std::uint16_t code, std::uint16_t pitch) {
    if (code == kSeparator) return kBarLinePicture;
    if (code == kEmpty) return 0;
    if (!IsNote(code) && !IsRest(code)) return kUnknownPicture;
    const bool stem_down = AsSigned(pitch) >= kStemDownFrom && code <= kLastCodeWithStem;
    return static_cast<std::int16_t>(stem_down ? code + kStemDownPictures : code);
}

std::int16_t StaffOffsetOf(int line_space, float twips_per_pixel_y) {
    const auto scale = static_cast<int>(std::nearbyint(static_cast<double>(twips_per_pixel_y) * 16));
    return static_cast<std::int16_t>(std::nearbyint((2 * line_space - scale) * 5 / 6.0));
}

int HeadCentreOf(std::int16_t staff_position, std::int16_t staff_offset) {
    return staff_position + kHeadCentre - staff_offset;
}

int PictureStandsAt(int picture, std::int16_t top, std::int16_t staff_offset) {
    if (IsNotePicture(picture)) return HeadCentreOf(top, staff_offset);
    return picture == kBarLinePicture ? top : kMiddleStaffLine;
}

} // namespace tonex
