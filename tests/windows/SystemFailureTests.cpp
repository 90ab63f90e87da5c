// SPDX-License-Identifier: MIT
// The system may refuse every call: the documented message comes, nothing is lost, and the next try works. Objects of
// GDI are counted over many frames.
#include "WindowsSupport.h"

#include "ProcessHeap.h"

#include <atomic>
#include <functional>

namespace {

using namespace TargetSupport;
using namespace WindowsSupport;

std::atomic<int> g_windowContexts{0}; // fetched and not given back

/// Counts the contexts of windows, which are not objects of their own in GDI's table.
void CountWindowContexts() {
    g_system.getDC = [](HWND window) -> HDC {
        const HDC dc = ::GetDC(window);
        g_windowContexts += dc != nullptr;
        return dc;
    };
    g_system.releaseDC = [](HWND window, HDC dc) -> int {
        --g_windowContexts;
        return ::ReleaseDC(window, dc);
    };
}

class SystemFailure : public ::testing::Test {
public:
    void SetUp() override {
        g_windowContexts = 0;
        picture.Fill(0x445566);
    }
    void TearDown() override { g_system = SystemCalls(); }

    GXResult Window() {
        Owned<GXRenderTarget> target;
        const GXResult made = GXCreateRenderTargetHWND(window.Get(), 1, target.Out());
        return made != GXResultSuccess ? made : Frame(target);
    }
    GXResult Device() {
        const GXIntRect area{2, 2, 20, 16};
        Owned<GXRenderTarget> target;
        const GXResult made = GXCreateRenderTargetHDC(picture.Context(), &area, target.Out());
        return made != GXResultSuccess ? made : Frame(target);
    }
    GXResult ToNative() {
        GXNativeBitmap native = nullptr;
        const GXResult result = GXBitmapSaveToHBITMAP(bitmap, &native);
        EXPECT_EQ(native != nullptr, result == GXResultSuccess);
        DeleteObject(native);
        return result;
    }
    GXResult FromNative() {
        Owned<GXBitmap> loaded;
        return GXCreateBitmapFromHBITMAP(picture.Bitmap(), loaded.Out());
    }

