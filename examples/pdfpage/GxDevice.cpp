// SPDX-License-Identifier: MIT
// The call-backs. MuPDF calls them as C: no exception leaves them, and the painter keeps MuPDF's longjmps inside Try.
#include "GxDevice.h"

namespace PdfPage {
namespace {

struct GxDevice {
    fz_device super;
    Painter* painter;
    const std::atomic<bool>* stop;
    fz_cookie* cookie;
};

// MuPDF's own flag is no atomic: it is set here, on the thread that reads it.
bool Stops(fz_device* dev) noexcept {
    const GxDevice& device = *reinterpret_cast<GxDevice*>(dev);
    if (!device.stop || !device.stop->load(std::memory_order_relaxed))
        return false;
    device.cookie->abort = 1;
    return true;
}

Painter& Of(fz_device* dev) { return *reinterpret_cast<GxDevice*>(dev)->painter; }

// Draws with the painter, or passes the call on to the recorder of a tile, or passes it over inside a soft mask that is
// not drawn.
template <class Draw, class Record>
void Dispatch(fz_context* ctx, fz_device* dev, Draw&& draw, Record&& record) noexcept {
    Painter& painter = Of(dev);
    if (painter.Skipping() || Stops(dev))
        return;
    if (fz_device* recorder = painter.Recorder()) {
        Try(ctx, [&] { record(recorder); });
        return;
    }
    try {
        draw(painter);
    } catch (...) {
        painter.OutOfMemory();
    }
}

// For the calls that the painter has to see in any case.
template <class Draw> void Always(fz_device* dev, Draw&& draw) noexcept {
    Painter& painter = Of(dev);
    if (Stops(dev))
        return;
    try {
        draw(painter);
    } catch (...) {
        painter.OutOfMemory();
    }
}

void FillPath(fz_context* ctx, fz_device* dev, const fz_path* path, int evenOdd, fz_matrix ctm, fz_colorspace* space,
              const float* color, float alpha, fz_color_params params) {
    Dispatch(
        ctx, dev,
        [&](Painter& p) {
            p.FillPath(path, evenOdd != 0, ctm, {space, color, alpha, params});
        },
        [&](fz_device* to) { fz_fill_path(ctx, to, path, evenOdd, ctm, space, color, alpha, params); });
}

void StrokePath(fz_context* ctx, fz_device* dev, const fz_path* path, const fz_stroke_state* stroke, fz_matrix ctm,
                fz_colorspace* space, const float* color, float alpha, fz_color_params params) {
    Dispatch(
        ctx, dev,
        [&](Painter& p) {
            p.StrokePath(path, *stroke, ctm, {space, color, alpha, params});
        },
        [&](fz_device* to) { fz_stroke_path(ctx, to, path, stroke, ctm, space, color, alpha, params); });
}

void ClipPath(fz_context* ctx, fz_device* dev, const fz_path* path, int evenOdd, fz_matrix ctm, fz_rect scissor) {
    Dispatch(
        ctx, dev, [&](Painter& p) { p.ClipPath(path, evenOdd != 0, ctm); },
        [&](fz_device* to) { fz_clip_path(ctx, to, path, evenOdd, ctm, scissor); });
}

void ClipStrokePath(fz_context* ctx, fz_device* dev, const fz_path* path, const fz_stroke_state* stroke, fz_matrix ctm,
                    fz_rect scissor) {
    Dispatch(
        ctx, dev, [&](Painter& p) { p.ClipStrokePath(path, *stroke, ctm); },
        [&](fz_device* to) { fz_clip_stroke_path(ctx, to, path, stroke, ctm, scissor); });
}

void FillText(fz_context* ctx, fz_device* dev, const fz_text* text, fz_matrix ctm, fz_colorspace* space,
              const float* color, float alpha, fz_color_params params) {
    Dispatch(
        ctx, dev,
        [&](Painter& p) {
            p.FillText(*text, ctm, {space, color, alpha, params});
        },
        [&](fz_device* to) { fz_fill_text(ctx, to, text, ctm, space, color, alpha, params); });
}

void StrokeText(fz_context* ctx, fz_device* dev, const fz_text* text, const fz_stroke_state* stroke, fz_matrix ctm,
                fz_colorspace* space, const float* color, float alpha, fz_color_params params) {
    Dispatch(
        ctx, dev,
        [&](Painter& p) {
            p.StrokeText(*text, *stroke, ctm, {space, color, alpha, params});
        },
        [&](fz_device* to) { fz_stroke_text(ctx, to, text, stroke, ctm, space, color, alpha, params); });
}

void ClipText(fz_context* ctx, fz_device* dev, const fz_text* text, fz_matrix ctm, fz_rect scissor) {
    Dispatch(
        ctx, dev, [&](Painter& p) { p.ClipText(*text, ctm); },
        [&](fz_device* to) { fz_clip_text(ctx, to, text, ctm, scissor); });
}

void ClipStrokeText(fz_context* ctx, fz_device* dev, const fz_text* text, const fz_stroke_state* stroke, fz_matrix ctm,
                    fz_rect scissor) {
    Dispatch(
        ctx, dev, [&](Painter& p) { p.ClipStrokeText(*text, *stroke, ctm); },
        [&](fz_device* to) { fz_clip_stroke_text(ctx, to, text, stroke, ctm, scissor); });
}

void FillShade(fz_context* ctx, fz_device* dev, fz_shade* shade, fz_matrix ctm, float alpha, fz_color_params params) {
    Dispatch(
        ctx, dev, [&](Painter& p) { p.FillShade(shade, ctm, alpha, params); },
        [&](fz_device* to) { fz_fill_shade(ctx, to, shade, ctm, alpha, params); });
}

void FillImage(fz_context* ctx, fz_device* dev, fz_image* image, fz_matrix ctm, float alpha, fz_color_params params) {
    Dispatch(
        ctx, dev, [&](Painter& p) { p.FillImage(image, ctm, alpha, params); },
        [&](fz_device* to) { fz_fill_image(ctx, to, image, ctm, alpha, params); });
}

void FillImageMask(fz_context* ctx, fz_device* dev, fz_image* image, fz_matrix ctm, fz_colorspace* space,
                   const float* color, float alpha, fz_color_params params) {
    Dispatch(
        ctx, dev,
        [&](Painter& p) {
            p.FillImageMask(image, ctm, {space, color, alpha, params});
        },
        [&](fz_device* to) { fz_fill_image_mask(ctx, to, image, ctm, space, color, alpha, params); });
}

void ClipImageMask(fz_context* ctx, fz_device* dev, fz_image* image, fz_matrix ctm, fz_rect scissor) {
    Dispatch(
        ctx, dev, [&](Painter& p) { p.ClipImageMask(image, ctm); },
        [&](fz_device* to) { fz_clip_image_mask(ctx, to, image, ctm, scissor); });
}

void PopClip(fz_context* ctx, fz_device* dev) {
    Dispatch(
        ctx, dev, [&](Painter& p) { p.PopClip(); }, [&](fz_device* to) { fz_pop_clip(ctx, to); });
}

void BeginMask(fz_context* ctx, fz_device* dev, fz_rect area, int luminosity, fz_colorspace* space,
               const float* backdrop, fz_color_params params) {
    if (fz_device* recorder = Of(dev).Recorder()) {
        Try(ctx, [&] { fz_begin_mask(ctx, recorder, area, luminosity, space, backdrop, params); });
        return;
    }
    Always(dev, [&](Painter& p) { p.BeginMask(area, luminosity != 0, {space, backdrop, 1.0f, params}); });
}

void EndMask(fz_context* ctx, fz_device* dev) {
    if (fz_device* recorder = Of(dev).Recorder()) {
        Try(ctx, [&] { fz_end_mask(ctx, recorder); });
        return;
    }
    Always(dev, [&](Painter& p) { p.EndMask(); });
}

void BeginGroup(fz_context* ctx, fz_device* dev, fz_rect area, fz_colorspace* space, int isolated, int knockout,
                int blendMode, float alpha) {
    if (fz_device* recorder = Of(dev).Recorder()) {
        Try(ctx, [&] { fz_begin_group(ctx, recorder, area, space, isolated, knockout, blendMode, alpha); });
        return;
    }
    Always(dev, [&](Painter& p) { p.BeginGroup(area, isolated != 0, knockout != 0, blendMode, alpha); });
}

void EndGroup(fz_context* ctx, fz_device* dev) {
    Dispatch(
        ctx, dev, [&](Painter& p) { p.EndGroup(); }, [&](fz_device* to) { fz_end_group(ctx, to); });
}

int BeginTile(fz_context*, fz_device* dev, fz_rect area, fz_rect view, float xStep, float yStep, fz_matrix ctm,
              int id) {
    Always(dev, [&](Painter& p) { p.BeginTile(area, view, xStep, yStep, ctm, id); });
    return 0; // the cell's content has to follow
}

void EndTile(fz_context*, fz_device* dev) {
    Always(dev, [&](Painter& p) { p.EndTile(); });
}

void SetDefaultColorspaces(fz_context* ctx, fz_device* dev, fz_default_colorspaces* defaults) {
    Dispatch(
        ctx, dev, [&](Painter& p) { p.SetDefaultColorspaces(defaults); },
        [&](fz_device* to) { fz_set_default_colorspaces(ctx, to, defaults); });
}

} // namespace

fz_device* NewGxDevice(fz_context* ctx, Painter& painter, const std::atomic<bool>* stop, fz_cookie* cookie) {
    GxDevice* device = nullptr;
    if (!Try(ctx, [&] { device = fz_new_derived_device(ctx, GxDevice); }))
        return nullptr;
    device->painter = &painter;
    device->stop = stop;
    device->cookie = cookie;
    fz_device& d = device->super;
    d.fill_path = FillPath;
    d.stroke_path = StrokePath;
    d.clip_path = ClipPath;
    d.clip_stroke_path = ClipStrokePath;
    d.fill_text = FillText;
    d.stroke_text = StrokeText;
    d.clip_text = ClipText;
    d.clip_stroke_text = ClipStrokeText;
    d.fill_shade = FillShade;
    d.fill_image = FillImage;
    d.fill_image_mask = FillImageMask;
    d.clip_image_mask = ClipImageMask;
    d.pop_clip = PopClip;
    d.begin_mask = BeginMask;
    d.end_mask = EndMask;
    d.begin_group = BeginGroup;
    d.end_group = EndGroup;
    d.begin_tile = BeginTile;
    d.end_tile = EndTile;
    d.set_default_colorspaces = SetDefaultColorspaces;
    painter.SetDevice(&d);
    return &d;
}

} // namespace PdfPage
