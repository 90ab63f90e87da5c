// SPDX-License-Identifier: MIT
// What a rasterizer gives, as a grid of shape bytes.
#pragma once

#include <gtest/gtest.h>

#include <climits>
#include <span>
#include <utility>
#include <vector>

#include "Scan/RasterizationSink.h"

namespace Graphics {

struct Grid {
    IntRect area;
    std::vector<int> value;
    explicit Grid(const IntRect& r) : area(r), value(static_cast<size_t>((r.right - r.left) * (r.bottom - r.top))) {}
    int& At(int x, int y) {
        return value[static_cast<size_t>((y - area.top) * (area.right - area.left) + x - area.left)];
    }
    [[nodiscard]] bool Has(int x, int y) const {
        return x >= area.left && x < area.right && y >= area.top && y < area.bottom;
    }
};

/// Writes rows into a grid and checks what every row promises; rectangles and, if it takes them, bands are kept.
class GridSink : public RasterizationSink {
public:
    explicit GridSink(const IntRect& visible, bool takeBands = false) : grid(visible), m_takeBands(takeBands) {}

    void Row(int32_t y, std::span<CoverageRun> runs) override {
        EXPECT_GT(y, lastRow);
        lastRow = y;
        int32_t x = grid.area.left;
        ASSERT_TRUE(y >= grid.area.top && y < grid.area.bottom);
        for (const CoverageRun& run : runs) {
            ASSERT_TRUE(x <= run.x0 && run.x0 < run.x1 && run.x1 <= grid.area.right);
            EXPECT_TRUE(run.shape != nullptr || run.value != 0);
            for (x = run.x0; x < run.x1; ++x) {
                int& at = grid.At(x, y);
                const int value = run.shape != nullptr ? run.shape[x - run.x0] : run.value;
                ASSERT_TRUE(at == 0 || value == 0) << "twice at " << x << ", " << y;
                at = value;
            }
        }
    }
    void Rectangle(int32_t left, int32_t top, int32_t right, int32_t bottom) override {
        rectangles.push_back({left, top, right, bottom});
    }
    bool Begin(int32_t first, int32_t last) override {
        ++begins;
        subs = {first, last};
        return m_takeBands;
    }
    void TrapezoidBand(const Trapezoid& band) override { bands.push_back(band); }
    [[nodiscard]] bool TakesAnyCuts(const IntRect&) const override { return anyCuts; }

    Grid grid;
    std::vector<IntRect> rectangles;
    std::vector<Trapezoid> bands;
    int32_t lastRow = INT32_MIN;
    std::pair<int32_t, int32_t> subs{};
    int begins = 0;
    bool anyCuts = false; ///< else rows come as the band scanner cuts them

private:
    bool m_takeBands;
};

/// Lets the rasterizer paint its rows; rows that are sent nevertheless are in the grid.
class PaintedSink final : public GridSink {
public:
    /// Right of each row are kGuard pixels, which must not change.
    PaintedSink(const IntRect& visible, uint32_t color)
        : GridSink(visible), pixels((static_cast<size_t>(visible.right - visible.left) + kGuard) *
                                    static_cast<size_t>(visible.bottom - visible.top)),
          m_color(color) {}

    [[nodiscard]] bool IsOneColor(const IntRect& r, SolidRows& rows) const override {
        rows = {const_cast<uint32_t*>(&pixels[IndexOf(r.left, r.top)]), Stride() * 4, ahead, m_color};
        return true;
    }
    [[nodiscard]] size_t IndexOf(int32_t x, int32_t y) const {
        return static_cast<size_t>((y - grid.area.top) * Stride() + x - grid.area.left);
    }

    static constexpr size_t kGuard = 9;
    std::vector<uint32_t> pixels;
    ptrdiff_t ahead = 0;

private:
    [[nodiscard]] ptrdiff_t Stride() const { return grid.area.right - grid.area.left + static_cast<ptrdiff_t>(kGuard); }

    uint32_t m_color;
};

} // namespace Graphics
