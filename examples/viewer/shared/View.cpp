// SPDX-License-Identifier: MIT
#include "View.h"

#include <algorithm>
#include <cmath>

namespace Viewer {
namespace {

// As large as a bitmap of the page at this zoom.
double Extent(double length, float zoom) { return std::max(1.0, std::ceil(length * static_cast<double>(zoom))); }

// A page edge at `at` with the page's `extent` in a window of `client` pixels.
double Held(double at, double extent, int client) {
    if (extent <= client)
        return std::floor((client - extent) / 2);
    return std::clamp(at, client - extent, 0.0);
}

} // namespace

void View::SetPage(uint32_t width, uint32_t height) {
    m_pageWidth = std::max(1U, width);
    m_pageHeight = std::max(1U, height);
    Fit();
}

void View::SetClient(int width, int height) {
    const double dx = (std::max(1, width) - m_clientWidth) / 2.0, dy = (std::max(1, height) - m_clientHeight) / 2.0;
    m_clientWidth = std::max(1, width);
    m_clientHeight = std::max(1, height);
    if (m_fitted)
        Fit();
    else
        PanBy(dx, dy);
}

void View::Fit() {
    const double zoom = std::min(m_clientWidth / m_pageWidth, m_clientHeight / m_pageHeight);
    m_zoom = std::clamp(static_cast<float>(zoom), kMinZoom, kMaxZoom);
    // Rounding the zoom up would add a pixel that the window does not have.
    while (m_zoom > kMinZoom &&
           (Extent(m_pageWidth, m_zoom) > m_clientWidth || Extent(m_pageHeight, m_zoom) > m_clientHeight))
        m_zoom = std::nextafter(m_zoom, 0.0f);
    m_fitted = true;
    PanTo(m_left, m_top);
}

void View::ZoomTo(float zoom, double x, double y) {
    if (!std::isfinite(zoom))
        return;
    zoom = std::clamp(zoom, kMinZoom, kMaxZoom);
    const double ratio = static_cast<double>(zoom) / static_cast<double>(m_zoom);
    m_zoom = zoom;
    m_fitted = false;
    PanTo(x - (x - m_left) * ratio, y - (y - m_top) * ratio);
}

void View::PanTo(double left, double top) {
    m_left = Held(left, Extent(m_pageWidth, m_zoom), m_clientWidth);
    m_top = Held(top, Extent(m_pageHeight, m_zoom), m_clientHeight);
}

Box View::Page() const noexcept {
    return {static_cast<int>(std::lround(m_left)), static_cast<int>(std::lround(m_top)),
            static_cast<int>(Extent(m_pageWidth, m_zoom)), static_cast<int>(Extent(m_pageHeight, m_zoom))};
}

Box View::Visible() const noexcept {
    const Box page = Page();
    const int left = std::max(0, page.left), top = std::max(0, page.top);
    return {left, top, std::min(m_clientWidth, page.left + page.width) - left,
            std::min(m_clientHeight, page.top + page.height) - top};
}

} // namespace Viewer
