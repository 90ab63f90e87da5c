# SPDX-License-Identifier: MIT
"""Drawing releases the interpreter's lock, and threads with targets of their own do not disturb
each other."""
import threading

import gallery
import numpy as np

import gxgraphics as gx


def run(*calls):
    failures = []

    def guarded(call):
        try:
            call()
        except BaseException as error:
            failures.append(error)

    threads = [threading.Thread(target=guarded, args=(call,)) for call in calls]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not failures


def test_two_threads_are_inside_drawing_calls_at_the_same_time(shim):
    # Each call waits, inside the library's function, for one of the other thread: with the
    # interpreter's lock held it would wait in vain.
    path, calls = gx.Path().circle((8, 8), 6), 25

    def draw():
        target = gx.RenderTarget.new(16, 16)
        with target.paint():
            for _ in range(calls):
                target.fill(path, 0xFF203040)

    shim.arm(True)
    try:
        run(draw, draw)
    finally:
        shim.arm(False)
    assert shim.met() == calls


def test_concurrent_pictures_are_the_same(shim):
    names = ["groups", "masks", "strokes", "text", "shapes", "tilings"]
    expected = {name: gallery.draw(name).read() for name in names}
    drawn = {}

    def draw(part):
        for name in part * 2:
            drawn[threading.get_ident(), name] = gallery.draw(name).read()

    run(*(lambda turn=turn: draw(names[turn:] + names[:turn]) for turn in range(4)))
    assert len(drawn) == 4 * len(names)
    assert all(np.array_equal(pixels, expected[name]) for (_, name), pixels in drawn.items())


def test_shared_objects_and_bands_of_one_array():
    # Eighths, so that moving them by whole pixels is exact.
    points = np.random.default_rng(9).normal(64, 30, (400, 2)) // 0.125 / 8
    path = gx.Path(gx.FillRule.EVEN_ODD).polyline(points, close=True)
    brush = gx.Brush("#20304080")

    def draw(pixels, top):
        with gx.RenderTarget(pixels).paint() as target:
            target.translate(0, -top)
            target.fill(path, brush)

    whole, banded = np.zeros((128, 128, 4), np.uint8), np.zeros((128, 128, 4), np.uint8)
    draw(whole, 0)
    run(*(lambda top=top: draw(banded[top : top + 32], top) for top in range(0, 128, 32)))
    assert whole.any() and np.array_equal(whole, banded)
