// SPDX-License-Identifier: MIT
// Where the page lies in the window and how large it is: zoom and pan as numbers, without a window.
#pragma once

#include "Box.h"

namespace Viewer {

// Of a page, in its pixels at zoom 1. PDF pages need not be whole pixels large.
struct PageSize {
    double width = 1, height = 1;
    bool operator==(const PageSize&) const = default;
};

// All lengths are pixels of the window's client area but the page's own, which are as recorded. A page that is smaller
// than the window lies in its middle, a larger one covers it.
class View {
public:
    static constexpr float kMinZoom = 1.0f / 64, kMaxZoom = 64.0f;

    // A new page is fitted into the window.
    void SetPage(PageSize page);
    // The next page of a document: fitted if the one before was, else at its zoom and as far to the left, at the top or
    // at the bottom of the page.
    void TurnTo(PageSize page, bool atBottom);
    // The page has turned out to have another size.
    void Correct(PageSize page);
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

    PageSize GetPageSize() const noexcept { return m_page; }
    float Zoom() const noexcept { return m_zoom; }
    bool IsFitted() const noexcept { return m_fitted; }
    int ClientWidth() const noexcept { return m_clientWidth; }
    int ClientHeight() const noexcept { return m_clientHeight; }
    // The whole page. Its size is that of a bitmap which holds the page at this zoom.
    Box Page() const noexcept;
    // The part of the page that is seen.
    Box Visible() const noexcept;

private:
    PageSize m_page;
    int m_clientWidth = 1, m_clientHeight = 1;
    float m_zoom = 1.0f;
    bool m_fitted = true;
    // The page's corner. Fractions are kept, so that many small zooms end where one large one does.
    double m_left = 0, m_top = 0;
};

// Pixels for `length` at a zoom: as large as a bitmap of the page. A thousandth of a pixel, which comes from rounded
// zooms and lengths, adds none.
int Extent(double length, float zoom) noexcept;
// The largest zoom within the limits of a view at which the page is no larger than the box.
float FittingZoom(PageSize page, int width, int height) noexcept;

} // namespace Viewer
