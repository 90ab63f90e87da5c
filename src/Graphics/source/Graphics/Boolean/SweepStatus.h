// SPDX-License-Identifier: MIT
// The edges that the sweep line crosses, from left to right, in blocks of up to 64. An edge refers to its block, a
// block to its neighbours, and a sorted directory of blocks makes searching logarithmic. Neighbours are adjacent in
// memory, and replacing an edge by its continuation, the most frequent step by far, moves nothing.
#pragma once

#include "../ProcessHeap.h"
#include "GridEdge.h"

namespace Graphics {

class SweepStatus {
public:
    /// A place between edges: before the edge `index` of a block, or behind the block's last edge.
    struct Place {
        uint32_t block, index;
    };
    static constexpr uint32_t kNone = GridEdge::kNone;

    explicit SweepStatus(HeapArray<GridEdge>& edges) noexcept : m_edges(edges) {}

    void Clear();
    [[nodiscard]] bool Empty() const noexcept { return m_directory.size() == 1 && m_blocks[m_directory[0]].count == 0; }

    /// The place before an edge that is in the status.
    [[nodiscard]] Place Find(uint32_t edge) const noexcept;
    /// The place before the first edge that p does not lie right of. Adds the comparisons made to `steps`.
    [[nodiscard]] Place Search(const GridPoint& p, uint64_t& steps) const noexcept;
    /// The edges at both sides of a place; kNone at the ends of the status.
    [[nodiscard]] uint32_t LeftOf(const Place& place) const noexcept;
    [[nodiscard]] uint32_t RightOf(const Place& place) const noexcept;
    /// The place one edge further left or right, which must exist.
    [[nodiscard]] Place StepLeft(const Place& place) const noexcept;
    [[nodiscard]] Place StepRight(const Place& place) const noexcept;

    /// Inserts an edge and returns the place behind it.
    Place Insert(const Place& place, uint32_t edge);
    /// Removes the edge right of a place and returns the place that remains.
    Place Erase(const Place& place) noexcept;
    /// Replaces the edge right of a place.
    void Replace(const Place& place, uint32_t edge) noexcept {
        uint32_t& slot = m_blocks[place.block].edges[place.index];
        m_edges[slot].block = kNone;
        m_edges[edge].block = place.block;
        slot = edge;
    }
    /// Replaces the `count` edges right of a place, which are already marked as removed (block kNone), and returns the
    /// place behind the new ones.
    Place Exchange(const Place& place, uint32_t count, const HeapArray<uint32_t>& edges);

private:
    static constexpr uint32_t kCapacity = 64;

    struct Block {
        uint32_t count, order; // order: the block's index in the directory
        alignas(16) uint32_t edges[kCapacity];
    };

    [[nodiscard]] uint32_t Neighbour(uint32_t block, int step) const noexcept {
        return m_directory[m_blocks[block].order + static_cast<uint32_t>(step)];
    }
    uint32_t NewBlock(uint32_t order);
    void Renumber(size_t from) noexcept;

    HeapArray<GridEdge>& m_edges;
    HeapArray<Block> m_blocks;
    HeapArray<uint32_t> m_directory; // blocks from left to right; a block is empty only if it is the only one
    HeapArray<uint32_t> m_spare;
};

} // namespace Graphics
