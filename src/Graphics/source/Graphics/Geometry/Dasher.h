// SPDX-License-Identifier: MIT
// Cuts figures into the dashes of a pattern, each an open figure. The pattern starts at its phase in every figure.
#pragma once

#include <cmath>

#include "CurveFlattener.h"
#include "DashSequence.h"
#include "GeometrySink.h"
#include "PenOutline.h"

namespace Graphics {

template <class Sink> class Dasher final : public GeometrySink {
public:
    Dasher(Sink& sink, const DashSequence& sequence, float tolerance) noexcept
        : m_sink(sink), m_begin(sequence), m_sequence(sequence), m_tolerance(tolerance) {}

    /// Dashes outside are left out, whole periods at a time. In the dasher's space, allowing for the pen's reach.
    void SetVisible(const Rect& r) noexcept {
        m_visible = r;
        m_cull = true;
    }
    /// Flattens curves for a pen of this half width (StrokeCurveTolerance).
    void RefineCurves(float half) noexcept { m_refineHalf = half; }

    void SetFillRule(uint32_t rule) override { m_sink.SetFillRule(rule); }

    void BeginFigure(const Point& start) override {
        m_sequence = m_begin;
        m_start = m_current = start;
        if (!m_sequence.InGap()) {
            m_sink.BeginFigure(start);
        }
    }

    void LineTo(const Point& p) override {
        const double dx = static_cast<double>(p.x) - m_current.x;
        const double dy = static_cast<double>(p.y) - m_current.y;
        const double length = std::sqrt(dx * dx + dy * dy);
        if (!std::isfinite(length)) {
            return;
        }
        m_sequence.Consume(length > m_sequence.Remaining() ? Cut(p, dx, dy, length) : length);
        m_current = p;
        if (!m_sequence.InGap()) {
            m_sink.LineTo(p);
        }
    }

    void CubicTo(const Point& c1, const Point& c2, const Point& end) override {
        const WideCurve curve(m_current, c1, c2, end);
        const float tolerance = ResolvableTolerance(
            curve, m_refineHalf > 0 ? StrokeCurveTolerance(curve, m_tolerance, m_refineHalf) : m_tolerance);
        // Out of sight a coarse cut does: only the length counts there.
        const auto place = [this](const WideCurve& piece) {
            if (!m_cull || !Outside(piece)) {
                return CurvePlace::Mixed;
            }
            for (int i = 1; i <= kCoarseSteps; ++i) {
                const double t = static_cast<double>(i) / kCoarseSteps;
                LineTo(i == kCoarseSteps ? piece.At(3) : Point{At(piece.x, t), At(piece.y, t)});
            }
            return CurvePlace::Handled;
        };
        FlattenBounded(curve, tolerance, kPlainSteps, place, [this](const Point& p) { LineTo(p); });
    }

    void EndFigure() override {
        if (!m_sequence.InGap()) {
            m_sink.EndFigure();
        }
    }

    void EndFigureClose() override {
        LineTo(m_start);
        EndFigure();
    }

private:
    static constexpr uint32_t kPlainSteps = 1024;
    static constexpr int kCoarseSteps = 64;
    // At most so many periods are cut on one segment, and none so small against it.
    static constexpr double kMaxPeriods = 0x1p20;
    static constexpr double kMaxRatio = 0x1p30;

    /// Cuts the segment from the current point to p at every element's end; returns the length left after the last cut.
    double Cut(const Point& p, double dx, double dy, double length) {
        double seenFrom = 0, seenTo = length;
        if (m_cull && !Clip(dx, dy, seenFrom, seenTo)) {
            seenFrom = seenTo = 0;
        }
        const double period = m_sequence.Period();
        // Such patterns are below what the coordinates resolve. (Written so that an infinite period is none of them.)
        if ((seenTo - seenFrom) / period > kMaxPeriods || length / period > kMaxRatio) {
            seenFrom = seenTo = 0;
        }
        const bool skips = period > 0 && std::isfinite(period);
        const auto at = [&](double s) {
            const double t = s / length;
            return t >= 1 ? p
                          : Point{static_cast<float>(m_current.x + t * dx), static_cast<float>(m_current.y + t * dy)};
        };
        double rest = length; // counted down, as that loses nothing near the end
        while (rest > m_sequence.Remaining()) {
            rest -= m_sequence.Remaining();
            const Point boundary = at(length - rest);
            if (!m_sequence.InGap()) {
                m_sink.LineTo(boundary);
                m_sink.EndFigure();
            }
            m_sequence.NextElement();
            // At an element's start whole periods change nothing but the place.
            const double done = length - rest;
            const double unseen = done < seenFrom ? seenFrom - done : done >= seenTo ? rest : 0.0;
            Point start = boundary;
            if (skips && unseen > period) {
                rest = std::max(rest - std::floor(unseen / period) * period, 0.0);
                start = at(length - rest);
            }
            if (!m_sequence.InGap()) {
                m_sink.BeginFigure(start);
            }
        }
        return rest;
    }

    /// Narrows [from, to], in lengths along the segment, to where it runs through the visible rectangle.
    [[nodiscard]] bool Clip(double dx, double dy, double& from, double& to) const noexcept {
        const double length = to;
        double t0 = 0, t1 = 1;
        const auto side = [&](double distance, double direction) { // keep t where distance + t * direction >= 0
            if (direction == 0) {
                return distance >= 0;
            }
            const double t = -distance / direction;
            if (direction > 0) {
                t0 = std::max(t0, t);
            } else {
                t1 = std::min(t1, t);
            }
            return t0 <= t1;
        };
        if (!side(static_cast<double>(m_current.x) - m_visible.left, dx) ||
            !side(static_cast<double>(m_visible.right) - m_current.x, -dx) ||
            !side(static_cast<double>(m_current.y) - m_visible.top, dy) ||
            !side(static_cast<double>(m_visible.bottom) - m_current.y, -dy)) {
            return false;
        }
        from = t0 * length;
        to = t1 * length;
        return true;
    }

    [[nodiscard]] bool Outside(const WideCurve& c) const noexcept {
        const auto beyond = [](const double* v, double low, double high) {
            return (v[0] < low && v[1] < low && v[2] < low && v[3] < low) ||
                   (v[0] > high && v[1] > high && v[2] > high && v[3] > high);
        };
        return beyond(c.x, m_visible.left, m_visible.right) || beyond(c.y, m_visible.top, m_visible.bottom);
    }

    [[nodiscard]] static float At(const double* v, double t) noexcept {
        const double s = 1 - t;
        return static_cast<float>(s * s * s * v[0] + 3 * s * s * t * v[1] + 3 * s * t * t * v[2] + t * t * t * v[3]);
    }

    Sink& m_sink;
    const DashSequence m_begin;
    DashSequence m_sequence;
    const float m_tolerance;
    Rect m_visible{};
    bool m_cull = false;
    float m_refineHalf = 0;
    Point m_start{};
    Point m_current{};
};

} // namespace Graphics
