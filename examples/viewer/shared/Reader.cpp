// SPDX-License-Identifier: MIT
#include "Reader.h"

#include <cmath>

namespace Viewer {
namespace {

constexpr double kLine = 1.0 / 12; // of the window: an arrow key
constexpr double kScreen = 0.9;    // of the window: Page Up and Page Down
constexpr double kListNotch = 0.5; // of a place in the list

} // namespace

void Reader::Open(int pages, PageSize first) {
    m_page = 0;
    m_dragging = false;
    m_list.SetCount(pages);
    m_list.Reveal(0);
    m_view.SetPage(first);
}

void Reader::SetClient(int width, int height) {
    m_width = std::max(1, width);
    m_height = std::max(1, height);
    Lay();
}

void Reader::ShowList(bool shown) {
    m_listShown = shown;
    Lay();
}

void Reader::Lay() {
    m_list.SetHeight(m_height);
    m_list.Reveal(m_page);
    m_view.SetClient(m_width - ViewLeft(), m_height);
}

void Reader::GoTo(int page, bool atBottom) {
    page = std::clamp(page, 0, std::max(0, m_list.Count() - 1));
    if (page == m_page) {
        m_view.PanTo(m_view.Page().left, atBottom ? -1e9 : 0.0);
    } else {
        m_page = page;
        // As large as the page before, until it is read.
        m_view.TurnTo(m_view.GetPageSize(), atBottom);
    }
    m_list.Reveal(m_page);
}

void Reader::Correct(PageSize size) {
    if (size != m_view.GetPageSize())
        m_view.Correct(size);
}

void Reader::Do(Action action) {
    const double width = m_view.ClientWidth(), height = m_view.ClientHeight();
    const Box page = m_view.Page();
    const auto zoom = [&](double factor) { m_view.ZoomBy(factor, width / 2, height / 2); };
    switch (action) {
    case Action::Left:
        m_view.PanBy(width * kLine, 0);
        break;
    case Action::Right:
        m_view.PanBy(-width * kLine, 0);
        break;
    case Action::Up:
        m_view.PanBy(0, height * kLine);
        break;
    case Action::Down:
        m_view.PanBy(0, -height * kLine);
        break;
    case Action::ScreenUp:
        if (page.top < 0)
            m_view.PanBy(0, height * kScreen);
        else if (m_page > 0)
            GoTo(m_page - 1, true);
        break;
    case Action::ScreenDown:
        if (page.Bottom() > m_view.ClientHeight())
            m_view.PanBy(0, -height * kScreen);
        else if (m_page + 1 < m_list.Count())
            GoTo(m_page + 1);
        break;
    case Action::NextPage:
        if (m_page + 1 < m_list.Count())
            GoTo(m_page + 1);
        break;
    case Action::PreviousPage:
        if (m_page > 0)
            GoTo(m_page - 1);
        break;
    case Action::FirstPage:
        GoTo(0);
        break;
    case Action::LastPage:
        GoTo(m_list.Count() - 1, true);
        break;
    case Action::ZoomIn:
        zoom(kZoomStep);
        break;
    case Action::ZoomOut:
        zoom(1 / kZoomStep);
        break;
    case Action::Fit:
        m_view.Fit();
        break;
    case Action::ActualSize:
        m_view.ZoomTo(1.0f, width / 2, height / 2);
        break;
    case Action::ToggleList:
        ShowList(!m_listShown);
        break;
    }
}

void Reader::Wheel(double notches, int x, int y, bool sideways) {
    if (x < ViewLeft())
        m_list.ScrollBy(-notches * kListNotch * PageList::kSlot);
    else if (sideways)
        m_view.PanBy(notches * m_view.ClientWidth() * kLine, 0);
    else
        m_view.ZoomBy(std::pow(kZoomStep, notches), x - ViewLeft(), y);
}

void Reader::Press(int x, int y) {
    if (x < ViewLeft()) {
        const int page = m_list.At(y);
        if (page >= 0)
            GoTo(page);
        return;
    }
    m_dragging = true;
    m_dragX = x;
    m_dragY = y;
}

void Reader::Move(int x, int y) {
    if (!m_dragging)
        return;
    m_view.PanBy(x - m_dragX, y - m_dragY);
    m_dragX = x;
    m_dragY = y;
}

} // namespace Viewer
