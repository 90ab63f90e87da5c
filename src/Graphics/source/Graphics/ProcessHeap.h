// SPDX-License-Identifier: MIT
// The allocator of large working buffers: pixels, paths, scan-line storage. Every failure is the engine error "Not
// enough memory". (1) Aligned blocks are freed with their size. (2) From kSystemBytes on they are allocated directly
// from the system, and large ones are returned to it at once, so that pixel buffers do not fragment the heap; a few of
// middle size wait for reuse (SpareBlocks). (3) Tests can make the nth allocation fail and count the aligned blocks
// held.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

namespace Graphics {

class ProcessHeap {
public:
    /// Smaller aligned blocks come from the C++ allocator. A page fault per 4 KB is cheap compared with filling a
    /// megabyte, but not with filling less.
    static constexpr size_t kSystemBytes = size_t{1} << 20;

    /// The size that a target's reused arrays keep after painting; it suffices for nearly all drawing.
    static constexpr size_t kWorkingBytes = size_t{128} << 10;

    [[nodiscard]] static void* Alloc(size_t bytes);
    /// Aligned to 64 bytes (a cache line, and the widest vector).
    [[nodiscard]] static void* AllocAligned(size_t bytes);
    /// AllocAligned with every byte 0; a large block is zeroed without being touched.
    [[nodiscard]] static void* AllocZeroed(size_t bytes);
    /// Resizes an aligned block (null: none yet, 0 bytes). Keeps the first `keptBytes`; on failure the block is
    /// unchanged.
    [[nodiscard]] static void* ReallocAligned(void* block, size_t bytes, size_t newBytes, size_t keptBytes);
    [[nodiscard]] static void* Realloc(void* block, size_t bytes);
    static void Free(void* block) noexcept;
    /// `bytes` is the size requested; null is ignored.
    static void FreeAligned(void* block, size_t bytes) noexcept;

    /// Bytes of the aligned blocks held, and how many of the blocks came directly from the system.
    struct Held {
        int64_t bytes;
        int64_t systemBytes;
    };
    [[nodiscard]] static Held AlignedHeld() noexcept;

    /// Grows a block that is filled from both ends: the last `tailBytes` move to the new end. Grows by the largest of
    /// the shortfall rounded up to 8, the current size, and 8, and updates `size`.
    [[nodiscard]] static void* GrowTwoEnded(void* block, size_t& size, size_t tailBytes, size_t freeBytes,
                                            size_t neededBytes);

    /// For tests: fails the allocation after the next `count`; a negative count switches this off. Returns the number
    /// of allocations so far.
    static int64_t FailAfter(int64_t count) noexcept;
};

/// A growable array of trivially copyable values on ProcessHeap that keeps its memory when cleared.
template <class T> class HeapArray {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    HeapArray() noexcept = default;
    HeapArray(const HeapArray&) = delete;
    HeapArray& operator=(const HeapArray&) = delete;
    HeapArray(HeapArray&& o) noexcept : m_data(o.m_data), m_size(o.m_size), m_capacity(o.m_capacity) {
        o.m_data = nullptr;
        o.m_size = o.m_capacity = 0;
    }
    HeapArray& operator=(HeapArray&& o) noexcept {
        Swap(o);
        return *this;
    }
    ~HeapArray() { ProcessHeap::FreeAligned(m_data, m_capacity * sizeof(T)); }

    [[nodiscard]] T* data() noexcept { return m_data; }
    [[nodiscard]] const T* data() const noexcept { return m_data; }
    [[nodiscard]] size_t size() const noexcept { return m_size; }
    [[nodiscard]] size_t capacity() const noexcept { return m_capacity; }
    [[nodiscard]] bool empty() const noexcept { return m_size == 0; }
    [[nodiscard]] T* begin() noexcept { return m_data; }
    [[nodiscard]] T* end() noexcept { return m_data + m_size; }
    [[nodiscard]] const T* begin() const noexcept { return m_data; }
    [[nodiscard]] const T* end() const noexcept { return m_data + m_size; }
    [[nodiscard]] T& operator[](size_t i) noexcept { return m_data[i]; }
    [[nodiscard]] const T& operator[](size_t i) const noexcept { return m_data[i]; }
    [[nodiscard]] T& back() noexcept { return m_data[m_size - 1]; }
    [[nodiscard]] const T& back() const noexcept { return m_data[m_size - 1]; }

    void clear() noexcept { m_size = 0; }
    void pop_back() noexcept { --m_size; }
    void push_back(const T& v) {
        if (m_size == m_capacity) {
            const T copy = v;
            Grow(m_size + 1);
            m_data[m_size++] = copy;
            return;
        }
        m_data[m_size++] = v;
    }
    void reserve(size_t n) {
        if (n > m_capacity) {
            Grow(n);
        }
    }
    /// New values are uninitialised.
    void resize(size_t n) {
        reserve(n);
        m_size = n;
    }
    /// Frees the memory.
    void Release() noexcept { HeapArray().Swap(*this); }
    /// Frees the memory if it is larger than kWorkingBytes.
    void Trim() noexcept {
        if (m_capacity * sizeof(T) > ProcessHeap::kWorkingBytes) {
            Release();
        }
    }
    /// As resize, but keeps no content, and blocks large enough for the system allocator get no spare capacity.
    void Remake(size_t n) {
        const bool large = std::max(n, m_capacity) * sizeof(T) >= ProcessHeap::kSystemBytes;
        if (n > m_capacity || (large && n < m_capacity)) {
            SetCapacity(n, 0);
        }
        m_size = n;
    }

private:
    void Grow(size_t n) {
        size_t capacity = m_capacity + m_capacity / 2;
        capacity = capacity < 16 ? 16 : capacity;
        capacity = capacity < n ? n : capacity;
        if (capacity > (SIZE_MAX / 2) / sizeof(T)) {
            capacity = SIZE_MAX / sizeof(T); // the allocation below refuses it
        }
        SetCapacity(capacity, m_size);
    }
    void SetCapacity(size_t capacity, size_t kept) {
        m_data = static_cast<T*>(
            ProcessHeap::ReallocAligned(m_data, m_capacity * sizeof(T), capacity * sizeof(T), kept * sizeof(T)));
        m_capacity = capacity;
    }
    void Swap(HeapArray& o) noexcept {
        std::swap(m_data, o.m_data);
        std::swap(m_size, o.m_size);
        std::swap(m_capacity, o.m_capacity);
    }

    T* m_data = nullptr;
    size_t m_size = 0;
    size_t m_capacity = 0;
};

} // namespace Graphics
