// SPDX-License-Identifier: MIT
// Reads Windows bitmap files: headers from OS/2's on, 1, 4, 8, 16, 24 and 32 bits, run-length coding, bit fields, both
// row orders.
#pragma once

#include "../CodecSupport.h"

namespace Graphics {

class BmpReader final : public ImageDecoder {
public:
    /// Throws ImageError.
    explicit BmpReader(ByteSource& source);

    [[nodiscard]] std::shared_ptr<SysMemBitmap> Load(uint32_t frame) override;

private:
    /// One channel of a pixel of 16 or 32 bits.
    struct Channel {
        uint32_t mask = 0;
        uint32_t shift = 0;
        uint32_t bits = 0;
        uint8_t levels[256] = {}; ///< 8-bit level for the value's (at most 8) upper bits

        [[nodiscard]] uint8_t Level(uint32_t pixel) const noexcept;
    };

    void ReadHeaders();
    void ReadPalette(uint32_t entryBytes, uint64_t offset);
    void SetMasks(const uint32_t* masks);
    [[nodiscard]] GXPixelFormat Format() const noexcept;

    void LoadRows(SysMemBitmap& image);
    void LoadRuns(SysMemBitmap& image);
    /// Converts a row of the file to a row of the bitmap.
    void ConvertRow(uint8_t* dst, const uint8_t* src) const noexcept;
    [[nodiscard]] uint8_t* RowAt(SysMemBitmap& image, uint32_t fileRow) const noexcept;

    ByteSource& m_source;
    uint32_t m_width = 0;
    uint32_t m_height = 0;
    bool m_topDown = false;
    uint32_t m_bits = 0;
    bool m_runs = false;
    bool m_fields = false;
    bool m_plainWords = false; ///< 32 bits, eight per channel, blue lowest
    uint64_t m_pixels = 0;     ///< offset of the pixels in the file
    uint32_t m_dotsX = 0;
    uint32_t m_dotsY = 0;
    Channel m_channels[4]; ///< blue, green, red, alpha
    uint32_t m_colors[256] = {};
    size_t m_colorCount = 0;
};

} // namespace Graphics
