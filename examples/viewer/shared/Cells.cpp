// SPDX-License-Identifier: MIT
#include "Cells.h"

#include <cstdlib>
#include <new>

namespace Viewer {
namespace {

void Check(GXResult result) {
    if (result != GXResultSuccess)
        throw std::bad_alloc(); // regions fail for want of memory alone
}

GXIntRect ToRect(const Box& box) { return {box.left, box.top, box.Right(), box.Bottom()}; }

Gxr::Handle<GXRegion> Combined(const Gxr::Handle<GXRegion>& region, const Box& box, uint32_t mode) {
    const GXIntRect rect = ToRect(box);
    Gxr::Handle<GXRegion> made;
    Check(GXRegionCombineRect(region.Get(), &rect, mode, made.Out()));
    return made;
}

} // namespace

std::vector<Box> Cells::Rects(const Gxr::Handle<GXRegion>& region, const Box& within) {
    std::vector<Box> boxes;
    const Gxr::Handle<GXRegion> seen = Combined(region, within, GXCombineIntersection);
    Check(GXRegionEnumRects(
        seen.Get(),
        [](void* list, const GXIntRect* r) {
            static_cast<std::vector<Box>*>(list)->push_back({r->left, r->top, r->right - r->left, r->bottom - r->top});
        },
        &boxes));
    return boxes;
}

Cells::Cell Cells::NewCell(int column, int row) const {
    Cell cell;
    cell.box = Common({column * kSide, row * kSide, kSide, kSide}, m_extent);
    const size_t bytes = size_t{4} * static_cast<size_t>(cell.box.width) * static_cast<size_t>(cell.box.height);
    cell.memory.reset(static_cast<uint8_t*>(std::calloc(bytes, 1)), std::free);
    if (!cell.memory)
        throw std::bad_alloc();
    Check(GXCreateRegion(cell.drawn.Out()));
    return cell;
}

void Cells::Show(int page, float zoom, const Box& extent, const Box& visible) {
    if (page != m_page || zoom != m_zoom || extent != m_extent)
        m_cells.clear();
    m_page = page;
    m_zoom = zoom;
    m_extent = extent;
    m_visible = Common(visible, extent);
    std::erase_if(m_cells, [&](const auto& entry) { return Common(entry.second.box, m_visible).IsEmpty(); });
    if (m_visible.IsEmpty())
        return;
    for (int row = m_visible.top / kSide; row <= (m_visible.Bottom() - 1) / kSide; ++row)
        for (int column = m_visible.left / kSide; column <= (m_visible.Right() - 1) / kSide; ++column)
            if (m_cells.find({row, column}) == m_cells.end())
                m_cells.emplace(std::pair(row, column), NewCell(column, row));
}

std::optional<Piece> Cells::Missing() const {
    for (const auto& [place, cell] : m_cells) {
        const Box seen = Common(cell.box, m_visible);
        const int width = Column();
        for (int left = seen.left / width * width; left < seen.Right(); left += width) {
            const Box column = Common({left, seen.top, width, seen.height}, cell.box);
            const GXIntRect needed = ToRect(column);
            Gxr::Handle<GXRegion> wanted, missing;
            Check(GXCreateRegionFromRect(&needed, wanted.Out()));
            Check(GXRegionCombine(wanted.Get(), cell.drawn.Get(), GXCombineDifference, missing.Out()));
            const std::vector<Box> parts = Rects(missing, column);
            if (!parts.empty())
                return Piece{m_page, m_zoom, m_extent, cell.box, parts.front(), cell.memory, cell.StrideBytes()};
        }
    }
    return std::nullopt;
}

bool Cells::IsWanted(const Piece& piece) const {
    return piece.page == m_page && piece.zoom == m_zoom && piece.extent == m_extent &&
           !Common(piece.part, m_visible).IsEmpty();
}

void Cells::Done(const Piece& piece) {
    const auto found = m_cells.find({piece.cell.top / kSide, piece.cell.left / kSide});
    // A cell that was dropped in the meantime and made anew has other memory.
    if (found != m_cells.end() && found->second.memory == piece.pixels)
        found->second.drawn = Combined(found->second.drawn, piece.part, GXCombineUnion);
}

size_t Cells::PixelsHeld() const noexcept {
    size_t pixels = 0;
    for (const auto& entry : m_cells)
        pixels += static_cast<size_t>(entry.second.box.width) * static_cast<size_t>(entry.second.box.height);
    return pixels;
}

} // namespace Viewer
