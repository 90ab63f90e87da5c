// SPDX-License-Identifier: MIT
#include "Scenario.h"

#include "Recorder.h"

#include <gtest/gtest.h>

#include <cmath>

#define OK(call) ExpectSuccess(call, #call)

namespace RecordingTests {
namespace {

void ExpectSuccess(GXResult result, const char* call) { EXPECT_EQ(result, GXResult{GXResultSuccess}) << call; }

Handle<GXBitmap> NewBitmap(uint32_t side, GXPixelFormat format) {
    const GXBitmapDesc desc{side, side, format, 96.0f, 72.0f};
    Handle<GXBitmap> bitmap;
    OK(GXCreateBitmap(&desc, bitmap.Out()));
    OK(GXBitmapColorFill(bitmap.Get(), nullptr, 0));
    return bitmap;
}

Handle<GXBitmap> Noise(uint32_t side, GXPixelFormat format, uint32_t seed) {
    Handle<GXBitmap> bitmap = NewBitmap(side, format);
    GXBitmapData data{};
    OK(GXBitmapLock(bitmap.Get(), nullptr, GXLockWrite, &data));
    for (uint32_t y = 0; y < side; ++y)
        for (uint32_t x = 0; x < data.rowLength; ++x) {
            seed = seed * 1664525u + 1013904223u;
            // Premultiplied pixels: no colour above its alpha.
            const bool alpha = x % 4 == 3;
            static_cast<uint8_t*>(data.data)[y * data.stride + x] = static_cast<uint8_t>(
                format == GXPixelFormatPBGRA32 ? (alpha ? 128 + seed % 128 : seed % 128) : seed >> 24);
        }
    OK(GXBitmapUnlock(bitmap.Get()));
    return bitmap;
}

Handle<GXGeometry> Star(float radius, GXFillRule rule) {
    Handle<GXGeometry> star;
    OK(GXCreateGeometry(star.Out()));
    OK(GXGeometrySetFillRule(star.Get(), rule));
    for (int i = 0; i < 5; ++i) {
        const float angle = 2.513274f * static_cast<float>(i);
        const GXPoint p{radius + radius * std::sin(angle), radius - radius * std::cos(angle)};
        OK(i == 0 ? GXGeometryBeginFigure(star.Get(), &p) : GXGeometryLineTo(star.Get(), &p));
    }
    OK(GXGeometryEndFigureClose(star.Get()));
    const GXPoint from{0, 0}, c1{radius, 0}, c2{0, radius}, to{2 * radius, 2 * radius};
    OK(GXGeometryBeginFigure(star.Get(), &from));
    OK(GXGeometryCubicCurveTo(star.Get(), &c1, &c2, &to));
    OK(GXGeometryEndFigure(star.Get()));
    return star;
}

} // namespace

std::vector<uint8_t> Pixels(GXBitmap bitmap) {
    GXBitmapData data{};
    GXSize size{};
    OK(GXBitmapGetSize(bitmap, &size));
    OK(GXBitmapLock(bitmap, nullptr, GXLockRead, &data));
    std::vector<uint8_t> pixels;
    for (uint32_t y = 0; y < size.height; ++y) {
        const auto* row = static_cast<const uint8_t*>(data.data) + size_t{y} * data.stride;
        pixels.insert(pixels.end(), row, row + data.rowLength);
    }
    OK(GXBitmapUnlock(bitmap));
    return pixels;
}

Handle<GXBitmap> DrawScenario(const Gxr::Calls& calls) {
    Handle<GXBitmap> page = NewBitmap(kSide, GXPixelFormatPBGRA32);
    Handle<GXRenderTarget> owner, maskOwner;
    OK(calls.CreateRenderTargetBitmap(page.Get(), owner.Out()));
    const GXRenderTarget t = owner.Get();

    // Objects of every kind.
    Handle<GXBrush> red, blue, gradientBrush, radialBrush, meshBrush, tiles, palettized;
    Handle<GXGradient> linear, radial, mesh;
    const GXColor color{0.8f, 0.1f, 0.1f, 0.7f};
    const GXGradientStop stops[] = {{0.0f, 0xFFFF0000u}, {0.4f, 0x8000FF00u}, {1.0f, 0xFF0000FFu}};
    const GXLinearGradientDesc linearDesc{stops, 3, {5, 5}, {60, 40}, 1, 0, 0x40808080u};
    const GXRadialGradientDesc radialDesc{stops, 3, {20, 20}, 2, {30, 25}, 25, 0, 1, 0};
    const GXTriMeshVertex triangle[] = {{0, 0, 0xFFFF0000u}, {40, 5, 0xFF00FF00u}, {10, 45, 0x800000FFu}};
    const GXMatrix shift{1, 0.25f, 0, 1, 3, 2}, half{0.5f, 0, 0, 0.5f, 0, 0}, spread{5, 0, 0, 5, 0, 0};
    const GXBitmapBrushOptions repeat{GXInterpolationLinear, GXExtendRepeat, GXExtendMirror};
    const Handle<GXBitmap> picture = Noise(9, GXPixelFormatPBGRA32, 1), indexed = Noise(8, GXPixelFormatIndexed8, 2),
                           mask = Noise(16, GXPixelFormatAlpha8, 3);
    const uint32_t colors[] = {0xFF112233u, 0x80FF8800u, 0xFFFFFFFFu};
    Handle<GXPalette> palette;
    OK(GXCreatePalette(colors, 3, palette.Out()));
    OK(GXBitmapSetPalette(indexed.Get(), palette.Get()));
    OK(calls.CreateBrushSolid(&color, red.Out()));
    OK(calls.CreateBrushSolidARGB(0xC02040E0u, blue.Out()));
    OK(calls.CreateGradientLinear(&linearDesc, linear.Out()));
    OK(calls.CreateGradientRadial(&radialDesc, radial.Out()));
    OK(calls.CreateGradientTriMesh(triangle, 3, 0x20FFFFFFu, mesh.Out()));
    OK(calls.CreateBrushGradient(linear.Get(), 0.8f, nullptr, gradientBrush.Out()));
    OK(calls.CreateBrushGradient(radial.Get(), 1.0f, &shift, radialBrush.Out()));
    OK(calls.CreateBrushGradient(mesh.Get(), 1.0f, &shift, meshBrush.Out()));
    OK(calls.CreateBrushBitmap(picture.Get(), 0.9f, &repeat, &half, tiles.Out()));
    OK(calls.CreateBrushBitmap(indexed.Get(), 1.0f, nullptr, nullptr, palettized.Out()));
    const Handle<GXGeometry> star = Star(14, GXFillRuleEvenOdd), same = Star(14, GXFillRuleEvenOdd),
                             large = Star(30, GXFillRuleNonZero);
    GXStrokeStyle dashed{GXLineJoinRound, GXLineCapSquare, 4, 0, 1.5f, {4, 2, 1, 2}, 4};
    const GXRect box{4.5f, 6.25f, 30.75f, 28}, low{30, 34, 61, 60}, unit{8, 8, 40, 50};
    const GXPoint a{2, 60}, b{60, 3};
    const GXIntRect part{1, 1, 7, 8};

    OK(calls.SetStrokeAdjustment(t, 0));
    OK(calls.BeginPaint(t));
    OK(calls.Clear(t, 0xFFF0F0E8u));
    OK(calls.FillRect(t, &box, red.Get()));
    OK(calls.FillEllipse(t, &low, gradientBrush.Get()));
    OK(calls.PushState(t));
    OK(calls.ConcatCTM(t, &shift));
    OK(calls.RotateCTM(t, 0.3f));
    OK(calls.ScaleCTM(t, 0.9f, 1.1f));
    OK(calls.TranslateCTM(t, 6, -3));
    OK(calls.FillGeometry(t, star.Get(), radialBrush.Get()));
    OK(calls.FillTextGeometry(t, same.Get(), blue.Get()));
    OK(calls.StrokeGeometry(t, star.Get(), blue.Get(), 2.5f, &dashed));
    OK(calls.PopState(t));
    OK(calls.StrokeLine(t, &a, &b, red.Get(), 3, nullptr));
    OK(calls.StrokeRect(t, &low, tiles.Get(), 4, &dashed));
    OK(calls.StrokeEllipse(t, &box, meshBrush.Get(), 2, nullptr));
    OK(calls.SetBlendMode(t, GXBlendModeMultiply));
    OK(calls.DrawBitmap(t, picture.Get(), &b, 0.5f, GXInterpolationNearest));
    OK(calls.StretchBitmap(t, picture.Get(), &low, &part, 1, GXInterpolationLinear));
    OK(calls.SetBlendMode(t, GXBlendModeNormal));
    OK(calls.DrawBitmap(t, indexed.Get(), nullptr, 1, GXInterpolationNearest));

    // A mask that the page draws for itself, used while the page goes on, and once more after it changed.
    Handle<GXBitmap> drawn = NewBitmap(12, GXPixelFormatPBGRA32);
    OK(calls.CreateRenderTargetBitmap(drawn.Get(), maskOwner.Out()));
    OK(calls.BeginPaint(maskOwner.Get()));
    OK(calls.Clear(maskOwner.Get(), 0xFF303030u));
    OK(calls.FillGeometry(maskOwner.Get(), large.Get(), palettized.Get()));
    OK(calls.EndPaint(maskOwner.Get()));
    Handle<GXBrush> maskBrush;
    const GXBitmapBrushOptions nearest{GXInterpolationNearest, GXExtendClamp, GXExtendClamp};
    OK(calls.CreateBrushBitmap(drawn.Get(), 1.0f, &nearest, &spread, maskBrush.Out()));
    const GXLayerDesc plain{{4, 4, 60, 60}, 0.75f, 0, 0}, knockout{{0, 0, 0, 0}, 1.0f, 1, 1};
    OK(calls.PushState(t));
    OK(calls.SetOpacityMask(t, GXMaskTypeLuminosity, maskBrush.Get()));
    OK(calls.BeginLayer(t, &plain));
    OK(calls.FillRect(t, &low, red.Get()));
    OK(calls.BeginLayer(t, &knockout));
    OK(calls.ClipEllipse(t, &unit));
    OK(calls.FillRect(t, &unit, blue.Get()));
    OK(calls.FillEllipse(t, &low, gradientBrush.Get()));
    OK(calls.EndLayer(t));
    OK(calls.EndLayer(t));
    OK(calls.PopState(t));
    OK(GXBitmapColorFill(drawn.Get(), nullptr, 0x90FFFFFFu));
    OK(calls.PushState(t));
    OK(calls.SetShapeMask(t, GXMaskTypeInverseAlpha, maskBrush.Get()));
    OK(calls.ClipGeometry(t, large.Get()));
    OK(calls.ClipRect(t, &unit));
    OK(calls.DrawGradient(t, linear.Get(), 0.5f, &shift));
    OK(calls.SetShapeMask(t, GXMaskTypeAlpha, nullptr));
    OK(calls.FillMask(t, mask.Get(), radialBrush.Get(), nullptr, GXInterpolationNearest));
    OK(calls.PopState(t));
    calls.Forget(drawn.Get());
    OK(calls.SetCTM(t, &half));
    OK(calls.InvertRect(t, &low));
    OK(calls.SetCTM(t, nullptr));
    OK(calls.InvertLine(t, &a, &b));
    // Left open: ended with the page.
    OK(calls.BeginLayer(t, &plain));
    OK(calls.FillGeometry(t, star.Get(), tiles.Get()));
    OK(calls.EndPaint(t));
    return page;
}

Gxr::Bytes RecordScenario() {
    Gxr::Recorder recorder;
    DrawScenario(Gxr::Calls(&recorder));
    return recorder.File();
}

} // namespace RecordingTests
