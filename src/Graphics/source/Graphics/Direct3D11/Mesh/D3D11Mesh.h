// SPDX-License-Identifier: MIT
// Turns the coverage of a fill into quadrilaterals for the GPU: runs of equal coverage, whole rectangles, and bands
// between two edges with a ramp of coverage along each.
#pragma once

#include "../../ProcessHeap.h"
#include "../../Scan/RasterizationSink.h"

namespace Graphics {

/// A position in device pixels, and the premultiplied colour times the coverage.
struct D3D11Vertex {
    float x, y;
    float color[4];
};

/// Four vertices per quadrilateral: top left, top right, bottom left, bottom right.
class D3D11Mesh {
public:
    static constexpr size_t kQuadVertices = 4;

    void Clear() noexcept { m_vertices.clear(); }
    [[nodiscard]] size_t QuadCount() const noexcept { return m_vertices.size() / kQuadVertices; }
    [[nodiscard]] const D3D11Vertex* Data() const noexcept { return m_vertices.data(); }
    [[nodiscard]] size_t ByteSize() const noexcept { return m_vertices.size() * sizeof(D3D11Vertex); }

    /// Sets the colour of later quadrilaterals: red, green, blue, alpha.
    void SetColor(const float (&premultiplied)[4]) noexcept;
    void AddRectangle(float left, float top, float right, float bottom, float coverage);
    /// Adds a strip between two slanted lines, with the coverage of its left and of its right side.
    void AddStrip(float top, float bottom, float leftTop, float leftBottom, float leftCoverage, float rightTop,
                  float rightBottom, float rightCoverage);

private:
    [[nodiscard]] D3D11Vertex* Grow();

    HeapArray<D3D11Vertex> m_vertices;
    float m_color[4] = {1.0F, 1.0F, 1.0F, 1.0F};
};

/// Sends a fill to a mesh. Rows and rectangles are clipped to `visible`, bands only to its rows.
class D3D11MeshSink final : public RasterizationSink {
public:
    D3D11MeshSink(D3D11Mesh& mesh, const IntRect& visible) noexcept : m_mesh(mesh), m_visible(visible) {}

    void Row(int32_t y, std::span<CoverageRun> runs) override;
    void Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) override;
    bool Begin(int32_t firstSub, int32_t lastSub) override;
    void TrapezoidBand(const Trapezoid& band) override;

private:
    D3D11Mesh& m_mesh;
    IntRect m_visible;
};

} // namespace Graphics
