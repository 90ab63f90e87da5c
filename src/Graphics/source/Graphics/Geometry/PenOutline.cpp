// SPDX-License-Identifier: MIT
#include "PenOutline.h"

#include <cmath>

#include "../Trigonometry.h"

namespace Graphics {
namespace {

constexpr double kPi = 3.14159265358979323846;
// Keeps one arc of an absurdly wide line affordable; enough for a quarter pixel up to radii of a million pixels.
constexpr double kMostArcSteps = 4096; // per full turn
constexpr uint32_t kPlainSteps = 128;

} // namespace

float StrokeCurveTolerance(const WideCurve& curve, float tolerance, float half) noexcept {
    double extent = 0;
    for (int i = 1; i < 4; ++i) {
        extent = std::max({extent, std::fabs(curve.x[i] - curve.x[0]), std::fabs(curve.y[i] - curve.y[0])});
    }
    const double share = extent > 0 ? extent / (extent + 2.0 * half) : 1.0;
    return static_cast<float>(tolerance * std::max(share, 1.0 / 64));
}

float ResolvableTolerance(const WideCurve& curve, float tolerance) noexcept {
    double most = 0;
    for (int i = 0; i < 4; ++i) {
        most = std::max({most, std::fabs(curve.x[i]), std::fabs(curve.y[i])});
    }
    return std::max(tolerance, static_cast<float>(most * 0x1p-24));
}

PenOutline::PenOutline(PenStorage& storage, const StrokeStyle& style, float half, float tolerance) noexcept
    : m_left(storage.left), m_right(storage.right), m_join(style.join), m_cap(style.cap), m_half(half),
      m_tolerance(tolerance < CurveFlattener::kEpsilon ? CurveFlattener::kEpsilon : tolerance) {
    const double limit = style.miterLimit;
    m_miterLimit2 = limit > 0 ? limit * limit : 0.0;
    // A chord over 4 theta strays from the circle by half the tolerance: h (1 - cos 2 theta) with
    // cos theta = h / (t / 8 + h).
    const double cosTheta = m_half / (static_cast<double>(m_tolerance) * 0.125 + m_half);
    const double theta = Angle(std::sqrt((1 - cosTheta) * (1 + cosTheta)), cosTheta);
    m_arcStep = theta * 4 > 2 * kPi / kMostArcSteps ? theta * 4 : 2 * kPi / kMostArcSteps;
    m_cosArcStep = m_arcStep < kPi ? SineAndCosine(m_arcStep).cosine : -1.0;
}

uint32_t PenOutline::OutsideOf(const Point& p) const noexcept {
    if (!m_cull) {
        return 0;
    }
    return (p.x < m_visible.left ? 1U : 0U) | (p.x > m_visible.right ? 2U : 0U) | (p.y < m_visible.top ? 4U : 0U) |
           (p.y > m_visible.bottom ? 8U : 0U);
}

void PenOutline::Begin(const Point& start) noexcept {
    m_left.clear();
    m_right.clear();
    m_start = m_fixed = start;
    m_fixedOutside = OutsideOf(start);
    m_hasPending = false;
    m_segments = 0;
    m_skip = 0;
}

void PenOutline::LineTo(const Point& p) {
    const Point& current = m_hasPending ? m_pending : m_fixed;
    if (p.x == current.x && p.y == current.y) {
        return;
    }
    const uint32_t outside = OutsideOf(p);
    if (m_hasPending && (m_fixedOutside & m_pendingOutside & outside) == 0) {
        Flush();
    }
    m_pending = p;
    m_pendingOutside = outside;
    m_hasPending = true;
}

void PenOutline::Flush() {
    if (m_hasPending) {
        AddSegment(m_fixed, m_pending);
        m_fixed = m_pending;
        m_fixedOutside = m_pendingOutside;
        m_hasPending = false;
    }
}

void PenOutline::CubicTo(const Point& c1, const Point& c2, const Point& end) {
    const WideCurve curve(m_hasPending ? m_pending : m_fixed, c1, c2, end);
    float tolerance = m_tolerance;
    if (m_refineCurves) {
        tolerance = StrokeCurveTolerance(curve, tolerance, static_cast<float>(m_half));
    }
    tolerance = ResolvableTolerance(curve, tolerance);
    const auto place = [this](const WideCurve& piece) {
        if ((OutsideOf(piece.At(0)) & OutsideOf(piece.At(1)) & OutsideOf(piece.At(2)) & OutsideOf(piece.At(3))) == 0) {
            return CurvePlace::Mixed;
        }
        LineTo(piece.At(3));
        return CurvePlace::Handled;
    };
    FlattenBounded(curve, tolerance, kPlainSteps, place, [this](const Point& p) { LineTo(p); });
}

void PenOutline::AddSegment(const Point& a, const Point& b) {
    const double dx = static_cast<double>(b.x) - a.x;
    const double dy = static_cast<double>(b.y) - a.y;
    const double length = std::sqrt(dx * dx + dy * dy);
    if (!(length > 0) || !std::isfinite(length)) {
        return;
    }
    Segment s;
    s.u = {dx / length, dy / length};
    s.n = {s.u.y * m_half, -s.u.x * m_half};
    s.length = length;
    if (m_segments == 0) {
        m_first = s;
        Push(m_left, a, s.n.x, s.n.y);
        Push(m_right, a, -s.n.x, -s.n.y);
    } else {
        Join(a, m_last, s);
    }
    m_last = s;
    ++m_segments;
}

void PenOutline::Join(const Point& c, const Segment& s1, const Segment& s2) {
    const double cross = s1.u.x * s2.u.y - s1.u.y * s2.u.x;
    const double dot = s1.u.x * s2.u.x + s1.u.y * s2.u.y;
    if (cross == 0 && dot > 0) {
        Push(m_left, c, s1.n.x, s1.n.y);
        Push(m_right, c, -s1.n.x, -s1.n.y);
        return;
    }
    // A line that turns back on itself has its outer side on the left, say.
    const double sign = cross >= 0 ? 1.0 : -1.0;
    HeapArray<Point>& inner = cross >= 0 ? m_right : m_left;
    // Each segment loses h tan(phi / 2), and tan(phi / 2) = sin phi / (1 + cos phi).
    if (dot > -0.9999 && m_half * std::fabs(cross) <= 0.5 * std::min(s1.length, s2.length) * (1 + dot)) {
        const double k = -sign / (1 + dot);
        Push(inner, c, (s1.n.x + s2.n.x) * k, (s1.n.y + s2.n.y) * k);
    } else {
        Push(inner, c, -sign * s1.n.x, -sign * s1.n.y);
        inner.push_back(c);
        Push(inner, c, -sign * s2.n.x, -sign * s2.n.y);
    }
    JoinOuter(cross >= 0 ? m_left : m_right, sign, c, s1, s2, cross, dot);
}

void PenOutline::JoinOuter(HeapArray<Point>& side, double sign, const Point& c, const Segment& s1, const Segment& s2,
                           double cross, double dot) {
    // The miter ratio is 1 / cos(phi / 2), its square 2 / (1 + cos phi). The tip lies on both offset lines, so that
    // their ends need not be sent.
    if (m_join == GXLineJoinMiter && cross != 0 && m_miterLimit2 * (1 + dot) > 2) {
        const double k = sign / (1 + dot);
        Push(side, c, (s1.n.x + s2.n.x) * k, (s1.n.y + s2.n.y) * k);
        return;
    }
    Push(side, c, sign * s1.n.x, sign * s1.n.y);
    if (m_join == GXLineJoinRound && !(dot > m_cosArcStep)) {
        const double angle = Angle(std::fabs(cross), dot);
        Arc(side, c, {sign * s1.n.x, sign * s1.n.y}, sign * angle, ArcPoints(angle));
    }
    Push(side, c, sign * s2.n.x, sign * s2.n.y);
}

double PenOutline::ArcPoints(double angle) const noexcept { return std::trunc(angle / m_arcStep); }

void PenOutline::Arc(HeapArray<Point>& side, const Point& c, Vector v, double angle, double count) {
    if (!(count > 0)) {
        return;
    }
    const double step = angle / (count + 1);
    const auto [sine, cosine] = SineAndCosine(step);
    for (double i = 0; i < count; ++i) {
        v = {v.x * cosine - v.y * sine, v.x * sine + v.y * cosine};
        Push(side, c, v.x, v.y);
    }
}

void PenOutline::EndOpen() {
    Flush();
    if (m_segments == 0) {
        Dot();
        return;
    }
    // A square cap moves the end itself, which keeps a stroked line a rectangle of four corners.
    const double reach = m_cap == GXLineCapSquare ? m_half : 0.0;
    const Vector first{m_first.u.x * reach, m_first.u.y * reach};
    const Vector last{m_last.u.x * reach, m_last.u.y * reach};
    if (reach != 0) {
        const auto moved = [&](double sign) {
            return Point{static_cast<float>(m_start.x + sign * m_first.n.x - first.x),
                         static_cast<float>(m_start.y + sign * m_first.n.y - first.y)};
        };
        m_left[0] = moved(1.0);
        m_right[0] = moved(-1.0);
    }
    Push(m_left, m_fixed, m_last.n.x + last.x, m_last.n.y + last.y);
    Push(m_right, m_fixed, last.x - m_last.n.x, last.y - m_last.n.y);
    const double capPoints = m_cap == GXLineCapRound ? ArcPoints(kPi) : 0.0;
    Arc(m_left, m_fixed, m_last.n, kPi, capPoints);
    for (size_t i = m_right.size(); i-- > 0;) {
        m_left.push_back(m_right[i]);
    }
    Arc(m_left, m_start, {-m_first.n.x, -m_first.n.y}, kPi, capPoints);
    m_right.clear();
}

void PenOutline::EndClosed() {
    LineTo(m_start);
    Flush();
    if (m_segments == 0) {
        Dot();
        return;
    }
    Join(m_start, m_last, m_first);
    m_skip = 1;
}

void PenOutline::Dot() {
    m_left.clear();
    m_right.clear();
    m_skip = 0;
    if (m_cap == GXLineCapRound) {
        const double points = std::max(ArcPoints(2 * kPi), 3.0);
        Arc(m_left, m_start, {m_half, 0}, 2 * kPi, points);
        Push(m_left, m_start, m_half, 0);
    } else if (m_cap == GXLineCapSquare) {
        Push(m_left, m_start, -m_half, -m_half);
        Push(m_left, m_start, m_half, -m_half);
        Push(m_left, m_start, m_half, m_half);
        Push(m_left, m_start, -m_half, m_half);
    }
}

} // namespace Graphics
