#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A page from a recording, with a part of it under a magnifying glass.

    recorded_page.py page.gxr out.png [x y]

`pdfpage file.pdf 1 --record page.gxr` makes a recording. x and y, from 0 to 1, say where the glass
is.
"""
import sys

import numpy as np

import gxgraphics as gx

WIDTH, MARGIN, ZOOM, RADIUS = 640, 28, 2.5, 120


def magnified(page, x, y, side, zoom):
    """A square of the page around a point, drawn anew at that zoom and not enlarged from pixels."""
    pixels = np.zeros((side, side, 4), np.uint8)
    with gx.RenderTarget(pixels).paint() as target:
        target.clear("#ffffff")
    target = gx.RenderTarget(pixels)
    target.translate(side / 2 - zoom * x, side / 2 - zoom * y)
    page.draw(target, zoom)
    return gx.Bitmap.from_array(pixels, gx.PixelFormat.PBGRA32)


def main(recording, out, x=0.62, y=0.3):
    page = gx.Recording.open(recording)
    scale = (WIDTH - 2 * MARGIN) / page.size.width
    picture = page.render(scale)
    target = gx.RenderTarget.new(
        WIDTH, picture.height + 2 * MARGIN, "#dfe3ea", gx.PixelFormat.BGRX32
    )
    left, top = MARGIN, MARGIN
    right, bottom = left + picture.width, top + picture.height
    with target.paint():
        target.fill_rect((left + 5, top + 6, right + 5, bottom + 6), "#00000030")
        target.fill_rect((left, top, right, bottom), "#ffffff")
        target.draw_bitmap(picture, (left, top))

        x, y = float(x), float(y)
        center = (left + x * picture.width, top + y * picture.height)
        glass = gx.Path().circle(center, RADIUS)
        part = magnified(page, x * page.size.width, y * page.size.height, 2 * RADIUS, scale * ZOOM)
        place = gx.Matrix.translation(center[0] - RADIUS, center[1] - RADIUS)
        target.fill(gx.Path().circle((center[0] + 4, center[1] + 6), RADIUS + 5), "#00000040")
        target.fill(glass, gx.Brush.bitmap(part, matrix=place))
        rim = gx.Gradient.linear(
            (center[0], center[1] - RADIUS),
            (center[0], center[1] + RADIUS),
            [(0, "#f8fafc"), (0.5, "#94a3b8"), (1, "#475569")],
        )
        target.stroke(glass, rim, 7)
    target.bitmap.save(out)


if __name__ == "__main__":
    main(*sys.argv[1:])
