# SPDX-License-Identifier: MIT
"""Arrays as pixels and points: shared where they fit, refused where they do not."""
import sys

import numpy as np
import pytest

import gxgraphics as gx
from gxgraphics import PixelFormat as Form


def white(rows, columns):
    return np.full((rows, columns, 4), 255, np.uint8)


def read_only(array):
    array.flags.writeable = False
    return array


# Memory to draw into


def test_drawing_goes_into_the_array():
    pixels = white(6, 8)
    target = gx.RenderTarget(pixels)
    with target.paint():
        target.fill_rect((2, 1, 5, 3), 0xFF102030)
    assert target.array is pixels and target.bitmap is None and target.size == (8, 6)
    expected = white(6, 8)
    expected[1:3, 2:5] = (0x30, 0x20, 0x10, 0xFF)
    assert np.array_equal(pixels, expected)


def test_words_are_packed_colours():
    words = np.zeros((4, 4), np.uint32)
    with gx.RenderTarget(words).paint() as target:
        target.clear(0xFF123456)
    expected = 0xFF123456 if sys.byteorder == "little" else 0x563412FF
    assert (words == expected).all()


@pytest.mark.parametrize("padding", [1, 3, 16, 4096])
def test_part_of_a_larger_array(padding):
    memory = np.full((20, 4 * 10 + padding), 77, np.uint8)
    part = np.lib.stride_tricks.as_strided(memory[5:, 2:], (7, 9, 4), (memory.strides[0], 4, 1))
    with gx.RenderTarget(part).paint() as target:
        target.fill_rect((-100, -100, 100, 100), "#ffffff")
    assert (part == 255).all()
    assert (memory == 255).sum() == 7 * 9 * 4 and (memory == 77).sum() == memory.size - 7 * 9 * 4


@pytest.mark.parametrize(
    "array, kind, reason",
    [
        (white(4, 4).astype(np.int8), TypeError, "uint8"),
        (white(4, 4).astype(np.float32), TypeError, "uint8"),
        (np.zeros((4, 4), ">u4" if sys.byteorder == "little" else "<u4"), TypeError, "uint8"),
        (np.zeros((4, 4), np.uint8), ValueError, "height x width x 4"),
        (np.zeros((4, 4, 3), np.uint8), ValueError, "height x width x 4"),
        (np.zeros((2, 4, 4, 4), np.uint8), ValueError, "height x width x 4"),
        (np.zeros((4, 0, 4), np.uint8), ValueError, "no pixels"),
        (np.zeros((0, 4, 4), np.uint8), ValueError, "no pixels"),
        (read_only(white(4, 4)), ValueError, "read-only"),
        (np.frombuffer(bytes(64), np.uint8).reshape(4, 4, 4), ValueError, "read-only"),
        (np.broadcast_to(np.zeros(4, np.uint8), (4, 4, 4)), ValueError, "read-only"),
        (white(4, 8)[:, ::2], ValueError, "side by side"),
        (white(4, 4)[:, ::-1], ValueError, "side by side"),
        (white(4, 4)[..., ::-1], ValueError, "side by side"),
        (white(4, 4)[::-1], ValueError, "side by side"),
        (white(4, 4).transpose(1, 0, 2), ValueError, "side by side"),
        (np.asfortranarray(white(4, 5)), ValueError, "side by side"),
        (
            np.lib.stride_tricks.as_strided(white(4, 4), (4, 4, 4), (0, 4, 1)),
            ValueError,
            "side by side",
        ),
        (
            np.lib.stride_tricks.as_strided(white(4, 4), (4, 4, 4), (8, 4, 1)),
            ValueError,
            "side by side",
        ),
        (white(4, 4).tolist(), TypeError, "NumPy array"),
        (bytearray(64), TypeError, "NumPy array"),
    ],
)
def test_memory_that_cannot_be_drawn_into(array, kind, reason):
    with pytest.raises(kind, match=reason):
        gx.RenderTarget(array)


