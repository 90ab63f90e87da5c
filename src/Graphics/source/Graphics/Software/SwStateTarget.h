// SPDX-License-Identifier: MIT
// The graphics state of the back ends that rasterize by themselves: what a host sets outside the paint bracket reaches
// the next one, what it sets inside goes to the innermost layer too.
#pragma once

#include <memory>

#include "../Geometry/Shape.h"
#include "../Target/RenderTargetBase.h"
#include "SwSubTarget.h"

namespace Graphics {

class SwStateTarget : public RenderTargetBase {
public:
    [[nodiscard]] Matrix GetTransform() const final;
    void SetTransform(const Matrix& m) final;
    void SetBlendMode(uint32_t mode) final;
    void SetStrokeAdjustment(bool on) final;
    void SetOpacityMask(uint32_t type, std::shared_ptr<const Brush> brush) final;
    void SetShapeMask(uint32_t type, std::shared_ptr<const Brush> brush) final;

protected:
    /// The state of the innermost layer; only asked for while painting.
    [[nodiscard]] virtual SwState& State() noexcept = 0;
    [[nodiscard]] virtual bool HasLayers() const noexcept = 0;
    /// Draws the innermost layer into what lies around it and ends it; a layer that cannot be drawn stays open.
    virtual void CloseLayer() = 0;
    /// Ends the innermost layer without drawing it.
    virtual void DropLayer() noexcept = 0;

    /// Closes all layers at the end of painting. One that cannot be drawn is lost, those around it are closed all the
    /// same: the log has the reason. What is no std::exception goes on to the caller.
    void CloseLayers();

    [[nodiscard]] bool IsPainting() const noexcept { return m_painting; }
    /// What the next bracket begins with.
    [[nodiscard]] const SwState& Cached() const noexcept { return m_cached; }
    void StartPainting() noexcept { m_painting = true; }
    /// Everything is as in a new target again.
    void StopPainting() noexcept;

    /// The stored shape, or the figure put into a shape that is void after the call.
    [[nodiscard]] const Shape& Resolve(const PathRef& path);
    /// Raises "Unsupported soft mask type." for the masks of a state. To be asked for whatever has an area, seen or
    /// not; what is empty draws nothing under any mask.
    static void CheckMasks(const SwState& state);
    void CheckMasks() { CheckMasks(State()); }

private:
    /// Applies a setter to the cached state and, while painting, to the current one.
    template <class Change> void ChangeState(Change&& change);

    bool m_painting = false;
    SwState m_cached;
    Shape m_figure;
};

} // namespace Graphics
