// SPDX-License-Identifier: MIT
#include "SweepStatus.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "../Simd/BaseVectors.h"

namespace Graphics {

void SweepStatus::Clear() {
    m_blocks.clear();
    m_directory.clear();
    m_spare.clear();
    NewBlock(0);
}

uint32_t SweepStatus::NewBlock(uint32_t order) {
    // Reserves room for every return to the spare list, so that removing edges never allocates.
    m_spare.reserve(m_blocks.size() + 1);
    uint32_t block = 0;
    if (m_spare.empty()) {
        block = static_cast<uint32_t>(m_blocks.size());
        m_blocks.resize(m_blocks.size() + 1);
        m_blocks[block].count = 0;
    } else {
        block = m_spare.back();
        m_spare.pop_back();
    }
    m_directory.push_back(block);
    std::rotate(m_directory.begin() + order, m_directory.end() - 1, m_directory.end());
    Renumber(order);
    return block;
}

void SweepStatus::Renumber(size_t from) noexcept {
    for (size_t i = from; i < m_directory.size(); ++i) {
        m_blocks[m_directory[i]].order = static_cast<uint32_t>(i);
    }
}

SweepStatus::Place SweepStatus::Find(uint32_t edge) const noexcept {
    const uint32_t block = m_edges[edge].block;
    const Block& b = m_blocks[block];
    // Compares four at a time. Slots behind the last edge cannot match first: they hold other edges, or older copies.
    using namespace GX_SIMD_NAMESPACE;
    for (uint32_t i = 0; i < kCapacity; i += 4) {
        if (const uint32_t found = MaskBits((I32)(Load(b.edges + i) == edge)); found != 0) {
            return {block, i + static_cast<uint32_t>(std::countr_zero(found))};
        }
    }
    return {block, b.count};
}

SweepStatus::Place SweepStatus::Search(const GridPoint& p, uint64_t& steps) const noexcept {
    const auto leftOfPoint = [&](uint32_t edge) {
        ++steps;
        return m_edges[edge].SideOf(p) > 0;
    };
    // The last block whose first edge lies left of p, or the first block.
    const auto* last = std::partition_point(m_directory.begin() + 1, m_directory.end(),
                                            [&](uint32_t block) { return leftOfPoint(m_blocks[block].edges[0]); });
    const uint32_t block = *(last - 1);
    const Block& b = m_blocks[block];
    return {block, static_cast<uint32_t>(std::partition_point(b.edges, b.edges + b.count, leftOfPoint) - b.edges)};
}

uint32_t SweepStatus::LeftOf(const Place& place) const noexcept {
    if (place.index != 0) {
        return m_blocks[place.block].edges[place.index - 1];
    }
    if (m_blocks[place.block].order == 0) {
        return kNone;
    }
    const Block& b = m_blocks[Neighbour(place.block, -1)];
    return b.edges[b.count - 1];
}

uint32_t SweepStatus::RightOf(const Place& place) const noexcept {
    const Block& b = m_blocks[place.block];
    if (place.index < b.count) {
        return b.edges[place.index];
    }
    return b.order + 1 == m_directory.size() ? kNone : m_blocks[Neighbour(place.block, 1)].edges[0];
}

SweepStatus::Place SweepStatus::StepLeft(const Place& place) const noexcept {
    if (place.index != 0) {
        return {place.block, place.index - 1};
    }
    const uint32_t block = Neighbour(place.block, -1);
    return {block, m_blocks[block].count - 1};
}

SweepStatus::Place SweepStatus::StepRight(const Place& place) const noexcept {
    if (place.index < m_blocks[place.block].count) {
        return {place.block, place.index + 1};
    }
    return {Neighbour(place.block, 1), 1};
}

SweepStatus::Place SweepStatus::Insert(const Place& place, uint32_t edge) {
    Place at = place;
    if (m_blocks[at.block].count == kCapacity) {
        const uint32_t upper = NewBlock(m_blocks[at.block].order + 1);
        Block& from = m_blocks[at.block];
        Block& to = m_blocks[upper];
        to.count = kCapacity / 2;
        from.count = kCapacity - to.count;
        for (uint32_t i = 0; i < to.count; ++i) {
            to.edges[i] = from.edges[from.count + i];
            m_edges[to.edges[i]].block = upper;
        }
        if (at.index > from.count) {
            at = {upper, at.index - from.count};
        }
    }
    Block& b = m_blocks[at.block];
    std::copy_backward(b.edges + at.index, b.edges + b.count, b.edges + b.count + 1);
    b.edges[at.index] = edge;
    b.count += 1;
    m_edges[edge].block = at.block;
    return {at.block, at.index + 1};
}

SweepStatus::Place SweepStatus::Erase(const Place& place) noexcept {
    Place at = place;
    if (at.index == m_blocks[at.block].count) {
        at = {Neighbour(at.block, 1), 0};
    }
    Block& b = m_blocks[at.block];
    m_edges[b.edges[at.index]].block = kNone;
    std::copy(b.edges + at.index + 1, b.edges + b.count, b.edges + at.index);
    b.count -= 1;
    if (b.count != 0 || m_directory.size() == 1) {
        return at;
    }
    const uint32_t order = b.order;
    m_spare.push_back(at.block);
    std::copy(m_directory.begin() + order + 1, m_directory.end(), m_directory.begin() + order);
    m_directory.pop_back();
    Renumber(order);
    if (order < m_directory.size()) {
        return {m_directory[order], 0};
    }
    const uint32_t last = m_directory.back();
    return {last, m_blocks[last].count};
}

SweepStatus::Place SweepStatus::Exchange(const Place& place, uint32_t count, const HeapArray<uint32_t>& edges) {
    Place at = place;
    Block& b = m_blocks[at.block];
    const auto added = static_cast<uint32_t>(edges.size());
    if (at.index + count <= b.count && b.count - count + added <= kCapacity && b.count + added > count) {
        uint32_t* slots = b.edges + at.index;
        if (added != count) {
            std::memmove(slots + added, slots + count, (b.count - count - at.index) * sizeof *slots);
            b.count = b.count - count + added;
        }
        for (const uint32_t edge : edges) {
            *slots++ = edge;
            m_edges[edge].block = at.block;
        }
        return {at.block, at.index + added};
    }
    for (uint32_t i = 0; i < count; ++i) {
        at = Erase(at);
    }
    for (const uint32_t edge : edges) {
        at = Insert(at, edge);
    }
    return at;
}

} // namespace Graphics
