// SPDX-License-Identifier: MIT
// Where drawing currently goes: the surface's texture, or the planes of the innermost open transparency group. Groups
// come in three shapes:
//
//     plain   isolated, no knockout around: one colour plane, drawn into as if it were a surface
//     shaped  anything else: the colour composited over the group's backdrop, and a plane with the group's shape in
//             red, green and blue and its alpha in alpha
//     exact   shaped, with knockout here or around: coverage counts as shape and may not be mixed into the colour
//
// A group that the software will draw into its parent is drawn by the software altogether, as a shaped one.
//
// Colour planes have half floats, cleared to an alpha too small to be seen, so that a division by it stays a number.
// They are made when the card first draws into them: groups that are drawn by the software alone, or not at all, need
// none. Depth is walked in loops, for the stack of a Windows program's main thread has a megabyte.
#pragma once

#include "../Coverage/ClipStack.h"
#include "D3D11SwFallbackSurface.h"

namespace Graphics {

class D3D11SubTarget {
public:
    /// Who draws.
    enum class Way : uint8_t {
        Card,
        CardIfOpaque, ///< where every colour of the source is opaque, else the software
        CardIfKnown,  ///< where the source is one colour, or opaque: what has no alpha is the same for both
        Software,
    };

    /// The surface; `color` null: nothing can be drawn.
    void Open(std::shared_ptr<D3D11Texture> color, const IntRect& bounds);
    /// A group inside `parent`, which outlives it, to be drawn into it by `blendMode`.
    void OpenLayer(const D3D11Context& context, D3D11SubTarget& parent, uint32_t blendMode, const IntRect& bounds,
                   const GXLayerDesc& desc);
    /// New planes after a loss of the device; what was drawn is gone.
    void Restore(std::shared_ptr<D3D11Texture> color);
    void Close() noexcept;

    [[nodiscard]] const IntRect& Bounds() const noexcept { return m_bounds; }
    [[nodiscard]] ClipStack& Clips() noexcept { return m_clips; }

    [[nodiscard]] bool IsLayer() const noexcept { return m_isLayer; }
    [[nodiscard]] bool CanBeDrawnInto() const noexcept { return m_isLayer || m_color != nullptr; }
    [[nodiscard]] bool CoverageIsShape() const noexcept { return m_exact; }
    [[nodiscard]] float Opacity() const noexcept { return m_opacity; }
    /// The box that drawing has reached.
    [[nodiscard]] const IntRect& Touched() const noexcept { return m_touched; }
    /// The group's colour is composited over its backdrop and has a shape beside it.
    [[nodiscard]] bool IsShaped() const noexcept { return m_shaped; }

    /// For a draw inside `box`.
    [[nodiscard]] Way WayOf(const D3D11Context& context, uint32_t blendMode, const IntRect& box) const;

    /// Makes the planes of a group, which the card is to draw into, where they are not there yet. Raises what the
    /// device raises.
    void MakePlanes(D3D11Context& context);
    /// Makes them; sets target, composition and what the composition reads.
    void Describe(D3D11Context& context, uint32_t blendMode, D3D11DrawState& state);
    /// Target and position alone, for draws that replace or scale what is there; after MakePlanes.
    void DescribePlane(const std::shared_ptr<D3D11Texture>& plane, D3D11Blend blend, D3D11DrawState& state) const;
    /// The card is about to draw inside `box`.
    void BeginOnCard(D3D11Context& context, const IntRect& box);
    /// The planes for a draw of the software inside `box`.
    [[nodiscard]] SwTargetPlanes BeginInSoftware(D3D11Context& context, const IntRect& box);
    /// All pixels of `box` have become opaque, or may have ceased to be.
    void NoteOpaque(const IntRect& box, bool opaque) noexcept;

    /// Everything that was drawn is on the card.
    void SendToCard(D3D11Context& context);
    // After MakePlanes or SendToCard:
    [[nodiscard]] const std::shared_ptr<D3D11Texture>& Color() const noexcept { return m_color; }
    /// Null for surfaces and plain groups.
    [[nodiscard]] const std::shared_ptr<D3D11Texture>& Shape() const noexcept { return m_shape; }
    /// What a non-isolated group began with; null else.
    [[nodiscard]] const std::shared_ptr<D3D11Texture>& Initial() const noexcept { return m_initial; }

    /// The group's result with colour and alpha divided by the shape, in the touched box; after SendToCard. Null where
    /// the compiler refuses the shader.
    [[nodiscard]] std::shared_ptr<D3D11Texture> MakeResult(D3D11Context& context);
    /// The same in memory, inside `box`; nothing else may be done with the group afterwards.
    [[nodiscard]] SwTargetPlanes MakeResultInSoftware(D3D11Context& context, const IntRect& box);

    /// Device pixels to the coordinates of one of the planes.
    [[nodiscard]] Matrix PlaneMap(const D3D11Texture& plane) const noexcept;

private:
    void Touch(const IntRect& box) noexcept;
    void ClosePlanes() noexcept;
    void OpenFallback() noexcept;
    /// MakePlanes where what lies below has its planes.
    void MakeOwnPlanes(D3D11Context& context);
    [[nodiscard]] bool LacksPlanes() const noexcept;
    void SendUnsent(D3D11Context& context);
    /// What a group opened here finds below it: the surface or the nearest group outwards that has something in it and
    /// lets its elements see that; null where that is transparent. Nothing of it changes while the group is open.
    [[nodiscard]] D3D11SubTarget* Below() noexcept;
    [[nodiscard]] SwTargetPlanes ReadInSoftware(D3D11Context& context, const IntRect& box);
    /// The pixels that are opaque wherever a draw reads what lies below it.
    [[nodiscard]] const IntRect& OpaqueBelow() const noexcept { return m_knockout ? m_initialOpaque : m_opaque; }

    D3D11SwFallbackSurface m_fallback;
    D3D11SubTarget* m_parent = nullptr;
    D3D11SubTarget* m_below = nullptr; // null: transparent, or no group
    D3D11SubTarget* m_above = nullptr; // on the way down the groups: the one above
    std::shared_ptr<D3D11Texture> m_color;
    std::shared_ptr<D3D11Texture> m_shape;
    std::shared_ptr<D3D11Texture> m_initial;
    std::shared_ptr<D3D11Texture> m_colorCopy; // what draws read while they write into the planes
    std::shared_ptr<D3D11Texture> m_shapeCopy;
    IntRect m_bounds{};
    IntRect m_touched{};
    IntRect m_opaque{};        // of the pixels that are known to be opaque
    IntRect m_initialOpaque{}; // of those that a group began with
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
