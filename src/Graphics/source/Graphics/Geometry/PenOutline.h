// SPDX-License-Identifier: MIT
// The outline of a stroked figure, built in two side stores while the figure's points arrive.
//
// Per segment there is a rectangle of the line's width, per corner a wedge on the outer side:
//
//        left side  --->          n is the left normal (u.y, -u.x) times half the width;
//     C-+n ----------- +n         the corner's outer side is the left one where the cross
//     C  o============> o         product of the directions is positive
//     C- -n ---------- -n
//        right side
//
// 1. All pieces wind the same way, so they add up under the non-zero rule.
// 2. Inner side of a corner: the two offset lines are joined in their intersection if that shortens each of the two
//    segments by at most half; otherwise the outline goes through the centre c, which removes nothing.
//    Proof that joining removes nothing either: what it removes is the kite between c, the two offset ends and the
//    intersection. Both rectangles cover the kite. Because a segment gives at most half of itself to each of its
//    corners, no other kite of these two segments overlaps it. So two windings minus one are left.
//
// Chains: dashes whose caps overlap form one outline, so that a dot costs what can be seen of it and not its circle.
//
//        ...__      __...            Round caps of radius h, with centres a and b at distance d, meet in a notch
//             \_  _/                 sqrt(h^2 - d^2 / 4) beside the middle of the gap; up to there each cap has turned
//          a    \/    b              by phi = asin(d / 2h).
//
// Square dots form stairs: each outer corner is followed by the point that its square shares with the next one.
#pragma once

#include <span>

#include "../ProcessHeap.h"
#include "../Trigonometry.h"
#include "CurveFlattener.h"
#include "PenView.h"
#include "StrokeStyle.h"

namespace Graphics {

/// Working memory of strokes, kept by whoever strokes again and again.
struct PenStorage {
    HeapArray<Point> left;
    HeapArray<Point> right;
    HeapArray<Point> path; // a figure moved onto the pixel grid

    /// Gives back what a large figure left.
    void Trim() noexcept {
        left.Trim();
        right.Trim();
        path.Trim();
    }
};

/// The flattening tolerance for a curve that is stroked: an error e of the centre line grows to e (R + h) / R on the
/// outer edge, where R is the radius of curvature, of the size of the curve, and h half the width.
[[nodiscard]] float StrokeCurveTolerance(const WideCurve& curve, float tolerance, float half) noexcept;

/// Finer than the coordinates of the curve resolve it makes no sense to cut it.
[[nodiscard]] float ResolvableTolerance(const WideCurve& curve, float tolerance) noexcept;

class PenOutline {
public:
    PenOutline(PenStorage& storage, const StrokeStyle& style, float half, float tolerance) noexcept;

    /// Of corners out of `view` nothing is sent, and little of long arcs whose points are out of `pointView`; what is
    /// sent stays the same. Null: all is in view.
    void SetView(const PenView* view, const PenView* pointView) noexcept {
        m_view = view;
        m_pointView = pointView;
    }
    /// Long pieces of curves out of this view become straight lines.
    void SetCurveView(const PenView* view) noexcept { m_curveView = view; }
    /// The way in which a lone point's square stands: any vector along one of its sides.
    void SetDotDirection(double x, double y) noexcept;
    /// Flattens curves more finely, so that the outer edge keeps the tolerance and not only the centre line.
    void RefineCurves() noexcept { m_refineCurves = true; }

    void Begin(const Point& start) noexcept;
    void LineTo(const Point& p);
    void CubicTo(const Point& c1, const Point& c2, const Point& end);
    /// Ends a dash at the current point and starts the next one at `to`, which is at most half the width away; square
    /// caps take only dashes without length. False, with nothing done, where the chain bends so much that its inner
    /// side would turn back: it has to end here and start anew.
    [[nodiscard]] bool Gap(const Point& to);
    [[nodiscard]] const Point& Current() const noexcept { return m_hasPending ? m_pending : m_fixed; }

    /// One closed figure in First.
    void EndOpen();
    /// Two closed figures, First and Second, the latter to be sent in reverse; a lone point has only First.
    void EndClosed();

