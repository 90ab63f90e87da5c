// SPDX-License-Identifier: MIT
// What the codecs have in common: bitmaps within the limits, palettes, resolutions, and the rows of a bitmap that is
// saved.
#pragma once

#include "../../ProcessHeap.h"
#include "ImageCodec.h"

namespace Graphics {

inline constexpr float kDefaultDpi = 96.0F;

/// Little-endian numbers of a file.
[[nodiscard]] inline uint32_t Load16(const uint8_t* p) noexcept { return p[0] | static_cast<uint32_t>(p[1]) << 8; }
[[nodiscard]] inline uint32_t Load32(const uint8_t* p) noexcept { return Load16(p) | Load16(p + 2) << 16; }

/// Resolutions that cannot be meant, in a file as well as from a host, count as kDefaultDpi.
[[nodiscard]] float SaneDpi(double dpi) noexcept;

/// A new bitmap, pixels not cleared. Throws ImageError for a size of zero and from the bitmap limits on. Resolutions
/// are made sane.
[[nodiscard]] std::shared_ptr<SysMemBitmap> NewImage(uint64_t width, uint64_t height, GXPixelFormat format,
                                                     double dpiX = kDefaultDpi, double dpiY = kDefaultDpi);

/// Dots per inch from dots per metre: the roundest number that is written as this count, so that 96 comes back as 96.
[[nodiscard]] double DpiFromMetre(uint32_t dotsPerMetre) noexcept;
/// The nearest count of dots per metre; at least 1.
[[nodiscard]] uint32_t DotsPerMetre(float dpi) noexcept;

/// Levels 0 to 255, or 255 to 0.
[[nodiscard]] std::shared_ptr<const Palette> GreyPalette(bool inverted = false);
/// Black and white, or white and black.
[[nodiscard]] std::shared_ptr<const Palette> BitPalette(bool inverted = false);

/// What a file keeps of a bitmap.
enum class SavedKind { Rgb, Rgba, Grey8, Palette8, Palette1 };

/// The rows of a bitmap in the form in which a codec writes them.
class SavedRows {
public:
    /// Rgb as BGR24, Rgba as straight BGRA32, else one byte or bit a pixel. `alpha` and `palettes`: whether the file
    /// can hold alpha and palettes; `paletteAlpha`: whether a palette's colours may have alpha. What it cannot hold is
    /// converted; alpha is dropped where there is no room for it.
    SavedRows(const SysMemBitmap& image, bool alpha, bool palettes, bool paletteAlpha);

    [[nodiscard]] SavedKind Kind() const noexcept { return m_kind; }
    [[nodiscard]] uint32_t Width() const noexcept { return static_cast<uint32_t>(m_view.width); }
    [[nodiscard]] uint32_t Height() const noexcept { return static_cast<uint32_t>(m_view.height); }
    [[nodiscard]] size_t RowBytes() const noexcept { return m_rowBytes; }
    /// 256 or 2 opaque or transparent colours for the kinds with a palette; beyond the bitmap's own they are black.
    [[nodiscard]] const uint32_t* Colors() const noexcept { return m_colors; }
    [[nodiscard]] bool ColorsHaveAlpha() const noexcept { return m_colorsHaveAlpha; }
    /// Where the palette is black and white: 0 for black first, 1 for white first; else -1.
    [[nodiscard]] int BlackAndWhite() const noexcept;

    /// Good until the next call. The bits behind a one-bit row are 0.
    [[nodiscard]] uint8_t* Row(uint32_t y);
    /// The same with red first.
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
