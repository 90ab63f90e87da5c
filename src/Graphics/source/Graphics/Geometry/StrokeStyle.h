// SPDX-License-Identifier: MIT
// The style of a stroke, copied from the host's record.
#pragma once

#include <array>

#include "../Types.h"

namespace Graphics {

struct StrokeStyle {
    static constexpr uint32_t kMaxDashes = 15;

    uint32_t join = GXLineJoinMiter; // anything but miter and round is bevel
    uint32_t cap = GXLineCapFlat;    // anything but round and square is flat
    float miterLimit = 10.0F;
    float dashPhase = 0;
    std::array<float, kMaxDashes> dashes{};
    uint32_t dashCount = 0;

    StrokeStyle() noexcept = default;
    /// Null gives the defaults. Only the first 15 dashes are used; without dashes the phase is 0.
    explicit StrokeStyle(const GXStrokeStyle* style) noexcept {
        if (style == nullptr) {
            return;
        }
        join = style->join;
        cap = style->cap;
        miterLimit = style->miterLimit;
        dashCount = style->dashCount < kMaxDashes ? static_cast<uint32_t>(style->dashCount) : kMaxDashes;
        for (uint32_t i = 0; i < dashCount; ++i) {
            dashes[i] = style->dashes[i];
        }
        dashPhase = dashCount != 0 ? style->dashPhase : 0.0F;
    }
};

} // namespace Graphics
