// SPDX-License-Identifier: MIT
// What clips keep: the pixels that they cover in part, shared where one is a part of another, and little after them.
#include <gtest/gtest.h>

#include "Bitmaps/Bitmap.h"
#include "Geometry/Geometry.h"
#include "Paint/Brush.h"
#include "ProcessHeap.h"
#include "RefusingNew.h"
#include "Target/RenderTarget.h"

namespace Graphics {
namespace {

constexpr int64_t kMiB = int64_t{1} << 20;

int64_t Held() { return ProcessHeap::AlignedHeld().bytes; }

class ClipMemory : public testing::Test {
protected:
    ClipMemory() {
        m_target = RenderTarget::ForBitmap(m_bitmap);
        m_target->BeginPaint();
        // What rasterizing takes is there, and all that is kept of clips that were small.
        m_target->PushState();
        Clip(BasicFigure::Kind::Ellipse, {0, 0, 1000, 1000});
        m_target->PopState();
        m_held = Held();
        m_live = RefusingNew::Live();
    }
    void Clip(BasicFigure::Kind kind, const Rect& r) const {
        const BasicFigure figure(kind, r);
        m_target->Clip(figure);
    }
    void Pop(int count) const {
        for (int i = 0; i < count; ++i) {
            m_target->PopState();
        }
    }
    void ExpectLittleIsKept() const {
        EXPECT_LT(Held() - m_held, kMiB);
        EXPECT_LT(RefusingNew::Live() - m_live, 200);
    }
    [[nodiscard]] RenderTarget& Calls() const { return *m_target; }

    std::shared_ptr<Bitmap> m_bitmap = Bitmap::Create({1000, 1000, GXPixelFormatPBGRA32, 96, 96});
    std::shared_ptr<RenderTarget> m_target;
    int64_t m_held = 0;
    int64_t m_live = 0;
};

TEST_F(ClipMemory, AThousandNestedEllipsesKeepTheirEdges) {
    constexpr int kDepth = 1000;
    for (int i = 0; i < kDepth; ++i) {
        Calls().PushState();
        const float inset = static_cast<float>(i) * 0.07F;
        Clip(BasicFigure::Kind::Ellipse, {inset, inset, 1000 - inset, 1000 - inset});
    }
    EXPECT_LT(Held() - m_held, kDepth * 40000); // of a plane of 1,000,000 each
    Pop(kDepth);
    ExpectLittleIsKept();
}

TEST_F(ClipMemory, RectanglesInsideAClipShareItsCoverage) {
    constexpr int kDepth = 10000;
    Clip(BasicFigure::Kind::Ellipse, {0, 0, 1000, 1000});
    const int64_t one = Held() - m_held;
    for (int i = 0; i < kDepth; ++i) {
        Calls().PushState();
        const auto inset = static_cast<float>(i % 400);
        Clip(BasicFigure::Kind::Rectangle, {inset, inset, 1000 - inset, 1000});
    }
    EXPECT_LT(Held() - m_held, one + 65536);
    Pop(kDepth);
    ExpectLittleIsKept();
}

TEST_F(ClipMemory, ManyClipsWithSlantedEdgesGoAgain) {
    constexpr int kDepth = 10000;
    Calls().SetTransform({0.7F, 0.1F, -0.1F, 0.7F, 300, 200});
    for (int i = 0; i < kDepth; ++i) {
        Calls().PushState();
        const float inset = static_cast<float>(i) * 0.001F;
        Clip(BasicFigure::Kind::Rectangle, {inset, inset, 40 - inset, 40 - inset});
    }
    EXPECT_LT(Held() - m_held, kDepth * 3000);
    Pop(kDepth);
    ExpectLittleIsKept();
}

TEST_F(ClipMemory, ASlantedClipOfAPageKeepsItsEdgesAlone) {
    Calls().SetTransform({1, 0.05F, -0.05F, 1, 20, -20});
    Clip(BasicFigure::Kind::Rectangle, {50, 50, 950, 950});
    EXPECT_LT(Held() - m_held, 60000); // of a plane of 1,000,000
}

// Under the same clip again and again, as hosts ask for it that save and restore around every object, and under others
// that are too many to be remembered.
TEST_F(ClipMemory, ClipsThatComeAndGoTakeNothingOnceWarm) {
    const auto page = [&] {
        for (int i = 0; i < 40; ++i) {
            Calls().PushState();
            const float inset = static_cast<float>(i) * 3.1F;
            Clip(BasicFigure::Kind::Ellipse, {inset, inset, 300, 280});
            Calls().PushState();
            Clip(BasicFigure::Kind::Ellipse, {inset + 60, inset, 290, 300});
            Pop(2);
        }
    };
    page();
    page();
    const int64_t before = RefusingNew::Count() + ProcessHeap::FailAfter(-1);
    page();
    EXPECT_EQ(RefusingNew::Count() + ProcessHeap::FailAfter(-1), before);
    m_target->EndPaint();
    ExpectLittleIsKept();
}

} // namespace
} // namespace Graphics
