// SPDX-License-Identifier: MIT
// The state of a repeating dash pattern: lengths in user units, dash and gap in turn, starting with a dash.
#pragma once

#include "StrokeStyle.h"

namespace Graphics {

class DashSequence {
public:
    /// Takes the pattern and goes to its phase. Raises for a negative element and for a pattern without length. Every
    /// length is multiplied by `scale`.
    explicit DashSequence(const StrokeStyle& style, float scale = 1.0F);

    [[nodiscard]] bool InGap() const noexcept { return m_inGap; }
    /// What is left of the current element.
    [[nodiscard]] double Remaining() const noexcept { return m_remaining; }
    /// Twice the sum, so that a pattern with an odd number of elements is back in the same state.
    [[nodiscard]] double Period() const noexcept { return m_period; }

    void Consume(double length) noexcept { m_remaining -= length; }
    void NextElement() noexcept {
        Advance();
        m_remaining = m_dashes[m_cursor];
    }

private:
    void Advance() noexcept {
        m_inGap = !m_inGap;
        m_cursor = m_cursor + 1 == m_count ? 0 : m_cursor + 1;
    }

    std::array<float, StrokeStyle::kMaxDashes> m_dashes{};
    uint32_t m_count;
    uint32_t m_cursor = 0;
    double m_remaining = 0;
    float m_period = 0;
    bool m_inGap = false;
    bool m_zeroLength = false;
};

} // namespace Graphics
