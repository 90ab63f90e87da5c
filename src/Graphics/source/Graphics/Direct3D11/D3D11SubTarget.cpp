// SPDX-License-Identifier: MIT
#include "D3D11SubTarget.h"

#include <algorithm>

#include "../Exception.h"

namespace Graphics {
namespace {

constexpr DXGI_FORMAT kPlaneFormat = DXGI_FORMAT_R16G16B16A16_FLOAT;
/// The smallest normal half float: opaque black divided by it is still black, and it never reaches eight bits.
constexpr float kAlmostNothing = 1.0F / 16384.0F;
constexpr float kTransparent[4] = {0.0F, 0.0F, 0.0F, kAlmostNothing};
constexpr float kNoShape[4] = {0.0F, 0.0F, 0.0F, 0.0F};
constexpr float kWhite[4] = {1.0F, 1.0F, 1.0F, 1.0F};

void AddRectangle(D3D11Mesh& mesh, const IntRect& r) {
    mesh.SetColor(kWhite);
    mesh.AddRectangle(static_cast<float>(r.left), static_cast<float>(r.top), static_cast<float>(r.right),
                      static_cast<float>(r.bottom), 1.0F);
}

} // namespace

void D3D11SubTarget::Open(std::shared_ptr<D3D11Texture> color, const IntRect& bounds, const SwState& state) {
    m_color = std::move(color);
    m_bounds = bounds;
    m_states.clear();
    m_states.push_back(state);
    m_isLayer = false;
}

void D3D11SubTarget::OpenLayer(D3D11Context& context, D3D11SubTarget& parent, const IntRect& bounds,
                               const GXLayerDesc& desc) {
    m_isLayer = true;
    m_isolated = desc.isolated != 0;
    m_knockout = desc.knockout != 0;
    m_exact = m_knockout || parent.m_exact;
    m_shaped = m_exact || !m_isolated;
    m_opacity = desc.opacity;
    m_bounds = bounds;
    SwState state;
    state.transform = parent.State().transform;
    state.strokeAdjustment = parent.State().strokeAdjustment;
    m_states.clear();
    m_states.push_back(state);
    MakePlanes(context, parent);
}

void D3D11SubTarget::Restore(D3D11Context& context, std::shared_ptr<D3D11Texture> color, D3D11SubTarget* parent) {
    m_colorCopy.reset();
    m_shapeCopy.reset();
    if (parent == nullptr) {
        m_color = std::move(color);
    } else {
        MakePlanes(context, *parent);
    }
}

void D3D11SubTarget::MakePlanes(D3D11Context& context, D3D11SubTarget& parent) {
    m_touched = {0, 0, 0, 0};
    m_color.reset();
    m_shape.reset();
    m_initial.reset();
    if (IsEmpty(m_bounds)) {
        return;
    }
    const int32_t width = m_bounds.right - m_bounds.left;
    const int32_t height = m_bounds.bottom - m_bounds.top;
    const auto take = [&](const float(&color)[4]) {
        auto plane = context.Pool().Take(width, height, kPlaneFormat, true);
        context.Device().ColorFill(*plane, color);
        return plane;
    };
    m_color = take(kTransparent);
    if (!m_shaped) {
        return;
    }
    m_shape = take(kNoShape);
    if (m_isolated) {
        return;
    }
    m_initial = take(kTransparent);
    // Elements of a knockout group see the group's own initial backdrop, not each other.
    const std::shared_ptr<D3D11Texture>& below = parent.m_knockout ? parent.m_initial : parent.m_color;
    if (below == nullptr) {
        return;
    }
    D3D11DrawState state;
    DescribePlane(m_initial, D3D11Blend::Replace, state);
    state.scissor = m_bounds;
    static_cast<void>(state.key.Add(D3D11Fragment::BCP));
    state.vertexConstants.AddTransform(parent.PlaneMap(*below));
    state.AddInput(below, {});
    AddRectangle(context.Batch().Begin(std::move(state), m_bounds), m_bounds);
    context.Batch().Flush();
    context.Device().Copy(*m_color, *m_initial, {0, 0, width, height});
}

void D3D11SubTarget::Close() noexcept {
    m_states.clear();
    m_color.reset();
    m_shape.reset();
    m_initial.reset();
    m_colorCopy.reset();
    m_shapeCopy.reset();
}

void D3D11SubTarget::PopState() {
    if (m_states.size() < 2) {
        GX_RAISE("Graphics::D3D11SubTarget::PopState", "State stack is empty");
    }
    m_states.pop_back();
}

void D3D11SubTarget::Touch(const IntRect& box) noexcept {
    const IntRect t = m_touched;
    m_touched = IsEmpty(t) ? box
                           : IntRect{std::min(t.left, box.left), std::min(t.top, box.top), std::max(t.right, box.right),
                                     std::max(t.bottom, box.bottom)};
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
    // From [0, 1] downwards to [-1, 1] upwards.
    state.vertexConstants.AddTransform(
        {map.m00 * 2.0F, 0.0F, 0.0F, map.m11 * -2.0F, map.m20 * 2.0F - 1.0F, 1.0F - map.m21 * 2.0F});
}

void D3D11SubTarget::Describe(D3D11Context& context, uint32_t blendMode, const IntRect& box, D3D11DrawState& state) {
    Touch(box);
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
            // Read at the colour's coordinates: both copies have one size.
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
    state.scissor = m_bounds;
    AddRectangle(context.Batch().Begin(std::move(state), m_touched), m_touched);
    return result;
}

} // namespace Graphics
