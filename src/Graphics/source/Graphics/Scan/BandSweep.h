// SPDX-License-Identifier: MIT
// Sweeps a row of a band: sums windings from left to right, counts samples and makes runs. Part of the band loops.
#pragma once

#include <cstring>

#include "../Simd/Vectors.h"
#include "BandKernels.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

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

/// Copies column 7 of each sub-scanline to all of its columns.
GX_INLINE inline U64 SpreadColumn7(U64 v) { return (U64)((I8)v < 0); }

template <int K, size_t N> inline void AddShifted(U64* a) {
    U64 up[K];
    for (int j = 0; j < K; ++j) {
        up[j] = MovedUp<N>(a[j], U64{});
    }
    AddPlanes<K>(a, up);
}

/// Writes the shape bytes of a block of eight pixels and zeroes the block. On entry `carry` is the winding left of the
/// block, on return the winding right of it, in every lane.
template <int K> inline void SweepBlock(uint8_t* cells, size_t planeBytes, U64* carry, uint8_t* out) {
    constexpr size_t kParts = 8 / kLongLanes;
    U64 counts[kParts];
    for (size_t part = 0; part < kParts; ++part) {
        U64 w[K];
        U64 right[K]; // winding in column 7 of each pixel, spread over all columns
        for (int j = 0; j < K; ++j) {
            auto* p = reinterpret_cast<uint64_t*>(cells + static_cast<size_t>(j) * planeBytes) + part * kLongLanes;
            w[j] = Load<U64>(p);
            Store(p, U64{});
            right[j] = SpreadColumn7(w[j]);
        }
        AddShifted<K, 1>(right);
        if constexpr (kLongLanes > 2) {
            AddShifted<K, 2>(right);
        }
        if constexpr (kLongLanes > 4) {
            AddShifted<K, 4>(right);
        }
        AddPlanes<K>(right, carry);
        U64 left[K];
        for (int j = 0; j < K; ++j) {
            left[j] = MovedUp<1>(right[j], carry[j]);
            carry[j] = Last(right[j]);
        }
        AddPlanes<K>(w, left);
        U64 inside = w[0];
        for (int j = 1; j < K; ++j) {
            inside |= w[j];
        }
        counts[part] = BitCount(inside);
    }
    StoreShape(out, counts);
}

template <int K>
size_t SweepRow(const BandFrame& frame, uint8_t* cells, uint64_t* bits, uint8_t* shape, CoverageRun* runs) {
    U64 carry[K];
    for (int j = 0; j < K; ++j) {
        carry[j] = U64{};
    }
    CoverageRun* run = runs - 1; // the current one
    bool joins = false;          // the current run has shape bytes and ends at `done`
    int32_t done = 0;            // pixels
    // Pixels [done, to) have the winding in `carry`.
    const auto gap = [&](int32_t to) {
        U64 inside = carry[0];
        for (int j = 1; j < K; ++j) {
            inside |= carry[j];
        }
        constexpr uint64_t kOnes = 0x0101010101010101U;
        const uint64_t count = ((inside[0] & kOnes) * kOnes >> 56) * 8;
        if (count == 0) {
            joins = false;
        } else if (joins && to - done <= 8) {
            std::memset(shape + done, static_cast<int>(count * 4 - 1), static_cast<size_t>(to - done));
            run->x1 = frame.left + to;
        } else {
            *++run = {frame.left + done, frame.left + to, nullptr, static_cast<uint8_t>(count * 4 - 1)};
            joins = false;
        }
        done = to;
    };
    for (size_t word = 0; word < frame.bitWords; ++word) {
        uint64_t set = bits[word];
        if (set == 0) {
            continue;
        }
        bits[word] = 0;
        do {
            const auto block = static_cast<int32_t>(word * 64) + __builtin_ctzll(set);
            set &= set - 1;
            const int32_t from = block * 8;
            if (from > done) {
                gap(from < frame.width ? from : frame.width);
            }
            SweepBlock<K>(cells + static_cast<size_t>(from) * 8, frame.planeBytes, carry, shape + from);
            if (!joins) {
                *++run = {frame.left + from, 0, shape + from, 0};
                joins = true;
            }
            done = from + 8;
            run->x1 = frame.left + done;
        } while (set != 0);
    }
    if (done < frame.width) {
        gap(frame.width);
    } else if (run >= runs) {
        // The last block may cross the right side; the guard word's block may lie wholly beyond it.
        run->x1 = frame.left + frame.width;
        run -= run->x0 >= run->x1 ? 1 : 0;
    }
    return static_cast<size_t>(run + 1 - runs);
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
