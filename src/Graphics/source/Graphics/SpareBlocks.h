// SPDX-License-Identifier: MIT
// Recently freed working memory, kept for reuse.
//
// Arrays of edges, events and rows grow to some hundred KB within a call and are freed at its end. A heap returns such
// memory to the system if it lies at the heap's end, and faults it in again in the next call: up to a third of the time
// of a combination. So the process keeps the last blocks freed.
//
// Sizes are rounded to classes, eight per octave, so that arrays of similar length reuse each other's blocks.
#pragma once

#include <cstddef>

namespace Graphics {

class SpareBlocks {
public:
    /// Smaller blocks cost a heap little; larger ones are pixels, or take much longer to fill than to page in.
    static constexpr size_t kLeastBytes = size_t{1} << 16;
    static constexpr size_t kMostBytes = size_t{1} << 22;
    /// Total size of the waiting blocks.
    static constexpr size_t kKeptBytes = size_t{1} << 23;

    /// The size of the class, to request from a heap.
    [[nodiscard]] static size_t Rounded(size_t bytes) noexcept {
        if (bytes < kLeastBytes || bytes > kMostBytes) {
            return bytes;
        }
        size_t step = kLeastBytes / 8;
        while (step * 16 <= bytes) {
            step *= 2;
        }
        return (bytes + step - 1) / step * step;
    }

    /// A waiting block of `bytes`, rounded; null if there is none.
    [[nodiscard]] static void* Take(size_t bytes) noexcept;
    /// Keeps a block of `bytes`, rounded; calls free(block, bytes) for the oldest blocks that no longer fit.
    static void Keep(void* block, size_t bytes, void (*free)(void*, size_t) noexcept) noexcept;

    static void Drop() noexcept;
    /// Total bytes of the waiting blocks.
    [[nodiscard]] static size_t Waiting() noexcept;

    [[nodiscard]] static bool Keeps(size_t bytes) noexcept { return bytes >= kLeastBytes && bytes <= kMostBytes; }
};

} // namespace Graphics
