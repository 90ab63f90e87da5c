// SPDX-License-Identifier: MIT
// The allocator of large working buffers: pixels, paths, scan-line storage. Every failure is the engine error
// "Not enough memory". A test may make the nth allocation fail.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Graphics {

class ProcessHeap {
public:
    [[nodiscard]] static void* Alloc(size_t bytes);
    /// Aligned to 64 bytes (a cache line, and the widest vector).
    [[nodiscard]] static void* AllocAligned(size_t bytes);
    [[nodiscard]] static void* Realloc(void* block, size_t bytes);
    static void Free(void* block) noexcept;
    static void FreeAligned(void* block) noexcept;

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
public:
    HeapArray() noexcept = default;
    HeapArray(const HeapArray&) = delete;
    HeapArray& operator=(const HeapArray&) = delete;
    HeapArray(HeapArray&& o) noexcept : m_data(o.m_data), m_size(o.m_size), m_capacity(o.m_capacity) {
        o.m_data = nullptr;
        o.m_size = o.m_capacity = 0;
    }
    HeapArray& operator=(HeapArray&& o) noexcept {
        std::swap(m_data, o.m_data);
        std::swap(m_size, o.m_size);
        std::swap(m_capacity, o.m_capacity);
        return *this;
    }
    ~HeapArray() { ProcessHeap::FreeAligned(m_data); }

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

private:
    void Grow(size_t n) {
        size_t capacity = m_capacity + m_capacity / 2;
        capacity = capacity < 16 ? 16 : capacity;
        capacity = capacity < n ? n : capacity;
        if (capacity > (SIZE_MAX / 2) / sizeof(T)) {
            capacity = SIZE_MAX / sizeof(T); // refused below
        }
        T* block = static_cast<T*>(ProcessHeap::AllocAligned(capacity * sizeof(T)));
        for (size_t i = 0; i < m_size; ++i) {
            block[i] = m_data[i];
        }
        ProcessHeap::FreeAligned(m_data);
        m_data = block;
        m_capacity = capacity;
    }

    T* m_data = nullptr;
    size_t m_size = 0;
    size_t m_capacity = 0;
};

} // namespace Graphics
