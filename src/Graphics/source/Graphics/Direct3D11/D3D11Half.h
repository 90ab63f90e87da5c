// SPDX-License-Identifier: MIT
// Half floats and their conversion to 8-bit levels.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace Graphics::D3D11Half {

/// 1 / 16384, the smallest normal half. Planes of groups start with this alpha, so that dividing by alpha gives no NaN:
/// opaque black divided by it is still black, and it is 0 as an 8-bit level.
inline constexpr uint16_t kAlmostNothing = 0x0400;

[[nodiscard]] inline float ToFloat(uint16_t half) noexcept {
    const auto magnitude = static_cast<uint32_t>(half & 0x7FFFU);
    const uint32_t exponent = magnitude >> 10;
    float value;
    if (exponent == 0) {
        value = static_cast<float>(magnitude) * (1.0F / 16777216.0F);
    } else {
        const uint32_t bits = exponent == 31 ? 0x7F800000U | magnitude << 13 : (magnitude << 13) + 0x38000000U;
        std::memcpy(&value, &bits, sizeof(value));
    }
    return (half & 0x8000U) != 0 ? -value : value;
}

/// Truncates, as Direct3D does.
[[nodiscard]] inline uint16_t FromFloat(float value) noexcept {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    const auto sign = static_cast<uint16_t>(bits >> 16 & 0x8000U);
    bits &= 0x7FFFFFFFU;
    if (bits >= 0x47800000U) { // 65536 and more, infinity, NaN
        return static_cast<uint16_t>(sign | (bits > 0x7F800000U ? 0x7E00U : 0x7C00U));
    }
    if (bits < 0x38800000U) { // a multiple of 2^-24
        return static_cast<uint16_t>(sign | static_cast<uint32_t>(std::fabs(value) * 16777216.0F));
    }
    return static_cast<uint16_t>(sign | (bits - 0x38000000U) >> 13);
}

[[nodiscard]] inline uint8_t FloatToLevel(float v) noexcept {
    return v > 0.0F ? static_cast<uint8_t>((v < 1.0F ? v : 1.0F) * 255.0F + 0.5F) : uint8_t{0}; // NaN is 0
}

/// The nearest level of every half float; 0 for NaN.
[[nodiscard]] inline const std::array<uint8_t, 65536>& Levels() {
    static const auto kLevels = [] {
        std::array<uint8_t, 65536> levels{};
        for (uint32_t i = 0; i < levels.size(); ++i) {
            levels[i] = FloatToLevel(ToFloat(static_cast<uint16_t>(i)));
        }
        return levels;
    }();
    return kLevels;
}

/// A half float for every level; converting it back gives the same level.
[[nodiscard]] inline const std::array<uint16_t, 256>& OfLevels() {
    static const auto kHalves = [] {
        std::array<uint16_t, 256> halves{};
        for (uint32_t i = 0; i < halves.size(); ++i) {
            // Half a step is added so that truncation rounds to the nearest.
            const float value = static_cast<float>(i) * (1.0F / 255.0F);
            halves[i] = i == 255 ? uint16_t{0x3C00} : FromFloat(value * (1.0F + 1.0F / 4096.0F));
        }
        return halves;
    }();
    return kHalves;
}

} // namespace Graphics::D3D11Half
