// SPDX-License-Identifier: MIT
// The library's calls for a host that can be recorded: each makes the call and, when there is a recorder and the call
// succeeded, notes it. Without a recorder that is one comparison with null a call.
//
// Not here is what a recording does not need to see: geometries, bitmaps and palettes are read back when they are used.
#pragma once

#include "Recorder.h"

#include <type_traits>

namespace Gxr {

class Calls {
public:
    // Whether calls draw at once, or are only noted, to be played later: they are made all the same, so that the
    // library checks their arguments and keeps its state, but under a clip that lets nothing through.
    enum class Drawing { Now, Later };

    // The recorder outlives this object.
    explicit Calls(Recorder* recorder = nullptr, Drawing drawing = Drawing::Now) noexcept
        : m_recorder(recorder), m_drawing(drawing) {}

    // The first target is the page.
    GXResult CreateRenderTargetBitmap(GXBitmap bitmap, GXRenderTarget* out) const noexcept {
        return Noted(GXCreateRenderTargetBitmap(bitmap, out), [&](Recorder& r) { r.NoteTarget(*out, bitmap); });
    }
    GXResult CreateRenderTargetExtBuf(void* pixels, GXPixelFormat format, const GXExtBufLayout* layout,
                                      GXRenderTarget* out) const noexcept {
        return Noted(GXCreateRenderTargetExtBuf(pixels, format, layout, out),
                     [&](Recorder& r) { r.NoteTarget(*out, nullptr); });
    }
    GXResult CreateRenderTargetHWND(GXNativeWindow window, uint32_t softwareOnly, GXRenderTarget* out) const noexcept {
        return Noted(GXCreateRenderTargetHWND(window, softwareOnly, out),
                     [&](Recorder& r) { r.NoteTarget(*out, nullptr); });
    }
    GXResult CreateRenderTargetHDC(GXNativeDC dc, const GXIntRect* area, GXRenderTarget* out) const noexcept {
        return Noted(GXCreateRenderTargetHDC(dc, area, out), [&](Recorder& r) { r.NoteTarget(*out, nullptr); });
    }
    GXResult CreateRenderTargetPrintDC(GXNativeDC dc, GXRenderTarget* out) const noexcept {
        return Noted(GXCreateRenderTargetPrintDC(dc, out), [&](Recorder& r) { r.NoteTarget(*out, nullptr); });
    }

    GXResult CreateBrushSolid(const GXColor* color, GXBrush* out) const noexcept {
        return Noted(GXCreateBrushSolid(color, out), [&](Recorder& r) { r.NoteSolid(*out, *color); });
    }
    GXResult CreateBrushSolidARGB(uint32_t argb, GXBrush* out) const noexcept {
        return Noted(GXCreateBrushSolidARGB(argb, out), [&](Recorder& r) { r.NoteSolidARGB(*out, argb); });
    }
    GXResult CreateBrushBitmap(GXBitmap bitmap, float opacity, const GXBitmapBrushOptions* options,
                               const GXMatrix* matrix, GXBrush* out) const noexcept {
        return Noted(GXCreateBrushBitmap(bitmap, opacity, options, matrix, out),
                     [&](Recorder& r) { r.NoteBitmapBrush(*out, bitmap, opacity, options, matrix); });
    }
    GXResult CreateBrushGradient(GXGradient gradient, float opacity, const GXMatrix* matrix,
                                 GXBrush* out) const noexcept {
        return Noted(GXCreateBrushGradient(gradient, opacity, matrix, out),
                     [&](Recorder& r) { r.NoteGradientBrush(*out, gradient, opacity, matrix); });
    }
    GXResult CreateGradientLinear(const GXLinearGradientDesc* desc, GXGradient* out) const noexcept {
        return Noted(GXCreateGradientLinear(desc, out), [&](Recorder& r) { r.NoteGradient(*out, *desc); });
    }
    GXResult CreateGradientRadial(const GXRadialGradientDesc* desc, GXGradient* out) const noexcept {
        return Noted(GXCreateGradientRadial(desc, out), [&](Recorder& r) { r.NoteGradient(*out, *desc); });
    }
    GXResult CreateGradientTriMesh(const GXTriMeshVertex* vertices, size_t count, uint32_t background,
                                   GXGradient* out) const noexcept {
        return Noted(GXCreateGradientTriMesh(vertices, count, background, out),
                     [&](Recorder& r) { r.NoteMesh(*out, vertices, count, background); });
    }
    GXResult CreateFontFace(const uint16_t* name, uint32_t flags, float size, GXFontFace* out) const noexcept {
        return Noted(GXCreateFontFace(name, flags, size, out),
                     [&](Recorder& r) { r.NoteFontFace(*out, name, flags, size); });
    }

    // Before the release of a bitmap that was drawn into: the recording lets go of it too.
    void Forget(GXBitmap bitmap) const noexcept {
        if (m_recorder != nullptr)
            m_recorder->Forget(bitmap);
    }

#define GXR_METHOD(name)                                                                                               \
    template <class... A> GXResult name(GXRenderTarget target, A... arguments) const noexcept {                        \
        return Run(Op::name, &GXRenderTarget##name, target, arguments...);                                             \
    }
    GXR_TARGET_CALLS(GXR_METHOD)
#undef GXR_METHOD

private:
    template <class Note> GXResult Noted(GXResult result, Note&& note) const noexcept {
        if (m_recorder != nullptr && result == GXResultSuccess)
            note(*m_recorder);
        return result;
    }
    template <class... P>
    GXResult Run(Op op, GXResult (*call)(GXRenderTarget, P...) noexcept, GXRenderTarget target,
                 std::type_identity_t<P>... arguments) const noexcept {
        const GXResult result = call(target, arguments...);
        if (op == Op::BeginPaint && m_drawing == Drawing::Later && result == GXResultSuccess) {
            const GXRect nothing{0, 0, 0, 0};
            GXRenderTargetClipRect(target, &nothing);
        }
        return Noted(result, [&](Recorder& r) { r.Command<P...>(op, target, arguments...); });
    }

    Recorder* m_recorder;
    Drawing m_drawing;
};

} // namespace Gxr
