// SPDX-License-Identifier: MIT
// Gradients of triangles: which pixels a triangle owns, the colours between its corners, and any numbers in them.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "KernelSets.h"
#include "Kernels/PaintKernels.h"
#include "Paint/Brush.h"
#include "Paint/Gradient.h"
#include "PaintSupport.h"

namespace {

using namespace Graphics;
using namespace PaintSupport;

// A jittered grid covers its square exactly: every centre inside is painted, none outside, and no centre by two
// triangles, which would show as a difference between painting forwards and backwards.
TEST(MeshSource, SharedEdgesLeaveNoGapAndLaterTrianglesDoNotSpill) {
    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE(round);
        const auto g = std::make_shared<TriMeshGradient>();
        constexpr int kCells = 4; // a jittered grid over [0, 64]: two triangles a cell
        float gx[kCells + 1][kCells + 1];
        float gy[kCells + 1][kCells + 1];
        for (int j = 0; j <= kCells; ++j) {
            for (int i = 0; i <= kCells; ++i) {
                const bool inner = i > 0 && j > 0 && i < kCells && j < kCells;
                const float jitter = round % 4 == 0 ? 0.5F : 5.0F;
                gx[j][i] = static_cast<float>(i * 16) + (inner ? std::round(Uniform(-jitter, jitter) * 4) / 4 : 0);
                gy[j][i] = static_cast<float>(j * 16) + (inner ? Uniform(-jitter, jitter) : 0);
            }
        }
        uint32_t id = 0;
        std::vector<std::vector<GXTriMeshVertex>> triangles;
        for (int j = 0; j < kCells; ++j) {
            for (int i = 0; i < kCells; ++i) {
                const auto vertex = [&](int dj, int di) {
                    return GXTriMeshVertex{gx[j + dj][i + di], gy[j + dj][i + di], 0};
                };
                triangles.push_back({vertex(0, 0), vertex(0, 1), vertex(1, 1)});
                triangles.push_back({vertex(1, 1), vertex(1, 0), vertex(0, 0)});
            }
        }
        for (auto& t : triangles) {
            ++id;
            for (auto& v : t) {
                v.color = 0xFF000000U | id;
            }
        }
        // Painted forwards and backwards: a pixel in two triangles would show the last one painted, so the images
        // differ.
        std::vector<std::vector<uint32_t>> images;
        for (int pass = 0; pass < 2; ++pass) {
            g->vertices.clear();
            for (const auto& t : triangles) {
                g->vertices.insert(pass == 0 ? g->vertices.end() : g->vertices.begin(), t.begin(), t.end());
            }
            g->vertices.push_back({-1000, -1000, 0xFFFFFFFFU}); // incomplete
            Arena arena;
            GradientBrush brush(g);
            SwColorSource* source =
                SwColorSource::Create(arena, InkOf(brush), {-4, -4, 70, 70}, {1, 0, 0, 1, 0.0F, 0.0F});
            std::vector<uint32_t> image;
            for (int32_t y = -6; y < 72; ++y) {
                const std::vector<uint32_t> row = Row(*source, -6, 72, y);
                if (y >= -4 && y < 70) {
                    EXPECT_EQ(0, std::memcmp(source->DirectRow(-4, 70, y), row.data() + 2, 74 * 4));
                }
                for (int32_t x = -6; x < 72; ++x) {
                    const bool inside = x >= 0 && y >= 0 && x < 64 && y < 64;
                    ASSERT_EQ(row[static_cast<size_t>(x + 6)] != 0, inside) << x << ", " << y;
                }
                image.insert(image.end(), row.begin(), row.end());
            }
            images.push_back(std::move(image));
        }
        EXPECT_EQ(images[0], images[1]);
    }
}

TEST(MeshSource, InterpolatesStraightColoursAndPremultiplies) {
    const auto g = std::make_shared<TriMeshGradient>();
    g->background = UnpackColor(0x80FF0000U);
    const uint32_t colors[3] = {0xFF000000U, 0x40FF8020U, 0x00FFFFFFU};
    g->vertices = {{0, 0, colors[0]}, {40, 0, colors[1]}, {0, 40, colors[2]}};
    GradientBrush brush(g);
    brush.opacity = 0.5F;
    Arena arena;
    SwColorSource* source = SwColorSource::Create(arena, InkOf(brush), {0, 0, 50, 50}, kIdentity);
    for (int32_t y = 0; y < 50; ++y) {
        const std::vector<uint32_t> row = Row(*source, 0, 50, y);
        for (int32_t x = 0; x < 50; ++x) {
            const uint32_t c = row[static_cast<size_t>(x)];
            if (x + y >= 39) { // on the slanted edge: what lies to its right does not count
                ASSERT_EQ(c, 0U) << "the background is the host's to paint";
                continue;
            }
            const double wx = (x + 0.5) / 40, wy = (y + 0.5) / 40;
            const uint32_t straight = PerChannel([&](int i) {
                return static_cast<uint32_t>(Channel(colors[0], i) * (1 - wx - wy) + Channel(colors[1], i) * wx +
                                             Channel(colors[2], i) * wy + 0.5);
            });
            const uint32_t expected = PlainScale(PlainPremultiply(straight), 128);
            for (int i = 0; i < 4; ++i) {
                ASSERT_NEAR(Channel(c, i), Channel(expected, i), 1) << x << ", " << y;
            }
        }
    }
}

