// SPDX-License-Identifier: MIT
// The pipeline takes rows of any extent and paints its own bounds only: a scanner need not know them.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "Software/SwPipeLine.h"
#include "Sources/SwSolidColorSource.h"

namespace Graphics {
namespace {

TEST(PipeLine, RowsAreCutToTheBounds) {
    constexpr int32_t kWidth = 40, kHeight = 6;
    constexpr IntRect kBounds{7, 2, 31, 5};
    std::mt19937 random(1);
    for (int round = 0; round < 500; ++round) {
        std::vector<uint32_t> pixels(kWidth * kHeight, 0);
        SwTargetPlanes planes;
        planes.color = reinterpret_cast<uint8_t*>(pixels.data());
        planes.colorStride = kWidth * 4;
        SwRowBuffers buffers;
        SwSolidColorSource white(0xFFFFFFFFU);
        std::vector<uint32_t> expected(pixels.size(), 0);
        {
            SwPipeLine pipeLine(ActiveKernels(), buffers, planes, kBounds);
            pipeLine.SetColorSource(white);
            for (int32_t y = 0; y < kHeight; ++y) {
                std::vector<uint8_t> coverage(kWidth);
                std::generate(coverage.begin(), coverage.end(), [&] { return static_cast<uint8_t>(random()); });
                std::vector<CoverageRun> runs;
                for (int32_t x = static_cast<int32_t>(random() % 5); x < kWidth;) {
                    const int32_t end = std::min(kWidth, x + 1 + static_cast<int32_t>(random() % 30));
                    CoverageRun run{x, end, random() % 2 != 0 ? coverage.data() + x : nullptr,
                                    static_cast<uint8_t>(random() % 2 != 0 ? 255 : 100)};
                    for (int32_t i = x; i < end; ++i) {
                        const bool inside =
                            i >= kBounds.left && i < kBounds.right && y >= kBounds.top && y < kBounds.bottom;
                        const uint32_t s = run.shape != nullptr ? coverage[static_cast<size_t>(i)] : run.value;
                        expected[static_cast<size_t>(y * kWidth + i)] = inside ? s * 0x01010101U : 0;
                    }
                    runs.push_back(run);
                    x = end + static_cast<int32_t>(random() % 4);
                }
                pipeLine.Row(y, runs);
            }
        }
        ASSERT_EQ(pixels, expected) << round;
    }
}

} // namespace
} // namespace Graphics
