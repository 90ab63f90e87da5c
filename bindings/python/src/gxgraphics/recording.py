# SPDX-License-Identifier: MIT
"""Recorded pages: .gxr files, drawn again."""
import math
from pathlib import Path as FilePath
from typing import Any, Dict, List, Optional

import numpy as np

from ._gxr import MAX_PAGE_PIXELS, Command, CommandReader, Reader, RecordingError
from ._gxr import Surface, SurfaceBitmap, SurfaceBrush, unpack
from ._native import ffi, lib
from ._object import NULL, Object
from .bitmap import Bitmap, Palette
from .errors import check
from .font import FontFace
from .paint import Brush, Gradient
from .path import Path
from .target import RenderTarget
from .values import PixelFormat, Size

_IDENTITY = (1.0, 0.0, 0.0, 1.0, 0.0, 0.0)
# How many points follow each verb of a geometry.
_POINTS = {ord("M"): 1, ord("L"): 1, ord("C"): 3, ord("E"): 0, ord("Z"): 0}


def _multiply(first: Any, then: Any) -> Any:
    """The matrix that maps by `first` and then by `then`, in single precision as the library
    computes."""
    a, b = (tuple(np.float32(value) for value in matrix) for matrix in (first, then))
    product = (
        a[0] * b[0] + a[1] * b[2],
        a[0] * b[1] + a[1] * b[3],
        a[2] * b[0] + a[3] * b[2],
        a[2] * b[1] + a[3] * b[3],
        a[4] * b[0] + a[5] * b[2] + b[4],
        a[4] * b[1] + a[5] * b[3] + b[5],
    )
    return tuple(float(value) for value in product)


def _numbers(matrix: Any) -> Any:
    return (matrix.m00, matrix.m01, matrix.m10, matrix.m11, matrix.m20, matrix.m21)


def _optional(reader: Reader, kind: str) -> Any:
    return reader.optional(ffi.typeof(kind))


