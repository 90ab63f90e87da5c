// SPDX-License-Identifier: MIT
#include "RenderTarget.h"

#include <cmath>

#include "../Bitmaps/Bitmap.h"
#include "../Exception.h"
#include "../Geometry/DashSequence.h"
#include "../Paint/Brush.h"
#include "../Software/Surfaces/SwBitmapSurface.h"
#include "../Software/Surfaces/SwExtBufSurface.h"
#include "../Software/SwRenderTarget.h"
#include "../Trigonometry.h"
#include "PlatformTargets.h"

namespace Graphics {

std::shared_ptr<RenderTarget> RenderTarget::ForBitmap(std::shared_ptr<Bitmap> bitmap) {
    return std::make_shared<RenderTarget>(
        std::make_unique<SwRenderTarget>(std::make_unique<SwBitmapSurface>(std::move(bitmap))));
}

std::shared_ptr<RenderTarget> RenderTarget::ForBuffer(void* pixels, GXPixelFormat format,
                                                      const GXExtBufLayout& layout) {
    return std::make_shared<RenderTarget>(
        std::make_unique<SwRenderTarget>(std::make_unique<SwExtBufSurface>(pixels, format, layout)));
}

std::shared_ptr<RenderTarget> RenderTarget::ForWindow(void* window, bool softwareOnly) {
    return std::make_shared<RenderTarget>(CreateWindowTarget(window, softwareOnly));
}

std::shared_ptr<RenderTarget> RenderTarget::ForDevice(void* dc, const IntRect& area) {
    return std::make_shared<RenderTarget>(CreateDeviceTarget(dc, area));
}

std::shared_ptr<RenderTarget> RenderTarget::ForPrinter(void* dc) {
    return std::make_shared<RenderTarget>(CreatePrinterTarget(dc));
}

void RenderTarget::RaiseNotPainting() { GX_RAISE("Graphics::RenderTarget::Painting", "Painting has not begun"); }

void RenderTarget::RotateTransform(float angle) noexcept {
    constexpr float kFullTurn = 6.2831855F;
    if (angle >= kFullTurn) {
        angle = std::fmod(angle, kFullTurn);
    }
    // Computed in double and rounded once.
    const auto [sineExact, cosineExact] = SineAndCosine(static_cast<double>(angle));
    const auto cosine = static_cast<float>(cosineExact);
    const auto sine = static_cast<float>(sineExact);
    ConcatTransform({cosine, sine, -sine, cosine, 0.0F, 0.0F});
}

SoftMask RenderTarget::MakeMask(uint32_t type, std::shared_ptr<const Brush> brush) const {
    return {brush == nullptr ? nullptr : m_backEnd->KeepMask(std::move(brush)), type, GetTransform()};
}

void RenderTarget::SetOpacityMask(uint32_t type, std::shared_ptr<const Brush> brush) {
    m_states.Current().opacityMask = MakeMask(type, std::move(brush));
}

void RenderTarget::SetShapeMask(uint32_t type, std::shared_ptr<const Brush> brush) {
    m_states.Current().shapeMask = MakeMask(type, std::move(brush));
}

void RenderTarget::BeginPaint() {
    if (m_painting) {
        GX_RAISE("Graphics::RenderTarget::BeginPaint", "Painting has already begun");
    }
    m_backEnd->BeginPaint();
    m_painting = true;
}

void RenderTarget::EndPaint() {
    RenderTargetBase& target = Painting();
    m_painting = false;
    while (m_states.HasLayers()) {
        try {
            target.EndLayer(m_states.AroundLayer());
        } catch (const std::exception&) {
            target.DropLayer();
        }
        m_states.CloseLayer();
    }
    m_states.Reset();
    target.EndPaint();
}

void RenderTarget::PushState() {
    RenderTargetBase& target = Painting();
    m_states.Reserve();
    target.PushState();
    m_states.Push();
}

void RenderTarget::PopState() {
    RenderTargetBase& target = Painting();
    if (m_states.IsAtStart()) {
        GX_RAISE("Graphics::RenderTarget::PopState", "State stack is empty");
    }
    m_states.Pop();
    target.PopState();
}

void RenderTarget::BeginLayer(const GXLayerDesc& desc) {
    RenderTargetBase& target = Painting();
    m_states.Reserve();
    target.BeginLayer(m_states.Current(), desc);
    m_states.OpenLayer();
}

void RenderTarget::EndLayer() {
    RenderTargetBase& target = Painting();
    if (!m_states.HasLayers()) {
        GX_RAISE("Graphics::RenderTarget::EndLayer", "No layer is open");
    }
    target.EndLayer(m_states.AroundLayer());
    m_states.CloseLayer();
}

void RenderTarget::Stroke(const Path& path, const Brush& brush, float width, const StrokeStyle& style) {
    RenderTargetBase& target = Painting();
    if (style.dashCount != 0) {
        const DashSequence refusesBadPatterns(style);
    }
    if (!path.IsEmpty()) {
        m_states.Current().CheckMasks();
        target.Stroke(m_states.Current(), path, InkOf(brush), width, style);
    }
}

void RenderTarget::ClipFigure(const BasicFigure& figure) {
    RenderTargetBase& target = Painting();
    const Rect& r = figure.Box();
    if (r.left != r.right && r.top != r.bottom) {
        target.Clip(m_states.Current(), figure);
    }
}

void RenderTarget::DrawBitmap(const Bitmap& bitmap, const IntRect& source, const Rect& destination, float opacity,
                              uint32_t interpolation) {
    static_cast<void>(Painting());
    const Ink ink(std::in_place_type<ImageInk>, bitmap, source, destination, opacity, interpolation);
    if (!IsEmpty(std::get<ImageInk>(ink).part)) {
        Paint(BasicFigure(BasicFigure::Kind::Rectangle, destination), ink, nullptr);
    }
}

void RenderTarget::FillMask(const Bitmap& mask, const Brush& brush, const Rect& destination, uint32_t interpolation) {
    const ImageInk cover(mask, destination, 1.0F, interpolation);
    Paint(BasicFigure(BasicFigure::Kind::Rectangle, destination), InkOf(brush), &cover);
}

void RenderTarget::DrawGradient(std::shared_ptr<const Gradient> gradient, float opacity, const Matrix& m) {
    GradientBrush brush(std::move(gradient));
    brush.opacity = opacity;
    brush.transform = m;
    Paint(Path::Plane(), GradientInk{&brush}, nullptr);
}

} // namespace Graphics
