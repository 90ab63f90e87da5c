# SPDX-License-Identifier: MIT
"""A library to load before the Graphics library: every function of GX.h passes through it and is
counted.

It counts calls, and objects made and given back; it can hold drawing calls until two threads are in
one at the same time. It is written by this file from GX.h, so that it has the functions that the
header has.
"""
import ctypes
import importlib.util
import os
import re
import subprocess
import sys
from pathlib import Path

_spec = importlib.util.spec_from_file_location(
    "build_native", Path(__file__).resolve().parents[1] / "build_native.py"
)
build_native = importlib.util.module_from_spec(_spec)
sys.modules["build_native"] = build_native
_spec.loader.exec_module(build_native)

_HEAD = r"""
#define _GNU_SOURCE
#include <GX/GX.h>
#include <dlfcn.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

static long g_calls[FUNCTIONS];
static long g_live;
long shim_calls(int index) { return __atomic_load_n(&g_calls[index], __ATOMIC_SEQ_CST); }
long shim_live(void) { return __atomic_load_n(&g_live, __ATOMIC_SEQ_CST); }
static void Enter(int index) { __atomic_add_fetch(&g_calls[index], 1, __ATOMIC_SEQ_CST); }
static void Made(long count) { __atomic_add_fetch(&g_live, count, __ATOMIC_SEQ_CST); }
static void* Next(const char* name) {
    void* found = dlsym(RTLD_NEXT, name);
    if (!found) {
        fprintf(stderr, "shim: no %s\n", name);
        abort();
    }
    return found;
}

/* While armed, a drawing call waits until another thread is in one, too, and counts that. The time
limit only ends a
 * run in which that never happens. */
static pthread_mutex_t g_mutex = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t g_changed = PTHREAD_COND_INITIALIZER;
static int g_armed, g_inside, g_met;
void shim_arm(int armed) {
    pthread_mutex_lock(&g_mutex);
    g_armed = armed;
    g_inside = 0;
    if (armed) {
        g_met = 0;
    }
    pthread_mutex_unlock(&g_mutex);
}
int shim_met(void) { return g_met; }
static void Meet(void) {
    pthread_mutex_lock(&g_mutex);
    if (g_armed) {
        struct timespec limit;
        clock_gettime(CLOCK_REALTIME, &limit);
        limit.tv_sec += 30;
        const int met = g_met;
        if (++g_inside == 2) {
            ++g_met;
            g_inside = 0;
            pthread_cond_broadcast(&g_changed);
        }
        while (g_armed && g_met == met && pthread_cond_timedwait(&g_changed, &g_mutex, &limit) == 0)
        { } if (g_met == met) {
            g_armed = 0; /* nobody came: let all others pass */
        }
    }
    pthread_mutex_unlock(&g_mutex);
}

/* FNV-1a of 64 bits: what the list of checksums of the recorded pages holds. */
uint64_t shim_checksum(const unsigned char* bytes, size_t size) {
    uint64_t sum = 0xCBF29CE484222325u;
    for (size_t i = 0; i < size; ++i) {
        sum = (sum ^ bytes[i]) * 0x100000001B3u;
    }
    return sum;
}
"""

_HANDLES = "Bitmap|Brush|FontFace|Geometry|Gradient|Palette|Region|RenderTarget"


def source(header):
    """The C text of the shim."""
    text = build_native.declarations(header)
    found = re.findall(r"\bGXResult\s+(GX\w+)\s*\(([^)]*)\)\s*;", text)
    parts = [f"#define FUNCTIONS {len(found)}", _HEAD]
    for index, (name, parameters) in enumerate(found):
        names = re.findall(r"(\w+)\s*(?:\[\d*\])?\s*(?:,|$)", parameters.strip())
        passed = "" if parameters.strip() == "void" else ", ".join(names)
        after = ""
        out = re.search(rf"\bGX(?:{_HANDLES})\s*\*\s*(\w+)$", parameters.strip())
        if name == "GXObjectRelease":
            after = "if (result == GXResultSuccess) Made(-1);"
        elif name == "GXObjectAcquire":
            after = "if (result == GXResultSuccess) Made(1);"
        elif out and name != "GXBitmapCacheGet":
            after = f"if (result == GXResultSuccess && *{out.group(1)}) Made(1);"
        meet = "Meet();" if name == "GXRenderTargetFillGeometry" else ""
        parts.append(
            f"GXResult {name}({parameters}) {{\n"
            f"    static GXResult (*real)({parameters});\n"
            f'    if (!real) *(void**)&real = Next("{name}");\n'
            f"    Enter({index});\n    {meet}\n"
            f"    const GXResult result = real({passed});\n    {after}\n    return result;\n}}"
        )
    return "\n".join(parts)


def build(folder):
    """Compiles the shim; answers its path."""
    library = build_native.find_library()
    header = (library.include / "GX" / "GX.h").read_text(encoding="utf-8")
    folder.mkdir(parents=True, exist_ok=True)
    code, made = folder / "shim.c", folder / "libgxshim.so"
    code.write_text(source(header), encoding="utf-8")
    command = [os.environ.get("CC", "cc"), "-std=gnu11", "-O1", "-w", "-shared", "-fPIC", str(code)]
    command += [f"-I{library.include}", f"-L{library.folder or '/usr/lib'}"]
    # It calls the library by dlsym alone, which is no reference for the linker.
    command += ["-Wl,--no-as-needed", "-lGraphics"]
    command += [f"-Wl,-rpath,{library.folder or '/usr/lib'}", "-o", str(made)]
    subprocess.run(command, check=True)
    return made


class Shim:
    """The loaded shim."""

    def __init__(self, path):
        self._library = ctypes.CDLL(path)
        self._library.shim_calls.restype = ctypes.c_long
        self._library.shim_live.restype = ctypes.c_long
        self._library.shim_checksum.restype = ctypes.c_uint64
        self._library.shim_checksum.argtypes = [ctypes.c_void_p, ctypes.c_size_t]
        library = build_native.find_library()
        header = (library.include / "GX" / "GX.h").read_text(encoding="utf-8")
        self.functions = build_native.functions(header)

    def calls(self, name):
        """How often a function was called."""
        return self._library.shim_calls(self.functions.index(name))

    def live(self):
        """How many owners of objects there are."""
        return self._library.shim_live()

    def arm(self, armed):
        """Makes GXRenderTargetFillGeometry wait for another thread, or not any more."""
        self._library.shim_arm(int(armed))

    def met(self):
        """How often two threads were in GXRenderTargetFillGeometry at the same time since
        arm(True)."""
        return self._library.shim_met()

    def checksum(self, array):
        """The checksum of an array's bytes, as the recorded pages' list has it."""
        data = array.tobytes()
        return self._library.shim_checksum(data, len(data))
