// SPDX-License-Identifier: MIT
// An opened recording: reads the file, under any name that the system has for it, and draws the page at a place and a
// size, on a target or, by several threads, in memory.
#pragma once

#include "Pages.h"

#include "BandedPlayer.h"

#include <filesystem>
#include <functional>
#include <optional>

namespace Viewer {

class Document {
public:
    // Throws Gxr::Error, in one line that names the file.
    explicit Document(const std::filesystem::path& path);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    const Gxr::PageInfo& Page() const noexcept { return m_recording.Page(); }
    PageSize Size() const noexcept { return {double(Page().width), double(Page().height)}; }
    // The file's name without its folders, in UTF-8.
    std::string Name() const { return Text(m_path.filename()); }

    // One frame: the page `zoom` times as large with its corner at (x, y) of the target. `paper` as in
    // Gxr::Player::Play. Throws Gxr::Error with the library's own words.
    void Draw(GXRenderTarget target, float zoom, float x, float y, const Gxr::Paper* paper);
    // Pages::Draw by `threads` threads.
    void Draw(const Piece& piece, unsigned threads, const Gxr::StopFlag& stop);
    // Lets go of what drawing has made; it is made again when needed.
    void Rest() {
        m_player.reset();
        m_banded.reset();
    }

    // Paths as text in UTF-8, and back.
    static std::string Text(const std::filesystem::path& path);
    static std::filesystem::path Path(const std::string& text);

private:
    // Calls play(scale, rest): the page is played at `scale`, the matrix does the rest.
    void AtZoom(float zoom, const std::function<void(float scale, float rest)>& play);

    std::filesystem::path m_path;
    Gxr::Recording m_recording;
    std::optional<Gxr::Player> m_player;
    std::optional<Gxr::BandedPlayer> m_banded;
    bool m_pixelByPixel = false; // plays at scale 1 alone
};

} // namespace Viewer
