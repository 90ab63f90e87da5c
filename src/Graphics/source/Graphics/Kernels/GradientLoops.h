// SPDX-License-Identifier: MIT
// The loops of linear and radial gradients over vectors of kLanes words.
#pragma once

#include "../Simd/Channels.h"
#include "PaintKernels.h"
#include "PixelQuads.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// One interval in vectors: its range within [0, 1] and its colour coefficients.
struct Ramp {
    F32 above, upTo; ///< above < t <= upTo
    F32 upper, length;
    F32 perLength, least, most; ///< the share at t is between least - t * perLength and most - t * perLength
    U16 lowerEven, lowerOdd, upperEven, upperOdd;
    bool quick, opaque;

    GX_INLINE explicit Ramp(const GradientInterval& in) noexcept {
        const float span = in.upper - in.lower;
        above = Splat(in.lower < 0.0F ? -1.0e-45F : in.lower); // t >= 0 is t > -(the least number)
        upTo = Splat(in.upper <= 1.0F ? in.upper : 1.0F);
        upper = Splat(in.upper);
        length = Splat(span);
        const float per = 255.0F / span;
        const float doubt = 0.0003F * (per < 1000.0F ? 1.0F : per * 0.001F);
        perLength = Splat(per);
        least = Splat(in.upper * per - doubt);
        most = Splat(in.upper * per + doubt);
        const U32 lowerColor = Splat(in.lowerColor);
        const U32 upperColor = Splat(in.upperColor);
        lowerEven = Even(lowerColor);
        lowerOdd = Odd(lowerColor);
        upperEven = Even(upperColor);
        upperOdd = Odd(upperColor);
        quick = in.lower >= 0.0F && in.upper <= 1.0F && doubt < 0.01F;
        opaque = (in.lowerColor & in.upperColor) >> 24 == 255;
    }

    GX_INLINE I32 Holds(F32 t) const noexcept { return (I32)((t > above) & (t <= upTo)); }

    /// The colours for t inside the interval, undefined elsewhere.
    GX_INLINE U32 Colors(F32 t) const noexcept {
        return Mixed((U32)Truncate((upper - t) / length * Splat(255.0F)) & 255U);
    }

    /// The same without a division; false if some t is not inside, or nothing is certain.
    ///
    /// The share is (upper - t) / length * 255. With p = 255 / length up to 1000 and t up to 1, the products upper * p and
    /// t * p, their difference, and what Floor adds to it are rounded by at most 2^-15, 2^-15, 2^-17 and 2^-16; p itself
    /// and the operations of the share by 2^-24 of their value each, together 2^-14: in all less than 0.00015, or 0.0003
    /// in another rounding mode. For larger p it grows with p. Where both ends of this doubt have the same integer part,
    /// it is that of the share; and if that is from 0 to 254, t is inside.
    GX_INLINE bool QuickColors(F32 t, U32& colors) const noexcept {
        const F32 product = t * perLength;
        const auto share = (U32)Floor(least - product);
        if (!AllEqualBelow(share, (U32)Floor(most - product), Splat(255U))) {
            return false;
        }
        colors = Mixed(share);
        return true;
    }

private:
    GX_INLINE U32 Mixed(U32 share) const noexcept {
        const U32 c = Mix(upperEven, upperOdd, lowerEven, lowerOdd, Twice(share) + 0x00010001U);
        return opaque ? c : Premultiply(c);
    }
};

#ifdef GX_SIMD_QUADS
/// The colours of one interval for 16 parameters.
class RampQuads {
public:
    GX_INLINE RampQuads(const GradientInterval& in, uint32_t opacityFactor) noexcept
        : m_lower(Splat(in.lowerColor)), m_upper(Splat(in.upperColor)), m_factor(Splat(opacityFactor * 0x01010101U)),
          m_scaled(opacityFactor != 256) {}

    /// False where some lie outside, or in doubt between two colours: nothing is written then.
    GX_INLINE bool Shade(const Ramp& ramp, const float* t, uint32_t* out) const noexcept {
        U32 inside = ~U32{};
        U32 share[4];
        for (int k = 0; k < 4; ++k) {
            const F32 product = Load<F32>(t + k * 4) * ramp.perLength;
            share[k] = (U32)Floor(ramp.least - product);
            inside &= (U32)(share[k] == (U32)Floor(ramp.most - product)) & (U32)(share[k] < 255U);
        }
        if (!ramp.quick || !AllSet((I32)inside)) {
            return false;
        }
        const U32 shares = LowBytesOfQuad({{share[0], share[1], share[2], share[3]}});
        StoreQuad(out, EachOf([&](int k) GX_INLINE {
                      const U32 w = SpreadQuarter(shares, k);
                      U32 c = m_lower.Up(w) + m_upper.Down(w);
                      c = ramp.opaque ? c : ScaleUp(c, AlphaBytes(c) | kAlpha);
                      return m_scaled ? ScaleDirect(c, m_factor) : c;
                  }));
        return true;
    }

private:
    SteadyBytes m_lower, m_upper;
    U32 m_factor;
    bool m_scaled;
};
#endif

