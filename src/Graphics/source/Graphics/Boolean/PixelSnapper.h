// SPDX-License-Identifier: MIT
// Makes edges between grid points meet only at common grid points, in a fixed number of sweeps.
//
// 1. A pixel is the square of side 1 around a grid point, including its left and lower borders. It is hot if an edge
//    ends in it or two edges cross in it.
// 2. Each edge becomes the chain of the centres of the hot pixels that it passes through, in their order along it.
// 3. Such chains do not cross: they share only centres and whole links (Guibas and Marimont 1998, Rounding Arrangements
//    Dynamically). Proof: let all hot pixels shrink to their centres at once, first along x and then along y. Pieces of
//    edges inside them shrink too, and the pieces between follow with their ends. A piece never enters a hot pixel that
//    it was not in, because it moves no faster than the pixels' borders. So no edge passes over a point that is an end
//    or a crossing, and the order does not change.
// 4. A chain stays within half a unit of its edge along x and y, and has the windings of its edge.
// 5. One sweep finds all crossings (LineSweep), hence all hot pixels. An edge that rises more than it runs cannot pass
//    through a pixel without touching its lower or upper side; a second sweep over these edges alone finds the edges
//    that touch these sides of each hot pixel. A third sweep does so for the others with x and y exchanged. So there
//    are three sweeps for any input.
//
// Time: O((n + k) log n), where k counts the crossings and the passages of edges through hot pixels.
#pragma once

#include "LineSweep.h"

namespace Graphics {

class PixelSnapper {
public:
    explicit PixelSnapper(HeapArray<GridEdge>& edges) noexcept : m_edges(edges) {}
    PixelSnapper(const PixelSnapper&) = delete;
    PixelSnapper& operator=(const PixelSnapper&) = delete;

    /// Replaces `out` by the links of all chains, with the weights of their edges. Returns the number of sweeps.
    uint32_t Snap(HeapArray<GridEdge>& out);

private:
    class CrossingCollector;
    class PassageCollector;

    /// An edge passes through a hot pixel other than that of its ends.
    struct Passage {
        uint64_t order; // edge << 27 | distance along x and y from its start
        uint64_t pixel;
    };

    void FindHotPixels();
    void FindPassages(bool flat);
    void Link(HeapArray<GridEdge>& out) const;

    HeapArray<GridEdge>& m_edges;
    HeapArray<uint64_t> m_pixels; // SweepKeys of the hot pixels' centres
    HeapArray<Passage> m_passages;
};

} // namespace Graphics
