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
constexpr double kLine = 1.0 / 12;   // of the window: an arrow of a scroll bar
constexpr double kScreen = 0.9;      // of the window: between its arrows and its box
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
    m_reader.SetClient(client.right, client.bottom);
    Follow();
}

MainWindow::~MainWindow() {
    m_canvas.reset();
    if (m_window != nullptr)
        DestroyWindow(m_window);
}

void MainWindow::Open(const std::vector<std::string>& paths) {
    std::vector<std::unique_ptr<Document>> documents;
    for (const std::string& path : paths)
        documents.push_back(std::make_unique<Document>(Document::Path(path)));
    m_canvas->Show(m_shown = nullptr);
    m_documents = std::move(documents);
    m_reader.Open(static_cast<int>(m_documents.size()), m_documents.front()->Size());
    m_reader.GoTo(m_options.page - 1);
    m_reader.Correct(Shown()->Size());
    if (m_options.zoom > 0)
        m_reader.GetView().ZoomTo(m_options.zoom, 0, 0);
    if (m_options.placed)
        m_reader.GetView().PanTo(-m_options.left, -m_options.top);
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
            m_reader.SetClient(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
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
            Do(wParam == '+' ? Action::ZoomIn : Action::ZoomOut);
        else if (wParam == 'n' || wParam == 'p')
            Do(wParam == 'n' ? Action::NextPage : Action::PreviousPage);
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
        m_canvas->Show(m_shown = nullptr);
        m_documents.clear();
        m_reader.Open(0, {});
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
        if (Shown() != nullptr)
            PrintWithDialog(m_window, *Shown());
        break;
    case kQuit:
        DestroyWindow(m_window);
        break;
    case kZoomIn:
        Do(Action::ZoomIn);
        break;
    case kZoomOut:
        Do(Action::ZoomOut);
        break;
    case kFit:
        Do(Action::Fit);
        break;
    case kActualSize:
        Do(Action::ActualSize);
        break;
    default:
        break;
    }
}

bool MainWindow::Key(WPARAM key) {
    const bool control = GetKeyState(VK_CONTROL) < 0;
    switch (key) {
    case VK_LEFT:
        Do(Action::Left);
        break;
    case VK_RIGHT:
        Do(Action::Right);
        break;
    case VK_UP:
        Do(Action::Up);
        break;
    case VK_DOWN:
        Do(Action::Down);
        break;
    case VK_PRIOR:
        Do(control ? Action::PreviousPage : Action::ScreenUp);
        break;
    case VK_NEXT:
        Do(control ? Action::NextPage : Action::ScreenDown);
        break;
    case VK_HOME:
        Do(Action::FirstPage);
        break;
    case VK_END:
        Do(Action::LastPage);
        break;
    default:
        return false;
    }
    return true;
}

// Around the cursor; with Shift, or a wheel that tilts, to the side.
void MainWindow::Wheel(UINT message, WPARAM wParam, LPARAM lParam) {
    const double notches = GET_WHEEL_DELTA_WPARAM(wParam) / static_cast<double>(WHEEL_DELTA);
    POINT cursor{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    ScreenToClient(m_window, &cursor);
    const bool tilts = message == WM_MOUSEHWHEEL;
    m_reader.Wheel(tilts ? -notches : notches, cursor.x, cursor.y,
                   tilts || (GET_KEYSTATE_WPARAM(wParam) & MK_SHIFT) != 0);
    Follow();
}

void MainWindow::Drag(UINT message, LPARAM lParam) {
    const int x = GET_X_LPARAM(lParam), y = GET_Y_LPARAM(lParam);
    switch (message) {
    case WM_LBUTTONDOWN:
        m_reader.Press(x, y);
        SetCapture(m_window);
        break;
    case WM_MOUSEMOVE:
        m_reader.Move(x, y);
        Follow();
        break;
    case WM_LBUTTONUP:
        m_reader.Release();
        ReleaseCapture();
        break;
    default:
        m_reader.Release();
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
    const Box page = GetView().Page();
    m_reader.GetView().PanTo(bar == SB_HORZ ? -at : page.left, bar == SB_VERT ? -at : page.top);
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

void MainWindow::Do(Action action) {
    m_reader.Do(action);
    Follow();
}

void MainWindow::Follow() {
    if (m_canvas == nullptr)
        return; // the window is being made
    Document* const document = Shown();
    if (document != nullptr)
        m_reader.Correct(document->Size());
    if (document != m_shown) {
        if (m_shown != nullptr)
            m_shown->Rest();
        m_canvas->Show(m_shown = document);
    }
    const View& view = GetView();
    m_canvas->Follow(view);
    const Box page = view.Page();
    const auto bar = [&](int which, int extent, int window, int at) {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        // Bars that came and went would change the window's size and with it what fits.
        info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
        info.nMax = document != nullptr ? extent - 1 : 0;
        info.nPage = static_cast<UINT>(window);
        info.nPos = -at;
        SetScrollInfo(m_window, which, &info, TRUE);
    };
    bar(SB_HORZ, page.width, view.ClientWidth(), page.left);
    bar(SB_VERT, page.height, view.ClientHeight(), page.top);
    std::wstring title = L"Viewer";
    if (document != nullptr)
        title = Wide(document->Name()) + L" - " + std::to_wstring(std::lround(view.Zoom() * 100.0f)) + L" %";
    SetWindowTextW(m_window, title.c_str());
    const UINT state = document != nullptr ? MF_ENABLED : MF_GRAYED;
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
