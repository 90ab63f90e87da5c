// SPDX-License-Identifier: MIT
/** @file
 * The C interface of the Graphics library: everything a host compiles against. C11 and C++17 clean.
 *
 * Rules that hold for every function, unless its own comment says otherwise:
 *
 * - The result is a GXResult. GXResultSuccess: the work is done and the outputs are written. On any other result the
 *   outputs and the objects passed in are as they were, except that drawing already composited stays.
 * - A null handle, a null input pointer or a null output pointer gives GXResultInvalidArgument before anything is done.
 *   Arguments that may be null are named as such.
 * - GXResultEngineError: the library refused or could not do the work. The reason goes as one line of text to the sinks
 *   of GXLogSetSink before the call returns; each comment quotes the messages that it can cause. "Not enough memory"
 *   is possible wherever pixels or points are stored.
 * - GXResultUnexpectedError: any other failure, in practice an object that the C++ allocator could not make.
 *   No exception ever leaves the library.
 * - NaN, infinite and huge coordinates are harmless: a figure with one draws nothing, its neighbours are drawn.
 * - Handles are trusted to be of the kind that the parameter names; a handle of another kind is undefined behaviour.
 * - Creation functions write a handle with a count of 1, which the caller gives back with GXObjectRelease. An object
 *   lives on while another object uses it: a brush keeps its bitmap or gradient, a target its bitmap.
 * - Text is UTF-16 or UTF-8 and ends with a zero, paths are wchar_t. Booleans are uint8_t: 0 or 1 out, 0 or not 0 in.
 * - Packed colours are 0xAARRGGBB, not premultiplied. Angles are in radians, y grows downwards, resolutions are in dots
 *   per inch. "User units" are mapped to device pixels by the target's matrix; pixel (0, 0) covers 0 to 1.
 * - Threads: handles may be acquired and released on any thread. Finished geometries, gradients, brushes, palettes,
 *   font faces, and bitmaps that nobody writes, may be read by several threads at once, each with its own target. One
 *   render target, geometry under construction or region belongs to one thread at a time.
 */
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

/* Results and other constants */

/** What a function answers. 3, 6, 7 and 8 are not used. */
typedef uint32_t GXResult;
/** The values of a result. */
enum {
    /** The work is done, the outputs are written. */
    GXResultSuccess = 0,
    /** The question has no answer (GXGeometryGetCurrentPoint without a current point); outputs are untouched. */
    GXResultFalse = 1,
    /** A required pointer is null, or a value is outside what the function takes. */
    GXResultInvalidArgument = 2,
    /** An index is not below the count. */
    GXResultIndexOutOfRange = 4,
    /** The library raised an error; its text went to the log sinks. */
    GXResultEngineError = 5,
    /** Any other failure, such as an allocation of the C++ runtime. */
    GXResultUnexpectedError = 9
};

/** How one pixel is stored. Rows run from the top down; one-bit formats keep the leftmost pixel in the top bit of a
 * byte. */
typedef uint32_t GXPixelFormat;
/** The pixel formats. */
enum {
    /** No format: refused wherever a bitmap or a target is made. */
    GXPixelFormatUnknown = 0,
    /** 24 bits: bytes blue, green, red; opaque. */
    GXPixelFormatBGR24 = 1,
    /** 32 bits: bytes blue, green, red, alpha; colours premultiplied by alpha. Targets draw into this one. */
    GXPixelFormatPBGRA32 = 2,
    /** 32 bits: bytes blue, green, red, alpha; colours not premultiplied. */
    GXPixelFormatBGRA32 = 3,
    /** 32 bits: bytes blue, green, red, unused; opaque. Targets draw into this one: they do not read the fourth byte
     * and write it as 255 where they draw; elsewhere it stays as it is. */
    GXPixelFormatBGRX32 = 4,
    /** 8 bits: alpha; the colour is white. */
    GXPixelFormatAlpha8 = 5,
    /** 8 bits: index into the bitmap's palette, a grey level without one; beyond the palette opaque black. */
    GXPixelFormatIndexed8 = 6,
    /** 8 bits: grey level; opaque. */
    GXPixelFormatGray8 = 7,
    /** 1 bit: 1 is opaque, 0 transparent; the colour is white. */
    GXPixelFormatAlpha1 = 8,
    /** 1 bit: index into the bitmap's palette; without one 0 is black and 1 is white. */
    GXPixelFormatIndexed1 = 9,
    /** 1 bit: 1 is white, 0 black; opaque. */
    GXPixelFormatBlackWhite1 = 10
};

/** Which points are inside a geometry. Any value but 0 acts as even-odd. */
typedef uint32_t GXFillRule;
/** The fill rules. */
enum {
    /** Inside where the windings do not add up to zero. */
    GXFillRuleNonZero = 0,
    /** Inside where a ray to infinity crosses the outline an odd number of times. */
    GXFillRuleEvenOdd = 1
};

/** How a source colour meets the backdrop: the blend modes of the PDF imaging model (ISO 32000-1, 11.3.5), in its
 * order but for ColorBurn, which comes before ColorDodge. The last four are the non-separable ones. Unknown values act
 * as Normal. */
typedef uint32_t GXBlendMode;
/** The blend modes. b is a channel of the backdrop and s one of the source, from 0 to 1. */
enum {
    /** s. */
    GXBlendModeNormal = 0,
    /** b s: never lighter than either. */
    GXBlendModeMultiply = 1,
    /** b + s - b s: never darker than either. */
    GXBlendModeScreen = 2,
    /** HardLight with the colours exchanged: keeps the backdrop's lights and shades. */
    GXBlendModeOverlay = 3,
    /** The smaller of b and s. */
    GXBlendModeDarken = 4,
    /** The larger of b and s. */
    GXBlendModeLighten = 5,
    /** 1 - (1 - b) / s, at least 0: darkens the backdrop, the more the darker the source is. */
    GXBlendModeColorBurn = 6,
    /** b / (1 - s), at most 1: lightens the backdrop, the more the lighter the source is. */
    GXBlendModeColorDodge = 7,
    /** Multiply with 2 s where s is at most a half, Screen with 2 s - 1 above. */
    GXBlendModeHardLight = 8,
    /** Like HardLight, but gently: a source of a half leaves the backdrop as it is. */
    GXBlendModeSoftLight = 9,
    /** The distance between b and s. */
    GXBlendModeDifference = 10,
    /** b + s - 2 b s: like Difference, with less contrast. */
    GXBlendModeExclusion = 11,
    /** The source's hue with the backdrop's saturation and luminosity. */
    GXBlendModeHue = 12,
    /** The source's saturation with the backdrop's hue and luminosity. */
    GXBlendModeSaturation = 13,
    /** The source's hue and saturation with the backdrop's luminosity. */
    GXBlendModeColor = 14,
    /** The source's luminosity with the backdrop's hue and saturation. */
    GXBlendModeLuminosity = 15
};

/** The ends of open figures and dashes. Unknown values act as flat. A figure or dash without length is a dot: a disc
 * with round caps, a square with square caps (upright in user space, so that it turns with the matrix), nothing with
 * flat ones. */
typedef uint32_t GXLineCap;
/** The caps. */
enum {
    /** Ends flush with the end point. */
    GXLineCapFlat = 0,
    /** A half circle of the line's width around the end point. */
    GXLineCapRound = 1,
    /** Goes on for half the line's width past the end point. */
    GXLineCapSquare = 2
};

/** The outer side of a corner. Any value above 1 acts as bevel. */
typedef uint32_t GXLineJoin;
/** The joins. */
enum {
    /** The edges are carried on to their meeting point; a bevel where that is at or beyond the miter limit. */
    GXLineJoinMiter = 0,
    /** An arc of the line's width around the corner. */
    GXLineJoinRound = 1,
    /** A straight edge across the corner. */
    GXLineJoinBevel = 2
};

/** How a bitmap is sampled. Unknown values act as nearest. */
enum {
    /** The pixel under the sample point. */
    GXInterpolationNearest = 0,
    /** Bilinear between the four nearest pixel centres; exact copies at scale 1 on whole pixels. */
    GXInterpolationLinear = 1,
    /** Averages the covered source area where the bitmap is reduced. */
    GXInterpolationAverage = 2
};

/** What a bitmap brush shows outside the bitmap, for each direction by itself. Unknown values act as clamp. */
enum {
    /** The edge pixel. */
    GXExtendClamp = 0,
    /** The bitmap over and over. */
    GXExtendRepeat = 1,
    /** Alternately the bitmap and its mirror image. */
    GXExtendMirror = 2
};

