// SPDX-License-Identifier: MIT
// An edge of the plane's subdivision while a sweep works on it: 64 bytes, one cache line.
//
//   hi   o              Sweeping goes from lo to hi, by rows and inside a row from left to right, so `left` of an edge
//         \             means smaller x. A level edge runs from left to right and has the area of smaller y at its
//         right
//   left   \   right    ... of larger y at its left.
//           \           Crossing the edge from left to right adds `a` and `b` to the winding numbers of the operands.
//   lo       o
#pragma once

#include <algorithm>

#include "GridPoint.h"

namespace Graphics {

struct GridEdge {
    static constexpr uint32_t kNone = 0xFFFFFFFFU;

    enum class Border : uint8_t { None, InsideLeft, InsideRight };
    /// How far the edge's ends lie from the line: in cells that it passes; within a few units; or farther.
    enum class Stray : uint8_t { None, Little, Far };

    GridPoint lo{}, hi{};
    int32_t a = 0, b = 0;
    uint32_t line = kNone;        // the input edge that this one is a piece of
    int32_t leftA = 0, leftB = 0; // winding numbers at the left
    uint32_t block = kNone;       // where the status keeps it
    uint32_t next = kNone;        // the border's next edge, as seen with the inside at the same hand throughout
    uint32_t token = kNone;       // by which the sweep's events know the piece that ends at a point
    uint32_t junction = kNone;    // number of the point where this border edge begins, if several borders meet there
    Border border = Border::None;
    Stray stray = Stray::None;
    bool near = false;  // this sweep has passed a point that the line comes as near to as a cell, beside the edge
    bool close = false; // or a few units

    [[nodiscard]] bool Weightless() const noexcept { return a == 0 && b == 0; }
    [[nodiscard]] int64_t SideOf(const GridPoint& p) const noexcept { return Side(lo, hi, p); }
    [[nodiscard]] bool InBox(const GridPoint& p) const noexcept {
        return p.y >= lo.y && p.y <= hi.y && p.x >= std::min(lo.x, hi.x) && p.x <= std::max(lo.x, hi.x);
    }
    [[nodiscard]] bool Borders() const noexcept { return border != Border::None; }
    /// What the edge weighs as a border: 1 with the inside at its left, -1 at its right.
    [[nodiscard]] int32_t BorderWeight() const noexcept {
        return static_cast<int32_t>(border == Border::InsideLeft) - static_cast<int32_t>(border == Border::InsideRight);
    }
};

} // namespace Graphics
