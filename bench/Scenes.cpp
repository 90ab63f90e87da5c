// SPDX-License-Identifier: MIT
// The table of scenes.
#include "Scene.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace Bench {

Shape Shape::Rectangle(float left, float top, float right, float bottom) {
    Shape shape;
    shape.Move({left, top});
    shape.Line({right, top});
    shape.Line({right, bottom});
    shape.Line({left, bottom});
    shape.Close();
    shape.m_isRectangle = true;
    return shape;
}

namespace {

constexpr float kPi = 3.14159265f;
constexpr uint32_t kOpaque = 0xFF204080;
constexpr uint32_t kHalf = 0x80C06020;

class Random {
public:
    explicit Random(uint32_t seed) : m_engine(seed) {}
    /// In [low, high); written out, so that every standard library gives the same numbers.
    float operator()(float low, float high) {
        return low + (high - low) * (static_cast<float>(m_engine() >> 8) / 16777216.0f);
    }

private:
    std::mt19937 m_engine;
};

size_t CountFor(float size) { return size <= 40 ? 200 : size <= 150 ? 100 : size <= 600 ? 24 : 4; }

template <class Make> std::vector<Shape> Scatter(uint32_t seed, float size, int canvas, Make make) {
    Random random(seed);
    std::vector<Shape> shapes;
    for (size_t i = CountFor(size); i > 0; --i) {
        const float room = std::max(0.0f, static_cast<float>(canvas) - size);
        const Point origin = {random(0, room), random(0, room)};
        shapes.push_back(make(origin, random));
    }
    return shapes;
}

std::vector<Shape> Rectangles(float size, bool aligned, int canvas) {
    return Scatter(1, size, canvas, [=](Point at, Random&) {
        if (aligned) {
            at = {std::floor(at.x), std::floor(at.y)};
            return Shape::Rectangle(at.x, at.y, at.x + size, at.y + size);
        }
        // Never quite on a pixel edge, whatever was drawn.
        at = {std::floor(at.x) + 0.3f, std::floor(at.y) + 0.4f};
        return Shape::Rectangle(at.x, at.y, at.x + size - 0.75f, at.y + size - 0.85f);
    });
}

void Ellipse(Shape& shape, Point center, float rx, float ry, bool reversed = false) {
    const float k = 0.55228477f;
    const float d = reversed ? -1.0f : 1.0f;
    const auto at = [&](float x, float y) { return Point{center.x + x * rx, center.y + y * d * ry}; };
    shape.Move(at(1, 0));
    shape.Cubic(at(1, k), at(k, 1), at(0, 1));
    shape.Cubic(at(-k, 1), at(-1, k), at(-1, 0));
    shape.Cubic(at(-1, -k), at(-k, -1), at(0, -1));
    shape.Cubic(at(k, -1), at(1, -k), at(1, 0));
    shape.Close();
}

Shape RoundRectangle(Point a, float size) {
    const float radius = size * 0.2f;
    const float k = radius * (1 - 0.55228477f);
    const Point b = {a.x + size, a.y + size};
    Shape shape;
    shape.Move({a.x + radius, a.y});
    shape.Line({b.x - radius, a.y});
    shape.Cubic({b.x - k, a.y}, {b.x, a.y + k}, {b.x, a.y + radius});
    shape.Line({b.x, b.y - radius});
    shape.Cubic({b.x, b.y - k}, {b.x - k, b.y}, {b.x - radius, b.y});
    shape.Line({a.x + radius, b.y});
    shape.Cubic({a.x + k, b.y}, {a.x, b.y - k}, {a.x, b.y - radius});
    shape.Line({a.x, a.y + radius});
    shape.Cubic({a.x, a.y + k}, {a.x + k, a.y}, {a.x + radius, a.y});
    shape.Close();
    return shape;
}

Shape Polyline(Point at, float size, int corners, bool closed, Random& random) {
    Shape shape;
    for (int i = 0; i < corners; ++i) {
        const Point p = {at.x + random(0, size), at.y + random(0, size)};
        if (i == 0) {
            shape.Move(p);
        } else {
            shape.Line(p);
        }
    }
    if (closed) {
        shape.Close();
    }
    return shape;
}

std::vector<Shape> Polygons(float size, int corners, int canvas) {
    return Scatter(2, size, canvas,
                   [=](Point at, Random& random) { return Polyline(at, size, corners, true, random); });
}

/// A closed curve of cubics through `points`, tangents along the neighbours' chord.
void Smooth(Shape& shape, const std::vector<Point>& points, bool closed) {
    const auto count = static_cast<int>(points.size());
    const auto at = [&](int i) {
        return points[static_cast<size_t>(closed ? (i + count) % count : std::clamp(i, 0, count - 1))];
    };
    shape.Move(points[0]);
    for (int i = 0; i < (closed ? count : count - 1); ++i) {
        const Point a = at(i - 1), b = at(i), c = at(i + 1), d = at(i + 2);
        shape.Cubic({b.x + (c.x - a.x) / 6, b.y + (c.y - a.y) / 6}, {c.x - (d.x - b.x) / 6, c.y - (d.y - b.y) / 6}, c);
    }
    if (closed) {
        shape.Close();
    }
}

/// The butterfly curve r = e^cos t - 2 cos 4t + sin^5(t / 12), twelve turns.
std::vector<Shape> Butterflies(float size, int canvas) {
    return Scatter(3, size, canvas, [=](Point at, Random&) {
        std::vector<Point> points;
        for (int i = 0; i < 720; ++i) {
            const float t = static_cast<float>(i) * (24 * kPi / 720);
            const float r = std::exp(std::cos(t)) - 2 * std::cos(4 * t) + std::pow(std::sin(t / 12), 5.0f);
            points.push_back({at.x + size * (0.5f + r * std::sin(t) / 8), at.y + size * (0.5f - r * std::cos(t) / 8)});
        }
        Shape shape;
        Smooth(shape, points, true);
        return shape;
    });
}

std::vector<Shape> Spirals(float size, int canvas) {
    return Scatter(4, size, canvas, [=](Point at, Random&) {
        std::vector<Point> points;
        for (int i = 0; i < 600; ++i) {
            const float t = static_cast<float>(i) / 600;
            const float r = size * 0.5f * t;
            points.push_back(
                {at.x + size / 2 + r * std::cos(t * 60 * kPi), at.y + size / 2 + r * std::sin(t * 60 * kPi)});
        }
        Shape shape;
        Smooth(shape, points, true);
        return shape;
    });
}

/// 400 wobbling contours of 250 short segments each, as one path.
Shape MapShape(int canvas, float zoom) {
    Random random(5);
    Shape shape;
    const auto extent = static_cast<float>(canvas);
    for (int contour = 0; contour < 400; ++contour) {
        const Point center = {random(0, extent), random(0, extent)};
        const float radius = random(0.01f, 0.12f) * extent;
        const float phase = random(0, 2 * kPi);
        for (int i = 0; i < 250; ++i) {
            const float t = static_cast<float>(i) * (2 * kPi / 250);
            const float r = radius * (1 + 0.25f * std::sin(5 * t + phase) + random(-0.03f, 0.03f));
            const Point p = {center.x + r * std::cos(t), center.y + r * std::sin(t)};
            const Point zoomed = {(p.x - extent / 2) * zoom + extent / 2, (p.y - extent / 2) * zoom + extent / 2};
            if (i == 0) {
                shape.Move(zoomed);
            } else {
                shape.Line(zoomed);
            }
        }
        shape.Close();
    }
    return shape;
}

std::vector<Shape> Circles(float size, int canvas) {
    return Scatter(6, size, canvas, [=](Point at, Random&) {
        Shape shape;
        Ellipse(shape, {at.x + size / 2, at.y + size / 2}, size / 2, size / 2);
        return shape;
    });
}

std::vector<Shape> Curves(float size, int canvas) {
    return Scatter(7, size, canvas, [=](Point at, Random& random) {
        std::vector<Point> points;
        for (int i = 0; i < 8; ++i) {
            points.push_back({at.x + random(0, size), at.y + random(0, size)});
        }
        Shape shape;
        Smooth(shape, points, false);
        return shape;
    });
}

std::vector<Shape> Rules(int canvas) {
    std::vector<Shape> shapes;
    for (int i = 0; i < 100; ++i) {
        const float at = (static_cast<float>(i) + 0.5f) * static_cast<float>(canvas) / 100;
        Shape shape;
        shape.Move(i % 2 == 0 ? Point{20, at} : Point{at, 20});
        shape.Line(i % 2 == 0 ? Point{static_cast<float>(canvas) - 20, at}
                              : Point{at, static_cast<float>(canvas) - 20});
        shapes.push_back(shape);
    }
    return shapes;
}

Shape Star(Point center, float radius) {
    Shape shape;
    for (int i = 0; i < 14; ++i) {
        const float t = static_cast<float>(i) * (kPi / 7);
        const float r = i % 2 == 0 ? radius : radius * 0.45f;
        const Point p = {center.x + r * std::sin(t), center.y - r * std::cos(t)};
        if (i == 0) {
            shape.Move(p);
        } else {
            shape.Line(p);
        }
    }
    shape.Close();
    return shape;
}

Image MakeImage(int size, bool opaque) {
    Image image{size, size, opaque, {}};
    image.pixels.reserve(static_cast<size_t>(size) * static_cast<size_t>(size));
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const auto a = opaque ? 255u : static_cast<uint32_t>((x * 3 + y * 5) & 255);
            const auto scaled = [a](int channel) { return static_cast<uint32_t>(channel & 255) * a / 255; };
            image.pixels.push_back(a << 24 | scaled(x * 2) << 16 | scaled(y * 2) << 8 | scaled(x ^ y));
        }
    }
    return image;
}

