// SPDX-License-Identifier: MIT
#include "EdgeCutter.h"

#include <algorithm>
#include <utility>

namespace Graphics {

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
/// have made them cross, and they are cut where they do: the sweep has to go on with the edges exchanged, as one wrong
/// pair would hide the crossings of all that meet it.
void EdgeCutter::CutCrossing(uint32_t left, uint32_t right) {
    GridEdge& e = m_edges[left];
    GridEdge& f = m_edges[right];
    const EdgePieces::Line &le = m_edges.LineOf(e), &lf = m_edges.LineOf(f);
    const auto crossing = LineCrossing::Of(le.from, le.to, lf.from, lf.to);
    GridPoint at = crossing ? crossing->Nearest() : m_state.point;
    if (!Usable(e, f, at)) {
        ++m_state.exceptions;
        if (!CrossingPoint(e, f, at)) {
            m_state.Disorder();
            return;
        }
    }
    Bend(e, at);
    Bend(f, at);
    CutBoth(left, right, at);
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
            m_state.unfinished = true; // a level piece: the borders will tell whether they stand in order
            ++m_state.exceptions;
            m_queue.Add(end, kNone, kNone, piece, kNone);
            m_queue.Add(at, m_edges[piece].token, kNone, kNone, kNone);
        } else {
            starts[i] = piece;
        }
    }
    m_queue.Add(at, m_edges[left].token, m_edges[right].token, starts[0], starts[1]);
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
