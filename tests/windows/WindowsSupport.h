// SPDX-License-Identifier: MIT
// What the tests on Windows share: a window, a picture of GDI whose pixels can be read, the count of GDI objects, a
// scene.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "TargetSupport.h"
#include "Windows/SystemCalls.h"

namespace WindowsSupport {

using Graphics::g_system;
using Graphics::SystemCalls;

/// GDI objects that this process has. Wine leaves GetGuiResources at 0; there and on Windows alike the process can see
/// the system's table of them: entries of 24 bytes, the object's type at byte 14.
inline size_t GdiObjects() {
    GdiFlush();
    if (const DWORD known = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS); known != 0) {
        return known;
    }
    using CurrentPeb = const unsigned char*(WINAPI*)();
    const FARPROC found = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetCurrentPeb");
    const auto* peb = reinterpret_cast<CurrentPeb>(reinterpret_cast<void*>(found))();
    const auto* table = *reinterpret_cast<const unsigned char* const*>(peb + 0xF8);
    size_t count = 0;
    for (size_t i = 0; i < 0x4000; ++i) {
        count += *reinterpret_cast<const uint16_t*>(table + i * 24 + 14) != 0;
    }
    return count;
}

/// A top-down picture of `bits` a pixel in a device context of its own.
class GdiPicture {
public:
    GdiPicture(int width, int height, int bits = 32) : m_width(width), m_height(height) {
        struct {
            BITMAPINFOHEADER header{};
            RGBQUAD colors[256]{};
        } info;
        info.header.biSize = sizeof info.header;
        info.header.biWidth = width;
        info.header.biHeight = -height;
        info.header.biPlanes = 1;
        info.header.biBitCount = static_cast<WORD>(bits);
        void* pixels = nullptr;
        m_bitmap = CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS, &pixels, nullptr, 0);
        m_pixels = static_cast<uint32_t*>(pixels);
        m_dc = CreateCompatibleDC(nullptr);
        m_before = SelectObject(m_dc, m_bitmap);
    }
    GdiPicture(const GdiPicture&) = delete;
    GdiPicture& operator=(const GdiPicture&) = delete;
    ~GdiPicture() {
        SelectObject(m_dc, m_before);
        DeleteDC(m_dc);
        DeleteObject(m_bitmap);
    }

    [[nodiscard]] HDC Context() const { return m_dc; }
    [[nodiscard]] HBITMAP Bitmap() const { return m_bitmap; }
    [[nodiscard]] uint32_t* Data() const { return m_pixels; }
    void Fill(uint32_t rgb) {
        std::fill_n(m_pixels, static_cast<size_t>(m_width) * static_cast<size_t>(m_height), rgb);
    }
    /// Colours of 32-bit pixels, the fourth byte 0.
    [[nodiscard]] std::vector<uint32_t> Colors() const {
        GdiFlush();
        std::vector<uint32_t> colors(m_pixels, m_pixels + static_cast<size_t>(m_width) * static_cast<size_t>(m_height));
        for (uint32_t& c : colors) {
            c &= 0xFFFFFF;
        }
        return colors;
    }

private:
    int m_width, m_height;
    HDC m_dc = nullptr;
    HBITMAP m_bitmap = nullptr;
    HGDIOBJ m_before = nullptr;
    uint32_t* m_pixels = nullptr;
};

