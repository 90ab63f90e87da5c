# SPDX-License-Identifier: MIT
"""What each class does, through to the library's answer."""
import math
import os

import numpy as np
import pytest
from PIL import Image

import gxgraphics as gx
from gxgraphics import Combine
from gxgraphics import PixelFormat as Form


def pixel(target, x, y):
    return target.bitmap.to_rgba()[y, x].tolist()


# Values


def test_matrices():
    turn = gx.Matrix.rotation(math.pi / 2)
    assert np.allclose(turn @ [[1, 0], [0, 1]], [[0, 1], [-1, 0]])
    both = gx.Matrix.translation(5, 7) @ gx.Matrix.scaling(2, 3)
    assert both == (2, 0, 0, 3, 5, 7) and (both @ (1, 1)).tolist() == [7, 10]
    assert np.allclose((both @ both.inverse()).to_array(), np.eye(3))
    assert gx.Matrix.of(both.to_array()) == both == gx.Matrix.of(both.to_array()[:2])
    target = gx.RenderTarget.new(4, 4)
    target.ctm = both.to_array()
    target.concat(np.array([[1, 0, 1], [0, 1, 1], [0, 0, 1]], np.float32))
    assert target.ctm == both @ gx.Matrix.translation(1, 1)
    target.ctm = None
    target.translate(3, 4)
    target.scale(2)
    target.scale(1, 2)
    target.rotate(math.pi / 2)
    assert np.allclose(target.ctm, (0, 4, -2, 0, 3, 4), atol=1e-6)


def test_colours():
    assert gx.Brush((0.5, 0.5, 0.5)) and gx.Brush(np.array([1, 0, 0, 0.5]))
    target = gx.RenderTarget.new(6, 1)
    colors = [
        "#123",
        "#112233",
        "#11223380",
        0xFF112233,
        (0x11 / 255, 0x22 / 255, 0x33 / 255),
        np.uint32(0xFF112233),
    ]
    with target.paint():
        for x, color in enumerate(colors):
            target.fill_rect((x, 0, x + 1, 1), color)
    shown = target.bitmap.to_rgba()[0].tolist()
    assert [c[3] for c in shown] == [255, 255, 128, 255, 255, 255]
    assert [c[:3] for i, c in enumerate(shown) if i != 2] == [[0x11, 0x22, 0x33]] * 5
    palette = gx.Palette([0xFF000001, "#ff0000", (0, 1, 0)])
    assert list(palette) == [0xFF000001, 0xFFFF0000, 0xFF00FF00] and len(palette) == 3
    assert palette[-1] == 0xFF00FF00 and palette.colors.tolist() == list(palette)
    with pytest.raises(IndexError):
        palette[-4]


# Paths


def test_path_by_calls():
    path = gx.Path().move_to((0, 0)).line_to([10, 0]).curve_to((12, 0), (12, 8), np.array([10, 8]))
    assert path.current_point == (10, 8) and path.empty
    path.conic_to((4, 12), (0, 8)).close()
    assert path.current_point == (0, 0) and not path.empty
    assert bytes(path.to_arrays()[0]) == b"MLCCZ"
    assert path.bounds() == (0, 0, 12, 12) and path.bounds((2, 0, 0, 1, 1, 0)) == (1, 0, 25, 12)
    assert (path.bounds().width, path.bounds().height) == (12, 12)
    assert gx.Path().current_point is None
    assert (
        gx.Path().round_rect((0, 0, 9, 9), 2).same_points(gx.Path().round_rect((0, 0, 9, 9), 2, 2))
    )
    assert gx.Path().circle((5, 5), 5).same_points(gx.Path().ellipse((0, 0, 10, 10)))
    path.fill_rule = gx.FillRule.EVEN_ODD
    assert path.fill_rule is gx.FillRule.EVEN_ODD and not path.same_points(gx.Path())
    assert path.copy().same_points(path) and "Path" in repr(path) and "empty" in repr(gx.Path())


