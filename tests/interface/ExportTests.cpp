// SPDX-License-Identifier: MIT
// Every exported function, and every pointer argument of it: null where a pointer is required gives
// GXResultInvalidArgument without a diagnostic line, and neither this nor any other failure writes an output.
#include <GX/GX.h>

#include <array>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <tuple>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

extern "C" size_t HeaderCEntryCount(void);
extern "C" int HeaderCEntryIsNull(size_t index);

namespace {

constexpr unsigned char kUntouched = 0xA5;

/// Where every output of a row points: it must come back as it was.
alignas(16) std::array<unsigned char, 64> g_out;

/// Marks an argument that may be null.
template <class T> struct Nullable { T* pointer; };
template <class T> Nullable<T> Opt(T* pointer) { return {pointer}; }

template <class T> struct IsNullable : std::false_type {};
template <class T> struct IsNullable<Nullable<T>> : std::true_type {};

template <class T> T Plain(T value) { return value; }
template <class T> T* Plain(Nullable<T> value) { return value.pointer; }

template <class T> T* Out() { return reinterpret_cast<T*>(g_out.data()); }

class NullArguments : public ::testing::Test {
protected:
    void SetUp() override {
        const GXBitmapDesc desc = {4, 4, GXPixelFormatPBGRA32, 96.0f, 96.0f};
        const uint32_t colors[] = {0xFF000000u, 0xFFFFFFFFu};
        const GXLinearGradientDesc linear = {nullptr, 0, {0, 0}, {1, 0}, 0, 0, 0};
        ASSERT_EQ(GXCreateBitmap(&desc, &m_bitmap), GXResultSuccess);
        ASSERT_EQ(GXCreatePalette(colors, 2, &m_palette), GXResultSuccess);
        ASSERT_EQ(GXCreateBrushSolidARGB(0xFF112233u, &m_brush), GXResultSuccess);
        ASSERT_EQ(GXCreateGradientLinear(&linear, &m_gradient), GXResultSuccess);
        ASSERT_EQ(GXCreateGeometry(&m_geometry), GXResultSuccess);
        ASSERT_EQ(GXCreateRenderTargetBitmap(m_bitmap, &m_target), GXResultSuccess);
        // Where a kind is not there, any address serves: a row with a null in it never looks behind its handles.
        if (GXCreateRegion(&m_region) != GXResultSuccess) {
            m_region = reinterpret_cast<GXRegion>(&m_stand);
        }
        const uint16_t defaultFace[] = {0};
        if (GXCreateFontFace(defaultFace, 0, 12.0f, &m_face) != GXResultSuccess) {
            m_face = reinterpret_cast<GXFontFace>(&m_stand);
        }
    }

    void TearDown() override {
        for (void* object : std::initializer_list<void*>{m_target, m_geometry, m_gradient, m_brush, m_palette, m_bitmap,
                                                         m_region, m_face}) {
            if (object != &m_stand) {
                EXPECT_EQ(GXObjectRelease(object), GXResultSuccess);
            }
        }
    }

    /// Calls `function` once for each required pointer among `args`, with that one null.
    template <class Function, class... Args> void Row(const char* name, Function function, Args... args) {
        EachNull(name, function, std::make_tuple(args...), std::index_sequence_for<Args...>());
        ++m_rows;
    }

    GXBitmap m_bitmap = nullptr;
    GXPalette m_palette = nullptr;
    GXBrush m_brush = nullptr;
    GXGradient m_gradient = nullptr;
    GXGeometry m_geometry = nullptr;
    GXRegion m_region = nullptr;
    GXFontFace m_face = nullptr;
    GXRenderTarget m_target = nullptr;
    size_t m_rows = 0;

private:
    template <class Function, class Tuple, size_t... Index>
    void EachNull(const char* name, Function function, const Tuple& args, std::index_sequence<Index...>) {
        (OneNull<Index>(name, function, args, std::index_sequence<Index...>()), ...);
    }

    template <size_t Nulled, class Function, class Tuple, size_t... Index>
    void OneNull(const char* name, Function function, const Tuple& args, std::index_sequence<Index...>) {
        using Argument = std::tuple_element_t<Nulled, Tuple>;
        if constexpr (std::is_pointer_v<Argument> && !IsNullable<Argument>::value) {
            Tuple nulled = args;
            std::get<Nulled>(nulled) = nullptr;
            g_out.fill(kUntouched);
            EXPECT_EQ(function(Plain(std::get<Index>(nulled))...), GXResultInvalidArgument)
                << name << " with argument " << Nulled << " null";
            for (unsigned char byte : g_out) {
                ASSERT_EQ(byte, kUntouched) << name << " with argument " << Nulled << " null wrote an output";
            }
        }
    }

