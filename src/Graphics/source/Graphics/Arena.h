// SPDX-License-Identifier: MIT
// Memory of one draw call: objects are allocated one after another and end together at Reset, which keeps the blocks.
// So after the first draws, drawing allocates nothing from the heap.
#pragma once

#include <new>
#include <type_traits>
#include <utility>

#include "ProcessHeap.h"

namespace Graphics {

class Arena {
public:
    Arena() noexcept = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;
    ~Arena();

    /// Uninitialised and aligned to 64 bytes; valid until Reset.
    [[nodiscard]] void* Alloc(size_t bytes);

    template <class T> [[nodiscard]] T* AllocArray(size_t count) {
        static_assert(std::is_trivially_destructible_v<T>);
        return static_cast<T*>(Alloc(count > SIZE_MAX / 2 / sizeof(T) ? SIZE_MAX / 2 : count * sizeof(T)));
    }

    /// Creates an object; destructors run at Reset, in reverse order.
    template <class T, class... Args> [[nodiscard]] T* Make(Args&&... args) {
        if constexpr (std::is_trivially_destructible_v<T>) {
            return new (Alloc(sizeof(T))) T(std::forward<Args>(args)...);
        } else {
            auto* node = static_cast<Node*>(Alloc(sizeof(Node)));
            T* object = new (Alloc(sizeof(T))) T(std::forward<Args>(args)...);
            *node = {m_objects, object, [](void* p) noexcept { static_cast<T*>(p)->~T(); }};
            m_objects = node;
            return object;
        }
    }

    /// Ends every object. Keeps blocks up to a total of `keepBytes`.
    void Reset(size_t keepBytes = 1U << 20) noexcept;

private:
    struct Node {
        Node* next;
        void* object;
        void (*destroy)(void*) noexcept;
    };
    struct Block {
        Block* next;
        size_t size; // bytes after the header
    };
    static constexpr size_t kHeader = 64;
    static constexpr size_t kBlock = 64U << 10;

    Node* m_objects = nullptr;
    Block* m_used = nullptr;  // the current block is the first
    Block* m_spare = nullptr; // kept from earlier draws
    size_t m_offset = 0;      // in the current block
};

/// Ends the objects of a draw call, even if it fails.
class ArenaScope {
public:
    explicit ArenaScope(Arena& arena) noexcept : m_arena(arena) {}
    ArenaScope(const ArenaScope&) = delete;
    ArenaScope& operator=(const ArenaScope&) = delete;
    ~ArenaScope() { m_arena.Reset(); }

private:
    Arena& m_arena;
};

} // namespace Graphics
