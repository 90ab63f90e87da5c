// SPDX-License-Identifier: MIT
// Culling for the pen: tests the pen's box around each corner of a path against the visible pixels.
//
// The box bounds the pen's image on the device in each axis separately: a circle of radius h has the half extents h
// sqrt(m00^2 + m10^2) and h sqrt(m01^2 + m11^2), whatever else the matrix does to it.
#pragma once

#include <cmath>
#include <cstdint>

#include "../Matrix.h"

namespace Graphics {

/// A rectangle in double precision: sums of floats neither overflow nor round.
struct WideRect {
    double left = 0, top = 0, right = 0, bottom = 0;

    [[nodiscard]] WideRect Inflated(double x, double y) const noexcept {
        return {left - x, top - y, right + x, bottom + y};
    }
    [[nodiscard]] bool Holds(const WideRect& r) const noexcept {
        return r.left >= left && r.top >= top && r.right <= right && r.bottom <= bottom;
    }
    [[nodiscard]] bool Misses(const WideRect& r) const noexcept {
        return r.right < left || r.left > right || r.bottom < top || r.top > bottom;
    }
};

/// A matrix in double.
struct WideMatrix {
    double m00 = 1, m01 = 0, m10 = 0, m11 = 1, m20 = 0, m21 = 0;

    WideMatrix() noexcept = default;
    explicit WideMatrix(const Matrix& m) noexcept
        : m00(m.m00), m01(m.m01), m10(m.m10), m11(m.m11), m20(m.m20), m21(m.m21) {}

    [[nodiscard]] double X(double x, double y) const noexcept { return m00 * x + m10 * y; }
    [[nodiscard]] double Y(double x, double y) const noexcept { return m01 * x + m11 * y; }

    /// The product that applies this matrix first, then `b`.
    [[nodiscard]] WideMatrix Then(const WideMatrix& b) const noexcept {
        WideMatrix r;
        r.m00 = m00 * b.m00 + m01 * b.m10, r.m01 = m00 * b.m01 + m01 * b.m11;
        r.m10 = m10 * b.m00 + m11 * b.m10, r.m11 = m10 * b.m01 + m11 * b.m11;
        r.m20 = m20 * b.m00 + m21 * b.m10 + b.m20, r.m21 = m20 * b.m01 + m21 * b.m11 + b.m21;
        return r;
    }
};

class PenView {
public:
    PenView() noexcept = default;
    /// `pixels` already include the pen's reach; `toDevice` maps the points passed to OutsideOf.
    PenView(const WideMatrix& toDevice, const WideRect& pixels) noexcept : m_toDevice(toDevice), m_pixels(pixels) {}

    /// Bit set of the sides of the pixels beyond which the corner lies, with all that the pen draws there.
    [[nodiscard]] uint32_t OutsideOf(double x, double y) const noexcept {
        const double ax = m_toDevice.m00 * x, cx = m_toDevice.m10 * y;
        const double ay = m_toDevice.m01 * x, cy = m_toDevice.m11 * y;
        // A map in floats is off by 2^-24 of each term and sum.
        const double slackX = (std::fabs(ax) + std::fabs(cx) + std::fabs(m_toDevice.m20)) * kRounding;
        const double slackY = (std::fabs(ay) + std::fabs(cy) + std::fabs(m_toDevice.m21)) * kRounding;
        const double dx = ax + cx + m_toDevice.m20, dy = ay + cy + m_toDevice.m21;
        return (dx + slackX < m_pixels.left ? 1U : 0U) | (dx - slackX > m_pixels.right ? 2U : 0U) |
               (dy + slackY < m_pixels.top ? 4U : 0U) | (dy - slackY > m_pixels.bottom ? 8U : 0U);
    }
    [[nodiscard]] uint32_t OutsideOf(const Point& p) const noexcept { return OutsideOf(p.x, p.y); }

    static constexpr double kRounding = 0x1p-21;

private:
    WideMatrix m_toDevice;
    WideRect m_pixels;
};

} // namespace Graphics
