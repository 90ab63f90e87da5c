// SPDX-License-Identifier: MIT
// Memory directly from the system, in pages, for blocks so large that they would fragment a heap. A page is zero, costs
// nothing until it is first accessed, and returns to the system as soon as it is freed.
#pragma once

#include <cstddef>

namespace Graphics {

class SystemPages {
public:
    /// Null if there is no memory. `bytes` must not be 0.
    [[nodiscard]] static void* Alloc(size_t bytes) noexcept;
    /// `bytes` is the size requested.
    static void Free(void* block, size_t bytes) noexcept;
    /// Resizes a block, moving it if necessary. Keeps the contents up to the smaller size, without copying if the
    /// system supports that. Returns null, with the block unchanged, if there is no memory.
    [[nodiscard]] static void* Resize(void* block, size_t bytes, size_t newBytes) noexcept;
};

} // namespace Graphics
