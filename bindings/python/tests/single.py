# SPDX-License-Identifier: MIT
"""Single precision, so that a picture computed here has the coordinates of one computed in C."""
import ctypes
import ctypes.util
import struct

_libm = ctypes.CDLL(ctypes.util.find_library("m"))
for _name in ("sinf", "cosf", "sqrtf"):
    getattr(_libm, _name).restype = ctypes.c_float
    getattr(_libm, _name).argtypes = [ctypes.c_float]


def _round(value):
    return struct.unpack("f", struct.pack("f", value))[0]


class F(float):
    """A float of C.

    Rounding operands, then a sum, product or quotient in double once more, gives what C gives.
    """

    def __new__(cls, value):
        return float.__new__(cls, _round(value))

    def __add__(self, other):
        return F(float(self) + _round(other))

    def __sub__(self, other):
        return F(float(self) - _round(other))

    def __rsub__(self, other):
        return F(_round(other) - float(self))

    def __mul__(self, other):
        return F(float(self) * _round(other))

    def __truediv__(self, other):
        return F(float(self) / _round(other))

    def __rtruediv__(self, other):
        return F(_round(other) / float(self))

    def __neg__(self):
        return F(-float(self))

    __radd__, __rmul__ = __add__, __mul__


def sin(value):
    return F(_libm.sinf(value))


def cos(value):
    return F(_libm.cosf(value))


def sqrt(value):
    return F(_libm.sqrtf(value))
