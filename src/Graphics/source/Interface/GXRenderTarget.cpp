// SPDX-License-Identifier: MIT
// Render targets: creation, the paint bracket and the graphics state.
#include "Arguments.h"
#include "Guard.h"
#include "Handles.h"
#include "Paint/Brush.h"
#include "Target/RenderTarget.h"

using namespace Graphics;

namespace {

/// Runs work(target) under the guard.
template <class Work> [[nodiscard]] GXResult With(GXRenderTarget handle, Work&& work) noexcept {
    if (handle == nullptr) {
        return GXResultInvalidArgument;
    }
    return Guard([&] { work(*handle->object); });
}

[[nodiscard]] std::shared_ptr<const Brush> MaskBrush(GXBrush brush) noexcept {
    return brush == nullptr ? nullptr : brush->object;
}

} // namespace

GXResult GXCreateRenderTargetBitmap(GXBitmap bitmap, GXRenderTarget* out) noexcept {
    if (AnyNull(bitmap, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return RenderTarget::ForBitmap(bitmap->object); });
}

GXResult GXCreateRenderTargetExtBuf(void* pixels, GXPixelFormat format, const GXExtBufLayout* layout,
                                    GXRenderTarget* out) noexcept {
    if (pixels == nullptr || AnyNull(layout, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return RenderTarget::ForBuffer(pixels, format, *layout); });
}

GXResult GXCreateRenderTargetHWND(GXNativeWindow window, uint32_t softwareOnly, GXRenderTarget* out) noexcept {
    if (window == nullptr || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return RenderTarget::ForWindow(window, softwareOnly != 0); });
}

GXResult GXCreateRenderTargetHDC(GXNativeDC dc, const GXIntRect* area, GXRenderTarget* out) noexcept {
    if (dc == nullptr || AnyNull(area, out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return RenderTarget::ForDevice(dc, *area); });
}

GXResult GXCreateRenderTargetPrintDC(GXNativeDC dc, GXRenderTarget* out) noexcept {
    if (dc == nullptr || AnyNull(out)) {
        return GXResultInvalidArgument;
    }
    return Create(out, [&] { return RenderTarget::ForPrinter(dc); });
}

GXResult GXRenderTargetGetPixelFormat(GXRenderTarget renderTarget, GXPixelFormat* out) noexcept {
    if (AnyNull(renderTarget, out)) {
        return GXResultInvalidArgument;
    }
    return With(renderTarget, [&](RenderTarget& t) { *out = t.GetPixelFormat(); });
}

GXResult GXRenderTargetGetSize(GXRenderTarget renderTarget, GXSize* out) noexcept {
    if (AnyNull(renderTarget, out)) {
        return GXResultInvalidArgument;
    }
    return With(renderTarget, [&](RenderTarget& t) { *out = t.GetSize(); });
}

GXResult GXRenderTargetBeginPaint(GXRenderTarget renderTarget) noexcept {
    return With(renderTarget, [](RenderTarget& t) { t.BeginPaint(); });
}

GXResult GXRenderTargetEndPaint(GXRenderTarget renderTarget) noexcept {
    return With(renderTarget, [](RenderTarget& t) { t.EndPaint(); });
}

GXResult GXRenderTargetPushState(GXRenderTarget renderTarget) noexcept {
    return With(renderTarget, [](RenderTarget& t) { t.PushState(); });
}

GXResult GXRenderTargetPopState(GXRenderTarget renderTarget) noexcept {
    return With(renderTarget, [](RenderTarget& t) { t.PopState(); });
}

GXResult GXRenderTargetGetCTM(GXRenderTarget renderTarget, GXMatrix* out) noexcept {
    if (AnyNull(renderTarget, out)) {
        return GXResultInvalidArgument;
    }
    return With(renderTarget, [&](RenderTarget& t) { *out = t.GetTransform(); });
}

GXResult GXRenderTargetSetCTM(GXRenderTarget renderTarget, const GXMatrix* matrix) noexcept {
    return With(renderTarget, [&](RenderTarget& t) { t.SetTransform(matrix == nullptr ? kIdentity : Given(matrix)); });
}

GXResult GXRenderTargetConcatCTM(GXRenderTarget renderTarget, const GXMatrix* matrix) noexcept {
    if (AnyNull(renderTarget, matrix)) {
        return GXResultInvalidArgument;
    }
    return With(renderTarget, [&](RenderTarget& t) { t.ConcatTransform(Given(matrix)); });
}

GXResult GXRenderTargetRotateCTM(GXRenderTarget renderTarget, float angle) noexcept {
    return With(renderTarget, [&](RenderTarget& t) { t.RotateTransform(angle); });
}

GXResult GXRenderTargetScaleCTM(GXRenderTarget renderTarget, float sx, float sy) noexcept {
    if (renderTarget == nullptr || sx == 0.0F || sy == 0.0F) {
        return GXResultInvalidArgument;
    }
    return With(renderTarget, [&](RenderTarget& t) { t.ConcatTransform({sx, 0.0F, 0.0F, sy, 0.0F, 0.0F}); });
}

GXResult GXRenderTargetTranslateCTM(GXRenderTarget renderTarget, float tx, float ty) noexcept {
    return With(renderTarget, [&](RenderTarget& t) { t.ConcatTransform({1.0F, 0.0F, 0.0F, 1.0F, tx, ty}); });
}

GXResult GXRenderTargetSetBlendMode(GXRenderTarget renderTarget, GXBlendMode blendMode) noexcept {
    return With(renderTarget, [&](RenderTarget& t) { t.SetBlendMode(blendMode); });
}

GXResult GXRenderTargetSetStrokeAdjustment(GXRenderTarget renderTarget, uint8_t flag) noexcept {
    return With(renderTarget, [&](RenderTarget& t) { t.SetStrokeAdjustment(flag != 0); });
}

GXResult GXRenderTargetSetOpacityMask(GXRenderTarget renderTarget, uint32_t type, GXBrush brush) noexcept {
    return With(renderTarget, [&](RenderTarget& t) { t.SetOpacityMask(type, MaskBrush(brush)); });
}

GXResult GXRenderTargetSetShapeMask(GXRenderTarget renderTarget, uint32_t type, GXBrush brush) noexcept {
    return With(renderTarget, [&](RenderTarget& t) { t.SetShapeMask(type, MaskBrush(brush)); });
}

GXResult GXRenderTargetBeginLayer(GXRenderTarget renderTarget, const GXLayerDesc* desc) noexcept {
    if (AnyNull(renderTarget, desc)) {
        return GXResultInvalidArgument;
    }
    return With(renderTarget, [&](RenderTarget& t) { t.BeginLayer(*desc); });
}

GXResult GXRenderTargetEndLayer(GXRenderTarget renderTarget) noexcept {
    return With(renderTarget, [](RenderTarget& t) { t.EndLayer(); });
}