/** The value that a mask takes from a pixel of its brush. */
enum {
    /** Its alpha. */
    GXMaskTypeAlpha = 0,
    /** 255 - alpha. */
    GXMaskTypeInverseAlpha = 1,
    /** (77 red + 151 green + 28 blue) / 256 of the premultiplied bytes. */
    GXMaskTypeLuminosity = 2,
    /** 255 - luminosity. */
    GXMaskTypeInverseLuminosity = 3
};

/** Set operations on two geometries or regions, the first operand being a and the second b. */
enum {
    /** In both. */
    GXCombineIntersection = 0,
    /** In either. */
    GXCombineUnion = 1,
    /** In exactly one. */
    GXCombineExclusiveOr = 2,
    /** In a but not in b. */
    GXCombineDifference = 3
};

/** What a lock is for. Other values act as read. */
enum {
    /** The pixels are only read. */
    GXLockRead = 1,
    /** Unlocking tells everything derived from the bitmap that its pixels changed. */
    GXLockWrite = 2
};

/** Style bits of a font face; may be combined. */
enum {
    /** Weight 700 instead of 400. */
    GXFontBold = 1,
    /** The slanted form. */
    GXFontItalic = 2
};

/* Handles */

/** A rectangle of pixels in memory. */
typedef struct GXBitmapRec_* GXBitmap;
/** What covered pixels are painted with; immutable. */
typedef struct GXBrushRec_* GXBrush;
/** A font at one size and style; immutable. */
typedef struct GXFontFaceRec_* GXFontFace;
/** Figures of lines and cubic curves with a fill rule; figures can be added, not taken away. */
typedef struct GXGeometryRec_* GXGeometry;
/** A linear or radial gradient or a mesh of coloured triangles; immutable. */
typedef struct GXGradientRec_* GXGradient;
/** A list of packed colours; immutable. */
typedef struct GXPaletteRec_* GXPalette;
/** A set of whole pixels. */
typedef struct GXRegionRec_* GXRegion;
/** Something to draw on. */
typedef struct GXRenderTargetRec_* GXRenderTarget;

/** HWND of Windows. */
typedef void* GXNativeWindow;
/** HDC of Windows. */
typedef void* GXNativeDC;
/** HBITMAP of Windows. */
typedef void* GXNativeBitmap;

/* Records and callbacks */

/** A point in user units (or whatever space the function names). */
typedef struct {
    /** x to the right, y downwards. */
    float x, y;
} GXPoint;
/** A rectangle in user units. Where it becomes a shape, reversed corners are kept as given. */
typedef struct {
    /** A side: x of left and right, y of top and bottom. */
    float left, top, right, bottom;
} GXRect;
/** A point in whole pixels. */
typedef struct {
    /** x to the right, y downwards. */
    int32_t x, y;
} GXIntPoint;
/** A rectangle in whole pixels. */
typedef struct {
    /** A side; right and bottom are exclusive. */
    int32_t left, top, right, bottom;
} GXIntRect;
/** A size. */
typedef struct {
    /** In pixels. */
    uint32_t width, height;
} GXSize;
/** A colour, not premultiplied. */
typedef struct {
    /** From 0 to 1. */
    float red, green, blue, alpha;
} GXColor;
/** An affine map: x' = m00 x + m10 y + m20, y' = m01 x + m11 y + m21. Identity is {1, 0, 0, 1, 0, 0}. */
typedef struct {
    /** The first digit says what it multiplies (x, y, 1), the second what it adds to (x', y'). */
    float m00, m01, m10, m11, m20, m21;
} GXMatrix;
/** What GXCreateBitmap makes. */
typedef struct {
    /** In pixels; a value with the sign bit set counts as the magnitude of the negative number. */
    uint32_t width, height;
    /** 1 to 10. */
    GXPixelFormat format;
    /** Horizontal and vertical resolution in dots per inch, kept with the bitmap and in its file. */
    float dpiX, dpiY;
} GXBitmapDesc;
/** Rows of pixels. */
typedef struct {
    /** The first byte of the first row. */
    void* data;
    /** Bytes used in a row. */
    uint32_t rowLength;
    /** Bytes from one row to the next. */
    uint32_t stride;
} GXBitmapData;
/** How a stroke looks. Raised when stroking: "Dash pattern has a negative element", "Dash pattern has zero length". */
typedef struct {
    /** Of the outer side of corners. */
    GXLineJoin join;
    /** Of both ends of open figures and of each dash. */
    GXLineCap cap;
    /** The ratio of miter length to line width from which on a miter join is a bevel. */
    float miterLimit;
    /** Not read. */
    uint32_t reserved;
    /** The distance into the pattern at which every figure starts, negative or beyond the pattern too; it is read only
     * with dashes. */
    float dashPhase;
    /** Lengths in user units, dash and gap in turn, starting with a dash; after an odd count the next round starts with
     * a gap. A dash of length 0 is a dot. */
    float dashes[15];
    /** How many of them there are. Counts above 15 act as 15, 0 is a solid line. */
    uint64_t dashCount;
} GXStrokeStyle;
/** A transparency group. */
typedef struct {
    /** In user units; limits the group to its device bounding box rounded outwards. With left >= right or
     * top >= bottom the clip alone bounds it. */
    GXRect bounds;
    /** Of the group as a whole; clamped to [0, 1]. */
    float opacity;
    /** Not 0: the group starts transparent instead of on the backdrop. */
    uint8_t isolated;
    /** Not 0: each object replaces the earlier ones under it. */
    uint8_t knockout;
} GXLayerDesc;
/** One colour of a gradient. Stops are sorted by offset; equal offsets keep their order and make a hard edge. */
typedef struct {
    /** 0 is the start and 1 the end. */
    float offset;
    /** Packed. */
    uint32_t color;
} GXGradientStop;
/** A gradient along a line, in gradient space. */
typedef struct {
    /** Read only during the call. */
    const GXGradientStop* stops;
    /** Entries of `stops`; may be 0. */
    uint64_t stopCount;
    /** Where the offsets 0 and 1 are. */
    GXPoint start, end;
    /** Not 0: the end's colour goes on beyond it. */
    uint8_t extendStart, extendEnd;
    /** Packed; what shows where the gradient does not reach. 0: nothing. */
    uint32_t background;
} GXLinearGradientDesc;
/** A gradient from a start circle to an end circle, in gradient space. */
typedef struct {
    /** Read only during the call. */
    const GXGradientStop* stops;
    /** Entries of `stops`; may be 0. */
    uint64_t stopCount;
    /** The centre of the circle whose offset is 0. */
    GXPoint startCenter;
    /** Its radius. */
    float startRadius;
    /** The centre of the circle whose offset is 1. */
    GXPoint endCenter;
    /** Its radius. */
    float endRadius;
    /** Not 0: the circle's colour goes on beyond it. */
    uint8_t extendStart, extendEnd;
    /** Packed; what shows where the gradient does not reach. 0: nothing. */
    uint32_t background;
} GXRadialGradientDesc;
/** A corner of a mesh triangle. */
typedef struct {
    /** In gradient space. */
    float x, y;
    /** Packed. */
    uint32_t color;
} GXTriMeshVertex;
/** Sampling of a bitmap brush. */
typedef struct {
    /** `interpolation` is GXInterpolationNearest, Linear or Average; `extendX` and `extendY` are GXExtendClamp, Repeat
     * or Mirror. */
    uint32_t interpolation, extendX, extendY;
} GXBitmapBrushOptions;
/** A buffer of the host's. */
typedef struct {
    /** Width and height in pixels and stride in bytes, all three whole numbers; resolutions in dots per inch. */
    float width, height, stride, dpiX, dpiY;
} GXExtBufLayout;
/** Receives a geometry call by call. Points are valid only during the callback. Every callback is set. */
typedef struct {
    /** The first argument of every callback; may be null. */
    void* context;
    /** Once, before all figures. */
    void (*SetFillRule)(void*, uint32_t);
    /** A figure starts here. */
    void (*BeginFigure)(void*, const GXPoint*);
    /** The figure stays open. */
    void (*EndFigure)(void*);
    /** The figure is closed with a line to its start. */
    void (*EndFigureClose)(void*);
    /** A line from the current point. */
    void (*LineTo)(void*, const GXPoint*);
    /** A cubic curve from the current point: two control points and the end. */
    void (*CubicTo)(void*, const GXPoint*, const GXPoint*, const GXPoint*);
} GXGeometrySinkCallbacks;
/** Receives one rectangle of a region; `rect` is valid only during the call. */
typedef void (*GXRegionRectProc)(void* context, const GXIntRect* rect);
/** Receives one diagnostic text in UTF-8 without a final line break, valid only during the call. It runs under the
 * log's mutex on the thread that failed, and may not call the library. */
typedef void (*GXLogProc)(void* context, const char* utf8Text);

/* Objects, thread setting, log */

