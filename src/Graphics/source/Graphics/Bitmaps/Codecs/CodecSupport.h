// SPDX-License-Identifier: MIT
// Helpers common to all codecs: bitmaps within the size limits, palettes, resolutions, and the rows of a bitmap being
// saved.
#pragma once

#include "../../ProcessHeap.h"
#include "ImageCodec.h"

namespace Graphics {

inline constexpr float kDefaultDpi = 96.0F;

/// Little-endian numbers in a file.
[[nodiscard]] inline uint32_t Load16(const uint8_t* p) noexcept { return p[0] | static_cast<uint32_t>(p[1]) << 8; }
[[nodiscard]] inline uint32_t Load32(const uint8_t* p) noexcept { return Load16(p) | Load16(p + 2) << 16; }

/// Replaces implausible resolutions, from a file or the host, by kDefaultDpi.
[[nodiscard]] float SaneDpi(double dpi) noexcept;

/// A new bitmap; the pixels are not cleared. Throws ImageError for a size of zero or beyond the bitmap limits.
/// Resolutions pass through SaneDpi.
[[nodiscard]] std::shared_ptr<SysMemBitmap> NewImage(uint64_t width, uint64_t height, GXPixelFormat format,
                                                     double dpiX = kDefaultDpi, double dpiY = kDefaultDpi);

/// Dots per inch from dots per metre: the roundest number that converts to this count, so that 96 is read back as 96.
[[nodiscard]] double DpiFromMetre(uint32_t dotsPerMetre) noexcept;
/// Dots per metre, rounded to the nearest; at least 1.
[[nodiscard]] uint32_t DotsPerMetre(float dpi) noexcept;

/// Grey levels 0 to 255, or 255 to 0.
[[nodiscard]] std::shared_ptr<const Palette> GreyPalette(bool inverted = false);
/// Black and white, or white and black.
[[nodiscard]] std::shared_ptr<const Palette> BitPalette(bool inverted = false);

/// The pixel form in which a bitmap is saved.
enum class SavedKind { Rgb, Rgba, Grey8, Palette8, Palette1 };

/// The rows of a bitmap in the form in which a codec writes them.
class SavedRows {
public:
    /// Rgb gives rows of BGR24, Rgba straight BGRA32, other kinds one byte or bit per pixel. `alpha` and `palettes`:
    /// whether the file format can hold alpha and palettes; `paletteAlpha`: whether palette colours may have alpha.
    /// Other content is converted; alpha that the format cannot hold is dropped.
    SavedRows(const SysMemBitmap& image, bool alpha, bool palettes, bool paletteAlpha);

    [[nodiscard]] SavedKind Kind() const noexcept { return m_kind; }
    [[nodiscard]] uint32_t Width() const noexcept { return static_cast<uint32_t>(m_view.width); }
    [[nodiscard]] uint32_t Height() const noexcept { return static_cast<uint32_t>(m_view.height); }
    [[nodiscard]] size_t RowBytes() const noexcept { return m_rowBytes; }
    /// 256 or 2 opaque or transparent colours, for the kinds with a palette; entries beyond the bitmap's palette are
    /// black.
    [[nodiscard]] const uint32_t* Colors() const noexcept { return m_colors; }
    [[nodiscard]] bool ColorsHaveAlpha() const noexcept { return m_colorsHaveAlpha; }
    /// 0 if the palette is black, white; 1 if it is white, black; else -1.
    [[nodiscard]] int BlackAndWhite() const noexcept;

    /// Valid until the next call. The padding bits of a one-bit row are 0.
    [[nodiscard]] uint8_t* Row(uint32_t y);
    /// Row with red first.
    [[nodiscard]] uint8_t* RowRgb(uint32_t y);

private:
    PixelView m_view;
    GXPixelFormat m_format;
    SavedKind m_kind;
    size_t m_rowBytes;
    bool m_colorsHaveAlpha = false;
    uint32_t m_colors[256] = {};
    HeapArray<uint8_t> m_row;
};

/// Throws ImageError unless `ok`.
inline void Require(bool ok) {
    if (!ok) {
        throw ImageError();
    }
}

} // namespace Graphics
