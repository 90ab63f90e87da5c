# SPDX-License-Identifier: MIT
"""Builds the package and its tests' counting library in a folder of their own and runs pytest
there.

    run.py FOLDER [--programs FOLDER] [pytest's own options]

GX_INCLUDE and GX_LIBRARY say which library. Ends with 77, and a line that says why, where something
is not installed.
"""
import importlib.util
import os
import shutil
import subprocess
import sys
import sysconfig
from pathlib import Path

HERE = Path(__file__).resolve().parent
PACKAGE = HERE.parent
NEEDED = {
    "cffi": "python3-cffi",
    "numpy": "python3-numpy",
    "pytest": "python3-pytest",
    "PIL": "python3-pil",
    "setuptools": "python3-setuptools",
}
SKIPPED = 77


def missing():
    names = [package for name, package in NEEDED.items() if importlib.util.find_spec(name) is None]
    if not Path(sysconfig.get_paths()["include"], "Python.h").is_file():
        names.append("python3-dev")
    return names


def build(folder):
    """The package as it would be installed, in folder/lib."""
    command = [sys.executable, "setup.py", "-q", "build_ext", "--force"]
    command += [f"--build-lib={folder / 'lib'}", f"--build-temp={folder / 'temp'}"]
    subprocess.run(command, cwd=PACKAGE, check=True)
    for file in (PACKAGE / "src" / "gxgraphics").iterdir():
        if file.suffix in (".py", ".pyi", ".typed") or file.name == "py.typed":
            shutil.copy(file, folder / "lib" / "gxgraphics")


def main(arguments):
    lacking = missing()
    if lacking:
        print(f"Skipped: for {sys.executable} these packages are missing: {' '.join(lacking)}")
        return SKIPPED
    folder = Path(arguments[0]).resolve()
    rest = arguments[1:]
    environment = dict(os.environ)
    if rest[:1] == ["--programs"]:
        environment["GXPY_PROGRAMS"] = str(Path(rest[1]).resolve())
        rest = rest[2:]
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    build(folder)
    sys.path.insert(0, str(HERE))
    import shim

    environment["GXPY_SHIM"] = environment["LD_PRELOAD"] = str(shim.build(folder / "shim"))
    environment["GXPY_OUTPUT"] = str(folder / "pictures")
    environment["PYTHONPATH"] = os.pathsep.join([str(folder / "lib"), str(HERE)])
    environment["PYTHONDONTWRITEBYTECODE"] = "1"
    command = [sys.executable, "-m", "pytest", "-p", "no:cacheprovider", "-q", str(HERE), *rest]
    return subprocess.run(command, cwd=folder, env=environment).returncode


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