def test_stride_that_a_float_cannot_hold():
    memory = np.zeros(16777221 + 8, np.uint8)
    rows = np.lib.stride_tricks.as_strided(memory, (2, 2, 4), (16777217, 4, 1))
    with pytest.raises(ValueError, match="16777217"):
        gx.RenderTarget(rows)


def test_formats_that_cannot_be_painted():
    with pytest.raises(gx.EngineError, match="Unsuported pixel format"):
        gx.RenderTarget(white(4, 4), Form.BGRA32).begin_paint()
    grey = gx.RenderTarget(np.zeros((4, 4), np.uint8), Form.GRAY8)
    assert grey.format == Form.GRAY8 and grey.size == (4, 4)


# Bitmaps as arrays


@pytest.mark.parametrize(
    "form, shape",
    [
        (Form.BGR24, (5, 7, 3)),
        (Form.PBGRA32, (5, 7, 4)),
        (Form.BGRA32, (5, 7, 4)),
        (Form.BGRX32, (5, 7, 4)),
        (Form.ALPHA8, (5, 7)),
        (Form.INDEXED8, (5, 7)),
        (Form.GRAY8, (5, 7)),
        (Form.ALPHA1, (5, 1)),
        (Form.INDEXED1, (5, 1)),
        (Form.BLACK_WHITE1, (5, 1)),
    ],
)
def test_every_format_in_and_out(form, shape):
    random = np.random.default_rng(int(form))
    pixels = random.integers(0, 256, shape, np.uint8)
    bitmap = gx.Bitmap.from_array(pixels, form, width=7 if form.bits == 1 else None)
    assert (bitmap.size, bitmap.format) == ((7, 5), form)
    assert np.array_equal(np.asarray(bitmap), pixels)
    assert np.array_equal(bitmap.read(), pixels)
    out = np.empty_like(pixels)
    assert bitmap.read(out=out) is out and np.array_equal(out, pixels)
    with bitmap.lock(write=True) as shared:
        shared[...] ^= 0xFF
    assert np.array_equal(bitmap.read(), pixels ^ 0xFF)
    # Of a byte's pixels only those of the picture are copied.
    spare = 0xFE if form.bits == 1 else 0xFF
    assert np.array_equal(bitmap.copy().read() & spare, bitmap.read() & spare)


def test_views_show_changes_and_only_locks_write():
    bitmap = gx.Bitmap(4, 3, fill=0)
    seen = np.asarray(bitmap)
    assert not seen.flags.writeable and not seen.flags.owndata
    with bitmap.lock((1, 1, 3, 9), write=True) as pixels:
        assert pixels.shape == (2, 2, 4)
        pixels[...] = 9
        assert (seen[1:3, 1:3] == 9).all()
    with pytest.raises(ValueError):
        pixels[0, 0] = 1
    with bitmap.lock() as pixels, pytest.raises(ValueError):
        pixels[0, 0] = 1
    with bitmap.lock((3, 3, 1, 1)) as pixels:
        assert pixels.size == 0
    assert np.asarray(bitmap, np.float32).dtype == np.float32
    with pytest.raises(ValueError):
        seen.flags.writeable = True


def test_lock_tells_the_library_that_pixels_changed(shim):
    bitmap = gx.Bitmap(256, 256, fill=0xFF0000FF)
    target = gx.RenderTarget.new(4, 4)
    before = shim.calls("GXBitmapLock") - shim.calls("GXBitmapUnlock")
    for color in (0xFF0000FF, 0xFF00FF00):
        with bitmap.lock(write=True) as pixels:
            pixels[...] = np.frombuffer(np.array([color], "<u4").tobytes(), np.uint8)
        assert shim.calls("GXBitmapLock") - shim.calls("GXBitmapUnlock") == before
        with target.paint():
            target.stretch_bitmap(bitmap, (0, 0, 4, 4), interpolation=gx.Interpolation.AVERAGE)
        assert (np.asarray(target.bitmap).view("<u4") == color).all()


def test_locks_do_not_nest():
    bitmap = gx.Bitmap(4, 4)
    with bitmap.lock(write=True):
        for again in (lambda: bitmap.lock().__enter__(), lambda: np.asarray(bitmap)):
            with pytest.raises(RuntimeError, match="locked"):
                again()
    with pytest.raises(KeyError):
        with bitmap.lock():
            raise KeyError
    with bitmap.lock():
        pass


