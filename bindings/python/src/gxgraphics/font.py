# SPDX-License-Identifier: MIT
"""Font faces."""
from typing import Tuple

from ._native import ffi, lib
from ._object import Object, c_text
from .errors import check


class FontFace(Object):
    """A font at one size and style; immutable, and may be used by several threads."""

    __slots__ = ()
    _kind = "GXFontFace"

    def __init__(
        self, name: str = "", size: float = 12.0, *, bold: bool = False, italic: bool = False
    ) -> None:
        """Makes a face by its family name; an unknown or empty one gives the platform's default.

        `size` is in points at 96 dots per inch: the em is size * 96 / 72 pixels high, truncated.
        """
        flags = (lib.GXFontBold if bold else 0) | (lib.GXFontItalic if italic else 0)
        out = ffi.new("GXFontFace *")
        check(lib.GXCreateFontFace(c_text(name), flags, size, out), "GXCreateFontFace")
        self._own(out[0])

    def measure(self, text: str) -> Tuple[float, float]:
        """The sum of the advance widths in pixels, and the face's size as it was given."""
        out = ffi.new("float[2]")
        result = lib.GXFontFaceCalculateTextBound(self._handle, c_text(text), out)
        check(result, "GXFontFaceCalculateTextBound")
        return out[0], out[1]
