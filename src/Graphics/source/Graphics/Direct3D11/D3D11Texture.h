// SPDX-License-Identifier: MIT
// A texture with the views that its use needs.
#pragma once

#include <d3d11.h>

#include "../Types.h"
#include "D3D11Counters.h"
#include "D3D11Ref.h"

namespace Graphics {

class D3D11Texture {
public:
    D3D11Texture(int32_t width, int32_t height, DXGI_FORMAT format) noexcept
        : m_width(width), m_height(height), m_format(format) {}
    D3D11Texture(const D3D11Texture&) = delete;
    D3D11Texture& operator=(const D3D11Texture&) = delete;

    [[nodiscard]] int32_t Width() const noexcept { return m_width; }
    [[nodiscard]] int32_t Height() const noexcept { return m_height; }
    [[nodiscard]] DXGI_FORMAT Format() const noexcept { return m_format; }
    [[nodiscard]] ID3D11Texture2D* Resource() const noexcept { return m_resource.get(); }
    /// Null if shaders do not read it.
    [[nodiscard]] ID3D11ShaderResourceView* View() const noexcept { return m_view.get(); }
    /// Null if nothing is drawn into it.
    [[nodiscard]] ID3D11RenderTargetView* Target() const noexcept { return m_target.get(); }
    [[nodiscard]] uint32_t PixelBytes() const noexcept {
        return m_format == DXGI_FORMAT_A8_UNORM ? 1 : m_format == DXGI_FORMAT_R16G16B16A16_FLOAT ? 8 : 4;
    }
    [[nodiscard]] uint64_t ByteSize() const noexcept {
        return uint64_t{PixelBytes()} * static_cast<uint64_t>(m_width) * static_cast<uint64_t>(m_height);
    }

private:
    friend class D3D11Device;

    int32_t m_width;
    int32_t m_height;
    DXGI_FORMAT m_format;
    D3D11Ref<ID3D11Texture2D> m_resource;
    D3D11Ref<ID3D11ShaderResourceView> m_view;
    D3D11Ref<ID3D11RenderTargetView> m_target;
    D3D11LiveCount<D3D11Texture> m_live;
};

} // namespace Graphics
