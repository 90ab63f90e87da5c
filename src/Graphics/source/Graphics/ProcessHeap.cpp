// SPDX-License-Identifier: MIT
#include "ProcessHeap.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

#include "Exception.h"
#include "SpareBlocks.h"
#include "SystemPages.h"

namespace Graphics {
namespace {

constexpr size_t kAlignment = 64;

std::atomic<int64_t> g_allocations{0};
std::atomic<int64_t> g_failAt{-1};
std::atomic<int64_t> g_held{0};
std::atomic<int64_t> g_heldOfSystem{0};

[[nodiscard]] bool IsOfSystem(size_t bytes) noexcept { return bytes >= ProcessHeap::kSystemBytes; }

void Count(size_t bytes, int64_t sign) noexcept {
    const int64_t change = sign * static_cast<int64_t>(bytes);
    g_held.fetch_add(change, std::memory_order_relaxed);
    if (IsOfSystem(bytes)) {
        g_heldOfSystem.fetch_add(change, std::memory_order_relaxed);
    }
}

// From here on sizes are those of blocks (SpareBlocks::Rounded).

[[nodiscard]] void* New(size_t size) noexcept {
    return IsOfSystem(size) ? SystemPages::Alloc(size)
                            : ::operator new (std::max<size_t>(size, 1), std::align_val_t{kAlignment}, std::nothrow);
}

void Delete(void* block, size_t size) noexcept {
    if (IsOfSystem(size)) {
        SystemPages::Free(block, size);
    } else {
        ::operator delete (block, std::align_val_t{kAlignment});
    }
}

[[nodiscard]] void* Take(size_t bytes, bool zeroed) noexcept {
    if (bytes > SIZE_MAX / 2) {
        return nullptr;
    }
    const size_t size = SpareBlocks::Rounded(bytes);
    void* block = SpareBlocks::Keeps(size) && !zeroed ? SpareBlocks::Take(size) : nullptr;
    if (block == nullptr) {
        block = New(size);
        if (zeroed && block != nullptr && !IsOfSystem(size)) {
            std::memset(block, 0, bytes);
        }
    }
    if (block != nullptr) {
        Count(bytes, 1);
    }
    return block;
}

void Give(void* block, size_t bytes) noexcept {
    Count(bytes, -1);
    const size_t size = SpareBlocks::Rounded(bytes);
    if (SpareBlocks::Keeps(size)) {
        SpareBlocks::Keep(block, size, Delete);
    } else {
        Delete(block, size);
    }
}

/// False if the block is not the system's, or the resized block would not be.
[[nodiscard]] bool Resizes(const void* block, size_t bytes, size_t newBytes) noexcept {
    return block != nullptr && newBytes <= SIZE_MAX / 2 && IsOfSystem(SpareBlocks::Rounded(bytes)) &&
           IsOfSystem(SpareBlocks::Rounded(newBytes));
}

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
    void* block = Refused() ? nullptr : Take(bytes, false);
    if (block == nullptr) {
        GX_RAISE("Graphics::ProcessHeap::AllocAligned", "Not enough memory");
    }
    return block;
}

void* ProcessHeap::AllocZeroed(size_t bytes) {
    void* block = Refused() ? nullptr : Take(bytes, true);
    if (block == nullptr) {
        GX_RAISE("Graphics::ProcessHeap::AllocZeroed", "Not enough memory");
    }
    return block;
}

void* ProcessHeap::ReallocAligned(void* block, size_t bytes, size_t newBytes, size_t keptBytes) {
    void* moved = nullptr;
    if (!Refused()) {
        const bool resizes = Resizes(block, bytes, newBytes);
        if (resizes) {
            moved = SystemPages::Resize(block, SpareBlocks::Rounded(bytes), SpareBlocks::Rounded(newBytes));
        } else if ((moved = Take(newBytes, false)) != nullptr && keptBytes != 0) {
            std::memcpy(moved, block, keptBytes);
        }
        if (moved != nullptr && resizes) {
            Count(bytes, -1);
            Count(newBytes, 1);
        } else if (moved != nullptr) {
            FreeAligned(block, bytes);
        }
    }
    if (moved == nullptr) {
        GX_RAISE("Graphics::ProcessHeap::ReallocAligned", "Not enough memory");
    }
    return moved;
}

void* ProcessHeap::Realloc(void* block, size_t bytes) {
    void* grown = Refused() ? nullptr : std::realloc(block, bytes == 0 ? 1 : bytes);
    if (grown == nullptr) {
        GX_RAISE("Graphics::ProcessHeap::Realloc", "Not enough memory");
    }
    return grown;
}

void ProcessHeap::Free(void* block) noexcept { std::free(block); }

void ProcessHeap::FreeAligned(void* block, size_t bytes) noexcept {
    if (block != nullptr) {
        Give(block, bytes);
    }
}

ProcessHeap::Held ProcessHeap::AlignedHeld() noexcept {
    return {g_held.load(std::memory_order_relaxed), g_heldOfSystem.load(std::memory_order_relaxed)};
}

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
