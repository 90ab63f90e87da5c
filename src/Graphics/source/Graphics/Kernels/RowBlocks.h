// SPDX-License-Identifier: MIT
// How the row loops of the vector sets walk a row: by whole vectors, and what remains at its end.
#pragma once

#include "../Simd/Channels.h"
#include "RowKernels.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

GX_INLINE inline U32 WidenSome(const uint8_t* p, size_t n) noexcept { return n == kLanes ? Widen(p) : WidenPart(p, n); }
GX_INLINE inline void NarrowSome(uint8_t* p, size_t n, U32 v) noexcept {
    n == kLanes ? Narrow(p, v) : NarrowPart(p, n, v);
}

/// Calls step(i, n) over the whole blocks and leaves what remains to rest(i, n). Spans are short and touch each other:
/// a masked store here would stall the next span's load, which reaches into the same register's width, for longer than
/// the narrower set takes to do the pixels with stores of their exact size.
template <class Step, class Rest> GX_INLINE inline void ForWholeBlocks(size_t count, Step step, Rest rest) noexcept {
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        step(i, kLanes);
    }
    if (i < count) {
        if constexpr (kLanes > 4) {
            rest(i, count - i);
        } else {
            step(i, count - i);
        }
    }
}

/// The set for the last n pixels, without a stop at one that would hand them on.
GX_INLINE inline const RowKernels& Narrower(size_t n) noexcept {
    return KernelTable<RowKernels>::Made(n < 8 ? kNarrowestSet : kNarrowerSet);
}

GX_INLINE inline const uint8_t* At(const uint8_t* shape, size_t i) noexcept {
    return shape != nullptr ? shape + i : nullptr;
}

/// Rows up to this length go to the narrowest set in the modes whose bodies are long.
inline constexpr size_t kShortRow = 4;

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
