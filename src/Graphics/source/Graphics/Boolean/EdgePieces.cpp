// SPDX-License-Identifier: MIT
#include "EdgePieces.h"

#include <utility>

#include "../Exception.h"

namespace Graphics {
namespace {

void Flip(GridPoint& p) noexcept { std::swap(p.x, p.y); }

/// Mixes a number's bits (Steele, Lea and Flood 2014).
[[nodiscard]] uint64_t Scrambled(uint64_t v) noexcept {
    v = (v ^ v >> 30) * 0xBF58476D1CE4E5B9U;
    v = (v ^ v >> 27) * 0x94D049BB133111EBU;
    return v ^ v >> 31;
}

} // namespace

void EdgePieces::NoteLines() {
    if (m_edges.size() >= kNone / 2) {
        GX_RAISE("Graphics::EdgePieces::NoteLines", "Not enough memory");
    }
    m_lines.reserve(m_edges.size());
    for (const GridEdge& edge : m_edges) {
        m_lines.push_back({edge.lo, edge.hi, edge.a, edge.b});
    }
}

void EdgePieces::TurnBack() noexcept {
    if (m_transposed) {
        for (Line& line : m_lines) {
            Flip(line.from);
            Flip(line.to);
        }
        m_transposed = false;
    }
}

void EdgePieces::Restore() {
    TurnBack();
    m_edges.clear();
    m_edges.reserve(m_lines.size());
    for (const Line& line : m_lines) {
        GridEdge edge;
        edge.lo = line.from;
        edge.hi = line.to;
        edge.a = line.a;
        edge.b = line.b;
        edge.line = static_cast<uint32_t>(m_edges.size());
        m_edges.push_back(edge);
    }
}

void EdgePieces::KeepBorders() noexcept {
    for (GridEdge& edge : m_edges) {
        edge.a = edge.BorderWeight();
        edge.b = 0;
    }
}

void EdgePieces::Transpose() noexcept {
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

/// Sums a hash of each border's end point and subtracts that of its start point: 0 if the borders close. A 64-bit sum
/// that is 0 by chance is practically impossible.
bool EdgePieces::BordersClose() const noexcept {
    uint64_t sum = 0;
    for (const GridEdge& edge : m_edges) {
        if (edge.Borders()) {
            const uint64_t along = Scrambled(SweepKey(edge.hi)) - Scrambled(SweepKey(edge.lo));
            sum += edge.BorderWeight() > 0 ? along : 0 - along;
        }
    }
    return sum == 0;
}

void EdgePieces::BeginSweep() {
    m_pieceOf.resize(m_edges.size());
    for (size_t i = 0; i < m_edges.size(); ++i) {
        m_edges[i].token = m_pieceOf[i] = static_cast<uint32_t>(i);
    }
}

uint32_t EdgePieces::Cut(uint32_t edge, GridPoint at) {
    if (m_edges.size() >= kNone - 1) {
        GX_RAISE("Graphics::EdgePieces::Cut", "Not enough memory");
    }
    const auto upper = static_cast<uint32_t>(m_edges.size());
    GridEdge piece = m_edges[edge];
    piece.block = piece.next = piece.junction = kNone;
    piece.border = GridEdge::Border::None;
    piece.near = piece.close = false;
    piece.lo = at;
    if (Before(piece.hi, at)) {
        std::swap(piece.lo, piece.hi);
        piece.a = -piece.a;
        piece.b = -piece.b;
    }
    if (m_edges.size() == m_edges.capacity()) {
        m_edges.reserve(4 * m_edges.size()); // large steps, since there may be many crossings
    }
    m_pieceOf.push_back(edge); // a new token with the number of the piece
    m_pieceOf[piece.token] = upper;
    m_edges.push_back(piece);
    m_edges[edge].hi = at;
    m_edges[edge].token = upper;
    m_cuts += 1;
    return upper;
}

uint32_t EdgePieces::PieceEndingAt(uint32_t token, const GridPoint& p) const noexcept {
    const uint32_t edge = m_pieceOf[token];
    return m_edges[edge].hi == p && m_edges[edge].block != kNone ? edge : kNone;
}

} // namespace Graphics
