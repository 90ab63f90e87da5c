// SPDX-License-Identifier: MIT
// What surrounds drawing: batches, caches, loss of the device, windows, threads, and everything given back.
#include <cstdio>
#include <thread>

#include <windows.h>

#include <psapi.h>

#include "../windows/ProcessHandles.h"
#include "Direct3D11/D3D11RenderTargetFactory.h"
#include "Direct3D11/D3D11WindowSurface.h"
#include "Direct3D11/D3D11WindowTarget.h"
#include "Exception.h"
#include "HardwareTest.h"

using namespace Graphics;

namespace {

constexpr int32_t kSide = 64;

void FillRect(RenderTarget& t, const Rect& r, const Color& color) {
    const BasicFigure figure(BasicFigure::Kind::Rectangle, r);
    t.Fill(figure, SolidBrush(color));
}

[[nodiscard]] std::shared_ptr<Bitmap> Blank(int32_t width, int32_t height, uint8_t value) {
    auto image = std::make_shared<SysMemBitmap>(width, height, GXPixelFormatBGRX32);
    std::fill_n(image->Data(), static_cast<size_t>(height) * image->StrideBytes(), value);
    return std::make_shared<Bitmap>(image);
}

template <class Work> [[nodiscard]] std::string Message(Work&& work) {
    try {
        work();
    } catch (const Exception& e) {
        return e.what();
    }
    return {};
}

/// A popup without a frame.
class TestWindow {
public:
    TestWindow(int width, int height)
        : m_window(CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 20, 20, width, height, nullptr, nullptr,
                                   nullptr, nullptr)) {}
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;
    ~TestWindow() { Destroy(); }

    [[nodiscard]] HWND Get() const noexcept { return m_window; }
    void Resize(int width, int height) const {
        SetWindowPos(m_window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
    }
    void Destroy() {
        if (m_window != nullptr) {
            DestroyWindow(m_window);
            m_window = nullptr;
        }
    }

private:
    HWND m_window;
};

} // namespace

TEST_F(HardwareTest, DrawsOfOneKindAreOneCallAndOneMap) {
    const D3D11Counters before = Context()->Device().Counters();
    static_cast<void>(OnHardware(kSide, kSide, [](RenderTarget& t) {
        for (int i = 0; i < 1000; ++i) { // colours and transforms differ
            const float c = static_cast<float>(i) / 1000.0F;
            t.SetTransform({1, 0, 0, 1, c * 40.0F, c * 30.0F});
            FillRect(t, {0, 0, 20, 20}, {c, 1 - c, 0.5F, 0.5F});
        }
    }));
    const D3D11Counters& after = Context()->Device().Counters();
    EXPECT_EQ(after.drawCalls - before.drawCalls, 1U);
    EXPECT_EQ(after.vertexMaps - before.vertexMaps, 1U);

    const D3D11Counters second = after;
    static_cast<void>(OnHardware(kSide, kSide, [](RenderTarget& t) {
        t.SetBlendMode(GXBlendModeMultiply);
        for (int i = 0; i < 8; ++i) { // side by side: what lies below is copied before, for all of them
            const auto x = static_cast<float>(i * 8);
            FillRect(t, {x, 0, x + 8, 8}, {0.5F, 0.5F, 0.5F, 1});
        }
        FillRect(t, {4, 4, 12, 12}, {0.5F, 0.5F, 0.5F, 1}); // over two of them
    }));
    EXPECT_EQ(Context()->Device().Counters().drawCalls - second.drawCalls, 2U);
    EXPECT_EQ(Context()->Device().Counters().backdropCopies - second.backdropCopies, 9U);
}

