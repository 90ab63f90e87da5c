// SPDX-License-Identifier: MIT
#include "GridPoint.h"

#include <boost/multiprecision/cpp_int.hpp>
#include <cmath>

namespace Graphics {
namespace {

using Wide = boost::multiprecision::int128_t;

// part and whole have at most 53 bits, so they are exact in doubles. Quotient and product are each rounded once, which
// changes a value below 2^26 by less than 2^-25. So fractions that differ more than this from a limit are certain.
constexpr double kUncertain = 1.0 / (1 << 20);

/// The largest integer not above n / d, d > 0.
[[nodiscard]] int32_t FloorQuotient(const Wide& n, const Wide& d) {
    Wide q = n / d;
    if (n < 0 && q * d != n) {
        q -= 1;
    }
    return static_cast<int32_t>(q);
}

} // namespace

std::optional<LineCrossing> LineCrossing::Of(const GridPoint& a0, const GridPoint& a1, const GridPoint& b0,
                                             const GridPoint& b1) noexcept {
    const int64_t bx = b1.x - b0.x, by = b1.y - b0.y;
    int64_t whole = (a1.x - a0.x) * by - (a1.y - a0.y) * bx;
    int64_t part = (b0.x - a0.x) * by - (b0.y - a0.y) * bx;
    if (whole < 0) {
        whole = -whole;
        part = -part;
    }
    if (whole == 0 || part < 0 || part > whole) {
        return std::nullopt;
    }
    return LineCrossing(a0, a1.x - a0.x, a1.y - a0.y, part, whole);
}

// Boost throws for a divisor of 0 alone. NOLINTBEGIN(bugprone-exception-escape)
int32_t LineCrossing::ExactlyNearest(int32_t delta) const noexcept {
    return FloorQuotient(Wide(2) * delta * m_part + m_whole, Wide(2) * m_whole);
}

int32_t LineCrossing::Ceiling(int32_t delta) const noexcept {
    const double v = delta * (static_cast<double>(m_part) / static_cast<double>(m_whole));
    const double ceiling = std::ceil(v);
    if (ceiling - v > kUncertain && v + 1 - ceiling > kUncertain) {
        return static_cast<int32_t>(ceiling);
    }
    return -FloorQuotient(Wide(-delta) * m_part, Wide(m_whole));
}
// NOLINTEND(bugprone-exception-escape)

} // namespace Graphics
