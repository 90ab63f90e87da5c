// SPDX-License-Identifier: MIT
#include "D3D11RenderTarget.h"

#include <algorithm>

#include "../Exception.h"
#include "../Geometry/DeviceFeed.h"
#include "../Pixels/PixelMath.h"
#include "../Scan/DeviceFigures.h"

namespace Graphics {
namespace {

/// For draws that use only the clip.
const GraphicsState kPlainState;

} // namespace

D3D11RenderTarget::D3D11RenderTarget(std::shared_ptr<D3D11Context> context, std::unique_ptr<D3D11Surface> surface)
    : m_context(std::move(context)), m_surface(std::move(surface)), m_painter(m_arena) {}

D3D11RenderTarget::~D3D11RenderTarget() {
    if (!m_painting || !m_context->HasDevice()) {
        return;
    }
    // The batch belongs to the thread: this target's draws would be sent with another target's next paint. It may also
    // contain draws of other targets, so it is sent, not dropped.
    try {
        m_context->Batch().Flush();
    } catch (...) {
        // A destructor cannot report errors.
    }
}

template <class Work> void D3D11RenderTarget::Run(bool again, Work&& work) {
    const ArenaScope scope(m_arena);
    if (m_broken) {
        GX_RAISE("Graphics::D3D11RenderTarget::Run", "D3D11 error");
    }
    for (bool first = true;; first = false) {
        try {
            FollowDevice();
            if (first || again) {
                work();
            }
            return;
        } catch (const D3D11DeviceLost&) {
            m_painter.Forget();
            if (!first) {
                GX_RAISE("Graphics::D3D11RenderTarget::Run", "D3D11 error");
            }
        }
    }
}

void D3D11RenderTarget::FollowDevice() {
    if (!m_painting) {
        m_context->Recover();
        return;
    }
    if (m_context->HasDevice() && m_generation == m_context->Generation()) {
        return;
    }
    m_painter.Forget();
    m_incomplete = true;
    m_broken = true; // until everything needed for drawing exists
    m_context->Recover();
    std::shared_ptr<D3D11Texture> color = m_surface->BeginPaint(*m_context);
    // If the window is resized meanwhile, the paint keeps its size.
    if (color != nullptr) {
        m_area = Intersect(m_area, {0, 0, color->Width(), color->Height()});
    }
    m_basic.Restore(std::move(color));
    for (const auto& layer : m_layers) {
        layer->Restore(nullptr);
    }
    m_generation = m_context->Generation();
    m_broken = false;
}

void D3D11RenderTarget::BeginPaint() {
    static_cast<void>(m_context->TryRecover()); // before anything of a lost device is used
    Run(true, [&] {
        std::shared_ptr<D3D11Texture> color = m_surface->BeginPaint(*m_context);
        const IntRect area = color != nullptr ? IntRect{0, 0, color->Width(), color->Height()} : IntRect{0, 0, 0, 0};
        m_basic.Open(std::move(color), area);
        m_area = area;
        m_context->Readback().StartPainting();
    });
    // Pixels of earlier paints exist only on the device that drew them.
    m_incomplete = m_generation != 0 && m_generation != m_context->Generation();
    m_generation = m_context->Generation();
    m_painting = true;
}

void D3D11RenderTarget::EndPaint() {
    struct Finally {
        D3D11RenderTarget& target;
        ~Finally() {
            target.m_layers.clear();
            target.m_glyphs.reset();
            target.m_clips.Forget();
            target.m_painter.Forget();
            target.m_basic.Close();
            target.m_clips.Pool().Trim();
            target.m_rasterizer.Trim();
            target.m_pen.Trim();
            target.m_painting = false;
            target.m_broken = false;
        }
    } finally{*this};
    Run(false, [&] {
        m_context->Batch().Flush();
        m_basic.SendToCard(*m_context);
        m_surface->EndPaint(*m_context);
    });
}

IntRect D3D11RenderTarget::Visible(D3D11SubTarget& target, const IntRect& region) const noexcept {
    const IntRect visible = target.Clips().Within(Intersect(region, Intersect(target.Bounds(), m_area)));
    return target.CanBeDrawnInto() ? visible : IntRect{0, 0, 0, 0};
}

D3D11Painter::Call D3D11RenderTarget::CallFor(D3D11SubTarget& target, const GraphicsState& state,
                                              const IntRect& visible) noexcept {
    return {*m_context, target, state, m_clips.Pool(), visible, Intersect(target.Bounds(), m_area)};
}

D3D11Painter::Call D3D11RenderTarget::CallFor(const GraphicsState& state, const IntRect& visible,
                                              const IntRect& box) noexcept {
    D3D11Painter::Call call = CallFor(Current(), state, visible);
    const IntRect inside = Intersect(box, call.limit);
    if (visible.left > inside.left || visible.right < inside.right) {
        call.limit = Visible(m_area); // bands between edges are not clipped to columns
    }
    return call;
}

void D3D11RenderTarget::Paint(const GraphicsState& state, const Path& path, const Ink& ink, const ImageInk* mask) {
    Run(true, [&] {
        const Colors colors{ink, state.transform, mask};
        const auto paintAll = [&](const IntRect& pixels) {
            if (const IntRect visible = Visible(pixels); !IsEmpty(visible)) {
                m_painter.DrawAll(CallFor(Current(), state, visible), colors);
            }
        };
        switch (path.GetKind()) {
        case Path::Kind::Figure:
            if (IntRect pixels; state.strokeAdjustment && SnapFigure(path.Figure(), state.transform, m_area, pixels)) {
                paintAll(pixels);
                break;
            }
            [[fallthrough]];
        case Path::Kind::Shape:
            PaintShape(state, colors, m_shape.Of(path), state.strokeAdjustment);
            break;
        case Path::Kind::Outline:
            PaintOutline(state, colors, *path.Stored());
            break;
        case Path::Kind::Glyphs:
            path.Glyphs().ForEach(state.transform, [&](const Shape& outline, const Matrix& m) {
                const ArenaScope scope(m_arena); // a text may have many glyphs
                PaintOutline(state, {ink, m, mask}, outline);
            });
            break;
        case Path::Kind::Plane:
            paintAll(m_area);
            break;
        }
    });
}

void D3D11RenderTarget::PaintShape(const GraphicsState& state, const Colors& colors, const Shape& shape, bool snap) {
    const IntRect box = RoundOut(DeviceBox(shape, colors.transform, 0.0F));
    const IntRect visible = Visible(box);
    if (IsEmpty(visible)) {
        return;
    }
    m_painter.Draw(CallFor(state, visible, box), colors, [&](RasterizationSink& sink) {
        m_rasterizer.Begin(ToRect(m_area), visible, snap);
        FeedFill(shape, colors.transform, m_rasterizer);
        m_rasterizer.Finish(sink);
    });
}

void D3D11RenderTarget::PaintOutline(const GraphicsState& state, const Colors& colors, const Shape& outline) {
    if (m_glyphs == nullptr) {
        m_glyphs = GlyphCache::Take();
    }
    GlyphCoverage glyph;
    if (!m_glyphs->Place(outline, colors.transform, m_rasterizer, glyph)) {
        PaintShape(state, colors, outline, false);
        return;
    }
    const IntRect visible = Visible(glyph.Box());
    if (!IsEmpty(visible)) {
        m_painter.Draw(CallFor(Current(), state, visible), colors,
                       [&](RasterizationSink& sink) { glyph.Send(visible, m_arena, sink); });
    }
}

void D3D11RenderTarget::Stroke(const GraphicsState& state, const Path& path, const Ink& ink, float width,
                               const StrokeStyle& style) {
    Run(true, [&] {
        const Shape& shape = m_shape.Of(path);
        const IntRect box = StrokeBox(shape, state.transform, width, style);
        const IntRect visible = Visible(box);
        if (IsEmpty(visible)) {
            return;
        }
        m_painter.Draw(CallFor(state, visible, box), {ink, state.transform, nullptr}, [&](RasterizationSink& sink) {
            RasterizeStroke(m_rasterizer, shape, state.transform, style, width, state.strokeAdjustment, m_pen, m_area,
                            visible);
            m_rasterizer.Finish(sink);
        });
    });
}

void D3D11RenderTarget::Clip(const GraphicsState& state, const Path& path) {
    ClipStack& clips = Current().Clips();
    const Shape& shape = m_shape.Of(path);
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, state.transform, 0.0F)));
    clips.Set(m_clips.Make(m_rasterizer, path, shape, state.transform, m_area, visible, clips.Current(),
                           state.strokeAdjustment));
}

