// SPDX-License-Identifier: MIT
#include "../SystemPages.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

namespace Graphics {

void* SystemPages::Alloc(size_t bytes) noexcept {
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void SystemPages::Free(void* block, size_t bytes) noexcept {
    static_cast<void>(bytes);
    VirtualFree(block, 0, MEM_RELEASE);
}

void* SystemPages::Resize(void* block, size_t bytes, size_t newBytes) noexcept {
    void* const resized = Alloc(newBytes);
    if (resized != nullptr) {
        std::memcpy(resized, block, std::min(bytes, newBytes));
        Free(block, bytes);
    }
    return resized;
}

} // namespace Graphics
