// SPDX-License-Identifier: MIT
// The edges of a combination: first the input lines, then the pieces into which sweeps cut them. Each piece refers to
// its line, and cut points are computed from lines, so bends do not add up.
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

    /// Adds an edge of a closed ring of operand A or B.
    void Add(const GridPoint& from, const GridPoint& to, bool ofB) {
        // No branches: whether an edge goes up or down is not predictable.
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
    /// Adds an edge that stands for several coincident ones.
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
    /// Reserves memory for `edges` more edges.
    void Expect(size_t edges) { m_edges.reserve(m_edges.size() + edges); }
    /// Makes the edges added so far the input lines. Call after the last Add.
    void NoteLines();

    [[nodiscard]] HeapArray<GridEdge>& All() noexcept { return m_edges; }
    [[nodiscard]] const HeapArray<GridEdge>& All() const noexcept { return m_edges; }
    [[nodiscard]] GridEdge& operator[](uint32_t edge) noexcept { return m_edges[edge]; }
    [[nodiscard]] const GridEdge& operator[](uint32_t edge) const noexcept { return m_edges[edge]; }
    [[nodiscard]] const Line& LineOf(const GridEdge& e) const noexcept { return m_lines[e.line]; }
    /// Whether x and y, and therefore left and right, are exchanged.
    [[nodiscard]] bool Transposed() const noexcept { return m_transposed; }
    [[nodiscard]] uint64_t Cuts() const noexcept { return m_cuts; }

    /// Replaces all pieces by other pieces of the lines.
    void Exchange(HeapArray<GridEdge>&& edges) noexcept { m_edges = std::move(edges); }
    /// Replaces the pieces by the input lines.
    void Restore();
    /// Restores the lines' original x and y; the caller then replaces the pieces.
    void TurnBack() noexcept;
    /// Keeps only the border that the last sweep found, as operand A, weight 1 for the area at the left.
    void KeepBorders() noexcept;
    /// Exchanges x and y, drops edges without weight and clears the results of the last sweep.
    void Transpose() noexcept;
    /// Whether at every point as many borders begin as end.
    [[nodiscard]] bool BordersClose() const noexcept;

    void BeginSweep();
    /// Ends an edge at a point and returns the piece behind it. If the point lies behind the edge's end (to the right
    /// in the end's row), the piece leads back: its ends are exchanged and its weight negated.
    [[nodiscard]] uint32_t Cut(uint32_t edge, GridPoint at);
    /// The piece of an event's token, if it ends at p and is in the status. When an edge is cut, its token stays with
    /// the piece that ends where the edge did, and the piece before the cut gets a new token. So events find their
    /// piece without a search.
    [[nodiscard]] uint32_t PieceEndingAt(uint32_t token, const GridPoint& p) const noexcept;
    /// How far from p the edge's line passes, along x and y: through the cell of p, the closed square of side 1 around
    /// it; within a few units; or farther.
    [[nodiscard]] Stray Distance(const GridEdge& e, const GridPoint& p) const noexcept {
        const Line& line = m_lines[e.line];
        const int64_t side = std::abs(Side(line.from, line.to, p)), unit = Reach(line.from, line.to);
        return 2 * side <= unit ? Stray::None : side <= kFewUnits * unit ? Stray::Little : Stray::Far;
    }

private:
    HeapArray<GridEdge> m_edges;
    HeapArray<Line> m_lines;
    HeapArray<uint32_t> m_pieceOf; // piece of each token
    uint64_t m_cuts = 0;
    bool m_transposed = false;
};

} // namespace Graphics
