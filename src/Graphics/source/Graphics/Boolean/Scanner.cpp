// SPDX-License-Identifier: MIT
#include "Scanner.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "../Exception.h"

namespace Graphics {
namespace {

[[nodiscard]] bool InBox(const GridEdge& e, const GridPoint& p) noexcept {
    return p.y >= e.lo.y && p.y <= e.hi.y && p.x >= std::min(e.lo.x, e.hi.x) && p.x <= std::max(e.lo.x, e.hi.x);
}

[[nodiscard]] int64_t Reach(const GridPoint& p, const GridPoint& q) noexcept {
    return static_cast<int64_t>(std::abs(q.x - p.x)) + std::abs(q.y - p.y);
}

} // namespace

void Scanner::AddEdge(const GridPoint& from, const GridPoint& to, bool ofB) {
    if (from == to) {
        return;
    }
    const bool forward = Before(from, to);
    const int32_t weight = forward ? 1 : -1;
    GridEdge edge;
    edge.lo = forward ? from : to;
    edge.hi = forward ? to : from;
    (ofB ? edge.b : edge.a) = weight;
    edge.line = static_cast<uint32_t>(m_edges.size());
    m_edges.push_back(edge);
}

void Scanner::Run() {
    if (m_edges.size() >= kNone / 2) {
        GX_RAISE("Graphics::Scanner::Run", "Not enough memory");
    }
    m_lines.reserve(m_edges.size());
    for (const GridEdge& edge : m_edges) {
        m_lines.push_back({edge.lo, edge.hi});
    }
    while (Sweep(), m_bent) {

        Prepare();
    }
}

/// Once a sweep has kept its order, what it takes for the border is closed and wrong by bends at most, that is, about a
/// unit: the next sweep needs the border alone. Edges inside of the area, often the bulk, are dropped.
void Scanner::KeepBorders() {
    for (GridEdge& edge : m_edges) {
        edge.a = edge.border == GridEdge::Border::None ? 0 : edge.border == GridEdge::Border::InsideLeft ? 1 : -1;
        edge.b = 0;
    }
    m_test = WindingTest(GXCombineUnion, GXFillRuleNonZero, GXFillRuleNonZero);
}

/// Leaves out what has no weight, forgets what the sweep before found out and exchanges x and y: edges along the sweep
/// line, which end before the points are seen that they pass closely, lie across it the next time.
void Scanner::Prepare() {
    if (m_ordered) {
        KeepBorders();
    }
    const auto flip = [](GridPoint& p) { std::swap(p.x, p.y); };
    for (Line& line : m_lines) {
        flip(line.from);
        flip(line.to);
    }
    m_transposed = !m_transposed;
    size_t count = 0;
    for (const GridEdge& old : m_edges) {
        if (!old.Weightless()) {
            GridEdge edge;
            edge.lo = old.lo;
            edge.hi = old.hi;
            edge.a = old.a;
            edge.b = old.b;
            edge.line = old.line;
            flip(edge.lo);
            flip(edge.hi);
            if (Before(edge.hi, edge.lo)) {
                std::swap(edge.lo, edge.hi);
                edge.a = -edge.a;
                edge.b = -edge.b;
            }
            m_edges[count++] = edge;
        }
    }
    m_edges.resize(count);
}

void Scanner::Sweep() {
    m_bent = false;
    m_ordered = true;
    m_junctions = 0;
    m_counts.sweeps += 1;
    m_status.Clear();
    m_queue.Reset(m_edges);
    while (m_queue.Next(m_point, m_endHints, m_starts)) {
        m_counts.points += 1;
        ProcessPoint();
    }
    CutNoted();
}

void Scanner::ProcessPoint() {
    Place place = TakeOutEnds();
    TakeOutStragglers(place);
    SortStarts();
    MergeStarts();
    const uint32_t left = m_status.LeftOf(place);
    WindStarts(left);
    if (!m_bent) {
        LinkBorders(left);
    } else {
        m_ordered = m_ordered && BordersContinue();
    }
    for (const uint32_t start : m_starts) {
        place = m_status.Insert(place, start);
    }
    const uint32_t right = m_status.RightOf(place);
    if (m_starts.empty()) {
        CutNeighbours(left, right);
    } else {
        CutNeighbours(left, m_starts[0]);
        CutNeighbours(m_starts.back(), right);
    }
}

/// Whether a line passes through the square of side 1 around p, its borders included.
bool Scanner::InCell(const Line& line, const GridPoint& p) noexcept {
    return 2 * std::abs(Side(line.from, line.to, p)) <= Reach(line.from, line.to);
}

/// The piece of a cut edge that ends at p, if the status holds it.
uint32_t Scanner::PieceEndingAt(uint32_t edge, const GridPoint& p) const noexcept {
    while (edge != kNone && !(m_edges[edge].hi == p)) {
        edge = m_edges[edge].continuation;
    }
    return edge != kNone && m_edges[edge].block != kNone ? edge : kNone;
}

/// Takes the edges that end at the point out of the status, from left to right, and cuts those that pass through it.
/// Gives the place that they leave, which is the point's own.
Scanner::Place Scanner::TakeOutEnds() {
    m_ends.clear();
    uint32_t known = kNone;
    for (size_t i = 0; i < m_endHints.size() && known == kNone; ++i) {
        known = PieceEndingAt(m_endHints[i], m_point);
    }
    // Neighbours of a known end were looked at with it: those that pass through the point have been cut there.
    const bool searched = known == kNone;
    Place place = searched ? m_status.Search(m_point, m_counts.comparisons) : m_status.Find(known);
    for (uint32_t e = m_status.LeftOf(place); e != kNone && Touches(e, false); e = m_status.LeftOf(place)) {
        place = m_status.StepLeft(place);
    }
    for (uint32_t e = m_status.RightOf(place); e != kNone && Touches(e, searched); e = m_status.RightOf(place)) {
        if (!(m_edges[e].hi == m_point)) {
            Bend(m_edges[e].SideOf(m_point) != 0);
            const uint32_t upper = Cut(e, m_point);
            m_starts.push_back(upper);
        }
        m_ends.push_back(e);
        place = m_status.Erase(place);
    }
    return place;
}

/// Whether an edge ends at the point or is to be cut there: if it passes through it, and, once anything is bent, if it
/// passes through its cell. Else bent edges might step over points again and again, by ever smaller steps.
bool Scanner::Touches(uint32_t edge, bool through) noexcept {
    const GridEdge& e = m_edges[edge];
    if (e.hi == m_point) {
        return true;
    }
    if (!through && !m_hot) {
        return false;
    }
    const int64_t side = SideOf(edge, m_point);
    if (side == 0) {
        return true;
    }
    // Bent edges stay near their lines: what is far from the edge need not be compared with the line.
    return m_hot && std::abs(side) <= 4 * Reach(e.lo, e.hi) && InBox(e, m_point) && InCell(m_lines[e.line], m_point);
}

/// While bends are unresolved, edges that end at the point may stand elsewhere in the order.
void Scanner::TakeOutStragglers(Place& place) {
    if (!m_bent) {
        return;
    }
    const uint32_t right = m_status.RightOf(place);
    bool found = false;
    for (const uint32_t hint : m_endHints) {
        const uint32_t e = PieceEndingAt(hint, m_point);
        if (e != kNone) {
            static_cast<void>(m_status.Erase(m_status.Find(e)));
            found = true;
        }
    }
    if (found) {
        m_ordered = false;
        place = right != kNone && m_edges[right].block != kNone ? m_status.Find(right)
                                                                : m_status.Search(m_point, m_counts.comparisons);
    }
}

/// From left to right; of the same direction, from short to long.
void Scanner::SortStarts() {
    if (m_starts.size() < 2) {
        return;
    }
    const auto before = [&](uint32_t i, uint32_t k) {
        const GridEdge &e = m_edges[i], &f = m_edges[k];
        const int64_t turn = Cross(m_point, e.hi, f.hi);
        return turn != 0 ? turn < 0 : e.hi == f.hi ? i < k : Before(e.hi, f.hi);
    };
    if (m_starts.size() > 2) {
        std::sort(m_starts.begin(), m_starts.end(), before);
    } else if (before(m_starts[1], m_starts[0])) {
        std::swap(m_starts[0], m_starts[1]);
    }
}

/// Edges h1, h2 ... of one direction become pieces that follow each other:
///
///   o-----h1            o-----h1                        weight of all
///   o-----------h2  ->        h1----h2                  weight of all but the first
///   o---------------h3              h2--h3              weight of the last
void Scanner::MergeStarts() {
    size_t kept = 0;
    for (size_t i = 0, end = 0; i < m_starts.size(); i = end) {
        end = i + 1;
        while (end < m_starts.size() && Cross(m_point, m_edges[m_starts[i]].hi, m_edges[m_starts[end]].hi) == 0) {
            ++end;
        }
        for (size_t k = end - 1; k > i; --k) {
            GridEdge& longer = m_edges[m_starts[k]];
            GridEdge& shorter = m_edges[m_starts[k - 1]];
            shorter.a += longer.a;
            shorter.b += longer.b;
            if (longer.hi == shorter.hi) {
                longer.a = longer.b = 0;
            } else if (!longer.Weightless()) {
                longer.lo = shorter.hi;
                m_queue.Add(longer.lo, m_starts[k - 1], kNone, m_starts[k], kNone);
            }
        }
        if (!m_edges[m_starts[i]].Weightless()) {
            m_starts[kept++] = m_starts[i];
        }
    }
    m_starts.resize(kept);
}

/// Winding numbers at both sides of the starting edges, and whether they border the area.
void Scanner::WindStarts(uint32_t left) {
    if (m_starts.empty()) {
        return;
    }
    int32_t a = 0, b = 0;
    if (left != kNone) {
        const GridEdge& e = m_edges[left];
        a = e.leftA + e.a;
        b = e.leftB + e.b;
    }
    bool inside = m_test.Inside(a, b);
    for (const uint32_t start : m_starts) {
        GridEdge& e = m_edges[start];
        e.leftA = a;
        e.leftB = b;
        a += e.a;
        b += e.b;
        const bool insideRight = m_test.Inside(a, b);
        e.border = inside == insideRight ? GridEdge::Border::None
                   : inside              ? GridEdge::Border::InsideLeft
                                         : GridEdge::Border::InsideRight;
        inside = insideRight;
    }
}

/// Whether as many borders lead to the point as away from it.
bool Scanner::BordersContinue() const noexcept {
    const auto sum = [&](const HeapArray<uint32_t>& list) {
        int64_t up = 0;
        for (const uint32_t e : list) {
            const GridEdge::Border border = m_edges[e].border;
            up += border == GridEdge::Border::None ? 0 : border == GridEdge::Border::InsideLeft ? 1 : -1;
        }
        return up;
    };
    return sum(m_ends) == sum(m_starts);
}

/// Links the borders that end and start at the point. Seen in a circle, the areas between them are in and out by turns;
/// the two borders of an inner area belong together.
void Scanner::LinkBorders(uint32_t left) {
    m_around.clear();
    for (const uint32_t e : m_ends) {
        if (m_edges[e].border != GridEdge::Border::None) {
            m_around.push_back(e);
        }
    }
    for (size_t i = m_starts.size(); i-- > 0;) {
        if (m_edges[m_starts[i]].border != GridEdge::Border::None) {
            m_around.push_back(m_starts[i]);
        }
    }
    const size_t count = m_around.size();
    if (count == 0) {
        return;
    }
    if (count > 2) {
        for (const uint32_t e : m_around) {
            GridEdge& edge = m_edges[e];
            if ((edge.border == GridEdge::Border::InsideLeft) == (edge.lo == m_point)) {
                edge.junction = m_junctions;
            }
        }
        ++m_junctions;
    }
    const GridEdge* l = left == kNone ? nullptr : &m_edges[left];
    const bool leftInside = l != nullptr && m_test.Inside(l->leftA + l->a, l->leftB + l->b);
    for (size_t i = leftInside ? 1 : 0; i + 1 < count; i += 2) {
        JoinBorders(m_around[i], m_around[i + 1]);
    }
    if (leftInside) {
        JoinBorders(m_around[count - 1], m_around[0]);
    }
}

/// Of two borders of one inner area, one leads to the point and the other away from it.
void Scanner::JoinBorders(uint32_t first, uint32_t second) {
    const GridEdge& e = m_edges[first];
    const bool leadsHere = (e.border == GridEdge::Border::InsideLeft) == (e.hi == m_point);
    m_edges[leadsHere ? first : second].next = leadsHere ? second : first;
}

/// Ends an edge at a point and gives the piece behind it. Where the point lies behind the edge's end (to the right in
/// the end's row), the piece leads back: its ends and weight are exchanged.
uint32_t Scanner::Cut(uint32_t edge, GridPoint at) {
    if (m_edges.size() >= kNone - 1) {
        GX_RAISE("Graphics::Scanner::Cut", "Not enough memory");
    }
    const auto upper = static_cast<uint32_t>(m_edges.size());
    GridEdge piece = m_edges[edge];
    piece.block = piece.next = piece.junction = kNone;
    piece.border = GridEdge::Border::None;
    piece.lo = at;
    if (Before(piece.hi, at)) {
        std::swap(piece.lo, piece.hi);
        piece.a = -piece.a;
        piece.b = -piece.b;
    }
    m_edges.push_back(piece);
    m_edges[edge].hi = at;
    m_edges[edge].continuation = upper;
    m_counts.cuts += 1;
    return upper;
}

/// Looks whether two neighbours meet ahead. The lower one of their upper ends tells: it must lie on its own side.
void Scanner::CutNeighbours(uint32_t left, uint32_t right) {
    if (left == kNone || right == kNone || m_edges[left].hi == m_edges[right].hi) {
        return;
    }
    const GridEdge& e = m_edges[left];
    const GridEdge& f = m_edges[right];
    const bool leftEndsFirst = Before(e.hi, f.hi);
    const int64_t end = leftEndsFirst ? SideOf(right, e.hi) : -SideOf(left, f.hi); // negative: own side
    if (end < 0) {
        return;
    }
    if (end == 0) {
        CutBoth(left, right, leftEndsFirst ? e.hi : f.hi);
        return;
    }
    // They change sides ahead, unless they stand in a wrong order already: then the next sweep will know.
    const int64_t begin = Before(e.lo, f.lo) ? -SideOf(left, f.lo) : SideOf(right, e.lo);
    if (begin < 0) {
        CutCrossing(left, right);
    } else {
        m_ordered = false;
    }
}

/// Cuts two edges that change sides ahead: at the cell in which their lines cross; or, where bends alone make them
/// cross, at an end of the one whose cell the other's line passes, so that both go through it; or else where they
/// cross.
void Scanner::CutCrossing(uint32_t left, uint32_t right) {
    const GridEdge& e = m_edges[left];
    const GridEdge& f = m_edges[right];
    const Line &le = m_lines[e.line], &lf = m_lines[f.line];
    if (const auto crossing = LineCrossing::Of(le.from, le.to, lf.from, lf.to)) {
        const GridPoint at = crossing->Nearest();
        if (Usable(e, f, at)) {
            Bend(e.SideOf(at) != 0 || f.SideOf(at) != 0);
            CutBoth(left, right, at);
            return;
        }
        const bool cutsLeft = CutLater(left, at), cutsRight = CutLater(right, at);
        if (cutsLeft || cutsRight) {
            return;
        }
    }
    bool cuts = false;
    for (const GridPoint& end : {e.lo, e.hi}) {
        cuts |= InCell(lf, end) && CutLater(right, end);
    }
    for (const GridPoint& end : {f.lo, f.hi}) {
        cuts |= InCell(le, end) && CutLater(left, end);
    }
    GridPoint at{};
    if (!cuts && CrossingPoint(e, f, at)) {
        Bend(true);
        CutBoth(left, right, at);
    }
}

/// Notes a point at which the next sweep shall find an edge cut, be it behind this sweep or ahead.
bool Scanner::CutLater(uint32_t edge, const GridPoint& at) {
    const GridEdge& e = m_edges[edge];
    if (!InBox(e, at) || e.lo == at || e.hi == at) {
        return false;
    }
    m_later.push_back({edge, at});
    m_ordered = false;
    Bend(true);
    return true;
}

void Scanner::CutNoted() {
    for (const LaterCut& cut : m_later) {
        uint32_t edge = cut.edge;
        while (edge != kNone &&
               (!InBox(m_edges[edge], cut.at) || m_edges[edge].lo == cut.at || m_edges[edge].hi == cut.at)) {
            edge = m_edges[edge].continuation;
        }
        if (edge != kNone) {
            static_cast<void>(Cut(edge, cut.at));
        }
    }
    m_later.clear();
}

void Scanner::CutBoth(uint32_t left, uint32_t right, GridPoint at) {
    const uint32_t edges[2] = {left, right};
    uint32_t starts[2] = {kNone, kNone};
    for (int i = 0; i < 2; ++i) {
        const GridPoint end = m_edges[edges[i]].hi;
        if (end == at) {
            continue;
        }
        const uint32_t piece = Cut(edges[i], at);
        if (Before(end, at)) {
            m_ordered = false;
            m_queue.Add(end, kNone, kNone, piece, kNone);
            m_queue.Add(at, piece, kNone, kNone, kNone);
        } else {
            starts[i] = piece;
        }
    }
    m_queue.Add(at, left, right, starts[0], starts[1]);
}

/// A point can cut both edges if it lies ahead of the sweep and in the boxes of both.
bool Scanner::Usable(const GridEdge& e, const GridEdge& f, const GridPoint& at) const noexcept {
    return Before(m_point, at) && InBox(e, at) && InBox(f, at);
}

/// The grid point nearest to the crossing of two edges, or the next row's where the nearest lies behind.
bool Scanner::CrossingPoint(const GridEdge& e, const GridEdge& f, GridPoint& at) const noexcept {
    const auto crossing = LineCrossing::Of(e.lo, e.hi, f.lo, f.hi);
    if (!crossing) {
        return false;
    }
    at = crossing->Nearest();
    if (!Before(m_point, at)) {
        at.y = crossing->CeilingY();
    }
    if (!Before(m_point, at)) {
        at.x = crossing->CeilingX();
    }
    return Usable(e, f, at);
}

} // namespace Graphics
