// SPDX-License-Identifier: MIT
// The sixteen blend functions on one pair of straight pixels, and the pixel arithmetic around them, written plainly:
// the forms that every other instruction set must match bit for bit.
//
// The functions are B(cb, cs) of ISO 32000-1:2008, 11.3.5 (tables 136 and 137; the same in W3C "Compositing and
// Blending Level 1"), on integers: cb is the backdrop channel, cs the source channel, both 0 to 255 and not
// premultiplied, and divisions truncate. Where a function differs from the standard, its comment says so; pages must
// keep their bytes. The modes are numbered as the interface numbers them, with ColorBurn before ColorDodge.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Graphics::Blend {

[[nodiscard]] inline uint32_t Alpha(uint32_t x) noexcept { return x >> 24; }
[[nodiscard]] inline uint32_t Channel(uint32_t x, unsigned shift) noexcept { return (x >> shift) & 255U; }
[[nodiscard]] inline uint32_t Lower(uint32_t a, uint32_t b) noexcept { return a < b ? a : b; }
[[nodiscard]] inline uint32_t Higher(uint32_t a, uint32_t b) noexcept { return a > b ? a : b; }

/// a + b - ab on bytes: what two independent coverages cover together.
[[nodiscard]] inline uint32_t Union(uint32_t a, uint32_t b) noexcept { return a + b - ((a * (b + 1U)) >> 8); }

struct Normal {
    static uint32_t Of(uint32_t /*cb*/, uint32_t cs) noexcept { return cs; }
};
/// cb cs, with (cb + 1) / 256 for cb / 255.
struct Multiply {
    static uint32_t Of(uint32_t cb, uint32_t cs) noexcept { return ((cb + 1U) * cs) >> 8; }
};
/// cb + cs - cb cs
struct Screen {
    static uint32_t Of(uint32_t cb, uint32_t cs) noexcept { return cs + cb - (((cb + 1U) * cs) >> 8); }
};
struct Darken {
    static uint32_t Of(uint32_t cb, uint32_t cs) noexcept { return Lower(cb, cs); }
};
struct Lighten {
    static uint32_t Of(uint32_t cb, uint32_t cs) noexcept { return Higher(cb, cs); }
};
/// 1 - min(1, (1 - cb) / cs); 0 for cs = 0, over white too.
struct ColorBurn {
    static uint32_t Of(uint32_t cb, uint32_t cs) noexcept {
        return cs == 0 ? 0U : 255U - Lower(255U, (255U - cb) * 255U / cs);
    }
};
/// min(1, cb / (1 - cs)); 1 for cs = 1, over black too.
struct ColorDodge {
    static uint32_t Of(uint32_t cb, uint32_t cs) noexcept {
        if (cs == 255U) {
            return 255U;
        }
        return cb < 255U - cs ? cb * 255U / (255U - cs) : 255U;
    }
};
/// Multiply(cb, 2 cs) for cs up to a half, Screen(cb, 2 cs - 1) above.
struct HardLight {
    static uint32_t Of(uint32_t cb, uint32_t cs) noexcept {
        if (cs > 127U) {
            const uint32_t s = 2U * cs - 255U;
            return cb + s - s * cb / 255U;
        }
        return 2U * cs * cb / 255U;
    }
};
/// HardLight with its operands exchanged.
struct Overlay {
    static uint32_t Of(uint32_t cb, uint32_t cs) noexcept { return HardLight::Of(cs, cb); }
};
/// cb - (1 - 2 cs) cb (1 - cb) for cs up to a half, cb + (2 cs - 1) (D(cb) - cb) above.
struct SoftLight {
    /// ((16 x - 12) x + 4) x for x up to a quarter, sqrt(x) above.
    static int32_t D(uint32_t cb) noexcept {
        const float x = static_cast<float>(cb) / 255.0F;
        const float f = x <= 0.25F ? ((16.0F * x - 12.0F) * x + 4.0F) * x : __builtin_sqrtf(x);
        return static_cast<int32_t>(f * 255.0F);
    }
    static uint32_t Of(uint32_t cb, uint32_t cs) noexcept {
        const auto b = static_cast<int32_t>(cb);
        const auto s = static_cast<int32_t>(cs);
        const int32_t r = s > 127 ? b + (D(cb) - b) * (2 * s - 255) / 255 : b - (255 - 2 * s) * (255 - b) * b / 65025;
        return static_cast<uint32_t>(r) & 255U;
    }
};
struct Difference {
    static uint32_t Of(uint32_t cb, uint32_t cs) noexcept { return cb > cs ? cb - cs : cs - cb; }
};
/// cb + cs - 2 cb cs
struct Exclusion {
    static uint32_t Of(uint32_t cb, uint32_t cs) noexcept { return cs + cb - 2U * cs * cb / 255U; }
};

// ---- The modes that see a colour as a whole, on channel / 255 in single precision ----

