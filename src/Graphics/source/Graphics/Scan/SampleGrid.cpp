// SPDX-License-Identifier: MIT
// Setting samples and counting them, sixteen pixels at a time.
#include "SampleGrid.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

namespace Graphics {
namespace {

/// The number of bits in each byte.
__m128i CountBits(__m128i v) noexcept {
    const __m128i twos = _mm_set1_epi8(0x55);
    const __m128i fours = _mm_set1_epi8(0x33);
    v = _mm_sub_epi8(v, _mm_and_si128(_mm_srli_epi16(v, 1), twos));
    v = _mm_add_epi8(_mm_and_si128(v, fours), _mm_and_si128(_mm_srli_epi16(v, 2), fours));
    return _mm_and_si128(_mm_add_epi8(v, _mm_srli_epi16(v, 4)), _mm_set1_epi8(0x0F));
}

} // namespace

void SampleView::Coverage(int32_t right, int32_t down, uint8_t* out) const noexcept {
    // A pixel keeps its first columns, moved, and gets the last ones of the pixel on its left.
    const __m128i ownKeep = _mm_set1_epi8(static_cast<char>(0xFF >> right));
    const __m128i ownCount = _mm_cvtsi32_si128(right);
    const __m128i leftKeep = _mm_set1_epi8(static_cast<char>(0xFF << (8 - right)));
    const __m128i leftCount = _mm_cvtsi32_si128(8 - right);
    const size_t stride = CoverageStride(right);
    const int32_t rows = HeightAt(down);
    for (int32_t y = 0; y < rows; ++y) {
        const int32_t first = std::max(y * 8 - down, 0);
        const int32_t last = std::min(y * 8 - down + 8, height * 8);
        for (size_t x = 0; x < stride; x += 16) {
            const uint8_t* p = bits + static_cast<size_t>(first) * strideBytes + x;
            __m128i sum = _mm_setzero_si128();
            for (int32_t row = first; row < last; ++row, p += strideBytes) {
                const __m128i own = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
                const __m128i left = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p - 1));
                const __m128i moved = _mm_or_si128(_mm_sll_epi16(_mm_and_si128(own, ownKeep), ownCount),
                                                   _mm_srl_epi16(_mm_and_si128(left, leftKeep), leftCount));
                sum = _mm_add_epi8(sum, CountBits(moved));
            }
            // 4 n - 1 in a byte, 0 for none: ShapeOfCount.
            const __m128i twice = _mm_add_epi8(sum, sum);
            const __m128i shape = _mm_sub_epi8(_mm_add_epi8(twice, twice), _mm_min_epu8(sum, _mm_set1_epi8(1)));
            _mm_store_si128(reinterpret_cast<__m128i*>(out + x), shape);
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
