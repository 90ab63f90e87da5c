// SPDX-License-Identifier: MIT
#include "FreeTypeFont.h"

#include FT_ADVANCES_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

#include <algorithm>
#include <cmath>
#include <exception>

#include "../../Exception.h"
#include "../../Utf8.h"

namespace Graphics {
namespace {

constexpr int32_t kDefaultHeight = -16;

/// UTF-8 of null-terminated UTF-16; a lone surrogate becomes U+FFFD.
std::string ToUtf8(const uint16_t* text) {
    std::string out;
    while (*text != 0) {
        const uint32_t c = NextCodePoint(text);
        AppendUtf8(out, IsSurrogate(c) ? 0xFFFD : c);
    }
    return out;
}

/// Font units of the em, or of a line for a positive height: Windows' line metrics if the font has them.
double UnitsOf(FT_Face face, int32_t height) noexcept {
    if (height < 0) {
        return face->units_per_EM;
    }
    double line = static_cast<double>(face->ascender) - face->descender;
    if (const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2))) {
        line = static_cast<double>(os2->usWinAscent) + os2->usWinDescent;
    }
    return line > 0.0 ? line : face->units_per_EM;
}

/// The width that synthetic bold adds to stems and advances, in font units.
FT_Pos BoldStrength(FT_Face face) noexcept { return face->units_per_EM / 24; }

/// Adds an outline in font units; its coordinates are doubled.
class OutlineWalk {
public:
    OutlineWalk(Geometry& out, const double (&matrix)[4], double scale) noexcept
        : m_out(out), m_xx(matrix[0] * scale), m_xy(matrix[1] * scale), m_yx(matrix[2] * scale),
          m_yy(matrix[3] * scale) {}

    void Run(FT_Outline& outline) {
        // Doubled, because points implied between two control points lie on half units.
        constexpr int kDoubled = 1;
        const FT_Outline_Funcs calls{
            [](const FT_Vector* to, void* self) { return Call(self, [=](auto& w) { w.Move(w.At(to)); }); },
            [](const FT_Vector* to, void* self) { return Call(self, [=](auto& w) { w.m_out.LineTo(w.At(to)); }); },
            [](const FT_Vector* control, const FT_Vector* to, void* self) {
                // Not the exact cubic of the quadratic, but the same curve on every platform.
                return Call(self, [=](auto& w) { w.m_out.CubicTo(w.At(control), w.At(to), w.At(to)); });
            },
            [](const FT_Vector* c1, const FT_Vector* c2, const FT_Vector* to, void* self) {
                return Call(self, [=](auto& w) { w.m_out.CubicTo(w.At(c1), w.At(c2), w.At(to)); });
            },
            kDoubled,
            0,
        };
        FT_Outline_Decompose(&outline, &calls, this);
        if (m_error) {
            std::rethrow_exception(m_error);
        }
        End();
    }

    /// Bounds of the points added.
    [[nodiscard]] const Rect& Box() const noexcept { return m_box; }

private:
    /// Runs a step; exceptions are stored until FreeType's C code has returned.
    template <class Step> static int Call(void* self, Step&& step) noexcept {
        auto& walk = *static_cast<OutlineWalk*>(self);
        try {
            step(walk);
            return 0;
        } catch (...) {
            walk.m_error = std::current_exception();
            return 1;
        }
    }
    [[nodiscard]] Point At(const FT_Vector* v) noexcept {
        const double x = static_cast<double>(v->x) * 0.5;
        const double y = static_cast<double>(v->y) * 0.5;
        const Point p{static_cast<float>(m_xx * x + m_xy * y), static_cast<float>(-(m_yx * x + m_yy * y))};
        m_box = {std::min(m_box.left, p.x), std::min(m_box.top, p.y), std::max(m_box.right, p.x),
                 std::max(m_box.bottom, p.y)};
        return p;
    }
    void Move(const Point& to) {
        End();
        m_out.BeginFigure(to);
        m_open = true;
    }
    void End() {
        if (m_open) {
            m_out.EndFigureClose();
        }
        m_open = false;
    }

    Geometry& m_out;
    double m_xx, m_xy, m_yx, m_yy;
    Rect m_box{INFINITY, INFINITY, -INFINITY, -INFINITY};
    bool m_open = false;
    std::exception_ptr m_error;
};

