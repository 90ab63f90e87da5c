// SPDX-License-Identifier: MIT
#include "D3D11SubTarget.h"

#include <algorithm>

#include "D3D11Half.h"
#include "Shaders/D3D11CardModes.h"

namespace Graphics {
namespace {

constexpr DXGI_FORMAT kPlaneFormat = DXGI_FORMAT_R16G16B16A16_FLOAT;
const float kTransparent[4] = {0.0F, 0.0F, 0.0F, D3D11Half::ToFloat(D3D11Half::kAlmostNothing)};
constexpr float kNoShape[4] = {0.0F, 0.0F, 0.0F, 0.0F};
constexpr float kWhite[4] = {1.0F, 1.0F, 1.0F, 1.0F};

[[nodiscard]] bool IsInside(const IntRect& r, const IntRect& outer) noexcept {
    return r.left >= outer.left && r.top >= outer.top && r.right <= outer.right && r.bottom <= outer.bottom;
}

[[nodiscard]] int64_t Area(const IntRect& r) noexcept {
    return IsEmpty(r) ? 0 : (int64_t{r.right} - r.left) * (int64_t{r.bottom} - r.top);
}

void AddRectangle(D3D11Mesh& mesh, const IntRect& r) {
    mesh.SetColor(kWhite);
    mesh.AddRectangle(static_cast<float>(r.left), static_cast<float>(r.top), static_cast<float>(r.right),
                      static_cast<float>(r.bottom), 1.0F);
}

} // namespace

void D3D11SubTarget::Open(std::shared_ptr<D3D11Texture> color, const IntRect& bounds) {
    m_color = std::move(color);
    m_bounds = bounds;
    m_clips.Clear();
    m_isLayer = false;
    OpenFallback();
}

void D3D11SubTarget::OpenLayer(const D3D11Context& context, D3D11SubTarget& parent, uint32_t blendMode,
                               const IntRect& bounds, const GXLayerDesc& desc) {
    m_parent = &parent;
    m_isLayer = true;
    m_isolated = desc.isolated != 0;
    m_knockout = desc.knockout != 0;
    m_exact = m_knockout || parent.m_exact;
    // Valid for the group's lifetime, since nothing is drawn into the parent meanwhile.
    m_inSoftware = parent.m_inSoftware || parent.WayOf(context, blendMode, bounds) != Way::Card;
    m_shaped = m_exact || !m_isolated || m_inSoftware;
    m_opacity = desc.opacity;
    m_bounds = bounds;
    m_clips.Clear();
    OpenFallback();
}

void D3D11SubTarget::OpenFallback() noexcept {
    using Kind = D3D11SwFallbackSurface::Kind;
    m_below = !m_isLayer || m_isolated ? nullptr : m_parent->Below();
    m_fallback.Open(!m_isLayer ? Kind::Surface : m_shaped ? Kind::Shaped : Kind::Plain, m_bounds, m_knockout);
    m_touched = {0, 0, 0, 0};
    m_initialOpaque = {0, 0, 0, 0};
    if (!m_isLayer) {
        m_initialOpaque = m_bounds;
    } else if (!m_isolated) {
        m_initialOpaque = m_parent->OpaqueBelow();
    }
    m_opaque = m_initialOpaque;
}

void D3D11SubTarget::Restore(std::shared_ptr<D3D11Texture> color) {
    ClosePlanes();
    m_color = std::move(color);
    OpenFallback();
}

D3D11SubTarget* D3D11SubTarget::Below() noexcept {
    return m_isLayer && (m_knockout || IsEmpty(m_touched)) ? m_below : this;
}

bool D3D11SubTarget::LacksPlanes() const noexcept { return m_color == nullptr && m_isLayer && !IsEmpty(m_bounds); }

void D3D11SubTarget::MakePlanes(D3D11Context& context) {
    if (!LacksPlanes()) {
        return;
    }
    // Walks down to the first group whose backdrop is on the GPU, then up again.
    m_above = nullptr;
    D3D11SubTarget* lowest = this;
    while (lowest->m_below != nullptr && lowest->m_below->LacksPlanes()) {
        lowest->m_below->m_above = lowest;
        lowest = lowest->m_below;
    }
    for (; lowest != nullptr; lowest = lowest->m_above) {
        lowest->MakeOwnPlanes(context);
    }
}

void D3D11SubTarget::MakeOwnPlanes(D3D11Context& context) {
    const int32_t width = m_bounds.right - m_bounds.left;
    const int32_t height = m_bounds.bottom - m_bounds.top;
    const auto take = [&](const float(&color)[4]) {
        auto plane = context.Pool().Take(width, height, kPlaneFormat, true);
        context.Device().ColorFill(*plane, color);
        return plane;
    };
    auto color = take(kTransparent);
    if (!m_shaped) {
        m_color = std::move(color);
        return;
    }
    auto shape = take(kNoShape);
    std::shared_ptr<D3D11Texture> initial;
    if (!m_isolated) {
        initial = take(kTransparent);
        if (m_below != nullptr) {
            m_below->SendUnsent(context);
        }
        if (m_below != nullptr && m_below->m_color != nullptr) {
            const std::shared_ptr<D3D11Texture>& below = m_below->m_color;
            D3D11DrawState state;
            DescribePlane(initial, D3D11Blend::Replace, state);
            state.scissor = m_bounds;
            static_cast<void>(state.key.Add(D3D11Fragment::BCP));
            state.vertexConstants.AddTransform(m_below->PlaneMap(*below));
            state.AddInput(below, {});
            AddRectangle(context.Batch().Begin(std::move(state), m_bounds), m_bounds);
            context.Batch().Flush();
            context.Device().Copy(*color, *initial, {0, 0, width, height});
        }
    }
    // All planes or none: after a failure everything is created again.
    m_color = std::move(color);
    m_shape = std::move(shape);
    m_initial = std::move(initial);
}

void D3D11SubTarget::Close() noexcept {
    m_clips.Clear();
    m_fallback.Close();
    ClosePlanes();
}

void D3D11SubTarget::ClosePlanes() noexcept {
    m_color.reset();
    m_shape.reset();
    m_initial.reset();
    m_colorCopy.reset();
    m_shapeCopy.reset();
}

void D3D11SubTarget::Touch(const IntRect& box) noexcept {
    const IntRect t = m_touched;
    m_touched = IsEmpty(t) ? box
                           : IntRect{std::min(t.left, box.left), std::min(t.top, box.top), std::max(t.right, box.right),
                                     std::max(t.bottom, box.bottom)};
}

void D3D11SubTarget::NoteOpaque(const IntRect& box, bool opaque) noexcept {
    if (opaque) {
        if (Area(box) > Area(m_opaque)) {
            m_opaque = box;
        }
    } else if (m_isLayer && !IsEmpty(Intersect(box, m_opaque))) {
        m_opaque = {0, 0, 0, 0};
    }
}

D3D11SubTarget::Way D3D11SubTarget::WayOf(const D3D11Context& context, uint32_t blendMode, const IntRect& box) const {
    if (context.DrawsAll()) {
        return Way::Card;
    }
    if (m_inSoftware || context.Readback().IsExhausted() || !CardBlendsAsSoftware(blendMode) || m_fallback.Holds(box)) {
        return Way::Software;
    }
    // Pixels with alpha knock out. Software has byte alpha; the GPU has floats, so alpha below one level knocks out
    // too.
    const Way mixed = m_knockout ? Way::CardIfKnown : Way::Card;
    if (!m_isLayer || IsInside(box, OpaqueBelow())) {
        return mixed;
    }
    // Over pixels that are not opaque the software multiplies by the source's alpha twice, and the GPU's formula for
    // knockout groups assumes an opaque backdrop.
    if (m_knockout && !m_isolated) {
        return Way::Software;
    }
    return blendMode == GXBlendModeNormal ? mixed : Way::CardIfOpaque;
}

void D3D11SubTarget::BeginOnCard(D3D11Context& context, const IntRect& box) {
    MakePlanes(context);
    if (m_fallback.HasUnsent(box)) {
        m_fallback.Send(context, *m_color, m_shape.get());
    }
    m_fallback.DrawnByCard(box);
    Touch(box);
}

void D3D11SubTarget::SendToCard(D3D11Context& context) {
    MakePlanes(context);
    SendUnsent(context);
}

void D3D11SubTarget::SendUnsent(D3D11Context& context) {
    if (m_fallback.HasUnsent(m_bounds)) {
        m_fallback.Send(context, *m_color, m_shape.get());
    }
}

SwTargetPlanes D3D11SubTarget::ReadInSoftware(D3D11Context& context, const IntRect& box) {
    // Walks down to the first group with these pixels in memory, then up again. Only the colour of a group is read from
    // above, so a group with valid pixels needs nothing from below.
    m_above = nullptr;
    D3D11SubTarget* lowest = this;
    while (lowest->m_below != nullptr && (lowest == this || !lowest->m_fallback.HasValues(box))) {
        lowest->m_below->m_above = lowest;
        lowest = lowest->m_below;
    }
    SwTargetPlanes planes;
    for (; lowest != nullptr; lowest = lowest->m_above) {
        planes = lowest->m_fallback.Read(context, lowest->m_color.get(), lowest->m_shape.get(), planes, box);
    }
    return planes;
}

SwTargetPlanes D3D11SubTarget::BeginInSoftware(D3D11Context& context, const IntRect& box) {
    const SwTargetPlanes planes = ReadInSoftware(context, box);
    ++context.Device().Counters().fallbackDraws;
    m_fallback.Drawn(box);
    Touch(box);
    return planes;
}

Matrix D3D11SubTarget::PlaneMap(const D3D11Texture& plane) const noexcept {
    const float x = 1.0F / static_cast<float>(plane.Width());
    const float y = 1.0F / static_cast<float>(plane.Height());
    return {x, 0.0F, 0.0F, y, static_cast<float>(-m_bounds.left) * x, static_cast<float>(-m_bounds.top) * y};
}

void D3D11SubTarget::DescribePlane(const std::shared_ptr<D3D11Texture>& plane, D3D11Blend blend,
                                   D3D11DrawState& state) const {
    state.color = plane;
    state.blend = blend;
    state.origin = {m_bounds.left, m_bounds.top};
    static_cast<void>(state.key.Add(D3D11Fragment::T2D));
    const Matrix map = PlaneMap(*plane);
    // From [0, 1], y down, to [-1, 1], y up.
    state.vertexConstants.AddTransform(
        {map.m00 * 2.0F, 0.0F, 0.0F, map.m11 * -2.0F, map.m20 * 2.0F - 1.0F, 1.0F - map.m21 * 2.0F});
}

void D3D11SubTarget::Describe(D3D11Context& context, uint32_t blendMode, D3D11DrawState& state) {
    MakePlanes(context);
    D3D11Fragment composition = D3D11Fragment::BasicFastComposition;
    D3D11Blend blend = D3D11Blend::Over;
    if (m_shaped || blendMode != GXBlendModeNormal) {
        blend = D3D11Blend::Replace;
        composition = D3D11Fragment::BasicComposition;
        const auto copyOf = [&](const std::shared_ptr<D3D11Texture>& plane, std::shared_ptr<D3D11Texture>& copy) {
            if (copy == nullptr) {
                copy = context.Pool().Take(m_bounds.right - m_bounds.left, m_bounds.bottom - m_bounds.top,
                                           plane->Format(), false);
            }
            return copy;
        };
        state.colorCopy = copyOf(m_color, m_colorCopy);
        if (m_shaped) {
            state.shapeCopy = copyOf(m_shape, m_shapeCopy);
            composition = m_knockout ? D3D11Fragment::KnockoutLayerComposition : D3D11Fragment::LayerComposition;
            if (m_isolated) {
                composition = m_knockout ? D3D11Fragment::IsolatedKnockoutLayerComposition
                                         : D3D11Fragment::IsolatedLayerComposition;
            } else {
                state.vertexConstants.AddTransform(PlaneMap(*m_initial));
                state.AddInput(m_initial, {});
            }
        }
        state.vertexConstants.AddTransform(PlaneMap(*state.colorCopy));
        state.AddInput(state.colorCopy, {});
        if (m_shaped) {
            // Sampled at the colour's coordinates, since both copies have the same size.
            state.AddInput(state.shapeCopy, {});
            state.shape = m_shape;
        }
    }
    state.key.SetComposition(composition, blendMode);
    DescribePlane(m_color, blend, state);
}

std::shared_ptr<D3D11Texture> D3D11SubTarget::MakeResult(D3D11Context& context) {
    auto result =
        context.Pool().Take(m_bounds.right - m_bounds.left, m_bounds.bottom - m_bounds.top, kPlaneFormat, true);
    D3D11DrawState state;
    state.key.SetComposition(
        m_isolated ? D3D11Fragment::IsolatedLayerResultComposition : D3D11Fragment::LayerResultComposition, 0);
    if (!m_isolated) {
        state.vertexConstants.AddTransform(PlaneMap(*m_initial));
        state.AddInput(m_initial, {});
    }
    state.vertexConstants.AddTransform(PlaneMap(*m_color));
    state.AddInput(m_color, {});
    state.AddInput(m_shape, {});
    DescribePlane(result, D3D11Blend::Replace, state);
    if (!context.Shaders().Has(state.key)) {
        return nullptr;
    }
    state.scissor = m_bounds;
    AddRectangle(context.Batch().Begin(std::move(state), m_touched), m_touched);
    return result;
}

SwTargetPlanes D3D11SubTarget::MakeResultInSoftware(D3D11Context& context, const IntRect& box) {
    const SwTargetPlanes planes = ReadInSoftware(context, box);
    const ptrdiff_t x = box.left - m_bounds.left;
    for (int32_t y = box.top; y < box.bottom; ++y) {
        const ptrdiff_t row = y - m_bounds.top;
        const ptrdiff_t offset = row * planes.planeStride + x;
        const uint8_t* backdrop = planes.backdrop == nullptr ? nullptr : planes.backdrop + row * planes.backdropStride;
        ActiveKernels().groupResult(reinterpret_cast<uint32_t*>(planes.color + row * planes.colorStride) + x,
                                    planes.alpha + offset, planes.shape + offset,
                                    backdrop == nullptr ? nullptr : reinterpret_cast<const uint32_t*>(backdrop) + x,
                                    static_cast<size_t>(box.right - box.left));
    }
    return planes;
}

} // namespace Graphics
