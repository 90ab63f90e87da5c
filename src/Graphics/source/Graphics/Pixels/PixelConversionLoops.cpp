// SPDX-License-Identifier: MIT
// The row converters of one instruction set: whole vectors, then a partial one; triples end with narrower vectors.
#include "../Simd/ChannelDivision.h"
#include "PixelRows.h"

namespace Graphics {
namespace GX_SIMD_NAMESPACE {
namespace {

/// True if rows overlap so that pixels must be converted one by one: a block is read as a whole before it is written,
/// which would change the result. Converting a row in place is safe if its pixels keep their width.
bool MustGoByPixel(const uint8_t* dst, size_t dstBytes, const uint8_t* src, size_t srcBytes) noexcept {
    if (dst == src && dstBytes == srcBytes) {
        return false;
    }
    const auto d = reinterpret_cast<uintptr_t>(dst);
    const auto s = reinterpret_cast<uintptr_t>(src);
    return d < s + srcBytes && s < d + dstBytes;
}

/// 32-bit to 32-bit pixels.
template <RowConverter kPlain, class Op> void Map(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    if (MustGoByPixel(dst, count * 4, src, count * 4)) {
        kPlain(dst, 0, src, 0, count);
        return;
    }
    ForBlocks(count,
              [=](size_t i, size_t n) GX_INLINE { StoreSome(dst + i * 4, n, Op::Of(LoadSome(src + i * 4, n))); });
}

/// 32-bit pixels to bytes.
template <RowConverter kPlain, class Op>
void MapToBytes(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    if (MustGoByPixel(dst, count, src, count * 4)) {
        kPlain(dst, 0, src, 0, count);
        return;
    }
    const auto at = [=](size_t i) GX_INLINE { return Op::Of(Load(src + i * 4)); };
    size_t i = 0;
    for (; i + 4 * kLanes <= count; i += 4 * kLanes) {
        Store(dst + i, NarrowFour(at(i), at(i + kLanes), at(i + 2 * kLanes), at(i + 3 * kLanes)));
    }
    for (; i + kLanes <= count; i += kLanes) {
        Narrow(dst + i, at(i));
    }
    if (i < count) {
        NarrowPart(dst + i, count - i, Op::Of(LoadPart(src + i * 4, count - i)));
    }
}

/// Bytes to 32-bit pixels: the byte in all four places, with the bits kOnes set.
template <RowConverter kPlain, uint32_t kOnes>
void MapBytes(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    if (MustGoByPixel(dst, count * 4, src, count)) {
        kPlain(dst, 0, src, 0, count);
        return;
    }
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        Store(dst + i * 4, WidenToAll(src + i) | kOnes);
    }
    if (i < count) {
        StorePart(dst + i * 4, count - i, SpreadBytes(WidenPart(src + i, count - i)) | kOnes);
    }
}

struct ToPremultiplied {
    GX_INLINE static U32 Of(U32 p) noexcept { return Premultiply(p); }
};
struct ToStraight {
    GX_INLINE static U32 Of(U32 p) noexcept { return Unpremultiply(p); }
};
struct ToOpaque {
    GX_INLINE static U32 Of(U32 p) noexcept { return p | kAlpha; }
};
struct ToStraightOpaque {
    GX_INLINE static U32 Of(U32 p) noexcept { return Unpremultiply(p) | kAlpha; }
};
struct ToAlpha {
    GX_INLINE static U32 Of(U32 p) noexcept { return Alpha(p); }
};
struct ToGrey {
    /// (30 red + 59 green + 11 blue) / 100; n / 100 is (n * 5243 >> 16) >> 3 for every n below 43690, and the sum is at
    /// most 25500.
    GX_INLINE static U32 Of(U32 p) noexcept {
        const U32 redBlue = MultiplyAddPairs(p & 0x00FF00FFU, Splat(30U << 16 | 11U));
        const U32 sum = redBlue + MultiplyAddPairs(p >> 8 & 0x000000FFU, Splat(59U));
        return (U32)MultiplyHigh((U16)sum, (U16)Splat(5243U)) >> 3;
    }
};

void UnpremultiplyDropAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    if (MustGoByPixel(dst, count * 3, src, count * 4)) {
        PixelRows::UnpremultiplyDropAlpha(dst, 0, src, 0, count);
        return;
    }
    // Each word's fourth byte is overwritten by the next pixel, except the last one's.
    ForBlocksOnce(count, [=](size_t i, size_t n) GX_INLINE {
        uint8_t straight[kLanes * 4];
        Store(straight, Unpremultiply(LoadSome(src + i * 4, n)));
        const size_t whole = n - (i + n == count ? 1 : 0);
        for (size_t k = 0; k < whole; ++k) {
            __builtin_memcpy(dst + (i + k) * 3, straight + k * 4, 4);
        }
        if (whole < n) {
            __builtin_memcpy(dst + (count - 1) * 3, straight + whole * 4, 3);
        }
    });
}

/// Triples to opaque pixels. A vector's load reads beyond its own triples, so the row's last pixels are left to
/// narrower vectors and finally to the scalar converter.
void AddAlpha24(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
    constexpr size_t kPixels = (kTripleReach + 2) / 3;
    size_t i = 0;
    if (count >= kPixels && !MustGoByPixel(dst, count * 4, src, count * 3)) {
        for (; i + kPixels <= count; i += kLanes) {
            Store(dst + i * 4, WidenTriples(src + i * 3) | kAlpha);
        }
    }
    constexpr auto kFrom = GXPixelFormatBGR24;
    const RowConverter rest = kSet != kNarrowestSet
                                  ? KernelTable<ConversionKernels>::Made(kNarrowerSet).rows[kFrom][GXPixelFormatPBGRA32]
                                  : PixelRows::AddAlpha24;
    rest(dst + i * 4, 0, src + i * 3, 0, count - i);
}

constexpr ConversionKernels MakeTable() noexcept {
    constexpr RowConverter kUnpremultiplyOpaque = Map<PixelRows::UnpremultiplyOpaque, ToStraightOpaque>;
    constexpr RowConverter kSetAlpha = Map<PixelRows::SetAlpha, ToOpaque>;
    constexpr RowConverter kTakeAlpha = MapToBytes<PixelRows::TakeAlpha, ToAlpha>;
    constexpr RowConverter kGrey = MapToBytes<PixelRows::Grey32, ToGrey>;
    constexpr RowConverter kByteToGrey = MapBytes<PixelRows::ByteToGrey, kAlpha>;
    ConversionKernels table{};
    auto& rows = table.rows;
    rows[GXPixelFormatBGR24][GXPixelFormatPBGRA32] = AddAlpha24;
    rows[GXPixelFormatBGR24][GXPixelFormatBGRA32] = AddAlpha24;
    rows[GXPixelFormatBGR24][GXPixelFormatBGRX32] = AddAlpha24;
    rows[GXPixelFormatPBGRA32][GXPixelFormatBGR24] = UnpremultiplyDropAlpha;
    rows[GXPixelFormatPBGRA32][GXPixelFormatBGRA32] = Map<PixelRows::Unpremultiply, ToStraight>;
    rows[GXPixelFormatPBGRA32][GXPixelFormatBGRX32] = kUnpremultiplyOpaque;
    rows[GXPixelFormatPBGRA32][GXPixelFormatAlpha8] = kTakeAlpha;
    rows[GXPixelFormatPBGRA32][GXPixelFormatIndexed8] = kGrey;
    rows[GXPixelFormatPBGRA32][GXPixelFormatGray8] = kGrey;
    rows[GXPixelFormatBGRA32][GXPixelFormatPBGRA32] = Map<PixelRows::Premultiply, ToPremultiplied>;
    rows[GXPixelFormatBGRA32][GXPixelFormatBGRX32] = kSetAlpha;
    rows[GXPixelFormatBGRA32][GXPixelFormatAlpha8] = kTakeAlpha;
    rows[GXPixelFormatBGRA32][GXPixelFormatGray8] = kGrey;
    rows[GXPixelFormatBGRX32][GXPixelFormatPBGRA32] = kSetAlpha;
    rows[GXPixelFormatBGRX32][GXPixelFormatBGRA32] = kSetAlpha;
    rows[GXPixelFormatBGRX32][GXPixelFormatGray8] = kGrey;
    rows[GXPixelFormatAlpha8][GXPixelFormatPBGRA32] = MapBytes<PixelRows::ByteToAll, 0>;
    rows[GXPixelFormatAlpha8][GXPixelFormatBGRA32] = MapBytes<PixelRows::ByteToWhite, kColors>;
    rows[GXPixelFormatAlpha8][GXPixelFormatBGRX32] = kByteToGrey;
    rows[GXPixelFormatGray8][GXPixelFormatPBGRA32] = kByteToGrey;
    rows[GXPixelFormatGray8][GXPixelFormatBGRA32] = kByteToGrey;
    rows[GXPixelFormatGray8][GXPixelFormatBGRX32] = kByteToGrey;
    return table;
}

} // namespace
} // namespace GX_SIMD_NAMESPACE

constinit const ConversionKernels GX_SIMD_NAMESPACE::kConversions = GX_SIMD_NAMESPACE::MakeTable();

} // namespace Graphics
