// SPDX-License-Identifier: MIT
// Row conversion in every set against one pixel at a time, and the pixel buffer's limits.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "Exception.h"
#include "KernelSets.h"
#include "Pixels/PixelBuffer.h"
#include "Pixels/PixelConversion.h"
#include "ProcessHeap.h"

using namespace Graphics;

namespace {

constexpr uint32_t kBad = 0xBAD0BAD0U;

// The pixel value of a format: its bytes as a little-endian number, or its bit.
uint32_t Get(const uint8_t* row, size_t bits, size_t bit) {
    if (bits == 1) {
        return row[bit / 8] >> (7 - bit % 8) & 1U;
    }
    uint32_t v = 0;
    for (size_t k = 0; k < bits / 8; ++k) {
        v |= static_cast<uint32_t>(row[bit / 8 + k]) << (8 * k);
    }
    return v;
}

void Put(uint8_t* row, size_t bits, size_t bit, uint32_t v) {
    if (bits == 1) {
        const auto mask = static_cast<uint8_t>(0x80U >> (bit % 8));
        row[bit / 8] = static_cast<uint8_t>(v != 0 ? row[bit / 8] | mask : row[bit / 8] & ~mask);
        return;
    }
    for (size_t k = 0; k < bits / 8; ++k) {
        row[bit / 8 + k] = static_cast<uint8_t>(v >> (8 * k));
    }
}

// The conversion of one pixel, written from the table of pairs with divisions and no tricks.
uint32_t Convert(GXPixelFormat from, GXPixelFormat to, uint32_t p) {
    const uint32_t b = p & 255, g = p >> 8 & 255, r = p >> 16 & 255, a = p >> 24;
    const uint32_t grey = (30 * r + 59 * g + 11 * b) / 100;
    const auto pack = [](uint32_t alpha, uint32_t red, uint32_t green, uint32_t blue) {
        return alpha << 24 | red << 16 | green << 8 | blue;
    };
    const auto straight = [&](uint32_t c) { return a == 0 ? c : std::min(c, a) * 255 / a; };
    const auto times = [&](uint32_t c) { return a == 255 ? c : c * (a + 1) >> 8; };
    switch (from * 16 + to) {
    case 0x12:
    case 0x13:
    case 0x14:
        return pack(255, r, g, b);
    case 0x17:
        return (77 * r + 151 * g + 28 * b) >> 8;
    case 0x21:
        return pack(0, straight(r), straight(g), straight(b));
    case 0x23:
        return pack(a, straight(r), straight(g), straight(b));
    case 0x24:
        return pack(255, straight(r), straight(g), straight(b));
    case 0x25:
    case 0x35:
        return a;
    case 0x26:
    case 0x27:
    case 0x37:
    case 0x47:
        return grey;
    case 0x28:
    case 0x38:
        return a != 0;
    case 0x29:
    case 0x2A:
    case 0x4A:
        return grey >= 128;
    case 0x31:
    case 0x41:
        return pack(0, r, g, b);
    case 0x32:
        return pack(a, times(r), times(g), times(b));
    case 0x33:
        return p;
    case 0x34:
    case 0x42:
    case 0x43:
        return pack(255, r, g, b);
    case 0x52:
        return pack(p, p, p, p);
    case 0x53:
        return pack(p, 255, 255, 255);
    case 0x54:
    case 0x72:
    case 0x73:
    case 0x74:
        return pack(255, p, p, p);
    case 0x58:
    case 0x7A:
        return p != 0;
    case 0x76:
    case 0x89:
    case 0xA9:
        return p;
    case 0x82:
        return p != 0 ? 0xFFFFFFFFU : 0;
    case 0x83:
        return p != 0 ? 0xFFFFFFFFU : 0x00FFFFFFU;
    case 0x84:
    case 0xA2:
    case 0xA3:
    case 0xA4:
        return p != 0 ? 0xFFFFFFFFU : 0xFF000000U;
    case 0x85:
    case 0x87:
    case 0xA7:
        return p != 0 ? 255 : 0;
    default:
        return kBad;
    }
}

// What a row leaves of a destination, its guard bytes included.
std::vector<uint8_t> Expected(GXPixelFormat from, GXPixelFormat to, std::vector<uint8_t> dst, size_t dstBit,
                              const std::vector<uint8_t>& src, size_t srcBit, size_t count) {
    const auto srcBits = static_cast<size_t>(BitsPerPixel(from));
    const auto dstBits = static_cast<size_t>(BitsPerPixel(to));
    for (size_t i = 0; i < count; ++i) {
        Put(dst.data(), dstBits, dstBit + i * dstBits,
            Convert(from, to, Get(src.data(), srcBits, srcBit + i * srcBits)));
    }
    return dst;
}

// Random bytes in which 0 and 255 are frequent.
std::vector<uint8_t> Bytes(std::mt19937& random, size_t count) {
    std::vector<uint8_t> bytes(count);
    for (uint8_t& v : bytes) {
        const auto x = static_cast<uint32_t>(random());
        v = static_cast<uint8_t>((x & 0x300U) == 0 ? 0 : (x & 0x300U) == 0x300U ? 255 : x);
    }
    return bytes;
}

TEST(PixelConversion, EverySetEqualsThePixelByPixelResult) {
    std::mt19937 random(20240611);
    for (const auto& set : EveryKernelSet<ConversionKernels>()) {
        for (GXPixelFormat from = 1; from <= 10; ++from) {
            for (GXPixelFormat to = 1; to <= 10; ++to) {
                if (Convert(from, to, 0) == kBad) {
                    continue;
                }
                const RowConverter row = PixelConversion::Find(from, to, *set.kernels);
                // Bit offsets for one-bit rows, byte offsets for the others.
                const size_t srcUnit = BitsPerPixel(from) == 1 ? 1 : 8;
                const size_t dstUnit = BitsPerPixel(to) == 1 ? 1 : 8;
                for (size_t count = 0; count <= 67; ++count) {
                    for (size_t offset = 0; offset < 64; offset += 1 + (random() & 3)) {
                        const size_t srcBit = offset % 8 * srcUnit;
                        const size_t dstBit = offset / 8 * dstUnit;
                        const std::vector<uint8_t> src =
                            Bytes(random, (srcBit + count * static_cast<size_t>(BitsPerPixel(from)) + 7) / 8);
                        std::vector<uint8_t> dst = Bytes(random, 8 + 67 * 4 + 8);
                        const std::vector<uint8_t> expected = Expected(from, to, dst, dstBit + 8, src, srcBit, count);
                        row(dst.data() + 1 + dstBit / 8, dstBit % 8, src.data() + srcBit / 8, srcBit % 8, count);
                        ASSERT_EQ(dst, expected) << set.name << " " << from << " to " << to << " count " << count
                                                 << " source bit " << srcBit << " destination bit " << dstBit;
                    }
                }
            }
        }
    }
}

TEST(PixelConversion, EveryColourAtEveryAlpha) {
    std::vector<uint32_t> pixels;
    for (uint32_t a = 0; a < 256; ++a) {
        for (uint32_t c = 0; c < 256; ++c) {
            pixels.push_back(a << 24 | c << 16 | (255 - c) << 8 | ((c * 7 + a) & 255));
        }
    }
    const GXPixelFormat pairs[][2] = {{2, 1}, {2, 3}, {2, 4}, {3, 2}, {3, 7}, {2, 10}};
    std::vector<uint8_t> src(pixels.size() * 4);
    std::memcpy(src.data(), pixels.data(), src.size());
    for (const auto& set : EveryKernelSet<ConversionKernels>()) {
        for (const auto& [from, to] : pairs) {
            std::vector<uint8_t> dst(src.size(), 0x5A);
            const std::vector<uint8_t> expected = Expected(from, to, dst, 0, src, 0, pixels.size());
            PixelConversion::Find(from, to, *set.kernels)(dst.data(), 0, src.data(), 0, pixels.size());
            EXPECT_TRUE(dst == expected) << set.name << " " << from << " to " << to;
        }
    }
}

TEST(PixelConversion, PairsWithoutAConverter) {
    for (GXPixelFormat from = 0; from <= 12; ++from) {
        for (GXPixelFormat to = 0; to <= 12; ++to) {
            const RowConverter row = PixelConversion::Find(from, to);
            if (!IsValidFormat(from) || !IsValidFormat(to)) {
                EXPECT_EQ(row, nullptr) << from << " to " << to;
                EXPECT_FALSE(PixelConversion::Converts(from, to));
                continue;
            }
            ASSERT_NE(row, nullptr);
            EXPECT_EQ(PixelConversion::Converts(from, to), Convert(from, to, 0) != kBad) << from << " to " << to;
            if (Convert(from, to, 0) == kBad) {
                uint8_t out[4] = {};
                const uint8_t in[4] = {};
                try {
                    row(out, 0, in, 0, 1);
                    ADD_FAILURE() << from << " to " << to << " converted";
                } catch (const Exception& e) {
                    EXPECT_STREQ(e.what(), "Bad format conversion");
                }
            }
        }
    }
    EXPECT_EQ(PixelConversion::Find(0xFFFFFFFFU, 2), nullptr);
}

TEST(PixelConversion, OverlappingRowsAreTheSameInEverySet) {
    std::mt19937 random(7);
    const auto& plain = KernelTable<ConversionKernels>::Made(InstructionSet::Plain);
    for (const auto& set : EveryKernelSet<ConversionKernels>()) {
        for (GXPixelFormat from = 1; from <= 7; ++from) {
            for (GXPixelFormat to = 1; to <= 7; ++to) {
                if (Convert(from, to, 0) == kBad || from == to || to == GXPixelFormatIndexed8) {
                    continue; // plain copies behave as memmove
                }
                for (size_t shift = 0; shift < 160; shift += 5) {
                    const std::vector<uint8_t> start = Bytes(random, 600);
                    std::vector<uint8_t> scalar = start;
                    std::vector<uint8_t> vector = start;
                    const size_t dst = random() & 1 ? 160 : 160 - shift;
                    const size_t src = 160 + 160 - shift - dst + (dst == 160 ? 0 : shift);
                    PixelConversion::Find(from, to, plain)(scalar.data() + dst, 0, scalar.data() + src, 0, 67);
                    PixelConversion::Find(from, to, *set.kernels)(vector.data() + dst, 0, vector.data() + src, 0, 67);
                    ASSERT_EQ(vector, scalar)
                        << set.name << " " << from << " to " << to << " from " << src << " to " << dst;
                }
            }
        }
    }
}

TEST(PixelBuffer, SizesAndStrides) {
    const struct {
        int32_t width, height;
        uint32_t bits, stride;
    } cases[] = {{5, 1, 24, 16},  {129, 2, 1, 32}, {128, 2, 1, 16}, {-4, 3, 32, 16},
                 {4, -3, 32, 16}, {1, 1, 1, 16},   {17, 1, 8, 32}};
    for (const auto& c : cases) {
        const PixelBuffer buffer(c.width, c.height, c.bits);
        EXPECT_EQ(buffer.StrideBytes(), c.stride) << c.width << " x " << c.height << " of " << c.bits;
        EXPECT_EQ(buffer.Width(), std::abs(c.width));
        EXPECT_EQ(buffer.Height(), std::abs(c.height));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer.Data()) % 16, 0U);
        std::memset(buffer.Data(), 1, buffer.ByteCount());
    }
    const PixelBuffer large(30000, 30000, 8);
    large.Data()[large.ByteCount() - 1] = 1;
}

