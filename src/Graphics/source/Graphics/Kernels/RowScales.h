// SPDX-License-Identifier: MIT
// Row loops that scale coverage and colours by masks and factors, and those that act on single pixels.
#pragma once

#include "RowFills.h"
#include "RowModes.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

template <int kType> GX_INLINE inline U32 MaskValue(U32 x) noexcept {
    if constexpr (kType < 2) {
        return Alpha(kType == 0 ? x : ~x);
    } else {
        // (77 red + 151 green + 28 blue) >> 8, at most 65280 before the shift.
        const U32 redBlue = MultiplyAddPairs(x & 0x00FF00FFU, Splat(77U << 16 | 28U));
        const U32 value = (redBlue + MultiplyAddPairs(x >> 8 & 0x000000FFU, Splat(151U))) >> 8;
        return kType == 2 ? value : 255U - value;
    }
}

template <int kType> void MaskValues(uint8_t* values, const uint32_t* pixels, size_t count) {
    ForBlocksOfRow(
        count,
        [=](size_t i, size_t n) GX_INLINE { NarrowSome(values + i, n, MaskValue<kType>(LoadSome(pixels + i, n))); },
        [=](const RowKernels& set) { set.maskValues[kType](values, pixels, count); });
}

/// (byte * (m + 1)) >> 8 for each byte, by the byte m in the same place.
GX_INLINE inline U32 ScaleBytes(U32 x, U32 m) noexcept {
    const U16 even = ((U16)(x & 0x00FF00FFU) * ((U16)(m & 0x00FF00FFU) + 1U)) >> 8;
    const U16 odd = (((U16)x >> 8) * (((U16)m >> 8) + 1U)) & 0xFF00U;
    return (U32)(even | odd);
}

/// Whole vectors of bytes, then lanes.
void ScaleShape(uint8_t* shape, const uint8_t* mask, size_t count) {
    for (; count >= 4 * kLanes; count -= 4 * kLanes, shape += 4 * kLanes, mask += 4 * kLanes) {
        Store(shape, ScaleBytes(Load(shape), Load(mask)));
    }
    const auto step = [=](size_t i, size_t n) GX_INLINE {
        NarrowSome(shape + i, n, Product(WidenSome(shape + i, n), WidenSome(mask + i, n) + 1U) >> 8);
    };
    ForWholeBlocks(count, step, [=](size_t i, size_t n) { Narrower(n).scaleShape(shape + i, mask + i, n); });
}

void ScaleColor(uint32_t* color, const uint8_t* mask, size_t count) {
    const auto step = [=](size_t i, size_t n) GX_INLINE {
        if (n == kLanes && BytesAre(mask + i, 255)) {
            return;
        }
        StoreSome(color + i, n, Scale(LoadSome(color + i, n), FactorOf(WidenSome(mask + i, n))));
    };
    ForWholeBlocks(count, step, [=](size_t i, size_t n) { Narrower(n).scaleColor(color + i, mask + i, n); });
}

void ScaleColorBy(uint32_t* color, uint32_t factor, size_t count) {
    if (factor == 256) {
        return;
    }
    ForWholeBlocks(
        count,
        [=](size_t i, size_t n)
            GX_INLINE { StoreSome(color + i, n, Scale(LoadSome(color + i, n), Spread(Splat(factor)))); },
        [=](size_t i, size_t n) { Narrower(n).scaleColorBy(color + i, factor, n); });
}

void PremultiplyRow(uint32_t* color, size_t count) {
    ForWholeBlocks(
        count, [=](size_t i, size_t n) GX_INLINE { StoreSome(color + i, n, Premultiply(LoadSome(color + i, n))); },
        [=](size_t i, size_t n) { Narrower(n).premultiply(color + i, n); });
}

void ReplaceSolid(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count) {
    if (shape == nullptr) {
        Fill32(dst, color, count);
        return;
    }
    const auto step = [=](size_t i, size_t n) GX_INLINE {
        const U32 s = WidenSome(shape + i, n);
        StoreSome(dst + i, n, Scale(LoadSome(dst + i, n), ComplementOf(s)) + Scale(Splat(color), FactorOf(s)));
    };
    ForWholeBlocks(count, step, [=](size_t i, size_t n) { Narrower(n).replaceSolid(dst + i, color, shape + i, n); });
}

void Invert(uint32_t* dst, size_t count) {
    const auto step = [=](size_t i, size_t n) GX_INLINE {
        const U32 x = LoadSome(dst + i, n);
        StoreSome(dst + i, n, SubtractClamped(SpreadBytes(Alpha(x)), x & 0x00FFFFFFU));
    };
    ForWholeBlocks(count, step, [=](size_t i, size_t n) { Narrower(n).invert(dst + i, n); });
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
