// SPDX-License-Identifier: MIT
// Groups inside groups on the card, far deeper than a stack of recursive calls would bear.
#include <windows.h>

#include "HardwareTest.h"

using namespace Graphics;

namespace {

constexpr int32_t kSide = 8;

struct Nest {
    int depth;
    uint8_t knockout;
    uint32_t eachMode; ///< what each group draws before the next one opens; kNothing: nothing
};
constexpr uint32_t kNothing = 0xFFFFFFFFU;

void Draw(RenderTarget& t, const Rect& r, const Color& color, uint32_t mode) {
    const BasicFigure figure(BasicFigure::Kind::Rectangle, r);
    t.SetBlendMode(mode);
    t.Fill(figure, SolidBrush(color));
}

void DrawNest(RenderTarget& t, const Nest& nest) {
    t.Clear(0xFF6080A0U);
    for (int i = 0; i < nest.depth; ++i) {
        t.BeginLayer({{0, 0, 0, 0}, 1.0F, 0, nest.knockout});
        if (nest.eachMode != kNothing) {
            Draw(t, {0, 0, 2, 8}, {0.9F, 0.5F, 0.1F, 1.0F}, nest.eachMode);
        }
    }
    Draw(t, {3, 2, 6, 7}, {0.1F, 0.6F, 0.5F, 1.0F}, GXBlendModeNormal);
    for (int i = 0; i < nest.depth; ++i) {
        t.EndLayer();
    }
}

class DepthTest : public HardwareTest {
protected:
    struct Job {
        Nest nest;
        std::vector<uint32_t> pixels;
    };

    static DWORD WINAPI Run(void* job) {
        auto& j = *static_cast<Job*>(job);
        j.pixels = OnHardware(kSide, kSide, [&](RenderTarget& t) { DrawNest(t, j.nest); });
        return 0;
    }
};

// A quarter of the stack that the main thread of a Windows program has, and no more than 50 bytes of it for a group.
TEST_F(DepthTest, ManyGroupsNeedLittleStack) {
    constexpr int kDepth = 5000;
    constexpr SIZE_T kStack = SIZE_T{256} << 10;
    for (const uint8_t knockout : {uint8_t{0}, uint8_t{1}}) {
        for (const uint32_t eachMode : {kNothing, uint32_t{GXBlendModeNormal}, uint32_t{GXBlendModeHue}}) {
            SCOPED_TRACE(testing::Message() << "knockout " << int{knockout} << ", each group draws in mode "
                                            << static_cast<int32_t>(eachMode));
            // What few groups need of shaders is made here, where there is room for a compiler.
            Job few{{3, knockout, eachMode}, {}};
            Run(&few);
            Job many{{kDepth, knockout, eachMode}, {}};
            const HANDLE thread = CreateThread(nullptr, kStack, Run, &many, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
            ASSERT_NE(thread, nullptr);
            ASSERT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
            CloseHandle(thread);
            const std::vector<uint32_t> software = InSoftware(kSide, kSide, [&](RenderTarget& t) {
                DrawNest(t, {3, knockout, eachMode});
            });
            EXPECT_LE(Compare(few.pixels, software, kSide).largest, 2);
            if (eachMode != GXBlendModeHue) { // a hue upon itself drifts with every group
                EXPECT_LE(Compare(many.pixels, software, kSide).largest, 2);
            }
        }
    }
}

} // namespace
