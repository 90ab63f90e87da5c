# SPDX-License-Identifier: MIT
"""Reads .gxr files, version 1; tools/gxr/Format.h of the library's sources describes them.

A file is read and checked to its end before anything of it is drawn: every number, every reference
and the order of the calls. What a command holds follows from the parameter types of its
GXRenderTarget function, which cffi knows.
"""
import struct
import zlib
from typing import Any, Dict, List, NamedTuple, Tuple

from ._native import ffi, lib
from .values import PixelFormat

MAGIC = b"\x89GXR\r\n\x1a\n"
VERSION = 1
MAX_BODY = 1 << 31
MAX_RATIO = 1032
MAX_SIDE = 65500
MAX_PAGE_PIXELS = 1 << 28
MAX_LIVE_PAGES = 16
MAX_LAYERS = 64
MAX_STATES = 1024

TARGET_CALLS = (
    "BeginPaint EndPaint PushState PopState SetCTM ConcatCTM RotateCTM ScaleCTM TranslateCTM "
    "SetBlendMode SetStrokeAdjustment SetOpacityMask SetShapeMask BeginLayer EndLayer Clear "
    "FillGeometry FillTextGeometry FillRect FillEllipse StrokeGeometry StrokeLine StrokeRect "
    "StrokeEllipse ClipGeometry ClipRect ClipEllipse DrawBitmap StretchBitmap DrawGradient "
    "FillMask InvertRect InvertLine FillText"
).split()
FIRST_TARGET_CALL = 16
END, NEW_SURFACE, DROP_SURFACE, SELECT, SURFACE_BRUSH, SURFACE_PIXELS = range(6)


class RecordingError(ValueError):
    """A file is no recording, or a damaged one; the text says what is wrong."""


class Surface(NamedTuple):
    """The page, or a bitmap that it draws for itself."""

    width: int
    height: int
    format: PixelFormat
    dpi_x: float
    dpi_y: float


class SurfaceBitmap(NamedTuple):
    """An argument: the bitmap of a surface."""

    surface: int


class SurfaceBrush(NamedTuple):
    """An argument: a brush of a surface's bitmap, by its number."""

    brush: int


class Command(NamedTuple):
    """One command: a name of TARGET_CALLS or of a surface's operation, and its arguments."""

    name: str
    arguments: Tuple[Any, ...]


class Reader:
    """Little-endian numbers from bytes."""

    def __init__(self, data: bytes) -> None:
        self._data = memoryview(data)
        self._next = 0

    @property
    def left(self) -> int:
        """The bytes that are left."""
        return len(self._data) - self._next

    def raw(self, size: int) -> memoryview:
        """That many bytes."""
        if size > self.left:
            raise RecordingError("the recording ends too early")
        self._next += size
        return self._data[self._next - size : self._next]

    def get(self, form: str) -> Any:
        """Values as struct names them: one, or a tuple of several."""
        values = struct.unpack("<" + form, self.raw(struct.calcsize("<" + form)))
        return values[0] if len(values) == 1 else values

    def count(self) -> int:
        """A number of seven bits a byte, the lowest first."""
        value = 0
        for shift in range(0, 63, 7):
            byte = self.get("B")
            value |= (byte & 0x7F) << shift
            if byte < 0x80:
                return value
        raise RecordingError("the recording holds a number that is too long")

    def things(self, each: int) -> int:
        """A number of things that take `each` bytes at least: never more than what is left."""
        number = self.count()
        if number > self.left // each:
            raise RecordingError("the recording ends too early")
        return number

    def text(self) -> Any:
        """UTF-16 with a zero at its end."""
        units = self.things(2)
        return ffi.new("uint16_t[]", [*struct.unpack(f"<{units}H", self.raw(2 * units)), 0])

    def surface(self) -> Surface:
        """Size, format and resolution of a surface."""
        width, height, form, dpi_x, dpi_y = self.get("IIIff")
        if not (0 < width <= MAX_SIDE and 0 < height <= MAX_SIDE and 1 <= form <= 10):
            raise RecordingError("the recording holds a surface that cannot be")
        return Surface(width, height, PixelFormat(form), dpi_x, dpi_y)

    def optional(self, kind: Any) -> Any:
        """A record that may be null, as an argument of the library."""
        if not self.get("B"):
            return ffi.NULL
        if kind.cname == "GXStrokeStyle":
            join, cap, miter, phase, dashes = self.get("IIffB")
            if dashes > 15:
                raise RecordingError("the recording holds too many dashes")
            lengths = struct.unpack(f"<{dashes}f", self.raw(4 * dashes))
            return ffi.new("GXStrokeStyle *", (join, cap, miter, 0, phase, lengths, dashes))
        if kind.cname == "GXLayerDesc":
            left, top, right, bottom, opacity, isolated, knockout = self.get("fffffBB")
            box = (left, top, right, bottom)
            return ffi.new("GXLayerDesc *", (box, opacity, isolated, knockout))
        letters = {"float": "f", "uint32_t": "I", "int32_t": "i"}
        form = "".join(letters[member.type.cname] for _, member in kind.fields)
        return ffi.new(ffi.getctype(kind, "*"), self.get(form))


