// SPDX-License-Identifier: MIT
#include "RenderTarget.h"

#include <cmath>

#include "../Exception.h"
#include "../Geometry/DashSequence.h"
#include "../Software/SwBitmapSurface.h"
#include "../Software/SwExtBufSurface.h"
#include "../Software/SwRenderTarget.h"
#include "../Text/Font.h"
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

RenderTargetBase& RenderTarget::Painting() {
    if (!m_painting) {
        GX_RAISE("Graphics::RenderTarget::Painting", "Painting has not begun");
    }
    return *m_backEnd;
}

void RenderTarget::BeginPaint() {
    if (m_painting) {
        GX_RAISE("Graphics::RenderTarget::BeginPaint", "Painting has already begun");
    }
    m_backEnd->BeginPaint();
    m_painting = true;
}

void RenderTarget::EndPaint() {
    if (!m_painting) {
        GX_RAISE("Graphics::RenderTarget::EndPaint", "Painting has not begun");
    }
    m_painting = false;
    m_backEnd->EndPaint();
}

void RenderTarget::ConcatTransform(const Matrix& m) { m_backEnd->SetTransform(Concat(m, m_backEnd->GetTransform())); }

void RenderTarget::RotateTransform(float angle) {
    constexpr float kFullTurn = 6.2831855F;
    if (angle >= kFullTurn) {
        angle = std::fmod(angle, kFullTurn);
    }
    // In double, rounded once.
    const auto [sineExact, cosineExact] = SineAndCosine(static_cast<double>(angle));
    const auto cosine = static_cast<float>(cosineExact);
    const auto sine = static_cast<float>(sineExact);
    ConcatTransform({cosine, sine, -sine, cosine, 0.0F, 0.0F});
}

void RenderTarget::FillText(const Font& font, const uint16_t* text, const Brush& brush) {
    struct Restore {
        RenderTargetBase& target;
        const Matrix transform;
        ~Restore() { target.SetTransform(transform); }
    };
    RenderTargetBase& target = Painting();
    const Restore restore{target, target.GetTransform()};
    Matrix transform = restore.transform;
    for (; *text != 0; ++text) {
        const FontGlyph& glyph = font.Glyph(*text);
        target.Fill({&glyph.shape, nullptr}, brush, true);
        transform = Concat({1.0F, 0.0F, 0.0F, 1.0F, glyph.metrics.advanceX, glyph.metrics.advanceY}, transform);
        target.SetTransform(transform);
    }
}

void RenderTarget::Stroke(const PathRef& path, const Brush& brush, float width, const StrokeStyle& style) {
    RenderTargetBase& target = Painting();
    if (style.dashCount != 0) {
        const DashSequence refusesBadPatterns(style);
    }
    target.Stroke(path, brush, width, style);
}

void RenderTarget::ClipFigure(BasicFigure::Kind kind, const Rect& rect) {
    RenderTargetBase& target = Painting();
    if (rect.left == rect.right || rect.top == rect.bottom) {
        return;
    }
    const BasicFigure figure(kind, rect);
    target.Clip({nullptr, &figure});
}

} // namespace Graphics
