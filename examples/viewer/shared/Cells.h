// SPDX-License-Identifier: MIT
// The pixels of one page at one zoom, as far as they are in sight.
//
//     page at this zoom   +--+--+--+--+--+--+---
//                         |  :  :  |  :  :  |        Cells have fixed places on the page, and are drawn by columns that
//                         |  : +:--|--:+ :  |        have fixed places, too, and by any rows. What decides a pixel (how
//                         |  : |: view:| :  |        finely a curve is flattened, how a coordinate is rounded, where
//                         +----|---+---|----+        sampling of a bitmap begins) follows from the cell and the column
//                         |  : +:--|--:+ :  |        alone. So a cell that is drawn in parts, as the view moves over it,
//                                                    has the bytes of one whose columns are drawn at once.
//
// A cell has memory while some of it is in sight. Its memory is zero pages of the system until it is drawn into.
#pragma once

#include "Pages.h"

#include "Handle.h"

#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace Viewer {

class Cells {
public:
    // Pages up to the size of a cell are one cell of one column, with the bytes of a page drawn whole.
    static constexpr int kSide = 1024, kColumn = 256;

    // What is in sight: `visible` lies within `extent`, both in pixels of the page at `zoom`. Cells of another page,
    // another zoom or out of sight are dropped.
    void Show(int page, float zoom, const Box& extent, const Box& visible);
    // A part that is not drawn yet: rows in sight of a column; none when all in sight is drawn.
    std::optional<Piece> Missing() const;
    bool IsWanted(const Piece& piece) const;
    void Done(const Piece& piece);
    // Calls copy(box, pixels, stride) for each drawn part in sight; `pixels` are those of its corner.
    template <class Copy> void ForDrawn(Copy&& copy) const {
        for (const auto& [place, cell] : m_cells)
            for (const Box& box : Rects(cell.drawn, m_visible))
                copy(box, cell.At(box.left, box.top), cell.StrideBytes());
    }

    int Page() const noexcept { return m_page; }
    float Zoom() const noexcept { return m_zoom; }
    const Box& Visible() const noexcept { return m_visible; }
    size_t PixelsHeld() const noexcept;

private:
    struct Cell {
        Box box;
        std::shared_ptr<uint8_t> memory; // shared with a piece that is being drawn
        Gxr::Handle<GXRegion> drawn;     // in pixels of the page

        uint32_t StrideBytes() const noexcept { return 4U * static_cast<uint32_t>(box.width); }
        uint8_t* At(int x, int y) const noexcept {
            return memory.get() + static_cast<size_t>(y - box.top) * StrideBytes() +
                   4 * static_cast<size_t>(x - box.left);
        }
    };

    // How wide parts are.
    int Column() const noexcept { return m_extent.width <= kSide && m_extent.height <= kSide ? kSide : kColumn; }
    // The rectangles of a region within a box.
    static std::vector<Box> Rects(const Gxr::Handle<GXRegion>& region, const Box& within);
    Cell NewCell(int column, int row) const;

    int m_page = -1;
    float m_zoom = 0;
    Box m_extent, m_visible;
    std::map<std::pair<int, int>, Cell> m_cells; // by row and column
};

} // namespace Viewer
