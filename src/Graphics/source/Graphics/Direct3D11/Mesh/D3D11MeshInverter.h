// SPDX-License-Identifier: MIT
// Sends the pixels to invert to the GPU as quadrilaterals.
#pragma once

#include "../../Coverage/PixelInverter.h"
#include "D3D11Mesh.h"

namespace Graphics {

class D3D11MeshInverter final : public PixelInverter {
public:
    D3D11MeshInverter(D3D11Mesh& mesh, const IntRect& bounds, const ClipRegion* clip) noexcept
        : PixelInverter(bounds, clip), m_mesh(mesh) {}

private:
    void Invert(int32_t y, int32_t x0, int32_t x1) override {
        m_mesh.AddRectangle(static_cast<float>(x0), static_cast<float>(y), static_cast<float>(x1),
                            static_cast<float>(y + 1), 1.0F);
    }

    D3D11Mesh& m_mesh;
};

} // namespace Graphics
