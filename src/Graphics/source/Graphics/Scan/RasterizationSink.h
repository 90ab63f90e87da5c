// SPDX-License-Identifier: MIT
// The receiver of coverage: rows of runs, whole-pixel rectangles and, where it wants them, trapezoid bands.
#pragma once

#include <span>

#include "../Types.h"

namespace Graphics {

/// Columns [x0, x1) of one pixel row. Where `shape` is null every pixel has `value`; else shape[0] belongs to x0.
/// Values are 8-bit shape, 255 full, mapped from the sample count n of 64 by (n * 256 / 64 - 1) & 255. Runs of value 0
/// are never sent. The bytes may be changed by the receiver and are void after the call.
struct CoverageRun {
    int32_t x0;
    int32_t x1;
    uint8_t* shape;
    uint8_t value;
};

/// A band between two edges, in pixels: x at the top and bottom of both edges, and the half-widths of their
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
    /// Fully covered whole pixels, right and bottom exclusive; not clipped.
    virtual void Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) = 0;
    /// Whether the output inside `r` depends on coverage alone and not on where rows are cut into runs, as it does for
    /// colour sources that step from the start of a run to its end.
    [[nodiscard]] virtual bool TakesAnyCuts(const IntRect& r) const {
        static_cast<void>(r);
        return true;
    }
    /// Rows [y0, y1) with the same runs, at least one; runs and bytes stay as they are. False, and nothing done, when
    /// the sink wants them row by row.
    virtual bool Rows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs) {
        static_cast<void>(y0 + y1);
        static_cast<void>(runs);
        return false;
    }
    /// Called before any output, with the first (inclusive) and last (exclusive) sub-scanline, 1/8 pixel each.
    /// True when the sink accepts trapezoids.
    virtual bool Begin(int32_t firstSub, int32_t lastSub) {
        static_cast<void>(firstSub);
        static_cast<void>(lastSub);
        return false;
    }
    virtual void TrapezoidBand(const Trapezoid& band) { static_cast<void>(band); }
};

} // namespace Graphics
