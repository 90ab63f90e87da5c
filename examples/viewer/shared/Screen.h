// SPDX-License-Identifier: MIT
// Puts together what a window shows, in memory: the ground, the page as far as it is drawn, over what it looked like
// before, enlarged, where it is not; the list of pages.
#pragma once

#include "Drawer.h"
#include "Reader.h"

#include <filesystem>

namespace Viewer {

class Screen {
public:
    static constexpr uint32_t kGround = 0xFF7F8388;

    // Sizes are those of the reader's window. Throws Gxr::Error when the library cannot draw.
    void Compose(const Reader& reader, const Drawer& drawer);

    int Width() const noexcept { return m_width; }
    int Height() const noexcept { return m_height; }
    // Rows of B, G, R and a fourth byte, without gaps.
    const uint32_t* Pixels() const noexcept { return m_pixels.data(); }
    // A PNG. Throws Gxr::Error.
    void Save(const std::filesystem::path& path) const;

private:
    // The page as it was last seen complete, in pixels of the page at that zoom.
    struct Still {
        int page = -1;
        float zoom = 1.0f;
        Box visible;
        Gxr::Handle<GXBitmap> bitmap;
    };

    void DrawDraft(GXRenderTarget target, const Box& page, float zoom) const;
    void DrawList(GXRenderTarget target, const Reader& reader, const Drawer& drawer) const;
    void CopyDrawn(const Box& page, const Drawer& drawer);
    void KeepStill(int number, float zoom, const Box& page, const Box& visible);

    int m_width = 0, m_height = 0;
    std::vector<uint32_t> m_pixels;
    Still m_still;
};

// What the drawer should draw for what the reader shows.
Drawer::Wanted WantedBy(const Reader& reader);

} // namespace Viewer
