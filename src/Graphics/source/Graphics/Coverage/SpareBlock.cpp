// SPDX-License-Identifier: MIT
#include "SpareBlock.h"

#include <atomic>
#include <memory>
#include <new>
#include <utility>

namespace Graphics {
namespace {

constinit std::atomic<SpareBlock::Block*> g_waiting{nullptr};

/// Frees the block when the library is unloaded, which may be before the process ends.
struct Sweeper {
    ~Sweeper() { SpareBlock::Drop(); }
} g_sweeper;

} // namespace

SpareBlock::Block SpareBlock::Take() noexcept {
    const std::unique_ptr<Block> waiting(g_waiting.exchange(nullptr));
    return waiting == nullptr ? Block() : std::move(*waiting);
}

void SpareBlock::Give(Block block) noexcept {
    const size_t bytes = block.capacity();
    if (bytes < ProcessHeap::kSystemBytes || bytes > kMostBytes) {
        return;
    }
    // If there is no memory for the record, the block is freed.
    if (auto* const waiting = new (std::nothrow) Block(std::move(block)); waiting != nullptr) {
        delete g_waiting.exchange(waiting);
    }
}

void SpareBlock::Drop() noexcept { delete g_waiting.exchange(nullptr); }

} // namespace Graphics
