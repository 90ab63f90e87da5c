// SPDX-License-Identifier: MIT
// The strips or tiles of a TIFF page, and a check, before memory is allocated, that the file is large enough for the
// pixels that its tags claim.
#pragma once

#include <tiffio.h>

#include "../../../Types.h"

namespace Graphics {

class TiffBlocks {
public:
    /// The current page of `tiff`. Throws ImageError if the size of its blocks contradicts its tags or is much larger
    /// than the page.
    explicit TiffBlocks(TIFF* tiff);

    /// Throws ImageError unless every block is listed and has enough bytes for its pixels at the coding's best ratio.
    /// `fileBytes` is the size of the file.
    void RequireBacked(uint64_t fileBytes) const;

    [[nodiscard]] bool Tiled() const noexcept { return m_tiled; }
    /// Size of a block in pixels; the last strip may be shorter.
    [[nodiscard]] uint32_t Width() const noexcept { return m_width; }
    [[nodiscard]] uint32_t Height() const noexcept { return m_height; }
    [[nodiscard]] uint64_t Across() const noexcept { return m_across; }
    [[nodiscard]] uint64_t Down() const noexcept { return m_down; }
    /// Whether each sample of a pixel lies in a separate block.
    [[nodiscard]] bool Planes() const noexcept { return m_planes > 1; }
    /// Bytes of a block's row; of one sample's row if samples lie in planes.
    [[nodiscard]] size_t StrideBytes() const noexcept { return m_stride; }
    /// Whether libtiff can unpack a strip row by row, in the memory of one row.
    [[nodiscard]] bool ComesInRows() const noexcept;

private:
    /// The listed bytes of a block that exist in the file; throws ImageError if there are none.
    [[nodiscard]] uint64_t ListedBytes(uint32_t block, uint64_t fileBytes) const;
    /// Whether `bytes` can unpack to a block of `rows` rows.
    [[nodiscard]] bool CanBecome(uint64_t bytes, uint64_t rows) const noexcept;
    [[nodiscard]] uint64_t UnpackedBytes(uint64_t rows) const noexcept;

    TIFF* m_tiff;
    uint16_t m_compression = COMPRESSION_NONE;
    bool m_twoDimensional = false; ///< fax rows that refer to the previous row
    bool m_tiled = false;
    uint32_t m_width = 0, m_height = 0;
    uint32_t m_imageHeight = 0;
    uint64_t m_across = 1, m_down = 1, m_planes = 1;
    uint64_t m_imagePixels = 0;
    uint64_t m_bitsPerPixel = 0; ///< in a block
    size_t m_stride = 0;
};

} // namespace Graphics
