// SPDX-License-Identifier: MIT
// Two neighbouring pixels of a bit plane, a byte for each of the eight sub-scanlines of a pixel: where an edge crosses them.
// Part of the verbs of the sets that shuffle bytes and shift each lane by its own count.
#pragma once

#define GX_SIMD_PAIRS

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

using Pair = uint64_t __attribute__((vector_size(16)));

/// Pixels that PairMasks can be taken through by NextPair, from the one at whose left columns count from 0.
constexpr int32_t kMostInPairs = 16;

/// The columns, a byte for each sub-scanline, as both pixels see them. `taken` has bytes of all ones for those that the edge
/// crosses; the others become 255.
GX_INLINE inline Pair PairFrom(__m128i columns, uint64_t taken) noexcept {
    const __m128i first = _mm_or_si128(columns, _mm_cvtsi64_si128(static_cast<int64_t>(~taken)));
    return (Pair)_mm_unpacklo_epi64(first, _mm_sub_epi8(first, _mm_set1_epi8(8)));
}
/// The same for the two pixels to the right.
GX_INLINE inline Pair NextPair(Pair columns) noexcept {
    return (Pair)_mm_sub_epi8((__m128i)columns, _mm_set1_epi8(16));
}
/// 0xFF << c for a column c of the pixel itself, else 0. The clamped sum is below 128, and its low half is c, for c up to 15;
/// a shuffle takes 0 for bytes from 128 on.
GX_INLINE inline Pair PairMasks(Pair columns) noexcept {
    const __m128i masks = _mm_setr_epi8(-1, -2, -4, -8, -16, -32, -64, -128, 0, 0, 0, 0, 0, 0, 0, 0);
    return (Pair)_mm_shuffle_epi8(masks, _mm_adds_epu8((__m128i)columns, _mm_set1_epi8(0x70)));
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
