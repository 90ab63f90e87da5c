// SPDX-License-Identifier: MIT
// Keeps the memory of closed groups and released clips for reuse: small blocks up to a total size, and two blocks of
// any size, which is what a page-sized group inside another needs. The number of places is fixed, so that a burst of
// blocks does not slow down later calls.
#pragma once

#include <array>

#include "../ProcessHeap.h"

namespace Graphics {

class BlockPool {
public:
    using Block = HeapArray<uint8_t>;

    /// `keepBytes`: the size limit of a small block, and of all waiting small blocks together.
    explicit BlockPool(size_t keepBytes) noexcept : m_keepBytes(keepBytes) {}

    /// A block of `bytes` with undefined contents. A failure has no effect except that waiting blocks may have been
    /// freed.
    [[nodiscard]] Block Take(size_t bytes);
    void Give(Block block) noexcept;
    /// Call after painting: one large block stays available to all targets of the process, the others are freed.
    void Trim() noexcept;

private:
    static constexpr size_t kPlaces = 16;
    static constexpr size_t kLargePlaces = 2;
    void DropLarge() noexcept;
    /// Limits the excess of small blocks in use over the sizes requested to a quarter of keepBytes.
    [[nodiscard]] bool MayWaste(size_t bytes) const noexcept { return m_wasted + bytes <= m_keepBytes / 4; }

    const size_t m_keepBytes;
    std::array<Block, kPlaces> m_small; // the first m_count are filled
    size_t m_count = 0;
    size_t m_waiting = 0;                    // bytes of the waiting small blocks
    size_t m_wasted = 0;                     // excess bytes of small blocks in use
    std::array<Block, kLargePlaces> m_large; // unused places are empty
};

} // namespace Graphics
