# SPDX-License-Identifier: MIT
"""NumPy arrays as points and pixels of the library, and back, without copies."""
from typing import Any, NamedTuple, Optional, Tuple

import numpy as np

from ._native import ffi
from .values import PixelFormat


def _numbers(values: Any, what: str) -> np.ndarray:
    """An array of native float32 or float64.

    Those come back as they are, other numbers as float64.
    """
    array = np.asarray(values)
    if array.dtype.kind not in "fiub":
        raise TypeError(f"{what}: numbers expected, not {array.dtype}")
    if array.dtype.kind != "f" or array.itemsize not in (4, 8) or not array.dtype.isnative:
        array = array.astype(np.float64)
    return array


def c_points(points: Any, y: Any = None) -> Tuple[Any, int, Any]:
    """Points for the helpers in C: a record, how many, and what keeps its memory alive.

    `points` is n x 2, or x alone where `y` is given. Any strides do.
    """
    xs = _numbers(points, "points")
    if y is None:
        if xs.ndim != 2 or xs.shape[1] != 2:
            if xs.size == 0:
                xs = xs.reshape(0, 2)
            else:
                raise ValueError(f"points are an array of n x 2, not of shape {xs.shape}")
        xs, ys = xs[:, 0], xs[:, 1]
    else:
        ys = _numbers(y, "y")
        if xs.ndim != 1 or xs.shape != ys.shape:
            raise ValueError(f"x and y are arrays of one length, not {xs.shape} and {ys.shape}")
        if xs.dtype != ys.dtype:
            xs, ys = xs.astype(np.float64), ys.astype(np.float64)
    record = ffi.new(
        "gxpy_points *",
        (
            ffi.cast("char *", xs.__array_interface__["data"][0]),
            ffi.cast("char *", ys.__array_interface__["data"][0]),
            xs.strides[0],
            ys.strides[0],
            len(xs),
            int(xs.itemsize == 8),
        ),
    )
    return record, len(xs), (xs, ys)


def pointer_to(array: np.ndarray, kind: str) -> Any:
    """The first byte of an array."""
    return ffi.cast(kind, array.__array_interface__["data"][0])


class Rows(NamedTuple):
    """Rows of pixels in an array's memory; `array` keeps it alive."""

    array: np.ndarray
    width: int
    height: int
    row_bytes: int
    stride: int

    @property
    def address(self) -> int:
        """The first byte of the first row."""
        return int(self.array.__array_interface__["data"][0])


def _shape_of(array: np.ndarray, form: PixelFormat) -> Tuple[int, int]:
    """Width and height of the picture in an array, by its shape and type alone."""
    channels = form.bits // 8
    if array.dtype == np.uint32 and array.dtype.isnative and form.bits == 32 and array.ndim == 2:
        return array.shape[1], array.shape[0]
    if array.dtype != np.uint8:
        raise TypeError(f"pixels of {form.name} are uint8, not {array.dtype}")
    if channels > 1:
        if array.ndim != 3 or array.shape[2] != channels:
            raise ValueError(
                f"{form.name} is an array of height x width x {channels}, not {array.shape}"
            )
    elif array.ndim != 2:
        what = "width" if channels else "bytes of a row"
        raise ValueError(f"{form.name} is an array of height x {what}, not {array.shape}")
    return array.shape[1] * (1 if channels else 8), array.shape[0]


def _packed(array: np.ndarray) -> bool:
    """Whether pixels lie side by side in rows, and rows from the top down without overlapping."""
    inner = array.itemsize
    for axis in range(array.ndim - 1, 0, -1):
        if array.shape[axis] > 1 and array.strides[axis] != inner:
            return False
        inner *= array.shape[axis]
    return array.shape[0] <= 1 or array.strides[0] >= inner


def rows_of(array: Any, form: PixelFormat, *, shared: bool, width: Optional[int] = None) -> Rows:
    """An array as rows of pixels.

    With `shared` the library writes there: the array has to be one, writable and in
    rows; without it what does not lie in rows is copied."""
    if shared and not isinstance(array, np.ndarray):
        raise TypeError(f"a NumPy array to draw into, not {type(array).__name__}")
    array = np.asarray(array)
    across, height = _shape_of(array, form)
    if across == 0 or height == 0:
        raise ValueError(f"the array has no pixels: {array.shape}")
    if width is not None:
        if form.row_bytes(width) > form.row_bytes(across):
            raise ValueError(f"the array is too small: {width} pixels in rows of {across}")
        across = width
    if shared and not array.flags.writeable:
        raise ValueError("the array is read-only")
    if not _packed(array):
        if shared:
            raise ValueError(
                "the pixels of the array do not lie side by side in rows from the top down"
            )
        array = np.ascontiguousarray(array)
    row_bytes = form.row_bytes(across)
    stride = array.strides[0] if height > 1 else row_bytes
    return Rows(array, across, height, row_bytes, stride)


class _Memory:
    """Memory of `owner`, for np.asarray: the array refers to this, and this to the owner."""

    def __init__(self, owner: Any, interface: Any) -> None:
        self.owner = owner
        self.__array_interface__ = interface


def view(
    owner: Any,
    address: int,
    form: PixelFormat,
    width: int,
    height: int,
    row_bytes: int,
    stride: int,
    writable: bool,
) -> np.ndarray:
    """An array over pixels that live as long as `owner`, which it keeps alive.

    One-bit formats come as bytes.
    """
    channels = form.bits // 8
    shape: Tuple[int, ...] = (height, width) if channels == 1 else (height, width, channels)
    strides: Tuple[int, ...] = (stride, 1) if channels == 1 else (stride, channels, 1)
    if channels == 0:
        shape, strides = (height, row_bytes), (stride, 1)
    if 0 in shape:
        array = np.zeros(shape, np.uint8)
        array.flags.writeable = writable
        return array
    return np.asarray(
        _Memory(
            owner,
            {
                "version": 3,
                "typestr": "|u1",
                "shape": shape,
                "strides": strides,
                "data": (address, not writable),
            },
        )
    )


def words(owner: Any, address: int, count: int) -> np.ndarray:
    """A read-only array of uint32 over memory that lives as long as `owner`."""
    return np.asarray(
        _Memory(
            owner,
            {
                "version": 3,
                "typestr": np.dtype(np.uint32).str,
                "shape": (count,),
                "data": (address, True),
            },
        )
    )
