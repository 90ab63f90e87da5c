// SPDX-License-Identifier: MIT
// The verbs of Advanced SIMD ("NEON"), which every 64-bit ARM processor has; see VectorsPlain.h and VectorsSSE2.h for what
// they do. Division and square root are the exact ones, not the estimates, and nothing here multiplies and adds in one
// rounding.
#pragma once

#include <arm_neon.h>

#define GX_SIMD_BYTES 16
#include "VectorTypes.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

/// The next narrower set, and the narrowest one, for rows shorter than a vector.
constexpr InstructionSet kNarrowerSet = InstructionSet::NEON;
constexpr InstructionSet kNarrowestSet = InstructionSet::NEON;

/// Preferred to the template of Vectors.h, whose copy of 16 bytes GCC 12 may make through two general registers.
GX_INLINE inline void Store(void* p, U32 v) noexcept { vst1q_u8(static_cast<uint8_t*>(p), (uint8x16_t)v); }

// ---- Part of a row; n < kLanes ----

GX_INLINE inline uint32_t WordAt(const uint8_t* p) noexcept {
    uint32_t word;
    __builtin_memcpy(&word, p, 4);
    return word;
}
GX_INLINE inline U32 LoadPart(const void* from, size_t n) noexcept {
    const auto* p = static_cast<const uint8_t*>(from);
    U32 v{};
    if (n != 0) {
        v[0] = WordAt(p);
    }
    if (n > 1) {
        v[1] = WordAt(p + 4);
    }
    if (n > 2) {
        v[2] = WordAt(p + 8);
    }
    return v;
}
GX_INLINE inline void StorePart(void* to, size_t n, U32 v) noexcept {
    auto* p = static_cast<uint8_t*>(to);
    const auto put = [&](size_t at, uint32_t word) GX_INLINE { __builtin_memcpy(p + at, &word, 4); };
    if (n != 0) {
        put(0, v[0]);
    }
    if (n > 1) {
        put(4, v[1]);
    }
    if (n > 2) {
        put(8, v[2]);
    }
}

// ---- Bytes to lanes and back ----

GX_INLINE inline U32 WidenWord(uint32_t bytes) noexcept {
    return (U32)vmovl_u16(vget_low_u16(vmovl_u8(vcreate_u8(bytes))));
}
GX_INLINE inline U32 Widen(const uint8_t* p) noexcept { return WidenWord(WordAt(p)); }
GX_INLINE inline U32 WidenPart(const uint8_t* p, size_t n) noexcept {
    uint32_t bytes = 0;
    for (size_t i = 0; i < n; ++i) {
        bytes |= static_cast<uint32_t>(p[i]) << (8 * i);
    }
    return WidenWord(bytes);
}
GX_INLINE inline U32 WidenToAll(const uint8_t* p) noexcept {
    const U8 order{0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3};
    return (U32)vqtbl1q_u8(vreinterpretq_u8_u32(vdupq_n_u32(WordAt(p))), (uint8x16_t)order);
}
constexpr size_t kTripleReach = 16;
GX_INLINE inline U32 WidenTriples(const uint8_t* p) noexcept {
    constexpr uint8_t kNone = 255; // beyond the table: gives 0
    const U8 order{0, 1, 2, kNone, 3, 4, 5, kNone, 6, 7, 8, kNone, 9, 10, 11, kNone};
    return (U32)vqtbl1q_u8(vld1q_u8(p), (uint8x16_t)order);
}

