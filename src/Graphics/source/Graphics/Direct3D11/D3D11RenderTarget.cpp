// SPDX-License-Identifier: MIT
#include "D3D11RenderTarget.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>

#include "../Bitmaps/Bitmap.h"
#include "../Bitmaps/PixelTransfer.h"
#include "../Exception.h"
#include "../Geometry/DeviceFeed.h"
#include "../Paint/Gradient.h"
#include "../Scan/DeviceFigures.h"
#include "../Software/SwInverter.h"
#include "../Software/SwOpacity.h"
#include "../Software/SwPixelMath.h"

namespace Graphics {
namespace {

/// Sends the pixels to be inverted as quadrilaterals.
class MeshInverter final : public PixelInverter {
public:
    MeshInverter(D3D11Mesh& mesh, const IntRect& bounds, const SwClip* clip) noexcept
        : PixelInverter(bounds, clip), m_mesh(mesh) {}

private:
    void Invert(int32_t y, int32_t x0, int32_t x1) override {
        m_mesh.AddRectangle(static_cast<float>(x0), static_cast<float>(y), static_cast<float>(x1),
                            static_cast<float>(y + 1), 1.0F);
    }

    D3D11Mesh& m_mesh;
};

const auto kWholeBox = [](const IntRect& r) {
    return [r](RasterizationSink& sink) { sink.Rectangle(r.left, r.top, r.right, r.bottom); };
};

} // namespace

D3D11RenderTarget::D3D11RenderTarget(std::shared_ptr<D3D11Context> context, std::unique_ptr<D3D11Surface> surface)
    : m_context(std::move(context)), m_surface(std::move(surface)), m_painter(m_arena) {}

D3D11RenderTarget::~D3D11RenderTarget() = default;

template <class Work> void D3D11RenderTarget::Run(bool again, Work&& work) {
    const ArenaScope scope(m_arena);
    for (bool first = true;; first = false) {
        try {
            m_context->Recover();
            if (IsPainting() && m_generation != m_context->Generation()) {
                FollowDevice();
            }
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
    m_painter.Forget();
    std::shared_ptr<D3D11Texture> color = m_surface->BeginPaint(*m_context);
    // A window that was resized meanwhile keeps this paint's size until the next one.
    if (color != nullptr) {
        m_area = Intersect(m_area, {0, 0, color->Width(), color->Height()});
    }
    m_basic.Restore(*m_context, std::move(color), nullptr);
    D3D11SubTarget* parent = &m_basic;
    for (const auto& layer : m_layers) {
        layer->Restore(*m_context, nullptr, parent);
        parent = layer.get();
    }
    m_generation = m_context->Generation();
    m_incomplete = true;
}

void D3D11RenderTarget::BeginPaint() {
    Run(true, [&] {
        m_context->Device().CheckRemoved();
        std::shared_ptr<D3D11Texture> color = m_surface->BeginPaint(*m_context);
        m_area = color != nullptr ? IntRect{0, 0, color->Width(), color->Height()} : IntRect{0, 0, 0, 0};
        m_basic.Open(std::move(color), m_area, Cached());
        m_generation = m_context->Generation();
    });
    StartPainting();
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
            target.StopPainting();
            target.m_incomplete = false;
        }
    } finally{*this};
    // A layer that cannot be closed is lost; those around it, and the bracket, are closed all the same.
    std::exception_ptr failure;
    Run(false, [&] {
        while (!m_layers.empty()) {
            try {
                CloseLayer();
            } catch (const Exception&) {
                failure = failure == nullptr ? std::current_exception() : failure;
            }
        }
        m_context->Batch().Flush();
        m_surface->EndPaint(*m_context);
    });
    if (m_incomplete && !m_asked) {
        m_surface->AskForRepaint();
    }
    m_asked = m_incomplete;
    if (failure != nullptr) {
        std::rethrow_exception(failure);
    }
}

IntRect D3D11RenderTarget::Visible(const IntRect& region) noexcept {
    D3D11SubTarget& target = Current();
    IntRect visible = Intersect(region, Intersect(target.Bounds(), m_area));
    if (target.State().clip) {
        visible = Intersect(visible, target.State().clip->Box());
    }
    return target.Color() != nullptr ? visible : IntRect{0, 0, 0, 0};
}

D3D11Painter::Call D3D11RenderTarget::CallFor(const IntRect& visible) noexcept {
    return {*m_context, Current(), m_clips.Pool(), visible, Visible(m_area)};
}

template <class MakePaint>
void D3D11RenderTarget::FillPath(const PathRef& path, bool snap, const D3D11ShapeMask* extra, MakePaint&& makePaint) {
    CheckMasks();
    IntRect pixels;
    if (snap && path.figure != nullptr && SnapFigure(m_rasterizer, *path.figure, State().transform, m_area, pixels)) {
        const IntRect visible = Visible(pixels);
        if (!IsEmpty(visible)) {
            m_painter.Draw(CallFor(visible), makePaint(visible), extra, kWholeBox(visible));
        }
        return;
    }
    const Matrix transform = State().transform;
    const Shape& shape = Resolve(path);
    if (shape.Empty()) {
        return;
    }
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, transform, 0.0F)));
    if (IsEmpty(visible)) {
        return;
    }
    m_painter.Draw(CallFor(visible), makePaint(visible), extra, [&](RasterizationSink& sink) {
        m_rasterizer.Begin(ToRect(m_area), visible, snap);
        FeedFill(shape, transform, m_rasterizer);
        m_rasterizer.Finish(sink);
    });
}