/** Adds one owner to an object of any kind. Each acquire needs a release of its own. GXResultInvalidArgument when
 * `handle` is null. Safe from any thread; never fails otherwise. */
GX_API GXResult GXObjectAcquire(void* handle) GX_NOEXCEPT;

/** Takes one owner from an object of any kind; the last one out frees it, unless another object still uses it.
 * GXResultInvalidArgument when `handle` is null. Safe from any thread; never fails otherwise. */
GX_API GXResult GXObjectRelease(void* handle) GX_NOEXCEPT;

/** Lets window targets that this thread makes from now on use the graphics processor. Answers GXResultSuccess also
 * where there is none: the thread then stays with software. Calling it again changes nothing.
 * GXResultUnexpectedError when an allocation fails. */
GX_API GXResult GXEnableHWAccelerationForThread(void) GX_NOEXCEPT;

/** Sets the receiver of diagnostic texts for `key`, replacing the one that it had; a null `proc` removes it. Sinks
 * are called in the order of their keys, one at a time. `context` may be null and is passed on. Always
 * GXResultSuccess. Safe from any thread, but not from inside a sink. */
GX_API GXResult GXLogSetSink(int32_t key, GXLogProc proc, void* context) GX_NOEXCEPT;

/* Palettes */

/** Makes a palette from `count` packed colours, which are copied. GXResultInvalidArgument when a pointer is null or
 * `count` is 0; GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXCreatePalette(const uint32_t* colors, uint64_t count, GXPalette* outPalette) GX_NOEXCEPT;

/** Reads the number of colours, at least 1. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXPaletteGetNumColors(GXPalette palette, uint64_t* outCount) GX_NOEXCEPT;

/** Reads one packed colour; `index` counts from 0. GXResultInvalidArgument when an argument is null.
 * GXResultIndexOutOfRange when `index` is not below the number of colours. */
GX_API GXResult GXPaletteGetColor(GXPalette palette, uint64_t index, uint32_t* outColor) GX_NOEXCEPT;

/** Gives the palette's own array, as long as GXPaletteGetNumColors says and valid while the palette lives; the
 * caller only reads it. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXPaletteGetColors(GXPalette palette, const uint32_t** outColors) GX_NOEXCEPT;

/* Bitmaps in memory */

/** Makes a bitmap whose pixels are not cleared. Rows start at multiples of 16 bytes. GXResultInvalidArgument when an
 * argument is null. GXResultEngineError: "Unsupported pixel format.", "Invalid bitmap dimensions" (a side is 0),
 * "Bitmap is too big" (2 GiB or more), "Not enough memory". GXResultUnexpectedError when the C++ allocator fails. */
GX_API GXResult GXCreateBitmap(const GXBitmapDesc* desc, GXBitmap* outBitmap) GX_NOEXCEPT;

/** Reads the pixel format, 1 to 10. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXBitmapGetPixelFormat(GXBitmap bitmap, GXPixelFormat* outFormat) GX_NOEXCEPT;

/** Reads width and height in pixels, both at least 1. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXBitmapGetSize(GXBitmap bitmap, GXSize* outSize) GX_NOEXCEPT;

/** Reads the horizontal resolution in dots per inch. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXBitmapGetDpiX(GXBitmap bitmap, float* outDpi) GX_NOEXCEPT;

/** Reads the vertical resolution in dots per inch. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXBitmapGetDpiY(GXBitmap bitmap, float* outDpi) GX_NOEXCEPT;

/** Gives the bitmap a palette, which it shares; a null `palette` removes the one it has. Only the indexed formats
 * use it. GXResultInvalidArgument when `bitmap` is null; GXResultUnexpectedError when a lock of the system fails.
 * Not while another thread reads the bitmap. */
GX_API GXResult GXBitmapSetPalette(GXBitmap bitmap, GXPalette palette) GX_NOEXCEPT;

/** Gives a new handle to the bitmap's palette, which the caller releases; null is written when it has none.
 * GXResultInvalidArgument when an argument is null. GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXBitmapGetPalette(GXBitmap bitmap, GXPalette* outPalette) GX_NOEXCEPT;

/** Gives direct access to the pixels of `rect`, clipped to the bitmap; a null `rect` is the whole bitmap. `mode` is
 * GXLockRead or GXLockWrite. `data` points into the bitmap, at the byte that holds the left pixel of the top row,
 * and stays valid while the bitmap lives. A rectangle that is empty after clipping gives null data and zero lengths.
 * Locks do not nest: a second one only replaces the mode. GXResultInvalidArgument when `bitmap` or `outData` is
 * null. GXResultEngineError and GXResultUnexpectedError as stated at the top. */
GX_API GXResult GXBitmapLock(GXBitmap bitmap, const GXIntRect* rect, uint32_t mode, GXBitmapData* outData) GX_NOEXCEPT;

/** Ends the lock; after GXLockWrite everything derived from the pixels is made anew on next use, as by
 * GXBitmapNotifyChanged. GXResultInvalidArgument when an argument is null. GXResultUnexpectedError when a lock of
 * the system fails. */
GX_API GXResult GXBitmapUnlock(GXBitmap bitmap) GX_NOEXCEPT;

/** Copies `sourceRect` (null: the whole source) to `destOrigin` (null: 0, 0), converting the format. Both sides are
 * clipped together, so that every pixel keeps its partner; what is left empty copies nothing and succeeds. Equal
 * formats and palettes are copied byte for byte, indexed sources are read through their palette, and both may be the
 * same bitmap with overlapping rectangles. GXResultInvalidArgument when a bitmap is null; GXResultEngineError: "Bad
 * format conversion" when the pair of formats has no conversion. */
GX_API GXResult GXBitmapCopyFromBitmap(GXBitmap dest, const GXIntPoint* destOrigin, GXBitmap source,
                                       const GXIntRect* sourceRect) GX_NOEXCEPT;

/** Writes pixels in the bitmap's own format from memory into `rect`, clipped to the bitmap (null: all of it). The
 * block is that of the clipped rectangle: as many rows as it has, each the smaller of the two row lengths. One-bit
 * formats copy whole bytes, from the byte that holds the left pixel. `source` stays the caller's and is only read;
 * its data may not be null. GXResultInvalidArgument when `bitmap`, `source` or its data is null; GXResultEngineError
 * and GXResultUnexpectedError as stated at the top. */
GX_API GXResult GXBitmapCopyFromMemory(GXBitmap bitmap, const GXIntRect* rect, const GXBitmapData* source) GX_NOEXCEPT;

/** Reads pixels in the bitmap's own format from `rect`, clipped to the bitmap (null: all of it), into the caller's
 * memory: as many rows as the clipped rectangle has, each the smaller of the two row lengths. Bytes of the memory
 * beyond those are untouched. GXResultInvalidArgument when `bitmap`, `destination` or its data is null;
 * GXResultEngineError and GXResultUnexpectedError as stated at the top. */
GX_API GXResult GXBitmapCopyToMemory(GXBitmap bitmap, const GXIntRect* rect,
                                     const GXBitmapData* destination) GX_NOEXCEPT;

/** Sets the pixels of `rect`, clipped to the bitmap (null: all of it), to `argb` converted from BGRA32 to the
 * bitmap's format; replaces, does not blend. An indexed format gets the grey level as its index.
 * GXResultInvalidArgument when `bitmap` is null; GXResultEngineError and GXResultUnexpectedError as stated at the
 * top. */
GX_API GXResult GXBitmapColorFill(GXBitmap bitmap, const GXIntRect* rect, uint32_t argb) GX_NOEXCEPT;

/** Tells the library that the host wrote pixels by other means, so that copies and textures derived from them are
 * made anew on next use. GXResultInvalidArgument when an argument is null. GXResultUnexpectedError when a lock of
 * the system fails. */
GX_API GXResult GXBitmapNotifyChanged(GXBitmap bitmap) GX_NOEXCEPT;

/** Marks the bitmap (`flag` not 0) as one that is painted into off screen, or takes the mark away. Drawing is the
 * same either way. GXResultInvalidArgument when `bitmap` is null. */
GX_API GXResult GXBitmapSetOffscreenPainting(GXBitmap bitmap, uint8_t flag) GX_NOEXCEPT;

/* Bitmaps in files */

/** Loads the first frame of a PNG, JPEG, TIFF, GIF or BMP file. The format follows the image: 24-bit RGB gives
 * BGR24, RGBA and grey with alpha BGRA32, palette and grey images Indexed8 or Indexed1 with their palette, all else
 * BGRX32. The resolution is kept. GXResultInvalidArgument when an argument is null. GXResultEngineError: "Failed to
 * load" when the file is missing, damaged or of another kind, claims more pixels than its bytes can hold, or is a JPEG
 * with arithmetic coding; on Windows also "Failed to initialize GDI+". */
