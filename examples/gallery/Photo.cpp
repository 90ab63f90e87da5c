// SPDX-License-Identifier: MIT
// A photograph, made here and sent through an image file, reduced and enlarged: each of the three ways of sampling has
// a row with the whole at a fifth and a detail at four times its size.
#include <cmath>
#include <filesystem>
#include <random>
#include <string>

#include "Pictures.h"

namespace Gallery {
namespace {

constexpr uint32_t kPhotoWidth = 900, kPhotoHeight = 420;

/// The landscape behind a fence of thin posts and rays, with the grain that pictures of cameras have.
Picture TakePhoto() {
    Canvas scene(kPhotoWidth, kPhotoHeight, 0xFFFFFFFFu, GXPixelFormatBGRX32);
    const float w = scene.Width(), h = scene.Height();
    DrawLandscape(scene, {0, 0, w, h});
    for (float x = 3; x < w; x += 9) {
        scene.FillRect({x, 0.72f * h, x + 3, h}, Solid(0xFFF1E3C8u));
    }
    for (int i = 0; i < 48; ++i) {
        const float turn = 6.2831853f * static_cast<float>(i) / 48;
        scene.Line({0.5f * w, 0.35f * h}, {0.5f * w + 120 * std::cos(turn), 0.35f * h + 120 * std::sin(turn)},
                   Solid(0xC0FFF3B0u), 2);
    }
    Picture photo = scene.Finish();
    GXBitmapData data;
    GALLERY_CHECK(GXBitmapLock(photo.Get(), nullptr, GXLockRead | GXLockWrite, &data));
    uint32_t random = 1;
    for (uint32_t y = 0; y < kPhotoHeight; ++y) {
        auto* row = static_cast<uint8_t*>(data.data) + static_cast<ptrdiff_t>(y) * data.stride;
        for (uint32_t x = 0; x < kPhotoWidth; ++x) {
            random = random * 1664525 + 1013904223;
            const int grain = static_cast<int>(random >> 28) - 8;
            for (uint32_t c = 0; c < 3; ++c) {
                const int value = row[4 * x + c] + grain;
                row[4 * x + c] = static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
            }
        }
    }
    GALLERY_CHECK(GXBitmapUnlock(photo.Get()));
    return photo;
}

/// Saved and loaded by the library.
Picture Reloaded(const Picture& bitmap) {
    const std::string name = "gxgallery-photo-" + std::to_string(std::random_device()()) + ".png";
    const std::filesystem::path path = std::filesystem::temp_directory_path() / name;
    GALLERY_CHECK(GXBitmapSaveToFile(bitmap.Get(), path.wstring().c_str()));
    Picture loaded;
    GALLERY_CHECK(GXCreateBitmapFromFile(path.wstring().c_str(), loaded.Out()));
    std::filesystem::remove(path);
    return loaded;
}

} // namespace

void DrawPhoto(Canvas& canvas) {
    const Picture photo = Reloaded(TakePhoto());
    const float gap = 6, h = (canvas.Height() - 4 * gap) / 3, w = (canvas.Width() - 3 * gap) / 2;
    const GXIntRect all = {0, 0, kPhotoWidth, kPhotoHeight};
    const GXIntRect detail = {496, 84, 496 + static_cast<int>(w / 4), 84 + static_cast<int>(h / 4)};
    float top = gap;
    for (const uint32_t way : {GXInterpolationNearest, GXInterpolationLinear, GXInterpolationAverage}) {
        const GXRect left = {gap, top, gap + w, top + h}, right = {2 * gap + w, top, 2 * gap + 2 * w, top + h};
        GALLERY_CHECK(GXRenderTargetStretchBitmap(canvas.Target(), photo.Get(), &left, &all, 1, way));
        GALLERY_CHECK(GXRenderTargetStretchBitmap(canvas.Target(), photo.Get(), &right, &detail, 1, way));
        top += h + gap;
    }
}

} // namespace Gallery
