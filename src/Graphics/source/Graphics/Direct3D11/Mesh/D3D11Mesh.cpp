// SPDX-License-Identifier: MIT
// The coverage of a pixel beside an edge of slope s = |dx/dy|, by the distance u of its centre from the edge along the
// row, is the integral of a trapezoid: a box as wide as the pixel, smeared by s. With h = (1 + s) / 2, p = |1 - s| / 2,
// a = min(1, s) and b = max(1, s) it is
//
//     (u + h)^2 / (2 a b)   from -h to -p,
//     linear                from -p to p,
//     and by symmetry 1 - the first from p to h.
//
// The GPU interpolates linearly, so each curved part becomes two strips; the error stays below a / (32 b).
#include "D3D11Mesh.h"

#include <algorithm>
#include <cmath>

namespace Graphics {
namespace {

/// Shapes of fewer sub-scanlines are usually curves and text, where a search for bands does not pay.
constexpr int32_t kBandHeight = 32 * 8;
/// Below this slope one straight ramp is accurate to half a level of 64.
constexpr float kUpright = 1.0F / 32.0F;

/// Row spans are sampled in the middle of a sub-scanline and rounded up to the next eighth of a pixel. So the centre
/// line of what they cover lies half a sub unit right of the edge's, and half a sub-scanline lower.
constexpr float kHalfSub = 1.0F / 16.0F;

struct Knot {
    float offset; // from the edge, along the row
    float coverage;
};

/// The ramp of an edge from coverage 0 to 1; returns the number of knots.
size_t RampKnots(float ramp, Knot (&knots)[6]) noexcept {
    const float slope = ramp * 2.0F - 1.0F;
    if (slope < kUpright) {
        knots[0] = {-ramp, 0.0F};
        knots[1] = {ramp, 1.0F};
        return 2;
    }
    const float a = std::min(1.0F, slope);
    const float b = std::max(1.0F, slope);
    const float plateau = (b - a) * 0.5F;
    const float middle = (ramp + plateau) * 0.5F;
    knots[0] = {-ramp, 0.0F};
    knots[1] = {-middle, a / (8.0F * b)};
    knots[2] = {-plateau, a / (2.0F * b)};
    for (size_t i = 0; i < 3; ++i) {
        knots[5 - i] = {-knots[i].offset, 1.0F - knots[i].coverage};
    }
    return 6;
}

} // namespace

void D3D11Mesh::SetColor(const float (&premultiplied)[4]) noexcept { std::copy_n(premultiplied, 4, m_color); }

D3D11Vertex* D3D11Mesh::Grow() {
    const size_t old = m_vertices.size();
    m_vertices.resize(old + kQuadVertices);
    return m_vertices.data() + old;
}

void D3D11Mesh::AddRectangle(float left, float top, float right, float bottom, float coverage) {
    AddStrip(top, bottom, left, left, coverage, right, right, coverage);
}

void D3D11Mesh::AddStrip(float top, float bottom, float leftTop, float leftBottom, float leftCoverage, float rightTop,
                         float rightBottom, float rightCoverage) {
    D3D11Vertex* v = Grow();
    const auto set = [&](D3D11Vertex& to, float x, float y, float coverage) {
        to = {x, y, {m_color[0] * coverage, m_color[1] * coverage, m_color[2] * coverage, m_color[3] * coverage}};
    };
    set(v[0], leftTop, top, leftCoverage);
    set(v[1], rightTop, top, rightCoverage);
    set(v[2], leftBottom, bottom, leftCoverage);
    set(v[3], rightBottom, bottom, rightCoverage);
}

void D3D11MeshSink::Row(int32_t y, std::span<CoverageRun> runs) {
    const auto top = static_cast<float>(y);
    const auto add = [&](int32_t x0, int32_t x1, uint8_t value) {
        if (value != 0) {
            m_mesh.AddRectangle(static_cast<float>(x0), top, static_cast<float>(x1), top + 1.0F,
                                static_cast<float>(value) * (1.0F / 255.0F));
        }
    };
    for (const CoverageRun& run : runs) {
        if (run.shape == nullptr) {
            add(run.x0, run.x1, run.value);
            continue;
        }
        for (int32_t x = run.x0; x < run.x1;) {
            const uint8_t value = run.shape[x - run.x0];
            int32_t end = x + 1;
            while (end < run.x1 && run.shape[end - run.x0] == value) {
                ++end;
            }
            add(x, end, value);
            x = end;
        }
    }
}

void D3D11MeshSink::Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    const IntRect r = Intersect({left, top, right, bottom}, m_visible);
    if (!IsEmpty(r)) {
        m_mesh.AddRectangle(static_cast<float>(r.left), static_cast<float>(r.top), static_cast<float>(r.right),
                            static_cast<float>(r.bottom), 1.0F);
    }
}

bool D3D11MeshSink::Begin(int32_t firstSub, int32_t lastSub) { return lastSub - firstSub >= kBandHeight; }

void D3D11MeshSink::TrapezoidBand(const Trapezoid& band) {
    const float top = std::max(band.top, static_cast<float>(m_visible.top));
    const float bottom = std::min(band.bottom, static_cast<float>(m_visible.bottom));
    if (!(top < bottom)) {
        return;
    }
    const float height = band.bottom - band.top;
    const auto cut = [&](float& atTop, float& atBottom) {
        const float slope = (atBottom - atTop) / height;
        const float from = atTop + kHalfSub - slope * kHalfSub;
        atTop = from + slope * (top - band.top);
        atBottom = from + slope * (bottom - band.top);
    };
    float leftTop = band.leftTop;
    float leftBottom = band.leftBottom;
    float rightTop = band.rightTop;
    float rightBottom = band.rightBottom;
    cut(leftTop, leftBottom);
    cut(rightTop, rightBottom);

    Knot left[6];
    Knot right[6];
    const size_t leftCount = RampKnots(band.leftRamp, left);
    const size_t rightCount = RampKnots(band.rightRamp, right);
    for (size_t i = 0; i + 1 < leftCount; ++i) {
        const Knot& a = left[i];
        const Knot& b = left[i + 1];
        m_mesh.AddStrip(top, bottom, leftTop + a.offset, leftBottom + a.offset, a.coverage, leftTop + b.offset,
                        leftBottom + b.offset, b.coverage);
    }
    m_mesh.AddStrip(top, bottom, leftTop + band.leftRamp, leftBottom + band.leftRamp, 1.0F, rightTop - band.rightRamp,
                    rightBottom - band.rightRamp, 1.0F);
    for (size_t i = rightCount - 1; i > 0; --i) { // coverage falls to the right
        const Knot& a = right[i];
        const Knot& b = right[i - 1];
        m_mesh.AddStrip(top, bottom, rightTop - a.offset, rightBottom - a.offset, a.coverage, rightTop - b.offset,
                        rightBottom - b.offset, b.coverage);
    }
}

} // namespace Graphics
