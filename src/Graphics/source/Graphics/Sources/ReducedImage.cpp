// SPDX-License-Identifier: MIT
// Rows pass through all halvings, two at a time, so only two rows of each size exist beside the result.
#include "ReducedImage.h"

#include <algorithm>
#include <array>

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

/// Two rows (the same one twice at an odd end) become one: halved across if `across`, and down if they differ.
void ReducePair(uint32_t* top, uint32_t* bottom, int32_t width, bool across, uint32_t* out) {
    if (!across) {
        MeanOfRows(top, bottom, width, out);
        return;
    }
    PixelView pair = WordsView(top, width, 2);
    pair.strideBytes = reinterpret_cast<uint8_t*>(bottom) - reinterpret_cast<uint8_t*>(top);
    Box2x2Downsampler::Downsample(WordsView(out, Box2x2Downsampler::Half(width), 1), pair);
}

/// One halving: the size of its input and a buffer for two rows of it.
struct Halving {
    int32_t width = 0;
    int32_t height = 0;
    bool across = false;
    bool down = false;
    int32_t y = 0; // the next input row
    uint32_t* rows = nullptr;

    [[nodiscard]] int32_t Slot() const noexcept { return down ? y & 1 : 0; }
    [[nodiscard]] uint32_t* Row(int32_t slot) const noexcept {
        return rows + static_cast<size_t>(slot) * static_cast<size_t>(width);
    }
    /// True if the present row completes the input of a result row.
    [[nodiscard]] bool IsComplete() const noexcept { return Slot() == (down ? 1 : 0) || y + 1 == height; }
};

constexpr size_t kMostHalvings = 32; // of a 32-bit size

} // namespace

ReducedImage::ReducedImage(const PixelReader& reader, int32_t width, int32_t height, uint32_t halvingsX,
                           uint32_t halvingsY)
    : m_width(width), m_height(height) {
    std::array<Halving, kMostHalvings> halvings;
    const size_t count = std::min<size_t>(std::max(halvingsX, halvingsY), kMostHalvings);
    size_t words = 0;
    for (size_t i = 0; i < count; ++i) {
        Halving& h = halvings[i];
        h.width = m_width;
        h.height = m_height;
        h.across = i < halvingsX;
        h.down = i < halvingsY;
        words += static_cast<size_t>(m_width) * 2;
        m_width = h.across ? Box2x2Downsampler::Half(m_width) : m_width;
        m_height = h.down ? Box2x2Downsampler::Half(m_height) : m_height;
    }
    const auto resultWords = static_cast<size_t>(m_width);
    HeapArray<uint32_t> rows;
    rows.Remake(words);
    uint32_t* next = rows.data();
    for (size_t i = 0; i < count; ++i) {
        halvings[i].rows = next;
        next += static_cast<size_t>(halvings[i].width) * 2;
    }
    m_pixels.Remake(resultWords * static_cast<size_t>(m_height));

    uint32_t* result = m_pixels.data();
    const auto into = [&](size_t i) { return i == count ? result : halvings[i].Row(halvings[i].Slot()); };
    for (int32_t y = 0; y < height; ++y) {
        reader.Run(y, 0, static_cast<size_t>(width), into(0));
        size_t i = 0;
        for (; i < count && halvings[i].IsComplete(); ++i) {
            Halving& h = halvings[i];
            ReducePair(h.Row(0), h.Row(h.Slot()), h.width, h.across, into(i + 1));
            ++h.y;
        }
        if (i == count) {
            result += resultWords;
        } else {
            ++halvings[i].y;
        }
    }
}

PixelView ReducedImage::View() const noexcept {
    return WordsView(const_cast<uint32_t*>(m_pixels.data()), m_width, m_height);
}

uint32_t ReducedImage::Halvings(int32_t size, int32_t target) noexcept {
    uint32_t halvings = 0;
    while (size > 1 && Box2x2Downsampler::Half(size) > target) {
        size = Box2x2Downsampler::Half(size);
        ++halvings;
    }
    return halvings;
}

} // namespace Graphics
