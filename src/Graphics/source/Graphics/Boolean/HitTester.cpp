// SPDX-License-Identifier: MIT
#include "HitTester.h"

#include "../Geometry/Transformer.h"
#include "Orientation.h"

namespace Graphics {
namespace {

// An upper bound of the distance of two points with float coordinates.
constexpr double kFarthest = 1e39;

// A curve is not halved further if its parts deviate from their chords by less than this fraction of its size. Halving
// in doubles has a smaller error.
constexpr double kFinest = 1.0 / (1ULL << 45);

// Halving reduces the deviation to a quarter, so 45 bits are 23 halvings.
constexpr int kDepth = 28;

// Parts of a curve that follows the rim of the tolerance for long stay undecided. Up to this many are halved at each
// depth, so none is given up before its chord is within 4^-10 of the whole curve's deviation.
constexpr int kCutsPerDepth = 1024;

/// The square of the distance from (x, y) to the line from (ax, ay) to (bx, by).
[[nodiscard]] double SquaredDistance(double x, double y, double ax, double ay, double bx, double by) noexcept {
    const double dx = bx - ax, dy = by - ay, px = x - ax, py = y - ay;
    const double along = dx * px + dy * py, length = dx * dx + dy * dy;
    if (!(along > 0.0)) {
        return px * px + py * py;
    }
    if (along >= length) {
        return (x - bx) * (x - bx) + (y - by) * (y - by);
    }
    const double across = dx * py - dy * px;
    return across * across / length;
}

/// The deviation of a cubic from its chord at equal parameters: at most an eighth of the largest second derivative, 6
/// (p0 - 2 p1 + p2) or 6 (p1 - 2 p2 + p3).
[[nodiscard]] double Stray(const WideCurve& c) noexcept {
    const auto squared = [&c](int i) {
        const double x = c.x[i] - 2 * c.x[i + 1] + c.x[i + 2], y = c.y[i] - 2 * c.y[i + 1] + c.y[i + 2];
        return x * x + y * y;
    };
    return 0.75 * std::sqrt(std::max(squared(0), squared(1)));
}

[[nodiscard]] double Extent(const WideCurve& c) noexcept {
    double size = 0;
    for (int i = 0; i < 4; ++i) {
        size = std::max({size, std::fabs(c.x[i]), std::fabs(c.y[i])});
    }
    return size;
}

} // namespace

HitTester::HitTester(const Point& point, float tolerance) noexcept
    : m_point(point), m_tolerance(tolerance > 0.0F ? std::min(static_cast<double>(tolerance), kFarthest) : 0.0) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity(), kMost = std::numeric_limits<float>::max();
    const auto towards = [](double v, float end) {
        return std::nextafter(static_cast<float>(std::clamp<double>(v, -kMost, kMost)), end);
    };
    const auto below = [&](double v) { return towards(v, -kInfinity); };
    const auto above = [&](double v) { return towards(v, kInfinity); };
    m_square = {below(point.x - m_tolerance), below(point.y - m_tolerance), above(point.x + m_tolerance),
                above(point.y + m_tolerance)};
}

template <class... More> HitTester::Place HitTester::PlaceOf(const Point& a, const More&... more) const noexcept {
    // Heights are compared first, because most segments lie above or below.
    float least = a.y, most = a.y;
    ((least = std::min(least, more.y), most = std::max(most, more.y)), ...);
    if (most < m_square.top || least > m_square.bottom) {
        return Place::Away;
    }
    least = most = a.x;
    ((least = std::min(least, more.x), most = std::max(most, more.x)), ...);
    if (most < m_square.left) {
        return Place::Away;
    }
    return least > m_square.right ? Place::Right : Place::Around;
}

/// Counts the crossing of a line that is not near. The ray is crossed if the ends lie on both sides of it, in the
/// half-open sense of Cross, and the point is to the left.
void HitTester::CrossLine(const Point& a, const Point& b) noexcept {
    const int crossing = (b.y > m_point.y) - (a.y > m_point.y);
    if (crossing != 0) {
        const int side = OrientationSign(a, b, m_point) * crossing;
        m_near |= side == 0; // exactly on the line
        m_winding += side > 0 ? crossing : 0;
    }
}

