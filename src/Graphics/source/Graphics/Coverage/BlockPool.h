// SPDX-License-Identifier: MIT
// Keeps the memory of closed groups and released clips for those to come: small blocks that are no more than a bound
// together, and two of any size, which is what a group as large as the page inside another one needs. All have a fixed
// number of places, so that none costs more after many were there at once.
#pragma once

#include <array>

#include "../ProcessHeap.h"

namespace Graphics {

class BlockPool {
public:
    using Block = HeapArray<uint8_t>;

    /// `keepBytes`: the largest small block, and what small ones may have together while they wait.
    explicit BlockPool(size_t keepBytes) noexcept : m_keepBytes(keepBytes) {}

    /// `bytes` long, contents undefined. On failure nothing has changed but that waiting blocks may be gone.
    [[nodiscard]] Block Take(size_t bytes);
    void Give(Block block) noexcept;
    /// Painting has ended: one of the large blocks waits for any target of the process, the others go.
    void Trim() noexcept;

private:
    static constexpr size_t kPlaces = 16;
    static constexpr size_t kLargePlaces = 2;
    void DropLarge() noexcept;
    /// Small blocks in use may together be larger than what was asked for by a quarter of what may wait.
    [[nodiscard]] bool MayWaste(size_t bytes) const noexcept { return m_wasted + bytes <= m_keepBytes / 4; }

    const size_t m_keepBytes;
    std::array<Block, kPlaces> m_small; // the first m_count are filled
    size_t m_count = 0;
    size_t m_waiting = 0;                    // bytes of these
    size_t m_wasted = 0;                     // of small blocks in use
    std::array<Block, kLargePlaces> m_large; // or none
};

} // namespace Graphics
