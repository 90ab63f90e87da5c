// SPDX-License-Identifier: MIT
// One large block of memory that waits between paint brackets, for the whole process: a page whose groups are as large
// as it is paints again without the system handing out and zeroing the same pages anew. However many targets there are,
// no more than kMostBytes wait.
#pragma once

#include "../ProcessHeap.h"

namespace Graphics {

class SpareBlock {
public:
    using Block = HeapArray<uint8_t>;

    /// The planes of a group of 1672 x 1672 pixels: a page at 150 dots an inch.
    static constexpr size_t kMostBytes = size_t{16} << 20;

    /// What waits, or a block of no bytes. Safe from any thread, as are the others.
    [[nodiscard]] static Block Take() noexcept;
    /// A block that is the system's own and within the bound takes the place of what waits; others are freed.
    static void Give(Block block) noexcept;
    static void Drop() noexcept;
};

} // namespace Graphics
