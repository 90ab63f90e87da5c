#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Puts a watermark on images, on several threads: watermark.py out-folder "© words" image...

The images are loaded with Pillow where it is installed, because it reads more kinds of files, else
by the library.
"""
import math
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import gxgraphics as gx

try:
    from PIL import Image
except ImportError:
    Image = None


def load(path):
    """The image, in a format that can be drawn into."""
    if Image is not None:
        with Image.open(path) as image:
            bitmap = gx.Bitmap.from_pil(image)
    else:
        bitmap = gx.Bitmap.open(path)
    return bitmap.convert(gx.PixelFormat.PBGRA32)


def mark(bitmap, words):
    """Rows of slanted words over the whole image, and a badge in its corner."""
    width, height = bitmap.size
    diagonal = math.hypot(width, height)
    face = gx.FontFace("", max(diagonal / 34, 6), bold=True)
    target = gx.RenderTarget(bitmap)
    # As one group: where words overlap or touch, the mark does not get denser.
    with target.paint():
        with target.layer(opacity=0.22):
            target.set_blend_mode(gx.BlendMode.NORMAL)
            target.translate(width / 2, height / 2)
            target.rotate(-math.atan2(height, width))
            step, line = face.measure(words + "   ")[0], 3.2 * face.measure(words)[1]
            rows = math.ceil(diagonal / line / 2)
            for row in range(-rows, rows + 1):
                shift = step / 2 if row % 2 else 0
                for column in range(-math.ceil(diagonal / step), math.ceil(diagonal / step) + 1):
                    at = (column * step + shift, row * line)
                    target.fill_text(words, face, "#000000", (at[0] + 1.5, at[1] + 1.5))
                    target.fill_text(words, face, "#ffffff", at)
        small = gx.FontFace("", max(diagonal / 60, 5))
        length, size = small.measure(words)
        right, bottom = width - size, height - size
        box = (right - length - 2 * size, bottom - 2.4 * size, right, bottom)
        target.fill(gx.Path().round_rect(box, 0.6 * size), "#10182890")
        target.fill_text(
            words, small, "#ffffff", (round(box[0] + size), round(bottom - 0.75 * size))
        )
    return bitmap


def main(folder, words, *images):
    folder = Path(folder)
    folder.mkdir(parents=True, exist_ok=True)

    def work(path):
        out = folder / (Path(path).stem + "-marked.png")
        mark(load(path), words).save(out)
        return out

    # The interpreter's lock is released while the library loads, draws and saves.
    with ThreadPoolExecutor() as pool:
        return list(pool.map(work, images))


if __name__ == "__main__":
    for written in main(*sys.argv[1:]):
        print(written)
