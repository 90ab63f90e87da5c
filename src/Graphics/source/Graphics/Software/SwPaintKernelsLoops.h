// SPDX-License-Identifier: MIT
// The loops behind SwPaintKernels, written once over vectors of kLanes words. Each instruction set's file includes this
// header once; everything lies in its unnamed namespace.
//
// Coordinates along a row are defined as repeated float additions, which is a serial chain. Inside one binade it can be
// jumped: all values there are multiples of one unit u, so v + step rounds to v + D with the same D each time, as long
// as step is not exactly half way between two multiples. Then the bit patterns of the terms are an arithmetic sequence.
#pragma once

#if defined(__SSE2__)
#include <immintrin.h>
#endif

#include "SwPaintKernels.h"
#include "SwPixelMath.h"

namespace Graphics {
namespace {

#if defined(__AVX2__)
constexpr size_t kLanes = 8;
#else
constexpr size_t kLanes = 4;
#endif

#define GX_INLINE __attribute__((always_inline))

typedef float Floats __attribute__((vector_size(kLanes * 4)));
typedef int32_t Ints __attribute__((vector_size(kLanes * 4)));
typedef uint32_t Words __attribute__((vector_size(kLanes * 4)));
typedef uint16_t Halves __attribute__((vector_size(kLanes * 4)));

template <class V> GX_INLINE inline V Load(const void* p, size_t lanes) noexcept {
    V v{};
    __builtin_memcpy(&v, p, lanes * 4);
    return v;
}

template <class V> GX_INLINE inline void Store(void* p, V v, size_t lanes) noexcept {
    __builtin_memcpy(p, &v, lanes * 4);
}

/// Calls body(first, lanes) for whole blocks, then for the rest.
template <class Body> GX_INLINE inline void Blocks(size_t count, Body&& body) noexcept {
    size_t k = 0;
    for (; k + kLanes <= count; k += kLanes) {
        body(k, kLanes);
    }
    if (k < count) {
        body(k, count - k);
    }
}

GX_INLINE inline Floats Select(Ints mask, Floats a, Floats b) noexcept {
    return (Floats)((mask & (Ints)a) | (~mask & (Ints)b));
}
GX_INLINE inline Ints Select(Ints mask, Ints a, Ints b) noexcept { return (mask & a) | (~mask & b); }
GX_INLINE inline Floats Splat(float v) noexcept { return v - Floats{}; }

GX_INLINE inline bool All(Ints mask) noexcept {
#if defined(__AVX2__)
    return _mm256_movemask_epi8((__m256i)mask) == -1;
#elif defined(__SSE2__)
    return _mm_movemask_epi8((__m128i)mask) == 0xFFFF;
#else
    return (mask[0] & mask[1] & mask[2] & mask[3]) != 0;
#endif
}

GX_INLINE inline Floats SquareRoot(Floats v) noexcept {
#if defined(__AVX2__)
    return (Floats)_mm256_sqrt_ps((__m256)v);
#elif defined(__SSE2__)
    return (Floats)_mm_sqrt_ps((__m128)v);
#else
    for (size_t i = 0; i < kLanes; ++i) {
        v[i] = __builtin_sqrtf(v[i]);
    }
    return v;
#endif
}

/// Truncated; anything outside the range of int32 gives a word whose low byte is 0.
GX_INLINE inline Ints Truncate(Floats v) noexcept {
#if defined(__AVX2__)
    return (Ints)_mm256_cvttps_epi32((__m256)v);
#elif defined(__SSE2__)
    return (Ints)_mm_cvttps_epi32((__m128)v);
#else
    Ints r{};
    for (size_t i = 0; i < kLanes; ++i) {
        r[i] = v[i] > -2147483648.0F && v[i] < 2147483648.0F ? (int32_t)v[i] : INT32_MIN;
    }
    return r;
#endif
}

/// Every byte times the factor in its word's two halves, shifted right by 8.
GX_INLINE inline Words Scale(Words c, Halves factor) noexcept {
    const Words lanes = Words{} + 0x00FF00FFU;
    const Words rb = (Words)(((Halves)(c & lanes) * factor) >> 8);
    const Words ag = (Words)((Halves)((c >> 8) & lanes) * factor) & ~lanes;
    return rb | ag;
}
GX_INLINE inline Words Mix(Words a, Words b, Words weight) noexcept {
    const Words all = Words{} + 0x01010101U; // 257 in both halves
    return Scale(a, (Halves)(all - weight)) + Scale(b, (Halves)weight);
}
GX_INLINE inline Words Premultiply(Words c) noexcept {
    const Words a = (c >> 24) + 1;
    const Words colors = Words{} + 0x00FFFFFFU;
    return (Scale(c, (Halves)(a | a << 16)) & colors) | (c & ~colors);
}

inline uint32_t BitsOf(float v) noexcept {
    uint32_t bits;
    __builtin_memcpy(&bits, &v, 4);
    return bits;
}
inline float FloatOf(uint32_t bits) noexcept {
    float v;
    __builtin_memcpy(&v, &bits, 4);
    return v;
}

/// How many terms after v follow by adding the same whole number to the bit pattern; 0 where that is not certain.
inline size_t SteadyTerms(float v, float next, float step, size_t most) noexcept {
    const uint32_t from = BitsOf(v);
    const uint32_t to = BitsOf(next);
    const uint32_t exponent = (from >> 23) & 255;
    if (((from ^ to) & 0xFF800000U) != 0 || exponent == 0 || exponent == 255) {
        return 0;
    }
    // Half a unit of the binade, 2^(exponent - 127 - 24), and the part of step that rounding drops; both exact.
    const uint64_t halfBits = static_cast<uint64_t>(exponent + 1023 - 127 - 24) << 52;
    double half;
    __builtin_memcpy(&half, &halfBits, 8);
    const double dropped = static_cast<double>(step) - (static_cast<double>(next) - static_cast<double>(v));
    if (!(dropped < half && dropped > -half)) {
        return 0;
    }
    if (to == from) {
        return most;
    }
    const uint32_t mantissa = from & 0x007FFFFFU;
    // The lower end of the binade itself is left out: below it the grid is finer, and rounding may stop short of it.
    const uint32_t steady = to > from ? (0x007FFFFFU - mantissa) / (to - from) : (mantissa - 1) / (from - to);
    return steady < most ? steady : most;
}

float Accumulate(float v, float step, float* out, size_t count) {
    size_t k = 0;
    while (k < count) {
        const float next = v + step;
        const size_t left = count - k;
        const size_t steady = left > 8 ? SteadyTerms(v, next, step, left - 1) : 0;
        if (steady < 8) {
            const size_t serial = left < 8 ? left : 8;
            for (size_t i = 0; i < serial; ++i) {
                out[k + i] = v;
                v += step;
            }
            k += serial;
            continue;
        }
        const uint32_t first = BitsOf(v);
        const uint32_t d = BitsOf(next) - first;
        Words bits{};
        for (size_t i = 0; i < kLanes; ++i) {
            bits[i] = first + static_cast<uint32_t>(i) * d;
        }
        const Words jump = Words{} + static_cast<uint32_t>(kLanes) * d;
        Blocks(steady + 1, [&](size_t at, size_t lanes) GX_INLINE {
            Store(out + k + at, bits, lanes);
            bits += jump;
        });
        v = FloatOf(first + static_cast<uint32_t>(steady) * d) + step;
        k += steady + 1;
    }
    return v;
}

uint32_t ShadeOne(GradientShade& state, float t) {
    if (t < 0.0F) {
        return state.before;
    }
    if (t > 1.0F) {
        return state.after;
    }
    if (t != t) {
        return state.notANumber;
    }
    GradientInterval& in = state.interval;
    if (!(t > in.lower) || t > in.upper) {
        in = state.sampler->IntervalAt(t);
    }
    const float share = (in.upper - t) / (in.upper - in.lower) * 255.0F;
    const uint32_t w = share >= 0.0F && share < 256.0F ? static_cast<uint32_t>(share) + 1 : 1;
    return ScalePixel(PremultiplyPixel(MixPixels(in.upperColor, in.lowerColor, w)), state.opacityFactor);
}

void Shade(GradientShade& state, const float* t, size_t count, uint32_t* out) {
    const Floats zero{};
    const Floats one = Splat(1.0F);
    const Words factorWords = Words{} + (state.opacityFactor | state.opacityFactor << 16);
    const bool scaled = state.opacityFactor != 256;
    size_t k = 0;
    while (k + kLanes <= count) {
        // Blocks within one interval, whose values stay in registers.
        const GradientInterval in = state.interval;
        const Floats lower = Splat(in.lower);
        const Floats upper = Splat(in.upper);
        const Floats length = Splat(in.upper - in.lower);
        const Words lowerColor = Words{} + in.lowerColor;
        const Words upperColor = Words{} + in.upperColor;
        const bool premultiplied = (in.lowerColor & in.upperColor) >> 24 == 255;
        Floats block{};
        for (; k + kLanes <= count; k += kLanes) {
            block = Load<Floats>(t + k, kLanes);
            if (!All((block >= zero) & (block <= one) & (block > lower) & ~(block > upper))) {
                break;
            }
            const Words w = ((Words)Truncate((upper - block) / length * Splat(255.0F)) & 255U) + 1U;
            Words c = Mix(upperColor, lowerColor, w | w << 16);
            if (!premultiplied) {
                c = Premultiply(c);
            }
            if (scaled) {
                c = Scale(c, (Halves)factorWords);
            }
            Store(out + k, c, kLanes);
        }
        if (k + kLanes > count) {
            break;
        }
        if (All(block < zero)) {
            Store(out + k, Words{} + state.before, kLanes);
        } else if (All(block > one)) {
            Store(out + k, Words{} + state.after, kLanes);
        } else {
            for (size_t i = 0; i < kLanes; ++i) {
                out[k + i] = ShadeOne(state, t[k + i]);
            }
        }
        k += kLanes;
    }
    for (; k < count; ++k) {
        out[k] = ShadeOne(state, t[k]);
    }
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

/// Coordinates beyond 2^30 stop there, so that neither neighbour leaves the integers; NaN counts as 0.
GX_INLINE inline Floats Confine(Floats c) noexcept {
    const Floats limit = Splat(1073741824.0F);
    c = Select(c == c, c, Floats{});
    c = Select(c > limit, limit, c);
    return Select(c < -limit, -limit, c);
}

/// Truncated, and one less for every negative coordinate: -1.0 gives -2.
GX_INLINE inline Ints IndexOf(Floats confined) noexcept { return Truncate(confined) + (confined < Floats{}); }

GX_INLINE inline Ints ClampIndex(Ints i, int32_t size) noexcept {
    const Ints last = Ints{} + (size - 1);
    i = Select(i > Ints{}, i, Ints{});
    return Select(i < last, i, last);
}

/// Puts indices into [0, size) by repeating (1) or mirroring (2).
template <int Mode> void Wrap(int32_t* index, size_t count, int32_t size) noexcept {
    int32_t lastIndex = 0;
    int32_t lastColumn = 0;
    for (size_t k = 0; k < count; ++k) {
        const int32_t i = index[k];
        if (static_cast<uint32_t>(i) < static_cast<uint32_t>(size)) {
            continue;
        }
        if constexpr (Mode == 1) {
            const int64_t near = static_cast<int64_t>(lastColumn) + i - lastIndex;
            int32_t column;
            if (near >= 0 && near < size) {
                column = static_cast<int32_t>(near); // in the same tile as the one before
            } else {
                column = i % size;
                column += column < 0 ? size : 0;
            }
            lastIndex = i;
            lastColumn = column;
            index[k] = column;
        } else {
            // The absolute value mirrors about the centre of pixel 0; the far edge repeats its pixel.
            const int32_t a = i < 0 ? -i : i;
            const int32_t tile = a / size;
            const int32_t r = a - tile * size;
            index[k] = (tile & 1) != 0 ? size - 1 - r : r;
        }
    }
}

template <int Mode> void Indices(const float* c, size_t count, int32_t size, int32_t* index) {
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        Ints i = IndexOf(Confine(Load<Floats>(c + k, lanes)));
        if constexpr (Mode == 0) {
            i = ClampIndex(i, size);
        }
        Store(index + k, i, lanes);
    });
    if constexpr (Mode != 0) {
        Wrap<Mode>(index, count, size);
    }
}

template <int Mode>
void Taps(const float* c, size_t count, int32_t size, int32_t* first, int32_t* second, uint32_t* weight) {
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        const Floats at = Confine(Load<Floats>(c + k, lanes));
        Ints i = IndexOf(at);
        const Floats share = (at - __builtin_convertvector(i, Floats)) * Splat(255.0F);
        const Words w = ((Words)Truncate(share) & 255U) + 1U;
        Store(weight + k, w | w << 16, lanes);
        Ints j = i + 1;
        if constexpr (Mode == 0) {
            i = ClampIndex(i, size);
            j = ClampIndex(j, size);
        }
        Store(first + k, i, lanes);
        Store(second + k, j, lanes);
    });
    if constexpr (Mode != 0) {
        Wrap<Mode>(first, count, size);
        Wrap<Mode>(second, count, size);
    }
}

