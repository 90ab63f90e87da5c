// SPDX-License-Identifier: MIT
// A destination of drawing: the surface's texture, or the planes of an open transparency group. There are three kinds
// of groups:
//
//     plain   isolated, no knockout around: one colour plane, drawn into like a surface
//     shaped  all others: the colour composited over the group's backdrop, and a plane with the group's shape in red,
//             green and blue and its alpha in alpha
//     exact   shaped, with knockout here or around: coverage counts as shape and must not be mixed into the colour
//
// A group that the software will composite into its parent is drawn entirely in software, as a shaped one.
//
// (1) Colour planes have half floats and are cleared to an invisibly small alpha, so that dividing by alpha gives no
// NaN. (2) They are created when the GPU first draws into them: groups drawn in software, or empty ones, need none. (3)
// Nested groups are walked in loops, not recursively, because the stack of a Windows program's main thread has a
// megabyte.
#pragma once

#include "../Coverage/ClipStack.h"
#include "D3D11SwFallbackSurface.h"

namespace Graphics {

class D3D11SubTarget {
public:
    /// The route of a draw.
    enum class Way : uint8_t {
        Card,
        CardIfOpaque, ///< GPU if every colour of the source is opaque, otherwise software
        CardIfKnown,  ///< GPU if the source is one colour or opaque: both routes then agree on which pixels have no
                      ///< alpha
        Software,
    };

    /// Opens the surface; with a null `color` nothing can be drawn.
    void Open(std::shared_ptr<D3D11Texture> color, const IntRect& bounds);
    /// Opens a group inside `parent`, which must outlive it; `blendMode` will composite it.
    void OpenLayer(const D3D11Context& context, D3D11SubTarget& parent, uint32_t blendMode, const IntRect& bounds,
                   const GXLayerDesc& desc);
    /// Creates new planes after a loss of the device; earlier pixels are lost.
    void Restore(std::shared_ptr<D3D11Texture> color);
    void Close() noexcept;

    [[nodiscard]] const IntRect& Bounds() const noexcept { return m_bounds; }
    [[nodiscard]] ClipStack& Clips() noexcept { return m_clips; }

    [[nodiscard]] bool IsLayer() const noexcept { return m_isLayer; }
    [[nodiscard]] bool CanBeDrawnInto() const noexcept { return m_isLayer || m_color != nullptr; }
    [[nodiscard]] bool CoverageIsShape() const noexcept { return m_exact; }
    [[nodiscard]] float Opacity() const noexcept { return m_opacity; }
    /// The box touched by drawing.
    [[nodiscard]] const IntRect& Touched() const noexcept { return m_touched; }
    /// True if the group's colour is composited over its backdrop and it has a shape plane.
    [[nodiscard]] bool IsShaped() const noexcept { return m_shaped; }

    /// The route of a draw inside `box`.
    [[nodiscard]] Way WayOf(const D3D11Context& context, uint32_t blendMode, const IntRect& box) const;

    /// Creates the planes of a group into which the GPU will draw, unless they exist. Raises what the device raises.
    void MakePlanes(D3D11Context& context);
    /// Calls MakePlanes, then sets target, composition and the composition's inputs.
    void Describe(D3D11Context& context, uint32_t blendMode, D3D11DrawState& state);
    /// Sets only target and position, for draws that replace or scale the plane's pixels. Requires MakePlanes.
    void DescribePlane(const std::shared_ptr<D3D11Texture>& plane, D3D11Blend blend, D3D11DrawState& state) const;
    /// Call before the GPU draws inside `box`.
    void BeginOnCard(D3D11Context& context, const IntRect& box);
    /// The planes for a software draw inside `box`.
    [[nodiscard]] SwTargetPlanes BeginInSoftware(D3D11Context& context, const IntRect& box);
    /// Records that all pixels of `box` are now opaque, or may no longer be.
    void NoteOpaque(const IntRect& box, bool opaque) noexcept;

    /// Uploads everything that was drawn in software.
    void SendToCard(D3D11Context& context);
    // After MakePlanes or SendToCard:
    [[nodiscard]] const std::shared_ptr<D3D11Texture>& Color() const noexcept { return m_color; }
    /// Null for surfaces and plain groups.
    [[nodiscard]] const std::shared_ptr<D3D11Texture>& Shape() const noexcept { return m_shape; }
    /// The initial backdrop of a non-isolated group; otherwise null.
    [[nodiscard]] const std::shared_ptr<D3D11Texture>& Initial() const noexcept { return m_initial; }

    /// The group's result in the touched box, colour and alpha divided by the shape. Requires SendToCard. Null if the
    /// compiler refuses the shader.
    [[nodiscard]] std::shared_ptr<D3D11Texture> MakeResult(D3D11Context& context);
    /// MakeResult in memory, inside `box`; the group must not be used afterwards.
    [[nodiscard]] SwTargetPlanes MakeResultInSoftware(D3D11Context& context, const IntRect& box);

    /// The map from device pixels to the coordinates of a plane.
    [[nodiscard]] Matrix PlaneMap(const D3D11Texture& plane) const noexcept;

private:
    void Touch(const IntRect& box) noexcept;
    void ClosePlanes() noexcept;
    void OpenFallback() noexcept;
    /// MakePlanes for one group; the planes below must exist.
    void MakeOwnPlanes(D3D11Context& context);
    [[nodiscard]] bool LacksPlanes() const noexcept;
    void SendUnsent(D3D11Context& context);
    /// The backdrop source of a group opened here: the surface or the nearest enclosing group that has content and is
    /// not knockout; null if it is transparent. It does not change while the group is open.
    [[nodiscard]] D3D11SubTarget* Below() noexcept;
    [[nodiscard]] SwTargetPlanes ReadInSoftware(D3D11Context& context, const IntRect& box);
    /// The pixels that are opaque for every draw that reads what lies below it.
    [[nodiscard]] const IntRect& OpaqueBelow() const noexcept { return m_knockout ? m_initialOpaque : m_opaque; }

    D3D11SwFallbackSurface m_fallback;
    D3D11SubTarget* m_parent = nullptr;
    D3D11SubTarget* m_below = nullptr; // null: transparent, or no group
    D3D11SubTarget* m_above = nullptr; // used while walking down the groups: the group above
    std::shared_ptr<D3D11Texture> m_color;
    std::shared_ptr<D3D11Texture> m_shape;
    std::shared_ptr<D3D11Texture> m_initial;
    std::shared_ptr<D3D11Texture> m_colorCopy; // the copy that draws read while they write into the planes
    std::shared_ptr<D3D11Texture> m_shapeCopy;
    IntRect m_bounds{};
    IntRect m_touched{};
    IntRect m_opaque{};        // pixels known to be opaque
    IntRect m_initialOpaque{}; // pixels of a group's initial backdrop known to be opaque
    ClipStack m_clips;
    bool m_isLayer = false;
    bool m_isolated = true;
    bool m_knockout = false;
    bool m_exact = false;
    bool m_shaped = false;
    bool m_inSoftware = false;
    float m_opacity = 1.0F;
};

} // namespace Graphics
