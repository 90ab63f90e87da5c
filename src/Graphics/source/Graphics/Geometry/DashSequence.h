// SPDX-License-Identifier: MIT
// A repeating dash pattern and its phase: lengths in user units, dashes and gaps alternating, a dash first.
#pragma once

#include "StrokeStyle.h"

namespace Graphics {

class DashSequence {
public:
    /// Takes the pattern and advances to its phase. Raises for a negative element and for a pattern of length 0.
    explicit DashSequence(const StrokeStyle& style);

    /// Elements of a period. An odd pattern is repeated once, so that dashes have even indices in every period.
    [[nodiscard]] uint32_t Count() const noexcept { return m_count; }
    [[nodiscard]] double Period() const noexcept { return m_starts[m_count]; }
    /// Where an element starts in the period; Start(Count()) is the period.
    [[nodiscard]] double Start(uint32_t index) const noexcept { return m_starts[index]; }
    [[nodiscard]] double ElementLength(uint32_t index) const noexcept { return m_starts[index + 1] - m_starts[index]; }

    /// The element at the phase, and the remaining length of it.
    [[nodiscard]] uint32_t Index() const noexcept { return m_index; }
    [[nodiscard]] double Remaining() const noexcept { return m_remaining; }
    [[nodiscard]] bool InGap() const noexcept { return (m_index & 1U) != 0; }

private:
    std::array<double, 2 * StrokeStyle::kMaxDashes + 1> m_starts; // valid up to index m_count
    uint32_t m_count;
    uint32_t m_index = 0;
    double m_remaining = 0;
};

} // namespace Graphics
