#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""What a call costs from Python: the same calls in C, through cffi alone, and through the package's
classes.

    GX_INCLUDE=... GX_LIBRARY=... python3 tests/overhead.py

The calls in C are a loop compiled here. Each figure is the least of nine runs, in nanoseconds of
processor time a call.
"""
import ctypes
import os
import subprocess
import tempfile
import time
from pathlib import Path

import numpy as np
from shim import build_native

import gxgraphics as gx
from gxgraphics import ffi, lib

CALLS = 20000
C_SOURCE = """
#include <GX/GX.h>
#include <time.h>
static double Now(void) {
    struct timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return (double)t.tv_sec * 1e9 + (double)t.tv_nsec;
}
#define MEASURE(name, call) \\
    double name(GXRenderTarget target, GXGeometry path, GXBrush brush, int calls) { \\
        const GXRect rect = {1, 1, 2, 2}; \\
        const GXPoint point = {3, 4}; \\
        GXSize size; \\
        const double start = Now(); \\
        for (int i = 0; i < calls; ++i) { call; } \\
        (void)target, (void)path, (void)brush, (void)rect, (void)point, (void)size; \\
        return (Now() - start) / calls; \\
    }
MEASURE(get_size, GXRenderTargetGetSize(target, &size))
MEASURE(line_to, GXGeometryLineTo(path, &point))
MEASURE(fill_rect, GXRenderTargetFillRect(target, &rect, brush))
MEASURE(state, GXRenderTargetPushState(target); GXRenderTargetPopState(target))
"""


def c_functions(folder):
    library = build_native.find_library()
    code, made = Path(folder, "calls.c"), Path(folder, "calls.so")
    code.write_text(C_SOURCE)
    where = library.folder or Path("/usr/lib")
    subprocess.run(
        [os.environ.get("CC", "cc"), "-O2", "-shared", "-fPIC", str(code), "-o", str(made)]
        + [f"-I{library.include}", f"-L{where}", f"-Wl,-rpath,{where}", "-lGraphics"],
        check=True,
    )
    return ctypes.CDLL(str(made))


def best(measure):
    return min(measure() for _ in range(9))


def timed(loop):
    start = time.process_time_ns()
    loop()
    return (time.process_time_ns() - start) / CALLS


def main():
    target = gx.RenderTarget.new(16, 16)
    brush, rect, point = gx.Brush(0xFF203040), (1, 1, 2, 2), (3, 4)
    c_rect, c_point = ffi.new("GXRect *", rect), ffi.new("GXPoint *", point)
    size = ffi.new("GXSize *")
    numbers = range(CALLS)

    def new_path():
        return gx.Path().move_to((0, 0))

    def raw_size(path):
        for _ in numbers:
            lib.GXRenderTargetGetSize(target._handle, size)

    def own_size(path):
        for _ in numbers:
            target.size

    def raw_line(path):
        for _ in numbers:
            lib.GXGeometryLineTo(path._handle, c_point)

    def own_line(path):
        for _ in numbers:
            path.line_to(point)

    def raw_rect(path):
        for _ in numbers:
            lib.GXRenderTargetFillRect(target._handle, c_rect, brush._handle)

    def own_rect(path):
        for _ in numbers:
            target.fill_rect(rect, brush)

    def own_color(path):
        for _ in numbers:
            target.fill_rect(rect, "#203040")

    def raw_state(path):
        for _ in numbers:
            lib.GXRenderTargetPushState(target._handle)
            lib.GXRenderTargetPopState(target._handle)

    def own_state(path):
        for _ in numbers:
            with target.state():
                pass

    rows = [
        ("target.size", "get_size", raw_size, own_size),
        ("path.line_to(point)", "line_to", raw_line, own_line),
        ("target.fill_rect(rect, brush), one pixel", "fill_rect", raw_rect, own_rect),
        ("target.fill_rect(rect, '#203040')", "fill_rect", raw_rect, own_color),
        ("with target.state(): pass", "state", raw_state, own_state),
    ]
    with tempfile.TemporaryDirectory() as folder, target.paint():
        calls = c_functions(folder)
        print(f"{'call':42}{'C':>8}{'cffi':>8}{'class':>8}")
        for name, in_c, raw, own in rows:
            function = getattr(calls, in_c)
            function.restype = ctypes.c_double
            arguments = [
                ctypes.c_void_p(int(ffi.cast("uintptr_t", h)))
                for h in (target._handle, brush._handle)
            ]

            def c_loop():
                path = new_path()
                handle = ctypes.c_void_p(int(ffi.cast("uintptr_t", path._handle)))
                return function(arguments[0], handle, arguments[1], CALLS)

            figures = [best(c_loop)]
            for loop in (raw, own):
                figures.append(best(lambda: timed(lambda path=new_path(): loop(path))))
            print(f"{name:42}" + "".join(f"{figure:8.0f}" for figure in figures))

    points = np.random.default_rng(1).normal(0, 100, (1_000_000, 2))
    for kind in (np.float64, np.float32):
        array = points.astype(kind)

        def whole():
            start = time.process_time_ns()
            gx.Path().polyline(array)
            return (time.process_time_ns() - start) / len(array)

        print(f"path.polyline of a million points, {kind.__name__}: {best(whole):.1f} a point")

    pixels = np.zeros((2000, 2000, 4), np.uint8)
    on_array, bitmap = gx.RenderTarget, gx.Bitmap(2000, 2000, fill=None)
    for name, call in (
        ("RenderTarget(array), 16 MB", lambda: on_array(pixels)),
        ("np.asarray(bitmap), 16 MB", lambda: np.asarray(bitmap)),
    ):
        start = time.process_time_ns()
        for _ in range(1000):
            call()
        print(f"{name}: {(time.process_time_ns() - start) / 1000:.0f} in all")


if __name__ == "__main__":
    main()
