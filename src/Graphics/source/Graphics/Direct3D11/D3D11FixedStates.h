// SPDX-License-Identifier: MIT
// The pipeline states created once: the blend states to choose from, and the states that all draws share.
#pragma once

#include <d3d11.h>

#include <cstddef>
#include <cstdint>

#include "D3D11Ref.h"

namespace Graphics {

class D3D11Device;

/// How a draw is combined with the pixels of its target.
enum class D3D11Blend : uint8_t {
    Replace,
    Over,   ///< s + d (1 - s.a)
    Remove, ///< d (1 - s.a)
    Add,    ///< s + d
    Invert, ///< d.a - d, alpha kept
};

class D3D11FixedStates {
public:
    /// Raises what the device raises.
    void Create(D3D11Device& device);

    void SetBlend(ID3D11DeviceContext& context, D3D11Blend blend) const noexcept {
        context.OMSetBlendState(m_blends[static_cast<size_t>(blend)].get(), nullptr, 0xFFFFFFFFU);
    }
    /// Sets all states that every draw shares.
    void SetShared(ID3D11DeviceContext& context) const noexcept {
        context.IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
        context.RSSetState(m_rasterizer.get());
        context.OMSetDepthStencilState(m_depth.get(), 0);
    }

private:
    static constexpr size_t kBlendCount = 5;

    D3D11Ref<ID3D11BlendState> m_blends[kBlendCount];
    D3D11Ref<ID3D11RasterizerState> m_rasterizer;
    D3D11Ref<ID3D11DepthStencilState> m_depth;
};

} // namespace Graphics
