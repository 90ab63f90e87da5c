// SPDX-License-Identifier: MIT
#include "D3D11WindowSurface.h"

#include <algorithm>

#include "../Exception.h"

namespace Graphics {
namespace {

constexpr DXGI_FORMAT kFormat = DXGI_FORMAT_B8G8R8A8_UNORM;
constexpr const char* kConstructor = "Graphics::D3D11WindowSurface::D3D11WindowSurface";

} // namespace

D3D11WindowSurface::D3D11WindowSurface(HWND window) : m_window(window) {
    if (IsWindow(window) == FALSE) {
        GX_RAISE(kConstructor, "The window does not exist");
    }
}

Size D3D11WindowSurface::GetSize() const {
    RECT client{};
    if (GetClientRect(m_window, &client) == FALSE) {
        return {0, 0};
    }
    return {static_cast<uint32_t>(std::max<LONG>(client.right - client.left, 0)),
            static_cast<uint32_t>(std::max<LONG>(client.bottom - client.top, 0))};
}

DXGI_MODE_DESC D3D11WindowSurface::DisplayMode(D3D11Context& context) const {
    D3D11Ref<IDXGIDevice> device;
    D3D11Ref<IDXGIAdapter> adapter;
    GX_D3D11_CHECK(context.Device(), "D3D11WindowSurface::D3D11WindowSurface",
                   context.Device().Get()->QueryInterface(IID_IDXGIDevice, device.OutVoid()));
    GX_D3D11_CHECK(context.Device(), "D3D11WindowSurface::D3D11WindowSurface", device->GetAdapter(adapter.Out()));
    const HMONITOR monitor = MonitorFromWindow(m_window, MONITOR_DEFAULTTONEAREST);
    D3D11Ref<IDXGIOutput> chosen;
    D3D11Ref<IDXGIOutput> output;
    for (UINT i = 0; SUCCEEDED(adapter->EnumOutputs(i, output.Out())); ++i) {
        DXGI_OUTPUT_DESC desc{};
        if (!chosen || (SUCCEEDED(output->GetDesc(&desc)) && desc.Monitor == monitor)) {
            chosen = output;
        }
    }
    DXGI_MODE_DESC mode{};
    DXGI_MODE_DESC wanted{};
    wanted.Format = kFormat;
    wanted.Width = static_cast<UINT>(std::max(1, GetSystemMetrics(SM_CXSCREEN)));
    wanted.Height = static_cast<UINT>(std::max(1, GetSystemMetrics(SM_CYSCREEN)));
    if (!chosen || FAILED(chosen->FindClosestMatchingMode(&wanted, &mode, context.Device().Get()))) {
        GX_RAISE(kConstructor, "Failed to get diplay mode");
    }
    return mode;
}

void D3D11WindowSurface::Forget() noexcept {
    m_pixels.reset();
    m_chain.Reset();
    m_chainSize = {};
    m_generation = 0;
}

void D3D11WindowSurface::Make(D3D11Context& context) {
    Forget(); // a window can have only one chain
    DXGI_MODE_DESC mode = DisplayMode(context);
    const Size size = GetSize();
    mode.Format = kFormat;
    mode.Width = std::max(1U, size.width);
    mode.Height = std::max(1U, size.height);
    m_chain = context.Device().CreateSwapChainForWindow(context.Factory(), m_window, mode);
    // DXGI must not react to the window's keys and size; the host does.
    context.Factory().MakeWindowAssociation(m_window, DXGI_MWA_NO_WINDOW_CHANGES | DXGI_MWA_NO_ALT_ENTER);
    m_chainSize = size;
    m_generation = context.Generation();
}

std::shared_ptr<D3D11Texture> D3D11WindowSurface::BeginPaint(D3D11Context& context) {
    if (IsWindow(m_window) == FALSE) {
        GX_RAISE("Graphics::D3D11WindowSurface::BeginPaint", "The window does not exist");
    }
    if (m_generation != context.Generation()) {
        Make(context);
    }
    const Size size = GetSize();
    m_shown = false;
    if (size.width == 0 || size.height == 0) {
        return nullptr; // minimised: the pixels are kept until the window is restored
    }
    const auto width = static_cast<int32_t>(size.width);
    const auto height = static_cast<int32_t>(size.height);
    if (m_chainSize.width != size.width || m_chainSize.height != size.height) {
        m_chainSize = {}; // if the next call fails, the size of the buffers is unknown
        GX_D3D11_CHECK(context.Device(), "D3D11Device::CreateSwapChainForWindow",
                       m_chain->ResizeBuffers(1, static_cast<UINT>(width), static_cast<UINT>(height), kFormat, 0));
        m_chainSize = size;
    }
    if (m_pixels == nullptr || m_pixels->Width() != width || m_pixels->Height() != height) {
        auto fresh = context.Device().CreateRenderTexture(width, height, kFormat);
        context.Device().ColorFill(*fresh, {0.0F, 0.0F, 0.0F, 1.0F});
        if (m_pixels != nullptr) { // the common part of both sizes is kept
            context.Device().Copy(*fresh, *m_pixels,
                                  {0, 0, std::min(width, m_pixels->Width()), std::min(height, m_pixels->Height())});
        }
        m_pixels = std::move(fresh);
    }
    m_shown = true;
    return m_pixels;
}

void D3D11WindowSurface::EndPaint(D3D11Context& context) {
    if (!m_shown || m_pixels == nullptr || m_generation != context.Generation() || IsWindow(m_window) == FALSE) {
        return;
    }
    {
        const D3D11Ref<ID3D11Texture2D> buffer = context.Device().BackBuffer(*m_chain.get());
        context.Device().CopyWhole(*buffer.get(), *m_pixels);
    }
    context.Device().Present(*m_chain.get());
}

} // namespace Graphics
