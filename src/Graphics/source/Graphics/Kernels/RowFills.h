// SPDX-License-Identifier: MIT
// Row loops that store without reading the target.
#pragma once

#include "../Simd/Stores.h"
#include "RowBlocks.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// From this count on the processor's string store is no slower, and far faster once the row exceeds the caches,
/// because it does not read the lines first. Measured: non-temporal stores are slower below this size and no faster
/// above.
constexpr size_t kStringStoreCount = size_t{1} << 17;

void Fill32(uint32_t* dst, uint32_t value, size_t count) {
    const U32 v = Splat(value);
    if (count < kLanes) {
        StorePart(dst, count, v);
        return;
    }
    if (kHasStringStore && count >= kStringStoreCount) {
        StringStore(dst, value, count);
        return;
    }
    // The last vector overlaps the ones before it; so does the first one, where it helps to align these.
    uint32_t* const end = dst + count;
    uint32_t* p = dst;
    if constexpr (kAlignsStores) {
        Store(dst, v);
        p += kLanes - (reinterpret_cast<uintptr_t>(dst) / 4) % kLanes;
    }
    for (; end - p >= static_cast<ptrdiff_t>(4 * kLanes); p += 4 * kLanes) {
        Store(p, v);
        Store(p + kLanes, v);
        Store(p + 2 * kLanes, v);
        Store(p + 3 * kLanes, v);
    }
    for (; end - p >= static_cast<ptrdiff_t>(kLanes); p += kLanes) {
        Store(p, v);
    }
    Store(end - kLanes, v);
}

void Prefetch(const uint32_t* dst, size_t count) {
    constexpr size_t kLine = 16;
    size_t i = 0;
#ifdef GX_SIMD_QUADS
    for (; i + 4 * kLine <= count; i += 4 * kLine) {
        __builtin_prefetch(dst + i, 1);
        __builtin_prefetch(dst + i + kLine, 1);
        __builtin_prefetch(dst + i + 2 * kLine, 1);
        __builtin_prefetch(dst + i + 3 * kLine, 1);
    }
#endif
    for (; i < count; i += kLine) {
        __builtin_prefetch(dst + i, 1);
    }
    __builtin_prefetch(dst + count - 1, 1);
}

[[gnu::noinline]] void FillWideBlock(uint32_t* dst, ptrdiff_t strideBytes, uint32_t value, size_t count, size_t rows) {
    const bool ahead = kFetchesBeforeStores && count < kStringStoreCount;
    for (; rows != 0; --rows) {
        auto* next = reinterpret_cast<uint32_t*>(reinterpret_cast<char*>(dst) + strideBytes);
        if (ahead && rows > 1) {
            Prefetch(next, count);
        }
        Fill32(dst, value, count);
        dst = next;
    }
}

void FillBlock(uint32_t* dst, ptrdiff_t strideBytes, uint32_t value, size_t count, size_t rows) {
    const U32 v = Splat(value);
    auto* row = reinterpret_cast<char*>(dst);
#if GX_SIMD_BYTES == 64
    if (count <= kLanes / 2) { // a longer vector crosses a cache line in most rows, although nothing is stored there
        for (; rows != 0; --rows, row += strideBytes) {
            StoreHalf(row, count, HalfU32{} + value);
        }
        return;
    }
#endif
    if (count <= kLanes) {
        for (; rows != 0; --rows, row += strideBytes) {
            StoreSome(row, count, v);
        }
    } else if (!kFetchesBeforeStores && count <= 2 * kLanes) { // two vectors that may overlap
        for (; rows != 0; --rows, row += strideBytes) {
            Store(row, v);
            Store(row + (count - kLanes) * 4, v);
        }
    } else {
        FillWideBlock(dst, strideBytes, value, count, rows);
    }
}

void SetOpaque(uint32_t* dst, const uint8_t* shape, size_t count) {
    const auto rest = [=](size_t i, size_t n) { Narrower(n).setOpaque(dst + i, At(shape, i), n); };
    if (shape == nullptr) {
        ForWholeBlocks(
            count, [=](size_t i, size_t n) GX_INLINE { StoreSome(dst + i, n, LoadSome(dst + i, n) | 0xFF000000U); },
            rest);
        return;
    }
    const auto step = [=](size_t i, size_t n) GX_INLINE {
        const U32 d = LoadSome(dst + i, n);
        StoreSome(dst + i, n, Select(IsZero(WidenSome(shape + i, n)), d, d | 0xFF000000U));
    };
    ForWholeBlocks(count, step, rest);
}

/// Aligned stores where that helps: unaligned ones cross cache lines, vectors of 64 bytes at every store.
void CopyOpaque(uint32_t* dst, const uint8_t* src, size_t count) {
    const auto step = [=](size_t i) { Store(dst + i, Load(src + i * 4) | 0xFF000000U); };
    if (count < kLanes) {
        if (count != 0) {
            __builtin_memcpy(dst, src, count * 4);
            SetOpaque(dst, nullptr, count);
        }
        return;
    }
    size_t i = 0;
    if constexpr (kAlignsStores) {
        step(0);
        i = kLanes - (reinterpret_cast<uintptr_t>(dst) / 4) % kLanes;
    } else {
        for (; i + 4 * kLanes <= count; i += 4 * kLanes) {
            step(i);
            step(i + kLanes);
            step(i + 2 * kLanes);
            step(i + 3 * kLanes);
        }
    }
    for (; i + kLanes <= count; i += kLanes) {
        step(i);
    }
    step(count - kLanes);
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