def test_rectangles_read_and_written():
    bitmap = gx.Bitmap(6, 5, fill=0)
    block = np.arange(2 * 3 * 4, dtype=np.uint8).reshape(2, 3, 4)
    bitmap.write(block, (1, 2, 4, 4))
    assert np.array_equal(bitmap.read((1, 2, 4, 4)), block)
    bitmap.write(block[:1, :2], (4, 4, 60, 50))
    assert np.array_equal(np.asarray(bitmap)[4:, 4:], block[:1, :2])
    wide = np.zeros((2, 6, 4), np.uint8)
    bitmap.read((1, 2, 4, 4), out=wide[:, 2:5])
    assert np.array_equal(wide[:, 2:5], block) and not wide[:, :2].any() and not wide[:, 5:].any()
    bitmap.write(block[:, ::-1], (1, 2, 4, 4))
    assert np.array_equal(bitmap.read((1, 2, 4, 4)), block[:, ::-1])
    assert bitmap.read((9, 9, 12, 12)).size == 0
    bits = gx.Bitmap(20, 2, Form.BLACK_WHITE1)
    bits.write(np.array([[0xAA, 0xFF]], np.uint8), (8, 1, 20, 2))
    bits.fill("#ffffff", (0, 0, 20, 1))
    assert (np.asarray(bits) & [0xFF, 0xFF, 0xF0]).tolist() == [[0xFF, 0xFF, 0xF0], [0, 0xAA, 0xF0]]


@pytest.mark.parametrize(
    "out, kind",
    [
        (np.zeros((4, 5, 4), np.uint8), ValueError),
        (np.zeros((3, 6, 4), np.uint8), ValueError),
        (np.zeros((5, 6, 4), np.uint8), ValueError),
        (np.zeros((4, 6, 3), np.uint8), ValueError),
        (np.zeros((4, 6, 4), np.int32), TypeError),
        (np.zeros((4, 12, 4), np.uint8)[:, ::2], ValueError),
        (read_only(np.zeros((4, 6, 4), np.uint8)), ValueError),
        ([[0]], TypeError),
    ],
)
def test_arrays_that_pixels_cannot_be_read_into(out, kind):
    with pytest.raises(kind):
        gx.Bitmap(6, 4).read(out=out)
    assert not np.any(out)


def test_arrays_that_are_no_pixels():
    bitmap = gx.Bitmap(6, 4, fill="#ffffff")
    for wrong in (
        np.zeros((4, 5, 4), np.uint8),
        np.zeros((3, 6, 4), np.uint8),
        np.zeros((4, 6), np.uint8),
    ):
        with pytest.raises(ValueError):
            bitmap.write(wrong)
    with pytest.raises(TypeError):
        bitmap.write(np.zeros((4, 6, 4), np.float64))
    with pytest.raises(ValueError, match="too small"):
        gx.Bitmap.from_array(np.zeros((4, 2), np.uint8), Form.BLACK_WHITE1, width=17)
    with pytest.raises(ValueError):
        gx.Bitmap.from_array(np.zeros((4, 4, 2), np.uint8))
    with pytest.raises(ValueError):
        gx.Bitmap.from_rgba(np.zeros((4, 4), np.uint8))
    assert bitmap.to_rgba().min() == 255


def test_rgba_in_and_out():
    random = np.random.default_rng(1)
    pixels = random.integers(0, 256, (5, 6, 4), np.uint8)
    assert np.array_equal(gx.Bitmap.from_rgba(pixels).to_rgba(), pixels)
    rgb = gx.Bitmap.from_rgba(pixels[..., :3])
    assert rgb.format == Form.BGR24 and np.array_equal(rgb.to_rgba()[..., :3], pixels[..., :3])


# Points


def random_points(count, seed=3):
    return np.random.default_rng(seed).normal(20, 15, (count, 2))


def one_by_one(points, close=False):
    path = gx.Path()
    for index, (x, y) in enumerate(points):
        path = path.line_to((x, y)) if index else path.move_to((x, y))
    return path.close() if close else path.end()


