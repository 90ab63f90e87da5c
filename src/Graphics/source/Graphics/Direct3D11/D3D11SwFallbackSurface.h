// SPDX-License-Identifier: MIT
// Lets the software pipeline draw into a surface or group of the GPU: CPU planes, in the software renderer's form, that
// mirror the GPU's textures. Pixels are read from the GPU when a draw first touches them, and sent when the GPU needs
// them:
//
//     valid   correct in CPU memory; other pixels are on the GPU, or were never drawn
//     unsent  drawn in software and not yet on the GPU; a part of valid
//
// So consecutive software draws share one readback. After some waits for the GPU in one paint bracket all pixels are
// read, and the rest of the bracket is drawn in software.
#pragma once

#include "../ProcessHeap.h"
#include "../Software/SwPipeLine.h"
#include "D3D11Context.h"

namespace Graphics {

class D3D11SwFallbackSurface {
public:
    enum class Kind : uint8_t {
        Surface, ///< opaque words
        Plain,   ///< a group of one plane
        Shaped,  ///< a group with a plane of shape and alpha
    };

    void Open(Kind kind, const IntRect& bounds, bool knockout) noexcept;
    void Close() noexcept;

    /// True if drawing in `box` on the GPU would force a send and a later readback, so that software is better.
    [[nodiscard]] bool Holds(const IntRect& box) const;
    /// True if all of `box` is valid.
    [[nodiscard]] bool HasValues(const IntRect& box) const { return m_valid.Contains(Region(box)); }
    /// True if pixels in `box` are unsent.
    [[nodiscard]] bool HasUnsent(const IntRect& box) const;

    /// The planes, valid inside `box`. The textures are null as long as the GPU has drawn nothing; `below` is a group's
    /// initial backdrop, with a null colour if it is transparent.
    [[nodiscard]] SwTargetPlanes Read(D3D11Context& context, const D3D11Texture* color, const D3D11Texture* shape,
                                      const SwTargetPlanes& below, const IntRect& box);
    /// Records a software draw inside `box`, which is valid.
    void Drawn(const IntRect& box);
    /// Uploads the unsent pixels.
    void Send(D3D11Context& context, const D3D11Texture& color, const D3D11Texture* shape);
    /// Records a GPU draw inside `box`, where nothing is unsent.
    void DrawnByCard(const IntRect& box);

private:
    void Allocate();
    [[nodiscard]] size_t Offset(int32_t x, int32_t y) const noexcept {
        return static_cast<size_t>(y - m_bounds.top) * static_cast<size_t>(m_bounds.right - m_bounds.left) +
               static_cast<size_t>(x - m_bounds.left);
    }
    void Receive(D3D11Context& context, const D3D11Texture& color, const D3D11Texture* shape, const Region& region);
    void Start(const SwTargetPlanes& below, const IntRect& r);
    /// Uploads to one or two textures of half floats.
    void SendHalves(D3D11Context& context, const D3D11Texture& color, const D3D11Texture* shape, const IntRect& r);

    Kind m_kind = Kind::Surface;
    bool m_knockout = false;
    IntRect m_bounds{};
    IntRect m_onCard{}; ///< outside of it the textures have their initial values
    Region m_valid;
    Region m_unsent;
    HeapArray<uint32_t> m_color;
    HeapArray<uint8_t> m_alpha;
    HeapArray<uint8_t> m_shape;
    HeapArray<uint16_t> m_halves;
};

} // namespace Graphics
