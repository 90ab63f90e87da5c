// SPDX-License-Identifier: MIT
#include "Orientation.h"

namespace Graphics {
namespace {

/// (a - p) x (b - p) multiplied out: p.x p.y cancels, and each of the six products of two floats is exact in a double
/// (2 x 24 bits, exponents in range). They are summed exactly as an expansion, a sum of doubles that do not overlap
/// (Shewchuk, Adaptive Precision Floating-Point Arithmetic, 1997, GROW-EXPANSION), whose largest component has the
/// sign.
[[nodiscard]] int ExactSign(const Point& a, const Point& b, const Point& p) noexcept {
    const double ax = a.x, ay = a.y, bx = b.x, by = b.y, px = p.x, py = p.y;
    const double products[6] = {ax * by, -(ax * py), -(px * by), -(ay * bx), ay * px, py * bx};
    double parts[6];
    int count = 0;
    for (const double product : products) {
        double sum = product;
        for (int i = 0; i < count; ++i) {
            const double part = parts[i], total = sum + part;
            const double taken = total - sum;
            parts[i] = (sum - (total - taken)) + (part - taken);
            sum = total;
        }
        parts[count++] = sum;
    }
    while (count > 0) {
        if (const double part = parts[--count]; part != 0.0) {
            return part > 0.0 ? 1 : -1;
        }
    }
    return 0;
}

} // namespace

int OrientationSign(const Point& a, const Point& b, const Point& p) noexcept {
    const double px = p.x, py = p.y;
    const double l = (a.x - px) * (b.y - py), r = (a.y - py) * (b.x - px), cross = l - r;
    // Four differences, two products and a sum, each off by at most 2^-53 of itself: (3 + small) 2^-53 of |l| + |r|.
    const double most = (std::fabs(l) + std::fabs(r)) * 4.5e-16;
    if (cross > most || cross < -most) {
        return cross > 0.0 ? 1 : -1;
    }
    return ExactSign(a, b, p);
}

} // namespace Graphics
