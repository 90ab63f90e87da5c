// SPDX-License-Identifier: MIT
// Targets on windows: the window shows what a bitmap would hold, through resizing, minimising and the window's end.
#include "Target/Windows/ThreadHardware.h"
#include "WindowsSupport.h"

#include "Exception.h"

#include <atomic>
#include <new>
#include <thread>

namespace {

using namespace TargetSupport;
using namespace WindowsSupport;

TEST(WindowTarget, TheWindowShowsWhatABitmapHolds) {
    const TestWindow window(93, 61);
    // A host may leave its own context in any state.
    const HDC dc = GetDC(window.Get());
    SetMapMode(dc, MM_LOMETRIC);
    SetViewportOrgEx(dc, 17, 5, nullptr);
    ReleaseDC(window.Get(), dc);
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetHWND(window.Get(), 0, target.Out()), GXResultSuccess);
    GXSize size{};
    GXPixelFormat format = 0;
    ASSERT_EQ(GXRenderTargetGetSize(target, &size), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetGetPixelFormat(target, &format), GXResultSuccess);
    EXPECT_EQ(size.width, 93U);
    EXPECT_EQ(size.height, 61U);
    EXPECT_EQ(format, GXPixelFormat{GXPixelFormatBGRX32});
    ASSERT_EQ(DrawScene(target, 93, 61), GXResultSuccess);
    EXPECT_EQ(window.Colors(93, 61), SceneColors(93, 61, 0));
    // The next frame goes on from the last one's pixels.
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    const GXRect corner{0, 0, 1, 1};
    const Owned<GXBrush> red = Solid(0xFFFF0000U);
    ASSERT_EQ(GXRenderTargetFillRect(target, &corner, red), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
    std::vector<uint32_t> expected = SceneColors(93, 61, 0);
    expected[0] = 0xFF0000;
    EXPECT_EQ(window.Colors(93, 61), expected);
}

TEST(WindowTarget, FollowsTheWindowsSizeBetweenFrames) {
    TestWindow window(40, 30);
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetHWND(window.Get(), 1, target.Out()), GXResultSuccess);
    ASSERT_EQ(DrawScene(target, 40, 30), GXResultSuccess);
    const std::vector<uint32_t> before = SceneColors(40, 30, 0);
    window.Resize(64, 20);
    GXSize size{};
    ASSERT_EQ(GXRenderTargetGetSize(target, &size), GXResultSuccess);
    EXPECT_EQ(size.width, 40U) << "a size holds until the next frame";
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetGetSize(target, &size), GXResultSuccess);
    EXPECT_EQ(size.width, 64U);
    EXPECT_EQ(size.height, 20U);
    const GXRect right{50, 0, 64, 20};
    const Owned<GXBrush> white = Solid(0xFFFFFFFFU);
    ASSERT_EQ(GXRenderTargetFillRect(target, &right, white), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
    const std::vector<uint32_t> after = window.Colors(64, 20);
    for (size_t y = 0; y < 20; ++y) {
        for (size_t x = 0; x < 64; ++x) {
            const uint32_t expected = x < 40 ? before[y * 40 + x] : x < 50 ? 0 : 0xFFFFFF;
            ASSERT_EQ(after[y * 64 + x], expected) << x << ", " << y;
        }
    }
}

TEST(WindowTarget, AMinimisedWindowTakesFramesAndComesBack) {
    TestWindow window(50, 40);
    Owned<GXRenderTarget> target;
    ASSERT_EQ(GXCreateRenderTargetHWND(window.Get(), 1, target.Out()), GXResultSuccess);
    ASSERT_EQ(DrawScene(target, 50, 40), GXResultSuccess);
    ShowWindow(window.Get(), SW_MINIMIZE);
    for (int frame = 0; frame < 2; ++frame) {
        ASSERT_EQ(DrawScene(target, 50, 40), GXResultSuccess);
        GXSize size{1, 1};
        ASSERT_EQ(GXRenderTargetGetSize(target, &size), GXResultSuccess);
        EXPECT_EQ(size.width, 0U);
        EXPECT_EQ(size.height, 0U);
    }
    Owned<GXRenderTarget> born; // while minimised
    ASSERT_EQ(GXCreateRenderTargetHWND(window.Get(), 1, born.Out()), GXResultSuccess);
    ASSERT_EQ(DrawScene(born, 50, 40), GXResultSuccess);

    // Minimised in the middle of a frame.
    ShowWindow(window.Get(), SW_RESTORE);
    ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    ShowWindow(window.Get(), SW_MINIMIZE);
    ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
    ShowWindow(window.Get(), SW_RESTORE);
    ASSERT_EQ(DrawScene(born, 50, 40), GXResultSuccess);
    EXPECT_EQ(window.Colors(50, 40), SceneColors(50, 40, 0));
}

