// SPDX-License-Identifier: MIT
// Where the page lies in the window and how large it is: zoom and pan as numbers, without a window.
#pragma once

#include <cstdint>

namespace Viewer {

struct Box {
    int left = 0, top = 0, width = 0, height = 0;
    bool operator==(const Box&) const = default;
};

// All lengths are pixels of the window's client area but the page's own, which are as recorded. A page that is smaller
// than the window lies in its middle, a larger one covers it.
class View {
public:
    static constexpr float kMinZoom = 1.0f / 64, kMaxZoom = 64.0f;

    // A new page is fitted into the window.
    void SetPage(uint32_t width, uint32_t height);
    // A fitted page stays fitted, else the point in the middle stays there.
    void SetClient(int width, int height);

    // The largest zoom that shows all of the page.
    void Fit();
    // Window pixels for a page pixel, held within the limits. The page's point under (x, y) stays there.
    void ZoomTo(float zoom, double x, double y);
    void ZoomBy(double factor, double x, double y) { ZoomTo(static_cast<float>(m_zoom * factor), x, y); }
    // Moves the page; no further than its edges.
    void PanBy(double dx, double dy) { PanTo(m_left + dx, m_top + dy); }
    void PanTo(double left, double top);

    float Zoom() const noexcept { return m_zoom; }
    bool IsFitted() const noexcept { return m_fitted; }
    int ClientWidth() const noexcept { return m_clientWidth; }
    int ClientHeight() const noexcept { return m_clientHeight; }
    // The whole page. Its size is that of a bitmap which holds the page at this zoom.
    Box Page() const noexcept;
    // The part of the page that is seen.
    Box Visible() const noexcept;

private:
    double m_pageWidth = 1, m_pageHeight = 1;
    int m_clientWidth = 1, m_clientHeight = 1;
    float m_zoom = 1.0f;
    bool m_fitted = true;
    // The page's corner. Fractions are kept, so that many small zooms end where one large one does.
    double m_left = 0, m_top = 0;
};

} // namespace Viewer