TEST_F(HardwareTest, DrawsUnderDifferentClipsAreOneCall) {
    D3D11Counters before;
    const Drawing draw = [&](RenderTarget& t) {
        before = Context()->Device().Counters();
        for (int i = 0; i < 40; ++i) {
            t.PushState();
            const auto x = static_cast<float>(i % 8 * 30);
            const auto y = static_cast<float>(i / 8 * 40);
            const BasicFigure clip(i % 2 == 0 ? BasicFigure::Kind::Ellipse : BasicFigure::Kind::Rectangle,
                                   {x, y, x + 28, y + 37});
            t.Clip(clip);
            const BasicFigure ellipse(BasicFigure::Kind::Ellipse, {x + 2, y - 8, x + 20, y + 50});
            t.Fill(ellipse, SolidBrush({0.1F, 0.02F * static_cast<float>(i), 0.9F, 0.7F}));
            FillRect(t, {x - 10, y + 5, x + 90, y + 15}, {0.8F, 0.2F, 0.1F, 0.5F});
            t.PopState();
        }
    };
    const Difference d = Both(256, 256, draw);
    EXPECT_LE(d.largest, 20) << d.x << " " << d.y; // edges of half an eighth of a pixel
    EXPECT_LE(d.mean, 0.5);
    static_cast<void>(OnHardware(256, 256, draw));
    EXPECT_EQ(Context()->Device().Counters().batches - before.batches, 1U);
    EXPECT_EQ(Context()->Device().Counters().coverages, before.coverages);
}

TEST_F(HardwareTest, ManyQuadsOutgrowTheBufferAndTheIndices) {
    const Difference d = Both(256, 256, [](RenderTarget& t) {
        for (int i = 0; i < 40000; ++i) {
            const auto x = static_cast<float>(i % 256);
            const auto y = static_cast<float>(i / 256);
            FillRect(t, {x, y, x + 1, y + 1}, {x / 255.0F, y / 255.0F, 0, 1});
        }
    });
    EXPECT_LE(d.largest, 1) << d.x << " " << d.y;
}

TEST_F(HardwareTest, BitmapsAreUploadedOnceAndEvictedByQuota) {
    D3D11BitmapCache& cache = Context()->Bitmaps();
    const auto first = Blank(kSide, kSide, 10);
    const auto get = [&](const Bitmap& b) { return cache.GetTexture(b.View(), &b.Derived(), 0, false); };
    const auto a = get(*first);
    EXPECT_EQ(a, get(*first));
    first->NotifyChanged();
    EXPECT_NE(a, get(*first)) << "changed pixels are uploaded again";
    cache.SetQuota(3 * kSide * kSide * 4);
    std::vector<std::shared_ptr<Bitmap>> bitmaps;
    for (int i = 0; i < 6; ++i) {
        bitmaps.push_back(Blank(kSide, kSide, static_cast<uint8_t>(i)));
        EXPECT_NE(get(*bitmaps.back()), nullptr);
        EXPECT_LE(cache.UsedBytes(), 3U * kSide * kSide * 4);
    }
    EXPECT_EQ(cache.EntryCount(), 3U);
    const D3D11Counters before = Context()->Device().Counters();
    EXPECT_NE(get(*bitmaps[5]), nullptr);
    EXPECT_EQ(Context()->Device().Counters().uploads, before.uploads);
    EXPECT_NE(get(*bitmaps[0]), nullptr);
    EXPECT_EQ(Context()->Device().Counters().uploads, before.uploads + 1);
    cache.SetQuota(uint64_t{64} << 20);

    PixelView huge = first->View();
    huge.width = Context()->Device().MaxTextureSize() + 1;
    EXPECT_EQ(Message([&] { static_cast<void>(cache.GetTexture(huge, nullptr, 0, false)); }), "Texture is too big");
    D3D11SamplerState samplers(Context()->Device());
    EXPECT_EQ(Message([&] { samplers.SetTexture(D3D11SamplerState::kSlots, *a, {}); }),
              "Sampler index is out of range");
}

