# SPDX-License-Identifier: MIT
"""Objects are given back when they are dropped, in whatever order, and memory lives as long as
what shows it."""
import copy
import gc
import itertools
import pickle
import subprocess
import sys
import threading

import numpy as np
import pytest

import gxgraphics as gx


def make_all():
    tile = gx.Bitmap(4, 4, fill="#3366cc")
    tile.palette = gx.Palette([1, 2, 3])
    gradient = gx.Gradient.linear((0, 0), (8, 0), [(0, 0xFF000000), (1, 0xFFFFFFFF)])
    memory = np.zeros((8, 8, 4), np.uint8)
    return {
        "tile": tile,
        "tiles": gx.Brush.bitmap(tile, extend=gx.Extend.REPEAT),
        "gradient": gradient,
        "shades": gx.Brush.gradient(gradient),
        "target": gx.RenderTarget(memory),
        "memory": memory,
    }


def test_dropped_in_any_order(balanced):
    for order in itertools.permutations(make_all()):
        objects = make_all()
        target = objects["target"]
        with target.paint():
            target.fill_rect((0, 0, 4, 8), objects["tiles"])
            target.fill_rect((4, 0, 8, 8), objects["shades"])
        del target
        for name in order:
            del objects[name]


def test_users_keep_what_they_use(balanced):
    target = gx.RenderTarget(gx.Bitmap(8, 8))
    tiles = gx.Brush.bitmap(gx.Bitmap(4, 4, fill="#3366cc"), extend=gx.Extend.REPEAT)
    shades = gx.Brush.gradient(
        gx.Gradient.linear((0, 0), (8, 0), [(0, 0xFF112233), (1, 0xFF112233)])
    )
    gc.collect()
    with target.paint():
        target.fill_rect((0, 0, 4, 8), tiles)
        target.fill_rect((4, 0, 8, 8), shades)
        target.set_shape_mask(gx.Brush(0xFF000000))
        target.fill_rect((0, 0, 1, 1), "#010203")
    pixels = target.bitmap.to_rgba()
    assert pixels[0, 0].tolist() == [1, 2, 3, 255]
    assert pixels[7, 0].tolist() == [0x33, 0x66, 0xCC, 255]
    assert np.allclose(pixels[7, 7], [0x11, 0x22, 0x33, 255], atol=1)


def test_failed_constructors_hold_nothing(balanced):
    for call in (
        lambda: gx.Bitmap(0, 0),
        lambda: gx.Bitmap(4, 4, fill="#xyzxyz"),
        lambda: gx.Palette([]),
        lambda: gx.Path(fill_rule="odd"),
        lambda: gx.RenderTarget(np.zeros((4, 4, 4), np.uint8), dpi=(1, 2, 3)),
        lambda: gx.Bitmap.from_array(np.zeros((4, 4, 5), np.uint8)),
        lambda: gx.Brush.bitmap(gx.Bitmap(4, 4), matrix=(1, 2)),
    ):
        with pytest.raises(Exception):
            call()


def test_object_is_made_once(balanced):
    bitmap = gx.Bitmap(4, 4, fill=7)
    with pytest.raises(RuntimeError):
        bitmap.__init__(8, 8)
    assert bitmap.size == (4, 4)


def test_memory_of_an_array_lives_as_long_as_its_target(balanced):
    target = gx.RenderTarget(np.zeros((32, 32, 4), np.uint8))
    gc.collect()
    junk = [np.full((32, 32, 4), 7, np.uint8) for _ in range(50)]
    with target.paint():
        target.fill_rect((0, 0, 32, 32), "#ffffff")
    assert (target.array == 255).all() and (junk[-1] == 7).all()


def test_array_with_a_target_cannot_be_resized(balanced):
    pixels = np.zeros((8, 8, 4), np.uint8)
    target = gx.RenderTarget(pixels)
    with pytest.raises(ValueError):
        pixels.resize((2, 2, 4), refcheck=True)
    del target
    backing = bytearray(8 * 8 * 4)
    target = gx.RenderTarget(np.frombuffer(backing, np.uint8).reshape(8, 8, 4))
    with pytest.raises(BufferError):
        backing.clear()
    assert target.size == (8, 8)


def test_target_freed_inside_its_bracket(balanced):
    pixels = np.zeros((8, 8, 4), np.uint8)
    target = gx.RenderTarget(pixels)
    target.begin_paint()
    target.fill_rect((0, 0, 8, 8), "#ffffff")
    del target
    assert (pixels == 255).all()


