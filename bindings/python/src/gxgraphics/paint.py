# SPDX-License-Identifier: MIT
"""Brushes and gradients."""
from functools import lru_cache
from typing import Any, Optional, Tuple, Union

import numpy as np

from ._native import ffi, lib
from ._object import NULL, Object, handle_of
from .arrays import c_points
from .bitmap import Bitmap
from .colors import ColorLike, argb, channels
from .errors import check
from .values import Extend, Interpolation, MatrixLike, PointLike, c_matrix

_VERTEX = np.dtype([("x", np.float32), ("y", np.float32), ("color", np.uint32)])


def _stops(stops: Any) -> Tuple[Any, int]:
    records = [(float(offset), argb(color)) for offset, color in stops]
    return ffi.new("GXGradientStop[]", records), len(records)


def _both(flags: Union[bool, Tuple[bool, bool]]) -> Tuple[bool, bool]:
    start, end = flags if isinstance(flags, tuple) else (flags, flags)
    return bool(start), bool(end)


class Gradient(Object):
    """A linear or radial gradient or a mesh of coloured triangles; immutable.

    Made by linear(), radial(), mesh().
    """

    __slots__ = ()
    _kind = "GXGradient"

    def __init__(self) -> None:
        raise TypeError("made by Gradient.linear, Gradient.radial or Gradient.mesh")

    @classmethod
    def linear(
        cls,
        start: PointLike,
        end: PointLike,
        stops: Any,
        extend: Union[bool, Tuple[bool, bool]] = True,
        background: ColorLike = 0,
    ) -> "Gradient":
        """A gradient along a line. `stops` are pairs of an offset from 0 to 1 and a colour.

        `extend` (for both ends, or each) carries the end colours on; elsewhere `background` shows.
        """
        records, count = _stops(stops)
        (x0, y0), (x1, y1) = start, end
        out = ffi.new("GXGradient *")
        desc = [(records, count, (x0, y0), (x1, y1), *_both(extend), argb(background))]
        check(lib.GXCreateGradientLinear(desc, out), "GXCreateGradientLinear")
        return cls._owning(out[0])

    @classmethod
    def radial(
        cls,
        center: PointLike,
        radius: float,
        stops: Any,
        start_center: Optional[PointLike] = None,
        start_radius: float = 0.0,
        extend: Union[bool, Tuple[bool, bool]] = True,
        background: ColorLike = 0,
    ) -> "Gradient":
        """A gradient from a start circle, by default the centre alone, to the circle around
        `center`."""
        records, count = _stops(stops)
        x1, y1 = center
        x0, y0 = center if start_center is None else start_center
        out = ffi.new("GXGradient *")
        desc = [
            (
                records,
                count,
                (x0, y0),
                start_radius,
                (x1, y1),
                radius,
                *_both(extend),
                argb(background),
            )
        ]
        check(lib.GXCreateGradientRadial(desc, out), "GXCreateGradientRadial")
        return cls._owning(out[0])

    @classmethod
    def mesh(cls, points: Any, colors: Any, background: ColorLike = 0) -> "Gradient":
        """Triangles of three consecutive corners: an n x 2 array of points, n packed colours (an
        array or a sequence)."""
        _, count, (xs, ys) = c_points(points)
        if not isinstance(colors, np.ndarray):
            colors = np.array([argb(color) for color in colors], dtype=np.uint32)
        if colors.shape != (count,) or colors.dtype.kind not in "iu":
            raise ValueError(f"one packed colour for each point: {count}, not {colors.shape}")
        vertices = np.empty(count, _VERTEX)
        vertices["x"], vertices["y"], vertices["color"] = xs, ys, colors
        out = ffi.new("GXGradient *")
        memory = ffi.from_buffer("GXTriMeshVertex[]", vertices)
        result = lib.GXCreateGradientTriMesh(memory, count, argb(background), out)
        check(result, "GXCreateGradientTriMesh")
        return cls._owning(out[0])


class Brush(Object):
    """What covered pixels are painted with; immutable.

    Where a brush is wanted, a colour or a Gradient does, too.
    """

    __slots__ = ()
    _kind = "GXBrush"

    def __init__(self, color: ColorLike) -> None:
        """Makes a brush of one colour."""
        out = ffi.new("GXBrush *")
        if isinstance(color, (int, np.integer, str)):
            check(lib.GXCreateBrushSolidARGB(argb(color), out), "GXCreateBrushSolidARGB")
        else:
            check(lib.GXCreateBrushSolid([channels(color)], out), "GXCreateBrushSolid")
        self._own(out[0])

    @classmethod
    def bitmap(
        cls,
        bitmap: Bitmap,
        opacity: float = 1.0,
        interpolation: Interpolation = Interpolation.LINEAR,
        extend: Union[Extend, Tuple[Extend, Extend]] = Extend.CLAMP,
        matrix: Optional[MatrixLike] = None,
    ) -> "Brush":
        """Makes a brush of a bitmap, which it shares.

        `extend` is for both directions, or for x and y.

        `matrix` maps brush space, in which a pixel is one unit, to user units.
        """
        across, down = extend if isinstance(extend, tuple) else (extend, extend)
        out = ffi.new("GXBrush *")
        place = NULL if matrix is None else c_matrix(matrix)
        options = [(interpolation, across, down)]
        result = lib.GXCreateBrushBitmap(handle_of(bitmap, Bitmap), opacity, options, place, out)
        check(result, "GXCreateBrushBitmap")
        return cls._owning(out[0])

    @classmethod
    def gradient(
        cls, gradient: Gradient, opacity: float = 1.0, matrix: Optional[MatrixLike] = None
    ) -> "Brush":
        """Makes a brush of a gradient; `matrix` maps gradient space to user units."""
        out = ffi.new("GXBrush *")
        place = NULL if matrix is None else c_matrix(matrix)
        result = lib.GXCreateBrushGradient(handle_of(gradient, Gradient), opacity, place, out)
        check(result, "GXCreateBrushGradient")
        return cls._owning(out[0])


#: A Brush, a colour, or a Gradient.
BrushLike = Union[Brush, Gradient, ColorLike]


@lru_cache(maxsize=128, typed=True)
def _solid(color: Any) -> Brush:
    return Brush(color)


def made_brush(brush: Any) -> Brush:
    """A brush from whatever stands for one. The caller holds it until its call is done."""
    if isinstance(brush, Brush):
        return brush
    if isinstance(brush, Gradient):
        return Brush.gradient(brush)
    if isinstance(brush, (int, str)):
        return _solid(brush)
    if isinstance(brush, (tuple, list, np.ndarray, np.integer)):
        return Brush(brush)  # type: ignore[arg-type]
    raise TypeError(f"a Brush, a Gradient or a colour, not {type(brush).__name__}")
