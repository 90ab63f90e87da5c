// SPDX-License-Identifier: MIT
// Which winding numbers of two operands lie inside their combination.
#pragma once

#include "../Types.h"

namespace Graphics {

class WindingTest {
public:
    /// `mode` is a GXCombine value; a fill rule other than 0 is even-odd.
    constexpr WindingTest(uint32_t mode, uint32_t ruleA, uint32_t ruleB) noexcept
        : m_maskA(ruleA == GXFillRuleNonZero ? -1 : 1), m_maskB(ruleB == GXFillRuleNonZero ? -1 : 1),
          m_inside(Table(mode)) {}

    [[nodiscard]] constexpr bool Inside(int32_t a, int32_t b) const noexcept {
        const unsigned where = ((a & m_maskA) != 0 ? 1U : 0U) + ((b & m_maskB) != 0 ? 2U : 0U);
        return (m_inside >> where & 1U) != 0;
    }

private:
    /// Bit 0: in neither operand, 1: in A alone, 2: in B alone, 3: in both.
    [[nodiscard]] static constexpr unsigned Table(uint32_t mode) noexcept {
        switch (mode) {
        case GXCombineIntersection:
            return 8;
        case GXCombineUnion:
            return 14;
        case GXCombineExclusiveOr:
            return 6;
        default:
            return 2;
        }
    }

    int32_t m_maskA, m_maskB; // all bits for non-zero, the lowest bit for even-odd
    unsigned m_inside;
};

} // namespace Graphics
