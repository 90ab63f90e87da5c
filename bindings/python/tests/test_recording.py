# SPDX-License-Identifier: MIT
"""Files that are no recordings, or damaged ones, are refused before anything is drawn."""
import random
import struct
import zlib

import numpy as np
import pytest
from conftest import ROOT

import gxgraphics as gx
from gxgraphics import _gxr

RECORDINGS = ROOT / "tests" / "pages" / "recordings"
SMALL = ["page_tiny-1", "softmask_alpha-2", "text_clip-1", "shading_radial-3", "images_1bit-1"]


def packed(body, version=1, stored=None, raw=None):
    data = zlib.compress(body)
    size = len(data) if stored is None else stored
    head = _gxr.MAGIC + struct.pack("<IQQ", version, size, len(body) if raw is None else raw)
    return head + struct.pack("<I", zlib.crc32(data, zlib.crc32(head))) + data


PAGE = struct.pack("<IIIff", 8, 8, gx.PixelFormat.PBGRA32, 96, 96)


def page_of(commands, objects=b""):
    return packed(PAGE + objects + b"\0" + commands)


def call(name, arguments=b""):
    return bytes([_gxr.FIRST_TARGET_CALL + _gxr.TARGET_CALLS.index(name)]) + arguments


def test_smallest_page_plays():
    commands = call("BeginPaint") + call("Clear", struct.pack("<I", 0xFF112233)) + call("EndPaint")
    page = gx.Recording(page_of(commands + b"\0"))
    assert page.size == (8, 8) and page.format == gx.PixelFormat.PBGRA32
    assert (page.render().to_rgba() == (0x11, 0x22, 0x33, 255)).all()
    assert page.render(2.5).size == (20, 20)
    for scale in (0, -1, float("nan"), float("inf")):
        with pytest.raises(ValueError):
            page.draw(gx.RenderTarget.new(8, 8), scale)


@pytest.mark.parametrize(
    "data, reason",
    [
        (b"", "no recording"),
        (b"\x89PNG\r\n\x1a\n", "no recording"),
        (_gxr.MAGIC, "cut off"),
        (packed(PAGE, version=2), "version 2"),
        (packed(PAGE)[:-1], "cut off"),
        (packed(PAGE) + b"x", "behind its end"),
        (packed(PAGE)[:-1] + b"\xff", "wrong checksum"),
        (packed(PAGE, raw=1 << 40), "its size cannot be"),
        (packed(PAGE, raw=19), "cannot be unpacked"),
        (packed(PAGE, raw=21), "cannot be unpacked"),
        (packed(PAGE[:10]), "ends too early"),
        (packed(struct.pack("<IIIff", 0, 8, 2, 96, 96)), "surface that cannot be"),
        (packed(struct.pack("<IIIff", 60000, 60000, 2, 96, 96)), "too large"),
        (packed(PAGE + b"\x7f"), "unknown object"),
        (packed(PAGE + b"\x02\0"), "without colours"),
        (packed(PAGE + b"\x01" + struct.pack("<I", 0) + b"\x01X"), "unknown part"),
        (packed(PAGE + b"\x02" + b"\xff" * 9), "too long"),
        (packed(PAGE + b"\x02\xff\x7f"), "ends too early"),
        (page_of(b"\x0e"), "unknown command"),
        (page_of(b"\0\0"), "behind its last command"),
        (page_of(call("EndPaint")), "did not begin"),
        (page_of(call("BeginPaint") * 2), "twice"),
        (page_of(call("BeginPaint") + call("PopState")), "did not begin"),
        (page_of(call("BeginPaint") + call("PushState") * 1025), "too many states"),
        (page_of(call("FillGeometry", b"\x01\x00")), "object that is not there"),
        (page_of(call("FillRect", b"\x00\x03")), "brush that is not there"),
        (page_of(call("DrawBitmap", b"\x01")), "page as a bitmap"),
        (page_of(b"\x03\x01"), "surface that is not there"),
        (page_of((b"\x01" + struct.pack("<IIIff", 64, 8, 2, 96, 96)) * 3), "too many surfaces"),
    ],
)
def test_what_is_refused(data, reason):
    with pytest.raises(gx.RecordingError, match=reason):
        gx.Recording(data)


def test_failure_while_playing_ends_painting():
    # A null brush is legal in a file and refused by the library.
    commands = (
        call("BeginPaint")
        + call("PushState")
        + call("FillRect", b"\0\0")
        + call("EndPaint")
        + b"\0"
    )
    target = gx.RenderTarget.new(8, 8)
    with pytest.raises(gx.InvalidArgument):
        gx.Recording(page_of(commands)).draw(target)
    with target.paint():
        pass


@pytest.mark.parametrize("name", SMALL)
def test_damage_anywhere_is_an_error_or_another_page(name):
    data = (RECORDINGS / f"{name}.gxr").read_bytes()
    for length in range(0, len(data), max(len(data) // 50, 1)):
        with pytest.raises(gx.RecordingError):
            gx.Recording(data[:length])
    body, numbers, refused = bytearray(_gxr.unpack(data)), random.Random(name), 0
    for _ in range(60):
        damaged = bytearray(body)
        for _ in range(numbers.choice((1, 3, 20))):
            # The page's own size stays: a larger one is a larger picture, not a fault.
            at = numbers.randrange(20, min(len(body), 4000))
            damaged[at] = numbers.choice((0, 1, 0x7F, 0x80, 0xFF, numbers.randrange(256)))
        if numbers.random() < 0.3:
            del damaged[numbers.randrange(20, len(damaged)) :]
        try:
            gx.Recording(packed(bytes(damaged))).render()
        except (gx.RecordingError, gx.Error):
            refused += 1
    assert refused > 5


def test_drawn_at_a_place_on_a_target():
    page = gx.Recording.open(RECORDINGS / "page_tiny-1.gxr")
    alone = page.render().read()
    target = gx.RenderTarget(gx.Bitmap(100, 100))
    target.translate(20, 30)
    page.draw(target)
    height, width = alone.shape[:2]
    # Pages draw beyond their edges; inside they are the same.
    assert np.array_equal(target.bitmap.read((20, 30, 20 + width, 30 + height)), alone)
