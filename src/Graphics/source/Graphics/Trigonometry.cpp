// SPDX-License-Identifier: MIT
#include "Trigonometry.h"

#include <cmath>

namespace Graphics {
namespace {

constexpr double kPi = 0x1.921fb54442d18p+1;

// Pi / 2 in three parts. The first two have 33 bits, so that their products with an integer below 2^20 are exact.
constexpr double kHalfPi1 = 0x1.921fb544p+0;
constexpr double kHalfPi2 = 0x1.0b4611a6p-34;
constexpr double kHalfPi3 = 0x1.3198a2e037073p-69;

/// Taylor series, highest power first, by Horner's rule in z.
template <int Count> [[nodiscard]] double Series(const double (&terms)[Count], double z) noexcept {
    double sum = terms[0];
    for (int i = 1; i < Count; ++i) {
        sum = sum * z + terms[i];
    }
    return sum;
}

// On [-pi / 4, pi / 4] the first omitted term is below 2^-58 of the sum.
constexpr double kSine[] = {0x1.952c77030ad4ap-49,  -0x1.ae7f3e733b81fp-41, 0x1.6124613a86d09p-33,
                            -0x1.ae64567f544e4p-26, 0x1.71de3a556c734p-19,  -0x1.a01a01a01a01ap-13,
                            0x1.1111111111111p-7,   -0x1.5555555555555p-3};
constexpr double kCosine[] = {0x1.ae7f3e733b81fp-45,  -0x1.93974a8c07c9dp-37, 0x1.1eed8eff8d898p-29,
                              -0x1.27e4fb7789f5cp-22, 0x1.a01a01a01a01ap-16,  -0x1.6c16c16c16c17p-10,
                              0x1.5555555555555p-5};
// Valid on [-1 / 16, 1 / 16].
constexpr double kArc[] = {1.0 / 13, -1.0 / 11, 1.0 / 9, -1.0 / 7, 1.0 / 5, -1.0 / 3};
// Angles whose tangents are the multiples of 1 / 8.
constexpr double kEighths[] = {0.0,
                               0x1.fd5ba9aac2f6ep-4,
                               0x1.f5b75f92c80ddp-3,
                               0x1.6f61941e4def1p-2,
                               0x1.dac670561bb4fp-2,
                               0x1.1e00babdefeb4p-1,
                               0x1.4978fa3269ee1p-1,
                               0x1.700a7c5784634p-1,
                               0x1.921fb54442d18p-1};

} // namespace

SineCosine SineAndCosine(double radians) noexcept {
    if (!std::isfinite(radians)) {
        return {std::nan(""), std::nan("")};
    }
    if (std::fabs(radians) >= 0x1p20) {
        radians = std::fmod(radians, 2 * kPi); // exact
    }
    const double turns = std::floor(radians * 0x1.45f306dc9c883p-1 + 0.5);
    const double r = radians - turns * kHalfPi1 - turns * kHalfPi2 - turns * kHalfPi3;
    const double z = r * r;
    const double sine = r + r * (z * Series(kSine, z));
    const double cosine = 1.0 - (0.5 * z - z * (z * Series(kCosine, z)));
    switch (static_cast<int>(turns) & 3) {
    case 0:
        return {sine, cosine};
    case 1:
        return {cosine, -sine};
    case 2:
        return {-sine, -cosine};
    default:
        return {-cosine, sine};
    }
}

double Angle(double y, double x) noexcept {
    const double across = std::fabs(x);
    const double up = std::fabs(y);
    const double less = across < up ? across : up;
    const double more = across < up ? up : across;
    if (!(more > 0.0)) {
        return 0.0;
    }
    // atan(less / more) = atan(k / 8) + atan((less - k / 8 more) / (more + k / 8 less))
    const double eighths = std::floor(less / more * 8.0 + 0.5);
    if (!(eighths >= 0.0 && eighths <= 8.0)) {
        return std::nan(""); // NaN arguments, or two infinities
    }
    const double share = eighths * 0.125;
    const double t = (less - share * more) / (more + share * less);
    const double z = t * t;
    double angle = kEighths[static_cast<int>(eighths)] + (t + t * (z * Series(kArc, z)));
    if (across < up) {
        angle = kPi / 2 - angle;
    }
    if (x < 0.0) {
        angle = kPi - angle;
    }
    return y < 0.0 ? -angle : angle;
}

} // namespace Graphics
