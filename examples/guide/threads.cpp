// SPDX-License-Identifier: MIT
// One picture drawn by four threads, each a band of its rows, with the bytes that one thread draws.
#include "Guide.h"

#include <thread>
#include <vector>

namespace {

constexpr uint32_t kWidth = 320, kHeight = 160, kThreads = 4;

using Pixels = std::vector<uint32_t>;

// Finished geometries, gradients, brushes and faces may be used by all threads at once.
struct Scene {
    Owned<GXGeometry> petal;
    Owned<GXBrush> colors;

    Scene() {
        const GXGradientStop stops[] = {{0, 0x60F4D35E}, {0.5f, 0x60E63946}, {1, 0x60457B9D}};
        const GXRadialGradientDesc desc = {.stops = stops,
                                           .stopCount = 3,
                                           .startCenter = {0, 0},
                                           .startRadius = 10,
                                           .endCenter = {0, 0},
                                           .endRadius = 140,
                                           .extendStart = 1,
                                           .extendEnd = 1};
        Owned<GXGradient> gradient;
        CHECK(GXCreateGradientRadial(&desc, gradient.Out()));
        CHECK(GXCreateBrushGradient(gradient, 1, nullptr, colors.Out()));
        CHECK(GXCreateGeometry(petal.Out()));
        const GXPoint start = {0, 0}, c1 = {50, -70}, c2 = {120, -40}, end = {150, 0};
        const GXPoint c3 = {120, 40}, c4 = {50, 70};
        CHECK(GXGeometryBeginFigure(petal, &start));
        CHECK(GXGeometryCubicCurveTo(petal, &c1, &c2, &end));
        CHECK(GXGeometryCubicCurveTo(petal, &c3, &c4, &start));
        CHECK(GXGeometryEndFigureClose(petal));
    }
};

// The rows from top to bottom of the whole picture. The target covers all of it, and a clip says which rows.
void DrawBand(const Scene& scene, Pixels& pixels, uint32_t top, uint32_t bottom) {
    const GXExtBufLayout layout = {kWidth, kHeight, kWidth * 4, 96, 96};
    Owned<GXRenderTarget> target;
    CHECK(GXCreateRenderTargetExtBuf(pixels.data(), GXPixelFormatBGRX32, &layout, target.Out()));
    CHECK(GXRenderTargetBeginPaint(target));
    const GXRect band = {0, static_cast<float>(top), kWidth, static_cast<float>(bottom)};
    CHECK(GXRenderTargetClipRect(target, &band));
    CHECK(GXRenderTargetClear(target, 0xFFFFFFFF));
    CHECK(GXRenderTargetTranslateCTM(target, kWidth / 2.0f, kHeight / 2.0f));
    const auto ink = Solid(0x80264653);
    for (int i = 0; i < 12; ++i) {
        CHECK(GXRenderTargetFillGeometry(target, scene.petal, scene.colors));
        CHECK(GXRenderTargetStrokeGeometry(target, scene.petal, ink, 1, nullptr));
        CHECK(GXRenderTargetRotateCTM(target, 3.14159265f / 6));
    }
    CHECK(GXRenderTargetEndPaint(target));
}

} // namespace

int main() {
    const Scene scene;
    Pixels shared(kWidth * kHeight), alone(kWidth * kHeight);
    std::vector<std::thread> threads;
    for (uint32_t i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] { DrawBand(scene, shared, kHeight * i / kThreads, kHeight * (i + 1) / kThreads); });
    for (std::thread& thread : threads)
        thread.join();

    DrawBand(scene, alone, 0, kHeight);
    if (shared != alone)
        return 1;

    const auto bitmap = Guide::MakeBitmap(kWidth, kHeight, GXPixelFormatBGRX32);
    const GXBitmapData rows = {shared.data(), kWidth * 4, kWidth * 4};
    CHECK(GXBitmapCopyFromMemory(bitmap, nullptr, &rows));
    CHECK(GXBitmapSaveToFile(bitmap, L"threads.png"));
}