GX_API GXResult GXCreateBitmapFromFile(const wchar_t* path, GXBitmap* outBitmap) GX_NOEXCEPT;

/** Loads frame `frame`, counted from 0, of an image file; otherwise as GXCreateBitmapFromFile. `outFrameCount` may
 * be null; it receives the number of frames as soon as that is known, also when the index is then out of range.
 * GXResultInvalidArgument when `path` or `outBitmap` is null; GXResultEngineError: "Failed to load", "Failed to
 * load. Frame index is out of range." */
GX_API GXResult GXCreateBitmapFromFileFrame(const wchar_t* path, uint32_t frame, uint32_t* outFrameCount,
                                            GXBitmap* outBitmap) GX_NOEXCEPT;

/** Loads the first frame of an image file that lies in memory: `size` bytes, which the caller may free afterwards;
 * otherwise as GXCreateBitmapFromFile. GXResultInvalidArgument when an argument is null. GXResultEngineError:
 * "Failed to load". */
GX_API GXResult GXCreateBitmapFromMemory(const void* data, size_t size, GXBitmap* outBitmap) GX_NOEXCEPT;

/** Makes a bitmap with a copy of the pixels of a Windows bitmap, which stays the caller's. GXResultInvalidArgument
 * when an argument is null. GXResultEngineError: "Failed to load"; "Not supported on this platform" where there is
 * no GDI. */
GX_API GXResult GXCreateBitmapFromHBITMAP(GXNativeBitmap nativeBitmap, GXBitmap* outBitmap) GX_NOEXCEPT;

/** Writes the bitmap as the file kind that the ending of `path` names: png, jpg or jpeg, tif or tiff, bmp, in either
 * case of letters. Formats that the file cannot hold are converted first; the resolution is kept. A failed save
 * leaves no half-written file behind. GXResultInvalidArgument when an argument is null. GXResultEngineError: "Failed
 * to save bitmap: Unknown file format", "Failed to save bitmap"; on Windows those of GDI+ too. */
GX_API GXResult GXBitmapSaveToFile(GXBitmap bitmap, const wchar_t* path) GX_NOEXCEPT;

/** Makes a Windows bitmap with a copy of the pixels; the caller owns it and deletes it. GXResultInvalidArgument when
 * an argument is null. GXResultEngineError: "CreateDIBSection fail"; "Not supported on this platform" where there is
 * no GDI. */
GX_API GXResult GXBitmapSaveToHBITMAP(GXBitmap bitmap, GXNativeBitmap* outNativeBitmap) GX_NOEXCEPT;

/* The bitmap cache: one for the process, usable from any thread */

/** Sets the budget in bytes (41943040 at first) and drops the oldest bitmaps until the rest fit. Dropping only
 * forgets a handle, it does not release it. GXResultUnexpectedError when a lock of the system fails. */
GX_API GXResult GXBitmapCacheSetMemoryQuota(uint64_t bytes) GX_NOEXCEPT;

/** Reads the budget in bytes. GXResultInvalidArgument when `outBytes` is null. */
GX_API GXResult GXBitmapCacheGetMemoryQuota(uint64_t* outBytes) GX_NOEXCEPT;

/** Reads the bytes that the cached bitmaps count for: height times the bytes of an unpadded row, each.
 * GXResultInvalidArgument when `outBytes` is null. */
GX_API GXResult GXBitmapCacheGetMemoryInUse(uint64_t* outBytes) GX_NOEXCEPT;

/** Puts a bitmap in and gives its ticket, dropping the oldest ones while it does not fit; one that is larger than
 * the budget stays alone. The cache keeps the bare handle: the caller keeps the bitmap alive, and removes the ticket
 * before the last release. GXResultInvalidArgument when an argument is null. GXResultUnexpectedError when memory
 * runs out. */
GX_API GXResult GXBitmapCachePut(GXBitmap bitmap, uint32_t* outTicket) GX_NOEXCEPT;

/** Gives the handle put in under `ticket`, without a new owner: the caller does not release it. Null is written,
 * with GXResultSuccess, when the bitmap was dropped or removed. Age counts from the put; a get does not refresh it.
 * GXResultInvalidArgument when `outBitmap` is null; GXResultUnexpectedError when a lock of the system fails. */
GX_API GXResult GXBitmapCacheGet(uint32_t ticket, GXBitmap* outBitmap) GX_NOEXCEPT;

/** Takes the bitmap of `ticket` out, without releasing it. GXResultSuccess also for an unknown ticket;
 * GXResultUnexpectedError when a lock of the system fails. */
GX_API GXResult GXBitmapCacheRemove(uint32_t ticket) GX_NOEXCEPT;

/* Brushes and gradients */

/** Makes a brush of one colour; each channel is clamped to [0, 1]. GXResultInvalidArgument when an argument is null.
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXCreateBrushSolid(const GXColor* color, GXBrush* outBrush) GX_NOEXCEPT;

/** Makes a brush of one packed colour. GXResultInvalidArgument when `outBrush` is null; GXResultUnexpectedError when
 * memory runs out. */
GX_API GXResult GXCreateBrushSolidARGB(uint32_t argb, GXBrush* outBrush) GX_NOEXCEPT;

/** Makes a brush that paints with a bitmap, which it shares: later changes of its pixels show. One bitmap pixel is
 * one unit of brush space; `matrix` maps brush space to user units (null: identity). `opacity` multiplies alpha,
 * from 0 to 1. `options` may be null: linear, clamp, clamp. GXResultInvalidArgument when `bitmap` or `outBrush` is
 * null; GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXCreateBrushBitmap(GXBitmap bitmap, float opacity, const GXBitmapBrushOptions* options,
                                    const GXMatrix* matrix, GXBrush* outBrush) GX_NOEXCEPT;

/** Makes a brush that paints with a gradient, which it shares. `matrix` maps gradient space to user units (null:
 * identity). `opacity` multiplies alpha, from 0 to 1. GXResultInvalidArgument when `gradient` or `outBrush` is null;
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXCreateBrushGradient(GXGradient gradient, float opacity, const GXMatrix* matrix,
                                      GXBrush* outBrush) GX_NOEXCEPT;

/** Makes a gradient along a line. The description and its stops are copied. A gradient without stops is legal.
 * GXResultInvalidArgument when `desc` or `outGradient` is null, or its stops are null while `stopCount` is not 0;
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXCreateGradientLinear(const GXLinearGradientDesc* desc, GXGradient* outGradient) GX_NOEXCEPT;

/** Makes a gradient between two circles. The description and its stops are copied. A gradient without stops is
 * legal. GXResultInvalidArgument when `desc` or `outGradient` is null, or its stops are null while `stopCount` is
 * not 0; GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXCreateGradientRadial(const GXRadialGradientDesc* desc, GXGradient* outGradient) GX_NOEXCEPT;

/** Makes a gradient of triangles, each of three consecutive vertices, with colours interpolated between the corners.
 * `count` is in vertices; the rest of an incomplete triangle is not drawn. Nothing is painted outside the triangles,
 * whatever `backgroundArgb` is; a host that wants a background there fills it first. The vertices are copied.
 * GXResultInvalidArgument when a pointer is null or `count` is 0; GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXCreateGradientTriMesh(const GXTriMeshVertex* vertices, size_t count, uint32_t backgroundArgb,
                                        GXGradient* outGradient) GX_NOEXCEPT;

/* Geometries */

/** Makes an empty geometry with the non-zero rule. GXResultInvalidArgument when `outGeometry` is null;
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXCreateGeometry(GXGeometry* outGeometry) GX_NOEXCEPT;

/** Sets the fill rule; the value is kept as given. GXResultInvalidArgument when `geometry` is null. */
GX_API GXResult GXGeometrySetFillRule(GXGeometry geometry, GXFillRule fillRule) GX_NOEXCEPT;

/** Reads the fill rule as it was set. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXGeometryGetFillRule(GXGeometry geometry, GXFillRule* outFillRule) GX_NOEXCEPT;

/** Answers 1 when the geometry has no finished figure. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXGeometryEmpty(GXGeometry geometry, uint8_t* outEmpty) GX_NOEXCEPT;

/** Answers 1 when both have the same fill rule and the same finished figures: in the same order, each from the same
 * start, with the same segments, open or closed alike, and equal points, without tolerance (0 equals -0, NaN equals
 * nothing). The same outline from another start is not equal. A figure under construction does not count. Two
 * geometries without finished figures are not equal, nor is such a one to itself. GXResultInvalidArgument when an
 * argument is null. */
GX_API GXResult GXGeometryPointsEqual(GXGeometry geometry, GXGeometry other, uint8_t* outEqual) GX_NOEXCEPT;

