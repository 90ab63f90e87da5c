// SPDX-License-Identifier: MIT
#include "RefusingNew.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int64_t> g_count{0};
std::atomic<int64_t> g_live{0};
std::atomic<int64_t> g_refused{-1};

constexpr size_t kPlain = alignof(std::max_align_t);

/// Not every C library has std::aligned_alloc: the block of malloc is remembered in front of the aligned one. A plainly
/// aligned one ends where malloc's ends, so that a checker sees the first byte behind it.
void* Allocate(size_t bytes, size_t alignment) noexcept {
    if (g_count.fetch_add(1, std::memory_order_relaxed) == g_refused.load(std::memory_order_relaxed)) {
        return nullptr;
    }
    const size_t gap = alignment <= kPlain ? kPlain : sizeof(void*) + alignment - 1;
    void* const block = bytes > SIZE_MAX - gap ? nullptr : std::malloc(bytes + gap);
    if (block == nullptr) {
        return nullptr;
    }
    auto* const aligned = reinterpret_cast<void**>((reinterpret_cast<uintptr_t>(block) + gap) & ~(alignment - 1));
    aligned[-1] = block;
    g_live.fetch_add(1, std::memory_order_relaxed);
    return aligned;
}

void Release(void* p) noexcept {
    if (p != nullptr) {
        g_live.fetch_sub(1, std::memory_order_relaxed);
        std::free(static_cast<void**>(p)[-1]);
    }
}

void* AllocateOrThrow(size_t bytes, size_t alignment) {
    void* const block = Allocate(bytes, alignment);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

} // namespace

namespace RefusingNew {

int64_t Count() noexcept { return g_count.load(); }
int64_t Live() noexcept { return g_live.load(); }
void Refuse(int64_t number) noexcept { g_refused.store(number); }

} // namespace RefusingNew

void* operator new(size_t n) { return AllocateOrThrow(n, kPlain); }
void* operator new(size_t n, std::align_val_t a) { return AllocateOrThrow(n, static_cast<size_t>(a)); }
void* operator new(size_t n, const std::nothrow_t&) noexcept { return Allocate(n, kPlain); }
void* operator new(size_t n, std::align_val_t a, const std::nothrow_t&) noexcept {
    return Allocate(n, static_cast<size_t>(a));
}
void operator delete(void* p) noexcept { Release(p); }
void operator delete(void* p, size_t) noexcept { Release(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { Release(p); }
void operator delete(void* p, std::align_val_t) noexcept { Release(p); }
void operator delete(void* p, size_t, std::align_val_t) noexcept { Release(p); }
void operator delete(void* p, std::align_val_t, const std::nothrow_t&) noexcept { Release(p); }
