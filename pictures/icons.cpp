#include "pictures/glyphs.h"

namespace tonex {

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

} // namespace tonex
