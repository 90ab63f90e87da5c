// SPDX-License-Identifier: MIT
// The header as a C11 host sees it. Record layouts are fixed here as compiled hosts know them, and every function is
// taken by name, so that linking fails when the library lacks one.
#include <GX/GX.h>

#define LAYOUT(record, size) _Static_assert(sizeof(record) == (size), #record " keeps its size")
#define FIELD(record, field, offset)                                                                                   \
    _Static_assert(offsetof(record, field) == (offset), #record "." #field " keeps its place")

LAYOUT(GXPoint, 8);
LAYOUT(GXRect, 16);
LAYOUT(GXIntPoint, 8);
LAYOUT(GXIntRect, 16);
LAYOUT(GXSize, 8);
LAYOUT(GXColor, 16);
LAYOUT(GXMatrix, 24);
LAYOUT(GXBitmapDesc, 20);
LAYOUT(GXBitmapData, 16);
LAYOUT(GXStrokeStyle, 88);
FIELD(GXStrokeStyle, dashPhase, 16);
FIELD(GXStrokeStyle, dashes, 20);
FIELD(GXStrokeStyle, dashCount, 80);
LAYOUT(GXLayerDesc, 24);
FIELD(GXLayerDesc, knockout, 21);
LAYOUT(GXGradientStop, 8);
LAYOUT(GXLinearGradientDesc, 40);
FIELD(GXLinearGradientDesc, extendStart, 32);
FIELD(GXLinearGradientDesc, background, 36);
LAYOUT(GXRadialGradientDesc, 48);
FIELD(GXRadialGradientDesc, endRadius, 36);
FIELD(GXRadialGradientDesc, background, 44);
LAYOUT(GXTriMeshVertex, 12);
LAYOUT(GXBitmapBrushOptions, 12);
LAYOUT(GXExtBufLayout, 20);
LAYOUT(GXGeometrySinkCallbacks, 56);
FIELD(GXGeometrySinkCallbacks, CubicTo, 48);

typedef void (*Entry)(void);

#define ENTRY(name) (Entry) name
static const Entry kEntries[] = {
    ENTRY(GXObjectAcquire),
    ENTRY(GXObjectRelease),
    ENTRY(GXEnableHWAccelerationForThread),
    ENTRY(GXLogSetSink),
    ENTRY(GXCreatePalette),
    ENTRY(GXPaletteGetNumColors),
    ENTRY(GXPaletteGetColor),
    ENTRY(GXPaletteGetColors),
    ENTRY(GXCreateBitmap),
    ENTRY(GXBitmapGetPixelFormat),
    ENTRY(GXBitmapGetSize),
    ENTRY(GXBitmapGetDpiX),
    ENTRY(GXBitmapGetDpiY),
    ENTRY(GXBitmapSetPalette),
    ENTRY(GXBitmapGetPalette),
    ENTRY(GXBitmapLock),
    ENTRY(GXBitmapUnlock),
    ENTRY(GXBitmapCopyFromBitmap),
    ENTRY(GXBitmapCopyFromMemory),
    ENTRY(GXBitmapCopyToMemory),
    ENTRY(GXBitmapColorFill),
    ENTRY(GXBitmapNotifyChanged),
    ENTRY(GXBitmapSetOffscreenPainting),
    ENTRY(GXCreateBitmapFromFile),
    ENTRY(GXCreateBitmapFromFileFrame),
    ENTRY(GXCreateBitmapFromMemory),
    ENTRY(GXCreateBitmapFromHBITMAP),
    ENTRY(GXBitmapSaveToFile),
    ENTRY(GXBitmapSaveToHBITMAP),
    ENTRY(GXBitmapCacheSetMemoryQuota),
    ENTRY(GXBitmapCacheGetMemoryQuota),
    ENTRY(GXBitmapCacheGetMemoryInUse),
    ENTRY(GXBitmapCachePut),
    ENTRY(GXBitmapCacheGet),
    ENTRY(GXBitmapCacheRemove),
    ENTRY(GXCreateBrushSolid),
    ENTRY(GXCreateBrushSolidARGB),
    ENTRY(GXCreateBrushBitmap),
    ENTRY(GXCreateBrushGradient),
    ENTRY(GXCreateGradientLinear),
    ENTRY(GXCreateGradientRadial),
    ENTRY(GXCreateGradientTriMesh),
    ENTRY(GXCreateGeometry),
    ENTRY(GXGeometrySetFillRule),
    ENTRY(GXGeometryGetFillRule),
    ENTRY(GXGeometryEmpty),
    ENTRY(GXGeometryPointsEqual),
    ENTRY(GXGeometryGetCurrentPoint),
    ENTRY(GXGeometryGetBound),
    ENTRY(GXGeometryBeginFigure),
    ENTRY(GXGeometryEndFigure),
    ENTRY(GXGeometryEndFigureClose),
    ENTRY(GXGeometryLineTo),
    ENTRY(GXGeometryConicCurveTo),
    ENTRY(GXGeometryCubicCurveTo),
    ENTRY(GXGeometryRectangle),
    ENTRY(GXGeometryEllipse),
    ENTRY(GXGeometryRoundRectangle),
    ENTRY(GXGeometryCopy),
    ENTRY(GXGeometrySendToSink),
    ENTRY(GXGeometryTransform),
    ENTRY(GXGeometryWiden),
    ENTRY(GXGeometryCombine),
    ENTRY(GXGeometryHitTest),
    ENTRY(GXCreateRegion),
    ENTRY(GXCreateRegionFromRect),
    ENTRY(GXRegionIsAreaEmpty),
    ENTRY(GXRegionGetBound),
    ENTRY(GXRegionContainsPoint),
    ENTRY(GXRegionContainsRect),
    ENTRY(GXRegionContains),
    ENTRY(GXRegionHasIntersection),
    ENTRY(GXRegionHasIntersectionWithRect),
    ENTRY(GXRegionOffset),
    ENTRY(GXRegionCombine),
    ENTRY(GXRegionCombineRect),
    ENTRY(GXRegionEnumRects),
    ENTRY(GXCreateFontFace),
    ENTRY(GXFontFaceCalculateTextBound),
    ENTRY(GXCreateRenderTargetBitmap),
    ENTRY(GXCreateRenderTargetExtBuf),
    ENTRY(GXCreateRenderTargetHWND),
    ENTRY(GXCreateRenderTargetHDC),
    ENTRY(GXCreateRenderTargetPrintDC),
    ENTRY(GXRenderTargetGetPixelFormat),
    ENTRY(GXRenderTargetGetSize),
    ENTRY(GXRenderTargetBeginPaint),
    ENTRY(GXRenderTargetEndPaint),
    ENTRY(GXRenderTargetPushState),
    ENTRY(GXRenderTargetPopState),
    ENTRY(GXRenderTargetGetCTM),
    ENTRY(GXRenderTargetSetCTM),
    ENTRY(GXRenderTargetConcatCTM),
    ENTRY(GXRenderTargetRotateCTM),
    ENTRY(GXRenderTargetScaleCTM),
    ENTRY(GXRenderTargetTranslateCTM),
    ENTRY(GXRenderTargetSetBlendMode),
    ENTRY(GXRenderTargetSetStrokeAdjustment),
    ENTRY(GXRenderTargetSetOpacityMask),
    ENTRY(GXRenderTargetSetShapeMask),
    ENTRY(GXRenderTargetBeginLayer),
    ENTRY(GXRenderTargetEndLayer),
    ENTRY(GXRenderTargetClear),
    ENTRY(GXRenderTargetFillGeometry),
    ENTRY(GXRenderTargetFillTextGeometry),
    ENTRY(GXRenderTargetFillRect),
    ENTRY(GXRenderTargetFillEllipse),
    ENTRY(GXRenderTargetStrokeGeometry),
    ENTRY(GXRenderTargetStrokeLine),
    ENTRY(GXRenderTargetStrokeRect),
    ENTRY(GXRenderTargetStrokeEllipse),
    ENTRY(GXRenderTargetClipGeometry),
    ENTRY(GXRenderTargetClipRect),
    ENTRY(GXRenderTargetClipEllipse),
    ENTRY(GXRenderTargetDrawBitmap),
    ENTRY(GXRenderTargetStretchBitmap),
    ENTRY(GXRenderTargetDrawGradient),
    ENTRY(GXRenderTargetFillMask),
    ENTRY(GXRenderTargetInvertRect),
    ENTRY(GXRenderTargetInvertLine),
    ENTRY(GXRenderTargetFillText),
};

size_t HeaderCEntryCount(void);
int HeaderCEntryIsNull(size_t index);

size_t HeaderCEntryCount(void) { return sizeof kEntries / sizeof *kEntries; }
int HeaderCEntryIsNull(size_t index) { return kEntries[index] == 0; }
