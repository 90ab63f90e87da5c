// SPDX-License-Identifier: MIT
// What drawing keeps beside pixels: bytes of large paths and of images drawn much smaller, counted by the heap.
#include <gtest/gtest.h>

#include <cmath>

#include "Bitmaps/Bitmap.h"
#include "Coverage/SpareBlock.h"
#include "Geometry/Geometry.h"
#include "Paint/Brush.h"
#include "ProcessHeap.h"
#include "Target/RenderTarget.h"

namespace Graphics {
namespace {

constexpr int64_t kMiB = int64_t{1} << 20;

int64_t Held() { return ProcessHeap::AlignedHeld().bytes; }

struct Canvas {
    Canvas() : bitmap(Bitmap::Create({600, 600, GXPixelFormatPBGRA32, 96, 96})) {
        target = RenderTarget::ForBitmap(bitmap);
        target->BeginPaint();
        SpareBlock::Drop();
    }
    [[nodiscard]] RenderTarget& Calls() const { return *target; }

    std::shared_ptr<Bitmap> bitmap;
    std::shared_ptr<RenderTarget> target;
};

/// Zigzags of short sides around one another: as many figures cover a sub-scanline as `turns` says.
Shape Zigzags(size_t sides, size_t turns) {
    Geometry geometry;
    geometry.SetFillRule(GXFillRuleNonZero);
    const size_t each = sides / turns;
    for (size_t t = 0; t < turns; ++t) {
        const float left = 20 + static_cast<float>(t) * 0.5F;
        const auto at = [&](size_t i) {
            const float down = static_cast<float>(i) * 500.0F / static_cast<float>(each);
            return Point{left + (i % 2 == 0 ? 0.0F : 3.0F), 20 + down};
        };
        geometry.BeginFigure(at(0));
        for (size_t i = 1; i < each; ++i) {
            geometry.LineTo(at(i));
        }
        geometry.EndFigureClose();
    }
    return geometry;
}

TEST(TargetMemory, EdgesOfALargePathGoWithTheBracket) {
    constexpr int64_t kSides = 200000;
    for (const size_t turns : {size_t{1}, size_t{400}}) { // few edges meet a sub-scanline, or more than bands can hold
        SCOPED_TRACE(turns);
        const auto shape = Zigzags(kSides, turns);
        Canvas canvas;
        const SolidBrush brush({0, 0, 0.5F, 1});
        const int64_t before = Held();
        canvas.Calls().Fill(shape, brush);
        // A vertex has 8 bytes, its array room for half as many again, an edge 32.
        EXPECT_LT(Held() - before, kSides * (12 + 32) + kMiB);
        canvas.Calls().Stroke(shape, brush, 0.5F, {});
        canvas.Calls().Clip(shape);
        canvas.Calls().Fill(shape, brush);
        canvas.target->EndPaint();
        EXPECT_LT(Held() - before, 2 * kMiB);
    }
}

TEST(TargetMemory, AnImageDrawnSmallerKeepsItsReductionAlone) {
    for (const uint32_t halvings : {1U, 2U, 3U, 4U, 5U}) {
        constexpr uint32_t kSide = 2048;
        const auto image = Bitmap::Create({kSide, kSide, GXPixelFormatBGRA32, 96, 96});
        image->ColorFill(nullptr, {0.5F, 0.5F, 0.5F, 0.5F});
        Canvas canvas;
        const int64_t before = Held();
        const auto side = static_cast<float>(kSide >> halvings);
        canvas.Calls().DrawBitmap(*image, {0, 0, kSide, kSide}, {0, 0, side - 1, side - 1}, 1.0F,
                                  GXInterpolationAverage);
        const int64_t reduced = (int64_t{kSide} >> (halvings - 1)) * (kSide >> (halvings - 1)) * 4;
        EXPECT_LT(Held() - before, reduced + kMiB) << halvings;
    }
}

} // namespace
} // namespace Graphics
