// SPDX-License-Identifier: MIT
// One block of pixel memory: rows top-down, each starting at a multiple of 16 bytes.
#pragma once

#include <cstddef>

#include "PixelFormat.h"

namespace Graphics {

class PixelBuffer {
public:
    /// Width and height count by their magnitudes. The pixels are cleared only if `zeroed`. Raises "Invalid bitmap
    /// dimensions" for a size of zero, "Bitmap is too big" from 2 GiB on.
    PixelBuffer(int32_t width, int32_t height, uint32_t bitsPerPixel, bool zeroed = false);
    PixelBuffer(const PixelBuffer&) = delete;
    PixelBuffer& operator=(const PixelBuffer&) = delete;
    ~PixelBuffer();

    [[nodiscard]] uint8_t* Data() const noexcept { return m_data; }
    [[nodiscard]] int32_t Width() const noexcept { return m_width; }
    [[nodiscard]] int32_t Height() const noexcept { return m_height; }
    [[nodiscard]] uint32_t BitsPerPixel() const noexcept { return m_bitsPerPixel; }
    [[nodiscard]] uint32_t StrideBytes() const noexcept { return m_strideBytes; }
    [[nodiscard]] size_t ByteCount() const noexcept {
        return static_cast<size_t>(m_strideBytes) * static_cast<size_t>(m_height);
    }

private:
    uint8_t* m_data = nullptr;
    int32_t m_width = 0;
    int32_t m_height = 0;
    uint32_t m_strideBytes = 0;
    uint32_t m_bitsPerPixel;
};

} // namespace Graphics
