// SPDX-License-Identifier: MIT
// What cannot be had: shaders that the compiler refuses, and a device.
#include <random>

#include "Exception.h"
#include "HardwareTest.h"
#include "Paint/Gradient.h"
#include "Software/SwRenderTarget.h"
#include "Target/PlatformTargets.h"

using namespace Graphics;

namespace {

constexpr int32_t kSide = 96;

void FillEllipse(RenderTarget& t, const Rect& r, const Brush& brush) {
    const BasicFigure figure(BasicFigure::Kind::Ellipse, r);
    t.Fill(figure, brush);
}

[[nodiscard]] std::shared_ptr<Bitmap> Noise(int32_t width, int32_t height) {
    auto image = std::make_shared<SysMemBitmap>(width, height, GXPixelFormatBGRX32);
    std::mt19937 random(5);
    for (size_t i = 0; i < static_cast<size_t>(height) * image->StrideBytes(); ++i) {
        image->Data()[i] = static_cast<uint8_t>(random());
    }
    return std::make_shared<Bitmap>(image);
}

} // namespace

class RefusedShaderTest : public HardwareTest {
protected:
    /// A device of its own, on which the texts for which `refuses` is true do not compile.
    [[nodiscard]] static std::shared_ptr<D3D11Context> Refusing(bool (*refuses)(const std::string&)) {
        auto context = std::make_shared<D3D11Context>();
        context->Compiler().RefuseForTest(refuses);
        return context;
    }
};

/// Tiles of every kind, slanted bands, clips, gradients, masks, inversion, clears in clips, and groups in groups:
/// whatever is refused, the page is the software's.
TEST_F(RefusedShaderTest, TheSoftwareDrawsWhatIsRefused) {
    const auto noise = Noise(13, 11);
    const Drawing draw = [&](RenderTarget& t) {
        t.Clear(0xFFE0D0C0U);
        for (uint32_t i = 0; i < 9; ++i) {
            BitmapBrush tile(noise);
            tile.interpolation = i % 2 == 0 ? GXInterpolationLinear : GXInterpolationNearest;
            tile.extendX = i % 3;
            tile.extendY = i / 3;
            tile.transform = {1.3F, 0.2F, -0.1F, 1.1F, 4.3F, 2.6F};
            const auto x = static_cast<float>(30 * (i % 3));
            const auto y = static_cast<float>(30 * (i / 3));
            FillEllipse(t, {x + 8, y + 8, x + 33, y + 34}, tile);
        }
        t.PushState();
        const BasicFigure clip(BasicFigure::Kind::Ellipse, {10, 5, 90, 70});
        t.Clip(clip);
        auto gradient = std::make_shared<LinearGradient>();
        gradient->end = {90, 40};
        const GradientStop stops[] = {{0.0F, 0x80FF0000U}, {0.5F, 0xFF00FF00U}, {1.0F, 0x200000FFU}};
        gradient->stops.Add(stops, std::size(stops));
        t.SetShapeMask(GXMaskTypeLuminosity, std::make_shared<GradientBrush>(gradient));
        auto stains = std::make_shared<BitmapBrush>(noise);
        stains->transform = {8, 0, 0, 8, 0, 0};
        t.SetOpacityMask(GXMaskTypeInverseLuminosity, stains);
        t.SetBlendMode(GXBlendModeSoftLight);
        FillEllipse(t, {20, 20, 80, 80}, SolidBrush({0.1F, 0.3F, 0.9F, 0.8F}));
        t.Clear(0x40FF8000U);
        t.PopState();
        t.InvertRect({70, 60, 90, 90});
        GXLayerDesc layer{};
        for (uint32_t kind = 0; kind < 4; ++kind) {
            layer.opacity = 0.9F;
            layer.isolated = kind & 1U;
            layer.knockout = kind >> 1U;
            t.BeginLayer(layer);
            const auto x = static_cast<float>(20 * kind);
            FillEllipse(t, {x, 10, x + 36, 50}, SolidBrush({0.9F, 0.2F, 0.1F, 0.6F}));
            t.PushState();
            const BasicFigure hole(BasicFigure::Kind::Ellipse, {x, 60, x + 30, 80});
            t.Clip(hole);
            t.Clear(0x80204060U);
            t.PopState();
            t.SetBlendMode(GXBlendModeSoftLight);
            FillEllipse(t, {x + 5, 30, x + 30, 90}, SolidBrush({0.1F, 0.7F, 0.4F, 0.7F}));
        }
        for (int i = 0; i < 4; ++i) {
            t.EndLayer();
        }
    };
    struct Refusal {
        const char* what;
        bool (*refuses)(const std::string& text);
    };
    const Refusal refusals[] = {
        {"everything", [](const std::string&) { return true; }},
        {"opacity", [](const std::string& text) { return text.find("PS_BO") != std::string::npos; }},
        {"coverage", [](const std::string& text) { return text.find("PS_BSAlpha") != std::string::npos; }},
        {"modes", [](const std::string& text) { return text.find("PS_BasicComposition") != std::string::npos; }},
        {"groups", [](const std::string& text) { return text.find("LayerComposition") != std::string::npos; }},
        {"results", [](const std::string& text) { return text.find("LayerResultComposition") != std::string::npos; }},
    };
    const std::vector<uint32_t> software = InSoftware(kSide, kSide, draw);
    const uint64_t before = Context()->Device().Counters().fallbackDraws;
    static_cast<void>(OnHardware(kSide, kSide, draw));
    const uint64_t usual = Context()->Device().Counters().fallbackDraws - before;
    for (const Refusal& refusal : refusals) {
        const auto context = Refusing(refusal.refuses);
        const Difference d = Compare(On(context, kSide, kSide, draw), software, kSide);
        EXPECT_LE(d.mean, 1.0) << refusal.what << " " << d.largest << " at " << d.x << " " << d.y;
        EXPECT_LE(d.above16, 0.004) << refusal.what << " " << d.largest << " at " << d.x << " " << d.y;
        const D3D11Counters once = context->Device().Counters();
        EXPECT_GT(once.fallbackDraws, usual) << refusal.what;
        EXPECT_EQ(once.compilations, context->Shaders().Count()) << refusal.what << ": refused once, not asked again";
    }
}