@pytest.mark.parametrize(
    "given",
    [
        lambda p: p,
        lambda p: p.astype(np.float32),
        lambda p: np.asfortranarray(p),
        lambda p: np.repeat(p, 3, axis=0)[::3],
        lambda p: p[::-1][::-1],
        lambda p: np.column_stack([p, p, p])[:, 4:],
        lambda p: p.astype(">f8"),
        lambda p: p.tolist(),
        lambda p: [gx.Point(*q) for q in p],
        lambda p: read_only(p.copy()),
        lambda p: np.frombuffer(b"x" + p.tobytes(), np.uint8)[1:].view(np.float64).reshape(-1, 2),
    ],
)
def test_points_of_any_layout(given):
    points = random_points(100)
    expected = one_by_one(points)
    assert gx.Path().polyline(given(points)).same_points(expected)
    columns = np.asarray(given(points))
    assert gx.Path().polyline(columns[:, 0], columns[:, 1]).same_points(expected)
    assert gx.Path().polyline(columns[:, 0], columns[:, 1].copy()).same_points(expected)
    assert gx.Path().polyline(given(points), close=True).same_points(one_by_one(points, True))


def test_whole_numbers_are_points():
    points = np.array([[0, 0], [10, 0], [10, 10]])
    for kind in (np.int8, np.uint16, np.int64, np.bool_, np.float16):
        given = points.astype(kind)
        assert gx.Path().polyline(given).same_points(one_by_one(given.tolist()))


@pytest.mark.parametrize(
    "points, kind",
    [
        (np.zeros((4, 3)), ValueError),
        (np.zeros(4), ValueError),
        (np.zeros((2, 2, 2)), ValueError),
        (np.zeros((4, 2), complex), TypeError),
        (np.array([["a", "b"]]), TypeError),
        (np.array([[None, 1]]), TypeError),
        (np.zeros((4, 2), "M8[s]"), TypeError),
        ("points", TypeError),
    ],
)
def test_arrays_that_are_no_points(points, kind):
    path = gx.Path()
    for add in (path.polyline, path.curves, path.hit_tests):
        with pytest.raises(kind):
            add(points)
    assert path.empty and path.current_point is None


def test_columns_fit_each_other():
    with pytest.raises(ValueError):
        gx.Path().polyline([1, 2, 3], [1, 2])
    with pytest.raises(ValueError):
        gx.Path().polyline([[1, 2]], [[1, 2]])
    mixed = gx.Path().polyline(np.arange(3, dtype=np.float32), np.arange(3, dtype=np.float64))
    assert mixed.bounds() == (0, 0, 2, 2)


def test_a_million_points_without_python(shim):
    points = random_points(1_000_000)
    lines, begins = shim.calls("GXGeometryLineTo"), shim.calls("GXGeometryBeginFigure")
    events = []
    sys.setprofile(lambda frame, event, argument: events.append(event))
    try:
        path = gx.Path().polyline(points)
    finally:
        sys.setprofile(None)
    assert shim.calls("GXGeometryLineTo") - lines == 999_999
    assert shim.calls("GXGeometryBeginFigure") - begins == 1
    assert len(events) < 200
    verbs, back = path.to_arrays()
    assert np.array_equal(back, points.astype(np.float32))
    assert bytes(verbs) == b"M" + b"L" * 999_999 + b"E"


def test_gaps_split_lines():
    x = np.array([np.nan, 0, 1, 2, np.inf, np.nan, 5, 6, 7, np.nan])
    verbs, points = gx.Path().polyline(x, np.zeros(10), gaps=True, close=True).to_arrays()
    assert bytes(verbs) == b"MLLEMLLE" and points[:, 0].tolist() == [0, 1, 2, 5, 6, 7]
    whole = gx.Path().polyline(x[1:4], np.zeros(3), gaps=True, close=True).to_arrays()[0]
    assert bytes(whole) == b"MLLZ"


