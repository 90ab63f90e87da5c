// SPDX-License-Identifier: MIT
#include "PageWindow.h"

#include <utility>

namespace Viewer {
namespace {

constexpr const wchar_t* kClass = L"GXViewerPage";
constexpr uint32_t kPaper = 0xFFFFFFFF;

} // namespace

PageWindow::PageWindow(HWND parent, bool hardware, std::function<void(const std::string&)> whenPainted)
    : m_hardware(hardware), m_whenPainted(std::move(whenPainted)) {
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.lpfnWndProc = Procedure;
    description.hInstance = instance;
    description.lpszClassName = kClass; // no background: every frame covers all of it
    if (RegisterClassExW(&description) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS)
        throw Gxr::Error(WithSystemReason("the window class cannot be registered"));
    m_window = CreateWindowExW(0, kClass, L"", WS_CHILD, 0, 0, 1, 1, parent, nullptr, instance, this);
    if (m_window == nullptr)
        throw Gxr::Error(WithSystemReason("the page's window cannot be made"));
}

PageWindow::~PageWindow() {
    m_target.Reset();
    if (m_window != nullptr)
        DestroyWindow(m_window);
}

void PageWindow::Show(Document* document) {
    m_document = document;
    m_zoom = 0; // not followed yet
    if (document == nullptr)
        ShowWindow(m_window, SW_HIDE);
}

void PageWindow::Follow(const View& view) {
    if (m_document == nullptr)
        return;
    const Box page = view.Page(), visible = view.Visible();
    if (page == m_page && visible == m_visible && view.Zoom() == m_zoom)
        return;
    m_page = page;
    m_visible = visible;
    m_zoom = view.Zoom();
    // Pixels of the old place would only flash up at the new one.
    SetWindowPos(m_window, nullptr, visible.left, visible.top, visible.width, visible.height,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS | SWP_SHOWWINDOW);
    InvalidateRect(m_window, nullptr, FALSE);
}

LRESULT CALLBACK PageWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE)
        SetWindowLongPtrW(window, GWLP_USERDATA,
                          reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
    auto* const self = reinterpret_cast<PageWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    switch (message) {
    case WM_PAINT:
        ValidateRect(window, nullptr);
        if (self != nullptr)
            self->Paint();
        return 0;
    case WM_ERASEBKGND:
        return 1;
    case WM_NCHITTEST:
        return HTTRANSPARENT; // the mouse is the main window's business
    case WM_NCDESTROY:
        if (self != nullptr)
            self->m_window = nullptr;
        break;
    default:
        break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void PageWindow::Paint() {
    if (m_document == nullptr)
        return;
    std::string failure;
    try {
        // Made with the first frame, when the window has its size.
        if (!m_target && GXCreateRenderTargetHWND(m_window, m_hardware ? 0 : 1, m_target.Out()) != GXResultSuccess)
            throw Gxr::Error(WithReason("the library cannot draw into the window"));
        m_document->Draw(m_target.Get(), m_zoom, static_cast<float>(m_page.left - m_visible.left),
                         static_cast<float>(m_page.top - m_visible.top), &kPaper);
    } catch (const std::exception& error) {
        failure = m_document->NarrowName() + ": " + error.what();
    }
    m_whenPainted(failure);
}

} // namespace Viewer
