#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A line chart with a band, gaps in the data, axes and a legend: chart.py out.png"""
import sys

import numpy as np

import gxgraphics as gx

WIDTH, HEIGHT = 720, 420
LEFT, TOP, RIGHT, BOTTOM = 64, 56, 696, 364
INK, GRID = "#33415c", "#d9dee7"


def label(target, text, face, x, y, align=0.0, color=INK):
    """Text whose start, middle or end (0, 0.5, 1) is at x."""
    target.fill_text(text, face, color, (round(x - align * face.measure(text)[0]), y))


def draw(target):
    days = np.arange(0, 365)
    random = np.random.default_rng(11)
    mean = 11 - 9 * np.cos(2 * np.pi * (days - 20) / 365)
    spread = 3 + np.sin(2 * np.pi * days / 90)
    measured = mean + spread * random.normal(0, 0.6, days.size)
    measured[210:232] = np.nan  # the sensor was away

    # Data to pixels; a matrix would scale the pen as well.
    x = LEFT + days * (RIGHT - LEFT) / 364

    def y(values):
        return BOTTOM - (values + 5) * (BOTTOM - TOP) / 35

    small, title = gx.FontFace("", 9), gx.FontFace("", 15, bold=True)
    label(target, "Temperature over a year", title, LEFT, 34)
    for value in range(-5, 31, 5):
        target.stroke_line((LEFT, y(value)), (RIGHT, y(value)), GRID, 1)
        label(target, f"{value} °C", small, LEFT - 8, y(value) + 4, 1)
    for month, name in enumerate("Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()):
        label(target, name, small, LEFT + (month + 0.5) * (RIGHT - LEFT) / 12, BOTTOM + 20, 0.5)

    band = gx.Path().polyline(
        np.concatenate([x, x[::-1]]),
        np.concatenate([y(mean + spread), y(mean - spread)[::-1]]),
        close=True,
    )
    shades = gx.Gradient.linear((0, TOP), (0, BOTTOM), [(0, "#f4845f"), (1, "#3a86ff")])
    target.fill(band, gx.Brush.gradient(shades, opacity=0.35))
    thin = gx.StrokeStyle(gx.LineJoin.ROUND, gx.LineCap.ROUND)
    target.stroke(gx.Path().polyline(x, y(mean)), INK, 1.2, gx.StrokeStyle(dashes=(6, 4)))
    target.stroke(gx.Path().polyline(x, y(measured), gaps=True), "#c1121f", 1.6, thin)
    target.stroke_line((LEFT, BOTTOM), (RIGHT, BOTTOM), INK, 1.5)

    target.fill(gx.Path().round_rect((500, 20, 696, 44), 6), "#f3f5f9")
    target.stroke_line((510, 32), (532, 32), "#c1121f", 2, thin)
    label(target, "measured", small, 538, 36)
    target.stroke_line((616, 32), (642, 32), INK, 1.2, gx.StrokeStyle(dashes=(6, 4)))
    label(target, "mean", small, 648, 36)


def main(path):
    target = gx.RenderTarget.new(WIDTH, HEIGHT, "#ffffff", gx.PixelFormat.BGRX32)
    with target.paint():
        draw(target)
    target.bitmap.save(path)


if __name__ == "__main__":
    main(sys.argv[1])
