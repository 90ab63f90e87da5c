// SPDX-License-Identifier: MIT
// Sweeps a row of a band: sums windings from left to right, counts samples and makes runs. Part of the band loops.
#pragma once

#include <cstring>

#include "../Simd/Vectors.h"
#include "BandKernels.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

template <class Windings>
size_t SweepRow(const BandFrame& frame, uint8_t* cells, uint64_t* bits, uint8_t* shape, CoverageRun* runs) {
    typename Windings::Sums sums(frame);
    CoverageRun* run = runs - 1; // the current one
    bool joins = false;          // the current run has shape bytes and ends at `done`
    int32_t done = 0;            // pixels
    // No winding changes in pixels [done, to).
    const auto gap = [&](int32_t to) {
        const uint32_t count = sums.Inside();
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
                gap(from < frame.width ? from : frame.width);
            }
            sums.Block(cells, static_cast<size_t>(from), pixels).StoreShapes(shape + from);
            if (!joins) {
                *++run = {frame.left + from, 0, shape + from, 0};
                joins = true;
            }
            done = from + 8;
            run->x1 = frame.left + done;
        } while (marks != 0);
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
