// SPDX-License-Identifier: MIT
// What every back end does. Units: geometry in user space under the matrix of the state; sizes in device pixels.
#pragma once

#include <memory>

#include "GraphicsState.h"
#include "Ink.h"
#include "Path.h"

namespace Graphics {

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
    /// Colours what the path covers with the ink, both under the state's matrix. `mask` (null: none) is an image whose
    /// values scale the coverage. The path is not empty.
    virtual void Paint(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask) = 0;
    /// The path is a figure or a stored shape, and not empty.
    virtual void Stroke(const GraphicsState& state, const Path& path, const Ink& ink, float width,
                        const StrokeStyle& style) = 0;
    /// The path is a figure or a stored shape.
    virtual void Clip(const GraphicsState& state, const Path& path) = 0;
    /// A rectangle or a line, as whole pixels.
    virtual void Invert(const Matrix& transform, const BasicFigure& figure) = 0;
};

} // namespace Graphics