/** Reads the last point of the figure under construction, else of the last finished figure (its first point when it
 * was closed). GXResultInvalidArgument when an argument is null. GXResultFalse, with the output untouched, when
 * there is no figure. */
GX_API GXResult GXGeometryGetCurrentPoint(GXGeometry geometry, GXPoint* outPoint) GX_NOEXCEPT;

/** Reads the box around every point ever passed in, control points and unfinished figures included; (0, 0, 0, 0)
 * when there is none. With a `matrix` (null: identity) it is the box around that box's mapped corners.
 * GXResultInvalidArgument when `geometry` or `outBound` is null. */
GX_API GXResult GXGeometryGetBound(GXGeometry geometry, const GXMatrix* matrix, GXRect* outBound) GX_NOEXCEPT;

/** Starts a figure at `start`; an open one is ended first, as by GXGeometryEndFigure. GXResultInvalidArgument when
 * an argument is null. GXResultEngineError ("Not enough memory") or GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXGeometryBeginFigure(GXGeometry geometry, const GXPoint* start) GX_NOEXCEPT;

/** Finishes the figure and leaves it open: a stroke gets caps at its ends; a fill closes it all the same. A figure
 * without a segment is not kept. Does nothing without a figure. GXResultInvalidArgument when an argument is null.
 * GXResultEngineError ("Not enough memory") or GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXGeometryEndFigure(GXGeometry geometry) GX_NOEXCEPT;

/** Finishes the figure and closes it with a line to its start; one that is a single point is kept. Does nothing
 * without a figure. GXResultInvalidArgument when an argument is null. GXResultEngineError ("Not enough memory") or
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXGeometryEndFigureClose(GXGeometry geometry) GX_NOEXCEPT;

/** Adds a line from the current point to `end`. Ignored without a figure. GXResultInvalidArgument when an argument
 * is null. GXResultEngineError ("Not enough memory") or GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXGeometryLineTo(GXGeometry geometry, const GXPoint* end) GX_NOEXCEPT;

/** Adds a cubic curve whose first control point is the current point (`control2` when there is none). Ignored
 * without a figure. GXResultInvalidArgument when an argument is null. GXResultEngineError ("Not enough memory") or
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXGeometryConicCurveTo(GXGeometry geometry, const GXPoint* control2, const GXPoint* end) GX_NOEXCEPT;

/** Adds a cubic curve from the current point to `end`. Ignored without a figure. GXResultInvalidArgument when an
 * argument is null. GXResultEngineError ("Not enough memory") or GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXGeometryCubicCurveTo(GXGeometry geometry, const GXPoint* control1, const GXPoint* control2,
                                       const GXPoint* end) GX_NOEXCEPT;

/** Adds a closed figure: left top, right top, right bottom, left bottom. Reversed corners reverse its direction.
 * GXResultInvalidArgument when an argument is null. GXResultEngineError ("Not enough memory") or
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXGeometryRectangle(GXGeometry geometry, const GXRect* rect) GX_NOEXCEPT;

/** Adds the ellipse in `bounds` as a closed figure of four cubic curves; nothing when its width or height is 0.
 * GXResultInvalidArgument when an argument is null. GXResultEngineError ("Not enough memory") or
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXGeometryEllipse(GXGeometry geometry, const GXRect* bounds) GX_NOEXCEPT;

/** Adds a closed rectangle whose corners are quarter ellipses, one cubic curve each; nothing when width or height is 0.
 * The radii are limited to half of right - left and of bottom - top; of reversed corners these are negative, so that
 * the curves take the whole side. With a radius of 0 it is the figure of GXGeometryRectangle, else it starts at the
 * left end of the top side and runs to its right end first. A negative radius bends the corners outwards.
 * GXResultInvalidArgument when `geometry` or `rect` is null. GXResultEngineError ("Not enough memory") or
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXGeometryRoundRectangle(GXGeometry geometry, const GXRect* rect, float radiusX,
                                         float radiusY) GX_NOEXCEPT;

/** Makes a new geometry with a copy of the finished figures and the fill rule; either can grow without the other.
 * GXResultInvalidArgument when an argument is null. GXResultEngineError ("Not enough memory") or
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXGeometryCopy(GXGeometry geometry, GXGeometry* outGeometry) GX_NOEXCEPT;

/** Sends the finished figures to `callbacks`, the fill rule first. What the callbacks do to the geometry (they may also
 * release it) changes nothing of what is sent. GXResultInvalidArgument when `geometry` or `callbacks` is null;
 * GXResultEngineError and GXResultUnexpectedError as stated at the top. */
GX_API GXResult GXGeometrySendToSink(GXGeometry geometry, const GXGeometrySinkCallbacks* callbacks) GX_NOEXCEPT;

/** Makes a new geometry from the finished figures with every point mapped by `matrix` (null: identity).
 * GXResultInvalidArgument when `geometry` or `outGeometry` is null. GXResultEngineError ("Not enough memory") or
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXGeometryTransform(GXGeometry geometry, const GXMatrix* matrix, GXGeometry* outGeometry) GX_NOEXCEPT;

/** Makes a new non-zero geometry of lines: the outline of the stroke of `width` units, without area for 0. Curves of
 * the path, round joins and round caps are followed to within 0.25 unit, whatever the geometry is drawn at later;
 * beside a curve the outline strays further by as much as it is longer than the path. For a finer one, widen an
 * enlarged copy and transform the result back. `style` may be null: miter joins up to ratio 10, flat caps, no dashes.
 * GXResultInvalidArgument when `geometry` or `outGeometry` is null, or `width` is negative or NaN; GXResultEngineError
 * for the dash patterns that GXStrokeStyle refuses, and for "Not enough memory". */
GX_API GXResult GXGeometryWiden(GXGeometry geometry, float width, const GXStrokeStyle* style,
                                GXGeometry* outGeometry) GX_NOEXCEPT;

/** Makes a new geometry from the areas of two, each under its own fill rule; `mode` is GXCombineIntersection, Union,
 * ExclusiveOr or Difference (a without b). Curves are flattened to within `tolerance` units (0.25 where it is not above
 * 0). The result has coordinates in floats, whose spacing at c is between |c| / 2^24 and |c| / 2^23 (a sixteenth of a
 * unit at a million): far from the origin no tolerance makes it finer than that, and a smaller one counts as that much.
 * Figures that are to be combined finely are moved near the origin first. The result has disjoint simple figures,
 * outlines and holes in opposite directions, valid under both fill rules. GXResultInvalidArgument when a pointer is
 * null or `mode` is unknown. GXResultEngineError ("Not enough memory") or GXResultUnexpectedError when memory runs
 * out. */
GX_API GXResult GXGeometryCombine(GXGeometry a, GXGeometry b, uint32_t mode, float tolerance,
                                  GXGeometry* outGeometry) GX_NOEXCEPT;

/** Answers 1 when `point` is inside the geometry, under its fill rule and borders included, or within `tolerance` (at
 * least 0; NaN counts as 0) of its outline, after the geometry is mapped by `matrix` (null: identity). The line that
 * closes an open figure bounds its area but is not part of its outline. Curves are tested as curves, not flattened;
 * figures with a coordinate that is not finite once mapped are left out, unfinished ones too. GXResultInvalidArgument
 * when `geometry`, `point` or `outHit` is null. */
GX_API GXResult GXGeometryHitTest(GXGeometry geometry, const GXPoint* point, const GXMatrix* matrix, float tolerance,
                                  uint8_t* outHit) GX_NOEXCEPT;

/* Regions */

/** Makes an empty region. GXResultInvalidArgument when `outRegion` is null; GXResultUnexpectedError when memory runs
 * out. */
GX_API GXResult GXCreateRegion(GXRegion* outRegion) GX_NOEXCEPT;

/** Makes a region of one rectangle; empty when right <= left or bottom <= top. GXResultInvalidArgument when an
 * argument is null. GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXCreateRegionFromRect(const GXIntRect* rect, GXRegion* outRegion) GX_NOEXCEPT;

/** Answers 1 when the region covers no pixel. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXRegionIsAreaEmpty(GXRegion region, uint8_t* outEmpty) GX_NOEXCEPT;

/** Reads the smallest rectangle around the region; (0, 0, 0, 0) when it is empty. GXResultInvalidArgument when an
 * argument is null. */
GX_API GXResult GXRegionGetBound(GXRegion region, GXIntRect* outBound) GX_NOEXCEPT;

