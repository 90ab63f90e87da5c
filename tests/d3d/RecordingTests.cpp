// SPDX-License-Identifier: MIT
// Recorded pages of real documents on both back ends.
#include <filesystem>

#include "Handles.h"
#include "HardwareTest.h"
#include "Recording.h"
#include "Software/Surfaces/SwBitmapSurface.h"
#include "Software/SwRenderTarget.h"
#include "Target/RenderTarget.h"

using namespace Graphics;

namespace {

// Half a level is the card's rounding where the software truncates. More than 16 levels are single pixels: edges that
// the software moves to eighths of a pixel, and nearest samples that lie between two texels.
constexpr double kMean = 1.0;
constexpr double kAbove16 = 0.004;

/// Plays a page on a back end of ours, through the exported functions.
void Play(Gxr::Player& player, std::unique_ptr<RenderTargetBase> backEnd, float scale) {
    Gxr::Handle<GXRenderTarget> handle;
    *handle.Out() = new GXRenderTargetRec_(std::make_shared<RenderTarget>(std::move(backEnd)));
    player.Play(handle.Get(), scale);
}

} // namespace

TEST_F(HardwareTest, RecordedPagesLookAlike) {
    size_t pages = 0;
    for (const auto& entry : std::filesystem::directory_iterator(GX_RECORDINGS)) {
        if (entry.path().extension() != ".gxr") {
            continue;
        }
        const std::string name = entry.path().stem().string();
        const Gxr::Recording recording = Gxr::Recording::FromFile(entry.path().string());
        const Gxr::PageInfo& page = recording.Page();
        // A bitmap that lies within 1/256 pixel of the middle between two pixels may be one pixel off, because the card
        // settles ties by such a shift; at a side of 640 those of blend_modes lie at 40.5017.
        const float scale = std::min(1.0F, 600.0F / static_cast<float>(std::max(page.width, page.height)));
        const auto side = [&](uint32_t pixels) {
            return std::max(1, static_cast<int32_t>(static_cast<float>(pixels) * scale + 0.5F));
        };
        const int32_t width = side(page.width);
        const int32_t height = side(page.height);
        Gxr::Player player(recording);

        auto surface = std::make_unique<TextureSurface>(width, height);
        const TextureSurface* reader = surface.get();
        auto hardware = std::make_unique<D3D11RenderTarget>(Context(), std::move(surface));
        Gxr::Handle<GXRenderTarget> handle;
        *handle.Out() = new GXRenderTargetRec_(std::make_shared<RenderTarget>(std::move(hardware)));
        const D3D11Counters before = Context()->Device().Counters();
        const size_t shadersBefore = Context()->Shaders().Count();
        player.Play(handle.Get(), scale);
        const D3D11Counters& after = Context()->Device().Counters();
        const uint64_t batches = after.batches - before.batches;
        const uint64_t maps = after.vertexMaps - before.vertexMaps;
        const uint64_t compiled = after.compilations - before.compilations;
        EXPECT_LE(maps, batches) << name;
        EXPECT_EQ(compiled, Context()->Shaders().Count() - shadersBefore) << name << ": once for each key";
        const std::vector<uint32_t> drawn = reader->Read(*Context());
        handle.Reset();

        auto image = std::make_shared<SysMemBitmap>(width, height, GXPixelFormatBGRX32);
        image->Zero();
        Play(player,
             std::make_unique<SwRenderTarget>(std::make_unique<SwBitmapSurface>(std::make_shared<Bitmap>(image))),
             scale);
        std::vector<uint32_t> expected;
        for (int32_t y = 0; y < height; ++y) {
            const auto* row =
                reinterpret_cast<const uint32_t*>(image->Data() + static_cast<size_t>(y) * image->StrideBytes());
            expected.insert(expected.end(), row, row + width);
        }
        const Difference d = Compare(drawn, expected, width);
        std::printf("%-28s mean %6.3f above 16 %8.5f largest %3d\n", name.c_str(), d.mean, d.above16, d.largest);
        EXPECT_LE(d.mean, kMean) << name;
        EXPECT_LE(d.above16, kAbove16) << name << " largest " << d.largest << " at " << d.x << " " << d.y << " of "
                                       << width << " x " << height;
        ++pages;
    }
    EXPECT_GE(pages, 20U);
}
