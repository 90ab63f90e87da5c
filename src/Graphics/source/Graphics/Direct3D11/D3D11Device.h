// SPDX-License-Identifier: MIT
// The device and its immediate context: creates every resource and sets every state of the back end. A failed call
// raises "D3D11 error" with the name of its operation. If the device hangs, was reset or its driver failed,
// D3D11DeviceLost is thrown instead, and the render target starts again with a new device. A removed device is marked
// as lost in either case, and the next paint creates another one.
#pragma once

#include <d3d11.h>
#include <dxgi.h>

#include <memory>
#include <span>

#include "D3D11Counters.h"
#include "D3D11FixedStates.h"
#include "D3D11Ref.h"
#include "D3D11Texture.h"

namespace Graphics {

/// Thrown inside the back end only; its render targets catch it.
struct D3D11DeviceLost {};

class D3D11Device {
public:
    /// Creates the device. Raises "D3D11 error" if there is none that can draw into the needed formats.
    D3D11Device();
    D3D11Device(const D3D11Device&) = delete;
    D3D11Device& operator=(const D3D11Device&) = delete;
    ~D3D11Device();

    [[nodiscard]] uint32_t FeatureLevel() const noexcept { return static_cast<uint32_t>(m_level); }
    /// Limit of a texture's width and height.
    [[nodiscard]] int32_t MaxTextureSize() const noexcept;
    /// Whether textures of any size can be repeated and mirrored.
    [[nodiscard]] bool TilesAnySize() const noexcept { return m_level >= D3D_FEATURE_LEVEL_10_0; }
    /// True once no call on the device can succeed.
    [[nodiscard]] bool IsLost() const noexcept { return m_lost; }
    /// Detects a loss before anything is drawn.
    void Probe() noexcept;
    /// Makes the next checked call find the device removed, as after a driver failure.
    void LoseForTest() noexcept { m_loseNext = true; }
    [[nodiscard]] ID3D11Device* Get() const noexcept { return m_device.get(); }
    [[nodiscard]] D3D11Counters& Counters() noexcept { return m_counters; }

    [[nodiscard]] D3D11Ref<IDXGISwapChain> CreateSwapChainForWindow(IDXGIFactory1& factory, HWND window,
                                                                    const DXGI_MODE_DESC& mode);
    /// A texture that the CPU can read.
    [[nodiscard]] std::shared_ptr<D3D11Texture> CreateSysMemSurface(int32_t width, int32_t height, DXGI_FORMAT format);
    /// `pixels` may be null if the texture is updated later.
    [[nodiscard]] std::shared_ptr<D3D11Texture> CreateVidMemTexture(int32_t width, int32_t height, DXGI_FORMAT format,
                                                                    const void* pixels, uint32_t strideBytes);
    [[nodiscard]] std::shared_ptr<D3D11Texture> CreateRenderTexture(int32_t width, int32_t height, DXGI_FORMAT format);
    [[nodiscard]] D3D11Ref<ID3D11Buffer> CreateConstantBuffer(uint32_t bytes);
    [[nodiscard]] D3D11Ref<ID3D11InputLayout> CreateInputLayout(std::span<const uint8_t> vertexShader);
    [[nodiscard]] D3D11Ref<ID3D11Buffer> CreateVertexBuffer(uint32_t bytes);
    /// Two triangles for each of `quads` quadrilaterals.
    [[nodiscard]] D3D11Ref<ID3D11Buffer> CreateIndexBuffer(uint32_t quads);
    [[nodiscard]] D3D11Ref<ID3D11VertexShader> CreateVertexShader(std::span<const uint8_t> code);
    [[nodiscard]] D3D11Ref<ID3D11PixelShader> CreatePixelShader(std::span<const uint8_t> code);

    /// `shape` may be null. Also sets the viewport.
    void SetRenderTarget(const D3D11Texture& color, const D3D11Texture* shape);
    void SetScissor(const IntRect& rect) noexcept;
    void SetBlend(D3D11Blend blend) noexcept { m_fixed.SetBlend(*m_context.get(), blend); }
    [[nodiscard]] D3D11_MAPPED_SUBRESOURCE MapResource(ID3D11Resource& resource, D3D11_MAP how);
    void Unmap(ID3D11Resource& resource) noexcept { m_context->Unmap(&resource, 0); }
    void ColorFill(const D3D11Texture& target, const float (&color)[4]);
    void SetTexture(uint32_t slot, const D3D11Texture& texture) noexcept;
    void SetSamplerState(uint32_t slot, ID3D11SamplerState* sampler) noexcept;
    [[nodiscard]] D3D11Ref<ID3D11SamplerState> CreateSamplerState(const D3D11_SAMPLER_DESC& desc);
    void SetDefaultDeviceState(ID3D11InputLayout* layout, ID3D11Buffer* indices) noexcept;
    void Present(IDXGISwapChain& chain);

    void Update(const D3D11Texture& texture, const IntRect& part, const void* pixels, uint32_t strideBytes) noexcept;
    /// Copies `part` to the same position.
    void Copy(const D3D11Texture& to, const D3D11Texture& from, const IntRect& part) noexcept {
        CopyPart(to, {part.left, part.top}, from, part);
    }
    /// Copies `part` so that its top left corner comes to `at`.
    void CopyPart(const D3D11Texture& to, const IntPoint& at, const D3D11Texture& from, const IntRect& part) noexcept;
    /// Copies `part` to the top left corner.
    void CopyToCorner(const D3D11Texture& to, const D3D11Texture& from, const IntRect& part) noexcept {
        CopyPart(to, {0, 0}, from, part);
    }
    /// The back buffer of the chain as a render texture.
    [[nodiscard]] D3D11Ref<ID3D11Texture2D> BackBuffer(IDXGISwapChain& chain);
    void CopyWhole(ID3D11Texture2D& to, const D3D11Texture& from) noexcept;
    [[nodiscard]] ID3D11DeviceContext& Context() const noexcept { return *m_context.get(); }

    /// Raises or throws as described at the head of this file; does nothing on success.
    void Check(HRESULT result, const char* function, const char* file, int line);

private:
    void CreateDevice();
    [[nodiscard]] std::shared_ptr<D3D11Texture> CreateTexture(const D3D11_TEXTURE2D_DESC& desc,
                                                              const D3D11_SUBRESOURCE_DATA* data, const char* function);

    D3D11Ref<ID3D11Device> m_device;
    D3D11Ref<ID3D11DeviceContext> m_context;
    D3D11FixedStates m_fixed;
    D3D_FEATURE_LEVEL m_level = D3D_FEATURE_LEVEL_9_1;
    bool m_lost = false;
    bool m_loseNext = false;
    D3D11Counters m_counters;
    D3D11LiveCount<D3D11Device> m_live;
};

/// Checks a result under the name of a device operation.
#define GX_D3D11_CHECK(device, operation, result) (device).Check((result), "Graphics::" operation, __FILE__, __LINE__)

} // namespace Graphics