void HitTester::LineTo(const Point& p) {
    const Point a = m_current;
    m_current = p;
    switch (PlaceOf(a, p)) {
    case Place::Away:
        return;
    case Place::Right:
        Cross(a.y, p.y);
        return;
    case Place::Around:
        break;
    }
    if (SquaredDistance(m_point.x, m_point.y, a.x, a.y, p.x, p.y) <= m_tolerance * m_tolerance) {
        m_near = true;
    } else {
        CrossLine(a, p);
    }
}

void HitTester::EndFigure() {
    if (SquaredDistance(m_point.x, m_point.y, m_current.x, m_current.y, m_start.x, m_start.y) == 0.0) {
        m_near = true;
    } else {
        CrossLine(m_current, m_start);
    }
}

void HitTester::CubicTo(const Point& c1, const Point& c2, const Point& end) {
    const Point a = m_current;
    m_current = end;
    switch (PlaceOf(a, c1, c2, end)) {
    case Place::Away:
        return;
    case Place::Right:
        Cross(a.y, end.y);
        return;
    case Place::Around:
        TestCurve(WideCurve(a, c1, c2, end));
        return;
    }
}

/// If a part's chord is farther from the point than the part deviates from the chord, straightening it does not pass
/// over the point, so it crosses the ray as often as its chord. Other parts are near, or are halved.
void HitTester::TestCurve(const WideCurve& curve) noexcept {
    const double x = m_point.x, y = m_point.y, finest = Extent(curve) * kFinest;
    uint16_t cuts[kDepth] = {};
    struct Part {
        WideCurve curve;
        int depth;
    } parts[kDepth + 1];
    int count = 1;
    parts[0] = {curve, 0};
    while (count > 0 && !m_near) {
        const Part part = parts[--count];
        const WideCurve& c = part.curve;
        const double stray = Stray(c), reach = m_tolerance + stray + finest;
        const double distance = SquaredDistance(x, y, c.x[0], c.y[0], c.x[3], c.y[3]);
        const bool given = part.depth + 1 >= kDepth || cuts[part.depth] >= kCutsPerDepth;
        if (distance > reach * reach || (given && distance > m_tolerance * m_tolerance)) {
            const int crossing = (c.y[3] > y) - (c.y[0] > y);
            const double across = (c.x[0] - x) * (c.y[3] - y) - (c.y[0] - y) * (c.x[3] - x);
            m_winding += across * crossing > 0.0 ? crossing : 0;
        } else if (given || stray <= finest ||
                   (m_tolerance > stray && distance <= (m_tolerance - stray) * (m_tolerance - stray))) {
            m_near = true;
        } else {
            ++cuts[part.depth];
            parts[count].depth = parts[count + 1].depth = part.depth + 1;
            c.Split(parts[count + 1].curve, parts[count].curve);
            count += 2;
        }
    }
}

bool HitTester::Test(const Shape& shape, const Point& point, const Matrix& m, float tolerance) {
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) {
        return false;
    }
    // Rounding is monotonic, so the mapped box contains the mapped points.
    HitTester tester(point, tolerance);
    bool finite = shape.AllFinite();
    if (finite) {
        const Rect box = shape.ControlBox();
        const Point corners[4] = {Map(m, {box.left, box.top}), Map(m, {box.right, box.top}),
                                  Map(m, {box.right, box.bottom}), Map(m, {box.left, box.bottom})};
        for (const Point& c : corners) {
            finite = finite && std::isfinite(c.x) && std::isfinite(c.y);
        }
        if (finite && tester.PlaceOf(corners[0], corners[1], corners[2], corners[3]) != Place::Around) {
            return false;
        }
    }
    tester.SetFillRule(shape.FillRule());
    const auto run = [&](auto& sink) {
        shape.ReplayFigures(sink, [&](const Figure& f) { return !tester.Near() && (finite || AllFinite(f, m)); });
    };
    if (IsIdentity(m)) {
        run(tester);
    } else {
        Transformer<HitTester> transformer(tester, m);
        run(transformer);
    }
    return tester.Hit();
}

} // namespace Graphics
