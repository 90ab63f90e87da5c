// SPDX-License-Identifier: MIT
// The geometry family of the C interface.
#include "Arguments.h"
#include "Boolean/Boolean.h"
#include "Boolean/HitTester.h"
#include "Geometry/Figures.h"
#include "Geometry/Geometry.h"
#include "Geometry/GeometrySinkAdapter.h"
#include "Guard.h"
#include "Handles.h"

using namespace Graphics;

extern "C" {

GXResult GXCreateGeometry(GXGeometry* out) GX_NOEXCEPT {
    if (AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [] { return std::make_shared<Geometry>(); });
}

GXResult GXGeometrySetFillRule(GXGeometry geometry, GXFillRule fillRule) GX_NOEXCEPT {
    if (AnyNull(geometry)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { geometry->object->SetFillRule(fillRule); });
}

GXResult GXGeometryGetFillRule(GXGeometry geometry, GXFillRule* out) GX_NOEXCEPT {
    if (AnyNull(geometry, out)) {
        return GXResultInvalidArgument;
    }
    *out = geometry->object->FillRule();
    return GXResultSuccess;
}

GXResult GXGeometryEmpty(GXGeometry geometry, uint8_t* out) GX_NOEXCEPT {
    if (AnyNull(geometry, out)) {
        return GXResultInvalidArgument;
    }
    *out = geometry->object->Empty() ? 1 : 0;
    return GXResultSuccess;
}

GXResult GXGeometryPointsEqual(GXGeometry geometry, GXGeometry other, uint8_t* out) GX_NOEXCEPT {
    if (AnyNull(geometry, other) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    *out = geometry->object->Equals(*other->object) ? 1 : 0;
    return GXResultSuccess;
}

GXResult GXGeometryGetCurrentPoint(GXGeometry geometry, GXPoint* out) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return geometry->object->CurrentPoint(*out) ? GXResultSuccess : GXResultFalse;
}

GXResult GXGeometryGetBound(GXGeometry geometry, const GXMatrix* matrix, GXRect* out) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    *out = geometry->object->Bounds().Box(matrix != nullptr ? *matrix : kIdentity);
    return GXResultSuccess;
}

GXResult GXGeometryBeginFigure(GXGeometry geometry, const GXPoint* point) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(point)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { geometry->object->BeginFigure(Given(point)); });
}

GXResult GXGeometryEndFigure(GXGeometry geometry) GX_NOEXCEPT {
    if (AnyNull(geometry)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { geometry->object->EndFigure(); });
}

GXResult GXGeometryEndFigureClose(GXGeometry geometry) GX_NOEXCEPT {
    if (AnyNull(geometry)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { geometry->object->EndFigureClose(); });
}

GXResult GXGeometryLineTo(GXGeometry geometry, const GXPoint* point) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(point)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { geometry->object->LineTo(Given(point)); });
}

GXResult GXGeometryConicCurveTo(GXGeometry geometry, const GXPoint* c2, const GXPoint* end) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(c2, end)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { geometry->object->ConicTo(Given(c2), Given(end)); });
}

GXResult GXGeometryCubicCurveTo(GXGeometry geometry, const GXPoint* c1, const GXPoint* c2,
                                const GXPoint* end) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(c1, c2, end)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { geometry->object->CubicTo(Given(c1), Given(c2), Given(end)); });
}

GXResult GXGeometryRectangle(GXGeometry geometry, const GXRect* rect) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(rect)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { geometry->object->AddClosed([&](auto& sink) { AddRectangle(sink, *rect); }); });
}

GXResult GXGeometryEllipse(GXGeometry geometry, const GXRect* rect) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(rect)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { geometry->object->AddClosed([&](auto& sink) { AddEllipse(sink, *rect); }); });
}

GXResult GXGeometryRoundRectangle(GXGeometry geometry, const GXRect* rect, float radiusX, float radiusY) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(rect)) {
        return GXResultInvalidArgument;
    }
    return Guard(
        [&] { geometry->object->AddClosed([&](auto& sink) { AddRoundRectangle(sink, *rect, radiusX, radiusY); }); });
}

GXResult GXGeometryCopy(GXGeometry geometry, GXGeometry* out) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return geometry->object->Copy(); });
}

GXResult GXGeometrySendToSink(GXGeometry geometry, const GXGeometrySinkCallbacks* callbacks) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(callbacks)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] {
        const Shape shape = *geometry->object; // a copy, since the callbacks may extend or release the geometry
        GeometrySinkAdapter adapter(*callbacks);
        shape.Replay(adapter);
    });
}

GXResult GXGeometryTransform(GXGeometry geometry, const GXMatrix* matrix, GXGeometry* out) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return geometry->object->Transform(matrix != nullptr ? *matrix : kIdentity); });
}

GXResult GXGeometryWiden(GXGeometry geometry, float width, const GXStrokeStyle* style, GXGeometry* out) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(out) || !(width >= 0.0F)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return geometry->object->Widen(width, StrokeStyle(style)); });
}

GXResult GXGeometryCombine(GXGeometry a, GXGeometry b, uint32_t mode, float tolerance, GXGeometry* out) GX_NOEXCEPT {
    if (AnyNull(a, b) || AnyNull(out) || mode > GXCombineDifference) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] {
        auto result = std::make_shared<Geometry>();
        Boolean::Combine(*a->object, *b->object, mode, tolerance, *result);
        return result;
    });
}

GXResult GXGeometryHitTest(GXGeometry geometry, const GXPoint* point, const GXMatrix* matrix, float tolerance,
                           uint8_t* out) GX_NOEXCEPT {
    if (AnyNull(geometry) || AnyNull(point) || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Guard([&] {
        const Matrix& m = matrix != nullptr ? *matrix : kIdentity;
        *out = HitTester::Test(*geometry->object, *point, m, tolerance) ? 1 : 0;
    });
}

} // extern "C"