bool D3D11RenderTarget::FillGlyph(const Shape& shape, const Brush& brush) {
    CheckMasks();
    // Nearest multiple of 1/8 pixel. Beyond, and for NaN, a float does not tell eighths apart.
    constexpr float kDistant = 1048576.0F;
    constexpr auto kPhases = static_cast<float>(SwGlyphCache::kPhases);
    const Matrix& m = State().transform;
    if (shape.Empty() || !(std::fabs(m.m20) < kDistant && std::fabs(m.m21) < kDistant)) {
        return false;
    }
    const auto x = static_cast<int32_t>(std::floor(m.m20 * kPhases + 0.5F));
    const auto y = static_cast<int32_t>(std::floor(m.m21 * kPhases + 0.5F));
    if (m_glyphs == nullptr) {
        m_glyphs = SwGlyphCache::Take();
    }
    SwGlyph glyph;
    if (!m_glyphs->Find(shape, m, {x & 7, y & 7}, m_rasterizer, glyph)) {
        return false;
    }
    const IntPoint at{(x >> 3) + glyph.corner.x, (y >> 3) + glyph.corner.y};
    const IntRect visible = Visible({at.x, at.y, at.x + glyph.width, at.y + glyph.height});
    if (IsEmpty(visible)) {
        return true;
    }
    const auto width = static_cast<size_t>(visible.right - visible.left);
    const D3D11Paint paint = m_painter.Maker().FromBrush(*m_context, brush, m, visible);
    m_painter.Draw(CallFor(visible), paint, nullptr, [&](RasterizationSink& sink) {
        auto* row = m_arena.AllocArray<uint8_t>(width); // a sink may change what it is given
        for (int32_t line = visible.top; line < visible.bottom; ++line) {
            std::memcpy(row,
                        glyph.coverage + static_cast<size_t>(line - at.y) * glyph.strideBytes + (visible.left - at.x),
                        width);
            CoverageRun run{visible.left, visible.right, row, 0};
            sink.Row(line, {&run, 1});
        }
    });
    return true;
}

void D3D11RenderTarget::Fill(const PathRef& path, const Brush& brush, bool text) {
    Run(true, [&] {
        if (text && path.shape != nullptr && FillGlyph(**path.shape, brush)) {
            return;
        }
        FillPath(path, State().strokeAdjustment && !text, nullptr, [&](const IntRect& visible) {
            return m_painter.Maker().FromBrush(*m_context, brush, State().transform, visible);
        });
    });
}

