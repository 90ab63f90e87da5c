// SPDX-License-Identifier: MIT
// Sweeps a row of a band: sums windings from left to right, counts samples and makes runs. Part of the band loops.
#pragma once

#include <cstring>

#include "../Simd/Vectors.h"
#include "BandKernels.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// Takes the marks of a row, from left to right: gap(from, to) for pixels in which no winding changes, block(from, pixels)
/// for eight in which some does. The last block may reach beyond the frame, and the guard word may lie in one of its own.
template <class Windings, class Gap, class Block>
GX_INLINE inline void ForPieces(const BandFrame& frame, uint64_t* bits, Gap&& gap, Block&& block) {
    int32_t done = 0; // pixels
    for (size_t word = 0; word < frame.bitWords; ++word) {
        uint64_t marks = bits[word];
        if (marks == 0) {
            continue;
        }
        bits[word] = 0;
        do {
            uint32_t pixels = 0;
            const int32_t from =
                static_cast<int32_t>(word << (6 + Windings::kMarkShift)) + Windings::Sums::Next(marks, pixels);
            if (from > done) {
                gap(done, from < frame.width ? from : frame.width);
            }
            block(from, pixels);
            done = from + 8;
        } while (marks != 0);
    }
    if (done < frame.width) {
        gap(done, frame.width);
    }
}

template <class Windings>
size_t SweepRow(const BandFrame& frame, uint8_t* cells, uint64_t* bits, uint8_t* shape, CoverageRun* runs) {
    typename Windings::Sums sums(frame);
    CoverageRun* run = runs - 1; // the current one
    bool joins = false;          // the current run has shape bytes and ends where the next piece begins
    const auto gap = [&](int32_t from, int32_t to) GX_INLINE {
        const uint32_t count = sums.Inside();
        if (count == 0) {
            joins = false;
        } else if (joins && to - from <= 8) {
            std::memset(shape + from, static_cast<int>(count * 4 - 1), static_cast<size_t>(to - from));
            run->x1 = frame.left + to;
        } else {
            *++run = {frame.left + from, frame.left + to, nullptr, static_cast<uint8_t>(count * 4 - 1)};
            joins = false;
        }
    };
    const auto block = [&](int32_t from, uint32_t pixels) GX_INLINE {
        sums.Block(cells, static_cast<size_t>(from), pixels).StoreShapes(shape + from);
        if (!joins) {
            *++run = {frame.left + from, 0, shape + from, 0};
            joins = true;
        }
        run->x1 = frame.left + from + 8;
    };
    ForPieces<Windings>(frame, bits, gap, block);
    const int32_t right = frame.left + frame.width;
    if (run >= runs && run->x1 > right) {
        run->x1 = right;
        run -= run->x0 >= right ? 1 : 0;
    }
    return static_cast<size_t>(run + 1 - runs);
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
