// SPDX-License-Identifier: MIT
// The graphics state, which every draw uses, and the stack of a target's states. The front end owns it and passes the
// current state to every call of a back end. Clips are not part of it: each back end keeps one beside each state, in
// the form that suits it.
#pragma once

#include <memory>
#include <vector>

#include "../Matrix.h"

namespace Graphics {

class Brush;

/// A brush whose pixels scale what is drawn, and the rule that turns them into mask values.
struct SoftMask {
    std::shared_ptr<const Brush> brush; ///< null: no mask
    uint32_t type = 0;                  ///< a GXMaskType; draws under a mask of another type are refused
    Matrix transform = kIdentity;       ///< the target's transform when the mask was set

    [[nodiscard]] bool IsSet() const noexcept { return brush != nullptr; }
};

struct GraphicsState {
    Matrix transform = kIdentity; ///< user space to device pixels
    uint32_t blendMode = 0;
    bool strokeAdjustment = true;
    SoftMask shapeMask;
    SoftMask opacityMask;

    [[nodiscard]] bool HasMasks() const noexcept { return shapeMask.IsSet() || opacityMask.IsSet(); }
    /// Raises "Unsupported soft mask type.". Call it for every draw that has an area, visible or not; an empty draw
    /// paints nothing under any mask.
    void CheckMasks() const {
        if (HasMasks()) {
            CheckMaskTypes();
        }
    }

private:
    void CheckMaskTypes() const;
};

/// The states of a target. Each layer begins with a state of its own:
///
///     first  pushed  pushed | layer's first  pushed | layer's first
///
/// The first state also exists outside a paint bracket: values set there apply to the next bracket.
class StateStack {
public:
    StateStack() : m_states(1) {}

    [[nodiscard]] GraphicsState& Current() noexcept { return m_states.back(); }
    [[nodiscard]] const GraphicsState& Current() const noexcept { return m_states.back(); }

    /// Reserves room for one state and one layer, so that the next Push or OpenLayer cannot fail.
    void Reserve();
    void Push() noexcept;
    /// True if nothing was pushed in the innermost layer.
    [[nodiscard]] bool IsAtStart() const noexcept { return m_states.size() - 1 == Start(); }
    void Pop() noexcept { m_states.pop_back(); }

    [[nodiscard]] bool HasLayers() const noexcept { return !m_layers.empty(); }
    /// Starts a layer, whose first state takes over the matrix and the stroke adjustment.
    void OpenLayer() noexcept;
    /// The state under which the innermost layer was opened and will be drawn.
    [[nodiscard]] const GraphicsState& AroundLayer() const noexcept { return m_states[Start() - 1]; }
    /// Ends the innermost layer with all states pushed in it.
    void CloseLayer() noexcept;

    /// Back to a single state with the values of a new target.
    void Reset() noexcept;

private:
    /// Index of the innermost layer's first state.
    [[nodiscard]] size_t Start() const noexcept { return m_layers.empty() ? 0 : m_layers.back(); }

    std::vector<GraphicsState> m_states; // never empty
    std::vector<size_t> m_layers;        // index of each layer's first state, innermost last
};

} // namespace Graphics
