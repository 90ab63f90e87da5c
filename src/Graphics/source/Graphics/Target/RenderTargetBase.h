// SPDX-License-Identifier: MIT
// What every back end does. Units: geometry in user space under the current matrix; sizes in device pixels.
#pragma once

#include <memory>

#include "../Geometry/BasicFigures.h"
#include "../Matrix.h"

namespace Graphics {

class Bitmap;
class Brush;
class Gradient;
class Shape;
struct StrokeStyle;

/// A path to draw: a stored shape, or a figure held by value. Exactly one of the two is set.
struct PathRef {
    const std::shared_ptr<const Shape>* shape = nullptr;
    const BasicFigure* figure = nullptr;
};

class RenderTargetBase {
public:
    virtual ~RenderTargetBase() = default;

    [[nodiscard]] virtual GXPixelFormat GetPixelFormat() const = 0;
    [[nodiscard]] virtual Size GetSize() const = 0;

    // State: readable and writable inside and outside a paint bracket.
    [[nodiscard]] virtual Matrix GetTransform() const = 0;
    virtual void SetTransform(const Matrix& m) = 0;
    virtual void SetBlendMode(uint32_t mode) = 0;
    virtual void SetStrokeAdjustment(bool on) = 0;
    /// A null brush removes the mask. Placed by the brush's matrix and the current one.
    virtual void SetOpacityMask(uint32_t type, std::shared_ptr<const Brush> brush) = 0;
    virtual void SetShapeMask(uint32_t type, std::shared_ptr<const Brush> brush) = 0;

    // The bracket. The front end has checked that calls come in order.
    virtual void BeginPaint() = 0;
    virtual void EndPaint() = 0;
    virtual void PushState() = 0;
    /// Raises "State stack is empty" when nothing was pushed in the innermost layer.
    virtual void PopState() = 0;
    virtual void BeginLayer(const GXLayerDesc& desc) = 0;
    /// Raises "No layer is open".
    virtual void EndLayer() = 0;

    virtual void Clear(uint32_t argb) = 0;
    /// `text` paths are never moved to whole pixels.
    virtual void Fill(const PathRef& path, const Brush& brush, bool text) = 0;
    virtual void Stroke(const PathRef& path, const Brush& brush, float width, const StrokeStyle& style) = 0;
    virtual void Clip(const PathRef& path) = 0;
    /// Maps `source` (pixels of the bitmap) onto `destination`; a reversed rectangle mirrors.
    virtual void DrawBitmap(const Bitmap& bitmap, const IntRect& source, const Rect& destination, float opacity,
                            uint32_t interpolation) = 0;
    virtual void FillMask(const Bitmap& mask, const Brush& brush, const Rect& destination, uint32_t interpolation) = 0;
    virtual void DrawGradient(std::shared_ptr<const Gradient> gradient, float opacity, const Matrix& m) = 0;
    virtual void InvertRect(const Rect& rect) = 0;
    virtual void InvertLine(const Point& from, const Point& to) = 0;
};

} // namespace Graphics
