// SPDX-License-Identifier: MIT
// The allocator of large working buffers: pixels, paths, scan-line storage. Every failure is the engine error
// "Not enough memory". Aligned blocks are freed by their size; from kSystemBytes on they come straight from the system,
// and the large ones go straight back, so that a heap never keeps the gaps that pixels leave; a few of middle size wait
// for the next call (SpareBlocks). A test may make the nth allocation fail, and read what aligned blocks are held.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

namespace Graphics {

class ProcessHeap {
public:
    /// Smaller aligned blocks come from the C++ allocator. A page fault for every 4 KB is a small share of what it
    /// takes to fill a megabyte, and a large one of what it takes to fill less.
    static constexpr size_t kSystemBytes = size_t{1} << 20;

    /// What an array that a target fills again and again keeps after painting: enough for nearly all that is drawn.
    static constexpr size_t kWorkingBytes = size_t{128} << 10;

    [[nodiscard]] static void* Alloc(size_t bytes);
    /// Aligned to 64 bytes (a cache line, and the widest vector).
    [[nodiscard]] static void* AllocAligned(size_t bytes);
    /// The same, every byte 0: for a large block without touching it.
    [[nodiscard]] static void* AllocZeroed(size_t bytes);
    /// Another size for an aligned block (null: none yet, of 0 bytes). The first `keptBytes` are kept; on failure the
    /// block is as it was.
    [[nodiscard]] static void* ReallocAligned(void* block, size_t bytes, size_t newBytes, size_t keptBytes);
    [[nodiscard]] static void* Realloc(void* block, size_t bytes);
    static void Free(void* block) noexcept;
    /// `bytes` as they were asked for; null is nothing.
    static void FreeAligned(void* block, size_t bytes) noexcept;

    /// Bytes of the aligned blocks that are held, and how many of them came straight from the system.
    struct Held {
        int64_t bytes;
        int64_t systemBytes;
    };
    [[nodiscard]] static Held AlignedHeld() noexcept;

    /// Grows a block that is filled from the front and, downwards, from the back: the last `tailBytes` move to the new
    /// end. `size` is updated. Grows by the largest of the shortfall rounded up to 8, the current size, and 8.
    [[nodiscard]] static void* GrowTwoEnded(void* block, size_t& size, size_t tailBytes, size_t freeBytes,
                                            size_t neededBytes);

    /// For tests: fail the allocation after `count` further ones; negative switches off. Returns the allocations so
    /// far.
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
    /// New values are not initialised.
    void resize(size_t n) {
        reserve(n);
        m_size = n;
    }
    /// Gives the memory back.
    void Release() noexcept { HeapArray().Swap(*this); }
    /// The same, where it is more than what is worth keeping for later pages.
    void Trim() noexcept {
        if (m_capacity * sizeof(T) > ProcessHeap::kWorkingBytes) {
            Release();
        }
    }
    /// As resize, with nothing kept and no more memory than asked for where a block of the system's would be larger.
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
            capacity = SIZE_MAX / sizeof(T); // refused below
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
