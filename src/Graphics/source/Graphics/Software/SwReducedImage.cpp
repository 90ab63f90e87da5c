// SPDX-License-Identifier: MIT
// Rows pass through the reader two at a time into the first half, so that the full size never exists a second time.
#include "SwReducedImage.h"

#include "../Pixels/Box2x2Downsampler.h"

namespace Graphics {

namespace {

PixelView WordsView(uint32_t* words, int32_t width, int32_t height) noexcept {
    PixelView view;
    view.data = reinterpret_cast<uint8_t*>(words);
    view.strideBytes = static_cast<ptrdiff_t>(width) * 4;
    view.width = width;
    view.height = height;
    view.format = GXPixelFormatPBGRA32;
    return view;
}

/// The mean of two rows of words, each byte (a + b + 1) / 2, as the downsampler rounds a pair. `out` may be `a`.
void MeanOfRows(const uint32_t* a, const uint32_t* b, int32_t width, uint32_t* out) noexcept {
    for (int32_t x = 0; x < width; ++x) {
        out[x] = (a[x] | b[x]) - (((a[x] ^ b[x]) >> 1) & 0x7F7F7F7FU);
    }
}

/// Two rows (the same twice at an odd end) become one: halved across where wanted, and down where they differ.
void ReducePair(uint32_t* top, uint32_t* bottom, int32_t width, bool across, uint32_t* out) {
    if (!across) {
        MeanOfRows(top, bottom, width, out);
        return;
    }
    PixelView pair = WordsView(top, width, 2);
    pair.strideBytes = reinterpret_cast<uint8_t*>(bottom) - reinterpret_cast<uint8_t*>(top);
    Box2x2Downsampler::Downsample(WordsView(out, Box2x2Downsampler::Half(width), 1), pair);
}

} // namespace

SwReducedImage::SwReducedImage(const SwPixelReader& reader, int32_t width, int32_t height, uint32_t halvingsX,
                               uint32_t halvingsY)
    : m_width(width), m_height(height) {
    HeapArray<uint32_t> rows;
    HeapArray<uint32_t> source;
    bool first = true;
    while (first || halvingsX > 0 || halvingsY > 0) {
        const bool across = halvingsX > 0;
        const bool down = halvingsY > 0;
        const int32_t newWidth = across ? Box2x2Downsampler::Half(m_width) : m_width;
        const int32_t newHeight = down ? Box2x2Downsampler::Half(m_height) : m_height;
        const auto rowWords = static_cast<size_t>(m_width);
        std::swap(source, m_pixels);
        m_pixels.resize(static_cast<size_t>(newWidth) * static_cast<size_t>(newHeight));
        if (first) {
            rows.resize(rowWords * 2);
        }
        for (int32_t y = 0; y < newHeight; ++y) {
            const int32_t y0 = down ? 2 * y : y;
            const int32_t y1 = down && y0 + 1 < m_height ? y0 + 1 : y0;
            uint32_t* top;
            uint32_t* bottom;
            if (first) {
                top = rows.data();
                bottom = y1 == y0 ? top : top + rowWords;
                reader.Run(y0, 0, rowWords, top);
                if (y1 != y0) {
                    reader.Run(y1, 0, rowWords, bottom);
                }
            } else {
                top = source.data() + static_cast<size_t>(y0) * rowWords;
                bottom = source.data() + static_cast<size_t>(y1) * rowWords;
            }
            ReducePair(top, bottom, m_width, across,
                       m_pixels.data() + static_cast<size_t>(y) * static_cast<size_t>(newWidth));
        }
        m_width = newWidth;
        m_height = newHeight;
        halvingsX -= across ? 1 : 0;
        halvingsY -= down ? 1 : 0;
        first = false;
    }
}

PixelView SwReducedImage::View() const noexcept {
    return WordsView(const_cast<uint32_t*>(m_pixels.data()), m_width, m_height);
}

uint32_t SwReducedImage::Halvings(int32_t size, int32_t target) noexcept {
    uint32_t halvings = 0;
    while (size > 1 && Box2x2Downsampler::Half(size) > target) {
        size = Box2x2Downsampler::Half(size);
        ++halvings;
    }
    return halvings;
}

} // namespace Graphics
