// SPDX-License-Identifier: MIT
#include "D3D11Readback.h"

#include <algorithm>

namespace Graphics {
namespace {

/// Rounded up, so that the next rectangle probably fits too.
[[nodiscard]] int32_t RoundUp(int32_t size, int32_t most) noexcept {
    constexpr int32_t kStep = 128;
    return std::max(size, std::min((size + kStep - 1) / kStep * kStep, most));
}

} // namespace

void D3D11Readback::Ask(size_t slot, const D3D11Texture& texture, const Region& region) {
    std::shared_ptr<D3D11Texture>& staging = m_staging[slot];
    const IntRect bound = region.Bound();
    const int32_t width = bound.right - bound.left;
    const int32_t height = bound.bottom - bound.top;
    if (staging == nullptr || staging->Format() != texture.Format() || staging->Width() < width ||
        staging->Height() < height) {
        staging.reset();
        staging = m_device.CreateSysMemSurface(RoundUp(width, texture.Width()), RoundUp(height, texture.Height()),
                                               texture.Format());
    }
    region.EnumRects([&](const IntRect& r) {
        m_device.CopyPart(*staging, {r.left - bound.left, r.top - bound.top}, texture, r);
        m_device.Counters().readbackPixels +=
            static_cast<uint64_t>(r.right - r.left) * static_cast<uint64_t>(r.bottom - r.top);
    });
}

} // namespace Graphics