GX_INLINE inline uint32_t NarrowWord(U32 v) noexcept {
    const uint16x4_t halves = vmovn_u32((uint32x4_t)v);
    return vget_lane_u32(vreinterpret_u32_u8(vmovn_u16(vcombine_u16(halves, halves))), 0);
}
GX_INLINE inline void Narrow(uint8_t* p, U32 v) noexcept {
    const uint32_t bytes = NarrowWord(v);
    __builtin_memcpy(p, &bytes, 4);
}
GX_INLINE inline void NarrowPart(uint8_t* p, size_t n, U32 v) noexcept {
    const uint32_t bytes = NarrowWord(v);
    for (size_t i = 0; i < n; ++i) {
        p[i] = static_cast<uint8_t>(bytes >> (8 * i));
    }
}
GX_INLINE inline U32 NarrowFour(U32 a, U32 b, U32 c, U32 d) noexcept {
    const uint16x8_t low = vuzp1q_u16((uint16x8_t)a, (uint16x8_t)b);
    const uint16x8_t high = vuzp1q_u16((uint16x8_t)c, (uint16x8_t)d);
    return (U32)vuzp1q_u8(vreinterpretq_u8_u16(low), vreinterpretq_u8_u16(high));
}
GX_INLINE inline bool BytesAre(const uint8_t* p, uint8_t v) noexcept { return WordAt(p) == v * 0x01010101U; }

// ---- Lanes of 32 bits ----

GX_INLINE inline uint32_t MaskBits(I32 mask) noexcept {
    const U32 bits{1, 2, 4, 8};
    return vaddvq_u32((uint32x4_t)((U32)mask & bits));
}
GX_INLINE inline bool AllSet(I32 mask) noexcept { return vminvq_u32((uint32x4_t)mask) != 0; }
GX_INLINE inline bool AllBelow(U32 a, U32 x, U32 b, U32 y) noexcept { return AllSet((I32)(a < x) & (I32)(b < y)); }
/// By comparison and selection: the instructions for the lower and the higher of two keep every NaN, or drop every one.
GX_INLINE inline F32 Lower(F32 a, F32 b) noexcept { return (I32)(a < b) ? a : b; }
GX_INLINE inline F32 Higher(F32 a, F32 b) noexcept { return (I32)(a > b) ? a : b; }
GX_INLINE inline F32 SquareRoot(F32 v) noexcept { return (F32)vsqrtq_f32((float32x4_t)v); }
/// The conversion gives the nearest integer for values outside of the integers, which is right below them, and 0 for NaN.
GX_INLINE inline I32 Truncate(F32 v) noexcept {
    const auto r = (I32)vcvtq_s32_f32((float32x4_t)v);
    return (I32)(v < 2147483648.0F) ? r : I32{} + INT32_MIN;
}
GX_INLINE inline I32 Floor(F32 v) noexcept {
    return (I32)(v == v) ? (I32)vcvtmq_s32_f32((float32x4_t)v) : I32{} + INT32_MIN; // a NaN would give 0
}
GX_INLINE inline U16 MultiplyHigh(U16 a, U16 b) noexcept {
    const uint32x4_t low = vmull_u16(vget_low_u16((uint16x8_t)a), vget_low_u16((uint16x8_t)b));
    const uint32x4_t high = vmull_high_u16((uint16x8_t)a, (uint16x8_t)b);
    return (U16)vuzp2q_u16(vreinterpretq_u16_u32(low), vreinterpretq_u16_u32(high));
}
GX_INLINE inline U32 MultiplyAddPairs(U32 a, U32 b) noexcept {
    const int32x4_t low = vmull_s16(vget_low_s16((int16x8_t)a), vget_low_s16((int16x8_t)b));
    const int32x4_t high = vmull_high_s16((int16x8_t)a, (int16x8_t)b);
    return (U32)vpaddq_s32(low, high);
}
constexpr bool kJoinsByShift = true;
GX_INLINE inline U32 JoinHighBytes(U16 low, U16 high) noexcept {
    return (U32)vsriq_n_u16((uint16x8_t)high, (uint16x8_t)low, 8);
}
GX_INLINE inline U32 Twice(U32 w) noexcept { return (U32)vsliq_n_u32((uint32x4_t)w, (uint32x4_t)w, 16); }

