// SPDX-License-Identifier: MIT
// One block of pixel memory: rows top-down, each starting at a multiple of 16 bytes.
#pragma once

#include <cstddef>

#include "PixelFormat.h"

namespace Graphics {

class PixelBuffer {
public:
    /// Takes the magnitudes of width and height. The pixels are cleared only where `zeroed` says so. Raises "Invalid
    /// bitmap dimensions" for a size of zero, "Bitmap is too big" from 2 GiB on.
    PixelBuffer(int32_t width, int32_t height, uint32_t bitsPerPixel, bool zeroed = false);
    PixelBuffer(const PixelBuffer&) = delete;
    PixelBuffer& operator=(const PixelBuffer&) = delete;
    ~PixelBuffer();

    /// A new size in the same format, contents undefined; on failure the buffer stays as it was.
    void Remake(int32_t width, int32_t height);

    [[nodiscard]] uint8_t* Data() const noexcept { return m_block.data; }
    [[nodiscard]] int32_t Width() const noexcept { return m_block.width; }
    [[nodiscard]] int32_t Height() const noexcept { return m_block.height; }
    [[nodiscard]] uint32_t BitsPerPixel() const noexcept { return m_bitsPerPixel; }
    [[nodiscard]] uint32_t StrideBytes() const noexcept { return m_block.strideBytes; }
    [[nodiscard]] size_t ByteCount() const noexcept {
        return static_cast<size_t>(m_block.strideBytes) * static_cast<size_t>(m_block.height);
    }

private:
    struct Block {
        uint8_t* data;
        int32_t width;
        int32_t height;
        uint32_t strideBytes;
    };
    [[nodiscard]] static Block Make(int32_t width, int32_t height, uint32_t bitsPerPixel, bool zeroed);

    const uint32_t m_bitsPerPixel;
    Block m_block;
};

} // namespace Graphics