    uint64_t m_stand = 0;
};

#define ROW(function, ...) Row(#function, function, __VA_ARGS__)

void OnRect(void*, const GXIntRect*) {}

TEST_F(NullArguments, GiveInvalidArgumentAndWriteNothing) {
    static const GXPoint point = {1.0f, 1.0f};
    static const GXIntPoint intPoint = {1, 1};
    static const GXRect rect = {0.0f, 0.0f, 2.0f, 2.0f};
    static const GXIntRect intRect = {0, 0, 2, 2};
    static const GXMatrix matrix = {1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f};
    static const GXColor color = {0.1f, 0.2f, 0.3f, 1.0f};
    static const GXStrokeStyle style = {};
    static const GXBitmapDesc bitmapDesc = {1, 1, GXPixelFormatPBGRA32, 96.0f, 96.0f};
    static const GXLinearGradientDesc linear = {};
    static const GXRadialGradientDesc radial = {};
    static const GXTriMeshVertex vertices[3] = {};
    static const GXLayerDesc layer = {};
    static const GXBitmapBrushOptions options = {};
    static const GXExtBufLayout layout = {1.0f, 1.0f, 16.0f, 96.0f, 96.0f};
    static const GXGeometrySinkCallbacks callbacks = {};
    static const uint16_t text[] = {'a', 0};
    static uint32_t pixels[64];
    static const GXBitmapData data = {pixels, 16, 16};
    void* const native = pixels;

    int lines = 0;
    GXLogSetSink(
        3, [](void* count, const char*) { ++*static_cast<int*>(count); }, &lines);
    ROW(GXObjectAcquire, static_cast<void*>(m_bitmap));
    ROW(GXObjectRelease, static_cast<void*>(m_bitmap));
    ROW(GXCreatePalette, static_cast<const uint32_t*>(pixels), uint64_t{1}, Out<GXPalette>());
    ROW(GXPaletteGetNumColors, m_palette, Out<uint64_t>());
    ROW(GXPaletteGetColor, m_palette, uint64_t{0}, Out<uint32_t>());
    ROW(GXPaletteGetColors, m_palette, Out<const uint32_t*>());
    ROW(GXCreateBitmap, &bitmapDesc, Out<GXBitmap>());
    ROW(GXBitmapGetPixelFormat, m_bitmap, Out<GXPixelFormat>());
    ROW(GXBitmapGetSize, m_bitmap, Out<GXSize>());
    ROW(GXBitmapGetDpiX, m_bitmap, Out<float>());
    ROW(GXBitmapGetDpiY, m_bitmap, Out<float>());
    ROW(GXBitmapSetPalette, m_bitmap, Opt(m_palette));
    ROW(GXBitmapGetPalette, m_bitmap, Out<GXPalette>());
    ROW(GXBitmapLock, m_bitmap, Opt(&intRect), uint32_t{GXLockRead}, Out<GXBitmapData>());
    ROW(GXBitmapUnlock, m_bitmap);
    ROW(GXBitmapCopyFromBitmap, m_bitmap, Opt(&intPoint), m_bitmap, Opt(&intRect));
    ROW(GXBitmapCopyFromMemory, m_bitmap, Opt(&intRect), &data);
    ROW(GXBitmapCopyToMemory, m_bitmap, Opt(&intRect), &data);
    ROW(GXBitmapColorFill, m_bitmap, Opt(&intRect), uint32_t{0});
    ROW(GXBitmapNotifyChanged, m_bitmap);
    ROW(GXBitmapSetOffscreenPainting, m_bitmap, uint8_t{0});
    ROW(GXCreateBitmapFromFile, L"none.png", Out<GXBitmap>());
    ROW(GXCreateBitmapFromFileFrame, L"none.png", uint32_t{0}, Opt(Out<uint32_t>()), Out<GXBitmap>());
    ROW(GXCreateBitmapFromMemory, static_cast<const void*>(pixels), size_t{16}, Out<GXBitmap>());
    ROW(GXCreateBitmapFromHBITMAP, native, Out<GXBitmap>());
    ROW(GXBitmapSaveToFile, m_bitmap, L"none.png");
    ROW(GXBitmapSaveToHBITMAP, m_bitmap, Out<GXNativeBitmap>());
    ROW(GXBitmapCacheGetMemoryQuota, Out<uint64_t>());
    ROW(GXBitmapCacheGetMemoryInUse, Out<uint64_t>());
    ROW(GXBitmapCachePut, m_bitmap, Out<uint32_t>());
    ROW(GXBitmapCacheGet, uint32_t{1}, Out<GXBitmap>());
    ROW(GXCreateBrushSolid, &color, Out<GXBrush>());
    ROW(GXCreateBrushSolidARGB, uint32_t{0}, Out<GXBrush>());
    ROW(GXCreateBrushBitmap, m_bitmap, 1.0f, Opt(&options), Opt(&matrix), Out<GXBrush>());
    ROW(GXCreateBrushGradient, m_gradient, 1.0f, Opt(&matrix), Out<GXBrush>());
    ROW(GXCreateGradientLinear, &linear, Out<GXGradient>());
    ROW(GXCreateGradientRadial, &radial, Out<GXGradient>());
    ROW(GXCreateGradientTriMesh, &vertices[0], size_t{3}, uint32_t{0}, Out<GXGradient>());
    ROW(GXCreateGeometry, Out<GXGeometry>());
    ROW(GXGeometrySetFillRule, m_geometry, GXFillRule{0});
    ROW(GXGeometryGetFillRule, m_geometry, Out<GXFillRule>());
    ROW(GXGeometryEmpty, m_geometry, Out<uint8_t>());
    ROW(GXGeometryPointsEqual, m_geometry, m_geometry, Out<uint8_t>());
    ROW(GXGeometryGetCurrentPoint, m_geometry, Out<GXPoint>());
    ROW(GXGeometryGetBound, m_geometry, Opt(&matrix), Out<GXRect>());
    ROW(GXGeometryBeginFigure, m_geometry, &point);
    ROW(GXGeometryEndFigure, m_geometry);
    ROW(GXGeometryEndFigureClose, m_geometry);
    ROW(GXGeometryLineTo, m_geometry, &point);
    ROW(GXGeometryConicCurveTo, m_geometry, &point, &point);
    ROW(GXGeometryCubicCurveTo, m_geometry, &point, &point, &point);
    ROW(GXGeometryRectangle, m_geometry, &rect);
    ROW(GXGeometryEllipse, m_geometry, &rect);
    ROW(GXGeometryRoundRectangle, m_geometry, &rect, 1.0f, 1.0f);
    ROW(GXGeometryCopy, m_geometry, Out<GXGeometry>());
    ROW(GXGeometrySendToSink, m_geometry, &callbacks);
    ROW(GXGeometryTransform, m_geometry, Opt(&matrix), Out<GXGeometry>());
    ROW(GXGeometryWiden, m_geometry, 1.0f, Opt(&style), Out<GXGeometry>());
    ROW(GXGeometryCombine, m_geometry, m_geometry, uint32_t{GXCombineUnion}, 0.25f, Out<GXGeometry>());
    ROW(GXGeometryHitTest, m_geometry, &point, Opt(&matrix), 0.25f, Out<uint8_t>());
    ROW(GXCreateRegion, Out<GXRegion>());
    ROW(GXCreateRegionFromRect, &intRect, Out<GXRegion>());
    ROW(GXRegionIsAreaEmpty, m_region, Out<uint8_t>());
    ROW(GXRegionGetBound, m_region, Out<GXIntRect>());
    ROW(GXRegionContainsPoint, m_region, &intPoint, Out<uint8_t>());
    ROW(GXRegionContainsRect, m_region, &intRect, Out<uint8_t>());
    ROW(GXRegionContains, m_region, m_region, Out<uint8_t>());
    ROW(GXRegionHasIntersection, m_region, m_region, Out<uint8_t>());
    ROW(GXRegionHasIntersectionWithRect, m_region, &intRect, Out<uint8_t>());
    ROW(GXRegionOffset, m_region, int32_t{1}, int32_t{1});
    ROW(GXRegionCombine, m_region, m_region, uint32_t{GXCombineUnion}, Out<GXRegion>());
    ROW(GXRegionCombineRect, m_region, &intRect, uint32_t{GXCombineUnion}, Out<GXRegion>());
    ROW(GXRegionEnumRects, m_region, &OnRect, Opt(native));
    ROW(GXCreateFontFace, &text[0], uint32_t{0}, 12.0f, Out<GXFontFace>());
    ROW(GXFontFaceCalculateTextBound, m_face, &text[0], Out<float>());
    ROW(GXCreateRenderTargetBitmap, m_bitmap, Out<GXRenderTarget>());
    ROW(GXCreateRenderTargetExtBuf, native, GXPixelFormat{2}, &layout, Out<GXRenderTarget>());
    ROW(GXCreateRenderTargetHWND, native, uint32_t{1}, Out<GXRenderTarget>());
    ROW(GXCreateRenderTargetHDC, native, &intRect, Out<GXRenderTarget>());
    ROW(GXCreateRenderTargetPrintDC, native, Out<GXRenderTarget>());
    ROW(GXRenderTargetGetPixelFormat, m_target, Out<GXPixelFormat>());
    ROW(GXRenderTargetGetSize, m_target, Out<GXSize>());
    ROW(GXRenderTargetBeginPaint, m_target);
    ASSERT_EQ(GXRenderTargetBeginPaint(m_target), GXResultSuccess);
    ROW(GXRenderTargetPushState, m_target);
    ROW(GXRenderTargetPopState, m_target);
    ROW(GXRenderTargetGetCTM, m_target, Out<GXMatrix>());
    ROW(GXRenderTargetSetCTM, m_target, Opt(&matrix));
    ROW(GXRenderTargetConcatCTM, m_target, &matrix);
    ROW(GXRenderTargetRotateCTM, m_target, 1.0f);
    ROW(GXRenderTargetScaleCTM, m_target, 1.0f, 1.0f);
    ROW(GXRenderTargetTranslateCTM, m_target, 1.0f, 1.0f);
    ROW(GXRenderTargetSetBlendMode, m_target, GXBlendMode{0});
    ROW(GXRenderTargetSetStrokeAdjustment, m_target, uint8_t{1});
    ROW(GXRenderTargetSetOpacityMask, m_target, uint32_t{0}, Opt(m_brush));
    ROW(GXRenderTargetSetShapeMask, m_target, uint32_t{0}, Opt(m_brush));
    ROW(GXRenderTargetBeginLayer, m_target, &layer);
    ROW(GXRenderTargetEndLayer, m_target);
    ROW(GXRenderTargetClear, m_target, uint32_t{0});
    ROW(GXRenderTargetFillGeometry, m_target, m_geometry, m_brush);
    ROW(GXRenderTargetFillTextGeometry, m_target, m_geometry, m_brush);
    ROW(GXRenderTargetFillRect, m_target, &rect, m_brush);
    ROW(GXRenderTargetFillEllipse, m_target, &rect, m_brush);
    ROW(GXRenderTargetStrokeGeometry, m_target, m_geometry, m_brush, 1.0f, Opt(&style));
    ROW(GXRenderTargetStrokeLine, m_target, &point, &point, m_brush, 1.0f, Opt(&style));
    ROW(GXRenderTargetStrokeRect, m_target, &rect, m_brush, 1.0f, Opt(&style));
    ROW(GXRenderTargetStrokeEllipse, m_target, &rect, m_brush, 1.0f, Opt(&style));
    ROW(GXRenderTargetClipGeometry, m_target, m_geometry);
    ROW(GXRenderTargetClipRect, m_target, &rect);
    ROW(GXRenderTargetClipEllipse, m_target, &rect);
    ROW(GXRenderTargetDrawBitmap, m_target, m_bitmap, Opt(&point), 1.0f, uint32_t{0});
    ROW(GXRenderTargetStretchBitmap, m_target, m_bitmap, &rect, Opt(&intRect), 1.0f, uint32_t{0});
    ROW(GXRenderTargetDrawGradient, m_target, m_gradient, 1.0f, Opt(&matrix));
    ROW(GXRenderTargetFillMask, m_target, m_bitmap, m_brush, Opt(&rect), uint32_t{0});
    ROW(GXRenderTargetInvertRect, m_target, &rect);
    ROW(GXRenderTargetInvertLine, m_target, &point, &point);
    ROW(GXRenderTargetFillText, m_target, m_face, &text[0], m_brush);
    ASSERT_EQ(GXRenderTargetEndPaint(m_target), GXResultSuccess);
    ROW(GXRenderTargetEndPaint, m_target);

    GXLogSetSink(3, nullptr, nullptr);
    EXPECT_EQ(lines, 0) << "a null argument is no engine error";

    // The four without a required pointer.
    EXPECT_EQ(GXEnableHWAccelerationForThread(), GXResultSuccess);
    EXPECT_EQ(GXLogSetSink(-1, nullptr, nullptr), GXResultSuccess);
    // (GXBitmapCacheSetMemoryQuota and GXBitmapCacheRemove belong to the tests of the cache.)
    EXPECT_EQ(m_rows + 4, HeaderCEntryCount()) << "a function has no row";
}

TEST_F(NullArguments, BadValuesGiveTheirCodesAndChangeNothing) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const GXRect rect = {0.0f, 0.0f, 4.0f, 4.0f};
    const GXPoint from = {0.0f, 0.0f};
    const GXPoint to = {4.0f, 4.0f};
    uint32_t color = 7;
    EXPECT_EQ(GXPaletteGetColor(m_palette, 2, &color), GXResultIndexOutOfRange);
    EXPECT_EQ(GXPaletteGetColor(m_palette, UINT64_MAX, &color), GXResultIndexOutOfRange);
    EXPECT_EQ(color, 7u);