// A mesh that needs many bands is, row by row, what it is in a source of that row alone, in any order of rows; and it
// takes no memory for all its pixels.
TEST(MeshSource, BandsShowWhatTheWholeMeshShows) {
    constexpr int32_t kWidth = 1200;
    constexpr int32_t kHeight = 1500;
    const auto g = std::make_shared<TriMeshGradient>();
    for (int i = 0; i < 400; ++i) {
        const float x = Uniform(-50, kWidth), y = Uniform(-50, kHeight);
        const float reach = i % 50 == 0 ? 900.0F : 90.0F;
        for (int k = 0; k < 3; ++k) {
            g->vertices.push_back({x + Uniform(-reach, reach), y + Uniform(-reach, reach), RandomColor()});
        }
    }
    GradientBrush brush(g);
    brush.opacity = 0.7F;
    const int64_t held = ProcessHeap::AlignedHeld().bytes;
    Arena arena;
    SwColorSource* source = SwColorSource::Create(arena, InkOf(brush), {0, 0, kWidth, kHeight}, kIdentity);
    EXPECT_LT(ProcessHeap::AlignedHeld().bytes - held, 1 << 20);
    size_t painted = 0;
    for (const int32_t y : {0, 1, 53, 54, 55, 700, 200, 1499, 1498, 1000, 54}) {
        Arena other;
        SwColorSource* alone = SwColorSource::Create(
            other, InkOf(brush), {0, static_cast<float>(y), kWidth, static_cast<float>(y + 1)}, kIdentity);
        const std::vector<uint32_t> row = Row(*source, 0, kWidth, y);
        ASSERT_EQ(row, Row(*alone, 0, kWidth, y)) << y;
        EXPECT_EQ(0, std::memcmp(source->DirectRow(0, kWidth, y), row.data(), kWidth * 4));
        painted += static_cast<size_t>(kWidth - std::count(row.begin(), row.end(), 0U));
    }
    EXPECT_GT(painted, 2000U);
}

TEST(MeshPlane, EqualsItsFormulaInEverySet) {
    for (int round = 0; round < 3000; ++round) {
        const auto kernels = KernelSetOfRound<PaintKernels>(round);
        const float odd[] = {0, -1e9F, 3e38F, kInf, -kInf, kNaN, 254.5F, 0.5F, 255.5F};
        const auto pick = [&](float low, float high) {
            return g_random() % 8 == 0 ? odd[g_random() % 9] : Uniform(low, high);
        };
        float start[4];
        float step[4];
        for (int i = 0; i < 4; ++i) {
            start[i] = pick(-20, 280);
            step[i] = g_random() % 4 == 0 ? std::round(pick(-9, 9)) / 2 : pick(-9, 9);
        }
        std::vector<uint32_t> out(g_random() % 40 + 1, 7);
        kernels->plane(start, step, out.size() - 1, out.data());
        EXPECT_EQ(out.back(), 7U);
        for (size_t k = 0; k + 1 < out.size(); ++k) {
            ASSERT_EQ(out[k], PerChannel([&](int i) {
                          const float v = start[i] + step[i] * static_cast<float>(k);
                          return v > 0.0F ? static_cast<uint32_t>(std::min(v, 255.0F) + 0.5F) : 0U;
                      }))
                << kernels.name << " pixel " << k;
        }
    }
}

TEST(MeshSource, BearsAnyVertex) {
    const float odd[] = {0, 10, 25.5F, -1e9F, 1e9F, 3e38F, -3e38F, kInf, -kInf, kNaN, 1e-40F};
    for (int round = 0; round < 500; ++round) {
        const auto g = std::make_shared<TriMeshGradient>();
        for (int i = 0; i < 9; ++i) {
            g->vertices.push_back({odd[g_random() % 11], odd[g_random() % 11], RandomColor()});
        }
        GradientBrush brush(g);
        brush.opacity = odd[g_random() % 11];
        Arena arena;
        SwColorSource* source = SwColorSource::Create(arena, InkOf(brush), {0, 0, 30, 30}, kIdentity);
        for (const uint32_t c : Row(*source, 0, 30, static_cast<int32_t>(g_random() % 30))) {
            for (int i = 0; i < 3; ++i) {
                ASSERT_LE(Channel(c, i), c >> 24);
            }
        }
    }
    Arena arena;
    const auto g = std::make_shared<TriMeshGradient>();
    g->vertices.resize(3);
    for (const Rect& r : {Rect{kNaN, 0, 10, 10}, Rect{5, 5, 5, 5}, Rect{0, 0, kNaN, kNaN}}) {
        EXPECT_EQ(Row(*SwColorSource::Create(arena, InkOf(GradientBrush(g)), r, kIdentity), 0, 3, 0),
                  std::vector<uint32_t>(3, 0));
    }
}

} // namespace
