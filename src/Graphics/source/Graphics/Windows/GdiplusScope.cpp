// SPDX-License-Identifier: MIT
#include "GdiplusScope.h"

#include <atomic>
#include <mutex>

#include "../Exception.h"

namespace Graphics {
namespace {

std::mutex g_mutex;
std::atomic<const GdiplusScope*> g_scope{nullptr};

} // namespace

GdiplusScope::GdiplusScope(const char* message) {
    const Gdiplus::GdiplusStartupInput input;
    if (g_gdip.startup(&m_token, &input, nullptr) != Gdiplus::Ok) {
        GX_RAISE("Graphics::GdiplusScope::GdiplusScope", message);
    }
}

GdiplusScope::~GdiplusScope() { g_gdip.shutdown(m_token); }

void GdiplusScope::BringUp() {
    const std::lock_guard lock(g_mutex);
    if (g_scope == nullptr) {
        g_scope = new GdiplusScope("Failed to gdi+ startup");
    }
}

bool GdiplusScope::IsUp() noexcept { return g_scope != nullptr; }

} // namespace Graphics
