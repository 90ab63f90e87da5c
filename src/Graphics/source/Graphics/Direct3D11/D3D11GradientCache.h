// SPDX-License-Identifier: MIT
// The colours along linear gradients as textures of one row. Gradients are immutable, so a row is valid as long as its
// gradient lives; a few rows are kept.
#pragma once

#include <vector>

#include "../Paint/Brush.h"
#include "D3D11Device.h"

namespace Graphics {

class D3D11GradientCache {
public:
    /// Texels of a row: the first and the last have the colours before and after the axis, the others the colours at (i
    /// - 0.5) / (kTexels - 2).
    static constexpr int32_t kTexels = 2048;

    explicit D3D11GradientCache(D3D11Device& device) noexcept : m_device(device) {}

    /// The brush's gradient must be linear with distinct ends. Colours are premultiplied and include the brush's
    /// opacity.
    [[nodiscard]] std::shared_ptr<D3D11Texture> Row(const GradientBrush& brush);

private:
    struct Known {
        std::weak_ptr<const Gradient> gradient;
        float opacity;
        std::shared_ptr<D3D11Texture> row;
    };

    D3D11Device& m_device;
    std::vector<Known> m_known; // least recently used first
};

} // namespace Graphics