TEST_F(HardwareTest, BitmapsBeyondTheLargestTextureAreDrawnBySoftware) {
    const auto wide = Blank(Context()->Device().MaxTextureSize() + 10, 2, 200);
    const D3D11Counters before = Context()->Device().Counters();
    const Difference d = Both(kSide, kSide, [&](RenderTarget& t) {
        const Size size = wide->GetSize();
        t.DrawBitmap(*wide, {0, 0, static_cast<int32_t>(size.width), 2}, {0, 0, kSide, kSide}, 1.0F,
                     GXInterpolationLinear);
    });
    EXPECT_LE(d.largest, 1);
    EXPECT_EQ(Context()->Device().Counters().softwareSources, before.softwareSources + 1);
}

TEST_F(HardwareTest, DrawingGoesOnAfterALossOfTheDevice) {
    const auto bitmap = Blank(8, 8, 77);
    auto surface = std::make_unique<TextureSurface>(kSide, kSide);
    const TextureSurface* reader = surface.get();
    RenderTarget target(std::make_unique<D3D11RenderTarget>(Context(), std::move(surface)));
    const auto drawPage = [&] {
        target.Clear(0xFFFFFFFFU);
        target.DrawBitmap(*bitmap, {0, 0, 8, 8}, {0, 0, 16, 16}, 1.0F, GXInterpolationNearest);
        GXLayerDesc layer{};
        layer.opacity = 1.0F;
        layer.knockout = 1;
        target.BeginLayer(layer);
        FillRect(target, {20, 20, 40, 40}, {0, 0, 1, 1});
        target.EndLayer();
    };
    const auto expectPage = [&](const char* when) {
        const std::vector<uint32_t> pixels = reader->Read(*Context());
        EXPECT_EQ(pixels[0] & 0xFFFFFFU, 0x4D4D4DU) << when;
        EXPECT_EQ(pixels[30 * kSide + 30], 0xFF0000FFU) << when;
        EXPECT_EQ(pixels[50 * kSide + 50], 0xFFFFFFFFU) << when;
    };
    target.BeginPaint();
    drawPage();
    target.EndPaint();
    expectPage("before");

    const uint64_t recoveries = Context()->Device().Counters().recoveries;
    // Between paints, inside one, inside a group, at its end.
    Context()->Device().LoseForTest();
    target.BeginPaint();
    drawPage();
    target.EndPaint();
    expectPage("lost between");

    target.BeginPaint();
    FillRect(target, {0, 0, 9, 9}, {1, 0, 0, 1});
    Context()->Device().LoseForTest();
    drawPage(); // some of it is gone with the device
    drawPage();
    target.EndPaint();
    expectPage("lost inside");

    target.BeginPaint();
    GXLayerDesc layer{};
    layer.opacity = 1.0F;
    target.BeginLayer(layer);
    FillRect(target, {0, 0, 9, 9}, {1, 0, 0, 1});
    Context()->Device().LoseForTest();
    target.SetBlendMode(GXBlendModeMultiply);
    FillRect(target, {0, 0, 9, 9}, {1, 0, 0, 1});
    target.SetBlendMode(GXBlendModeNormal);
    target.EndLayer();
    drawPage();
    Context()->Device().LoseForTest();
    target.EndPaint();
    EXPECT_EQ(Context()->Device().Counters().recoveries, recoveries + 4);

    target.BeginPaint();
    drawPage();
    target.EndPaint();
    expectPage("at last");
}

