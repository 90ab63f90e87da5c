# SPDX-License-Identifier: MIT
"""The package as such: in step with GX.h, typed, documented, installable."""
import inspect
import os
import re
import subprocess
import sys
import typing
import venv
from pathlib import Path

import pytest
from conftest import ROOT
from shim import build_native

import gxgraphics as gx

PACKAGE = Path(__file__).resolve().parents[1]


def header_text():
    return (build_native.find_library().include / "GX" / "GX.h").read_text(encoding="utf-8")


def test_every_function_and_constant_of_the_header_is_there():
    text = header_text()
    exported = re.findall(r"^GX_API GXResult (GX\w+)", text, re.MULTILINE)
    assert len(exported) > 100 and build_native.functions(text) == exported
    assert [name for name in exported if not hasattr(gx.lib, name)] == []
    constants = re.findall(r"\b(GX[A-Z]\w+) = (\d+)", text)
    assert len(constants) > 50
    assert {name: getattr(gx.lib, name) for name, _ in constants} == {
        n: int(v) for n, v in constants
    }


def test_enumerations_have_all_values():
    text = header_text()
    prefixes = {
        "PixelFormat": gx.PixelFormat,
        "FillRule": gx.FillRule,
        "BlendMode": gx.BlendMode,
        "LineCap": gx.LineCap,
        "LineJoin": gx.LineJoin,
        "Interpolation": gx.Interpolation,
        "Extend": gx.Extend,
        "MaskType": gx.MaskType,
        "Combine": gx.Combine,
    }
    for prefix, kind in prefixes.items():
        values = {
            int(v) for n, v in re.findall(rf"\bGX{prefix}(\w+) = (\d+)", text) if n != "Unknown"
        }
        assert values == {int(member) for member in kind}, prefix


@pytest.mark.parametrize(
    "line", ["#if GX_VERSION > 2", "#define GXLimit 12"], ids=["a condition", "a constant"]
)
def test_headers_that_are_not_understood_are_refused(line):
    with pytest.raises(ValueError, match="GX.h"):
        build_native.declarations(f"typedef int GXFirst;\n{line}\n")


def test_version_is_that_of_the_library():
    version = re.search(
        r"project\(Graphics VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text()
    ).group(1)
    assert gx.__version__ == version
    assert f'version = "{version}"' in (PACKAGE / "pyproject.toml").read_text()


def public_things():
    for name in gx.__all__:
        thing = getattr(gx, name)
        if inspect.isclass(thing) and thing.__module__.startswith("gxgraphics"):
            yield name, thing
            for member, value in vars(thing).items():
                if not member.startswith("_") or member == "__init__":
                    value = getattr(value, "__func__", value)
                    value = getattr(value, "fget", value)
                    if inspect.isfunction(value):
                        yield f"{name}.{member}", value
        elif inspect.isfunction(thing):
            yield name, thing


def test_everything_public_is_typed_and_documented():
    lacking = []
    for name, thing in public_things():
        value = inspect.unwrap(thing)
        if inspect.isfunction(value):
            hints = typing.get_type_hints(value)
            wanted = set(inspect.signature(value).parameters) - {"self", "cls"} | {"return"}
            if wanted - set(hints):
                lacking.append((name, sorted(wanted - set(hints))))
        if (
            not inspect.getdoc(thing)
            and not name.startswith("StrokeStyle")
            and name[-8:] != "__init__"
        ):
            lacking.append((name, "docstring"))
    assert lacking == []
    assert (Path(gx.__file__).parent / "py.typed").exists()


def without_library(**more):
    names = ("GX_INCLUDE", "GX_LIBRARY", "PKG_CONFIG_PATH", "LD_PRELOAD", "PYTHONPATH", "GXPY_SHIM")
    environment = {name: value for name, value in os.environ.items() if name not in names}
    return {**environment, **more}


def find(environment):
    code = "import build_native as b; found = b.find_library(); print(found.include, found.folder)"
    done = subprocess.run(
        [sys.executable, "-c", code], cwd=PACKAGE, env=environment, capture_output=True, text=True
    )
    return done.stdout.strip() if done.returncode == 0 else done.stderr.strip().splitlines()[-1]


def test_ways_to_find_the_library(tmp_path):
    library = build_native.find_library()
    expected = f"{library.include} {library.folder}"
    (tmp_path / "graphics.pc").write_text(
        f"libdir={library.folder}\nincludedir={library.include}\n"
        "Name: graphics\nDescription: d\nVersion: 1\n"
        "Libs: -L${libdir} -lGraphics\nCflags: -I${includedir}\n"
    )
    assert find(without_library(PKG_CONFIG_PATH=str(tmp_path))) == expected
    include, folder = str(library.include), str(library.folder)
    assert find(without_library(GX_INCLUDE=include, GX_LIBRARY=folder)) == expected
    file = str(library.folder / "libGraphics.so")
    assert find(without_library(GX_INCLUDE=include, GX_LIBRARY=file)) == expected
    assert "go together" in find(without_library(GX_INCLUDE=include))
    assert "no GX/GX.h" in find(without_library(GX_INCLUDE=str(tmp_path), GX_LIBRARY=folder))
    assert "no Graphics library" in find(
        without_library(GX_INCLUDE=include, GX_LIBRARY=str(tmp_path))
    )


def test_pip_installs_it_without_a_network(tmp_path):
    if subprocess.run([sys.executable, "-m", "pip", "--version"], capture_output=True).returncode:
        pytest.skip("pip is not installed")
    library = build_native.find_library()
    environment = without_library(
        GX_INCLUDE=str(library.include),
        GX_LIBRARY=str(library.folder),
        PIP_NO_INDEX="1",
        PIP_CONFIG_FILE=os.devnull,
    )
    venv.create(tmp_path / "env", system_site_packages=True, with_pip=False)
    python = tmp_path / "env" / "bin" / "python"
    # pip builds in the folder that it is given.
    sources = tmp_path / "sources"
    copy = ["cp", "-r", *(str(PACKAGE / name) for name in os.listdir(PACKAGE) if name != "build")]
    sources.mkdir()
    subprocess.run([*copy, str(sources)], check=True)
    command = [str(python), "-m", "pip", "install", "--quiet", str(sources)]
    done = subprocess.run(command, env=environment, capture_output=True, text=True, timeout=600)
    assert done.returncode == 0, done.stdout + done.stderr
    code = (
        "import gxgraphics as gx; print(gx.__file__, gx.Bitmap(3, 2).size, gx.Brush('#123').handle)"
    )
    done = subprocess.run(
        [str(python), "-c", code], cwd=tmp_path, env=environment, capture_output=True, text=True
    )
    assert done.stdout.startswith(str(tmp_path / "env")), done.stderr
