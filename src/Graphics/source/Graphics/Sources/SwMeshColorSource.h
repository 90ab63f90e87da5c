// SPDX-License-Identifier: MIT
// A triangle mesh, drawn into a band of some rows at a time, from which the spans are copied. Rows are mostly asked for
// from the top down: the mesh is then drawn once, in memory that does not grow with the area.
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

    /// Pixels outside every triangle, and outside the rectangle of the draw call, are 0.
    void Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) override;
    [[nodiscard]] bool IsSolid(uint32_t& color) const noexcept override;
    /// The pixels stay until another row is asked for.
    [[nodiscard]] const uint32_t* DirectRow(int32_t x0, int32_t x1, int32_t y) const noexcept override;

private:
    struct Vertex {
        double x, y; ///< relative to the image
        uint32_t color;
    };
    /// The rows of the image, last exclusive, whose centres a triangle may hold; false where there are none.
    [[nodiscard]] bool FindRows(const Vertex (&v)[3], int32_t& first, int32_t& last) const noexcept;
    /// False when a corner is not finite.
    [[nodiscard]] bool Corners(size_t triangle, Vertex (&v)[3]) const noexcept;
    /// Notes for each band the triangles that reach into it; not done where they would be too many.
    void ListByBand(Arena& arena);
    void DrawBand(int32_t band) const noexcept;
    /// The rows from `first` to `last`, which lie in the band whose first row is `top`.
    void FillTriangle(const Vertex (&v)[3], int32_t first, int32_t last, int32_t top) const noexcept;
    /// Of the image; draws its band unless it is the last one that was drawn.
    [[nodiscard]] const uint32_t* Row(int32_t y) const noexcept;
    [[nodiscard]] int32_t BandCount() const noexcept { return (m_height + m_bandRows - 1) / m_bandRows; }

    const std::vector<GXTriMeshVertex>& m_vertices;
    Matrix m_map;
    uint32_t m_factor;
    int32_t m_left = 0;
    int32_t m_top = 0;
    int32_t m_width = 0;
    int32_t m_height = 0;
    int32_t m_bandRows = 1;
    uint32_t* m_listed = nullptr;     // triangles, band by band, in the gradient's order; null: all are in the one band
    uint32_t* m_listStarts = nullptr; // the first one of each band in the list, and the number of all
    uint32_t* m_pixels = nullptr;     // of a band; null when the mesh shows nothing
    mutable int32_t m_band = -1;      // the one that is drawn
};

} // namespace Graphics
