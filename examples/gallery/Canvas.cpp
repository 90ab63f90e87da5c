// SPDX-License-Identifier: MIT
#include "Canvas.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace Gallery {

void Check(GXResult result, const char* call) {
    if (result != GXResultSuccess) {
        std::fprintf(stderr, "gallery: result %u of %s\n", static_cast<unsigned>(result), call);
        std::exit(1);
    }
}

Brush Solid(uint32_t argb) {
    Brush brush;
    GALLERY_CHECK(GXCreateBrushSolidARGB(argb, brush.Out()));
    return brush;
}

namespace {

Brush FromGradient(const Handle<GXGradient>& gradient) {
    Brush brush;
    GALLERY_CHECK(GXCreateBrushGradient(gradient.Get(), 1.0f, nullptr, brush.Out()));
    return brush;
}

} // namespace

Brush Linear(std::initializer_list<GXGradientStop> stops, GXPoint start, GXPoint end) {
    const GXLinearGradientDesc desc = {stops.begin(), stops.size(), start, end, 1, 1, 0};
    Handle<GXGradient> gradient;
    GALLERY_CHECK(GXCreateGradientLinear(&desc, gradient.Out()));
    return FromGradient(gradient);
}

Brush Radial(std::initializer_list<GXGradientStop> stops, GXPoint center, float radius) {
    const GXRadialGradientDesc desc = {stops.begin(), stops.size(), center, 0, center, radius, 1, 1, 0};
    Handle<GXGradient> gradient;
    GALLERY_CHECK(GXCreateGradientRadial(&desc, gradient.Out()));
    return FromGradient(gradient);
}

Brush Tiles(const Picture& bitmap, uint32_t extend, const GXMatrix& matrix) {
    const GXBitmapBrushOptions options = {GXInterpolationLinear, extend, extend};
    Brush brush;
    GALLERY_CHECK(GXCreateBrushBitmap(bitmap.Get(), 1.0f, &options, &matrix, brush.Out()));
    return brush;
}

Path Star(GXPoint center, float radius, float inner, int points, GXFillRule rule) {
    Path path;
    GALLERY_CHECK(GXCreateGeometry(path.Out()));
    GALLERY_CHECK(GXGeometrySetFillRule(path.Get(), rule));
    for (int i = 0; i < 2 * points; ++i) {
        const float angle = 3.14159265f * (static_cast<float>(i) / static_cast<float>(points) - 0.5f);
        const float r = i % 2 == 0 ? radius : radius * inner;
        const GXPoint p = {center.x + r * std::cos(angle), center.y + r * std::sin(angle)};
        GALLERY_CHECK(i == 0 ? GXGeometryBeginFigure(path.Get(), &p) : GXGeometryLineTo(path.Get(), &p));
    }
    GALLERY_CHECK(GXGeometryEndFigureClose(path.Get()));
    return path;
}

Path Polygon(std::initializer_list<GXPoint> points, bool closed) {
    Path path;
    GALLERY_CHECK(GXCreateGeometry(path.Out()));
    for (const GXPoint& p : points) {
        GALLERY_CHECK(&p == points.begin() ? GXGeometryBeginFigure(path.Get(), &p) : GXGeometryLineTo(path.Get(), &p));
    }
    GALLERY_CHECK(closed ? GXGeometryEndFigureClose(path.Get()) : GXGeometryEndFigure(path.Get()));
    return path;
}

Path Curve(GXPoint start, std::initializer_list<GXPoint> controlsAndEnds, bool closed) {
    Path path;
    GALLERY_CHECK(GXCreateGeometry(path.Out()));
    GALLERY_CHECK(GXGeometryBeginFigure(path.Get(), &start));
    for (const GXPoint* p = controlsAndEnds.begin(); p + 2 < controlsAndEnds.end(); p += 3) {
        GALLERY_CHECK(GXGeometryCubicCurveTo(path.Get(), p, p + 1, p + 2));
    }
    GALLERY_CHECK(closed ? GXGeometryEndFigureClose(path.Get()) : GXGeometryEndFigure(path.Get()));
    return path;
}

Canvas::Canvas(uint32_t width, uint32_t height, uint32_t argb, GXPixelFormat format)
    : m_width(width), m_height(height) {
    const GXBitmapDesc desc = {width, height, format, 96.0f, 96.0f};
    GALLERY_CHECK(GXCreateBitmap(&desc, m_bitmap.Out()));
    GALLERY_CHECK(GXCreateRenderTargetBitmap(m_bitmap.Get(), m_target.Out()));
    GALLERY_CHECK(GXRenderTargetBeginPaint(m_target.Get()));
    GALLERY_CHECK(GXRenderTargetClear(m_target.Get(), argb));
}

