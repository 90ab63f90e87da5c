// SPDX-License-Identifier: MIT
// The GDI+ functions used for printing and image files, and the stream functions for them, as a table: a test replaces
// an entry to simulate a refusal.
#pragma once

#include <algorithm>

#include "SystemCalls.h"

#include <objbase.h>
#include <objidl.h>

namespace Gdiplus { // the GDI+ header expects these as macros, which NOMINMAX disables
using std::max;
using std::min;
} // namespace Gdiplus

#include <gdiplus.h>

namespace Graphics {

namespace GdipFlat = Gdiplus::DllExports;

struct GdipCalls {
    decltype(&Gdiplus::GdiplusStartup) startup = &Gdiplus::GdiplusStartup;
    decltype(&Gdiplus::GdiplusShutdown) shutdown = &Gdiplus::GdiplusShutdown;

    decltype(&GdipFlat::GdipCreateFromHDC) createFromHDC = &GdipFlat::GdipCreateFromHDC;
    decltype(&GdipFlat::GdipDeleteGraphics) deleteGraphics = &GdipFlat::GdipDeleteGraphics;
    decltype(&GdipFlat::GdipGetDC) getDC = &GdipFlat::GdipGetDC;
    decltype(&GdipFlat::GdipReleaseDC) releaseDC = &GdipFlat::GdipReleaseDC;
    decltype(&GdipFlat::GdipSaveGraphics) saveGraphics = &GdipFlat::GdipSaveGraphics;
    decltype(&GdipFlat::GdipRestoreGraphics) restoreGraphics = &GdipFlat::GdipRestoreGraphics;
    decltype(&GdipFlat::GdipSetCompositingMode) setCompositingMode = &GdipFlat::GdipSetCompositingMode;
    decltype(&GdipFlat::GdipSetCompositingQuality) setCompositingQuality = &GdipFlat::GdipSetCompositingQuality;
    decltype(&GdipFlat::GdipSetInterpolationMode) setInterpolationMode = &GdipFlat::GdipSetInterpolationMode;
    decltype(&GdipFlat::GdipSetPixelOffsetMode) setPixelOffsetMode = &GdipFlat::GdipSetPixelOffsetMode;
    decltype(&GdipFlat::GdipSetSmoothingMode) setSmoothingMode = &GdipFlat::GdipSetSmoothingMode;
    decltype(&GdipFlat::GdipSetPageUnit) setPageUnit = &GdipFlat::GdipSetPageUnit;
    decltype(&GdipFlat::GdipResetWorldTransform) resetWorldTransform = &GdipFlat::GdipResetWorldTransform;
    decltype(&GdipFlat::GdipGraphicsClear) graphicsClear = &GdipFlat::GdipGraphicsClear;
    decltype(&GdipFlat::GdipFillPath) fillPath = &GdipFlat::GdipFillPath;
    decltype(&GdipFlat::GdipSetClipPath) setClipPath = &GdipFlat::GdipSetClipPath;

    decltype(&GdipFlat::GdipCreatePath) createPath = &GdipFlat::GdipCreatePath;
    decltype(&GdipFlat::GdipDeletePath) deletePath = &GdipFlat::GdipDeletePath;
    decltype(&GdipFlat::GdipSetPathFillMode) setPathFillMode = &GdipFlat::GdipSetPathFillMode;
    decltype(&GdipFlat::GdipStartPathFigure) startPathFigure = &GdipFlat::GdipStartPathFigure;
    decltype(&GdipFlat::GdipAddPathLine) addPathLine = &GdipFlat::GdipAddPathLine;
    decltype(&GdipFlat::GdipAddPathBezier) addPathBezier = &GdipFlat::GdipAddPathBezier;
    decltype(&GdipFlat::GdipClosePathFigure) closePathFigure = &GdipFlat::GdipClosePathFigure;

    decltype(&GdipFlat::GdipCreateBitmapFromScan0) createBitmapFromScan0 = &GdipFlat::GdipCreateBitmapFromScan0;
    decltype(&GdipFlat::GdipDisposeImage) disposeImage = &GdipFlat::GdipDisposeImage;
    decltype(&GdipFlat::GdipBitmapSetResolution) bitmapSetResolution = &GdipFlat::GdipBitmapSetResolution;
    decltype(&GdipFlat::GdipSetImagePalette) setImagePalette = &GdipFlat::GdipSetImagePalette;
    decltype(&GdipFlat::GdipBitmapLockBits) bitmapLockBits = &GdipFlat::GdipBitmapLockBits;
    decltype(&GdipFlat::GdipBitmapUnlockBits) bitmapUnlockBits = &GdipFlat::GdipBitmapUnlockBits;