/// The paint in which the device is lost ends well and leaves nothing behind; windows ask for another one, once.
TEST_F(HardwareTest, APaintThatLosesTheDeviceLeavesACleanState) {
    auto context = std::make_shared<D3D11Context>();
    auto surface = std::make_unique<TextureSurface>(kSide, kSide);
    const TextureSurface* reader = surface.get();
    RenderTarget target(std::make_unique<D3D11RenderTarget>(context, std::move(surface)));
    const BasicFigure small(BasicFigure::Kind::Ellipse, {0, 0, 9, 9});
    for (int where = 0; where < 4; ++where) { // at a draw, at a group's end, at the paint's end, with groups open
        target.BeginPaint();
        target.PushState();
        target.SetTransform({2, 0, 0, 2, 5, 5});
        target.SetBlendMode(GXBlendModeMultiply);
        target.SetOpacityMask(GXMaskTypeAlpha, std::make_shared<SolidBrush>(Color{1, 1, 1, 0.25F}));
        target.Clip(small);
        GXLayerDesc layer{};
        layer.opacity = 1.0F;
        layer.knockout = 1;
        target.BeginLayer(layer);
        FillRect(target, {0, 0, 9, 9}, {1, 0, 0, 1});
        context->Device().LoseForTest();
        if (where == 0) {
            FillRect(target, {0, 0, 9, 9}, {0, 1, 0, 1});
        }
        if (where < 2) {
            target.EndLayer();
        } else if (where == 2) {
            EXPECT_NO_THROW(target.EndLayer());
            context->Device().LoseForTest();
        }
        EXPECT_NO_THROW(target.EndPaint()) << where;
        EXPECT_EQ(target.GetTransform().m00, 1.0F) << where;
        EXPECT_EQ(target.GetTransform().m20, 0.0F) << where;

        target.BeginPaint();
        EXPECT_EQ(Message([&] { target.PopState(); }), "State stack is empty") << where;
        EXPECT_EQ(Message([&] { target.EndLayer(); }), "No layer is open") << where;
        target.Clear(0xFFFFFFFFU);
        FillRect(target, {20, 20, 60, 60}, {0, 0, 1, 1});
        target.EndPaint();
        const std::vector<uint32_t> pixels = reader->Read(*context);
        EXPECT_EQ(pixels[0], 0xFFFFFFFFU) << where;
        EXPECT_EQ(pixels[40 * kSide + 40], 0xFF0000FFU) << where;
    }

    D3D11RenderTargetFactory factory;
    TestWindow window(100, 80);
    const auto onWindow = factory.CreateWindowTarget(window.Get());
    const auto asksAfter = [&](bool lose) {
        ValidateRect(window.Get(), nullptr);
        onWindow->BeginPaint();
        onWindow->Clear(0xFF00FF00U);
        if (lose) {
            factory.Context()->Device().LoseForTest();
        }
        onWindow->EndPaint();
        return GetUpdateRect(window.Get(), nullptr, FALSE) != FALSE;
    };
    EXPECT_FALSE(asksAfter(false));
    EXPECT_TRUE(asksAfter(true));
    EXPECT_FALSE(asksAfter(true)) << "no endless round";
    EXPECT_FALSE(asksAfter(false));
    EXPECT_TRUE(asksAfter(true));
}

TEST_F(HardwareTest, StateErrorsAreThoseOfTheSoftware) {
    static_cast<void>(OnHardware(kSide, kSide, [](RenderTarget& t) {
        EXPECT_EQ(Message([&] { t.PopState(); }), "State stack is empty");
        EXPECT_EQ(Message([&] { t.EndLayer(); }), "No layer is open");
        t.PushState();
        t.SetShapeMask(4, std::make_shared<SolidBrush>(Color{1, 1, 1, 1}));
        EXPECT_EQ(Message([&] { FillRect(t, {0, 0, 5, 5}, {1, 1, 1, 1}); }), "Unsupported soft mask type.");
        t.PopState();
        GXLayerDesc layer{};
        t.BeginLayer(layer); // closed by the end of painting
    }));
}

