// SPDX-License-Identifier: MIT
// Records a page into a file, reads it back and draws it: with the same bytes, without the host.
#include "Guide.h"

#include "Calls.h"
#include "Recording.h"

#include <cstring>
#include <fstream>

namespace {

constexpr uint32_t kSize = 160;

// What a host does, with its calls made through `gx`.
void DrawPage(const Gxr::Calls& gx, GXRenderTarget target) {
    Owned<GXBrush> red, blue;
    Owned<GXGeometry> leaf;
    const GXPoint start = {0, -60}, c1 = {40, -20}, c2 = {20, 20}, end = {0, 20}, c3 = {-20, 20}, c4 = {-40, -20};
    CHECK(GXCreateGeometry(leaf.Out())); // read when it is used, so it needs no recording
    CHECK(GXGeometryBeginFigure(leaf, &start));
    CHECK(GXGeometryCubicCurveTo(leaf, &c1, &c2, &end));
    CHECK(GXGeometryCubicCurveTo(leaf, &c3, &c4, &start));
    CHECK(GXGeometryEndFigureClose(leaf));
    CHECK(gx.CreateBrushSolidARGB(0xFFE63946, red.Out()));
    CHECK(gx.CreateBrushSolidARGB(0xFF457B9D, blue.Out()));

    const GXBrush brushes[] = {red, blue};
    const GXGeometry path = leaf;
    CHECK(gx.BeginPaint(target));
    CHECK(gx.Clear(target, 0xFFF1FAEE)); // what was there before is not recorded
    CHECK(gx.TranslateCTM(target, kSize / 2.0f, kSize / 2.0f));
    for (int i = 0; i < 5; ++i) {
        CHECK(gx.SetBlendMode(target, GXBlendModeMultiply));
        CHECK(gx.FillGeometry(target, path, brushes[i % 2]));
        CHECK(gx.RotateCTM(target, 1.2566371f));
    }
    CHECK(gx.EndPaint(target));
}

} // namespace

int main() {
    Gxr::Recorder recorder;
    const Gxr::Calls gx(&recorder); // Calls without a recorder only make the calls
    const auto drawn = Guide::MakeBitmap(kSize, kSize, GXPixelFormatBGRX32);
    Owned<GXRenderTarget> target;
    CHECK(gx.CreateRenderTargetBitmap(drawn, target.Out()));
    DrawPage(gx, target);
    const Gxr::Bytes file = recorder.File(); // throws when something could not be recorded
    std::ofstream("page.gxr", std::ios::binary)
        .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));

    // Somewhere else.
    const Gxr::Recording recording = Gxr::Recording::FromFile("page.gxr");
    Gxr::Player player(recording);
    const auto replayed = Guide::MakeBitmap(kSize, kSize, GXPixelFormatBGRX32);
    Owned<GXRenderTarget> again;
    CHECK(GXCreateRenderTargetBitmap(replayed, again.Out()));
    player.Play(again);

    GXBitmapData a, b;
    CHECK(GXBitmapLock(drawn, nullptr, GXLockRead, &a));
    CHECK(GXBitmapLock(replayed, nullptr, GXLockRead, &b));
    if (std::memcmp(a.data, b.data, size_t{a.stride} * kSize) != 0)
        return 1;
    CHECK(GXBitmapUnlock(drawn));
    CHECK(GXBitmapUnlock(replayed));
    CHECK(GXBitmapSaveToFile(replayed, L"recording.png"));
}
