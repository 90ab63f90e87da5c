// SPDX-License-Identifier: MIT
#include "MainWindow.h"

#include <windowsx.h>

#include <shellapi.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "FileDialog.h"
#include "Printing.h"

namespace Viewer {
namespace {

constexpr const wchar_t* kClass = L"GXViewer";
constexpr double kZoomStep = 1.25;   // a notch of the wheel, a press of a key
constexpr double kLine = 1.0 / 12;   // of the window: an arrow key
constexpr double kScreen = 0.9;      // of the window: Page Up and Page Down
constexpr UINT kFailed = WM_APP;     // a frame could not be drawn
constexpr UINT kEnough = WM_APP + 1; // all frames that were asked for are drawn

enum Commands : int { kOpen = 100, kPrint, kQuit, kZoomIn, kZoomOut, kFit, kActualSize };

HMENU Menu() {
    const HMENU file = CreatePopupMenu(), view = CreatePopupMenu(), bar = CreateMenu();
    AppendMenuW(file, MF_STRING, kOpen, L"&Open...\tCtrl+O");
    AppendMenuW(file, MF_STRING, kPrint, L"&Print...\tCtrl+P");
    AppendMenuW(file, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(file, MF_STRING, kQuit, L"E&xit\tAlt+F4");
    AppendMenuW(view, MF_STRING, kZoomIn, L"Zoom &in\t+");
    AppendMenuW(view, MF_STRING, kZoomOut, L"Zoom &out\t-");
    AppendMenuW(view, MF_STRING, kFit, L"&Fit into window\tCtrl+0");
    AppendMenuW(view, MF_STRING, kActualSize, L"&Pixel for pixel\tCtrl+1");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(file), L"&File");
    AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(view), L"&View");
    return bar;
}

HACCEL Keys() {
    ACCEL keys[] = {{FVIRTKEY | FCONTROL, 'O', kOpen},
                    {FVIRTKEY | FCONTROL, 'P', kPrint},
                    {FVIRTKEY | FCONTROL, '0', kFit},
                    {FVIRTKEY | FCONTROL, VK_NUMPAD0, kFit},
                    {FVIRTKEY | FCONTROL, '1', kActualSize},
                    {FVIRTKEY | FCONTROL, VK_NUMPAD1, kActualSize},
                    {FVIRTKEY | FCONTROL, VK_OEM_PLUS, kZoomIn},
                    {FVIRTKEY | FCONTROL, VK_OEM_MINUS, kZoomOut}};
    return CreateAcceleratorTableW(keys, static_cast<int>(std::size(keys)));
}

} // namespace

MainWindow::MainWindow(const Options& options) : m_options(options) {
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.lpfnWndProc = Procedure;
    description.hInstance = instance;
    description.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)); // IDC_ARROW
    description.lpszClassName = kClass;                                  // no background: every frame covers all of it
    if (RegisterClassExW(&description) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS)
        throw Gxr::Error(WithSystemReason("the window class cannot be registered"));
    const HMENU menu = Menu();
    m_window = CreateWindowExW(WS_EX_ACCEPTFILES, kClass, L"Viewer", WS_OVERLAPPEDWINDOW | WS_HSCROLL | WS_VSCROLL,
                               CW_USEDEFAULT, CW_USEDEFAULT, 900, 900, nullptr, menu, instance, this);
    if (m_window == nullptr) {
        DestroyMenu(menu);
        throw Gxr::Error(WithSystemReason("the window cannot be made"));
    }
    try {
        m_canvas = std::make_unique<Canvas>(m_window, options.hardware,
                                            [this](const std::string& failure) { Painted(failure); });
    } catch (...) {
        DestroyWindow(m_window);
        throw;
    }
    RECT client{};
    GetClientRect(m_window, &client);
    m_view.SetClient(client.right, client.bottom);
    Follow();
}

MainWindow::~MainWindow() {
    m_canvas.reset();
    if (m_window != nullptr)
        DestroyWindow(m_window);
}

void MainWindow::Open(const std::wstring& path) {
    auto document = std::make_unique<Document>(path);
    m_canvas->Show(document.get());
    m_document = std::move(document);
    m_view.SetPage(m_document->Page().width, m_document->Page().height);
    if (m_options.zoom > 0)
        m_view.ZoomTo(m_options.zoom, 0, 0);
    Follow();
}

