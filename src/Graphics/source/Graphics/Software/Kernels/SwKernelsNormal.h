// SPDX-License-Identifier: MIT
// Row loops of the Normal mode, the most frequent ones: one colour, or a colour for each pixel, over a row.
#pragma once

#include "SwKernelsFills.h"

namespace Graphics::GX_KERNEL_NAMESPACE {
namespace {

/// d * (256 - as) >> 8 + c, or c where d is transparent.
GX_INLINE U32 Over(U32 d, U32 c, U32 complement) noexcept {
    const U32 seen = d & ~(U32)IsZero(Alpha(d));
    return Scale(seen, complement) + c;
}

/// normalSolid on at most one vector of pixels.
GX_INLINE void ShapedSolid(uint32_t* dst, U32 color, const uint8_t* shape, size_t n) noexcept {
    const U32 s = WidenSome(shape, n);
    const U32 d = LoadSome(dst, n);
    const U32 scaled = Scale(color, FactorOf(s));
    StoreSome(dst, n, Select(IsZero(s), d, Over(d, scaled, ComplementOf(Alpha(scaled)))));
}

void NormalSolid(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count) {
    const uint32_t alpha = color >> 24;
    if (alpha == 0) {
        return;
    }
    const U32 c = Splat(color);
    const U32 complement = ComplementOf(Splat(alpha));
    if (shape == nullptr) {
        if (alpha == 255) {
            Fill32(dst, color, count);
            return;
        }
        ForWholeBlocks(
            count, [=](size_t i, size_t n) { StoreSome(dst + i, n, Over(LoadSome(dst + i, n), c, complement)); },
            [=](size_t i, size_t n) { Narrower(n).normalSolid(dst + i, color, nullptr, n); });
        return;
    }
    const auto step = [=](size_t i, size_t n) {
        if (n == kLanes) {
            if (BytesAre(shape + i, 0)) {
                return;
            }
            if (BytesAre(shape + i, 255)) {
                Store(dst + i, alpha == 255 ? c : Over(Load(dst + i), c, complement));
                return;
            }
        }
        ShapedSolid(dst + i, c, shape + i, n);
    };
    ForWholeBlocks(count, step, [=](size_t i, size_t n) { Narrower(n).normalSolid(dst + i, color, shape + i, n); });
}

void NormalSolidBlock(uint32_t* dst, ptrdiff_t strideBytes, uint32_t color, const uint8_t* shape, ptrdiff_t shapeStride,
                      size_t count, size_t rows) {
    if (color >> 24 == 0) {
        return;
    }
    const U32 c = Splat(color);
    auto* bytes = reinterpret_cast<uint8_t*>(dst);
    for (; rows != 0; --rows, bytes += strideBytes, shape += shapeStride) {
        auto* row = reinterpret_cast<uint32_t*>(bytes);
        const uint8_t* s = shape;
        // The next block over these pixels is many rows away: short masked stores stall nothing here.
        ForBlocks(count, [=](size_t i, size_t n) { ShapedSolid(row + i, c, s + i, n); });
    }
}

void NormalVarying(uint32_t* dst, const uint32_t* src, const uint8_t* shape, size_t count) {
    const auto step = [=](size_t i, size_t n) {
        if (shape != nullptr && n == kLanes && BytesAre(shape + i, 0)) {
            return;
        }
        U32 c = LoadSome(src + i, n);
        const bool scaled = shape != nullptr && !(n == kLanes && BytesAre(shape + i, 255));
        if (!scaled && n == kLanes && AllSet((Alpha(c) == 255U))) {
            Store(dst + i, c);
            return;
        }
        I32 keep = IsZero(Alpha(c));
        if (scaled) {
            const U32 s = WidenSome(shape + i, n);
            keep |= IsZero(s);
            c = Scale(c, FactorOf(s));
        }
        const U32 d = LoadSome(dst + i, n);
        StoreSome(dst + i, n, Select(keep, d, Over(d, c, ComplementOf(Alpha(c)))));
    };
    ForWholeBlocks(count, step,
                   [=](size_t i, size_t n) { Narrower(n).normalVarying(dst + i, src + i, At(shape, i), n); });
}

} // namespace
} // namespace Graphics::GX_KERNEL_NAMESPACE
