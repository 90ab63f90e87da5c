// SPDX-License-Identifier: MIT
// Positions of band edges. Part of the band loops.
#pragma once

#include "../Simd/Vectors.h"
#include "BandKernels.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

template <bool Clamp> inline int32_t Column(int64_t x, int32_t limit) {
    auto c = static_cast<int32_t>(x >> kBandFraction);
    if (Clamp) {
        c = c < 0 ? 0 : c;
        c = c > limit ? limit : c;
    }
    return c;
}

inline int64_t Advance(int64_t x, int64_t step, int32_t count) {
    return static_cast<int64_t>(static_cast<uint64_t>(x) + static_cast<uint64_t>(step) * static_cast<uint64_t>(count));
}

/// The sub-scanlines [s, stop) of a pixel row and the columns of an edge at the first and the last of them.
struct RowPart {
    int64_t x; ///< position at s
    int32_t s;
    int32_t stop;
    int32_t c0;
    int32_t c1;
    int32_t limit; ///< the highest column, to which edges that leave the frame are clamped
};

/// The bytes of the sub-scanlines [s, stop).
GX_INLINE inline uint64_t BytesTaken(int32_t s, int32_t stop) noexcept {
    return (~uint64_t{0} >> (64 - 8 * stop)) & (~uint64_t{0} << (8 * s));
}

#ifdef GX_SIMD_QUADS
/// Where an edge crosses the sub-scanlines of a pixel row, all at once.
class EightColumns {
public:
    static constexpr int32_t kMostPixels = 4;

    GX_INLINE explicit EightColumns(int64_t step) noexcept : m_step(step), m_sums(static_cast<uint64_t>(step)) {}

    /// Columns from that of pixel `pixel` on, below 8 kMostPixels if the part lies in that many pixels; any outside of [s, stop).
    GX_INLINE Eight From(const RowPart& part, int32_t pixel) const noexcept {
        const auto origin = static_cast<uint64_t>(Advance(part.x, m_step, -part.s));
        return m_sums.Bits42To49(origin) - static_cast<uint8_t>(pixel * 8);
    }

private:
    int64_t m_step;
    EightSums m_sums;
};
#endif

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
