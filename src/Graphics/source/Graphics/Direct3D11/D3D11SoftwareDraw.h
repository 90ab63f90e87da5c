// SPDX-License-Identifier: MIT
// A whole draw computed by the processor: quadrilaterals, fragments, composition and blending, for shaders that the
// platform's compiler refuses. Slow, since the card has to be waited for; the rest of the page stays on the card.
#pragma once

#include "D3D11Batch.h"
#include "D3D11SoftwarePlane.h"

namespace Graphics {

class D3D11SoftwareDraw {
public:
    /// The pixels of `state`'s target that `mesh` covers.
    D3D11SoftwareDraw(D3D11Device& device, const D3D11DrawState& state, const D3D11Mesh& mesh);

    /// False where a texture is of a format that is not known.
    [[nodiscard]] static bool Can(const D3D11DrawState& state) noexcept;
    void Run();

private:
    using Float4 = D3D11ShaderModel::Float4;

    void Triangle(const D3D11Vertex& a, const D3D11Vertex& b, const D3D11Vertex& c);
    void Pixel(int32_t x, int32_t y, const Float4& diffuse);

    D3D11Device& m_device;
    const D3D11DrawState& m_state;
    const D3D11Mesh& m_mesh;
    IntRect m_box; // pixels of the target
    D3D11SoftwarePlane m_color;
    D3D11SoftwarePlane m_shape;
    D3D11SoftwarePlane m_inputs[D3D11DrawState::kMaxTextures];
};

} // namespace Graphics
