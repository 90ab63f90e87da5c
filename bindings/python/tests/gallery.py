# SPDX-License-Identifier: MIT
"""The pictures of examples/gallery, drawn through this package: same scenes, same numbers, in
single precision."""
import os
import tempfile

import numpy as np
from single import F, cos, sin, sqrt

import gxgraphics as gx

WIDTH, HEIGHT = 400, 280
W, H = F(WIDTH), F(HEIGHT)


def canvas(width=WIDTH, height=HEIGHT, color=0xFFFFFFFF, format=gx.PixelFormat.BGRX32):
    target = gx.RenderTarget.new(width, height, 0, format)
    target.begin_paint()
    target.clear(color)
    return target


def linear(stops, start, end):
    return gx.Gradient.linear(start, end, stops)


def radial(stops, center, radius):
    return gx.Gradient.radial(center, radius, stops)


def polygon(points, closed=True):
    return gx.Path().polyline([tuple(p) for p in points], close=closed)


def curve(start, points, closed=False):
    path = gx.Path().move_to(start)
    for i in range(0, len(points), 3):
        path.curve_to(*points[i : i + 3])
    return path.close() if closed else path.end()


def star(center, radius, inner, points):
    x, y = center
    corners = []
    for i in range(2 * points):
        angle = F(3.14159265) * (F(i) / F(points) - 0.5)
        r = F(radius) if i % 2 == 0 else F(radius) * F(inner)
        corners.append((x + r * cos(angle), y + r * sin(angle)))
    return polygon(corners)


def disc(target, center, radius, brush):
    x, y, r = F(center[0]), F(center[1]), F(radius)
    target.fill_ellipse((x - r, y - r, x + r, y + r), brush)


def landscape(target, left, top, right, bottom):
    w, h = F(right) - left, F(bottom) - top
    with target.state():
        target.clip_rect((left, top, right, bottom))
        target.translate(left, top)
        sky = [(0, 0xFF16305C), (0.3, 0xFF5E6DA8), (0.5, 0xFFF2A07B), (0.62, 0xFFFFE3A3)]
        target.fill_rect((0, 0, w, h), linear(sky, (0, 0), (0, h)))
        sun = (0.68 * w, 0.46 * h)
        glow = radial([(0, 0xC0FFF3C4), (1, 0x00FFE0A0)], sun, 0.35 * h)
        target.fill_rect((0, 0, w, h), glow)
        disc(target, sun, 0.1 * h, 0xFFFFF6D8)
        hills = curve(
            (0, 0.62 * h),
            [
                (0.15 * w, 0.3 * h),
                (0.3 * w, 0.45 * h),
                (0.45 * w, 0.55 * h),
                (0.6 * w, 0.65 * h),
                (0.75 * w, 0.4 * h),
                (w, 0.62 * h),
            ],
        )
        target.fill(hills, linear([(0, 0xFF6B4A73), (1, 0xFF3B2F58)], (0, 0.35 * h), (0, 0.62 * h)))
        sea = [(0, 0xFFE0A585), (0.35, 0xFF56719E), (1, 0xFF10284A)]
        target.fill_rect((0, 0.6 * h, w, h), linear(sea, (0, 0.6 * h), (0, h)))
        style = gx.StrokeStyle(gx.LineJoin.ROUND, gx.LineCap.ROUND)
        for i in range(9):
            y = (F(0.63) + 0.035 * F(i)) * h
            half = (F(0.12) - 0.006 * F(i)) * w
            x = sun[0] + 0.02 * w * (1 if i % 2 == 0 else -1)
            target.stroke_line((x - half, y), (x + half, y), 0x60FFEFC0, 0.012 * h, style)
        bush = curve(
            (-0.1 * w, h),
            [(0.05 * w, 0.7 * h), (0.2 * w, 0.85 * h), (0.42 * w, 1.02 * h)],
            True,
        )
        target.fill(bush, linear([(0, 0xFF3E6B3A), (1, 0xFF13301E)], (0, 0.75 * h), (0, h)))


