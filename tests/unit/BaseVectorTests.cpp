// SPDX-License-Identifier: MIT
// The verbs of the set that every processor of the platform has, lane by lane against plain C++, where processors differ:
// conversions out of range, NaN and signed zeros, denormal numbers, and products that must be rounded before they are added.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "Simd/BaseVectors.h"
#include "Simd/Channels.h"

namespace Graphics::GX_SIMD_NAMESPACE {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kSpecial[] = {0.0F,           -0.0F,
                              1.0F,           -1.0F,
                              0.25F,          1.0e-45F,
                              -1.0e-45F,      1.2e-38F,
                              254.99998F,     -255.5F,
                              8388609.0F,     2147483520.0F,
                              2147483648.0F,  -2147483648.0F,
                              -2147483904.0F, 4294967296.0F,
                              1.0e30F,        -1.0e30F,
                              3.4e38F,        kInfinity,
                              -kInfinity,     std::numeric_limits<float>::quiet_NaN()};

uint32_t Bits(float v) { return std::bit_cast<uint32_t>(v); }

/// Equal bits, or both NaN, whose bits are the processor's.
void ExpectSame(F32 got, float expected, float a, float b) {
    for (size_t lane = 0; lane < kLanes; ++lane) {
        const float one = got[lane];
        EXPECT_TRUE(Bits(one) == Bits(expected) || (std::isnan(one) && std::isnan(expected)))
            << a << " " << b << " gave " << one << ", expected " << expected;
    }
}

TEST(BaseVectors, FloatsFollowTheirPlainForms) {
    for (float a : kSpecial) {
        const I32 whole = Truncate(Splat(a));
        const bool fits = a >= -2147483648.0F && a < 2147483648.0F;
        for (size_t lane = 0; lane < kLanes; ++lane) {
            EXPECT_EQ(whole[lane], fits ? static_cast<int32_t>(a) : INT32_MIN) << a;
        }
        ExpectSame(SquareRoot(Splat(a)), std::sqrt(a), a, a);
        for (float b : kSpecial) {
            ExpectSame(Lower(Splat(a), Splat(b)), a < b ? a : b, a, b);
            ExpectSame(Higher(Splat(a), Splat(b)), a > b ? a : b, a, b);
            ExpectSame(Splat(a) / Splat(b), a / b, a, b);
            const auto longHigher = Higher(F64{} + static_cast<double>(a), F64{} + static_cast<double>(b));
            ExpectSame(Splat(static_cast<float>(longHigher[0])), (a > b ? a : b) + 0.0F, a, b);
        }
    }
    // Rounded once, the sum would be 2^-24.
    F32 factor = Splat(1.0F + 0x1p-12F);
    F32 rest = Splat(-1.0F - 0x1p-11F);
    __asm__ volatile("" : "+m"(factor), "+m"(rest)); // not at compile time
    ExpectSame(factor * factor + rest, 0.0F, factor[0], rest[0]);
}

TEST(BaseVectors, MasksTellTheirLanes) {
    for (uint32_t bits = 0; bits < 16; ++bits) {
        I32 mask{};
        for (uint32_t lane = 0; lane < kLanes; ++lane) {
            mask[lane] = (bits >> lane & 1) != 0 ? -1 : 0;
        }
        EXPECT_EQ(MaskBits(mask), bits);
        EXPECT_EQ(AllSet(mask), bits == 15);
        EXPECT_EQ(AllBelow((U32)(mask + 1), Splat(1U), U32{}, Splat(1U)), bits == 15);
    }
    for (uint32_t bits = 0; bits < 4; ++bits) {
        const I64 mask{-static_cast<int64_t>(bits & 1), -static_cast<int64_t>(bits >> 1)};
        EXPECT_EQ(MaskBits(mask), bits);
    }
}

TEST(BaseVectors, IntegersFollowTheirPlainForms) {
    std::mt19937 random(11);
    for (int round = 0; round < 2000; ++round) {
        uint8_t bytes[64], out[64];
        for (uint8_t& byte : bytes) {
            const uint32_t draw = random();
            byte = static_cast<uint8_t>((draw & 0x700) == 0 ? 255 : (draw & 0x700) == 0x100 ? 0 : draw);
        }
        const auto a = Load<U16>(bytes);
        const auto b = Load<U16>(bytes + 16);
        const U16 high = MultiplyHigh(a, b);
        const auto joined = (U16)JoinHighBytes(a, b);
        const auto pairs = MultiplyAddPairs((U32)(a & 0x7FFFU), (U32)(b & 0x7FFFU));
        for (size_t i = 0; i < kLanes * 2; ++i) {
            ASSERT_EQ(high[i], static_cast<uint32_t>(a[i]) * b[i] >> 16);
            ASSERT_EQ(joined[i], a[i] >> 8 | (b[i] & 0xFF00));
        }
        for (size_t i = 0; i < kLanes; ++i) {
            const auto product = [&](size_t k) { return uint32_t{a[k] & 0x7FFFU} * uint32_t{b[k] & 0x7FFFU}; };
            ASSERT_EQ(pairs[i], product(2 * i) + product(2 * i + 1));
        }
        const size_t some = 1 + random() % 3;
        const U32 wide = Widen(bytes), spread = WidenToAll(bytes), part = WidenPart(bytes, some);
        const U32 triples = WidenTriples(bytes);
        for (size_t i = 0; i < kLanes; ++i) {
            ASSERT_EQ(wide[i], bytes[i]);
            ASSERT_EQ(part[i], i < some ? bytes[i] : 0);
            ASSERT_EQ(spread[i], bytes[i] * 0x01010101U);
            ASSERT_EQ(triples[i] & 0xFFFFFFU,
                      static_cast<uint32_t>(bytes[3 * i] | bytes[3 * i + 1] << 8 | bytes[3 * i + 2] << 16));
        }
        Store(out, NarrowFour(Widen(bytes), Widen(bytes + 4), Widen(bytes + 8), Widen(bytes + 12)));
        ASSERT_EQ(std::memcmp(out, bytes, 16), 0);
        const auto scaled = (U8)Scale(Load(bytes), Spread(Widen(bytes + 32) + 1U));
        const auto mixed = (U8)Mix(Load(bytes), Load(bytes + 16), Spread(Widen(bytes + 32) + 1U));
        for (size_t i = 0; i < kLanes * 4; ++i) {
            const uint32_t k = bytes[32 + i / 4] + 1U;
            ASSERT_EQ(scaled[i], bytes[i] * k >> 8);
            ASSERT_EQ(mixed[i], (bytes[i] * (257 - k) >> 8) + (bytes[16 + i] * k >> 8));
        }
        // Eight pixels of 64 samples each.
        U64 counts[4];
        for (size_t i = 0; i < 4; ++i) {
            counts[i] = BitCount(Load<U64>(bytes + 16 * i));
        }
        StoreShape(out, counts);
        for (size_t i = 0; i < 8; ++i) {
            uint64_t samples;
            std::memcpy(&samples, bytes + 8 * i, 8);
            const int n = std::popcount(samples);
            ASSERT_EQ(out[i], n == 0 ? 0 : 4 * n - 1);
        }
    }
    U64 all[4] = {};
    for (U64& v : all) {
        v = BitCount(~U64{});
    }
    uint8_t shape[8];
    StoreShape(shape, all);
    EXPECT_EQ(shape[0], 255);
    EXPECT_EQ(shape[7], 255);
}

} // namespace
} // namespace Graphics::GX_SIMD_NAMESPACE
