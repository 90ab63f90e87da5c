#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A map from arrays: shaded heights, contour lines, a coast, places: map_from_arrays.py out.png

The heights are made up; a host would load them, and its lines, from files. Every line and every dot
goes to the library in one call for all of its kind.
"""
import sys

import numpy as np

import gxgraphics as gx

WIDTH, HEIGHT = 720, 480


def heights():
    """Hills of several sizes on a grid of one value a pixel; the sea is below 0."""
    random = np.random.default_rng(23)
    y, x = np.mgrid[0:HEIGHT, 0:WIDTH].astype(np.float64)
    height = np.full(x.shape, -170.0)
    for size, strength, count in ((150, 210, 9), (60, 100, 34), (22, 30, 150)):
        for cx, cy in random.uniform((80, 60), (WIDTH - 80, HEIGHT - 60), (count, 2)):
            height += strength * np.exp(-((x - cx) ** 2 + (y - cy) ** 2) / (2 * (size / 2) ** 2))
    return height


def relief(height):
    """A picture of the heights: colours by height, light from the top left."""
    land = np.array(
        [[0, 112, 158, 84], [150, 201, 205, 140], [450, 190, 160, 112], [900, 250, 248, 245]]
    )
    sea = np.array([[-170, 44, 95, 138], [-50, 94, 152, 190], [0, 168, 208, 226]])
    rgb = np.empty(height.shape + (3,))
    for channel in range(3):
        on_land = np.interp(height, land[:, 0], land[:, channel + 1])
        rgb[..., channel] = np.where(
            height < 0, np.interp(height, sea[:, 0], sea[:, channel + 1]), on_land
        )
    down, across = np.gradient(np.maximum(height, 0))
    light = np.clip(1 - 0.05 * (across + down), 0.7, 1.15)
    return gx.Bitmap.from_rgba((rgb * light[..., None]).clip(0, 255).astype(np.uint8))


def contour(height, level):
    """The line segments, an n x 2 x 2 array, along which the heights cross a level."""
    above = height > level
    segments = []
    # Both triangles of a cell: two of the three edges of one are crossed, or none.
    for corners in (((0, 0), (0, 1), (1, 0)), ((1, 1), (1, 0), (0, 1))):
        rows, columns = HEIGHT - 1, WIDTH - 1
        part = [above[r : rows + r, c : columns + c] for r, c in corners]
        values = [height[r : rows + r, c : columns + c] for r, c in corners]
        for apex in range(3):
            first, second = (apex + 1) % 3, (apex + 2) % 3
            alone = (part[apex] != part[first]) & (part[first] == part[second])
            row, column = np.nonzero(alone)
            ends = []
            for other in (first, second):
                a, b = values[apex][alone], values[other][alone]
                t = ((level - a) / (b - a))[:, None]
                start = np.stack([column + corners[apex][1], row + corners[apex][0]], axis=1)
                end = np.stack([column + corners[other][1], row + corners[other][0]], axis=1)
                # Heights are those of the pixels' middles.
                ends.append(start + t * (end - start) + 0.5)
            segments.append(np.stack(ends, axis=1))
    return np.concatenate(segments)


def lines(segments):
    """One path with a figure for each segment."""
    return gx.Path().polylines(segments.reshape(-1, 2), np.arange(0, 2 * len(segments), 2))


def draw(target):
    height = heights()
    target.draw_bitmap(relief(height))
    round_ends = gx.StrokeStyle(gx.LineJoin.ROUND, gx.LineCap.ROUND)
    for level in range(25, 900, 25):
        width = 1.1 if level % 100 == 0 else 0.5
        target.stroke(lines(contour(height, level)), "#5b432c90", width, round_ends)
    target.stroke(lines(contour(height, 0)), "#1d3f5e", 1.6, round_ends)

    grid = [((x, 0), (x, HEIGHT)) for x in range(120, WIDTH, 120)]
    grid += [((0, y), (WIDTH, y)) for y in range(120, HEIGHT, 120)]
    target.stroke(lines(np.array(grid, float)), "#ffffff70", 1, gx.StrokeStyle(dashes=(6, 4)))

    random = np.random.default_rng(7)
    spots = random.integers((20, 20), (WIDTH - 20, HEIGHT - 20), (900, 2))
    spots = spots[(lambda h: (h > 8) & (h < 260))(height[spots[:, 1], spots[:, 0]])]
    dots = gx.Path().ellipses(np.concatenate([spots - 1.3, spots + 1.3], axis=1))
    target.fill(dots, "#7a1f1fd0")

    face = gx.FontFace("", 10, bold=True)
    for (x, y), name in zip(spots[[3, 40, 90]], ("Northam", "Millford", "Eastwick")):
        target.fill(gx.Path().circle((x, y), 4), "#7a1f1f")
        words = (round(x) + 7, round(y) + 4)
        for dx, dy in ((-1, 0), (1, 0), (0, -1), (0, 1)):
            target.fill_text(name, face, "#ffffffc0", (words[0] + dx, words[1] + dy))
        target.fill_text(name, face, "#2b1414", words)

    target.fill(gx.Path().round_rect((20, HEIGHT - 46, 216, HEIGHT - 14), 5), "#ffffffc8")
    bars = np.array([[32 + 38 * i, HEIGHT - 36, 70 + 38 * i, HEIGHT - 31] for i in range(4)])
    target.fill(gx.Path().rects(bars[::2]), "#20303f")
    target.stroke_rect((32, HEIGHT - 36, 184, HEIGHT - 31), "#20303f", 1)
    small = gx.FontFace("", 7)
    for i, words in enumerate(("0", "10", "20 km")):
        target.fill_text(words, small, "#20303f", (30 + 76 * i - 4 * (i > 0), HEIGHT - 20))


def main(path):
    target = gx.RenderTarget.new(WIDTH, HEIGHT, "#ffffff", gx.PixelFormat.BGRX32)
    with target.paint():
        draw(target)
    target.bitmap.save(path)


if __name__ == "__main__":
    main(sys.argv[1])