[[noreturn]] void RaiseNoMemory() { GX_RAISE("Graphics::FreeTypeFont::Outline", "Not enough memory"); }

} // namespace

std::shared_ptr<const FontBase> FontBase::Create(const uint16_t* faceName, uint32_t flags, float size) {
    const std::string family = ToUtf8(faceName);
    const std::lock_guard lock(FontLibrary::Lock());
    std::shared_ptr<FontLibrary> library = FontLibrary::Get();
    const FontMatch match = library->Match(family, (flags & GXFontBold) != 0, (flags & GXFontItalic) != 0);
    return std::make_shared<FreeTypeFont>(std::move(library), match, size);
}

FreeTypeFont::FreeTypeFont(std::shared_ptr<FontLibrary> library, const FontMatch& match, float size)
    : FontBase(size), m_library(std::move(library)), m_match(match) {
    const FT_Error error = FT_New_Face(m_library->FreeType(), match.file.c_str(), match.index, &m_face);
    if (m_library->WasRefused()) {
        FT_Done_Face(m_face);
        RaiseNoMemory();
    }
    if (error != 0 || !FT_IS_SCALABLE(m_face) || m_face->units_per_EM == 0) {
        FT_Done_Face(m_face);
        GX_RAISE("Graphics::FreeTypeFont::FreeTypeFont", "No font found");
    }
    if (FT_Select_Charmap(m_face, FT_ENCODING_UNICODE) != 0) {
        m_symbols = FT_Select_Charmap(m_face, FT_ENCODING_MS_SYMBOL) == 0;
    }
    const int32_t asked = PixelHeight(size);
    const int32_t height = asked == 0 ? kDefaultHeight : asked;
    m_scale = std::fabs(static_cast<double>(height)) / UnitsOf(m_face, height);
}

FreeTypeFont::~FreeTypeFont() {
    const std::lock_guard lock(FontLibrary::Lock());
    FT_Done_Face(m_face);
    m_library.reset();
}

void FreeTypeFont::LookUp(std::span<const uint16_t> text, uint16_t* glyphs) const {
    const std::lock_guard lock(FontLibrary::Lock());
    for (const uint16_t unit : text) {
        FT_UInt index = FT_Get_Char_Index(m_face, unit);
        if (index == 0 && m_symbols && unit < 0x100) {
            index = FT_Get_Char_Index(m_face, 0xF000U + unit);
        }
        *glyphs++ = static_cast<uint16_t>(index);
    }
}

void FreeTypeFont::Outline(uint16_t glyph, Geometry& out, GlyphMetrics& metrics) const {
    metrics = {};
    const std::lock_guard lock(FontLibrary::Lock());
    const FT_Pos bold = m_match.embolden ? BoldStrength(m_face) : 0;
    const auto setAdvance = [&](FT_Pos units) {
        const double pixels = std::floor(static_cast<double>(units) * m_scale + 0.5);
        metrics.advanceX = static_cast<float>(std::clamp(pixels, -32768.0, 32767.0));
    };
    const FT_Error error = FT_Load_Glyph(m_face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_IGNORE_TRANSFORM);
    if (m_library->WasRefused()) {
        RaiseNoMemory();
    }
    if (error != 0 || m_face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) {
        FT_Fixed advance = 0;
        if (FT_Get_Advance(m_face, glyph, FT_LOAD_NO_SCALE, &advance) == 0) {
            setAdvance(advance);
        }
        return;
    }
    FT_Outline& outline = m_face->glyph->outline;
    setAdvance(m_face->glyph->metrics.horiAdvance + bold);
    if (bold != 0) {
        FT_Outline_Embolden(&outline, bold);
    }
    OutlineWalk walk(out, m_match.matrix, m_scale);
    walk.Run(outline);
    const Rect& box = walk.Box();
    if (box.left <= box.right) {
        metrics.originX = std::floor(box.left);
        metrics.originY = std::floor(box.top);
        metrics.boxWidth = std::ceil(box.right) - metrics.originX;
        metrics.boxHeight = std::ceil(box.bottom) - metrics.originY;
    }
}

} // namespace Graphics
