// SPDX-License-Identifier: MIT
#include "CellCombiner.h"

#include <algorithm>
#include <utility>

#include "Orientation.h"
#include "Scanner.h"

namespace Graphics {
namespace {

[[nodiscard]] bool Same(const Point& a, const Point& b) noexcept { return a.x == b.x && a.y == b.y; }

} // namespace

void CellCombiner::AddRing(const HeapArray<Point>& ring, bool ofB) {
    if (ring.size() < 3) {
        return;
    }
    const auto rounded = [&](const Point& p) { return Point{m_bands.Round(p.x), m_bands.Round(p.y)}; };
    Point from = rounded(ring.back());
    for (const Point& p : ring) {
        const Point to = rounded(p);
        if (!Same(from, to)) {
            m_edges.push_back({from, to, static_cast<uint32_t>(m_lines.size()), ofB ? 0 : 1, ofB ? 1 : 0});
            m_lines.push_back({from, to});
        }
        from = to;
    }
}

void CellCombiner::Run() {
    const size_t count = m_bands.Count();
    Divide({{0, 0}, {count, count}}, m_edges);
}

CellCombiner::Box CellCombiner::BoxOf(const Region& region) const noexcept {
    Box box{};
    for (int i = 0; i < 2; ++i) {
        box.low[i] = static_cast<float>(m_bands.Bound(region.first[i]));
        box.high[i] = static_cast<float>(m_bands.Bound(region.last[i]));
    }
    return box;
}

/// Consumes the edges.
void CellCombiner::Divide(const Region& region, HeapArray<Edge>& edges) {
    const Box box = BoxOf(region);
    m_work.pieces += edges.size();
    m_inners = 0;
    for (size_t i = 0; i < edges.size() && m_inners <= kFewEdges; ++i) {
        if (!box.OnBorder(edges[i].from, edges[i].to)) {
            if (m_inners < kFewEdges) {
                m_inner[m_inners] = static_cast<uint32_t>(i);
            }
            ++m_inners;
        }
    }
    if (Simple(edges)) {
        PutSimple(box, edges);
        return;
    }
    const size_t columns = region.last[0] - region.first[0], rows = region.last[1] - region.first[1];
    if (columns == 1 && rows == 1) {
        Sweep(region, box, edges);
        return;
    }
    const int split = columns >= rows ? 0 : 1;
    const size_t middle = (region.first[split] + region.last[split]) / 2;
    Region lower = region, upper = region;
    lower.last[split] = upper.first[split] = middle;
    HeapArray<Edge> low, high;
    Halve(split == 0 ? PlaneAxis::X : PlaneAxis::Y, static_cast<float>(m_bands.Bound(middle)), edges, low, high);
    edges = HeapArray<Edge>();
    Divide(lower, low);
    Divide(upper, high);
}

void CellCombiner::Halve(PlaneAxis axis, float at, const HeapArray<Edge>& edges, HeapArray<Edge>& low,
                         HeapArray<Edge>& high) {
    for (const Edge& e : edges) {
        const float begin = Along(axis, e.from), end = Along(axis, e.to);
        if (begin <= at && end <= at) {
            low.push_back(e);
            if (begin == at && end == at) {
                high.push_back(e);
            }
        } else if (begin >= at && end >= at) {
            high.push_back(e);
        } else {
            float across = Across(axis, e.from);
            const float other = Across(axis, e.to);
            if (across != other) {
                const Line& line = m_lines[e.line];
                const double cut = CutAcross(line.from, line.to, axis, at, m_bands.Step(m_bands.Count() / 2));
                across = std::clamp(m_bands.Round(cut), std::min(across, other), std::max(across, other));
            }
            const Point p = axis == PlaneAxis::X ? Point{at, across} : Point{across, at};
            const Edge first{e.from, p, e.line, e.a, e.b}, second{p, e.to, e.line, e.a, e.b};
            (begin < at ? low : high).push_back(first);
            (begin < at ? high : low).push_back(second);
        }
    }
    const size_t lows = low.size();
    MoveToBorder(axis, at, high, high.size(), low);
    MoveToBorder(axis, at, low, lows, high);
}

/// Consecutive edges of a ring usually continue each other, so their steps at common ends cancel.
void CellCombiner::AddStep(const WeightStep& step) {
    if (m_steps.empty() || m_steps.back().at != step.at) {
        m_steps.push_back(step);
        return;
    }
    WeightStep& last = m_steps.back();
    last.a += step.a;
    last.b += step.b;
    if (last.a == 0 && last.b == 0) {
        m_steps.pop_back();
    }
}

/// Sums up the edges on one side of a border, moved to it, and adds the sums to the other side. Edges on the border
/// itself are already in the other side.
void CellCombiner::MoveToBorder(PlaneAxis axis, float at, const HeapArray<Edge>& from, size_t count,
                                HeapArray<Edge>& to) {
    m_steps.clear();
    for (size_t i = 0; i < count; ++i) {
        const Edge& e = from[i];
        const float begin = Across(axis, e.from), end = Across(axis, e.to);
        if (begin != end && !(Along(axis, e.from) == at && Along(axis, e.to) == at)) {
            AddStep({begin, e.a, e.b});
            AddStep({end, -e.a, -e.b});
        }
    }
    std::sort(m_steps.begin(), m_steps.end(), [](const WeightStep& s, const WeightStep& t) { return s.at < t.at; });
    const auto pointOf = [&](float across) { return axis == PlaneAxis::X ? Point{at, across} : Point{across, at}; };
    int32_t a = 0, b = 0;
    float last = 0;
    for (size_t i = 0; i < m_steps.size();) {
        const float place = m_steps[i].at;
        int32_t nextA = a, nextB = b;
        for (; i < m_steps.size() && m_steps[i].at == place; ++i) {
            nextA += m_steps[i].a;
            nextB += m_steps[i].b;
        }
        if (nextA != a || nextB != b) {
            if (a != 0 || b != 0) {
                to.push_back({pointOf(last), pointOf(place), kNone, a, b});
            }
            a = nextA;
            b = nextB;
            last = place;
        }
    }
}

void CellCombiner::PutEdge(const Box& box, const Point& from, const Point& to) {
    if (box.OnBorder(from, to)) {
        m_result.AddSeam(from, to);
        return;
    }
    m_result.AddEdge(from, to);
    for (const Point& p : {from, to}) {
        if (p.x == box.low[0] || p.x == box.high[0]) {
            m_result.AddTouch(p, true);
        }
        if (p.y == box.low[1] || p.y == box.high[1]) {
            m_result.AddTouch(p, false);
        }
    }
}

/// Whether the edges inside the region are few and meet only at common ends.
bool CellCombiner::Simple(const HeapArray<Edge>& edges) const noexcept {
    const auto apart = [](const Edge& e, const Edge& f) {
        if (std::max(e.from.x, e.to.x) < std::min(f.from.x, f.to.x) ||
            std::max(f.from.x, f.to.x) < std::min(e.from.x, e.to.x) ||
            std::max(e.from.y, e.to.y) < std::min(f.from.y, f.to.y) ||
            std::max(f.from.y, f.to.y) < std::min(e.from.y, e.to.y)) {
            return true;
        }
        const int a = OrientationSign(e.from, e.to, f.from), b = OrientationSign(e.from, e.to, f.to);
        const int c = OrientationSign(f.from, f.to, e.from), d = OrientationSign(f.from, f.to, e.to);
        const bool joint =
            Same(e.from, f.from) || Same(e.from, f.to) || Same(e.to, f.from) || Same(e.to, f.to); // one of a, b is 0
        return a * b > 0 || c * d > 0 || (joint && (a != 0 || b != 0));
    };
    if (m_inners > kFewEdges) {
        return false;
    }
    for (size_t i = 1; i < m_inners; ++i) {
        for (size_t k = 0; k < i; ++k) {
            if (!apart(edges[m_inner[i]], edges[m_inner[k]])) {
                return false;
            }
        }
    }
    return true;
}

void CellCombiner::PutSimple(const Box& box, const HeapArray<Edge>& edges) {
    for (size_t i = 0; i < m_inners; ++i) {
        PutSimpleEdge(box, edges, edges[m_inner[i]]);
    }
    PutBorders(box, edges);
}

/// The winding number beside an edge's start is the sum over edges on the side of small x, or below a horizontal edge.
void CellCombiner::PutSimpleEdge(const Box& box, const HeapArray<Edge>& edges, Edge e) {
    const PlaneAxis axis = e.from.y == e.to.y ? PlaneAxis::X : PlaneAxis::Y;
    const auto turnedUp = [axis](Edge f) {
        if (Along(axis, f.from) > Along(axis, f.to)) {
            std::swap(f.from, f.to);
            f.a = -f.a;
            f.b = -f.b;
        }
        return f;
    };
    e = turnedUp(e);
    const int sideOfLess = axis == PlaneAxis::X ? -1 : 1; // smaller y lies right of an edge along x
    int32_t a = 0, b = 0;
    for (const Edge& other : edges) {
        const Edge f = turnedUp(other);
        if (Along(axis, f.from) > Along(axis, e.from) || Along(axis, f.to) <= Along(axis, e.from)) {
            continue;
        }
        int side = OrientationSign(f.from, f.to, e.from);
        side = side != 0 ? side : -OrientationSign(e.from, e.to, f.to);
        if (side == -sideOfLess) {
            a += f.a;
            b += f.b;
        }
    }
    // Crossing from small y to large y is crossing from right to left.
    if (axis == PlaneAxis::X) {
        a = -a - e.a;
        b = -b - e.b;
    }
    const bool left = m_test.Inside(a, b), right = m_test.Inside(a + e.a, b + e.b);
    if (left != right) {
        PutEdge(box, left ? e.from : e.to, left ? e.to : e.from);
    }
}

/// All winding numbers outside the region's border are 0, so the weight of a part of the border gives the winding
/// inside.
void CellCombiner::PutBorders(const Box& box, const HeapArray<Edge>& edges) {
    for (int side = 0; side < 4; ++side) {
        const PlaneAxis axis = side < 2 ? PlaneAxis::X : PlaneAxis::Y;
        const float at = (side % 2 == 0 ? box.low : box.high)[side / 2];
        m_steps.clear();
        for (const Edge& e : edges) {
            if (Along(axis, e.from) == at && Along(axis, e.to) == at) {
                m_steps.push_back({Across(axis, e.from), e.a, e.b});
                m_steps.push_back({Across(axis, e.to), -e.a, -e.b});
            }
        }
        std::sort(m_steps.begin(), m_steps.end(), [](const WeightStep& s, const WeightStep& t) { return s.at < t.at; });
        // On the left and the upper border the region lies on that side of the edges towards which a winding number
        // grows.
        const int sign = side == 0 || side == 3 ? 1 : -1;
        int32_t a = 0, b = 0;
        for (size_t i = 0; i + 1 < m_steps.size(); ++i) {
            a += m_steps[i].a * sign;
            b += m_steps[i].b * sign;
            const float from = m_steps[i].at, to = m_steps[i + 1].at;
            if (from != to && m_test.Inside(a, b)) {
                const auto pointOf = [&](float v) { return axis == PlaneAxis::X ? Point{at, v} : Point{v, at}; };
                // With the inside at the left: up the right border and along the lower one.
                const bool forward = side == 1 || side == 2;
                m_result.AddSeam(pointOf(forward ? from : to), pointOf(forward ? to : from));
            }
        }
    }
}

/// Combines a single cell on its own grid.
void CellCombiner::Sweep(const Region& region, const Box& box, const HeapArray<Edge>& edges) {
    m_work.cells += 1;
    const double stepX = m_bands.Step(region.first[0]), stepY = m_bands.Step(region.first[1]);
    const auto toGrid = [&](const Point& p) {
        return GridPoint{static_cast<int32_t>(p.x / stepX), static_cast<int32_t>(p.y / stepY)};
    };
    const auto toPlane = [&](const GridPoint& p) {
        return Point{static_cast<float>(p.x * stepX), static_cast<float>(p.y * stepY)};
    };
    Scanner scanner(m_test);
    scanner.Expect(edges.size());
    for (const Edge& e : edges) {
        scanner.AddEdge(toGrid(e.from), toGrid(e.to), e.a, e.b);
    }
    scanner.Run();
    const SweepCounts work = scanner.Work();
    m_work.sweep.sweeps = std::max(m_work.sweep.sweeps, work.sweeps);
    m_work.sweep.points += work.points;
    m_work.sweep.comparisons += work.comparisons;
    m_work.sweep.cuts += work.cuts;
    m_work.sweep.pairs += work.pairs;
    for (const GridEdge& e : scanner.Edges()) {
        if (e.Borders()) {
            GridPoint from = e.border == GridEdge::Border::InsideLeft ? e.lo : e.hi;
            GridPoint to = e.border == GridEdge::Border::InsideLeft ? e.hi : e.lo;
            if (scanner.Transposed()) {
                std::swap(from.x, from.y);
                std::swap(to.x, to.y);
                std::swap(from, to);
            }
            PutEdge(box, toPlane(from), toPlane(to));
        }
    }
}

} // namespace Graphics
