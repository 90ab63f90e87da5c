// SPDX-License-Identifier: MIT
// The scalar converters, which define the result of every set.
#include "PixelConversion.h"

#include <cstring>

#include "../Exception.h"
#include "PixelMath.h"
#include "PixelRows.h"

namespace Graphics {
namespace PixelRows {
namespace {

[[nodiscard]] uint32_t Load32(const uint8_t* p) noexcept {
    uint32_t v;
    std::memcpy(&v, p, 4);
    return v;
}

void Store32(uint8_t* p, uint32_t v) noexcept { std::memcpy(p, &v, 4); }

/// Luminance of the 32-bit formats, (30 R + 59 G + 11 B) / 100 on the stored bytes. BGR24 has other weights, see below.
[[nodiscard]] uint32_t Grey(uint32_t p) noexcept {
    return (30 * (p >> 16 & 255U) + 59 * (p >> 8 & 255U) + 11 * (p & 255U)) / 100;
}

/// Writes the bits given by `bit(i)`, eight at a time; other bits in the first and last byte do not change.
template <class Bit> void WriteBits(uint8_t* dst, uint32_t dstBit, size_t count, Bit bit) {
    size_t i = 0;
    while (i < count) {
        const auto n = static_cast<uint32_t>(count - i < 8 - dstBit ? count - i : 8 - dstBit);
        uint32_t bits = 0;
        for (uint32_t k = 0; k < n; ++k) {
            bits = bits << 1 | static_cast<uint32_t>(bit(i + k));
        }
        const uint32_t shift = 8 - dstBit - n;
        const uint32_t mask = ((1U << n) - 1) << shift;
        *dst = static_cast<uint8_t>((*dst & ~mask) | bits << shift);
        ++dst;
        i += n;
        dstBit = 0;
    }
}

/// Calls `put(i, bit)` for each pixel of a one-bit row.
template <class Put> void ReadBits(const uint8_t* src, uint32_t srcBit, size_t count, Put put) {
    for (size_t i = 0; i < count; ++i) {
        const size_t position = srcBit + i;
        put(i, (src[position >> 3] >> (7 - (position & 7)) & 1U) != 0);
    }
}

template <uint32_t kSet, uint32_t kClear>
void BitsTo32(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t srcBit, size_t count) {
    ReadBits(src, srcBit, count, [dst](size_t i, bool set) { Store32(dst + i * 4, set ? kSet : kClear); });
}

void BitsToByte(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t srcBit, size_t count) {
    ReadBits(src, srcBit, count, [dst](size_t i, bool set) { dst[i] = set ? 255 : 0; });
}

void AlphaToBits(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t, size_t count) {
    WriteBits(dst, dstBit, count, [src](size_t i) { return src[i * 4 + 3] != 0; });
}

void GreyToBits(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t, size_t count) {
    WriteBits(dst, dstBit, count, [src](size_t i) { return Grey(Load32(src + i * 4)) >= 128; });
}

void ByteToBits(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t, size_t count) {
    WriteBits(dst, dstBit, count, [src](size_t i) { return src[i] != 0; });
}

void Grey24(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        dst[i] = static_cast<uint8_t>((77U * src[i * 3 + 2] + 151U * src[i * 3 + 1] + 28U * src[i * 3]) >> 8);
    }
}

void CopyBytes(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    if (count != 0) {
        std::memmove(dst, src, count);
    }
}

void Copy32(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    if (count != 0) {
        std::memmove(dst, src, count * 4);
    }
}

void CopyBitRow(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t srcBit, size_t count) {
    PixelConversion::CopyBits(dst, dstBit, src, srcBit, count);
}

void Bad(uint8_t*, uint32_t, const uint8_t*, uint32_t, size_t) {
    GX_RAISE("Graphics::PixelConversion::ConvertRow", "Bad format conversion");
}

} // namespace

void AddAlpha24(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Store32(dst + i * 4, 0xFF000000U | static_cast<uint32_t>(src[i * 3 + 2]) << 16 |
                                 static_cast<uint32_t>(src[i * 3 + 1]) << 8 | src[i * 3]);
    }
}

void UnpremultiplyDropAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t p = UnpremultiplyPixel(Load32(src + i * 4));
        dst[i * 3] = static_cast<uint8_t>(p);
        dst[i * 3 + 1] = static_cast<uint8_t>(p >> 8);
        dst[i * 3 + 2] = static_cast<uint8_t>(p >> 16);
    }
}

void Unpremultiply(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Store32(dst + i * 4, UnpremultiplyPixel(Load32(src + i * 4)));
    }
}

void UnpremultiplyOpaque(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Store32(dst + i * 4, UnpremultiplyPixel(Load32(src + i * 4)) | 0xFF000000U);
    }
}

void Premultiply(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Store32(dst + i * 4, PremultiplyPixel(Load32(src + i * 4)));
    }
}

void SetAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Store32(dst + i * 4, Load32(src + i * 4) | 0xFF000000U);
    }
}

void TakeAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        dst[i] = src[i * 4 + 3];
    }
}

void DropAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        dst[i * 3] = src[i * 4];
        dst[i * 3 + 1] = src[i * 4 + 1];
        dst[i * 3 + 2] = src[i * 4 + 2];
    }
}

void Grey32(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        dst[i] = static_cast<uint8_t>(Grey(Load32(src + i * 4)));
    }
}

void ByteToAll(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Store32(dst + i * 4, src[i] * 0x01010101U);
    }
}

void ByteToWhite(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Store32(dst + i * 4, static_cast<uint32_t>(src[i]) << 24 | 0x00FFFFFFU);
    }
}

void ByteToGrey(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        Store32(dst + i * 4, src[i] * 0x01010101U | 0xFF000000U);
    }
}

} // namespace PixelRows

namespace {

using namespace PixelRows;

constexpr uint32_t kWhite = 0xFFFFFFFFU;
constexpr uint32_t kBlack = 0xFF000000U;

// Rows: source, columns: destination. Same-format pairs other than straight alpha are not converted, nor are indexed
// sources: the caller copies the bytes or looks up the colours.
constexpr ConversionKernels kPlain = {{
    {},
    {nullptr, Bad, AddAlpha24, AddAlpha24, AddAlpha24, Bad, Bad, Grey24, Bad, Bad, Bad},
    {nullptr, UnpremultiplyDropAlpha, Bad, Unpremultiply, UnpremultiplyOpaque, TakeAlpha, Grey32, Grey32, AlphaToBits,
     GreyToBits, GreyToBits},
    {nullptr, DropAlpha, Premultiply, Copy32, SetAlpha, TakeAlpha, Bad, Grey32, AlphaToBits, Bad, Bad},
    {nullptr, DropAlpha, SetAlpha, SetAlpha, Bad, Bad, Bad, Grey32, Bad, Bad, GreyToBits},
    {nullptr, Bad, ByteToAll, ByteToWhite, ByteToGrey, Bad, Bad, Bad, ByteToBits, Bad, Bad},
    {nullptr, Bad, Bad, Bad, Bad, Bad, Bad, Bad, Bad, Bad, Bad},
    {nullptr, Bad, ByteToGrey, ByteToGrey, ByteToGrey, Bad, CopyBytes, Bad, Bad, Bad, ByteToBits},
    {nullptr, Bad, BitsTo32<kWhite, 0>, BitsTo32<kWhite, 0x00FFFFFFU>, BitsTo32<kWhite, kBlack>, BitsToByte, Bad,
     BitsToByte, Bad, CopyBitRow, Bad},
    {nullptr, Bad, Bad, Bad, Bad, Bad, Bad, Bad, Bad, Bad, Bad},
    {nullptr, Bad, BitsTo32<kWhite, kBlack>, BitsTo32<kWhite, kBlack>, BitsTo32<kWhite, kBlack>, Bad, Bad, BitsToByte,
     Bad, CopyBitRow, Bad},
}};

} // namespace

constinit const ConversionKernels SimdPlain::kConversions = kPlain;

GX_DEFINE_KERNEL_TABLES(ConversionKernels, kConversions)

RowConverter PixelConversion::Find(GXPixelFormat from, GXPixelFormat to, const ConversionKernels& kernels) noexcept {
    if (!IsValidFormat(from) || !IsValidFormat(to)) {
        return nullptr;
    }
    const RowConverter row = kernels.rows[from][to];
    return row != nullptr ? row : kPlain.rows[from][to];
}

bool PixelConversion::Converts(GXPixelFormat from, GXPixelFormat to) noexcept {
    const RowConverter row = Find(from, to);
    return row != nullptr && row != Bad;
}

void PixelConversion::CopyBits(uint8_t* dst, uint32_t dstBit, const uint8_t* src, uint32_t srcBit,
                               size_t count) noexcept {
    while (count != 0) {
        const auto n = static_cast<uint32_t>(count < 8 - dstBit ? count : 8 - dstBit);
        // The next n bits, from one or two bytes; the second byte is read only if its bits are needed.
        uint32_t bits = static_cast<uint32_t>(src[0]) << 8;
        if (srcBit + n > 8) {
            bits |= src[1];
        }
        bits = bits >> (16 - srcBit - n) & ((1U << n) - 1);
        const uint32_t shift = 8 - dstBit - n;
        const uint32_t mask = ((1U << n) - 1) << shift;
        *dst = static_cast<uint8_t>((*dst & ~mask) | bits << shift);
        ++dst;
        dstBit = 0;
        src += (srcBit + n) >> 3;
        srcBit = (srcBit + n) & 7;
        count -= n;
    }
}

} // namespace Graphics
