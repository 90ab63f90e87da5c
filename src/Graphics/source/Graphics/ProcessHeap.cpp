// SPDX-License-Identifier: MIT
#include "ProcessHeap.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

#include "Exception.h"

namespace Graphics {
namespace {

constexpr size_t kAlignment = 64;

std::atomic<int64_t> g_allocations{0};
std::atomic<int64_t> g_failAt{-1};

[[nodiscard]] bool Refused() noexcept {
    const int64_t n = g_allocations.fetch_add(1, std::memory_order_relaxed);
    const int64_t failAt = g_failAt.load(std::memory_order_relaxed);
    return failAt >= 0 && n == failAt;
}

} // namespace

void* ProcessHeap::Alloc(size_t bytes) {
    void* block = Refused() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
    if (block == nullptr) {
        GX_RAISE("Graphics::ProcessHeap::Alloc", "Not enough memory");
    }
    return block;
}

void* ProcessHeap::AllocAligned(size_t bytes) {
    void* block = Refused() || bytes > SIZE_MAX / 2
                      ? nullptr
                      : ::operator new (bytes == 0 ? 1 : bytes, std::align_val_t{kAlignment}, std::nothrow);
    if (block == nullptr) {
        GX_RAISE("Graphics::ProcessHeap::AllocAligned", "Not enough memory");
    }
    return block;
}

void* ProcessHeap::Realloc(void* block, size_t bytes) {
    void* grown = Refused() ? nullptr : std::realloc(block, bytes == 0 ? 1 : bytes);
    if (grown == nullptr) {
        GX_RAISE("Graphics::ProcessHeap::Realloc", "Not enough memory");
    }
    return grown;
}

void ProcessHeap::Free(void* block) noexcept { std::free(block); }

void ProcessHeap::FreeAligned(void* block) noexcept { ::operator delete (block, std::align_val_t{kAlignment}); }

void* ProcessHeap::GrowTwoEnded(void* block, size_t& size, size_t tailBytes, size_t freeBytes, size_t neededBytes) {
    if (neededBytes <= freeBytes) {
        return block;
    }
    size_t growth = (neededBytes - freeBytes + 7) / 8 * 8;
    growth = growth < size ? size : growth;
    growth = growth < 8 ? 8 : growth;
    auto* grown = static_cast<unsigned char*>(Realloc(block, size + growth));
    std::memmove(grown + size + growth - tailBytes, grown + size - tailBytes, tailBytes);
    size += growth;
    return grown;
}

int64_t ProcessHeap::FailAfter(int64_t count) noexcept {
    const int64_t now = g_allocations.load(std::memory_order_relaxed);
    g_failAt.store(count < 0 ? -1 : now + count, std::memory_order_relaxed);
    return now;
}

} // namespace Graphics
