// SPDX-License-Identifier: MIT
// The area of a draw, in user space and by reference: nothing is copied before a back end draws it.
#pragma once

#include "../Geometry/BasicFigures.h"
#include "../Geometry/Geometry.h"
#include "../Text/Font.h"

namespace Graphics {

/// Null-terminated text; glyphs follow each other from the origin on.
struct GlyphRun {
    const Font* font;
    const uint16_t* text;

    /// Calls use(outline, matrix) for each glyph that has an outline; `m` places the first glyph.
    template <class Use> void ForEach(Matrix m, Use&& use) const {
        for (const uint16_t* unit = text; *unit != 0; ++unit) {
            const FontGlyph& glyph = font->Glyph(*unit);
            if (!glyph.shape.Empty()) {
                use(glyph.shape, static_cast<const Matrix&>(m));
            }
            m = Concat({1.0F, 0.0F, 0.0F, 1.0F, glyph.metrics.advanceX, glyph.metrics.advanceY}, m);
        }
    }
    /// True if no glyph has an outline.
    [[nodiscard]] bool IsBlank() const;
};

class Path {
public:
    enum class Kind : uint8_t {
        Figure,
        Shape,
        Outline, ///< a shape that is text: never snapped to whole pixels, and its coverage is cached
        Glyphs,  ///< a GlyphRun; each glyph is an outline
        Plane,   ///< the whole target
    };

    // Implicit conversions: draws accept any of these as a path.
    Path(const BasicFigure& figure) noexcept : m_object(&figure), m_kind(Kind::Figure) {}
    Path(const Graphics::Shape& shape) noexcept : m_object(&shape), m_kind(Kind::Shape) {}
    Path(const GlyphRun& run) noexcept : m_object(&run), m_kind(Kind::Glyphs) {}
    [[nodiscard]] static Path Outline(const Graphics::Shape& shape) noexcept { return {&shape, Kind::Outline}; }
    [[nodiscard]] static Path Plane() noexcept { return {nullptr, Kind::Plane}; }

    [[nodiscard]] Kind GetKind() const noexcept { return m_kind; }
    [[nodiscard]] bool IsFigure() const noexcept { return m_kind == Kind::Figure; }
    /// Requires Kind::Figure.
    [[nodiscard]] const BasicFigure& Figure() const noexcept { return *static_cast<const BasicFigure*>(m_object); }
    /// The stored shape; null for any other kind.
    [[nodiscard]] const Graphics::Shape* Stored() const noexcept {
        return m_kind == Kind::Shape || m_kind == Kind::Outline ? static_cast<const Graphics::Shape*>(m_object)
                                                                : nullptr;
    }
    /// Requires Kind::Glyphs.
    [[nodiscard]] const GlyphRun& Glyphs() const noexcept { return *static_cast<const GlyphRun*>(m_object); }

    /// True if the path covers nothing anywhere.
    [[nodiscard]] bool IsEmpty() const {
        switch (m_kind) {
        case Kind::Figure:
            return Figure().IsEmpty();
        case Kind::Glyphs:
            return Glyphs().IsBlank();
        case Kind::Plane:
            return false;
        default:
            return Stored()->Empty();
        }
    }

private:
    Path(const void* object, Kind kind) noexcept : m_object(object), m_kind(kind) {}

    const void* m_object;
    Kind m_kind;
};

/// Converts figures and stored shapes to shapes.
class PathShape {
public:
    /// The stored shape, or a shape made from the figure, which is valid until the next call.
    [[nodiscard]] const Shape& Of(const Path& path) {
        if (const Shape* stored = path.Stored()) {
            return *stored;
        }
        m_figure.Clear();
        path.Figure().Replay(m_figure);
        return m_figure;
    }

private:
    Geometry m_figure;
};

} // namespace Graphics
