// SPDX-License-Identifier: MIT
#include "SpareBlocks.h"

#include <algorithm>
#include <mutex>

namespace Graphics {
namespace {

struct Spare {
    void* block;
    size_t bytes;
    void (*free)(void*, size_t) noexcept;
};

std::mutex g_mutex;
Spare g_spares[SpareBlocks::kKeptBytes / SpareBlocks::kLeastBytes]; // oldest first
size_t g_count = 0;
size_t g_bytes = 0;
bool g_closed = false;

Spare Remove(size_t index) noexcept {
    const Spare spare = g_spares[index];
    std::copy(g_spares + index + 1, g_spares + g_count, g_spares + index);
    g_count -= 1;
    g_bytes -= spare.bytes;
    return spare;
}

void DropAll() noexcept {
    while (g_count != 0) {
        const Spare spare = Remove(0);
        spare.free(spare.block, spare.bytes);
    }
}

/// Frees the blocks when the library is unloaded, which may be before the process ends. Blocks freed later are not
/// kept.
struct Sweeper {
    ~Sweeper() {
        const std::scoped_lock lock(g_mutex);
        g_closed = true;
        DropAll();
    }
} g_sweeper;

} // namespace

void* SpareBlocks::Take(size_t bytes) noexcept {
    const std::scoped_lock lock(g_mutex);
    for (size_t i = g_count; i-- > 0;) {
        if (g_spares[i].bytes == bytes) {
            return Remove(i).block;
        }
    }
    return nullptr;
}

void SpareBlocks::Drop() noexcept {
    const std::scoped_lock lock(g_mutex);
    DropAll();
}

size_t SpareBlocks::Waiting() noexcept {
    const std::scoped_lock lock(g_mutex);
    return g_bytes;
}

void SpareBlocks::Keep(void* block, size_t bytes, void (*free)(void*, size_t) noexcept) noexcept {
    const std::scoped_lock lock(g_mutex);
    if (g_closed) {
        free(block, bytes);
        return;
    }
    while (g_bytes + bytes > kKeptBytes) {
        const Spare oldest = Remove(0);
        oldest.free(oldest.block, oldest.bytes);
    }
    g_spares[g_count++] = {block, bytes, free};
    g_bytes += bytes;
}

} // namespace Graphics
