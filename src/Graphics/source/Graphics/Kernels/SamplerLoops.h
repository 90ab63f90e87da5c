// SPDX-License-Identifier: MIT
// The loops of bitmap samplers over vectors of kLanes words: from coordinates to indices and weights, from indices to
// pixels, and mixing.
#pragma once

#include "../Simd/Channels.h"
#include "PaintKernels.h"
#include "PixelQuads.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// Clamps coordinates to +-2^30, so that both neighbours fit an integer; NaN becomes 0.
GX_INLINE inline F32 Confine(F32 c) noexcept {
    const F32 limit = Splat(1073741824.0F);
    return Lower(Higher(Select(c == c, c, F32{}), -limit), limit);
}

/// Truncates and subtracts one for every negative coordinate: -1.0 gives -2. A coordinate that was not confined and is
/// too large, or NaN, gives at least 2^31 - 1 as an unsigned number.
GX_INLINE inline I32 IndexOf(F32 c) noexcept { return (I32)((U32)Truncate(c) + (U32)(c < F32{})); }

/// The second neighbour's weight, 1 to 256, in both halves.
GX_INLINE inline U32 WeightOf(F32 at, I32 index) noexcept {
    const F32 share = (at - __builtin_convertvector(index, F32)) * Splat(255.0F);
    const U32 w = ((U32)Truncate(share) & 255U) + 1U;
    return Spread(w);
}

/// WeightOf for a truncated coordinate that is not negative: its fraction is below 1. `one` is 1 in both halves.
GX_INLINE inline U32 WeightInside(F32 at, I32 index, U32 one) noexcept {
    const F32 share = (at - __builtin_convertvector(index, F32)) * Splat(255.0F);
    return Twice((U32)Truncate(share)) + one;
}

GX_INLINE inline I32 ClampIndex(I32 i, int32_t size) noexcept {
    const I32 last = I32{} + (size - 1);
    i = Select(i > I32{}, i, I32{});
    return Select(i < last, i, last);
}

/// Maps indices into [0, size) by repeating (1) or mirroring (2).
template <int Mode> void Wrap(int32_t* index, size_t count, int32_t size) noexcept {
    int32_t lastIndex = 0;
    int32_t lastColumn = 0;
    for (size_t k = 0; k < count; ++k) {
        const int32_t i = index[k];
        if (static_cast<uint32_t>(i) < static_cast<uint32_t>(size)) {
            continue;
        }
        if constexpr (Mode == 1) {
            const int64_t near = static_cast<int64_t>(lastColumn) + i - lastIndex;
            int32_t column;
            if (near >= 0 && near < size) {
                column = static_cast<int32_t>(near); // in the same tile as the previous one
            } else {
                column = i % size;
                column += column < 0 ? size : 0;
            }
            lastIndex = i;
            lastColumn = column;
            index[k] = column;
        } else {
            // The absolute value mirrors about the centre of pixel 0; the far edge repeats its pixel.
            const int32_t a = i < 0 ? -i : i;
            const int32_t tile = a / size;
            const int32_t r = a - tile * size;
            index[k] = (tile & 1) != 0 ? size - 1 - r : r;
        }
    }
}

/// Mixes the corners of two rows, first across, then down. A low product leaves its channel in the high byte of the
/// half, a high product in the low byte; alternating them puts each channel where the next step needs it.
struct CornerMix {
    U16 low = Kept(U16{} + 0x00FFU);
    U16 high = Kept(U16{} + 0xFF00U);
    U16 whole = Kept(U16{} + 257U);

