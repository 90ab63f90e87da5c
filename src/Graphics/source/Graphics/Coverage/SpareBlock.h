// SPDX-License-Identifier: MIT
// One large block of memory, shared by the process, that waits between paint brackets. A page with page-sized groups
// paints again without the system allocating and zeroing the same pages anew. At most kMostBytes wait, however many
// targets there are.
#pragma once

#include "../ProcessHeap.h"

namespace Graphics {

class SpareBlock {
public:
    using Block = HeapArray<uint8_t>;

    /// The planes of a group of 1672 x 1672 pixels: a page at 150 dots per inch.
    static constexpr size_t kMostBytes = size_t{16} << 20;

    /// The waiting block, or an empty one. All functions may be called from any thread.
    [[nodiscard]] static Block Take() noexcept;
    /// A block allocated from the system and within the limit replaces the waiting one; other blocks are freed.
    static void Give(Block block) noexcept;
    static void Drop() noexcept;
};

} // namespace Graphics
