// SPDX-License-Identifier: MIT
// A window of Windows that shows a drawing, and prints it when P is pressed. With --once it draws one frame, saves what
// the window shows, prints into a metafile instead of on paper, and ends.
#include "Guide.h"

#include <windows.h>

#include <commdlg.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr float kWidth = 360, kHeight = 200; // of the drawing; it is scaled to where it is drawn

void Draw(GXRenderTarget target) {
    const auto sea = Solid(0xFF2A9D8F), sand = Solid(0xFFE9C46A), ink = Solid(0xFF264653);
    const GXRect water = {0, 110, kWidth, kHeight}, sun = {230, 30, 300, 100}, shade = {20, 40, 160, 180};
    CHECK(GXRenderTargetFillRect(target, &water, sea));
    CHECK(GXRenderTargetFillEllipse(target, &sun, sand));
    CHECK(GXRenderTargetSetBlendMode(target, GXBlendModeMultiply)); // on paper too
    CHECK(GXRenderTargetFillEllipse(target, &shade, sand));
    CHECK(GXRenderTargetSetBlendMode(target, GXBlendModeNormal));
    CHECK(GXRenderTargetStrokeEllipse(target, &shade, ink, 3, nullptr));
}

// As large as fits. The target's size is in pixels of the window, or in dots of the printer.
void DrawScaled(GXRenderTarget target) {
    GXSize size;
    CHECK(GXRenderTargetBeginPaint(target));
    CHECK(GXRenderTargetGetSize(target, &size)); // after the beginning, where a window's size is read
    const float scale = std::min(static_cast<float>(size.width) / kWidth, static_cast<float>(size.height) / kHeight);
    CHECK(GXRenderTargetClear(target, 0xFFFFFFFF));
    CHECK(GXRenderTargetScaleCTM(target, scale, scale));
    Draw(target);
    CHECK(GXRenderTargetEndPaint(target)); // brings it to the window or the printer
}

void DrawOnPaper(HDC printer) {
    Owned<GXRenderTarget> paper;
    CHECK(GXCreateRenderTargetPrintDC(printer, paper.Out()));
    DrawScaled(paper);
}

void Print(HWND owner) {
    PRINTDLGW dialog{};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.Flags = PD_RETURNDC | PD_NOSELECTION | PD_NOPAGENUMS;
    if (!PrintDlgW(&dialog))
        return;
    DOCINFOW job{};
    job.cbSize = sizeof job;
    job.lpszDocName = L"Drawing";
    if (StartDocW(dialog.hDC, &job) > 0) {
        StartPage(dialog.hDC); // one page, one paint bracket
        DrawOnPaper(dialog.hDC);
        EndPage(dialog.hDC);
        EndDoc(dialog.hDC);
    }
    DeleteDC(dialog.hDC);
    GlobalFree(dialog.hDevMode);
    GlobalFree(dialog.hDevNames);
}

// What the window shows, through a bitmap of Windows.
void SaveWindow(HWND window, const wchar_t* file) {
    RECT client;
    GetClientRect(window, &client);
    const HDC screen = GetDC(window), memory = CreateCompatibleDC(screen);
    const HBITMAP copy = CreateCompatibleBitmap(screen, client.right, client.bottom);
    const HGDIOBJ old = SelectObject(memory, copy);
    BitBlt(memory, 0, 0, client.right, client.bottom, screen, 0, 0, SRCCOPY);
    SelectObject(memory, old);
    Owned<GXBitmap> bitmap;
    CHECK(GXCreateBitmapFromHBITMAP(copy, bitmap.Out()));
    CHECK(GXBitmapSaveToFile(bitmap, file));
    DeleteObject(copy);
    DeleteDC(memory);
    ReleaseDC(window, screen);
}

LRESULT CALLBACK Handle(HWND window, UINT message, WPARAM w, LPARAM l) {
    const auto target = reinterpret_cast<GXRenderTarget>(GetWindowLongPtrW(window, GWLP_USERDATA));
    switch (message) {
    case WM_PAINT: {
        PAINTSTRUCT paint;
        BeginPaint(window, &paint); // the update region is the host's
        DrawScaled(target);
        EndPaint(window, &paint);
        return 0;
    }
    case WM_ERASEBKGND:
        return 1; // each frame covers all of it
    case WM_SIZE:
        InvalidateRect(window, nullptr, FALSE);
        return 0;
    case WM_CHAR:
        if (w == 'p' || w == 'P')
            Print(window);
        return 0;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    default:
        return DefWindowProcW(window, message, w, l);
    }
}

} // namespace

int main(int argc, char** argv) {
    WNDCLASSW kind{};
    kind.lpfnWndProc = Handle;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)); // the arrow
    kind.lpszClassName = L"Drawing";
    RegisterClassW(&kind);
    RECT size = {0, 0, static_cast<LONG>(kWidth), static_cast<LONG>(kHeight)};
    AdjustWindowRect(&size, WS_OVERLAPPEDWINDOW, FALSE);
    const HWND window = CreateWindowW(L"Drawing", L"Drawing", WS_OVERLAPPEDWINDOW, 50, 50, size.right - size.left,
                                      size.bottom - size.top, nullptr, nullptr, kind.hInstance, nullptr);
    if (window == nullptr)
        return 1;

    // On the graphics card where there is one, if the thread asked for it: GXEnableHWAccelerationForThread().
    Owned<GXRenderTarget> target;
    CHECK(GXCreateRenderTargetHWND(window, 0, target.Out()));
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(static_cast<GXRenderTarget>(target)));
    ShowWindow(window, SW_SHOW);
    UpdateWindow(window); // the first WM_PAINT

    if (argc > 1 && std::strcmp(argv[1], "--once") == 0) {
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageW(&message);
        InvalidateRect(window, nullptr, FALSE);
        UpdateWindow(window);
        SaveWindow(window, L"window.png");
        const HDC metafile = CreateEnhMetaFileW(nullptr, L"paper.emf", nullptr, nullptr);
        DrawOnPaper(metafile);
        DeleteEnhMetaFile(CloseEnhMetaFile(metafile));
        DestroyWindow(window);
    }
    for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}
