// SPDX-License-Identifier: MIT
// Inverts whole pixels: those that a path covers by at least a half and that the clip leaves by at least a half. Each
// pixel of a call is inverted once, so that the same call restores it.
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
    /// One device pixel for each step along the longer direction.
    void Line(const Point& from, const Point& to);
    /// A rectangle that holds these pixels; empty where a coordinate is not finite.
    [[nodiscard]] static IntRect LineBox(const Point& from, const Point& to) noexcept;

protected:
    /// The columns [x0, x1) of row y, inside bounds and clip.
    virtual void Invert(int32_t y, int32_t x0, int32_t x1) = 0;

private:
    void Pixels(int32_t y, int32_t x0, int32_t x1);

    IntRect m_bounds;
    const ClipRegion* m_clip;
};

/// The pixels that a rectangle or a line inverts.
class Inversion {
public:
    /// `shapes` keeps the figure as a shape and is not asked for another one meanwhile.
    Inversion(const Matrix& transform, const BasicFigure& figure, PathShape& shapes);

    [[nodiscard]] IntRect Box() const noexcept;
    /// Inverts what lies in `visible`, a part of the target's `area`.
    void Send(PixelInverter& inverter, Rasterizer& rasterizer, const IntRect& area, const IntRect& visible) const;

private:
    const Matrix m_transform;
    const Shape& m_shape;
    const bool m_isLine;
    Point m_from, m_to; // of a line, on the device
};

} // namespace Graphics
