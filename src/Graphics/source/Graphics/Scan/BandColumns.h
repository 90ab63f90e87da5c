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

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