TEST_F(HardwareTest, WindowsAreDrawnResizedAndMinimised) {
    D3D11RenderTargetFactory factory;
    TestWindow window(100, 80);
    ASSERT_NE(window.Get(), nullptr);
    auto onWindow = factory.CreateWindowTarget(window.Get());
    ASSERT_NE(dynamic_cast<D3D11WindowTarget*>(onWindow.get()), nullptr);
    RenderTarget target(std::move(onWindow));
    const auto paint = [&] {
        target.BeginPaint();
        target.Clear(0xFF00FF00U);
        FillRect(target, {0, 0, 50, 1000}, {1, 0, 0, 1});
        target.EndPaint();
    };
    EXPECT_EQ(target.GetSize().width, 100U);
    EXPECT_EQ(target.GetSize().height, 80U);
    paint();
    window.Resize(160, 120);
    EXPECT_EQ(target.GetSize().width, 160U);
    paint();
    window.Resize(0, 0);
    paint();
    window.Resize(60, 40);
    paint();
    factory.Context()->Device().LoseForTest();
    paint();
    paint();
    EXPECT_EQ(factory.Context()->Device().Counters().recoveries, 1U);
    window.Destroy();
    EXPECT_EQ(Message(paint), "The window does not exist");
    EXPECT_EQ(Message([&] { static_cast<void>(factory.CreateWindowTarget(window.Get())); }),
              "The window does not exist");
}

TEST_F(HardwareTest, PixelsOfAPaintSurviveResizing) {
    D3D11Context context;
    TestWindow window(40, 40);
    D3D11WindowSurface surface(window.Get());
    surface.Make(context);
    auto pixels = surface.BeginPaint(context);
    context.Device().ColorFill(*pixels, {1, 0, 0, 1});
    surface.EndPaint(context);
    window.Resize(60, 50);
    pixels = surface.BeginPaint(context);
    ASSERT_EQ(pixels->Width(), 60);
    const auto staging = context.Device().CreateSysMemSurface(60, 50, pixels->Format());
    context.Device().CopyWhole(*staging->Resource(), *pixels);
    const D3D11_MAPPED_SUBRESOURCE mapped = context.Device().MapResource(*staging->Resource(), D3D11_MAP_READ);
    const auto* row = static_cast<const uint32_t*>(mapped.pData);
    EXPECT_EQ(row[39], 0xFFFF0000U);
    EXPECT_EQ(row[40], 0xFF000000U);
    context.Device().Unmap(*staging->Resource());
}

TEST_F(HardwareTest, ThreadsWithADeviceEachShareBitmaps) {
    const auto bitmap = Blank(16, 16, 99);
    const auto work = [&bitmap] {
        auto context = std::make_shared<D3D11Context>();
        for (int round = 0; round < 20; ++round) {
            auto surface = std::make_unique<TextureSurface>(kSide, kSide);
            const TextureSurface* reader = surface.get();
            RenderTarget target(std::make_unique<D3D11RenderTarget>(context, std::move(surface)));
            target.BeginPaint();
            target.DrawBitmap(*bitmap, {0, 0, 16, 16}, {0, 0, kSide, kSide}, 1.0F, GXInterpolationNearest);
            target.EndPaint();
            EXPECT_EQ(reader->Read(*context)[5] & 0xFFFFFFU, 0x636363U);
        }
    };
    std::thread other(work);
    work();
    other.join();
}

