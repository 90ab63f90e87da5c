// SPDX-License-Identifier: MIT
// The inner loops of the band scanner, one table for each instruction set; all give the same counts.
//
// An edge that crosses sub-scanline s at column c of 1/8 pixel changes the winding of all columns from c on. Windings
// are kept in one of two forms:
//
// - Bit planes (BandPlanes.h): a pixel is a 64-bit word, byte = sub-scanline, bit = column. The edge adds +1 or -1 to
//   the bits c ... 7; when the row is swept, column 7 carries the change to all later pixels. Plane j holds bit j of all
//   pixels of a row. A single plane gives the even-odd rule.
//
//     row: | plane 0: word of pixel 0, pixel 1, ... | plane 1: ... |
//
// - Bytes (BandBytes.h): a pixel has a byte for each sample, and the edge changes one of them.
//
// Windings are taken modulo 2^planes or 256, which distinguishes zero from non-zero while |winding| is less. `bits` marks
// what edges changed. Additions commute, so edges may come in any order and are never sorted.
#pragma once

#include <iterator>

#include "../Simd/KernelTable.h"
#include "RasterizationSink.h"

namespace Graphics {

struct RowKernels;
struct SolidRows;

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

/// The first row in [row, end) that equals the row before it; `end` if there is none.
[[nodiscard]] static inline int32_t NextEqual(const uint64_t* changes, int32_t row, int32_t end) noexcept {
    for (; row < end; row = (row | 63) + 1) {
        const uint64_t equal = ~changes[static_cast<size_t>(row >> 6)] >> (row & 63);
        if (equal != 0) {
            row += __builtin_ctzll(equal);
            return row < end ? row : end;
        }
    }
    return end;
}

/// The most edges of a row whose windings are resolved by sorting.
inline constexpr size_t kMostResolved = 128;

/// How the windings of a fill are kept.
struct WindingForm {
    uint32_t mostWinding; ///< the highest |winding|
    uint32_t planes;      ///< 0: bytes

    /// Of one row. `blocks` of eight pixels, at least one pixel more than the row has.
    [[nodiscard]] constexpr size_t PlaneBytes(size_t blocks) const noexcept { return blocks * 64; }
    [[nodiscard]] constexpr size_t RowBytes(size_t blocks) const noexcept {
        return blocks * 64 * (planes == 0 ? 8 : planes);
    }
    [[nodiscard]] constexpr size_t BitWords(size_t blocks) const noexcept {
        return planes == 0 ? (blocks + 7) / 8 : (blocks + 63) / 64;
    }
};

inline constexpr WindingForm kWindingForms[] = {{1, 1},  {3, 2},   {7, 3},      {15, 4},
                                                {31, 5}, {255, 0}, {0xFFF, 12}, {0xFFFF, 16}};

struct BandKernels {
    static constexpr size_t kForms = std::size(kWindingForms);
    static constexpr size_t kBytes = 5; ///< the form in bytes
    static constexpr uint32_t kMostWinding = kWindingForms[kForms - 1].mostWinding;

    /// The form for |winding| up to `bound`, which is at most kMostWinding.
    [[nodiscard]] size_t FormOf(uint32_t bound) const noexcept {
        size_t form = bound > mostInFewPlanes ? kBytes : 0;
        while (kWindingForms[form].mostWinding < bound) {
            ++form;
        }
        return form;
    }

    static_assert(kWindingForms[kBytes].planes == 0);

    /// Up to this bound planes take less time than bytes.
    uint32_t mostInFewPlanes;

    /// Adds the sub-scanlines [bandFirst, bandLast) of a list of edges, upright edges only to rows that change. Edges
    /// that continue below are put before the list `following`; returns its new head.
    uint32_t (*walk[kForms])(const BandFrame& frame, BandEdge* edges, uint32_t head, int32_t bandFirst,
                             int32_t bandLast, uint32_t following);
    /// Turns a row into runs and zeroes it. `shape` has room for all blocks, `runs` for two per block and one more.
    size_t (*sweep[kForms])(const BandFrame& frame, uint8_t* cells, uint64_t* bits, uint8_t* shape, CoverageRun* runs);
    /// sweep for the first `rows` rows of the frame, which it paints at once; prefetches up to a row below.
    void (*paint[kForms])(const BandFrame& frame, size_t rows, const SolidRows& to, const RowKernels& kernels);
    /// Adds to the single plane of the frame's first row what bounds the non-zero inside of up to kMostResolved active
    /// edges, in the row that begins at sub-scanline `first`. Keeps those that continue below, in about their order from
    /// left to right. Returns how many places edges had to be moved.
    size_t (*resolve)(const BandFrame& frame, const BandEdge* edges, uint32_t* active, size_t& count, int32_t first);
};

GX_DECLARE_KERNEL_TABLES(BandKernels, kBandKernels)

} // namespace Graphics
