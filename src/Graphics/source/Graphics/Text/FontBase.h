// SPDX-License-Identifier: MIT
// The glyph service: one platform font at one size. Each platform defines Create in its own folder. Outlines and
// metrics are in device pixels, y down, the origin on the baseline.
//
// Calls into the platform's font code run under one lock of the process. A FontBase is immutable and may be used by
// several threads.
#pragma once

#include <memory>
#include <span>

#include "../Geometry/Geometry.h"

namespace Graphics {

struct GlyphMetrics {
    float advanceX = 0.0F; ///< whole pixels, as all metrics
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

    /// The platform font closest to a null-terminated family name in UTF-16. Raises "No font found" if there is no
    /// font.
    [[nodiscard]] static std::shared_ptr<const FontBase> Create(const uint16_t* faceName, uint32_t flags, float size);

    /// In points, as given to Create.
    [[nodiscard]] float GetSize() const noexcept { return m_size; }

    /// One glyph for each code unit (surrogates are not joined); 0, the missing-glyph, where the font has none.
    virtual void LookUp(std::span<const uint16_t> text, uint16_t* glyphs) const = 0;
    /// Adds the outline to `out` and writes the metrics. If the outline cannot be read, nothing is added, but the
    /// advance is still written.
    virtual void Outline(uint16_t glyph, Geometry& out, GlyphMetrics& metrics) const = 0;

    /// The height requested from the platform: size * 96 / -72, truncated. Negative is the em height in pixels,
    /// positive the line height (ascent and descent); 0 lets the platform choose.
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
