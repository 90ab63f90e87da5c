// SPDX-License-Identifier: MIT
// Where a sweep is and what it has come upon: shared by those who do its parts.
#pragma once

#include "GridPoint.h"

namespace Graphics {

/// What the work was, for those who measure it.
struct SweepCounts {
    uint32_t sweeps = 0;      // of every kind
    uint64_t points = 0;      // stops of the sweeps
    uint64_t comparisons = 0; // of a point with an edge
    uint64_t cuts = 0;
    uint64_t pairs = 0; // of edges compared with each other
};

struct SweepState {
    GridPoint point{};       // where it stops
    uint32_t sweeps = 0;     // begun so far
    size_t exceptions = 0;   // cuts elsewhere than where the lines cross, as bends were in the way
    bool hot = false;        // something was bent, in any sweep so far: what comes near a point goes through it
    bool unfinished = false; // in this sweep something was bent that may have passed over a point: sweep again
    bool ordered = true;     // no sign in this sweep that bent edges stood in a wrong order

    void BeginSweep() noexcept {
        sweeps += 1;
        unfinished = false;
        ordered = true;
    }
    void Disorder() noexcept {
        ordered = false;
        unfinished = true;
    }
};

} // namespace Graphics
