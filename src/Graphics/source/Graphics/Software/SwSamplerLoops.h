// SPDX-License-Identifier: MIT
// The loops of bitmap samplers over vectors of kLanes words: from coordinates to indices and weights, from indices to
// pixels, and mixing.
#pragma once

#include "SwPaintVectors.h"

namespace Graphics {
namespace {

/// Coordinates beyond 2^30 stop there, so that neither neighbour leaves the integers; NaN counts as 0.
GX_INLINE inline Floats Confine(Floats c) noexcept {
    const Floats limit = Splat(1073741824.0F);
    return Lower(Higher(Select(c == c, c, Floats{}), -limit), limit);
}

/// Truncated, and one less for every negative coordinate: -1.0 gives -2. What was not confined and is too far, or NaN,
/// gives at least 2^31 - 1 in unsigned numbers.
GX_INLINE inline Ints IndexOf(Floats c) noexcept { return (Ints)((Words)Truncate(c) + (Words)(c < Floats{})); }

/// The second neighbour's weight, 1 to 256, in both halves.
GX_INLINE inline Words WeightOf(Floats at, Ints index) noexcept {
    const Floats share = (at - __builtin_convertvector(index, Floats)) * Splat(255.0F);
    const Words w = ((Words)Truncate(share) & 255U) + 1U;
    return w | w << 16;
}

/// The same for a truncated coordinate that is not negative: its fraction is below 1. `one` is 1 in both halves.
GX_INLINE inline Words WeightInside(Floats at, Ints index, Words one) noexcept {
    const Floats share = (at - __builtin_convertvector(index, Floats)) * Splat(255.0F);
    return Twice((Words)Truncate(share)) + one;
}

GX_INLINE inline Ints ClampIndex(Ints i, int32_t size) noexcept {
    const Ints last = Ints{} + (size - 1);
    i = Select(i > Ints{}, i, Ints{});
    return Select(i < last, i, last);
}

/// Puts indices into [0, size) by repeating (1) or mirroring (2).
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
                column = static_cast<int32_t>(near); // in the same tile as the one before
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

template <int Mode> void Indices(const float* c, size_t count, int32_t size, int32_t* index) {
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        Ints i = IndexOf(Confine(Load<Floats>(c + k, lanes)));
        if constexpr (Mode == 0) {
            i = ClampIndex(i, size);
        }
        Store(index + k, i, lanes);
    });
    if constexpr (Mode != 0) {
        Wrap<Mode>(index, count, size);
    }
}

template <int Mode>
void Taps(const float* c, size_t count, int32_t size, int32_t* first, int32_t* second, uint32_t* weight) {
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        const Floats at = Confine(Load<Floats>(c + k, lanes));
        Ints i = IndexOf(at);
        Store(weight + k, WeightOf(at, i), lanes);
        Ints j = i + 1;
        if constexpr (Mode == 0) {
            i = ClampIndex(i, size);
            j = ClampIndex(j, size);
        }
        Store(first + k, i, lanes);
        Store(second + k, j, lanes);
    });
    if constexpr (Mode != 0) {
        Wrap<Mode>(first, count, size);
        Wrap<Mode>(second, count, size);
    }
}

void MixRows(const uint32_t* a, const uint32_t* b, const uint32_t* weight, size_t count, uint32_t* out) {
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        Store(out + k, Mix(Load<Words>(a + k, lanes), Load<Words>(b + k, lanes), Load<Words>(weight + k, lanes)),
              lanes);
    });
}

void MixRowsBy(const uint32_t* a, const uint32_t* b, uint32_t weight, size_t count, uint32_t* out) {
    const Words w = Words{} + (weight | weight << 16);
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        Store(out + k, Mix(Load<Words>(a + k, lanes), Load<Words>(b + k, lanes), w), lanes);
    });
}

void ScaleBy(uint32_t* row, uint32_t factor, size_t count) {
    const Words f = Words{} + (factor | factor << 16);
    Blocks(count, [&](size_t k, size_t lanes)
                      GX_INLINE { Store(row + k, Scale(Load<Words>(row + k, lanes), (Halves)f), lanes); });
}

void PremultiplyRow(uint32_t* row, size_t count) {
    Blocks(count,
           [&](size_t k, size_t lanes) GX_INLINE { Store(row + k, Premultiply(Load<Words>(row + k, lanes)), lanes); });
}

} // namespace
} // namespace Graphics
