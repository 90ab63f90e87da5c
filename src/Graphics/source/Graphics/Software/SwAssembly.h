// SPDX-License-Identifier: MIT
// Puts a graphics state into the pipeline of a draw and runs it: for every back end that draws in software.
#pragma once

#include "../Drawing/GraphicsState.h"
#include "../Sources/StillPixels.h"
#include "SwPipeLine.h"

namespace Graphics {

/// Everything of a draw but its coverage.
struct SwDraw {
    const GraphicsState& state; ///< of which the blend mode and the masks count
    const ClipRegion* clip;     ///< null: none
    const SwTargetPlanes& planes;
    const IntRect& visible; ///< the pixels that the draw may change
    SwColorSource& source;
    const SwMaskInput* mask; ///< the draw's own; null: none
};

/// What a draw into the planes may write inside `area`.
[[nodiscard]] WrittenPixels WrittenBy(const SwTargetPlanes& planes, const IntRect& area) noexcept;

/// Mask sources are made in the arena.
void AssemblePipeLine(SwPipeLine& pipeLine, Arena& arena, const SwDraw& draw);

/// Calls cover(pipeLine), which sends the coverage.
template <class Cover> void RunPipeLine(SwRowBuffers& buffers, Arena& arena, const SwDraw& draw, Cover&& cover) {
    SwPipeLine pipeLine(ActiveKernels(), buffers, draw.planes, draw.visible);
    AssemblePipeLine(pipeLine, arena, draw);
    cover(pipeLine);
}

} // namespace Graphics
