// PNG files for the tools that draw, written by libpng.
#pragma once

#include <png.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace tonex {

/// The bytes of a PNG file of `pixels`, row-major, with 3 (red, green, blue) or 4 (and alpha, not
/// premultiplied) bytes a pixel. Ends the program when libpng can not make it.
inline std::string PngFile(int width, int height, int channels, const std::vector<std::uint8_t>& pixels) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = channels == 4 ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    std::string bytes(PNG_IMAGE_PNG_SIZE_MAX(image), '\0');
    png_alloc_size_t size = bytes.size();
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels.data(), 0, nullptr) == 0) {
        std::fprintf(stderr, "PNG: %s\n", image.message);
        std::exit(1);
    }
    bytes.resize(size);
    return bytes;
}

} // namespace tonex
