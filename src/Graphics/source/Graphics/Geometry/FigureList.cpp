// SPDX-License-Identifier: MIT
#include "FigureList.h"

#include <algorithm>
#include <memory>
#include <new>

namespace Graphics {

void FigureList::MakeRoom() {
    if (m_last != nullptr && (m_last->places - m_used >= 2 || m_last->next != nullptr)) {
        return;
    }
    // Doubles the size to keep the number of blocks small; most paths have only one or two figures.
    const size_t places = std::max<size_t>(m_count, 2);
    auto* block = new (ProcessHeap::Alloc(sizeof(Block) + places * sizeof(Figure))) Block(places);
    std::uninitialized_value_construct_n(block->Figures(), places);
    (m_last == nullptr ? m_first : m_last->next) = block;
    if (m_last == nullptr) {
        m_last = block;
    }
}

void FigureList::Add(Figure&& figure) noexcept {
    if (m_used == m_last->places) {
        m_last = m_last->next;
        m_used = 0;
    }
    m_last->Figures()[m_used++] = std::move(figure);
    ++m_count;
}

Figure FigureList::Clear() noexcept {
    Figure first;
    // Acquire: orders this after the reads of the thread that released its copy last.
    if (m_first != nullptr && m_first->holders.load(std::memory_order_acquire) == 1) {
        Free(std::exchange(m_first->next, nullptr));
        first = std::move(*m_first->Figures());
        m_last = m_first;
    } else {
        Release();
        m_first = m_last = nullptr;
    }
    m_count = m_used = 0;
    return first;
}

void FigureList::Free(Block* first) noexcept {
    while (first != nullptr) {
        Block* const next = first->next;
        std::destroy_n(first->Figures(), first->places);
        first->~Block();
        ProcessHeap::Free(first);
        first = next;
    }
}

void FigureList::Release() noexcept {
    if (m_first != nullptr && m_first->holders.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        Free(m_first);
    }
}

} // namespace Graphics
