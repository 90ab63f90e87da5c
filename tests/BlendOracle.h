// SPDX-License-Identifier: MIT
// The formulas of the imaging model written out channel by channel, in integers with divisions by division: what
// kernels and whole groups are judged by. Pixels are premultiplied words 0xAARRGGBB, shapes and alphas bytes.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace BlendOracle {

struct Px {
    int b, g, r, a;
};
inline Px Split(uint32_t p) { return {int(p & 255), int(p >> 8 & 255), int(p >> 16 & 255), int(p >> 24)}; }
inline uint32_t Join(const Px& p) {
    return uint32_t(p.b) | uint32_t(p.g) << 8 | uint32_t(p.r) << 16 | uint32_t(p.a) << 24;
}

template <class F> Px Each(const Px& p, const F& f) { return {f(p.b), f(p.g), f(p.r), f(p.a)}; }
inline uint32_t Times(uint32_t p, int k) {
    return Join(Each(Split(p), [k](int c) { return c * k / 256; }));
}
inline uint32_t WithAlpha(uint32_t p, int a) { return (p & 0xFFFFFF) | uint32_t(a & 255) << 24; }
inline int UnionOf(int a, int b) { return a + b - a * (b + 1) / 256; }

inline Px Straight(uint32_t p) {
    const Px x = Split(p);
    const auto f = [&](int c) { return x.a == 0 ? c : std::min(c, x.a) * 255 / x.a; };
    return {f(x.b), f(x.g), f(x.r), x.a};
}

inline int HardLight(int cb, int cs) {
    return cs > 127 ? cb + (2 * cs - 255) - (2 * cs - 255) * cb / 255 : 2 * cs * cb / 255;
}
inline int SoftLight(int cb, int cs) {
    const float x = float(cb) / 255.0F;
    const float f = x <= 0.25F ? ((16 * x - 12) * x + 4) * x : std::sqrt(x);
    const int d = int(f * 255);
    return cs > 127 ? cb + ((d - cb) * (2 * cs - 255)) / 255 : cb - ((255 - 2 * cs) * (255 - cb) * cb) / 65025;
}
inline int Function(int mode, int cb, int cs) {
    switch (mode) {
    case 1:
        return ((cb + 1) * cs) >> 8;
    case 2:
        return cs + cb - (((cb + 1) * cs) >> 8);
    case 3:
        return HardLight(cs, cb);
    case 4:
        return std::min(cb, cs);
    case 5:
        return std::max(cb, cs);
    case 6:
        return cs == 0 ? 0 : 255 - std::min(255, ((255 - cb) * 255) / cs);
    case 7:
        return cs == 255 ? 255 : cb < 255 - cs ? cb * 255 / (255 - cs) : 255;
    case 8:
        return HardLight(cb, cs);
    case 9:
        return SoftLight(cb, cs);
    case 10:
        return std::abs(cb - cs);
    case 11:
        return cs + cb - (2 * cs * cb) / 255;
    default:
        return cs;
    }
}

// Index 0 red, 1 green, 2 blue.
using Rgb = std::array<float, 3>;
inline Rgb Floats(const Px& p) { return {float(p.r) / 255.0F, float(p.g) / 255.0F, float(p.b) / 255.0F}; }
inline float Lum(const Rgb& c) { return 0.3F * c[0] + 0.59F * c[1] + 0.11F * c[2]; }
inline float Sat(const Px& p) { return float(std::max({p.r, p.g, p.b}) - std::min({p.r, p.g, p.b})) / 255.0F; }
inline Rgb SetSat(Rgb c, float s) {
    std::array<size_t, 3> order{0, 1, 2}; // highest first; among equals red before green before blue
    std::stable_sort(order.begin(), order.end(), [&](size_t i, size_t j) { return c[i] > c[j]; });
    const float high = c[order[0]];
    const float mid = c[order[1]];
    const float low = c[order[2]];
    c[order[1]] = high > low ? (mid - low) * s / (high - low) : 0.0F;
    c[order[0]] = high > low ? s : 0.0F;
    return c;
}
inline Rgb SetLum(Rgb c, float l) {
    const float d = l - Lum(c);
    for (float& v : c) {
        v += d;
    }
    const float lum = Lum(c);
    const float low = std::min({c[0], c[1], c[2]});
    const float high = std::max({c[0], c[1], c[2]});
    for (float& v : c) {
        v = low < 0 ? lum + (v - lum) * lum / (lum - low) : v;
        v = high > 1 ? lum + (v - lum) * (1 - lum) / (high - lum) : v;
    }
    return c;
}
inline Px Bytes(const Rgb& c) {
    const auto f = [](float v) { return std::isnan(v) || v < 0 ? 0 : v > 1 ? 255 : int(v * 255); };
    return {f(c[2]), f(c[1]), f(c[0]), 0};
}

