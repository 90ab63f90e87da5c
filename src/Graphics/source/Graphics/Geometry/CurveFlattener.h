// SPDX-License-Identifier: MIT
// Turns a cubic into points by forward differencing with an adaptive step, in bounded work however large the curve is.
//
// With the parameter step dt, D = P(t + dt) - P(t), and A and B are the second derivatives at both ends of the step
// times dt^2. A chord deviates from its arc by about |A| / 8. The step is halved above 6 tolerances and doubled below
// 1.5. The two limits are a factor of four apart because halving the step divides A by four, so no step is halved and
// doubled alternately.
//
// Float precision bounds the work. A coordinate v is off by up to |v| 2^-24, and a second difference of the control
// points by a few times that, even on a straight curve; a smaller tolerance would choose steps from rounding noise. So
// the tolerance is at least 2^-24 of the largest coordinate, here and wherever curves are halved beforehand.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "../Types.h"

namespace Graphics {

class CurveFlattener {
public:
    static constexpr float kEpsilon = std::numeric_limits<float>::epsilon();

    /// Half the distance between neighbouring floats, relative to their value.
    static constexpr float kResolution = kEpsilon / 2;

    /// The tolerance is raised to the float epsilon and to the resolution of floats at the curve's coordinates.
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

    /// The next point before the curve's end; false when only the end point, the exact last control point, is left.
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

/// A cubic in double precision, so that repeated halving stays accurate for curves of any size.
struct WideCurve {
    double x[4];
    double y[4];

    WideCurve() noexcept = default;
    WideCurve(const Point& p0, const Point& p1, const Point& p2, const Point& p3) noexcept
        : x{p0.x, p1.x, p2.x, p3.x}, y{p0.y, p1.y, p2.y, p3.y} {}

    [[nodiscard]] Point At(int i) const noexcept { return {static_cast<float>(x[i]), static_cast<float>(y[i])}; }

    /// Whether the flattener would start with more than `steps` steps. It starts with 2^k, the least power of two with
    /// 4^k >= second difference / (6 tolerance). The tolerance is at least the float resolution at the point of the
    /// control box nearest to the origin. A straight curve also needs more steps if its far end has a much coarser
    /// float resolution than that.
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

    /// Whether the flattener's sums of up to 24 coordinates might overflow a float; it would then take every possible
    /// step.
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

/// Flattens a curve. A curve of more than `maxSteps` steps is halved, and each such piece is first offered to `place`,
/// which may handle it as a whole (pieces out of sight). The work is bounded by the pieces that stay mixed.
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