def test_cycles_are_collected_with_memory_in_order(balanced):
    class Node(gx.RenderTarget):
        pass

    for _ in range(20):
        node = Node(np.zeros((64, 64, 4), np.uint8))
        node.self = node
        node.brush = gx.Brush.bitmap(gx.Bitmap(4, 4))
        node.begin_paint()
        node.begin_layer()
        node.fill_rect((0, 0, 64, 64), node.brush)
        del node
    gc.collect()


def test_views_keep_the_bitmap(balanced):
    view = np.asarray(gx.Bitmap(16, 16, fill="#0a0b0c"))
    with gx.Bitmap(16, 16, gx.PixelFormat.GRAY8, fill="#ffffff").lock(write=True) as pixels:
        part = pixels[2:4]
    colors = gx.Palette(range(100)).colors
    gc.collect()
    junk = [gx.Bitmap(16, 16, fill=0) for _ in range(50)]
    assert view[3, 3].tolist() == [0x0C, 0x0B, 0x0A, 0xFF]
    assert (part == 255).all() and colors.tolist() == list(range(100))
    del view, pixels, part, colors, junk


def test_copies_are_objects_of_their_own(balanced):
    path = gx.Path().rect((0, 0, 4, 4))
    twin = copy.copy(path)
    twin.rect((8, 8, 9, 9))
    assert path.bounds() == (0, 0, 4, 4)
    bitmap = gx.Bitmap(2, 2, fill="#ffffff")
    other = copy.copy(bitmap)
    other.fill(0)
    assert bitmap.to_rgba().min() == 255 and other.to_rgba().max() == 0
    for thing in (gx.Brush(1), gx.Region(), gx.RenderTarget(bitmap)):
        for way in (copy.copy, copy.deepcopy, pickle.dumps):
            with pytest.raises(TypeError):
                way(thing)
    assert pickle.loads(pickle.dumps(gx.StrokeStyle(dashes=(1, 2)))) == gx.StrokeStyle(
        dashes=(1, 2)
    )


def test_handle_of_another_owner(balanced):
    bitmap = gx.Bitmap(3, 2)
    other = gx.Bitmap.from_handle(int(gx.ffi.cast("uintptr_t", bitmap.handle)))
    del bitmap
    assert other.size == (3, 2)
    with pytest.raises(gx.InvalidArgument):
        gx.Bitmap.from_handle(0)


def test_cache_keeps_what_is_in_it_and_no_more(balanced):
    cache = gx.bitmap_cache
    quota = cache.quota
    try:
        tickets = [cache.put(gx.Bitmap(16, 16, fill=i)) for i in range(4)]
        gc.collect()
        assert cache.memory_in_use == 4 * 16 * 16 * 4
        assert [cache.get(ticket).size for ticket in tickets] == [(16, 16)] * 4
        assert cache.get(tickets[0]) is cache.get(tickets[0])
        live = balanced.live()
        cache.quota = 2 * 16 * 16 * 4
        gc.collect()
        assert balanced.live() == live - 2
        assert [cache.get(ticket) is None for ticket in tickets] == [True, True, False, False]
        cache.put(gx.Bitmap(16, 16))
        gc.collect()
        assert balanced.live() == live - 2 and cache.get(tickets[2]) is None
        # One that the host put in by itself comes with an owner of its own.
        alone, out = gx.Bitmap(4, 4), gx.ffi.new("uint32_t *")
        assert gx.lib.GXBitmapCachePut(alone.handle, out) == 0
        found = cache.get(out[0])
        assert found is not alone and found.handle == alone.handle
        cache.remove(out[0])
    finally:
        for ticket in range(1, 50):
            cache.remove(ticket)
        cache.quota = quota
    assert cache.memory_in_use == 0


def test_dropped_on_other_threads(balanced):
    boxes = [[gx.Bitmap(4, 4), gx.Brush(1), gx.Path(), gx.Region()] for _ in range(200)]
    threads = [threading.Thread(target=part.clear) for part in boxes]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def test_interpreter_ends_with_objects_alive(tmp_path):
    code = """
import gxgraphics as gx, numpy as np, sys, threading
keep = [gx.RenderTarget(np.zeros((8, 8, 4), np.uint8)), gx.Brush("#123"), gx.Palette([1]).colors]
keep[0].begin_paint()
keep[0].fill_rect((0, 0, 4, 4), "#fff")
keep.append(keep)
sys.keep = keep
"""
    done = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, timeout=120)
    assert (done.returncode, done.stderr) == (0, "")
