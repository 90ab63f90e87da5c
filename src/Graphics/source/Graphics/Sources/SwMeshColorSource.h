// SPDX-License-Identifier: MIT
// A triangle mesh, rendered in bands of a few rows, from which spans are copied. Rows are mostly requested from the top
// down, so the mesh is rendered once, in memory that does not grow with the area.
#pragma once

#include "../Paint/Brush.h"
#include "../Paint/Gradient.h"
#include "SwColorSource.h"

namespace Graphics {

/// A pixel belongs to the triangle that contains its centre; a centre on an edge belongs to the triangle right of it or
/// below it. So triangles that share an edge leave no gap, and no pixel is painted by both. Where triangles overlap,
/// the later one shows.
class SwMeshColorSource final : public SwColorSource {
public:
    SwMeshColorSource(Arena& arena, const GradientBrush& brush, const TriMeshGradient& gradient, const Rect& bounds,
                      const Matrix& transform);

    /// Pixels outside every triangle, and outside the rectangle of the draw call, are 0.
    void Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) override;
    [[nodiscard]] bool IsSolid(uint32_t& color) const noexcept override;
    /// The pixels are valid until another row is requested.
    [[nodiscard]] const uint32_t* DirectRow(int32_t x0, int32_t x1, int32_t y) const noexcept override;

private:
    struct Vertex {
        double x, y; ///< relative to the image
        uint32_t color;
    };
    /// The image rows, last exclusive, whose centres may lie in the triangle; false if there are none.
    [[nodiscard]] bool FindRows(const Vertex (&v)[3], int32_t& first, int32_t& last) const noexcept;
    /// False if a corner is not finite.
    [[nodiscard]] bool Corners(size_t triangle, Vertex (&v)[3]) const noexcept;
    /// Lists for each band the triangles that reach into it, unless the lists would be too long.
    void ListByBand(Arena& arena);
    void DrawBand(int32_t band) const noexcept;
    /// Paints the rows from `first` to `last`, which lie in the band that starts at row `top`.
    void FillTriangle(const Vertex (&v)[3], int32_t first, int32_t last, int32_t top) const noexcept;
    /// A row of the image; renders its band unless it is the band rendered last.
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
    uint32_t* m_listed = nullptr;     // triangle numbers, band by band, in the gradient's order; null: there is one
                                      // band, with all of them
    uint32_t* m_listStarts = nullptr; // where each band's part of the list begins, and the list's length
    uint32_t* m_pixels = nullptr;     // of one band; null if the mesh shows nothing
    mutable int32_t m_band = -1;      // the band in m_pixels
};

} // namespace Graphics