def test_paths_from_paths():
    square = gx.Path().rect((0, 0, 10, 10))
    moved = square.transform(gx.Matrix.translation(5, 0))
    assert moved.bounds() == (5, 0, 15, 10)
    assert (square & moved).bounds() == (5, 0, 10, 10)
    assert (square | moved).bounds() == (0, 0, 15, 10)
    assert (square - moved).bounds() == (0, 0, 5, 10)
    halves = square ^ moved
    assert halves.hit_test((2, 5)) and halves.hit_test((12, 5)) and not halves.hit_test((7, 5))
    line = gx.Path().move_to((0, 0)).line_to((10, 0)).end()
    wide = line.widen(4, gx.StrokeStyle(cap=gx.LineCap.SQUARE))
    assert wide.bounds() == (-2, -2, 12, 2)
    assert square.combine(moved, Combine.UNION, 0.01).bounds() == (0, 0, 15, 10)
    with pytest.raises(gx.InvalidArgument):
        square.combine(moved, 9)


# Regions


def test_regions():
    region = gx.Region((0, 0, 10, 10)) | (20, 0, 30, 10)
    assert region and not gx.Region() and gx.Region().empty
    assert (
        region.bounds == (0, 0, 30, 10) and region.bounds.width == 30 and region.bounds.height == 10
    )
    assert list(region) == [(0, 0, 10, 10), (20, 0, 30, 10)]
    assert region.contains((1, 1, 9, 9)) and not region.contains((1, 1, 11, 9))
    assert region.contains(gx.Region((22, 2, 25, 5))) and not region.contains(
        gx.Region((9, 9, 11, 11))
    )
    assert region.intersects((9, 9, 12, 12)) and not region.intersects((10, 0, 20, 10))
    assert region.intersects(gx.Region((29, 9, 99, 99))) and not region.intersects(gx.Region())
    assert region.bounds_contain((15, 5)) and not region.bounds_contain((15, 11))
    assert (region & (5, 5, 25, 6)).rects().tolist() == [[5, 5, 10, 6], [20, 5, 25, 6]]
    assert (region - gx.Region((0, 0, 20, 10))).bounds == (20, 0, 30, 10)
    assert (region ^ region).empty
    assert region.offset(5, -5) is region and region.bounds == (5, -5, 35, 5)
    assert "Region" in repr(region)


# Bitmaps


def test_bitmap_properties():
    bitmap = gx.Bitmap(5, 4, Form.INDEXED8, (72, 144))
    assert (bitmap.width, bitmap.height, bitmap.dpi) == (5, 4, (72, 144))
    assert bitmap.palette is None
    bitmap.palette = gx.Palette(["#000", "#f00"])
    bitmap.write(np.ones((4, 5), np.uint8))
    assert (bitmap.to_rgba() == (255, 0, 0, 255)).all() and list(bitmap.palette)[1] == 0xFFFF0000
    bitmap.palette = None
    assert bitmap.palette is None and bitmap.to_rgba()[0, 0].tolist() == [1, 1, 1, 255]
    bitmap.set_offscreen_painting(True)
    bitmap.notify_changed()
    assert repr(bitmap) == "<Bitmap 5 x 4 INDEXED8>"
    other = gx.Bitmap(5, 4, fill="#0000ff")
    other.copy_from(bitmap, (3, 2), (0, 0, 9, 9))
    assert (other.to_rgba()[2:, 3:] == (1, 1, 1, 255)).all() and other.to_rgba()[0, 0, 2] == 255
    other.fill("#00ff00", (0, 0, 1, 1))
    assert other.convert(Form.BGR24).read()[0, 0].tolist() == [0, 255, 0]


def test_files(tmp_path):
    random = np.random.default_rng(2)
    bitmap = gx.Bitmap.from_rgba(random.integers(0, 256, (9, 7, 4), np.uint8), (150, 150))
    for name in ("a.png", "b.tif", "Ä – 日本.png"):
        bitmap.save(tmp_path / name)
        again = gx.Bitmap.open(str(tmp_path / name))
        assert np.array_equal(again.to_rgba(), bitmap.to_rgba()) and round(again.dpi[0]) == 150
    assert np.array_equal(gx.Bitmap.open(os.fsencode(tmp_path / "a.png")).read(), bitmap.read())
    data = bitmap.encode()
    assert data == (tmp_path / "a.png").read_bytes() == bitmap._repr_png_()
    for buffer in (data, bytearray(data), memoryview(data), np.frombuffer(data, np.uint8)):
        assert np.array_equal(gx.Bitmap.from_bytes(buffer).read(), bitmap.read())
    pages = [Image.new("RGB", (4, 4 + i), (40 * i, 0, 0)) for i in range(3)]
    pages[0].save(tmp_path / "pages.tif", save_all=True, append_images=pages[1:])
    assert gx.Bitmap.count_frames(tmp_path / "pages.tif") == 3
    assert [gx.Bitmap.open(tmp_path / "pages.tif", i).height for i in range(3)] == [4, 5, 6]
    with pytest.raises(gx.EngineError, match="Frame index is out of range"):
        gx.Bitmap.open(tmp_path / "pages.tif", 3)