GX_INLINE inline F32 Repeat(const float* four) noexcept { return (F32)vld1q_f32(four); }
GX_INLINE inline U32 Gather(const uint8_t* base, I32 offsets) noexcept {
    return U32{WordAt(base + offsets[0]), WordAt(base + offsets[1]), WordAt(base + offsets[2]),
               WordAt(base + offsets[3])};
}
GX_INLINE inline void GatherPairs(const uint8_t* base, I32 offsets, U32& first, U32& second) noexcept {
    const auto two = [&](int i, int j) GX_INLINE {
        return vcombine_u32(vreinterpret_u32_u8(vld1_u8(base + offsets[i])),
                            vreinterpret_u32_u8(vld1_u8(base + offsets[j])));
    };
    const uint32x4_t a = two(0, 1);
    const uint32x4_t b = two(2, 3);
    first = (U32)vuzp1q_u32(a, b);
    second = (U32)vuzp2q_u32(a, b);
}
constexpr uint32_t kNearWords = 0;
GX_INLINE inline U32 Pick(const uint8_t*, size_t, I32) noexcept { return U32{}; }
template <class V> GX_INLINE inline V Kept(V v) noexcept {
    __asm__("" : "+w"(v));
    return v;
}

// ---- Bytes, and four vectors at a time ----
//
// Bytes are multiplied as they are, and the high bytes of the products are one instruction away, so channels need not be
// parted into lanes of 16 bits. A factor is a byte v that stands four times in its pixel.

/// 16 pixels. What works on them is written for this set alone (GX_SIMD_QUADS).
#define GX_SIMD_QUADS 1
struct Quad {
    U32 v[4];
};

