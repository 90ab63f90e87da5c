// SPDX-License-Identifier: MIT
// Where the strips or tiles of a TIFF page lie, and whether the file's bytes can hold the pixels that its tags claim:
// asked before memory is taken for them.
#pragma once

#include <tiffio.h>

#include "../../../Types.h"

namespace Graphics {

class TiffBlocks {
public:
    /// The current page of `tiff`. Throws ImageError where its blocks are not as large as its tags make them, or much
    /// larger than the page.
    explicit TiffBlocks(TIFF* tiff);

    /// Throws ImageError unless every block is listed and its bytes, unpacked as far as the coding can, fill it.
    /// `fileBytes`: the size of the file.
    void RequireBacked(uint64_t fileBytes) const;

    [[nodiscard]] bool Tiled() const noexcept { return m_tiled; }
    /// Pixels of a block; the last strip may be shorter.
    [[nodiscard]] uint32_t Width() const noexcept { return m_width; }
    [[nodiscard]] uint32_t Height() const noexcept { return m_height; }
    [[nodiscard]] uint64_t Across() const noexcept { return m_across; }
    [[nodiscard]] uint64_t Down() const noexcept { return m_down; }
    /// Whether each sample of a pixel lies in blocks of its own.
    [[nodiscard]] bool Planes() const noexcept { return m_planes > 1; }
    /// Bytes of a row of a block; of one sample where samples lie in planes.
    [[nodiscard]] size_t StrideBytes() const noexcept { return m_stride; }
    /// Whether libtiff can unpack a strip row by row, in the memory of one row.
    [[nodiscard]] bool ComesInRows() const noexcept;

private:
    /// The bytes of the file that are listed for a block and are there; throws ImageError where none are.
    [[nodiscard]] uint64_t ListedBytes(uint32_t block, uint64_t fileBytes) const;
    /// Whether `bytes` can become a block of `rows` rows.
    [[nodiscard]] bool CanBecome(uint64_t bytes, uint64_t rows) const noexcept;
    [[nodiscard]] uint64_t UnpackedBytes(uint64_t rows) const noexcept;

    TIFF* m_tiff;
    uint16_t m_compression = COMPRESSION_NONE;
    bool m_twoDimensional = false; ///< fax rows that refer to the row above
    bool m_tiled = false;
    uint32_t m_width = 0, m_height = 0;
    uint32_t m_imageHeight = 0;
    uint64_t m_across = 1, m_down = 1, m_planes = 1;
    uint64_t m_imagePixels = 0;
    uint64_t m_bitsPerPixel = 0; ///< in a block
    size_t m_stride = 0;
};

} // namespace Graphics
