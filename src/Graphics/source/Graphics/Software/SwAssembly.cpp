// SPDX-License-Identifier: MIT
#include "SwAssembly.h"

#include "../Scan/DeviceFigures.h"

namespace Graphics {
namespace {

[[nodiscard]] SwMaskInput MaskInput(Arena& arena, const SoftMask& mask, const IntRect& visible) {
    SwMaskInput input;
    input.source = SwColorSource::CreateFromBrush(arena, *mask.brush, ToRect(visible), mask.transform);
    input.type = mask.type;
    return input;
}

} // namespace

void AssemblePipeLine(SwPipeLine& pipeLine, Arena& arena, const GraphicsState& state, const SwClip* clip,
                      const IntRect& visible, const SwMaskInput* extra) {
    pipeLine.SetBlendMode(state.blendMode);
    if (state.shapeMask.IsSet()) {
        pipeLine.AddShapeMask(MaskInput(arena, state.shapeMask, visible));
    }
    if (extra != nullptr) {
        pipeLine.AddShapeMask(*extra);
    }
    pipeLine.SetClip(clip);
    if (state.opacityMask.IsSet()) {
        pipeLine.SetOpacityMask(MaskInput(arena, state.opacityMask, visible));
    }
}

} // namespace Graphics
