// SPDX-License-Identifier: MIT
// Windows on a graphics card that fails: every call in turn, devices that are lost and do not come back, targets that
// are released too early. The card is the tests' own (FakeDirect3D.h); tests/d3d has the real one.
#include "FakeDirect3D.h"
#include "ProcessHandles.h"
#include "Target/Windows/ThreadHardware.h"
#include "WindowsSupport.h"

#include "Exception.h"

namespace {

using namespace TargetSupport;
using namespace WindowsSupport;
using FakeDirect3D::Fault;
using Graphics::ThreadHardware;

constexpr int kWidth = 60;
constexpr int kHeight = 44;
constexpr Fault kFaults[] = {Fault::OutOfMemory, Fault::Hung, Fault::Reset, Fault::DriverError, Fault::Removed};

/// The window's repaint has been asked for.
[[nodiscard]] bool IsInvalid(HWND window) { return GetUpdateRect(window, nullptr, FALSE) != FALSE; }

class CardFailure : public ::testing::Test {
public:
    void SetUp() override {
        FakeDirect3D::Install();
        m_before = ThreadHardware::Replace(&Graphics::CreateHardwareFactory);
        Owned<GXBitmap> made = MakeBitmap(9, 7, GXPixelFormatBGRA32);
        ASSERT_EQ(GXBitmapColorFill(made, nullptr, 0x80336699U), GXResultSuccess);
        bitmap = std::move(made);
        Owned<GXBitmap> shape = MakeBitmap(8, 8, GXPixelFormatAlpha8);
        ASSERT_EQ(GXBitmapColorFill(shape, nullptr, 0x60000000U), GXResultSuccess);
        mask = std::move(shape);
        const GXGradientStop stops[] = {{0.0F, 0xFF203A8CU}, {0.6F, 0x80E86A5CU}, {1.0F, 0xFFFFE08AU}};
        const GXLinearGradientDesc line = {stops, 3, {0, 0}, {60, 44}, 1, 1, 0};
        const GXRadialGradientDesc circle = {stops, 3, {20, 20}, 2, {30, 22}, 25, 1, 1, 0};
        ASSERT_EQ(GXCreateGradientLinear(&line, linear.Out()), GXResultSuccess);
        ASSERT_EQ(GXCreateGradientRadial(&circle, radial.Out()), GXResultSuccess);
        ASSERT_EQ(GXCreateBrushGradient(linear, 1.0F, nullptr, gradientBrush.Out()), GXResultSuccess);
    }
    void TearDown() override {
        ThreadHardware::Replace(m_before);
        FakeDirect3D::Uninstall();
    }

    void Note(GXResult result) { m_results.push_back(result); }
    /// Whether all results since the last question are among those allowed.
    [[nodiscard]] bool AllAre(GXResult a, GXResult b) {
        const auto results = std::exchange(m_results, {});
        return std::all_of(results.begin(), results.end(), [&](GXResult r) { return r == a || r == b; });
    }

