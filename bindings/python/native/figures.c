// SPDX-License-Identifier: MIT
#include "figures.h"

#include <math.h>
#include <string.h>

static float Coordinate(const char* at, int doubles) {
    float value;
    if (doubles) {
        double wide;
        memcpy(&wide, at, sizeof wide);
        value = (float)wide;
    } else {
        memcpy(&value, at, sizeof value);
    }
    return value;
}

static GXPoint PointAt(const gxpy_points* points, size_t index) {
    const GXPoint point = {Coordinate(points->x + (ptrdiff_t)index * points->stepX, points->doubles),
                           Coordinate(points->y + (ptrdiff_t)index * points->stepY, points->doubles)};
    return point;
}

static GXResult Polyline(GXGeometry geometry, const gxpy_points* points, size_t first, size_t end, int flags) {
    GXResult result = GXResultSuccess;
    int open = 0, gaps = 0;
    for (size_t i = first; i < end && result == GXResultSuccess; ++i) {
        const GXPoint point = PointAt(points, i);
        if ((flags & GXPY_GAPS) && !(isfinite(point.x) && isfinite(point.y))) {
            gaps = 1;
            if (open) {
                open = 0;
                result = GXGeometryEndFigure(geometry);
            }
        } else if (open) {
            result = GXGeometryLineTo(geometry, &point);
        } else {
            open = 1;
            result = GXGeometryBeginFigure(geometry, &point);
        }
    }
    if (open && result == GXResultSuccess) {
        const int close = (flags & GXPY_CLOSE) && !gaps;
        result = close ? GXGeometryEndFigureClose(geometry) : GXGeometryEndFigure(geometry);
    }
    return result;
}

GXResult gxpy_polylines(GXGeometry geometry, const gxpy_points* points, const int64_t* starts, size_t figures,
                        int flags) {
    GXResult result = GXResultSuccess;
    for (size_t i = 0; i < figures && result == GXResultSuccess; ++i) {
        const size_t end = i + 1 < figures ? (size_t)starts[i + 1] : points->count;
        result = Polyline(geometry, points, (size_t)starts[i], end, flags);
    }
    return result;
}

GXResult gxpy_curves(GXGeometry geometry, const gxpy_points* points, int flags) {
    if (points->count == 0) {
        return GXResultSuccess;
    }
    const GXPoint start = PointAt(points, 0);
    GXResult result = GXGeometryBeginFigure(geometry, &start);
    for (size_t i = 1; i + 2 < points->count && result == GXResultSuccess; i += 3) {
        const GXPoint control1 = PointAt(points, i), control2 = PointAt(points, i + 1), to = PointAt(points, i + 2);
        result = GXGeometryCubicCurveTo(geometry, &control1, &control2, &to);
    }
    if (result == GXResultSuccess) {
        result = (flags & GXPY_CLOSE) ? GXGeometryEndFigureClose(geometry) : GXGeometryEndFigure(geometry);
    }
    return result;
}

GXResult gxpy_figures(GXGeometry geometry, const char* verbs, size_t count, const gxpy_points* points) {
    GXResult result = GXResultSuccess;
    size_t next = 0;
    for (size_t i = 0; i < count && result == GXResultSuccess; ++i) {
        GXPoint p[3];
        const size_t needed = verbs[i] == 'C' ? 3 : verbs[i] == 'M' || verbs[i] == 'L' ? 1 : 0;
        if (needed > points->count - next) {
            return GXResultInvalidArgument;
        }
        for (size_t k = 0; k < needed; ++k) {
            p[k] = PointAt(points, next++);
        }
        switch (verbs[i]) {
        case 'M':
            result = GXGeometryBeginFigure(geometry, p);
            break;
        case 'L':
            result = GXGeometryLineTo(geometry, p);
            break;
        case 'C':
            result = GXGeometryCubicCurveTo(geometry, p, p + 1, p + 2);
            break;
        case 'E':
            result = GXGeometryEndFigure(geometry);
            break;
        case 'Z':
            result = GXGeometryEndFigureClose(geometry);
            break;
        default:
            return GXResultInvalidArgument;
        }
    }
    return result;
}

GXResult gxpy_rectangles(GXGeometry geometry, const float* rects, size_t count, int ellipses) {
    GXResult result = GXResultSuccess;
    for (size_t i = 0; i < count && result == GXResultSuccess; ++i) {
        const GXRect rect = {rects[4 * i], rects[4 * i + 1], rects[4 * i + 2], rects[4 * i + 3]};
        result = ellipses ? GXGeometryEllipse(geometry, &rect) : GXGeometryRectangle(geometry, &rect);
    }
    return result;
}

// Where the next verb and point go, and how many there is room for.
typedef struct {
    gxpy_outline* outline;
    size_t verbRoom, pointRoom;
} Writer;

static void PutVerb(Writer* writer, char verb) {
    gxpy_outline* const outline = writer->outline;
    if (outline->verbCount < writer->verbRoom) {
        outline->verbs[outline->verbCount] = verb;
    }
    ++outline->verbCount;
}

static void PutPoint(Writer* writer, const GXPoint* point) {
    gxpy_outline* const outline = writer->outline;
    if (outline->pointCount < writer->pointRoom) {
        outline->points[2 * outline->pointCount] = point->x;
        outline->points[2 * outline->pointCount + 1] = point->y;
    }
    ++outline->pointCount;
}

static void OnFillRule(void* context, uint32_t rule) {
    (void)context;
    (void)rule;
}

static void OnBegin(void* context, const GXPoint* point) {
    PutVerb(context, 'M');
    PutPoint(context, point);
}

static void OnEnd(void* context) { PutVerb(context, 'E'); }

static void OnClose(void* context) { PutVerb(context, 'Z'); }

static void OnLine(void* context, const GXPoint* point) {
    PutVerb(context, 'L');
    PutPoint(context, point);
}

static void OnCurve(void* context, const GXPoint* control1, const GXPoint* control2, const GXPoint* end) {
    PutVerb(context, 'C');
    PutPoint(context, control1);
    PutPoint(context, control2);
    PutPoint(context, end);
}

GXResult gxpy_read_outline(GXGeometry geometry, gxpy_outline* outline) {
    Writer writer = {outline, outline->verbs ? outline->verbCount : 0, outline->points ? outline->pointCount : 0};
    const GXGeometrySinkCallbacks callbacks = {&writer, OnFillRule, OnBegin, OnEnd, OnClose, OnLine, OnCurve};
    outline->verbCount = outline->pointCount = 0;
    return GXGeometrySendToSink(geometry, &callbacks);
}

GXResult gxpy_hit_tests(GXGeometry geometry, const gxpy_points* points, const GXMatrix* matrix, float tolerance,
                        uint8_t* hits) {
    GXResult result = GXResultSuccess;
    for (size_t i = 0; i < points->count && result == GXResultSuccess; ++i) {
        const GXPoint point = PointAt(points, i);
        result = GXGeometryHitTest(geometry, &point, matrix, tolerance, &hits[i]);
    }
    return result;
}
