// SPDX-License-Identifier: MIT
// The row loops of the vector sets and the table they fill. Included last by a set's source, after SwKernelsVector.h
// and the set's own primitives:
//   Load, Store       a full vector of pixels;      LoadPart, StorePart    the first n < kLanes pixels, zeros beyond
//   Widen, Narrow     kLanes bytes to lanes, back;  WidenPart, NarrowPart  the first n < kLanes bytes
//   Sqrt              correctly rounded;            AllSet                 whether every lane of a mask is set
//   BytesAre          whether kLanes bytes all equal one;                  kNarrower  the next narrower set's table
#pragma once

#include "SwKernelsModes.h"

namespace Graphics::GX_KERNEL_NAMESPACE {

// n is kLanes but at the end of a row: one text serves blocks and tails.
GX_INLINE U32 LoadSome(const uint32_t* p, size_t n) noexcept { return n == kLanes ? Load(p) : LoadPart(p, n); }
GX_INLINE U32 WidenSome(const uint8_t* p, size_t n) noexcept { return n == kLanes ? Widen(p) : WidenPart(p, n); }
GX_INLINE void StoreSome(uint32_t* p, size_t n, U32 v) noexcept { n == kLanes ? Store(p, v) : StorePart(p, n, v); }
GX_INLINE void NarrowSome(uint8_t* p, size_t n, U32 v) noexcept { n == kLanes ? Narrow(p, v) : NarrowPart(p, n, v); }

/// Calls step(i, n) over a row; the last block may be short.
template <class Step> GX_INLINE void ForBlocks(size_t count, Step step) noexcept {
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        step(i, kLanes);
    }
    if (i < count) {
        step(i, count - i);
    }
}

/// The same for long bodies, which then stand once in the code.
template <class Step> GX_INLINE void ForBlocksOnce(size_t count, Step step) noexcept {
    for (size_t i = 0; i < count; i += kLanes) {
        step(i, count - i < kLanes ? count - i : kLanes);
    }
}