def test_many_figures_at_once():
    points = random_points(10)
    path = gx.Path().polylines(points, [0, 3, 3, 5], close=True)
    expected = gx.Path()
    for part in (points[:3], points[3:5], points[5:]):
        expected.polyline(part, close=True)
    assert path.same_points(expected)
    assert gx.Path().polylines(points, []).empty and gx.Path().polyline([]).empty
    for starts in ([-1], [0, 11], [4, 2], [2**62]):
        with pytest.raises(ValueError):
            gx.Path().polylines(points, starts)
    with pytest.raises(TypeError):
        gx.Path().polylines(points, [0.5])


def test_curves_rectangles_and_verbs():
    points = random_points(7)
    curves = gx.Path().move_to(points[0]).curve_to(*points[1:4]).curve_to(*points[4:7])
    assert gx.Path().curves(points).same_points(curves.end())
    with pytest.raises(ValueError):
        gx.Path().curves(points[:5])
    rects = np.array([[0, 0, 4, 4], [6, 1, 9, 3]], np.float64)
    assert gx.Path().rects(rects).same_points(gx.Path().rect(rects[0]).rect(rects[1]))
    assert gx.Path().ellipses(rects).same_points(gx.Path().ellipse(rects[0]).ellipse(rects[1]))
    for wrong in (np.zeros((2, 3)), np.zeros(4)):
        with pytest.raises(ValueError):
            gx.Path().rects(wrong)
    path = gx.Path(gx.FillRule.EVEN_ODD).ellipse((0, 0, 5, 5)).polyline(points)
    twin = gx.Path.from_arrays(*path.to_arrays(), path.fill_rule)
    assert twin.same_points(path)
    for verbs, count in ((b"ML", 1), (b"M", 2), (b"MX", 1), (b"C", 2)):
        with pytest.raises(ValueError):
            gx.Path.from_arrays(verbs, np.zeros((count, 2)))
    with pytest.raises(TypeError):
        gx.Path.from_arrays(np.array([77.0]), np.zeros((1, 2)))


def test_hits_of_many_points():
    path = gx.Path().circle((20, 20), 12)
    points = random_points(500)
    hits = path.hit_tests(points, matrix=gx.Matrix.scaling(2, 1), tolerance=0.5)
    single = [path.hit_test(p, (2, 0, 0, 1, 0, 0), 0.5) for p in points]
    assert hits.dtype == bool and hits.tolist() == single and 0 < hits.sum() < 500


def test_region_of_many_rectangles(shim):
    random = np.random.default_rng(5)
    corners = random.integers(0, 60, (200, 2))
    rects = np.concatenate([corners, corners + random.integers(0, 9, (200, 2))], axis=1)
    unions = shim.calls("GXRegionCombine")
    region = gx.Region.from_rects(rects)
    assert shim.calls("GXRegionCombine") - unions == 199
    plane = np.zeros((70, 70), bool)
    for left, top, right, bottom in rects:
        plane[top:bottom, left:right] = True
    shown = np.zeros_like(plane)
    for left, top, right, bottom in region.rects():
        assert not shown[top:bottom, left:right].any()
        shown[top:bottom, left:right] = True
    assert np.array_equal(shown, plane)
    for wrong, kind in (
        (np.zeros((2, 3), int), ValueError),
        (np.zeros((2, 4)), TypeError),
        (np.full((1, 4), 2**31), OverflowError),
    ):
        with pytest.raises(kind):
            gx.Region.from_rects(wrong)
    assert not gx.Region.from_rects(np.zeros((0, 4), int))


def test_mesh_of_arrays():
    corners = np.array([[0, 0], [8, 0], [0, 8]])
    colors = np.array([0xFFFF0000] * 3, np.uint32)
    for given in (colors, ["#ff0000"] * 3, colors.astype(np.int64)):
        target = gx.RenderTarget.new(8, 8)
        with target.paint():
            target.draw_gradient(gx.Gradient.mesh(corners, given))
        assert target.bitmap.to_rgba()[1, 1].tolist() == [255, 0, 0, 255]
    with pytest.raises(ValueError):
        gx.Gradient.mesh(corners, colors[:2])
    with pytest.raises(OverflowError):
        gx.Palette(np.array([1 << 32]))
