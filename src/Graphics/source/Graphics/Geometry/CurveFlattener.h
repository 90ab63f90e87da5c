// SPDX-License-Identifier: MIT
// Turns a cubic into points by forward differencing with an adaptive step, and bounds that work for huge curves.
//
// With the parameter step dt, D = P(t + dt) - P(t), and A and B are the second derivatives at both ends of the step
// times dt^2. A chord strays from its arc by about |A| / 8. The step is halved above 6 tolerances and doubled up
// to 1.5: a factor of four apart, as halving divides A by four, so that no step is halved and doubled in turns.
//
// The floats bound the work. A coordinate v is off by up to |v| 2^-24, and a second difference of the control points by
// a few times that, however straight the curve is: a tolerance below it would take its steps out of rounding noise. So
// no tolerance counts as less than 2^-24 of the largest coordinate, here and wherever curves are halved beforehand.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "../Types.h"

namespace Graphics {

class CurveFlattener {
public:
    static constexpr float kEpsilon = std::numeric_limits<float>::epsilon();

    /// Half the distance of two floats, as a share of them.
    static constexpr float kResolution = kEpsilon / 2;

    /// A tolerance under the float epsilon, or finer than the floats are where the curve is, is replaced by that.
    CurveFlattener(float tolerance, const Point& p0, const Point& p1, const Point& p2, const Point& p3) noexcept
        : m_a{6.0F * (p0.x - 2.0F * p1.x + p2.x), 6.0F * (p0.y - 2.0F * p1.y + p2.y)},
          m_b{6.0F * (p1.x - 2.0F * p2.x + p3.x), 6.0F * (p1.y - 2.0F * p2.y + p3.y)}, m_d{p3.x - p0.x, p3.y - p0.y},
          m_p(p0) {
        float limit = std::max(tolerance, kEpsilon);
        for (const Point* p : {&p0, &p1, &p2, &p3}) {
            limit = std::max({limit, std::fabs(p->x) * kResolution, std::fabs(p->y) * kResolution});
        }
        m_refine = 6.0F * limit;
        m_coarsen = 1.5F * limit;
        while (Exceeds(m_a, m_refine) || Exceeds(m_b, m_refine)) {
            Halve();
            if (m_dt <= kEpsilon) {
                break;
            }
        }
    }

    /// The next point before the curve's end; false when only the end is left, which the caller has exactly.
    [[nodiscard]] bool Next(Point& out) noexcept {
        if (m_count < 2) {
            return false;
        }
        m_count -= 1;
        m_p = {m_p.x + m_d.x, m_p.y + m_d.y};
        m_d = {m_d.x + m_b.x, m_d.y + m_b.y};
        const Point b{2.0F * m_b.x - m_a.x, 2.0F * m_b.y - m_a.y};
        m_a = m_b;
        m_b = b;
        out = m_p;

        if (m_dt > kEpsilon && Exceeds(m_b, m_refine)) {
            Halve();
        }
        while ((m_count & 1U) == 0) {
            const Point ahead{2.0F * m_b.x - m_a.x, 2.0F * m_b.y - m_a.y};
            if (!Within(m_a, m_coarsen) || !Within(ahead, m_coarsen)) {
                break;
            }
            m_dt *= 2.0F;
            m_count /= 2;
            m_d = {m_b.x + 2.0F * m_d.x, m_b.y + 2.0F * m_d.y};
            m_b = {ahead.x * 4.0F, ahead.y * 4.0F};
            m_a = {m_a.x * 4.0F, m_a.y * 4.0F};
        }
        return true;
    }

private:
    [[nodiscard]] static bool Exceeds(const Point& v, float limit) noexcept {
        return std::fabs(v.x) > limit || std::fabs(v.y) > limit;
    }
    [[nodiscard]] static bool Within(const Point& v, float limit) noexcept {
        return std::fabs(v.x) <= limit && std::fabs(v.y) <= limit;
    }
    void Halve() noexcept {
        m_b = {(m_a.x + m_b.x) * 0.125F, (m_a.y + m_b.y) * 0.125F};
        m_a = {m_a.x * 0.25F, m_a.y * 0.25F};
        m_d = {(m_d.x - m_b.x) * 0.5F, (m_d.y - m_b.y) * 0.5F};
        m_dt *= 0.5F;
        m_count *= 2;
    }