/// Calls step(i, n) over the whole blocks and leaves what remains to rest(i, n). Spans are short and touch each other:
/// a masked store here would stall the next span's load, which reaches into the same register's width, for longer than
/// the narrower set takes to do the pixels with stores of their exact size.
template <class Step, class Rest> GX_INLINE void ForWholeBlocks(size_t count, Step step, Rest rest) noexcept {
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
GX_INLINE const SwKernels& Narrower(size_t n) noexcept { return n < 8 ? *kSwKernelsSSE2 : **kNarrower; }

GX_INLINE const uint8_t* At(const uint8_t* shape, size_t i) noexcept { return shape != nullptr ? shape + i : nullptr; }

/// Rows up to this length go to the narrowest set in the modes whose bodies are long.
inline constexpr size_t kShortRow = 4;

// The row loops have internal linkage and no inline copies elsewhere.
namespace {

/// From here the processor's own string store is no slower, and far faster once the row exceeds the caches, since it
/// does not read the lines first. Measured; non-temporal stores lose below that size and gain nothing above.
constexpr size_t kStringStoreCount = size_t{1} << 17;

void Fill32(uint32_t* dst, uint32_t value, size_t count) {
    const U32 v = Splat(value);
    if (count < kLanes) {
        StorePart(dst, count, v);
        return;
    }
#if defined(__x86_64__)
    if (count >= kStringStoreCount) {
        __asm__ volatile("rep stosl" : "+D"(dst), "+c"(count) : "a"(value) : "memory");
        return;
    }
#endif
    // First and last vector unaligned, overlapping the aligned ones between.
    uint32_t* const end = dst + count;
    Store(dst, v);
    uint32_t* p = dst + (kLanes - (reinterpret_cast<uintptr_t>(dst) / 4) % kLanes);
    for (; end - p >= static_cast<ptrdiff_t>(4 * kLanes); p += 4 * kLanes) {
        Store(p, v);
        Store(p + kLanes, v);
        Store(p + 2 * kLanes, v);
        Store(p + 3 * kLanes, v);
    }
    for (; end - p >= static_cast<ptrdiff_t>(kLanes); p += kLanes) {
        Store(p, v);
    }
    Store(end - kLanes, v);
}

void Expect(const uint32_t* dst, size_t count) {
    constexpr size_t kLine = 16;
    for (size_t i = 0; i < count; i += kLine) {
        __builtin_prefetch(dst + i, 1);
    }
    __builtin_prefetch(dst + count - 1, 1);
}

void FillBlock(uint32_t* dst, ptrdiff_t strideBytes, uint32_t value, size_t count, size_t rows) {
    const bool ahead = count >= kLanes && count < kStringStoreCount;
    for (; rows != 0; --rows) {
        auto* next = reinterpret_cast<uint32_t*>(reinterpret_cast<char*>(dst) + strideBytes);
        if (ahead && rows > 1) {
            Expect(next, count);
        }
        Fill32(dst, value, count);
        dst = next;
    }
}

void SetOpaque(uint32_t* dst, size_t count) {
    ForBlocks(count, [=](size_t i, size_t n) { StoreSome(dst + i, n, LoadSome(dst + i, n) | 0xFF000000U); });
}

/// Aligned stores: a row that starts anywhere else splits two lines at every one of them.
void CopyOpaque(uint32_t* dst, const uint8_t* src, size_t count) {
    const auto step = [=](size_t i) { Store(dst + i, Load(src + i * 4) | 0xFF000000U); };
    if (count < kLanes) {
        if (count != 0) {
            __builtin_memcpy(dst, src, count * 4);
            SetOpaque(dst, count);
        }
        return;
    }
    step(0);
    for (size_t i = kLanes - (reinterpret_cast<uintptr_t>(dst) / 4) % kLanes; i + kLanes <= count; i += kLanes) {
        step(i);
    }
    step(count - kLanes);
}

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

/// (1 - ab) cs as + (1 - as) cb ab + as ab B(cb, cs), alpha as + ab - as ab; see the plain form.
template <class Mode> GX_INLINE U32 BlendPixels(U32 d, U32 c) noexcept {
    const U32 as = Alpha(c);
    const U32 ab = Alpha(d);
    const bool opaqueSource = AllSet((as == 255U));
    const U32 straight = opaqueSource ? c : Unpremultiply(c);
    if (AllSet((ab == 255U))) {
        const U32 mixed = Mode::Pixel(d, straight);
        if (opaqueSource) {
            return mixed | 0xFF000000U;
        }
        const U32 sum = Scale(d, ComplementOf(as)) + Scale(mixed & 0x00FFFFFFU, FactorOf(as));
        return sum | 0xFF000000U;
    }
    const U32 mixed = Mode::Pixel(Unpremultiply(d), straight) & 0x00FFFFFFU;
    const U32 t = Product(as, ab + 1U) >> 8;
    const U32 sum = Scale(d, ComplementOf(as)) + Scale(c, ComplementOf(ab)) + Scale(mixed, FactorOf(t));
    const U32 result = (sum & 0x00FFFFFFU) | (as + ab - t) << 24;
    return Select(IsZero(ab), c, result);
}

template <size_t kNumber, class Mode>
void BlendRow(uint32_t* dst, const uint32_t* src, const uint8_t* shape, size_t count) {
    if constexpr (kLanes > 4) {
        if (count <= kShortRow) {
            kSwKernelsSSE2->blend[kNumber](dst, src, shape, count);
            return;
        }
    }
    ForBlocksOnce(count, [=](size_t i, size_t n) {
        U32 c = LoadSome(src + i, n);
        I32 keep = IsZero(Alpha(c));
        if (shape != nullptr) {
            const U32 s = WidenSome(shape + i, n);
            keep |= IsZero(s);
            c = Scale(c, FactorOf(s));
        }
        if (AllSet(keep)) {
            return;
        }
        const U32 d = LoadSome(dst + i, n);
        StoreSome(dst + i, n, Select(keep, d, BlendPixels<Mode>(d, c)));
    });
}

struct LayerOver {
    GX_INLINE U32 Pixel(U32 under, U32 c) noexcept { return Scale(under, ComplementOf(Alpha(c))) + c; }
};

template <class Mode> struct LayerBlended {
    GX_INLINE U32 Pixel(U32 under, U32 c) noexcept {
        const U32 mixed = Mode::Pixel(Unpremultiply(under), Unpremultiply(c)) & 0x00FFFFFFU;
        const U32 m = Scale(c, ComplementOf(Alpha(under))) + Scale(mixed, FactorOf(Alpha(under)));
        return Scale(under, ComplementOf(Alpha(c))) + Scale(m, FactorOf(Alpha(c)));
    }
};

template <class Compose> void LayerRow(const SwLayerRow& row, const uint32_t* src, const uint8_t* shape, size_t count) {
    const SwLayerRow r = row;
    ForBlocksOnce(count, [=](size_t i, size_t n) {
        const U32 c = LoadSome(src + i, n);
        const U32 as = Alpha(c);
        const U32 fs = shape != nullptr ? WidenSome(shape + i, n) : Splat(255);
        const I32 keep = IsZero(as) | IsZero(fs);
        if (AllSet(keep)) {
            return;
        }
        const U32 backdrop = r.backdrop != nullptr ? LoadSome(r.backdrop + i, n) : Splat(0);
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
    });
}

void GroupResult(uint32_t* color, const uint8_t* alpha, const uint8_t* shape, const uint32_t* backdrop, size_t count) {
    ForBlocksOnce(count, [=](size_t i, size_t n) {
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
        U32 result = DivideBytes(whole, fg, Splat(0));
        if (backdrop != nullptr) {
            result = Select((ag == 255U), x | 0xFF000000U, result);
        }
        StoreSome(color + i, n, Select(keep, x, result));
    });
}

template <int kType> GX_INLINE U32 MaskValue(U32 x) noexcept {
    if constexpr (kType < 2) {
        return Alpha(kType == 0 ? x : ~x);
    } else {
        // 77 red + 28 blue in the even halves, 151 green below the odd: at most 65280 together.
        const U16 redBlue = (U16)(x & 0x00FF00FFU) * (U16)Splat(77U << 16 | 28U);
        const U16 green = (U16)(x >> 8 & 0x000000FFU) * 151U;
        const U32 sum = ((U32)redBlue & 0xFFFFU) + ((U32)redBlue >> 16) + (U32)green;
        const U32 value = sum >> 8;
        return kType == 2 ? value : 255U - value;
    }
}

template <int kType> void MaskValues(uint8_t* values, const uint32_t* pixels, size_t count) {
    ForBlocks(count, [=](size_t i, size_t n) { NarrowSome(values + i, n, MaskValue<kType>(LoadSome(pixels + i, n))); });
}

/// Bytes by whole vectors, then by lanes.
void ScaleShape(uint8_t* shape, const uint8_t* mask, size_t count) {
    for (; count >= 4 * kLanes; count -= 4 * kLanes, shape += 4 * kLanes, mask += 4 * kLanes) {
        Store(shape, ScaleBytes(Load(shape), Load(mask)));
    }
    ForBlocks(count, [=](size_t i, size_t n) {
        NarrowSome(shape + i, n, Product(WidenSome(shape + i, n), WidenSome(mask + i, n) + 1U) >> 8);
    });
}

void ScaleShapeBy(uint8_t* shape, uint8_t value, size_t count) {
    if (value == 255) {
        return;
    }
    const U32 factor = Splat(value + 1U);
    for (; count >= 4 * kLanes; count -= 4 * kLanes, shape += 4 * kLanes) {
        Store(shape, Scale(Load(shape), Spread(factor)));
    }
    ForBlocks(count,
              [=](size_t i, size_t n) { NarrowSome(shape + i, n, Product(WidenSome(shape + i, n), factor) >> 8); });
}

void ScaleColor(uint32_t* color, const uint8_t* mask, size_t count) {
    ForBlocks(count, [=](size_t i, size_t n) {
        if (n == kLanes && BytesAre(mask + i, 255)) {
            return;
        }
        StoreSome(color + i, n, Scale(LoadSome(color + i, n), FactorOf(WidenSome(mask + i, n))));
    });
}

void ScaleColorBy(uint32_t* color, uint32_t factor, size_t count) {
    if (factor == 256) {
        return;
    }
    const U32 k = Spread(Splat(factor));
    ForBlocks(count, [=](size_t i, size_t n) { StoreSome(color + i, n, Scale(LoadSome(color + i, n), k)); });
}

void Premultiply(uint32_t* color, size_t count) {
    ForBlocks(count, [=](size_t i, size_t n) {
        const U32 x = LoadSome(color + i, n);
        StoreSome(color + i, n, (Scale(x, FactorOf(Alpha(x))) & 0x00FFFFFFU) | (x & 0xFF000000U));
    });
}

void ReplaceSolid(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count) {
    if (shape == nullptr) {
        Fill32(dst, color, count);
        return;
    }
    const U32 c = Splat(color);
    ForBlocks(count, [=](size_t i, size_t n) {
        const U32 s = WidenSome(shape + i, n);
        StoreSome(dst + i, n, Scale(LoadSome(dst + i, n), ComplementOf(s)) + Scale(c, FactorOf(s)));
    });
}

void Invert(uint32_t* dst, size_t count) {
    ForBlocks(count, [=](size_t i, size_t n) { StoreSome(dst + i, n, LoadSome(dst + i, n) ^ 0x00FFFFFFU); });
}

#define GX_MODES(row)                                                                                                  \
    {                                                                                                                  \
        row(0, Normal), row(1, Paired<Multiply>), row(2, Paired<Screen>), row(3, Paired<Overlay>), row(4, Darken),     \
            row(5, Lighten), row(6, Wide<ColorBurn>), row(7, Wide<ColorDodge>), row(8, Paired<HardLight>),             \
            row(9, Wide<SoftLight>), row(10, Difference), row(11, Paired<Exclusion>), row(12, Hue),                    \
            row(13, Saturation), row(14, HueAndSaturation), row(15, Luminosity), row(16, Normal)                       \
    }
#define GX_BLEND_ROW(number, ...) BlendRow<number, __VA_ARGS__>
#define GX_LAYER_ROW(number, ...) LayerRow<LayerBlended<__VA_ARGS__>>

constexpr SwKernels kTable = {
    kSetName,
    Fill32,
    FillBlock,
    Expect,
    SetOpaque,
    CopyOpaque,
    NormalSolid,
    NormalSolidBlock,
    NormalVarying,
    GX_MODES(GX_BLEND_ROW),
    LayerRow<LayerOver>,
    GX_MODES(GX_LAYER_ROW),
    GroupResult,
    {MaskValues<0>, MaskValues<1>, MaskValues<2>, MaskValues<3>},
    ScaleShape,
    ScaleShapeBy,
    ScaleColor,
    ScaleColorBy,
    Premultiply,
    ReplaceSolid,
    Invert,
};

} // namespace
} // namespace Graphics::GX_KERNEL_NAMESPACE
