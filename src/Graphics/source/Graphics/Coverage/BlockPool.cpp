// SPDX-License-Identifier: MIT
#include "BlockPool.h"

#include <algorithm>
#include <utility>

#include "SpareBlock.h"

namespace Graphics {

BlockPool::Block BlockPool::Take(size_t bytes) {
    Block block;
    if (bytes > m_keepBytes) {
        // A large block is resized to this size, so there are never more of them than were in use at one time. The
        // nearest size has the most pages that need not be allocated or freed.
        const auto distance = [bytes](const Block& large) {
            const size_t capacity = large.capacity();
            return capacity == 0 ? SIZE_MAX : capacity < bytes ? bytes - capacity : capacity - bytes;
        };
        const auto nearer = [&](const Block& a, const Block& b) { return distance(a) < distance(b); };
        const auto nearest = std::min_element(m_large.begin(), m_large.end(), nearer);
        block = nearest->capacity() != 0 ? std::move(*nearest) : SpareBlock::Take();
        block.Remake(bytes);
        return block;
    }
    size_t best = m_count;
    for (size_t i = 0; i < m_count; ++i) {
        const size_t capacity = m_small[i].capacity();
        if (capacity >= bytes && MayWaste(capacity - bytes) &&
            (best == m_count || capacity < m_small[best].capacity())) {
            best = i;
        }
    }
    if (best != m_count) {
        block = std::move(m_small[best]);
        m_waiting -= block.capacity();
        --m_count;
        if (best != m_count) {
            m_small[best] = std::move(m_small[m_count]);
        }
    } else {
        DropLarge(); // many small blocks may follow
    }
    block.Remake(bytes);
    m_wasted += block.capacity() - bytes;
    return block;
}

void BlockPool::Give(Block block) noexcept {
    const size_t capacity = block.capacity();
    if (capacity > m_keepBytes) {
        for (Block& large : m_large) {
            if (large.capacity() == 0) {
                large = std::move(block);
                return;
            }
        }
        return;
    }
    m_wasted -= capacity - block.size();
    if (m_count < kPlaces && m_waiting + capacity <= m_keepBytes) {
        m_waiting += capacity;
        m_small[m_count++] = std::move(block);
    }
}

void BlockPool::Trim() noexcept {
    const auto smaller = [](const Block& a, const Block& b) { return a.capacity() < b.capacity(); };
    if (Block& largest = *std::max_element(m_large.begin(), m_large.end(), smaller); largest.capacity() != 0) {
        SpareBlock::Give(std::move(largest));
    }
    DropLarge();
}

void BlockPool::DropLarge() noexcept {
    for (Block& large : m_large) {
        large.Release();
    }
}

} // namespace Graphics
