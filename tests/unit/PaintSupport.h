// SPDX-License-Identifier: MIT
// What the tests of gradients and bitmap samplers share: random numbers and colours, arithmetic on the channels of a
// word, a row of a colour source between guards.
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

#include "Sources/SwColorSource.h"

namespace PaintSupport {

using Graphics::SwColorSource;

inline constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
inline constexpr float kInf = std::numeric_limits<float>::infinity();

inline std::mt19937 g_random(1);

inline float Uniform(float low, float high) { return std::uniform_real_distribution<float>(low, high)(g_random); }
inline uint32_t RandomColor() { return static_cast<uint32_t>(g_random()) | (g_random() % 3 == 0 ? 0xFF000000U : 0U); }

inline uint32_t Channel(uint32_t c, int i) { return (c >> (8 * i)) & 255U; }

template <class Function> uint32_t PerChannel(Function&& f) { return f(0) | f(1) << 8 | f(2) << 16 | f(3) << 24; }

inline uint32_t PlainScale(uint32_t c, uint32_t f) {
    return PerChannel([&](int i) { return Channel(c, i) * f >> 8; });
}
inline uint32_t PlainPremultiply(uint32_t c) {
    return PerChannel([&](int i) { return i == 3 ? c >> 24 : Channel(c, i) * ((c >> 24) + 1) >> 8; });
}

inline std::vector<uint32_t> Row(SwColorSource& source, int32_t x0, int32_t x1, int32_t y) {
    std::vector<uint32_t> out(static_cast<size_t>(x1 - x0) + 2, 0xDEADBEEFU);
    source.Fill(x0, x1, y, out.data() + 1);
    EXPECT_EQ(out.front(), 0xDEADBEEFU);
    EXPECT_EQ(out.back(), 0xDEADBEEFU);
    return {out.begin() + 1, out.end() - 1};
}

} // namespace PaintSupport
