// SPDX-License-Identifier: MIT
// Reads an image with a codec of the host's, here WebP, straight into the pixels of a bitmap, and draws it.
#include "Guide.h"

#include <webp/decode.h>
#include <webp/encode.h>

namespace {

// Null when the file is no WebP image, or a damaged one.
Owned<GXBitmap> Decode(const uint8_t* file, size_t size) {
    int width = 0, height = 0;
    if (WebPGetInfo(file, size, &width, &height) == 0)
        return {};
    // The codec's colours are not premultiplied. GXPixelFormatBGR24 would be for one without alpha.
    auto bitmap = Guide::MakeBitmap(static_cast<uint32_t>(width), static_cast<uint32_t>(height), GXPixelFormatBGRA32);
    GXBitmapData rows;
    CHECK(GXBitmapLock(bitmap, nullptr, GXLockWrite, &rows));
    const bool whole =
        WebPDecodeBGRAInto(file, size, static_cast<uint8_t*>(rows.data),
                           size_t{rows.stride} * static_cast<size_t>(height), static_cast<int>(rows.stride)) != nullptr;
    CHECK(GXBitmapUnlock(bitmap)); // tells what was derived from the bitmap that its pixels have changed
    return whole ? std::move(bitmap) : Owned<GXBitmap>{};
}

// A file to read: a leaf, drawn on nothing and written without loss. Its colours are converted on the way.
size_t Encode(uint8_t** file) {
    Page page(80, 80, 0, GXPixelFormatPBGRA32);
    const GXRect box = {-30, -12, 30, 12};
    CHECK(GXRenderTargetTranslateCTM(page, 40, 40));
    for (int i = 0; i < 4; ++i) {
        CHECK(GXRenderTargetFillEllipse(page, &box, Solid(i % 2 == 0 ? 0xB02A9D8F : 0xB0E9C46A)));
        CHECK(GXRenderTargetRotateCTM(page, 0.7853982f));
    }
    const auto straight = Guide::MakeBitmap(80, 80, GXPixelFormatBGRA32);
    CHECK(GXBitmapCopyFromBitmap(straight, nullptr, page.Finish(), nullptr));
    GXBitmapData rows;
    CHECK(GXBitmapLock(straight, nullptr, GXLockRead, &rows));
    const size_t size =
        WebPEncodeLosslessBGRA(static_cast<const uint8_t*>(rows.data), 80, 80, static_cast<int>(rows.stride), file);
    CHECK(GXBitmapUnlock(straight));
    return size;
}

} // namespace

int main() {
    uint8_t* file = nullptr;
    const size_t size = Encode(&file);
    const auto leaf = Decode(file, size), half = Decode(file, size / 2);
    WebPFree(file);
    if (leaf == nullptr || half != nullptr)
        return 1;

    Page page(240, 140, 0xFFFFF1C9);
    const GXBitmapBrushOptions repeat = {GXInterpolationLinear, GXExtendRepeat, GXExtendRepeat};
    const GXMatrix small = {0.5f, 0, 0, 0.5f, 0, 0};
    const GXRect all = {0, 0, 240, 140}, large = {55, 5, 185, 135};
    Owned<GXBrush> pattern;
    CHECK(GXCreateBrushBitmap(leaf, 0.5f, &repeat, &small, pattern.Out()));
    CHECK(GXRenderTargetFillRect(page, &all, pattern));
    CHECK(GXRenderTargetStretchBitmap(page, leaf, &large, nullptr, 1, GXInterpolationLinear));
    page.Save(L"webp-image.png");
}