def unpack(data: bytes) -> bytes:
    """The body of a file."""
    if data[:8] != MAGIC:
        raise RecordingError("this is no recording")
    if len(data) < 32:
        raise RecordingError("the recording is cut off")
    version, stored, raw, checksum = struct.unpack("<IQQI", data[8:32])
    if version != VERSION:
        raise RecordingError(f"the recording has version {version}, version {VERSION} is read")
    if stored > len(data) - 32:
        raise RecordingError("the recording is cut off")
    if stored < len(data) - 32:
        raise RecordingError("the recording has something behind its end")
    if checksum != zlib.crc32(data[32:], zlib.crc32(data[:28])):
        raise RecordingError("the recording is damaged: wrong checksum")
    if raw > MAX_BODY or raw > stored * MAX_RATIO:
        raise RecordingError("the recording is damaged: its size cannot be")
    inflate = zlib.decompressobj()
    try:
        body = inflate.decompress(data[32:], raw + 1)
    except zlib.error:
        body = b""
    if len(body) != raw or not inflate.eof:
        raise RecordingError("the recording is damaged: it cannot be unpacked")
    return body


class _Surface:
    def __init__(self, pixels: int) -> None:
        self.pixels = pixels
        self.alive = True
        self.painting = False
        self.open: List[str] = []


