// SPDX-License-Identifier: MIT
// The pixel shader's texture and sampler slots, and what is bound to them.
#pragma once

#include "D3D11Device.h"

namespace Graphics {

/// How a texture is sampled: nearest or bilinear, and the extend mode of each direction.
struct D3D11Sampling {
    bool linear = false;
    uint8_t extendX = GXExtendClamp;
    uint8_t extendY = GXExtendClamp;

    [[nodiscard]] size_t Index() const noexcept { return (linear ? 9U : 0U) + extendX * 3U + extendY; }
    [[nodiscard]] friend bool operator==(const D3D11Sampling& a, const D3D11Sampling& b) noexcept {
        return a.Index() == b.Index();
    }
};

class D3D11SamplerState {
public:
    static constexpr uint32_t kSlots = 16;

    explicit D3D11SamplerState(D3D11Device& device) noexcept : m_device(device) {}

    /// Raises "Sampler index is out of range".
    void SetTexture(uint32_t slot, const D3D11Texture& texture, const D3D11Sampling& sampling);
    /// Call when a target is bound: Direct3D then unbinds its texture from the slots.
    void Forget() noexcept;

private:
    D3D11Device& m_device;
    D3D11Ref<ID3D11SamplerState> m_states[18];
    const D3D11Texture* m_textures[kSlots] = {};
    ID3D11SamplerState* m_bound[kSlots] = {};
};

} // namespace Graphics
