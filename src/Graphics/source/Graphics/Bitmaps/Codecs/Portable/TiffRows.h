// SPDX-License-Identifier: MIT
// Converts rows of a TIFF file's samples to rows of a bitmap.
#pragma once

#include "../../../ProcessHeap.h"
#include "../../../Types.h"

namespace Graphics {

/// The form of samples, which determines their conversion to 8-bit levels.
enum class TiffSamples { Bytes, Words, Bits, Half, Float, Double };

/// The pixel layout that a page's tags describe.
struct TiffPage {
    uint16_t bits = 1; ///< per sample
    uint16_t samples = 1;
    uint16_t photometric = 0;
    uint16_t colors = 1;   ///< number of colour samples
    bool planes = false;   ///< each sample in a separate plane
    bool hasSign = false;  ///< samples are signed integers
    bool known = true;     ///< false: libtiff converts
    bool hasAlpha = false; ///< the sample after the colours is alpha
    bool associated = false;
    TiffSamples kind = TiffSamples::Bits;
    GXPixelFormat format = GXPixelFormatUnknown; ///< of the bitmap
    const uint16_t* map[3] = {};
};

class TiffRows {
public:
    /// `page` must outlive this object and be complete before rows are converted.
    explicit TiffRows(const TiffPage& page) : m_page(page) {}

    /// Converts `count` pixels of a strip or tile; its planes, if any, are `planeBytes` apart.
    void Convert(uint8_t* dst, const uint8_t* row, size_t planeBytes, uint32_t count);

private:
    /// Sample `channel` of `count` pixels, as levels or as plain numbers.
    template <class Out>
    void Unpack(Out* out, const uint8_t* row, size_t count, uint32_t channel, bool asNumber) const noexcept;
    [[nodiscard]] double Level(const uint8_t* sample) const noexcept;

    const TiffPage& m_page;
    HeapArray<uint8_t> m_levels[5];
    HeapArray<uint32_t> m_indices;
};

} // namespace Graphics
