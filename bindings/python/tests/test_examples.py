# SPDX-License-Identifier: MIT
"""The example programs, as a user runs them."""
import os
import re
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest
from conftest import ROOT

import gxgraphics as gx

EXAMPLES = Path(__file__).resolve().parents[1] / "examples"
GALLERY = sorted(str(file) for file in (ROOT / "docs" / "gallery").glob("*.png"))


@pytest.fixture
def run(tmp_path):
    # The pictures stay where they can be looked at.
    folder = Path(os.environ.get("GXPY_OUTPUT", tmp_path))
    folder.mkdir(parents=True, exist_ok=True)

    def run_example(name, *arguments):
        command = [sys.executable, str(EXAMPLES / name), *map(str, arguments)]
        done = subprocess.run(command, capture_output=True, text=True, timeout=300)
        assert (done.returncode, done.stderr) == (0, ""), done.stderr
        return done.stdout

    run_example.folder = folder
    return run_example


def close_to(pixels, color):
    """How many pixels have nearly that colour."""
    return int((np.abs(pixels[..., :3].astype(int) - color).max(axis=-1) < 12).sum())


def test_every_example_has_a_test():
    text = Path(__file__).read_text(encoding="utf-8")
    assert [file.name for file in EXAMPLES.glob("*.py") if f'"{file.name}"' not in text] == []


def test_programs_of_the_readme(tmp_path, monkeypatch):
    text = (EXAMPLES.parent / "README.md").read_text(encoding="utf-8")
    programs = re.findall(r"```python\n(.*?)```", text, re.DOTALL)
    assert len(programs) == 2
    monkeypatch.chdir(tmp_path)
    first, arrays = {}, {}
    exec(programs[0], first)
    assert np.array_equal(gx.Bitmap.open("hello.png").to_rgba(), first["target"].bitmap.to_rgba())
    exec(programs[1], arrays)
    assert np.array_equal(arrays["view"], arrays["pixels"]) and arrays["pixels"].any()


def test_chart(run):
    run("chart.py", run.folder / "chart.png")
    pixels = gx.Bitmap.open(run.folder / "chart.png").to_rgba()
    assert pixels.shape == (420, 720, 4)
    red = close_to(pixels, (0xC1, 0x12, 0x1F))
    assert red > 700
    # The line has a gap where there is no data.
    gap = pixels[56:364, 432:464]
    assert close_to(gap, (0xC1, 0x12, 0x1F)) == 0 and close_to(gap, (0x33, 0x41, 0x5C)) > 0


def test_map(run):
    run("map_from_arrays.py", run.folder / "map.png")
    pixels = gx.Bitmap.open(run.folder / "map.png").to_rgba()
    assert pixels.shape == (480, 720, 4)
    assert close_to(pixels, (0x1D, 0x3F, 0x5E)) > 1000  # the coast
    assert close_to(pixels, (0x7A, 0x1F, 0x1F)) > 100  # the places
    assert len(np.unique(pixels.reshape(-1, 4), axis=0)) > 10000  # the relief


def test_watermark(run):
    told = run("watermark.py", run.folder / "marked", "© Example", *GALLERY)
    written = told.splitlines()
    assert len(written) == len(GALLERY)
    for before, after in zip(GALLERY, written):
        old, new = gx.Bitmap.open(before), gx.Bitmap.open(after)
        assert old.size == new.size
        changed = (old.to_rgba() != new.to_rgba()).any(axis=2).mean()
        assert 0.03 < changed < 0.7


def test_contact_sheet(run, tmp_path):
    colors = [(200, 0, 0), (0, 150, 0), (0, 0, 220)]
    images = []
    for index, color in enumerate(colors):
        images.append(
            tmp_path / f"image-{index}-with-a-name-that-is-much-too-long-for-the-sheet.png"
        )
        gx.Bitmap(400, 200 + 400 * index, fill=[channel / 255 for channel in color]).save(
            images[-1]
        )
    broken = tmp_path / "broken.png"
    broken.write_bytes(b"no picture")
    run("contact_sheet.py", run.folder / "sheet.png", *images, broken)
    pixels = gx.Bitmap.open(run.folder / "sheet.png").to_rgba()
    areas = [close_to(pixels, color) for color in colors]
    for area, (width, height) in zip(areas, ((164, 82), (109, 164), (66, 164))):
        assert abs(area - width * height) < width + height
    assert close_to(pixels, (0xC1, 0x12, 0x1F)) > 4 * 100
    run("contact_sheet.py", run.folder / "gallery.png", *GALLERY)


def test_recorded_page(run):
    recording = ROOT / "tests" / "pages" / "recordings" / "vector_tiger-1.gxr"
    run("recorded_page.py", recording, run.folder / "page.png", 0.47, 0.3)
    run("recorded_page.py", recording, run.folder / "elsewhere.png", 0.1, 0.9)
    page, other = (
        gx.Bitmap.open(run.folder / name).to_rgba()[..., :3]
        for name in ("page.png", "elsewhere.png")
    )
    # The page is the same but for the glass, which shows something else in each place.
    x, y = 28 + 0.47 * 584, 28 + 0.3 * (page.shape[0] - 56)
    rows, columns = np.mgrid[: page.shape[0], : page.shape[1]]
    away = np.hypot(columns - x, rows - y) > 140
    away &= np.hypot(columns - 28 - 58.4, rows - 28 - 0.9 * (page.shape[0] - 56)) > 140
    differs = (page != other).any(axis=2)
    assert not differs[away].any() and differs.sum() > 20000
    assert close_to(page, (0, 0, 0)) > 20000
