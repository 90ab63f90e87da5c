// SPDX-License-Identifier: MIT
// What the process keeps for pages to come, dropped: for tests that count what is alive.
#pragma once

#include "Software/SwGlyphCache.h"
#include "Software/SwSpareBlock.h"
#include "SpareBlocks.h"

inline void DropWaitingMemory() {
    Graphics::SwGlyphCache::DropWaiting();
    Graphics::SwSpareBlock::Drop();
    Graphics::SpareBlocks::Drop();
}