@pytest.mark.parametrize("mode", ["1", "L", "LA", "P", "RGB", "RGBA", "CMYK", "I", "PA"])
def test_pillow_in_and_out(mode):
    random = np.random.default_rng(4)
    pixels = random.integers(0, 256, (11, 13, 4), np.uint8)
    image = Image.fromarray(pixels, "RGBA")
    image = (
        image.convert("RGB").convert(mode)
        if mode in "1LPCMYKI"
        else image.convert(mode)
        if mode != "PA"
        else image
    )
    if mode == "PA":
        image = image.quantize(20)
    image.info["dpi"] = (300, 300)
    bitmap = gx.Bitmap.from_pil(image)
    assert bitmap.size == image.size and bitmap.dpi == (300, 300)
    wanted = image.convert("RGB").convert("RGBA") if mode == "I" else image.convert("RGBA")
    assert np.array_equal(bitmap.to_rgba(), np.asarray(wanted))
    back = bitmap.to_pil()
    assert np.array_equal(np.asarray(back.convert("RGBA")), np.asarray(wanted))
    assert back.info["dpi"] == (300, 300)
    if mode in ("1", "L", "P", "RGB", "RGBA"):
        assert back.mode == mode


@pytest.mark.parametrize("form", list(Form))
def test_every_format_to_pillow(form):
    bitmap = gx.Bitmap(9, 5, form, fill="#ffffff")
    if form == Form.INDEXED8:
        bitmap.palette = gx.Palette([0xFF000000 + i for i in range(255)] + [0x80FF0000])
    assert np.array_equal(np.asarray(bitmap.to_pil().convert("RGBA")), bitmap.to_rgba())


def test_transparent_palettes_of_pillow():
    image = Image.new("P", (2, 1))
    image.putpalette([10, 20, 30, 40, 50, 60])
    image.putpixel((1, 0), 1)
    image.info["transparency"] = 1
    assert gx.Bitmap.from_pil(image).to_rgba()[0].tolist() == [[10, 20, 30, 255], [40, 50, 60, 0]]
    grey = Image.new("L", (1, 1), 7)
    grey.info["transparency"] = 7
    assert gx.Bitmap.from_pil(grey).to_rgba()[0, 0, 3] == 0


# Targets


def test_blocks_and_state(target):
    with target.state():
        target.translate(10, 10)
        target.clip_rect((0, 0, 4, 4))
        target.fill_rect((-50, -50, 50, 50), "#ff0000")
    target.fill_rect((0, 0, 1, 1), "#00ff00")
    assert pixel(target, 0, 0) == [0, 255, 0, 255]
    assert pixel(target, 13, 13) == [255, 0, 0, 255] and pixel(target, 14, 14) == [255] * 4
    with target.layer((0, 0, 8, 8), 0.5, isolated=True, knockout=True):
        target.fill_rect((0, 0, 8, 8), "#ff0000")
        target.fill_rect((0, 0, 8, 8), "#000000")
    assert pixel(target, 5, 5) in ([127, 127, 127, 255], [128, 128, 128, 255])
    target.set_blend_mode(gx.BlendMode.DIFFERENCE)
    target.fill_rect((20, 0, 21, 1), "#ffffff")
    assert pixel(target, 20, 0) == [0, 0, 0, 255]
    assert repr(target) == "<RenderTarget 64 x 48 PBGRA32>"