void MixRows(const uint32_t* a, const uint32_t* b, const uint32_t* weight, size_t count, uint32_t* out) {
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        Store(out + k, Mix(Load<Words>(a + k, lanes), Load<Words>(b + k, lanes), Load<Words>(weight + k, lanes)),
              lanes);
    });
}

void MixRowsBy(const uint32_t* a, const uint32_t* b, uint32_t weight, size_t count, uint32_t* out) {
    const Words w = Words{} + (weight | weight << 16);
    Blocks(count, [&](size_t k, size_t lanes) GX_INLINE {
        Store(out + k, Mix(Load<Words>(a + k, lanes), Load<Words>(b + k, lanes), w), lanes);
    });
}

void ScaleBy(uint32_t* row, uint32_t factor, size_t count) {
    const Words f = Words{} + (factor | factor << 16);
    Blocks(count, [&](size_t k, size_t lanes)
                      GX_INLINE { Store(row + k, Scale(Load<Words>(row + k, lanes), (Halves)f), lanes); });
}

void PremultiplyRow(uint32_t* row, size_t count) {
    Blocks(count,
           [&](size_t k, size_t lanes) GX_INLINE { Store(row + k, Premultiply(Load<Words>(row + k, lanes)), lanes); });
}

constexpr SwPaintKernels MakeTable(const char* name) noexcept {
    return {
        name,    Accumulate, Shade,   Radial,        {Indices<0>, Indices<1>, Indices<2>}, {Taps<0>, Taps<1>, Taps<2>},
        MixRows, MixRowsBy,  ScaleBy, PremultiplyRow};
}

#undef GX_INLINE

} // namespace
} // namespace Graphics
