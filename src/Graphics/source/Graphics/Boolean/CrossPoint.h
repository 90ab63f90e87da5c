// SPDX-License-Identifier: MIT
// The exact crossing of two lines between grid points, and the exact predicates that a sweep needs.
//
// Both coordinates are fractions with the denominator `whole`, the cross product of the directions. Doubles, with an
// error below 2^-24, decide nearly every predicate; the others are evaluated in 128 bits: differences of coordinates
// have up to 27 bits, the denominator 55 and the numerators 82.
#pragma once

#include "GridEdge.h"

namespace Graphics {

class CrossPoint {
public:
    CrossPoint() noexcept = default;
    /// The lines must not be parallel.
    CrossPoint(const GridEdge& e, const GridEdge& f) noexcept;

    /// Comparison in the sweep's order: negative if this point comes first.
    [[nodiscard]] int Compare(const CrossPoint& other) const noexcept {
        const double dy = m_y - other.m_y;
        return dy < -kClose || dy > kClose ? (dy < 0 ? -1 : 1) : CompareExactly(other);
    }
    [[nodiscard]] int Compare(const GridPoint& p) const noexcept {
        const double dy = m_y - p.y;
        return dy < -kClose || dy > kClose ? (dy < 0 ? -1 : 1) : CompareExactly(p);
    }
    /// Whether an edge's line passes through the point.
    [[nodiscard]] bool LiesOn(const GridEdge& e) const noexcept {
        const double dx = e.hi.x - e.lo.x, dy = e.hi.y - e.lo.y;
        const double side = (m_x - e.lo.x) * dy - (m_y - e.lo.y) * dx;
        // Each product is off by 2^-24 * 2^27 plus its own rounding, 2^1.
        return side < kCloseSide && side > -kCloseSide && LiesExactlyOn(e);
    }
    /// The nearest grid point, halves up.
    [[nodiscard]] GridPoint Nearest() const noexcept;

private:
    static constexpr double kClose = 1.0 / (1 << 22), kCloseSide = 64;

    struct Fraction {
        int64_t floor;
        uint64_t rest; // of `whole`
    };

    [[nodiscard]] Fraction Exact(int32_t from, int32_t along) const noexcept;
    [[nodiscard]] Fraction ExactX() const noexcept { return Exact(m_from.x, m_dx); }
    [[nodiscard]] Fraction ExactY() const noexcept { return Exact(m_from.y, m_dy); }
    [[nodiscard]] int CompareExactly(const CrossPoint& other) const noexcept;
    [[nodiscard]] int CompareExactly(const GridPoint& p) const noexcept;
    [[nodiscard]] bool LiesExactlyOn(const GridEdge& e) const noexcept;

    // The point is from + (dx, dy) * part / whole, 0 <= part <= whole.
    double m_x = 0, m_y = 0;
    GridPoint m_from{};
    int32_t m_dx = 0, m_dy = 0;
    int64_t m_part = 0, m_whole = 1;
};

} // namespace Graphics
