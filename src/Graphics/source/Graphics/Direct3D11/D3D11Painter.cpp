// SPDX-License-Identifier: MIT
#include "D3D11Painter.h"

#include <algorithm>

#include "../Pixels/Opacity.h"
#include "../Software/SwClear.h"
#include "../Software/SwPlaneColorSource.h"
#include "../Sources/SwBitmapColorSource.h"

namespace Graphics {
namespace {

/// Fragments of opacity and of shape masks, by mask type.
constexpr D3D11Fragment kOpacityMasks[] = {D3D11Fragment::BOAlpha, D3D11Fragment::BOIAlpha, D3D11Fragment::BOLum,
                                           D3D11Fragment::BOILum};
constexpr D3D11Fragment kShapeMasks[] = {D3D11Fragment::BSAlpha, D3D11Fragment::BSIAlpha, D3D11Fragment::BSLum,
                                         D3D11Fragment::BSILum};

/// The mask value of a constant colour.
[[nodiscard]] float MaskValue(const float (&c)[4], uint32_t type) noexcept {
    const bool luminosity = type == GXMaskTypeLuminosity || type == GXMaskTypeInverseLuminosity;
    const bool inverse = type == GXMaskTypeInverseAlpha || type == GXMaskTypeInverseLuminosity;
    const float v = luminosity ? (77.0F * c[0] + 151.0F * c[1] + 28.0F * c[2]) / 256.0F : c[3];
    return inverse ? 1.0F - v : v;
}

[[nodiscard]] bool IsOpaque(SwColorSource& source) noexcept {
    uint32_t word = 0;
    return source.IsSolid(word) ? word >> 24 == 255 : source.IsOpaque();
}

[[nodiscard]] auto Whole(const IntRect& r) noexcept {
    return [r](RasterizationSink& sink) { sink.Rectangle(r.left, r.top, r.right, r.bottom); };
}

[[nodiscard]] bool IsWhite(const float (&c)[4]) noexcept {
    return std::all_of(c, c + 4, [](float v) { return v == 1.0F; });
}

} // namespace

void D3D11Painter::AddMask(D3D11DrawState& state, const D3D11Paint& paint, uint32_t type, bool ofShape) const {
    if (paint.texture == nullptr) {
        static_cast<void>(state.key.Add(ofShape ? D3D11Fragment::SS : D3D11Fragment::SO));
        state.pixelConstants.AddScalar(MaskValue(paint.color, type));
        return;
    }
    static_cast<void>(state.key.Add(ofShape ? kShapeMasks[type] : kOpacityMasks[type]));
    state.vertexConstants.AddTransform(paint.map);
    state.AddInput(paint.texture, paint.sampling);
}

void D3D11Painter::AddPaint(const Call& call, const D3D11Paint& paint, const D3D11ShapeMask* extra,
                            D3D11DrawState& state) {
    if (paint.texture != nullptr) {
        static_cast<void>(state.key.Add(D3D11Fragment::BCP));
        state.vertexConstants.AddTransform(paint.map);
        state.AddInput(paint.texture, paint.sampling);
    }
    const auto add = [&](const SoftMask& mask, bool ofShape) {
        if (!mask.IsSet()) {
            return;
        }
        const Ink ink = InkOf(*mask.brush);
        D3D11Paint values = m_maker.From(call.context, ink, mask.transform, call.visible);
        if (values.texture != nullptr && !IsWhite(values.color)) {
            // The opacity of the mask's brush applies before colours are turned into mask values.
            values = m_maker.FromSource(call.context, m_maker.Source(ink, mask.transform, call.visible), call.visible);
        }
        AddMask(state, values, mask.type, ofShape);
    };
    add(call.state.opacityMask, false);
    add(call.state.shapeMask, true);
    if (extra != nullptr) {
        AddMask(state, extra->paint, extra->type, true);
    }
}

void D3D11Painter::AddCoverage(D3D11DrawState& state, const D3D11SoftwareTextures::Image& image) const {
    static_cast<void>(state.key.Add(D3D11Fragment::BSAlpha));
    state.vertexConstants.AddTransform(image.map);
    state.AddInput(image.texture, {});
}

void D3D11Painter::AddClip(const Call& call, D3D11DrawState& state) {
    const ClipRef& clip = call.Clip();
    if (!IsMasked(clip.get())) {
        return;
    }
    const auto found = std::find_if(m_clipImages.begin(), m_clipImages.end(),
                                    [&](const ClipImage& c) { return c.clip.get() == clip.get(); });
    if (found != m_clipImages.end()) {
        std::rotate(found, found + 1, m_clipImages.end());
    } else {
        constexpr size_t kKept = 8;
        m_clipImages.push_back({clip, m_maker.Textures().Coverage(call.context, *clip.get())});
        if (m_clipImages.size() > kKept) {
            m_clipImages.erase(m_clipImages.begin());
        }
    }
    AddCoverage(state, m_clipImages.back().image);
}

D3D11Mesh& D3D11Painter::Begin(const Call& call, const float (&color)[4], D3D11DrawState&& state, const IntRect& box) {
    call.target.BeginOnCard(call.context, box);
    state.scissor = call.limit;
    D3D11Mesh& mesh = call.context.Batch().Begin(std::move(state), box);
    mesh.SetColor(color);
    return mesh;
}

bool D3D11Painter::IsSmallClip(const Call& call) noexcept {
    constexpr int32_t kMostQuads = 512; // 48 KB
    const ClipRegion* clip = call.Clip().get();
    const IntRect& r = call.visible;
    if (!IsMasked(clip) || r.bottom - r.top > kMostQuads) {
        return false;
    }
    int32_t quads = 0;
    for (int32_t y = r.top; y < r.bottom && quads <= kMostQuads; ++y) {
        const ClipRow& row = clip->Row(y);
        const auto width = [&](int32_t from, int32_t to) {
            return std::max(0, std::min(to, r.right) - std::max(from, r.left));
        };
        quads += 1 + width(row.begin, row.end) - width(row.fullBegin, row.fullEnd);
    }
    return quads <= kMostQuads;
}

bool D3D11Painter::PrepareCard(const Call& call, const D3D11Paint& paint, const D3D11ShapeMask* extra,
                               CardRoute& route) {
    D3D11DrawState& state = route.state;
    call.target.Describe(call.context, call.state.blendMode, state);
    AddPaint(call, paint, extra, state);
    std::copy_n(paint.color, 4, route.color);
    route.gathers = call.target.CoverageIsShape() || IsSmallClip(call);
    if (!route.gathers) {
        AddClip(call, state);
    } else if (call.target.CoverageIsShape()) {
        D3D11ShaderKey covered = state.key; // it is not yet known whether coverage will be sent
        static_cast<void>(covered.Add(D3D11Fragment::BSAlpha));
        if (!call.context.Shaders().Has(covered)) {
            return false;
        }
    }
    return call.context.Shaders().Has(state.key);
}

void D3D11Painter::SendGathered(const Call& call, const ClipRef& covered, CardRoute& route) {
    const IntRect& box = covered->Box();
    if (IsEmpty(box)) {
        return;
    }
    const bool asTexture = call.target.CoverageIsShape();
    if (asTexture && covered->HasMask()) {
        AddCoverage(route.state, m_maker.Textures().Coverage(call.context, *covered.get()));
    }
    const IntRect& area = asTexture ? box : call.visible;
    D3D11MeshSink sink(Begin(call, route.color, std::move(route.state), area), area);
    if (asTexture || !covered->HasMask()) {
        sink.Rectangle(box.left, box.top, box.right, box.bottom);
        return;
    }
    auto* bytes = m_arena.AllocArray<uint8_t>(static_cast<size_t>(box.right - box.left)); // copied, since a sink may
                                                                                          // change them
    for (int32_t y = box.top; y < box.bottom; ++y) {
        const int32_t begin = std::max(covered->Row(y).begin, box.left);
        const int32_t end = std::min(covered->Row(y).end, box.right);
        if (begin < end) {
            covered->CopyRow(y, begin, end, bytes);
            CoverageRun run{begin, end, bytes, 0};
            sink.Row(y, {&run, 1});
        }
    }
}

void D3D11Painter::ClearPlane(const Call& call, const std::shared_ptr<D3D11Texture>& plane, D3D11Blend blend,
                              const D3D11Paint& paint) {
    D3D11DrawState state;
    call.target.DescribePlane(plane, blend, state);
    if (paint.texture != nullptr) {
        static_cast<void>(state.key.Add(D3D11Fragment::BCP));
        state.vertexConstants.AddTransform(paint.map);
        state.AddInput(paint.texture, paint.sampling);
    }
    AddClip(call, state);
    const IntRect& r = call.visible;
    D3D11MeshSink(Begin(call, paint.color, std::move(state), r), r).Rectangle(r.left, r.top, r.right, r.bottom);
}

D3D11Painter::Route D3D11Painter::RouteOf(const Call& call, const Colors& colors) {
    using Way = D3D11SubTarget::Way;
    const Way way = call.target.WayOf(call.context, call.state.blendMode, call.visible);
    bool inSoftware = way != Way::Card;
    SwColorSource* source = nullptr;
    if ((way == Way::CardIfOpaque || way == Way::CardIfKnown) && !call.state.opacityMask.IsSet()) {
        source = &m_maker.Source(colors.ink, colors.transform, call.visible);
        uint32_t word = 0;
        inSoftware = !IsOpaque(*source) && (way == Way::CardIfOpaque || !source->IsSolid(word));
    }
    if (!inSoftware) {
        const D3D11Paint paint = m_maker.From(call.context, colors.ink, colors.transform, call.visible);
        D3D11ShapeMask mask;
        if (colors.mask != nullptr) {
            mask.paint = m_maker.FromImage(call.context, colors.mask->Place(colors.transform, true), call.visible);
        }
        Route route{std::in_place_type<CardRoute>};
        if (PrepareCard(call, paint, colors.mask != nullptr ? &mask : nullptr, std::get<CardRoute>(route))) {
            return route;
        }
    }
    SoftwareRoute route{source, {}, colors.mask != nullptr};
    if (source == nullptr) {
        route.source = &m_maker.Source(colors.ink, colors.transform, call.visible);
    }
    if (route.hasMask) {
        route.mask.source = CreateBitmapSource(m_arena, colors.mask->Place(colors.transform, true));
        route.mask.type = GXMaskTypeAlpha;
    }
    return route;
}

void D3D11Painter::DrawAll(const Call& call, const Colors& colors) {
    const IntRect& r = call.visible;
    Draw(call, colors, Whole(r));
    // Gradients are rarely opaque, and testing them is expensive.
    if (call.target.IsLayer() && colors.mask == nullptr && !std::holds_alternative<GradientInk>(colors.ink) &&
        !call.state.HasMasks() && !IsMasked(call.Clip().get()) &&
        IsOpaque(m_maker.Source(colors.ink, colors.transform, r))) {
        call.target.NoteOpaque(r, true);
    }
}

void D3D11Painter::DrawGroup(const Call& call, D3D11SubTarget& group) {
    const bool onCard =
        call.target.WayOf(call.context, call.state.blendMode, call.visible) == D3D11SubTarget::Way::Card;
    if (!onCard || !DrawGroupOnCard(call, group)) {
        DrawGroupInSoftware(call, group);
    }
}

bool D3D11Painter::DrawGroupOnCard(const Call& call, D3D11SubTarget& group) {
    group.SendToCard(call.context);
    D3D11Paint paint;
    const float opacity = static_cast<float>(OpacityFactor(std::clamp(group.Opacity(), 0.0F, 1.0F))) * (1.0F / 256.0F);
    std::fill_n(paint.color, 4, opacity);
    D3D11ShapeMask shape;
    if (group.IsShaped()) {
        paint.texture = group.MakeResult(call.context);
        if (paint.texture == nullptr) {
            return false;
        }
        shape.paint.texture = group.Shape();
        shape.paint.map = group.PlaneMap(*group.Shape());
        // Red, green and blue all hold the shape, so their luminosity equals it.
        shape.type = GXMaskTypeLuminosity;
    } else {
        paint.texture = group.Color();
    }
    paint.map = group.PlaneMap(*paint.texture);
    CardRoute route{};
    if (!PrepareCard(call, paint, group.IsShaped() ? &shape : nullptr, route)) {
        return false;
    }
    DrawOnCard(call, route, Whole(call.visible));
    return true;
}

void D3D11Painter::DrawGroupInSoftware(const Call& call, D3D11SubTarget& group) {
    const SwTargetPlanes result = group.MakeResultInSoftware(call.context, call.visible);
    SwMaskInput shape;
    shape.plane = result.shape;
    shape.planeStride = result.planeStride;
    shape.planeOrigin = result.origin;
    SwPlaneColorSource source(result, group.Opacity());
    DrawInSoftware(call, source, group.IsShaped() ? &shape : nullptr, Whole(call.visible));
}

D3D11Mesh& D3D11Painter::BeginInversion(const Call& call) {
    call.target.MakePlanes(call.context);
    D3D11DrawState state;
    call.target.DescribePlane(call.target.Color(), D3D11Blend::Invert, state);
    return Begin(call, D3D11Paint().color, std::move(state), call.visible);
}

void D3D11Painter::Clear(const Call& call, uint32_t premultiplied) {
    D3D11SubTarget& target = call.target;
    const ClipRegion* clip = call.Clip().get();
    if (target.WayOf(call.context, GXBlendModeNormal, call.visible) == D3D11SubTarget::Way::Software ||
        !HasShadersOfClear(call)) {
        ClearPlanes(ActiveKernels(), target.BeginInSoftware(call.context, call.visible), call.visible, clip,
                    premultiplied);
    } else {
        D3D11Paint paint;
        paint.SetWord(premultiplied);
        ClearOnCard(call, paint.color);
    }
    target.NoteOpaque(call.visible, premultiplied >> 24 == 255 && !IsMasked(clip));
}

/// Without a clip only a colour and a texture are needed, whose shaders every context has.
bool D3D11Painter::HasShadersOfClear(const Call& call) {
    if (!IsMasked(call.Clip().get())) {
        return true;
    }
    const auto has = [&](std::initializer_list<D3D11Fragment> fragments) {
        D3D11ShaderKey key;
        for (const D3D11Fragment f : fragments) {
            static_cast<void>(key.Add(f));
        }
        return call.context.Shaders().Has(key);
    };
    return has({D3D11Fragment::T2D, D3D11Fragment::BSAlpha}) &&
           (!call.target.IsLayer() || has({D3D11Fragment::T2D, D3D11Fragment::BCP, D3D11Fragment::BSAlpha}));
}

void D3D11Painter::ClearOnCard(const Call& call, const float (&color)[4]) {
    D3D11SubTarget& target = call.target;
    target.MakePlanes(call.context);
    D3D11Paint paint;
    const ClipRef& clip = call.Clip();
    const bool masked = IsMasked(clip.get());
    // Replaced entirely; or scaled by the complement of the clip's coverage, then added in proportion to it.
    const auto replace = [&](const std::shared_ptr<D3D11Texture>& plane, const float(&value)[4]) {
        std::fill_n(paint.color, 4, 1.0F);
        if (masked) {
            ClearPlane(call, plane, D3D11Blend::Remove, paint);
        }
        std::copy_n(value, 4, paint.color);
        ClearPlane(call, plane, masked ? D3D11Blend::Add : D3D11Blend::Replace, paint);
    };
    replace(target.Color(), color);
    if (target.Initial() != nullptr && color[3] < 1.0F) { // the group's colour is composited over its backdrop
        std::fill_n(paint.color, 4, 1.0F - color[3]);
        paint.texture = target.Initial();
        paint.map = target.PlaneMap(*target.Initial());
        ClearPlane(call, target.Color(), D3D11Blend::Add, paint);
        paint.texture.reset();
    }
    if (target.Shape() != nullptr) {
        replace(target.Shape(), {1.0F, 1.0F, 1.0F, color[3]});
    }
}

} // namespace Graphics
