// SPDX-License-Identifier: MIT
// Images drawn onto themselves: the same pixels as from a copy that was made before the draw, in every way that an
// image can come into one.
#include "TargetSupport.h"

#include <random>

namespace {

using namespace TargetSupport;

constexpr uint32_t kWidth = 70;
constexpr uint32_t kHeight = 50;

void Randomize(GXBitmap bitmap) {
    std::mt19937 random(5);
    GXBitmapData data{};
    ASSERT_EQ(GXBitmapLock(bitmap, nullptr, GXLockWrite, &data), GXResultSuccess);
    for (uint32_t y = 0; y < kHeight; ++y) {
        auto* const row = reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(data.data) + y * data.stride);
        for (uint32_t x = 0; x < kWidth; ++x) { // premultiplied, in blocks of half-transparent ones
            const uint32_t alpha = random() % 3 == 0 ? 255 : random() % 256;
            const auto channel = [&] { return random() % (alpha + 1); };
            row[x] = alpha << 24 | channel() << 16 | channel() << 8 | channel();
        }
    }
    ASSERT_EQ(GXBitmapUnlock(bitmap), GXResultSuccess);
}

/// One way of drawing `image`, number `way`; false when there are no more.
bool Draw(GXRenderTarget target, GXBitmap image, int way) {
    const auto interpolation = static_cast<uint32_t>(way % 3);
    const auto brush = [&](uint32_t extend, const GXMatrix& matrix) {
        const GXBitmapBrushOptions options{interpolation, extend, extend};
        Owned<GXBrush> result;
        EXPECT_EQ(GXCreateBrushBitmap(image, 0.8F, &options, &matrix, result.Out()), GXResultSuccess);
        return result;
    };
    const GXRect all{0, 0, kWidth, kHeight}, part{10.5F, 7.25F, 61, 40};
    GXResult result = GXResultSuccess;
    switch (way / 3) {
    case 0:
    case 1:
    case 2: { // shifted by whole pixels, each way
        const GXPoint origins[] = {{6, 0}, {-5, 3}, {0.5F, -2.25F}};
        result = GXRenderTargetDrawBitmap(target, image, &origins[way / 3], way / 3 == 0 ? 1.0F : 0.6F, interpolation);
        break;
    }
    case 3: // smaller, larger and mirrored
        result = GXRenderTargetStretchBitmap(target, image, &part, nullptr, 1, interpolation);
        break;
    case 4: {
        const GXIntRect source{20, 10, 45, 30};
        const GXRect mirrored{61, 7.25F, 10.5F, 40};
        result = GXRenderTargetStretchBitmap(target, image, &mirrored, &source, 1, interpolation);
        break;
    }
    case 5:
        result = GXRenderTargetFillRect(target, &part, brush(GXExtendRepeat, {1, 0, 0, 1, 13, 4}));
        break;
    case 6:
        result = GXRenderTargetFillEllipse(target, &all, brush(GXExtendMirror, {0.3F, 0.2F, -0.2F, 0.3F, 9, 4}));
        break;
    case 7:
        result = GXRenderTargetStrokeEllipse(target, &part, brush(GXExtendClamp, {0.7F, 0.7F, -0.7F, 0.7F, 30, -9}), 7,
                                             nullptr);
        break;
    case 8:
        result = GXRenderTargetFillMask(target, image, Solid(0xFF30C040), &part, interpolation);
        break;
    case 9:
    case 10: {
        const Owned<GXBrush> mask = brush(GXExtendClamp, {1, 0, 0, 1, 3, 2});
        result = way / 3 == 9 ? GXRenderTargetSetOpacityMask(target, GXMaskTypeAlpha, mask)
                              : GXRenderTargetSetShapeMask(target, GXMaskTypeAlpha, mask);
        EXPECT_EQ(GXRenderTargetFillRect(target, &part, Solid(0xC0E01020)), GXResultSuccess);
        break;
    }
    default:
        return false;
    }
    EXPECT_EQ(result, GXResultSuccess) << way;
    return true;
}

} // namespace

TEST(SelfDrawing, ShowsTheImageAsItWasBeforeTheDraw) {
    bool more = true;
    for (int way = 0; more; ++way) {
        std::vector<uint32_t> pixels[2];
        for (const bool self : {false, true}) {
            const Canvas canvas(kWidth, kHeight);
            Randomize(canvas.bitmap);
            const Owned<GXBitmap> copy = MakeBitmap(kWidth, kHeight, GXPixelFormatPBGRA32);
            Randomize(copy);
            more = Draw(canvas.target, self ? canvas.bitmap : copy, way);
            ASSERT_EQ(GXRenderTargetEndPaint(canvas.target), GXResultSuccess);
            pixels[self ? 1 : 0] = canvas.Pixels();
        }
        EXPECT_EQ(pixels[0], pixels[1]) << "way " << way;
    }
}
