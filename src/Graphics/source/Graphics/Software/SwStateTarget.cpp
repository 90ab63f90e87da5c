// SPDX-License-Identifier: MIT
#include "SwStateTarget.h"

#include <exception>

#include "../Exception.h"

namespace Graphics {

template <class Change> void SwStateTarget::ChangeState(Change&& change) {
    change(m_cached);
    if (m_painting) {
        change(State());
    }
}

Matrix SwStateTarget::GetTransform() const {
    return m_painting ? const_cast<SwStateTarget*>(this)->State().transform : m_cached.transform;
}

void SwStateTarget::SetTransform(const Matrix& m) {
    ChangeState([&](SwState& s) { s.transform = m; });
}

void SwStateTarget::SetBlendMode(uint32_t mode) {
    ChangeState([&](SwState& s) { s.blendMode = mode; });
}

void SwStateTarget::SetStrokeAdjustment(bool on) {
    ChangeState([&](SwState& s) { s.strokeAdjustment = on; });
}

void SwStateTarget::SetOpacityMask(uint32_t type, std::shared_ptr<const Brush> brush) {
    const SwSoftMask mask{std::move(brush), type, GetTransform()};
    ChangeState([&](SwState& s) { s.opacityMask = mask; });
}

void SwStateTarget::SetShapeMask(uint32_t type, std::shared_ptr<const Brush> brush) {
    const SwSoftMask mask{std::move(brush), type, GetTransform()};
    ChangeState([&](SwState& s) { s.shapeMask = mask; });
}

void SwStateTarget::CloseLayers() {
    while (HasLayers()) {
        try {
            CloseLayer();
        } catch (const std::exception&) {
            DropLayer();
        }
    }
}

void SwStateTarget::StopPainting() noexcept {
    m_cached = SwState();
    m_painting = false;
}

const Shape& SwStateTarget::Resolve(const PathRef& path) {
    if (path.shape != nullptr) {
        return **path.shape;
    }
    m_figure.Clear();
    path.figure->Replay(m_figure);
    return m_figure;
}

void SwStateTarget::CheckMasks(const SwState& state) {
    for (const SwSoftMask* mask : {&state.shapeMask, &state.opacityMask}) {
        if (mask->IsSet() && mask->type > GXMaskTypeInverseLuminosity) {
            GX_RAISE("Graphics::SwSoftMaskOp::SwSoftMaskOp", "Unsupported soft mask type.");
        }
    }
}

} // namespace Graphics