struct Rgb {
    float r, g, b;
};

[[nodiscard]] inline Rgb ToRgb(uint32_t x) noexcept {
    return {static_cast<float>(Channel(x, 16)) / 255.0F, static_cast<float>(Channel(x, 8)) / 255.0F,
            static_cast<float>(Channel(x, 0)) / 255.0F};
}

[[nodiscard]] inline float Lum(const Rgb& c) noexcept { return 0.3F * c.r + 0.59F * c.g + 0.11F * c.b; }

/// (highest - lowest channel) / 255
[[nodiscard]] inline float Sat(uint32_t x) noexcept {
    const uint32_t r = Channel(x, 16);
    const uint32_t g = Channel(x, 8);
    const uint32_t b = Channel(x, 0);
    return static_cast<float>(Higher(r, Higher(g, b)) - Lower(r, Lower(g, b))) / 255.0F;
}

/// Gives the colour the saturation s. Unlike the standard's SetSat, which makes the lowest channel 0, this one keeps
/// its value; of a grey the other two channels become 0. Of equal channels, red counts as the highest before green
/// before blue, and blue as the lowest before green before red.
[[nodiscard]] inline Rgb SetSat(Rgb c, float s) noexcept {
    float* high = c.r >= c.g && c.r >= c.b ? &c.r : c.g >= c.b ? &c.g : &c.b;
    float* low = c.b <= c.r && c.b <= c.g ? &c.b : c.g <= c.r ? &c.g : &c.r;
    float* middle = &c.r != high && &c.r != low ? &c.r : &c.g != high && &c.g != low ? &c.g : &c.b;
    if (*high > *low) {
        *middle = (*middle - *low) * s / (*high - *low);
        *high = s;
    } else {
        *middle = 0.0F;
        *high = 0.0F;
    }
    return c;
}

/// SetLum and ClipColor of the standard: shifts the colour to luminosity l, then moves channels outside 0 to 1 toward
/// it.
[[nodiscard]] inline Rgb SetLum(Rgb c, float l) noexcept {
    const float d = l - Lum(c);
    c = {c.r + d, c.g + d, c.b + d};
    const float lum = Lum(c);
    const float lowGB = c.g < c.b ? c.g : c.b;
    const float low = c.r < lowGB ? c.r : lowGB;
    const float highGB = c.g > c.b ? c.g : c.b;
    const float high = c.r > highGB ? c.r : highGB;
    if (low < 0.0F) {
        const auto clip = [&](float v) { return lum + (v - lum) * lum / (lum - low); };
        c = {clip(c.r), clip(c.g), clip(c.b)};
    }
    if (high > 1.0F) {
        const auto clip = [&](float v) { return lum + (v - lum) * (1.0F - lum) / (high - lum); };
        c = {clip(c.r), clip(c.g), clip(c.b)};
    }
    return c;
}

/// Back to bytes. A grey just below 0 divides 0 by 0 above; such a value is 0 here.
[[nodiscard]] inline uint32_t ToBytes(const Rgb& c) noexcept {
    const auto byte = [](float v) {
        return v > 1.0F ? 255U : v >= 0.0F ? static_cast<uint32_t>(static_cast<int32_t>(v * 255.0F)) : 0U;
    };
    return byte(c.r) << 16 | byte(c.g) << 8 | byte(c.b);
}

/// SetLum(SetSat(cs, Sat(cb)), Lum(cb))
struct Hue {
    static uint32_t Pixel(uint32_t b, uint32_t s) noexcept {
        return ToBytes(SetLum(SetSat(ToRgb(s), Sat(b)), Lum(ToRgb(b))));
    }
};
/// SetLum(SetSat(cb, Sat(cs)), Lum(cb))
struct Saturation {
    static uint32_t Pixel(uint32_t b, uint32_t s) noexcept {
        return ToBytes(SetLum(SetSat(ToRgb(b), Sat(s)), Lum(ToRgb(b))));
    }
};
/// "Color" of the standard: SetLum(cs, Lum(cb))
struct HueAndSaturation {
    static uint32_t Pixel(uint32_t b, uint32_t s) noexcept { return ToBytes(SetLum(ToRgb(s), Lum(ToRgb(b)))); }
};
/// SetLum(cb, Lum(cs))
struct Luminosity {
    static uint32_t Pixel(uint32_t b, uint32_t s) noexcept { return ToBytes(SetLum(ToRgb(b), Lum(ToRgb(s)))); }
};

/// A function of single channels, applied to the three colours of a pixel; the result has alpha 0.
template <class Function> struct Separable {
    static uint32_t Pixel(uint32_t b, uint32_t s) noexcept {
        return Function::Of(Channel(b, 16), Channel(s, 16)) << 16 | Function::Of(Channel(b, 8), Channel(s, 8)) << 8 |
               Function::Of(Channel(b, 0), Channel(s, 0));
    }
};

} // namespace Graphics::Blend
