// SPDX-License-Identifier: MIT
// How the row loops of the vector sets split a row: whole vectors, then the rest.
#pragma once

#include "../Simd/Channels.h"
#include "RowKernels.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

GX_INLINE inline void NarrowSome(uint8_t* p, size_t n, U32 v) noexcept {
    n == kLanes ? Narrow(p, v) : NarrowPart(p, n, v);
}

/// Calls step(i, n) for the whole blocks and rest(i, n) for what remains. The rest goes to a narrower set, because
/// spans are short and adjacent: a masked store would stall the next span's load, which overlaps the stored vector, for
/// longer than the narrower set takes with stores of exact size.
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

/// The set for the last n pixels: the one that does them, not one that would delegate again.
GX_INLINE inline const RowKernels& Narrower(size_t n) noexcept {
    return KernelTable<RowKernels>::Made(n < 8 ? kNarrowestSet : kNarrowerSet);
}

/// For long bodies: a row of at most half a vector is done by the set that it fills, narrower(kernels), because a masked
/// store stalls the load of a row that lies right behind it. False, with nothing done, for longer ones.
template <class Row> GX_INLINE inline bool DoneByNarrower(size_t count, Row narrower) noexcept {
    if constexpr (kLanes > 4) {
        if (count <= kLanes / 2) {
            narrower(KernelTable<RowKernels>::Made(count <= 4 ? kNarrowestSet : kNarrowerSet));
            return true;
        }
    }
    return false;
}

/// For long bodies, which are instantiated once: of rows that no narrower set does the rest is masked, which takes less
/// time than another pass.
template <class Step, class Row> GX_INLINE inline void ForBlocksOfRow(size_t count, Step step, Row narrower) noexcept {
    if (!DoneByNarrower(count, narrower)) {
        ForBlocksOnce(count, step);
    }
}

GX_INLINE inline const uint8_t* At(const uint8_t* shape, size_t i) noexcept {
    return shape != nullptr ? shape + i : nullptr;
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
