// SPDX-License-Identifier: MIT
// A repeating dash pattern and its phase: lengths in user units, dash and gap in turn, starting with a dash.
#pragma once

#include "StrokeStyle.h"

namespace Graphics {

class DashSequence {
public:
    /// Takes the pattern and goes to its phase. Raises for a negative element and for a pattern without length.
    explicit DashSequence(const StrokeStyle& style);

    /// Elements of a period. A pattern with an odd number of them counts twice, so that dashes and gaps are in the same
    /// places in every period: dashes have even indices.
    [[nodiscard]] uint32_t Count() const noexcept { return m_count; }
    [[nodiscard]] double Period() const noexcept { return m_starts[m_count]; }
    /// Where an element starts in the period; Start(Count()) is the period.
    [[nodiscard]] double Start(uint32_t index) const noexcept { return m_starts[index]; }
    [[nodiscard]] double ElementLength(uint32_t index) const noexcept { return m_starts[index + 1] - m_starts[index]; }

    /// The element at the phase, and what is left of it.
    [[nodiscard]] uint32_t Index() const noexcept { return m_index; }
    [[nodiscard]] double Remaining() const noexcept { return m_remaining; }
    [[nodiscard]] bool InGap() const noexcept { return (m_index & 1U) != 0; }

private:
    std::array<double, 2 * StrokeStyle::kMaxDashes + 1> m_starts; // as far as m_count
    uint32_t m_count;
    uint32_t m_index = 0;
    double m_remaining = 0;
};

} // namespace Graphics
