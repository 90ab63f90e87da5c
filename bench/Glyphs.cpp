// SPDX-License-Identifier: MIT
// Glyph outlines for the text scenes: of the first TrueType or OpenType font found, in the order of paths, else rings
// and bars with the number of curves that letters have.
#include "Scene.h"

#include <algorithm>
#include <filesystem>

#if defined(BENCH_HAS_FREETYPE)
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#endif

namespace Bench {
namespace {

void Place(Shape& out, const Shape& glyph, float scale, Point at) {
    struct Placer {
        Shape& out;
        float scale;
        Point at;
        [[nodiscard]] Point operator()(Point p) const { return {at.x + p.x * scale, at.y + p.y * scale}; }
        void Move(Point p) { out.Move((*this)(p)); }
        void Line(Point p) { out.Line((*this)(p)); }
        void Cubic(Point a, Point b, Point c) { out.Cubic((*this)(a), (*this)(b), (*this)(c)); }
        void Close() { out.Close(); }
    };
    glyph.Replay(Placer{out, scale, at});
}

void Ring(Shape& shape, float x, float y, float rx, float ry) {
    const float k = 0.55228477f;
    shape.Move({x + rx, y});
    shape.Cubic({x + rx, y + k * ry}, {x + k * rx, y + ry}, {x, y + ry});
    shape.Cubic({x - k * rx, y + ry}, {x - rx, y + k * ry}, {x - rx, y});
    shape.Cubic({x - rx, y - k * ry}, {x - k * rx, y - ry}, {x, y - ry});
    shape.Cubic({x + k * rx, y - ry}, {x + rx, y - k * ry}, {x + rx, y});
    shape.Close();
}

/// One em high, baseline at 0, y down.
std::vector<Shape> MadeUpGlyphs() {
    std::vector<Shape> glyphs;
    for (int i = 0; i < 26; ++i) {
        const float wide = 0.2f + 0.004f * static_cast<float>(i);
        Shape shape;
        Ring(shape, 0.25f, -0.25f, wide, 0.25f);
        Ring(shape, 0.25f, -0.25f, -(wide - 0.08f), 0.18f); // the other way round: a hole
        if (i % 3 != 0) {
            shape.Move({0.45f, -0.7f});
            shape.Line({0.53f, -0.7f});
            shape.Line({0.53f, 0.0f});
            shape.Line({0.45f, 0.0f});
            shape.Close();
        }
        glyphs.push_back(shape);
    }
    return glyphs;
}

#if defined(BENCH_HAS_FREETYPE)
struct Collector {
    Shape shape;
    Point current;
    float unit = 1;
    bool open = false;

    [[nodiscard]] Point At(const FT_Vector* p) const {
        return {static_cast<float>(p->x) * unit, -static_cast<float>(p->y) * unit};
    }
    void End() {
        if (open) {
            shape.Close();
        }
        open = false;
    }
};

Shape Outline(FT_Face face, FT_ULong code) {
    Collector collector;
    collector.unit = 1.0f / static_cast<float>(face->units_per_EM);
    if (FT_Load_Char(face, code, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING) != 0) {
        return {};
    }
    FT_Outline_Funcs calls = {};
    calls.move_to = [](const FT_Vector* to, void* user) {
        auto& c = *static_cast<Collector*>(user);
        c.End();
        c.shape.Move(c.current = c.At(to));
        c.open = true;
        return 0;
    };
    calls.line_to = [](const FT_Vector* to, void* user) {
        auto& c = *static_cast<Collector*>(user);
        c.shape.Line(c.current = c.At(to));
        return 0;
    };
    calls.conic_to = [](const FT_Vector* control, const FT_Vector* to, void* user) {
        auto& c = *static_cast<Collector*>(user);
        const Point a = c.current, q = c.At(control), b = c.At(to);
        c.shape.Cubic({a.x + (q.x - a.x) * 2 / 3, a.y + (q.y - a.y) * 2 / 3},
                      {b.x + (q.x - b.x) * 2 / 3, b.y + (q.y - b.y) * 2 / 3}, b);
        c.current = b;
        return 0;
    };
    calls.cubic_to = [](const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to, void* user) {
        auto& c = *static_cast<Collector*>(user);
        c.shape.Cubic(c.At(control1), c.At(control2), c.At(to));
        c.current = c.At(to);
        return 0;
    };
    FT_Outline_Decompose(&face->glyph->outline, &calls, &collector);
    collector.End();
    return collector.shape;
}

void FontGlyphs(Text& text) {
    namespace fs = std::filesystem;
    std::vector<std::string> files;
    std::error_code error;
    for (fs::recursive_directory_iterator it("/usr/share/fonts", error), end; !error && it != end;
         it.increment(error)) {
        const std::string ending = it->path().extension().string();
        if (ending == ".ttf" || ending == ".otf") {
            files.push_back(it->path().string());
        }
    }
    std::sort(files.begin(), files.end());
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        return;
    }
    for (const std::string& file : files) {
        FT_Face face = nullptr;
        if (FT_New_Face(library, file.c_str(), 0, &face) != 0) {
            continue;
        }
        for (FT_ULong code = 'A'; code <= 'z' && FT_IS_SCALABLE(face); ++code) {
            Shape shape = Outline(face, code);
            if (!shape.Empty()) {
                text.outlines.push_back(std::move(shape));
                text.glyphs.push_back(FT_Get_Char_Index(face, code));
                text.characters.push_back(static_cast<char>(code));
            }
        }
        const bool enough = text.outlines.size() >= 52 && face->family_name != nullptr;
        if (enough) {
            text.fontFile = file;
            text.family = face->family_name;
            text.bold = (face->style_flags & FT_STYLE_FLAG_BOLD) != 0;
            text.italic = (face->style_flags & FT_STYLE_FLAG_ITALIC) != 0;
        }
        FT_Done_Face(face);
        if (enough) {
            break;
        }
        text.outlines.clear();
        text.glyphs.clear();
        text.characters.clear();
    }
    FT_Done_FreeType(library);
}
#else
void FontGlyphs(Text&) {}
#endif

} // namespace

Text GlyphText(float em, int canvas) {
    Text text;
    text.em = em;
    FontGlyphs(text);
    if (text.outlines.empty()) {
        text.outlines = MadeUpGlyphs();
    }
    const float limit = static_cast<float>(canvas);
    Point at = {0.5f * em, em};
    for (size_t i = 0; i < 3000; ++i) {
        text.uses.push_back({i * 7 % text.outlines.size(), at});
        at.x += em * 0.57f;
        if (at.x > limit - em) {
            at = {0.5f * em, at.y + em * 1.1f};
        }
        if (at.y > limit - 0.3f * em) {
            at.y = em;
        }
    }
    return text;
}

std::vector<Shape> GlyphPage(float em, int canvas) {
    const Text text = GlyphText(em, canvas);
    std::vector<Shape> page;
    for (const Text::Use& use : text.uses) {
        Shape shape;
        Place(shape, text.outlines[use.outline], em, use.at);
        page.push_back(std::move(shape));
    }
    return page;
}

} // namespace Bench
