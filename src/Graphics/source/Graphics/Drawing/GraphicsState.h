// SPDX-License-Identifier: MIT
// The graphics state: what a host sets and every draw obeys, and the stack of all states of a target. The front end
// keeps it and hands the current state to every call of a back end. Clips are no part of it: they have the form that
// suits a back end, which keeps one beside each state.
#pragma once

#include <memory>
#include <vector>

#include "../Matrix.h"

namespace Graphics {

class Brush;

/// A brush whose pixels scale what is drawn, and the rule that makes mask values of them.
struct SoftMask {
    std::shared_ptr<const Brush> brush; ///< null: no mask
    uint32_t type = 0;                  ///< a GXMaskType; others are refused by the draws under the mask
    Matrix transform = kIdentity;       ///< the target's when the mask was set

    [[nodiscard]] bool IsSet() const noexcept { return brush != nullptr; }
};

struct GraphicsState {
    Matrix transform = kIdentity; ///< user space to device pixels
    uint32_t blendMode = 0;
    bool strokeAdjustment = true;
    SoftMask shapeMask;
    SoftMask opacityMask;

    [[nodiscard]] bool HasMasks() const noexcept { return shapeMask.IsSet() || opacityMask.IsSet(); }
    /// Raises "Unsupported soft mask type.". To be asked for whatever has an area, seen or not; what is empty draws
    /// nothing under any mask.
    void CheckMasks() const {
        if (HasMasks()) {
            CheckMaskTypes();
        }
    }

private:
    void CheckMaskTypes() const;
};

/// States lie one above the other, and layers begin with one of their own:
///
///     first  pushed  pushed | layer's first  pushed | layer's first
///
/// The first state is there outside a paint bracket, too: what is set there is what the next bracket begins with.
class StateStack {
public:
    StateStack() : m_states(1) {}

    [[nodiscard]] GraphicsState& Current() noexcept { return m_states.back(); }
    [[nodiscard]] const GraphicsState& Current() const noexcept { return m_states.back(); }

    /// Room for one more state and layer: the next Push or OpenLayer cannot fail.
    void Reserve();
    void Push() noexcept;
    /// Nothing was pushed in the innermost layer.
    [[nodiscard]] bool IsAtStart() const noexcept { return m_states.size() - 1 == Start(); }
    void Pop() noexcept { m_states.pop_back(); }

    [[nodiscard]] bool HasLayers() const noexcept { return !m_layers.empty(); }
    /// A layer's first state takes the matrix and the stroke adjustment.
    void OpenLayer() noexcept;
    /// The state that the innermost layer was opened under, and is drawn under.
    [[nodiscard]] const GraphicsState& AroundLayer() const noexcept { return m_states[Start() - 1]; }
    /// Ends the innermost layer with all that was pushed in it.
    void CloseLayer() noexcept;

    /// One state, as in a new target.
    void Reset() noexcept;

private:
    /// Of the innermost layer's first state.
    [[nodiscard]] size_t Start() const noexcept { return m_layers.empty() ? 0 : m_layers.back(); }

    std::vector<GraphicsState> m_states; // never empty
    std::vector<size_t> m_layers;        // where the states of each begin, innermost last
};

} // namespace Graphics
