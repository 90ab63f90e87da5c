// SPDX-License-Identifier: MIT
// Lets the software's pipeline draw into what the card draws into: planes in the processor's memory that stand for the
// textures of a surface or a group, in the software's own form. Pixels come from the card when a draw first touches
// them, and go back when the card needs them:
//
//     valid  in memory as they should be; what is not valid is on the card, or was never drawn
//     unsent drawn by the software and not yet on the card; a part of valid
//
// So draws that follow each other share what was read. After some waits for the card in one paint bracket everything is
// read, and the rest of the bracket is drawn by the software.
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

    /// What is drawn there by the card has to be sent first and read again by the next draw of the software: better
    /// drawn here.
    [[nodiscard]] bool Holds(const IntRect& box) const;
    /// All of `box` is in memory as it should be.
    [[nodiscard]] bool HasValues(const IntRect& box) const { return m_valid.Contains(Region(box)); }
    /// The card lacks something in `box`.
    [[nodiscard]] bool HasUnsent(const IntRect& box) const;

    /// The planes, with values inside `box`. The textures are null as long as the card has drawn nothing; `below` is
    /// what a group began with, its colour null where that is transparent.
    [[nodiscard]] SwTargetPlanes Read(D3D11Context& context, const D3D11Texture* color, const D3D11Texture* shape,
                                      const SwTargetPlanes& below, const IntRect& box);
    /// The software has drawn inside `box`, which has values.
    void Drawn(const IntRect& box);
    /// Brings to the card what it lacks.
    void Send(D3D11Context& context, const D3D11Texture& color, const D3D11Texture* shape);
    /// The card draws inside `box`; nothing is unsent there.
    void DrawnByCard(const IntRect& box);

private:
    void Allocate();
    [[nodiscard]] size_t Offset(int32_t x, int32_t y) const noexcept {
        return static_cast<size_t>(y - m_bounds.top) * static_cast<size_t>(m_bounds.right - m_bounds.left) +
               static_cast<size_t>(x - m_bounds.left);
    }
    void Receive(D3D11Context& context, const D3D11Texture& color, const D3D11Texture* shape, const Region& region);
    void Start(const SwTargetPlanes& below, const IntRect& r);
    /// Two textures of half floats, or one.
    void SendHalves(D3D11Context& context, const D3D11Texture& color, const D3D11Texture* shape, const IntRect& r);

    Kind m_kind = Kind::Surface;
    bool m_knockout = false;
    IntRect m_bounds{};
    IntRect m_onCard{}; ///< beyond it the textures are as they were made
    Region m_valid;
    Region m_unsent;
    HeapArray<uint32_t> m_color;
    HeapArray<uint8_t> m_alpha;
    HeapArray<uint8_t> m_shape;
    HeapArray<uint16_t> m_halves;
};

} // namespace Graphics
