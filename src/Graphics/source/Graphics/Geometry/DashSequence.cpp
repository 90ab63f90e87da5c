// SPDX-License-Identifier: MIT
#include "DashSequence.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "../Exception.h"

namespace Graphics {
namespace {

constexpr float kPhaseTolerance = 1e-5F;

/// The phase inside [0, period). NaN, which starts the pattern from its beginning, for a phase that is not finite, and
/// for a negative phase of a pattern whose length exceeds the floats.
[[nodiscard]] float Wrap(float phase, float period) noexcept {
    if (phase >= period) {
        phase = std::fmod(phase, period);
    }
    if (phase < 0) {
        const float back = -phase;
        phase = period - (back > period ? std::fmod(back, period) : back);
    }
    return std::isfinite(phase) ? phase : std::numeric_limits<float>::quiet_NaN();
}

} // namespace

DashSequence::DashSequence(const StrokeStyle& style)
    : m_count(style.dashCount % 2 == 0 ? style.dashCount : 2 * style.dashCount) {
    float sum = 0;
    for (uint32_t i = 0; i < style.dashCount; ++i) {
        if (style.dashes[i] < 0) {
            GX_RAISE("Graphics::Dasher::Sequence", "Dash pattern has a negative element");
        }
        sum += style.dashes[i];
    }
    if (sum == 0) {
        GX_RAISE("Graphics::Dasher::Sequence", "Dash pattern has zero length");
    }
    const auto length = [&](uint32_t i) { return style.dashes[i < style.dashCount ? i : i - style.dashCount]; };
    m_starts[0] = 0;
    for (uint32_t i = 0; i < m_count; ++i) {
        m_starts[i + 1] = m_starts[i] + static_cast<double>(length(i));
    }

    float x = Wrap(style.dashPhase, 2.0F * sum);
    const auto consume = [&] {
        x -= length(m_index);
        m_index = m_index + 1 == m_count ? 0 : m_index + 1;
    };
    while (x - kPhaseTolerance >= length(m_index)) {
        consume();
    }
    // A dot right at the start is kept; an element that the phase has consumed but for rounding is skipped.
    if (length(m_index) != 0 && x + kPhaseTolerance > length(m_index)) {
        consume();
    }
    const double whole = length(m_index);
    m_remaining = x == x ? std::max(whole - x, 0.0) : whole;
}

} // namespace Graphics
