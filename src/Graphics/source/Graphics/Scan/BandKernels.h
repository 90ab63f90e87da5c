// SPDX-License-Identifier: MIT
// The two inner loops of the band scanner, one table for each instruction set; all give the same counts.
//
// A pixel row is kept as bits. A pixel is a 64-bit word: byte = sub-scanline, bit = column of 1/8 pixel. An edge that
// crosses sub-scanline s at column c of pixel p changes the winding of all columns from c on: it adds +1 or -1 to the
// bits c ... 7 of byte s of word p; when the row is swept, column 7 carries the change to all later pixels. Windings
// have as many bits as the figure needs; plane j holds bit j of all pixels of a row. They are taken modulo 2^planes,
// which distinguishes zero from non-zero while |winding| < 2^planes. A single plane gives the even-odd rule.
//
//   row: | plane 0: word of pixel 0, pixel 1, ... | plane 1: ... |      8 words are a block; `bits` has one bit a block
//
// Additions commute, so edges may come in any order and are never sorted.
#pragma once

#include <algorithm>
#include <bit>

#include "../Simd/KernelTable.h"
#include "RasterizationSink.h"

namespace Graphics {

/// Fraction bits of a band edge's x: sub units times 2^42. X after k steps exceeds the exact quotient by less than 1 /
/// denominator, so its integer part is exact (see BandScanner::AddSide).
inline constexpr int kBandFraction = 42;

inline constexpr uint32_t kNoEdge = 0xFFFFFFFFU;
inline constexpr uint32_t kEdgeUp = 1;
inline constexpr uint32_t kEdgeClamp = 2;     // x may leave the frame and must be clamped
inline constexpr uint32_t kEdgeInChanges = 4; // upright: added only to rows that differ from the row before

struct BandEdge {
    int64_t x;    // at sub-scanline y, relative to the frame's left
    int64_t step; // per sub-scanline
    int32_t y;    // next sub-scanline, relative to the frame's first row
    int32_t end;  // exclusive
    uint32_t next;
    uint32_t flags;
};

struct BandFrame {
    uint8_t* cells;
    uint64_t* bits;
    size_t planeBytes;
    size_t rowBytes;
    size_t bitWords;         // per row
    const uint64_t* changes; // one bit per row of the fill: it differs from the row before; null: every row does
    int32_t left;            // pixel column of word 0
    int32_t width;           // pixels; word `width` collects what lies right of them
};

// Internal linkage: also compiled with the flags of wider instruction sets, whose copies may not serve the others.

/// Sets the bits from `first` to `last`, both inclusive.
static inline void SetBits(uint64_t* words, uint32_t first, uint32_t last) noexcept {
    for (; first >> 6 != last >> 6; first = (first | 63) + 1) {
        words[first >> 6] |= ~uint64_t{0} << (first & 63);
    }
    words[first >> 6] |= (~uint64_t{0} << (first & 63)) & (~uint64_t{0} >> (63 - (last & 63)));
}

/// The first row in [row, end) that differs from the row before it (BandFrame::changes); `end` if there is none.
[[nodiscard]] static inline int32_t NextChange(const uint64_t* changes, int32_t row, int32_t end) noexcept {
    for (; row < end; row = (row | 63) + 1) {
        const uint64_t changed = changes[static_cast<size_t>(row >> 6)] >> (row & 63);
        if (changed != 0) {
            row += __builtin_ctzll(changed);
            return row < end ? row : end;
        }
    }
    return end;
}

struct BandKernels {
    static constexpr int kPlaneCases = 10; // 1 to 8, 12 and 16 planes
    static constexpr uint32_t kMostWinding = 0xFFFF;

    /// The case for |winding| up to `bound`, which is at most kMostWinding.
    [[nodiscard]] static constexpr int CaseOf(uint32_t bound) noexcept {
        const int planes = std::max(1, static_cast<int>(std::bit_width(bound)));
        return planes <= 8 ? planes - 1 : planes <= 12 ? 8 : 9;
    }
    [[nodiscard]] static constexpr size_t PlanesOf(int planeCase) noexcept {
        return planeCase < 8 ? static_cast<size_t>(planeCase) + 1 : planeCase == 8 ? 12 : 16;
    }

    /// Adds the sub-scanlines [bandFirst, bandLast) of a list of edges, upright edges only to rows that change. Edges
    /// that continue below are put before the list `following`; returns its new head.
    uint32_t (*walk[kPlaneCases])(const BandFrame& frame, BandEdge* edges, uint32_t head, int32_t bandFirst,
                                  int32_t bandLast, uint32_t following);
    /// Turns a row into runs and zeroes it. `shape` has room for all blocks, `runs` for two per block and one more.
    size_t (*sweep[kPlaneCases])(const BandFrame& frame, uint8_t* cells, uint64_t* bits, uint8_t* shape,
                                 CoverageRun* runs);
};

GX_DECLARE_KERNEL_TABLES(BandKernels, kBandKernels)

} // namespace Graphics
