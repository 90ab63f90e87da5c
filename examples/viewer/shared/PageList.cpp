// SPDX-License-Identifier: MIT
#include "PageList.h"

#include <cmath>

namespace Viewer {
namespace {

// Between the top of a place and its thumbnail; the rest below is for the page's number.
constexpr int kMargin = 8;

} // namespace

void PageList::SetCount(int pages) {
    m_count = std::max(0, pages);
    ScrollTo(m_scroll);
}

void PageList::SetHeight(int height) {
    m_height = std::max(1, height);
    ScrollTo(m_scroll);
}

void PageList::Reveal(int page) {
    const double top = static_cast<double>(kSlot) * page;
    ScrollTo(std::clamp(m_scroll, std::min(top, top + kSlot - m_height), top));
}

void PageList::ScrollTo(double pixels) {
    const double most = std::max(0.0, static_cast<double>(kSlot) * m_count - m_height);
    m_scroll = std::isfinite(pixels) ? std::clamp(pixels, 0.0, most) : 0.0;
}

int PageList::First() const noexcept { return std::min(m_count, static_cast<int>(m_scroll / kSlot)); }

int PageList::End() const noexcept {
    return std::min(m_count, static_cast<int>(std::ceil((std::floor(m_scroll) + m_height) / kSlot)));
}

int PageList::At(int y) const noexcept {
    const double row = std::floor(m_scroll) + y;
    return row >= 0 && row < static_cast<double>(kSlot) * m_count ? static_cast<int>(row / kSlot) : -1;
}

Box PageList::Slot(int page) const noexcept {
    return {0, static_cast<int>(static_cast<double>(kSlot) * page - std::floor(m_scroll)), kWidth, kSlot};
}

Box PageList::Thumb(int page, int width, int height) const noexcept {
    const Box slot = Slot(page);
    return {slot.left + (kWidth - width) / 2, slot.top + kMargin + (kThumb - height) / 2, width, height};
}

} // namespace Viewer