/// Only what is refused goes to the software; before and after it the card draws.
TEST_F(RefusedShaderTest, OneRefusedModeLeavesTheOthersOnTheCard) {
    const auto context =
        Refusing([](const std::string& text) { return text.find("SetLum(cs, ") != std::string::npos; });
    const Drawing draw = [](RenderTarget& t) {
        t.Clear(0xFF808040U);
        for (const uint32_t mode : {GXBlendModeMultiply, GXBlendModeColor, GXBlendModeScreen, GXBlendModeColor}) {
            t.SetBlendMode(mode);
            const auto at = static_cast<float>(mode * 3);
            FillEllipse(t, {at, at, at + 50, at + 40}, SolidBrush({0.2F, 0.8F, 0.5F, 0.7F}));
        }
    };
    const std::vector<uint32_t> drawn = On(context, kSide, kSide, draw);
    EXPECT_EQ(context->Device().Counters().fallbackDraws, 2U);
    EXPECT_EQ(context->Device().Counters().compilations, context->Shaders().Count());
    EXPECT_LE(Compare(drawn, InSoftware(kSide, kSide, draw), kSide).largest, 6); // three draws, one over the other

    D3D11ShaderKey color;
    static_cast<void>(color.Add(D3D11Fragment::T2D));
    color.SetComposition(D3D11Fragment::BasicComposition, GXBlendModeColor);
    EXPECT_FALSE(context->Shaders().Has(color));
    std::string message;
    try {
        static_cast<void>(context->Shaders().Get(color));
    } catch (const Exception& e) {
        message = e.what();
    }
    EXPECT_EQ(message, "Failed to compile shader") << "to who needs the shader itself";
}

/// A thread that asks for hardware where there is none draws in software, and nobody is told. Wine is told by a
/// variable to have no device, before the process starts.
TEST(WithoutADevice, WindowsAreDrawnInSoftware) {
    constexpr const char* kConfig = "WINE_D3D_CONFIG";
    constexpr const char* kNone = "renderer=no3d";
    char value[64] = {};
    if (GetEnvironmentVariableA(kConfig, value, sizeof(value)) == 0 || std::string(value) != kNone) {
        if (GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr) {
            GTEST_SKIP() << "only Wine can be told to have no device";
        }
        char program[MAX_PATH] = {};
        GetModuleFileNameA(nullptr, program, MAX_PATH);
        std::string command = std::string("\"") + program + "\" --gtest_filter=WithoutADevice.*";
        const std::string kept = value;
        SetEnvironmentVariableA(kConfig, kNone);
        STARTUPINFOA start{};
        start.cb = sizeof(start);
        PROCESS_INFORMATION process{};
        const BOOL started =
            CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process);
        SetEnvironmentVariableA(kConfig, kept.empty() ? nullptr : kept.c_str());
        ASSERT_NE(started, FALSE);
        WaitForSingleObject(process.hProcess, INFINITE);
        DWORD code = 1;
        GetExitCodeProcess(process.hProcess, &code);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        EXPECT_EQ(code, 0U);
        return;
    }
    try {
        const D3D11Device device;
        FAIL() << "there is a device";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.what(), "D3D11 error");
    }
    EnableHardwareForThread();
    const HWND window =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 20, 20, 50, 40, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    const auto target = CreateWindowTarget(window, false);
    EXPECT_NE(dynamic_cast<SwRenderTarget*>(target.get()), nullptr);
    target->BeginPaint();
    target->Clear(0xFF00FF00U);
    target->EndPaint();
    const HDC dc = GetDC(window);
    EXPECT_EQ(GetPixel(dc, 25, 20), RGB(0, 255, 0));
    ReleaseDC(window, dc);
    DestroyWindow(window);
}
