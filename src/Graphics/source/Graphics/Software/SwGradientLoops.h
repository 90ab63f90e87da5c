// SPDX-License-Identifier: MIT
// The loops of linear and radial gradients over vectors of kLanes words.
#pragma once

#include "SwPaintVectors.h"

namespace Graphics {
namespace {

/// One interval in vectors: where it lies within [0, 1] and what its colours are made from.
struct Ramp {
    Floats above, upTo; ///< above < t <= upTo
    Floats upper, length, perLength;
    Halves lowerEven, lowerOdd, upperEven, upperOdd;
    bool tame, opaque;

    GX_INLINE explicit Ramp(const GradientInterval& in) noexcept {
        const float span = in.upper - in.lower;
        above = Splat(in.lower < 0.0F ? -1.0e-45F : in.lower); // t >= 0 is t > -(the least number)
        upTo = Splat(in.upper <= 1.0F ? in.upper : 1.0F);
        upper = Splat(in.upper);
        length = Splat(span);
        perLength = Splat(255.0F / span);
        const Words lowerColor = Words{} + in.lowerColor;
        const Words upperColor = Words{} + in.upperColor;
        lowerEven = Even(lowerColor);
        lowerOdd = Odd(lowerColor);
        upperEven = Even(upperColor);
        upperOdd = Odd(upperColor);
        tame = span > 1.0e-30F && span < 1.0e30F;
        opaque = (in.lowerColor & in.upperColor) >> 24 == 255;
    }

    GX_INLINE Ints Holds(Floats t) const noexcept { return (Ints)((t > above) & (t <= upTo)); }

    /// The colours; any words where t lies elsewhere. A product with the rounded 255 / length differs from the two
    /// rounded operations by less than 255 * 2^-22 < 0.0001: where both ends of this doubt truncate alike, the
    /// division is spared.
    GX_INLINE Words Colors(Floats t) const noexcept {
        const Floats distance = upper - t;
        const Floats near = distance * perLength;
        const Floats doubt = Splat(0.0001F);
        Ints share = Truncate(near - doubt);
        if (!tame || !All((Ints)(share == Truncate(near + doubt)))) {
            share = Truncate(distance / length * Splat(255.0F));
        }
        const Words w = ((Words)share & 255U) + 1U;
        const Words c = Mix(upperEven, upperOdd, lowerEven, lowerOdd, (Halves)(w | w << 16));
        return opaque ? c : Premultiply(c);
    }
};

void Shade(GradientShade& state, const float* t, size_t count, uint32_t* out) {
    const auto factor = (Halves)(Words{} + (state.opacityFactor | state.opacityFactor << 16));
    const bool scaled = state.opacityFactor != 256;
    Ramp ramp(state.interval);
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        const auto block = Load<Floats>(t + k, lanes);
        if (lanes == kLanes && All(ramp.Holds(block))) {
            const Words c = ramp.Colors(block);
            Store(out + k, scaled ? Scale(c, factor) : c, lanes);
            return;
        }
        // Several stretches meet here: each pass takes the one of the first pixel left.
        Words colors{};
        for (uint32_t left = (1U << lanes) - 1U; left != 0;) {
            const auto lane = static_cast<uint32_t>(__builtin_ctz(left));
            const float at = t[k + lane];
            Ints mask;
            Words c;
            if (at < 0.0F) {
                mask = (Ints)(block < Floats{});
                c = Words{} + state.before;
            } else if (at > 1.0F) {
                mask = (Ints)(block > Splat(1.0F));
                c = Words{} + state.after;
            } else if (at != at) {
                mask = (Ints)(block != block);
                c = Words{} + state.notANumber;
            } else {
                if (!state.interval.Contains(at)) {
                    state.interval = state.sampler->IntervalAt(at);
                    ramp = Ramp(state.interval);
                }
                mask = ramp.Holds(block);
                c = ramp.Colors(block);
                c = scaled ? Scale(c, factor) : c;
            }
            mask |= (Ints)(Ascending() == lane); // whatever rounding the host has set
            colors = Select(mask, c, colors);
            left &= ~Bits(mask);
        }
        Store(out + k, colors, lanes);
    });
}

void Radial(const RadialEquation& q, const float* u, const float* v, const float* b, size_t count, float* t) {
    const Floats zero{};
    const Floats one = Splat(1.0F);
    const Floats none = Splat(__builtin_nanf(""));
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        const Floats x = Load<Floats>(u + k, lanes);
        const Floats y = Load<Floats>(v + k, lanes);
        const Floats B = Load<Floats>(b + k, lanes);
        const Floats C = x * x + y * y - Splat(q.g2);
        Floats r;
        if (q.qa4 == 0.0F) {
            r = -C / B;
            r = Select(r == r, r, Splat(-1.0F));
        } else {
            const Floats D = B * B - Splat(q.qa4) * C;
            const Floats s = SquareRoot(Select(D > zero, D, zero));
            const Floats t1 = (s - B) * Splat(q.qinv);
            const Floats t2 = (-B - s) * Splat(q.qinv);
            r = Select((t1 >= zero) & (t1 <= one), t1, t2); // both are -B / (2 A) where D is 0
            r = Select(r == r, r, Splat(-1.0F));
            r = Select(D < zero, none, r);
            r = Select(D == D, r, zero);
        }
        Store(t + k, r, lanes);
    });
}

/// A vector holds kLanes / 4 pixels, their channels side by side: narrowed to bytes, it is their words.
void Plane(const float* start, const float* step, size_t count, uint32_t* out) {
    constexpr size_t kPixels = kLanes / 4;
    typedef uint8_t Bytes __attribute__((vector_size(kLanes)));
    const Floats from = Repeat(start);
    const Floats per = Repeat(step);
    Floats index = __builtin_convertvector((Ints)(Ascending() >> 2), Floats);
    for (size_t k = 0; k < count; k += kPixels) {
        Floats v = from + per * index;
        v = Select((Ints)(v > Floats{}), v, Floats{}); // not a number counts as 0
        v = Select((Ints)(v < Splat(255.0F)), v, Splat(255.0F));
        const auto bytes = __builtin_convertvector(Truncate(v + Splat(0.5F)), Bytes);
        uint32_t words[kPixels];
        __builtin_memcpy(words, &bytes, kLanes);
        for (size_t i = 0; i < kPixels && k + i < count; ++i) {
            out[k + i] = words[i];
        }
        index += static_cast<float>(kPixels);
    }
}

} // namespace
} // namespace Graphics
