// SPDX-License-Identifier: MIT
// Puts a graphics state into the pipeline of a draw: for every back end that draws in software.
#pragma once

#include "../Drawing/GraphicsState.h"
#include "SwPipeLine.h"

namespace Graphics {

/// Blend mode and masks of `state`, the clip (null: none), and `extra` (null: none) as the call's own mask. `visible`:
/// the pixels that the draw may change. Mask sources are made in the arena.
void AssemblePipeLine(SwPipeLine& pipeLine, Arena& arena, const GraphicsState& state, const SwClip* clip,
                      const IntRect& visible, const SwMaskInput* extra);

} // namespace Graphics