/// By vectors, which the compiler pairs: four in one instruction would have to lie in registers that follow each other.
using LooseVector = uint32_t __attribute__((vector_size(16), aligned(1), may_alias));
GX_INLINE inline Quad LoadQuad(const void* p) noexcept {
    const auto* v = static_cast<const LooseVector*>(p);
    return {{v[0], v[1], v[2], v[3]}};
}
GX_INLINE inline void StoreQuad(void* p, const Quad& q) noexcept {
    auto* v = static_cast<LooseVector*>(p);
    v[0] = q.v[0];
    v[1] = q.v[1];
    v[2] = q.v[2];
    v[3] = q.v[3];
}
GX_INLINE inline U32 SelectBits(U32 mask, U32 yes, U32 no) noexcept {
    return (U32)vbslq_u8((uint8x16_t)mask, (uint8x16_t)yes, (uint8x16_t)no);
}
/// The low byte of each half in both its bytes.
GX_INLINE inline U32 DoubleLowBytes(U32 x) noexcept { return (U32)vsliq_n_u16((uint16x8_t)x, (uint16x8_t)x, 8); }
/// The highest byte of each pixel in all its bytes.
GX_INLINE inline U32 AlphaBytes(U32 x) noexcept {
    const U8 order{3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15};
    return (U32)vqtbl1q_u8((uint8x16_t)x, (uint8x16_t)order);
}
/// The same in both halves.
GX_INLINE inline U32 AlphaTwice(U32 x) noexcept {
    constexpr uint8_t kNone = 255; // beyond the table: gives 0
    const U8 order{3, kNone, 3, kNone, 7, kNone, 7, kNone, 11, kNone, 11, kNone, 15, kNone, 15, kNone};
    return (U32)vqtbl1q_u8((uint8x16_t)x, (uint8x16_t)order);
}
/// Of 16 bytes the four of a vector of pixels, each in all bytes of its pixel.
GX_INLINE inline U32 SpreadQuarter(U32 bytes, int quarter) noexcept {
    const U8 order{0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3};
    return (U32)vqtbl1q_u8((uint8x16_t)bytes, (uint8x16_t)(order + static_cast<uint8_t>(4 * quarter)));
}
/// The lowest bytes of the pixels; their highest ones; their luminosities, (77 red + 151 green + 28 blue) >> 8.
GX_INLINE inline U32 LowBytesOfQuad(const Quad& q) noexcept {
    const uint16x8_t low = vuzp1q_u16((uint16x8_t)q.v[0], (uint16x8_t)q.v[1]);
    const uint16x8_t high = vuzp1q_u16((uint16x8_t)q.v[2], (uint16x8_t)q.v[3]);
    return (U32)vuzp1q_u8(vreinterpretq_u8_u16(low), vreinterpretq_u8_u16(high));
}
GX_INLINE inline U32 AlphasOf(const Quad& q) noexcept {
    const uint16x8_t low = vuzp2q_u16((uint16x8_t)q.v[0], (uint16x8_t)q.v[1]);
    const uint16x8_t high = vuzp2q_u16((uint16x8_t)q.v[2], (uint16x8_t)q.v[3]);
    return (U32)vuzp2q_u8(vreinterpretq_u8_u16(low), vreinterpretq_u8_u16(high));
}
GX_INLINE inline U32 LuminositiesOf(const void* pixels) noexcept {
    const uint8x16x4_t c = vld4q_u8(static_cast<const uint8_t*>(pixels));
    const uint8x16_t blue = vdupq_n_u8(28);
    const uint8x16_t green = vdupq_n_u8(151);
    const uint8x16_t red = vdupq_n_u8(77);
    uint16x8_t low = vmull_u8(vget_low_u8(c.val[0]), vget_low_u8(blue));
    uint16x8_t high = vmull_high_u8(c.val[0], blue);
    low = vmlal_u8(low, vget_low_u8(c.val[1]), vget_low_u8(green));
    high = vmlal_high_u8(high, c.val[1], green);
    low = vmlal_u8(low, vget_low_u8(c.val[2]), vget_low_u8(red));
    high = vmlal_high_u8(high, c.val[2], red);
    return (U32)vuzp2q_u8(vreinterpretq_u8_u16(low), vreinterpretq_u8_u16(high));
}
GX_INLINE inline U32 HighBytes(uint16x8_t low, uint16x8_t high) noexcept {
    return (U32)vuzp2q_u8(vreinterpretq_u8_u16(low), vreinterpretq_u8_u16(high));
}
/// (byte * k) >> 8, (byte * (v + 1)) >> 8 and (byte * (256 - v)) >> 8.
GX_INLINE inline U32 ScaleDirect(U32 x, U32 k) noexcept {
    return HighBytes(vmull_u8(vget_low_u8((uint8x16_t)x), vget_low_u8((uint8x16_t)k)),
                     vmull_high_u8((uint8x16_t)x, (uint8x16_t)k));
}
GX_INLINE inline U32 ScaleUp(U32 x, U32 v) noexcept {
    const auto a = (uint8x16_t)x;
    const auto b = (uint8x16_t)v;
    return HighBytes(vaddw_u8(vmull_u8(vget_low_u8(a), vget_low_u8(b)), vget_low_u8(a)),
                     vaddw_high_u8(vmull_high_u8(a, b), a));
}
GX_INLINE inline U32 ScaleDown(U32 x, U32 v) noexcept {
    const auto a = (uint8x16_t)x;
    const auto b = (uint8x16_t)v;
    return HighBytes(vmlsl_u8(vshll_n_u8(vget_low_u8(a), 8), vget_low_u8(a), vget_low_u8(b)),
                     vmlsl_high_u8(vshll_high_n_u8(a, 8), a, b));
}
/// Four bytes that are the same in every pixel: their words of 16 bits are made once, so sums and differences can be narrowed
/// in the same instruction.
struct SteadyBytes {
    uint8x16_t bytes;
    uint16x8_t once, whole; ///< times 1, and times 256

