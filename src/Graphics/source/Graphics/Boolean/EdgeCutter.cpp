// SPDX-License-Identifier: MIT
#include "EdgeCutter.h"

#include <algorithm>
#include <utility>

namespace Graphics {

/// Tests the lower of the two upper ends, which must lie on its own side of the other edge.
void EdgeCutter::CutNeighbours(uint32_t left, uint32_t right) {
    if (left == kNone || right == kNone || m_edges[left].hi == m_edges[right].hi) {
        return;
    }
    const GridEdge& e = m_edges[left];
    const GridEdge& f = m_edges[right];
    const bool leftEndsFirst = Before(e.hi, f.hi);
    const int64_t end = leftEndsFirst ? SideOf(right, e.hi) : -SideOf(left, f.hi); // negative: on its own side
    if (end < 0) {
        return;
    }
    if (end == 0) {
        CutBoth(left, right, leftEndsFirst ? e.hi : f.hi);
        return;
    }
    // They change sides ahead, unless they are already in the wrong order; the next sweep repairs that.
    const int64_t begin = Before(e.lo, f.lo) ? -SideOf(left, f.lo) : SideOf(right, e.lo);
    if (begin < 0) {
        CutCrossing(left, right);
    } else {
        m_state.Disorder();
    }
}

/// Claim: turning the edge around its start is harmless if no passed point lies in the triangle between the edge's old
/// and new position. Check: the triangle's three corners are as near to the line as the edge's ends, so every point in
/// it is as near and in the edge's box; the sweep has recorded whether it has passed such points.
void EdgeCutter::Bend(GridEdge& e, const GridPoint& at) noexcept {
    if (e.SideOf(at) != 0) {
        m_state.hot = true;
        e.stray = std::max(e.stray, m_edges.Distance(e, at));
        m_state.unfinished |= e.near || e.stray == Stray::Far || (e.stray == Stray::Little && e.close);
    }
}

/// Cuts two edges that change sides ahead in the cell in which their lines cross. If that cell is behind the sweep,
/// bends have made them cross; they are then cut where they do cross now. The sweep must continue with the edges
/// exchanged, since a pair in the wrong order would hide the crossings of all edges that meet it.
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
            m_state.unfinished = true; // a horizontal piece: whether the order is right shows in the borders
            ++m_state.exceptions;
            m_queue.Add(end, kNone, kNone, piece, kNone);
            m_queue.Add(at, m_edges[piece].token, kNone, kNone, kNone);
        } else {
            starts[i] = piece;
        }
    }
    m_queue.Add(at, m_edges[left].token, m_edges[right].token, starts[0], starts[1]);
}

/// Whether a point can cut both edges: it lies ahead of the sweep and in the boxes of both.
bool EdgeCutter::Usable(const GridEdge& e, const GridEdge& f, const GridPoint& at) const noexcept {
    return Before(m_state.point, at) && e.InBox(at) && f.InBox(at);
}

/// The grid point nearest to the crossing of two edges, or the one in the next row if the nearest is behind the sweep.
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
