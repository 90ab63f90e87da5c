// SPDX-License-Identifier: MIT
// The viewer's window: what is seen in it has the pixels of the page drawn into a bitmap, wherever it is moved to.
#include "MainWindow.h"

#include "Container.h"

#include "../ScratchFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace Viewer {
namespace {

const std::string kPages = GX_RECORDINGS;

std::vector<uint32_t> SeenIn(HWND window, int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HDC memory = CreateCompatibleDC(nullptr), screen = GetDC(window);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    EXPECT_NE(BitBlt(memory, 0, 0, width, height, screen, 0, 0, SRCCOPY), FALSE);
    GdiFlush();
    const auto* const first = static_cast<const uint32_t*>(bits);
    const std::vector<uint32_t> pixels(first, first + static_cast<size_t>(width) * height);
    SelectObject(memory, before);
    ReleaseDC(window, screen);
    DeleteDC(memory);
    DeleteObject(bitmap);
    return pixels;
}

int Distance(uint32_t a, uint32_t b) {
    int most = 0;
    for (int c = 0; c < 24; c += 8)
        most = std::max(most, std::abs(static_cast<int>(a >> c & 255) - static_cast<int>(b >> c & 255)));
    return most;
}

class ViewerWindow : public ::testing::Test {
protected:
    // The window shows just what a bitmap has there, and ground around the page.
    void ExpectThePage(const std::string& page, const MainWindow& window, const char* when) {
        SCOPED_TRACE(when);
        const View& view = window.GetView();
        const Box seen = view.Visible(), whole = view.Page();
        RECT client{};
        GetClientRect(window.Window(), &client);
        ASSERT_EQ(client.right, view.ClientWidth());
        ASSERT_EQ(client.bottom, view.ClientHeight());
        UpdateWindow(window.Window());
        const std::vector<uint32_t> pixels = SeenIn(window.Window(), client.right, client.bottom);
        // The same calls, on a bitmap without a clip. Where a clip begins images are sampled from there on, which may
        // round a level otherwise.
        const GXBitmapDesc size{static_cast<uint32_t>(client.right), static_cast<uint32_t>(client.bottom),
                                GXPixelFormatBGRX32, 96, 96};
        const GXIntRect paper{seen.left, seen.top, seen.left + seen.width, seen.top + seen.height};
        const GXMatrix place{1, 0, 0, 1, static_cast<float>(whole.left), static_cast<float>(whole.top)};
        Gxr::Handle<GXBitmap> bitmap;
        Gxr::Handle<GXRenderTarget> target;
        ASSERT_EQ(GXCreateBitmap(&size, bitmap.Out()), GXResultSuccess);
        ASSERT_EQ(GXBitmapColorFill(bitmap.Get(), &paper, 0xFFFFFFFF), GXResultSuccess);
        ASSERT_EQ(GXCreateRenderTargetBitmap(bitmap.Get(), target.Out()), GXResultSuccess);
        ASSERT_EQ(GXRenderTargetSetCTM(target.Get(), &place), GXResultSuccess);
        const Gxr::Recording recording = Gxr::Recording::FromFile(page);
        Gxr::Player(recording).Play(target.Get(), view.Zoom());
        std::vector<uint32_t> drawn(pixels.size());
        const GXBitmapData memory{drawn.data(), size.width * 4, size.width * 4};
        ASSERT_EQ(GXBitmapCopyToMemory(bitmap.Get(), nullptr, &memory), GXResultSuccess);

        const COLORREF shade = GetSysColor(COLOR_APPWORKSPACE);
        const uint32_t ground =
            uint32_t{GetRValue(shade)} << 16 | uint32_t{GetGValue(shade)} << 8 | uint32_t{GetBValue(shade)};
        size_t onPage = 0, around = 0;
        for (int y = 0; y < client.bottom; ++y) {
            for (int x = 0; x < client.right; ++x) {
                const size_t at = static_cast<size_t>(y) * size.width + static_cast<size_t>(x);
                if (x >= paper.left && x < paper.right && y >= paper.top && y < paper.bottom)
                    onPage += Distance(pixels[at], drawn[at]) > 1;
                else
                    around += (pixels[at] & 0xFFFFFF) != ground;
            }
        }
        EXPECT_EQ(onPage, 0U) << "pixels of the page";
        EXPECT_EQ(around, 0U) << "pixels around the page";
    }
};

TEST_F(ViewerWindow, ShowsThePageFittedZoomedMovedAndResized) {
    const std::string page = kPages + "/vector_tiger-1.gxr";
    MainWindow window({});
    window.Open(Wide(page));
    ShowWindow(window.Window(), SW_SHOWNOACTIVATE);
    ExpectThePage(page, window, "fitted");
    RECT place{};
    GetWindowRect(window.Window(), &place);

    const LPARAM cursor = MAKELPARAM(place.left + 300, place.top + 400);
    for (int i = 0; i < 4; ++i)
        SendMessageW(window.Window(), WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), cursor);
    EXPECT_FALSE(window.GetView().IsFitted());
    ExpectThePage(page, window, "zoomed");