    /// Something of everything that the card does, and of what the software does for it.
    void DrawPage(GXRenderTarget t) {
        const GXRect all{0, 0, 60, 44}, left{2, 3, 30, 40}, disc{10, 4, 50, 40}, small{12, 10, 34, 30};
        const GXPoint from{3, 40}, to{57, 6};
        const Owned<GXBrush> white = Solid(0xFFFFFFFFU), green = Solid(0x9020C040U), dark = Solid(0xFF101020U);
        const auto layer = [&](uint8_t isolated, uint8_t knockout, uint32_t mode, auto&& draw) {
            const GXLayerDesc desc = {{0, 0, 0, 0}, 0.5F, isolated, knockout};
            Note(GXRenderTargetSetBlendMode(t, mode));
            const GXResult begun = GXRenderTargetBeginLayer(t, &desc);
            Note(begun);
            draw();
            if (begun == GXResultSuccess) {
                Note(GXRenderTargetEndLayer(t));
            }
            Note(GXRenderTargetSetBlendMode(t, GXBlendModeNormal));
        };
        Note(GXRenderTargetClear(t, 0xFFF0E8E0U));
        Note(GXRenderTargetFillRect(t, &left, green));
        Note(GXRenderTargetFillEllipse(t, &disc, gradientBrush));
        Note(GXRenderTargetDrawGradient(t, radial, 0.7F, nullptr));
        Note(GXRenderTargetStrokeLine(t, &from, &to, dark, 2.5F, nullptr));
        const GXIntRect source{0, 0, 9, 7};
        Note(GXRenderTargetStretchBitmap(t, bitmap, &small, &source, 0.8F, GXInterpolationLinear));
        Note(GXRenderTargetFillMask(t, mask, dark, &small, GXInterpolationNearest));
        const GXResult pushed = GXRenderTargetPushState(t);
        Note(pushed);
        Note(GXRenderTargetClipEllipse(t, &disc));
        Note(GXRenderTargetSetShapeMask(t, GXMaskTypeLuminosity, gradientBrush));
        Note(GXRenderTargetFillRect(t, &all, green));
        if (pushed == GXResultSuccess) {
            Note(GXRenderTargetPopState(t));
        }
        Note(GXRenderTargetSetBlendMode(t, GXBlendModeMultiply)); // reads what lies below
        Note(GXRenderTargetFillEllipse(t, &disc, green));
        Note(GXRenderTargetSetBlendMode(t, GXBlendModeHue)); // the software's
        Note(GXRenderTargetFillEllipse(t, &small, green));
        Note(GXRenderTargetSetBlendMode(t, GXBlendModeNormal));
        for (uint8_t kind = 0; kind < 4; ++kind) {
            const GXBlendMode mode = kind == 1 ? GXBlendMode{GXBlendModeHue} : GXBlendMode{GXBlendModeNormal};
            layer(kind & 1U, kind >> 1U, mode, [&] {
                Note(GXRenderTargetFillEllipse(t, &disc, dark));
                Note(GXRenderTargetFillRect(t, &small, green));
                layer(0, 0, GXBlendModeNormal, [&] { Note(GXRenderTargetFillEllipse(t, &small, white)); });
            });
        }
        Note(GXRenderTargetInvertRect(t, &left));
    }
    void Paint(GXRenderTarget t) {
        const GXResult begun = GXRenderTargetBeginPaint(t);
        Note(begun);
        if (begun == GXResultSuccess) { // else what is set would hold for the next frame
            DrawPage(t);
            Note(GXRenderTargetEndPaint(t));
        }
    }
    /// A target on the window, with a device of its own as the thread has none yet.
    [[nodiscard]] Owned<GXRenderTarget> Target(const TestWindow& window) {
        Owned<GXRenderTarget> target;
        Note(GXEnableHWAccelerationForThread());
        Note(GXCreateRenderTargetHWND(window.Get(), 0, target.Out()));
        return target;
    }
    /// The thread gives its device back.
    static void DropDevice() { ThreadHardware::Replace(&Graphics::CreateHardwareFactory); }

    /// What the card presents, and what the software draws.
    [[nodiscard]] std::vector<uint32_t> OnCard() {
        const TestWindow window(kWidth, kHeight);
        const Owned<GXRenderTarget> target = Target(window);
        Paint(target);
        EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));
        return FakeDirect3D::TakePresented();
    }
    [[nodiscard]] std::vector<uint32_t> InSoftware() {
        const Owned<GXBitmap> pixels = MakeBitmap(kWidth, kHeight, GXPixelFormatBGRX32);
        Owned<GXRenderTarget> target;
        EXPECT_EQ(GXCreateRenderTargetBitmap(pixels, target.Out()), GXResultSuccess);
        Paint(target);
        EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));
        std::vector<uint32_t> colors(static_cast<size_t>(kWidth) * kHeight);
        const GXBitmapData data{colors.data(), kWidth * 4, kWidth * 4};
        EXPECT_EQ(GXBitmapCopyToMemory(pixels, nullptr, &data), GXResultSuccess);
        for (uint32_t& c : colors) {
            c &= 0xFFFFFF;
        }
        return colors;
    }

    Owned<GXBitmap> bitmap, mask;
    Owned<GXGradient> linear, radial;
    Owned<GXBrush> gradientBrush;

