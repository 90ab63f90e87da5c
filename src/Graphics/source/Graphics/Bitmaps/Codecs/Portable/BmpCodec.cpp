// SPDX-License-Identifier: MIT
// Writes 1 and 8 bits with a palette, 24 bits, and for alpha 32 bits with masks in a version 4 header, the first
// version that defines the fourth byte.
#include "BmpCodec.h"

#include <cstring>

#include "../CodecSupport.h"
#include "BmpReader.h"

namespace Graphics {
namespace {

void Store16(uint8_t* p, uint32_t v) noexcept {
    p[0] = static_cast<uint8_t>(v);
    p[1] = static_cast<uint8_t>(v >> 8);
}

void Store32(uint8_t* p, uint32_t v) noexcept {
    Store16(p, v);
    Store16(p + 2, v >> 16);
}

constexpr uint32_t kFileHeader = 14;
constexpr uint32_t kInfoHeader = 40;
constexpr uint32_t kVersion4Header = 108;
constexpr uint32_t kBitFields = 3;
constexpr uint32_t kStandardRgb = 0x73524742; // "sRGB"

} // namespace

bool BmpCodec::Recognizes(std::span<const uint8_t> head) const noexcept {
    return head.size() >= 2 && head[0] == 'B' && head[1] == 'M';
}

std::unique_ptr<ImageDecoder> BmpCodec::Open(ByteSource& source) const { return std::make_unique<BmpReader>(source); }

bool BmpCodec::Writes(std::string_view name) const noexcept { return name == "bmp"; }

void BmpCodec::Save(const SysMemBitmap& image, std::string_view, ByteSink& sink) const {
    SavedRows rows(image, true, true, false);
    const bool alpha = rows.Kind() == SavedKind::Rgba;
    const uint32_t bits = alpha ? 32 : rows.Kind() == SavedKind::Rgb ? 24 : rows.Kind() == SavedKind::Palette1 ? 1 : 8;
    const uint32_t colorCount = bits == 8 ? 256 : bits == 1 ? 2 : 0;
    const uint32_t headers = kFileHeader + (alpha ? kVersion4Header : kInfoHeader);
    const uint32_t pixelsAt = headers + colorCount * 4;
    const size_t stride = (rows.RowBytes() + 3) / 4 * 4;
    const uint64_t pixelBytes = static_cast<uint64_t>(stride) * rows.Height();
    Require(pixelBytes + pixelsAt <= UINT32_MAX);

    uint8_t start[kFileHeader + kVersion4Header + 256 * 4] = {'B', 'M'};
    Store32(start + 2, static_cast<uint32_t>(pixelBytes) + pixelsAt);
    Store32(start + 10, pixelsAt);
    uint8_t* info = start + kFileHeader;
    Store32(info, headers - kFileHeader);
    Store32(info + 4, rows.Width());
    Store32(info + 8, rows.Height());
    Store16(info + 12, 1);
    Store16(info + 14, bits);
    Store32(info + 20, static_cast<uint32_t>(pixelBytes));
    Store32(info + 24, DotsPerMetre(image.DpiX()));
    Store32(info + 28, DotsPerMetre(image.DpiY()));
    Store32(info + 32, colorCount);
    if (alpha) {
        Store32(info + 16, kBitFields);
        Store32(info + 40, 0xFF0000U);
        Store32(info + 44, 0xFF00U);
        Store32(info + 48, 0xFFU);
        Store32(info + 52, 0xFF000000U);
        Store32(info + 56, kStandardRgb);
    }
    for (uint32_t i = 0; i < colorCount; ++i) {
        Store32(start + headers + 4 * i,
                rows.Kind() == SavedKind::Grey8 ? i * 0x010101U : rows.Colors()[i] & 0xFFFFFFU);
    }
    Require(sink.Write(start, pixelsAt));
    constexpr uint8_t kPadding[4] = {};
    for (uint32_t y = rows.Height(); y-- > 0;) {
        Require(sink.Write(rows.Row(y), rows.RowBytes()) && sink.Write(kPadding, stride - rows.RowBytes()));
    }
}

} // namespace Graphics
