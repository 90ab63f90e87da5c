// SPDX-License-Identifier: MIT
// What a window shows: the page and the ground around it, drawn by the library over all of the client area. The page
// has no window of its own: not every system shows what a graphics card draws in child windows, and one picture for
// both kinds of targets looks the same in both.
#pragma once

#include "Document.h"
#include "System.h"
#include "View.h"

#include <functional>

namespace Viewer {

class Canvas {
public:
    // `whenPainted` is called after each frame of a document, with a text when it failed; that is the end of the
    // document.
    Canvas(HWND window, bool hardware, std::function<void(const std::string& failure)> whenPainted);
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    // Null: nothing but ground. The document outlives its being shown.
    void Show(Document* document);
    // Has the window painted anew when anything in the view has changed.
    void Follow(const View& view);
    // The answer to WM_PAINT.
    void Paint();

private:
    void PaintPage();
    void PaintGround();

    HWND m_window;
    bool m_hardware;
    std::function<void(const std::string&)> m_whenPainted;
    Gxr::Handle<GXRenderTarget> m_target;
    Document* m_document = nullptr;
    float m_zoom = 0;
    Box m_page, m_visible;
};

} // namespace Viewer
