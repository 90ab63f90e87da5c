// SPDX-License-Identifier: MIT
// What the process keeps for pages to come, dropped: for tests that count what is alive.
#pragma once

#include "Coverage/GlyphCache.h"
#include "Coverage/SpareBlock.h"
#include "SpareBlocks.h"

inline void DropWaitingMemory() {
    Graphics::GlyphCache::DropWaiting();
    Graphics::SpareBlock::Drop();
    Graphics::SpareBlocks::Drop();
}
