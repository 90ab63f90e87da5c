// SPDX-License-Identifier: MIT
#include "D3D11WindowTarget.h"

#include "../Exception.h"
#include "../Software/Surfaces/Windows/SwWindowSurface.h"
#include "D3D11WindowSurface.h"

namespace Graphics {
namespace {

[[nodiscard]] std::unique_ptr<D3D11Surface> MakeSurface(D3D11Context& context, HWND window) {
    auto surface = std::make_unique<D3D11WindowSurface>(window);
    if (!context.TryRecover()) {
        return surface; // created by the first paint that has a device
    }
    try {
        surface->Make(context);
    } catch (const D3D11DeviceLost&) {
    } catch (const Exception&) {
        if (context.HasDevice()) {
            throw;
        }
    }
    return surface;
}

} // namespace

D3D11WindowTarget::D3D11WindowTarget(std::shared_ptr<D3D11Context> context, HWND window)
    : m_context(std::move(context)), m_window(window), m_card(m_context, MakeSurface(*m_context, window)) {}

/// False if there is no device.
bool D3D11WindowTarget::BeginOnCard() {
    if (!m_context->TryRecover()) {
        return false;
    }
    try {
        m_card.BeginPaint();
    } catch (const Exception&) {
        if (m_context->IsWithoutDevice()) { // lost just now and could not be replaced
            return false;
        }
        throw;
    }
    m_incomplete = m_software != nullptr || m_card.IsIncomplete();
    m_software.reset();
    return true;
}

void D3D11WindowTarget::BeginInSoftware() {
    m_card.Forget(); // its swap chain would cover the software's output
    std::unique_ptr<SwRenderTarget> fresh;
    if (m_software == nullptr) {
        fresh = std::make_unique<SwRenderTarget>(std::make_unique<SwWindowSurface>(m_window));
    }
    SwRenderTarget& target = fresh != nullptr ? *fresh : *m_software;
    target.BeginPaint();
    m_incomplete = fresh != nullptr;
    if (fresh != nullptr) {
        m_software = std::move(fresh);
    }
}

void D3D11WindowTarget::BeginPaint() {
    if (!BeginOnCard()) {
        BeginInSoftware();
    }
}

void D3D11WindowTarget::EndPaint() {
    struct Finally {
        D3D11WindowTarget& target;
        ~Finally() {
            if (target.IsOnCard()) {
                target.m_incomplete = target.m_incomplete || target.m_card.IsIncomplete();
            }
            if (target.m_incomplete && !target.m_asked) {
                InvalidateRect(target.m_window, nullptr, FALSE);
            }
            target.m_asked = target.m_incomplete;
        }
    } finally{*this};
    Active().EndPaint();
}

} // namespace Graphics
