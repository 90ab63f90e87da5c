// SPDX-License-Identifier: MIT
#include "AxisCut.h"

#include <boost/multiprecision/cpp_int.hpp>
#include <cmath>

namespace Graphics {
namespace {

// A float is a multiple of 2^-149 below 2^128: 277 bits. A sum of two products has 556 bits, and the division adds 64
// more. Lower bits of a double are omitted.
using Whole = boost::multiprecision::number<boost::multiprecision::cpp_int_backend<
    640, 640, boost::multiprecision::signed_magnitude, boost::multiprecision::unchecked, void>>;

[[nodiscard]] Whole WholeOf(double v) {
    int exponent = 0;
    const auto mantissa = static_cast<int64_t>(std::ldexp(std::frexp(v, &exponent), 53)); // v = mantissa * 2^(e - 53)
    const int shift = exponent - 53 + 149;
    return shift >= 0 ? Whole(mantissa) << static_cast<unsigned>(shift)
                      : Whole(mantissa / (int64_t{1} << (shift < -62 ? 62 : -shift)));
}

[[nodiscard]] double CutExactly(const Point& from, const Point& to, PlaneAxis axis, double at) noexcept {
    const Whole begin = WholeOf(Along(axis, from)), end = WholeOf(Along(axis, to)), cut = WholeOf(at);
    Whole part = WholeOf(Across(axis, from)) * (end - cut) + WholeOf(Across(axis, to)) * (cut - begin);
    Whole whole = end - begin;
    if (whole < 0) {
        whole = -whole;
        part = -part;
    }
    if (part == 0) {
        return 0;
    }
    const bool negative = part < 0;
    part = negative ? Whole(-part) : part;
    // Gives a quotient of about 60 bits.
    const int shift = 60 + static_cast<int>(msb(whole)) - static_cast<int>(msb(part));
    const Whole quotient = shift >= 0 ? Whole((part << static_cast<unsigned>(shift)) / whole)
                                      : Whole(part / (whole << static_cast<unsigned>(-shift)));
    const double v = std::ldexp(static_cast<double>(static_cast<uint64_t>(quotient)), -shift - 149);
    return negative ? -v : v;
}

} // namespace

double CutAcross(const Point& from, const Point& to, PlaneAxis axis, double at, double step) noexcept {
    const double begin = Along(axis, from), end = Along(axis, to);
    const double first = Across(axis, from) * ((end - at) / (end - begin));
    const double second = Across(axis, to) * ((at - begin) / (end - begin));
    const double sum = first + second;
    // Each summand has a relative error of at most five roundings, and so has the sum.
    const double error = (std::fabs(first) + std::fabs(second)) * 1e-15;
    return error <= std::fmax(step / 1024, std::fabs(sum) / (1 << 30)) ? sum : CutExactly(from, to, axis, at);
}

} // namespace Graphics