/// Textures and the process's handles after many paints, sizes and windows are what they were after a few. With
/// GX_ENDURANCE in the environment there are 10,000, 200 and 100 of them, and the process's memory is printed.
TEST_F(HardwareTest, PaintsSizesAndWindowsAreFlat) {
    const bool full = GetEnvironmentVariableA("GX_ENDURANCE", nullptr, 0) != 0;
    const int paints = full ? 10000 : 60, sizes = full ? 200 : 12, windows = full ? 100 : 6;
    const auto tell = [&](const char* what) {
        PROCESS_MEMORY_COUNTERS memory{};
        K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
        if (full) {
            std::printf("%-24s textures %lld handles %lld pages %.1f MB\n", what,
                        static_cast<long long>(D3D11LiveCount<D3D11Texture>::Now()),
                        static_cast<long long>(WindowsSupport::ProcessHandles()),
                        static_cast<double>(memory.PagefileUsage) / 1048576.0);
        }
    };
    D3D11RenderTargetFactory factory;
    const auto bitmap = Blank(16, 16, 99);
    const auto paint = [&](RenderTarget& t, int i) {
        t.BeginPaint();
        t.Clear(0xFFFFFFFFU);
        FillRect(t, {0, 0, 30, 30}, {static_cast<float>(i % 100) / 100.0F, 0.5F, 0, 0.5F});
        t.DrawBitmap(*bitmap, {0, 0, 16, 16}, {5, 5, 40, 40}, 0.5F, GXInterpolationLinear);
        GXLayerDesc layer{};
        layer.opacity = 0.7F;
        layer.knockout = static_cast<uint8_t>(i % 2);
        t.BeginLayer(layer);
        t.SetBlendMode(i % 3 == 0 ? GXBlendModeMultiply : GXBlendModeNormal);
        FillRect(t, {10, 10, 50, 50}, {0, 0.5F, 1, 0.5F});
        t.EndLayer();
        t.EndPaint();
    };
    const auto flat = [&](const char* what, int count, auto&& work) {
        for (int i = 0; i < count / 4; ++i) {
            work(i);
        }
        const int64_t textures = D3D11LiveCount<D3D11Texture>::Now();
        const int64_t before = WindowsSupport::ProcessHandles();
        tell(what);
        for (int i = count / 4; i < count; ++i) {
            work(i);
        }
        tell(what);
        EXPECT_EQ(D3D11LiveCount<D3D11Texture>::Now(), textures) << what;
        EXPECT_LE(WindowsSupport::ProcessHandles(), before + 4) << what; // threads of the system come and go
    };
    TestWindow window(100, 80);
    RenderTarget target(factory.CreateWindowTarget(window.Get()));
    flat("paints", paints, [&](int i) { paint(target, i); });
    flat("sizes", sizes, [&](int i) {
        window.Resize(60 + i % 3 * 70, 50 + i % 3 * 40);
        paint(target, i);
        window.Resize(100, 80);
        paint(target, i);
    });
    flat("windows", windows, [&](int i) {
        const TestWindow other(90, 70);
        RenderTarget onOther(factory.CreateWindowTarget(other.Get()));
        paint(onOther, i);
    });
}

TEST_F(HardwareTest, NothingIsLeftBehind) {
    const int64_t textures = D3D11LiveCount<D3D11Texture>::Now();
    const int64_t devices = D3D11LiveCount<D3D11Device>::Now();
    const auto bitmap = Blank(16, 16, 99);
    {
        auto context = std::make_shared<D3D11Context>();
        RenderTarget target(
            std::make_unique<D3D11RenderTarget>(context, std::make_unique<TextureSurface>(kSide, kSide)));
        target.BeginPaint();
        target.DrawBitmap(*bitmap, {0, 0, 16, 16}, {0, 0, 40, 40}, 1.0F, GXInterpolationNearest);
        GXLayerDesc layer{};
        target.BeginLayer(layer);
        FillRect(target, {3, 3, 30, 30}, {1, 0, 0, 0.5F});
        target.SetBlendMode(GXBlendModeHue); // staging textures
        FillRect(target, {3, 3, 30, 30}, {1, 1, 0, 0.5F});
        target.EndLayer();
        FillRect(target, {3, 3, 30, 30}, {1, 1, 0, 0.5F});
        target.EndPaint();
        EXPECT_GT(D3D11LiveCount<D3D11Texture>::Now(), textures);
        EXPECT_EQ(D3D11LiveCount<D3D11Device>::Now(), devices + 1);
    }
    EXPECT_EQ(D3D11LiveCount<D3D11Texture>::Now(), textures) << "what hung on the bitmap, too";
    EXPECT_EQ(D3D11LiveCount<D3D11Device>::Now(), devices);
}
