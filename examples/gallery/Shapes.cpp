// SPDX-License-Identifier: MIT
// A star with a hole and a blot of curves under the four operations of areas: the operands thin, the result filled, its
// corners marked.
#include "Pictures.h"

namespace Gallery {
namespace {

Path Combined(const Path& a, const Path& b, uint32_t mode) {
    Path result;
    GALLERY_CHECK(GXGeometryCombine(a.Get(), b.Get(), mode, 0.1f, result.Out()));
    return result;
}

Path Ring(GXPoint center, float radius) {
    const float c = 0.5522848f * radius, x = center.x, y = center.y, r = radius;
    return Curve({x + r, y},
                 {{x + r, y + c},
                  {x + c, y + r},
                  {x, y + r},
                  {x - c, y + r},
                  {x - r, y + c},
                  {x - r, y},
                  {x - r, y - c},
                  {x - c, y - r},
                  {x, y - r},
                  {x + c, y - r},
                  {x + r, y - c},
                  {x + r, y}},
                 true);
}

void MarkCorners(Canvas& canvas, const Path& path) {
    struct Context {
        Canvas& canvas;
        Brush brush;
    } context = {canvas, Solid(0xFF14213Du)};
    GXGeometrySinkCallbacks sink{};
    sink.context = &context;
    sink.BeginFigure = sink.LineTo = [](void* c, const GXPoint* p) {
        auto& told = *static_cast<Context*>(c);
        told.canvas.FillEllipse(*p, 1.2f, told.brush);
    };
    GALLERY_CHECK(GXGeometrySendToSink(path.Get(), &sink));
}

} // namespace

void DrawShapes(Canvas& canvas) {
    const float w = canvas.Width() / 2, h = canvas.Height() / 2;
    const uint32_t colors[] = {0xFF2A9D8Fu, 0xFF4361EEu, 0xFFF72585u, 0xFFFB8500u};
    for (uint32_t mode = GXCombineIntersection; mode <= GXCombineDifference; ++mode) {
        canvas.Push();
        canvas.Translate(w * static_cast<float>(mode % 2), h * static_cast<float>(mode / 2));
        const Path star = Combined(Star({w / 2 - 20, h / 2 + 2}, 62, 0.45f, 7), Ring({w / 2 - 20, h / 2 + 2}, 15),
                                   GXCombineDifference);
        const Path blot = Curve({w / 2 - 30, h / 2},
                                {{w / 2 - 40, h / 2 - 75},
                                 {w / 2 + 60, h / 2 - 60},
                                 {w / 2 + 60, h / 2 - 10},
                                 {w / 2 + 110, h / 2 + 10},
                                 {w / 2 + 30, h / 2 + 90},
                                 {w / 2 + 20, h / 2 + 30},
                                 {w / 2 + 10, h / 2 + 10},
                                 {w / 2 - 25, h / 2 + 50},
                                 {w / 2 - 30, h / 2}},
                                true);
        const Path result = Combined(star, blot, mode);
        canvas.Fill(result, Solid(colors[mode]));
        canvas.Stroke(star, Solid(0xFFADB5BDu), 0.7f);
        canvas.Stroke(blot, Solid(0xFFADB5BDu), 0.7f);
        canvas.Stroke(result, Solid(0xFF14213Du), 1);
        MarkCorners(canvas, result);
        canvas.Pop();
    }
}

} // namespace Gallery
