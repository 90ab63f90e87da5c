# SPDX-License-Identifier: MIT
"""The process's bitmap cache."""
import threading
from typing import Dict, Optional

from ._native import ffi, lib
from ._object import NULL, handle_of
from .bitmap import Bitmap
from .errors import check


class BitmapCache:
    """The one cache of the process; use the instance `bitmap_cache`.

    The library's cache keeps bare handles. This one keeps the bitmaps that were put in through it
    alive until the library forgets them or they are removed.
    """

    def __init__(self) -> None:
        self._kept: Dict[int, Bitmap] = {}
        self._lock = threading.Lock()

    @property
    def quota(self) -> int:
        """The budget in bytes; setting it drops the oldest bitmaps until the rest fit."""
        out = ffi.new("uint64_t *")
        check(lib.GXBitmapCacheGetMemoryQuota(out), "GXBitmapCacheGetMemoryQuota")
        return int(out[0])

    @quota.setter
    def quota(self, size: int) -> None:
        check(lib.GXBitmapCacheSetMemoryQuota(size), "GXBitmapCacheSetMemoryQuota")
        with self._lock:
            self._forget_dropped()

    @property
    def memory_in_use(self) -> int:
        """The bytes that the cached bitmaps count for."""
        out = ffi.new("uint64_t *")
        check(lib.GXBitmapCacheGetMemoryInUse(out), "GXBitmapCacheGetMemoryInUse")
        return int(out[0])

    def put(self, bitmap: Bitmap) -> int:
        """Puts a bitmap in and gives its ticket.

        The oldest ones are dropped while it does not fit.
        """
        out = ffi.new("uint32_t *")
        with self._lock:
            check(lib.GXBitmapCachePut(handle_of(bitmap, Bitmap), out), "GXBitmapCachePut")
            self._kept[out[0]] = bitmap
            self._forget_dropped()
        return int(out[0])

    def get(self, ticket: int) -> Optional[Bitmap]:
        """The bitmap of a ticket; None when it was dropped or removed."""
        with self._lock:
            kept = self._kept.get(ticket)
            handle = self._handle(ticket)
            if handle == NULL:
                self._kept.pop(ticket, None)
                return None
            # What the host put in by itself, it keeps alive by itself.
            return kept if kept is not None else Bitmap.from_handle(handle)

    def remove(self, ticket: int) -> None:
        """Takes the bitmap of a ticket out; an unknown ticket is ignored."""
        with self._lock:
            check(lib.GXBitmapCacheRemove(ticket), "GXBitmapCacheRemove")
            self._kept.pop(ticket, None)

    @staticmethod
    def _handle(ticket: int) -> object:
        out = ffi.new("GXBitmap *")
        check(lib.GXBitmapCacheGet(ticket, out), "GXBitmapCacheGet")
        return out[0]

    def _forget_dropped(self) -> None:
        # The library drops the oldest first, and tickets are kept in their order.
        for ticket in list(self._kept):
            if self._handle(ticket) != NULL:
                break
            del self._kept[ticket]


#: The process's bitmap cache.
bitmap_cache = BitmapCache()