class Recording:
    """A recorded page, read and checked to its end, with its objects made; draws as often as
    wanted.

    One thread at a time.
    """

    def __init__(self, data: bytes) -> None:
        """Reads the bytes of a .gxr file; RecordingError where they are none."""
        reader = Reader(unpack(bytes(data)))
        self._page = reader.surface()
        if self._page.width * self._page.height > MAX_PAGE_PIXELS:
            raise RecordingError(f"the recording's page is too large: {self.size}")
        self._objects: Dict[str, List[Object]] = {
            kind: []
            for kind in (
                "GXGeometry",
                "GXPalette",
                "GXBitmap",
                "GXGradient",
                "GXBrush",
                "GXFontFace",
            )
        }
        self._reader = CommandReader(self._page, self._objects)  # type: ignore[arg-type]
        makers = {
            1: ("GXGeometry", self._geometry),
            2: ("GXPalette", self._palette),
            3: ("GXBitmap", self._bitmap),
            4: ("GXGradient", self._linear),
            5: ("GXGradient", self._radial),
            6: ("GXGradient", self._mesh),
            7: ("GXBrush", self._solid),
            8: ("GXBrush", self._solid_argb),
            9: ("GXBrush", self._bitmap_brush),
            10: ("GXBrush", self._gradient_brush),
            11: ("GXFontFace", self._face),
        }
        while True:
            number = reader.get("B")
            if number == 0:
                break
            if number not in makers:
                raise RecordingError("the recording holds an unknown object")
            kind, make = makers[number]
            self._objects[kind].append(make(reader))
        self._commands = self._reader.read(reader)

    @classmethod
    def open(cls, path: Any) -> "Recording":
        """Reads a .gxr file."""
        return cls(FilePath(path).read_bytes())

    @property
    def size(self) -> Size:
        """The page's size in pixels."""
        return Size(self._page.width, self._page.height)

    @property
    def format(self) -> PixelFormat:
        """The pixel format that the page was drawn in."""
        return self._page.format

    def render(self, scale: float = 1.0) -> Bitmap:
        """Draws the page on a bitmap of its size and format, `scale` times as large."""
        width, height = (max(math.ceil(side * scale), 1) for side in self.size)
        if width * height > MAX_PAGE_PIXELS:
            raise ValueError(f"the page would be too large: {width} x {height}")
        dpi = (self._page.dpi_x * scale, self._page.dpi_y * scale)
        bitmap = Bitmap(width, height, self.format, dpi)
        self.draw(RenderTarget(bitmap), scale)
        return bitmap

    def draw(self, target: RenderTarget, scale: float = 1.0) -> None:
        """Draws the page on a target, from the target's matrix on.

        Begins and ends painting itself.
        """
        if not (scale > 0 and math.isfinite(scale)):
            raise ValueError("the scale is a number above 0")
        _Player(self._page, self._commands, target, scale).play()

    # Objects

    def _geometry(self, reader: Reader) -> Path:
        rule = reader.get("I")
        verbs = bytes(reader.raw(reader.things(1)))
        unknown = set(verbs) - set(_POINTS)
        if unknown:
            raise RecordingError("the recording holds an unknown part of a geometry")
        points = sum(verbs.count(verb) * each for verb, each in _POINTS.items())
        array = np.frombuffer(reader.raw(8 * points), "<f4").reshape(-1, 2)
        path = Path.from_arrays(verbs, array)
        check(lib.GXGeometrySetFillRule(path.handle, rule), "GXGeometrySetFillRule")
        return path

    def _palette(self, reader: Reader) -> Palette:
        count = reader.things(4)
        if count == 0:
            raise RecordingError("the recording holds a palette without colours")
        return Palette(np.frombuffer(reader.raw(4 * count), "<u4"))

    def _bitmap(self, reader: Reader) -> Bitmap:
        width, height, form, dpi_x, dpi_y = reader.get("IIIff")
        palette = reader.count()
        if not (0 < width < 1 << 31 and 0 < height and 1 <= form <= 10):
            raise RecordingError("the recording holds a bitmap that cannot be")
        self._reader.object("GXPalette", palette)
        row_bytes = PixelFormat(form).row_bytes(width)
        # The pixels are there before memory is taken for them.
        pixels = reader.raw(row_bytes * height)
        bitmap = Bitmap(width, height, PixelFormat(form), (dpi_x, dpi_y), fill=None)
        block = [(ffi.from_buffer(pixels), row_bytes, row_bytes)]
        check(lib.GXBitmapCopyFromMemory(bitmap.handle, NULL, block), "GXBitmapCopyFromMemory")
        if palette:
            bitmap.palette = self._objects["GXPalette"][palette - 1]  # type: ignore[assignment]
        return bitmap

    def _stops(self, reader: Reader) -> Any:
        return [reader.get("fI") for _ in range(reader.things(8))]

    def _linear(self, reader: Reader) -> Gradient:
        stops = self._stops(reader)
        x0, y0, x1, y1, start, end, background = reader.get("ffffBBI")
        return Gradient.linear((x0, y0), (x1, y1), stops, (start, end), background)

    def _radial(self, reader: Reader) -> Gradient:
        stops = self._stops(reader)
        x0, y0, r0, x1, y1, r1, start, end, background = reader.get("ffffffBBI")
        return Gradient.radial((x1, y1), r1, stops, (x0, y0), r0, (start, end), background)

    def _mesh(self, reader: Reader) -> Gradient:
        count = reader.things(12)
        kind = np.dtype([("x", "<f4"), ("y", "<f4"), ("color", "<u4")])
        vertices = np.frombuffer(reader.raw(12 * count), kind)
        background = reader.get("I")
        if count == 0:
            raise RecordingError("the recording holds a mesh without triangles")
        points = np.stack([vertices["x"], vertices["y"]], axis=1)
        return Gradient.mesh(points, vertices["color"], background)

    def _solid(self, reader: Reader) -> Brush:
        return Brush(reader.get("ffff"))

    def _solid_argb(self, reader: Reader) -> Brush:
        return Brush(reader.get("I"))

    def _gradient_brush(self, reader: Reader) -> Brush:
        gradient = self._reader.object("GXGradient", reader.count())
        opacity, out = reader.get("f"), ffi.new("GXBrush *")
        matrix = _optional(reader, "GXMatrix")
        result = lib.GXCreateBrushGradient(gradient, opacity, matrix, out)
        check(result, "GXCreateBrushGradient")
        return Brush._owning(out[0])

    def _bitmap_brush(self, reader: Reader) -> Brush:
        bitmap = self._reader.object("GXBitmap", reader.count())
        opacity, out = reader.get("f"), ffi.new("GXBrush *")
        options, matrix = _optional(reader, "GXBitmapBrushOptions"), _optional(reader, "GXMatrix")
        result = lib.GXCreateBrushBitmap(bitmap, opacity, options, matrix, out)
        check(result, "GXCreateBrushBitmap")
        return Brush._owning(out[0])

    def _face(self, reader: Reader) -> FontFace:
        name, out = reader.text(), ffi.new("GXFontFace *")
        flags, size = reader.get("If")
        check(lib.GXCreateFontFace(name, flags, size, out), "GXCreateFontFace")
        return FontFace._owning(out[0])