/** Answers 1 when `point` lies in the region's bound, all four sides included: a quick test that does not look at
 * the rectangles inside. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXRegionContainsPoint(GXRegion region, const GXIntPoint* point, uint8_t* outContains) GX_NOEXCEPT;

/** Answers 1 when the whole of `rect` is in the region. GXResultInvalidArgument when an argument is null.
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXRegionContainsRect(GXRegion region, const GXIntRect* rect, uint8_t* outContains) GX_NOEXCEPT;

/** Answers 1 when the whole of `other` is in `region`. GXResultInvalidArgument when an argument is null.
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXRegionContains(GXRegion region, GXRegion other, uint8_t* outContains) GX_NOEXCEPT;

/** Answers 1 when the two share a pixel. GXResultInvalidArgument when an argument is null. GXResultUnexpectedError
 * when memory runs out. */
GX_API GXResult GXRegionHasIntersection(GXRegion region, GXRegion other, uint8_t* outIntersects) GX_NOEXCEPT;

/** Answers 1 when region and rectangle share a pixel. GXResultInvalidArgument when an argument is null.
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXRegionHasIntersectionWithRect(GXRegion region, const GXIntRect* rect,
                                                uint8_t* outIntersects) GX_NOEXCEPT;

/** Moves the region by (`dx`, `dy`) pixels; coordinates stop at the ends of their range instead of wrapping.
 * GXResultInvalidArgument when `region` is null; GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXRegionOffset(GXRegion region, int32_t dx, int32_t dy) GX_NOEXCEPT;

/** Makes a new region from two; `mode` is GXCombineIntersection, Union, ExclusiveOr or Difference (`region` without
 * `other`). Both may be the same. GXResultInvalidArgument when a pointer is null or `mode` is unknown;
 * GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXRegionCombine(GXRegion region, GXRegion other, uint32_t mode, GXRegion* outRegion) GX_NOEXCEPT;

/** Makes a new region from a region and a rectangle; otherwise as GXRegionCombine. GXResultInvalidArgument when a
 * pointer is null or `mode` is unknown; GXResultUnexpectedError when memory runs out. */
GX_API GXResult GXRegionCombineRect(GXRegion region, const GXIntRect* rect, uint32_t mode,
                                    GXRegion* outRegion) GX_NOEXCEPT;

/** Calls `proc` for every rectangle of the region: band by band from the top, from left to right inside a band.
 * `context` may be null and is passed on. The callback may not change the region. GXResultInvalidArgument when
 * `region` or `proc` is null. */
GX_API GXResult GXRegionEnumRects(GXRegion region, GXRegionRectProc proc, void* context) GX_NOEXCEPT;

/* Font faces */

/** Makes a font face by its family name in UTF-16; an unknown or empty name gives the platform's default. `flags`
 * combines GXFontBold and GXFontItalic; other bits are ignored. `size` is in points at 96 dots per inch: the em is
 * size * 96 / 72 pixels high, truncated to whole ones; for a negative size that is the height of a line, and what comes
 * to 0 (NaN too) leaves the choice to the platform. A face may be used by several threads. GXResultInvalidArgument when
 * a pointer is null; GXResultEngineError: "No font found" when the platform has no font to give, "Not enough memory";
 * GXResultUnexpectedError when the C++ allocator fails. */
GX_API GXResult GXCreateFontFace(const uint16_t* faceName, uint32_t flags, float size,
                                 GXFontFace* outFontFace) GX_NOEXCEPT;

/** Measures UTF-16 text: the sum of the advance widths in pixels (whole ones, as FillText moves on), then the face's
 * size as it was given. Every code unit counts as a glyph. GXResultInvalidArgument when an argument is null.
 * GXResultEngineError: "Not enough memory"; GXResultUnexpectedError when the C++ allocator fails. `outSize` is written
 * on success only. */
GX_API GXResult GXFontFaceCalculateTextBound(GXFontFace fontFace, const uint16_t* text, float outSize[2]) GX_NOEXCEPT;

/* Render targets: creation and queries */

/** Makes a software target that draws into a bitmap, which it keeps alive. PBGRA32 and BGRX32 can be drawn into;
 * GXRenderTargetBeginPaint refuses the others. GXResultInvalidArgument when an argument is null. GXResultEngineError
 * and GXResultUnexpectedError as stated at the top. */
GX_API GXResult GXCreateRenderTargetBitmap(GXBitmap bitmap, GXRenderTarget* outTarget) GX_NOEXCEPT;

/** Makes a software target that draws into the host's memory, which the host keeps valid as long as the target
 * lives. `pixels` is the first byte of the top row and needs no alignment; bytes of a row beyond the last pixel are
 * never touched. GXResultInvalidArgument when an argument is null. GXResultEngineError: "Unsupported pixel format.",
 * "Invalid bitmap dimensions" (a size that is not a whole number of at least 1), "Bitmap is too big" (a row of 256 MiB
 * or more), "Invalid stride" (not whole, or shorter than a row). */
GX_API GXResult GXCreateRenderTargetExtBuf(void* pixels, GXPixelFormat format, const GXExtBufLayout* layout,
                                           GXRenderTarget* outTarget) GX_NOEXCEPT;

/** Makes a target that draws into a window: with the graphics processor when GXEnableHWAccelerationForThread has
 * been called on this thread and `softwareOnly` is 0, else in software. GXResultInvalidArgument when `window` or
 * `outTarget` is null; GXResultEngineError: "The window does not exist"; "Not supported on this platform" where
 * there is no GDI. */
GX_API GXResult GXCreateRenderTargetHWND(GXNativeWindow window, uint32_t softwareOnly,
                                         GXRenderTarget* outTarget) GX_NOEXCEPT;

/** Makes a software target that draws into `area` of a device context, in device pixels; an empty area is the whole
 * device. The target's (0, 0) is the area's top left. GXResultInvalidArgument when an argument is null.
 * GXResultEngineError: "CreateCompatibleDC is failed.", "CreateDIBSection fail"; "Not supported on this platform"
 * where there is no GDI. */
GX_API GXResult GXCreateRenderTargetHDC(GXNativeDC dc, const GXIntRect* area, GXRenderTarget* outTarget) GX_NOEXCEPT;

/** Makes a target on a printer's device context through the printing system; one paint bracket is one page's picture.
 * GXResultInvalidArgument when an argument is null. GXResultEngineError: "Failed to gdi+ startup", "The DC does not
 * exist"; "Not supported on this platform" where there is no GDI. */
GX_API GXResult GXCreateRenderTargetPrintDC(GXNativeDC dc, GXRenderTarget* outTarget) GX_NOEXCEPT;

/** Reads the format of the pixels drawn into. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXRenderTargetGetPixelFormat(GXRenderTarget renderTarget, GXPixelFormat* outFormat) GX_NOEXCEPT;

/** Reads the size in pixels. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXRenderTargetGetSize(GXRenderTarget renderTarget, GXSize* outSize) GX_NOEXCEPT;

/* Render targets: the painting bracket and the state */

/** Opens the bracket in which drawing is allowed; the state set before it is in force: first of all identity, Normal,
 * stroke adjustment on, no masks and no clip. A target that is freed inside the bracket leaves what was drawn into
 * memory, and shows nothing. GXResultInvalidArgument when an argument is null. GXResultEngineError: "Painting has
 * already begun", "Unsuported pixel format" (spelled so) when the format cannot be drawn into. */
GX_API GXResult GXRenderTargetBeginPaint(GXRenderTarget renderTarget) GX_NOEXCEPT;

/** Closes the bracket and brings the pixels to a window or device. Layers still open are ended, innermost first, as by
 * GXRenderTargetEndLayer; one that cannot be drawn is dropped. States still pushed are dropped, and the state is reset
 * to identity, Normal, stroke adjustment on, no masks and no clip: what a host wants otherwise it sets again for each
 * bracket. Inside a bracket the answer is always GXResultSuccess where the pixels are in memory; a window or device
 * that does not take them gives GXResultEngineError, with the bracket closed all the same. GXResultInvalidArgument when
 * an argument is null. GXResultEngineError: "Painting has not begun". */
GX_API GXResult GXRenderTargetEndPaint(GXRenderTarget renderTarget) GX_NOEXCEPT;

/** Saves matrix, blend mode, stroke adjustment, both masks and clip. GXResultInvalidArgument when an argument is
 * null. GXResultEngineError: "Painting has not begun", "Not enough memory". GXResultUnexpectedError when the C++
 * allocator fails. */
GX_API GXResult GXRenderTargetPushState(GXRenderTarget renderTarget) GX_NOEXCEPT;

/** Restores what the matching push saved. A layer has a stack of its own and cannot pop its parent's states.
 * GXResultInvalidArgument when an argument is null. GXResultEngineError: "Painting has not begun", "State stack is
 * empty". */
GX_API GXResult GXRenderTargetPopState(GXRenderTarget renderTarget) GX_NOEXCEPT;