class Table {
public:
    void Fill(const std::string& name, int canvas, std::function<std::vector<Shape>()> shapes, uint32_t color,
              bool evenOdd = false) {
        Add(name, [=] {
            Scene scene = Base(canvas, shapes());
            scene.paint.color = color;
            scene.evenOdd = evenOdd;
            return scene;
        });
    }

    void Stroke(const std::string& name, int canvas, std::function<std::vector<Shape>()> shapes, float width,
                Join join = Join::Miter) {
        Add(name, [=] {
            Scene scene = Base(canvas, shapes());
            scene.action = Action::Stroke;
            scene.width = width;
            scene.join = join;
            return scene;
        });
    }

    /// The page of glyphs as text, engines keeping what they keep of glyphs.
    void Text(const std::string& name, int canvas, float em, bool strings = false) {
        Add(name, [=] {
            Scene scene = Base(canvas, GlyphPage(em, canvas));
            scene.paint.color = 0xFF000000;
            scene.text = GlyphText(em, canvas);
            scene.text.strings = strings;
            return scene;
        });
    }

    void Gradient(const std::string& name, int canvas, PaintKind kind, float size) {
        Add(name, [=] {
            const float at = std::floor((static_cast<float>(canvas) - size) / 2);
            const float middle = at + size / 2;
            Scene scene = Base(canvas, {Shape::Rectangle(at, at, at + size, at + size)});
            scene.paint.kind = kind;
            scene.paint.stops = {{0.0f, 0xFF1020C0}, {0.3f, 0xFFE0C030}, {0.7f, 0xFF30B060}, {1.0f, 0xFFC01020}};
            scene.paint.start = kind == PaintKind::Linear ? Point{at, at} : Point{middle, middle};
            scene.paint.end = kind == PaintKind::Linear ? Point{at + size, at + size / 2} : Point{middle, middle};
            scene.paint.radius = size * 0.6f;
            return scene;
        });
    }