    [[nodiscard]] std::span<const Point> First() const noexcept {
        return {m_left.data() + m_skip, m_left.size() - m_skip};
    }
    [[nodiscard]] std::span<const Point> Second() const noexcept {
        return m_right.size() < m_skip ? std::span<const Point>()
                                       : std::span<const Point>(m_right.data() + m_skip, m_right.size() - m_skip);
    }

private:
    struct Vector {
        double x, y;
    };
    struct Segment {
        Vector u; // direction, length 1
        Vector n; // left normal times half the width
        double length;
    };

    [[nodiscard]] uint32_t OutsideOf(const Point& p) const noexcept {
        return m_view != nullptr ? m_view->OutsideOf(p) : 0U;
    }
    void Flush();
    /// False for a segment without length.
    [[nodiscard]] bool MakeSegment(const Point& a, const Point& b, Segment& s) const noexcept;
    void AddSegment(const Point& a, const Point& b);
    void Join(const Point& c, const Segment& s1, const Segment& s2);
    void JoinOuter(HeapArray<Point>& side, double sign, const Point& c, const Segment& s1, const Segment& s2,
                   double cross, double dot);
    /// `count` points that divide the turn of v by `angle` into equal parts.
    void Arc(HeapArray<Point>& side, const Point& c, Vector v, double angle, double count) const;
    /// Whether the arc that turns v by at most a quarter into w is out of view.
    [[nodiscard]] bool ArcUnseen(const Point& c, const Vector& v, const Vector& w) const noexcept;
    [[nodiscard]] double ArcPoints(double angle) const noexcept;
    void Dot();
    [[nodiscard]] bool Notch(const Point& a, const Segment& gap);
    [[nodiscard]] SineCosine NotchTurn(double gap) const noexcept;
    /// Around `c`, at which a gap ended, from its notches to the points beside c and by `beyond` further; where the
    /// chain bends there the left side has so much more, the right one less.
    void TurnFromNotch(const Point& c, double beyond, double bend);
    /// The quadrant of the dots' square that the vector points into, as signs.
    [[nodiscard]] Vector Quadrant(const Vector& v) const noexcept;
    [[nodiscard]] Vector SquareCorner(const Vector& signs) const noexcept;
    void Stairs(const Point& a, const Point& b, const Vector& quadrant);
    void EndStairs();

    static void Push(HeapArray<Point>& side, const Point& c, double dx, double dy) {
        side.push_back({static_cast<float>(c.x + dx), static_cast<float>(c.y + dy)});
    }

    HeapArray<Point>& m_left;
    HeapArray<Point>& m_right;
    const uint32_t m_join;
    const uint32_t m_cap;
    const double m_half;
    const float m_tolerance;
    double m_miterLimit2; // squared; 0 where no corner passes
    double m_arcStep;     // 4 theta
    double m_cosArcStep;
    const PenView* m_view = nullptr;
    const PenView* m_pointView = nullptr;
    const PenView* m_curveView = nullptr;
    Vector m_dotDirection{1, 0};
    bool m_refineCurves = false;

    // A point is processed when the next one is known, so that a corner can be left out. Claim: a corner may go if it,
    // its neighbours and the corners left out before it lie beyond one common side of the view. Proof: their joins and
    // the edges between them lie beyond that side as well, so a chord there winds around everything in view as they do.
    // Corners that stay are built from their true neighbours, even if those are left out.
    Point m_start{};
    Point m_fixed{};   // the last corner that is kept
    Point m_leftOut{}; // the last corner that was left out, where m_leavesOut
    Point m_pending{};
    uint32_t m_runOutside = 0; // common to the kept corner and all that were left out since
    uint32_t m_pendingOutside = 0;
    bool m_hasPending = false;
    bool m_leavesOut = false; // corners were left out since the kept one

    size_t m_segments = 0;
    Segment m_first{};
    Segment m_last{};
    size_t m_skip = 0; // leading points that a closed figure's start join replaces

    double m_gapTurn = 0;    // phi of the gap that ends at m_fixed; 0 where a dash does
    bool m_stairs = false;   // the figure is a chain of squares
    Vector m_quadrant{0, 0}; // into which they go
};

} // namespace Graphics