/** Reads the matrix that maps user units to device pixels. Works outside the painting bracket too.
 * GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXRenderTargetGetCTM(GXRenderTarget renderTarget, GXMatrix* outMatrix) GX_NOEXCEPT;

/** Replaces the matrix; a null `matrix` is the identity. Works outside the painting bracket too.
 * GXResultInvalidArgument when `renderTarget` is null. */
GX_API GXResult GXRenderTargetSetCTM(GXRenderTarget renderTarget, const GXMatrix* matrix) GX_NOEXCEPT;

/** Puts `matrix` in front of the current one: points are mapped by `matrix` first. Works outside the painting
 * bracket too. GXResultInvalidArgument when an argument is null. */
GX_API GXResult GXRenderTargetConcatCTM(GXRenderTarget renderTarget, const GXMatrix* matrix) GX_NOEXCEPT;

/** Puts a rotation in front of the matrix; positive angles turn the x axis towards the y axis. Angles of a full turn
 * and more are reduced by whole turns first. Works outside the painting bracket too. GXResultInvalidArgument when
 * `renderTarget` is null. */
GX_API GXResult GXRenderTargetRotateCTM(GXRenderTarget renderTarget, float angleRadians) GX_NOEXCEPT;

/** Puts a scaling in front of the matrix. Works outside the painting bracket too. GXResultInvalidArgument, with the
 * matrix unchanged, when `renderTarget` is null or a factor is 0 or -0. */
GX_API GXResult GXRenderTargetScaleCTM(GXRenderTarget renderTarget, float scaleX, float scaleY) GX_NOEXCEPT;

/** Puts a shift in user units in front of the matrix. Works outside the painting bracket too.
 * GXResultInvalidArgument when `renderTarget` is null. */
GX_API GXResult GXRenderTargetTranslateCTM(GXRenderTarget renderTarget, float offsetX, float offsetY) GX_NOEXCEPT;

/** Sets how everything drawn from now on meets the backdrop. Works outside the painting bracket too.
 * GXResultInvalidArgument when `renderTarget` is null. */
GX_API GXResult GXRenderTargetSetBlendMode(GXRenderTarget renderTarget, GXBlendMode blendMode) GX_NOEXCEPT;

/** Turns the adjustment of edges to whole device pixels on (`flag` not 0) or off. It is on in a new target, and
 * GXRenderTargetEndPaint turns it on again; a host that wants every coordinate taken as it is calls this with 0 before
 * or after each GXRenderTargetBeginPaint. With it on:
 *
 * - Upright and level segments of strokes, wherever they stand in a figure, are moved so that lines of equal width
 * cover equal, whole numbers of pixels, at least 1. Curves and slanted segments stay, and joints stay closed.
 * - A fill, clip, bitmap or mask whose shape on the device is one upright rectangle covers whole pixels: in each
 *   direction as many as its length, in eighths of a pixel, rounded up, at least 1. Where it touches one pixel more
 * than that, the end that covers less of its pixel loses it, of equal ends the right or lower one.
 *
 * Text is never adjusted, an inverted rectangle always. Works outside the painting bracket too. GXResultInvalidArgument
 * when `renderTarget` is null. */
GX_API GXResult GXRenderTargetSetStrokeAdjustment(GXRenderTarget renderTarget, uint8_t flag) GX_NOEXCEPT;

/** Multiplies the colour and alpha of everything drawn from now on by a mask made from `brush`, which the state keeps
 * alive. It is placed by its own matrix and the CTM of this moment. `type` is GXMaskTypeAlpha, InverseAlpha, Luminosity
 * or InverseLuminosity; an unknown one is taken here and makes whatever has something to draw fail with
 * GXResultEngineError: "Unsupported soft mask type." A null `brush` removes the mask. Works outside the painting
 * bracket too. GXResultInvalidArgument when `renderTarget` is null. */
GX_API GXResult GXRenderTargetSetOpacityMask(GXRenderTarget renderTarget, uint32_t type, GXBrush brush) GX_NOEXCEPT;

/** Multiplies the coverage of everything drawn from now on by a mask made from `brush`, which the state keeps alive. It
 * is placed by its own matrix and the CTM of this moment. `type` is GXMaskTypeAlpha, InverseAlpha, Luminosity or
 * InverseLuminosity; an unknown one is taken here and makes whatever has something to draw fail with
 * GXResultEngineError: "Unsupported soft mask type." A null `brush` removes the mask.
 * Works outside the painting bracket too. GXResultInvalidArgument when `renderTarget` is null. */
GX_API GXResult GXRenderTargetSetShapeMask(GXRenderTarget renderTarget, uint32_t type, GXBrush brush) GX_NOEXCEPT;

/** Opens a transparency group; what follows is drawn into it, with the parent's matrix and stroke adjustment, blend
 * mode Normal, no masks and no clip but its bounds. `desc` is only read during the call. GXResultInvalidArgument
 * when an argument is null. GXResultEngineError: "Painting has not begun", "Not enough memory".
 * GXResultUnexpectedError when the C++ allocator fails. */
GX_API GXResult GXRenderTargetBeginLayer(GXRenderTarget renderTarget, const GXLayerDesc* desc) GX_NOEXCEPT;

/** Closes the innermost group and draws it as one object with its opacity, under the parent's blend mode, masks and
 * clip. A group in which nothing was drawn draws nothing. GXResultInvalidArgument when an argument is null.
 * GXResultEngineError: "Painting has not begun", "No layer is open"; with the group still open, "Unsupported soft mask
 * type." when the parent's mask has an unknown one, "Not enough memory". GXResultUnexpectedError, with the group still
 * open, when the C++ allocator fails. */
GX_API GXResult GXRenderTargetEndLayer(GXRenderTarget renderTarget) GX_NOEXCEPT;

/* Render targets: drawing and clipping */

/** Sets every pixel that the clip leaves to `argb`, without blending and without masks, in the innermost layer or
 * the target; partly clipped pixels take their share. On an opaque target alpha counts as 255.
 * GXResultInvalidArgument when `renderTarget` is null; GXResultEngineError: "Painting has not begun". */
GX_API GXResult GXRenderTargetClear(GXRenderTarget renderTarget, uint32_t argb) GX_NOEXCEPT;

/** Paints the inside of `geometry`, under its fill rule, with `brush`. Open figures are closed; a figure under
 * construction is not drawn. One upright rectangle covers whole pixels while stroke adjustment is on: see
 * GXRenderTargetSetStrokeAdjustment.
 * GXResultInvalidArgument when an argument is null. GXResultEngineError: "Painting has not begun", "Unsupported soft
 * mask type.", "Not enough memory". GXResultUnexpectedError when the C++ allocator fails. */
GX_API GXResult GXRenderTargetFillGeometry(GXRenderTarget renderTarget, GXGeometry geometry, GXBrush brush) GX_NOEXCEPT;

/** Paints the inside of a glyph outline as GXRenderTargetFillText does, without snapping rectangles to pixels. A glyph
 * of up to 64 pixels stands at the nearest multiple of 1/8 pixel, and its coverage is kept: a host draws text fast by
 * keeping one geometry for each glyph of a font and placing it with the CTM.
 * GXResultInvalidArgument when an argument is null. GXResultEngineError: "Painting has not begun", "Unsupported soft
 * mask type.", "Not enough memory". GXResultUnexpectedError when the C++ allocator fails. */
GX_API GXResult GXRenderTargetFillTextGeometry(GXRenderTarget renderTarget, GXGeometry geometry,
                                               GXBrush brush) GX_NOEXCEPT;

/** Paints a rectangle with `brush`; on whole pixels where it is upright on the device and stroke adjustment is on: see
 * GXRenderTargetSetStrokeAdjustment. GXResultInvalidArgument when an argument is null. GXResultEngineError: "Painting
 * has not begun", "Unsupported soft mask type.", "Not enough memory". GXResultUnexpectedError when the C++ allocator
 * fails. */
GX_API GXResult GXRenderTargetFillRect(GXRenderTarget renderTarget, const GXRect* rect, GXBrush brush) GX_NOEXCEPT;

/** Paints the ellipse in `bounds` with `brush`; nothing when its width or height is 0. GXResultInvalidArgument when
 * an argument is null. GXResultEngineError: "Painting has not begun", "Unsupported soft mask type.", "Not enough
 * memory". GXResultUnexpectedError when the C++ allocator fails. */
GX_API GXResult GXRenderTargetFillEllipse(GXRenderTarget renderTarget, const GXRect* bounds, GXBrush brush) GX_NOEXCEPT;

