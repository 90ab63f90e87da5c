// SPDX-License-Identifier: MIT
// Points of the integer grid on which areas are combined, the order in which a sweep visits them, and their exact
// predicates. Coordinates stay within +-2^24: a float holds them exactly, differences have 26 bits, and the cross
// product of two differences fits in 64 bits.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <optional>

namespace Graphics {

struct GridPoint {
    int32_t x, y;
};

[[nodiscard]] constexpr bool operator==(const GridPoint& a, const GridPoint& b) noexcept {
    return a.x == b.x && a.y == b.y;
}

inline constexpr int32_t kGridLimit = 1 << 24;

// Room for twice the limit and one more bit, since corners of cells are off by half a step.
inline constexpr int kKeyBits = 27;
inline constexpr int32_t kKeyBias = 1 << (kKeyBits - 1);

/// Rows from small to large y, inside a row from small to large x: the sweep's order, as one number of 54 bits.
[[nodiscard]] constexpr uint64_t SweepKey(const GridPoint& p) noexcept {
    return static_cast<uint64_t>(p.y + kKeyBias) << kKeyBits | static_cast<uint64_t>(p.x + kKeyBias);
}

[[nodiscard]] constexpr GridPoint PointOf(uint64_t key) noexcept {
    return {static_cast<int32_t>(key & ((1U << kKeyBits) - 1)) - kKeyBias,
            static_cast<int32_t>(key >> kKeyBits) - kKeyBias};
}

[[nodiscard]] constexpr bool Before(const GridPoint& a, const GridPoint& b) noexcept {
    return a.y != b.y ? a.y < b.y : a.x < b.x;
}

/// (a - o) x (b - o).
[[nodiscard]] constexpr int64_t Cross(const GridPoint& o, const GridPoint& a, const GridPoint& b) noexcept {
    return static_cast<int64_t>(a.x - o.x) * (b.y - o.y) - static_cast<int64_t>(a.y - o.y) * (b.x - o.x);
}

/// The side of p on the line lo -> hi, lo before hi: positive right (larger x), negative left, 0 on the line.
[[nodiscard]] constexpr int64_t Side(const GridPoint& lo, const GridPoint& hi, const GridPoint& p) noexcept {
    return Cross(lo, p, hi);
}

/// The sum of the distances along x and y.
[[nodiscard]] inline int64_t Reach(const GridPoint& p, const GridPoint& q) noexcept {
    return static_cast<int64_t>(std::abs(q.x - p.x)) + std::abs(q.y - p.y);
}

/// The crossing of two lines, each given by two points: along x and y the integer nearest to the exact value (halves
/// up), and the smallest integer not below it.
class LineCrossing {
public:
    /// Empty for parallel lines and for crossings beyond the first line's points.
    [[nodiscard]] static std::optional<LineCrossing> Of(const GridPoint& a0, const GridPoint& a1, const GridPoint& b0,
                                                        const GridPoint& b1) noexcept;
    /// The point at the fraction `part` / `whole`, from 0 to 1, between two points; both numbers have up to 53 bits.
    [[nodiscard]] static LineCrossing Along(const GridPoint& from, const GridPoint& to, int64_t part,
                                            int64_t whole) noexcept {
        const int64_t sign = whole < 0 ? -1 : 1;
        return LineCrossing(from, to.x - from.x, to.y - from.y, sign * part, sign * whole);
    }

    // Boost throws for a divisor of 0 alone. NOLINTBEGIN(bugprone-exception-escape)
    [[nodiscard]] GridPoint Nearest() const noexcept {
        const double share = static_cast<double>(m_part) / static_cast<double>(m_whole);
        return {m_from.x + Nearest(m_dx, share), m_from.y + Nearest(m_dy, share)};
    }
    [[nodiscard]] int32_t CeilingX() const noexcept { return m_from.x + Ceiling(m_dx); }
    [[nodiscard]] int32_t CeilingY() const noexcept { return m_from.y + Ceiling(m_dy); }

private:
    LineCrossing(const GridPoint& from, int32_t dx, int32_t dy, int64_t part, int64_t whole) noexcept
        : m_from(from), m_dx(dx), m_dy(dy), m_part(part), m_whole(whole) {}

    [[nodiscard]] int32_t Nearest(int32_t delta, double share) const noexcept {
        // Quotient and product are each rounded once, which changes a value below 2^26 by less than 2^-25, so fractions
        // that differ more than this from a half are certain.
        constexpr double kUncertain = 1.0 / (1 << 20);
        const double v = delta * share + 0.5;
        int32_t floor = static_cast<int32_t>(v);
        floor -= v < floor ? 1 : 0;
        return v - floor > kUncertain && floor + 1 - v > kUncertain ? floor : ExactlyNearest(delta);
    }
    [[nodiscard]] int32_t ExactlyNearest(int32_t delta) const noexcept;
    [[nodiscard]] int32_t Ceiling(int32_t delta) const noexcept;
    // NOLINTEND(bugprone-exception-escape)

    // The crossing is from + (dx, dy) * part / whole, 0 <= part <= whole.
    GridPoint m_from;
    int32_t m_dx, m_dy;
    int64_t m_part, m_whole;
};

} // namespace Graphics