class CommandReader:
    """Reads and checks commands.

    `objects` has the handles by the kind of the pointer, number 1 first.
    """

    def __init__(self, page: Surface, objects: Dict[str, List[Any]]) -> None:
        self._limit = MAX_LIVE_PAGES * page.width * page.height
        self._objects = objects
        self._surfaces = [_Surface(0)]
        self._brushes: List[int] = []
        self._selected = 0
        self._open = {"PushState": 0, "BeginLayer": 0}
        self._calls = [
            (name, ffi.typeof(getattr(lib, "GXRenderTarget" + name)).args[1:])
            for name in TARGET_CALLS
        ]

    def read(self, reader: Reader) -> List[Command]:
        """All commands up to the end."""
        commands: List[Command] = []
        while True:
            op = reader.get("B")
            if op == END:
                if reader.left:
                    raise RecordingError("the recording has something behind its last command")
                return commands
            commands.append(self._command(op, reader))

    def _command(self, op: int, reader: Reader) -> Command:
        if op == NEW_SURFACE:
            surface = reader.surface()
            self._surfaces.append(_Surface(surface.width * surface.height))
            if sum(known.pixels for known in self._surfaces if known.alive) > self._limit:
                raise RecordingError("the recording keeps too many surfaces at a time")
            return Command("NewSurface", (surface,))
        if op == DROP_SURFACE:
            number = reader.count()
            if number == 0 or self._surface(number).painting:
                raise RecordingError("the recording drops a surface that is in use")
            self._surfaces[number].alive = False
            self._surfaces[number].pixels = 0
            self._selected = 0 if self._selected == number else self._selected
            return Command("DropSurface", (number,))
        if op == SELECT:
            number = reader.count()
            self._surface(number)
            self._selected = number
            return Command("Select", (number,))
        if op == SURFACE_BRUSH:
            number = reader.count()
            if number == 0:
                raise RecordingError("the recording uses the page as a bitmap")
            self._surface(number)
            self._brushes.append(number)
            opacity = reader.get("f")
            options = reader.optional(ffi.typeof("GXBitmapBrushOptions"))
            return Command(
                "SurfaceBrush", (number, opacity, options, reader.optional(ffi.typeof("GXMatrix")))
            )
        if op == SURFACE_PIXELS:
            number = reader.count()
            source = self.object("GXBitmap", reader.count())
            if number == 0 or self._surface(number).painting:
                raise RecordingError("the recording changes a surface that is in use")
            return Command("SurfacePixels", (number, source))
        if not FIRST_TARGET_CALL <= op < FIRST_TARGET_CALL + len(self._calls):
            raise RecordingError("the recording holds an unknown command")
        name, kinds = self._calls[op - FIRST_TARGET_CALL]
        arguments = tuple(self._argument(kind, reader) for kind in kinds)
        self._follow(name, self._surface(self._selected))
        return Command(name, arguments)

    def _surface(self, number: int) -> _Surface:
        if number >= len(self._surfaces) or not self._surfaces[number].alive:
            raise RecordingError("the recording uses a surface that is not there")
        return self._surfaces[number]

    def object(self, kind: str, number: int) -> Any:
        """The handle of an object; number 0 is null."""
        known = self._objects[kind]
        if number > len(known):
            raise RecordingError("the recording uses an object that is not there")
        return known[number - 1].handle if number else ffi.NULL

    def _argument(self, kind: Any, reader: Reader) -> Any:
        if kind.kind != "pointer":
            return reader.get({"float": "f", "uint32_t": "I", "uint8_t": "B"}[kind.cname])
        if kind.item.cname == "uint16_t":
            return reader.text()
        for name in self._objects:
            if kind is ffi.typeof(name):
                return self._reference(name, reader.count())
        return reader.optional(kind.item)

    def _reference(self, kind: str, number: int) -> Any:
        if kind not in ("GXBitmap", "GXBrush"):
            return self.object(kind, number)
        number, of_surface = number // 2, number % 2
        if not of_surface:
            return self.object(kind, number)
        if kind == "GXBitmap":
            if number == 0:
                raise RecordingError("the recording uses the page as a bitmap")
            self._surface(number)
            return SurfaceBitmap(number)
        if (
            number == 0
            or number > len(self._brushes)
            or not self._surfaces[self._brushes[number - 1]].alive
        ):
            raise RecordingError("the recording uses a brush that is not there")
        return SurfaceBrush(number - 1)

    def _close(self, surface: _Surface, opened: str) -> None:
        if not surface.open or surface.open[-1] != opened:
            raise RecordingError("the recording ends a state or a layer that it did not begin")
        surface.open.pop()
        self._open[opened] -= 1

    def _follow(self, name: str, surface: _Surface) -> None:
        if name == "BeginPaint":
            if surface.painting:
                raise RecordingError("the recording begins to paint twice")
            surface.painting = True
        elif name == "EndPaint":
            if not surface.painting:
                raise RecordingError("the recording ends painting that it did not begin")
            for opened in surface.open:
                self._open[opened] -= 1
            surface.open.clear()
            surface.painting = False
        elif name in ("PushState", "BeginLayer"):
            surface.open.append(name)
            self._open[name] += 1
            if self._open["PushState"] > MAX_STATES or self._open["BeginLayer"] > MAX_LAYERS:
                raise RecordingError("the recording opens too many states or layers")
        elif name == "PopState":
            self._close(surface, "PushState")
        elif name == "EndLayer":
            # States left open inside end with their layer.
            while surface.open and surface.open[-1] == "PushState":
                self._close(surface, "PushState")
            self._close(surface, "BeginLayer")
