# SPDX-License-Identifier: MIT
"""2D graphics with the imaging model of PDF: the Graphics library for Python.

    import gxgraphics as gx

    target = gx.RenderTarget.new(320, 200, background="#ffffff")
    with target.paint():
        target.fill(gx.Path().circle((160, 100), 60), "#e86a5c")
    target.bitmap.save("circle.png")

`gxgraphics.lib` and `gxgraphics.ffi` are the library's own functions and types through cffi, as
GX.h declares them.
"""
from ._native import ffi, lib
from .bitmap import Bitmap, Palette
from .cache import BitmapCache, bitmap_cache
from .colors import ColorLike
from .errors import EngineError, Error, IndexOutOfRange, InvalidArgument, UnexpectedError
from .font import FontFace
from .paint import Brush, BrushLike, Gradient
from .path import Path
from .recording import Recording, RecordingError
from .region import Region
from .target import RenderTarget, enable_hardware_acceleration
from .values import BlendMode, Combine, Extend, FillRule, Interpolation, IntRect, LineCap
from .values import LineJoin, MaskType, Matrix, MatrixLike, PixelFormat, Point, PointLike
from .values import Rect, RectLike, Size, StrokeStyle

__version__ = "0.1.0"

__all__ = [
    "Bitmap",
    "BitmapCache",
    "BlendMode",
    "Brush",
    "BrushLike",
    "ColorLike",
    "Combine",
    "EngineError",
    "Error",
    "Extend",
    "FillRule",
    "FontFace",
    "Gradient",
    "IndexOutOfRange",
    "IntRect",
    "Interpolation",
    "InvalidArgument",
    "LineCap",
    "LineJoin",
    "MaskType",
    "Matrix",
    "MatrixLike",
    "Palette",
    "Path",
    "PixelFormat",
    "Point",
    "PointLike",
    "Recording",
    "RecordingError",
    "Rect",
    "RectLike",
    "Region",
    "RenderTarget",
    "Size",
    "StrokeStyle",
    "UnexpectedError",
    "bitmap_cache",
    "enable_hardware_acceleration",
    "ffi",
    "lib",
]
