// SPDX-License-Identifier: MIT
// Which windows are drawn by the graphics card: those of threads that asked for it, unless the host wants software.
#include <thread>

#include "Direct3D11/D3D11WindowTarget.h"
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
        const auto* onWindow = dynamic_cast<D3D11WindowTarget*>(target.get());
        EXPECT_NE(onWindow == nullptr, dynamic_cast<SwRenderTarget*>(target.get()) == nullptr);
        return onWindow != nullptr && onWindow->IsOnCard();
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
