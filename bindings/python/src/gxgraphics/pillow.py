# SPDX-License-Identifier: MIT
"""Pillow images in and out. Pillow itself is loaded when it is needed."""
from typing import TYPE_CHECKING, Any, Type

import numpy as np

from .values import PixelFormat

if TYPE_CHECKING:
    from .bitmap import Bitmap

# Format and the layout of Pillow's raw codec by mode.
_IN = {
    "1": (PixelFormat.BLACK_WHITE1, "1"),
    "L": (PixelFormat.GRAY8, "L"),
    "P": (PixelFormat.INDEXED8, "P"),
    "RGB": (PixelFormat.BGR24, "BGR"),
    "RGBA": (PixelFormat.BGRA32, "BGRA"),
}
# Mode and raw layout by format.
_OUT = {
    PixelFormat.BGR24: ("RGB", "BGR"),
    PixelFormat.BGRA32: ("RGBA", "BGRA"),
    PixelFormat.BGRX32: ("RGB", "BGRX"),
    PixelFormat.GRAY8: ("L", "L"),
    PixelFormat.BLACK_WHITE1: ("1", "1"),
    PixelFormat.INDEXED8: ("P", "P"),
}


def _palette_of(image: Any) -> Any:
    """The packed colours of a palette image."""
    rgb = np.frombuffer(image.im.getpalette("RGB", "RGB"), np.uint8).reshape(-1, 3)
    rgb = rgb.astype(np.uint32)
    alpha = np.full(len(rgb), 255, np.uint32)
    transparent = image.info.get("transparency")
    if isinstance(transparent, bytes):
        alpha[: len(transparent)] = np.frombuffer(transparent, np.uint8)[: len(alpha)]
    elif isinstance(transparent, int):
        alpha[transparent] = 0
    return alpha << 24 | rgb[:, 0] << 16 | rgb[:, 1] << 8 | rgb[:, 2]


def from_pil(kind: "Type[Bitmap]", image: Any) -> "Bitmap":
    """A bitmap from an image; modes beyond those of the library become RGB or RGBA."""
    from .bitmap import Palette

    mode = image.mode
    if mode == "P" and image.im.getpalettemode() == "RGBA":
        mode = "RGBA"
    elif mode not in _IN or ("transparency" in image.info and mode != "P"):
        translucent = "A" in mode or "a" in mode or "transparency" in image.info
        mode = "RGBA" if translucent else "RGB"
    if mode != image.mode:
        image = image.convert(mode)
    format, raw = _IN[mode]
    width, height = image.size
    dpi = image.info.get("dpi", (96.0, 96.0))
    data = np.frombuffer(image.tobytes("raw", raw), np.uint8)
    shape = (height, width, format.bits // 8) if format.bits > 8 else (height, -1)
    resolution = (float(dpi[0]) or 96.0, float(dpi[1]) or 96.0)
    bitmap = kind.from_array(data.reshape(shape), format, resolution, width)
    if mode == "P":
        bitmap.palette = Palette(_palette_of(image))
    return bitmap


def to_pil(bitmap: "Bitmap") -> Any:
    """An image with a copy of the pixels; what Pillow has no mode for becomes RGBA or grey."""
    from PIL import Image

    palette = bitmap.palette if bitmap.format == PixelFormat.INDEXED8 else None
    if bitmap.format not in _OUT or (palette is not None and len(palette) > 256):
        bitmap = bitmap.convert(PixelFormat.BGRA32)
    mode, raw = _OUT[bitmap.format]
    if mode == "P" and palette is None:
        mode = raw = "L"
    pixels = bitmap.read()
    image = Image.frombytes(mode, bitmap.size, pixels.tobytes(), "raw", raw)
    if mode == "P" and palette is not None:
        colors = palette.colors
        rgb = np.stack([colors >> 16, colors >> 8, colors], axis=1).astype(np.uint8)
        image.putpalette(rgb.tobytes(), "RGB")
        alpha = (colors >> 24).astype(np.uint8)
        if (alpha != 255).any():
            image.info["transparency"] = alpha.tobytes()
    image.info["dpi"] = bitmap.dpi
    return image