    GXPalette palette = nullptr;
    EXPECT_EQ(GXCreatePalette(&color, 0, &palette), GXResultInvalidArgument);
    GXGradient gradient = nullptr;
    const GXTriMeshVertex vertex = {};
    EXPECT_EQ(GXCreateGradientTriMesh(&vertex, 0, 0, &gradient), GXResultInvalidArgument);

    GXLinearGradientDesc linear = {};
    GXRadialGradientDesc radial = {};
    linear.stopCount = radial.stopCount = 1; // stops that are not there
    EXPECT_EQ(GXCreateGradientLinear(&linear, &gradient), GXResultInvalidArgument);
    EXPECT_EQ(GXCreateGradientRadial(&radial, &gradient), GXResultInvalidArgument);
    EXPECT_EQ(gradient, nullptr);
    const GXBitmapData noPixels = {nullptr, 4, 4};
    EXPECT_EQ(GXBitmapCopyFromMemory(m_bitmap, nullptr, &noPixels), GXResultInvalidArgument);
    EXPECT_EQ(GXBitmapCopyToMemory(m_bitmap, nullptr, &noPixels), GXResultInvalidArgument);
    GXGeometry combined = nullptr;
    EXPECT_EQ(GXGeometryCombine(m_geometry, m_geometry, 4, 0.0f, &combined), GXResultInvalidArgument);
    EXPECT_EQ(combined, nullptr);

