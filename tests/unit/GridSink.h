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

} // namespace Graphics
