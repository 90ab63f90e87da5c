// SPDX-License-Identifier: MIT
/* The C interface of the Graphics library: everything a host compiles against. C11 and C++17 clean. */
#ifndef GX_GX_H
#define GX_GX_H

#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

#if defined(_WIN32)
#if defined(GX_BUILDING_LIBRARY)
#define GX_API __declspec(dllexport)
#elif defined(GX_STATIC)
#define GX_API
#else
#define GX_API __declspec(dllimport)
#endif
#else
#define GX_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define GX_NOEXCEPT noexcept
extern "C" {
#else
#define GX_NOEXCEPT
#endif

typedef uint32_t GXResult;
enum {
    GXResultSuccess = 0,
    GXResultFalse = 1,
    GXResultInvalidArgument = 2,
    GXResultIndexOutOfRange = 4,
    GXResultEngineError = 5,
    GXResultUnexpectedError = 9
};
typedef uint32_t GXPixelFormat;
enum {
    GXPixelFormatUnknown = 0,
    GXPixelFormatBGR24 = 1,
    GXPixelFormatPBGRA32 = 2,
    GXPixelFormatBGRA32 = 3,
    GXPixelFormatBGRX32 = 4,
    GXPixelFormatAlpha8 = 5,
    GXPixelFormatIndexed8 = 6,
    GXPixelFormatGray8 = 7,
    GXPixelFormatAlpha1 = 8,
    GXPixelFormatIndexed1 = 9,
    GXPixelFormatBlackWhite1 = 10
};
typedef uint32_t GXFillRule;
enum {
    GXFillRuleNonZero = 0,
    GXFillRuleEvenOdd = 1
};
typedef uint32_t GXBlendMode;
enum {
    GXBlendModeNormal = 0,
    GXBlendModeMultiply = 1,
    GXBlendModeScreen = 2,
    GXBlendModeOverlay = 3,
    GXBlendModeDarken = 4,
    GXBlendModeLighten = 5,
    GXBlendModeColorBurn = 6,
    GXBlendModeColorDodge = 7,
    GXBlendModeHardLight = 8,
    GXBlendModeSoftLight = 9,
    GXBlendModeDifference = 10,
    GXBlendModeExclusion = 11,
    GXBlendModeHue = 12,
    GXBlendModeSaturation = 13,
    GXBlendModeColor = 14,
    GXBlendModeLuminosity = 15
};
typedef uint32_t GXLineCap;
enum {
    GXLineCapFlat = 0,
    GXLineCapRound = 1,
    GXLineCapSquare = 2
};
typedef uint32_t GXLineJoin;
enum {
    GXLineJoinMiter = 0,
    GXLineJoinRound = 1,
    GXLineJoinBevel = 2
};
enum {
    GXInterpolationNearest = 0,
    GXInterpolationLinear = 1,
    GXInterpolationAverage = 2
};
enum {
    GXExtendClamp = 0,
    GXExtendRepeat = 1,
    GXExtendMirror = 2
};
enum {
    GXMaskTypeAlpha = 0,
    GXMaskTypeInverseAlpha = 1,
    GXMaskTypeLuminosity = 2,
    GXMaskTypeInverseLuminosity = 3
};
enum {
    GXCombineIntersection = 0,
    GXCombineUnion = 1,
    GXCombineExclusiveOr = 2,
    GXCombineDifference = 3
};
enum {
    GXLockRead = 1,
    GXLockWrite = 2
};
enum {
    GXFontBold = 1,
    GXFontItalic = 2
};

typedef struct GXBitmapRec_* GXBitmap;
typedef struct GXBrushRec_* GXBrush;
typedef struct GXFontFaceRec_* GXFontFace;
typedef struct GXGeometryRec_* GXGeometry;
typedef struct GXGradientRec_* GXGradient;
typedef struct GXPaletteRec_* GXPalette;
typedef struct GXRegionRec_* GXRegion;
typedef struct GXRenderTargetRec_* GXRenderTarget;

typedef void* GXNativeWindow;
typedef void* GXNativeDC;
typedef void* GXNativeBitmap;

typedef struct { float x, y; } GXPoint;
typedef struct { float left, top, right, bottom; } GXRect;
typedef struct { int32_t x, y; } GXIntPoint;
typedef struct { int32_t left, top, right, bottom; } GXIntRect;          /* right, bottom exclusive */
typedef struct { uint32_t width, height; } GXSize;
typedef struct { float red, green, blue, alpha; } GXColor;
typedef struct { float m00, m01, m10, m11, m20, m21; } GXMatrix;
typedef struct { uint32_t width, height; GXPixelFormat format; float dpiX, dpiY; } GXBitmapDesc;
typedef struct { void* data; uint32_t rowLength; uint32_t stride; } GXBitmapData;
typedef struct { GXLineJoin join; GXLineCap cap; float miterLimit; uint32_t reserved;
                 float dashPhase; float dashes[15]; uint64_t dashCount; } GXStrokeStyle;
typedef struct { GXRect bounds; float opacity; uint8_t isolated; uint8_t knockout; } GXLayerDesc;
typedef struct { float offset; uint32_t color; } GXGradientStop;
typedef struct { const GXGradientStop* stops; uint64_t stopCount; GXPoint start, end;
                 uint8_t extendStart, extendEnd; uint32_t background; } GXLinearGradientDesc;
typedef struct { const GXGradientStop* stops; uint64_t stopCount; GXPoint startCenter; float startRadius;
                 GXPoint endCenter; float endRadius; uint8_t extendStart, extendEnd;
                 uint32_t background; } GXRadialGradientDesc;
typedef struct { float x, y; uint32_t color; } GXTriMeshVertex;
typedef struct { uint32_t interpolation, extendX, extendY; } GXBitmapBrushOptions;
typedef struct { float width, height, stride, dpiX, dpiY; } GXExtBufLayout;   /* pixels, pixels, bytes, dots per inch */
typedef struct { void* context;
                 void (*SetFillRule)(void*, uint32_t); void (*BeginFigure)(void*, const GXPoint*);
                 void (*EndFigure)(void*); void (*EndFigureClose)(void*);
                 void (*LineTo)(void*, const GXPoint*);
                 void (*CubicTo)(void*, const GXPoint*, const GXPoint*, const GXPoint*); } GXGeometrySinkCallbacks;
typedef void (*GXRegionRectProc)(void* context, const GXIntRect* rect);
typedef void (*GXLogProc)(void* context, const char* utf8Text);

GX_API GXResult GXObjectAcquire(void* handle) GX_NOEXCEPT;
GX_API GXResult GXObjectRelease(void* handle) GX_NOEXCEPT;
GX_API GXResult GXEnableHWAccelerationForThread(void) GX_NOEXCEPT;
GX_API GXResult GXLogSetSink(int32_t key, GXLogProc proc, void* context) GX_NOEXCEPT;
GX_API GXResult GXCreatePalette(const uint32_t* colors, uint64_t count, GXPalette* out) GX_NOEXCEPT;
GX_API GXResult GXPaletteGetNumColors(GXPalette palette, uint64_t* out) GX_NOEXCEPT;
GX_API GXResult GXPaletteGetColor(GXPalette palette, uint64_t index, uint32_t* out) GX_NOEXCEPT;
GX_API GXResult GXPaletteGetColors(GXPalette palette, const uint32_t** out) GX_NOEXCEPT;
GX_API GXResult GXCreateBitmap(const GXBitmapDesc* desc, GXBitmap* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapGetPixelFormat(GXBitmap bitmap, GXPixelFormat* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapGetSize(GXBitmap bitmap, GXSize* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapGetDpiX(GXBitmap bitmap, float* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapGetDpiY(GXBitmap bitmap, float* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapSetPalette(GXBitmap bitmap, GXPalette palette) GX_NOEXCEPT;
GX_API GXResult GXBitmapGetPalette(GXBitmap bitmap, GXPalette* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapLock(GXBitmap bitmap, const GXIntRect* rect, uint32_t mode, GXBitmapData* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapUnlock(GXBitmap bitmap) GX_NOEXCEPT;
GX_API GXResult GXBitmapCopyFromBitmap(GXBitmap dest, const GXIntPoint* point, GXBitmap source, const GXIntRect* rect) GX_NOEXCEPT;
GX_API GXResult GXBitmapCopyFromMemory(GXBitmap bitmap, const GXIntRect* rect, const GXBitmapData* data) GX_NOEXCEPT;
GX_API GXResult GXBitmapCopyToMemory(GXBitmap bitmap, const GXIntRect* rect, const GXBitmapData* data) GX_NOEXCEPT;
GX_API GXResult GXBitmapColorFill(GXBitmap bitmap, const GXIntRect* rect, uint32_t argb) GX_NOEXCEPT;
GX_API GXResult GXBitmapNotifyChanged(GXBitmap bitmap) GX_NOEXCEPT;
GX_API GXResult GXBitmapSetOffscreenPainting(GXBitmap bitmap, uint8_t flag) GX_NOEXCEPT;
GX_API GXResult GXCreateBitmapFromFile(const wchar_t* path, GXBitmap* out) GX_NOEXCEPT;
GX_API GXResult GXCreateBitmapFromFileFrame(const wchar_t* path, uint32_t frame, uint32_t* frameCount, GXBitmap* out) GX_NOEXCEPT;
GX_API GXResult GXCreateBitmapFromMemory(const void* data, size_t size, GXBitmap* out) GX_NOEXCEPT;
GX_API GXResult GXCreateBitmapFromHBITMAP(GXNativeBitmap nativeBitmap, GXBitmap* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapSaveToFile(GXBitmap bitmap, const wchar_t* path) GX_NOEXCEPT;
GX_API GXResult GXBitmapSaveToHBITMAP(GXBitmap bitmap, GXNativeBitmap* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapCacheSetMemoryQuota(uint64_t bytes) GX_NOEXCEPT;
GX_API GXResult GXBitmapCacheGetMemoryQuota(uint64_t* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapCacheGetMemoryInUse(uint64_t* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapCachePut(GXBitmap bitmap, uint32_t* ticket) GX_NOEXCEPT;
GX_API GXResult GXBitmapCacheGet(uint32_t ticket, GXBitmap* out) GX_NOEXCEPT;
GX_API GXResult GXBitmapCacheRemove(uint32_t ticket) GX_NOEXCEPT;
GX_API GXResult GXCreateBrushSolid(const GXColor* color, GXBrush* out) GX_NOEXCEPT;
GX_API GXResult GXCreateBrushSolidARGB(uint32_t argb, GXBrush* out) GX_NOEXCEPT;
GX_API GXResult GXCreateBrushBitmap(GXBitmap bitmap, float opacity, const GXBitmapBrushOptions* options, const GXMatrix* matrix, GXBrush* out) GX_NOEXCEPT;
GX_API GXResult GXCreateBrushGradient(GXGradient gradient, float opacity, const GXMatrix* matrix, GXBrush* out) GX_NOEXCEPT;
GX_API GXResult GXCreateGradientLinear(const GXLinearGradientDesc* desc, GXGradient* out) GX_NOEXCEPT;
GX_API GXResult GXCreateGradientRadial(const GXRadialGradientDesc* desc, GXGradient* out) GX_NOEXCEPT;
GX_API GXResult GXCreateGradientTriMesh(const GXTriMeshVertex* vertices, size_t count, uint32_t backgroundArgb, GXGradient* out) GX_NOEXCEPT;
GX_API GXResult GXCreateGeometry(GXGeometry* out) GX_NOEXCEPT;
GX_API GXResult GXGeometrySetFillRule(GXGeometry geometry, GXFillRule fillRule) GX_NOEXCEPT;
GX_API GXResult GXGeometryGetFillRule(GXGeometry geometry, GXFillRule* out) GX_NOEXCEPT;
GX_API GXResult GXGeometryEmpty(GXGeometry geometry, uint8_t* out) GX_NOEXCEPT;
GX_API GXResult GXGeometryPointsEqual(GXGeometry geometry, GXGeometry other, uint8_t* out) GX_NOEXCEPT;
GX_API GXResult GXGeometryGetCurrentPoint(GXGeometry geometry, GXPoint* out) GX_NOEXCEPT;
GX_API GXResult GXGeometryGetBound(GXGeometry geometry, const GXMatrix* matrix, GXRect* out) GX_NOEXCEPT;
GX_API GXResult GXGeometryBeginFigure(GXGeometry geometry, const GXPoint* point) GX_NOEXCEPT;
GX_API GXResult GXGeometryEndFigure(GXGeometry geometry) GX_NOEXCEPT;
GX_API GXResult GXGeometryEndFigureClose(GXGeometry geometry) GX_NOEXCEPT;
GX_API GXResult GXGeometryLineTo(GXGeometry geometry, const GXPoint* point) GX_NOEXCEPT;
GX_API GXResult GXGeometryConicCurveTo(GXGeometry geometry, const GXPoint* c2, const GXPoint* end) GX_NOEXCEPT;
GX_API GXResult GXGeometryCubicCurveTo(GXGeometry geometry, const GXPoint* c1, const GXPoint* c2, const GXPoint* end) GX_NOEXCEPT;
GX_API GXResult GXGeometryRectangle(GXGeometry geometry, const GXRect* rect) GX_NOEXCEPT;
GX_API GXResult GXGeometryEllipse(GXGeometry geometry, const GXRect* rect) GX_NOEXCEPT;
GX_API GXResult GXGeometryRoundRectangle(GXGeometry geometry, const GXRect* rect, float radiusX, float radiusY) GX_NOEXCEPT;
GX_API GXResult GXGeometryCopy(GXGeometry geometry, GXGeometry* out) GX_NOEXCEPT;
GX_API GXResult GXGeometrySendToSink(GXGeometry geometry, const GXGeometrySinkCallbacks* callbacks) GX_NOEXCEPT;
GX_API GXResult GXGeometryTransform(GXGeometry geometry, const GXMatrix* matrix, GXGeometry* out) GX_NOEXCEPT;
GX_API GXResult GXGeometryWiden(GXGeometry geometry, float width, const GXStrokeStyle* style, GXGeometry* out) GX_NOEXCEPT;
GX_API GXResult GXGeometryCombine(GXGeometry a, GXGeometry b, uint32_t mode, float tolerance, GXGeometry* out) GX_NOEXCEPT;
GX_API GXResult GXGeometryHitTest(GXGeometry geometry, const GXPoint* point, const GXMatrix* matrix, float tolerance, uint8_t* out) GX_NOEXCEPT;
GX_API GXResult GXCreateRegion(GXRegion* out) GX_NOEXCEPT;
GX_API GXResult GXCreateRegionFromRect(const GXIntRect* rect, GXRegion* out) GX_NOEXCEPT;
GX_API GXResult GXRegionIsAreaEmpty(GXRegion region, uint8_t* out) GX_NOEXCEPT;
GX_API GXResult GXRegionGetBound(GXRegion region, GXIntRect* out) GX_NOEXCEPT;
GX_API GXResult GXRegionContainsPoint(GXRegion region, const GXIntPoint* point, uint8_t* out) GX_NOEXCEPT;
GX_API GXResult GXRegionContainsRect(GXRegion region, const GXIntRect* rect, uint8_t* out) GX_NOEXCEPT;
GX_API GXResult GXRegionContains(GXRegion region, GXRegion other, uint8_t* out) GX_NOEXCEPT;
GX_API GXResult GXRegionHasIntersection(GXRegion region, GXRegion other, uint8_t* out) GX_NOEXCEPT;
GX_API GXResult GXRegionHasIntersectionWithRect(GXRegion region, const GXIntRect* rect, uint8_t* out) GX_NOEXCEPT;
GX_API GXResult GXRegionOffset(GXRegion region, int32_t dx, int32_t dy) GX_NOEXCEPT;
GX_API GXResult GXRegionCombine(GXRegion region, GXRegion other, uint32_t mode, GXRegion* out) GX_NOEXCEPT;
GX_API GXResult GXRegionCombineRect(GXRegion region, const GXIntRect* rect, uint32_t mode, GXRegion* out) GX_NOEXCEPT;
GX_API GXResult GXRegionEnumRects(GXRegion region, GXRegionRectProc proc, void* context) GX_NOEXCEPT;
GX_API GXResult GXCreateFontFace(const uint16_t* faceName, uint32_t flags, float size, GXFontFace* out) GX_NOEXCEPT;
GX_API GXResult GXFontFaceCalculateTextBound(GXFontFace fontFace, const uint16_t* text, float out[2]) GX_NOEXCEPT;
GX_API GXResult GXCreateRenderTargetBitmap(GXBitmap bitmap, GXRenderTarget* out) GX_NOEXCEPT;
GX_API GXResult GXCreateRenderTargetExtBuf(void* pixels, GXPixelFormat format, const GXExtBufLayout* layout, GXRenderTarget* out) GX_NOEXCEPT;
GX_API GXResult GXCreateRenderTargetHWND(GXNativeWindow window, uint32_t softwareOnly, GXRenderTarget* out) GX_NOEXCEPT;
GX_API GXResult GXCreateRenderTargetHDC(GXNativeDC dc, const GXIntRect* area, GXRenderTarget* out) GX_NOEXCEPT;
GX_API GXResult GXCreateRenderTargetPrintDC(GXNativeDC dc, GXRenderTarget* out) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetGetPixelFormat(GXRenderTarget renderTarget, GXPixelFormat* out) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetGetSize(GXRenderTarget renderTarget, GXSize* out) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetBeginPaint(GXRenderTarget renderTarget) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetEndPaint(GXRenderTarget renderTarget) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetPushState(GXRenderTarget renderTarget) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetPopState(GXRenderTarget renderTarget) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetGetCTM(GXRenderTarget renderTarget, GXMatrix* out) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetSetCTM(GXRenderTarget renderTarget, const GXMatrix* matrix) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetConcatCTM(GXRenderTarget renderTarget, const GXMatrix* matrix) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetRotateCTM(GXRenderTarget renderTarget, float angle) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetScaleCTM(GXRenderTarget renderTarget, float sx, float sy) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetTranslateCTM(GXRenderTarget renderTarget, float tx, float ty) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetSetBlendMode(GXRenderTarget renderTarget, GXBlendMode blendMode) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetSetStrokeAdjustment(GXRenderTarget renderTarget, uint8_t flag) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetSetOpacityMask(GXRenderTarget renderTarget, uint32_t type, GXBrush brush) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetSetShapeMask(GXRenderTarget renderTarget, uint32_t type, GXBrush brush) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetBeginLayer(GXRenderTarget renderTarget, const GXLayerDesc* desc) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetEndLayer(GXRenderTarget renderTarget) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetClear(GXRenderTarget renderTarget, uint32_t argb) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetFillGeometry(GXRenderTarget renderTarget, GXGeometry geometry, GXBrush brush) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetFillTextGeometry(GXRenderTarget renderTarget, GXGeometry geometry, GXBrush brush) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetFillRect(GXRenderTarget renderTarget, const GXRect* rect, GXBrush brush) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetFillEllipse(GXRenderTarget renderTarget, const GXRect* rect, GXBrush brush) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetStrokeGeometry(GXRenderTarget renderTarget, GXGeometry geometry, GXBrush brush, float width, const GXStrokeStyle* style) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetStrokeLine(GXRenderTarget renderTarget, const GXPoint* point, const GXPoint* point2, GXBrush brush, float width, const GXStrokeStyle* style) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetStrokeRect(GXRenderTarget renderTarget, const GXRect* rect, GXBrush brush, float width, const GXStrokeStyle* style) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetStrokeEllipse(GXRenderTarget renderTarget, const GXRect* rect, GXBrush brush, float width, const GXStrokeStyle* style) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetClipGeometry(GXRenderTarget renderTarget, GXGeometry geometry) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetClipRect(GXRenderTarget renderTarget, const GXRect* rect) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetClipEllipse(GXRenderTarget renderTarget, const GXRect* rect) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetDrawBitmap(GXRenderTarget renderTarget, GXBitmap bitmap, const GXPoint* origin, float opacity, uint32_t interpolation) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetStretchBitmap(GXRenderTarget renderTarget, GXBitmap bitmap, const GXRect* destination, const GXIntRect* source, float opacity, uint32_t interpolation) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetDrawGradient(GXRenderTarget renderTarget, GXGradient gradient, float opacity, const GXMatrix* matrix) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetFillMask(GXRenderTarget renderTarget, GXBitmap mask, GXBrush brush, const GXRect* destination, uint32_t interpolation) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetInvertRect(GXRenderTarget renderTarget, const GXRect* rect) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetInvertLine(GXRenderTarget renderTarget, const GXPoint* point, const GXPoint* point2) GX_NOEXCEPT;
GX_API GXResult GXRenderTargetFillText(GXRenderTarget renderTarget, GXFontFace fontFace, const uint16_t* text, GXBrush brush) GX_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
