# SPDX-License-Identifier: MIT
"""What the tests share.

tests/run.py says which library, build and programs they are about, in the environment.
"""
import gc
import os
from pathlib import Path

import pytest
from shim import Shim

import gxgraphics as gx
from gxgraphics import paint

ROOT = Path(__file__).resolve().parents[3]


@pytest.fixture(scope="session")
def shim():
    """The library that counts calls; tests/run.py loads it first."""
    path = os.environ.get("GXPY_SHIM")
    if not path:
        pytest.skip("the counting library is loaded by tests/run.py")
    return Shim(path)


@pytest.fixture(scope="session")
def program():
    """Finds a built program; the test is skipped where it was not built."""
    folder = Path(os.environ.get("GXPY_PROGRAMS", "/nowhere"))

    def find(name):
        if not (folder / name).exists():
            pytest.skip(f"{name} was not built")
        return folder / name

    return find


def _settle():
    # Brushes of colours are kept for the next use.
    paint._solid.cache_clear()
    gc.collect()


@pytest.fixture
def balanced(shim):
    """A test after which as many owners of objects are left as were there before."""
    _settle()
    before = shim.live()
    yield shim
    _settle()
    assert shim.live() == before


@pytest.fixture
def target():
    """A white target of 64 x 48 pixels inside its paint bracket."""
    made = gx.RenderTarget.new(64, 48, "#ffffff")
    with made.paint():
        yield made


def pytest_collection_modifyitems(items):
    # The test that asks which functions were called comes after all others.
    items.sort(key=lambda item: item.fspath.basename == "test_reach.py")