inline uint32_t Blend(int mode, const Px& b, const Px& s) {
    switch (mode) {
    case 12:
        return Join(Bytes(SetLum(SetSat(Floats(s), Sat(b)), Lum(Floats(b)))));
    case 13:
        return Join(Bytes(SetLum(SetSat(Floats(b), Sat(s)), Lum(Floats(b)))));
    case 14:
        return Join(Bytes(SetLum(Floats(s), Lum(Floats(b)))));
    case 15:
        return Join(Bytes(SetLum(Floats(b), Lum(Floats(s)))));
    default:
        return Join({Function(mode, b.b, s.b), Function(mode, b.g, s.g), Function(mode, b.r, s.r), 0});
    }
}

/// The Normal mode on the target itself.
inline uint32_t NormalOracle(uint32_t d, uint32_t c, int s) {
    if (s == 0 || Split(c).a == 0) {
        return d;
    }
    c = Times(c, s + 1);
    return Split(d).a == 0 ? c : Times(d, 256 - Split(c).a) + c;
}

/// Any mode on the target itself; of Normal the general form.
inline uint32_t ModeOracle(int mode, uint32_t d, uint32_t c, int s) {
    if (s == 0 || Split(c).a == 0) {
        return d;
    }
    c = s < 255 ? Times(c, s + 1) : c;
    const int as = Split(c).a;
    const int ab = Split(d).a;
    if (ab == 0) {
        return c;
    }
    const uint32_t mixed = Blend(mode, Straight(d), Straight(c));
    if (as == 255) {
        return WithAlpha(ab == 255 ? mixed : Times(c, 256 - ab) + Times(mixed, ab + 1), 255);
    }
    if (ab == 255) {
        return WithAlpha(Times(d, 256 - as) + Times(mixed, as + 1), 255);
    }
    const int t = as * (ab + 1) / 256;
    return WithAlpha(Times(d, 256 - as) + Times(c, 256 - ab) + Times(mixed, t + 1), as + ab - t);
}

struct Group {
    uint32_t color;
    int alpha, shape;
};
/// An object drawn into a group. Mode -1: the Normal of groups, which has a formula of its own.
inline Group LayerOracle(int mode, Group o, uint32_t backdrop, bool knockout, uint32_t c, int fs) {
    const int as = Split(c).a;
    if (as == 0 || fs == 0) {
        return o;
    }
    const int a0 = knockout ? 0 : o.alpha;
    const int alpha = (((as + a0 - ((a0 * (as + 1)) >> 8)) * (fs + 1)) >> 8) + ((o.alpha * (256 - fs)) >> 8);
    const uint32_t under = knockout ? backdrop : o.color;
    uint32_t x;
    if (mode < 0) {
        x = Times(under, 256 - as) + c;
    } else {
        const int au = Split(under).a;
        const uint32_t m = Times(c, 256 - au) + Times(Blend(mode, Straight(under), Straight(c)), au + 1);
        x = Times(under, 256 - as) + Times(m, as + 1);
    }
    return {WithAlpha(Times(o.color, 256 - fs) + Times(x, fs + 1), UnionOf(alpha, Split(backdrop).a)), alpha,
            UnionOf(o.shape, fs)};
}

/// The colour that a group leaves, of its shape and alpha; `backdrop` is null for isolated ones.
inline uint32_t ResultOracle(uint32_t c, int ag, int fg, const uint32_t* backdrop) {
    if (fg == 0 || (backdrop != nullptr && ag == 0)) {
        return c;
    }
    if (backdrop != nullptr) {
        if (ag == 255) {
            return WithAlpha(c, 255);
        }
        const Px share = Split(Times(*backdrop, 256 - ag));
        const Px x = Split(c);
        c = Join({std::max(0, x.b - share.b), std::max(0, x.g - share.g), std::max(0, x.r - share.r), 0});
    }
    c = WithAlpha(c, ag);
    return fg == 255 ? c : Join(Each(Split(c), [fg](int b) { return std::min(b, fg) * 255 / fg; }));
}

/// The value of a soft mask of a type.
inline int MaskOracle(int type, uint32_t p) {
    const Px x = Split(p);
    const int v = type < 2 ? x.a : (77 * x.r + 151 * x.g + 28 * x.b) >> 8;
    return type % 2 == 1 ? 255 - v : v;
}

} // namespace BlendOracle
