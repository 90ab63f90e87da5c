// SPDX-License-Identifier: MIT
// What every back end does. Units: geometry in user space under the matrix of the state; sizes in device pixels.
#pragma once

#include <memory>

#include "GraphicsState.h"
#include "PathRef.h"

namespace Graphics {

class Bitmap;
class Gradient;
struct StrokeStyle;

class RenderTargetBase {
public:
    virtual ~RenderTargetBase() = default;

    [[nodiscard]] virtual GXPixelFormat GetPixelFormat() const = 0;
    [[nodiscard]] virtual Size GetSize() const = 0;

    /// The brush of a mask that is being set, as draws under the mask are to see it.
    [[nodiscard]] virtual std::shared_ptr<const Brush> KeepMask(std::shared_ptr<const Brush> brush) { return brush; }

    // The bracket. The front end has checked that calls come in order.
    virtual void BeginPaint() = 0;
    /// Layers that are still open are lost.
    virtual void EndPaint() = 0;
    /// With the state the clip is kept, and comes back.
    virtual void PushState() = 0;
    virtual void PopState() = 0;
    virtual void BeginLayer(const GraphicsState& state, const GXLayerDesc& desc) = 0;
    /// Draws the innermost layer into what lies around it and ends it; a layer that cannot be drawn stays open.
    virtual void EndLayer(const GraphicsState& around) = 0;
    /// Ends the innermost layer without drawing it.
    virtual void DropLayer() noexcept = 0;

    virtual void Clear(uint32_t argb) = 0;
    /// `text` paths are never moved to whole pixels.
    virtual void Fill(const GraphicsState& state, const PathRef& path, const Brush& brush, bool text) = 0;
    virtual void Stroke(const GraphicsState& state, const PathRef& path, const Brush& brush, float width,
                        const StrokeStyle& style) = 0;
    virtual void Clip(const GraphicsState& state, const PathRef& path) = 0;
    /// Maps `source` (pixels of the bitmap) onto `destination`; a reversed rectangle mirrors.
    virtual void DrawBitmap(const GraphicsState& state, const Bitmap& bitmap, const IntRect& source,
                            const Rect& destination, float opacity, uint32_t interpolation) = 0;
    virtual void FillMask(const GraphicsState& state, const Bitmap& mask, const Brush& brush, const Rect& destination,
                          uint32_t interpolation) = 0;
    virtual void DrawGradient(const GraphicsState& state, std::shared_ptr<const Gradient> gradient, float opacity,
                              const Matrix& m) = 0;
    virtual void InvertRect(const Matrix& transform, const Rect& rect) = 0;
    virtual void InvertLine(const Matrix& transform, const Point& from, const Point& to) = 0;
};

} // namespace Graphics