    void Picture(const std::string& name, int canvas, bool opaque, Map map, Filter filter, int blend = 0) {
        Add(name, [=] {
            Scene scene = Base(canvas, {});
            scene.action = Action::Image;
            scene.image = MakeImage(256, opaque);
            scene.filter = filter;
            scene.blend = blend;
            Random random(8);
            for (int i = 0; i < 16; ++i) {
                // Every corner stays on the canvas.
                const auto limit = static_cast<float>(canvas);
                const float wide = 256 * std::fabs(map.xx) + 256 * std::fabs(map.yx);
                const float high = 256 * std::fabs(map.xy) + 256 * std::fabs(map.yy);
                Map placed = map;
                placed.dx = std::floor(random(0, limit - wide)) - 256 * std::min(0.0f, map.yx);
                placed.dy = std::floor(random(0, limit - high)) - 256 * std::min(0.0f, map.xy);
                scene.placements.push_back(placed);
            }
            return scene;
        });
    }

    void AlphaMask(const std::string& name) {
        Add(name, [=] {
            Scene scene = Base(1000, {});
            scene.action = Action::Mask;
            scene.image = MakeImage(256, false);
            for (const uint32_t pixel : scene.image.pixels) {
                scene.imageAlpha.push_back(static_cast<uint8_t>(pixel >> 24));
            }
            Random random(9);
            for (int i = 0; i < 16; ++i) {
                scene.placements.push_back({1, 0, 0, 1, std::floor(random(0, 744)), std::floor(random(0, 744))});
            }
            return scene;
        });
    }

