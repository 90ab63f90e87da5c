// SPDX-License-Identifier: MIT
// Groups inside groups: any depth in loops and in memory for what is drawn, nothing kept for good, and work for the
// pixels that are reached alone. Work is counted in allocations, bytes and the pixels that kernels are given.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "Bitmaps/Bitmap.h"
#include "Coverage/SpareBlock.h"
#include "Kernels/RowKernels.h"
#include "Paint/Brush.h"
#include "ProcessHeap.h"
#include "RefusingNew.h"
#include "Target/RenderTarget.h"

namespace Graphics {
namespace {

constexpr int64_t kMiB = int64_t{1} << 20;
/// What a target may keep beside its pixels and its open groups.
constexpr int64_t kKept = 2 * kMiB;

int64_t Held() { return ProcessHeap::AlignedHeld().bytes; }
int64_t Allocations() { return RefusingNew::Count() + ProcessHeap::FailAfter(-1); }

struct Canvas {
    explicit Canvas(uint32_t width, uint32_t height)
        : bitmap(Bitmap::Create({width, height, GXPixelFormatPBGRA32, 96, 96})) {
        bitmap->ColorFill(nullptr, {0, 0, 0, 0});
        target = RenderTarget::ForBitmap(bitmap);
        target->BeginPaint();
        SpareBlock::Drop(); // what other targets left
    }
    [[nodiscard]] RenderTarget& Calls() const { return *target; }
    void Fill(const Rect& r, const Color& color) const {
        const BasicFigure figure(BasicFigure::Kind::Rectangle, r);
        Calls().Fill(figure, SolidBrush(color));
    }
    void Open(int kind) const { // 0 to 3
        Calls().BeginLayer({{0, 0, 0, 0}, 1.0F, static_cast<uint8_t>(kind & 1), static_cast<uint8_t>(kind >> 1)});
    }
    [[nodiscard]] std::vector<uint32_t> Pixels() const {
        const Size size = bitmap->GetSize();
        std::vector<uint32_t> pixels(static_cast<size_t>(size.width) * size.height);
        bitmap->CopyToMemory(nullptr, {pixels.data(), size.width * 4, size.width * 4});
        return pixels;
    }