def test_everything_that_draws(target):
    def changed(draw):
        before = target.bitmap.to_rgba()
        draw()
        return int((target.bitmap.to_rgba() != before).any(axis=2).sum())

    square = gx.Path().rect((0, 0, 4, 4))
    mask = gx.Bitmap(4, 4, Form.ALPHA8, fill="#ffffff")
    tile = gx.Bitmap(2, 2, fill="#ff0000")
    gradient = gx.Gradient.linear((0, 0), (1, 0), [(0, 0xFF00FF00), (1, 0xFF00FF00)])
    face = gx.FontFace("", 12)
    assert changed(lambda: target.fill(square, "#111")) == 16
    assert changed(lambda: target.fill_glyph(square, "#222")) == 16
    assert changed(lambda: target.fill_rect((0, 0, 5, 5), "#333")) == 25
    assert changed(lambda: target.fill_ellipse((10, 0, 20, 10), "#444")) > 60
    assert changed(lambda: target.stroke(square, "#555", 2)) == 25 - 4
    assert changed(lambda: target.stroke_line((30, 20), (40, 20), "#666", 2)) == 20
    assert changed(lambda: target.stroke_rect((30, 30, 36, 36), "#777", 2)) == 48
    assert changed(lambda: target.stroke_ellipse((40, 30, 50, 40), "#888", 2)) > 40
    assert changed(lambda: target.draw_bitmap(tile, (60, 0))) == 4
    assert changed(lambda: target.stretch_bitmap(tile, (0, 40, 4, 44))) == 16
    assert changed(lambda: target.stretch_bitmap(tile, (4, 40, 8, 44), (0, 0, 1, 1), 0.5)) == 16
    assert changed(lambda: target.fill_mask(mask, "#999")) == 16
    assert changed(lambda: target.fill_mask(mask, "#aaa", (20, 40, 28, 48))) == 64
    assert changed(lambda: target.invert_rect((50, 40, 54, 44))) == 16
    assert changed(lambda: target.invert_line((50.5, 46.5), (60.5, 46.5))) > 8
    assert changed(lambda: target.fill_text("Ag", face, "#bbb", (2, 30))) > 20
    before = target.ctm
    target.fill_text("Ag", face, "#ccc")
    assert target.ctm == before
    with target.state():
        target.clip(gx.Path().rect((0, 0, 3, 3)))
        target.clip_ellipse((-50, -50, 50, 50))
        assert changed(lambda: target.draw_gradient(gradient, 1, (2, 0, 0, 2, 0, 0))) == 9
        target.set_opacity_mask(0)
        assert changed(lambda: target.clear("#fff")) == 9
        assert changed(lambda: target.fill(square, "#000")) == 0
        target.set_opacity_mask(None)
        target.set_shape_mask(gx.Gradient.linear((0, 0), (1, 0), [(0, 0), (1, 0)]))
        assert changed(lambda: target.fill(square, "#000")) == 0
        target.set_shape_mask(None)
    target.set_stroke_adjustment(True)
    assert changed(lambda: target.stroke_line((0.3, 36.4), (9.7, 36.4), "#123")) in (9, 10, 11)
    assert face.measure("AA")[0] == 2 * face.measure("A")[0] > 0 and face.measure("A")[1] == 12
    assert gx.FontFace("", 12, bold=True, italic=True).measure("\U0001F600")[0] > 0


def test_pictures_in_notebooks():
    target = gx.RenderTarget.new(5, 4, "#ff0000")
    assert target._repr_png_() == target.bitmap._repr_png_()
    pixels = np.zeros((4, 5, 4), np.uint8)
    on_array = gx.RenderTarget(pixels)
    with on_array.paint():
        on_array.clear("#ff0000")
    assert np.array_equal(
        gx.Bitmap.from_bytes(on_array._repr_png_()).to_rgba(), target.bitmap.to_rgba()
    )


@pytest.mark.skipif(os.name == "nt", reason="these work there")
def test_calls_of_windows_say_so():
    for call in (
        lambda: gx.RenderTarget.for_window(1),
        lambda: gx.RenderTarget.for_dc(1),
        lambda: gx.RenderTarget.for_printer(1),
        lambda: gx.Bitmap.from_hbitmap(1),
        lambda: gx.Bitmap(1, 1).to_hbitmap(),
    ):
        with pytest.raises(gx.EngineError, match="Not supported on this platform"):
            call()
    gx.enable_hardware_acceleration()