TEST(WindowTarget, AWindowThatIsGoneIsAnErrorAndNoMore) {
    const LastMessage message;
    TestWindow window(20, 20);
    const HWND handle = window.Get();
    Owned<GXRenderTarget> between, during, none;
    ASSERT_EQ(GXCreateRenderTargetHWND(handle, 1, between.Out()), GXResultSuccess);
    ASSERT_EQ(GXCreateRenderTargetHWND(handle, 1, during.Out()), GXResultSuccess);
    ASSERT_EQ(GXRenderTargetBeginPaint(during), GXResultSuccess);
    window.Destroy();
    EXPECT_EQ(GXCreateRenderTargetHWND(handle, 0, none.Out()), GXResultEngineError);
    EXPECT_EQ(message.Text(), "The window does not exist");
    EXPECT_EQ(static_cast<GXRenderTarget>(none), nullptr);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(GXRenderTargetBeginPaint(between), GXResultEngineError);
        EXPECT_EQ(message.Text(), "The window does not exist");
        EXPECT_EQ(GXRenderTargetEndPaint(between), GXResultEngineError);
        EXPECT_EQ(message.Text(), "Painting has not begun");
    }
    EXPECT_EQ(GXRenderTargetEndPaint(during), GXResultEngineError);
    EXPECT_EQ(message.Text(), "The window does not exist");
    EXPECT_EQ(GXRenderTargetEndPaint(during), GXResultEngineError);
    EXPECT_EQ(message.Text(), "Painting has not begun");
}

TEST(WindowTarget, TheDisplaysDepthGivesTheFormat) {
    const TestWindow window(8, 8);
    const LastMessage message;
    static int depth;
    const auto caps = [](HDC dc, int index) { return index == BITSPIXEL ? depth : ::GetDeviceCaps(dc, index); };
    struct Case {
        int bits;
        GXPixelFormat format;
        const char* begin;
    };
    for (const Case& c :
         {Case{1, GXPixelFormatBlackWhite1, "Unsuported pixel format"}, Case{8, GXPixelFormatBGRX32, ""},
          Case{16, GXPixelFormatBGRX32, ""}, Case{24, GXPixelFormatBGR24, "Unsuported pixel format"},
          Case{32, GXPixelFormatBGRX32, ""}, Case{4, GXPixelFormatUnknown, ""}, Case{0, GXPixelFormatUnknown, ""}}) {
        depth = c.bits;
        g_system.getDeviceCaps = caps;
        Owned<GXRenderTarget> target;
        const GXResult made = GXCreateRenderTargetHWND(window.Get(), 1, target.Out());
        const GXResult begun = made == GXResultSuccess ? GXRenderTargetBeginPaint(target) : made;
        g_system = SystemCalls();
        if (c.format == GXPixelFormatUnknown) {
            EXPECT_EQ(made, GXResultEngineError) << c.bits;
            EXPECT_EQ(message.Text(), "Unsupported pixel format.");
            continue;
        }
        ASSERT_EQ(made, GXResultSuccess) << c.bits;
        GXPixelFormat format = 0;
        ASSERT_EQ(GXRenderTargetGetPixelFormat(target, &format), GXResultSuccess);
        EXPECT_EQ(format, c.format) << c.bits;
        EXPECT_EQ(begun, c.begin[0] == 0 ? GXResultSuccess : GXResultEngineError) << c.bits;
        if (c.begin[0] != 0) {
            EXPECT_EQ(message.Text(), c.begin);
        }
    }
}

// Hardware: a factory that counts, and fails as it is told.
std::atomic<int> g_factories{0}, g_live{0}, g_asked{0};
enum class Mood { kNone, kRaises, kRunsOut };
Mood g_mood;