int MainWindow::Run() {
    const HACCEL keys = Keys();
    m_running = true;
    ShowWindow(m_window, SW_SHOWDEFAULT);
    MSG message;
    BOOL got;
    while ((got = GetMessageW(&message, nullptr, 0, 0)) > 0) {
        if (TranslateAcceleratorW(m_window, keys, &message) == 0) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    m_running = false;
    DestroyAcceleratorTable(keys);
    return got < 0 ? 1 : m_exitCode;
}

LRESULT CALLBACK MainWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* const created = static_cast<MainWindow*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        created->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
    }
    auto* const self = reinterpret_cast<MainWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr) {
        // Nothing may be thrown through Windows.
        std::string failure;
        try {
            if (self->Handle(message, wParam, lParam))
                return 0;
        } catch (const std::exception& error) {
            failure = error.what();
        }
        if (!failure.empty()) {
            self->Tell(failure);
            return 0;
        }
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

bool MainWindow::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        if (wParam != SIZE_MINIMIZED) {
            m_view.SetClient(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
            Follow();
        }
        return true;
    case WM_PAINT:
        if (m_canvas == nullptr)
            return false;
        m_canvas->Paint();
        return true;
    case WM_ERASEBKGND:
        return true;
    case WM_COMMAND:
        Command(LOWORD(wParam));
        return true;
    case WM_KEYDOWN:
        return Key(wParam);
    case WM_CHAR:
        if (wParam == '+' || wParam == '-')
            ZoomBy(wParam == '+' ? kZoomStep : 1 / kZoomStep);
        return true;
    case WM_MOUSEWHEEL:
    case WM_MOUSEHWHEEL:
        Wheel(message, wParam, lParam);
        return true;
    case WM_LBUTTONDOWN:
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
        Drag(message, lParam);
        return true;
    case WM_HSCROLL:
        Scroll(SB_HORZ, LOWORD(wParam));
        return true;
    case WM_VSCROLL:
        Scroll(SB_VERT, LOWORD(wParam));
        return true;
    case WM_DROPFILES:
        Dropped(wParam);
        return true;
    case kFailed:
        m_canvas->Show(nullptr);
        m_document.reset();
        Follow();
        Tell(m_failure);
        return true;
    case kEnough:
        DestroyWindow(m_window);
        return true;
    case WM_DESTROY:
        m_canvas.reset(); // the library's target goes before its window
        if (m_running)
            PostQuitMessage(0);
        return true;
    case WM_NCDESTROY:
        SetWindowLongPtrW(m_window, GWLP_USERDATA, 0);
        m_window = nullptr;
        return false;
    default:
        return false;
    }
}

void MainWindow::Command(int command) {
    switch (command) {
    case kOpen:
        OpenWithDialog();
        break;
    case kPrint:
        if (m_document != nullptr)
            PrintWithDialog(m_window, *m_document);
        break;
    case kQuit:
        DestroyWindow(m_window);
        break;
    case kZoomIn:
        ZoomBy(kZoomStep);
        break;
    case kZoomOut:
        ZoomBy(1 / kZoomStep);
        break;
    case kFit:
        m_view.Fit();
        Follow();
        break;
    case kActualSize:
        m_view.ZoomTo(1.0f, m_view.ClientWidth() / 2.0, m_view.ClientHeight() / 2.0);
        Follow();
        break;
    default:
        break;
    }
}

bool MainWindow::Key(WPARAM key) {
    const double width = m_view.ClientWidth(), height = m_view.ClientHeight();
    const Box page = m_view.Page();
    switch (key) {
    case VK_LEFT:
        m_view.PanBy(width * kLine, 0);
        break;
    case VK_RIGHT:
        m_view.PanBy(-width * kLine, 0);
        break;
    case VK_UP:
        m_view.PanBy(0, height * kLine);
        break;
    case VK_DOWN:
        m_view.PanBy(0, -height * kLine);
        break;
    case VK_PRIOR:
        m_view.PanBy(0, height * kScreen);
        break;
    case VK_NEXT:
        m_view.PanBy(0, -height * kScreen);
        break;
    case VK_HOME:
        m_view.PanTo(page.left, 0);
        break;
    case VK_END:
        m_view.PanTo(page.left, -page.height);
        break;
    default:
        return false;
    }
    Follow();
    return true;
}

