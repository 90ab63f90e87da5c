// SPDX-License-Identifier: MIT
// Coordinates along a row are defined as repeated float additions, which form a serial chain. Within one binade the
// chain can be skipped: all values there are multiples of one unit u, so v + step rounds to v + D with the same D each
// time, unless step is exactly half way between two multiples. The bit patterns of the terms are then an arithmetic
// sequence.
#pragma once

#include "../Simd/Vectors.h"
#include "PaintKernels.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

GX_INLINE inline uint32_t BitsOf(float v) noexcept { return __builtin_bit_cast(uint32_t, v); }
GX_INLINE inline float FloatOf(uint32_t bits) noexcept { return __builtin_bit_cast(float, bits); }

/// How many terms after v follow by adding the same integer to the bit pattern; 0 if that is not certain.
inline size_t SteadyTerms(float v, float next, float step, size_t most) noexcept {
    const uint32_t from = BitsOf(v);
    const uint32_t to = BitsOf(next);
    if (to == from) { // for any value: the same sum gives the same result again
        return most;
    }
    const uint32_t exponent = (from >> 23) & 255;
    if (((from ^ to) & 0xFF800000U) != 0 || exponent == 0 || exponent == 255) {
        return 0;
    }
    // Half a unit of the binade, 2^(exponent - 127 - 24), and the part of step that rounding drops; both are exact.
    const uint64_t halfBits = static_cast<uint64_t>(exponent + 1023 - 127 - 24) << 52;
    const auto half = __builtin_bit_cast(double, halfBits);
    const double dropped = static_cast<double>(step) - (static_cast<double>(next) - static_cast<double>(v));
    if (!(dropped < half && dropped > -half)) {
        return 0;
    }
    const uint32_t mantissa = from & 0x007FFFFFU;
    // The lower end of the binade is excluded: below it the grid is finer, so a step across it may round differently.
    const uint32_t steady = to > from ? (0x007FFFFFU - mantissa) / (to - from) : (mantissa - 1) / (from - to);
    return steady < most ? steady : most;
}

/// Skipping fewer terms is slower than adding.
constexpr size_t kSerial = 8;

/// A sum that writes its terms to `out`, several at a time.
struct Sum {
    float v;
    float step;
    float* out;
    size_t left;

    /// Writes the terms of one skip, or else a few by adding.
    GX_INLINE void Advance() noexcept {
        const float next = v + step;
        const size_t steady = left > kSerial ? SteadyTerms(v, next, step, left - 1) : 0;
        if (steady < kSerial) {
            const size_t serial = left < kSerial ? left : kSerial;
            for (size_t i = 0; i < serial; ++i) {
                out[i] = v;
                v += step;
            }
            out += serial;
            left -= serial;
            return;
        }
        const uint32_t first = BitsOf(v);
        const uint32_t d = BitsOf(next) - first;
        v = FloatOf(first + static_cast<uint32_t>(steady) * d) + step;
        U32 bits = first + Ascending() * d;
        const U32 jump = Splat(static_cast<uint32_t>(kLanes) * d);
        // From here on whole vectors are those in which an aligned array is read: a load that takes from two stores
        // waits for both.
        size_t done = (0 - reinterpret_cast<uintptr_t>(out) / 4) % kLanes;
        if (done != 0 && steady >= done) {
            StoreSome(out, done, bits);
            bits += Splat(static_cast<uint32_t>(done) * d);
        } else {
            done = 0;
        }
#ifdef GX_SIMD_QUADS
        for (; done + 4 * kLanes <= steady + 1; done += 4 * kLanes) {
            const U32 second = bits + jump;
            StoreQuad(out + done, {{bits, second, bits + 2 * jump, second + 2 * jump}});
            bits += 4 * jump;
        }
#endif
        ForBlocks(steady + 1 - done, [&](size_t at, size_t lanes) GX_INLINE {
            StoreSome(out + done + at, lanes, bits);
            bits += jump;
        });
        out += steady + 1;
        left -= steady + 1;
    }
};

float Accumulate(float v, float step, float* out, size_t count) {
    Sum sum{v, step, out, count};
    while (sum.left != 0) {
        sum.Advance();
    }
    return sum.v;
}

/// Both coordinates of points; the two chains run in parallel.
SamplePoint AccumulatePoints(SamplePoint at, SamplePoint step, float* u, float* v, size_t count) {
    Sum across{at.u, step.u, u, count};
    Sum down{at.v, step.v, v, count};
    while (across.left != 0 && down.left != 0) {
        across.Advance();
        down.Advance();
    }
    while (across.left != 0) {
        across.Advance();
    }
    while (down.left != 0) {
        down.Advance();
    }
    return {across.v, down.v};
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
