// Files of the tools that draw; PNG by libpng.
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

/// Writes a file whole and gives the program's exit code: 1 when it could not be written, which is told.
inline int WriteFile(const char* path, const std::string& bytes) {
    std::FILE* file = std::fopen(path, "wb");
    if (file == nullptr) {
        std::perror(path);
        return 1;
    }
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    if (std::fclose(file) == 0 && written) return 0;
    std::fprintf(stderr, "%s: the file could not be written\n", path);
    return 1;
}

} // namespace tonex
