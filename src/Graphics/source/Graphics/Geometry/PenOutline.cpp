// SPDX-License-Identifier: MIT
#include "PenOutline.h"

#include <cmath>

namespace Graphics {
namespace {

constexpr double kPi = 3.14159265358979323846;
// Bounds the cost of one arc of an extremely wide line; enough for a quarter pixel up to radii of a million pixels.
constexpr double kMostArcSteps = 4096; // per full turn
constexpr uint32_t kPlainSteps = 128;
// Points of an arc that are culled together. Only arcs with more than kLongArc points have blocks, so no block turns by
// more than a quarter.
constexpr double kBlock = 16;
constexpr double kLongArc = 64;

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
    // A chord over 4 theta deviates from the circle by half the tolerance: h (1 - cos 2 theta) with
    // cos theta = h / (t / 8 + h).
    const double cosTheta = m_half / (static_cast<double>(m_tolerance) * 0.125 + m_half);
    const double theta = Angle(std::sqrt((1 - cosTheta) * (1 + cosTheta)), cosTheta);
    m_arcStep = theta * 4 > 2 * kPi / kMostArcSteps ? theta * 4 : 2 * kPi / kMostArcSteps;
    m_cosArcStep = m_arcStep < kPi ? SineAndCosine(m_arcStep).cosine : -1.0;
}

void PenOutline::SetDotDirection(double x, double y) noexcept {
    const double length = std::sqrt(x * x + y * y);
    m_dotDirection = length > 0 && std::isfinite(length) ? Vector{x / length, y / length} : Vector{1, 0};
}

void PenOutline::Begin(const Point& start) noexcept {
    m_left.clear();
    m_right.clear();
    m_start = m_fixed = start;
    m_runOutside = OutsideOf(start);
    m_hasPending = false;
    m_leavesOut = false;
    m_segments = 0;
    m_skip = 0;
    m_gapTurn = 0;
    m_stairs = false;
}

void PenOutline::LineTo(const Point& p) {
    const Point& current = Current();
    if (p.x == current.x && p.y == current.y) {
        return;
    }
    const uint32_t outside = OutsideOf(p);
    if (m_hasPending) {
        if ((m_runOutside & m_pendingOutside & outside) == 0) {
            Flush();
        } else {
            if (!m_leavesOut) {
                AddSegment(m_fixed, m_pending);
                m_leavesOut = true;
            }
            m_runOutside &= m_pendingOutside;
            m_leftOut = m_pending;
        }
    }
    m_pending = p;
    m_pendingOutside = outside;
    m_hasPending = true;
}

void PenOutline::Flush() {
    if (!m_hasPending) {
        return;
    }
    if (m_leavesOut) {
        Segment s;
        if (MakeSegment(m_leftOut, m_pending, s)) {
            m_last = s;
        }
        m_leavesOut = false;
    } else {
        AddSegment(m_fixed, m_pending);
    }
    m_fixed = m_pending;
    m_runOutside = m_pendingOutside;
    m_hasPending = false;
}

void PenOutline::CubicTo(const Point& c1, const Point& c2, const Point& end) {
    const WideCurve curve(Current(), c1, c2, end);
    float tolerance = m_tolerance;
    if (m_refineCurves) {
        tolerance = StrokeCurveTolerance(curve, tolerance, static_cast<float>(m_half));
    }
    tolerance = ResolvableTolerance(curve, tolerance);
    const auto place = [this](const WideCurve& piece) {
        uint32_t outside = m_curveView != nullptr ? 15U : 0U;
        for (int i = 0; i < 4 && outside != 0; ++i) {
            outside &= m_curveView->OutsideOf(piece.x[i], piece.y[i]);
        }
        if (outside == 0) {
            return CurvePlace::Mixed;
        }
        LineTo(piece.At(3));
        return CurvePlace::Handled;
    };
    FlattenBounded(curve, tolerance, kPlainSteps, place, [this](const Point& p) { LineTo(p); });
}

bool PenOutline::MakeSegment(const Point& a, const Point& b, Segment& s) const noexcept {
    const double dx = static_cast<double>(b.x) - a.x;
    const double dy = static_cast<double>(b.y) - a.y;
    const double length = std::sqrt(dx * dx + dy * dy);
    if (!(length > 0) || !std::isfinite(length)) {
        return false;
    }
    s.u = {dx / length, dy / length};
    s.n = {s.u.y * m_half, -s.u.x * m_half};
    s.length = length;
    return true;
}

void PenOutline::AddSegment(const Point& a, const Point& b) {
    Segment s;
    if (!MakeSegment(a, b, s)) {
        return;
    }
    if (m_segments == 0) {
        m_first = s;
    }
    if (m_gapTurn > 0) {
        TurnFromNotch(a, 0, 0);
    }
    if (m_segments == 0 || m_gapTurn > 0) {
        Push(m_left, a, s.n.x, s.n.y);
        Push(m_right, a, -s.n.x, -s.n.y);
    } else {
        Join(a, m_last, s);
    }
    m_last = s;
    m_gapTurn = 0;
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
    // For a line that turns back on itself, the left side is taken as the outer one.
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
    // The miter ratio is 1 / cos(phi / 2), its square 2 / (1 + cos phi). The tip lies on both offset lines, so their
    // ends are not sent.
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

void PenOutline::Arc(HeapArray<Point>& side, const Point& c, Vector v, double angle, double count) const {
    if (!(count > 0)) {
        return;
    }
    const double step = angle / (count + 1);
    const auto [sine, cosine] = SineAndCosine(step);
    const auto turn = [](const Vector& a, double s, double k) { return Vector{a.x * k - a.y * s, a.x * s + a.y * k}; };
    if (!(count > kLongArc)) {
        for (double i = 0; i < count; ++i) {
            v = turn(v, sine, cosine);
            Push(side, c, v.x, v.y);
        }
        return;
    }
    // Long arcs restart at every block, so that invisible blocks can be omitted.
    Vector from = v;
    for (double i = 0; i < count; i += kBlock) {
        const double steps = std::min(kBlock, count - i);
        const auto [blockSine, blockCosine] = SineAndCosine((i + steps) * step);
        const Vector to = turn(v, blockSine, blockCosine);
        if (m_pointView == nullptr || !ArcUnseen(c, from, to)) {
            Vector w = from;
            for (double k = 1; k < steps; ++k) {
                w = turn(w, sine, cosine);
                Push(side, c, w.x, w.y);
            }
        }
        Push(side, c, to.x, to.y);
        from = to;
    }
}

/// The arc lies in the triangle between both ends and the point where their tangents meet.
bool PenOutline::ArcUnseen(const Point& c, const Vector& v, const Vector& w) const noexcept {
    const double k = m_half * m_half / (m_half * m_half + v.x * w.x + v.y * w.y);
    return (m_pointView->OutsideOf(c.x + v.x, c.y + v.y) & m_pointView->OutsideOf(c.x + w.x, c.y + w.y) &
            m_pointView->OutsideOf(c.x + (v.x + w.x) * k, c.y + (v.y + w.y) * k)) != 0;
}

void PenOutline::EndOpen() {
    Flush();
    if (m_segments == 0) {
        Dot();
        return;
    }
    if (m_stairs) {
        EndStairs();
        return;
    }
    if (m_gapTurn > 0) {
        TurnFromNotch(m_fixed, 0, 0);
    }
    // A square cap moves the end itself, so that a stroked line stays a rectangle of four corners.
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

bool PenOutline::Gap(const Point& to) {
    Flush();
    Segment gap;
    if (!MakeSegment(m_fixed, to, gap)) {
        return true;
    }
    if (m_cap == GXLineCapSquare) {
        const Vector quadrant = Quadrant(gap.u);
        if (m_segments != 0 && (quadrant.x != m_quadrant.x || quadrant.y != m_quadrant.y)) {
            return false;
        }
        Stairs(m_fixed, to, quadrant);
    } else if (!Notch(m_fixed, gap)) {
        return false;
    }
    if (m_segments == 0) {
        m_first = gap;
    }
    m_last = gap;
    ++m_segments;
    m_fixed = to;
    m_runOutside = OutsideOf(to);
    return true;
}

/// Continues the outline from a (or from the notches of the gap that ends there) to the notches of the gap that starts
/// there.
bool PenOutline::Notch(const Point& a, const Segment& gap) {
    const SineCosine phi = NotchTurn(gap.length);
    const double turn = Angle(phi.sine, phi.cosine);
    if (m_gapTurn > 0) {
        const double bend =
            Angle(m_last.u.x * gap.u.y - m_last.u.y * gap.u.x, m_last.u.x * gap.u.x + m_last.u.y * gap.u.y);
        if (!(std::fabs(bend) <= m_gapTurn + turn)) {
            return false;
        }
        TurnFromNotch(a, turn, bend);
    } else {
        const Vector& n = m_segments == 0 ? gap.n : m_last.n;
        Push(m_left, a, n.x, n.y);
        Push(m_right, a, -n.x, -n.y);
        Arc(m_left, a, gap.n, turn, ArcPoints(turn));
        Arc(m_right, a, {-gap.n.x, -gap.n.y}, -turn, ArcPoints(turn));
    }
    const Vector n{gap.n.x * phi.cosine, gap.n.y * phi.cosine};
    const Vector along{gap.u.x * m_half * phi.sine, gap.u.y * m_half * phi.sine};
    Push(m_left, a, along.x + n.x, along.y + n.y);
    Push(m_right, a, along.x - n.x, along.y - n.y);
    m_gapTurn = turn;
    return true;
}

/// The sine and cosine of phi.
SineCosine PenOutline::NotchTurn(double gap) const noexcept {
    const double sine = std::min(0.5 * gap / m_half, 1.0);
    return {sine, std::sqrt((1 - sine) * (1 + sine))};
}

void PenOutline::TurnFromNotch(const Point& c, double beyond, double bend) {
    const SineCosine phi = NotchTurn(m_last.length);
    const Vector n{m_last.n.x * phi.cosine, m_last.n.y * phi.cosine};
    const Vector along{m_last.u.x * m_half * phi.sine, m_last.u.y * m_half * phi.sine};
    const double left = m_gapTurn + beyond + bend, right = m_gapTurn + beyond - bend;
    // One point more than the tolerance requires: a dot of which only this arc is visible keeps its height.
    Arc(m_left, c, {n.x - along.x, n.y - along.y}, left, ArcPoints(left) + 1);
    Arc(m_right, c, {-n.x - along.x, -n.y - along.y}, -right, ArcPoints(right) + 1);
}

PenOutline::Vector PenOutline::Quadrant(const Vector& v) const noexcept {
    const double p = v.x * m_dotDirection.x + v.y * m_dotDirection.y;
    const double q = v.y * m_dotDirection.x - v.x * m_dotDirection.y;
    return {p < 0 ? -1.0 : 1.0, q < 0 ? -1.0 : 1.0};
}

PenOutline::Vector PenOutline::SquareCorner(const Vector& signs) const noexcept {
    const Vector u{m_dotDirection.x * m_half, m_dotDirection.y * m_half};
    return {signs.x * u.x - signs.y * u.y, signs.x * u.y + signs.y * u.x};
}

/// Let p and q be the components of b - a along the two directions of the squares. The corners beside the connection
/// have unequal signs: (+, -) on the left if p q > 0. The forward side of a's square continues to its crossing with b's
/// side.
void PenOutline::Stairs(const Point& a, const Point& b, const Vector& quadrant) {
    const double dx = static_cast<double>(b.x) - a.x, dy = static_cast<double>(b.y) - a.y;
    const double q = dy * m_dotDirection.x - dx * m_dotDirection.y;
    const double p = dx * m_dotDirection.x + dy * m_dotDirection.y;
    const bool turns = quadrant.x * quadrant.y < 0;
    const auto step = [&](HeapArray<Point>& side, bool aheadInP) {
        const Vector corner =
            SquareCorner(aheadInP ? Vector{quadrant.x, -quadrant.y} : Vector{-quadrant.x, quadrant.y});
        Push(side, a, corner.x, corner.y);
        // From a's corner, against the direction in which it lies behind.
        const double x = aheadInP ? -q * m_dotDirection.y : p * m_dotDirection.x;
        const double y = aheadInP ? q * m_dotDirection.x : p * m_dotDirection.y;
        Push(side, a, corner.x + x, corner.y + y);
    };
    step(m_left, !turns);
    step(m_right, turns);
    m_stairs = true;
    m_quadrant = quadrant;
}

void PenOutline::EndStairs() {
    const bool turns = m_quadrant.x * m_quadrant.y < 0;
    const Vector ahead = SquareCorner(m_quadrant);
    const Vector beside = SquareCorner({m_quadrant.x, -m_quadrant.y});
    const double sign = turns ? -1.0 : 1.0;
    Push(m_left, m_fixed, sign * beside.x, sign * beside.y);
    Push(m_left, m_fixed, ahead.x, ahead.y);
    Push(m_left, m_fixed, -sign * beside.x, -sign * beside.y);
    for (size_t i = m_right.size(); i-- > 0;) {
        m_left.push_back(m_right[i]);
    }
    Push(m_left, m_start, -ahead.x, -ahead.y);
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
        const Vector u{m_dotDirection.x * m_half, m_dotDirection.y * m_half};
        const Vector v{-u.y, u.x};
        Push(m_left, m_start, -u.x - v.x, -u.y - v.y);
        Push(m_left, m_start, u.x - v.x, u.y - v.y);
        Push(m_left, m_start, u.x + v.x, u.y + v.y);
        Push(m_left, m_start, v.x - u.x, v.y - u.y);
    }
}

} // namespace Graphics