// Around the cursor; with Shift, or a wheel that tilts, to the side.
void MainWindow::Wheel(UINT message, WPARAM wParam, LPARAM lParam) {
    const double notches = GET_WHEEL_DELTA_WPARAM(wParam) / static_cast<double>(WHEEL_DELTA);
    POINT cursor{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    ScreenToClient(m_window, &cursor);
    if (message == WM_MOUSEHWHEEL)
        m_view.PanBy(-notches * m_view.ClientWidth() * kLine, 0);
    else if ((GET_KEYSTATE_WPARAM(wParam) & MK_SHIFT) != 0)
        m_view.PanBy(notches * m_view.ClientWidth() * kLine, 0);
    else
        m_view.ZoomBy(std::pow(kZoomStep, notches), cursor.x, cursor.y);
    Follow();
}

void MainWindow::Drag(UINT message, LPARAM lParam) {
    const POINT cursor{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    switch (message) {
    case WM_LBUTTONDOWN:
        m_dragging = true;
        m_dragged = cursor;
        SetCapture(m_window);
        break;
    case WM_MOUSEMOVE:
        if (m_dragging) {
            m_view.PanBy(cursor.x - m_dragged.x, cursor.y - m_dragged.y);
            m_dragged = cursor;
            Follow();
        }
        break;
    case WM_LBUTTONUP:
        if (m_dragging)
            ReleaseCapture();
        [[fallthrough]];
    default:
        m_dragging = false;
        break;
    }
}

void MainWindow::Scroll(int bar, int request) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    GetScrollInfo(m_window, bar, &info);
    const auto window = static_cast<double>(info.nPage);
    double at = info.nPos;
    switch (request) {
    case SB_LINEUP: // and to the left
        at -= window * kLine;
        break;
    case SB_LINEDOWN:
        at += window * kLine;
        break;
    case SB_PAGEUP:
        at -= window * kScreen;
        break;
    case SB_PAGEDOWN:
        at += window * kScreen;
        break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
        at = info.nTrackPos;
        break;
    case SB_TOP:
        at = 0;
        break;
    case SB_BOTTOM:
        at = info.nMax;
        break;
    default:
        return;
    }
    const Box page = m_view.Page();
    m_view.PanTo(bar == SB_HORZ ? -at : page.left, bar == SB_VERT ? -at : page.top);
    Follow();
}

void MainWindow::Dropped(WPARAM files) {
    const auto drop = reinterpret_cast<HDROP>(files);
    std::wstring path(DragQueryFileW(drop, 0, nullptr, 0) + 1, L'\0');
    path.resize(DragQueryFileW(drop, 0, path.data(), static_cast<UINT>(path.size())));
    DragFinish(drop);
    Open(path);
}

void MainWindow::OpenWithDialog() {
    const std::wstring path = AskForFile(m_window, L"Recorded pages (*.gxr)\0*.gxr\0All files\0*.*\0");
    if (!path.empty())
        Open(path);
}

void MainWindow::ZoomBy(double factor) {
    m_view.ZoomBy(factor, m_view.ClientWidth() / 2.0, m_view.ClientHeight() / 2.0);
    Follow();
}

void MainWindow::Follow() {
    if (m_canvas == nullptr)
        return; // the window is being made
    m_canvas->Follow(m_view);
    const Box page = m_view.Page();
    const auto bar = [&](int which, int extent, int window, int at) {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        // Bars that came and went would change the window's size and with it what fits.
        info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
        info.nMax = m_document != nullptr ? extent - 1 : 0;
        info.nPage = static_cast<UINT>(window);
        info.nPos = -at;
        SetScrollInfo(m_window, which, &info, TRUE);
    };
    bar(SB_HORZ, page.width, m_view.ClientWidth(), page.left);
    bar(SB_VERT, page.height, m_view.ClientHeight(), page.top);
    std::wstring title = L"Viewer";
    if (m_document != nullptr)
        title = m_document->Name() + L" - " + std::to_wstring(std::lround(m_view.Zoom() * 100.0f)) + L" %";
    SetWindowTextW(m_window, title.c_str());
    const UINT state = m_document != nullptr ? MF_ENABLED : MF_GRAYED;
    for (const int command : {kPrint, kZoomIn, kZoomOut, kFit, kActualSize})
        EnableMenuItem(GetMenu(m_window), static_cast<UINT>(command), MF_BYCOMMAND | state);
}

// The window is in the middle of painting: what follows comes as a message of its own.
void MainWindow::Painted(const std::string& failure) {
    if (!failure.empty()) {
        m_failure = failure;
        PostMessageW(m_window, kFailed, 0, 0);
    } else if (m_options.frames > 0) {
        if (++m_frames >= m_options.frames)
            PostMessageW(m_window, kEnough, 0, 0);
        else
            InvalidateRect(m_window, nullptr, FALSE);
    }
}

void MainWindow::Tell(const std::string& text) {
    Report(m_window, text, m_options.Unattended());
    if (m_options.Unattended()) {
        m_exitCode = 1;
        DestroyWindow(m_window);
    }
}

} // namespace Viewer
