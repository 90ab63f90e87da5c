// SPDX-License-Identifier: MIT
#include "Document.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

namespace Viewer {
namespace {

// Masks and cells that a page draws for itself grow with it up to this many pixels a page (64 MiB), then they are
// stretched.
constexpr double kSharpPixels = 1U << 24;

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

Gxr::Recording Read(const std::wstring& path) {
    const std::string name = Quoted(path);
    const std::unique_ptr<std::FILE, Closer> file(_wfopen(path.c_str(), L"rb"));
    if (!file)
        throw Gxr::Error("cannot open " + name + ": " + std::strerror(errno));
    Gxr::Bytes bytes, block(1U << 20);
    while (const size_t got = std::fread(block.data(), 1, block.size(), file.get()))
        bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<ptrdiff_t>(got));
    if (std::ferror(file.get()) != 0)
        throw Gxr::Error("cannot read " + name);
    try {
        return Gxr::Recording(bytes);
    } catch (const Gxr::Error& error) {
        throw Gxr::Error(name + ": " + error.what());
    }
}

} // namespace

Document::Document(const std::wstring& path)
    : m_recording(Read(path)), m_player(m_recording), m_name(path.substr(path.find_last_of(L"/\\") + 1)) {}

void Document::Draw(GXRenderTarget target, float zoom, float x, float y, const Gxr::Paper* paper) {
    const auto play = [&](float scale) {
        const float rest = zoom / scale;
        const GXMatrix place{rest, 0, 0, rest, x, y};
        if (GXRenderTargetSetCTM(target, &place) != GXResultSuccess)
            throw Gxr::Error(WithReason("the page cannot be placed"));
        try {
            m_player.Play(target, scale, paper);
        } catch (const Gxr::Error& error) {
            throw Gxr::Error(WithReason(error.what()));
        }
    };
    static_cast<void>(WithReason({})); // of a call before, such as looking for a graphics card
    const double pixels = static_cast<double>(Page().width) * Page().height;
    const auto sharpest = static_cast<float>(std::sqrt(kSharpPixels / pixels));
    const float scale = m_pixelByPixel ? 1.0f : std::min(zoom, std::max(1.0f, sharpest));
    try {
        play(scale);
    } catch (const Gxr::Error&) {
        if (scale == 1.0f)
            throw;
        // Recordings that copy their own surfaces pixel by pixel play at scale 1 alone; the matrix does the rest.
        play(1.0f);
        m_pixelByPixel = true;
    }
}

} // namespace Viewer