TEST(PixelBuffer, RefusedSizes) {
    const auto message = [](int32_t width, int32_t height, uint32_t bits) -> std::string {
        try {
            const PixelBuffer buffer(width, height, bits);
            return "made";
        } catch (const Exception& e) {
            return e.what();
        }
    };
    EXPECT_EQ(message(0, 5, 32), "Invalid bitmap dimensions");
    EXPECT_EQ(message(5, 0, 32), "Invalid bitmap dimensions");
    EXPECT_EQ(message(0, INT32_MIN, 32), "Invalid bitmap dimensions");
    EXPECT_EQ(message(INT32_MIN, 1, 1), "Bitmap is too big");
    EXPECT_EQ(message(1, INT32_MIN, 1), "Bitmap is too big");
    EXPECT_EQ(message(2147483640 / 32 + 1, 1, 32), "Bitmap is too big");
    EXPECT_EQ(message(2147483641, 1, 1), "Bitmap is too big");
    EXPECT_EQ(message(2147483640, 8, 1), "Bitmap is too big");
    EXPECT_EQ(message(1, 2147483647 / 16 + 1, 8), "Bitmap is too big");
    EXPECT_EQ(message(2147483640, 1, 1), "made");

    ProcessHeap::FailAfter(0);
    EXPECT_THROW(PixelBuffer(30, 20, 8), Exception);
    ProcessHeap::FailAfter(-1);
    const PixelBuffer buffer(-40, 3, 8);
    EXPECT_EQ(buffer.StrideBytes(), 48U);
    buffer.Data()[buffer.ByteCount() - 1] = 1;
}

} // namespace
