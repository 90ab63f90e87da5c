# SPDX-License-Identifier: MIT
"""The owner of a handle, and what all modules need to pass values to the library."""
import os
import sys
from typing import Any, Type, TypeVar

from ._native import ffi, lib
from .errors import check

NULL = ffi.NULL
Self = TypeVar("Self", bound="Object")


class Object:
    """Owns one count of a library object and gives it back when it is dropped.

    An object of the library lives on while another one uses it, so Python objects may be dropped in
    any order. The count may be given back on any thread.
    """

    __slots__ = ("_handle", "__weakref__")
    _kind = "void *"

    def _own(self, handle: Any) -> None:
        if getattr(self, "_handle", None) is not None:
            lib.GXObjectRelease(handle)
            raise RuntimeError(f"{type(self).__name__} is already made")
        self._handle = handle

    @classmethod
    def _owning(cls: Type[Self], handle: Any) -> Self:
        made = cls.__new__(cls)
        made._handle = handle
        return made

    @classmethod
    def from_handle(cls: Type[Self], handle: Any) -> Self:
        """Another owner of an object made elsewhere, by its C handle, from cffi or as a number.

        The handle is trusted to be of this class's kind.
        """
        pointer = ffi.cast(cls._kind, handle)
        check(lib.GXObjectAcquire(pointer), "GXObjectAcquire")
        return cls._owning(pointer)

    @property
    def handle(self) -> Any:
        """The C handle (cffi), for functions of `gxgraphics.lib`; it stays this object's."""
        return self._handle

    # The finalizer runs before anything that the object refers to is taken apart, memory of the
    # host's included; what it needs is bound, because modules are emptied when the interpreter
    # ends.
    def __del__(self, _release: Any = lib.GXObjectRelease) -> None:
        handle = getattr(self, "_handle", None)
        if handle is not None:
            _release(handle)

    def __reduce_ex__(self, protocol: Any) -> Any:
        raise TypeError(f"{type(self).__name__} cannot be pickled or copied this way")


def handle_of(value: Any, kind: Type[Object]) -> Any:
    """The handle of an argument that has to be of a class."""
    if isinstance(value, kind):
        return value._handle
    raise TypeError(f"{kind.__name__} expected, not {type(value).__name__}")


def c_point(point: Any) -> Any:
    """A point as an argument of the library."""
    x, y = point
    return [(x, y)]


def c_rect(rect: Any) -> Any:
    """A rectangle as an argument of the library."""
    left, top, right, bottom = rect
    return [(left, top, right, bottom)]


def c_int_rect(rect: Any) -> Any:
    """A rectangle of whole pixels as an argument of the library; null for None."""
    if rect is None:
        return NULL
    left, top, right, bottom = (value.__index__() for value in rect)
    return [(left, top, right, bottom)]


def c_text(text: str) -> Any:
    """A string as UTF-16 that ends with a zero."""
    if "\0" in text:
        raise ValueError("text cannot hold a null character")
    units = text.encode("utf-16-le" if sys.byteorder == "little" else "utf-16-be", "surrogatepass")
    return ffi.from_buffer("uint16_t[]", units + b"\0\0")


def c_path(path: Any) -> str:
    """The path of a file; cffi makes it wchar_t."""
    name = os.fsdecode(path)
    if "\0" in name:
        raise ValueError("a path cannot hold a null character")
    return name
