# SPDX-License-Identifier: MIT
"""Pictures drawn here are those that programs in C draw, byte for byte."""
import subprocess

import gallery
import numpy as np
import pytest
from conftest import ROOT
from PIL import Image

import gxgraphics as gx

RECORDINGS = ROOT / "tests" / "pages" / "recordings"


@pytest.fixture(scope="module")
def drawn_in_c(program, tmp_path_factory):
    folder = tmp_path_factory.mktemp("gallery")
    subprocess.run(
        [program("gxgallery"), folder], check=True, stdout=subprocess.DEVNULL, timeout=300
    )
    return folder


@pytest.mark.parametrize("name", sorted(gallery.PICTURES))
def test_picture_of_the_gallery(drawn_in_c, name):
    expected = np.asarray(Image.open(drawn_in_c / f"{name}.png").convert("RGB"))
    assert np.array_equal(gallery.draw(name).to_rgba()[..., :3], expected)


def test_gallery_is_complete(drawn_in_c):
    assert {file.stem for file in drawn_in_c.iterdir()} == set(gallery.PICTURES)


def test_picture_of_hello(program, tmp_path):
    file = tmp_path / "hello.ppm"
    subprocess.run([program("hello"), file], check=True, timeout=300)
    target = gx.RenderTarget(gx.Bitmap(320, 200, gx.PixelFormat.BGRX32, fill=None))
    stops = [(0.0, 0xFF203A8C), (0.6, 0xFFE86A5C), (1.0, 0xFFFFE08A)]
    sky = gx.Gradient.linear((0, 0), (0, 200), stops)
    hill = gx.Path().move_to((0, 150)).curve_to((110, 60), (200, 230), (320, 130)).end()
    with target.paint():
        target.fill_rect((0, 0, 320, 200), sky)
        target.fill_ellipse((210, 60, 270, 120), 0xD0FFFFFF)
        style = gx.StrokeStyle(gx.LineJoin.ROUND, gx.LineCap.ROUND)
        target.stroke(hill, 0xD0FFFFFF, 6, style)
    pixels = target.bitmap.to_rgba()[..., :3]
    assert file.read_bytes() == b"P6\n320 200\n255\n" + pixels.tobytes()


def _checksums():
    lines = (RECORDINGS / "CHECKSUMS").read_text().splitlines()
    return [tuple(reversed(line.split())) for line in lines]


@pytest.mark.parametrize("name, checksum", _checksums())
def test_recorded_page(shim, name, checksum):
    page = gx.Recording.open(RECORDINGS / name).render()
    assert f"{shim.checksum(page.read()):016x}" == checksum


@pytest.mark.parametrize("name", ["softmask_alpha-2", "group_knockout-1", "tiling-1"])
def test_recorded_page_at_another_scale(program, shim, name):
    file = RECORDINGS / f"{name}.gxr"
    command = [program("gxreplay"), file, "--scale", "0.75", "--checksum"]
    told = subprocess.run(command, check=True, capture_output=True, text=True, timeout=300)
    page = gx.Recording.open(file).render(0.75)
    assert f"{shim.checksum(page.read()):016x}" == told.stdout.strip()
