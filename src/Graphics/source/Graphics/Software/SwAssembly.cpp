// SPDX-License-Identifier: MIT
#include "SwAssembly.h"

#include "../Drawing/Ink.h"
#include "../Scan/DeviceFigures.h"
#include "SwStillPixels.h"

namespace Graphics {
namespace {

[[nodiscard]] const SwMaskInput& MaskInput(Arena& arena, const SoftMask& mask, const SwDraw& draw) {
    auto* const input = arena.Make<SwMaskInput>();
    const SwWrittenPixels written(draw.planes, draw.visible);
    input->source = SwColorSource::Create(arena, InkOf(*mask.brush), ToRect(draw.visible), mask.transform, &written);
    input->type = mask.type;
    return *input;
}

} // namespace

void AssemblePipeLine(SwPipeLine& pipeLine, Arena& arena, const SwDraw& draw) {
    const GraphicsState& state = draw.state;
    pipeLine.SetBlendMode(state.blendMode);
    if (state.shapeMask.IsSet()) {
        pipeLine.AddShapeMask(MaskInput(arena, state.shapeMask, draw));
    }
    if (draw.mask != nullptr) {
        pipeLine.AddShapeMask(*draw.mask);
    }
    pipeLine.SetClip(draw.clip);
    if (state.opacityMask.IsSet()) {
        pipeLine.SetOpacityMask(MaskInput(arena, state.opacityMask, draw));
    }
    pipeLine.SetColorSource(draw.source);
}

} // namespace Graphics
