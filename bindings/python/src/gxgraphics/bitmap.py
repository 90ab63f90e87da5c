# SPDX-License-Identifier: MIT
"""Bitmaps and palettes."""
import os
import tempfile
from contextlib import contextmanager
from typing import Any, Iterator, Optional, Tuple, Union

import numpy as np

from . import pillow
from ._native import ffi, lib
from ._object import NULL, Object, c_int_rect, c_path, handle_of
from .arrays import Rows, pointer_to, rows_of, view, words
from .colors import ColorLike, argb
from .errors import check
from .values import IntRect, PixelFormat, Size

#: A resolution in dots per inch, for both directions or for each.
DpiLike = Union[float, Tuple[float, float]]


class Palette(Object):
    """A list of packed colours 0xAARRGGBB; immutable. A sequence: len(), indices and loops."""

    __slots__ = ()
    _kind = "GXPalette"

    def __init__(self, colors: Any) -> None:
        """Makes a palette from an array of packed colours, or from colours of any kind."""
        if isinstance(colors, np.ndarray) and colors.ndim == 1 and colors.dtype.kind in "iu":
            if colors.size and (int(colors.min()) < 0 or int(colors.max()) > 0xFFFFFFFF):
                raise OverflowError("packed colours have 32 bits")
            array = np.ascontiguousarray(colors, dtype=np.uint32)
        else:
            array = np.array([argb(color) for color in colors], dtype=np.uint32)
        out = ffi.new("GXPalette *")
        pointer = pointer_to(array, "uint32_t *")
        check(lib.GXCreatePalette(pointer, array.size, out), "GXCreatePalette")
        self._own(out[0])

    def __len__(self) -> int:
        out = ffi.new("uint64_t *")
        check(lib.GXPaletteGetNumColors(self._handle, out), "GXPaletteGetNumColors")
        return int(out[0])

    def __getitem__(self, index: int) -> int:
        number = index.__index__()
        out = ffi.new("uint32_t *")
        if number < 0:
            number += len(self)
        if number < 0:
            raise IndexError("palette index out of range")
        check(lib.GXPaletteGetColor(self._handle, number, out), "GXPaletteGetColor")
        return int(out[0])

    @property
    def colors(self) -> np.ndarray:
        """All colours: a read-only array of uint32 in the palette's memory, kept alive."""
        out = ffi.new("uint32_t const * *")
        check(lib.GXPaletteGetColors(self._handle, out), "GXPaletteGetColors")
        return words(self, int(ffi.cast("uintptr_t", out[0])), len(self))


