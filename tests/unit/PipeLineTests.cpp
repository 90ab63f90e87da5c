// SPDX-License-Identifier: MIT
// The pipeline takes rows of any extent and paints its own bounds only: a scanner need not know them. Runs that are
// computed together, or written straight to the target, are what they are one by one.
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

/// Another colour in every pixel, all of them opaque, or all but one in sixteen.
class Speckled final : public SwColorSource {
public:
    explicit Speckled(bool opaque) : m_opaque(opaque) {}

    [[nodiscard]] bool JoinsRuns() const noexcept override { return true; }
    [[nodiscard]] bool IsOpaque() const noexcept override { return m_opaque; }
    void Fill(int32_t x0, int32_t x1, int32_t y, uint32_t* out) override {
        for (int32_t x = x0; x < x1; ++x) {
            const auto hash = static_cast<uint32_t>(x * 2654435 + y * 40503) * 2654435761U;
            *out++ = !m_opaque && hash >> 28 == 0 ? 0x40102030U : 0xFF000000U | hash >> 8;
        }
    }

private:
    bool m_opaque;
};

TEST(PipeLine, JoinedRunsAreWhatTheyAreOneByOne) {
    constexpr int32_t kWidth = 160;
    std::mt19937 random(2);
    for (int round = 0; round < 4000; ++round) {
        // A row of a rectangle off whole pixels, mostly: blocks with the sides, and what is between.
        uint8_t coverage[kWidth];
        const int kind = static_cast<int>(random() % 4);
        for (uint8_t& shape : coverage) {
            const uint8_t values[] = {0, 255, static_cast<uint8_t>(random()), static_cast<uint8_t>(random() % 3)};
            shape = random() % 8 > static_cast<uint32_t>(kind) ? 255 : values[random() % 4];
        }
        std::vector<CoverageRun> runs;
        for (int32_t x = static_cast<int32_t>(random() % 9); x < kWidth - 30;) {
            const bool whole = runs.size() % 2 != 0;
            const int32_t width = static_cast<int32_t>(whole ? 70 + random() % 40 : 1 + random() % 12);
            const auto value = static_cast<uint8_t>(random() % 4 != 0 ? 255 : random());
            const int32_t end = std::min(kWidth, x + width);
            runs.push_back({x, end, whole || random() % 4 == 0 ? nullptr : coverage + x, value});
            x = end;
        }
        std::vector<uint32_t> backdrop(kWidth);
        for (uint32_t& pixel : backdrop) {
            const auto alpha = static_cast<uint32_t>(random() % 3 == 0 ? 0 : random() % 3 == 0 ? 255 : random() % 256);
            pixel = alpha * 0x01010101U & (random() | 0xFF000000U);
        }
        const bool makesOpaque = random() % 2 != 0;
        Speckled source(random() % 4 != 0);
        const auto draw = [&](bool together) {
            std::vector<uint32_t> pixels = backdrop;
            SwTargetPlanes planes;
            planes.color = reinterpret_cast<uint8_t*>(pixels.data());
            planes.colorStride = kWidth * 4;
            planes.makesOpaque = makesOpaque;
            SwRowBuffers buffers;
            SwPipeLine pipeLine(ActiveKernels(), buffers, planes, {0, 0, kWidth, 1});
            pipeLine.SetColorSource(source);
            std::vector<CoverageRun> row = runs;
            if (together) {
                pipeLine.Row(0, row);
            } else {
                for (CoverageRun& run : row) {
                    pipeLine.Row(0, {&run, 1});
                }
            }
            return pixels;
        };
        ASSERT_EQ(draw(true), draw(false)) << "round " << round << " kind " << kind << " opaque " << makesOpaque;
    }
}

} // namespace
} // namespace Graphics
