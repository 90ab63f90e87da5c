// SPDX-License-Identifier: MIT
#include "Document.h"

#include "Reason.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>

namespace Viewer {
namespace {

// Masks and cells that a page draws for itself grow with it up to this many pixels a page (64 MiB), then they are
// stretched.
constexpr double kSharpPixels = 1U << 24;

Gxr::Recording Read(const std::filesystem::path& path) {
    const std::string name = "'" + Document::Text(path) + "'";
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw Gxr::Error("cannot open " + name + ": " + std::strerror(errno));
    Gxr::Bytes bytes, block(1U << 20);
    do {
        file.read(reinterpret_cast<char*>(block.data()), static_cast<std::streamsize>(block.size()));
        bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<ptrdiff_t>(file.gcount()));
    } while (file);
    if (file.bad() || !file.eof())
        throw Gxr::Error("cannot read " + name);
    try {
        return Gxr::Recording(bytes);
    } catch (const Gxr::Error& error) {
        throw Gxr::Error(name + ": " + error.what());
    }
}

} // namespace

std::string Document::Text(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::filesystem::path Document::Path(const std::string& text) { return std::u8string(text.begin(), text.end()); }

Document::Document(const std::filesystem::path& path) : m_path(path), m_recording(Read(path)) {}

void Document::AtZoom(float zoom, const std::function<void(float, float)>& play) {
    const auto tell = [&](float scale) {
        try {
            play(scale, zoom / scale);
        } catch (const Gxr::Error& error) {
            throw Gxr::Error(WithReason(error.what()));
        }
    };
    static_cast<void>(WithReason({})); // of a call before, such as looking for a graphics card
    const double pixels = static_cast<double>(Page().width) * Page().height;
    const auto sharpest = static_cast<float>(std::sqrt(kSharpPixels / pixels));
    const float scale = m_pixelByPixel ? 1.0f : std::min(zoom, std::max(1.0f, sharpest));
    try {
        tell(scale);
    } catch (const Gxr::Error&) {
        if (scale == 1.0f)
            throw;
        // Recordings that copy their own surfaces pixel by pixel play at scale 1 alone; the matrix does the rest.
        tell(1.0f);
        m_pixelByPixel = true;
    }
}

void Document::Draw(GXRenderTarget target, float zoom, float x, float y, const Gxr::Paper* paper) {
    if (!m_player)
        m_player.emplace(m_recording);
    AtZoom(zoom, [&](float scale, float rest) {
        const GXMatrix place{rest, 0, 0, rest, x, y};
        if (GXRenderTargetSetCTM(target, &place) != GXResultSuccess)
            throw Gxr::Error("the page cannot be placed");
        m_player->Play(target, scale, paper);
    });
}

void Document::Draw(const Piece& piece, unsigned threads, const Gxr::StopFlag& stop) {
    if (!m_banded)
        m_banded.emplace(m_recording, threads);
    const Box part = piece.part.MovedBy(-piece.cell.left, -piece.cell.top);
    const GXExtBufLayout layout{static_cast<float>(piece.cell.width), static_cast<float>(piece.cell.height),
                                static_cast<float>(piece.strideBytes), 96, 96};
    AtZoom(piece.zoom, [&](float scale, float rest) {
        // Recordings need not fill their page.
        for (int y = part.top; y < part.Bottom(); ++y) {
            auto* const row = piece.pixels.get() + static_cast<size_t>(y) * piece.strideBytes;
            std::memset(row + 4 * static_cast<ptrdiff_t>(part.left), 0xFF, 4 * static_cast<size_t>(part.width));
        }
        const Gxr::BandedPlayer::Part area{
            {rest, 0, 0, rest, static_cast<float>(-piece.cell.left), static_cast<float>(-piece.cell.top)},
            {part.left, part.top, part.Right(), part.Bottom()},
            &stop};
        m_banded->Play(piece.pixels.get(), GXPixelFormatPBGRA32, layout, scale, &area);
    });
}

} // namespace Viewer
