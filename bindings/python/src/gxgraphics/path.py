# SPDX-License-Identifier: MIT
"""Paths: the library's geometries."""
from typing import Any, Optional, Tuple

import numpy as np

from ._native import ffi, lib
from ._object import NULL, Object, c_point, c_rect, handle_of
from .arrays import c_points, pointer_to
from .errors import check
from .values import Combine, FillRule, MatrixLike, Point, PointLike, Rect, RectLike
from .values import StrokeStyle, c_matrix, c_style


class Path(Object):
    """Figures of lines and cubic curves with a fill rule. Figures can be added, not taken away.

    What adds returns the path, so that calls can be chained:

        Path().move_to((0, 0)).line_to((10, 0)).line_to((5, 8)).close()

    A finished path may be used by several threads at once; one under construction belongs to one
    thread.
    """

    __slots__ = ()
    _kind = "GXGeometry"

    def __init__(self, fill_rule: FillRule = FillRule.NON_ZERO) -> None:
        """Makes an empty path."""
        out = ffi.new("GXGeometry *")
        check(lib.GXCreateGeometry(out), "GXCreateGeometry")
        self._own(out[0])
        if fill_rule:
            self.fill_rule = fill_rule

    # Figures, point by point

    def move_to(self, point: PointLike) -> "Path":
        """Starts a figure; an open one is ended first."""
        x, y = point
        check(lib.GXGeometryBeginFigure(self._handle, [(x, y)]), "GXGeometryBeginFigure")
        return self

    def line_to(self, point: PointLike) -> "Path":
        """Adds a line from the current point. Ignored without a figure."""
        x, y = point
        check(lib.GXGeometryLineTo(self._handle, [(x, y)]), "GXGeometryLineTo")
        return self

    def curve_to(self, control1: PointLike, control2: PointLike, point: PointLike) -> "Path":
        """Adds a cubic curve from the current point. Ignored without a figure."""
        result = lib.GXGeometryCubicCurveTo(
            self._handle, c_point(control1), c_point(control2), c_point(point)
        )
        check(result, "GXGeometryCubicCurveTo")
        return self

    def conic_to(self, control2: PointLike, point: PointLike) -> "Path":
        """Adds a cubic curve whose first control point is the current point.

        Ignored without a figure.
        """
        result = lib.GXGeometryConicCurveTo(self._handle, c_point(control2), c_point(point))
        check(result, "GXGeometryConicCurveTo")
        return self

    def end(self) -> "Path":
        """Finishes the figure and leaves it open: a stroke gets caps at its ends."""
        check(lib.GXGeometryEndFigure(self._handle), "GXGeometryEndFigure")
        return self

    def close(self) -> "Path":
        """Finishes the figure and closes it with a line to its start."""
        check(lib.GXGeometryEndFigureClose(self._handle), "GXGeometryEndFigureClose")
        return self

    # Whole figures

    def rect(self, rect: RectLike) -> "Path":
        """Adds a rectangle."""
        check(lib.GXGeometryRectangle(self._handle, c_rect(rect)), "GXGeometryRectangle")
        return self

    def ellipse(self, bounds: RectLike) -> "Path":
        """Adds the ellipse in a rectangle; nothing when its width or height is 0."""
        check(lib.GXGeometryEllipse(self._handle, c_rect(bounds)), "GXGeometryEllipse")
        return self

    def circle(self, center: PointLike, radius: float) -> "Path":
        """Adds a circle."""
        x, y = center
        return self.ellipse((x - radius, y - radius, x + radius, y + radius))

    def round_rect(
        self, rect: RectLike, radius_x: float, radius_y: Optional[float] = None
    ) -> "Path":
        """Adds a rectangle whose corners are quarter ellipses."""
        down = radius_x if radius_y is None else radius_y
        result = lib.GXGeometryRoundRectangle(self._handle, c_rect(rect), radius_x, down)
        check(result, "GXGeometryRoundRectangle")
        return self

    # Whole arrays in one call

    def polyline(
        self, points: Any, y: Any = None, *, close: bool = False, gaps: bool = False
    ) -> "Path":
        """Adds a figure of lines through all points: an n x 2 array, or arrays of x and y.

        Arrays of float32 and float64 are read where they lie, whatever their strides. With `gaps`
        points that are not finite split the line; without, they make the library leave the whole
        figure out.
        """
        return self._polylines(points, y, np.zeros(1, np.int64), close, gaps)

    def polylines(
        self,
        points: Any,
        starts: Any,
        y: Any = None,
        *,
        close: bool = False,
        gaps: bool = False,
    ) -> "Path":
        """Adds many figures of lines at once: figure i holds the points from starts[i] up to
        starts[i + 1]."""
        first = np.asarray(starts)
        if first.ndim != 1 or (first.size and first.dtype.kind not in "iu"):
            raise TypeError("starts: an array of whole numbers")
        return self._polylines(points, y, first, close, gaps)

    def _polylines(
        self, points: Any, y: Any, starts: np.ndarray, close: bool, gaps: bool
    ) -> "Path":
        record, count, keep = c_points(points, y)
        first = np.array(starts, dtype=np.int64)
        if first.size and (first[0] < 0 or first[-1] > count or (np.diff(first) < 0).any()):
            raise ValueError(f"starts rise from 0 or more to at most {count}")
        flags = (lib.GXPY_CLOSE if close else 0) | (lib.GXPY_GAPS if gaps else 0)
        pointer = pointer_to(first, "int64_t *")
        result = lib.gxpy_polylines(self._handle, record, pointer, first.size, flags)
        check(result, "GXGeometryLineTo")
        return self

    def curves(self, points: Any, y: Any = None, *, close: bool = False) -> "Path":
        """Adds a figure of cubic curves: its start, then two control points and an end for each
        (3 n + 1 points)."""
        record, count, keep = c_points(points, y)
        if count % 3 != 1:
            raise ValueError(f"curves are 3 n + 1 points, not {count}")
        result = lib.gxpy_curves(self._handle, record, lib.GXPY_CLOSE if close else 0)
        check(result, "GXGeometryCubicCurveTo")
        return self

    def rects(self, rects: Any) -> "Path":
        """Adds many rectangles: an n x 4 array of left, top, right, bottom."""
        return self._rectangles(rects, False)

    def ellipses(self, bounds: Any) -> "Path":
        """Adds the ellipses in many rectangles: an n x 4 array."""
        return self._rectangles(bounds, True)

    def _rectangles(self, rects: Any, ellipses: bool) -> "Path":
        array = np.ascontiguousarray(rects, dtype=np.float32)
        if array.size == 0:
            return self
        if array.ndim != 2 or array.shape[1] != 4:
            raise ValueError(f"rectangles are an array of n x 4, not of shape {array.shape}")
        pointer = pointer_to(array, "float *")
        result = lib.gxpy_rectangles(self._handle, pointer, len(array), ellipses)
        check(result, "GXGeometryEllipse" if ellipses else "GXGeometryRectangle")
        return self

    @classmethod
    def from_arrays(
        cls, verbs: Any, points: Any, fill_rule: FillRule = FillRule.NON_ZERO
    ) -> "Path":
        """Makes a path of verbs and points, as to_arrays() gives them.

        `verbs` is bytes or an array of uint8 with the letters M (begin), L (line), C (curve, three
        points), E (end) and Z (close); `points` is n x 2.
        """
        letters = np.frombuffer(verbs, np.uint8) if isinstance(verbs, bytes) else np.asarray(verbs)
        if letters.dtype != np.uint8 or letters.ndim != 1:
            raise TypeError("verbs: bytes or an array of uint8")
        letters = np.ascontiguousarray(letters)
        taken = np.bincount(letters, minlength=256)
        if taken.sum() != sum(taken[ord(letter)] for letter in "MLCEZ"):
            raise ValueError("verbs are the letters M, L, C, E and Z")
        needed = int(taken[ord("M")] + taken[ord("L")] + 3 * taken[ord("C")])
        record, count, keep = c_points(points)
        if needed != count:
            raise ValueError(f"the verbs take {needed} points, there are {count}")
        path = cls(fill_rule)
        pointer = pointer_to(letters, "char *")
        check(lib.gxpy_figures(path._handle, pointer, letters.size, record), "GXGeometryLineTo")
        return path

    def to_arrays(self) -> Tuple[np.ndarray, np.ndarray]:
        """The finished figures: an array of verbs (uint8) and an n x 2 array of points
        (float32)."""
        outline = ffi.new("gxpy_outline *")
        check(lib.gxpy_read_outline(self._handle, outline), "GXGeometrySendToSink")
        verbs = np.empty(outline.verbCount, np.uint8)
        points = np.empty((outline.pointCount, 2), np.float32)
        outline.verbs = pointer_to(verbs, "char *")
        outline.points = pointer_to(points, "float *")
        check(lib.gxpy_read_outline(self._handle, outline), "GXGeometrySendToSink")
        return verbs, points

    # Questions

    @property
    def fill_rule(self) -> FillRule:
        """Which points are inside; may be set."""
        out = ffi.new("GXFillRule *")
        check(lib.GXGeometryGetFillRule(self._handle, out), "GXGeometryGetFillRule")
        # Any value but 0 acts as even-odd.
        return FillRule.EVEN_ODD if out[0] else FillRule.NON_ZERO

    @fill_rule.setter
    def fill_rule(self, rule: FillRule) -> None:
        check(lib.GXGeometrySetFillRule(self._handle, rule), "GXGeometrySetFillRule")

    @property
    def empty(self) -> bool:
        """Whether there is no finished figure."""
        out = ffi.new("uint8_t *")
        check(lib.GXGeometryEmpty(self._handle, out), "GXGeometryEmpty")
        return bool(out[0])

    @property
    def current_point(self) -> Optional[Point]:
        """The last point of the figure under construction, else of the last one.

        None without a figure.
        """
        out = ffi.new("GXPoint *")
        result = lib.GXGeometryGetCurrentPoint(self._handle, out)
        if result == lib.GXResultFalse:
            return None
        check(result, "GXGeometryGetCurrentPoint")
        return Point(out.x, out.y)

    def bounds(self, matrix: Optional[MatrixLike] = None) -> Rect:
        """The box around every point ever passed in.

        With a matrix, the box around that one's mapped corners.
        """
        out = ffi.new("GXRect *")
        place = NULL if matrix is None else c_matrix(matrix)
        check(lib.GXGeometryGetBound(self._handle, place, out), "GXGeometryGetBound")
        return Rect(out.left, out.top, out.right, out.bottom)

    def same_points(self, other: "Path") -> bool:
        """Whether both have the same finished figures, point for point, and the same fill rule."""
        out = ffi.new("uint8_t *")
        result = lib.GXGeometryPointsEqual(self._handle, handle_of(other, Path), out)
        check(result, "GXGeometryPointsEqual")
        return bool(out[0])

    def hit_test(
        self, point: PointLike, matrix: Optional[MatrixLike] = None, tolerance: float = 0.0
    ) -> bool:
        """Whether a point is inside the path, mapped by the matrix, or within `tolerance` of its
        outline."""
        out = ffi.new("uint8_t *")
        place = NULL if matrix is None else c_matrix(matrix)
        result = lib.GXGeometryHitTest(self._handle, c_point(point), place, tolerance, out)
        check(result, "GXGeometryHitTest")
        return bool(out[0])

    def hit_tests(
        self,
        points: Any,
        y: Any = None,
        *,
        matrix: Optional[MatrixLike] = None,
        tolerance: float = 0.0,
    ) -> np.ndarray:
        """hit_test() for each point of an array: an array of bool."""
        record, count, keep = c_points(points, y)
        hits = np.empty(count, np.uint8)
        place = NULL if matrix is None else c_matrix(matrix)
        pointer = pointer_to(hits, "uint8_t *")
        result = lib.gxpy_hit_tests(self._handle, record, place, tolerance, pointer)
        check(result, "GXGeometryHitTest")
        return hits.astype(bool)

    # New paths

    def copy(self) -> "Path":
        """A new path with the same finished figures and fill rule."""
        out = ffi.new("GXGeometry *")
        check(lib.GXGeometryCopy(self._handle, out), "GXGeometryCopy")
        return Path._owning(out[0])

    __copy__ = copy

    def transform(self, matrix: MatrixLike) -> "Path":
        """A new path with every point mapped."""
        out = ffi.new("GXGeometry *")
        result = lib.GXGeometryTransform(self._handle, c_matrix(matrix), out)
        check(result, "GXGeometryTransform")
        return Path._owning(out[0])

    def widen(self, width: float, style: Optional[StrokeStyle] = None) -> "Path":
        """A new path: the outline of this one's stroke."""
        out = ffi.new("GXGeometry *")
        check(lib.GXGeometryWiden(self._handle, width, c_style(style), out), "GXGeometryWiden")
        return Path._owning(out[0])

    def combine(self, other: "Path", mode: Combine, tolerance: float = 0.25) -> "Path":
        """A new path from the areas of this one and another.

        Curves are flattened to within `tolerance`.
        """
        out = ffi.new("GXGeometry *")
        result = lib.GXGeometryCombine(self._handle, handle_of(other, Path), mode, tolerance, out)
        check(result, "GXGeometryCombine")
        return Path._owning(out[0])

    def __and__(self, other: "Path") -> "Path":
        return self.combine(other, Combine.INTERSECTION)

    def __or__(self, other: "Path") -> "Path":
        return self.combine(other, Combine.UNION)

    def __xor__(self, other: "Path") -> "Path":
        return self.combine(other, Combine.EXCLUSIVE_OR)

    def __sub__(self, other: "Path") -> "Path":
        return self.combine(other, Combine.DIFFERENCE)

    def __repr__(self) -> str:
        return f"<Path {'empty' if self.empty else tuple(self.bounds())}>"
