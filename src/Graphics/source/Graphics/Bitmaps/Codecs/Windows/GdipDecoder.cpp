// SPDX-License-Identifier: MIT
#include "GdipDecoder.h"

#include <algorithm>
#include <cstring>

#include "../../../Pixels/PixelFormat.h"
#include "../CodecSupport.h"

namespace Graphics {
namespace {

void Check(Gdiplus::GpStatus status) { Require(status == Gdiplus::Ok); }

struct FormatPair {
    GXPixelFormat own;
    Gdiplus::PixelFormat gdiplus; ///< the format requested from GDI+
};

/// Formats that the engine lacks, including deeper ones with alpha, are read as opaque colours.
[[nodiscard]] FormatPair FormatFor(Gdiplus::PixelFormat stored) noexcept {
    constexpr FormatPair kSame[] = {
        {GXPixelFormatBGR24, PixelFormat24bppRGB},       {GXPixelFormatPBGRA32, PixelFormat32bppPARGB},
        {GXPixelFormatBGRA32, PixelFormat32bppARGB},     {GXPixelFormatBGRX32, PixelFormat32bppRGB},
        {GXPixelFormatIndexed8, PixelFormat8bppIndexed}, {GXPixelFormatIndexed1, PixelFormat1bppIndexed},
    };
    for (const FormatPair& pair : kSame) {
        if (pair.gdiplus == stored) {
            return pair;
        }
    }
    return {GXPixelFormatBGRX32, PixelFormat32bppRGB};
}

} // namespace

GdipDecoder::GdipDecoder(ByteSource& source) : m_scope(StartForImages()) {
    if (const std::filesystem::path* path = source.Path()) {
        Check(g_gdip.createBitmapFromFile(path->c_str(), &m_bitmap));
    } else {
        m_stream.emplace(source);
        Check(g_gdip.createBitmapFromStream(m_stream->Get(), &m_bitmap));
    }
}

GdipDecoder::~GdipDecoder() { g_gdip.disposeImage(m_bitmap); }

uint32_t GdipDecoder::CountFrames() {
    UINT dimensions = 0;
    Check(g_gdip.imageGetFrameDimensionsCount(m_bitmap, &dimensions));
    Require(dimensions > 0);
    HeapArray<GUID> list;
    list.resize(dimensions);
    Check(g_gdip.imageGetFrameDimensionsList(m_bitmap, list.data(), dimensions));
    m_dimension = list[0];
    UINT count = 0;
    Check(g_gdip.imageGetFrameCount(m_bitmap, &*m_dimension, &count));
    return count;
}

std::shared_ptr<SysMemBitmap> GdipDecoder::Load(uint32_t frame) {
    if (m_dimension) {
        Check(g_gdip.imageSelectActiveFrame(m_bitmap, &*m_dimension, frame));
    }
    UINT width = 0;
    UINT height = 0;
    float dpiX = 0.0F;
    float dpiY = 0.0F;
    Gdiplus::PixelFormat stored = 0;
    Check(g_gdip.getImageWidth(m_bitmap, &width));
    Check(g_gdip.getImageHeight(m_bitmap, &height));
    Check(g_gdip.getImageHorizontalResolution(m_bitmap, &dpiX));
    Check(g_gdip.getImageVerticalResolution(m_bitmap, &dpiY));
    Check(g_gdip.getImagePixelFormat(m_bitmap, &stored));
    std::shared_ptr<SysMemBitmap> image = NewImage(width, height, FormatFor(stored).own, dpiX, dpiY);
    if (IsIndexedFormat(image->Format())) {
        image->SetPalette(ReadPalette());
    }
    CopyPixels(*image, FormatFor(stored).gdiplus);
    return image;
}

void GdipDecoder::CopyPixels(SysMemBitmap& image, Gdiplus::PixelFormat format) const {
    const PixelView view = image.View();
    const Gdiplus::GpRect all(0, 0, view.width, view.height);
    Gdiplus::BitmapData bits{};
    Check(g_gdip.bitmapLockBits(m_bitmap, &all, Gdiplus::ImageLockModeRead, format, &bits));
    const size_t rowBytes = RowBytes(view.format, view.width);
    const auto* row = static_cast<const uint8_t*>(bits.Scan0);
    for (int32_t y = 0; y < view.height; ++y, row += bits.Stride) {
        std::memcpy(view.data + y * view.strideBytes, row, rowBytes);
    }
    Check(g_gdip.bitmapUnlockBits(m_bitmap, &bits));
}

std::shared_ptr<const Palette> GdipDecoder::ReadPalette() const {
    INT bytes = 0;
    Check(g_gdip.getImagePaletteSize(m_bitmap, &bytes));
    constexpr size_t kBefore = offsetof(Gdiplus::ColorPalette, Entries);
    Require(bytes >= static_cast<INT>(kBefore));
    HeapArray<uint8_t> block;
    block.resize(std::max(static_cast<size_t>(bytes), sizeof(Gdiplus::ColorPalette)));
    auto* palette = reinterpret_cast<Gdiplus::ColorPalette*>(block.data());
    Check(g_gdip.getImagePalette(m_bitmap, palette, bytes));
    const size_t count =
        std::min({size_t{palette->Count}, (static_cast<size_t>(bytes) - kBefore) / sizeof(uint32_t), size_t{256}});
    uint32_t colors[256];
    std::memcpy(colors, block.data() + kBefore, count * sizeof(uint32_t));
    return std::make_shared<const Palette>(colors, count);
}

} // namespace Graphics
