// SPDX-License-Identifier: MIT
// A clip of any shape, and a second frame that draws only what has changed: with the bytes of a whole drawing.
#include "Guide.h"

#include <cstring>

namespace {

constexpr uint32_t kWidth = 210, kHeight = 200;

// A frame of an animation: rings that stay, and a ball at a place of its own.
void Draw(GXRenderTarget page, GXPoint ball) {
    const auto teal = Solid(0xFF2A9D8F), orange = Solid(0xC0E76F51);
    CHECK(GXRenderTargetClear(page, 0xFFFDF6E9));
    for (int i = 1; i < 14; ++i) {
        const float r = 8 * static_cast<float>(i);
        const GXRect ring = {105 - r, 100 - r, 105 + r, 100 + r};
        CHECK(GXRenderTargetStrokeEllipse(page, &ring, teal, 2.5f, nullptr));
    }
    const GXRect bounds = {ball.x - 20, ball.y - 20, ball.x + 20, ball.y + 20};
    CHECK(GXRenderTargetFillEllipse(page, &bounds, orange));
}

// The ball's box in whole pixels, which may be larger than needed.
GXRect Box(GXPoint ball) { return {ball.x - 21, ball.y - 21, ball.x + 21, ball.y + 21}; }

} // namespace

int main() {
    const GXPoint before = {60, 70}, after = {84, 96};
    const auto frame = Guide::MakeBitmap(kWidth, kHeight, GXPixelFormatBGRX32);
    Owned<GXRenderTarget> window;
    CHECK(GXCreateRenderTargetBitmap(frame, window.Out()));
    CHECK(GXRenderTargetBeginPaint(window));
    Draw(window, before);
    CHECK(GXRenderTargetEndPaint(window));

    // The second frame: the same calls under a clip to what has changed. Where the ball was, and where it is.
    CHECK(GXRenderTargetBeginPaint(window));
    for (const GXPoint& ball : {before, after}) {
        const GXRect dirty = Box(ball);
        CHECK(GXRenderTargetPushState(window));
        CHECK(GXRenderTargetClipRect(window, &dirty));
        Draw(window, after);
        CHECK(GXRenderTargetPopState(window));
    }
    CHECK(GXRenderTargetEndPaint(window));

    // Drawn as a whole, it has the same bytes.
    Page whole(kWidth, kHeight);
    Draw(whole, after);
    GXBitmapData a, b;
    CHECK(GXBitmapLock(frame, nullptr, GXLockRead, &a));
    CHECK(GXBitmapLock(whole.Finish(), nullptr, GXLockRead, &b));
    for (uint32_t y = 0; y < kHeight; ++y) {
        if (std::memcmp(static_cast<char*>(a.data) + y * a.stride, static_cast<char*>(b.data) + y * b.stride,
                        a.rowLength) != 0)
            return 1;
    }

    // The picture: that frame with its dirty rectangles, and the same drawing inside a clip with a curved border.
    Page page(2 * kWidth, kHeight);
    const auto red = Solid(0xFFE63946);
    CHECK(GXRenderTargetDrawBitmap(page, frame, nullptr, 1, GXInterpolationNearest));
    for (const GXPoint& ball : {before, after}) {
        const GXRect dirty = Box(ball);
        CHECK(GXRenderTargetStrokeRect(page, &dirty, red, 1, nullptr));
    }
    Owned<GXGeometry> shape;
    CHECK(GXCreateGeometry(shape.Out()));
    const GXRect lens = {10, 50, 200, 150}, upright = {65, 10, 145, 190};
    CHECK(GXGeometryEllipse(shape, &lens));
    CHECK(GXGeometryEllipse(shape, &upright));
    CHECK(GXRenderTargetTranslateCTM(page, kWidth, 0));
    CHECK(GXRenderTargetClipGeometry(page, shape));
    Draw(page, {160, 90});
    page.Save(L"clips.png");
}
