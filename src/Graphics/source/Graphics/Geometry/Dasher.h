// SPDX-License-Identifier: MIT
// Cuts figures into the dashes of a pattern, each an open figure. The pattern restarts at its phase in every figure.
//
// Where the k-th period's elements end on a segment is computed from k alone, never by adding up; so is the pattern's
// state at the segment's end. So invisible dashes can be skipped without changing a bit of the visible ones. A run is a
// sequence of dashes whose gaps the caps close; it is sent as one dash, also around nearly straight corners.
#pragma once

#include <cmath>

#include "../Exception.h"
#include "CurveFlattener.h"
#include "DashSequence.h"
#include "DashSight.h"
#include "GeometrySink.h"
#include "PenOutline.h"

namespace Graphics {

template <FigureSink Sink> class Dasher {
public:
    Dasher(Sink& sink, const DashSequence& sequence, float tolerance) noexcept
        : m_sink(sink), m_pattern(sequence), m_tolerance(tolerance) {}

    /// Omits dashes that are invisible or too small to be told apart. Without a sight every dash is sent; if there are
    /// too many, "Not enough memory" is raised and none is sent.
    void SetSight(const DashSight* sight) noexcept { m_sight = sight; }
    /// Flattens curves for a pen of this half width (StrokeCurveTolerance).
    void RefineCurves(float half) noexcept { m_refineHalf = half; }

    void BeginFigure(const Point& start) {
        EndChain();
        m_index = m_pattern.Index();
        m_remaining = m_pattern.Remaining();
        m_start = m_current = start;
        m_open = !InGap();
        if (m_open) {
            m_sink.BeginFigure(start);
        }
    }

    void LineTo(const Point& p) {
        Segment s;
        s.dx = static_cast<double>(p.x) - m_current.x;
        s.dy = static_cast<double>(p.y) - m_current.y;
        s.length = std::sqrt(s.dx * s.dx + s.dy * s.dy);
        if (!std::isfinite(s.length)) {
            return;
        }
        s.end = p;
        s.look =
            m_sight != nullptr && s.length > 0 ? m_sight->Look(m_current, s.dx, s.dy, s.length) : DashLook{0, s.length};
        if (m_hidden) {
            s.look.from = s.look.to = 0;
        } else if (m_inCurve) {
            if (s.look.periods > m_budget) {
                s.look.scale *= s.look.periods / std::max(m_budget, 1.0);
            }
            m_budget -= s.look.periods;
        }
        s.run = s.length;
        if (s.look.scale != 1) {
            s.run /= s.look.scale;
            s.look.from /= s.look.scale;
            s.look.to /= s.look.scale;
        }
        if (s.run > m_remaining) {
            Cut(s);
        } else {
            m_remaining -= s.run;
        }
        m_current = p;
        m_chainEnd -= s.length;
        m_corner = true;
        if (!InGap()) {
            m_sink.LineTo(p);
        }
    }

    void CubicTo(const Point& c1, const Point& c2, const Point& end) {
        const WideCurve curve(m_current, c1, c2, end);
        const float tolerance = ResolvableTolerance(
            curve, m_refineHalf > 0 ? StrokeCurveTolerance(curve, m_tolerance, m_refineHalf) : m_tolerance);
        // Outside the target only the length counts, so a coarse flattening is enough.
        const auto place = [this](const WideCurve& piece) {
            uint32_t outside = m_sight != nullptr ? 15U : 0U;
            for (int i = 0; i < 4 && outside != 0; ++i) {
                outside &= m_sight->OutsideOfTarget(piece.x[i], piece.y[i]);
            }
            if (outside == 0) {
                return CurvePlace::Mixed;
            }
            m_hidden = true;
            for (int i = 1; i <= kCoarseSteps; ++i) {
                const double t = static_cast<double>(i) / kCoarseSteps;
                LineTo(i == kCoarseSteps ? piece.At(3) : Point{At(piece.x, t), At(piece.y, t)});
            }
            m_hidden = false;
            return CurvePlace::Handled;
        };
        m_inCurve = m_sight != nullptr;
        m_budget = m_inCurve ? kCurveBudget * m_sight->MostPeriods() : 0.0;
        FlattenBounded(curve, tolerance, kPlainSteps, place, [this](const Point& p) { LineTo(p); });
        m_inCurve = false;
    }

    void EndFigure() {
        EndChain();
        if (m_open) {
            m_sink.EndFigure();
        }
        m_open = false;
    }

    void EndFigureClose() {
        LineTo(m_start);
        EndFigure();
    }

private:
    static constexpr uint32_t kPlainSteps = 1024;
    static constexpr int kCoarseSteps = 64;
    // A cubic has up to five parts between its extremes in x and y, none of which crosses the target twice. If its
    // steps show more periods than that, these come from rounding, and the rest is drawn with a coarser pattern.
    static constexpr double kCurveBudget = 8;
    // The outlines of more dashes in one call would not fit in memory.
    static constexpr double kMostDashes = 0x1p24;
    static constexpr double kCountable = 0x1p48;

    struct Segment {
        double dx, dy, length;
        double run; // the length in the pattern's units
        Point end;
        DashLook look; // also in the pattern's units
    };
    /// Successive dashes joined by their caps.
    struct Run {
        double from = 0;
        double to = 0;
        bool exists = false;
        bool earlier = false; // it ended on an earlier segment, and its end has been sent
    };

    [[nodiscard]] bool InGap() const noexcept { return (m_index & 1U) != 0; }

    [[nodiscard]] Point PointAt(const Segment& s, double at) const noexcept {
        const double t = at / s.run;
        return t >= 1 ? s.end
                      : Point{static_cast<float>(m_current.x + t * s.dx), static_cast<float>(m_current.y + t * s.dy)};
    }

    /// Sends the dashes of a segment that is longer than the rest of the current element.
    void Cut(const Segment& s) {
        if (m_sight == nullptr) {
            CountDashes((s.run - m_remaining) / m_pattern.Period());
        }
        if (s.look.join >= 0) {
            CutJoined(s);
            return;
        }
        if (m_open) {
            if (!InGap()) {
                m_sink.LineTo(PointAt(s, m_remaining));
            }
            m_sink.EndFigure();
            m_open = false;
        }
        ForEachDash(s, s.look.from, s.look.to, [&](double from, double to) {
            if (to < s.run) {
                SendDash(s, from, to);
            } else {
                Open(PointAt(s, from));
            }
        });
    }

    /// Calls dash(from, to) for dashes that start after the current element and before the segment's end: those of the
    /// first two periods, of the last two, and those that reach into [seenFrom, seenTo]. Leaves the state at the
    /// segment's end.
    template <class Dash> void ForEachDash(const Segment& s, double seenFrom, double seenTo, const Dash& dash) {
        const double period = m_pattern.Period();
        const double base = m_remaining; // where the elements after the current one start
        const uint32_t count = m_pattern.Count();
        const uint32_t first = m_index + 1 == count ? 0 : m_index + 1;
        const double shift = m_pattern.Start(first);
        if (s.run - base > period * kCountable) {
            return; // such periods are below the resolution of doubles
        }
        bool done = false;
        const auto send = [&](double k) {
            const double start = k == 0 ? base : base + k * period;
            double wrapped = 0;
            double from = start;
            for (uint32_t i = 0, e = first; i < count; ++i) {
                const double to = start + (m_pattern.Start(e + 1) - shift + wrapped);
                if (e % 2 == 0) {
                    dash(from, to);
                }
                if (!(to < s.run)) {
                    m_index = e;
                    m_remaining = to - s.run;
                    done = true;
                    return;
                }
                from = to;
                if (++e == count) {
                    e = 0;
                    wrapped = period;
                }
            }
        };
        double next = 0;
        const auto sendAll = [&](double k, double last) {
            for (k = std::max(next, k); k <= last && !done; ++k) {
                send(k);
                next = k + 1;
            }
        };
        sendAll(0, 1);
        if (!done) {
            const double whole = std::floor((s.run - base) / period);
            sendAll(std::floor((seenFrom - base) / period) - 1, std::floor((seenTo - base) / period) + 1);
            sendAll(whole - 2, whole + 1);
        }
    }

    void SendDash(const Segment& s, double from, double to) {
        if (!(to >= s.look.from && from <= s.look.to && (to > from || m_sight == nullptr || m_sight->Dots()))) {
            return;
        }
        const Point start = PointAt(s, from);
        if (!StartInChain(s, start, from, to)) {
            m_sink.BeginFigure(start);
        }
        m_sink.LineTo(PointAt(s, to));
        if (!m_chain) {
            m_sink.EndFigure();
        }
    }

    /// Whether the dash continues the open chain. If not, the chain has ended, and this dash may start another one.
    bool StartInChain(const Segment& s, const Point& start, double from, double to) {
        if constexpr (requires { m_sink.Gap(start); }) {
            if (!m_chain && !(s.look.chain > 0)) {
                return false;
            }
            const bool dot = from == to;
            const bool chains = s.look.chain > 0 && m_sight->Chains(dot);
            const bool follows = m_chain && chains && (!m_corner || (dot && m_chainDot)) &&
                                 from * s.look.scale - m_chainEnd <= s.look.chain;
            if (follows) {
                m_sink.Gap(start);
            } else {
                EndChain();
            }
            m_chain = chains;
            m_chainDot = dot;
            m_chainEnd = to * s.look.scale;
            m_corner = false;
            return follows;
        }
        return false;
    }

    void Open(const Point& start) {
        EndChain();
        m_sink.BeginFigure(start);
        m_open = true;
    }

    void EndChain() {
        if (m_chain) {
            m_sink.EndFigure();
        }
        m_chain = false;
    }

    /// As Cut, where caps close gaps.
    void CutJoined(const Segment& s) {
        Run run;
        run.exists = m_open;
        run.earlier = m_open && InGap();
        run.to = m_remaining;
        const bool joinsAll = JoinsAll(s.look.join);
        ForEachDash(s, joinsAll ? 0 : s.look.from, joinsAll ? 0 : s.look.to, [&](double from, double to) {
            if (!run.exists || !Continues(s, run, from, joinsAll)) {
                EndRun(s, run);
                run = {from, to, true, false};
            }
            run.to = to;
        });
        LeaveSegment(s, run);
    }

    [[nodiscard]] bool JoinsAll(double join) const noexcept {
        for (uint32_t i = 1; i < m_pattern.Count(); i += 2) {
            if (!(m_pattern.ElementLength(i) <= join)) {
                return false;
            }
        }
        return true;
    }

    /// Whether the dash that starts at `from` continues the run.
    bool Continues(const Segment& s, Run& run, double from, bool joinsAll) {
        if (!run.earlier) {
            return joinsAll || from - run.to <= s.look.join;
        }
        // The gap went around a corner. The corner is omitted where the path over it is nearly straight.
        const Point p = PointAt(s, from);
        const double x = static_cast<double>(p.x) - m_gapStart.x, y = static_cast<double>(p.y) - m_gapStart.y;
        const double shorter = std::max(m_gapLength - std::sqrt(x * x + y * y), 0.0);
        const double cosine = (m_gapX * s.dx + m_gapY * s.dy) / s.length;
        // Two legs of g / 2 that stand d off their chord are together 2 d^2 / g longer than the chord.
        if (!m_sight->Straight(cosine) || !m_sight->Near(std::sqrt(shorter * m_gapLength * 0.5))) {
            return false;
        }
        m_sink.LineTo(p);
        run.earlier = false;
        return true;
    }

    void EndRun(const Segment& s, Run& run) {
        if (!run.exists) {
            return;
        }
        if (m_open) {
            if (!run.earlier) {
                m_sink.LineTo(PointAt(s, run.to));
            }
            m_sink.EndFigure();
            m_open = false;
        } else {
            SendDash(s, run.from, run.to);
        }
    }

    /// Ends the segment inside a dash, whose end is not sent here, or inside a gap.
    void LeaveSegment(const Segment& s, Run& run) {
        const bool inGap = InGap();
        const double gap = inGap ? m_pattern.ElementLength(m_index) : 0;
        if (inGap && !(gap <= s.look.join && run.exists && !run.earlier)) {
            EndRun(s, run);
            return;
        }
        if (!m_open) {
            Open(PointAt(s, run.from));
        }
        if (inGap) {
            m_gapStart = PointAt(s, run.to);
            m_gapLength = gap * s.look.scale;
            m_gapX = s.dx / s.length;
            m_gapY = s.dy / s.length;
            m_sink.LineTo(m_gapStart);
        }
    }

    void CountDashes(double periods) {
        m_dashes += m_sight == nullptr ? periods * m_pattern.Count() : 0.0;
        if (m_dashes > kMostDashes) {
            GX_RAISE("Graphics::Dasher::Cut", "Not enough memory");
        }
    }

    [[nodiscard]] static float At(const double* v, double t) noexcept {
        const double s = 1 - t;
        return static_cast<float>(s * s * s * v[0] + 3 * s * s * t * v[1] + 3 * s * t * t * v[2] + t * t * t * v[3]);
    }

    Sink& m_sink;
    const DashSequence m_pattern;
    uint32_t m_index = 0;   // the current element
    double m_remaining = 0; // the length left of it
    const float m_tolerance;
    const DashSight* m_sight = nullptr;
    float m_refineHalf = 0;
    double m_dashes = 0; // without a sight: twice the number of dashes sent
    Point m_start{};
    Point m_current{};
    bool m_inCurve = false;
    double m_budget = 0;     // periods, for the rest of the curve
    bool m_hidden = false;   // the segment belongs to a piece of a curve outside the target
    bool m_open = false;     // the sink has an open figure: inside a dash, or inside a gap that caps may close
    bool m_chain = false;    // the sink has an open chain, which another dash may continue
    bool m_chainDot = false; // the chain's last dash has length 0
    bool m_corner = false;   // the chain ended before the last corner, beyond which only dots continue it
    double m_chainEnd = 0;   // the chain's end along the path, from the segment's start
    Point m_gapStart{};      // start of a gap that caps may close; below, the direction in which the dash before it
                             // ended
    double m_gapLength = 0;
    double m_gapX = 0, m_gapY = 0;
};

} // namespace Graphics
