// SPDX-License-Identifier: MIT
// Moves a block of pixels between two places in memory, converting between formats on the way. No allocation.
#pragma once

#include "../Pixels/PixelView.h"

namespace Graphics {

class PixelTransfer {
public:
    /// Copies the part that both have, from their top left corners. Equal formats (and, where indexed, palettes) are
    /// copied as they are, also between overlapping places of one image; indexed sources are looked up in their
    /// palette. Raises "Bad format conversion" before anything is written.
    static void Copy(const PixelView& dst, const PixelView& src);

    /// Sets every pixel to a straight colour. Formats that straight colours do not convert to take it premultiplied, so
    /// that an indexed pixel becomes the colour's grey level.
    static void Fill(const PixelView& dst, uint32_t argb);

    /// The rectangle, which lies within `view`, as a view of its own.
    [[nodiscard]] static PixelView Part(const PixelView& view, const IntRect& rect) noexcept;

    /// Colours of `count` indexed pixels, the first at bit `srcBit`. Without a palette an 8-bit index is a grey level,
    /// a one-bit index black or white; an index beyond the palette is opaque black.
    static void LookUp(uint32_t* colors, const uint8_t* src, uint32_t srcBit, size_t count,
                       const PixelView& format) noexcept;
};

} // namespace Graphics