void D3D11RenderTarget::Stroke(const PathRef& path, const Brush& brush, float width, const StrokeStyle& style) {
    Run(true, [&] {
        CheckMasks();
        const SwState& state = State();
        const Shape& shape = Resolve(path);
        const IntRect visible = Visible(StrokeBox(shape, state.transform, width, style));
        if (shape.Empty() || IsEmpty(visible)) {
            return;
        }
        const D3D11Paint paint = m_painter.Maker().FromBrush(*m_context, brush, state.transform, visible);
        m_painter.Draw(CallFor(visible), paint, nullptr, [&](RasterizationSink& sink) {
            m_rasterizer.Begin(ToRect(m_area), visible, state.strokeAdjustment);
            FeedStroke(shape, state.transform, style, width, state.strokeAdjustment, m_pen, ToRect(visible),
                       m_rasterizer);
            m_rasterizer.Finish(sink);
        });
    });
}

void D3D11RenderTarget::Clip(const PathRef& path) {
    SwState& state = State();
    const Shape& shape = Resolve(path);
    const IntRect visible = Visible(RoundOut(DeviceBox(shape, state.transform, 0.0F)));
    state.clip =
        m_clips.Make(m_rasterizer, path, shape, state.transform, m_area, visible, state.clip, state.strokeAdjustment);
}

void D3D11RenderTarget::DrawBitmap(const Bitmap& bitmap, const IntRect& source, const Rect& destination, float opacity,
                                   uint32_t interpolation) {
    const PixelView whole = bitmap.View();
    const IntRect part = Intersect(source, {0, 0, whole.width, whole.height});
    if (IsEmpty(part)) {
        return;
    }
    Run(true, [&] {
        D3D11Image image;
        image.view = PixelTransfer::Part(whole, part);
        image.derived = part == IntRect{0, 0, whole.width, whole.height} ? &bitmap.Derived() : nullptr;
        image.interpolation = interpolation;
        image.opacity = opacity;
        image.toDevice = Concat(PlaceImage(part, source, destination), State().transform);
        const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
        FillPath({nullptr, &figure}, State().strokeAdjustment, nullptr,
                 [&](const IntRect& visible) { return m_painter.Maker().FromImage(*m_context, image, visible); });
    });
}

void D3D11RenderTarget::FillMask(const Bitmap& mask, const Brush& brush, const Rect& destination,
                                 uint32_t interpolation) {
    Run(true, [&] {
        D3D11Image image;
        image.view = mask.View();
        image.derived = &mask.Derived();
        image.interpolation = interpolation;
        const IntRect whole{0, 0, image.view.width, image.view.height};
        image.toDevice = Concat(PlaceImage(whole, whole, destination), State().transform);
        image.asMask = true;
        const BasicFigure figure(BasicFigure::Kind::Rectangle, destination);
        D3D11ShapeMask shape;
        FillPath({nullptr, &figure}, State().strokeAdjustment, &shape, [&](const IntRect& visible) {
            shape.paint = m_painter.Maker().FromImage(*m_context, image, visible);
            return m_painter.Maker().FromBrush(*m_context, brush, State().transform, visible);
        });
    });
}

void D3D11RenderTarget::DrawGradient(std::shared_ptr<const Gradient> gradient, float opacity, const Matrix& m) {
    GradientBrush brush(std::move(gradient));
    brush.opacity = opacity;
    brush.transform = m;
    Run(true, [&] {
        CheckMasks();
        const IntRect visible = Visible(m_area);
        if (!IsEmpty(visible)) {
            m_painter.Draw(CallFor(visible), m_painter.Maker().FromBrush(*m_context, brush, State().transform, visible),
                           nullptr, kWholeBox(visible));
        }
    });
}

