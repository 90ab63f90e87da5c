// SPDX-License-Identifier: MIT
// Gradients as textures: the software renderer computes the colours, so that print and screen agree.
#pragma once

#include "../Paint/Brush.h"
#include "../Paint/Gradient.h"
#include "GdipColorSource.h"

namespace Graphics {

class GdipGradientColorSource : public GdipColorSource {
public:
    /// Raises "Not implemented" for an unknown kind.
    [[nodiscard]] static std::unique_ptr<GdipColorSource> Factory(const GradientBrush& brush, const GdipPlace& place);

protected:
    /// A width x height texture with the brush's colours under `transform`, which maps user space to texture pixels.
    void CreateTexture(const GradientBrush& brush, const Matrix& transform, int32_t width, int32_t height,
                       const GdipPlace& place, const Matrix& textureToDevice);
};

} // namespace Graphics