    std::shared_ptr<Bitmap> bitmap;
    std::shared_ptr<RenderTarget> target;
};

constexpr Color kGreen{0, 1, 0, 1};

TEST(LayerDepth, AHundredThousandGroupsOpenDrawAndCloseInLoops) {
    constexpr int kDepth = 100000;
    for (int kind = 0; kind < 5; ++kind) { // the last one mixes them
        SCOPED_TRACE(kind);
        Canvas plain(16, 16);
        plain.Fill({3, 2, 9, 12}, kGreen);
        Canvas deep(16, 16);
        const int64_t held = Held();
        const int64_t before = Allocations();
        for (int i = 0; i < kDepth; ++i) {
            deep.Open(kind < 4 ? kind : i % 4);
        }
        EXPECT_LT(Held() - held, kMiB) << "groups without anything have no planes";
        deep.Fill({3, 2, 9, 12}, kGreen);
        for (int i = 0; i < kDepth; ++i) {
            deep.Calls().EndLayer();
            if (i % 1000 == 0) {
                ASSERT_LT(Held() - held, kMiB) << "a group's planes go to the one around it";
            }
        }
        EXPECT_LT(Allocations() - before, 3 * kDepth);
        EXPECT_EQ(deep.Pixels(), plain.Pixels());
    }
}

TEST(LayerDepth, GroupsLeftOpenEndWithThePage) {
    Canvas deep(16, 16);
    for (int i = 0; i < 50000; ++i) {
        deep.Open(0);
    }
    deep.Fill({0, 0, 16, 16}, kGreen);
    deep.target->EndPaint();
    EXPECT_EQ(deep.Pixels(), std::vector<uint32_t>(256, 0xFF00FF00U));
}

// Each of the rectangles makes the touched box larger. Groups around a knockout group show what they found themselves,
// so none of them needs planes for it.
TEST(LayerDepth, GrowingBoxesDoNotReachThroughKnockoutGroups) {
    constexpr int kDepth = 6000;
    constexpr int kColumns = 64;
    Canvas canvas(kColumns, 4);
    canvas.Fill({0, 0, 40, 4}, {1, 0, 0, 1});
    const int64_t held = Held();
    for (int i = 0; i < kDepth; ++i) {
        canvas.Open(2);
    }
    for (int x = 0; x < kColumns; ++x) {
        const auto left = static_cast<float>(x);
        canvas.Fill({left, 0, left + 1, 2}, kGreen);
    }
    EXPECT_LT(Held() - held, kColumns * 4 * 6 + 65536 + 1024);
    for (int i = 0; i < kDepth; ++i) {
        canvas.Calls().EndLayer();
    }
    const std::vector<uint32_t> pixels = canvas.Pixels();
    EXPECT_EQ(pixels[5], 0xFF00FF00U);
    EXPECT_EQ(pixels[2 * kColumns + 5], 0xFFFF0000U);
    EXPECT_EQ(pixels[3 * kColumns + 50], 0U);
}

// Groups with something in each: what the innermost one draws shows through all, and every box grows with it.
TEST(LayerDepth, GrowingBoxesReachThroughGroupsThatWereDrawnInto) {
    constexpr int kDepth = 500;
    Canvas canvas(96, 8);
    for (int i = 0; i < kDepth; ++i) {
        canvas.Open(0);
        canvas.Fill({40, 3, 44, 5}, {0, 0, 1, 1});
    }
    for (int step = 0; step < 48; ++step) {
        const auto reach = static_cast<float>(step);
        canvas.Fill({40 - reach, 0, 41 - reach, 8}, kGreen);
        canvas.Fill({47 + reach, 0, 48 + reach, 8}, kGreen);
    }
    for (int i = 0; i < kDepth; ++i) {
        canvas.Calls().EndLayer();
    }
    const std::vector<uint32_t> pixels = canvas.Pixels();
    for (int x = 0; x < 96; ++x) {
        const bool drawn = x <= 40 ? x > 40 - 48 : x >= 47 && x < 47 + 48;
        const uint32_t inside = x >= 41 && x < 44 ? 0xFF0000FFU : 0U;
        EXPECT_EQ(pixels[3 * 96 + static_cast<size_t>(x)], drawn ? 0xFF00FF00U : inside) << x;
        EXPECT_EQ(pixels[static_cast<size_t>(x)], drawn ? 0xFF00FF00U : 0U) << x;
    }
}

TEST(LayerMemory, DeepNestingLeavesNothingBehind) {
    for (const uint32_t size : {16U, 512U}) {
        SCOPED_TRACE(size);
        const int depth = size == 16 ? 50000 : 300;
        Canvas canvas(size, size);
        const int64_t live = RefusingNew::Live();
        const int64_t held = Held();
        const auto edge = static_cast<float>(size);
        for (int i = 0; i < depth; ++i) {
            canvas.Open(0);
            canvas.Fill({0, 0, 4, 4}, kGreen);
            if (size != 16) {
                canvas.Fill({0, 0, edge, edge}, kGreen);
            }
        }
        for (int i = 0; i < depth; ++i) {
            canvas.Calls().EndLayer();
        }
        EXPECT_LT(Held() - held, kKept + size * size * 12) << "two groups' planes wait for the next";
        EXPECT_LT(RefusingNew::Live() - live, 300);
        canvas.target->EndPaint();
        EXPECT_LT(Held() - held, kKept);
        EXPECT_LT(RefusingNew::Live() - live, 300);
        // Later groups cost what they would cost in a new target.
        canvas.target->BeginPaint();
        const auto page = [&] {
            for (int i = 0; i < 20; ++i) {
                canvas.Open(0);
                canvas.Open(1);
                canvas.Fill({1, 1, 3, 3}, kGreen);
                canvas.Calls().EndLayer();
                canvas.Calls().EndLayer();
            }
        };
        page();
        const int64_t before = Allocations();
        page();
        EXPECT_EQ(Allocations() - before, 0);
    }
}

TEST(LayerMemory, GroupsOfAllSizesHoldNoMoreThanWereOpenAtOnce) {
    Canvas canvas(1500, 1500);
    const int64_t held = Held();
    int64_t most = 0;
    for (int round = 0; round < 60; ++round) {
        const auto edge = static_cast<float>(100 + round * 677 % 1400);
        canvas.Calls().BeginLayer({{0, 0, edge, edge}, 1.0F, 1, 0});
        canvas.Fill({0, 0, 1500, 1500}, kGreen);
        most = std::max(most, static_cast<int64_t>(edge * edge) * 6);
        ASSERT_LT(Held() - held, most + kKept) << edge;
        canvas.Calls().EndLayer();
        ASSERT_LT(Held() - held, most + kKept) << edge;
    }
    canvas.target->EndPaint();
    EXPECT_LT(Held() - held, kKept + static_cast<int64_t>(SpareBlock::kMostBytes));
    SpareBlock::Drop();
    EXPECT_LT(Held() - held, kKept);
}

TEST(LayerMemory, OneLargeBlockWaitsForAllTargets) {
    constexpr uint32_t kSide = 700;
    constexpr int64_t kPlanes = int64_t{kSide} * kSide * 6;
    std::vector<Canvas> canvases;
    for (int i = 0; i < 20; ++i) {
        canvases.emplace_back(kSide, kSide);
    }
    const auto page = [](const Canvas& canvas, float edge) {
        canvas.Open(1);
        canvas.Open(1);
        canvas.Fill({0, 0, edge, edge}, kGreen);
        canvas.Calls().EndLayer();
        canvas.Calls().EndLayer();
        canvas.target->EndPaint();
    };
    const int64_t before = ProcessHeap::AlignedHeld().systemBytes;
    for (const Canvas& canvas : canvases) {
        page(canvas, kSide);
        EXPECT_EQ(ProcessHeap::AlignedHeld().systemBytes - before, kPlanes) << "of two groups' planes one block waits";
    }
    // It is painted with again, by whichever target asks first.
    canvases[3].target->BeginPaint();
    canvases[3].Open(1);
    canvases[3].Fill({0, 0, kSide, kSide}, kGreen);
    EXPECT_EQ(ProcessHeap::AlignedHeld().systemBytes - before, kPlanes);
    canvases[3].target->EndPaint();
    EXPECT_EQ(canvases[3].Pixels(), std::vector<uint32_t>(size_t{kSide} * kSide, 0xFF00FF00U));
    // What is larger than the bound goes at once.
    Canvas large(1800, 1800);
    page(large, 1800);
    EXPECT_EQ(ProcessHeap::AlignedHeld().systemBytes - before, 1800 * 1800 * 4);
}

/// Counts the pixels that some kernels are given while it lives.
class CountedKernels {
public:
    CountedKernels() : m_best(ActiveKernels()), m_table(m_best) {
        s_best = &m_best;
        s_groupResult = s_setOpaque = 0;
        m_table.groupResult = [](uint32_t* color, const uint8_t* alpha, const uint8_t* shape, const uint32_t* backdrop,
                                 size_t count) {
            s_groupResult += count;
            s_best->groupResult(color, alpha, shape, backdrop, count);
        };
        m_table.setOpaque = [](uint32_t* dst, const uint8_t* shape, size_t count) {
            s_setOpaque += count;
            s_best->setOpaque(dst, shape, count);
        };
        KernelTable<RowKernels>::Select(&m_table);
    }
    CountedKernels(const CountedKernels&) = delete;
    CountedKernels& operator=(const CountedKernels&) = delete;
    ~CountedKernels() { KernelTable<RowKernels>::Select(nullptr); }

