// SPDX-License-Identifier: MIT
// Copies a block of pixels between two places in memory, converting the format. Allocates nothing.
#pragma once

#include "../Pixels/PixelView.h"

namespace Graphics {

class PixelTransfer {
public:
    /// Copies the common part of both, from their top left corners. Equal formats (and, if indexed, equal palettes) are
    /// copied unchanged, also between overlapping parts of one image; otherwise indexed pixels are converted through
    /// their palette. Raises "Bad format conversion" before writing anything.
    static void Copy(const PixelView& dst, const PixelView& src);

    /// Sets every pixel to a straight colour. A format to which straight colours cannot be converted takes the
    /// premultiplied colour; so an indexed pixel becomes the colour's grey level.
    static void Fill(const PixelView& dst, uint32_t argb);

    /// The rectangle, which lies within `view`, as a view.
    [[nodiscard]] static PixelView Part(const PixelView& view, const IntRect& rect) noexcept;

    /// Colours of `count` indexed pixels, the first at bit `srcBit`. Without a palette an 8-bit index is a grey level,
    /// a one-bit index black or white; an index beyond the palette is opaque black.
    static void LookUp(uint32_t* colors, const uint8_t* src, uint32_t srcBit, size_t count,
                       const PixelView& format) noexcept;
};

} // namespace Graphics
