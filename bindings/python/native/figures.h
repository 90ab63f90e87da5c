// SPDX-License-Identifier: MIT
// Geometries from and to arrays: the loops over the points, so that no Python code runs for each of them.
#ifndef GXPY_FIGURES_H
#define GXPY_FIGURES_H

#include <GX/GX.h>

// Points as two columns of an array: the first byte of each and the bytes from one entry to the next, which may be
// negative. Entries are double where `doubles` is not 0, else float, of any alignment.
typedef struct {
    const char *x, *y;
    ptrdiff_t stepX, stepY;
    size_t count;
    int doubles;
} gxpy_points;

enum { GXPY_CLOSE = 1, GXPY_GAPS = 2 };

// Figures of lines. Figure i holds the points from starts[i] up to the start of the next one, or to the end; `starts`
// rises from 0 or more to at most the number of points. GXPY_CLOSE closes each, with GXPY_GAPS a point that is not
// finite ends a figure and the next one that is begins a new one, which is then left open.
GXResult gxpy_polylines(GXGeometry geometry, const gxpy_points* points, const int64_t* starts, size_t figures,
                        int flags);

// A figure of cubic curves: its start, then two control points and an end for each; what is left over is not read.
GXResult gxpy_curves(GXGeometry geometry, const gxpy_points* points, int flags);

// Figures by verbs: 'M' begins one, 'L' is a line, 'C' a curve of three points, 'E' ends a figure open, 'Z' closes it.
// The caller has counted the points.
GXResult gxpy_figures(GXGeometry geometry, const char* verbs, size_t count, const gxpy_points* points);

// `count` rectangles, four floats each; as rectangles or as the ellipses in them.
GXResult gxpy_rectangles(GXGeometry geometry, const float* rects, size_t count, int ellipses);

// The finished figures as verbs and points. The first call counts, with null arrays; the second one fills arrays of
// that many entries, and nothing beyond them.
typedef struct {
    char* verbs;
    float* points;
    size_t verbCount, pointCount;
} gxpy_outline;
GXResult gxpy_read_outline(GXGeometry geometry, gxpy_outline* outline);

// GXGeometryHitTest for each point.
GXResult gxpy_hit_tests(GXGeometry geometry, const gxpy_points* points, const GXMatrix* matrix, float tolerance,
                        uint8_t* hits);

#endif
