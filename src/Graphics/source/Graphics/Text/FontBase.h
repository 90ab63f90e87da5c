// SPDX-License-Identifier: MIT
// The glyph service: one font of the platform at one size. Each platform has its half in a folder of its own, which
// defines Create. Outlines and metrics are in device pixels, y down, the origin on the baseline.
//
// Every call into the platform's font code runs under one lock of the process; a FontBase does not change and may be
// used by several threads.
#pragma once

#include <memory>
#include <span>

#include "../Geometry/Geometry.h"

namespace Graphics {

struct GlyphMetrics {
    float advanceX = 0.0F; ///< whole pixels, as are all of these
    float advanceY = 0.0F;
    float originX = 0.0F; ///< of the black box: left, and what the platform gives for its height (FreeType: the top)
    float originY = 0.0F;
    float boxWidth = 0.0F;
    float boxHeight = 0.0F;
};

class FontBase {
public:
    virtual ~FontBase() = default;
    FontBase(const FontBase&) = delete;
    FontBase& operator=(const FontBase&) = delete;

    /// The font of the platform that comes nearest to a family name in UTF-16, null-terminated. Raises "No font found"
    /// where there is none at all.
    [[nodiscard]] static std::shared_ptr<const FontBase> Create(const uint16_t* faceName, uint32_t flags, float size);

    /// In points, as the host gave it.
    [[nodiscard]] float GetSize() const noexcept { return m_size; }

    /// One glyph for each code unit, surrogates not joined; 0, the glyph for what is missing, where the font has none.
    virtual void LookUp(std::span<const uint16_t> text, uint16_t* glyphs) const = 0;
    /// Adds the outline and writes the metrics. A glyph whose outline cannot be read adds nothing and still has its
    /// advance.
    virtual void Outline(uint16_t glyph, Geometry& out, GlyphMetrics& metrics) const = 0;

    /// The height that a size asks the platform for: size * 96 / -72, truncated. Negative is the height of the em in
    /// pixels, positive that of a line (ascent and descent), 0 leaves the choice to the platform.
    [[nodiscard]] static int32_t PixelHeight(float size) noexcept {
        const float height = size * 96.0F / -72.0F;
        return SaturatingTruncate(height);
    }

protected:
    explicit FontBase(float size) noexcept : m_size(size) {}

private:
    float m_size;
};

} // namespace Graphics