/// A visible window without a frame: its client area is all of it.
class TestWindow {
public:
    TestWindow(int width, int height) {
        static const ATOM known = [] {
            WNDCLASSW description{};
            description.lpfnWndProc = DefWindowProcW;
            description.hInstance = GetModuleHandleW(nullptr);
            description.lpszClassName = L"GraphicsTest";
            description.style = CS_OWNDC; // its context keeps what a host sets in it
            return RegisterClassW(&description);
        }();
        m_window = CreateWindowExW(0, known != 0 ? L"GraphicsTest" : nullptr, L"Graphics", WS_POPUP | WS_VISIBLE, 20,
                                   20, width, height, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
        EXPECT_NE(m_window, nullptr) << "no display?";
    }
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;
    ~TestWindow() { Destroy(); }

    void Destroy() {
        if (m_window != nullptr) {
            DestroyWindow(std::exchange(m_window, nullptr));
        }
    }
    [[nodiscard]] HWND Get() const { return m_window; }
    void Resize(int width, int height) {
        SetWindowPos(m_window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
    }
    [[nodiscard]] std::vector<uint32_t> Colors(int width, int height) const {
        const GdiPicture picture(width, height);
        const HDC dc = GetDC(m_window);
        const int saved = SaveDC(dc);
        SetMapMode(dc, MM_TEXT);
        SetViewportOrgEx(dc, 0, 0, nullptr);
        EXPECT_TRUE(BitBlt(picture.Context(), 0, 0, width, height, dc, 0, 0, SRCCOPY));
        RestoreDC(dc, saved);
        ReleaseDC(m_window, dc);
        return picture.Colors();
    }

private:
    HWND m_window = nullptr;
};

/// Something of everything, drawn in a bracket of its own over what is there. The result is that of EndPaint.
inline GXResult DrawScene(GXRenderTarget target, float width, float height) {
    using TargetSupport::Owned;
    const GXGradientStop stops[] = {{0.0F, 0xFF203A8CU}, {0.6F, 0x80E86A5CU}, {1.0F, 0xFFFFE08AU}};
    const GXLinearGradientDesc desc = {stops, 3, {0, 0}, {width, height}, 1, 1, 0};
    Owned<GXGradient> gradient;
    EXPECT_EQ(GXCreateGradientLinear(&desc, gradient.Out()), GXResultSuccess);
    const Owned<GXBrush> green = TargetSupport::Solid(0x9020C040U);
    const Owned<GXBrush> dark = TargetSupport::Solid(0xFF101020U);
    const GXRect disc = {width * 0.2F, height * 0.1F, width * 0.9F, height * 0.8F};
    const GXPoint from = {0, height}, to = {width, 3};
    const GXLayerDesc layer = {{0, 0, 0, 0}, 0.5F, 0, 0};
    EXPECT_EQ(GXRenderTargetBeginPaint(target), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetDrawGradient(target, gradient, 0.7F, nullptr), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetBeginLayer(target, &layer), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetFillEllipse(target, &disc, green), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetEndLayer(target), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetStrokeLine(target, &from, &to, dark, 2.5F, nullptr), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetClipEllipse(target, &disc), GXResultSuccess);
    EXPECT_EQ(GXRenderTargetInvertRect(target, &disc), GXResultSuccess);
    return GXRenderTargetEndPaint(target);
}

/// The colours of that scene over a plain ground, drawn into a bitmap.
inline std::vector<uint32_t> SceneColors(uint32_t width, uint32_t height, uint32_t rgb) {
    const TargetSupport::Owned<GXBitmap> bitmap = TargetSupport::MakeBitmap(width, height, GXPixelFormatBGRX32);
    EXPECT_EQ(GXBitmapColorFill(bitmap, nullptr, 0xFF000000U | rgb), GXResultSuccess);
    TargetSupport::Owned<GXRenderTarget> target;
    EXPECT_EQ(GXCreateRenderTargetBitmap(bitmap, target.Out()), GXResultSuccess);
    EXPECT_EQ(DrawScene(target, static_cast<float>(width), static_cast<float>(height)), GXResultSuccess);
    std::vector<uint32_t> colors(static_cast<size_t>(width) * height);
    const GXBitmapData data{colors.data(), width * 4, width * 4};
    EXPECT_EQ(GXBitmapCopyToMemory(bitmap, nullptr, &data), GXResultSuccess);
    for (uint32_t& c : colors) {
        c &= 0xFFFFFF;
    }
    return colors;
}

} // namespace WindowsSupport
