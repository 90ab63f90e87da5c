// SPDX-License-Identifier: MIT
// The software's colour source fills the row, with the axis laid along it, so that both back ends agree on colours,
// stops and opacities.
#include "D3D11GradientCache.h"

#include <algorithm>

#include "../Paint/Gradient.h"
#include "../Sources/SwLinearGradientColorSource.h"

namespace Graphics {

std::shared_ptr<D3D11Texture> D3D11GradientCache::Row(const GradientBrush& brush) {
    const auto same = [&](const Known& k) { return k.opacity == brush.opacity && k.gradient.lock() == brush.gradient; };
    if (const auto found = std::find_if(m_known.begin(), m_known.end(), same); found != m_known.end()) {
        std::rotate(found, found + 1, m_known.end());
        return m_known.back().row;
    }
    const auto& gradient = static_cast<const LinearGradient&>(*brush.gradient);
    GradientBrush along(brush.gradient);
    along.opacity = brush.opacity;
    const double dx = static_cast<double>(gradient.end.x) - gradient.start.x;
    const double dy = static_cast<double>(gradient.end.y) - gradient.start.y;
    const double k = (kTexels - 2) / (dx * dx + dy * dy);
    const double a = dx * k;
    const double b = dy * k;
    along.transform = {static_cast<float>(a),
                       static_cast<float>(-b),
                       static_cast<float>(b),
                       static_cast<float>(a),
                       static_cast<float>(0.5 - (gradient.start.x * a + gradient.start.y * b)),
                       static_cast<float>(gradient.start.x * b - gradient.start.y * a)};
    SwLinearGradientColorSource source(along, gradient, kIdentity);
    uint32_t colors[kTexels];
    source.Fill(0, kTexels, 0, colors);

    constexpr size_t kKept = 64;
    ++m_device.Counters().uploads;
    m_known.push_back({brush.gradient, brush.opacity,
                       m_device.CreateVidMemTexture(kTexels, 1, DXGI_FORMAT_B8G8R8A8_UNORM, colors, sizeof(colors))});
    if (m_known.size() > kKept) {
        m_known.erase(m_known.begin());
    }
    return m_known.back().row;
}

} // namespace Graphics
