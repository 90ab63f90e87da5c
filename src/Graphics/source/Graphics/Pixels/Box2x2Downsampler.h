// SPDX-License-Identifier: MIT
// Halves an image in both directions: each pixel becomes the mean of a 2 x 2 block, (sum + 2) / 4 in each channel. At
// an odd right or bottom edge the mean covers only the existing pixels.
#pragma once

#include "PixelView.h"

namespace Graphics {

class Box2x2Downsampler {
public:
    /// Half of a width or height; 1 stays 1.
    [[nodiscard]] static constexpr int32_t Half(int32_t size) noexcept { return size / 2 + (size & 1); }

    [[nodiscard]] static constexpr bool Accepts(GXPixelFormat format) noexcept {
        return format == GXPixelFormatPBGRA32 || format == GXPixelFormatAlpha8 || format == GXPixelFormatGray8;
    }

    /// `dst` has the format of `src` and Half its size, or is smaller and gets the top left part. It must not overlap
    /// `src`. Raises "Bad format for downsampling" for formats other than premultiplied 32-bit, 8-bit alpha and grey.
    static void Downsample(const PixelView& dst, const PixelView& src);
};

} // namespace Graphics
