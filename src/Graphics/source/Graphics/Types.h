// SPDX-License-Identifier: MIT
// Plain records shared by the engine and the C interface, and the only conversion from floats to integers.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "GX/GX.h"

namespace Graphics {

using Point = GXPoint;
using Rect = GXRect;
using IntPoint = GXIntPoint;
using IntRect = GXIntRect;
using Size = GXSize;
using Color = GXColor;

[[nodiscard]] constexpr bool IsEmpty(const IntRect& r) noexcept { return r.left >= r.right || r.top >= r.bottom; }

[[nodiscard]] constexpr IntRect Intersect(const IntRect& a, const IntRect& b) noexcept {
    return {a.left > b.left ? a.left : b.left, a.top > b.top ? a.top : b.top, a.right < b.right ? a.right : b.right,
            a.bottom < b.bottom ? a.bottom : b.bottom};
}

[[nodiscard]] constexpr bool operator==(const IntRect& a, const IntRect& b) noexcept {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

/// Truncates toward zero; NaN gives 0, and values out of range give the nearer limit.
[[nodiscard]] inline int32_t SaturatingTruncate(float v) noexcept {
    if (!(v > -2147483648.0F)) {
        return std::isnan(v) ? 0 : std::numeric_limits<int32_t>::min();
    }
    return v >= 2147483648.0F ? std::numeric_limits<int32_t>::max() : static_cast<int32_t>(v);
}

/// Packs a straight float colour as ARGB; each channel times 255, truncated, low 8 bits kept.
[[nodiscard]] inline uint32_t PackColor(const Color& c) noexcept {
    const auto channel = [](float v) { return static_cast<uint32_t>(SaturatingTruncate(v * 255.0F)) & 255U; };
    return channel(c.alpha) << 24 | channel(c.red) << 16 | channel(c.green) << 8 | channel(c.blue);
}

/// The inverse of PackColor: each byte divided by 255.
[[nodiscard]] inline Color UnpackColor(uint32_t argb) noexcept {
    const auto channel = [argb](int shift) { return static_cast<float>((argb >> shift) & 255U) / 255.0F; };
    return {channel(16), channel(8), channel(0), channel(24)};
}

} // namespace Graphics
