// SPDX-License-Identifier: MIT
// Making brushes and gradients through the C interface: what is refused, shared and clamped.
#include <cmath>

#include "TargetSupport.h"

using namespace TargetSupport;

namespace {

TEST(PaintInterface, CountsBeyondMemoryAreRefusedBeforeReading) {
    const GXGradientStop stop{0, 0};
    const GXTriMeshVertex vertex{0, 0, 0};
    GXGradient none = nullptr;
    GXLinearGradientDesc linear{};
    linear.stops = &stop;
    linear.stopCount = UINT64_MAX;
    EXPECT_EQ(GXCreateGradientLinear(&linear, &none), GXResultUnexpectedError);
    EXPECT_EQ(GXCreateGradientTriMesh(&vertex, SIZE_MAX, 0, &none), GXResultUnexpectedError);
    EXPECT_EQ(none, nullptr);
}

// What the host has let go is still painted with; colours are clamped.
TEST(PaintInterface, BrushesShareTheirGradientAndBitmapAndClampTheirColours) {
    const Canvas canvas(1, 1);
    const GXRect rect{0, 0, 1, 1};
    const auto painted = [&](GXBrush brush) {
        EXPECT_EQ(GXRenderTargetClear(canvas.target, 0), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetFillRect(canvas.target, &rect, brush), GXResultSuccess);
        return canvas.At(0, 0);
    };
    Owned<GXBrush> shaded, tiled;
    {
        const GXGradientStop stop{0, 0xFF102030U};
        const GXLinearGradientDesc desc{&stop, 1, {0, 0}, {0, 0}, 0, 0, 0xFF405060U};
        Owned<GXGradient> gradient;
        ASSERT_EQ(GXCreateGradientLinear(&desc, gradient.Out()), GXResultSuccess);
        ASSERT_EQ(GXCreateBrushGradient(gradient, 1.0F, nullptr, shaded.Out()), GXResultSuccess);
        const Owned<GXBitmap> bitmap = MakeBitmap(4, 4, GXPixelFormatPBGRA32);
        const GXBitmapBrushOptions strange{7, 8, 9};
        ASSERT_EQ(GXBitmapColorFill(bitmap, nullptr, 0xFF708090U), GXResultSuccess);
        ASSERT_EQ(GXCreateBrushBitmap(bitmap, 1.0F, &strange, nullptr, tiled.Out()), GXResultSuccess);
    }
    EXPECT_EQ(painted(shaded), 0xFF405060U);
    EXPECT_EQ(painted(tiled), 0xFF708090U);
    for (const auto& [color, expected] : {std::pair(GXColor{-0.5F, 1.5F, std::nanf(""), 2.0F}, 0xFF00FF00U),
                                          std::pair(GXColor{INFINITY, -INFINITY, 0.5F, 1.0F}, 0xFFFF007FU)}) {
        Owned<GXBrush> brush;
        ASSERT_EQ(GXCreateBrushSolid(&color, brush.Out()), GXResultSuccess);
        EXPECT_EQ(painted(brush), expected);
    }
}

} // namespace