class _Drawn:
    """A surface while commands are played."""

    def __init__(self, target: RenderTarget, surface: Surface, base: Any) -> None:
        self.target: Optional[RenderTarget] = target
        self.surface = surface
        self.base = base
        self.placed = self.painting = False


class _Player:
    """Plays commands that have been checked."""

    def __init__(
        self, page: Surface, commands: List[Command], target: RenderTarget, scale: float
    ) -> None:
        self._commands = commands
        self._scale = scale
        self._zoom = (scale, 0.0, 0.0, scale, 0.0, 0.0)
        self._surfaces = [_Drawn(target, page, _multiply(self._zoom, target.ctm))]
        self._brushes: List[Optional[Brush]] = []
        self._brush_surfaces: List[int] = []
        self._selected = 0

    def play(self) -> None:
        try:
            for name, arguments in self._commands:
                operation = getattr(self, "_" + name, None)
                if operation is not None:
                    operation(*arguments)
                else:
                    self._call(name, arguments)
        finally:
            for drawn in self._surfaces:
                if drawn.painting and drawn.target is not None:
                    drawn.target.end_paint()

    def _NewSurface(self, surface: Surface) -> None:
        width = math.ceil(surface.width * self._scale)
        height = math.ceil(surface.height * self._scale)
        bitmap = Bitmap(width, height, surface.format, (surface.dpi_x, surface.dpi_y))
        self._surfaces.append(_Drawn(RenderTarget(bitmap), surface, self._zoom))

    def _DropSurface(self, number: int) -> None:
        self._surfaces[number].target = None
        for index, surface in enumerate(self._brush_surfaces):
            if surface == number:
                self._brushes[index] = None
        self._selected = 0 if self._selected == number else self._selected

    def _Select(self, number: int) -> None:
        self._selected = number

    def _bitmap(self, number: int) -> Bitmap:
        target = self._surfaces[number].target
        assert target is not None and target.bitmap is not None
        return target.bitmap

    def _SurfaceBrush(self, number: int, opacity: float, options: Any, matrix: Any) -> None:
        place = matrix
        if self._scale != 1:
            shrink = 1 / np.float32(self._scale)
            shrunk = (shrink, 0.0, 0.0, shrink, 0.0, 0.0)
            place = [_multiply(shrunk, _IDENTITY if matrix == NULL else _numbers(matrix))]
        out = ffi.new("GXBrush *")
        result = lib.GXCreateBrushBitmap(self._bitmap(number).handle, opacity, options, place, out)
        check(result, "GXCreateBrushBitmap")
        self._brushes.append(Brush._owning(out[0]))
        self._brush_surfaces.append(number)

    def _SurfacePixels(self, number: int, source: Any) -> None:
        drawn, bitmap = self._surfaces[number], self._bitmap(number)
        if self._scale == 1:
            result = lib.GXBitmapCopyFromBitmap(bitmap.handle, NULL, source, NULL)
            check(result, "GXBitmapCopyFromBitmap")
            return
        assert drawn.target is not None
        width, height = drawn.surface.width * self._scale, drawn.surface.height * self._scale
        with drawn.target.paint() as target:
            target.clear()
            picture = Bitmap.from_handle(source)
            target.stretch_bitmap(picture, (0, 0, width, height))

    def _resolved(self, argument: Any) -> Any:
        if isinstance(argument, SurfaceBitmap):
            if self._scale != 1:
                raise RecordingError(
                    "the recording draws one of its surfaces as a bitmap, pixel by pixel: "
                    "it plays at scale 1 alone"
                )
            return self._bitmap(argument.surface).handle
        if isinstance(argument, SurfaceBrush):
            brush = self._brushes[argument.brush]
            assert brush is not None
            return brush.handle
        return argument

    def _call(self, name: str, arguments: Any) -> None:
        drawn = self._surfaces[self._selected]
        assert drawn.target is not None
        handle = drawn.target.handle
        # Painting starts on the identity; what the recording calls that is here the matrix of the
        # whole surface.
        if not drawn.placed:
            drawn.placed = True
            if drawn.base != _IDENTITY:
                drawn.target.ctm = drawn.base
        if name == "SetCTM" and drawn.base != _IDENTITY:
            matrix = arguments[0]
            drawn.target.ctm = (
                drawn.base if matrix == NULL else _multiply(_numbers(matrix), drawn.base)
            )
        else:
            result = getattr(lib, "GXRenderTarget" + name)(handle, *map(self._resolved, arguments))
            check(result, "GXRenderTarget" + name)
        if name == "BeginPaint":
            drawn.painting = True
        elif name == "EndPaint":
            drawn.painting = drawn.placed = False
