// SPDX-License-Identifier: MIT
// The search among the stops and the mix of two neighbours.
#include "GradientSampler.h"

#include <algorithm>
#include <limits>

namespace Graphics {

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

} // namespace

const GradientStop* GradientSampler::FirstNotBelow(float t) const noexcept {
    return std::lower_bound(m_stops->begin(), m_stops->end(), t,
                            [](const GradientStop& stop, float value) { return stop.offset < value; });
}

uint32_t GradientSampler::ColorAt(float t) const noexcept {
    const GradientStop* upper = FirstNotBelow(t);
    if (upper == m_stops->end()) {
        return 0;
    }
    if (upper->offset == t || upper == m_stops->begin()) {
        return upper->color;
    }
    const GradientStop* lower = upper - 1;
    const float share = (upper->offset - t) / (upper->offset - lower->offset) * 255.0F;
    const uint32_t w = (static_cast<uint32_t>(SaturatingTruncate(share)) & 255U) + 1;
    const uint32_t v = 257 - w;
    // Two 16-bit lanes at a time: red and blue, alpha and green.
    constexpr uint32_t lanes = 0x00FF00FFU;
    const uint32_t rb = (((lower->color & lanes) * w >> 8) & lanes) + (((upper->color & lanes) * v >> 8) & lanes);
    const uint32_t ag =
        ((((lower->color >> 8) & lanes) * w >> 8) & lanes) + ((((upper->color >> 8) & lanes) * v >> 8) & lanes);
    return ag << 8 | rb;
}

GradientInterval GradientSampler::IntervalAt(float t) const noexcept {
    const GradientStop* upper = FirstNotBelow(t);
    if (upper == m_stops->end()) {
        return {m_stops->empty() ? -kInfinity : (upper - 1)->offset, kInfinity, 0, 0};
    }
    if (upper == m_stops->begin()) {
        return {-kInfinity, upper->offset, upper->color, upper->color};
    }
    return {(upper - 1)->offset, upper->offset, (upper - 1)->color, upper->color};
}

bool GradientSampler::IsOpaque() const noexcept {
    // Two opaque neighbours mix to 255 at every weight: (255 w >> 8) + (255 (257 - w) >> 8) = (w - 1) + (256 - w).
    return !m_stops->empty() && (m_stops->end() - 1)->offset >= 1.0F &&
           std::all_of(m_stops->begin(), m_stops->end(), [](const GradientStop& s) { return s.color >> 24 == 255; });
}

} // namespace Graphics
