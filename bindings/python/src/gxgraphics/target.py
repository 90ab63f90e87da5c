# SPDX-License-Identifier: MIT
"""Render targets: something to draw on."""
from contextlib import contextmanager
from typing import Any, Iterator, Optional, Union

import numpy as np

from ._native import ffi, lib
from ._object import NULL, Object, c_int_rect, c_point, c_rect, c_text, handle_of
from .arrays import rows_of
from .bitmap import Bitmap, DpiLike
from .colors import ColorLike, argb
from .errors import check
from .font import FontFace
from .paint import BrushLike, Gradient, made_brush
from .path import Path
from .values import BlendMode, Interpolation, MaskType, Matrix, MatrixLike, PixelFormat
from .values import PointLike, RectLike, Size, StrokeStyle, c_matrix, c_style


class RenderTarget(Object):
    """Something to draw on: a bitmap, a NumPy array, and on Windows a window, a device context or a
    printer.

    Drawing is allowed inside `with target.paint():`. A target belongs to one thread at a time;
    while a call draws, the interpreter's lock is released, so that other threads draw on targets of
    their own at the same time.
    """

    __slots__ = ("_surface",)
    _kind = "GXRenderTarget"

    def __init__(
        self,
        surface: Union[Bitmap, np.ndarray],
        format: PixelFormat = PixelFormat.PBGRA32,
        dpi: DpiLike = 96.0,
    ) -> None:
        """Makes a target that draws into a bitmap, or into the memory of an array without a copy.

        An array is height x width x 4 of uint8, or height x width of uint32, in the format PBGRA32
        or BGRX32, writable, each row's pixels side by side. It stays alive as long as the target. A
        bitmap brings its own format.
        """
        out = ffi.new("GXRenderTarget *")
        if isinstance(surface, Bitmap):
            result = lib.GXCreateRenderTargetBitmap(surface._handle, out)
            check(result, "GXCreateRenderTargetBitmap")
        else:
            rows = rows_of(surface, PixelFormat(format), shared=True)
            numbers = (rows.width, rows.height, rows.stride)
            if any(np.float32(number) != number for number in numbers):
                raise ValueError(
                    f"rows of {rows.stride} bytes: the library takes multiples of 2 above 16777216"
                )
            dpi_x, dpi_y = dpi if isinstance(dpi, tuple) else (dpi, dpi)
            result = lib.GXCreateRenderTargetExtBuf(
                ffi.cast("void *", rows.address), format, [(*numbers, dpi_x, dpi_y)], out
            )
            check(result, "GXCreateRenderTargetExtBuf")
        self._own(out[0])
        # The reference also makes NumPy refuse to resize the array.
        self._surface = surface

    @classmethod
    def new(
        cls,
        width: int,
        height: int,
        background: ColorLike = 0,
        format: PixelFormat = PixelFormat.PBGRA32,
        dpi: DpiLike = 96.0,
    ) -> "RenderTarget":
        """Makes a bitmap filled with a colour and a target that draws into it.

        `target.bitmap` is the bitmap.
        """
        return cls(Bitmap(width, height, format, dpi, fill=background))

    @classmethod
    def for_window(cls, window: int, software_only: bool = False) -> "RenderTarget":
        """Makes a target that draws into a window of Windows (HWND)."""
        out = ffi.new("GXRenderTarget *")
        result = lib.GXCreateRenderTargetHWND(ffi.cast("void *", window), software_only, out)
        check(result, "GXCreateRenderTargetHWND")
        return cls._owning(out[0])

    @classmethod
    def for_dc(cls, dc: int, area: Any = (0, 0, 0, 0)) -> "RenderTarget":
        """Makes a target that draws into a device context of Windows (HDC).

        An empty area is the whole device.
        """
        out = ffi.new("GXRenderTarget *")
        result = lib.GXCreateRenderTargetHDC(ffi.cast("void *", dc), c_int_rect(area), out)
        check(result, "GXCreateRenderTargetHDC")
        return cls._owning(out[0])

    @classmethod
    def for_printer(cls, dc: int) -> "RenderTarget":
        """Makes a target on a printer's device context (HDC).

        One paint block is one page's picture.
        """
        out = ffi.new("GXRenderTarget *")
        result = lib.GXCreateRenderTargetPrintDC(ffi.cast("void *", dc), out)
        check(result, "GXCreateRenderTargetPrintDC")
        return cls._owning(out[0])

    @property
    def bitmap(self) -> Optional[Bitmap]:
        """The bitmap that the target draws into, or None where it is something else."""
        surface = getattr(self, "_surface", None)
        return surface if isinstance(surface, Bitmap) else None

    @property
    def array(self) -> Optional[np.ndarray]:
        """The array that the target draws into, or None where it is something else."""
        surface = getattr(self, "_surface", None)
        return None if isinstance(surface, Bitmap) else surface

    @property
    def format(self) -> PixelFormat:
        """The format of the pixels drawn into."""
        out = ffi.new("GXPixelFormat *")
        result = lib.GXRenderTargetGetPixelFormat(self._handle, out)
        check(result, "GXRenderTargetGetPixelFormat")
        return PixelFormat(out[0])

    @property
    def size(self) -> Size:
        """Width and height in pixels."""
        out = ffi.new("GXSize *")
        check(lib.GXRenderTargetGetSize(self._handle, out), "GXRenderTargetGetSize")
        return Size(out.width, out.height)

    # Brackets

    def begin_paint(self) -> None:
        """Opens the bracket in which drawing is allowed.

        The block that also closes it is paint().
        """
        check(lib.GXRenderTargetBeginPaint(self._handle), "GXRenderTargetBeginPaint")

    def end_paint(self) -> None:
        """Closes the bracket.

        Open layers are ended, saved states are dropped, the state is reset.
        """
        check(lib.GXRenderTargetEndPaint(self._handle), "GXRenderTargetEndPaint")

    @contextmanager
    def paint(self) -> Iterator["RenderTarget"]:
        """`with target.paint():` opens the bracket in which drawing is allowed and closes it at
        the end."""
        self.begin_paint()
        try:
            yield self
        finally:
            self.end_paint()

    def push_state(self) -> None:
        """Saves matrix, blend mode, stroke adjustment, masks and clip.

        The block that restores them is state().
        """
        check(lib.GXRenderTargetPushState(self._handle), "GXRenderTargetPushState")

    def pop_state(self) -> None:
        """Restores what the matching push saved."""
        check(lib.GXRenderTargetPopState(self._handle), "GXRenderTargetPopState")

    @contextmanager
    def state(self) -> Iterator["RenderTarget"]:
        """`with target.state():` restores matrix, blend mode, stroke adjustment, masks and clip
        at its end."""
        self.push_state()
        try:
            yield self
        finally:
            self.pop_state()

    def begin_layer(
        self,
        bounds: Optional[RectLike] = None,
        opacity: float = 1.0,
        *,
        isolated: bool = True,
        knockout: bool = False,
    ) -> None:
        """Opens a transparency group; layer() is the block that also draws it."""
        box = (0, 0, 0, 0) if bounds is None else tuple(bounds)
        if len(box) != 4:
            raise ValueError(f"a rectangle has 4 numbers, not {len(box)}")
        desc = [(box, opacity, isolated, knockout)]
        check(lib.GXRenderTargetBeginLayer(self._handle, desc), "GXRenderTargetBeginLayer")

    def end_layer(self) -> None:
        """Closes the innermost group and draws it as one object."""
        check(lib.GXRenderTargetEndLayer(self._handle), "GXRenderTargetEndLayer")

    @contextmanager
    def layer(
        self,
        bounds: Optional[RectLike] = None,
        opacity: float = 1.0,
        *,
        isolated: bool = True,
        knockout: bool = False,
    ) -> Iterator["RenderTarget"]:
        """`with target.layer(opacity=0.5):` draws what is in the block as one object, a
        transparency group.

        An isolated group starts transparent instead of on the backdrop; in a knockout group each
        object replaces the earlier ones under it. Without bounds the clip alone limits it.
        """
        self.begin_layer(bounds, opacity, isolated=isolated, knockout=knockout)
        try:
            yield self
        finally:
            self.end_layer()

    # State

    @property
    def ctm(self) -> Matrix:
        """The matrix that maps user units to device pixels; may be set, None is the identity."""
        out = ffi.new("GXMatrix *")
        check(lib.GXRenderTargetGetCTM(self._handle, out), "GXRenderTargetGetCTM")
        return Matrix(out.m00, out.m01, out.m10, out.m11, out.m20, out.m21)

    @ctm.setter
    def ctm(self, matrix: Optional[MatrixLike]) -> None:
        place = NULL if matrix is None else c_matrix(matrix)
        check(lib.GXRenderTargetSetCTM(self._handle, place), "GXRenderTargetSetCTM")

    def concat(self, matrix: MatrixLike) -> None:
        """Puts a matrix in front of the current one: points are mapped by it first."""
        check(
            lib.GXRenderTargetConcatCTM(self._handle, c_matrix(matrix)), "GXRenderTargetConcatCTM"
        )

    def rotate(self, radians: float) -> None:
        """Puts a rotation in front of the matrix.

        Positive angles turn the x axis towards the y axis.
        """
        check(lib.GXRenderTargetRotateCTM(self._handle, radians), "GXRenderTargetRotateCTM")

    def scale(self, x: float, y: Optional[float] = None) -> None:
        """Puts a scaling in front of the matrix; y is as x unless given."""
        result = lib.GXRenderTargetScaleCTM(self._handle, x, x if y is None else y)
        check(result, "GXRenderTargetScaleCTM")

    def translate(self, x: float, y: float) -> None:
        """Puts a shift in user units in front of the matrix."""
        check(lib.GXRenderTargetTranslateCTM(self._handle, x, y), "GXRenderTargetTranslateCTM")

    def set_blend_mode(self, mode: BlendMode) -> None:
        """Sets how everything drawn from now on meets the backdrop."""
        check(lib.GXRenderTargetSetBlendMode(self._handle, mode), "GXRenderTargetSetBlendMode")

    def set_stroke_adjustment(self, flag: bool) -> None:
        """Whether upright and level stroke edges are moved to whole device pixels."""
        result = lib.GXRenderTargetSetStrokeAdjustment(self._handle, bool(flag))
        check(result, "GXRenderTargetSetStrokeAdjustment")

    def set_opacity_mask(
        self, brush: Optional[BrushLike], type: MaskType = MaskType.LUMINOSITY
    ) -> None:
        """Multiplies colour and alpha of what is drawn from now on by a mask made from a brush.

        None removes it.
        """
        made = None if brush is None else made_brush(brush)
        handle = NULL if made is None else made._handle
        result = lib.GXRenderTargetSetOpacityMask(self._handle, type, handle)
        check(result, "GXRenderTargetSetOpacityMask")

    def set_shape_mask(self, brush: Optional[BrushLike], type: MaskType = MaskType.ALPHA) -> None:
        """Multiplies the coverage of what is drawn from now on by a mask made from a brush.

        None removes it.
        """
        made = None if brush is None else made_brush(brush)
        handle = NULL if made is None else made._handle
        result = lib.GXRenderTargetSetShapeMask(self._handle, type, handle)
        check(result, "GXRenderTargetSetShapeMask")

    # Drawing. A brush made here for one call is held by its variable until the call is done.

    def clear(self, color: ColorLike = 0) -> None:
        """Sets every pixel that the clip leaves to a colour, without blending."""
        check(lib.GXRenderTargetClear(self._handle, argb(color)), "GXRenderTargetClear")

    def fill(self, path: Path, brush: BrushLike) -> None:
        """Paints the inside of a path."""
        made = made_brush(brush)
        result = lib.GXRenderTargetFillGeometry(self._handle, handle_of(path, Path), made._handle)
        check(result, "GXRenderTargetFillGeometry")

    def fill_glyph(self, path: Path, brush: BrushLike) -> None:
        """Paints the inside of a glyph's outline as text is painted.

        Its coverage is kept for the next time.
        """
        made = made_brush(brush)
        result = lib.GXRenderTargetFillTextGeometry(
            self._handle, handle_of(path, Path), made._handle
        )
        check(result, "GXRenderTargetFillTextGeometry")

    def fill_rect(self, rect: RectLike, brush: BrushLike) -> None:
        """Paints a rectangle."""
        made = made_brush(brush)
        result = lib.GXRenderTargetFillRect(self._handle, c_rect(rect), made._handle)
        check(result, "GXRenderTargetFillRect")

    def fill_ellipse(self, bounds: RectLike, brush: BrushLike) -> None:
        """Paints the ellipse in a rectangle."""
        made = made_brush(brush)
        result = lib.GXRenderTargetFillEllipse(self._handle, c_rect(bounds), made._handle)
        check(result, "GXRenderTargetFillEllipse")

    def fill_text(
        self, text: str, face: FontFace, brush: BrushLike, origin: Optional[PointLike] = None
    ) -> None:
        """Paints text with its baseline starting at the origin of user space, or at `origin`."""
        made = made_brush(brush)
        units, font = c_text(text), handle_of(face, FontFace)
        if origin is None:
            result = lib.GXRenderTargetFillText(self._handle, font, units, made._handle)
            check(result, "GXRenderTargetFillText")
            return
        x, y = origin
        before = self.ctm
        self.translate(x, y)
        try:
            result = lib.GXRenderTargetFillText(self._handle, font, units, made._handle)
            check(result, "GXRenderTargetFillText")
        finally:
            self.ctm = before

    def stroke(
        self, path: Path, brush: BrushLike, width: float = 1.0, style: Optional[StrokeStyle] = None
    ) -> None:
        """Paints the outline of a path; width 0 is the thinnest line, one device pixel wide."""
        made = made_brush(brush)
        result = lib.GXRenderTargetStrokeGeometry(
            self._handle, handle_of(path, Path), made._handle, width, c_style(style)
        )
        check(result, "GXRenderTargetStrokeGeometry")

    def stroke_line(
        self,
        start: PointLike,
        end: PointLike,
        brush: BrushLike,
        width: float = 1.0,
        style: Optional[StrokeStyle] = None,
    ) -> None:
        """Paints a line."""
        made = made_brush(brush)
        result = lib.GXRenderTargetStrokeLine(
            self._handle, c_point(start), c_point(end), made._handle, width, c_style(style)
        )
        check(result, "GXRenderTargetStrokeLine")

    def stroke_rect(
        self,
        rect: RectLike,
        brush: BrushLike,
        width: float = 1.0,
        style: Optional[StrokeStyle] = None,
    ) -> None:
        """Paints the outline of a rectangle."""
        made = made_brush(brush)
        result = lib.GXRenderTargetStrokeRect(
            self._handle, c_rect(rect), made._handle, width, c_style(style)
        )
        check(result, "GXRenderTargetStrokeRect")

    def stroke_ellipse(
        self,
        bounds: RectLike,
        brush: BrushLike,
        width: float = 1.0,
        style: Optional[StrokeStyle] = None,
    ) -> None:
        """Paints the outline of the ellipse in a rectangle."""
        made = made_brush(brush)
        result = lib.GXRenderTargetStrokeEllipse(
            self._handle, c_rect(bounds), made._handle, width, c_style(style)
        )
        check(result, "GXRenderTargetStrokeEllipse")

    def draw_bitmap(
        self,
        bitmap: Bitmap,
        origin: PointLike = (0, 0),
        opacity: float = 1.0,
        interpolation: Interpolation = Interpolation.LINEAR,
    ) -> None:
        """Draws a bitmap with its top left at `origin`, one pixel to one user unit."""
        result = lib.GXRenderTargetDrawBitmap(
            self._handle, handle_of(bitmap, Bitmap), c_point(origin), opacity, interpolation
        )
        check(result, "GXRenderTargetDrawBitmap")

    def stretch_bitmap(
        self,
        bitmap: Bitmap,
        destination: RectLike,
        source: Any = None,
        opacity: float = 1.0,
        interpolation: Interpolation = Interpolation.LINEAR,
    ) -> None:
        """Draws a part of a bitmap (None: all of it), in its pixels, exactly onto a rectangle."""
        result = lib.GXRenderTargetStretchBitmap(
            self._handle,
            handle_of(bitmap, Bitmap),
            c_rect(destination),
            c_int_rect(source),
            opacity,
            interpolation,
        )
        check(result, "GXRenderTargetStretchBitmap")

    def draw_gradient(
        self, gradient: Gradient, opacity: float = 1.0, matrix: Optional[MatrixLike] = None
    ) -> None:
        """Paints everything inside the clip with a gradient.

        `matrix` maps its space to user units.
        """
        place = NULL if matrix is None else c_matrix(matrix)
        result = lib.GXRenderTargetDrawGradient(
            self._handle, handle_of(gradient, Gradient), opacity, place
        )
        check(result, "GXRenderTargetDrawGradient")

    def fill_mask(
        self,
        mask: Bitmap,
        brush: BrushLike,
        destination: Optional[RectLike] = None,
        interpolation: Interpolation = Interpolation.LINEAR,
    ) -> None:
        """Paints a brush through the alpha of a bitmap laid onto a rectangle (None: its own size
        at 0, 0)."""
        made = made_brush(brush)
        place = NULL if destination is None else c_rect(destination)
        result = lib.GXRenderTargetFillMask(
            self._handle, handle_of(mask, Bitmap), made._handle, place, interpolation
        )
        check(result, "GXRenderTargetFillMask")

    def invert_rect(self, rect: RectLike) -> None:
        """Replaces every colour channel c in a rectangle by 255 - c; twice restores the pixels."""
        check(lib.GXRenderTargetInvertRect(self._handle, c_rect(rect)), "GXRenderTargetInvertRect")

    def invert_line(self, start: PointLike, end: PointLike) -> None:
        """Replaces every colour channel c by 255 - c along a line one device pixel wide."""
        result = lib.GXRenderTargetInvertLine(self._handle, c_point(start), c_point(end))
        check(result, "GXRenderTargetInvertLine")

    # Clipping

    def clip(self, path: Path) -> None:
        """Limits drawing to the inside of a path; state() gives the earlier clip back."""
        result = lib.GXRenderTargetClipGeometry(self._handle, handle_of(path, Path))
        check(result, "GXRenderTargetClipGeometry")

    def clip_rect(self, rect: RectLike) -> None:
        """Limits drawing to a rectangle; ignored when its width or height is 0."""
        check(lib.GXRenderTargetClipRect(self._handle, c_rect(rect)), "GXRenderTargetClipRect")

    def clip_ellipse(self, bounds: RectLike) -> None:
        """Limits drawing to the ellipse in a rectangle; ignored when its width or height is 0."""
        result = lib.GXRenderTargetClipEllipse(self._handle, c_rect(bounds))
        check(result, "GXRenderTargetClipEllipse")

    # Notebooks

    def _repr_png_(self) -> Optional[bytes]:
        bitmap = self.bitmap
        if bitmap is None and self.array is not None:
            bitmap = Bitmap.from_array(self.array, self.format)
        return None if bitmap is None else bitmap.encode("png")

    def __repr__(self) -> str:
        width, height = self.size
        return f"<RenderTarget {width} x {height} {self.format.name}>"


def enable_hardware_acceleration() -> None:
    """Lets window targets that this thread makes from now on use the graphics processor, where
    there is one."""
    check(lib.GXEnableHWAccelerationForThread(), "GXEnableHWAccelerationForThread")
