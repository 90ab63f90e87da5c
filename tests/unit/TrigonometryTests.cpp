// SPDX-License-Identifier: MIT
// The engine's own circle functions against the C library's, whose last bits are its own.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "Trigonometry.h"

namespace Graphics {
namespace {

TEST(Trigonometry, SineAndCosineAreThoseOfTheCircle) {
    std::mt19937_64 random(3);
    const auto check = [](double angle) {
        const SineCosine got = SineAndCosine(angle);
        const double sine = std::sin(angle);
        const double cosine = std::cos(angle);
        // Some libraries reduce by a pi of 66 bits, which tells after many turns.
        const double own = 0x1p-66 + std::fabs(angle) * 0x1p-67;
        ASSERT_NEAR(got.sine, sine, 0x1p-51 * std::fabs(sine) + own) << angle;
        ASSERT_NEAR(got.cosine, cosine, 0x1p-51 * std::fabs(cosine) + own) << angle;
    };
    for (int i = 0; i < 200000; ++i) {
        const double scale = std::ldexp(1.0, static_cast<int>(random() % 60) - 40);
        check((static_cast<double>(random()) * 0x1p-63 - 1.0) * scale);
    }
    for (int quarter = -100; quarter <= 100; ++quarter) {
        const auto angle = static_cast<float>(quarter * 0.78539816339744831);
        for (float near : {angle, std::nextafter(angle, 9e9F), std::nextafter(angle, -9e9F)}) {
            check(static_cast<double>(near));
        }
    }
    for (double far : {-1e30, 1e9, -3.4e38, 1e300}) {
        const SineCosine got = SineAndCosine(far);
        EXPECT_NEAR(got.sine * got.sine + got.cosine * got.cosine, 1.0, 1e-15) << far;
    }
    EXPECT_TRUE(std::isnan(SineAndCosine(INFINITY).sine));
    EXPECT_TRUE(std::isnan(SineAndCosine(NAN).cosine));
    EXPECT_EQ(SineAndCosine(0.0).sine, 0.0);
    EXPECT_EQ(SineAndCosine(0.0).cosine, 1.0);
}

TEST(Trigonometry, AnglesAreThoseOfTheirPoints) {
    std::mt19937_64 random(5);
    const auto check = [](double y, double x) {
        const double expected = std::atan2(y, x);
        ASSERT_NEAR(Angle(y, x), expected, 3 * 0x1p-53 * std::fabs(expected)) << y << " " << x;
    };
    for (int i = 0; i < 200000; ++i) {
        const double scale = std::ldexp(1.0, static_cast<int>(random() % 80) - 40);
        const double x = static_cast<double>(random()) * 0x1p-63 - 1.0; // compilers differ in the order of arguments
        check((static_cast<double>(random()) * 0x1p-63 - 1.0) * scale, x);
    }
    for (double y : {-1.0, 0.0, 1.0}) {
        for (double x : {-1.0, 0.0, 1.0}) {
            check(y, x);
        }
    }
}

TEST(Trigonometry, AnglesOfAnythingAreSafe) {
    const double values[] = {0, -0.0, 1, -1, 1e308, -1e308, 5e-324, INFINITY, -INFINITY, NAN};
    for (const double y : values) {
        for (const double x : values) {
            const double angle = Angle(y, x);
            EXPECT_TRUE(std::isnan(angle) || std::fabs(angle) <= 3.1415926535897936) << y << " " << x;
        }
    }
}

} // namespace
} // namespace Graphics