void D3D11RenderTarget::Clear(uint32_t argb) {
    Run(true, [&] {
        const IntRect visible = Visible(m_area);
        if (!IsEmpty(visible)) {
            m_painter.Clear(CallFor(Current(), kPlainState, visible),
                            PremultiplyPixel(Current().IsLayer() ? argb : argb | 0xFF000000U));
        }
    });
}

void D3D11RenderTarget::BeginLayer(const GraphicsState& state, const GXLayerDesc& desc) {
    const IntRect inside = Visible(LayerBox(desc.bounds, state.transform, m_area));
    const IntRect bounds = IsEmpty(inside) ? IntRect{0, 0, 0, 0} : inside;
    Run(true, [&] {
        auto layer = std::make_unique<D3D11SubTarget>();
        layer->OpenLayer(*m_context, Current(), state.blendMode, bounds, desc);
        m_layers.push_back(std::move(layer));
    });
}

void D3D11RenderTarget::EndLayer(const GraphicsState& around) {
    Run(false, [&] {
        if (!IsEmpty(m_layers.back()->Touched())) {
            DrawLayer(around);
        }
    });
    m_layers.pop_back(); // drawn, or lost with its device
}

void D3D11RenderTarget::DrawLayer(const GraphicsState& around) {
    D3D11SubTarget& layer = *m_layers.back();
    D3D11SubTarget& target = m_layers.size() < 2 ? m_basic : *m_layers[m_layers.size() - 2];
    around.CheckMasks();
    const IntRect visible = Visible(target, layer.Touched());
    if (!IsEmpty(visible)) {
        m_painter.DrawGroup(CallFor(target, around, visible), layer);
    }
}

void D3D11RenderTarget::Invert(const Matrix& transform, const BasicFigure& figure) {
    Run(true, [&] {
        const Inversion inversion(transform, figure, m_shape);
        const IntRect visible = Visible(inversion.Box());
        if (!IsEmpty(visible)) {
            m_painter.Invert(CallFor(Current(), kPlainState, visible),
                             [&](PixelInverter& inverter) { inversion.Send(inverter, m_rasterizer, m_area, visible); });
        }
    });
}

} // namespace Graphics
