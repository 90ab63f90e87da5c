// SPDX-License-Identifier: MIT
// The quadrilaterals of the Direct3D 11 back end, sampled at pixel centres as a graphics card does, against the rows of
// coverage that they stand for: each pixel belongs to one quadrilateral at most, and has the rows' coverage.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "Direct3D11/Mesh/D3D11Mesh.h"
#include "GridSink.h"
#include "Scan/Rasterizer.h"

using namespace Graphics;

namespace {

constexpr int32_t kWidth = 200;
constexpr int32_t kHeight = 120;
constexpr Rect kArea{0, 0, kWidth, kHeight};

/// The mesh at pixel centres inside `visible`.
void Sample(const D3D11Mesh& mesh, const IntRect& visible, std::vector<float>& values, std::vector<int>& hits) {
    for (size_t q = 0; q < mesh.QuadCount(); ++q) {
        const D3D11Vertex* v = mesh.Data() + q * D3D11Mesh::kQuadVertices;
        for (int32_t y = visible.top; y < visible.bottom; ++y) {
            const double cy = y + 0.5;
            if (cy < v[0].y || cy >= v[2].y) {
                continue;
            }
            const double down = (cy - v[0].y) / (static_cast<double>(v[2].y) - v[0].y);
            const double left = v[0].x + (static_cast<double>(v[2].x) - v[0].x) * down;
            const double right = v[1].x + (static_cast<double>(v[3].x) - v[1].x) * down;
            for (int32_t x = visible.left; x < visible.right; ++x) {
                const double cx = x + 0.5;
                if (cx >= left && cx < right) {
                    const double across = (cx - left) / (right - left);
                    const auto at = static_cast<size_t>(y * kWidth + x);
                    values[at] = static_cast<float>(v[0].color[3] + (v[1].color[3] - v[0].color[3]) * across);
                    ++hits[at];
                }
            }
        }
    }
}

} // namespace

TEST(D3D11Mesh, CoversWhatTheRowsCover) {
    std::mt19937 random(5);
    const auto coordinate = [&] { return static_cast<float>(random() % 1600) / 8.0F - 30.0F; };
    size_t bands = 0;
    for (int round = 0; round < 60; ++round) {
        const IntRect visible = round % 3 == 0 ? IntRect{0, 0, kWidth, kHeight} : IntRect{20, 33, 150, 90};
        std::vector<Point> points;
        const size_t count = round % 4 == 0 ? 24 : 4; // many edges give rows, few give bands
        for (size_t i = 0; i < count; ++i) {
            points.push_back({coordinate(), coordinate()});
        }
        const auto draw = [&](RasterizationSink& sink) {
            Rasterizer rasterizer;
            rasterizer.Begin(kArea, visible, false);
            rasterizer.SetFillRule(static_cast<uint32_t>(round & 1));
            rasterizer.BeginFigure(points[0]);
            for (const Point& p : points) {
                rasterizer.LineTo(p);
            }
            rasterizer.EndFigureClose();
            rasterizer.Finish(sink);
        };
        GridSink rows(visible);
        draw(rows);
        for (const IntRect& whole : rows.rectangles) {
            const IntRect r = Intersect(whole, visible);
            for (int32_t y = r.top; y < r.bottom; ++y) {
                std::fill_n(&rows.grid.At(r.left, y), std::max(r.right - r.left, 0), 255);
            }
        }
        D3D11Mesh mesh;
        mesh.SetColor({0.25F, 0.5F, 0.75F, 1.0F});
        D3D11MeshSink sink(mesh, visible);
        draw(sink);
        std::vector<float> values(static_cast<size_t>(kWidth * kHeight));
        std::vector<int> hits(values.size());
        Sample(mesh, visible, values, hits);
        for (int32_t y = visible.top; y < visible.bottom; ++y) {
            for (int32_t x = visible.left; x < visible.right; ++x) {
                const auto at = static_cast<size_t>(y * kWidth + x);
                ASSERT_LE(hits[at], 1) << round << " at " << x << " " << y;
                // Edges on eighths of a pixel on one side, ramps on the other.
                ASSERT_NEAR(values[at], rows.grid.At(x, y) / 255.0, 0.08) << round << " at " << x << " " << y;
            }
        }
        for (size_t q = 0; q < mesh.QuadCount(); ++q) {
            const D3D11Vertex* v = mesh.Data() + q * D3D11Mesh::kQuadVertices;
            bands += v[0].x != v[2].x ? 1 : 0;
            ASSERT_FLOAT_EQ(v[0].color[0], v[0].color[3] * 0.25F);
        }
    }
    EXPECT_GT(bands, 100U);
}
