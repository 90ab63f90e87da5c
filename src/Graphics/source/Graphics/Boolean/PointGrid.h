// SPDX-License-Identifier: MIT
// The map between user space and the integer grid: a power of two, so that mapping back is exact, and as fine as the
// floats near the largest coordinate allow.
#pragma once

#include "../Types.h"
#include "GridPoint.h"

namespace Graphics {

class PointGrid {
public:
    /// `most` is the largest absolute coordinate; it is finite.
    explicit PointGrid(double most) noexcept {
        // most * scale < 2^24 - 8, which leaves room for a margin; and the unit is no smaller than the smallest float.
        int exponent = 0;
        static_cast<void>(std::frexp(most, &exponent)); // most < 2^exponent
        int shift = 24 - exponent;
        if (std::ldexp(most, shift) > kGridLimit - 8) {
            shift -= 1;
        }
        shift = most > 0 && shift < 149 ? shift : 149;
        m_scale = std::ldexp(1.0, shift);
        m_unit = std::ldexp(1.0, -shift);
    }

    /// The size of a grid cell in user units.
    [[nodiscard]] double Unit() const noexcept { return m_unit; }
    /// The nearest grid point; (x, y) lies within the grid.
    [[nodiscard]] GridPoint ToGrid(double x, double y) const noexcept { return {Round(x), Round(y)}; }
    /// Exact.
    [[nodiscard]] Point ToUser(const GridPoint& p) const noexcept {
        return {static_cast<float>(p.x * m_unit), static_cast<float>(p.y * m_unit)};
    }

private:
    [[nodiscard]] int32_t Round(double v) const noexcept {
        constexpr double kMagic = 6755399441055744.0; // 1.5 * 2^52: adding it removes the fraction
        return static_cast<int32_t>(v * m_scale + kMagic - kMagic);
    }

    double m_scale, m_unit;
};

} // namespace Graphics
