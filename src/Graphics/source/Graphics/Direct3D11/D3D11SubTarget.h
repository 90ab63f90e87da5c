// SPDX-License-Identifier: MIT
// Where drawing currently goes: the surface's texture, or the planes of the innermost open transparency group. Groups
// come in three shapes:
//
//     plain   isolated, no knockout around: one colour plane, drawn into as if it were a surface
//     shaped  anything else: the colour composited over the group's backdrop, and a plane with the group's shape in
//             red, green and blue and its alpha in alpha
//     exact   shaped, with knockout here or around: coverage counts as shape and may not be mixed into the colour
//
// Colour planes have half floats, cleared to an alpha too small to be seen, so that a division by it stays a number.
#pragma once

#include <vector>

#include "../Software/SwSubTarget.h"
#include "D3D11Context.h"

namespace Graphics {

class D3D11SubTarget {
public:
    /// The surface; `color` null: nothing can be drawn.
    void Open(std::shared_ptr<D3D11Texture> color, const IntRect& bounds, const SwState& state);
    /// A group inside `parent`, with new planes.
    void OpenLayer(D3D11Context& context, D3D11SubTarget& parent, const IntRect& bounds, const GXLayerDesc& desc);
    /// New planes after a loss of the device; what was drawn is gone.
    void Restore(D3D11Context& context, std::shared_ptr<D3D11Texture> color, D3D11SubTarget* parent);
    void Close() noexcept;

    [[nodiscard]] const IntRect& Bounds() const noexcept { return m_bounds; }
    [[nodiscard]] SwState& State() noexcept { return m_states.back(); }
    void PushState() { m_states.push_back(SwState(m_states.back())); }
    /// Raises "State stack is empty".
    void PopState();

    [[nodiscard]] bool IsLayer() const noexcept { return m_isLayer; }
    [[nodiscard]] bool CoverageIsShape() const noexcept { return m_exact; }
    [[nodiscard]] float Opacity() const noexcept { return m_opacity; }
    /// The box that drawing has reached.
    [[nodiscard]] const IntRect& Touched() const noexcept { return m_touched; }
    [[nodiscard]] const std::shared_ptr<D3D11Texture>& Color() const noexcept { return m_color; }
    /// Null for surfaces and plain groups.
    [[nodiscard]] const std::shared_ptr<D3D11Texture>& Shape() const noexcept { return m_shape; }
    /// What a non-isolated group began with; null else.
    [[nodiscard]] const std::shared_ptr<D3D11Texture>& Initial() const noexcept { return m_initial; }

    /// Sets target, composition and what the composition reads, for a draw inside `box`.
    void Describe(D3D11Context& context, uint32_t blendMode, const IntRect& box, D3D11DrawState& state);
    /// The group's result with colour and alpha divided by the shape, in the touched box.
    [[nodiscard]] std::shared_ptr<D3D11Texture> MakeResult(D3D11Context& context);

    /// Target and position alone, for draws that replace or scale what is there.
    void DescribePlane(const std::shared_ptr<D3D11Texture>& plane, D3D11Blend blend, D3D11DrawState& state) const;
    /// Device pixels to the coordinates of one of the planes.
    [[nodiscard]] Matrix PlaneMap(const D3D11Texture& plane) const noexcept;
    void Touch(const IntRect& box) noexcept;

private:
    void MakePlanes(D3D11Context& context, D3D11SubTarget& parent);

    std::shared_ptr<D3D11Texture> m_color;
    std::shared_ptr<D3D11Texture> m_shape;
    std::shared_ptr<D3D11Texture> m_initial;
    std::shared_ptr<D3D11Texture> m_colorCopy; // what draws read while they write into the planes
    std::shared_ptr<D3D11Texture> m_shapeCopy;
    IntRect m_bounds{};
    IntRect m_touched{};
    std::vector<SwState> m_states;
    bool m_isLayer = false;
    bool m_isolated = true;
    bool m_knockout = false;
    bool m_exact = false;
    bool m_shaped = false;
    float m_opacity = 1.0F;
};

} // namespace Graphics
