// SPDX-License-Identifier: MIT
#include "Canvas.h"

#include <utility>

namespace Viewer {
namespace {

constexpr int kGround = COLOR_APPWORKSPACE;
constexpr uint32_t kPaper = 0xFFFFFFFF;

uint32_t GroundColor() {
    const COLORREF color = GetSysColor(kGround);
    return 0xFF000000U | uint32_t{GetRValue(color)} << 16 | uint32_t{GetGValue(color)} << 8 | GetBValue(color);
}

} // namespace

Canvas::Canvas(HWND window, bool hardware, std::function<void(const std::string&)> whenPainted)
    : m_window(window), m_hardware(hardware), m_whenPainted(std::move(whenPainted)) {}

void Canvas::Show(Document* document) {
    m_document = document;
    m_zoom = 0; // not followed yet
    InvalidateRect(m_window, nullptr, FALSE);
}

void Canvas::Follow(const View& view) {
    const Box page = view.Page(), visible = view.Visible();
    if (page == m_page && visible == m_visible && view.Zoom() == m_zoom)
        return;
    m_page = page;
    m_visible = visible;
    m_zoom = view.Zoom();
    InvalidateRect(m_window, nullptr, FALSE);
}

void Canvas::Paint() {
    ValidateRect(m_window, nullptr); // what is invalidated from here on is another frame
    if (m_document == nullptr) {
        PaintGround();
        return;
    }
    std::string failure;
    try {
        PaintPage();
    } catch (const std::exception& error) {
        failure = m_document->Name() + ": " + error.what();
    }
    m_whenPainted(failure);
}

void Canvas::PaintPage() {
    // Made with the first frame: a window without a document needs none.
    if (!m_target && GXCreateRenderTargetHWND(m_window, m_hardware ? 0 : 1, m_target.Out()) != GXResultSuccess)
        throw Gxr::Error(WithReason("the library cannot draw into the window"));
    const auto edge = [](int at) { return static_cast<float>(at); };
    const Gxr::Paper paper{kPaper,
                           GroundColor(),
                           {edge(m_visible.left), edge(m_visible.top), edge(m_visible.left + m_visible.width),
                            edge(m_visible.top + m_visible.height)}};
    m_document->Draw(m_target.Get(), m_zoom, edge(m_page.left), edge(m_page.top), &paper);
}

// Where the library has drawn before, its pixels may cover those of others.
void Canvas::PaintGround() {
    if (m_target && GXRenderTargetBeginPaint(m_target.Get()) == GXResultSuccess) {
        GXRenderTargetClear(m_target.Get(), GroundColor());
        GXRenderTargetEndPaint(m_target.Get());
    }
    RECT client{};
    GetClientRect(m_window, &client);
    const HDC dc = GetDC(m_window);
    FillRect(dc, &client, GetSysColorBrush(kGround));
    ReleaseDC(m_window, dc);
}

} // namespace Viewer
