// SPDX-License-Identifier: MIT
// The finished figures of a path, in the order in which they came, in blocks that lists share:
//
//   the list, 5 figures ────────┐
//   a copy, made when it had 2 ─┤
//                               v
//                             | F0 F1 | -> | F2 F3 | -> | F4 __ __ __ |
//
// (1) A copy costs a count and never changes, whatever the list does later, also on another thread.
// (2) Adding costs the same whether there are copies or not.
// (3) Both hold because figures are only added behind the last one, and blocks stay where they are: a list reads as
//     many figures as it had, and a link only to get to one of them. What is written lies behind that for every copy.
#pragma once

#include <atomic>
#include <iterator>
#include <utility>

#include "Figure.h"

namespace Graphics {

class FigureList {
    struct Block {
        std::atomic<uint32_t> holders{1}; // lists; of the first block
        const size_t places;
        Block* next = nullptr;

        explicit Block(size_t count) noexcept : places(count) {}
        [[nodiscard]] Figure* Figures() noexcept { return reinterpret_cast<Figure*>(this + 1); }
        [[nodiscard]] const Figure* Figures() const noexcept { return reinterpret_cast<const Figure*>(this + 1); }
    };
    static_assert(alignof(Figure) <= alignof(Block) && sizeof(Block) % alignof(Figure) == 0);

public:
    FigureList() noexcept = default;
    /// A copy is for reading: it does not grow.
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
    /// There is one.
    [[nodiscard]] const Figure& front() const noexcept { return *m_first->Figures(); }
    [[nodiscard]] const Figure& back() const noexcept { return m_last->Figures()[m_used - 1]; }

    /// After it, two calls of Add need no memory.
    void MakeRoom();
    void Add(Figure&& figure) noexcept;
    /// Removes all and returns the first figure, whose memory another one may take. What a copy holds is left to it,
    /// with the blocks, and an empty figure returned.
    Figure Clear() noexcept;

private:
    static void Free(Block* first) noexcept;
    void Release() noexcept;

    Block* m_first = nullptr;
    size_t m_count = 0;
    // Where the list grows; not in a copy.
    Block* m_last = nullptr;
    size_t m_used = 0; // places of the last block
};

} // namespace Graphics
