// SPDX-License-Identifier: MIT
// The finished figures of a path, in the order in which they were added, in blocks shared by copies of the list:
//
//   the list, 5 figures ────────┐
//   a copy, made when it had 2 ─┤
//                               v
//                             | F0 F1 | -> | F2 F3 | -> | F4 __ __ __ |
//
// (1) A copy costs one count and never changes, whatever the list does later, also on another thread.
// (2) Adding costs the same whether or not there are copies.
// (3) Why: figures are only added behind the last one, and blocks never move. A list reads the figures up to its own
//     count, and follows a link only to reach one of them; everything written later lies behind that.
#pragma once

#include <atomic>
#include <iterator>
#include <utility>

#include "Figure.h"

namespace Graphics {

class FigureList {
    struct Block {
        std::atomic<uint32_t> holders{1}; // lists that share the blocks; counted in the first block
        const size_t places;
        Block* next = nullptr;

        explicit Block(size_t count) noexcept : places(count) {}
        [[nodiscard]] Figure* Figures() noexcept { return reinterpret_cast<Figure*>(this + 1); }
        [[nodiscard]] const Figure* Figures() const noexcept { return reinterpret_cast<const Figure*>(this + 1); }
    };
    static_assert(alignof(Figure) <= alignof(Block) && sizeof(Block) % alignof(Figure) == 0);

public:
    FigureList() noexcept = default;
    /// A copy is read-only: Add must not be called on it.
    FigureList(const FigureList& o) noexcept : m_first(o.m_first), m_count(o.m_count) {
        if (m_first != nullptr) {
            m_first->holders.fetch_add(1, std::memory_order_relaxed);
        }
    }
    FigureList& operator=(const FigureList&) = delete;
    ~FigureList() { Release(); }

    class Iterator {
    public:
        Iterator(const Block* block, size_t left) noexcept : m_left(left) {
            if (left != 0) {
                Enter(block);
            }
        }
        const Figure& operator*() const noexcept { return *m_figure; }
        Iterator& operator++() noexcept {
            ++m_figure;
            if (--m_left != 0 && m_figure == m_end) {
                Enter(m_block->next);
            }
            return *this;
        }
        bool operator==(std::default_sentinel_t) const noexcept { return m_left == 0; }

    private:
        void Enter(const Block* block) noexcept {
            m_block = block;
            m_figure = block->Figures();
            m_end = m_figure + block->places;
        }

        const Block* m_block = nullptr;
        const Figure* m_figure = nullptr;
        const Figure* m_end = nullptr; // of the block
        size_t m_left;
    };

    [[nodiscard]] size_t size() const noexcept { return m_count; }
    [[nodiscard]] bool empty() const noexcept { return m_count == 0; }
    [[nodiscard]] Iterator begin() const noexcept { return {m_first, m_count}; }
    [[nodiscard]] std::default_sentinel_t end() const noexcept { return {}; }
    /// Requires a non-empty list.
    [[nodiscard]] const Figure& front() const noexcept { return *m_first->Figures(); }
    [[nodiscard]] const Figure& back() const noexcept { return m_last->Figures()[m_used - 1]; }

    /// Reserves memory for two calls of Add.
    void MakeRoom();
    void Add(Figure&& figure) noexcept;
    /// Removes all figures and returns the first one, whose memory can be reused. If copies hold the blocks, they keep
    /// them, and an empty figure is returned.
    Figure Clear() noexcept;

private:
    static void Free(Block* first) noexcept;
    void Release() noexcept;

    Block* m_first = nullptr;
    size_t m_count = 0;
    // The end at which the list grows; not set in a copy.
    Block* m_last = nullptr;
    size_t m_used = 0; // places of the last block
};

} // namespace Graphics