    void Add(const std::string& name, std::function<Scene()> make) {
        m_entries.push_back({name, [=] {
                                 Scene scene = make();
                                 scene.name = name;
                                 return scene;
                             }});
    }

    static Scene Base(int canvas, std::vector<Shape> shapes) {
        Scene scene;
        scene.canvas = canvas;
        scene.shapes = std::move(shapes);
        return scene;
    }

    std::vector<SceneEntry> Take() { return std::move(m_entries); }

private:
    std::vector<SceneEntry> m_entries;
};

constexpr std::array kBlendNames = {"normal",    "multiply",   "screen",    "overlay",   "darken",     "lighten",
                                    "colorburn", "colordodge", "hardlight", "softlight", "difference", "exclusion",
                                    "hue",       "saturation", "color",     "luminosity"};

void Shapes(Table& table) {
    for (bool aligned : {true, false}) {
        for (bool half : {false, true}) {
            for (int size : {8, 32, 128, 512}) {
                table.Fill(
                    std::string("rect_") + (aligned ? "aligned_" : "unaligned_") + (half ? "half_" : "opaque_") +
                        std::to_string(size),
                    1000, [=] { return Rectangles(static_cast<float>(size), aligned, 1000); }, half ? kHalf : kOpaque);
            }
        }
    }
    for (bool half : {false, true}) {
        const std::string ink = half ? "half_" : "opaque_";
        for (int size : {32, 128, 512}) {
            const auto f = static_cast<float>(size);
            table.Fill(
                "roundrect_" + ink + std::to_string(size), 1000,
                [=] { return Scatter(9, f, 1000, [=](Point at, Random&) { return RoundRectangle(at, f); }); },
                half ? kHalf : kOpaque);
        }
        for (int size : {8, 32, 128, 512}) {
            table.Fill(
                "triangle_" + ink + std::to_string(size), 1000,
                [=] { return Polygons(static_cast<float>(size), 3, 1000); }, half ? kHalf : kOpaque);
        }
    }
    for (int corners : {10, 40}) {
        for (bool evenOdd : {false, true}) {
            for (int size : {32, 128, 512}) {
                table.Fill(
                    "poly" + std::to_string(corners) + (evenOdd ? "_eo_" : "_nz_") + std::to_string(size), 1000,
                    [=] { return Polygons(static_cast<float>(size), corners, 1000); }, kOpaque, evenOdd);
            }
        }
    }
    table.Fill(
        "poly10_nz_half_128", 1000, [] { return Polygons(128, 10, 1000); }, kHalf);
    table.Add("build_poly10_nz_32", [] {
        Scene scene = Table::Base(1000, Polygons(32, 10, 1000));
        scene.rebuild = true;
        return scene;
    });
    for (int size : {60, 250, 900}) {
        const auto f = static_cast<float>(size);
        table.Fill(
            "butterfly_eo_" + std::to_string(size), 1000, [=] { return Butterflies(f, 1000); }, kOpaque, true);
        table.Fill(
            "spiral_nz_" + std::to_string(size), 1000, [=] { return Spirals(f, 1000); }, kOpaque);
    }
    const auto map = [](int canvas, float zoom) { return [=] { return std::vector<Shape>{MapShape(canvas, zoom)}; }; };
    table.Fill("map100k_fill_nz", 1000, map(1000, 1), kOpaque);
    table.Fill("map100k_fill_eo", 1000, map(1000, 1), kOpaque, true);
    table.Fill("map100k_zoom20_fill_nz", 1000, map(1000, 20), kOpaque);
    table.Stroke("map100k_stroke_w1", 1000, map(1000, 1), 1);
}

