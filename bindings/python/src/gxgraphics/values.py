# SPDX-License-Identifier: MIT
"""Plain values: enumerations, points, rectangles, matrices, stroke styles."""
import enum
import math
from dataclasses import dataclass, field
from typing import Any, NamedTuple, Sequence, Tuple, Union

import numpy as np

from ._native import ffi, lib

#: Two numbers: a tuple, a list, a Point or an array of that shape.
PointLike = Union[Sequence[float], np.ndarray]
#: Four numbers: left, top, right, bottom.
RectLike = Union[Sequence[float], np.ndarray]
#: Six numbers in the order of Matrix, or a 2 x 3 or 3 x 3 array that maps columns.
MatrixLike = Union[Sequence[float], np.ndarray]


class PixelFormat(enum.IntEnum):
    """How one pixel is stored. Targets draw into PBGRA32 and BGRX32."""

    BGR24 = lib.GXPixelFormatBGR24
    PBGRA32 = lib.GXPixelFormatPBGRA32
    BGRA32 = lib.GXPixelFormatBGRA32
    BGRX32 = lib.GXPixelFormatBGRX32
    ALPHA8 = lib.GXPixelFormatAlpha8
    INDEXED8 = lib.GXPixelFormatIndexed8
    GRAY8 = lib.GXPixelFormatGray8
    ALPHA1 = lib.GXPixelFormatAlpha1
    INDEXED1 = lib.GXPixelFormatIndexed1
    BLACK_WHITE1 = lib.GXPixelFormatBlackWhite1

    @property
    def bits(self) -> int:
        """The bits of a pixel."""
        return _BITS[self]

    def row_bytes(self, width: int) -> int:
        """The bytes of `width` pixels in a row, without padding."""
        return (width * _BITS[self] + 7) // 8


_BITS = {
    PixelFormat.BGR24: 24,
    PixelFormat.PBGRA32: 32,
    PixelFormat.BGRA32: 32,
    PixelFormat.BGRX32: 32,
    PixelFormat.ALPHA8: 8,
    PixelFormat.INDEXED8: 8,
    PixelFormat.GRAY8: 8,
    PixelFormat.ALPHA1: 1,
    PixelFormat.INDEXED1: 1,
    PixelFormat.BLACK_WHITE1: 1,
}


class FillRule(enum.IntEnum):
    """Which points are inside a path."""

    NON_ZERO = lib.GXFillRuleNonZero
    EVEN_ODD = lib.GXFillRuleEvenOdd


class BlendMode(enum.IntEnum):
    """How a source colour meets the backdrop: the modes of ISO 32000-1, 11.3.5."""

    NORMAL = lib.GXBlendModeNormal
    MULTIPLY = lib.GXBlendModeMultiply
    SCREEN = lib.GXBlendModeScreen
    OVERLAY = lib.GXBlendModeOverlay
    DARKEN = lib.GXBlendModeDarken
    LIGHTEN = lib.GXBlendModeLighten
    COLOR_BURN = lib.GXBlendModeColorBurn
    COLOR_DODGE = lib.GXBlendModeColorDodge
    HARD_LIGHT = lib.GXBlendModeHardLight
    SOFT_LIGHT = lib.GXBlendModeSoftLight
    DIFFERENCE = lib.GXBlendModeDifference
    EXCLUSION = lib.GXBlendModeExclusion
    HUE = lib.GXBlendModeHue
    SATURATION = lib.GXBlendModeSaturation
    COLOR = lib.GXBlendModeColor
    LUMINOSITY = lib.GXBlendModeLuminosity


class LineCap(enum.IntEnum):
    """The ends of open figures and dashes."""

    FLAT = lib.GXLineCapFlat
    ROUND = lib.GXLineCapRound
    SQUARE = lib.GXLineCapSquare


class LineJoin(enum.IntEnum):
    """The outer side of a corner."""

    MITER = lib.GXLineJoinMiter
    ROUND = lib.GXLineJoinRound
    BEVEL = lib.GXLineJoinBevel


class Interpolation(enum.IntEnum):
    """How a bitmap is sampled."""

    NEAREST = lib.GXInterpolationNearest
    LINEAR = lib.GXInterpolationLinear
    AVERAGE = lib.GXInterpolationAverage


class Extend(enum.IntEnum):
    """What a bitmap brush shows outside the bitmap."""

    CLAMP = lib.GXExtendClamp
    REPEAT = lib.GXExtendRepeat
    MIRROR = lib.GXExtendMirror


class MaskType(enum.IntEnum):
    """The value that a mask takes from a pixel of its brush."""

    ALPHA = lib.GXMaskTypeAlpha
    INVERSE_ALPHA = lib.GXMaskTypeInverseAlpha
    LUMINOSITY = lib.GXMaskTypeLuminosity
    INVERSE_LUMINOSITY = lib.GXMaskTypeInverseLuminosity


class Combine(enum.IntEnum):
    """Set operations on two paths or regions, a and b."""

    INTERSECTION = lib.GXCombineIntersection
    UNION = lib.GXCombineUnion
    EXCLUSIVE_OR = lib.GXCombineExclusiveOr
    DIFFERENCE = lib.GXCombineDifference


