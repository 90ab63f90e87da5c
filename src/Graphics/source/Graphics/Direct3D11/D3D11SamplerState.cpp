// SPDX-License-Identifier: MIT
#include "D3D11SamplerState.h"

#include <algorithm>
#include <cfloat>

#include "../Exception.h"

namespace Graphics {

void D3D11SamplerState::SetTexture(uint32_t slot, const D3D11Texture& texture, const D3D11Sampling& sampling) {
    if (slot >= kSlots) {
        GX_RAISE("Graphics::D3D11SamplerState::SetTexture", "Sampler index is out of range");
    }
    D3D11Ref<ID3D11SamplerState>& state = m_states[sampling.Index()];
    if (!state) {
        constexpr D3D11_TEXTURE_ADDRESS_MODE kAddress[] = {D3D11_TEXTURE_ADDRESS_CLAMP, D3D11_TEXTURE_ADDRESS_WRAP,
                                                           D3D11_TEXTURE_ADDRESS_MIRROR};
        D3D11_SAMPLER_DESC desc{};
        desc.Filter = sampling.linear ? D3D11_FILTER_MIN_MAG_LINEAR_MIP_POINT : D3D11_FILTER_MIN_MAG_MIP_POINT;
        desc.AddressU = kAddress[sampling.extendX];
        desc.AddressV = kAddress[sampling.extendY];
        desc.AddressW = D3D11_TEXTURE_ADDRESS_CLAMP;
        desc.MaxAnisotropy = 1;
        desc.ComparisonFunc = D3D11_COMPARISON_NEVER;
        desc.MaxLOD = FLT_MAX;
        state = m_device.CreateSamplerState(desc);
    }
    if (m_bound[slot] != state.get()) {
        m_device.SetSamplerState(slot, state.get());
        m_bound[slot] = state.get();
    }
    if (m_textures[slot] != &texture) {
        m_device.SetTexture(slot, texture);
        m_textures[slot] = &texture;
    }
}

void D3D11SamplerState::Forget() noexcept { std::fill_n(m_textures, kSlots, nullptr); }

} // namespace Graphics