void D3D11RenderTarget::Clear(uint32_t argb) {
    Run(true, [&] {
        const IntRect visible = Visible(m_area);
        if (!IsEmpty(visible)) {
            D3D11Paint paint;
            paint.SetWord(PremultiplyPixel(argb) | (Current().IsLayer() ? 0U : 0xFF000000U));
            m_painter.Clear(CallFor(visible), paint.color);
        }
    });
}

void D3D11RenderTarget::BeginLayer(const GXLayerDesc& desc) {
    const IntRect inside = Visible(LayerBox(desc.bounds, State().transform, m_area));
    const IntRect bounds = IsEmpty(inside) ? IntRect{0, 0, 0, 0} : inside;
    Run(true, [&] {
        auto layer = std::make_unique<D3D11SubTarget>();
        layer->OpenLayer(*m_context, Current(), bounds, desc);
        m_layers.push_back(std::move(layer));
    });
}

void D3D11RenderTarget::EndLayer() {
    if (m_layers.empty()) {
        GX_RAISE("Graphics::D3D11RenderTarget::EndLayer", "No layer is open");
    }
    Run(false, [&] { CloseLayer(); });
}

void D3D11RenderTarget::CloseLayer() {
    const std::unique_ptr<D3D11SubTarget> layer = std::move(m_layers.back());
    m_layers.pop_back();
    CheckMasks();
    const IntRect visible = Visible(layer->Touched());
    if (layer->Color() == nullptr || IsEmpty(visible)) {
        return;
    }
    D3D11Paint paint;
    const float opacity = static_cast<float>(OpacityFactor(std::clamp(layer->Opacity(), 0.0F, 1.0F))) * (1.0F / 256.0F);
    std::fill_n(paint.color, 4, opacity);
    D3D11ShapeMask shape;
    if (layer->Shape() != nullptr) {
        paint.texture = layer->MakeResult(*m_context);
        shape.paint.texture = layer->Shape();
        shape.paint.map = layer->PlaneMap(*layer->Shape());
        // Red, green and blue are the shape, and their luminosity is it again.
        shape.type = GXMaskTypeLuminosity;
    } else {
        paint.texture = layer->Color();
    }
    paint.map = layer->PlaneMap(*paint.texture);
    m_painter.Draw(CallFor(visible), paint, layer->Shape() != nullptr ? &shape : nullptr, kWholeBox(visible));
}

template <class Send> void D3D11RenderTarget::Invert(const IntRect& visible, Send&& send) {
    if (IsEmpty(visible)) {
        return;
    }
    D3D11SubTarget& target = Current();
    target.Touch(visible);
    D3D11DrawState state;
    target.DescribePlane(target.Color(), D3D11Blend::Invert, state);
    state.scissor = Visible(m_area);
    D3D11Mesh& mesh = m_context->Batch().Begin(std::move(state), visible);
    mesh.SetColor(D3D11Paint().color);
    MeshInverter inverter(mesh, visible, target.State().clip.get());
    send(inverter);
}

void D3D11RenderTarget::InvertRect(const Rect& rect) {
    const BasicFigure figure(BasicFigure::Kind::Rectangle, rect);
    Run(true, [&] {
        const Shape& shape = Resolve({nullptr, &figure});
        const Matrix transform = State().transform;
        const IntRect visible = Visible(RoundOut(DeviceBox(shape, transform, 0.0F)));
        Invert(visible, [&](MeshInverter& inverter) {
            m_rasterizer.Begin(ToRect(m_area), visible, true);
            FeedFill(shape, transform, m_rasterizer);
            m_rasterizer.Finish(inverter);
        });
    });
}

void D3D11RenderTarget::InvertLine(const Point& from, const Point& to) {
    Run(true, [&] {
        const Matrix transform = State().transform;
        Invert(Visible(m_area),
               [&](MeshInverter& inverter) { inverter.Line(Map(transform, from), Map(transform, to)); });
    });
}

} // namespace Graphics
