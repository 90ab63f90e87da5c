// SPDX-License-Identifier: MIT
// Windings summed from left to right along a row of bit planes. Part of the band loops.
//
// Element j of an array of K vectors holds bit j of the windings, modulo 2^K. Byte s of a pixel's word is sub-scanline s; its
// highest bit, column 7, is what the pixel adds to the pixels right of it.
#pragma once

#include <type_traits>

#include "../Simd/Vectors.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

constexpr uint64_t kEachByte = 0x0101010101010101U;

/// a += b for numbers of K bits; element j holds bit j.
template <int K> inline void AddPlanes(U64* a, const U64* b) {
    U64 carry = U64{};
    for (int j = 0; j < K; ++j) {
        const U64 sum = Xor3(a[j], b[j], carry);
        if (j + 1 < K) {
            carry = Majority(a[j], b[j], carry);
        }
        a[j] = sum;
    }
}

/// Sums in planes, for any number of them.
template <int K> class PlaneSums {
public:
    /// The samples inside, from the windings of the next pixels without those left of them.
    GX_INLINE U64 Samples(U64* w) noexcept {
        U64 right[K]; // of each pixel, in all columns
        for (int j = 0; j < K; ++j) {
            right[j] = (U64)((I8)w[j] < 0);
        }
        AddMoved<1>(right);
        if constexpr (kLongLanes > 2) {
            AddMoved<2>(right);
        }
        if constexpr (kLongLanes > 4) {
            AddMoved<4>(right);
        }
        AddPlanes<K>(right, m_carry);
        U64 left[K];
        for (int j = 0; j < K; ++j) {
            left[j] = MovedUp<1>(right[j], m_carry[j]);
            m_carry[j] = Last(right[j]);
        }
        AddPlanes<K>(w, left);
        U64 inside = w[0];
        for (int j = 1; j < K; ++j) {
            inside |= w[j];
        }
        return inside;
    }

    /// The number of sub-scanlines in which the sum is not 0.
    GX_INLINE uint32_t Inside() const noexcept {
        U64 inside = m_carry[0];
        for (int j = 1; j < K; ++j) {
            inside |= m_carry[j];
        }
        return static_cast<uint32_t>((inside[0] & kEachByte) * kEachByte >> 56);
    }

private:
    template <size_t N> GX_INLINE static void AddMoved(U64* a) noexcept {
        U64 up[K];
        for (int j = 0; j < K; ++j) {
            up[j] = MovedUp<N>(a[j], U64{});
        }
        AddPlanes<K>(a, up);
    }

    U64 m_carry[K] = {};
};

/// Sums in bytes, one for each sub-scanline, for few planes: an addition of bytes replaces one of planes.
template <int K> class ByteSums {
public:
    static constexpr int kMostPlanes = 5;

    /// As in PlaneSums.
    GX_INLINE U64 Samples(const U64* w) noexcept {
        U64 sum = Changes(w);
        sum = Sum(sum, MovedUp<1>(sum, U64{}));
        if constexpr (kLongLanes > 2) {
            sum = Sum(sum, MovedUp<2>(sum, U64{}));
        }
        if constexpr (kLongLanes > 4) {
            sum = Sum(sum, MovedUp<4>(sum, U64{}));
        }
        sum = Sum(sum, m_carry);
        const U64 left = MovedUp<1>(sum, m_carry);
        m_carry = Last(sum);
        return Inside(w, left, std::make_integer_sequence<int, K>());
    }

    /// As in PlaneSums.
    GX_INLINE uint32_t Inside() const noexcept {
        constexpr uint64_t kValue = kEachByte * ((1U << K) - 1);
        const uint64_t notZero = ((m_carry[0] & kValue) + kEachByte * 0x7F) >> 7 & kEachByte;
        return static_cast<uint32_t>(notZero * kEachByte >> 56);
    }

private:
    GX_INLINE static U64 Sum(U64 a, U64 b) noexcept { return (U64)((U8)a + (U8)b); }

    /// The windings in column 7, a byte for each sub-scanline; higher bits than the K lowest may hold anything.
    GX_INLINE static U64 Changes(const U64* w) noexcept {
        U64 changes = w[K - 1] >> (8 - K);
        for (int j = K - 2; j >= 0; --j) {
            changes = SelectBits(U64{} + (kEachByte << j), w[j] >> (7 - j), changes);
        }
        return changes & (U64{} + kEachByte * ((1U << K) - 1));
    }

    /// A sum of 0 is a winding that is the negative of the one on the left, so both are compared, bit by bit.
    template <int... J> GX_INLINE static U64 Inside(const U64* w, U64 left, std::integer_sequence<int, J...>) noexcept {
        U64 inside{};
        ((inside = OrXor(inside, w[J], BitsOfNegative<J>((U8)left))), ...);
        return inside;
    }

    U64 m_carry{};
};

#if GX_SIMD_BYTES == 64
/// The even-odd rule. A bit for each sample of column 7 is all that is summed: bit 8 p + s belongs to pixel p and
/// sub-scanline s. General registers do that faster than vectors, and beside them.
template <> class PlaneSums<1> {
public:
    GX_INLINE U64 Samples(const U64* w) noexcept {
        uint64_t sum = HighBits(w[0]);
        sum ^= sum << 8;
        sum ^= sum << 16;
        sum ^= sum << 32;
        sum ^= m_carry * kEachByte;
        const U64 left = SpreadBits(sum << 8 | m_carry);
        m_carry = sum >> 56;
        return w[0] ^ left;
    }

    GX_INLINE uint32_t Inside() const noexcept { return static_cast<uint32_t>(__builtin_popcountll(m_carry)); }

private:
    uint64_t m_carry = 0;
};
#endif

template <int K>
using ColumnSums = std::conditional_t<(K > 1 && K <= ByteSums<K>::kMostPlanes), ByteSums<K>, PlaneSums<K>>;

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
