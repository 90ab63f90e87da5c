// SPDX-License-Identifier: MIT
// A bitmap made smaller by powers of two, for drawing it much smaller than it is.
#pragma once

#include "../ProcessHeap.h"
#include "PixelReader.h"

namespace Graphics {

class ReducedImage {
public:
    /// Halves the width `halvingsX` times and the height `halvingsY` times, n becoming (n + 1) / 2, with the box
    /// downsampler. `reader` reads an image of the given size, both at least 1.
    ReducedImage(const PixelReader& reader, int32_t width, int32_t height, uint32_t halvingsX, uint32_t halvingsY);

    /// Words as the reader gave them, in the premultiplied 32-bit format.
    [[nodiscard]] PixelView View() const noexcept;

    /// How often `size` can be halved with the result still above `target`.
    [[nodiscard]] static uint32_t Halvings(int32_t size, int32_t target) noexcept;

private:
    HeapArray<uint32_t> m_pixels;
    int32_t m_width;
    int32_t m_height;
};

} // namespace Graphics
