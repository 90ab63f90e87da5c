// SPDX-License-Identifier: MIT
// Collects the quadrilaterals of draws with the same state and sends them together: one map of the vertex buffer and
// usually one draw call. Draws that read the pixels below are joined as long as they do not touch each other; the
// pixels below are copied just before, only where they are touched.
#pragma once

#include "D3D11SamplerState.h"
#include "D3D11ShaderCache.h"
#include "Mesh/D3D11Mesh.h"
#include "Shaders/D3D11ConstantTable.h"

namespace Graphics {

/// The state that two draws must share to be joined.
struct D3D11DrawState {
    static constexpr size_t kMaxTextures = 12;

    struct Input {
        std::shared_ptr<D3D11Texture> texture;
        D3D11Sampling sampling;
    };

    D3D11ShaderKey key;
    D3D11Blend blend = D3D11Blend::Over;
    std::shared_ptr<D3D11Texture> color; ///< the target
    std::shared_ptr<D3D11Texture> shape; ///< null: none
    IntPoint origin{};                   ///< the device pixel of the target's corner
    IntRect scissor{};                   ///< device pixels
    Input inputs[kMaxTextures];          ///< in the order of the shader's registers
    size_t inputCount = 0;
    D3D11VertexShaderConstantTable vertexConstants;
    D3D11PixelShaderConstantTable pixelConstants;
    std::shared_ptr<D3D11Texture> colorCopy; ///< null: the target's pixels are not read
    std::shared_ptr<D3D11Texture> shapeCopy;

    void AddInput(std::shared_ptr<D3D11Texture> texture, const D3D11Sampling& sampling) {
        inputs[inputCount++] = {std::move(texture), sampling};
    }
    [[nodiscard]] bool Equals(const D3D11DrawState& o) const noexcept;
};

class D3D11Batch {
public:
    D3D11Batch(D3D11Device& device, D3D11ShaderCache& shaders, D3D11SamplerState& samplers) noexcept
        : m_device(device), m_shaders(shaders), m_samplers(samplers) {}

    /// Starts a draw, whose shader must exist, and returns the mesh for its quadrilaterals. They lie inside `box`
    /// (device pixels), or the scissor cuts them to it.
    [[nodiscard]] D3D11Mesh& Begin(D3D11DrawState&& state, const IntRect& box);
    /// Sends the collected quadrilaterals.
    void Flush();
    /// Discards the collected quadrilaterals.
    void Drop() noexcept;

private:
    [[nodiscard]] bool Joins(const D3D11DrawState& state, const IntRect& box) const noexcept;
    void Prepare();
    void CopyTouched();
    void SetConstants();
    [[nodiscard]] uint32_t FillVertexBuffer();

    D3D11Device& m_device;
    D3D11ShaderCache& m_shaders;
    D3D11SamplerState& m_samplers;

    D3D11Mesh m_mesh;
    D3D11DrawState m_state;
    bool m_open = false;
    HeapArray<IntRect> m_boxes; // boxes of the draws, if pixels below are read

    D3D11Ref<ID3D11Buffer> m_vertices;
    D3D11Ref<ID3D11Buffer> m_indices;
    D3D11Ref<ID3D11Buffer> m_vertexConstants;
    D3D11Ref<ID3D11Buffer> m_pixelConstants;
    size_t m_capacity = 0; // bytes of m_vertices
    size_t m_used = 0;
};

} // namespace Graphics
