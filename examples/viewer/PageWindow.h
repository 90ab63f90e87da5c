// SPDX-License-Identifier: MIT
// The paper: a child window that covers the visible part of the page and nothing else, so that the library draws page
// alone and Windows fills what lies around it.
#pragma once

#include "Document.h"
#include "View.h"

#include <functional>
#include <memory>

namespace Viewer {

class PageWindow {
public:
    // Throws Gxr::Error when Windows or the library refuses. `whenPainted` is called after each frame, with a text
    // when it failed; that is the end of the document.
    PageWindow(HWND parent, bool hardware, std::function<void(const std::string& failure)> whenPainted);
    PageWindow(const PageWindow&) = delete;
    PageWindow& operator=(const PageWindow&) = delete;
    ~PageWindow();

    // Null: nothing to show. The document outlives its being shown.
    void Show(Document* document);
    // Moves the window to where the view has the page, and has it painted anew when anything changed.
    void Follow(const View& view);

    HWND Window() const noexcept { return m_window; }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Paint();

    HWND m_window = nullptr;
    bool m_hardware;
    std::function<void(const std::string&)> m_whenPainted;
    Gxr::Handle<GXRenderTarget> m_target;
    Document* m_document = nullptr;
    float m_zoom = 0;
    Box m_page, m_visible;
};

} // namespace Viewer
