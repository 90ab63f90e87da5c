# SPDX-License-Identifier: MIT
"""What goes wrong comes as an exception with the library's reason, on the thread that failed."""
import threading

import pytest

import gxgraphics as gx
from gxgraphics import errors


def test_engine_error_carries_the_diagnostic_line():
    target = gx.RenderTarget.new(4, 4)
    with pytest.raises(gx.EngineError) as caught:
        target.fill_rect((0, 0, 1, 1), 0xFF000000)
    error = caught.value
    assert error.result == gx.lib.GXResultEngineError
    assert error.function == "GXRenderTargetFillRect"
    assert error.message == "Painting has not begun"
    assert error.diagnostic.startswith("Exception in ") and error.diagnostic.endswith(error.message)
    assert str(error) == "GXRenderTargetFillRect: Painting has not begun"
    assert isinstance(error, RuntimeError) and isinstance(error, gx.Error)


@pytest.mark.parametrize(
    "call, message",
    [
        (lambda t: t.begin_paint(), "Painting has already begun"),
        (lambda t: t.pop_state(), "State stack is empty"),
        (lambda t: t.end_layer(), "No layer is open"),
        (
            lambda t: t.stroke_line((0, 0), (9, 9), 0, 1, gx.StrokeStyle(dashes=(1, -1))),
            "negative element",
        ),
        (
            lambda t: t.stroke_line((0, 0), (9, 9), 0, 1, gx.StrokeStyle(dashes=(0, 0))),
            "zero length",
        ),
        (lambda t: gx.Bitmap(0, 5), "Invalid bitmap dimensions"),
        (lambda t: gx.Bitmap(40000, 40000), "Bitmap is too big"),
        (lambda t: gx.Bitmap(4, 4, 77, fill=None), "Unsupported pixel format"),
        (lambda t: gx.Bitmap.open("/nowhere/at/all.png"), "Failed to load"),
        (lambda t: gx.Bitmap.from_bytes(b"no picture"), "Failed to load"),
        (lambda t: gx.Bitmap(4, 4).save("/nowhere/at/all.png"), "Failed to save bitmap"),
        (lambda t: gx.Bitmap(4, 4).encode("xyz"), "Unknown file format"),
    ],
)
def test_reason_of_the_library(target, call, message):
    with pytest.raises(gx.EngineError, match=message):
        call(target)


def test_other_results():
    with pytest.raises(gx.IndexOutOfRange) as caught:
        gx.Palette([1, 2])[2]
    assert isinstance(caught.value, IndexError) and caught.value.message is None
    with pytest.raises(gx.InvalidArgument) as caught:
        gx.Path().line_to((1, 2)).widen(-1)
    assert (
        isinstance(caught.value, ValueError)
        and str(caught.value) == "GXGeometryWiden: invalid argument"
    )
    with pytest.raises(gx.UnexpectedError) as caught:
        errors.fail(gx.lib.GXResultUnexpectedError, "GXCreateRegion")
    assert isinstance(caught.value, MemoryError)


def test_line_of_an_earlier_call_is_not_told_again(target):
    # The library's own functions do not take the line, so it waits for the next exception.
    assert gx.lib.GXRenderTargetPopState(target.handle) == gx.lib.GXResultEngineError
    with pytest.raises(gx.InvalidArgument) as caught:
        target.scale(0, 1)
    assert caught.value.diagnostic is None
    with pytest.raises(gx.EngineError, match="No layer is open"):
        target.end_layer()


def test_long_line_keeps_its_end(tmp_path):
    text = ("x" * 3000 + ":\n\tthe reason").encode()
    gx.lib.gxpy_keep_line(gx.ffi.NULL, gx.ffi.from_buffer("char[]", text + b"\0"))
    with pytest.raises(gx.EngineError) as caught:
        errors.fail(gx.lib.GXResultEngineError, "GXObjectAcquire")
    assert caught.value.message == "the reason" and len(caught.value.diagnostic) == 1024


def test_each_thread_gets_its_own_reason():
    def without_bracket(target):
        target.fill_rect((0, 0, 1, 1), 0)

    def without_state(target):
        with target.paint():
            target.pop_state()

    def without_layer(target):
        with target.paint():
            target.end_layer()

    def without_file(target):
        gx.Bitmap.open("/nowhere.png")

    kinds = [
        (without_bracket, "Painting has not begun"),
        (without_state, "State stack is empty"),
        (without_layer, "No layer is open"),
        (without_file, "Failed to load"),
    ]
    told = {message: set() for _, message in kinds}
    start = threading.Barrier(len(kinds))

    def fail_often(call, message):
        target = gx.RenderTarget.new(4, 4)
        start.wait()
        for _ in range(300):
            try:
                call(target)
                told[message].add("nothing")
            except gx.EngineError as error:
                told[message].add(error.message)

    threads = [threading.Thread(target=fail_often, args=kind) for kind in kinds]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert told == {message: {message} for _, message in kinds}


def test_error_in_a_block_passes_and_closes_it():
    target = gx.RenderTarget.new(8, 8)
    with pytest.raises(ZeroDivisionError):
        with target.paint():
            with target.state(), target.layer(opacity=0.5):
                target.translate(5, 5)
                1 / 0
    assert target.ctm == gx.Matrix()
    with target.paint():
        target.fill_rect((0, 0, 8, 8), "#102030")
    assert target.bitmap.to_rgba()[7, 7].tolist() == [0x10, 0x20, 0x30, 0xFF]


@pytest.mark.parametrize(
    "call, kind",
    [
        (lambda t: t.fill(None, 0), TypeError),
        (lambda t: t.fill(gx.Path(), None), TypeError),
        (lambda t: t.fill(gx.Brush(0), gx.Path()), TypeError),
        (lambda t: t.fill_rect((1, 2, 3), 0), ValueError),
        (lambda t: t.fill_rect((1, 2, 3, 4, 5), 0), ValueError),
        (lambda t: t.fill_rect("abcd", 0), TypeError),
        (lambda t: t.layer((1, 2, 3)).__enter__(), ValueError),
        (lambda t: t.stroke(gx.Path(), 0, 1, "dashed"), TypeError),
        (lambda t: t.clear("red"), ValueError),
        (lambda t: t.clear("#12345"), ValueError),
        (lambda t: t.clear(1 << 32), OverflowError),
        (lambda t: t.clear(-1), OverflowError),
        (lambda t: t.clear((1, 2)), ValueError),
        (lambda t: t.concat((1, 0, 0, 1)), ValueError),
        (lambda t: t.concat([[1, 0, 0], [0, 1, 0], [1, 0, 1]]), ValueError),
        (lambda t: t.stretch_bitmap(gx.Bitmap(1, 1), (0, 0, 1, 1), (0, 0, 0.5, 1)), AttributeError),
        (lambda t: gx.StrokeStyle(dashes=range(16)), ValueError),
        (lambda t: gx.FontFace("a\0b"), ValueError),
        (lambda t: gx.Bitmap.open("a\0b.png"), ValueError),
        (lambda t: gx.Bitmap(-1, 1), OverflowError),
        (lambda t: gx.Gradient(), TypeError),
        (lambda t: gx.Region().contains(None), TypeError),
        (lambda t: gx.Matrix(0, 0, 0, 0, 0, 0).inverse(), ValueError),
        (lambda t: gx.Palette([]), gx.InvalidArgument),
        (lambda t: t.handle.__class__(), TypeError),
    ],
)
def test_wrong_arguments(target, call, kind):
    with pytest.raises(kind):
        call(target)
    assert (target.bitmap.to_rgba() == 255).all()
