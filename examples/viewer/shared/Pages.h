// SPDX-License-Identifier: MIT
// The pages of an opened document, whatever it is, as pixels.
#pragma once

#include "View.h"

#include "Band.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Viewer {

// A part of a cell (Cells.h) that has to be drawn. Boxes are in pixels of the page at `zoom`.
struct Piece {
    int page = 0; // from 0
    float zoom = 1.0f;
    Box extent; // the whole page
    Box cell, part;
    std::shared_ptr<uint8_t> pixels; // of the cell, PBGRA32
    uint32_t strideBytes = 0;
};

// One thread at a time, which need not be the one that uses the rest of the viewer.
class Pages {
public:
    Pages() = default;
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;
    virtual ~Pages() = default;

    // At least 1.
    virtual int Count() const = 0;
    // Without folders.
    virtual std::string Name() const = 0;
    // Both throw std::exception, with one line for the user, for a page that cannot be read or drawn, and Gxr::Stopped
    // once the flag is set.
    virtual PageSize SizeOf(int page, const Gxr::StopFlag& stop) = 0;
    // Draws the part on white, with the bytes that it has when all of the cell is drawn at once.
    virtual void Draw(const Piece& piece, const Gxr::StopFlag& stop) = 0;
};

} // namespace Viewer