    GX_INLINE explicit SteadyBytes(U32 x) noexcept
        : bytes((uint8x16_t)x), once(vmovl_u8(vget_low_u8((uint8x16_t)x))),
          whole(vshll_n_u8(vget_low_u8((uint8x16_t)x), 8)) {}
    GX_INLINE U32 Up(U32 v) const noexcept {
        const uint16x8_t low = vmull_u8(vget_low_u8(bytes), vget_low_u8((uint8x16_t)v));
        const uint16x8_t high = vmull_high_u8(bytes, (uint8x16_t)v);
        return (U32)vaddhn_high_u16(vaddhn_u16(low, once), high, once);
    }
    GX_INLINE U32 Down(U32 v) const noexcept {
        const uint16x8_t low = vmull_u8(vget_low_u8(bytes), vget_low_u8((uint8x16_t)v));
        const uint16x8_t high = vmull_high_u8(bytes, (uint8x16_t)v);
        return (U32)vsubhn_high_u16(vsubhn_u16(whole, low), whole, high);
    }
};

// ---- Lanes of 64 bits ----

GX_INLINE inline U64 Xor3(U64 a, U64 b, U64 c) noexcept { return a ^ b ^ c; }
/// Where a and b differ, c decides.
GX_INLINE inline U64 Majority(U64 a, U64 b, U64 c) noexcept {
    return (U64)vbslq_u64((uint64x2_t)(a ^ b), (uint64x2_t)c, (uint64x2_t)a);
}
GX_INLINE inline uint32_t MaskBits(I64 mask) noexcept {
    const U64 bits{1, 2};
    return static_cast<uint32_t>(vaddvq_u64((uint64x2_t)((U64)mask & bits)));
}
GX_INLINE inline F64 Masked(I64 mask, F64 v) noexcept { return (F64)(mask & (I64)v); }
GX_INLINE inline F64 Lower(F64 a, F64 b) noexcept { return (I64)(a < b) ? a : b; }
GX_INLINE inline F64 Higher(F64 a, F64 b) noexcept { return (I64)(a > b) ? a : b; }
/// The counts of the bytes of each lane: StoreShape adds up those of four vectors together.
GX_INLINE inline U64 BitCount(U64 bits) noexcept { return (U64)vcntq_u8((uint8x16_t)bits); }
GX_INLINE inline void StoreShape(uint8_t* out, const U64* c) noexcept {
    const uint8x16_t low = vpaddq_u8((uint8x16_t)c[0], (uint8x16_t)c[1]);
    const uint8x16_t high = vpaddq_u8((uint8x16_t)c[2], (uint8x16_t)c[3]);
    const uint8x16_t pairs = vpaddq_u8(low, high);
    const uint8x8_t n = vget_low_u8(vpaddq_u8(pairs, pairs));
    // 4 * 64 - 1 comes out of bytes too; the subtraction alone would give 255 for n = 0.
    vst1_u8(out, vand_u8(vsub_u8(vshl_n_u8(n, 2), vdup_n_u8(1)), vtst_u8(n, n)));
}

GX_INLINE inline uint32_t NonZeroBytes(const U64* v) noexcept {
    int8x16_t zeros = vdupq_n_s8(0); // -1 for each zero byte
    for (int i = 0; i < 4; ++i) {
        zeros = vaddq_s8(zeros, vreinterpretq_s8_u8(vceqzq_u8((uint8x16_t)v[i])));
    }
    return static_cast<uint32_t>(64 + vaddlvq_s8(zeros));
}
GX_INLINE inline U64 SpreadLastBytes(U64 v) noexcept {
    const U8 order{7, 7, 7, 7, 7, 7, 7, 7, 15, 15, 15, 15, 15, 15, 15, 15};
    return (U64)vqtbl1q_u8((uint8x16_t)v, (uint8x16_t)order);
}

// ---- Eight bytes, one for each sub-scanline of a pixel row ----

using Eight = uint8_t __attribute__((vector_size(8)));

GX_INLINE inline U8 Twofold(Eight v) noexcept { return (U8)vcombine_u8((uint8x8_t)v, (uint8x8_t)v); }
GX_INLINE inline uint64_t WordOf(Eight v) noexcept { return vget_lane_u64(vreinterpret_u64_u8((uint8x8_t)v), 0); }
GX_INLINE inline Eight EightOf(uint64_t word) noexcept { return (Eight)vcreate_u8(word); }
/// Each byte shifted up by the byte in the same place, below 8.
GX_INLINE inline Eight ShiftedUp(Eight v, Eight by) noexcept {
    return (Eight)vshl_u8((uint8x8_t)v, vreinterpret_s8_u8((uint8x8_t)by));
}

