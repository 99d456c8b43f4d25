#include "pictures/glyphs.h"

#include <cmath>

namespace tonex {

namespace {

Raster BoxRaster(int width, int height, float scale, float origin_x, float origin_y) {
    return MakeRaster(static_cast<int>(std::ceil(origin_x + static_cast<float>(width) * scale)),
                      static_cast<int>(std::ceil(origin_y + static_cast<float>(height) * scale)));
}

} // namespace

int StaffLinePixels(float pixels_per_twip) {
    return pixels_per_twip * 12 < 1.5F ? 1 : static_cast<int>(pixels_per_twip * 12 + 0.5F);
}

CoverageMask NotePictureMask(int picture, bool, float scale, float origin_x, float origin_y, int staff_offset, bool) {
    if (picture < 1 || picture > kLastPicture) return {};
    Raster raster = BoxRaster(kPictureWidth, kPictureHeight, scale, origin_x, origin_y);
    const float y = origin_y + static_cast<float>(kHeadCentre - staff_offset) * scale +
                    static_cast<float>(StaffLinePixels(scale)) / 2;
    const float x = origin_x + 150 * scale;
    if (picture == 58) {
        AddRectangle(raster, std::floor(x), 0, std::floor(x) + 1, static_cast<float>(raster.height));
    } else if (picture > 20 && picture < 41) {
        AddRectangle(raster, std::floor(x) - 4, std::floor(y), std::floor(x) + 5, std::floor(y) + 4);
    } else {
        AddEllipse(raster, x, y, 70 * scale, 55 * scale);
        if (picture > 40)
            AddRectangle(raster, std::floor(x - 70 * scale), y, std::floor(x - 70 * scale) + 1, y + 240 * scale);
        else
            AddRectangle(raster, std::floor(x + 60 * scale), 0, std::floor(x + 60 * scale) + 1, y);
    }
    return FinishMask(raster);
}

bool HasRoomForSharp(int picture) {
    return (picture >= 1 && picture <= 20) || (picture >= 41 && picture <= 57);
}

CoverageMask ButtonPictureMask(int picture, int width, int height, float scale) {
    if (picture < 1 || picture > 40) return {};
    Raster raster = MakeRaster(width, height);
    AddEllipse(raster, static_cast<float>(width) / 2, static_cast<float>(height) / 2, 70 * scale, 55 * scale);
    return FinishMask(raster);
}

CoverageMask ClefMask(float scale, float origin_x, float origin_y) {
    Raster raster = BoxRaster(kClefBox.width, kClefBox.height, scale, origin_x, origin_y);
    AddEllipse(raster, origin_x + 300 * scale, origin_y + 720 * scale, 120 * scale, 200 * scale);
    return FinishMask(raster);
}

std::vector<ColourLayer> ToolIconLayers(ToolIcon, int size_px) {
    Raster raster = MakeRaster(size_px, size_px);
    const float s = static_cast<float>(size_px);
    AddRoundRectangle(raster, 2, 2, s - 2, s - 2, 3);
    return {{0x3D6EA5, FinishMask(raster)}};
}

std::vector<std::uint32_t> ProgramIconPixels(int size_px) {
    if (size_px < 1) return {};
    return std::vector<std::uint32_t>(static_cast<std::size_t>(size_px) * static_cast<std::size_t>(size_px), 0xFF3D6EA5);
}

int NoteHeadLeft(int, bool) { return (kPictureWidth - 142) / 2; }

} // namespace tonex
