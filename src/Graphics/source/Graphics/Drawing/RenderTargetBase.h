// SPDX-License-Identifier: MIT
// The interface of all back ends. Geometry is in user space under the state's matrix; sizes are in device pixels.
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

    /// The brush to store for a mask that is being set; a back end may return a copy that draws use later.
    [[nodiscard]] virtual std::shared_ptr<const Brush> KeepMask(std::shared_ptr<const Brush> brush) { return brush; }

    // The bracket. The front end guarantees the order of calls.
    virtual void BeginPaint() = 0;
    /// Open layers are discarded.
    virtual void EndPaint() = 0;
    /// The clip is saved and restored together with the state.
    virtual void PushState() = 0;
    virtual void PopState() = 0;
    virtual void BeginLayer(const GraphicsState& state, const GXLayerDesc& desc) = 0;
    /// Draws the innermost layer into what contains it and ends it; a layer that cannot be drawn stays open.
    virtual void EndLayer(const GraphicsState& around) = 0;
    /// Ends the innermost layer without drawing it.
    virtual void DropLayer() noexcept = 0;

    virtual void Clear(uint32_t argb) = 0;
    /// Paints the area of the path with the ink, both under the state's matrix. `mask` (null: none) is an image whose
    /// values scale the coverage. The path is not empty.
    virtual void Paint(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask) = 0;
    /// Requires a figure or a stored shape that is not empty.
    virtual void Stroke(const GraphicsState& state, const Path& path, const Ink& ink, float width,
                        const StrokeStyle& style) = 0;
    /// Requires a figure or a stored shape.
    virtual void Clip(const GraphicsState& state, const Path& path) = 0;
    /// Inverts the whole pixels of a rectangle or a line.
    virtual void Invert(const Matrix& transform, const BasicFigure& figure) = 0;
};

} // namespace Graphics
