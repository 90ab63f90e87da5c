// SPDX-License-Identifier: MIT
#include "View.h"

#include <algorithm>
#include <cmath>

namespace Viewer {
namespace {

// A page edge at `at` with the page's `extent` in a window of `client` pixels.
double Held(double at, int extent, int client) {
    if (extent <= client)
        return std::floor((client - extent) / 2.0);
    return std::clamp(at, static_cast<double>(client - extent), 0.0);
}

PageSize AtLeastAPixel(PageSize page) { return {std::max(1.0, page.width), std::max(1.0, page.height)}; }

} // namespace

int Extent(double length, float zoom) noexcept {
    return static_cast<int>(std::clamp(std::ceil(length * static_cast<double>(zoom) - 1e-3), 1.0, 1e9));
}

float FittingZoom(PageSize page, int width, int height) noexcept {
    const auto zoom = static_cast<float>(std::min(width / page.width, height / page.height));
    float held = std::clamp(zoom, View::kMinZoom, View::kMaxZoom);
    // Rounding the zoom up would add a pixel that the window does not have.
    while (held > View::kMinZoom && (Extent(page.width, held) > width || Extent(page.height, held) > height))
        held = std::nextafter(held, 0.0f);
    return held;
}

void View::SetPage(PageSize page) {
    m_page = AtLeastAPixel(page);
    Fit();
}

void View::TurnTo(PageSize page, bool atBottom) {
    m_page = AtLeastAPixel(page);
    if (m_fitted)
        Fit();
    else
        PanTo(m_left, atBottom ? -1e9 : 0.0);
}

void View::Correct(PageSize page) {
    const bool atBottom = m_top < 0 && m_top + Extent(m_page.height, m_zoom) <= m_clientHeight;
    TurnTo(page, atBottom);
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
    m_zoom = FittingZoom(m_page, m_clientWidth, m_clientHeight);
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
    m_left = Held(left, Extent(m_page.width, m_zoom), m_clientWidth);
    m_top = Held(top, Extent(m_page.height, m_zoom), m_clientHeight);
}

Box View::Page() const noexcept {
    return {static_cast<int>(std::lround(m_left)), static_cast<int>(std::lround(m_top)), Extent(m_page.width, m_zoom),
            Extent(m_page.height, m_zoom)};
}

Box View::Visible() const noexcept { return Common(Page(), {0, 0, m_clientWidth, m_clientHeight}); }

} // namespace Viewer
