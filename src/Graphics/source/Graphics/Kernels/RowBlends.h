// SPDX-License-Identifier: MIT
// Row loops of the blend modes, on plain targets and in groups, and of a group's result.
#pragma once

#include "RowBlocks.h"
#include "RowModes.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// A premultiplied source, and the terms of the blend that depend on it alone.
struct BlendSource {
    U32 c;
    ChannelPairs straight;
    U16 alpha;   ///< in both lanes of a pixel
    bool opaque; ///< in every pixel

    GX_INLINE explicit BlendSource(U32 source) noexcept
        : c(source), straight(Split(source)), alpha((U16)AlphaTwice(source)), opaque(AllOpaque(source)) {
        if (!opaque) {
            straight = StraightChannels(source);
        }
    }
};

/// The general case of BlendPixels, with alpha as + ab - as ab.
template <class Mode> GX_INLINE inline U32 BlendTranslucent(U32 d, const BlendSource& source) noexcept {
    const U32 as = Alpha(source.c);
    const U32 ab = Alpha(d);
    const ChannelPairs mixed = Mode::Mixed(StraightChannels(d), source.straight);
    const U32 t = Product(as, ab + 1U) >> 8;
    const U32 sum = Scale(d, ComplementOf(as)) + Scale(source.c, ComplementOf(ab)) + Scale(mixed, FactorOf(t));
    const U32 result = (sum & kColors) | (as + ab - t) << 24;
    return Select(IsZero(ab), source.c, result);
}

/// (1 - ab) cs as + (1 - as) cb ab + as ab B(cb, cs); see the scalar form. Where as is 0, the result is undefined. The
/// alpha that B makes falls out of the sums.
template <class Mode> GX_INLINE inline U32 BlendPixels(U32 d, const BlendSource& source) noexcept {
    if (!AllOpaque(d)) [[unlikely]] {
        return BlendTranslucent<Mode>(d, source);
    }
    const ChannelPairs under = Split(d);
    const ChannelPairs mixed = Mode::Mixed(under, source.straight);
    if (source.opaque) {
        return Join(mixed) | kAlpha;
    }
    return (Scale(under, (U32)(256U - source.alpha)) + Scale(mixed, (U32)(source.alpha + 1U))) | kAlpha;
}

template <size_t kNumber, class Mode>
void BlendRow(uint32_t* dst, const uint32_t* src, const uint8_t* shape, size_t count) {
    const auto narrower = [=](const RowKernels& set) { set.blend[kNumber](dst, src, shape, count); };
    const auto step = [=](size_t i, size_t n) GX_INLINE {
        U32 c = LoadSome(src + i, n);
        if (AllClear(c)) {
            return;
        }
        I32 keep = IsZero(c & kAlpha);
        if (shape != nullptr && !(n == kLanes && BytesAre(shape + i, 255))) {
            const U32 s = WidenSome(shape + i, n);
            keep |= IsZero(s);
            if (AllSet(keep)) {
                return;
            }
            c = Scale(c, FactorOf(s));
        }
        const U32 d = LoadSome(dst + i, n);
        StoreSome(dst + i, n, Select(keep, d, BlendPixels<Mode>(d, BlendSource(c))));
    };
    ForBlocksOfRow(count, step, narrower);
}

template <size_t kNumber, class Mode>
void BlendSolidRow(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count) {
    if (color >> 24 == 0) {
        return;
    }
    if (DoneByNarrower(count, [=](const RowKernels& set) { set.blendSolid[kNumber](dst, color, shape, count); })) {
        return;
    }
    const BlendSource full(Splat(color));
    const auto step = [=](size_t i, size_t n) GX_INLINE {
        if (shape == nullptr || (n == kLanes && BytesAre(shape + i, 255))) {
            StoreSome(dst + i, n, BlendPixels<Mode>(LoadSome(dst + i, n), full));
            return;
        }
        const U32 s = WidenSome(shape + i, n);
        const I32 keep = IsZero(s);
        if (!AllSet(keep)) {
            const U32 d = LoadSome(dst + i, n);
            const BlendSource partly(Scale(full.c, FactorOf(s)));
            StoreSome(dst + i, n, Select(keep, d, BlendPixels<Mode>(d, partly)));
        }
    };
    ForBlocksOnce(count, step);
}

