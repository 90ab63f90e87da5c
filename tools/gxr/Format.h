// SPDX-License-Identifier: MIT
// The names and limits of the .gxr format, version 1: a page as the calls that drew it.
//
//     file     magic (8 bytes), version, size of the body as stored (8 bytes), size unpacked (8 bytes), CRC-32 of all
//     that
//              comes before it and of the body; then the body, packed with zlib
//     body     page size, format and resolution; the objects; the commands
//     objects  a kind and its values, each object once, counted from 1 within its kind; 0 ends the list
//     commands an operation and its arguments, in the order of the parameters of its function; 0 ends the list
//
// Numbers are little-endian. What a command holds follows from the parameter types of its GXRenderTarget function
// (Arguments.h), so a change of a signature or of the order below is a change of kVersion. The Python package has a
// reader of its own (bindings/python/src/gxgraphics/_gxr.py).
//
// Surfaces are what commands draw on: number 0 is the page, the others are bitmaps that the page draws for itself (soft
// masks, cells) and paints with later.
#pragma once

#include <GX/GX.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace Gxr {

inline constexpr uint32_t kVersion = 1;
inline constexpr unsigned char kMagic[8] = {0x89, 'G', 'X', 'R', '\r', '\n', 0x1A, '\n'};
inline constexpr size_t kHeaderBytes = 32;

// What a file may ask for beyond its own size: bodies up to zlib's own ratio, a page, and bitmaps drawn by the page.
inline constexpr uint64_t kMaxBodyBytes = uint64_t{1} << 31;
inline constexpr uint64_t kMaxRatio = 1032;
inline constexpr uint32_t kMaxSide = 65500;
inline constexpr uint64_t kMaxPagePixels = uint64_t{1} << 28;
// All surfaces alive at a time together: this many pages.
inline constexpr uint64_t kMaxLivePages = 16;
// States and layers open at a time on all surfaces; each layer and each clip can take planes of the page's size.
inline constexpr size_t kMaxLayers = 64;
inline constexpr size_t kMaxStates = 1024;

// A reason that the user can read.
struct Error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class ObjectKind : uint8_t {
    End = 0,
    Geometry = 1,
    Palette = 2,
    Bitmap = 3,
    LinearGradient = 4,
    RadialGradient = 5,
    MeshGradient = 6,
    SolidBrush = 7,
    SolidBrushARGB = 8,
    BitmapBrush = 9,
    GradientBrush = 10,
    FontFace = 11
};

// Every function of a render target that is not a question, in the order of their numbers.
#define GXR_TARGET_CALLS(X)                                                                                            \
    X(BeginPaint)                                                                                                      \
    X(EndPaint)                                                                                                        \
    X(PushState)                                                                                                       \
    X(PopState)                                                                                                        \
    X(SetCTM)                                                                                                          \
    X(ConcatCTM)                                                                                                       \
    X(RotateCTM)                                                                                                       \
    X(ScaleCTM)                                                                                                        \
    X(TranslateCTM)                                                                                                    \
    X(SetBlendMode)                                                                                                    \
    X(SetStrokeAdjustment)                                                                                             \
    X(SetOpacityMask)                                                                                                  \
    X(SetShapeMask)                                                                                                    \
    X(BeginLayer)                                                                                                      \
    X(EndLayer)                                                                                                        \
    X(Clear)                                                                                                           \
    X(FillGeometry)                                                                                                    \
    X(FillTextGeometry)                                                                                                \
    X(FillRect)                                                                                                        \
    X(FillEllipse)                                                                                                     \
    X(StrokeGeometry)                                                                                                  \
    X(StrokeLine)                                                                                                      \
    X(StrokeRect)                                                                                                      \
    X(StrokeEllipse)                                                                                                   \
    X(ClipGeometry)                                                                                                    \
    X(ClipRect)                                                                                                        \
    X(ClipEllipse)                                                                                                     \
    X(DrawBitmap)                                                                                                      \
    X(StretchBitmap)                                                                                                   \
    X(DrawGradient)                                                                                                    \
    X(FillMask)                                                                                                        \
    X(InvertRect)                                                                                                      \
    X(InvertLine)                                                                                                      \
    X(FillText)

enum class Op : uint8_t {
    End = 0,
    NewSurface = 1,    // width, height, format, resolutions; numbered on from 1
    DropSurface = 2,   // number; its brushes go with it
    Select = 3,        // number: the commands that follow draw there
    SurfaceBrush = 4,  // surface, opacity, options, matrix; numbered on from 1
    SurfacePixels = 5, // surface, bitmap: pixels that came there by other means than drawing
    FirstTargetCall = 15,
#define GXR_NAME(name) name,
    GXR_TARGET_CALLS(GXR_NAME)
#undef GXR_NAME
        Count
};

inline const char* OpName(Op op) noexcept {
    switch (op) {
#define GXR_CASE(name)                                                                                                 \
    case Op::name:                                                                                                     \
        return #name;
        GXR_TARGET_CALLS(GXR_CASE)
#undef GXR_CASE
    default:
        return "surface";
    }
}

// Bytes of one row without padding; 0 for a format that does not exist.
inline uint64_t RowBytes(uint32_t format, uint32_t width) noexcept {
    switch (format) {
    case GXPixelFormatBGR24:
        return uint64_t{3} * width;
    case GXPixelFormatPBGRA32:
    case GXPixelFormatBGRA32:
    case GXPixelFormatBGRX32:
        return uint64_t{4} * width;
    case GXPixelFormatAlpha8:
    case GXPixelFormatIndexed8:
    case GXPixelFormatGray8:
        return width;
    case GXPixelFormatAlpha1:
    case GXPixelFormatIndexed1:
    case GXPixelFormatBlackWhite1:
        return (uint64_t{width} + 7) / 8;
    default:
        return 0;
    }
}

// Part of a reference to a bitmap or brush: which list it counts in. A reference of 0 is null.
inline constexpr uint32_t kOfSurface = 1;

} // namespace Gxr
