// SPDX-License-Identifier: MIT
// Assembles the borders of an area that was computed cell by cell and writes them as figures: simple ones, without
// points in the middle of a straight run, outlines winding as a rectangle and holes the other way.
//
// On a seam between two cells, each cell adds the parts that its area touches. Where both add the same part, the area
// continues across the seam and the parts cancel; a part added once is a border. Edges have the inside on the same side
// as a rectangle has it.
#pragma once

#include "../Geometry/Geometry.h"
#include "AxisCut.h"

namespace Graphics {

class BorderPuzzle {
public:
    /// Adds an edge inside a cell.
    void AddEdge(const Point& from, const Point& to) { m_edges.push_back({from, to, kNone, kNone, false}); }
    /// Adds an edge along the border of a cell, parallel to an axis.
    void AddSeam(const Point& from, const Point& to);
    /// Adds a point of a vertical or horizontal seam at which edges inside a cell end. A border along the seam is cut
    /// there, because edges of both cells may touch it at the point, and inside and outside alternate around the point
    /// only if the seam's border is counted too.
    void AddTouch(const Point& at, bool upright) {
        if (upright) {
            m_upright.push_back({at.x, at.y, 0});
        } else {
            m_level.push_back({at.y, at.x, 0});
        }
    }
    /// Writes the figures. All edges together must form closed borders that do not cross.
    void Write(Geometry& out);

private:
    static constexpr uint32_t kNone = 0xFFFFFFFFU;

    struct Edge {
        Point from, to;
        uint32_t next;
        uint32_t junction; // number of the point where the edge begins, if several edges begin there
        bool written;
    };
    /// At this place the weight of a seam, for edges in the direction of growing coordinate, changes by `change`.
    struct SeamStep {
        float across, along;
        int32_t change;
    };
    struct Spoke {
        uint32_t edge;
        bool leaves;
        Point other;
    };

    void JoinSeams(PlaneAxis axis, HeapArray<SeamStep>& steps);
    void Link();
    void LinkJunction(const Point& at, const uint32_t* ins, const uint32_t* outs, size_t count);
    void Follow(uint32_t first, Geometry& out);
    void CloseLoop(size_t from, Geometry& out);

    HeapArray<Edge> m_edges;
    HeapArray<SeamStep> m_level, m_upright;
    HeapArray<Spoke> m_spokes;
    HeapArray<uint32_t> m_path, m_visited;
    HeapArray<Point> m_loop;
    uint32_t m_junctions = 0;
};

} // namespace Graphics