    float m_refine = 0;
    float m_coarsen = 0;
    uint32_t m_count = 1;
    float m_dt = 1.0F;
    Point m_a;
    Point m_b;
    Point m_d;
    Point m_p;
};

/// A cubic in double, so that halves of halves stay exact enough however large the curve is.
struct WideCurve {
    double x[4];
    double y[4];

    WideCurve() noexcept = default;
    WideCurve(const Point& p0, const Point& p1, const Point& p2, const Point& p3) noexcept
        : x{p0.x, p1.x, p2.x, p3.x}, y{p0.y, p1.y, p2.y, p3.y} {}

    [[nodiscard]] Point At(int i) const noexcept { return {static_cast<float>(x[i]), static_cast<float>(y[i])}; }

    /// Steps per curve, as a power of two, that the flattener starts with: 2^k where 4^k >= second difference / 6t. The
    /// tolerance is at least what floats resolve where the box of the control points comes nearest to the origin. A
    /// curve that reaches so far that its ends are floats much coarser than that needs halving too, however straight it
    /// is.
    [[nodiscard]] bool NeedsMoreSteps(uint32_t steps, float tolerance) const noexcept {
        constexpr double kMuch = 4;
        double most = 0, nearest = 0, farthest = 0;
        for (const double* v : {x, y}) {
            most = std::max({most, std::fabs(v[0] - 2 * v[1] + v[2]), std::fabs(v[1] - 2 * v[2] + v[3])});
            const auto [low, high] = std::minmax({v[0], v[1], v[2], v[3]});
            nearest = std::max({nearest, low, -high});
            farthest = std::max({farthest, -low, high});
        }
        constexpr auto kResolution = static_cast<double>(CurveFlattener::kResolution);
        const double limit = std::max<double>({tolerance, CurveFlattener::kEpsilon, nearest * kResolution});
        return most > limit * steps * steps ||
               farthest * kResolution > kMuch * std::max(limit, 4 * nearest * kResolution);
    }

    /// Whether the flattener's sums of up to 24 coordinates might leave the floats, which costs it all its steps.
    [[nodiscard]] bool Overflows() const noexcept {
        constexpr double kMost = 1e37;
        for (const double* v : {x, y}) {
            for (int i = 0; i < 4; ++i) {
                if (!(std::fabs(v[i]) < kMost)) {
                    return true;
                }
            }
        }
        return false;
    }

    void Split(WideCurve& first, WideCurve& second) const noexcept {
        SplitAxis(x, first.x, second.x);
        SplitAxis(y, first.y, second.y);
    }

private:
    static void SplitAxis(const double* v, double* a, double* b) noexcept {
        const double m01 = (v[0] + v[1]) * 0.5, m12 = (v[1] + v[2]) * 0.5, m23 = (v[2] + v[3]) * 0.5;
        const double l = (m01 + m12) * 0.5, r = (m12 + m23) * 0.5, m = (l + r) * 0.5;
        a[0] = v[0], a[1] = m01, a[2] = l, a[3] = m;
        b[0] = m, b[1] = r, b[2] = m23, b[3] = v[3];
    }
};

enum class CurvePlace { Mixed, Handled };

/// Flattens a curve; where that would take more than `maxSteps` steps, halves are looked at one by one. `place` gets
/// each such piece and may deal with it as a whole (pieces out of sight). The work is bounded by what stays mixed.
template <class Place, class Line>
void FlattenBounded(const WideCurve& curve, float tolerance, uint32_t maxSteps, const Place& place, const Line& line,
                    int depth = 40) {
    if (!curve.NeedsMoreSteps(maxSteps, tolerance)) {
        if (curve.Overflows()) {
            line(curve.At(3));
            return;
        }
        CurveFlattener flattener(tolerance, curve.At(0), curve.At(1), curve.At(2), curve.At(3));
        Point p;
        while (flattener.Next(p)) {
            line(p);
        }
        line(curve.At(3));
    } else if (place(curve) == CurvePlace::Handled) {
        return;
    } else if (depth == 0) {
        line(curve.At(3));
    } else {
        WideCurve first, second;
        curve.Split(first, second);
        FlattenBounded(first, tolerance, maxSteps, place, line, depth - 1);
        FlattenBounded(second, tolerance, maxSteps, place, line, depth - 1);
    }
}

} // namespace Graphics