struct LayerOver {
    GX_INLINE static U32 Pixel(U32 under, U32 c) noexcept { return Scale(under, ComplementOfAlpha(c)) + c; }
};

template <class Mode> struct LayerBlended {
    GX_INLINE static U32 Pixel(U32 under, U32 c) noexcept {
        const ChannelPairs mixed = Mode::Mixed(StraightChannels(under), StraightChannels(c));
        const U32 m = Scale(c, ComplementOfAlpha(under)) + Scale(mixed, FactorOf(Alpha(under)));
        return Scale(under, ComplementOfAlpha(c)) + Scale(m, FactorOf(Alpha(c)));
    }
};

/// kNumber is that of layerBlend, or -1 for layerNormal.
template <class Compose, int kNumber = -1>
void LayerRow(const LayerRowPlanes& row, const uint32_t* src, const uint8_t* shape, size_t count) {
    const LayerRowPlanes r = row;
    const auto narrower = [&row, src, shape, count](const RowKernels& set) {
        (kNumber < 0 ? set.layerNormal : set.layerBlend[kNumber < 0 ? 0 : kNumber])(row, src, shape, count);
    };
    const auto step = [=](size_t i, size_t n) GX_INLINE {
        const U32 c = LoadSome(src + i, n);
        const U32 as = Alpha(c);
        const U32 fs = shape != nullptr ? WidenSome(shape + i, n) : Splat(255U);
        const I32 keep = IsZero(as) | IsZero(fs);
        if (AllSet(keep)) {
            return;
        }
        const U32 backdrop = r.backdrop != nullptr ? LoadSome(r.backdrop + i, n) : Splat(0U);
        const U32 old = LoadSome(r.color + i, n);
        const U32 oldAlpha = WidenSome(r.alpha + i, n);
        const U32 oldShape = WidenSome(r.shape + i, n);

        const U32 merged = r.knockout ? as : Union(oldAlpha, as);
        const U32 alpha = (Product(merged, fs + 1U) >> 8) + (Product(oldAlpha, 256U - fs) >> 8);
        const U32 composed = Compose::Pixel(r.knockout ? backdrop : old, c);
        const U32 sum = Scale(old, ComplementOf(fs)) + Scale(composed, FactorOf(fs));
        const U32 color = (sum & 0x00FFFFFFU) | Union(alpha, Alpha(backdrop)) << 24;
        StoreSome(r.color + i, n, Select(keep, old, color));
        NarrowSome(r.alpha + i, n, Select(keep, oldAlpha, alpha));
        NarrowSome(r.shape + i, n, Select(keep, oldShape, Union(oldShape, fs)));
    };
    ForBlocksOfRow(count, step, narrower);
}

void GroupResult(uint32_t* color, const uint8_t* alpha, const uint8_t* shape, const uint32_t* backdrop, size_t count) {
    const auto narrower = [=](const RowKernels& set) { set.groupResult(color, alpha, shape, backdrop, count); };
    const auto step = [=](size_t i, size_t n) GX_INLINE {
        const U32 fg = WidenSome(shape + i, n);
        const U32 ag = WidenSome(alpha + i, n);
        const U32 x = LoadSome(color + i, n);
        I32 keep = IsZero(fg);
        U32 share = x;
        if (backdrop != nullptr) {
            keep |= IsZero(ag);
            share = SubtractClamped(x, Scale(LoadSome(backdrop + i, n), ComplementOf(ag)));
        }
        if (AllSet(keep)) {
            return;
        }
        const U32 whole = (share & 0x00FFFFFFU) | ag << 24;
        U32 result = Join(DividedBytes(whole, fg));
        if (backdrop != nullptr) {
            result = Select((ag == 255U), x | 0xFF000000U, result);
        }
        StoreSome(color + i, n, Select(keep, x, result));
    };
    ForBlocksOfRow(count, step, narrower);
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