void Strokes(Table& table) {
    const auto lines = [] {
        return Scatter(10, 300, 1000, [](Point at, Random& random) { return Polyline(at, 300, 11, false, random); });
    };
    for (int width : {1, 2, 10}) {
        const std::string name = "stroke_poly_w" + std::to_string(width);
        table.Stroke(name + "_miter", 1000, lines, static_cast<float>(width), Join::Miter);
        table.Stroke(name + "_round", 1000, lines, static_cast<float>(width), Join::Round);
        table.Stroke(name + "_bevel", 1000, lines, static_cast<float>(width), Join::Bevel);
    }
    table.Stroke(
        "stroke_rules_w1", 1000, [] { return Rules(1000); }, 1);
    table.Stroke(
        "stroke_circle_w1", 1000, [] { return Circles(200, 1000); }, 1);
    table.Stroke(
        "stroke_circle_w5", 1000, [] { return Circles(200, 1000); }, 5);
    table.Stroke(
        "stroke_curves_w1", 1000, [] { return Curves(300, 1000); }, 1);
    table.Stroke(
        "stroke_curves_w3", 1000, [] { return Curves(300, 1000); }, 3);
}

void Paints(Table& table) {
    table.Fill(
        "text_page_em16", 1000, [] { return GlyphPage(16, 1000); }, 0xFF000000);
    table.Fill(
        "text_page_em40", 1000, [] { return GlyphPage(40, 1000); }, 0xFF000000);
    table.Fill( // 10.5 points at 150 dpi
        "text_page_em22", 1000, [] { return GlyphPage(21.875f, 1000); }, 0xFF000000);
    table.Text("text_kept_em16", 1000, 16);
    table.Text("text_kept_em22", 1000, 21.875f);
    table.Text("text_kept_em40", 1000, 40);
    table.Text("text_string_em22", 1000, 21.875f, true);
    for (int size : {512, 1000}) {
        table.Gradient("gradient_linear_" + std::to_string(size), 1000, PaintKind::Linear, static_cast<float>(size));
        table.Gradient("gradient_radial_" + std::to_string(size), 1000, PaintKind::Radial, static_cast<float>(size));
    }
    const Map turned = {0.8f, 0.6f, -0.6f, 0.8f, 0, 0};
    table.Picture("image_blit_opaque", 1000, true, {}, Filter::Nearest);
    table.Picture("image_blit_alpha", 1000, false, {}, Filter::Nearest);
    table.AlphaMask("mask_a8_solid_256");
    table.Picture("image_scale2.3_nearest", 1000, false, {2.3f, 0, 0, 2.3f, 0, 0}, Filter::Nearest);
    table.Picture("image_scale2.3_bilinear", 1000, false, {2.3f, 0, 0, 2.3f, 0, 0}, Filter::Bilinear);
    table.Picture("image_scale0.7_bilinear", 1000, false, {0.7f, 0, 0, 0.7f, 0, 0}, Filter::Bilinear);
    table.Picture("image_rotated_nearest", 1000, false, turned, Filter::Nearest);
    table.Picture("image_rotated_bilinear", 1000, false, turned, Filter::Bilinear);
    for (int mode = 1; mode < 16; ++mode) {
        table.Picture(std::string("blend_image_") + kBlendNames[static_cast<size_t>(mode)], 1000, false, {},
                      Filter::Nearest, mode);
    }
    table.Add("blend_solid_multiply_256", [] {
        Scene scene = Table::Base(1000, Rectangles(256, true, 1000));
        scene.paint.color = kHalf;
        scene.blend = 1;
        return scene;
    });
    table.Add("clip_path_fill_512", [] {
        Scene scene = Table::Base(1000, {Shape::Rectangle(244, 244, 756, 756)});
        scene.clip = Star({500, 500}, 256);
        return scene;
    });
}

