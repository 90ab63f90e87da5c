# SPDX-License-Identifier: MIT
"""Colours as the library packs them: 0xAARRGGBB, not premultiplied."""
from typing import Any, Sequence, Union

import numpy as np

#: A packed number 0xAARRGGBB; red, green, blue and perhaps alpha from 0 to 1; or "#rgb", "#rrggbb",
#: "#rrggbbaa".
ColorLike = Union[int, str, Sequence[float], np.ndarray]


def channels(color: Any) -> "tuple[float, float, float, float]":
    """Red, green, blue, alpha of a sequence of three or four numbers."""
    values = [float(value) for value in color]
    if len(values) not in (3, 4):
        raise ValueError(f"a colour has three or four channels, not {len(values)}")
    red, green, blue = values[:3]
    return red, green, blue, values[3] if len(values) == 4 else 1.0


def _parse(text: str) -> int:
    digits = text[1:]
    if len(digits) in (3, 4):
        digits = "".join(2 * digit for digit in digits)
    try:
        if not text.startswith("#") or len(digits) not in (6, 8) or not digits.isalnum():
            raise ValueError
        value = int(digits, 16)
    except ValueError:
        raise ValueError(f"not a colour: {text!r}; #rgb, #rrggbb and #rrggbbaa are") from None
    return 0xFF000000 | value if len(digits) == 6 else (value & 0xFF) << 24 | value >> 8


def argb(color: ColorLike) -> int:
    """The packed number of a colour; channels are clamped to 0 to 1 and rounded to 8 bits."""
    if isinstance(color, str):
        return _parse(color)
    if isinstance(color, (int, np.integer)):
        return int(color)
    red, green, blue, alpha = (
        int(min(max(value, 0.0), 1.0) * 255 + 0.5) for value in channels(color)
    )
    return alpha << 24 | red << 16 | green << 8 | blue
