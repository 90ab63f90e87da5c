// SPDX-License-Identifier: MIT
// What the tests of the viewers' drawing have in common.
#pragma once

#include "Drawer.h"

#include "BandedPlayer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>

namespace Viewer {

inline Drawer::Wanted WantedOf(int page, PageSize size, float zoom, const Box& visible) {
    Drawer::Wanted wanted;
    wanted.page = page;
    wanted.size = size;
    wanted.zoom = zoom;
    wanted.extent = {0, 0, Extent(size.width, zoom), Extent(size.height, zoom)};
    wanted.visible = Common(visible, wanted.extent);
    return wanted;
}

// Waits until the wish is granted or has failed.
inline Drawer::Status Settle(Drawer& drawer, bool thumbs = false) {
    for (;;) {
        const Drawer::Status status = drawer.GetStatus();
        if (!status.failure.empty() || (thumbs ? status.thumbsComplete : status.complete))
            return status;
        drawer.WaitForNews();
    }
}

// Pixels of the columns that come in sight when the view moves from one box to another, all of it at first.
inline uint64_t Fresh(const Box& from, const Box& to) {
    const auto widened = [](const Box& box) {
        const int left = box.left / Cells::kColumn * Cells::kColumn;
        return Box{left, box.top, (box.Right() + Cells::kColumn - 1) / Cells::kColumn * Cells::kColumn - left,
                   box.height};
    };
    const Box all = widened(to), kept = Common(widened(from), all);
    return static_cast<uint64_t>(all.width) * static_cast<uint64_t>(all.height) -
           static_cast<uint64_t>(kept.width) * static_cast<uint64_t>(kept.height);
}

// The box of the page, cell by cell: draw(cell) gives the pixels of one.
template <class Draw> std::vector<uint32_t> InCells(const Box& extent, const Box& box, Draw&& draw) {
    std::vector<uint32_t> pixels(static_cast<size_t>(box.width) * static_cast<size_t>(box.height));
    for (int top = box.top / Cells::kSide * Cells::kSide; top < box.Bottom(); top += Cells::kSide)
        for (int left = box.left / Cells::kSide * Cells::kSide; left < box.Right(); left += Cells::kSide) {
            const Box cell = Common({left, top, Cells::kSide, Cells::kSide}, extent), seen = Common(cell, box);
            const std::vector<uint32_t> drawn = draw(cell);
            for (int y = seen.top; y < seen.Bottom(); ++y)
                std::memcpy(&pixels[static_cast<size_t>(y - box.top) * static_cast<size_t>(box.width) +
                                    static_cast<size_t>(seen.left - box.left)],
                            &drawn[static_cast<size_t>(y - top) * static_cast<size_t>(cell.width) +
                                   static_cast<size_t>(seen.left - left)],
                            4 * static_cast<size_t>(seen.width));
        }
    return pixels;
}

// A cell drawn by one thread, each of its columns at once under a clip.
inline std::vector<uint32_t> PlayCell(const Gxr::Recording& recording, float scale, const GXMatrix& place,
                                      const Box& extent, const Box& cell) {
    std::vector<uint32_t> pixels(static_cast<size_t>(cell.width) * static_cast<size_t>(cell.height), 0xFFFFFFFF);
    const GXExtBufLayout layout{static_cast<float>(cell.width), static_cast<float>(cell.height),
                                static_cast<float>(cell.width) * 4, 96, 96};
    const bool small = extent.width <= Cells::kSide && extent.height <= Cells::kSide;
    const int width = small ? Cells::kSide : Cells::kColumn;
    Gxr::BandedPlayer player(recording, 1);
    for (int left = 0; left < cell.width; left += width) {
        const Gxr::BandedPlayer::Part part{place, {left, 0, left + width, cell.height}, nullptr};
        player.Play(pixels.data(), GXPixelFormatPBGRA32, layout, scale, &part);
    }
    return pixels;
}

// What is drawn of a box of the page, 0 where nothing is.
inline std::vector<uint32_t> DrawnIn(const Drawer& drawer, const Box& box) {
    std::vector<uint32_t> pixels(static_cast<size_t>(box.width) * static_cast<size_t>(box.height));
    drawer.ForDrawn([&](const Box& there, const uint8_t* data, size_t stride) {
        const Box seen = Common(there, box);
        for (int y = seen.top; y < seen.Bottom(); ++y)
            std::memcpy(&pixels[static_cast<size_t>(y - box.top) * static_cast<size_t>(box.width) +
                                static_cast<size_t>(seen.left - box.left)],
                        data + static_cast<size_t>(y - there.top) * stride +
                            4 * static_cast<size_t>(seen.left - there.left),
                        4 * static_cast<size_t>(seen.width));
    });
    return pixels;
}

inline size_t Different(const std::vector<uint32_t>& a, const std::vector<uint32_t>& b) {
    size_t different = a.size() == b.size() ? 0 : SIZE_MAX;
    for (size_t i = 0; different != SIZE_MAX && i < a.size(); ++i)
        different += ((a[i] ^ b[i]) & 0xFFFFFF) != 0;
    return different;
}

} // namespace Viewer
