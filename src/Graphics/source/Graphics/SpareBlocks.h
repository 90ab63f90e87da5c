// SPDX-License-Identifier: MIT
// Working memory that was given back a moment ago and is about to be asked for again.
//
// Arrays of edges, events and rows grow to some hundred KB within a call and are freed at its end. A heap gives such
// memory back to the system at once when it lies at its end, and takes it again, page by page, in the next call: up to
// a third of the time of a combination. So the last blocks that were freed wait here, for the whole process.
//
// Blocks are of classes, eight to an octave, so that arrays of about the same length find each other's.
#pragma once

#include <cstddef>

namespace Graphics {

class SpareBlocks {
public:
    /// Below, blocks cost a heap little; above, they are pixels, or what fills them costs much more than the pages.
    static constexpr size_t kLeastBytes = size_t{1} << 16;
    static constexpr size_t kMostBytes = size_t{1} << 22;
    /// All that wait together.
    static constexpr size_t kKeptBytes = size_t{1} << 23;

    /// The bytes to ask a heap for: those of the class.
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

    /// A block of `bytes`, rounded; null where none waits.
    [[nodiscard]] static void* Take(size_t bytes) noexcept;
    /// Keeps a block of `bytes`, rounded, and calls free(block, bytes) for those that waited longest and for which
    /// there is no room any more.
    static void Keep(void* block, size_t bytes, void (*free)(void*, size_t) noexcept) noexcept;

    static void Drop() noexcept;
    /// Bytes that wait.
    [[nodiscard]] static size_t Waiting() noexcept;

    [[nodiscard]] static bool Keeps(size_t bytes) noexcept { return bytes >= kLeastBytes && bytes <= kMostBytes; }
};

} // namespace Graphics
