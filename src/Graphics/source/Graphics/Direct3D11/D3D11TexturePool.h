// SPDX-License-Identifier: MIT
// Textures used for one draw or layer: a texture is reused when nobody else holds it.
#pragma once

#include <vector>

#include "D3D11Device.h"

namespace Graphics {

class D3D11TexturePool {
public:
    explicit D3D11TexturePool(D3D11Device& device) noexcept : m_device(device) {}

    /// At least as large as requested; equal requests give equal sizes. Contents are undefined.
    [[nodiscard]] std::shared_ptr<D3D11Texture> Take(int32_t width, int32_t height, DXGI_FORMAT format, bool drawnInto);

private:
    D3D11Device& m_device;
    std::vector<std::shared_ptr<D3D11Texture>> m_textures; // least recently taken first
};

} // namespace Graphics
