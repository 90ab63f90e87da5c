// SPDX-License-Identifier: MIT
#include "EdgeCutter.h"

#include <algorithm>
#include <utility>

namespace Graphics {
namespace {

[[nodiscard]] GridEdge::Border Opposite(GridEdge::Border border) noexcept {
    using Border = GridEdge::Border;
    return border == Border::None         ? Border::None
           : border == Border::InsideLeft ? Border::InsideRight
                                          : Border::InsideLeft;
}

} // namespace

/// The lower one of their upper ends tells: it must lie on its own side.
void EdgeCutter::CutNeighbours(uint32_t left, uint32_t right) {
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
        m_state.Disorder();
    }
}

/// Turning the edge around its begin does no harm if no point has been passed that lies in the triangle between the
/// edge and where it will be. All three corners are as near to the line as the edge's ends stray, so what lies between
/// them is as near, and in the edge's box: the sweep has noted whether it has passed such points.
void EdgeCutter::Bend(GridEdge& e, const GridPoint& at) noexcept {
    if (e.SideOf(at) != 0) {
        m_state.hot = true;
        e.stray = std::max(e.stray, m_edges.Distance(e, at));
        m_state.unfinished |= e.near || e.stray == Stray::Far || (e.stray == Stray::Little && e.close);
    }
}

/// Cuts two edges that change sides ahead at the cell in which their lines cross. If that is behind the sweep, bends
/// have made them cross. The first sweep cuts them where they do: it has to go on with the edges exchanged, as one
/// wrong pair would hide the crossings of all that meet it. Later ones leave the cut to the next, as cuts at ever new
/// points would take many sweeps: where the lines cross; or at an end of the one whose cell the other's line passes, so
/// that both go through it.
void EdgeCutter::CutCrossing(uint32_t left, uint32_t right) {
    GridEdge& e = m_edges[left];
    GridEdge& f = m_edges[right];
    const EdgePieces::Line &le = m_edges.LineOf(e), &lf = m_edges.LineOf(f);
    const auto crossing = LineCrossing::Of(le.from, le.to, lf.from, lf.to);
    GridPoint at = crossing ? crossing->Nearest() : m_state.point;
    bool usable = Usable(e, f, at);
    if (!usable && m_state.EagerSweep()) {
        ++m_state.exceptions;
        usable = CrossingPoint(e, f, at);
    }
    if (!usable) {
        const bool noted = crossing && NoteCrossing(left, right, crossing->Nearest());
        if (noted || NoteEnds(left, right) || !CrossingPoint(e, f, at)) {
            m_state.Disorder();
            return;
        }
        m_state.unfinished = m_state.hot = true;
    }
    Bend(e, at);
    Bend(f, at);
    CutBoth(left, right, at);
}

bool EdgeCutter::NoteCrossing(uint32_t left, uint32_t right, const GridPoint& at) {
    const bool cutsLeft = CutLater(left, at), cutsRight = CutLater(right, at);
    return cutsLeft || cutsRight;
}

bool EdgeCutter::NoteEnds(uint32_t left, uint32_t right) {
    bool noted = false;
    for (const auto& [edge, other] : {std::pair(left, right), std::pair(right, left)}) {
        for (const GridPoint& end : {m_edges[edge].lo, m_edges[edge].hi}) {
            noted |= m_edges.Distance(m_edges[other], end) == Stray::None && CutLater(other, end);
        }
    }
    return noted;
}

/// Notes a point at which the next sweep shall find an edge cut, be it behind this sweep or ahead.
bool EdgeCutter::CutLater(uint32_t edge, const GridPoint& at) {
    const GridEdge& e = m_edges[edge];
    if (!e.InBox(at) || e.lo == at || e.hi == at) {
        return false;
    }
    m_later.push_back({edge, at});
    ++m_state.exceptions;
    m_state.unfinished = m_state.hot = true;
    return true;
}

void EdgeCutter::CutNoted() {
    for (const LaterCut& cut : m_later) {
        uint32_t edge = cut.edge;
        while (edge != kNone &&
               (!m_edges[edge].InBox(cut.at) || m_edges[edge].lo == cut.at || m_edges[edge].hi == cut.at)) {
            edge = m_edges[edge].continuation;
        }
        if (edge != kNone) {
            const GridEdge::Border border = m_edges[edge].border;
            Bend(m_edges[edge], cut.at);
            const bool back = Before(m_edges[edge].hi, cut.at);
            m_edges[m_edges.Cut(edge, cut.at)].border = back ? Opposite(border) : border;
        }
    }
    m_later.clear();
}

void EdgeCutter::CutBoth(uint32_t left, uint32_t right, GridPoint at) {
    const uint32_t edges[2] = {left, right};
    uint32_t starts[2] = {kNone, kNone};
    for (int i = 0; i < 2; ++i) {
        const GridPoint end = m_edges[edges[i]].hi;
        if (end == at) {
            continue;
        }
        const uint32_t piece = m_edges.Cut(edges[i], at);
        if (Before(end, at)) {
            m_state.ordered = m_state.ordered && m_state.EagerSweep(); // a level piece: there the borders will tell
            m_state.unfinished = true;
            ++m_state.exceptions;
            m_queue.Add(end, kNone, kNone, piece, kNone);
            m_queue.Add(at, piece, kNone, kNone, kNone);
        } else {
            starts[i] = piece;
        }
    }
    m_queue.Add(at, left, right, starts[0], starts[1]);
}

/// A point can cut both edges if it lies ahead of the sweep and in the boxes of both.
bool EdgeCutter::Usable(const GridEdge& e, const GridEdge& f, const GridPoint& at) const noexcept {
    return Before(m_state.point, at) && e.InBox(at) && f.InBox(at);
}

/// The grid point nearest to the crossing of two edges, or the next row's where the nearest lies behind.
bool EdgeCutter::CrossingPoint(const GridEdge& e, const GridEdge& f, GridPoint& at) const noexcept {
    const auto crossing = LineCrossing::Of(e.lo, e.hi, f.lo, f.hi);
    if (!crossing) {
        return false;
    }
    at = crossing->Nearest();
    if (!Before(m_state.point, at)) {
        at.y = crossing->CeilingY();
    }
    if (!Before(m_state.point, at)) {
        at.x = crossing->CeilingX();
    }
    return Usable(e, f, at);
}

} // namespace Graphics
