// SPDX-License-Identifier: MIT
// Replaces pixels instead of composing with them.
#pragma once

#include "SwPipeLine.h"

namespace Graphics {

/// Replaces the pixels of `region` that `clip` (null: none) leaves by the premultiplied colour. In a group shape
/// becomes full there, and the colour lies over the group's backdrop.
void ClearPlanes(const RowKernels& kernels, const SwTargetPlanes& planes, const IntRect& region, const ClipRegion* clip,
                 uint32_t color);

} // namespace Graphics
