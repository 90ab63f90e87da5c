# SPDX-License-Identifier: MIT
"""Regions: sets of whole pixels."""
from typing import Any, Iterator, Union

import numpy as np

from ._native import ffi, lib
from ._object import NULL, Object, c_int_rect
from .arrays import pointer_to
from .errors import check
from .values import Combine, IntRect

#: A Region or a rectangle of whole pixels.
RegionLike = Union["Region", Any]


class Region(Object):
    """A set of whole pixels.

    `|`, `&`, `^` and `-` make new ones, with a region or a rectangle on the right.
    """

    __slots__ = ()
    _kind = "GXRegion"

    def __init__(self, rect: Any = None) -> None:
        """Makes an empty region, or one of a rectangle."""
        out = ffi.new("GXRegion *")
        if rect is None:
            check(lib.GXCreateRegion(out), "GXCreateRegion")
        else:
            check(lib.GXCreateRegionFromRect(c_int_rect(rect), out), "GXCreateRegionFromRect")
        self._own(out[0])

    @classmethod
    def from_rects(cls, rects: Any) -> "Region":
        """The union of many rectangles: an n x 4 array of whole numbers."""
        array = np.asarray(rects)
        if array.size == 0:
            return cls()
        if array.ndim != 2 or array.shape[1] != 4:
            raise ValueError(f"rectangles are an array of n x 4, not of shape {array.shape}")
        if array.dtype.kind not in "iu":
            raise TypeError(f"rectangles of a region are whole numbers, not {array.dtype}")
        if array.min() < -(2**31) or array.max() >= 2**31:
            raise OverflowError("coordinates of a region have 32 bits")
        array = np.ascontiguousarray(array, dtype=np.int32)
        out = ffi.new("GXRegion *")
        result = lib.gxpy_region_of(pointer_to(array, "int32_t *"), len(array), out)
        check(result, "GXRegionCombine")
        return cls._owning(out[0])

    def rects(self) -> np.ndarray:
        """The rectangles of the region: an n x 4 array of int32, from the top, from left to
        right inside a band."""
        found = ffi.new("gxpy_rect_list *")
        check(lib.gxpy_read_region(self._handle, found), "GXRegionEnumRects")
        array = np.empty((found.count, 4), np.int32)
        found.rects, found.room = pointer_to(array, "int32_t *"), len(array)
        check(lib.gxpy_read_region(self._handle, found), "GXRegionEnumRects")
        return array

    def __iter__(self) -> Iterator[IntRect]:
        return (IntRect(*rect) for rect in self.rects().tolist())

    def combine(self, other: RegionLike, mode: Combine) -> "Region":
        """A new region from this one and another, or a rectangle."""
        out = ffi.new("GXRegion *")
        if isinstance(other, Region):
            result = lib.GXRegionCombine(self._handle, other._handle, mode, out)
            check(result, "GXRegionCombine")
        else:
            result = lib.GXRegionCombineRect(self._handle, _rect(other), mode, out)
            check(result, "GXRegionCombineRect")
        return Region._owning(out[0])

    def __and__(self, other: RegionLike) -> "Region":
        return self.combine(other, Combine.INTERSECTION)

    def __or__(self, other: RegionLike) -> "Region":
        return self.combine(other, Combine.UNION)

    def __xor__(self, other: RegionLike) -> "Region":
        return self.combine(other, Combine.EXCLUSIVE_OR)

    def __sub__(self, other: RegionLike) -> "Region":
        return self.combine(other, Combine.DIFFERENCE)

    def offset(self, dx: int, dy: int) -> "Region":
        """Moves this region and returns it."""
        check(lib.GXRegionOffset(self._handle, dx, dy), "GXRegionOffset")
        return self

    @property
    def empty(self) -> bool:
        """Whether no pixel is covered."""
        out = ffi.new("uint8_t *")
        check(lib.GXRegionIsAreaEmpty(self._handle, out), "GXRegionIsAreaEmpty")
        return bool(out[0])

    def __bool__(self) -> bool:
        return not self.empty

    @property
    def bounds(self) -> IntRect:
        """The smallest rectangle around the region."""
        out = ffi.new("GXIntRect *")
        check(lib.GXRegionGetBound(self._handle, out), "GXRegionGetBound")
        return IntRect(out.left, out.top, out.right, out.bottom)

    def contains(self, other: RegionLike) -> bool:
        """Whether the whole of another region, or of a rectangle, is in this one."""
        out = ffi.new("uint8_t *")
        if isinstance(other, Region):
            check(lib.GXRegionContains(self._handle, other._handle, out), "GXRegionContains")
        else:
            result = lib.GXRegionContainsRect(self._handle, _rect(other), out)
            check(result, "GXRegionContainsRect")
        return bool(out[0])

    def intersects(self, other: RegionLike) -> bool:
        """Whether this region shares a pixel with another one, or with a rectangle."""
        out = ffi.new("uint8_t *")
        if isinstance(other, Region):
            result = lib.GXRegionHasIntersection(self._handle, other._handle, out)
            check(result, "GXRegionHasIntersection")
        else:
            result = lib.GXRegionHasIntersectionWithRect(self._handle, _rect(other), out)
            check(result, "GXRegionHasIntersectionWithRect")
        return bool(out[0])

    def bounds_contain(self, point: Any) -> bool:
        """Whether a point lies in the region's bounds, all four sides included: a quick test."""
        x, y = (value.__index__() for value in point)
        out = ffi.new("uint8_t *")
        check(lib.GXRegionContainsPoint(self._handle, [(x, y)], out), "GXRegionContainsPoint")
        return bool(out[0])

    def __repr__(self) -> str:
        return f"<Region {tuple(self.bounds)}>"


def _rect(rect: Any) -> Any:
    made = c_int_rect(rect)
    if made == NULL:
        raise TypeError("a Region or a rectangle, not None")
    return made
