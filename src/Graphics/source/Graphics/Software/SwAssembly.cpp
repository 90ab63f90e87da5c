// SPDX-License-Identifier: MIT
#include "SwAssembly.h"

#include <algorithm>
#include <functional>

#include "../Drawing/Ink.h"
#include "../Scan/DeviceFigures.h"

namespace Graphics {
namespace {

[[nodiscard]] const SwMaskInput& MaskInput(Arena& arena, const SoftMask& mask, const SwDraw& draw) {
    auto* const input = arena.Make<SwMaskInput>();
    const WrittenPixels written = WrittenBy(draw.planes, draw.visible);
    input->source = SwColorSource::Create(arena, InkOf(*mask.brush), ToRect(draw.visible), mask.transform, &written);
    input->type = mask.type;
    return *input;
}

} // namespace

WrittenPixels WrittenBy(const SwTargetPlanes& planes, const IntRect& area) noexcept {
    WrittenPixels written;
    written.visible = area;
    if (planes.alpha != nullptr || IsEmpty(area)) {
        return written; // groups have their own memory
    }
    const auto* first = reinterpret_cast<const uint8_t*>(PixelAt(planes, area.left, area.top));
    const auto* last = reinterpret_cast<const uint8_t*>(PixelAt(planes, area.left, area.bottom - 1));
    written.begin = std::min(first, last, std::less<>());
    written.end = std::max(first, last, std::less<>()) + static_cast<size_t>(area.right - area.left) * 4;
    return written;
}

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
