// SPDX-License-Identifier: MIT
#include "ContourTracer.h"

#include <algorithm>

namespace Graphics {
namespace {

[[nodiscard]] GridPoint Begin(const GridEdge& edge) noexcept {
    return edge.border == GridEdge::Border::InsideLeft ? edge.lo : edge.hi;
}

} // namespace

void ContourTracer::Trace(Scanner& scanner) {
    HeapArray<GridEdge>& edges = scanner.Edges();
    m_transposed = scanner.Transposed();
    m_visited.resize(scanner.Junctions());
    std::fill(m_visited.begin(), m_visited.end(), kNone);
    for (size_t i = 0; i < edges.size(); ++i) {
        if (edges[i].border != GridEdge::Border::None) {
            Follow(edges, static_cast<uint32_t>(i));
        }
    }
}

/// Follows one closed border. When it returns to a junction, the part since then becomes a separate figure.
void ContourTracer::Follow(HeapArray<GridEdge>& edges, uint32_t first) {
    m_path.clear();
    uint32_t edge = first;
    do {
        const uint32_t junction = edges[edge].junction;
        if (junction != kNone) {
            if (m_visited[junction] != kNone) {
                CloseLoop(m_visited[junction], edges);
            }
            m_visited[junction] = static_cast<uint32_t>(m_path.size());
        }
        m_path.push_back(edge);
        edge = edges[edge].next;
    } while (edge != first);
    CloseLoop(0, edges);
}

/// Removes the end of the path, from an index on, and writes it as a figure.
void ContourTracer::CloseLoop(size_t from, HeapArray<GridEdge>& edges) {
    m_loop.clear();
    for (size_t i = from; i < m_path.size(); ++i) {
        GridEdge& edge = edges[m_path[i]];
        if (edge.junction != kNone) {
            m_visited[edge.junction] = kNone;
        }
        const GridPoint p = Begin(edge);
        const size_t n = m_loop.size();
        if (n >= 2 && Cross(m_loop[n - 2], m_loop[n - 1], p) == 0) {
            m_loop.pop_back();
        }
        m_loop.push_back(p);
        edge.border = GridEdge::Border::None;
    }
    m_path.resize(from);
    Write();
}

void ContourTracer::Write() {
    // Removes straight points across the first point, at both ends, since removing one may make the other straight.
    size_t begin = 0, end = m_loop.size();
    while (end - begin > 3 && Cross(m_loop[end - 2], m_loop[end - 1], m_loop[begin]) == 0) {
        --end;
    }
    while (end - begin > 3 && Cross(m_loop[end - 1], m_loop[begin], m_loop[begin + 1]) == 0) {
        ++begin;
    }
    // Exchanging x and y has reversed the loop.
    if (m_transposed) {
        std::reverse(m_loop.begin() + begin, m_loop.begin() + end);
    }
    m_out.BeginFigure(UserPoint(begin));
    for (size_t i = begin + 1; i < end; ++i) {
        m_out.LineTo(UserPoint(i));
    }
    m_out.EndFigureClose();
}

Point ContourTracer::UserPoint(size_t i) const noexcept {
    const GridPoint& p = m_loop[i];
    return m_grid.ToUser(m_transposed ? GridPoint{p.y, p.x} : p);
}

} // namespace Graphics
