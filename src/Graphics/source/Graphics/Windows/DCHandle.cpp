// SPDX-License-Identifier: MIT
#include "DCHandle.h"

namespace Graphics {

DevicePixels::DevicePixels(HDC dc) noexcept : m_dc(dc), m_saved(g_system.saveDC(dc)) {
    if (m_saved == 0) {
        return;
    }
    SetLayout(dc, 0); // left to right
    if (GetGraphicsMode(dc) == GM_ADVANCED) {
        ModifyWorldTransform(dc, nullptr, MWT_IDENTITY);
    }
    SetMapMode(dc, MM_TEXT);
    SetViewportOrgEx(dc, 0, 0, nullptr);
    SetWindowOrgEx(dc, 0, 0, nullptr);
}

DevicePixels::~DevicePixels() {
    if (m_saved != 0) {
        RestoreDC(m_dc, m_saved);
    }
}

} // namespace Graphics
