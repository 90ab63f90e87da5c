# SPDX-License-Identifier: MIT
"""Result codes as exceptions."""
from typing import NoReturn, Optional

from ._native import ffi, lib

# The library has sinks by number; this one is the package's.
_SINK_KEY = 0x67787079
lib.GXLogSetSink(_SINK_KEY, ffi.addressof(lib, "gxpy_keep_line"), ffi.NULL)


class Error(Exception):
    """A call of the library failed.

    `result` is its GXResult, `function` its name. `message` is the reason that the library gave and
    `diagnostic` the whole line that went to its log; both are None where it gave none.
    """

    def __init__(self, result: int, function: str, diagnostic: Optional[str] = None) -> None:
        self.result = result
        self.function = function
        self.diagnostic = diagnostic
        self.message = None if diagnostic is None else diagnostic.rpartition("\n\t")[2]
        super().__init__(result, function, diagnostic)

    def __str__(self) -> str:
        return f"{self.function}: {self.message or self._reason()}"

    def _reason(self) -> str:
        return f"result {self.result}"


class InvalidArgument(Error, ValueError):
    """GXResultInvalidArgument: a value is outside what the function takes."""

    def _reason(self) -> str:
        return "invalid argument"


class IndexOutOfRange(Error, IndexError):
    """GXResultIndexOutOfRange: an index is not below the count."""

    def _reason(self) -> str:
        return "index out of range"


class EngineError(Error, RuntimeError):
    """GXResultEngineError: the library refused or could not do the work; `message` says why."""


class UnexpectedError(Error, MemoryError):
    """GXResultUnexpectedError: any other failure, in practice memory that ran out."""

    def _reason(self) -> str:
        return "unexpected error, as when memory runs out"


_CLASSES = {
    lib.GXResultInvalidArgument: InvalidArgument,
    lib.GXResultIndexOutOfRange: IndexOutOfRange,
    lib.GXResultEngineError: EngineError,
    lib.GXResultUnexpectedError: UnexpectedError,
}


def _take_line() -> Optional[str]:
    line = ffi.new("char[1024]")
    length = lib.gxpy_take_line(line, len(line))
    return ffi.unpack(line, length).decode("utf-8", "replace") if length else None


def fail(result: int, function: str) -> NoReturn:
    """Raises what `result` of `function` stands for."""
    # Other results give no line: what this thread has is of an earlier call.
    line = _take_line() if result == lib.GXResultEngineError else None
    raise _CLASSES.get(result, Error)(result, function, line)


def check(result: int, function: str) -> None:
    """Raises unless `result` is success."""
    if result:
        fail(result, function)
