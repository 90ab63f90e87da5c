// SPDX-License-Identifier: MIT
// A benchmark scene as plain data, the same for every engine. Device pixels, y down; colours are 0xAARRGGBB, not
// premultiplied; image pixels are premultiplied. Adding a scene is one row in Scenes.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace Bench {

struct Point {
    float x = 0, y = 0;
};

/// A path; rectangles say so, for engines that have a call of their own for them.
class Shape {
public:
    void Move(Point p) { Add('M', {p}); }
    void Line(Point p) { Add('L', {p}); }
    void Cubic(Point a, Point b, Point c) { Add('C', {a, b, c}); }
    void Close() { Add('Z', {}); }
    static Shape Rectangle(float left, float top, float right, float bottom);

    [[nodiscard]] bool Empty() const { return m_verbs.empty(); }
    [[nodiscard]] bool IsRectangle() const { return m_isRectangle; }
    [[nodiscard]] Point TopLeft() const { return m_points[0]; }
    [[nodiscard]] Point BottomRight() const { return m_points[2]; }

    /// Calls sink.Move, Line, Cubic and Close in order.
    template <class Sink> void Replay(Sink&& sink) const {
        const Point* p = m_points.data();
        for (char verb : m_verbs) {
            switch (verb) {
            case 'M':
                sink.Move(p[0]);
                p += 1;
                break;
            case 'L':
                sink.Line(p[0]);
                p += 1;
                break;
            case 'C':
                sink.Cubic(p[0], p[1], p[2]);
                p += 3;
                break;
            default:
                sink.Close();
                break;
            }
        }
    }

private:
    void Add(char verb, std::initializer_list<Point> points) {
        m_verbs.push_back(verb);
        for (const Point& point : points) {
            m_points.push_back(point);
        }
    }
    std::vector<char> m_verbs;
    std::vector<Point> m_points;
    bool m_isRectangle = false;
};

struct Stop {
    float offset;
    uint32_t color;
};

enum class PaintKind { Solid, Linear, Radial };

struct Paint {
    PaintKind kind = PaintKind::Solid;
    uint32_t color = 0xFF204080;
    std::vector<Stop> stops;
    Point start, end; ///< the axis; of a radial gradient the centre, twice
    float radius = 0; ///< of a radial gradient
};

enum class Join { Miter, Round, Bevel };
enum class Action { Fill, Stroke, Image, Mask };
enum class Filter { Nearest, Bilinear };
/// A transparency group around the whole drawing, as large as the canvas.
enum class Group { None, Isolated, NonIsolated, Knockout };

struct Image {
    int width = 0, height = 0;
    bool opaque = true;
    std::vector<uint32_t> pixels;
};

/// x' = xx x + yx y + dx, y' = xy x + yy y + dy
struct Map {
    float xx = 1, xy = 0, yx = 0, yy = 1, dx = 0, dy = 0;
    [[nodiscard]] bool IsShift() const { return xx == 1 && xy == 0 && yx == 0 && yy == 1; }
};

/// The same text as shapes, for engines that keep glyphs: outlines of one em, and which of them stands where.
struct Text {
    struct Use {
        size_t outline;
        Point at; ///< of its origin on the baseline
    };
    float em = 0; ///< pixels
    std::vector<Shape> outlines;
    std::vector<unsigned> glyphs; ///< of each outline, its number in the font file
    std::vector<char> characters; ///< of each outline
    std::string fontFile;         ///< empty: the outlines are made up
    std::string family;
    bool bold = false, italic = false;
    bool strings = false; ///< as strings of one character, where an engine has fonts of its own
    std::vector<Use> uses;
};

struct Scene {
    std::string name;
    int canvas = 1000; ///< width and height
    Action action = Action::Fill;
    std::vector<Shape> shapes; ///< drawn one after another, each with a call of its own
    bool evenOdd = false;
    bool rebuild = false; ///< the engine's path is built for every draw
    Paint paint;
    float width = 1; ///< of strokes
    Join join = Join::Miter;
    bool roundCaps = false; ///< else flat
    bool alone = false;     ///< for this library only: others take minutes
    int blend = 0;          ///< 0 Normal, then in the order of the PDF imaging model up to 15 Luminosity
    Image image;
    /// Of Action::Mask: the alpha of the image's pixels alone, a byte each, filled with the paint.
    std::vector<uint8_t> imageAlpha;
    std::vector<Map> placements; ///< of the image, one draw each
    Filter filter = Filter::Nearest;
    Text text;  ///< when it has uses: the shapes once more, drawn by the engine's own means for text where it has any
    Shape clip; ///< when not empty: set anew for every shape
    std::vector<float> dashes; ///< of strokes, dash and gap in turn
    Group group = Group::None;
    float groupOpacity = 1;
    /// As large as the canvas, a byte each: what is drawn, or the group as a whole, is multiplied by it.
    std::vector<uint8_t> mask;
    bool whole = false; ///< the time is that of the whole drawing, not of one shape

    [[nodiscard]] size_t Draws() const { return whole ? 1 : placements.empty() ? shapes.size() : placements.size(); }
};

struct SceneEntry {
    std::string name;
    std::function<Scene()> make;
};

/// Every scene, in the order of the table. Seeds are fixed: the same scenes on every run and machine.
std::vector<SceneEntry> AllScenes();

/// 3000 glyphs of a page of text at this em size: of an installed font, else made-up ones of the same build.
std::vector<Shape> GlyphPage(float em, int canvas);

/// The same page with its outlines and places.
Text GlyphText(float em, int canvas);

} // namespace Bench
