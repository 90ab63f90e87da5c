// SPDX-License-Identifier: MIT
// Inverts whole pixels: those that both the path and the clip cover by at least a half. Each pixel is inverted once per
// call, so the same call again restores it.
#pragma once

#include "../Drawing/Path.h"
#include "../Scan/RasterizationSink.h"
#include "ClipRegion.h"

namespace Graphics {

class Rasterizer;

class PixelInverter : public RasterizationSink {
public:
    PixelInverter(const IntRect& bounds, const ClipRegion* clip) noexcept;

    void Row(int32_t y, std::span<CoverageRun> runs) final;
    void Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) final;
    /// Inverts one device pixel for each step along the longer direction.
    void Line(const Point& from, const Point& to);
    /// A rectangle that contains these pixels; empty if a coordinate is not finite.
    [[nodiscard]] static IntRect LineBox(const Point& from, const Point& to) noexcept;

protected:
    /// Inverts the columns [x0, x1) of row y, inside bounds and clip.
    virtual void Invert(int32_t y, int32_t x0, int32_t x1) = 0;

private:
    void Pixels(int32_t y, int32_t x0, int32_t x1);

    IntRect m_bounds;
    const ClipRegion* m_clip;
};

/// Inversion of a rectangle or a line.
class Inversion {
public:
    /// `shapes` stores the figure as a shape and must not be used for another one meanwhile.
    Inversion(const Matrix& transform, const BasicFigure& figure, PathShape& shapes);

    [[nodiscard]] IntRect Box() const noexcept;
    /// Inverts the part in `visible`, which lies in the target's `area`.
    void Send(PixelInverter& inverter, Rasterizer& rasterizer, const IntRect& area, const IntRect& visible) const;

private:
    const Matrix m_transform;
    const Shape& m_shape;
    const bool m_isLine;
    Point m_from, m_to; // ends of a line, on the device
};

} // namespace Graphics
