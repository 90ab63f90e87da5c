// SPDX-License-Identifier: MIT
// An edge of the plane subdivision during a sweep: 64 bytes, one cache line.
//
//   hi   o              The sweep goes from lo to hi, by rows and inside a row from left to right, so `left` of an edge
//         \             means smaller x. A horizontal edge runs from left to right, with smaller y at its right and
//   left   \   right    larger y at its left.
//           \           Crossing the edge from left to right adds `a` and `b` to the winding numbers of the operands.
//   lo       o
#pragma once

#include <algorithm>

#include "GridPoint.h"

namespace Graphics {

struct GridEdge {
    static constexpr uint32_t kNone = 0xFFFFFFFFU;

    enum class Border : uint8_t { None, InsideLeft, InsideRight };
    /// How far the edge's ends lie from its line: in cells that the line crosses; within a few units; or farther.
    enum class Stray : uint8_t { None, Little, Far };

    GridPoint lo{}, hi{};
    int32_t a = 0, b = 0;
    uint32_t line = kNone;        // the input edge of which this is a piece
    int32_t leftA = 0, leftB = 0; // winding numbers at the left
    uint32_t block = kNone;       // the status block that contains it
    uint32_t next = kNone;        // the border's next edge; the inside stays on the same side along the border
    uint32_t token = kNone;       // by which the sweep's events find the piece that ends at a point
    uint32_t junction = kNone;    // number of the point where this border edge begins, if several borders meet there
    Border border = Border::None;
    Stray stray = Stray::None;
    bool near = false;  // this sweep has passed a point beside the edge through whose cell the line passes
    bool close = false; // or a point within a few units of the line

    [[nodiscard]] bool Weightless() const noexcept { return a == 0 && b == 0; }
    [[nodiscard]] int64_t SideOf(const GridPoint& p) const noexcept { return Side(lo, hi, p); }
    [[nodiscard]] bool InBox(const GridPoint& p) const noexcept {
        return p.y >= lo.y && p.y <= hi.y && p.x >= std::min(lo.x, hi.x) && p.x <= std::max(lo.x, hi.x);
    }
    [[nodiscard]] bool Borders() const noexcept { return border != Border::None; }
    /// The weight as a border: 1 with the inside at its left, -1 at its right.
    [[nodiscard]] int32_t BorderWeight() const noexcept {
        return static_cast<int32_t>(border == Border::InsideLeft) - static_cast<int32_t>(border == Border::InsideRight);
    }
};

} // namespace Graphics
