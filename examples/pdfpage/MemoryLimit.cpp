// SPDX-License-Identifier: MIT
#include "MemoryLimit.h"

#include <cstdlib>
#include <new>

namespace PdfPage {
namespace {

void (*g_refused)() = nullptr;

void* Checked(void* block, size_t bytes) {
    if (!block && bytes > 0)
        MemoryLimit::NoteRefusal();
    return block;
}

void* Allocate(void*, size_t bytes) { return Checked(std::malloc(bytes), bytes); }
void* Reallocate(void*, void* block, size_t bytes) { return Checked(std::realloc(block, bytes), bytes); }
void Free(void*, void* block) { std::free(block); }

constexpr fz_alloc_context kAllocator{nullptr, Allocate, Reallocate, Free};

} // namespace

void MemoryLimit::Watch(void (*refused)()) {
    g_refused = refused;
    std::set_new_handler([] {
        NoteRefusal();
        throw std::bad_alloc();
    });
}

const fz_alloc_context* MemoryLimit::Allocator() { return g_refused ? &kAllocator : nullptr; }

void MemoryLimit::NoteRefusal() {
    if (g_refused)
        g_refused();
}

} // namespace PdfPage
