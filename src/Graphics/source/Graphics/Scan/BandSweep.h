// SPDX-License-Identifier: MIT
// Sweeping a row of a band: windings summed up from left to right, counted, and given as runs. Part of the band loops.
#pragma once

#include <cstring>

#include "BandKernels.h"
#include "BandVectors.h"

namespace Graphics {
namespace {

/// a += b, numbers of K bits, bit j in element j.
template <int K> inline void AddPlanes(Vec::T* a, const Vec::T* b) {
    Vec::T carry = Vec::Zero();
    for (int j = 0; j < K; ++j) {
        const Vec::T sum = Vec::Xor3(a[j], b[j], carry);
        if (j + 1 < K) {
            carry = Vec::Majority(a[j], b[j], carry);
        }
        a[j] = sum;
    }
}

template <int K, int N> inline void AddShifted(Vec::T* a) {
    Vec::T up[K];
    for (int j = 0; j < K; ++j) {
        up[j] = Vec::Up<N>(a[j]);
    }
    AddPlanes<K>(a, up);
}

/// The shape bytes of a block of eight pixels. `carry` is the winding left of the block in every lane, then that right
/// of it. The block becomes zero.
template <int K> inline void SweepBlock(uint8_t* cells, size_t planeBytes, Vec::T* carry, uint8_t* out) {
    constexpr int kParts = 8 / Vec::kLanes;
    Vec::T counts[kParts];
    for (int part = 0; part < kParts; ++part) {
        Vec::T w[K];
        Vec::T right[K]; // winding in column 7 of each pixel, spread over all columns
        for (int j = 0; j < K; ++j) {
            auto* p = reinterpret_cast<uint64_t*>(cells + static_cast<size_t>(j) * planeBytes) + part * Vec::kLanes;
            w[j] = Vec::Load(p);
            Vec::Store(p, Vec::Zero());
            right[j] = Vec::SpreadColumn7(w[j]);
        }
        AddShifted<K, 1>(right);
        if constexpr (Vec::kLanes > 2) {
            AddShifted<K, 2>(right);
        }
        if constexpr (Vec::kLanes > 4) {
            AddShifted<K, 4>(right);
        }
        AddPlanes<K>(right, carry);
        Vec::T left[K];
        for (int j = 0; j < K; ++j) {
            left[j] = Vec::Exclusive(right[j], carry[j]);
            carry[j] = Vec::Last(right[j]);
        }
        AddPlanes<K>(w, left);
        Vec::T inside = w[0];
        for (int j = 1; j < K; ++j) {
            inside = Vec::Or(inside, w[j]);
        }
        counts[part] = Vec::Count(inside);
    }
    Vec::StoreShape(out, counts);
}

template <int K>
size_t SweepRow(const BandFrame& frame, uint8_t* cells, uint64_t* bits, uint8_t* shape, CoverageRun* runs) {
    Vec::T carry[K];
    for (int j = 0; j < K; ++j) {
        carry[j] = Vec::Zero();
    }
    CoverageRun* run = runs - 1; // the current one
    bool joins = false;          // the current run has shape and ends at `done`
    int32_t done = 0;            // pixels
    // Pixels [done, to) have the winding of `carry`.
    const auto gap = [&](int32_t to) {
        Vec::T inside = carry[0];
        for (int j = 1; j < K; ++j) {
            inside = Vec::Or(inside, carry[j]);
        }
        constexpr uint64_t kOnes = 0x0101010101010101U;
        const uint64_t count = ((Vec::Low(inside) & kOnes) * kOnes >> 56) * 8;
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
        // The last block may lie across the right side, and the guard word wholly beyond it.
        run->x1 = frame.left + frame.width;
        run -= run->x0 >= run->x1 ? 1 : 0;
    }
    return static_cast<size_t>(run + 1 - runs);
}

} // namespace
} // namespace Graphics
