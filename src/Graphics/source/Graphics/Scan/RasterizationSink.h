// SPDX-License-Identifier: MIT
// The receiver of coverage: rows of runs, whole-pixel rectangles and, for sinks that accept them, trapezoid bands.
#pragma once

#include <span>

#include "../Types.h"
#include "SolidRows.h"

namespace Graphics {

/// Columns [x0, x1) of one pixel row. If `shape` is null every pixel has `value`; otherwise shape[0] is the coverage of
/// x0. Values are 8-bit coverage, 255 full: a count of n of 64 samples maps to (n * 256 / 64 - 1) & 255. Runs of value
/// 0 are not sent. The receiver may change the bytes, which are invalid after the call.
struct CoverageRun {
    int32_t x0;
    int32_t x1;
    uint8_t* shape;
    uint8_t value;
};

/// A band between two edges, in pixels: the x of both edges at top and bottom, and the half-widths of their
/// anti-aliased ramps, 0.5 |dx/dy| + 0.5.
struct Trapezoid {
    float top, bottom;
    float leftTop, leftBottom, leftRamp;
    float rightTop, rightBottom, rightRamp;
};

class RasterizationSink {
public:
    virtual ~RasterizationSink() = default;
    /// Runs are sorted, disjoint and inside the rasterizer's visible rectangle.
    virtual void Row(int32_t y, std::span<CoverageRun> runs) = 0;
    /// Fully covered pixels, right and bottom exclusive; not clipped.
    virtual void Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) = 0;
    /// Whether the output inside `r` depends on coverage alone. It also depends on where rows are split into runs if a
    /// colour source steps along a run, because each run restarts the steps.
    [[nodiscard]] virtual bool TakesAnyCuts(const IntRect& r) const {
        static_cast<void>(r);
        return true;
    }
    /// Whether all output inside `r` is one colour in the Normal mode, which the scanner may paint itself instead of
    /// calling Row; `rows` is then set to the rows of r.
    [[nodiscard]] virtual bool IsOneColor(const IntRect& r, SolidRows& rows) const {
        static_cast<void>(r);
        static_cast<void>(rows);
        return false;
    }
    /// Rows [y0, y1), at least one, with the same runs; the sink does not change runs or bytes. False, with nothing
    /// done, if the sink requires single rows.
    virtual bool Rows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs) {
        static_cast<void>(y0 + y1);
        static_cast<void>(runs);
        return false;
    }
    /// Called before any output with the first (inclusive) and last (exclusive) sub-scanline, 1/8 pixel each. Returns
    /// true if the sink accepts trapezoids.
    virtual bool Begin(int32_t firstSub, int32_t lastSub) {
        static_cast<void>(firstSub);
        static_cast<void>(lastSub);
        return false;
    }
    virtual void TrapezoidBand(const Trapezoid& band) { static_cast<void>(band); }
};

} // namespace Graphics