void Shade(GradientShade& state, const float* t, size_t count, uint32_t* out) {
    const U32 factor = Spread(Splat(state.opacityFactor));
    const bool scaled = state.opacityFactor != 256;
    Ramp ramp(state.interval);
    const auto step = [&](size_t k, size_t lanes) GX_INLINE {
        const auto block = LoadSome<F32>(t + k, lanes);
        U32 quick;
        if (lanes == kLanes && ramp.quick && ramp.QuickColors(block, quick)) {
            Store(out + k, scaled ? Scale(quick, factor) : quick);
            return;
        }
        // The lanes lie in several intervals: each pass takes the interval of the first lane left.
        U32 colors{};
        for (uint32_t left = (1U << lanes) - 1U; left != 0;) {
            const auto lane = static_cast<uint32_t>(__builtin_ctz(left));
            const float at = t[k + lane];
            I32 mask;
            U32 c;
            if (at < 0.0F) {
                mask = (I32)(block < F32{});
                c = Splat(state.before);
            } else if (at > 1.0F) {
                mask = (I32)(block > Splat(1.0F));
                c = Splat(state.after);
            } else if (at != at) {
                mask = (I32)(block != block);
                c = Splat(state.notANumber);
            } else {
                if (!state.interval.Contains(at)) {
                    state.interval = state.sampler->IntervalAt(at);
                    ramp = Ramp(state.interval);
                }
                mask = ramp.Holds(block);
                c = ramp.Colors(block);
                c = scaled ? Scale(c, factor) : c;
            }
            mask |= (I32)(Ascending() == lane); // independent of the host's rounding mode
            colors = Select(mask, c, colors);
            left &= ~MaskBits(mask);
        }
        StoreSome(out + k, lanes, colors);
    };
#ifdef GX_SIMD_QUADS
    RampQuads quads(state.interval, state.opacityFactor);
    size_t k = 0;
    while (k + kQuadPixels <= count) {
        if (quads.Shade(ramp, t + k, out + k)) {
            k += kQuadPixels;
            continue;
        }
        for (const size_t end = k + kQuadPixels; k < end; k += kLanes) {
            step(k, kLanes);
        }
        quads = RampQuads(state.interval, state.opacityFactor); // which may be another one now
    }
    ForBlocks(count - k, [&](size_t i, size_t lanes) { step(k + i, lanes); });
#else
    size_t k = 0;
    for (; k + kLanes <= count; k += kLanes) {
        step(k, kLanes);
    }
    if (k < count) { // a whole vector, of which some pixels get their colours again, goes the quick way
        count < kLanes ? step(k, count - k) : step(count - kLanes, kLanes);
    }
#endif
}

void Radial(const RadialEquation& q, const float* u, const float* v, const float* b, size_t count, float* t) {
    const F32 zero{};
    const F32 one = Splat(1.0F);
    const F32 none = Splat(__builtin_nanf(""));
    ForBlocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        const F32 x = LoadSome<F32>(u + k, lanes);
        const F32 y = LoadSome<F32>(v + k, lanes);
        const F32 B = LoadSome<F32>(b + k, lanes);
        const F32 C = x * x + y * y - Splat(q.g2);
        F32 r;
        if (q.qa4 == 0.0F) {
            r = -C / B;
            r = Select(r == r, r, Splat(-1.0F));
        } else {
            const F32 D = B * B - Splat(q.qa4) * C;
            const F32 s = SquareRoot(Select(D > zero, D, zero));
            const F32 t1 = (s - B) * Splat(q.qinv);
            const F32 t2 = (-B - s) * Splat(q.qinv);
            r = Select((t1 >= zero) & (t1 <= one), t1, t2); // both are -B / (2 A) if D is 0
            r = Select(r == r, r, Splat(-1.0F));
            r = Select(D < zero, none, r);
            r = Select(D == D, r, zero);
        }
        StoreSome(t + k, lanes, r);
    });
}

/// A vector holds kLanes / 4 pixels, the channels of each side by side; narrowed to bytes they are the pixels' words.
void Plane(const float* start, const float* step, size_t count, uint32_t* out) {
    constexpr size_t kPixels = kLanes / 4;
    typedef uint8_t Bytes __attribute__((vector_size(kLanes)));
    const F32 from = Repeat(start);
    const F32 per = Repeat(step);
    F32 index = __builtin_convertvector((I32)(Ascending() >> 2), F32);
    for (size_t k = 0; k < count; k += kPixels) {
        F32 v = from + per * index;
        v = Select((I32)(v > F32{}), v, F32{}); // NaN counts as 0
        v = Select((I32)(v < Splat(255.0F)), v, Splat(255.0F));
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
} // namespace Graphics::GX_SIMD_NAMESPACE
