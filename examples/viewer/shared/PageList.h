// SPDX-License-Identifier: MIT
// A strip of small pages at the left edge of the window: where each one stands, how far the strip is scrolled, and which
// one is under the pointer. Every page has a place of the same height, so that a document of any length costs nothing.
#pragma once

#include "View.h"

namespace Viewer {

class PageList {
public:
    static constexpr int kWidth = 152, kThumb = 112, kSlot = 144; // pixels; the thumbnail's longer side; a page's place

    void SetCount(int pages);
    void SetHeight(int height);
    void ScrollBy(double pixels) { ScrollTo(m_scroll + pixels); }
    // Scrolls no further than needed to have all of the page's place in sight.
    void Reveal(int page);

    int Count() const noexcept { return m_count; }
    double Scrolled() const noexcept { return m_scroll; }
    // The pages in sight: from First to before End.
    int First() const noexcept;
    int End() const noexcept;
    // The page whose place covers this row of the window, or -1.
    int At(int y) const noexcept;
    // In the window.
    Box Slot(int page) const noexcept;
    // Where a thumbnail of this size stands in its place.
    Box Thumb(int page, int width, int height) const noexcept;

private:
    void ScrollTo(double pixels);

    int m_count = 0, m_height = 1;
    double m_scroll = 0; // rows of the strip above the window
};

} // namespace Viewer