constexpr std::pair<Group, const char*> kGroups[] = {{Group::None, "none"},
                                                     {Group::Isolated, "isolated"},
                                                     {Group::NonIsolated, "nonisolated"},
                                                     {Group::Knockout, "knockout"}};

/// Soft-edged discs: what a soft mask usually is.
std::vector<uint8_t> MakeMask(int canvas) {
    std::vector<uint8_t> mask(static_cast<size_t>(canvas) * static_cast<size_t>(canvas));
    for (int y = 0; y < canvas; ++y) {
        for (int x = 0; x < canvas; ++x) {
            const float dx = static_cast<float>(x % 250 - 125), dy = static_cast<float>(y % 250 - 125);
            const float value = 300.0f - 2.4f * std::hypot(dx, dy);
            mask[static_cast<size_t>(y * canvas + x)] = static_cast<uint8_t>(std::clamp(value, 0.0f, 255.0f));
        }
    }
    return mask;
}

/// Every group is as large as the canvas. "little": a few small shapes close to each other; "full": most of the canvas.
void GroupsAndMasks(Table& table) {
    for (const auto& [group, name] : kGroups) {
        for (const bool little : {true, false}) {
            table.Add(std::string("group_") + (little ? "little_" : "full_") + name, [group = group, little] {
                Scene scene = Table::Base(1000, little ? Polygons(32, 10, 200) : Polygons(400, 10, 1000));
                scene.paint.color = kHalf;
                scene.group = group;
                scene.groupOpacity = group == Group::None ? 1.0f : 0.5f;
                scene.whole = true;
                return scene;
            });
        }
    }
    for (const int mode : {1, 3, 7, 9, 15}) {
        for (const auto& [group, name] : kGroups) {
            table.Add(std::string("group_blend_") + kBlendNames[static_cast<size_t>(mode)] + "_" + name, [group = group,
                                                                                                          mode] {
                Scene scene = Table::Base(1000, {});
                scene.action = Action::Image;
                scene.image = MakeImage(256, false);
                scene.blend = mode;
                scene.group = group;
                scene.whole = true;
                Random random(8);
                for (int i = 0; i < 16; ++i) {
                    scene.placements.push_back({1, 0, 0, 1, std::floor(random(0, 744)), std::floor(random(0, 744))});
                }
                return scene;
            });
        }
    }
    const auto masked = [&](const std::string& name, std::function<std::vector<Shape>()> shapes, Group group) {
        table.Add(name, [=] {
            Scene scene = Table::Base(1000, shapes());
            scene.mask = MakeMask(1000);
            scene.group = group;
            scene.whole = true;
            return scene;
        });
    };
    masked(
        "mask_rect_1000", [] { return std::vector<Shape>{Shape::Rectangle(0, 0, 1000, 1000)}; }, Group::None);
    masked(
        "mask_triangle_512", [] { return std::vector<Shape>{Polygons(512, 3, 1000)[0]}; }, Group::None);
    masked(
        "mask_group_full", [] { return Polygons(400, 10, 1000); }, Group::Isolated);
    masked(
        "mask_group_little", [] { return Polygons(32, 10, 200); }, Group::Isolated);
}