private:
    ThreadHardware::Maker m_before = nullptr;
    std::vector<GXResult> m_results;
};

/// From the making of the device to the end of a page, through a resize, and between pages.
TEST_F(CardFailure, AnyCallMayFailAndTheNextFrameIsRight) {
    const std::vector<uint32_t> card = OnCard();
    const std::vector<uint32_t> software = InSoftware();
    ASSERT_EQ(card.size(), static_cast<size_t>(kWidth) * kHeight);
    DropDevice();
    ASSERT_EQ(FakeDirect3D::Objects(), 0);
    TestWindow window(kWidth, kHeight);
    for (const Fault fault : kFaults) {
        // Two of the reasons are one to the back end; they need not be met everywhere.
        const int64_t step = fault == Fault::Reset || fault == Fault::DriverError ? 11 : 1;
        int64_t n = 0;
        for (bool failed = true; failed; n += step) {
            SCOPED_TRACE("fault " + std::to_string(static_cast<int>(fault)) + " at call " + std::to_string(n));
            window.Resize(kWidth + 20, kHeight - 9);
            FakeDirect3D::FailAt(n, fault);
            {
                const Owned<GXRenderTarget> target = Target(window);
                Paint(target);
                window.Resize(kWidth, kHeight);
                Note(GXRenderTargetBeginPaint(target));
                Note(GXRenderTargetClear(target, 0xFF00FF00U));
                Note(GXRenderTargetEndPaint(target));
                EXPECT_TRUE(AllAre(GXResultSuccess, GXResultEngineError)) << FakeDirect3D::FailedCall();
                failed = !FakeDirect3D::FailedCall().empty();
                const std::string call = FakeDirect3D::FailedCall();
                FakeDirect3D::FailAt(-1, fault);
                static_cast<void>(FakeDirect3D::TakePresented());
                Paint(target);
                EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess)) << call;
                const std::vector<uint32_t> presented = FakeDirect3D::TakePresented();
                if (!presented.empty()) {
                    EXPECT_TRUE(presented == card) << call;
                } else {
                    EXPECT_TRUE(window.Colors(kWidth, kHeight) == software) << call;
                }
            }
            DropDevice();
            EXPECT_EQ(FakeDirect3D::Objects(), 0) << FakeDirect3D::FailedCall();
            if (HasFailure()) {
                return; // one is enough to look at
            }
        }
        EXPECT_GT(n, 150);
    }
}

/// What was collected for it does not go to the card with the next target's frame.
TEST_F(CardFailure, ATargetReleasedInItsBracketLeavesNoDrawBehind) {
    const TestWindow first(kWidth, kHeight), second(kWidth, kHeight);
    const Owned<GXRenderTarget> other = Target(second);
    const auto frame = [&] {
        const int64_t before = FakeDirect3D::Draws();
        EXPECT_EQ(GXRenderTargetBeginPaint(other), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetClear(other, 0xFF00FF00U), GXResultSuccess);
        EXPECT_EQ(GXRenderTargetEndPaint(other), GXResultSuccess);
        return FakeDirect3D::Draws() - before;
    };
    const int64_t alone = frame();
    const std::vector<uint32_t> picture = FakeDirect3D::TakePresented();
    const GXRect rect{3, 3, 20, 20};
    const Owned<GXBrush> green = Solid(0x9020C040U);
    for (int layers = 0; layers < 3; ++layers) {
        {
            const Owned<GXRenderTarget> target = Target(first);
            ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
            for (int i = 0; i < layers; ++i) {
                const GXLayerDesc desc = {{0, 0, 0, 0}, 0.5F, 0, static_cast<uint8_t>(i)};
                ASSERT_EQ(GXRenderTargetBeginLayer(target, &desc), GXResultSuccess);
            }
            ASSERT_EQ(GXRenderTargetFillRect(target, &rect, green), GXResultSuccess);
        }
        EXPECT_EQ(frame(), alone) << layers;
        EXPECT_TRUE(FakeDirect3D::TakePresented() == picture) << layers;
    }
    // Two brackets at once: what the other one has collected stays.
    ASSERT_EQ(GXRenderTargetBeginPaint(other), GXResultSuccess);
    {
        const Owned<GXRenderTarget> target = Target(first);
        ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetFillRect(target, &rect, green), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetClear(other, 0xFF00FF00U), GXResultSuccess);
    }
    ASSERT_EQ(GXRenderTargetEndPaint(other), GXResultSuccess);
    EXPECT_TRUE(FakeDirect3D::TakePresented() == picture);
    // With the device gone as well.
    for (const Fault fault : kFaults) {
        {
            const Owned<GXRenderTarget> target = Target(first);
            ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
            ASSERT_EQ(GXRenderTargetFillRect(target, &rect, green), GXResultSuccess);
            FakeDirect3D::Remove(fault);
        }
        EXPECT_EQ(frame(), alone);
        EXPECT_TRUE(FakeDirect3D::TakePresented() == picture);
    }
}

