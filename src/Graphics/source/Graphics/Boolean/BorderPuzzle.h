// SPDX-License-Identifier: MIT
// Puts the borders of an area together that was computed cell by cell, and writes them as figures: simple ones, without
// points in the middle of a straight run, outlines the way a rectangle runs and holes the other way.
//
// Where two cells meet, each side tells where its area reaches the seam. What both tell cancels out, the area goes on;
// what one alone tells is border. Edges have the inside at the hand at which a rectangle has it.
#pragma once

#include "../Geometry/Geometry.h"
#include "AxisCut.h"

namespace Graphics {

class BorderPuzzle {
public:
    /// An edge inside of a cell.
    void AddEdge(const Point& from, const Point& to) { m_edges.push_back({from, to, kNone, kNone, false}); }
    /// An edge along the border of a cell, parallel to an axis.
    void AddSeam(const Point& from, const Point& to);
    /// That edges inside of a cell end at a point of a seam upright or level. A border along the seam is cut there:
    /// edges of both sides may touch it at one point, and only with it are in and out by turns around the point.
    void AddTouch(const Point& at, bool upright) {
        if (upright) {
            m_upright.push_back({at.x, at.y, 0});
        } else {
            m_level.push_back({at.y, at.x, 0});
        }
    }
    /// All edges together are closed borders that do not cross.
    void Write(Geometry& out);

private:
    static constexpr uint32_t kNone = 0xFFFFFFFFU;

    struct Edge {
        Point from, to;
        uint32_t next;
        uint32_t junction; // number of the point where the edge begins, if several edges do
        bool written;
    };
    /// That the weight of a seam, of edges the way its coordinate grows, changes by `change` at a place.
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