    GX_INLINE U32 operator()(const U32* c, U32 acrossWeight, U32 downWeight) const noexcept {
        const auto across = (U16)acrossWeight;
        const auto down = (U16)downWeight;
        const U16 restAcross = whole - across;
        const U16 restDown = whole - down;
        if constexpr (kJoinsByShift) {
            // Mixed channels lie in the low bytes, where the next step takes them from.
            const auto mixed = [&](U16 (*side)(U32)) GX_INLINE {
                const U16 above = Part(side(c[0]), restAcross) + Part(side(c[1]), across);
                const U16 below = Part(side(c[2]), restAcross) + Part(side(c[3]), across);
                return Part(above, restDown) + Part(below, down);
            };
            return (U32)(mixed(Even) | mixed(Odd) << 8);
        }
        const auto even = [&](const U32* row) GX_INLINE {
            const U16 a = ((U16)row[0] & low) * restAcross;
            const U16 b = ((U16)row[1] & low) * across;
            return (a & high) + (b & high);
        };
        const auto odd = [&](const U32* row) GX_INLINE {
            return MultiplyHigh((U16)row[0] & high, restAcross) + MultiplyHigh((U16)row[1] & high, across);
        };
        const U16 evens = MultiplyHigh(even(c), restDown) + MultiplyHigh(even(c + 2), down);
        const U16 odds = ((odd(c) * restDown) & high) + ((odd(c + 2) * down) & high);
        return (U32)(evens | odds);
    }
};

template <int Mode> void Indices(const float* c, size_t count, int32_t size, int32_t* index) {
    ForBlocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        I32 i = IndexOf(Confine(LoadSome<F32>(c + k, lanes)));
        if constexpr (Mode == 0) {
            i = ClampIndex(i, size);
        }
        StoreSome(index + k, lanes, i);
    });
    if constexpr (Mode != 0) {
        Wrap<Mode>(index, count, size);
    }
}

template <int Mode>
void Taps(const float* c, size_t count, int32_t size, int32_t* first, int32_t* second, uint32_t* weight) {
    ForBlocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        const F32 at = Confine(LoadSome<F32>(c + k, lanes));
        I32 i = IndexOf(at);
        StoreSome(weight + k, lanes, WeightOf(at, i));
        I32 j = i + 1;
        if constexpr (Mode == 0) {
            i = ClampIndex(i, size);
            j = ClampIndex(j, size);
        }
        StoreSome(first + k, lanes, i);
        StoreSome(second + k, lanes, j);
    });
    if constexpr (Mode != 0) {
        Wrap<Mode>(first, count, size);
        Wrap<Mode>(second, count, size);
    }
}

void MixRows(const uint32_t* a, const uint32_t* b, const uint32_t* weight, size_t count, uint32_t* out) {
    size_t done = 0;
#ifdef GX_SIMD_QUADS
    done = ForQuads(count, [=](size_t i) GX_INLINE {
        const Quad x = LoadQuad(a + i);
        const Quad y = LoadQuad(b + i);
        const Quad w = LoadQuad(weight + i);
        StoreQuad(out + i, EachOf([&](int k) GX_INLINE {
                      const U32 share = DoubleLowBytes((U32)((U16)w.v[k] - 1U));
                      return ScaleDown(x.v[k], share) + ScaleUp(y.v[k], share);
                  }));
    });
#endif
    ForBlocks(count - done, [=](size_t i, size_t lanes) GX_INLINE {
        const size_t k = done + i;
        StoreSome(out + k, lanes, Mix(LoadSome(a + k, lanes), LoadSome(b + k, lanes), LoadSome(weight + k, lanes)));
    });
}

void MixRowsBy(const uint32_t* a, const uint32_t* b, uint32_t weight, size_t count, uint32_t* out) {
    size_t done = 0;
#ifdef GX_SIMD_QUADS
    if (weight - 2U <= 253U) { // both factors are bytes
        const U32 rest = Splat((257U - weight) * 0x01010101U);
        const U32 share = Splat(weight * 0x01010101U);
        done = ForQuads(count, [=](size_t i) GX_INLINE {
            const Quad x = LoadQuad(a + i);
            const Quad y = LoadQuad(b + i);
            StoreQuad(out + i,
                      EachOf([&](int k) GX_INLINE { return ScaleDirect(x.v[k], rest) + ScaleDirect(y.v[k], share); }));
        });
    }
#endif
    const U32 w = Spread(Splat(weight));
    ForBlocks(count - done, [=](size_t i, size_t lanes) GX_INLINE {
        const size_t k = done + i;
        StoreSome(out + k, lanes, Mix(LoadSome(a + k, lanes), LoadSome(b + k, lanes), w));
    });
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
