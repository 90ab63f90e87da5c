// SPDX-License-Identifier: MIT
// Sets samples and counts them, sixteen pixels at a time.
#include "SampleGrid.h"

#include <algorithm>
#include <cstring>

#include "../Simd/BaseVectors.h"

namespace Graphics {
namespace {

using namespace GX_SIMD_NAMESPACE;

/// Counts the bits in each byte.
class BitCounter {
public:
    /// Masks remove bits that a shift moves across bytes.
    GX_INLINE U8 Of(U8 v) const noexcept {
        v -= (U8)((U16)v >> 1) & m_twos;
        v = (v & m_fours) + ((U8)((U16)v >> 2) & m_fours);
        return (v + (U8)((U16)v >> 4)) & m_low;
    }

private:
    U8 m_twos = Kept(U8{} + 0x55);
    U8 m_fours = Kept(U8{} + 0x33);
    U8 m_low = Kept(U8{} + 0x0F);
};

} // namespace

void SampleView::Coverage(int32_t right, int32_t down, uint8_t* out) const noexcept {
    // A pixel keeps its first columns, moved right, and receives the last columns of the pixel to its left. The lowest
    // bit is leftmost, so moving right is shifting up, done by factors on lanes of 16 bits.
    const auto bytes = [](uint8_t v) { return Kept(U8{} + v); };
    const auto words = [](uint16_t v) { return Kept(U16{} + v); };
    const U8 ownKeep = bytes(static_cast<uint8_t>(0xFF >> right));
    const U16 ownFactor = words(static_cast<uint16_t>(1 << right));
    const U8 leftKeep = bytes(static_cast<uint8_t>(0xFF << (8 - right)));
    const U16 leftFactor = words(static_cast<uint16_t>(256 << right)); // of a high product: shifts down by 8 - right
    const BitCounter counter;
    const size_t stride = CoverageStride(right);
    const int32_t rows = HeightAt(down);
    for (int32_t y = 0; y < rows; ++y) {
        const int32_t first = std::max(y * 8 - down, 0);
        const int32_t last = std::min(y * 8 - down + 8, height * 8);
        for (size_t x = 0; x < stride; x += 16) {
            const uint8_t* p = bits + static_cast<size_t>(first) * strideBytes + x;
            U8 sum{};
            for (int32_t row = first; row < last; ++row, p += strideBytes) {
                const U16 own = (U16)(Load<U8>(p) & ownKeep) * ownFactor;
                const U16 left = MultiplyHigh((U16)(Load<U8>(p - 1) & leftKeep), leftFactor);
                sum += counter.Of((U8)(own | left));
            }
            // 4 n - 1 in a byte, and 0 for n = 0: ShapeOfCount.
            Store(out + x, (U8)(sum * 4 + (U8)(sum != 0)));
        }
        out += stride;
    }
}

void SampleGrid::Begin(int32_t width, int32_t height) {
    m_view = {};
    const size_t stride = SampleView::StrideFor(width);
    const SampleView view{nullptr, stride, width, height};
    m_bytes.resize(view.Bytes());
    std::memset(m_bytes.data(), 0, m_bytes.size());
    m_view = view;
    m_view.bits = m_bytes.data() + SampleView::kGuardBytes;
}

void SampleGrid::Add(int32_t row, int32_t x0, int32_t x1) noexcept {
    x0 = std::max(x0, 0);
    x1 = std::min(x1, m_view.width * 8);
    if (row < 0 || row >= m_view.height * 8 || x0 >= x1) {
        return;
    }
    uint8_t* line = m_bytes.data() + SampleView::kGuardBytes + static_cast<size_t>(row) * m_view.strideBytes;
    const int32_t from = x0 >> 3;
    const int32_t to = (x1 - 1) >> 3;
    const auto head = static_cast<uint8_t>(0xFF << (x0 & 7));
    const auto tail = static_cast<uint8_t>(0xFF >> (7 - ((x1 - 1) & 7)));
    if (from == to) {
        line[from] = static_cast<uint8_t>(line[from] | (head & tail));
        return;
    }
    line[from] = static_cast<uint8_t>(line[from] | head);
    std::fill(line + from + 1, line + to, uint8_t{0xFF});
    line[to] = static_cast<uint8_t>(line[to] | tail);
}

} // namespace Graphics
