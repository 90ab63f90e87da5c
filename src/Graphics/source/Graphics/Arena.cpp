// SPDX-License-Identifier: MIT
#include "Arena.h"

#include "Exception.h"

namespace Graphics {

Arena::~Arena() { Reset(0); }

void* Arena::Alloc(size_t bytes) {
    if (bytes >= SIZE_MAX / 2) {
        GX_RAISE("Graphics::Arena::Alloc", "Not enough memory");
    }
    bytes = (bytes + kHeader - 1) / kHeader * kHeader;
    if (m_used == nullptr || m_used->size - m_offset < bytes) {
        Block** link = &m_spare;
        while (*link != nullptr && (*link)->size < bytes) {
            link = &(*link)->next;
        }
        Block* block = *link;
        if (block != nullptr) {
            *link = block->next;
        } else {
            const size_t size = bytes > kBlock ? bytes : kBlock;
            block = static_cast<Block*>(ProcessHeap::AllocAligned(kHeader + size));
            block->size = size;
        }
        block->next = m_used;
        m_used = block;
        m_offset = 0;
    }
    void* p = reinterpret_cast<unsigned char*>(m_used) + kHeader + m_offset;
    m_offset += bytes;
    return p;
}

void Arena::Reset(size_t keepBytes) noexcept {
    for (; m_objects != nullptr; m_objects = m_objects->next) {
        m_objects->destroy(m_objects->object);
    }
    while (m_used != nullptr) {
        Block* block = m_used;
        m_used = block->next;
        block->next = m_spare;
        m_spare = block;
    }
    m_offset = 0;
    size_t kept = 0;
    for (Block** link = &m_spare; *link != nullptr;) {
        Block* block = *link;
        if (block->size > keepBytes - kept) {
            *link = block->next;
            ProcessHeap::FreeAligned(block, kHeader + block->size);
        } else {
            kept += block->size;
            link = &block->next;
        }
    }
}

} // namespace Graphics
