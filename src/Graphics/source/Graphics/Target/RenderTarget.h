// SPDX-License-Identifier: MIT
// The front end behind a render-target handle: checks the order of the paint bracket, keeps the graphics state, and
// passes draws with the state to the back end.
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

    /// Targets on the platform's destinations, which must outlive the target; PlatformTargets.h lists the errors.
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForWindow(void* window, bool softwareOnly);
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForDevice(void* dc, const IntRect& area);
    [[nodiscard]] static std::shared_ptr<RenderTarget> ForPrinter(void* dc);

    [[nodiscard]] GXPixelFormat GetPixelFormat() const { return m_backEnd->GetPixelFormat(); }
    [[nodiscard]] Size GetSize() const { return m_backEnd->GetSize(); }

    // State: can be read and written inside and outside a paint bracket.
    [[nodiscard]] const Matrix& GetTransform() const noexcept { return m_states.Current().transform; }
    void SetTransform(const Matrix& m) noexcept { m_states.Current().transform = m; }
    /// Applies m before the current matrix.
    void ConcatTransform(const Matrix& m) noexcept { SetTransform(Concat(m, GetTransform())); }
    /// Radians; angles from 2 pi on are reduced by the remainder first.
    void RotateTransform(float angle) noexcept;
    void SetBlendMode(uint32_t mode) noexcept { m_states.Current().blendMode = mode; }
    void SetStrokeAdjustment(bool on) noexcept { m_states.Current().strokeAdjustment = on; }
    /// A null brush removes the mask. The mask is placed by the brush's matrix and the current one.
    void SetOpacityMask(uint32_t type, std::shared_ptr<const Brush> brush);
    void SetShapeMask(uint32_t type, std::shared_ptr<const Brush> brush);

    // The bracket. Outside of it, everything below except BeginPaint raises "Painting has not begun".
    /// Raises "Painting has already begun".
    void BeginPaint();
    /// Draws and closes the layers that are still open. A layer that cannot be drawn is discarded and the reason
    /// logged; those around it are still closed. The state is afterwards that of a new target.
    void EndPaint();
    void PushState();
    /// Raises "State stack is empty" if nothing was pushed in the innermost layer.
    void PopState();
    void BeginLayer(const GXLayerDesc& desc);
    /// Raises "No layer is open".
    void EndLayer();

    // Drawing: bitmaps, masks, gradients, text and shapes all become one call of the back end.
    void Clear(uint32_t argb) { Painting().Clear(argb); }
    /// A path without figures draws nothing and raises nothing.
    void Fill(const Path& path, const Brush& brush) { Paint(path, InkOf(brush), nullptr); }
    /// Draws null-terminated text glyph by glyph; the baseline starts at the origin.
    void FillText(const Font& font, const uint16_t* text, const Brush& brush) { Fill(GlyphRun{&font, text}, brush); }
    /// Raises for a bad dash pattern, even if nothing of the stroke is visible.
    void Stroke(const Path& path, const Brush& brush, float width, const StrokeStyle& style);
    void Clip(const Path& path) { Painting().Clip(m_states.Current(), path); }
    /// A rectangle without width or height has no effect.
    void ClipFigure(const BasicFigure& figure);
    /// Maps `source` (pixels of the bitmap) onto `destination`; a reversed rectangle mirrors.
    void DrawBitmap(const Bitmap& bitmap, const IntRect& source, const Rect& destination, float opacity,
                    uint32_t interpolation);
    /// Uses the bitmap's values as coverage; the whole bitmap is mapped onto `destination`.
    void FillMask(const Bitmap& mask, const Brush& brush, const Rect& destination, uint32_t interpolation);
    /// Paints the whole target.
    void DrawGradient(std::shared_ptr<const Gradient> gradient, float opacity, const Matrix& m);
    void InvertRect(const Rect& rect) { Painting().Invert(GetTransform(), {BasicFigure::Kind::Rectangle, rect}); }
    void InvertLine(const Point& from, const Point& to) {
        Painting().Invert(GetTransform(), {BasicFigure::Kind::Line, {from.x, from.y, to.x, to.y}});
    }

private:
    /// The back end, for calls that are legal only between BeginPaint and EndPaint.
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
