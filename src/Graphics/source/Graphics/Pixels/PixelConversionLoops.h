// SPDX-License-Identifier: MIT
// The vector row converters, written once over a register type. `V` must be local to the including file, so that each
// instruction set keeps its own copies: 32-bit pixels in V::kPixels lanes, the operations named below. Blocks of
// 4 * V::kPixels pixels make a register of bytes; what is left over goes to the scalar converters.
#pragma once

#include "PixelRows.h"

namespace Graphics {

template <class V> struct PixelConversionLoops {
    using Reg = typename V::Reg;
    static constexpr size_t kStep = V::kPixels;
    static constexpr size_t kBlock = 4 * V::kPixels;

    /// A block is read whole before it is written, which a pixel by pixel loop over overlapping rows would not do. The
    /// same row in place is no such case when its pixels keep their width.
    static bool MustGoByPixel(const uint8_t* dst, size_t dstBytes, const uint8_t* src, size_t srcBytes) noexcept {
        if (dst == src && dstBytes == srcBytes) {
            return false;
        }
        const auto d = reinterpret_cast<uintptr_t>(dst);
        const auto s = reinterpret_cast<uintptr_t>(src);
        return d < s + srcBytes && s < d + dstBytes;
    }

    /// 32-bit to 32-bit pixels by `op`, one register at a time.
    template <RowConverter kScalar, class Op> static void Map32(uint8_t* dst, const uint8_t* src, size_t count, Op op) {
        size_t i = 0;
        if (!MustGoByPixel(dst, count * 4, src, count * 4)) {
            for (; i + kStep <= count; i += kStep) {
                V::Store(dst + i * 4, op(V::Load(src + i * 4)));
            }
        }
        kScalar(dst + i * 4, 0, src + i * 4, 0, count - i);
    }

    /// 32-bit pixels to bytes: `op` leaves a value of 0 to 255 in each lane.
    template <RowConverter kScalar, class Op>
    static void Narrow(uint8_t* dst, const uint8_t* src, size_t count, Op op) {
        size_t i = 0;
        if (!MustGoByPixel(dst, count, src, count * 4)) {
            for (; i + kBlock <= count; i += kBlock) {
                const uint8_t* p = src + i * 4;
                V::Store(dst + i, V::PackToBytes(op(V::Load(p)), op(V::Load(p + kStep * 4)), op(V::Load(p + kStep * 8)),
                                                 op(V::Load(p + kStep * 12))));
            }
        }
        kScalar(dst + i, 0, src + i * 4, 0, count - i);
    }

    /// Bytes to 32-bit pixels: `op` gets the byte in all four places of its lane.
    template <RowConverter kScalar, class Op> static void Widen(uint8_t* dst, const uint8_t* src, size_t count, Op op) {
        size_t i = 0;
        if (!MustGoByPixel(dst, count * 4, src, count)) {
            for (; i + kStep <= count; i += kStep) {
                V::Store(dst + i * 4, op(V::Spread(src + i)));
            }
        }
        kScalar(dst + i * 4, 0, src + i, 0, count - i);
    }

    static Reg Opaque(Reg p) { return V::Or(p, V::Splat(0xFF000000U)); }

    static Reg PremultiplyOp(Reg p) {
        const Reg alpha = V::template ShiftRight32<24>(p);
        const Reg scale = V::Add16(V::Or(alpha, V::template ShiftLeft32<16>(alpha)), V::Splat(0x00010001U));
        const Reg redBlue = V::template ShiftRight16<8>(V::MulLow16(V::And(p, V::Splat(0x00FF00FFU)), scale));
        const Reg green = V::MulLow16(V::And(V::template ShiftRight32<8>(p), V::Splat(0x000000FFU)), scale);
        return V::Or(V::Or(redBlue, V::And(green, V::Splat(0x0000FF00U))), V::And(p, V::Splat(0xFF000000U)));
    }

    // The quotient of two whole numbers below 2^16 is at least 1/255 away from the next whole number above it unless it
    // is whole itself, and a float near 255 is good to 2^-16: truncating the rounded quotient is the whole division.
    static Reg StraightOp(Reg p) {
        const Reg alpha = V::template ShiftRight32<24>(p);
        const Reg pair = V::Or(alpha, V::template ShiftLeft32<16>(alpha));
        const Reg limited = V::MinU8(p, V::Or(pair, V::template ShiftLeft32<8>(pair)));
        const Reg byte = V::Splat(0x000000FFU);
        const Reg blue = V::Quotient255(V::And(limited, byte), alpha);
        const Reg green = V::Quotient255(V::And(V::template ShiftRight32<8>(limited), byte), alpha);
        const Reg red = V::Quotient255(V::And(V::template ShiftRight32<16>(limited), byte), alpha);
        const Reg straight = V::Or(V::Or(V::template ShiftLeft32<24>(alpha), V::template ShiftLeft32<16>(red)),
                                   V::Or(V::template ShiftLeft32<8>(green), blue));
        return V::Select(V::IsZero32(alpha), p, straight);
    }

    // n / 100 = (n * 5243 >> 16) >> 3 for every n below 43690; the sum is at most 25500.
    static Reg GreyOp(Reg p) {
        const Reg redBlue = V::MulAddPairs(V::And(p, V::Splat(0x00FF00FFU)), V::Splat(30U << 16 | 11U));
        const Reg green = V::MulAddPairs(V::And(V::template ShiftRight32<8>(p), V::Splat(0x000000FFU)), V::Splat(59U));
        return V::template ShiftRight32<3>(V::MulHigh16(V::Add32(redBlue, green), V::Splat(5243U)));
    }

    static void Premultiply(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
        Map32<PixelRows::Premultiply>(dst, src, count, [](Reg p) { return PremultiplyOp(p); });
    }
    static void Unpremultiply(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
        Map32<PixelRows::Unpremultiply>(dst, src, count, [](Reg p) { return StraightOp(p); });
    }
    static void UnpremultiplyOpaque(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
        Map32<PixelRows::UnpremultiplyOpaque>(dst, src, count, [](Reg p) { return Opaque(StraightOp(p)); });
    }
    static void UnpremultiplyDropAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
        size_t i = 0;
        if (!MustGoByPixel(dst, count * 3, src, count * 4)) {
            alignas(64) uint8_t straight[kStep * 4];
            for (; i + kStep <= count; i += kStep) {
                V::Store(straight, StraightOp(V::Load(src + i * 4)));
                PixelRows::DropAlpha(dst + i * 3, 0, straight, 0, kStep);
            }
        }
        PixelRows::UnpremultiplyDropAlpha(dst + i * 3, 0, src + i * 4, 0, count - i);
    }
    static void SetAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
        Map32<PixelRows::SetAlpha>(dst, src, count, [](Reg p) { return Opaque(p); });
    }
    static void TakeAlpha(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
        Narrow<PixelRows::TakeAlpha>(dst, src, count, [](Reg p) { return V::template ShiftRight32<24>(p); });
    }
    static void Grey32(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
        Narrow<PixelRows::Grey32>(dst, src, count, [](Reg p) { return GreyOp(p); });
    }
    static void ByteToAll(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
        Widen<PixelRows::ByteToAll>(dst, src, count, [](Reg p) { return p; });
    }
    static void ByteToWhite(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
        Widen<PixelRows::ByteToWhite>(dst, src, count, [](Reg p) { return V::Or(p, V::Splat(0x00FFFFFFU)); });
    }
    static void ByteToGrey(uint8_t* dst, uint32_t, const uint8_t* src, uint32_t, size_t count) {
        Widen<PixelRows::ByteToGrey>(dst, src, count, [](Reg p) { return Opaque(p); });
    }

    static void Install(ConversionTable& table, const char* name) noexcept {
        auto& rows = table.rows;
        table.name = name;
        rows[GXPixelFormatPBGRA32][GXPixelFormatBGR24] = UnpremultiplyDropAlpha;
        rows[GXPixelFormatPBGRA32][GXPixelFormatBGRA32] = Unpremultiply;
        rows[GXPixelFormatPBGRA32][GXPixelFormatBGRX32] = UnpremultiplyOpaque;
        rows[GXPixelFormatPBGRA32][GXPixelFormatAlpha8] = TakeAlpha;
        rows[GXPixelFormatPBGRA32][GXPixelFormatIndexed8] = Grey32;
        rows[GXPixelFormatPBGRA32][GXPixelFormatGray8] = Grey32;
        rows[GXPixelFormatBGRA32][GXPixelFormatPBGRA32] = Premultiply;
        rows[GXPixelFormatBGRA32][GXPixelFormatBGRX32] = SetAlpha;
        rows[GXPixelFormatBGRA32][GXPixelFormatAlpha8] = TakeAlpha;
        rows[GXPixelFormatBGRA32][GXPixelFormatGray8] = Grey32;
        rows[GXPixelFormatBGRX32][GXPixelFormatPBGRA32] = SetAlpha;
        rows[GXPixelFormatBGRX32][GXPixelFormatBGRA32] = SetAlpha;
        rows[GXPixelFormatBGRX32][GXPixelFormatGray8] = Grey32;
        rows[GXPixelFormatAlpha8][GXPixelFormatPBGRA32] = ByteToAll;
        rows[GXPixelFormatAlpha8][GXPixelFormatBGRA32] = ByteToWhite;
        rows[GXPixelFormatAlpha8][GXPixelFormatBGRX32] = ByteToGrey;
        rows[GXPixelFormatGray8][GXPixelFormatPBGRA32] = ByteToGrey;
        rows[GXPixelFormatGray8][GXPixelFormatBGRA32] = ByteToGrey;
        rows[GXPixelFormatGray8][GXPixelFormatBGRX32] = ByteToGrey;
    }
};

} // namespace Graphics
