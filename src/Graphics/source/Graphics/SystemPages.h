// SPDX-License-Identifier: MIT
// Memory straight from the system, page by page, for blocks so large that a heap would be torn apart by them. Every
// page is zero when it is first read, costs nothing before, and is the system's again as soon as it is freed.
#pragma once

#include <cstddef>

namespace Graphics {

class SystemPages {
public:
    /// Null when there is no memory. `bytes` is not 0.
    [[nodiscard]] static void* Alloc(size_t bytes) noexcept;
    /// `bytes` as they were asked for.
    static void Free(void* block, size_t bytes) noexcept;
    /// Another size, at another place if need be: the contents up to the smaller size are kept without being copied
    /// where the system can do that. Null, with the block as it was, when there is no memory.
    [[nodiscard]] static void* Resize(void* block, size_t bytes, size_t newBytes) noexcept;
};

} // namespace Graphics
