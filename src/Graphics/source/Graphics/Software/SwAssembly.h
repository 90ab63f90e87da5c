// SPDX-License-Identifier: MIT
// Puts a graphics state into the pipeline of a draw: for every back end that draws in software.
#pragma once

#include "SwSubTarget.h"

namespace Graphics {

/// Blend mode, masks and clip of `state`, and `extra` (null: none) as the call's own mask. `visible`: the pixels that
/// the draw may change. Mask sources are made in the arena.
void AssemblePipeLine(SwPipeLine& pipeLine, Arena& arena, const SwState& state, const IntRect& visible,
                      const SwMaskInput* extra);

} // namespace Graphics