class Point(NamedTuple):
    """A point."""

    x: float
    y: float


class Rect(NamedTuple):
    """A rectangle in user units."""

    left: float
    top: float
    right: float
    bottom: float

    @property
    def width(self) -> float:
        """right - left."""
        return self.right - self.left

    @property
    def height(self) -> float:
        """bottom - top."""
        return self.bottom - self.top


class IntRect(NamedTuple):
    """A rectangle in whole pixels; right and bottom are exclusive."""

    left: int
    top: int
    right: int
    bottom: int

    @property
    def width(self) -> int:
        """right - left."""
        return self.right - self.left

    @property
    def height(self) -> int:
        """bottom - top."""
        return self.bottom - self.top


class Size(NamedTuple):
    """A size in pixels."""

    width: int
    height: int


class Matrix(NamedTuple):
    """An affine map: x' = m00 x + m10 y + m20, y' = m01 x + m11 y + m21.

    `a @ b` maps by b first, as products of 3 x 3 matrices with columns do; `matrix @ points` maps
    an array of points.
    """

    m00: float = 1.0
    m01: float = 0.0
    m10: float = 0.0
    m11: float = 1.0
    m20: float = 0.0
    m21: float = 0.0

    @classmethod
    def of(cls, matrix: MatrixLike) -> "Matrix":
        """A Matrix from six numbers in this order, or from a 2 x 3 or 3 x 3 array that maps
        columns."""
        array = np.asarray(matrix, dtype=np.float64)
        if array.shape == (6,):
            return cls(*array.tolist())
        if array.shape == (3, 3) and (array[2] != (0, 0, 1)).any():
            raise ValueError("the last row of an affine 3 x 3 matrix is 0, 0, 1")
        if array.shape not in ((2, 3), (3, 3)):
            raise ValueError(f"a matrix is 6 numbers or 2 x 3 or 3 x 3, not of shape {array.shape}")
        return cls(*array[:2].T.ravel().tolist())

    @classmethod
    def translation(cls, x: float, y: float) -> "Matrix":
        """A shift."""
        return cls(1, 0, 0, 1, x, y)

    @classmethod
    def scaling(cls, x: float, y: float) -> "Matrix":
        """A scaling about the origin."""
        return cls(x, 0, 0, y, 0, 0)

    @classmethod
    def rotation(cls, radians: float) -> "Matrix":
        """A rotation about the origin; positive angles turn the x axis towards the y axis."""
        c, s = math.cos(radians), math.sin(radians)
        return cls(c, s, -s, c, 0, 0)

    def __matmul__(self, other: Any) -> Any:
        if not isinstance(other, Matrix):
            return self.map(other)
        return Matrix.of(self.to_array() @ other.to_array())

    def map(self, points: Any) -> np.ndarray:
        """Maps points: an array whose last axis is x, y."""
        array = np.asarray(points, dtype=np.float64)
        return array @ self.to_array()[:2, :2].T + (self.m20, self.m21)

    def inverse(self) -> "Matrix":
        """The map back; ValueError where there is none."""
        try:
            return Matrix.of(np.linalg.inv(self.to_array()))
        except np.linalg.LinAlgError:
            raise ValueError("the matrix has no inverse") from None

    def to_array(self) -> np.ndarray:
        """The 3 x 3 array that maps columns x, y, 1."""
        return np.array(
            [[self.m00, self.m10, self.m20], [self.m01, self.m11, self.m21], [0.0, 0.0, 1.0]]
        )


def c_matrix(matrix: MatrixLike) -> Any:
    """A matrix as an argument of the library."""
    if type(matrix) is Matrix:
        return [matrix]
    if type(matrix) is tuple and len(matrix) == 6:
        return [matrix]
    return [Matrix.of(matrix)]


@dataclass(frozen=True)
class StrokeStyle:
    """How a stroke looks: corners, ends, and up to 15 lengths of dash and gap in turn, in user
    units."""

    join: LineJoin = LineJoin.MITER
    cap: LineCap = LineCap.FLAT
    miter_limit: float = 10.0
    dashes: Tuple[float, ...] = ()
    dash_phase: float = 0.0
    _record: Any = field(default=None, init=False, repr=False, compare=False)

    def __post_init__(self) -> None:
        dashes = tuple(self.dashes)
        if len(dashes) > 15:
            raise ValueError(f"a stroke has up to 15 dashes and gaps, not {len(dashes)}")
        object.__setattr__(self, "dashes", dashes)
        record = (self.join, self.cap, self.miter_limit, 0, self.dash_phase, dashes, len(dashes))
        object.__setattr__(self, "_record", ffi.new("GXStrokeStyle *", record))

    def __reduce__(self) -> Any:
        return StrokeStyle, (self.join, self.cap, self.miter_limit, self.dashes, self.dash_phase)


def c_style(style: Any) -> Any:
    """A stroke style, or None, as an argument of the library."""
    if style is None:
        return ffi.NULL
    if not isinstance(style, StrokeStyle):
        raise TypeError(f"a StrokeStyle or None, not {type(style).__name__}")
    return style._record
