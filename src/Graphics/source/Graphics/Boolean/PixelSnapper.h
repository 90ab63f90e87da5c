// SPDX-License-Identifier: MIT
// Makes edges between grid points meet at common grid points only, by a number of sweeps that is known beforehand.
//
// 1. A pixel is the square of side 1 around a grid point, left and lower borders included. It is hot if an edge ends in
//    it or two edges cross in it.
// 2. Each edge becomes the chain of the centres of the hot pixels that it passes through, in their order along it.
// 3. Such chains do not cross: they have nothing in common but centres and whole links (Guibas and Marimont 1998,
//    Rounding Arrangements Dynamically). Think of all hot pixels shrinking to their centres at once, first along x and
//    then along y. The pieces of edges inside of them shrink along, those between them follow with their ends. At no
//    time does such a piece come into a hot pixel that it was not in: on its way it moves no faster than the pixels'
//    borders do. So no edge ever passes over a point that is an end or a crossing, and the order stays what it was.
// 4. A chain stays within half a unit of its edge along x and y, and whatever windings the edges had, their chains
// have.
// 5. One sweep finds all crossings (LineSweep), hence all hot pixels. An edge that rises more than it runs can't pass
//    through a pixel without touching its lower or upper side: a second sweep, over these edges alone, asks at both
//    sides of every hot pixel which edges touch them. A third does so for the others with x and y exchanged. Three
//    sweeps, whatever the input.
//
// Time is (n + k) log n, where k counts the crossings and the passages of edges through hot pixels.
#pragma once

#include "LineSweep.h"

namespace Graphics {

class PixelSnapper {
public:
    explicit PixelSnapper(HeapArray<GridEdge>& edges) noexcept : m_edges(edges) {}
    PixelSnapper(const PixelSnapper&) = delete;
    PixelSnapper& operator=(const PixelSnapper&) = delete;

    /// Replaces `out` by the links of all chains, with the weights of their edges, and says how many sweeps it took.
    uint32_t Snap(HeapArray<GridEdge>& out);

private:
    class CrossingCollector;
    class PassageCollector;

    /// That an edge passes through a hot pixel, not that of an end.
    struct Passage {
        uint64_t order; // edge << 27 | way along x and y from its begin
        uint64_t pixel;
    };

    void FindHotPixels();
    void FindPassages(bool flat);
    void Link(HeapArray<GridEdge>& out) const;

    HeapArray<GridEdge>& m_edges;
    HeapArray<uint64_t> m_pixels; // SweepKeys of their centres
    HeapArray<Passage> m_passages;
};

} // namespace Graphics
