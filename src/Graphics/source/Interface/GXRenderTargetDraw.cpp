// SPDX-License-Identifier: MIT
// Render targets: drawing and clipping.
#include <utility>

#include "Arguments.h"
#include "Bitmaps/Bitmap.h"
#include "Geometry/Geometry.h"
#include "Geometry/StrokeStyle.h"
#include "Guard.h"
#include "Handles.h"
#include "Paint/Brush.h"
#include "Paint/Gradient.h"
#include "Target/RenderTarget.h"
#include "Text/Font.h"

using namespace Graphics;

namespace {

using Kind = BasicFigure::Kind;

/// Checks every pointer, then runs work(target) under the guard.
template <class Work, class... Pointers>
[[nodiscard]] GXResult Draw(GXRenderTarget handle, Work&& work, const Pointers*... pointers) noexcept {
    if (AnyNull(handle, pointers...)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { work(*handle->object); });
}

[[nodiscard]] GXResult FillFigure(GXRenderTarget handle, Kind kind, const GXRect* rect, GXBrush brush) noexcept {
    return Draw(
        handle, [&](RenderTarget& t) { t.Fill(BasicFigure(kind, Given(rect)), *brush->object); }, rect, brush);
}

/// Refuses negative and NaN widths.
[[nodiscard]] GXResult StrokePath(GXRenderTarget handle, const Path& path, GXBrush brush, float width,
                                  const GXStrokeStyle* style) noexcept {
    if (AnyNull(handle, brush) || !(width >= 0.0F)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { handle->object->Stroke(path, *brush->object, width, StrokeStyle(style)); });
}

[[nodiscard]] GXResult StrokeFigure(GXRenderTarget handle, Kind kind, const GXRect& rect, GXBrush brush, float width,
                                    const GXStrokeStyle* style) noexcept {
    return StrokePath(handle, BasicFigure(kind, rect), brush, width, style);
}

[[nodiscard]] GXResult ClipFigure(GXRenderTarget handle, Kind kind, const GXRect* rect) noexcept {
    if (AnyNull(handle, rect)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { handle->object->ClipFigure({kind, Given(rect)}); });
}

[[nodiscard]] GXIntRect WholeOf(const Bitmap& bitmap) noexcept {
    const Size size = bitmap.GetSize();
    return {0, 0, static_cast<int32_t>(size.width), static_cast<int32_t>(size.height)};
}

[[nodiscard]] GXRect PlacedAt(const GXIntRect& whole, float x, float y) noexcept {
    return {x, y, x + static_cast<float>(whole.right), y + static_cast<float>(whole.bottom)};
}

} // namespace

GXResult GXRenderTargetClear(GXRenderTarget renderTarget, uint32_t argb) noexcept {
    return Draw(renderTarget, [&](RenderTarget& t) { t.Clear(argb); });
}

GXResult GXRenderTargetFillGeometry(GXRenderTarget renderTarget, GXGeometry geometry, GXBrush brush) noexcept {
    return Draw(
        renderTarget, [&](RenderTarget& t) { t.Fill(*geometry->object, *brush->object); }, geometry, brush);
}

GXResult GXRenderTargetFillTextGeometry(GXRenderTarget renderTarget, GXGeometry geometry, GXBrush brush) noexcept {
    return Draw(
        renderTarget, [&](RenderTarget& t) { t.Fill(Path::Outline(*geometry->object), *brush->object); }, geometry,
        brush);
}

GXResult GXRenderTargetFillRect(GXRenderTarget renderTarget, const GXRect* rect, GXBrush brush) noexcept {
    return FillFigure(renderTarget, Kind::Rectangle, rect, brush);
}

GXResult GXRenderTargetFillEllipse(GXRenderTarget renderTarget, const GXRect* rect, GXBrush brush) noexcept {
    return FillFigure(renderTarget, Kind::Ellipse, rect, brush);
}

GXResult GXRenderTargetStrokeGeometry(GXRenderTarget renderTarget, GXGeometry geometry, GXBrush brush, float width,
                                      const GXStrokeStyle* style) noexcept {
    if (AnyNull(renderTarget, geometry)) {
        return GXResultInvalidArgument;
    }
    return StrokePath(renderTarget, *geometry->object, brush, width, style);
}

GXResult GXRenderTargetStrokeLine(GXRenderTarget renderTarget, const GXPoint* point, const GXPoint* point2,
                                  GXBrush brush, float width, const GXStrokeStyle* style) noexcept {
    if (AnyNull(renderTarget, point, point2)) {
        return GXResultInvalidArgument;
    }
    const GXPoint from = Given(point);
    const GXPoint to = Given(point2);
    return StrokeFigure(renderTarget, Kind::Line, {from.x, from.y, to.x, to.y}, brush, width, style);
}

