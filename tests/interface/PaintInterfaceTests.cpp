// SPDX-License-Identifier: MIT
// Making brushes and gradients through the C interface: which arguments are refused, and what is left untouched then.
#include <gtest/gtest.h>

#include <cmath>

#include "GX/GX.h"

namespace {

template <class Handle> class Made {
public:
    ~Made() {
        if (handle != nullptr) {
            GXObjectRelease(handle);
        }
    }
    Handle handle = nullptr;
};

TEST(PaintInterface, NullsGiveInvalidArgumentAndLeaveTheOutput) {
    const GXColor color{-0.5F, 1.5F, std::nanf(""), 1.0F};
    Made<GXBrush> brush;
    Made<GXGradient> gradient;
    EXPECT_EQ(GXCreateBrushSolid(nullptr, &brush.handle), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateBrushSolid(&color, nullptr), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateBrushSolidARGB(1, nullptr), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateBrushBitmap(nullptr, 1.0F, nullptr, nullptr, &brush.handle), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateBrushGradient(nullptr, 1.0F, nullptr, &brush.handle), GXResultInvalidArgument);
    EXPECT_EQ(brush.handle, nullptr);

    GXLinearGradientDesc linear{};
    GXRadialGradientDesc radial{};
    const GXTriMeshVertex vertex{0, 0, 0};
    EXPECT_EQ(GXCreateGradientLinear(nullptr, &gradient.handle), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateGradientLinear(&linear, nullptr), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateGradientRadial(nullptr, &gradient.handle), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateGradientRadial(&radial, nullptr), GXResultInvalidArgument);
    linear.stopCount = radial.stopCount = 1; // stops that are not there
    EXPECT_EQ(GXCreateGradientLinear(&linear, &gradient.handle), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateGradientRadial(&radial, &gradient.handle), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateGradientTriMesh(nullptr, 3, 0, &gradient.handle), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateGradientTriMesh(&vertex, 0, 0, &gradient.handle), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateGradientTriMesh(&vertex, 1, 0, nullptr), GXResultInvalidArgument);
    EXPECT_EQ(gradient.handle, nullptr);
}

TEST(PaintInterface, CountsBeyondMemoryAreRefusedBeforeReading) {
    const GXGradientStop stop{0, 0};
    const GXTriMeshVertex vertex{0, 0, 0};
    Made<GXGradient> gradient;
    GXLinearGradientDesc linear{};
    linear.stops = &stop;
    linear.stopCount = UINT64_MAX;
    EXPECT_EQ(GXCreateGradientLinear(&linear, &gradient.handle), GXResultUnexpectedError);
    EXPECT_EQ(GXCreateGradientTriMesh(&vertex, SIZE_MAX, 0, &gradient.handle), GXResultUnexpectedError);
    EXPECT_EQ(gradient.handle, nullptr);
}

TEST(PaintInterface, BrushesShareTheirGradientAndBitmap) {
    GXLinearGradientDesc desc{}; // no stops
    Made<GXGradient> gradient;
    Made<GXBrush> first;
    Made<GXBrush> second;
    ASSERT_EQ(GXCreateGradientLinear(&desc, &gradient.handle), GXResultSuccess);
    ASSERT_EQ(GXCreateBrushGradient(gradient.handle, 0.5F, nullptr, &first.handle), GXResultSuccess);
    ASSERT_EQ(GXObjectRelease(gradient.handle), GXResultSuccess);
    gradient.handle = nullptr;

    const GXBitmapDesc bitmapDesc{4, 4, GXPixelFormatPBGRA32, 96, 96};
    const GXBitmapBrushOptions options{7, 8, 9};
    Made<GXBitmap> bitmap;
    ASSERT_EQ(GXCreateBitmap(&bitmapDesc, &bitmap.handle), GXResultSuccess);
    ASSERT_EQ(GXCreateBrushBitmap(bitmap.handle, 1.0F, &options, nullptr, &second.handle), GXResultSuccess);
}

// The colours that were clamped show when they are painted.
TEST(PaintInterface, SolidColoursAreClamped) {
    const GXBitmapDesc desc{1, 1, GXPixelFormatPBGRA32, 96, 96};
    Made<GXBitmap> bitmap;
    Made<GXRenderTarget> target;
    ASSERT_EQ(GXCreateBitmap(&desc, &bitmap.handle), GXResultSuccess);
    ASSERT_EQ(GXCreateRenderTargetBitmap(bitmap.handle, &target.handle), GXResultSuccess);
    const struct {
        GXColor color;
        uint32_t expected;
    } cases[] = {
        {{-0.5F, 1.5F, std::nanf(""), 2.0F}, 0xFF00FF00U},
        {{INFINITY, -INFINITY, 0.5F, 1.0F}, 0xFFFF007FU},
    };
    for (const auto& c : cases) {
        Made<GXBrush> brush;
        const GXRect rect{0, 0, 1, 1};
        ASSERT_EQ(GXCreateBrushSolid(&c.color, &brush.handle), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetBeginPaint(target.handle), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetClear(target.handle, 0), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetFillRect(target.handle, &rect, brush.handle), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetEndPaint(target.handle), GXResultSuccess);
        uint32_t pixel = 0;
        const GXBitmapData data{&pixel, 4, 4};
        ASSERT_EQ(GXBitmapCopyToMemory(bitmap.handle, nullptr, &data), GXResultSuccess);
        EXPECT_EQ(pixel, c.expected);
    }
}

} // namespace