/// Whatever the reason: the next frame has a new device.
TEST_F(CardFailure, ALostDeviceIsReplacedByTheNextFrame) {
    const std::vector<uint32_t> card = OnCard();
    const TestWindow window(kWidth, kHeight);
    const Owned<GXRenderTarget> target = Target(window);
    Paint(target);
    EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));
    for (const Fault fault : kFaults) {
        if (fault == Fault::OutOfMemory) {
            continue;
        }
        SCOPED_TRACE(static_cast<int>(fault));
        // Between frames: nobody notices but the host, which is asked for the pixels of earlier frames.
        ValidateRect(window.Get(), nullptr);
        FakeDirect3D::Remove(fault);
        static_cast<void>(FakeDirect3D::TakePresented());
        Paint(target);
        EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));
        EXPECT_TRUE(FakeDirect3D::TakePresented() == card);
        EXPECT_TRUE(IsInvalid(window.Get()));
        Paint(target);
        EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));

        // Inside one: the reason "removed" is told to the host by the call that meets it.
        ValidateRect(window.Get(), nullptr);
        ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
        FakeDirect3D::Remove(fault);
        DrawPage(target);
        Note(GXRenderTargetEndPaint(target));
        EXPECT_TRUE(AllAre(GXResultSuccess,
                           fault == Fault::Removed ? GXResult{GXResultEngineError} : GXResult{GXResultSuccess}));
        EXPECT_TRUE(IsInvalid(window.Get()));
        static_cast<void>(FakeDirect3D::TakePresented());
        Paint(target);
        EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));
        EXPECT_TRUE(FakeDirect3D::TakePresented() == card);

        // By the call that presents.
        const LastMessage message;
        ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetClear(target, 0xFF00FF00U), GXResultSuccess);
        FakeDirect3D::Remove(fault);
        const GXResult ended = GXRenderTargetEndPaint(target);
        EXPECT_EQ(ended, fault == Fault::Removed ? GXResult{GXResultEngineError} : GXResult{GXResultSuccess});
        EXPECT_EQ(message.Text(), fault == Fault::Removed ? "D3D11 error" : "");
        Paint(target);
        EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));
        EXPECT_TRUE(FakeDirect3D::TakePresented() == card);
    }
}

