// SPDX-License-Identifier: MIT
// The front object behind a render-target handle: it keeps the paint bracket in order and the graphics state, and hands
// both to the back end.
#pragma once

#include <memory>

#include "../Drawing/RenderTargetBase.h"

namespace Graphics {

class Gradient;

class RenderTarget {
public:
    explicit RenderTarget(std::unique_ptr<RenderTargetBase> backEnd) : m_backEnd(std::move(backEnd)) {}

    /// Draws into the bitmap's own pixels and keeps the bitmap alive.
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForBitmap(std::shared_ptr<Bitmap> bitmap);
    /// Draws into the host's memory, which must outlive the target.
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForBuffer(void* pixels, GXPixelFormat format,
                                                                 const GXExtBufLayout& layout);

    /// The platform's own destinations, which must outlive the target; PlatformTargets.h says what each raises.
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForWindow(void* window, bool softwareOnly);
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForDevice(void* dc, const IntRect& area);
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForPrinter(void* dc);

    [[nodiscard]] GXPixelFormat GetPixelFormat() const { return m_backEnd->GetPixelFormat(); }
    [[nodiscard]] Size GetSize() const { return m_backEnd->GetSize(); }

    // State: readable and writable inside and outside a paint bracket.
    [[nodiscard]] const Matrix& GetTransform() const noexcept { return m_states.Current().transform; }
    void SetTransform(const Matrix& m) noexcept { m_states.Current().transform = m; }
    /// m first, then the current matrix.
    void ConcatTransform(const Matrix& m) noexcept { SetTransform(Concat(m, GetTransform())); }
    /// Radians; 2 pi and more is first reduced by the remainder.
    void RotateTransform(float angle) noexcept;
    void SetBlendMode(uint32_t mode) noexcept { m_states.Current().blendMode = mode; }
    void SetStrokeAdjustment(bool on) noexcept { m_states.Current().strokeAdjustment = on; }
    /// A null brush removes the mask. Placed by the brush's matrix and the current one.
    void SetOpacityMask(uint32_t type, std::shared_ptr<const Brush> brush);
    void SetShapeMask(uint32_t type, std::shared_ptr<const Brush> brush);

    // The bracket. Everything from BeginPaint on raises "Painting has not begun" outside of it.
    /// Raises "Painting has already begun".
    void BeginPaint();
    /// Layers that are still open are drawn and closed. One that cannot be drawn is lost, those around it are closed
    /// all the same: the log has the reason. The state is as in a new target afterwards.
    void EndPaint();
    void PushState();
    /// Raises "State stack is empty" when nothing was pushed in the innermost layer.
    void PopState();
    void BeginLayer(const GXLayerDesc& desc);
    /// Raises "No layer is open".
    void EndLayer();

    // Drawing: bitmaps, masks, gradients, text and shapes all become one call of the back end.
    void Clear(uint32_t argb) { Painting().Clear(argb); }
    /// Nothing is raised for a path without any figure.
    void Fill(const Path& path, const Brush& brush) { Paint(path, InkOf(brush), nullptr); }
    /// Null-terminated text glyph by glyph, the baseline beginning at the origin.
    void FillText(const Font& font, const uint16_t* text, const Brush& brush) { Fill(GlyphRun{&font, text}, brush); }
    /// A bad dash pattern is refused whether or not anything of the stroke would be seen.
    void Stroke(const Path& path, const Brush& brush, float width, const StrokeStyle& style);
    void Clip(const Path& path) { Painting().Clip(m_states.Current(), path); }
    /// Nothing happens for a rectangle without width or height.
    void ClipFigure(const BasicFigure& figure);
    /// Maps `source` (pixels of the bitmap) onto `destination`; a reversed rectangle mirrors.
    void DrawBitmap(const Bitmap& bitmap, const IntRect& source, const Rect& destination, float opacity,
                    uint32_t interpolation);
    /// The values of a bitmap, all of which lies on `destination`, as coverage.
    void FillMask(const Bitmap& mask, const Brush& brush, const Rect& destination, uint32_t interpolation);
    /// Everywhere.
    void DrawGradient(std::shared_ptr<const Gradient> gradient, float opacity, const Matrix& m);
    void InvertRect(const Rect& rect) { Painting().Invert(GetTransform(), {BasicFigure::Kind::Rectangle, rect}); }
    void InvertLine(const Point& from, const Point& to) {
        Painting().Invert(GetTransform(), {BasicFigure::Kind::Line, {from.x, from.y, to.x, to.y}});
    }

private:
    /// The back end for a call that is only legal between BeginPaint and EndPaint.
    [[nodiscard]] RenderTargetBase& Painting() {
        if (!m_painting) {
            RaiseNotPainting();
        }
        return *m_backEnd;
    }
    [[noreturn]] static void RaiseNotPainting();
    void Paint(const Path& path, const Ink& ink, const ImageInk* mask) {
        RenderTargetBase& target = Painting();
        if (!path.IsEmpty()) {
            m_states.Current().CheckMasks();
            target.Paint(m_states.Current(), path, ink, mask);
        }
    }
    [[nodiscard]] SoftMask MakeMask(uint32_t type, std::shared_ptr<const Brush> brush) const;

    StateStack m_states;
    std::unique_ptr<RenderTargetBase> m_backEnd;
    bool m_painting = false;
};

} // namespace Graphics
