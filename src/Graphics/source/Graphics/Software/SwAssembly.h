// SPDX-License-Identifier: MIT
// Assembles and runs the pipeline of a draw from a graphics state, for every back end that paints in software.
#pragma once

#include "../Drawing/GraphicsState.h"
#include "../Sources/StillPixels.h"
#include "SwPipeLine.h"

namespace Graphics {

/// Everything about a draw except its coverage.
struct SwDraw {
    const GraphicsState& state; ///< only the blend mode and the masks are used
    const ClipRegion* clip;     ///< null: none
    const SwTargetPlanes& planes;
    const IntRect& visible; ///< the pixels that the draw may change
    SwColorSource& source;
    const SwMaskInput* mask; ///< the draw's own mask; null: none
};

/// The memory that a draw into the planes may write inside `area`.
[[nodiscard]] WrittenPixels WrittenBy(const SwTargetPlanes& planes, const IntRect& area) noexcept;

/// Mask sources are allocated in the arena.
void AssemblePipeLine(SwPipeLine& pipeLine, Arena& arena, const SwDraw& draw);

/// Calls cover(pipeLine), which must send the coverage.
template <class Cover> void RunPipeLine(SwRowBuffers& buffers, Arena& arena, const SwDraw& draw, Cover&& cover) {
    SwPipeLine pipeLine(ActiveKernels(), buffers, draw.planes, draw.visible);
    AssemblePipeLine(pipeLine, arena, draw);
    cover(pipeLine);
}

} // namespace Graphics