TEST_F(CardFailure, WithoutANewDeviceTheSoftwareDrawsUntilThereIsOne) {
    const std::vector<uint32_t> card = OnCard();
    const std::vector<uint32_t> software = InSoftware();
    TestWindow window(kWidth, kHeight);
    const Owned<GXRenderTarget> target = Target(window);
    Paint(target);
    EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));
    for (const Fault fault : kFaults) {
        if (fault == Fault::OutOfMemory) {
            continue;
        }
        SCOPED_TRACE(static_cast<int>(fault));
        FakeDirect3D::RefuseDevices(true);
        if (fault != Fault::Hung) {
            FakeDirect3D::Remove(fault); // between frames
        } else {
            // In the middle of one: nothing more can be drawn in it, and that is told.
            ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
            FakeDirect3D::Remove(fault);
            DrawPage(target);
            EXPECT_TRUE(AllAre(GXResultSuccess, GXResultEngineError));
            ValidateRect(window.Get(), nullptr);
            EXPECT_EQ(GXRenderTargetEndPaint(target), GXResultEngineError);
            EXPECT_TRUE(IsInvalid(window.Get()));
            EXPECT_EQ(GXRenderTargetPopState(target), GXResultEngineError) << "no bracket is open";
        }
        static_cast<void>(FakeDirect3D::TakePresented());
        const int64_t draws = FakeDirect3D::Draws();
        for (int frame = 0; frame < 3; ++frame) {
            ValidateRect(window.Get(), nullptr);
            Paint(target);
            EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess)) << frame;
            EXPECT_TRUE(window.Colors(kWidth, kHeight) == software) << frame;
            EXPECT_EQ(IsInvalid(window.Get()), frame == 0 && fault != Fault::Hung)
                << frame << ": the card's pixels are asked for again, once";
        }
        EXPECT_EQ(FakeDirect3D::Draws(), draws);
        EXPECT_TRUE(FakeDirect3D::TakePresented().empty());
        // What is set between frames holds for the next one, whoever draws it, and no longer.
        const GXMatrix shifted{1, 0, 0, 1, 7, 5};
        GXMatrix now{};
        for (int frame = 0; frame < 2; ++frame) {
            FakeDirect3D::RefuseDevices(frame == 0);
            ASSERT_EQ(GXRenderTargetSetCTM(target, &shifted), GXResultSuccess);
            ASSERT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
            ASSERT_EQ(GXRenderTargetGetCTM(target, &now), GXResultSuccess);
            EXPECT_EQ(now.m20, 7.0F) << frame;
            ASSERT_EQ(GXRenderTargetEndPaint(target), GXResultSuccess);
            ASSERT_EQ(GXRenderTargetGetCTM(target, &now), GXResultSuccess);
            EXPECT_EQ(now.m20, 0.0F) << frame;
        }
        // There is one again.
        static_cast<void>(FakeDirect3D::TakePresented());
        Paint(target);
        EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));
        EXPECT_TRUE(FakeDirect3D::TakePresented() == card);
        // A window made while there is none has it as soon as there is one.
        FakeDirect3D::RefuseDevices(true);
        FakeDirect3D::Remove(fault);
        const TestWindow late(kWidth, kHeight);
        const Owned<GXRenderTarget> onLate = Target(late);
        Paint(onLate);
        EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));
        EXPECT_TRUE(late.Colors(kWidth, kHeight) == software);
        FakeDirect3D::RefuseDevices(false);
        static_cast<void>(FakeDirect3D::TakePresented());
        Paint(onLate);
        EXPECT_TRUE(FakeDirect3D::TakePresented() == card);
        Paint(target);
        Paint(target);
        EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));
    }
}

/// Frames, sizes and windows leave nothing behind: objects of Direct3D and GDI and handles of the process are counted.
TEST_F(CardFailure, PaintsResizesAndWindowsAreFlat) {
    const auto counts = [] {
        return std::vector<int64_t>{FakeDirect3D::Objects(), static_cast<int64_t>(GdiObjects()), ProcessHandles()};
    };
    const std::vector<int64_t> few = counts();
    const HANDLE extra = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    EXPECT_EQ(counts()[2], few[2] + 1) << "the count itself is worth something";
    CloseHandle(extra);
    TestWindow window(kWidth, kHeight);
    const Owned<GXRenderTarget> target = Target(window);
    const auto oneOfAll = [&](int i) {
        window.Resize(kWidth + i % 4 * 40, kHeight + i % 3 * 30);
        Paint(target);
        const TestWindow other(kWidth, kHeight);
        const Owned<GXRenderTarget> onOther = Target(other);
        Paint(onOther);
        window.Resize(kWidth, kHeight);
        Paint(target);
    };
    for (int i = 0; i < 12; ++i) {
        oneOfAll(i);
    }
    const std::vector<int64_t> before = counts();
    for (int i = 0; i < 24; ++i) {
        oneOfAll(i);
    }
    EXPECT_EQ(counts(), before);
    EXPECT_TRUE(AllAre(GXResultSuccess, GXResultSuccess));
}

} // namespace