void Canvas::Fill(const Path& path, const Brush& brush) {
    GALLERY_CHECK(GXRenderTargetFillGeometry(m_target.Get(), path.Get(), brush.Get()));
}
void Canvas::FillRect(const GXRect& rect, const Brush& brush) {
    GALLERY_CHECK(GXRenderTargetFillRect(m_target.Get(), &rect, brush.Get()));
}
void Canvas::FillEllipse(GXPoint c, float r, const Brush& brush) {
    const GXRect bounds = {c.x - r, c.y - r, c.x + r, c.y + r};
    GALLERY_CHECK(GXRenderTargetFillEllipse(m_target.Get(), &bounds, brush.Get()));
}
void Canvas::Stroke(const Path& path, const Brush& brush, float width, const GXStrokeStyle* style) {
    GALLERY_CHECK(GXRenderTargetStrokeGeometry(m_target.Get(), path.Get(), brush.Get(), width, style));
}
void Canvas::Line(GXPoint from, GXPoint to, const Brush& brush, float width, const GXStrokeStyle* style) {
    GALLERY_CHECK(GXRenderTargetStrokeLine(m_target.Get(), &from, &to, brush.Get(), width, style));
}
void Canvas::Blend(GXBlendMode mode) { GALLERY_CHECK(GXRenderTargetSetBlendMode(m_target.Get(), mode)); }
void Canvas::Push() { GALLERY_CHECK(GXRenderTargetPushState(m_target.Get())); }
void Canvas::Pop() { GALLERY_CHECK(GXRenderTargetPopState(m_target.Get())); }
void Canvas::Translate(float x, float y) { GALLERY_CHECK(GXRenderTargetTranslateCTM(m_target.Get(), x, y)); }
void Canvas::Clip(const GXRect& rect) { GALLERY_CHECK(GXRenderTargetClipRect(m_target.Get(), &rect)); }
void Canvas::BeginLayer(bool isolated, bool knockout, float opacity) {
    const GXLayerDesc desc = {{0, 0, 0, 0}, opacity, static_cast<uint8_t>(isolated), static_cast<uint8_t>(knockout)};
    GALLERY_CHECK(GXRenderTargetBeginLayer(m_target.Get(), &desc));
}
void Canvas::EndLayer() { GALLERY_CHECK(GXRenderTargetEndLayer(m_target.Get())); }

Picture Canvas::Finish() {
    GALLERY_CHECK(GXRenderTargetEndPaint(m_target.Get()));
    m_target.Reset();
    return std::move(m_bitmap);
}

bool Canvas::Save(const std::string& path) {
    const Picture bitmap = Finish();
    return GXBitmapSaveToFile(bitmap.Get(), std::filesystem::path(path).wstring().c_str()) == GXResultSuccess;
}

void DrawLandscape(Canvas& canvas, const GXRect& area) {
    const float w = area.right - area.left, h = area.bottom - area.top;
    canvas.Push();
    canvas.Clip(area);
    canvas.Translate(area.left, area.top);
    canvas.FillRect(
        {0, 0, w, h},
        Linear({{0.0f, 0xFF16305Cu}, {0.3f, 0xFF5E6DA8u}, {0.5f, 0xFFF2A07Bu}, {0.62f, 0xFFFFE3A3u}}, {0, 0}, {0, h}));
    const GXPoint sun = {0.68f * w, 0.46f * h};
    canvas.FillRect({0, 0, w, h}, Radial({{0.0f, 0xC0FFF3C4u}, {1.0f, 0x00FFE0A0u}}, sun, 0.35f * h));
    canvas.FillEllipse(sun, 0.1f * h, Solid(0xFFFFF6D8u));
    canvas.Fill(Curve({0, 0.62f * h}, {{0.15f * w, 0.3f * h},
                                       {0.3f * w, 0.45f * h},
                                       {0.45f * w, 0.55f * h},
                                       {0.6f * w, 0.65f * h},
                                       {0.75f * w, 0.4f * h},
                                       {w, 0.62f * h}}),
                Linear({{0.0f, 0xFF6B4A73u}, {1.0f, 0xFF3B2F58u}}, {0, 0.35f * h}, {0, 0.62f * h}));
    canvas.FillRect({0, 0.6f * h, w, h},
                    Linear({{0.0f, 0xFFE0A585u}, {0.35f, 0xFF56719Eu}, {1.0f, 0xFF10284Au}}, {0, 0.6f * h}, {0, h}));
    const GXStrokeStyle round = {GXLineJoinRound, GXLineCapRound, 10, 0, 0, {}, 0};
    for (int i = 0; i < 9; ++i) {
        const float y = (0.63f + 0.035f * static_cast<float>(i)) * h,
                    half = (0.12f - 0.006f * static_cast<float>(i)) * w;
        const float x = sun.x + 0.02f * w * (i % 2 == 0 ? 1.0f : -1.0f);
        canvas.Line({x - half, y}, {x + half, y}, Solid(0x60FFEFC0u), 0.012f * h, &round);
    }
    canvas.Fill(Curve({-0.1f * w, h}, {{0.05f * w, 0.7f * h}, {0.2f * w, 0.85f * h}, {0.42f * w, 1.02f * h}}, true),
                Linear({{0.0f, 0xFF3E6B3Au}, {1.0f, 0xFF13301Eu}}, {0, 0.75f * h}, {0, h}));
    canvas.Pop();
}

} // namespace Gallery