GXResult GXRenderTargetStrokeRect(GXRenderTarget renderTarget, const GXRect* rect, GXBrush brush, float width,
                                  const GXStrokeStyle* style) noexcept {
    if (AnyNull(renderTarget, rect)) {
        return GXResultInvalidArgument;
    }
    return StrokeFigure(renderTarget, Kind::Rectangle, Given(rect), brush, width, style);
}

GXResult GXRenderTargetStrokeEllipse(GXRenderTarget renderTarget, const GXRect* rect, GXBrush brush, float width,
                                     const GXStrokeStyle* style) noexcept {
    if (AnyNull(renderTarget, rect)) {
        return GXResultInvalidArgument;
    }
    return StrokeFigure(renderTarget, Kind::Ellipse, Given(rect), brush, width, style);
}

GXResult GXRenderTargetClipGeometry(GXRenderTarget renderTarget, GXGeometry geometry) noexcept {
    return Draw(
        renderTarget, [&](RenderTarget& t) { t.Clip(*geometry->object); }, geometry);
}

GXResult GXRenderTargetClipRect(GXRenderTarget renderTarget, const GXRect* rect) noexcept {
    return ClipFigure(renderTarget, Kind::Rectangle, rect);
}

GXResult GXRenderTargetClipEllipse(GXRenderTarget renderTarget, const GXRect* rect) noexcept {
    return ClipFigure(renderTarget, Kind::Ellipse, rect);
}

GXResult GXRenderTargetDrawBitmap(GXRenderTarget renderTarget, GXBitmap bitmap, const GXPoint* origin, float opacity,
                                  uint32_t interpolation) noexcept {
    return Draw(
        renderTarget,
        [&](RenderTarget& t) {
            const Bitmap& b = *bitmap->object;
            const GXPoint at = origin == nullptr ? GXPoint{0.0F, 0.0F} : *origin;
            const GXIntRect whole = WholeOf(b);
            t.DrawBitmap(b, whole, PlacedAt(whole, at.x, at.y), opacity, interpolation);
        },
        bitmap);
}

GXResult GXRenderTargetStretchBitmap(GXRenderTarget renderTarget, GXBitmap bitmap, const GXRect* destination,
                                     const GXIntRect* source, float opacity, uint32_t interpolation) noexcept {
    return Draw(
        renderTarget,
        [&](RenderTarget& t) {
            const Bitmap& b = *bitmap->object;
            GXIntRect from = source == nullptr ? WholeOf(b) : *source;
            GXRect to = *destination;
            // A reversed source is replaced by the same part with a reversed destination.
            if (from.left > from.right) {
                std::swap(from.left, from.right);
                std::swap(to.left, to.right);
            }
            if (from.top > from.bottom) {
                std::swap(from.top, from.bottom);
                std::swap(to.top, to.bottom);
            }
            t.DrawBitmap(b, from, to, opacity, interpolation);
        },
        bitmap, destination);
}

GXResult GXRenderTargetDrawGradient(GXRenderTarget renderTarget, GXGradient gradient, float opacity,
                                    const GXMatrix* matrix) noexcept {
    return Draw(
        renderTarget,
        [&](RenderTarget& t) { t.DrawGradient(gradient->object, opacity, matrix == nullptr ? kIdentity : *matrix); },
        gradient);
}

GXResult GXRenderTargetFillMask(GXRenderTarget renderTarget, GXBitmap mask, GXBrush brush, const GXRect* destination,
                                uint32_t interpolation) noexcept {
    return Draw(
        renderTarget,
        [&](RenderTarget& t) {
            const Bitmap& m = *mask->object;
            t.FillMask(m, *brush->object, destination == nullptr ? PlacedAt(WholeOf(m), 0.0F, 0.0F) : *destination,
                       interpolation);
        },
        mask, brush);
}

GXResult GXRenderTargetInvertRect(GXRenderTarget renderTarget, const GXRect* rect) noexcept {
    return Draw(
        renderTarget, [&](RenderTarget& t) { t.InvertRect(*rect); }, rect);
}

GXResult GXRenderTargetInvertLine(GXRenderTarget renderTarget, const GXPoint* point, const GXPoint* point2) noexcept {
    return Draw(
        renderTarget, [&](RenderTarget& t) { t.InvertLine(*point, *point2); }, point, point2);
}

GXResult GXRenderTargetFillText(GXRenderTarget renderTarget, GXFontFace fontFace, const uint16_t* text,
                                GXBrush brush) noexcept {
    if (AnyNull(renderTarget, fontFace, text, brush)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { renderTarget->object->FillText(*fontFace->object, text, *brush->object); });
}
