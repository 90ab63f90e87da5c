// SPDX-License-Identifier: MIT
// Which windows are drawn by the graphics card: those of threads that asked for it, unless the host wants software.
#include <thread>

#include "HardwareTest.h"
#include "Software/SwRenderTarget.h"
#include "Target/PlatformTargets.h"

using namespace Graphics;

TEST_F(HardwareTest, ThreadsThatAskDrawTheirWindowsOnTheCard) {
    const HWND window =
        CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 20, 20, 50, 40, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    const auto onCard = [&](bool softwareOnly) {
        const auto target = CreateWindowTarget(window, softwareOnly);
        target->BeginPaint();
        target->Clear(0xFF00FF00U);
        target->EndPaint();
        EXPECT_NE(dynamic_cast<D3D11RenderTarget*>(target.get()) == nullptr,
                  dynamic_cast<SwRenderTarget*>(target.get()) == nullptr);
        return dynamic_cast<D3D11RenderTarget*>(target.get()) != nullptr;
    };
    EXPECT_FALSE(onCard(false)) << "this thread has not asked yet";
    EnableHardwareForThread();
    EnableHardwareForThread();
    EXPECT_TRUE(onCard(false));
    EXPECT_FALSE(onCard(true));
    bool other = true;
    std::thread([&] { other = onCard(false); }).join();
    EXPECT_FALSE(other);
    std::thread([&] {
        EnableHardwareForThread();
        other = onCard(false);
    }).join();
    EXPECT_TRUE(other);
    DestroyWindow(window);
}