class Bitmap(Object):
    """A rectangle of pixels in memory.

    `np.asarray(bitmap)` is a read-only array over its pixels, without a copy; `lock(write=True)`
    gives one to write in. The array keeps the bitmap's memory alive. Channels lie as blue, green,
    red, alpha.
    """

    __slots__ = ("_locked",)
    _kind = "GXBitmap"

    def __init__(
        self,
        width: int,
        height: int,
        format: PixelFormat = PixelFormat.PBGRA32,
        dpi: DpiLike = 96.0,
        fill: Optional[ColorLike] = 0,
    ) -> None:
        """Makes a bitmap filled with a colour.

        With `fill=None` its pixels are whatever the memory held.
        """
        dpi_x, dpi_y = dpi if isinstance(dpi, tuple) else (dpi, dpi)
        color = None if fill is None else argb(fill)
        out = ffi.new("GXBitmap *")
        desc = [(width, height, format, dpi_x, dpi_y)]
        check(lib.GXCreateBitmap(desc, out), "GXCreateBitmap")
        self._own(out[0])
        if color is not None:
            check(lib.GXBitmapColorFill(self._handle, NULL, color), "GXBitmapColorFill")

    # From and to files

    @classmethod
    def open(cls, path: Any, frame: int = 0) -> "Bitmap":
        """Loads a PNG, JPEG, TIFF, GIF or BMP file; `frame` counts from 0."""
        out = ffi.new("GXBitmap *")
        name = c_path(path)
        if frame == 0:
            check(lib.GXCreateBitmapFromFile(name, out), "GXCreateBitmapFromFile")
        else:
            result = lib.GXCreateBitmapFromFileFrame(name, frame, NULL, out)
            check(result, "GXCreateBitmapFromFileFrame")
        return cls._owning(out[0])

    @staticmethod
    def count_frames(path: Any) -> int:
        """How many frames an image file holds."""
        count, out = ffi.new("uint32_t *"), ffi.new("GXBitmap *")
        result = lib.GXCreateBitmapFromFileFrame(c_path(path), 0, count, out)
        check(result, "GXCreateBitmapFromFileFrame")
        lib.GXObjectRelease(out[0])
        return int(count[0])

    @classmethod
    def from_bytes(cls, data: Any) -> "Bitmap":
        """Loads an image file that lies in memory: bytes, or any other buffer."""
        out = ffi.new("GXBitmap *")
        with ffi.from_buffer(data) as memory:
            result = lib.GXCreateBitmapFromMemory(memory, len(memory), out)
        check(result, "GXCreateBitmapFromMemory")
        return cls._owning(out[0])

    def save(self, path: Any) -> None:
        """Writes a file of the kind that the path's ending names: png, jpg, tif, bmp."""
        check(lib.GXBitmapSaveToFile(self._handle, c_path(path)), "GXBitmapSaveToFile")

    def encode(self, kind: str = "png") -> bytes:
        """The bytes of an image file of that kind."""
        with tempfile.TemporaryDirectory(prefix="gxgraphics-") as folder:
            path = os.path.join(folder, "picture." + kind)
            self.save(path)
            with open(path, "rb") as file:
                return file.read()

    def _repr_png_(self) -> bytes:
        return self.encode("png")

    # From and to arrays and Pillow

    @classmethod
    def from_array(
        cls,
        pixels: Any,
        format: Optional[PixelFormat] = None,
        dpi: DpiLike = 96.0,
        width: Optional[int] = None,
    ) -> "Bitmap":
        """Makes a bitmap with a copy of an array's pixels, which lie as the format says.

        Without a format a grey level, three and four channels mean GRAY8, BGR24 and BGRA32. One-bit
        formats take bytes of eight pixels, `width` says how many pixels count.
        """
        array = np.asarray(pixels)
        if format is None:
            depth = array.shape[2] if array.ndim == 3 else 4 if array.dtype == np.uint32 else 1
            guess = {1: PixelFormat.GRAY8, 3: PixelFormat.BGR24, 4: PixelFormat.BGRA32}
            if depth not in guess:
                raise ValueError(f"pixels have 1, 3 or 4 channels, not {depth}")
            format = guess[depth]
        rows = rows_of(array, format, shared=False, width=width)
        bitmap = cls(rows.width, rows.height, format, dpi, fill=None)
        bitmap._copy_from(rows, NULL)
        return bitmap

    @classmethod
    def from_rgba(cls, pixels: Any, dpi: DpiLike = 96.0) -> "Bitmap":
        """Makes a bitmap from an array of red, green, blue and perhaps alpha, not premultiplied."""
        array = np.asarray(pixels)
        if array.ndim != 3 or array.shape[2] not in (3, 4):
            raise ValueError(f"an array of height x width x 3 or 4, not {array.shape}")
        return cls.from_array(array[..., [2, 1, 0, 3][: array.shape[2]]], None, dpi)

    def to_rgba(self) -> np.ndarray:
        """A copy of the pixels as red, green, blue, alpha, not premultiplied."""
        return np.asarray(self.convert(PixelFormat.BGRA32))[..., [2, 1, 0, 3]]

    @classmethod
    def from_pil(cls, image: Any) -> "Bitmap":
        """Makes a bitmap from a Pillow image."""
        return pillow.from_pil(cls, image)

    def to_pil(self) -> Any:
        """A Pillow image with a copy of the pixels."""
        return pillow.to_pil(self)

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> np.ndarray:
        data = self._data(NULL, lib.GXLockRead)
        array = self._view(data, self.size.width, self.size.height, writable=False)
        if dtype is not None and array.dtype != dtype:
            if copy is False:
                raise ValueError(f"pixels of {self.format.name} are {array.dtype} without a copy")
            return array.astype(dtype)
        return array.copy() if copy else array

    @contextmanager
    def lock(self, rect: Any = None, *, write: bool = False) -> Iterator[np.ndarray]:
        """`with bitmap.lock(write=True) as pixels:` gives the pixels as an array.

        `rect` is the part of the bitmap, clipped to it; None is all.

        At the end of the block the library learns that pixels changed, and the array becomes
        read-only; other views made from it stay readable and keep the bitmap's memory alive.
        Locks do not nest.
        """
        if getattr(self, "_locked", False):
            raise RuntimeError("the bitmap is locked already")
        part = self._clipped(rect)
        record = ffi.new("GXBitmapData *")
        mode = lib.GXLockWrite if write else lib.GXLockRead
        check(lib.GXBitmapLock(self._handle, c_int_rect(part), mode, record), "GXBitmapLock")
        self._locked = True
        pixels = None
        try:
            pixels = self._view(record, max(part.width, 0), max(part.height, 0), writable=write)
            yield pixels
        finally:
            self._locked = False
            check(lib.GXBitmapUnlock(self._handle), "GXBitmapUnlock")
            if pixels is not None:
                pixels.flags.writeable = False

    def _data(self, rect: Any, mode: int) -> Any:
        # A lock inside a lock would take its mode over, so that the outer one would not tell of its
        # writing.
        record = ffi.new("GXBitmapData *")
        if getattr(self, "_locked", False):
            raise RuntimeError("the bitmap is locked: use the array of the lock")
        check(lib.GXBitmapLock(self._handle, rect, mode, record), "GXBitmapLock")
        check(lib.GXBitmapUnlock(self._handle), "GXBitmapUnlock")
        return record

    def _view(self, data: Any, width: int, height: int, writable: bool) -> np.ndarray:
        address = int(ffi.cast("uintptr_t", data.data))
        return view(
            self, address, self.format, width, height, data.rowLength, data.stride, writable
        )

    def _clipped(self, rect: Any) -> IntRect:
        width, height = self.size
        if rect is None:
            return IntRect(0, 0, width, height)
        left, top, right, bottom = (value.__index__() for value in rect)
        return IntRect(max(left, 0), max(top, 0), min(right, width), min(bottom, height))

    def _row_bytes(self, part: IntRect) -> int:
        bits = self.format.bits
        return (part.right * bits + 7) // 8 - part.left * bits // 8

    def _rows(self, array: Any, part: IntRect, shared: bool) -> Rows:
        rows = rows_of(array, self.format, shared=shared)
        if rows.height != part.height or rows.row_bytes != self._row_bytes(part):
            raise ValueError(
                f"the array has the shape {rows.array.shape}, the rectangle is "
                f"{part.width} pixels wide and {part.height} high"
            )
        return rows

    def _copy_from(self, rows: Rows, rect: Any) -> None:
        block = [(ffi.cast("void *", rows.address), rows.row_bytes, rows.stride)]
        check(lib.GXBitmapCopyFromMemory(self._handle, rect, block), "GXBitmapCopyFromMemory")

    def write(self, pixels: Any, rect: Any = None) -> None:
        """Copies an array, in the bitmap's own format, into a rectangle (None: all).

        The rectangle is clipped to the bitmap, and the array has the size of the clipped one.
        One-bit formats copy whole bytes.
        """
        part = self._clipped(rect)
        if part.width <= 0 or part.height <= 0:
            return
        self._copy_from(self._rows(pixels, part, shared=False), c_int_rect(part))

    def read(self, rect: Any = None, out: Optional[np.ndarray] = None) -> np.ndarray:
        """Copies a rectangle (None: all), clipped to the bitmap, into `out` or a new array."""
        part = self._clipped(rect)
        height, row_bytes = max(part.height, 0), self._row_bytes(part) if part.width > 0 else 0
        if out is None:
            channels = self.format.bits // 8
            out = np.empty((height, row_bytes), np.uint8)
            if channels > 1:
                out = out.reshape(height, max(part.width, 0), channels)
        if height == 0 or row_bytes == 0:
            return out
        rows = self._rows(out, part, shared=True)
        block = [(ffi.cast("void *", rows.address), rows.row_bytes, rows.stride)]
        result = lib.GXBitmapCopyToMemory(self._handle, c_int_rect(part), block)
        check(result, "GXBitmapCopyToMemory")
        return out

    # Pixels

    def fill(self, color: ColorLike, rect: Any = None) -> None:
        """Sets the pixels of a rectangle (None: all) to a colour in the bitmap's format."""
        result = lib.GXBitmapColorFill(self._handle, c_int_rect(rect), argb(color))
        check(result, "GXBitmapColorFill")

    def copy_from(self, source: "Bitmap", origin: Any = (0, 0), rect: Any = None) -> None:
        """Copies `rect` of another bitmap (None: all of it) to `origin`, converting the format."""
        x, y = (value.__index__() for value in origin)
        other = handle_of(source, Bitmap)
        result = lib.GXBitmapCopyFromBitmap(self._handle, [(x, y)], other, c_int_rect(rect))
        check(result, "GXBitmapCopyFromBitmap")

    def convert(self, format: PixelFormat) -> "Bitmap":
        """A new bitmap with the same picture in another format."""
        made = Bitmap(*self.size, format, self.dpi, fill=None)
        made.copy_from(self)
        return made

    def copy(self) -> "Bitmap":
        """A new bitmap with the same pixels, format and palette."""
        made = Bitmap(*self.size, self.format, self.dpi, fill=None)
        made.palette = self.palette
        made.copy_from(self)
        return made

    __copy__ = copy

    def notify_changed(self) -> None:
        """Tells the library that pixels were written by other means than its calls and locks."""
        check(lib.GXBitmapNotifyChanged(self._handle), "GXBitmapNotifyChanged")

    def set_offscreen_painting(self, flag: bool) -> None:
        """Marks the bitmap as one that is painted into off screen, or takes the mark away."""
        result = lib.GXBitmapSetOffscreenPainting(self._handle, bool(flag))
        check(result, "GXBitmapSetOffscreenPainting")

    # Properties

    @property
    def format(self) -> PixelFormat:
        """The pixel format."""
        out = ffi.new("GXPixelFormat *")
        check(lib.GXBitmapGetPixelFormat(self._handle, out), "GXBitmapGetPixelFormat")
        return PixelFormat(out[0])

    @property
    def size(self) -> Size:
        """Width and height in pixels."""
        out = ffi.new("GXSize *")
        check(lib.GXBitmapGetSize(self._handle, out), "GXBitmapGetSize")
        return Size(out.width, out.height)

    @property
    def width(self) -> int:
        """The width in pixels."""
        return self.size.width

    @property
    def height(self) -> int:
        """The height in pixels."""
        return self.size.height

    @property
    def dpi(self) -> Tuple[float, float]:
        """Horizontal and vertical resolution in dots per inch."""
        x, y = ffi.new("float *"), ffi.new("float *")
        check(lib.GXBitmapGetDpiX(self._handle, x), "GXBitmapGetDpiX")
        check(lib.GXBitmapGetDpiY(self._handle, y), "GXBitmapGetDpiY")
        return x[0], y[0]

    @property
    def palette(self) -> Optional[Palette]:
        """The palette that the indexed formats use, or None; may be set."""
        out = ffi.new("GXPalette *")
        check(lib.GXBitmapGetPalette(self._handle, out), "GXBitmapGetPalette")
        return Palette._owning(out[0]) if out[0] != NULL else None

    @palette.setter
    def palette(self, palette: Optional[Palette]) -> None:
        handle = NULL if palette is None else handle_of(palette, Palette)
        check(lib.GXBitmapSetPalette(self._handle, handle), "GXBitmapSetPalette")

    # Windows

    @classmethod
    def from_hbitmap(cls, hbitmap: int) -> "Bitmap":
        """Makes a bitmap with a copy of the pixels of a bitmap of Windows."""
        out = ffi.new("GXBitmap *")
        result = lib.GXCreateBitmapFromHBITMAP(ffi.cast("void *", hbitmap), out)
        check(result, "GXCreateBitmapFromHBITMAP")
        return cls._owning(out[0])

    def to_hbitmap(self) -> int:
        """Makes a bitmap of Windows with a copy of the pixels; the caller deletes it."""
        out = ffi.new("GXNativeBitmap *")
        check(lib.GXBitmapSaveToHBITMAP(self._handle, out), "GXBitmapSaveToHBITMAP")
        return int(ffi.cast("uintptr_t", out[0]))

    def __repr__(self) -> str:
        width, height = self.size
        return f"<Bitmap {width} x {height} {self.format.name}>"