void Dashes(Table& table) {
    const auto dashed = [&](const std::string& name, std::function<std::vector<Shape>()> shapes, float width,
                            std::vector<float> dashes) {
        table.Add(name, [=] {
            Scene scene = Table::Base(1000, shapes());
            scene.action = Action::Stroke;
            scene.width = width;
            scene.dashes = dashes;
            return scene;
        });
    };
    const auto lines = [] {
        return Scatter(10, 300, 1000, [](Point at, Random& random) { return Polyline(at, 300, 11, false, random); });
    };
    dashed("dash_poly_w1", lines, 1, {4, 2});
    dashed("dash_poly_w3", lines, 3, {9, 3, 2, 3});
    dashed("dash_rules_w1", [] { return Rules(1000); }, 1, {6, 3});
    dashed("dash_rules_w2", [] { return Rules(1000); }, 2, {6, 3});
    dashed("dash_circle_w2", [] { return Circles(200, 1000); }, 2, {5, 3});
    dashed("dash_curves_w2", [] { return Curves(300, 1000); }, 2, {5, 3});
    dashed("dash_dots_w2", [] { return Curves(300, 1000); }, 2, {1, 1});
}

/// Inputs that once cost seconds, or came out wrong, for what can be seen of them.
void Corners(Table& table) {
    // From side to side of the canvas and beyond.
    const auto zigzag = [](int segments, float length) {
        Shape shape;
        for (int i = 0; i <= segments; ++i) {
            const auto x = 500 + (i % 2 == 0 ? -length : length) / 2;
            const auto y = static_cast<float>(1000 * i) / static_cast<float>(segments);
            i == 0 ? shape.Move({x, y}) : shape.Line({x, y});
        }
        return std::vector<Shape>{shape};
    };
    const auto dashed = [&](const std::string& name, int segments, float length, float width, std::vector<float> dashes,
                            bool roundCaps) {
        table.Add(name, [=] {
            Scene scene = Table::Base(1000, zigzag(segments, length));
            scene.action = Action::Stroke;
            scene.join = Join::Round;
            scene.width = width;
            scene.dashes = dashes;
            scene.roundCaps = roundCaps;
            scene.alone = true;
            return scene;
        });
    };
    dashed("corner_dots_fine", 100, 800, 100, {0, 0.2f}, true);
    dashed("corner_dots_many", 1000, 800, 100, {0, 0.2f}, true);
    dashed("corner_dots_apart", 100, 800, 100, {0, 5}, true);
    dashed("corner_dashes_fine", 100, 800, 2, {0.0625f, 0.0625f}, false);
    dashed("corner_dashes_far", 1000, 2e6f, 1, {1, 1}, false);
    table.Add("corner_cubic_far", [] {
        Shape shape;
        shape.Move({-1e25f, 100});
        shape.Cubic({1e25f, 300}, {-1e25f, 600}, {1e25f, 900});
        shape.Line({500, 500});
        shape.Close();
        Scene scene = Table::Base(1000, {shape});
        scene.alone = true;
        return scene;
    });
}

void Big(Table& table) {
    for (int size : {512, 4000}) {
        const auto f = static_cast<float>(size);
        table.Fill(
            "big_rect_aligned_opaque_" + std::to_string(size), 4000, [=] { return Rectangles(f, true, 4000); },
            kOpaque);
        table.Fill(
            "big_rect_aligned_half_" + std::to_string(size), 4000, [=] { return Rectangles(f, true, 4000); }, kHalf);
    }
    table.Fill(
        "big_triangle_1500", 4000, [] { return Polygons(1500, 3, 4000); }, kOpaque);
    table.Fill(
        "big_poly40_nz_1500", 4000, [] { return Polygons(1500, 40, 4000); }, kOpaque);
    table.Fill(
        "big_map100k_fill_nz", 4000, [] { return std::vector<Shape>{MapShape(4000, 1)}; }, kOpaque);
    table.Gradient("big_gradient_linear_4000", 4000, PaintKind::Linear, 4000);
    table.Gradient("big_gradient_radial_4000", 4000, PaintKind::Radial, 4000);
    table.Picture("big_image_blit_alpha", 4000, false, {}, Filter::Nearest);
}

} // namespace

std::vector<SceneEntry> AllScenes() {
    Table table;
    Shapes(table);
    Strokes(table);
    Paints(table);
    Dashes(table);
    Corners(table);
    GroupsAndMasks(table);
    Big(table);
    return table.Take();
}

} // namespace Bench