    GXPoint point = {7.0f, 7.0f};
    EXPECT_EQ(GXGeometryGetCurrentPoint(m_geometry, &point), GXResultFalse);
    EXPECT_EQ(point.x, 7.0f);

    const GXMatrix before = {2.0f, 0.0f, 0.0f, 3.0f, 5.0f, 7.0f};
    ASSERT_EQ(GXRenderTargetSetCTM(m_target, &before), GXResultSuccess);
    for (auto [scaleX, scaleY] : {std::pair(0.0f, 1.0f), std::pair(1.0f, 0.0f), std::pair(-0.0f, 1.0f)}) {
        EXPECT_EQ(GXRenderTargetScaleCTM(m_target, scaleX, scaleY), GXResultInvalidArgument);
    }
    GXMatrix after;
    ASSERT_EQ(GXRenderTargetGetCTM(m_target, &after), GXResultSuccess);
    EXPECT_EQ(std::memcmp(&before, &after, sizeof after), 0);

    ASSERT_EQ(GXRenderTargetBeginPaint(m_target), GXResultSuccess);
    for (float width : {-1.0f, nan, -std::numeric_limits<float>::infinity()}) {
        GXGeometry outline = nullptr;
        EXPECT_EQ(GXGeometryWiden(m_geometry, width, nullptr, &outline), GXResultInvalidArgument);
        EXPECT_EQ(GXRenderTargetStrokeGeometry(m_target, m_geometry, m_brush, width, nullptr), GXResultInvalidArgument);
        EXPECT_EQ(GXRenderTargetStrokeLine(m_target, &from, &to, m_brush, width, nullptr), GXResultInvalidArgument);
        EXPECT_EQ(GXRenderTargetStrokeRect(m_target, &rect, m_brush, width, nullptr), GXResultInvalidArgument);
        EXPECT_EQ(GXRenderTargetStrokeEllipse(m_target, &rect, m_brush, width, nullptr), GXResultInvalidArgument);
    }
    EXPECT_EQ(GXRenderTargetEndPaint(m_target), GXResultSuccess);
}

TEST(CHeader, EveryFunctionLinksFromC) {
    ASSERT_EQ(HeaderCEntryCount(), 121u);
    for (size_t i = 0; i < HeaderCEntryCount(); ++i) {
        EXPECT_FALSE(HeaderCEntryIsNull(i)) << i;
    }
}

} // namespace
