// SPDX-License-Identifier: MIT
#include "Scanner.h"

#include <xmmintrin.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "../Exception.h"
#include "PairwiseWinder.h"

namespace Graphics {
namespace {

[[nodiscard]] bool InBox(const GridEdge& e, const GridPoint& p) noexcept {
    return p.y >= e.lo.y && p.y <= e.hi.y && p.x >= std::min(e.lo.x, e.hi.x) && p.x <= std::max(e.lo.x, e.hi.x);
}

[[nodiscard]] int64_t Reach(const GridPoint& p, const GridPoint& q) noexcept {
    return static_cast<int64_t>(std::abs(q.x - p.x)) + std::abs(q.y - p.y);
}

/// Of edges that are the border: 1 is inside.
constexpr WindingTest kBorderTest(GXCombineUnion, GXFillRuleNonZero, GXFillRuleNonZero);

void Flip(GridPoint& p) noexcept { std::swap(p.x, p.y); }

/// Spreads a number over all bits (Steele, Lea and Flood 2014).
[[nodiscard]] uint64_t Scrambled(uint64_t v) noexcept {
    v = (v ^ v >> 30) * 0xBF58476D1CE4E5B9U;
    v = (v ^ v >> 27) * 0x94D049BB133111EBU;
    return v ^ v >> 31;
}

[[nodiscard]] GridEdge::Border Opposite(GridEdge::Border border) noexcept {
    using Border = GridEdge::Border;
    return border == Border::None         ? Border::None
           : border == Border::InsideLeft ? Border::InsideRight
                                          : Border::InsideLeft;
}

} // namespace

void Scanner::Run() {
    if (m_edges.size() >= kNone / 2) {
        GX_RAISE("Graphics::Scanner::Run", "Not enough memory");
    }
    m_lines.reserve(m_edges.size());
    for (const GridEdge& edge : m_edges) {
        m_lines.push_back({edge.lo, edge.hi, edge.a, edge.b});
    }
    if (PairwiseWinder winder(m_edges, m_givenTest); winder.Worthwhile()) {
        HeapArray<GridEdge> border;
        winder.Run(border);
        m_edges = std::move(border);
        m_test = kBorderTest;
    }
    while (Sweep(), m_bent) {
        if (m_eager && Doubtful()) {
            Restart();
        } else {
            Prepare();
        }
    }
}

/// Whether the eager way is not worth going on with: bends in each other's way are more than exceptions, or don't end.
bool Scanner::Doubtful() const noexcept {
    return m_counts.sweeps == 1 ? !m_ordered || m_exceptions > m_edges.size() / kEdgesPerException || !BordersClose()
                                : m_counts.sweeps >= kEagerSweeps;
}

/// Begins anew with the input, and lets each sweep leave to the next what it can't cut where the lines cross.
void Scanner::Restart() {
    m_eager = m_hot = false;
    m_test = m_givenTest;
    m_edges.clear();
    for (size_t i = 0; i < m_lines.size(); ++i) {
        Line& line = m_lines[i];
        if (m_transposed) {
            Flip(line.from);
            Flip(line.to);
        }
        GridEdge edge;
        edge.lo = line.from;
        edge.hi = line.to;
        edge.a = line.a;
        edge.b = line.b;
        edge.line = static_cast<uint32_t>(i);
        m_edges.push_back(edge);
    }
    m_transposed = false;
}

/// Whether as many borders begin as end at every point: then the sum over both of a scrambled number of the point, less
/// for ends, is 0. A sum of 64 bits that is 0 by chance does not happen.
bool Scanner::BordersClose() const noexcept {
    uint64_t sum = 0;
    for (const GridEdge& edge : m_edges) {
        if (edge.border != GridEdge::Border::None) {
            const uint64_t along = Scrambled(SweepKey(edge.hi)) - Scrambled(SweepKey(edge.lo));
            sum += edge.border == GridEdge::Border::InsideLeft ? along : 0 - along;
        }
    }
    return sum == 0;
}

/// Once a sweep has kept its order, what it takes for the border is closed and wrong by bends at most, that is, about a
/// unit: the next sweep needs the border alone. Edges inside of the area, often the bulk, are dropped.
void Scanner::KeepBorders() noexcept {
    for (GridEdge& edge : m_edges) {
        edge.a = edge.border == GridEdge::Border::None ? 0 : edge.border == GridEdge::Border::InsideLeft ? 1 : -1;
        edge.b = 0;
    }
    m_test = kBorderTest;
}

/// Leaves out what has no weight, forgets what the sweep before found out and exchanges x and y: edges along the sweep
/// line, which end before the points are seen that they pass closely, lie across it the next time.
void Scanner::Prepare() {
    if (m_ordered && BordersClose()) {
        KeepBorders();
    }
    for (Line& line : m_lines) {
        Flip(line.from);
        Flip(line.to);
    }
    m_transposed = !m_transposed;
    size_t count = 0;
    for (const GridEdge& old : m_edges) {
        if (!old.Weightless() && !(old.lo == old.hi)) {
            GridEdge edge;
            edge.lo = old.lo;
            edge.hi = old.hi;
            edge.a = old.a;
            edge.b = old.b;
            edge.line = old.line;
            edge.stray = old.stray;
            Flip(edge.lo);
            Flip(edge.hi);
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
    m_lastPiece.resize(m_edges.size());
    for (size_t i = 0; i < m_edges.size(); ++i) {
        m_edges[i].root = m_lastPiece[i] = static_cast<uint32_t>(i);
    }
    while (m_queue.Next(m_point, m_endHints, m_starts)) {
        // Memory's time is most of the time: what starts next was written long ago.
        for (const uint32_t edge : m_queue.Upcoming()) {
            if (edge != kNone) {
                _mm_prefetch(reinterpret_cast<const char*>(&m_edges[edge]), _MM_HINT_T0);
            }
        }
        m_counts.points += 1;
        ProcessPoint();
    }
    if (!m_status.Empty()) {
        Disorder();
    }
    CutNoted();
}

/// The most frequent point by far: one edge ends, one starts, nothing else is near. False if that is not so.
bool Scanner::PassPoint() {
    if (m_endHints.size() != 1 || m_starts.size() != 1) {
        return false;
    }
    const uint32_t end = m_endHints[0], start = m_starts[0];
    GridEdge& e = m_edges[end];
    if (!(e.hi == m_point) || e.block == kNone || m_edges[start].Weightless()) {
        return false;
    }
    const Place place = m_status.Find(end);
    const uint32_t left = m_status.LeftOf(place), right = m_status.RightOf(m_status.StepRight(place));
    if ((left != kNone && Touches(left, 1)) || (right != kNone && Touches(right, -1))) {
        return false;
    }
    WindStarts(left);
    if (!m_bent) {
        if (e.border != GridEdge::Border::None && m_edges[start].border != GridEdge::Border::None) {
            JoinBorders(end, start);
        }
    } else if (!m_eager) {
        m_ends.clear();
        m_ends.push_back(end);
        m_ordered = m_ordered && BordersContinue();
    }
    m_status.Replace(place, start);
    CutNeighbours(left, start);
    CutNeighbours(start, right);
    return true;
}

void Scanner::ProcessPoint() {
    if (PassPoint()) {
        return;
    }
    Place place = TakeOutEnds();
    TakeOutStragglers(place);
    SortStarts();
    MergeStarts();
    const uint32_t left = m_status.LeftOf(place);
    WindStarts(left);
    if (!m_bent) {
        LinkBorders(left);
    } else if (!m_eager) {
        m_ordered = m_ordered && BordersContinue();
    }
    place = m_status.Exchange(place, m_taken, m_starts);
    const uint32_t right = m_status.RightOf(place);
    if (m_starts.empty()) {
        CutNeighbours(left, right);
    } else {
        CutNeighbours(left, m_starts[0]);
        CutNeighbours(m_starts.back(), right);
    }
}

/// How far a line passes from p, along x and y: through its cell, the square of side 1 around it, borders included, or
/// within a few units.
Scanner::Stray Scanner::DistanceOf(const Line& line, const GridPoint& p) noexcept {
    const int64_t side = std::abs(Side(line.from, line.to, p)), unit = Reach(line.from, line.to);
    return 2 * side <= unit ? Stray::None : side <= kFewUnits * unit ? Stray::Little : Stray::Far;
}

/// The piece of a cut edge that ends at p, if the status holds it.
uint32_t Scanner::PieceEndingAt(uint32_t edge, const GridPoint& p) const noexcept {
    // Mostly it is the edge itself or its last piece; else the pieces are looked through one by one.
    if (!(m_edges[edge].hi == p)) {
        const uint32_t last = m_lastPiece[m_edges[edge].root];
        edge = last != kNone && m_edges[last].hi == p ? last : m_edges[edge].continuation;
    }
    while (edge != kNone && !(m_edges[edge].hi == p)) {
        edge = m_edges[edge].continuation;
    }
    return edge != kNone && m_edges[edge].block != kNone ? edge : kNone;
}

/// Collects the edges that end at the point, from left to right, and cuts those that pass through it. They keep their
/// slots in the status, `m_taken` of them right of the place that is given, but count as taken out.
Scanner::Place Scanner::TakeOutEnds() {
    m_ends.clear();
    uint32_t known = kNone;
    for (size_t i = 0; i < m_endHints.size() && known == kNone; ++i) {
        known = PieceEndingAt(m_endHints[i], m_point);
    }
    Place place = known == kNone ? m_status.Search(m_point, m_counts.comparisons) : m_status.Find(known);
    for (uint32_t e = m_status.LeftOf(place); e != kNone && Touches(e, 1); e = m_status.LeftOf(place)) {
        place = m_status.StepLeft(place);
    }
    Place behind = place;
    uint32_t border = kNone; // the last one
    for (uint32_t e = m_status.RightOf(behind); e != kNone && Touches(e, -1); e = m_status.RightOf(behind)) {
        if (!(m_edges[e].hi == m_point)) {
            Bend(m_edges[e], m_point);
            const uint32_t upper = Cut(e, m_point);
            m_starts.push_back(upper);
        }
        // Bends may make edges of one start coincide. If two of them are borders, the next sweep has to make them one.
        if (m_edges[e].border != GridEdge::Border::None) {
            m_bent = m_bent || (border != kNone && m_edges[border].lo == m_edges[e].lo);
            border = e;
        }
        m_ends.push_back(e);
        m_edges[e].block = kNone;
        behind = m_status.StepRight(behind);
    }
    m_taken = static_cast<uint32_t>(m_ends.size());
    return place;
}

/// Whether an edge ends at the point or is to be cut there: if it passes through it, and, once anything is bent, if it
/// passes through its cell. Else bent edges might step over points again and again, by ever smaller steps. `hand` is
/// the sign of the side on which the edge is to have the point.
bool Scanner::Touches(uint32_t edge, int hand) noexcept {
    GridEdge& e = m_edges[edge];
    if (e.hi == m_point) {
        return true;
    }
    const int64_t side = SideOf(edge, m_point);
    if (side == 0) {
        return true;
    }
    // Bent edges stay near their lines: what is far from the edge need not be compared with the line.
    if (std::abs(side) <= 4 * kFewUnits * Reach(e.lo, e.hi) && InBox(e, m_point)) {
        const Stray distance = DistanceOf(m_lines[e.line], m_point);
        if (distance == Stray::None && m_hot) {
            return true;
        }
        e.near = e.near || distance == Stray::None;
        e.close = e.close || distance == Stray::Little;
    }
    if ((side > 0) != (hand > 0)) {
        Disorder();
    }
    return false;
}

/// Takes note that an edge will end at a point ahead.
void Scanner::Bend(GridEdge& e, const GridPoint& at) noexcept {
    if (e.SideOf(at) != 0) {
        m_hot = true;
        e.stray = std::max(e.stray, DistanceOf(m_lines[e.line], at));
        m_bent = m_bent || e.near || e.stray == Stray::Far || (e.stray == Stray::Little && e.close);
    }
}

/// While bends are unresolved, edges that end at the point may stand elsewhere in the order.
void Scanner::TakeOutStragglers(Place& place) {
    if (!m_hot) {
        return;
    }
    const auto stands = [&](uint32_t hint) { return PieceEndingAt(hint, m_point) != kNone; };
    if (std::none_of(m_endHints.begin(), m_endHints.end(), stands)) {
        return;
    }
    Disorder();
    m_around.clear();
    place = m_status.Exchange(place, std::exchange(m_taken, 0U), m_around);
    const uint32_t right = m_status.RightOf(place);
    for (const uint32_t hint : m_endHints) {
        const uint32_t e = PieceEndingAt(hint, m_point);
        if (e != kNone) {
            static_cast<void>(m_status.Erase(m_status.Find(e)));
        }
    }
    place = right != kNone && m_edges[right].block != kNone ? m_status.Find(right)
                                                            : m_status.Search(m_point, m_counts.comparisons);
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
    piece.near = piece.close = false;
    piece.lo = at;
    uint32_t& last = m_lastPiece[piece.root];
    last = last == edge ? upper : last;
    if (Before(piece.hi, at)) {
        std::swap(piece.lo, piece.hi);
        piece.a = -piece.a;
        piece.b = -piece.b;
        last = kNone; // two pieces end at one point
    }
    if (m_edges.size() == m_edges.capacity()) {
        m_edges.reserve(4 * m_edges.size()); // crossings may be many: few moves
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
        Disorder();
    }
}

/// Cuts two edges that change sides ahead: at the cell in which their lines cross; or, where bends alone make them
/// cross, at an end of the one whose cell the other's line passes, so that both go through it; or else where they
/// cross.
void Scanner::CutCrossing(uint32_t left, uint32_t right) {
    GridEdge& e = m_edges[left];
    GridEdge& f = m_edges[right];
    const Line &le = m_lines[e.line], &lf = m_lines[f.line];
    const auto crossing = LineCrossing::Of(le.from, le.to, lf.from, lf.to);
    GridPoint at = crossing ? crossing->Nearest() : m_point;
    // The first sweep, whatever the next is to do, goes on with the edges exchanged: one wrong pair would hide the
    // crossings of all that meet it. Later ones leave the cut to the next, as cuts at ever new points need not end.
    bool usable = Usable(e, f, at);
    if (!usable && EagerSweep()) {
        ++m_exceptions;
        usable = CrossingPoint(e, f, at);
    }
    if (!usable) {
        const bool noted = crossing && NoteBoth(left, right, crossing->Nearest());
        if (noted || NoteEnds(left, right) || !CrossingPoint(e, f, at)) {
            Disorder();
            return;
        }
        m_bent = m_hot = true;
    }
    Bend(e, at);
    Bend(f, at);
    CutBoth(left, right, at);
}

bool Scanner::NoteBoth(uint32_t left, uint32_t right, const GridPoint& at) {
    const bool cutsLeft = CutLater(left, at), cutsRight = CutLater(right, at);
    return cutsLeft || cutsRight;
}

/// Has each of two edges cut at the other's ends, as far as its line passes their cells.
bool Scanner::NoteEnds(uint32_t left, uint32_t right) {
    bool noted = false;
    for (const auto& [edge, other] : {std::pair(left, right), std::pair(right, left)}) {
        for (const GridPoint& end : {m_edges[edge].lo, m_edges[edge].hi}) {
            noted |= DistanceOf(m_lines[m_edges[other].line], end) == Stray::None && CutLater(other, end);
        }
    }
    return noted;
}

/// Notes a point at which the next sweep shall find an edge cut, be it behind this sweep or ahead.
bool Scanner::CutLater(uint32_t edge, const GridPoint& at) {
    GridEdge& e = m_edges[edge];
    if (!InBox(e, at) || e.lo == at || e.hi == at) {
        return false;
    }
    m_later.push_back({edge, at});
    ++m_exceptions;
    Bend(e, at);
    m_bent = m_hot = true;
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
            const GridEdge::Border border = m_edges[edge].border;
            Bend(m_edges[edge], cut.at);
            const bool back = Before(m_edges[edge].hi, cut.at);
            m_edges[Cut(edge, cut.at)].border = back ? Opposite(border) : border;
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
            m_ordered = m_ordered && EagerSweep(); // a level piece: there the borders will tell
            m_bent = true;
            ++m_exceptions;
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