def blend_modes(target):
    gap = F(4)
    w, h = (W - 5 * gap) / 4, (H - 5 * gap) / 4
    wheel = [
        (0.2, 0xFFE83F3F),
        (0.2, 0xFFF5D33B),
        (0.4, 0xFFF5D33B),
        (0.4, 0xFF46C25C),
        (0.6, 0xFF46C25C),
        (0.6, 0xFF3D7BE8),
        (0.8, 0xFF3D7BE8),
        (0.8, 0xFF9A4FC0),
    ]
    for mode in gx.BlendMode:
        x, y = gap + F(mode % 4) * (w + gap), gap + F(mode // 4) * (h + gap)
        landscape(target, x, y, x + w, y + h)
        with target.state():
            target.clip_rect((x, y, x + w, y + h))
            target.set_blend_mode(mode)
            colors = linear(wheel, (x + w / 2 - 0.48 * h, y), (x + w / 2 + 0.48 * h, y))
            target.fill(star((x + w / 2, y + h / 2), 0.48 * h, 0.8, 12), colors)


def groups(target):
    w, h = W / 2, H / 2
    for kind in range(4):
        x, y = w * (kind % 2), h * (kind // 2)
        left, top, right, bottom = x + 4, y + 4, x + w - 4, y + h - 4
        with target.state():
            target.clip_rect((left, top, right, bottom))
            stops = [(0, 0xFFFFFFFF), (0.5, 0xFFFFF2B8), (0.5, 0xFF8FD0C8), (1, 0xFF5FA8C8)]
            target.fill_rect((left, top, right, bottom), linear(stops, (left, 0), (right, 0)))
            with target.layer(isolated=kind % 2 == 0, knockout=kind >= 2):
                target.set_blend_mode(gx.BlendMode.MULTIPLY)
                disc(target, (x + w / 2, y + 0.36 * h), 0.27 * h, 0xFF4FC3E8)
                disc(target, (x + w / 2 - 26, y + 0.64 * h), 0.27 * h, 0xFFF0609E)
                disc(target, (x + w / 2 + 26, y + 0.64 * h), 0.27 * h, 0xFFF7D64A)


def dot_tile():
    tile = canvas(20, 20, 0, gx.PixelFormat.PBGRA32)
    stops = [(0, 0xFFFFFFFF), (0.75, 0xFFFFFFFF), (1, 0x00FFFFFF)]
    disc(tile, (10, 10), 10, radial(stops, (10, 10), 10))
    tile.end_paint()
    return tile.bitmap


def masks(target):
    for row in range(HEIGHT // 10):
        for column in range(WIDTH // 10):
            if (row + column) % 2 == 0:
                x, y = 10 * column, 10 * row
                target.fill_rect((x, y, x + 10, y + 10), 0xFFE2E2E2)
    w, h = W / 2, H / 2
    for left, shape in ((F(6), False), (w + 6, True)):
        cell = (left, F(6), left + (w - 12), h - 6)
        with target.state():
            if shape:
                place = (1, 0, 0, 1, cell[0], cell[1])
                dots = gx.Brush.bitmap(dot_tile(), extend=gx.Extend.REPEAT, matrix=place)
                target.set_shape_mask(dots)
            else:
                stops = [(0, 0xFFFFFFFF), (0.35, 0xFFFFFFFF), (1, 0xFF000000)]
                middle = ((cell[0] + cell[2]) / 2, (cell[1] + cell[3]) / 2)
                target.set_opacity_mask(radial(stops, middle, w / 2))
            with target.layer():
                landscape(target, *cell)
    for group in (False, True):
        x = w if group else F(0)
        alpha = 0xFF000000 if group else 0x7F000000
        if group:
            target.begin_layer(opacity=0.5)
        disc(target, (x + 80, 1.5 * h), 46, alpha | 0xD6336C)
        disc(target, (x + 120, 1.5 * h), 46, alpha | 0x1C7ED6)
        target.fill(star((x + 100, 1.5 * h), 42, 0.45, 5), alpha | 0xF59F00)
        if group:
            target.end_layer()


def strokes(target):
    ink, wire, accent = (gx.Brush(color) for color in (0xFF1F3A5F, 0xFFFFD166, 0xFFD1495B))
    for join in gx.LineJoin:
        x = 20 + 125 * int(join)
        corner = polygon([(x, 90), (x + 50, 28), (x + 100, 90)], False)
        target.stroke(corner, ink, 24, gx.StrokeStyle(join))
        target.stroke(corner, wire, 2)
    for cap in gx.LineCap:
        y = 125 + 26 * int(cap)
        target.stroke_line((30, y), (120, y), ink, 16, gx.StrokeStyle(cap=cap))
        target.stroke_line((30, y), (120, y), wire, 2)
        dashed = gx.StrokeStyle(cap=cap, dashes=(24, 18))
        target.stroke_line((160, y), (270, y), accent, 10, dashed)
        dotted = gx.StrokeStyle(cap=cap, dashes=(0, 14, 14, 14))
        target.stroke_line((300, y), (385, y), accent, 8, dotted)
    waves = gx.StrokeStyle(gx.LineJoin.ROUND, gx.LineCap.ROUND, dashes=(18, 10, 0, 10))
    points = [(70, 160), (90, 310), (150, 236), (190, 190), (210, 270), (240, 236)]
    colors = linear([(0, 0xFF2A9D8F), (1, 0xFF8338EC)], (16, 0), (240, 0))
    target.stroke(curve((16, 236), points), colors, 7, waves)
    for i in range(9):
        target.stroke_line((270 + 13 * i, 268), (290 + 13 * i, 206), ink, 0.5 * i)


def gradients(target):
    stops = [(0, 0xFF3A0CA3), (0.4, 0xFFF72585), (0.4, 0xFF4CC9F0), (1, 0xFFFFF3B0)]
    target.fill_rect((12, 12, 194, 134), linear(stops, (12, 12), (194, 134)))
    target.fill_rect((206, 12, 388, 134), 0xFF10151F)
    stops = [(0, 0xFFFFFFFF), (0.25, 0xFFFFE66D), (0.7, 0xFFFF6B35), (1, 0xFF5F0F40)]
    disc(target, (297, 73), 56, radial(stops, (281, 55), 76))
    stops = [(0, 0xFF006D77), (0.5, 0xFF83C5BE), (1, 0xFFFFDDD2)]
    cone = gx.Gradient.radial((138, 207), 50, stops, (28, 207), 0, extend=False)
    target.fill_rect((12, 146, 194, 268), 0xFFEDF6F9)
    target.fill_rect((12, 146, 194, 268), gx.Brush.gradient(cone))

    x, y, w, h, steps = F(213), F(153), F(168), F(108), 6

    def vertex(i, j):
        u, v = F(i) / steps, F(j) / steps
        red, green, blue = (
            int(F(127.5) + 127.5 * wave)
            for wave in (sin(5 * u + 1), sin(6 * v - 2 * u), cos(4 * u + 3 * v))
        )
        color = 0xFF000000 | red << 16 | green << 8 | blue
        return (x + w * u + 7 * sin(9 * v), y + h * v + 7 * sin(9 * u), color)

    corners = []
    for j in range(steps):
        for i in range(steps):
            a, b, c = vertex(i, j), vertex(i + 1, j), vertex(i, j + 1)
            corners += [a, b, c, b, c, vertex(i + 1, j + 1)]
    points = np.array([corner[:2] for corner in corners], np.float32)
    target.draw_gradient(gx.Gradient.mesh(points, [corner[2] for corner in corners]))


def tilings(target):
    tile = canvas(32, 32, 0xFFFFF4E0, gx.PixelFormat.PBGRA32)
    tile.fill_rect((0, 0, 16, 16), 0xFFE07A5F)
    tile.fill(polygon([(32, 0), (32, 32), (0, 32)]), 0xFF3D405B)
    disc(tile, (16, 16), 7, 0xFF81B29A)
    tile.end_paint()
    w, h = W / 2, H / 2
    kinds = [
        (gx.Extend.REPEAT, (1, 0, 0, 1, 8, 8)),
        (gx.Extend.REPEAT, (0.866, 0.5, -0.5, 0.866, w, 0)),
        (gx.Extend.MIRROR, (1, 0, 0, 1, 8, h + 8)),
        (gx.Extend.CLAMP, (2, 0, 0, 2, 1.5 * w - 32, 1.5 * h - 32)),
    ]
    for i, (extend, matrix) in enumerate(kinds):
        x, y = w * (i % 2), h * (i // 2)
        path = gx.Path().round_rect((x + 8, y + 8, x + w - 8, y + h - 8), 18)
        target.fill(path, gx.Brush.bitmap(tile.bitmap, extend=extend, matrix=matrix))


def text(target):
    def write(words, origin, brush, size, **style):
        target.fill_text(words, gx.FontFace("", size, **style), brush, origin)

    ink = gx.Brush(0xFF1B263B)
    title = [(0, 0xFF7209B7), (0.5, 0xFFF72585), (1, 0xFFFB8500)]
    brush = linear(title, (0, -24), (0, 2))
    write(
        "Äther \u2013 \u03a9\u03bc\u03ad\u03b3\u03b1 \u2013 \u041c\u0438\u0440",
        (14, 42),
        brush,
        20,
        bold=True,
    )
    y = F(68)
    for size in (6, 7, 8, 9.5, 12, 14):
        y += 1.35 * F(size)
        write("Hamburgefonts, small to large", (14, y), ink, size, italic=size == 12)
    for i in range(9):
        with target.state():
            target.translate(300, 248)
            target.rotate(F(-3.14159265) + 0.3927 * F(i))
            write("turned", (26, 5), 0xFF000000 | (0x20 + 24 * i) << 16 | 0x5FA0, 13)
    with target.state():
        target.translate(14, 262)
        target.concat((1, 0, -0.5, 1.6, 0, 0))
        write("slanted", (0, 0), 0xFF2A9D8F, 26, bold=True)


def hit_test(target):
    def loop(x, y):
        points = [(150, -90), (150, 120), (20, 30), (-40, -20), (60, -70), (90, 50)]
        points += [(95, 85), (-20, 80), (0, 0)]
        return curve((x, y), [(x + dx, y + dy) for dx, dy in points], True)

    bow = [(210, 20), (300, 10), (300, 130), (300, 230), (380, 230), (370, 60)]
    shapes = [loop(40, 60), loop(40, 190), curve((220, 200), bow)]
    shapes[1].fill_rule = gx.FillRule.EVEN_ODD
    ys, xs = np.mgrid[4:HEIGHT:7, 4:WIDTH:7]
    hits = np.zeros(xs.size, bool)
    for shape in shapes:
        hits |= shape.hit_tests(xs.ravel(), ys.ravel(), tolerance=4)
    hit, miss = gx.Brush(0xFF264653), gx.Brush(0xFFE3E7EA)
    for x, y, any_hit in zip(xs.flat, ys.flat, hits):
        disc(target, (x, y), 2.6 if any_hit else 1.4, hit if any_hit else miss)
    for shape in shapes:
        target.stroke(shape, 0xFFE76F51, 1.5)


def regions(target):
    circle, bars = [], [(20 * i + 4, -60, 20 * i + 14, 60) for i in range(-3, 3)]
    for y in range(-50, 50, 4):
        half = int(sqrt(F(2500) - F((y + 2) * (y + 2))))
        circle.append((-half, y, half, y + 4))
    bars.append((-80, -6, 80, 6))
    a, b = gx.Region.from_rects(circle), gx.Region.from_rects(bars)
    colors = [0xFF4361EE, 0xFFF72585, 0xFF4CC9F0, 0xFFFFB703, 0xFF2A9D8F, 0xFF7209B7, 0xFFFB8500]
    w, h = WIDTH // 2, HEIGHT // 2
    for mode in gx.Combine:
        result = a.combine(b, mode).offset(w // 2 + w * (mode % 2), h // 2 + h * (mode // 2))
        for i, rect in enumerate(result):
            box = (rect.left, rect.top, rect.right - 1, rect.bottom - 1)
            target.fill_rect(box, colors[i % 7])


def ring(center, radius):
    (x, y), r = center, F(radius)
    c = F(0.5522848) * r
    points = [
        (x + r, y + c),
        (x + c, y + r),
        (x, y + r),
        (x - c, y + r),
        (x - r, y + c),
        (x - r, y),
    ]
    points += [
        (x - r, y - c),
        (x - c, y - r),
        (x, y - r),
        (x + c, y - r),
        (x + r, y - c),
        (x + r, y),
    ]
    return curve((x + r, y), points, True)


def shapes(target):
    w, h = W / 2, H / 2
    colors = [0xFF2A9D8F, 0xFF4361EE, 0xFFF72585, 0xFFFB8500]
    for mode in gx.Combine:
        with target.state():
            target.translate(w * (mode % 2), h * (mode // 2))
            middle = (w / 2 - 20, h / 2 + 2)
            holed = star(middle, 62, 0.45, 7).combine(ring(middle, 15), gx.Combine.DIFFERENCE, 0.1)
            points = [(-40, -75), (60, -60), (60, -10), (110, 10), (30, 90), (20, 30)]
            points += [(10, 10), (-25, 50), (-30, 0)]
            points = [(w / 2 + dx, h / 2 + dy) for dx, dy in points]
            blot = curve((w / 2 - 30, h / 2), points, True)
            result = holed.combine(blot, mode, 0.1)
            target.fill(result, colors[mode])
            target.stroke(holed, 0xFFADB5BD, 0.7)
            target.stroke(blot, 0xFFADB5BD, 0.7)
            target.stroke(result, 0xFF14213D, 1)
            for x, y in result.to_arrays()[1].tolist():
                disc(target, (x, y), 1.2, 0xFF14213D)


def photo_bitmap():
    width, height = 900, 420
    scene = canvas(width, height, 0xFFFFFFFF)
    w, h = F(width), F(height)
    landscape(scene, F(0), F(0), w, h)
    for x in range(3, width, 9):
        scene.fill_rect((x, 0.72 * h, x + 3, h), 0xFFF1E3C8)
    for i in range(48):
        turn = F(6.2831853) * i / 48
        x, y = 0.5 * w, 0.35 * h
        scene.stroke_line((x, y), (x + 120 * cos(turn), y + 120 * sin(turn)), 0xC0FFF3B0, 2)
    scene.end_paint()
    random, grain = 1, np.empty(width * height, np.int16)
    for i in range(width * height):
        random = (random * 1664525 + 1013904223) & 0xFFFFFFFF
        grain[i] = (random >> 28) - 8
    with scene.bitmap.lock(write=True) as pixels:
        noisy = pixels[..., :3] + grain.reshape(height, width, 1)
        pixels[..., :3] = noisy.clip(0, 255)
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "photo.png")
        scene.bitmap.save(path)
        return gx.Bitmap.open(path)


def photo(target):
    picture = photo_bitmap()
    gap = F(6)
    h, w = (H - 4 * gap) / 3, (W - 3 * gap) / 2
    detail = (496, 84, 496 + int(w / 4), 84 + int(h / 4))
    top = gap
    for way in gx.Interpolation:
        left = (gap, top, gap + w, top + h)
        right = (2 * gap + w, top, 2 * gap + 2 * w, top + h)
        target.stretch_bitmap(picture, left, (0, 0, 900, 420), 1, way)
        target.stretch_bitmap(picture, right, detail, 1, way)
        top += h + gap


PICTURES = {
    "blend-modes": blend_modes,
    "groups": groups,
    "masks": masks,
    "strokes": strokes,
    "gradients": gradients,
    "tilings": tilings,
    "text": text,
    "hit-test": hit_test,
    "regions": regions,
    "shapes": shapes,
    "photo": photo,
}


def draw(name):
    target = canvas()
    PICTURES[name](target)
    target.end_paint()
    return target.bitmap
