// SPDX-License-Identifier: MIT
// A picture being drawn: the calls that the gallery's pictures have in common, in pixels, y down. A call that fails
// ends the program with the call's name.
#pragma once

#include <GX/GX.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "Handle.h"

namespace Gallery {

using Gxr::Handle;

void Check(GXResult result, const char* call);
#define GALLERY_CHECK(call) ::Gallery::Check(call, #call)

using Brush = Handle<GXBrush>;
using Path = Handle<GXGeometry>;
using Picture = Handle<GXBitmap>;

Brush Solid(uint32_t argb);
/// From top to bottom or left to right between the two points.
Brush Linear(std::initializer_list<GXGradientStop> stops, GXPoint start, GXPoint end);
Brush Radial(std::initializer_list<GXGradientStop> stops, GXPoint center, float radius);
Brush Tiles(const Picture& bitmap, uint32_t extend, const GXMatrix& matrix);

/// A star of `points` points; `inner` is the smaller radius as a share of `radius`.
Path Star(GXPoint center, float radius, float inner, int points, GXFillRule rule = GXFillRuleNonZero);
Path Polygon(std::initializer_list<GXPoint> points, bool closed = true);
/// Through the points, two control points and an end at a time.
Path Curve(GXPoint start, std::initializer_list<GXPoint> controlsAndEnds, bool closed = false);

class Canvas {
public:
    Canvas(uint32_t width, uint32_t height, uint32_t argb = 0xFFFFFFFFu, GXPixelFormat format = GXPixelFormatBGRX32);
    GXRenderTarget Target() const { return m_target.Get(); }
    float Width() const { return static_cast<float>(m_width); }
    float Height() const { return static_cast<float>(m_height); }

    void Fill(const Path& path, const Brush& brush);
    void FillRect(const GXRect& rect, const Brush& brush);
    void FillEllipse(GXPoint center, float radius, const Brush& brush);
    void Stroke(const Path& path, const Brush& brush, float width, const GXStrokeStyle* style = nullptr);
    void Line(GXPoint from, GXPoint to, const Brush& brush, float width, const GXStrokeStyle* style = nullptr);
    void Blend(GXBlendMode mode);
    void Push();
    void Pop();
    void Translate(float x, float y);
    void Clip(const GXRect& rect);
    void BeginLayer(bool isolated, bool knockout, float opacity = 1.0f);
    void EndLayer();

    /// Ends the painting; what was drawn as a bitmap.
    Picture Finish();
    /// As a PNG. False where the file cannot be written.
    bool Save(const std::string& path);

private:
    Picture m_bitmap;
    Handle<GXRenderTarget> m_target;
    uint32_t m_width, m_height;
};

/// A sunset over water and hills inside `area`: a backdrop with light and dark, pale and strong colours.
void DrawLandscape(Canvas& canvas, const GXRect& area);

} // namespace Gallery