    static inline size_t s_groupResult = 0;
    static inline size_t s_setOpaque = 0;

private:
    static inline const RowKernels* s_best = nullptr;
    const RowKernels m_best;
    RowKernels m_table;
};

TEST(LayerWork, ALineInvertedInAGroupReachesItsPixels) {
    Canvas canvas(1000, 1000);
    const CountedKernels counted;
    canvas.Open(0);
    canvas.Calls().InvertLine({500.5F, 500.5F}, {510.5F, 503.5F});
    canvas.Calls().EndLayer();
    EXPECT_GT(CountedKernels::s_groupResult, 0U);
    EXPECT_LT(CountedKernels::s_groupResult, 150U);
}

TEST(OpaqueTarget, FourthBytesAreTouchedWhereSomethingIsDrawn) {
    for (const uint32_t size : {16U, 1024U}) {
        const auto bitmap = Bitmap::Create({size, size, GXPixelFormatBGRX32, 96, 96});
        const auto target = RenderTarget::ForBitmap(bitmap);
        const CountedKernels counted;
        target->BeginPaint();
        EXPECT_EQ(CountedKernels::s_setOpaque, 0U) << "an empty bracket costs nothing for its pixels";
        const BasicFigure figure(BasicFigure::Kind::Rectangle, {2, 2, 12, 12});
        const SolidBrush half({1, 0, 0, 0.5F});
        target->Fill(figure, half);
        EXPECT_EQ(CountedKernels::s_setOpaque, 100U);
        // Once they are known to be 255, drawing costs what it costs on any target.
        target->Clear(0xFFFFFFFFU);
        for (int i = 0; i < 10; ++i) {
            target->Fill(figure, half);
        }
        EXPECT_EQ(CountedKernels::s_setOpaque, 100U);
        target->EndPaint();
        EXPECT_EQ(CountedKernels::s_setOpaque, 100U);
    }
}

} // namespace
} // namespace Graphics