    const Box before = window.GetView().Page();
    SendMessageW(window.Window(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(200, 200));
    SendMessageW(window.Window(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(170, 215));
    SendMessageW(window.Window(), WM_LBUTTONUP, 0, MAKELPARAM(170, 215));
    SendMessageW(window.Window(), WM_MOUSEMOVE, 0, MAKELPARAM(20, 20));
    EXPECT_EQ(window.GetView().Page(), (Box{before.left - 30, before.top + 15, before.width, before.height}));
    ExpectThePage(page, window, "dragged");

    SetWindowPos(window.Window(), nullptr, 0, 0, 500, 620, SWP_NOZORDER | SWP_NOMOVE | SWP_NOACTIVATE);
    ExpectThePage(page, window, "resized");
    SendMessageW(window.Window(), WM_KEYDOWN, VK_END, 0);
    const Box low = window.GetView().Page();
    EXPECT_EQ(low.top + low.height, window.GetView().ClientHeight());
    SendMessageW(window.Window(), WM_VSCROLL, SB_TOP, 0);
    EXPECT_EQ(window.GetView().Page().top, 0);
    ExpectThePage(page, window, "at the top");
}

// A page that draws for itself and is not filled by its recording; then another one in the same window.
TEST_F(ViewerWindow, PagesWithMasksAndAnotherDocument) {
    MainWindow window({});
    ShowWindow(window.Window(), SW_SHOWNOACTIVATE);
    for (const char* name : {"/softmask_luminosity-1.gxr", "/page_tiny-1.gxr"}) {
        window.Open(Wide(kPages + name));
        ExpectThePage(kPages + name, window, name);
    }
    for (int i = 0; i < 6; ++i)
        SendMessageW(window.Window(), WM_CHAR, '+', 0);
    SendMessageW(window.Window(), WM_KEYDOWN, VK_DOWN, 0);
    ExpectThePage(kPages + "/page_tiny-1.gxr", window, "zoomed");
    EXPECT_THROW(window.Open(L"nowhere.gxr"), Gxr::Error);
    ExpectThePage(kPages + "/page_tiny-1.gxr", window, "after a file that is not there");
}

TEST_F(ViewerWindow, RecordingsArePagesToBeTurned) {
    MainWindow window({});
    window.Open(std::vector<std::string>{kPages + "/page_tiny-1.gxr", kPages + "/text_clip-2.gxr"});
    ShowWindow(window.Window(), SW_SHOWNOACTIVATE);
    ExpectThePage(kPages + "/page_tiny-1.gxr", window, "the first");
    SendMessageW(window.Window(), WM_KEYDOWN, VK_NEXT, 0);
    EXPECT_EQ(window.Page(), 1);
    ExpectThePage(kPages + "/text_clip-2.gxr", window, "the second");
    SendMessageW(window.Window(), WM_CHAR, 'n', 0);
    EXPECT_EQ(window.Page(), 1);
    SendMessageW(window.Window(), WM_KEYDOWN, VK_HOME, 0);
    ExpectThePage(kPages + "/page_tiny-1.gxr", window, "the first again");
}

// A file in order whose page the library refuses, found while painting.
TEST_F(ViewerWindow, AFrameThatFailsEndsTheProgramWhereNobodyWatches) {
    Gxr::ByteWriter body;
    body.U32(40);
    body.U32(30);
    body.U32(GXPixelFormatBGRX32);
    body.F32(96.0f);
    body.F32(96.0f);
    body.U8(static_cast<uint8_t>(Gxr::ObjectKind::End));
    body.U8(static_cast<uint8_t>(Gxr::Op::BeginPaint));
    body.U8(static_cast<uint8_t>(Gxr::Op::FillGeometry));
    body.Count(0); // no geometry
    body.Count(0); // no brush
    body.U8(static_cast<uint8_t>(Gxr::Op::End));
    const std::filesystem::path refused = ScratchFolder() / "refused.gxr";
    Gxr::WriteFile(refused.string(), Gxr::Pack(body.Get()));
    Options options;
    options.frames = 3;
    {
        MainWindow window(options);
        window.Open(refused.wstring());
        EXPECT_EQ(window.Run(), 1);
    }
    MainWindow window(options);
    window.Open(Wide(kPages + "/page_tiny-1.gxr"));
    EXPECT_EQ(window.Run(), 0);
}

TEST(ViewerDocument, FaultsAreToldInOneLineWithTheFile) {
    const std::string good = [] {
        std::ifstream file(kPages + "/text_clip-2.gxr", std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }();
    // A name beyond the code page of some systems.
    const std::wstring name = (ScratchFolder() / L"d\u00E9g\u00E2ts.gxr").wstring();
    const auto fault = [&](const std::string& bytes) -> std::string {
        std::FILE* const file = _wfopen(name.c_str(), L"wb");
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
        try {
            Document document{std::filesystem::path(name)};
            return "none";
        } catch (const Gxr::Error& error) {
            return error.what();
        }
    };
    const std::string quoted = Quoted(name);
    EXPECT_EQ(fault(good), "none");
    EXPECT_EQ(fault(good.substr(0, good.size() / 2)), quoted + ": the recording is cut off");
    EXPECT_EQ(fault("%PDF-1.7"), quoted + ": this is no recording");
    std::string bent = good;
    bent[bent.size() / 2] = static_cast<char>(bent[bent.size() / 2] ^ 1);
    EXPECT_EQ(fault(bent), quoted + ": the recording is damaged: wrong checksum");
}

} // namespace
} // namespace Viewer
