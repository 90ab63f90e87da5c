// SPDX-License-Identifier: MIT
// The colour source of one premultiplied colour.
#pragma once

#include <algorithm>

#include "../Pixels/PixelMath.h"
#include "SwColorSource.h"

namespace Graphics {

class SwSolidColorSource final : public SwColorSource {
public:
    explicit SwSolidColorSource(uint32_t premultiplied) noexcept : m_color(premultiplied) {}

    void Fill(int32_t x0, int32_t x1, int32_t, uint32_t* out) override {
        if (x0 < x1) {
            std::fill_n(out, static_cast<int64_t>(x1) - x0, m_color);
        }
    }
    [[nodiscard]] bool IsSolid(uint32_t& color) const noexcept override {
        color = m_color;
        return true;
    }
    [[nodiscard]] bool IsOpaque() const noexcept override { return m_color >> 24 == 255; }

private:
    uint32_t m_color;
};

} // namespace Graphics
