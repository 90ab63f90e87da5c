// SPDX-License-Identifier: MIT
#include "DashSequence.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "../Exception.h"

namespace Graphics {
namespace {

constexpr float kPhaseTolerance = 1e-5F;

/// The phase inside [0, period). What is not finite comes out as NaN, which starts the pattern: phases, and those
/// before the start of a pattern whose length is beyond the floats.
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

DashSequence::DashSequence(const StrokeStyle& style, float scale) : m_count(style.dashCount) {
    float sum = 0;
    for (uint32_t i = 0; i < m_count; ++i) {
        if (style.dashes[i] < 0) {
            GX_RAISE("Graphics::Dasher::Sequence", "Dash pattern has a negative element");
        }
        sum += style.dashes[i];
        m_dashes[i] = style.dashes[i] * scale;
    }
    if (sum == 0) {
        GX_RAISE("Graphics::Dasher::Sequence", "Dash pattern has zero length");
    }
    m_period = 2.0F * sum * scale;

    float x = Wrap(style.dashPhase * scale, m_period);
    while (x - kPhaseTolerance >= m_dashes[m_cursor]) {
        x -= m_dashes[m_cursor];
        Advance();
    }
    if (m_dashes[m_cursor] == 0 && !m_zeroLength) {
        m_zeroLength = true; // a dot right at the start
    } else if (x + kPhaseTolerance > m_dashes[m_cursor]) {
        x -= m_dashes[m_cursor];
        Advance();
        m_zeroLength = false;
    }
    m_remaining = x == x ? std::max(static_cast<double>(m_dashes[m_cursor]) - x, 0.0) : m_dashes[m_cursor];
}

} // namespace Graphics