class CountingFactory final : public Graphics::HwRenderTargetFactory {
public:
    CountingFactory() { ++g_live; }
    ~CountingFactory() override { --g_live; }
    std::unique_ptr<Graphics::RenderTargetBase> CreateWindowTarget(void*) override {
        ++g_asked;
        if (g_mood == Mood::kRaises) {
            GX_RAISE("CountingFactory", "no swap chain");
        }
        if (g_mood == Mood::kRunsOut) {
            throw std::bad_alloc();
        }
        return nullptr;
    }
};

TEST(WindowTarget, HardwareIsAskedOnlyWhereTheThreadMayAndFallsBack) {
    const TestWindow window(20, 20);
    const auto before = Graphics::ThreadHardware::Replace([]() -> std::unique_ptr<Graphics::HwRenderTargetFactory> {
        ++g_factories;
        if (g_mood == Mood::kRaises) {
            GX_RAISE("CountingFactory", "no device");
        }
        if (g_mood == Mood::kRunsOut) {
            throw std::bad_alloc();
        }
        return std::make_unique<CountingFactory>();
    });
    const auto make = [&](uint32_t softwareOnly) {
        Owned<GXRenderTarget> target;
        const GXResult result = GXCreateRenderTargetHWND(window.Get(), softwareOnly, target.Out());
        if (result == GXResultSuccess) {
            EXPECT_EQ(DrawScene(target, 20, 20), GXResultSuccess);
            EXPECT_EQ(window.Colors(20, 20), SceneColors(20, 20, 0));
        }
        return result;
    };
    std::thread([&] {
        EXPECT_EQ(make(0), GXResultSuccess);
        EXPECT_EQ(g_factories, 0) << "a thread that did not ask";
        g_mood = Mood::kRaises;
        EXPECT_EQ(GXEnableHWAccelerationForThread(), GXResultSuccess);
        EXPECT_EQ(make(0), GXResultSuccess);
        EXPECT_EQ(g_live, 0);
        g_mood = Mood::kRunsOut;
        EXPECT_EQ(GXEnableHWAccelerationForThread(), GXResultUnexpectedError);
        g_mood = Mood::kNone;
        EXPECT_EQ(GXEnableHWAccelerationForThread(), GXResultSuccess);
        EXPECT_EQ(GXEnableHWAccelerationForThread(), GXResultSuccess);
        EXPECT_EQ(g_factories, 3) << "a second call changes nothing";
        EXPECT_EQ(make(1), GXResultSuccess);
        EXPECT_EQ(g_asked, 0) << "software only";
        EXPECT_EQ(make(0), GXResultSuccess);
        g_mood = Mood::kRaises;
        EXPECT_EQ(make(0), GXResultSuccess);
        g_mood = Mood::kRunsOut;
        EXPECT_EQ(make(0), GXResultUnexpectedError);
        EXPECT_EQ(g_asked, 3);
        std::thread([&] { EXPECT_EQ(make(0), GXResultSuccess); }).join();
        EXPECT_EQ(g_asked, 3) << "another thread's factory was used";
        EXPECT_EQ(g_live, 1);
    }).join();
    EXPECT_EQ(g_live, 0) << "a factory ends with its thread";
    Graphics::ThreadHardware::Replace(before);
}

// With a device and a shader compiler this is the graphics processor, else software; the host cannot tell.
TEST(WindowTarget, AnEnabledThreadDrawsWithWhatTheMachineHas) {
    const TestWindow window(64, 48);
    std::thread([&] {
        ASSERT_EQ(GXEnableHWAccelerationForThread(), GXResultSuccess);
        Owned<GXRenderTarget> target;
        ASSERT_EQ(GXCreateRenderTargetHWND(window.Get(), 0, target.Out()), GXResultSuccess);
        for (int frame = 0; frame < 3; ++frame) {
            ASSERT_EQ(DrawScene(target, 64, 48), GXResultSuccess);
        }
        GXSize size{};
        ASSERT_EQ(GXRenderTargetGetSize(target, &size), GXResultSuccess);
        EXPECT_EQ(size.width, 64U);
        EXPECT_EQ(size.height, 48U);
    }).join();
}

} // namespace
