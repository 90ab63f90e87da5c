// SPDX-License-Identifier: MIT
#include "../SystemPages.h"

#include <sys/mman.h>

namespace Graphics {

void* SystemPages::Alloc(size_t bytes) noexcept {
    void* const block = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return block == MAP_FAILED ? nullptr : block;
}

void SystemPages::Free(void* block, size_t bytes) noexcept { munmap(block, bytes); }

void* SystemPages::Resize(void* block, size_t bytes, size_t newBytes) noexcept {
    void* const resized = mremap(block, bytes, newBytes, MREMAP_MAYMOVE);
    return resized == MAP_FAILED ? nullptr : resized;
}

} // namespace Graphics
