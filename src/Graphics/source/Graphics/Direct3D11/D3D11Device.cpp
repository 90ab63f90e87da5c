// SPDX-License-Identifier: MIT
#include "D3D11Device.h"

#include <vector>

#include "../Exception.h"
#include "D3D11Calls.h"
#include "Mesh/D3D11Mesh.h"

namespace Graphics {
namespace {

constexpr UINT kPreventAlteringLayers = 0x80;

[[nodiscard]] D3D11_TEXTURE2D_DESC TextureDesc(int32_t width, int32_t height, DXGI_FORMAT format) noexcept {
    D3D11_TEXTURE2D_DESC desc{};
    desc.Width = static_cast<UINT>(width);
    desc.Height = static_cast<UINT>(height);
    desc.MipLevels = 1;
    desc.ArraySize = 1;
    desc.Format = format;
    desc.SampleDesc.Count = 1;
    return desc;
}

[[nodiscard]] D3D11_BOX Box(const IntRect& r) noexcept {
    return {static_cast<UINT>(r.left),  static_cast<UINT>(r.top),    0,
            static_cast<UINT>(r.right), static_cast<UINT>(r.bottom), 1};
}

} // namespace

D3D11Device::D3D11Device() {
    CreateDevice();
    m_fixed.Create(*this);
}

D3D11Device::~D3D11Device() {
    if (m_context) {
        m_context->ClearState();
        m_context->Flush();
    }
}

void D3D11Device::Check(HRESULT result, const char* function, const char* file, int line) {
    HRESULT reason = S_OK;
    if (m_loseNext) {
        result = DXGI_ERROR_DEVICE_REMOVED;
        reason = DXGI_ERROR_DEVICE_HUNG;
    } else if (SUCCEEDED(result)) {
        return;
    } else if (result == DXGI_ERROR_DEVICE_REMOVED && m_device) {
        reason = m_device->GetDeviceRemovedReason();
    }
    if (result == DXGI_ERROR_DEVICE_REMOVED) {
        m_loseNext = false;
        m_lost = true;
    }
    if (reason == DXGI_ERROR_DEVICE_HUNG || reason == DXGI_ERROR_DEVICE_RESET ||
        reason == DXGI_ERROR_DRIVER_INTERNAL_ERROR) {
        throw D3D11DeviceLost();
    }
    Raise(function, file, line, "D3D11 error");
}

void D3D11Device::Probe() noexcept {
    if (m_loseNext || FAILED(m_device->GetDeviceRemovedReason())) {
        m_loseNext = false;
        m_lost = true;
    }
}

void D3D11Device::CreateDevice() {
    static constexpr D3D_FEATURE_LEVEL kLevels[] = {
        D3D_FEATURE_LEVEL_11_1, D3D_FEATURE_LEVEL_11_0, D3D_FEATURE_LEVEL_10_1, D3D_FEATURE_LEVEL_10_0,
        D3D_FEATURE_LEVEL_9_3,  D3D_FEATURE_LEVEL_9_2,  D3D_FEATURE_LEVEL_9_1,
    };
    GX_D3D11_CHECK(*this, "D3D11Device::CreateDevice",
                   g_d3d11.createDevice(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, kPreventAlteringLayers, kLevels,
                                        static_cast<UINT>(std::size(kLevels)), D3D11_SDK_VERSION, m_device.Out(),
                                        &m_level, m_context.Out()));
    // Groups draw into two targets at once, which needs at least level 9.3.
    HRESULT able = m_level >= D3D_FEATURE_LEVEL_9_3 ? S_OK : E_NOTIMPL;
    const auto needs = [&](DXGI_FORMAT format, UINT uses) {
        UINT has = 0;
        if (SUCCEEDED(able) && (FAILED(m_device->CheckFormatSupport(format, &has)) || (has & uses) != uses)) {
            able = E_NOTIMPL;
        }
    };
    constexpr UINT kDrawn =
        D3D11_FORMAT_SUPPORT_TEXTURE2D | D3D11_FORMAT_SUPPORT_RENDER_TARGET | D3D11_FORMAT_SUPPORT_BLENDABLE;
    needs(DXGI_FORMAT_B8G8R8A8_UNORM, kDrawn | D3D11_FORMAT_SUPPORT_SHADER_SAMPLE);
    needs(DXGI_FORMAT_R16G16B16A16_FLOAT, kDrawn | D3D11_FORMAT_SUPPORT_SHADER_SAMPLE);
    needs(DXGI_FORMAT_A8_UNORM, D3D11_FORMAT_SUPPORT_TEXTURE2D | D3D11_FORMAT_SUPPORT_SHADER_SAMPLE);
    GX_D3D11_CHECK(*this, "D3D11Device::CreateDevice", able);
}

int32_t D3D11Device::MaxTextureSize() const noexcept {
    if (m_level >= D3D_FEATURE_LEVEL_11_0) {
        return 16384;
    }
    if (m_level >= D3D_FEATURE_LEVEL_10_0) {
        return 8192;
    }
    return m_level >= D3D_FEATURE_LEVEL_9_3 ? 4096 : 2048;
}

D3D11Ref<IDXGISwapChain> D3D11Device::CreateSwapChainForWindow(IDXGIFactory1& factory, HWND window,
                                                               const DXGI_MODE_DESC& mode) {
    DXGI_SWAP_CHAIN_DESC desc{};
    desc.BufferDesc = mode;
    desc.SampleDesc.Count = 1;
    desc.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
    desc.BufferCount = 1;
    desc.OutputWindow = window;
    desc.Windowed = TRUE;
    desc.SwapEffect = DXGI_SWAP_EFFECT_DISCARD;
    D3D11Ref<IDXGISwapChain> chain;
    GX_D3D11_CHECK(*this, "D3D11Device::CreateSwapChainForWindow",
                   factory.CreateSwapChain(m_device.get(), &desc, chain.Out()));
    return chain;
}

std::shared_ptr<D3D11Texture> D3D11Device::CreateTexture(const D3D11_TEXTURE2D_DESC& desc,
                                                         const D3D11_SUBRESOURCE_DATA* data, const char* function) {
    auto out = std::make_shared<D3D11Texture>(static_cast<int32_t>(desc.Width), static_cast<int32_t>(desc.Height),
                                              desc.Format);
    Check(m_device->CreateTexture2D(&desc, data, out->m_resource.Out()), function, __FILE__, __LINE__);
    if ((desc.BindFlags & D3D11_BIND_SHADER_RESOURCE) != 0) {
        Check(m_device->CreateShaderResourceView(out->Resource(), nullptr, out->m_view.Out()), function, __FILE__,
              __LINE__);
    }
    if ((desc.BindFlags & D3D11_BIND_RENDER_TARGET) != 0) {
        Check(m_device->CreateRenderTargetView(out->Resource(), nullptr, out->m_target.Out()), function, __FILE__,
              __LINE__);
    }
    return out;
}

std::shared_ptr<D3D11Texture> D3D11Device::CreateSysMemSurface(int32_t width, int32_t height, DXGI_FORMAT format) {
    D3D11_TEXTURE2D_DESC desc = TextureDesc(width, height, format);
    desc.Usage = D3D11_USAGE_STAGING;
    desc.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
    return CreateTexture(desc, nullptr, "Graphics::D3D11Device::CreateSysMemSurface");
}

std::shared_ptr<D3D11Texture> D3D11Device::CreateVidMemTexture(int32_t width, int32_t height, DXGI_FORMAT format,
                                                               const void* pixels, uint32_t strideBytes) {
    D3D11_TEXTURE2D_DESC desc = TextureDesc(width, height, format);
    desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    const D3D11_SUBRESOURCE_DATA data{pixels, strideBytes, 0};
    return CreateTexture(desc, pixels == nullptr ? nullptr : &data, "Graphics::D3D11Device::CreateVidMemTexture");
}

std::shared_ptr<D3D11Texture> D3D11Device::CreateRenderTexture(int32_t width, int32_t height, DXGI_FORMAT format) {
    D3D11_TEXTURE2D_DESC desc = TextureDesc(width, height, format);
    desc.BindFlags = D3D11_BIND_SHADER_RESOURCE | D3D11_BIND_RENDER_TARGET;
    return CreateTexture(desc, nullptr, "Graphics::D3D11Device::CreateRenderTexture");
}

D3D11Ref<ID3D11Buffer> D3D11Device::CreateConstantBuffer(uint32_t bytes) {
    const D3D11_BUFFER_DESC desc{bytes, D3D11_USAGE_DEFAULT, D3D11_BIND_CONSTANT_BUFFER, 0, 0, 0};
    D3D11Ref<ID3D11Buffer> buffer;
    GX_D3D11_CHECK(*this, "D3D11Device::CreateConstantBuffer", m_device->CreateBuffer(&desc, nullptr, buffer.Out()));
    return buffer;
}

D3D11Ref<ID3D11Buffer> D3D11Device::CreateVertexBuffer(uint32_t bytes) {
    const D3D11_BUFFER_DESC desc{bytes, D3D11_USAGE_DYNAMIC, D3D11_BIND_VERTEX_BUFFER, D3D11_CPU_ACCESS_WRITE, 0, 0};
    D3D11Ref<ID3D11Buffer> buffer;
    GX_D3D11_CHECK(*this, "D3D11Device::CreateVertexBuffer", m_device->CreateBuffer(&desc, nullptr, buffer.Out()));
    return buffer;
}

D3D11Ref<ID3D11Buffer> D3D11Device::CreateIndexBuffer(uint32_t quads) {
    std::vector<uint16_t> indices;
    indices.reserve(quads * size_t{6});
    for (uint32_t q = 0; q < quads; ++q) {
        for (const uint32_t corner : {0U, 1U, 2U, 2U, 1U, 3U}) {
            indices.push_back(static_cast<uint16_t>(q * D3D11Mesh::kQuadVertices + corner));
        }
    }
    const auto bytes = static_cast<UINT>(indices.size() * sizeof(uint16_t));
    const D3D11_BUFFER_DESC desc{bytes, D3D11_USAGE_IMMUTABLE, D3D11_BIND_INDEX_BUFFER, 0, 0, 0};
    const D3D11_SUBRESOURCE_DATA data{indices.data(), 0, 0};
    D3D11Ref<ID3D11Buffer> buffer;
    GX_D3D11_CHECK(*this, "D3D11Device::CreateVertexBuffer", m_device->CreateBuffer(&desc, &data, buffer.Out()));
    return buffer;
}

D3D11Ref<ID3D11InputLayout> D3D11Device::CreateInputLayout(std::span<const uint8_t> vertexShader) {
    static constexpr D3D11_INPUT_ELEMENT_DESC kElements[] = {
        {"POSITION", 0, DXGI_FORMAT_R32G32_FLOAT, 0, 0, D3D11_INPUT_PER_VERTEX_DATA, 0},
        {"COLOR", 0, DXGI_FORMAT_R32G32B32A32_FLOAT, 0, sizeof(float) * 2, D3D11_INPUT_PER_VERTEX_DATA, 0},
    };
    D3D11Ref<ID3D11InputLayout> layout;
    GX_D3D11_CHECK(*this, "D3D11Device::CreateInputLayout",
                   m_device->CreateInputLayout(kElements, static_cast<UINT>(std::size(kElements)), vertexShader.data(),
                                               vertexShader.size(), layout.Out()));
    return layout;
}

D3D11Ref<ID3D11VertexShader> D3D11Device::CreateVertexShader(std::span<const uint8_t> code) {
    D3D11Ref<ID3D11VertexShader> shader;
    GX_D3D11_CHECK(*this, "D3D11Device::CreateVertexShader",
                   m_device->CreateVertexShader(code.data(), code.size(), nullptr, shader.Out()));
    return shader;
}

D3D11Ref<ID3D11PixelShader> D3D11Device::CreatePixelShader(std::span<const uint8_t> code) {
    D3D11Ref<ID3D11PixelShader> shader;
    GX_D3D11_CHECK(*this, "D3D11Device::CreatePixelShader",
                   m_device->CreatePixelShader(code.data(), code.size(), nullptr, shader.Out()));
    return shader;
}

D3D11Ref<ID3D11SamplerState> D3D11Device::CreateSamplerState(const D3D11_SAMPLER_DESC& desc) {
    D3D11Ref<ID3D11SamplerState> sampler;
    GX_D3D11_CHECK(*this, "D3D11Device::SetSamplerState", m_device->CreateSamplerState(&desc, sampler.Out()));
    return sampler;
}

void D3D11Device::SetRenderTarget(const D3D11Texture& color, const D3D11Texture* shape) {
    GX_D3D11_CHECK(*this, "D3D11Device::SetRenderTarget", color.Target() != nullptr ? S_OK : E_INVALIDARG);
    ID3D11RenderTargetView* targets[2] = {color.Target(), shape != nullptr ? shape->Target() : nullptr};
    m_context->OMSetRenderTargets(shape != nullptr ? 2 : 1, targets, nullptr);
    const D3D11_VIEWPORT viewport{0.0F, 0.0F, static_cast<float>(color.Width()), static_cast<float>(color.Height()),
                                  0.0F, 1.0F};
    m_context->RSSetViewports(1, &viewport);
}

void D3D11Device::SetScissor(const IntRect& rect) noexcept {
    const D3D11_RECT r{rect.left, rect.top, rect.right, rect.bottom};
    m_context->RSSetScissorRects(1, &r);
}

D3D11_MAPPED_SUBRESOURCE D3D11Device::MapResource(ID3D11Resource& resource, D3D11_MAP how) {
    D3D11_MAPPED_SUBRESOURCE mapped{};
    GX_D3D11_CHECK(*this, "D3D11Device::MapResource", m_context->Map(&resource, 0, how, 0, &mapped));
    return mapped;
}

void D3D11Device::ColorFill(const D3D11Texture& target, const float (&color)[4]) {
    GX_D3D11_CHECK(*this, "D3D11Device::ColorFill", target.Target() != nullptr ? S_OK : E_INVALIDARG);
    m_context->ClearRenderTargetView(target.Target(), color);
}

void D3D11Device::SetTexture(uint32_t slot, const D3D11Texture& texture) noexcept {
    ID3D11ShaderResourceView* view = texture.View();
    m_context->PSSetShaderResources(slot, 1, &view);
}

void D3D11Device::SetSamplerState(uint32_t slot, ID3D11SamplerState* sampler) noexcept {
    m_context->PSSetSamplers(slot, 1, &sampler);
}

void D3D11Device::SetDefaultDeviceState(ID3D11InputLayout* layout, ID3D11Buffer* indices) noexcept {
    m_context->IASetInputLayout(layout);
    m_context->IASetIndexBuffer(indices, DXGI_FORMAT_R16_UINT, 0);
    m_fixed.SetShared(*m_context.get());
}

void D3D11Device::Present(IDXGISwapChain& chain) {
    // DXGI_STATUS_OCCLUDED is a success: no part of the window is visible.
    GX_D3D11_CHECK(*this, "D3D11Device::Present", chain.Present(0, 0));
}

void D3D11Device::Update(const D3D11Texture& texture, const IntRect& part, const void* pixels,
                         uint32_t strideBytes) noexcept {
    const D3D11_BOX box = Box(part);
    m_context->UpdateSubresource(texture.Resource(), 0, &box, pixels, strideBytes, 0);
}

void D3D11Device::CopyPart(const D3D11Texture& to, const IntPoint& at, const D3D11Texture& from,
                           const IntRect& part) noexcept {
    const D3D11_BOX box = Box(part);
    m_context->CopySubresourceRegion(to.Resource(), 0, static_cast<UINT>(at.x), static_cast<UINT>(at.y), 0,
                                     from.Resource(), 0, &box);
}

D3D11Ref<ID3D11Texture2D> D3D11Device::BackBuffer(IDXGISwapChain& chain) {
    D3D11Ref<ID3D11Texture2D> buffer;
    GX_D3D11_CHECK(*this, "D3D11Device::Present", chain.GetBuffer(0, IID_ID3D11Texture2D, buffer.OutVoid()));
    return buffer;
}

void D3D11Device::CopyWhole(ID3D11Texture2D& to, const D3D11Texture& from) noexcept {
    m_context->CopyResource(&to, from.Resource());
}

} // namespace Graphics
