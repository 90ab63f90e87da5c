// SPDX-License-Identifier: MIT
#include "GlyphContext.h"

#include "../../Exception.h"

namespace Graphics {
namespace {

std::mutex g_lock;
DCHandle g_context;

/// Call under the lock.
[[nodiscard]] HDC SharedContext() {
    if (!g_context) {
        DCHandle context = DCHandle::Compatible(nullptr);
        if (!context) {
            GX_RAISE("Graphics::GlyphContext::GlyphContext", "CreateCompatibleDC is failed.");
        }
        if (g_system.setGraphicsMode(context.Get(), GM_ADVANCED) == 0) {
            GX_RAISE("Graphics::GlyphContext::GlyphContext", "SetGraphicsMode is failed.");
        }
        g_context = std::move(context);
    }
    return g_context.Get();
}

} // namespace

GlyphContext::GlyphContext(HFONT font) : m_lock(g_lock), m_dc(SharedContext()), m_selection(m_dc, font) {}

} // namespace Graphics
