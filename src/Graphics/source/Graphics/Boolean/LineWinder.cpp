// SPDX-License-Identifier: MIT
#include "LineWinder.h"

namespace Graphics {

void LineWinder::Wind(LineSweep& sweep) {
    m_from.resize(m_lines.size());
    sweep.Run(*this);
}

void LineWinder::Meet(const GridPoint& at, bool isEnd, uint32_t left, std::span<const uint32_t> through,
                      std::span<const uint32_t> onward) {
    if (isEnd) {
        for (const uint32_t line : through) {
            if (m_lines[line].hi == at) {
                Put(m_lines[line], m_from[line], at);
            }
        }
    }
    int32_t a = 0, b = 0;
    if (left != GridEdge::kNone) {
        const GridEdge& e = m_lines[left];
        a = e.leftA + e.a;
        b = e.leftB + e.b;
    }
    bool inside = m_test.Inside(a, b);
    for (const uint32_t line : onward) {
        GridEdge& e = m_lines[line];
        e.leftA = a;
        e.leftB = b;
        a += e.a;
        b += e.b;
        const bool insideRight = m_test.Inside(a, b);
        const GridEdge::Border border = inside == insideRight ? GridEdge::Border::None
                                        : inside              ? GridEdge::Border::InsideLeft
                                                              : GridEdge::Border::InsideRight;
        inside = insideRight;
        if (e.border != border) {
            Put(e, m_from[line], at);
            e.border = border;
            m_from[line] = at;
        }
    }
}

void LineWinder::Put(const GridEdge& e, const GridPoint& from, const GridPoint& to) {
    if (!e.Borders() || from == to) {
        return;
    }
    const bool forward = Before(from, to); // a falling line may have a horizontal piece
    GridEdge piece;
    piece.lo = forward ? from : to;
    piece.hi = forward ? to : from;
    piece.a = forward ? e.BorderWeight() : -e.BorderWeight();
    piece.line = e.line;
    m_border.push_back(piece);
}

} // namespace Graphics
