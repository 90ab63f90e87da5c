// SPDX-License-Identifier: MIT
// The front object behind a render-target handle: it keeps the paint bracket in order, composes matrices and hands
// everything else to the back end.
#pragma once

#include <memory>

#include "RenderTargetBase.h"

namespace Graphics {

class Font;

class RenderTarget {
public:
    explicit RenderTarget(std::unique_ptr<RenderTargetBase> backEnd) noexcept : m_backEnd(std::move(backEnd)) {}

    /// Draws into the bitmap's own pixels and keeps the bitmap alive.
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForBitmap(std::shared_ptr<Bitmap> bitmap);
    /// Draws into the host's memory, which must outlive the target.
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForBuffer(void* pixels, GXPixelFormat format,
                                                                 const GXExtBufLayout& layout);

    /// The platform's own destinations, which must outlive the target; PlatformTargets.h says what each raises.
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForWindow(void* window, bool softwareOnly);
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForDevice(void* dc, const IntRect& area);
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForPrinter(void* dc);

    [[nodiscard]] RenderTargetBase& BackEnd() noexcept { return *m_backEnd; }
    /// The back end for a call that is only legal between BeginPaint and EndPaint; raises "Painting has not begun".
    [[nodiscard]] RenderTargetBase& Painting();

    void BeginPaint();
    void EndPaint();

    /// m first, then the current matrix.
    void ConcatTransform(const Matrix& m);
    /// Radians; 2 pi and more is first reduced by the remainder.
    void RotateTransform(float angle);

    /// Null-terminated text glyph by glyph, the baseline beginning at the origin. The matrix is as before afterwards,
    /// whatever happens.
    void FillText(const Font& font, const uint16_t* text, const Brush& brush);

    /// A bad dash pattern is refused whether or not anything of the stroke would be seen.
    void Stroke(const PathRef& path, const Brush& brush, float width, const StrokeStyle& style);

    /// Nothing happens for a rectangle without width or height.
    void ClipFigure(BasicFigure::Kind kind, const Rect& rect);

private:
    std::unique_ptr<RenderTargetBase> m_backEnd;
    bool m_painting = false;
};

} // namespace Graphics
