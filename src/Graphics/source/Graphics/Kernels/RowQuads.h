// SPDX-License-Identifier: MIT
// Row loops over blocks of 16 pixels, for the set that has verbs for them. They take the places of those of the same names, which
// do what remains of a row.
#pragma once

#include "PixelQuads.h"
#include "RowBlends.h"
#include "RowNormal.h"
#include "RowScales.h"

#ifdef GX_SIMD_QUADS
namespace Graphics::GX_SIMD_NAMESPACE {
namespace {
namespace Quads {

namespace Rest = GX_SIMD_NAMESPACE;

/// The last vectors overlap the ones before them.
void Fill32(uint32_t* dst, uint32_t value, size_t count) {
    if (count < kQuadPixels) {
        Rest::Fill32(dst, value, count);
        return;
    }
    const U32 v = Splat(value);
    FillQuads(dst, v, count);
    StoreQuad(dst + count - kQuadPixels, {{v, v, v, v}});
}

void FillBlock(uint32_t* dst, ptrdiff_t strideBytes, uint32_t value, size_t count, size_t rows) {
    if (count < kQuadPixels) {
        Rest::FillBlock(dst, strideBytes, value, count, rows);
        return;
    }
    for (auto* row = reinterpret_cast<char*>(dst); rows != 0; --rows, row += strideBytes) {
        Quads::Fill32(reinterpret_cast<uint32_t*>(row), value, count);
    }
}

void CopyOpaque(uint32_t* dst, const uint8_t* src, size_t count) {
    const size_t done = ForQuads(count, [=](size_t i) GX_INLINE {
        const Quad c = LoadQuad(src + i * 4);
        StoreQuad(dst + i, EachOf([&](int k) GX_INLINE { return c.v[k] | kAlpha; }));
    });
    if (done < count) {
        Rest::CopyOpaque(dst + done, src + done * 4, count - done);
    }
}

template <bool kOpaque>
GX_INLINE inline size_t ShapedQuads(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count) noexcept {
    const U32 c = Splat(color);
    const ShapedColor<kOpaque> shaped(c);
    return ForQuads(count, [=](size_t i) GX_INLINE {
        if (QuadBytesAre(shape + i, 0)) {
            return;
        }
        if (kOpaque && QuadBytesAre(shape + i, 255)) {
            StoreQuad(dst + i, {{c, c, c, c}});
            return;
        }
        const U32 s = Load(shape + i);
        const Quad d = LoadQuad(dst + i);
        StoreQuad(dst + i, EachOf([&](int k) GX_INLINE { return shaped(d.v[k], SpreadQuarter(s, k)); }));
    });
}

void NormalSolid(uint32_t* dst, uint32_t color, const uint8_t* shape, size_t count) {
    const uint32_t alpha = color >> 24;
    size_t done = 0;
    if (alpha == 0) {
        return;
    }
    if (shape != nullptr) {
        done =
            alpha == 255 ? ShapedQuads<true>(dst, color, shape, count) : ShapedQuads<false>(dst, color, shape, count);
    } else if (alpha == 255) {
        Quads::Fill32(dst, color, count);
        return;
    } else {
        done = OverQuads(dst, OverColor(Splat(color)), count);
    }
    if (done < count) {
        Rest::NormalSolid(dst + done, color, At(shape, done), count - done);
    }
}

GX_INLINE inline void VaryingQuad(uint32_t* dst, const Quad& c) noexcept {
    if (AllOpaque(c)) {
        StoreQuad(dst, c);
        return;
    }
    const Quad d = LoadQuad(dst);
    StoreQuad(dst, EachOf([&](int k) GX_INLINE {
                  const U32 rest = ScaleDirect(d.v[k], Negative(AlphaBytes(c.v[k])));
                  return SelectBits(HasAlpha(c.v[k]), OverRest(d.v[k], c.v[k], rest), d.v[k]);
              }));
}

void NormalVarying(uint32_t* dst, const uint32_t* src, const uint8_t* shape, size_t count) {
    size_t done = 0;
    if (shape == nullptr) {
        done = ForQuads(count, [=](size_t i) GX_INLINE { VaryingQuad(dst + i, LoadQuad(src + i)); });
    } else {
        done = ForQuads(count, [=](size_t i) GX_INLINE {
            if (QuadBytesAre(shape + i, 0)) {
                return;
            }
            const Quad c = LoadQuad(src + i);
            if (QuadBytesAre(shape + i, 255)) {
                VaryingQuad(dst + i, c);
                return;
            }
            const U32 s = Load(shape + i);
            const Quad d = LoadQuad(dst + i);
            StoreQuad(dst + i, EachOf([&](int k) GX_INLINE {
                          const U32 covered = SpreadQuarter(s, k);
                          const U32 scaled = ScaleUp(c.v[k], covered);
                          const U32 over = OverRest(d.v[k], scaled, ScaleDown(d.v[k], AlphaBytes(scaled)));
                          return SelectBits(HasAlpha(c.v[k]) & ~BytesAreZero(covered), over, d.v[k]);
                      }));
        });
    }
    if (done < count) {
        Rest::NormalVarying(dst + done, src + done, At(shape, done), count - done);
    }
}

template <class Compose, int kNumber = -1>
void LayerRow(const LayerRowPlanes& row, const uint32_t* src, const uint8_t* shape, size_t count) {
    const LayerRowPlanes r = row;
    const size_t done = ForQuads(count, [=](size_t i) GX_INLINE {
        if (shape != nullptr && QuadBytesAre(shape + i, 0)) {
            return;
        }
        const Quad c = LoadQuad(src + i);
        const U32 as = AlphasOf(c);
        const U32 fs = shape != nullptr ? Load(shape + i) : ~U32{};
        const U32 keep = BytesAreZero(as) | BytesAreZero(fs);
        if (AllSet((I32)(keep == ~U32{}))) {
            return;
        }
        const Quad backdrop = r.backdrop != nullptr ? LoadQuad(r.backdrop + i) : Quad{};
        const Quad old = LoadQuad(r.color + i);
        const U32 oldAlpha = Load(r.alpha + i);
        const U32 oldShape = Load(r.shape + i);

        const U32 merged = r.knockout ? as : UnionBytes(oldAlpha, as);
        const U32 alpha = (U32)((U8)ScaleUp(merged, fs) + (U8)ScaleDown(oldAlpha, fs));
        const U32 shown = r.backdrop != nullptr ? UnionBytes(alpha, AlphasOf(backdrop)) : alpha;
        StoreQuad(r.color + i, EachOf([&](int k) GX_INLINE {
                      const U32 composed = Compose::Pixel(r.knockout ? backdrop.v[k] : old.v[k], c.v[k]);
                      const U32 covered = SpreadQuarter(fs, k);
                      const U32 sum = ScaleDown(old.v[k], covered) + ScaleUp(composed, covered);
                      return SelectBits(SpreadQuarter(keep, k), old.v[k], WithAlphas(sum, shown, k));
                  }));
        Store(r.alpha + i, SelectBits(keep, oldAlpha, alpha));
        Store(r.shape + i, SelectBits(keep, oldShape, UnionBytes(oldShape, fs)));
    });
    if (done < count) {
        const LayerRowPlanes rest = {r.color + done, r.alpha + done, r.shape + done,
                                     r.backdrop != nullptr ? r.backdrop + done : nullptr, r.knockout};
        Rest::LayerRow<Compose, kNumber>(rest, src + done, At(shape, done), count - done);
    }
}

/// Where the shape is full, which is where the group covers pixels whole, nothing is divided.
void GroupResult(uint32_t* color, const uint8_t* alpha, const uint8_t* shape, const uint32_t* backdrop, size_t count) {
    const size_t done = ForQuads(count, [=](size_t i) GX_INLINE {
        if (QuadBytesAre(shape + i, 0)) {
            return;
        }
        if (!QuadBytesAre(shape + i, 255)) {
            Rest::GroupResult(color + i, alpha + i, shape + i, backdrop != nullptr ? backdrop + i : nullptr,
                              kQuadPixels);
            return;
        }
        const U32 ag = Load(alpha + i);
        const Quad x = LoadQuad(color + i);
        if (backdrop == nullptr) {
            StoreQuad(color + i, EachOf([&](int k) GX_INLINE { return WithAlphas(x.v[k], ag, k); }));
            return;
        }
        const Quad under = LoadQuad(backdrop + i);
        StoreQuad(color + i, EachOf([&](int k) GX_INLINE {
                      const U32 a = SpreadQuarter(ag, k);
                      const U32 share = SubtractClamped(x.v[k], ScaleDown(under.v[k], a));
                      return SelectBits(BytesAreZero(a), x.v[k], SelectBits(Splat(kAlpha), a, share));
                  }));
    });
    if (done < count) {
        Rest::GroupResult(color + done, alpha + done, shape + done, backdrop != nullptr ? backdrop + done : nullptr,
                          count - done);
    }
}

template <int kType> void MaskValues(uint8_t* values, const uint32_t* pixels, size_t count) {
    const size_t done = ForQuads(count, [=](size_t i) GX_INLINE {
        const U32 v = kType < 2 ? AlphasOf(LoadQuad(pixels + i)) : LuminositiesOf(pixels + i);
        Store(values + i, (kType & 1) != 0 ? ~v : v);
    });
    if (done < count) {
        Rest::MaskValues<kType>(values + done, pixels + done, count - done);
    }
}

void ScaleShape(uint8_t* shape, const uint8_t* mask, size_t count) {
    const size_t done =
        ForQuads(count, [=](size_t i) GX_INLINE { Store(shape + i, ScaleUp(Load(shape + i), Load(mask + i))); });
    if (done < count) {
        Rest::ScaleShape(shape + done, mask + done, count - done);
    }
}

/// Maps the pixels of a row in place; those behind its whole blocks are left to rest(number of the first).
template <class Of, class Rest>
GX_INLINE inline void MapColors(uint32_t* color, size_t count, Of of, Rest rest) noexcept {
    const size_t done = ForQuads(count, [=](size_t i) GX_INLINE {
        const Quad c = LoadQuad(color + i);
        StoreQuad(color + i, EachOf([&](int k) GX_INLINE { return of(c.v[k]); }));
    });
    if (done < count) {
        rest(done);
    }
}

void ScaleColor(uint32_t* color, const uint8_t* mask, size_t count) {
    const size_t done = ForQuads(count, [=](size_t i) GX_INLINE {
        if (QuadBytesAre(mask + i, 255)) {
            return;
        }
        const U32 m = Load(mask + i);
        const Quad c = LoadQuad(color + i);
        StoreQuad(color + i, EachOf([&](int k) GX_INLINE { return ScaleUp(c.v[k], SpreadQuarter(m, k)); }));
    });
    if (done < count) {
        Rest::ScaleColor(color + done, mask + done, count - done);
    }
}

void ScaleColorBy(uint32_t* color, uint32_t factor, size_t count) {
    if (factor == 256) {
        return;
    }
    const U32 by = Splat(factor * 0x01010101U);
    MapColors(
        color, count, [=](U32 c) GX_INLINE { return ScaleDirect(c, by); },
        [=](size_t done) { Rest::ScaleColorBy(color + done, factor, count - done); });
}

void PremultiplyRow(uint32_t* color, size_t count) {
    MapColors(
        color, count, [](U32 c) GX_INLINE { return ScaleUp(c, AlphaBytes(c) | kAlpha); },
        [=](size_t done) { Rest::PremultiplyRow(color + done, count - done); });
}

} // namespace Quads
} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
#endif
