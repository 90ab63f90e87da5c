// SPDX-License-Identifier: MIT
// A triangle mesh drawn once into an image of the draw call's rectangle, from which the spans are copied.
#pragma once

#include "../Paint/Brush.h"
#include "../Paint/Gradient.h"
#include "SwColorSource.h"

namespace Graphics {

/// A pixel belongs to a triangle that holds its centre; on an edge, to the triangle on the right of it or below it. So
/// triangles that share an edge leave no gap and no pixel is drawn by both. Where triangles overlap, the later one
/// shows.
class SwMeshColorSource final : public SwColorSource {
public:
    SwMeshColorSource(Arena& arena, const GradientBrush& brush, const TriMeshGradient& gradient, const Rect& bounds,
                      const Matrix& transform);

    /// Pixels outside the rectangle of the draw call are the background.
    void Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) override;
    [[nodiscard]] bool IsSolid(uint32_t& color) const noexcept override;
    [[nodiscard]] const uint32_t* DirectRow(int32_t x0, int32_t x1, int32_t y) const noexcept override;

private:
    struct Vertex {
        double x, y; ///< relative to the image
        uint32_t color;
    };

    void FillTriangle(const Vertex (&v)[3], uint32_t factor) noexcept;
    [[nodiscard]] uint32_t* Row(int32_t y) const noexcept {
        return m_pixels + static_cast<size_t>(y) * static_cast<size_t>(m_width);
    }

    uint32_t* m_pixels = nullptr;
    int32_t m_left = 0;
    int32_t m_top = 0;
    int32_t m_width = 0;
    int32_t m_height = 0;
    uint32_t m_background;
};

} // namespace Graphics
