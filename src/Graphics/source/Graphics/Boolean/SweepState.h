// SPDX-License-Identifier: MIT
// The state and the findings of a sweep, shared by the classes that carry it out.
#pragma once

#include "GridPoint.h"

namespace Graphics {

/// Operation counts, for tests and benchmarks.
struct SweepCounts {
    uint32_t sweeps = 0;      // of all kinds
    uint64_t points = 0;      // stops of the sweeps
    uint64_t comparisons = 0; // of a point with an edge
    uint64_t cuts = 0;
    uint64_t pairs = 0; // comparisons of two edges
};

struct SweepState {
    GridPoint point{};       // current stop
    uint32_t sweeps = 0;     // number begun
    size_t exceptions = 0;   // cuts away from the lines' crossing, because bends were in the way
    bool hot = false;        // something was bent in this or an earlier sweep: edges near a point are cut there
    bool unfinished = false; // a bend in this sweep may have passed over a point: another sweep is needed
    bool ordered = true;     // no bent edges were found in a wrong order in this sweep

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
