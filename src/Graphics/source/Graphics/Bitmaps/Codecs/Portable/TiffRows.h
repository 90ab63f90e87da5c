// SPDX-License-Identifier: MIT
// Rows of a TIFF file's samples as rows of a bitmap.
#pragma once

#include "../../../ProcessHeap.h"
#include "../../../Types.h"

namespace Graphics {

/// How samples become levels of 8 bits.
enum class TiffSamples { Bytes, Words, Bits, Half, Float, Double };

/// What the tags of a page say of its pixels.
struct TiffPage {
    uint16_t bits = 1; ///< a sample
    uint16_t samples = 1;
    uint16_t photometric = 0;
    uint16_t colors = 1;   ///< samples that make the colour
    bool planes = false;   ///< each sample in a plane of its own
    bool hasSign = false;  ///< whole numbers with a sign
    bool known = true;     ///< false: libtiff converts
    bool hasAlpha = false; ///< the sample behind the colours
    bool associated = false;
    TiffSamples kind = TiffSamples::Bits;
    GXPixelFormat format = GXPixelFormatUnknown; ///< of the bitmap
    const uint16_t* map[3] = {};
};

class TiffRows {
public:
    /// `page` outlives this and is complete before rows are converted.
    explicit TiffRows(const TiffPage& page) : m_page(page) {}

    /// `count` pixels of a strip or tile; `planeBytes` lie between its planes, if any.
    void Convert(uint8_t* dst, const uint8_t* row, size_t planeBytes, uint32_t count);

private:
    /// Sample `channel` of `count` pixels as levels, or as plain numbers.
    template <class Out>
    void Unpack(Out* out, const uint8_t* row, size_t count, uint32_t channel, bool asNumber) const noexcept;
    [[nodiscard]] double Level(const uint8_t* sample) const noexcept;

    const TiffPage& m_page;
    HeapArray<uint8_t> m_levels[5];
    HeapArray<uint32_t> m_indices;
};

} // namespace Graphics
