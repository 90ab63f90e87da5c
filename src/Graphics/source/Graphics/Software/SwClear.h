// SPDX-License-Identifier: MIT
// Clearing: replaces pixels instead of compositing.
#pragma once

#include "SwPipeLine.h"

namespace Graphics {

/// Replaces the pixels of `region` inside `clip` (null: none) by the premultiplied colour. In a group their shape
/// becomes full, and the colour is composited over the group's backdrop.
void ClearPlanes(const RowKernels& kernels, const SwTargetPlanes& planes, const IntRect& region, const ClipRegion* clip,
                 uint32_t color);

} // namespace Graphics
