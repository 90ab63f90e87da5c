// SPDX-License-Identifier: MIT
// The min/max box of all points of a path, control points included, updated as the path is built.
#pragma once

#include "../Matrix.h"

namespace Graphics {

class BoundCalculator {
public:
    void Add(const Point& p) noexcept {
        m_box.left = p.x < m_box.left ? p.x : m_box.left;
        m_box.right = p.x > m_box.right ? p.x : m_box.right;
        m_box.top = p.y < m_box.top ? p.y : m_box.top;
        m_box.bottom = p.y > m_box.bottom ? p.y : m_box.bottom;
        m_check += (p.x - p.x) + (p.y - p.y);
    }

    /// (0, 0, 0, 0) before the first point. NaN coordinates do not enter the box.
    [[nodiscard]] Rect Box() const noexcept;
    /// The box of the four mapped corners; the box itself under the identity.
    [[nodiscard]] Rect Box(const Matrix& m) const noexcept;
    /// False once a coordinate was NaN or infinite.
    [[nodiscard]] bool AllFinite() const noexcept { return m_check == 0.0F; }

private:
    static constexpr float kInfinity = std::numeric_limits<float>::infinity();

    Rect m_box{kInfinity, kInfinity, -kInfinity, -kInfinity};
    float m_check = 0; // 0 while all coordinates are finite: x - x is 0 for a finite x, else NaN, and NaN stays
};

} // namespace Graphics