/// The low bytes of eight words in two vectors, and words by their numbers.
GX_INLINE inline Eight LowBytesOf(U32 a, U32 b) noexcept {
    return (Eight)vmovn_u16(vuzp1q_u16((uint16x8_t)a, (uint16x8_t)b));
}
GX_INLINE inline void PickWords(U32* two, Eight numbers) noexcept {
    const uint8x16x2_t words = {{(uint8x16_t)two[0], (uint8x16_t)two[1]}};
    const U8 first{0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3};
    const U8 inside{0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3};
    const auto bytes = (uint8x16_t)(Twofold(numbers) << 2);
    two[0] = (U32)vqtbl2q_u8(words, (uint8x16_t)((U8)vqtbl1q_u8(bytes, (uint8x16_t)first) + inside));
    two[1] = (U32)vqtbl2q_u8(words, (uint8x16_t)((U8)vqtbl1q_u8(bytes, (uint8x16_t)(first + 4)) + inside));
}
GX_INLINE inline I32 LowerWords(I32 a, I32 b) noexcept { return (I32)vminq_s32((int32x4_t)a, (int32x4_t)b); }
GX_INLINE inline I32 HigherWords(I32 a, I32 b) noexcept { return (I32)vmaxq_s32((int32x4_t)a, (int32x4_t)b); }
GX_INLINE inline bool NoneSet(U32 mask) noexcept { return vmaxvq_u32((uint32x4_t)mask) == 0; }

/// x + k step for k from 0 to 7 in four vectors; of these sums, bits 42 to 49.
struct EightSums {
    uint64x2_t part[4];

    GX_INLINE explicit EightSums(uint64_t step) noexcept {
        const uint64x2_t two = vdupq_n_u64(2 * step);
        part[0] = vcombine_u64(vcreate_u64(0), vcreate_u64(step));
        part[1] = vaddq_u64(part[0], two);
        part[2] = vaddq_u64(part[1], two);
        part[3] = vaddq_u64(part[2], two);
    }
    /// The upper halves of the sums from the one of number `first` on.
    GX_INLINE U32 HighHalves(uint64_t x, int first) const noexcept {
        const uint64x2_t from = vdupq_n_u64(x);
        const uint32x2_t low = vshrn_n_u64(vaddq_u64(part[first / 2], from), 32);
        return (U32)vshrn_high_n_u64(low, vaddq_u64(part[first / 2 + 1], from), 32);
    }
    GX_INLINE Eight Bits42To49(uint64_t x) const noexcept {
        const uint16x4_t low = vshrn_n_u32((uint32x4_t)HighHalves(x, 0), 10);
        return (Eight)vmovn_u16(vshrn_high_n_u32(low, (uint32x4_t)HighHalves(x, 4), 10));
    }
};

GX_INLINE inline U8 MultiplyAddBytes(U8 v, U8 a, U8 b) noexcept {
    return (U8)vmlaq_u8((uint8x16_t)v, (uint8x16_t)a, (uint8x16_t)b);
}
/// The sum of 16 signed bytes.
GX_INLINE inline int32_t SumOfBytes(I8 v) noexcept { return vaddlvq_s8((int8x16_t)v); }
/// The lower half as the upper one, over zeros; the upper half twice.
GX_INLINE inline U8 HalfMovedUp(U8 v) noexcept { return (U8)vextq_u8(vdupq_n_u8(0), (uint8x16_t)v, 8); }
GX_INLINE inline U8 UpperTwice(U8 v) noexcept { return (U8)vreinterpretq_u8_u64(vdupq_laneq_u64((uint64x2_t)v, 1)); }

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
