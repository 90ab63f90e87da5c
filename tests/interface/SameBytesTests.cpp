// SPDX-License-Identifier: MIT
// A picture has the same bytes on every platform, compiler and processor. The sums are those of the first platform; no
// tolerance. Scenes take every road on which a library's mathematics could reach a pixel: turned matrices, round joins
// and caps, dashes, curves, gradients, sampled bitmaps, groups.
#include "TargetSupport.h"

#include <array>
#include <cmath>

namespace {

using namespace TargetSupport;

/// A generator that is the same everywhere, unlike the distributions of <random>.
class Random {
public:
    explicit Random(uint64_t seed) : m_state(seed) {}
    uint32_t Bits() {
        m_state = m_state * 6364136223846793005U + 1442695040888963407U;
        return static_cast<uint32_t>(m_state >> 33);
    }
    float Between(float low, float high) { return low + (high - low) * (static_cast<float>(Bits() >> 8) * 0x1p-23F); }
    uint32_t Color() { return Bits() << 16 ^ Bits(); }
    GXPoint Point() {
        const float x = Between(-40.0F, 200.0F);
        return {x, Between(-40.0F, 160.0F)};
    }

private:
    uint64_t m_state;
};

Owned<GXGeometry> RandomPath(Random& random) {
    Owned<GXGeometry> geometry;
    EXPECT_EQ(GXCreateGeometry(geometry.Out()), GXResultSuccess);
    const GXPoint start = random.Point();
    EXPECT_EQ(GXGeometryBeginFigure(geometry, &start), GXResultSuccess);
    for (uint32_t i = random.Bits() % 5 + 1; i > 0; --i) {
        const std::array<GXPoint, 3> p = {random.Point(), random.Point(), random.Point()};
        const uint32_t kind = random.Bits() % 3;
        EXPECT_EQ(kind == 0   ? GXGeometryLineTo(geometry, &p[0])
                  : kind == 1 ? GXGeometryConicCurveTo(geometry, &p[0], &p[1])
                              : GXGeometryCubicCurveTo(geometry, &p[0], &p[1], &p[2]),
                  GXResultSuccess);
    }
    EXPECT_EQ(random.Bits() % 2 != 0 ? GXGeometryEndFigure(geometry) : GXGeometryEndFigureClose(geometry),
              GXResultSuccess);
    return geometry;
}

Owned<GXBrush> RandomBrush(Random& random, GXBitmap image) {
    Owned<GXBrush> brush;
    Owned<GXGradient> gradient;
    const GXGradientStop stops[] = {
        {0.0F, random.Color()}, {random.Between(0.1F, 0.9F), random.Color()}, {1.0F, random.Color()}};
    const GXPoint a = random.Point(), b = random.Point();
    const float angle = random.Between(-3.0F, 3.0F);
    const float scale = random.Between(0.3F, 3.0F);
    // Not through the C library: the host's matrix must be the same everywhere, too.
    const GXMatrix matrix = {scale, angle, -angle, scale * 0.7F, a.x, a.y};
    switch (random.Bits() % 5) {
    case 0: {
        const GXLinearGradientDesc desc = {stops, 3, a, b, 1, 1, 0};
        EXPECT_EQ(GXCreateGradientLinear(&desc, gradient.Out()), GXResultSuccess);
        break;
    }
    case 1: {
        const GXRadialGradientDesc desc = {stops, 3, a, random.Between(0, 20), b, random.Between(20, 90), 1, 1, 0};
        EXPECT_EQ(GXCreateGradientRadial(&desc, gradient.Out()), GXResultSuccess);
        break;
    }
    case 2: {
        std::array<GXTriMeshVertex, 6> vertices{};
        for (GXTriMeshVertex& v : vertices) {
            const GXPoint at = random.Point();
            v = {at.x, at.y, random.Color()};
        }
        EXPECT_EQ(GXCreateGradientTriMesh(vertices.data(), 6, 0, gradient.Out()), GXResultSuccess);
        break;
    }
    case 3: {
        const GXBitmapBrushOptions options = {random.Bits() % 2, random.Bits() % 3, random.Bits() % 3};
        EXPECT_EQ(GXCreateBrushBitmap(image, 0.9F, &options, &matrix, brush.Out()), GXResultSuccess);
        return brush;
    }
    default:
        return Solid(random.Color());
    }
    EXPECT_EQ(GXCreateBrushGradient(gradient, 0.8F, &matrix, brush.Out()), GXResultSuccess);
    return brush;
}

uint64_t SumOfScene(uint64_t seed) {
    Random random(seed);
    const Owned<GXBitmap> image = MakeBitmap(24, 17, GXPixelFormatPBGRA32);
    for (int32_t i = 0; i < 30; ++i) {
        const GXIntRect spot = {i % 6 * 4, i / 6 * 4, i % 6 * 4 + 4, i / 6 * 4 + 4};
        EXPECT_EQ(GXBitmapColorFill(image, &spot, random.Color()), GXResultSuccess);
    }
    const Canvas canvas(160, 120);
    for (int i = 0; i < 60; ++i) {
        EXPECT_EQ(GXRenderTargetPushState(canvas.target), GXResultSuccess);
        // Drawn one by one: arguments of a call have no order.
        const GXPoint move = random.Point();
        EXPECT_EQ(GXRenderTargetTranslateCTM(canvas.target, move.x, move.y), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetRotateCTM(canvas.target, random.Between(-30.0F, 30.0F)), GXResultSuccess);
        const float across = random.Between(0.2F, 1.5F);
        const float down = random.Between(-1.5F, -0.2F);
        EXPECT_EQ(GXRenderTargetScaleCTM(canvas.target, across, down), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetSetBlendMode(canvas.target, random.Bits() % 16), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetSetStrokeAdjustment(canvas.target, random.Bits() % 4 == 0), GXResultSuccess);
        const GXLayerDesc layer = {
            {0, 0, 0, 0}, 0.75F, static_cast<uint8_t>(random.Bits() % 2), static_cast<uint8_t>(random.Bits() % 2)};
        const bool grouped = random.Bits() % 4 == 0;
        if (grouped) {
            EXPECT_EQ(GXRenderTargetBeginLayer(canvas.target, &layer), GXResultSuccess);
        }
        const Owned<GXGeometry> path = RandomPath(random);
        const Owned<GXBrush> brush = RandomBrush(random, image);
        const Owned<GXBrush> second = RandomBrush(random, image);
        GXStrokeStyle style = {};
        style.join = random.Bits() % 3;
        style.cap = random.Bits() % 3;
        style.miterLimit = random.Between(1, 12);
        style.dashCount = random.Bits() % 3 * 2;
        style.dashPhase = random.Between(-20, 20);
        for (float& dash : style.dashes) {
            dash = random.Between(0.5F, 14.0F);
        }
        EXPECT_EQ(GXRenderTargetFillGeometry(canvas.target, path, brush), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetStrokeGeometry(canvas.target, path, second, random.Between(0, 12), &style),
                  GXResultSuccess);
        if (grouped) {
            EXPECT_EQ(GXRenderTargetEndLayer(canvas.target), GXResultSuccess);
        }
        EXPECT_EQ(GXRenderTargetPopState(canvas.target), GXResultSuccess);
    }
    EXPECT_EQ(GXRenderTargetEndPaint(canvas.target), GXResultSuccess);
    uint64_t sum = 14695981039346656037U; // FNV-1a
    for (uint32_t pixel : canvas.Pixels()) {
        sum = (sum ^ pixel) * 1099511628211U;
    }
    return sum;
}

TEST(SameBytes, ScenesHaveTheSumsOfTheFirstPlatform) {
    const std::array<uint64_t, 8> sums = {857161666180708763U,   8227988890936177087U, 9833737329403625576U,
                                          7502391813004530758U,  6989554065566532838U, 16117182034468525667U,
                                          16868589927001322486U, 18335366541865679783U};
    for (size_t i = 0; i < sums.size(); ++i) {
        EXPECT_EQ(SumOfScene(i + 1), sums[i]) << "scene " << i + 1;
    }
}

} // namespace
