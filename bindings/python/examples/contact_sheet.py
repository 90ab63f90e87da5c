#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Small pictures of many images on a sheet, with their names: contact_sheet.py out.png image..."""
import math
import sys
from pathlib import Path

import gxgraphics as gx

CELL, GAP, LABEL = 200, 18, 26


def shortened(text, face, width):
    """Text that fits, cut in its middle."""
    if face.measure(text)[0] <= width:
        return text
    keep = len(text) // 2
    while keep > 1 and face.measure(text[:keep] + "…" + text[-keep:])[0] > width:
        keep -= 1
    return text[:keep] + "…" + text[-keep:]


def shadow(target, box):
    """Soft edges by a few translucent frames, as one group."""
    left, top, right, bottom = box
    with target.layer(opacity=0.8):
        for grow in range(6, 0, -1):
            frame = (left - grow + 1, top - grow + 3, right + grow + 1, bottom + grow + 3)
            target.fill(gx.Path().round_rect(frame, grow + 1), "#00000014")


def draw_cell(target, path, x, y, face):
    box = CELL - 2 * GAP
    try:
        bitmap = gx.Bitmap.open(path)
    except gx.EngineError as error:
        target.stroke_rect((x + GAP, y + GAP, x + CELL - GAP, y + CELL - GAP), "#c1121f", 1)
        words = shortened(error.message, face, box - 8)
        target.fill_text(words, face, "#c1121f", (x + GAP + 4, y + CELL // 2))
    else:
        scale = min(box / bitmap.width, box / bitmap.height, 1)
        width, height = round(bitmap.width * scale), round(bitmap.height * scale)
        left, top = x + (CELL - width) // 2, y + CELL - GAP - height
        place = (left, top, left + width, top + height)
        shadow(target, place)
        # Averages what a pixel of the small picture covers.
        target.stretch_bitmap(bitmap, place, interpolation=gx.Interpolation.AVERAGE)
    name = shortened(Path(path).name, face, CELL - GAP)
    left = x + (CELL - face.measure(name)[0]) / 2
    target.fill_text(name, face, "#33415c", (round(left), y + CELL + 6))


def main(out, *images):
    columns = max(math.ceil(math.sqrt(len(images) * 1.3)), 1)
    rows = max(math.ceil(len(images) / columns), 1)
    size = (columns * CELL + 2 * GAP, rows * (CELL + LABEL) + 2 * GAP)
    target = gx.RenderTarget.new(*size, "#f3f4f6", gx.PixelFormat.BGRX32)
    face = gx.FontFace("", 9)
    with target.paint():
        for index, path in enumerate(images):
            x, y = GAP + index % columns * CELL, GAP + index // columns * (CELL + LABEL)
            draw_cell(target, path, x, y, face)
    target.bitmap.save(out)


if __name__ == "__main__":
    main(*sys.argv[1:])
