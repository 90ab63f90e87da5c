// SPDX-License-Identifier: MIT
// The pixels of a texture in the processor's memory: read from the card, sampled as it samples, and sent back.
#pragma once

#include "../ProcessHeap.h"
#include "D3D11Device.h"
#include "D3D11SamplerState.h"
#include "Shaders/D3D11ShaderModel.h"

namespace Graphics {

class D3D11SoftwarePlane {
public:
    using Float4 = D3D11ShaderModel::Float4;

    [[nodiscard]] static bool Knows(const D3D11Texture& texture) noexcept { return PixelBytes(texture.Format()) != 0; }

    /// Waits for the card. `part` lies inside the texture.
    void Read(D3D11Device& device, const D3D11Texture& texture, const IntRect& part);
    /// To where it was read from.
    void Write(D3D11Device& device, const D3D11Texture& texture) const noexcept;

    /// In the texture's pixels, inside the part.
    [[nodiscard]] Float4 At(int32_t x, int32_t y) const noexcept;
    void Set(int32_t x, int32_t y, const Float4& value) noexcept;
    /// Of a texture read whole, at coordinates from 0 to 1.
    [[nodiscard]] Float4 Sample(float u, float v, const D3D11Sampling& sampling) const noexcept;

private:
    [[nodiscard]] static size_t PixelBytes(DXGI_FORMAT format) noexcept;
    [[nodiscard]] size_t Offset(int32_t x, int32_t y) const noexcept {
        return (static_cast<size_t>(y - m_part.top) * static_cast<size_t>(m_part.right - m_part.left) +
                static_cast<size_t>(x - m_part.left)) *
               m_pixelBytes;
    }

    HeapArray<uint8_t> m_bytes; // rows without gaps, in the texture's format
    IntRect m_part{};
    size_t m_pixelBytes = 0;
};

} // namespace Graphics
