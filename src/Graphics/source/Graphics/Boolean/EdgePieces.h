// SPDX-License-Identifier: MIT
// The edges of a combination: first the lines that were put in, then the pieces that sweeps make of them. Each piece
// knows its line, so that cut points are computed from lines and bends do not add up.
#pragma once

#include "../ProcessHeap.h"
#include "GridEdge.h"

namespace Graphics {

class EdgePieces {
public:
    static constexpr uint32_t kNone = GridEdge::kNone;
    static constexpr int32_t kFewUnits = 2;
    using Stray = GridEdge::Stray;

    struct Line {
        GridPoint from, to;
        int32_t a, b;
    };

    EdgePieces() noexcept = default;
    EdgePieces(const EdgePieces&) = delete;
    EdgePieces& operator=(const EdgePieces&) = delete;

    /// An edge of a closed ring of operand A or B.
    void Add(const GridPoint& from, const GridPoint& to, bool ofB) {
        // Up or down is as good as random: no branches.
        const uint64_t begin = SweepKey(from), end = SweepKey(to);
        const int32_t weight = begin < end ? 1 : -1;
        GridEdge edge;
        edge.lo = PointOf(begin < end ? begin : end);
        edge.hi = PointOf(begin < end ? end : begin);
        edge.a = ofB ? 0 : weight;
        edge.b = ofB ? weight : 0;
        edge.line = static_cast<uint32_t>(m_edges.size());
        if (begin != end) {
            m_edges.push_back(edge);
        }
    }
    /// An edge that lies upon others and stands for all of them.
    void Add(const GridPoint& from, const GridPoint& to, int32_t a, int32_t b) {
        const bool forward = Before(from, to);
        GridEdge edge;
        edge.lo = forward ? from : to;
        edge.hi = forward ? to : from;
        edge.a = forward ? a : -a;
        edge.b = forward ? b : -b;
        edge.line = static_cast<uint32_t>(m_edges.size());
        m_edges.push_back(edge);
    }
    /// Says how many edges will be added next.
    void Expect(size_t edges) { m_edges.reserve(m_edges.size() + edges); }
    /// All edges are there: they are the lines from now on.
    void NoteLines();

    [[nodiscard]] HeapArray<GridEdge>& All() noexcept { return m_edges; }
    [[nodiscard]] const HeapArray<GridEdge>& All() const noexcept { return m_edges; }
    [[nodiscard]] GridEdge& operator[](uint32_t edge) noexcept { return m_edges[edge]; }
    [[nodiscard]] const GridEdge& operator[](uint32_t edge) const noexcept { return m_edges[edge]; }
    [[nodiscard]] const Line& LineOf(const GridEdge& e) const noexcept { return m_lines[e.line]; }
    /// Whether x and y are exchanged, and with them left and right.
    [[nodiscard]] bool Transposed() const noexcept { return m_transposed; }
    [[nodiscard]] uint64_t Cuts() const noexcept { return m_cuts; }

    /// Other pieces of the lines in the place of all there are.
    void Exchange(HeapArray<GridEdge>&& edges) noexcept { m_edges = std::move(edges); }
    /// Back to the lines.
    void Restore();
    /// x and y of the lines as they were put in; the pieces are about to be replaced.
    void TurnBack() noexcept;
    /// Leaves nothing but what the last sweep found to be the border, in operand A, 1 for the area at the left.
    void KeepBorders() noexcept;
    /// Exchanges x and y, leaves out what has no weight and forgets what the last sweep has found.
    void Transpose() noexcept;
    /// Whether as many borders begin as end at every point.
    [[nodiscard]] bool BordersClose() const noexcept;

    void BeginSweep();
    /// Ends an edge at a point and gives the piece behind it. Where the point lies behind the edge's end (to the right
    /// in the end's row), the piece leads back: its ends and weight are exchanged.
    [[nodiscard]] uint32_t Cut(uint32_t edge, GridPoint at);
    /// The piece that an event's token stands for, if it ends at p and the status holds it. However often an edge is
    /// cut, the token stays with the piece that ends where the edge did, and the piece in front of it gets a new one:
    /// no event has to look for its piece.
    [[nodiscard]] uint32_t PieceEndingAt(uint32_t token, const GridPoint& p) const noexcept;
    /// How far the edge's line passes from p, along x and y: through its cell, the square of side 1 around it, borders
    /// included; within a few units; or farther.
    [[nodiscard]] Stray Distance(const GridEdge& e, const GridPoint& p) const noexcept {
        const Line& line = m_lines[e.line];
        const int64_t side = std::abs(Side(line.from, line.to, p)), unit = Reach(line.from, line.to);
        return 2 * side <= unit ? Stray::None : side <= kFewUnits * unit ? Stray::Little : Stray::Far;
    }

private:
    HeapArray<GridEdge> m_edges;
    HeapArray<Line> m_lines;
    HeapArray<uint32_t> m_pieceOf; // for each token
    uint64_t m_cuts = 0;
    bool m_transposed = false;
};

} // namespace Graphics