    decltype(&GdipFlat::GdipCreateBitmapFromFile) createBitmapFromFile = &GdipFlat::GdipCreateBitmapFromFile;
    decltype(&GdipFlat::GdipCreateBitmapFromStream) createBitmapFromStream = &GdipFlat::GdipCreateBitmapFromStream;
    decltype(&GdipFlat::GdipGetImageWidth) getImageWidth = &GdipFlat::GdipGetImageWidth;
    decltype(&GdipFlat::GdipGetImageHeight) getImageHeight = &GdipFlat::GdipGetImageHeight;
    decltype(&GdipFlat::GdipGetImageHorizontalResolution) getImageHorizontalResolution =
        &GdipFlat::GdipGetImageHorizontalResolution;
    decltype(&GdipFlat::GdipGetImageVerticalResolution) getImageVerticalResolution =
        &GdipFlat::GdipGetImageVerticalResolution;
    decltype(&GdipFlat::GdipGetImagePixelFormat) getImagePixelFormat = &GdipFlat::GdipGetImagePixelFormat;
    decltype(&GdipFlat::GdipGetImagePaletteSize) getImagePaletteSize = &GdipFlat::GdipGetImagePaletteSize;
    decltype(&GdipFlat::GdipGetImagePalette) getImagePalette = &GdipFlat::GdipGetImagePalette;
    decltype(&GdipFlat::GdipImageGetFrameDimensionsCount) imageGetFrameDimensionsCount =
        &GdipFlat::GdipImageGetFrameDimensionsCount;
    decltype(&GdipFlat::GdipImageGetFrameDimensionsList) imageGetFrameDimensionsList =
        &GdipFlat::GdipImageGetFrameDimensionsList;
    decltype(&GdipFlat::GdipImageGetFrameCount) imageGetFrameCount = &GdipFlat::GdipImageGetFrameCount;
    decltype(&GdipFlat::GdipImageSelectActiveFrame) imageSelectActiveFrame = &GdipFlat::GdipImageSelectActiveFrame;
    decltype(&GdipFlat::GdipGetImageEncodersSize) getImageEncodersSize = &GdipFlat::GdipGetImageEncodersSize;
    decltype(&GdipFlat::GdipGetImageEncoders) getImageEncoders = &GdipFlat::GdipGetImageEncoders;
    decltype(&GdipFlat::GdipSaveImageToStream) saveImageToStream = &GdipFlat::GdipSaveImageToStream;
    decltype(&::GlobalAlloc) globalAlloc = &::GlobalAlloc;
    decltype(&::CreateStreamOnHGlobal) createStreamOnHGlobal = &::CreateStreamOnHGlobal;

    decltype(&GdipFlat::GdipCreateSolidFill) createSolidFill = &GdipFlat::GdipCreateSolidFill;
    decltype(&GdipFlat::GdipCreateTexture) createTexture = &GdipFlat::GdipCreateTexture;
    decltype(&GdipFlat::GdipCreateTextureIA) createTextureIA = &GdipFlat::GdipCreateTextureIA;
    decltype(&GdipFlat::GdipDeleteBrush) deleteBrush = &GdipFlat::GdipDeleteBrush;
    decltype(&GdipFlat::GdipSetTextureTransform) setTextureTransform = &GdipFlat::GdipSetTextureTransform;
    decltype(&GdipFlat::GdipSetTextureWrapMode) setTextureWrapMode = &GdipFlat::GdipSetTextureWrapMode;
    decltype(&GdipFlat::GdipCreateImageAttributes) createImageAttributes = &GdipFlat::GdipCreateImageAttributes;
    decltype(&GdipFlat::GdipDisposeImageAttributes) disposeImageAttributes = &GdipFlat::GdipDisposeImageAttributes;
    decltype(&GdipFlat::GdipSetImageAttributesColorMatrix) setImageAttributesColorMatrix =
        &GdipFlat::GdipSetImageAttributesColorMatrix;
    decltype(&GdipFlat::GdipCreateMatrix2) createMatrix2 = &GdipFlat::GdipCreateMatrix2;
    decltype(&GdipFlat::GdipDeleteMatrix) deleteMatrix = &GdipFlat::GdipDeleteMatrix;
};

/// The active table. Only tests change it, while nothing draws.
inline GdipCalls g_gdip;

} // namespace Graphics
