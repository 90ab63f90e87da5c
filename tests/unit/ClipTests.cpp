// SPDX-License-Identifier: MIT
// What a clip says of its rows: where it ends, and the one stretch of full coverage at which spans are split. Sources
// that step along a span start anew there, so which of several stretches it is decides pixels.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "Coverage/ClipBuilder.h"

namespace Graphics {
namespace {

/// The longest run of 255 between the ends of the row, the first of equals, by looking at every column.
ClipRow Expected(const std::vector<uint8_t>& coverage, int32_t left) {
    const auto size = static_cast<int32_t>(coverage.size());
    ClipRow row{};
    int32_t length = 0;
    for (int32_t x = 0; x < size;) {
        int32_t end = x;
        while (end < size && coverage[static_cast<size_t>(end)] == 255) {
            ++end;
        }
        if (end - x > length) {
            length = end - x;
            row.fullBegin = left + x;
            row.fullEnd = left + end;
        }
        x = end + 1;
    }
    return row;
}

/// The coverage that a masked clip has at a pixel.
uint8_t CoverageAt(const ClipRegion& clip, int32_t x, int32_t y) {
    const ClipRow& row = clip.Row(y);
    if (x < row.begin || x >= row.end) {
        return 0;
    }
    return x >= row.fullBegin && x < row.fullEnd ? 255 : *clip.Partial(row, x);
}

/// Sends a row as the rasterizer does: some runs of one value, some of bytes, gaps where nothing is covered.
ClipRef Build(ClipPool& pool, const ClipRegion* parent, std::vector<uint8_t> coverage, int32_t left, int32_t y,
              std::mt19937& random) {
    const auto size = static_cast<int32_t>(coverage.size());
    std::vector<CoverageRun> runs;
    for (int32_t x = 0; x < size;) {
        const uint8_t value = coverage[static_cast<size_t>(x)];
        int32_t end = x + 1;
        const bool bytes = random() % 2 == 0;
        while (end < size && (bytes ? random() % 8 != 0 : coverage[static_cast<size_t>(end)] == value)) {
            ++end;
        }
        if (bytes || value != 0) {
            CoverageRun run{};
            run.x0 = left + x;
            run.x1 = left + end;
            run.shape = bytes ? coverage.data() + x : nullptr;
            run.value = value;
            runs.push_back(run);
        }
        x = end;
    }
    ClipBuilder builder(pool, parent, {left, y, left + size, y + 1});
    builder.Row(y, runs);
    return builder.Finish();
}

TEST(Clip, OfEqualStretchesOfFullCoverageTheFirstSplitsTheSpans) {
    std::mt19937 random(1);
    ClipPool pool;
    // Two stretches of equal length, as runs of one value and as bytes.
    const std::vector<uint8_t> twins = {9, 255, 255, 255, 7, 255, 255, 255, 9};
    for (int round = 0; round < 8; ++round) {
        const ClipRef clip = Build(pool, nullptr, twins, 3, 5, random);
        ASSERT_TRUE(clip->HasMask());
        ASSERT_EQ(clip->Row(5).fullBegin, 4) << "not the first of the equal stretches";
        ASSERT_EQ(clip->Row(5).fullEnd, 7);
    }
    for (int round = 0; round < 3000; ++round) {
        std::vector<uint8_t> coverage(1 + random() % 40);
        const uint32_t kind = random() % 3;
        for (uint8_t& c : coverage) {
            c = static_cast<uint8_t>(random() % 4 == 0 ? random() % 255 : kind == 0 && random() % 3 == 0 ? 0 : 255);
        }
        coverage.front() = coverage.back() = 128; // so that the row's ends are known
        const ClipRef clip = Build(pool, nullptr, coverage, 2, 1, random);
        const ClipRow expected = Expected(coverage, 2);
        const ClipRow& row = clip->Row(1);
        ASSERT_LE(row.begin, 2) << round;
        ASSERT_GE(row.end, 2 + static_cast<int32_t>(coverage.size())) << round;
        ASSERT_EQ(row.fullEnd - row.fullBegin, expected.fullEnd - expected.fullBegin) << round;
        if (expected.fullEnd > expected.fullBegin) {
            ASSERT_EQ(row.fullBegin, expected.fullBegin)
                << "round " << round << ": not the first of the equal stretches";
        }
        for (size_t i = 0; i < coverage.size(); ++i) {
            ASSERT_EQ(CoverageAt(*clip.get(), 2 + static_cast<int32_t>(i), 1), coverage[i]) << round << " " << i;
        }
        // Inside a clip: the product, and its own longest stretch.
        std::vector<uint8_t> second(coverage.size(), 255);
        for (uint8_t& c : second) {
            c = static_cast<uint8_t>(random() % 6 == 0 ? 1 + random() % 254 : 255);
        }
        const ClipRef inner = Build(pool, clip.get(), second, 2, 1, random);
        std::vector<uint8_t> product(coverage.size());
        for (size_t i = 0; i < product.size(); ++i) {
            const auto x = 2 + static_cast<int32_t>(i);
            product[i] = CoverageAt(*inner.get(), x, 1);
            const int plain = coverage[i] * second[i];
            ASSERT_NEAR(product[i], plain / 255, 1) << round << " " << i;
        }
        const ClipRow best = Expected(product, 2);
        ASSERT_EQ(inner->Row(1).fullEnd - inner->Row(1).fullBegin, best.fullEnd - best.fullBegin) << round;
        if (best.fullEnd > best.fullBegin) {
            ASSERT_EQ(inner->Row(1).fullBegin, best.fullBegin) << round << ": not the first of the equal stretches";
        }
    }
}

TEST(Clip, ARectangleInsideAMaskCutsItsRows) {
    std::mt19937 random(2);
    ClipPool pool;
    const std::vector<uint8_t> coverage = {0, 50, 255, 255, 255, 255, 255, 90, 255, 30};
    const ClipRef parent = Build(pool, nullptr, coverage, 0, 0, random);
    for (int32_t left = 0; left < 10; ++left) {
        for (int32_t right = left + 1; right <= 10; ++right) {
            ClipBuilder builder(pool, parent.get(), {0, 0, 10, 1});
            builder.Rectangle(left, 0, right, 1);
            const ClipRef clip = builder.Finish();
            const ClipRow& row = clip->Row(0);
            SCOPED_TRACE(testing::Message() << left << " to " << right);
            const IntRect box = clip->Box(); // the rows may go beyond it: they are shared with the parent
            ASSERT_TRUE(box.left >= left && box.right <= right);
            ASSERT_LE(row.begin, row.fullBegin);
            ASSERT_LE(row.fullBegin, row.fullEnd);
            ASSERT_LE(row.fullEnd, row.end);
            for (int32_t x = left; x < right; ++x) {
                const bool inside = x >= box.left && x < box.right;
                ASSERT_EQ(inside ? CoverageAt(*clip.get(), x, 0) : 0, coverage[static_cast<size_t>(x)]) << x;
                ASSERT_TRUE(x < row.fullBegin || x >= row.fullEnd || coverage[static_cast<size_t>(x)] == 255) << x;
            }
        }
    }
}

} // namespace
} // namespace Graphics
