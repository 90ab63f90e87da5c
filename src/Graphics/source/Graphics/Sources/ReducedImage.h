// SPDX-License-Identifier: MIT
// A bitmap reduced by powers of two, for drawing it much smaller than it is.
#pragma once

#include "../ProcessHeap.h"
#include "PixelReader.h"

namespace Graphics {

class ReducedImage {
public:
    /// Halves the width `halvingsX` times and the height `halvingsY` times with the box downsampler; each halving turns
    /// n into (n + 1) / 2. `reader` reads an image of the given size; both sides are at least 1.
    ReducedImage(const PixelReader& reader, int32_t width, int32_t height, uint32_t halvingsX, uint32_t halvingsY);

    /// The words given by the reader, as pixels of the premultiplied 32-bit format.
    [[nodiscard]] PixelView View() const noexcept;

    /// How often `size` can be halved while the result stays above `target`.
    [[nodiscard]] static uint32_t Halvings(int32_t size, int32_t target) noexcept;

private:
    HeapArray<uint32_t> m_pixels;
    int32_t m_width;
    int32_t m_height;
};

} // namespace Graphics
