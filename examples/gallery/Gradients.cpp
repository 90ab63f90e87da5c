// SPDX-License-Identifier: MIT
// Linear and radial gradients, the cone of a point and a circle, and a mesh of triangles.
#include <cmath>

#include "Pictures.h"

namespace Gallery {
namespace {

void DrawMesh(Canvas& canvas, float x, float y, float w, float h) {
    constexpr int kSteps = 6;
    const auto vertex = [&](int i, int j) {
        const float u = static_cast<float>(i) / kSteps, v = static_cast<float>(j) / kSteps;
        const auto byte = [](float s) { return static_cast<uint32_t>(127.5f + 127.5f * s); };
        const uint32_t color = 0xFF000000u | byte(std::sin(5 * u + 1)) << 16 | byte(std::sin(6 * v - 2 * u)) << 8 |
                               byte(std::cos(4 * u + 3 * v));
        return GXTriMeshVertex{x + w * u + 7 * std::sin(9 * v), y + h * v + 7 * std::sin(9 * u), color};
    };
    std::vector<GXTriMeshVertex> corners;
    for (int j = 0; j < kSteps; ++j) {
        for (int i = 0; i < kSteps; ++i) {
            const GXTriMeshVertex a = vertex(i, j), b = vertex(i + 1, j), c = vertex(i, j + 1),
                                  d = vertex(i + 1, j + 1);
            corners.insert(corners.end(), {a, b, c, b, c, d});
        }
    }
    Handle<GXGradient> mesh;
    GALLERY_CHECK(GXCreateGradientTriMesh(corners.data(), corners.size(), 0, mesh.Out()));
    GALLERY_CHECK(GXRenderTargetDrawGradient(canvas.Target(), mesh.Get(), 1.0f, nullptr));
}

} // namespace

void DrawGradients(Canvas& canvas) {
    canvas.FillRect({12, 12, 194, 134},
                    Linear({{0.0f, 0xFF3A0CA3u}, {0.4f, 0xFFF72585u}, {0.4f, 0xFF4CC9F0u}, {1.0f, 0xFFFFF3B0u}},
                           {12, 12}, {194, 134}));
    canvas.FillRect({206, 12, 388, 134}, Solid(0xFF10151Fu));
    canvas.FillEllipse(
        {297, 73}, 56,
        Radial({{0.0f, 0xFFFFFFFFu}, {0.25f, 0xFFFFE66Du}, {0.7f, 0xFFFF6B35u}, {1.0f, 0xFF5F0F40u}}, {281, 55}, 76));

    const GXGradientStop stops[] = {{0.0f, 0xFF006D77u}, {0.5f, 0xFF83C5BEu}, {1.0f, 0xFFFFDDD2u}};
    const GXRadialGradientDesc cone = {stops, 3, {28, 207}, 0, {138, 207}, 50, 0, 0, 0};
    Handle<GXGradient> gradient;
    Brush brush;
    GALLERY_CHECK(GXCreateGradientRadial(&cone, gradient.Out()));
    GALLERY_CHECK(GXCreateBrushGradient(gradient.Get(), 1.0f, nullptr, brush.Out()));
    canvas.FillRect({12, 146, 194, 268}, Solid(0xFFEDF6F9u));
    canvas.FillRect({12, 146, 194, 268}, brush);
    DrawMesh(canvas, 213, 153, 168, 108);
}

} // namespace Gallery
