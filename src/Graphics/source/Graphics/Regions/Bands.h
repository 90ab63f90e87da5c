// SPDX-License-Identifier: MIT
// The run structure of a region: horizontal bands from top to bottom, each with its intervals from left to right, and
// the algorithm that combines two of them.
//
// Canonical form, so that equal areas have equal bands: intervals neither touch nor overlap; no band is empty; bands
// are disjoint; bands that touch differ in their intervals. Right and bottom are exclusive.
#pragma once

#include "../Types.h"
#include "Sequence.h"

namespace Graphics {

enum class RegionOp : uint32_t { Intersection, Union, ExclusiveOr, Difference };

struct Interval {
    int32_t x0, x1;
    [[nodiscard]] int32_t Left() const noexcept { return x0; }
    [[nodiscard]] int32_t Right() const noexcept { return x1; }
    friend bool operator==(const Interval&, const Interval&) = default;
};
using Intervals = Sequence<Interval>;

struct Band {
    int32_t top, bottom;
    Intervals intervals;
    [[nodiscard]] int32_t Left() const noexcept { return intervals.Left(); }
    [[nodiscard]] int32_t Right() const noexcept { return intervals.Right(); }
};
using Bands = Sequence<Band>;

[[nodiscard]] Bands MakeBands(const IntRect& rect);
/// The bands moved by (dx, dy); every coordinate stays in range.
[[nodiscard]] Bands MoveBands(const Bands& bands, int64_t dx, int64_t dy);
/// Both must have at least one band. Bands of `a` above and below `b` are shared, not copied.
[[nodiscard]] Bands CombineBands(const Bands& a, const Bands& b, RegionOp op);
/// Whether b lies wholly in a; whether they share a pixel. Neither allocates.
[[nodiscard]] bool BandsContain(const Bands& a, const Bands& b) noexcept;
[[nodiscard]] bool BandsIntersect(const Bands& a, const Bands& b) noexcept;

} // namespace Graphics
