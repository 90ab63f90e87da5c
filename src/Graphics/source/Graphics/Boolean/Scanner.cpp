// SPDX-License-Identifier: MIT
#include "Scanner.h"

#include <algorithm>
#include <utility>

#include "../Exception.h"
#include "LineWinder.h"
#include "PairwiseWinder.h"
#include "PixelSnapper.h"

namespace Graphics {
namespace {

/// For edges that are a border: winding number 1 is inside.
constexpr WindingTest kBorderTest(GXCombineUnion, GXFillRuleNonZero, GXFillRuleNonZero);

} // namespace

void Scanner::Run() {
    m_edges.NoteLines();
    if (PairwiseWinder winder(m_edges.All(), m_test); winder.Worthwhile()) {
        m_fromPairs = winder.Run(m_pairBorder);
        m_pairs = winder.Pairs();
    }
    if (m_fromPairs) {
        HeapArray<GridEdge> border;
        border.resize(m_pairBorder.size());
        std::copy(m_pairBorder.begin(), m_pairBorder.end(), border.begin());
        m_edges.Exchange(std::move(border));
        m_linker.SetTest(kBorderTest);
    }
    m_exceptionsAllowed = m_edges.All().size() / kEdgesPerException;
    for (Sweep(); m_state.unfinished; Sweep()) {
        if (m_snapped) {
            GX_RAISE("Graphics::Scanner::Run", "Snapped edges cross"); // impossible by proof
        }
        if (m_state.sweeps < kMostSweeps && !Doubtful() && m_edges.BordersClose()) {
            KeepBorder();
        } else {
            SnapBorder();
        }
    }
}

/// Whether conflicts of bends are more than exceptions, or have led to a wrong order.
bool Scanner::Doubtful() const noexcept { return !m_state.ordered || m_state.exceptions > m_exceptionsAllowed; }

/// If a sweep has kept its order, the border that it found is closed, and wrong only by bends, about a unit. So the
/// next sweep needs only the border; edges inside the area, often most of them, are dropped. x and y are exchanged,
/// because edges along the sweep line end before the points that they pass closely are reached; exchanged, they lie
/// across it.
void Scanner::KeepBorder() {
    m_edges.KeepBorders();
    m_linker.SetTest(kBorderTest);
    m_edges.Transpose();
}

/// Restarts from the lines, without bends: finds the border between exact crossings, then snaps it to the grid in one
/// step.
void Scanner::SnapBorder() {
    HeapArray<GridEdge> border;
    if (!m_fromPairs) {
        m_edges.Restore();
        LineSweep sweep(m_edges.All());
        LineWinder(m_edges.All(), m_test, border).Wind(sweep);
        m_exactSweeps += 1;
    } else {
        m_edges.TurnBack();
        border = std::move(m_pairBorder);
    }
    m_exactSweeps += PixelSnapper(border).Snap(m_edges.All());
    m_linker.SetTest(kBorderTest);
    m_state.hot = false;
    m_state.exceptions = 0;
    m_snapped = true;
}

void Scanner::Sweep() {
    m_state.BeginSweep();
    m_linker.BeginSweep();
    m_status.Clear();
    m_queue.Reset(m_edges.All());
    m_edges.BeginSweep();
    while (!Doubtful() && m_queue.Next(m_state.point, m_endHints, m_starts)) {
        // Prefetches the edges of the next stops: memory latency is most of the time.
        for (const uint32_t edge : m_queue.Upcoming()) {
            if (edge != kNone) {
                __builtin_prefetch(&m_edges[edge]);
            }
        }
        m_points += 1;
        if (!PassPoint()) {
            ProcessPoint();
        }
    }
    if (!m_status.Empty() || Doubtful()) {
        m_state.Disorder();
    }
}

/// Fast path of most points: one edge ends, one starts, and nothing else is near. False if this is not such a point.
bool Scanner::PassPoint() {
    if (m_endHints.size() != 1 || m_starts.size() != 1) {
        return false;
    }
    const uint32_t end = m_edges.PieceEndingAt(m_endHints[0], m_state.point), start = m_starts[0];
    if (end == kNone || m_edges[start].Weightless()) {
        return false;
    }
    const Place place = m_status.Find(end);
    const uint32_t left = m_status.LeftOf(place), right = m_status.RightOf(m_status.StepRight(place));
    if ((left != kNone && Touches(left, 1)) || (right != kNone && Touches(right, -1))) {
        return false;
    }
    m_linker.Wind(left, start);
    if (!m_state.unfinished) {
        m_linker.LinkPair(m_state.point, end, start);
    }
    m_status.Replace(place, start);
    m_cutter.CutNeighbours(left, start);
    m_cutter.CutNeighbours(start, right);
    return true;
}

void Scanner::ProcessPoint() {
    Place place = TakeOutEnds();
    TakeOutStragglers(place);
    SortStarts();
    MergeStarts();
    const uint32_t left = m_status.LeftOf(place);
    m_linker.Wind(left, m_starts);
    if (!m_state.unfinished) {
        m_linker.Link(m_state.point, left, m_ends, m_starts);
    }
    place = m_status.Exchange(place, m_taken, m_starts);
    const uint32_t right = m_status.RightOf(place);
    if (m_starts.empty()) {
        m_cutter.CutNeighbours(left, right);
    } else {
        m_cutter.CutNeighbours(left, m_starts[0]);
        m_cutter.CutNeighbours(m_starts.back(), right);
    }
}

/// Collects the edges that end at the point, from left to right, and cuts those that pass through it. They count as
/// removed, but keep their slots in the status, `m_taken` of them right of the returned place.
Scanner::Place Scanner::TakeOutEnds() {
    m_ends.clear();
    uint32_t known = kNone;
    for (size_t i = 0; i < m_endHints.size() && known == kNone; ++i) {
        known = m_edges.PieceEndingAt(m_endHints[i], m_state.point);
    }
    Place place = known == kNone ? m_status.Search(m_state.point, m_cutter.Comparisons()) : m_status.Find(known);
    for (uint32_t e = m_status.LeftOf(place); e != kNone && Touches(e, 1); e = m_status.LeftOf(place)) {
        place = m_status.StepLeft(place);
    }
    Place behind = place;
    uint32_t border = kNone; // the last border so far
    for (uint32_t e = m_status.RightOf(behind); e != kNone && Touches(e, -1); e = m_status.RightOf(behind)) {
        if (!(m_edges[e].hi == m_state.point)) {
            m_cutter.Bend(m_edges[e], m_state.point);
            const uint32_t upper = m_edges.Cut(e, m_state.point);
            m_starts.push_back(upper);
        }
        // Bends may make edges with one start coincide. If two of them are borders, the next sweep must merge them.
        if (m_edges[e].Borders()) {
            m_state.unfinished |= border != kNone && m_edges[border].lo == m_edges[e].lo;
            border = e;
        }
        m_ends.push_back(e);
        m_edges[e].block = kNone;
        behind = m_status.StepRight(behind);
    }
    m_taken = static_cast<uint32_t>(m_ends.size());
    return place;
}

/// Whether an edge ends at the point or must be cut there. It is cut if it passes through the point and, once anything
/// is bent, if its line passes through the point's cell; otherwise bent edges might step over points again and again,
/// by ever smaller steps. If false, the edge must have the point on the side with the sign of `hand`, and records if it
/// is near.
bool Scanner::Touches(uint32_t edge, int hand) noexcept {
    GridEdge& e = m_edges[edge];
    if (e.hi == m_state.point) {
        return true;
    }
    const int64_t side = m_cutter.SideOf(edge, m_state.point);
    if (side == 0) {
        return true;
    }
    // Ends lie within kFewUnits of the line along x and y, as do the points concerned. If both do, the line's strip is
    // 4 * kFewUnits wide along x and y together, so points farther from the edge need no comparison.
    if (std::abs(side) <= 4 * EdgePieces::kFewUnits * Reach(e.lo, e.hi) && e.InBox(m_state.point)) {
        const Stray distance = m_edges.Distance(e, m_state.point);
        if (distance == Stray::None && m_state.hot) {
            return true;
        }
        e.near |= distance == Stray::None;
        e.close |= distance == Stray::Little;
    }
    if ((side > 0) != (hand > 0)) {
        m_state.Disorder();
    }
    return false;
}

/// Removes the remaining edges that end at the point: after bends they may stand elsewhere in the order.
void Scanner::TakeOutStragglers(Place& place) {
    if (!m_state.hot) {
        return;
    }
    const auto stands = [&](uint32_t hint) { return m_edges.PieceEndingAt(hint, m_state.point) != kNone; };
    if (std::none_of(m_endHints.begin(), m_endHints.end(), stands)) {
        return;
    }
    m_state.Disorder();
    place = m_status.Exchange(place, std::exchange(m_taken, 0U), {});
    const uint32_t right = m_status.RightOf(place);
    for (const uint32_t hint : m_endHints) {
        const uint32_t e = m_edges.PieceEndingAt(hint, m_state.point);
        if (e != kNone) {
            static_cast<void>(m_status.Erase(m_status.Find(e)));
        }
    }
    place = right != kNone && m_edges[right].block != kNone ? m_status.Find(right)
                                                            : m_status.Search(m_state.point, m_cutter.Comparisons());
}

/// Sorts from left to right; in the same direction from short to long.
void Scanner::SortStarts() {
    if (m_starts.size() < 2) {
        return;
    }
    const auto before = [&](uint32_t i, uint32_t k) {
        const GridEdge &e = m_edges[i], &f = m_edges[k];
        const int64_t turn = Cross(m_state.point, e.hi, f.hi);
        return turn != 0 ? turn < 0 : e.hi == f.hi ? i < k : Before(e.hi, f.hi);
    };
    if (m_starts.size() > 2) {
        std::sort(m_starts.begin(), m_starts.end(), before);
    } else if (before(m_starts[1], m_starts[0])) {
        std::swap(m_starts[0], m_starts[1]);
    }
}

/// Edges h1, h2 ... of one direction become consecutive pieces:
///
///   o-----h1            o-----h1                        weight of all
///   o-----------h2  ->        h1----h2                  weight of all but the first
///   o---------------h3              h2--h3              weight of the last
void Scanner::MergeStarts() {
    size_t kept = 0;
    for (size_t i = 0, end = 0; i < m_starts.size(); i = end) {
        end = i + 1;
        while (end < m_starts.size() && Cross(m_state.point, m_edges[m_starts[i]].hi, m_edges[m_starts[end]].hi) == 0) {
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
                m_queue.Add(longer.lo, shorter.token, kNone, m_starts[k], kNone);
            }
        }
        if (!m_edges[m_starts[i]].Weightless()) {
            m_starts[kept++] = m_starts[i];
        }
    }
    m_starts.resize(kept);
}

} // namespace Graphics
