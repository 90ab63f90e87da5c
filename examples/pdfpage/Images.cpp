// SPDX-License-Identifier: MIT
#include "Images.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace PdfPage {
namespace {

constexpr size_t kBudgetBytes = size_t{256} << 20;

Handle<GXBitmap> CopyPixmap(Report& report, const fz_pixmap& pixmap, size_t* bytes) {
    const uint32_t width = static_cast<uint32_t>(pixmap.w), height = static_cast<uint32_t>(pixmap.h);
    const GXPixelFormat format = pixmap.n == 1   ? GXPixelFormatAlpha8
                                 : pixmap.n == 3 ? GXPixelFormatBGR24
                                                 : GXPixelFormatPBGRA32;
    const GXBitmapDesc desc{width, height, format, 96.0f, 96.0f};
    Handle<GXBitmap> bitmap;
    GXBitmapData data{};
    if (!report.Check(GXCreateBitmap(&desc, bitmap.Out()), "GXCreateBitmap"))
        return bitmap;
    if (!report.Check(GXBitmapLock(bitmap.Get(), nullptr, GXLockWrite, &data), "GXBitmapLock"))
        return {};
    const size_t rowBytes = size_t{pixmap.n} * width;
    for (uint32_t y = 0; y < height; ++y)
        std::memcpy(static_cast<uint8_t*>(data.data) + size_t{y} * data.stride,
                    pixmap.samples + static_cast<ptrdiff_t>(y) * pixmap.stride, rowBytes);
    report.Check(GXBitmapUnlock(bitmap.Get()), "GXBitmapUnlock");
    *bytes = rowBytes * height;
    return bitmap;
}

} // namespace

void Images::Clear() {
    for (auto& entry : m_bitmaps)
        fz_drop_image(m_ctx, entry.first);
    m_bitmaps.clear();
    m_bytes = 0;
}

void Images::Trim() {
    if (m_bytes > kBudgetBytes)
        Clear();
}

GXBitmap Images::Bitmap(Report& report, fz_image* image, fz_color_params params) {
    const auto found = m_bitmaps.find(image);
    if (found != m_bitmaps.end())
        return found->second.Get();

    fz_pixmap* decoded = nullptr;
    fz_pixmap* converted = nullptr;
    const bool ok = Try(m_ctx, [&] {
        decoded = fz_get_pixmap_from_image(m_ctx, image, nullptr, nullptr, nullptr, nullptr);
        if (decoded->colorspace && !image->imagemask)
            converted = fz_convert_pixmap(m_ctx, decoded, fz_device_bgr(m_ctx), nullptr, nullptr, params, 1);
    });
    size_t bytes = 0;
    Handle<GXBitmap> bitmap;
    if (ok) {
        const fz_pixmap* pixmap = converted ? converted : decoded;
        if (pixmap->n == 1 || pixmap->n == 3 || pixmap->n == 4)
            bitmap = CopyPixmap(report, *pixmap, &bytes);
    }
    fz_drop_pixmap(m_ctx, converted);
    fz_drop_pixmap(m_ctx, decoded);
    if (!bitmap)
        report.Notice("an image that can't be decoded was left out");

    const GXBitmap result = bitmap.Get();
    m_bitmaps.emplace(image, std::move(bitmap));
    fz_keep_image(m_ctx, image);
    m_bytes += bytes;
    return result;
}

uint32_t Images::Interpolation(const fz_image& image, GXBitmap bitmap, const fz_matrix& matrix) {
    GXSize size{};
    if (GXBitmapGetSize(bitmap, &size) != GXResultSuccess || !size.width || !size.height)
        return GXInterpolationNearest;
    const float scaleX = std::hypot(matrix.a, matrix.b) / static_cast<float>(size.width);
    const float scaleY = std::hypot(matrix.c, matrix.d) / static_cast<float>(size.height);
    if (std::min(scaleX, scaleY) < 1.0f)
        return GXInterpolationAverage;
    return image.interpolate || std::max(scaleX, scaleY) <= 2.0f ? GXInterpolationLinear : GXInterpolationNearest;
}

} // namespace PdfPage
