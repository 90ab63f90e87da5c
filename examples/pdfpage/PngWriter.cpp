// SPDX-License-Identifier: MIT
#include "PngWriter.h"

#include <png.h>

#include <cmath>
#include <cstdio>

namespace PdfPage {
namespace {

// Only plain C values in here: libpng reports errors by longjmp.
bool Encode(std::FILE* file, const uint8_t* pixels, uint32_t width, uint32_t height, size_t strideBytes,
            uint32_t perMetre) {
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    if (!png)
        return false;
    png_infop info = png_create_info_struct(png);
    if (!info || setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, file);
    png_set_compression_level(png, 3);
    png_set_filter(png, 0, PNG_FILTER_SUB | PNG_FILTER_UP);
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_set_pHYs(png, info, perMetre, perMetre, PNG_RESOLUTION_METER);
    png_write_info(png, info);
    png_set_filler(png, 0, PNG_FILLER_AFTER);
    png_set_bgr(png);
    for (uint32_t y = 0; y < height; ++y)
        png_write_row(png, pixels + y * strideBytes);
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return true;
}

} // namespace

bool WritePng(std::FILE* file, const uint8_t* pixels, uint32_t width, uint32_t height, size_t strideBytes, float dpi) {
    return Encode(file, pixels, width, height, strideBytes, static_cast<uint32_t>(std::lround(dpi / 0.0254f))) &&
           std::fflush(file) == 0;
}

bool WritePng(const std::string& path, const uint8_t* pixels, uint32_t width, uint32_t height, size_t strideBytes,
              float dpi) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    const bool encoded = WritePng(file, pixels, width, height, strideBytes, dpi);
    const bool written = std::fclose(file) == 0 && encoded;
    if (!written)
        std::remove(path.c_str());
    return written;
}

} // namespace PdfPage