    const TestWindow window{24, 18};
    GdiPicture picture{24, 18};
    const Owned<GXBitmap> bitmap = MakeBitmap(9, 9, GXPixelFormatBGRA32);
    const LastMessage message;

private:
    static GXResult Frame(GXRenderTarget target) {
        const GXRect all{0, 0, 24, 18};
        const Owned<GXBrush> brush = Solid(0x80FF0000U);
        if (const GXResult begun = GXRenderTargetBeginPaint(target); begun != GXResultSuccess) {
            return begun;
        }
        const GXResult drawn = GXRenderTargetFillEllipse(target, &all, brush);
        const GXResult ended = GXRenderTargetEndPaint(target);
        return drawn != GXResultSuccess ? drawn : ended;
    }
};

TEST_F(SystemFailure, EveryRefusedCallHasItsMessageAndLosesNothing) {
    using Fixture = SystemFailure;
    struct Case {
        const char* call;
        void (*refuse)();
        GXResult (Fixture::*work)();
        const char* message; // null: the work is done nevertheless
    };
    const auto at16Bits = [] {
        g_system.getDeviceCaps = [](HDC dc, int i) { return i == BITSPIXEL ? 16 : ::GetDeviceCaps(dc, i); };
    };
    static const auto few = at16Bits;
    const Case cases[] = {
        {"IsWindow", [] { g_system.isWindow = [](HWND) -> BOOL { return 0; }; }, &Fixture::Window,
         "The window does not exist"},
        {"GetClientRect", [] { g_system.getClientRect = [](HWND, RECT*) -> BOOL { return 0; }; }, &Fixture::Window,
         "The window does not exist"},
        {"CreateIC",
         [] { g_system.createIC = [](LPCWSTR, LPCWSTR, LPCWSTR, const DEVMODEW*) -> HDC { return nullptr; }; },
         &Fixture::Window, "The DC does not exist"},
        {"GetDC", [] { g_system.getDC = [](HWND) -> HDC { return nullptr; }; }, &Fixture::Window,
         "The DC does not exist"},
        {"SaveDC (window)", [] { g_system.saveDC = [](HDC) { return 0; }; }, &Fixture::Window,
         "SetDIBitsToDevice is failed."},
        {"SetDIBitsToDevice",
         [] {
             g_system.setDIBitsToDevice = [](HDC, int, int, DWORD, DWORD, int, int, UINT, UINT, const void*,
                                             const BITMAPINFO*, UINT) { return 0; };
         },
         &Fixture::Window, "SetDIBitsToDevice is failed."},
        {"CreateCompatibleDC", [] { g_system.createCompatibleDC = [](HDC) -> HDC { return nullptr; }; },
         &Fixture::Device, "CreateCompatibleDC is failed."},
        {"CreateDIBSection",
         [] {
             g_system.createDIBSection = [](HDC, const BITMAPINFO*, UINT, void**, HANDLE, DWORD) -> HBITMAP {
                 return nullptr;
             };
         },
         &Fixture::Device, "CreateDIBSection fail"},
        {"SelectObject", [] { g_system.selectObject = [](HDC, HGDIOBJ) -> HGDIOBJ { return nullptr; }; },
         &Fixture::Device, "SelectObject is failed."},
        {"GetObjectType", [] { g_system.getObjectType = [](HGDIOBJ) -> DWORD { return 0; }; }, &Fixture::Device,
         "The DC does not exist"},
        {"SaveDC (device)", [] { g_system.saveDC = [](HDC) { return 0; }; }, &Fixture::Device, "BitBlt is failed."},
        {"BitBlt", [] { g_system.bitBlt = [](HDC, int, int, int, int, HDC, int, int, DWORD) -> BOOL { return 0; }; },
         &Fixture::Device, "BitBlt is failed."},
        {"CreateCompatibleBitmap",
         [] {
             few();
             g_system.createCompatibleBitmap = [](HDC, int, int) -> HBITMAP { return nullptr; };
         },
         &Fixture::Device, "CreateCompatibleBitmap is failed."},
        {"StretchBlt",
         [] {
             few();
             g_system.stretchBlt = [](HDC, int, int, int, int, HDC, int, int, int, int, DWORD) -> BOOL { return 0; };
         },
         &Fixture::Device, "BitBlt is failed."},
        {"CreateCompatibleDC (second)",
         [] {
             few();
             static int calls;
             calls = 0;
             g_system.createCompatibleDC = [](HDC dc) -> HDC {
                 return ++calls > 1 ? nullptr : ::CreateCompatibleDC(dc);
             };
         },
         &Fixture::Device, "CreateCompatibleDC is failed."},
        {"reading the device",
         [] {
             g_system.bitBlt = [](HDC to, int x, int y, int w, int h, HDC from, int fromX, int fromY,
                                  DWORD how) -> BOOL {
                 return x == 0 ? 0 : ::BitBlt(to, x, y, w, h, from, fromX, fromY, how);
             };
         },
         &Fixture::Device, nullptr},
        {"CreateDIBSection (saving)",
         [] {
             g_system.createDIBSection = [](HDC, const BITMAPINFO*, UINT, void**, HANDLE, DWORD) -> HBITMAP {
                 return nullptr;
             };
         },
         &Fixture::ToNative, "CreateDIBSection fail"},
        {"CreateDIBSection without memory",
         [] {
             g_system.createDIBSection = [](HDC dc, const BITMAPINFO* i, UINT u, void** p, HANDLE h,
                                            DWORD o) -> HBITMAP {
                 const HBITMAP section = ::CreateDIBSection(dc, i, u, p, h, o);
                 *p = nullptr;
                 return section;
             };
         },
         &Fixture::ToNative, "CreateDIBSection fail"},
        {"GetObject", [] { g_system.getObject = [](HANDLE, int, void*) { return 0; }; }, &Fixture::FromNative,
         "Failed to load"},
        {"CreateCompatibleDC (loading)", [] { g_system.createCompatibleDC = [](HDC) -> HDC { return nullptr; }; },
         &Fixture::FromNative, "Failed to load"},
        {"GetDIBits", [] { g_system.getDIBits = [](HDC, HBITMAP, UINT, UINT, void*, BITMAPINFO*, UINT) { return 0; }; },
         &Fixture::FromNative, "Failed to load"},
    };
    for (GXResult (Fixture::*work)() : {&Fixture::Window, &Fixture::Device, &Fixture::ToNative, &Fixture::FromNative}) {
        ASSERT_EQ((this->*work)(), GXResultSuccess); // what is made once and kept
    }
    const size_t objects = GdiObjects();
    for (const Case& c : cases) {
        CountWindowContexts();
        c.refuse();
        EXPECT_EQ((this->*c.work)(), c.message != nullptr ? GXResultEngineError : GXResultSuccess) << c.call;
        if (c.message != nullptr) {
            EXPECT_EQ(message.Text(), c.message) << c.call;
        }
        EXPECT_EQ(GdiObjects(), objects) << c.call;
        EXPECT_EQ(g_windowContexts, 0) << c.call;
        g_system = SystemCalls();
        EXPECT_EQ((this->*c.work)(), GXResultSuccess) << "after " << c.call;
    }
}

TEST_F(SystemFailure, RefusedMemoryLosesNoObject) {
    for (GXResult (SystemFailure::*work)() :
         {&SystemFailure::Window, &SystemFailure::Device, &SystemFailure::ToNative, &SystemFailure::FromNative}) {
        ASSERT_EQ((this->*work)(), GXResultSuccess);
        const size_t objects = GdiObjects();
        CountWindowContexts();
        int failures = 0;
        for (int64_t n = 0;; ++n) {
            Graphics::ProcessHeap::FailAfter(n);
            const GXResult result = (this->*work)();
            Graphics::ProcessHeap::FailAfter(-1);
            EXPECT_EQ(GdiObjects(), objects);
            EXPECT_EQ(g_windowContexts, 0);
            if (result == GXResultSuccess) {
                break;
            }
            ++failures;
            ASSERT_EQ(result, GXResultEngineError);
            ASSERT_EQ(message.Text(), "Not enough memory");
            ASSERT_LT(n, 200);
        }
        // Saving writes into the section; all the others take memory of their own.
        EXPECT_TRUE(failures > 0 || work == &SystemFailure::ToNative);
        g_system = SystemCalls();
    }
}

TEST_F(SystemFailure, AThousandCyclesKeepTheNumberOfObjects) {
    CountWindowContexts();
    size_t objects = 0;
    for (int cycle = 0; cycle < 1000; ++cycle) {
        ASSERT_EQ(Window(), GXResultSuccess);
        ASSERT_EQ(Device(), GXResultSuccess);
        ASSERT_EQ(ToNative(), GXResultSuccess);
        ASSERT_EQ(FromNative(), GXResultSuccess);
        if (cycle == 0) {
            objects = GdiObjects();
            // The count itself is worth something.
            const HBITMAP extra = CreateBitmap(1, 1, 1, 1, nullptr);
            ASSERT_EQ(GdiObjects(), objects + 1);
            DeleteObject(extra);
        }
    }
    EXPECT_EQ(GdiObjects(), objects);
    EXPECT_EQ(g_windowContexts, 0);
}

} // namespace
