// SPDX-License-Identifier: MIT
// What a viewer shows of a document and what keys, wheel and pointer do to it: the page, the view of it and the list of
// pages. Free of any window system; the fronts translate their events and ask for what to draw.
#pragma once

#include "PageList.h"

namespace Viewer {

enum class Action {
    Left, // by a step
    Right,
    Up,
    Down,
    ScreenUp, // by a windowful; over the page's edge to the page before or after
    ScreenDown,
    NextPage,
    PreviousPage,
    FirstPage, // at its top
    LastPage,  // at its bottom
    ZoomIn,    // about the middle
    ZoomOut,
    Fit,
    ActualSize,
    ToggleList
};

class Reader {
public:
    static constexpr double kZoomStep = 1.25; // a notch of the wheel, a press of a key

    // Another document, at its first page, which has this size as far as is known.
    void Open(int pages, PageSize first);
    // The window's size, the list included.
    void SetClient(int width, int height);
    void ShowList(bool shown);
    void GoTo(int page, bool atBottom = false);
    // The page that is shown has turned out to be of this size.
    void Correct(PageSize size);

    void Do(Action action);
    // Notches of the wheel, upwards: zoom about the pointer, or `sideways` to the left. Over the list it is scrolled.
    void Wheel(double notches, int x, int y, bool sideways = false);
    // The pointer's button: takes the page along until it is released, or picks one from the list.
    void Press(int x, int y);
    void Move(int x, int y);
    void Release() { m_dragging = false; }

    bool HasPages() const noexcept { return m_list.Count() > 0; }
    int Page() const noexcept { return m_page; }
    // The view lies to the right of the list.
    View& GetView() noexcept { return m_view; }
    const View& GetView() const noexcept { return m_view; }
    int ViewLeft() const noexcept { return m_listShown ? std::min(PageList::kWidth, m_width - 1) : 0; }
    const PageList& List() const noexcept { return m_list; }
    bool IsListShown() const noexcept { return m_listShown; }

private:
    void Lay();

    View m_view;
    PageList m_list;
    int m_width = 1, m_height = 1;
    int m_page = 0;
    bool m_listShown = false, m_dragging = false;
    int m_dragX = 0, m_dragY = 0;
};

} // namespace Viewer
