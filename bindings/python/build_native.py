# SPDX-License-Identifier: MIT
"""Builds gxgraphics._native: GX.h as cffi declarations and the C helpers of native/.

Where header and library come from, the first that answers:

1. GX_INCLUDE (the folder that holds GX/GX.h) and GX_LIBRARY (the library, or its folder);
2. pkg-config, module `graphics`;
3. the folders that the system's compiler searches anyway.
"""
import os
import re
import shlex
import subprocess
import sys
import sysconfig
from pathlib import Path
from typing import List, NamedTuple, Optional

import cffi

HERE = Path(__file__).resolve().parent
HELPERS = ["log", "figures", "regions"]


class Library(NamedTuple):
    """Where the header is, and the library's folder; None where the linker finds it by itself."""

    include: Path
    folder: Optional[Path]


class NotFound(Exception):
    """There is no installed library."""


def declarations(header: str) -> str:
    """The declarations of GX.h as cffi reads them: no comments, conditions, attributes or linkage.

    Names that the compiler or the platform defines count as undefined, so that what stands between
    #ifdef __cplusplus and #endif falls out.
    """
    text = re.sub(r"/\*.*?\*/|//[^\n]*", " ", header, flags=re.DOTALL)
    lines: List[str] = []
    shown = [True]
    for line in text.splitlines():
        directive = re.match(r"\s*#\s*(\w+)\s*(.*)", line)
        if directive is None:
            if all(shown):
                lines.append(line)
            continue
        word, rest = directive.groups()
        if word == "ifndef":
            shown.append(True)
        elif word in ("if", "ifdef"):
            if word == "if" and not re.match(r"defined\b", rest):
                raise ValueError("GX.h: a condition that is not understood: " + line)
            shown.append(False)
        elif word == "elif":
            shown[-1] = False
        elif word == "else":
            shown[-1] = not shown[-1]
        elif word == "endif":
            shown.pop()
        elif word == "define" and all(shown) and re.match(r"(?!GX_)\w+\s+\S", rest):
            raise ValueError("GX.h: a constant that is not an enumeration: " + line)
    return re.sub(r"\b(GX_API|GX_NOEXCEPT)\b", " ", "\n".join(lines))


def functions(header: str) -> List[str]:
    """The names of the functions that GX.h declares."""
    return re.findall(r"\bGXResult\s+(GX\w+)\s*\(", declarations(header))


def _from_environment() -> Optional[Library]:
    include, library = os.environ.get("GX_INCLUDE"), os.environ.get("GX_LIBRARY")
    if not include and not library:
        return None
    if not include or not library:
        raise NotFound("GX_INCLUDE and GX_LIBRARY go together: one is set, the other is not")
    path = Path(library).resolve()
    return Library(Path(include).resolve(), path if path.is_dir() else path.parent)


def _pkg_config(*arguments: str) -> Optional[str]:
    command = [os.environ.get("PKG_CONFIG", "pkg-config"), *arguments, "graphics"]
    try:
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return None


def _from_pkg_config() -> Optional[Library]:
    flags, libdir = _pkg_config("--cflags-only-I"), _pkg_config("--variable=libdir")
    if flags is None:
        return None
    folders = [Path(flag[2:]) for flag in shlex.split(flags) if flag.startswith("-I")]
    # pkg-config leaves out the folders that are searched anyway.
    folders += [Path(_pkg_config("--variable=includedir") or "/usr/include"), Path("/usr/include")]
    for folder in folders:
        if (folder / "GX" / "GX.h").is_file():
            return Library(folder, Path(libdir) if libdir else None)
    raise NotFound("pkg-config knows `graphics`, but GX/GX.h is in none of its folders")


def _from_system() -> Optional[Library]:
    for prefix in (sys.prefix, "/usr/local", "/usr"):
        include = Path(prefix) / "include"
        if (include / "GX" / "GX.h").is_file():
            folder = Path(prefix) / "lib"
            return Library(include, folder if any(folder.glob("libGraphics.*")) else None)
    return None


def find_library() -> Library:
    """Finds header and library; NotFound says what to do where there are none."""
    found = _from_environment() or _from_pkg_config() or _from_system()
    if found is None:
        raise NotFound(
            "The Graphics library is not installed where pkg-config or the compiler find it. "
            "Install it, or set GX_INCLUDE to the folder that holds GX/GX.h and GX_LIBRARY to the "
            "library or its folder."
        )
    if not (found.include / "GX" / "GX.h").is_file():
        raise NotFound(f"There is no GX/GX.h in {found.include}")
    if found.folder is not None and not any(found.folder.glob("*Graphics.*")):
        raise NotFound(f"There is no Graphics library in {found.folder}")
    return found


def _searched_by_the_loader(folder: Path) -> bool:
    multiarch = sysconfig.get_config_var("MULTIARCH") or ""
    usual = {Path("/lib"), Path("/usr/lib"), Path("/lib") / multiarch, Path("/usr/lib") / multiarch}
    return folder in usual


def make_ffi() -> cffi.FFI:
    """What setuptools compiles; called by setup.py."""
    library = find_library()
    ffi = cffi.FFI()
    ffi.cdef(declarations((library.include / "GX" / "GX.h").read_text(encoding="utf-8")))
    native = HERE / "native"
    for name in HELPERS:
        ffi.cdef(declarations((native / f"{name}.h").read_text(encoding="utf-8")))
    options = {}
    if library.folder is not None:
        options["library_dirs"] = [str(library.folder)]
        if os.name == "posix" and not _searched_by_the_loader(library.folder):
            options["runtime_library_dirs"] = [str(library.folder)]
    ffi.set_source(
        "gxgraphics._native",
        "#include <GX/GX.h>\n" + "".join(f'#include "{name}.h"\n' for name in HELPERS),
        sources=[f"native/{name}.c" for name in HELPERS],
        include_dirs=[str(native), str(library.include)],
        libraries=["Graphics"],
        depends=[f"native/{name}.h" for name in HELPERS],
        **options,
    )
    return ffi


if __name__ == "__main__":
    # For builds that compile the module themselves: build_native.py _native.c
    make_ffi().emit_c_code(sys.argv[1])
