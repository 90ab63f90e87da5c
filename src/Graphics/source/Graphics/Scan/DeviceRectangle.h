// SPDX-License-Identifier: MIT
// The fill of an upright rectangle: whole pixels if edges snap to pixels, otherwise samples in closed form.
#pragma once

#include "DeviceFigures.h"
#include "Rasterizer.h"
#include "RectangleScanner.h"
#include "SampleRectangle.h"
#include "SnapRectangle.h"
#include "UprightCorners.h"

namespace Graphics {

class DeviceRectangle {
public:
    /// visible(pixels) returns the part of `pixels` to draw. False unless the figure is a rectangle that stays upright
    /// under the matrix and lies within the range in which edges are stepped exactly. `isSolid` says that the fill has one
    /// colour, so that it does not matter where runs of coverage begin.
    template <class Visible>
    [[nodiscard]] bool Set(const BasicFigure& figure, const Matrix& m, const IntRect& area, bool snap, bool isSolid,
                           const Visible& visible) {
        Vertex a;
        Vertex b;
        if (!UprightCorners(figure, m, a, b)) {
            return false;
        }
        const bool onPixels = ((a.x | a.y | b.x | b.y) & 127) == 0;
        if (onPixels && (snap ? a.x != b.x && a.y != b.y : isSolid)) { // an empty one that snaps gets a pixel
            m_isWhole = true;
            m_pixels = visible(
                {std::min(a.x, b.x) >> 7, std::min(a.y, b.y) >> 7, std::max(a.x, b.x) >> 7, std::max(a.y, b.y) >> 7});
            return true;
        }
        m_isWhole = snap;
        if (snap) {
            IntRect pixels;
            if (!SnapRectangle(area, a, b, pixels)) {
                return false;
            }
            m_pixels = visible(pixels);
            return true;
        }
        m_pixels = visible(SampleRectangle::Box(a, b));
        return m_samples.Set(a, b, area.top * 8, area.bottom * 8, m_pixels);
    }

    /// True if the fill is exactly the whole pixels of Pixels().
    [[nodiscard]] bool IsWhole() const noexcept { return m_isWhole; }
    /// The pixels that may be covered; may be empty.
    [[nodiscard]] const IntRect& Pixels() const noexcept { return m_pixels; }
    /// Requires !IsWhole().
    [[nodiscard]] const SampleRectangle& Samples() const noexcept { return m_samples; }

    void Send(RasterizationSink& sink) const {
        if (m_isWhole) {
            sink.Rectangle(m_pixels.left, m_pixels.top, m_pixels.right, m_pixels.bottom);
        } else {
            RectangleScanner(m_samples).Send(sink);
        }
    }

private:
    IntRect m_pixels{};
    SampleRectangle m_samples;
    bool m_isWhole = false;
};

} // namespace Graphics