/** Paints the outline of `geometry`. `width` is in user units under the matrix; 0 is the thinnest line, one device
 * pixel wide. `style` may be null: miter joins up to ratio 10, flat caps, no dashes. GXResultInvalidArgument when an
 * argument other than `style` is null, or `width` is negative or NaN; GXResultEngineError: "Painting has not begun",
 * "Unsupported soft mask type.", the dash patterns that GXStrokeStyle refuses, "Not enough memory". */
GX_API GXResult GXRenderTargetStrokeGeometry(GXRenderTarget renderTarget, GXGeometry geometry, GXBrush brush,
                                             float width, const GXStrokeStyle* style) GX_NOEXCEPT;

/** Paints the line from `start` to `end`. `width` is in user units under the matrix; 0 is the thinnest line, one
 * device pixel wide. `style` may be null: miter joins up to ratio 10, flat caps, no dashes. GXResultInvalidArgument
 * when an argument other than `style` is null, or `width` is negative or NaN; GXResultEngineError: "Painting has not
 * begun", "Unsupported soft mask type.", the dash patterns that GXStrokeStyle refuses, "Not enough memory". */
GX_API GXResult GXRenderTargetStrokeLine(GXRenderTarget renderTarget, const GXPoint* start, const GXPoint* end,
                                         GXBrush brush, float width, const GXStrokeStyle* style) GX_NOEXCEPT;

/** Paints the outline of a rectangle. `width` is in user units under the matrix; 0 is the thinnest line, one device
 * pixel wide. `style` may be null: miter joins up to ratio 10, flat caps, no dashes. GXResultInvalidArgument when an
 * argument other than `style` is null, or `width` is negative or NaN; GXResultEngineError: "Painting has not begun",
 * "Unsupported soft mask type.", the dash patterns that GXStrokeStyle refuses, "Not enough memory". */
GX_API GXResult GXRenderTargetStrokeRect(GXRenderTarget renderTarget, const GXRect* rect, GXBrush brush, float width,
                                         const GXStrokeStyle* style) GX_NOEXCEPT;

/** Paints the outline of the ellipse in `bounds`. `width` is in user units under the matrix; 0 is the thinnest line,
 * one device pixel wide. `style` may be null: miter joins up to ratio 10, flat caps, no dashes.
 * GXResultInvalidArgument when an argument other than `style` is null, or `width` is negative or NaN;
 * GXResultEngineError: "Painting has not begun", "Unsupported soft mask type.", the dash patterns that GXStrokeStyle
 * refuses, "Not enough memory". */
GX_API GXResult GXRenderTargetStrokeEllipse(GXRenderTarget renderTarget, const GXRect* bounds, GXBrush brush,
                                            float width, const GXStrokeStyle* style) GX_NOEXCEPT;

/** Limits drawing to the inside of `geometry`, anti-aliased where its edges are not on whole pixels; one upright
 * rectangle is put on whole pixels as a fill of it is. Nothing is left of an empty one. The clip only shrinks;
 * GXRenderTargetPopState gives the earlier one back. GXResultInvalidArgument when an argument is null.
 * GXResultEngineError: "Painting has not begun", "Not enough memory". GXResultUnexpectedError when the C++ allocator
 * fails. */
GX_API GXResult GXRenderTargetClipGeometry(GXRenderTarget renderTarget, GXGeometry geometry) GX_NOEXCEPT;

/** Limits drawing to a rectangle, put on whole pixels as a fill of it is; ignored, with GXResultSuccess, when its width
 * or height is 0. The clip only shrinks; GXRenderTargetPopState gives the earlier one back. GXResultInvalidArgument
 * when an argument is null. GXResultEngineError: "Painting has not begun", "Not enough memory". GXResultUnexpectedError
 * when the C++ allocator fails. */
GX_API GXResult GXRenderTargetClipRect(GXRenderTarget renderTarget, const GXRect* rect) GX_NOEXCEPT;

/** Limits drawing to the ellipse in `bounds`; ignored, with GXResultSuccess, when its width or height is 0. The clip
 * only shrinks; GXRenderTargetPopState gives the earlier one back. GXResultInvalidArgument when an argument is null.
 * GXResultEngineError: "Painting has not begun", "Not enough memory". GXResultUnexpectedError when the C++ allocator
 * fails. */
GX_API GXResult GXRenderTargetClipEllipse(GXRenderTarget renderTarget, const GXRect* bounds) GX_NOEXCEPT;

/** Draws a bitmap with its top left at `origin` (null: 0, 0), one bitmap pixel to one user unit. Its rectangle is put
 * on whole pixels as a fill of it is; the samples stay where they are. `opacity` multiplies alpha, from 0 to 1;
 * `interpolation` is GXInterpolationNearest, Linear or Average. The bitmap may be the one that is painted: whatever
 * draws it (this call, brushes, masks) shows it as it was before the draw. GXResultInvalidArgument when
 * `renderTarget` or `bitmap` is null; GXResultEngineError: "Painting has not begun", "Unsupported soft mask type.",
 * "Not enough memory". GXResultUnexpectedError when the C++ allocator fails. */
GX_API GXResult GXRenderTargetDrawBitmap(GXRenderTarget renderTarget, GXBitmap bitmap, const GXPoint* origin,
                                         float opacity, uint32_t interpolation) GX_NOEXCEPT;

/** Draws the part `source` of a bitmap, in bitmap pixels (null: all of it), exactly onto `destination`; either
 * rectangle, reversed, mirrors. Nothing outside `source` bleeds in. `opacity` and `interpolation` as for
 * GXRenderTargetDrawBitmap. GXResultInvalidArgument when `renderTarget`,
 * `bitmap` or `destination` is null; GXResultEngineError: "Painting has not begun", "Unsupported soft mask type.", "Not
 * enough memory". GXResultUnexpectedError when the C++ allocator fails. */
GX_API GXResult GXRenderTargetStretchBitmap(GXRenderTarget renderTarget, GXBitmap bitmap, const GXRect* destination,
                                            const GXIntRect* source, float opacity, uint32_t interpolation) GX_NOEXCEPT;

/** Paints everything inside the clip with a gradient. `matrix` maps gradient space to user units (null: identity);
 * `opacity` multiplies alpha, from 0 to 1. GXResultInvalidArgument when `renderTarget` or `gradient` is null;
 * GXResultEngineError: "Painting has not begun", "Unsupported soft mask type.", "Not enough memory".
 * GXResultUnexpectedError when the C++ allocator fails. */
GX_API GXResult GXRenderTargetDrawGradient(GXRenderTarget renderTarget, GXGradient gradient, float opacity,
                                           const GXMatrix* matrix) GX_NOEXCEPT;

/** Paints `brush` through the alpha of a bitmap laid onto `destination` (null: the mask's own size at 0, 0). Alpha1
 * and Alpha8 count with their value, Gray8 and BlackWhite1 with their level, formats with alpha with that, others as
 * opaque. `interpolation` as for GXRenderTargetDrawBitmap. GXResultInvalidArgument when `renderTarget`, `mask` or
 * `brush` is null; GXResultEngineError: "Painting has not begun", "Unsupported soft mask type.", "Not enough memory".
 * GXResultUnexpectedError when the C++ allocator fails. */
GX_API GXResult GXRenderTargetFillMask(GXRenderTarget renderTarget, GXBitmap mask, GXBrush brush,
                                       const GXRect* destination, uint32_t interpolation) GX_NOEXCEPT;

/** Replaces every colour channel c in a rectangle, put on whole pixels, by 255 - c. Alpha stays; doing it twice
 * restores the pixels exactly. In a group, whose colours are premultiplied, c becomes alpha - c.
 * GXResultInvalidArgument when an argument is null. GXResultEngineError: "Painting has not begun", "Not enough memory".
 */
GX_API GXResult GXRenderTargetInvertRect(GXRenderTarget renderTarget, const GXRect* rect) GX_NOEXCEPT;

/** Replaces every colour channel c by 255 - c along a line one device pixel wide. Alpha stays; doing it twice
 * restores the pixels exactly. GXResultInvalidArgument when an argument is null. GXResultEngineError: "Painting has
 * not begun", "Not enough memory". */
GX_API GXResult GXRenderTargetInvertLine(GXRenderTarget renderTarget, const GXPoint* start,
                                         const GXPoint* end) GX_NOEXCEPT;

/** Paints UTF-16 text, one glyph for each code unit, with its baseline starting at the origin of user space; each glyph
 * moves the origin on by its advance, a whole number of user units. The matrix is as before afterwards, also on
 * failure. GXResultInvalidArgument when an argument is null. GXResultEngineError: "Painting has not begun",
 * "Unsupported soft mask type.", "Not enough memory". GXResultUnexpectedError when the C++ allocator fails. */
GX_API GXResult GXRenderTargetFillText(GXRenderTarget renderTarget, GXFontFace fontFace, const uint16_t* text,
                                       GXBrush brush) GX_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
