// SPDX-License-Identifier: MIT
// Limits a path to a range of one coordinate, because the fixed-point numbers of scan conversion hold no more.
//
// Parts outside the range collapse onto its bounds: consecutive crossings of one bound are joined along it, which
// preserves the winding inside the range. Figures are closed, as filling closes them.
#pragma once

#include <utility>

#include "CurveFlattener.h"
#include "GeometrySink.h"

namespace Graphics {

enum class ClipAxis { X, Y };

template <FigureSink Sink> class StripClipper {
public:
    /// Bounds in reverse order are swapped.
    StripClipper(Sink& sink, ClipAxis axis, float lower, float upper, float tolerance) noexcept
        : m_sink(sink), m_axis(axis), m_lower(lower), m_upper(upper), m_tolerance(tolerance) {
        if (m_lower > m_upper) {
            std::swap(m_lower, m_upper);
        }
    }

    void BeginFigure(const Point& start) {
        m_started = false;
        m_start = m_previous = start;
        m_zone = ZoneOf(start);
        m_isLost = Coordinate(start) != Coordinate(start);
    }

    void LineTo(const Point& p) {
        if (p.x == m_previous.x && p.y == m_previous.y) {
            return;
        }
        const float v = Coordinate(p);
        if (v != v) {
            return; // NaN from an earlier overflow: no position
        }
        if (m_isLost) { // the figure begins where it first has a position
            BeginFigure(p);
            return;
        }
        const Zone zone = ZoneOf(p);
        if (zone == Zone::Inside && m_zone == Zone::Inside) {
            if (!m_started) {
                Send(m_previous);
            }
            m_sink.LineTo(p);
        } else if (zone != m_zone) {
            if (m_zone == Zone::Inside) {
                if (!m_started) {
                    Send(m_previous);
                }
            } else {
                Send(Crossing(m_previous, p, BoundOf(m_zone)));
            }
            Send(zone == Zone::Inside ? p : Crossing(m_previous, p, BoundOf(zone)));
        }
        m_previous = p;
        m_zone = zone;
    }

    /// Curves inside the range stay curves; the consumer flattens them with the same tolerance.
    void CubicTo(const Point& c1, const Point& c2, const Point& end) {
        const WideCurve curve(m_previous, c1, c2, end);
        if (Place(curve) == CurvePlace::Mixed) {
            FlattenBounded(
                curve, m_tolerance, kPlainSteps, [this](const WideCurve& piece) { return Place(piece); },
                [this](const Point& p) { LineTo(p); });
        }
    }

    void EndFigure() {
        LineTo(m_start);
        if (m_started) {
            m_sink.EndFigure();
        }
        m_started = false;
    }

    void EndFigureClose() {
        LineTo(m_start);
        if (m_started) {
            m_sink.EndFigureClose();
        }
        m_started = false;
    }

private:
    enum class Zone : uint32_t { Inside, Below, Above };
    static constexpr uint32_t kPlainSteps = 128;

    [[nodiscard]] float Coordinate(const Point& p) const noexcept { return m_axis == ClipAxis::X ? p.x : p.y; }
    [[nodiscard]] Zone ZoneOf(const Point& p) const noexcept { return ZoneOf(Coordinate(p)); }
    template <class Number> [[nodiscard]] Zone ZoneOf(Number v) const noexcept {
        return v > m_upper ? Zone::Above : v < m_lower ? Zone::Below : Zone::Inside;
    }
    [[nodiscard]] float BoundOf(Zone zone) const noexcept { return zone == Zone::Below ? m_lower : m_upper; }

    /// Handles a curve whose control points all lie in one zone.
    CurvePlace Place(const WideCurve& curve) {
        const double* v = m_axis == ClipAxis::X ? curve.x : curve.y;
        const Zone zone = ZoneOf(v[0]);
        for (int i = 0; i < 4; ++i) {
            if (ZoneOf(v[i]) != zone || v[i] != v[i]) {
                return CurvePlace::Mixed;
            }
        }
        if (zone != Zone::Inside) {
            LineTo(curve.At(3));
            return CurvePlace::Handled;
        }
        if (!m_started) {
            Send(m_previous);
        }
        m_sink.CubicTo(curve.At(1), curve.At(2), curve.At(3));
        m_previous = curve.At(3);
        m_zone = ZoneOf(m_previous);
        return CurvePlace::Handled;
    }

    /// Where a - b crosses `bound`. Computed in double, with infinities limited to the largest float, so nothing
    /// overflows.
    [[nodiscard]] Point Crossing(const Point& a, const Point& b, float bound) const noexcept {
        const auto cut = [](float v) {
            constexpr double kMost = std::numeric_limits<float>::max();
            const double wide = v;
            return wide > kMost ? kMost : wide < -kMost ? -kMost : wide;
        };
        if (m_axis == ClipAxis::X) {
            const double t = (bound - cut(a.x)) / (cut(b.x) - cut(a.x));
            return {bound, static_cast<float>(cut(a.y) + t * (cut(b.y) - cut(a.y)))};
        }
        const double t = (bound - cut(a.y)) / (cut(b.y) - cut(a.y));
        return {static_cast<float>(cut(a.x) + t * (cut(b.x) - cut(a.x))), bound};
    }

    void Send(const Point& p) {
        if (m_started) {
            m_sink.LineTo(p);
        } else {
            m_sink.BeginFigure(p);
            m_started = true;
        }
    }

    Sink& m_sink;
    const ClipAxis m_axis;
    float m_lower;
    float m_upper;
    const float m_tolerance;
    bool m_isLost = false;  ///< no point so far has a position
    bool m_started = false; // whether BeginFigure was sent
    Point m_start{};
    Point m_previous{};
    Zone m_zone = Zone::Inside;
};

} // namespace Graphics
