// SPDX-License-Identifier: MIT
// An opened recording: reads the file under its Windows name and draws the page at a place and a size.
#pragma once

#include "Recording.h"
#include "System.h"

namespace Viewer {

class Document {
public:
    // Throws Gxr::Error, in one line that names the file.
    explicit Document(const std::wstring& path);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    const Gxr::PageInfo& Page() const noexcept { return m_recording.Page(); }
    // The file's name without its folders.
    const std::wstring& Name() const noexcept { return m_name; }
    std::string NarrowName() const { return Narrow(m_name); }

    // One frame: the page `zoom` times as large with its corner at (x, y) of the target. `paper` as in
    // Gxr::Player::Play. Throws Gxr::Error with the library's own words.
    void Draw(GXRenderTarget target, float zoom, float x, float y, const Gxr::Paper* paper);

private:
    Gxr::Recording m_recording;
    Gxr::Player m_player;
    std::wstring m_name;
    bool m_pixelByPixel = false; // plays at scale 1 alone
};

} // namespace Viewer
