// SPDX-License-Identifier: MIT
// The interface of a hardware back end: makes its targets, one object for each thread that may use it.
#pragma once

#include <memory>

#include "RenderTargetBase.h"

namespace Graphics {

class HwRenderTargetFactory {
public:
    virtual ~HwRenderTargetFactory() = default;

    /// A target for the window. Returns null or raises if the hardware cannot serve it; the window is then drawn in
    /// software.
    [[nodiscard]] virtual std::unique_ptr<RenderTargetBase> CreateWindowTarget(void* window) = 0;
};

/// The factory of the build's hardware back end, with a new device. Returns null or raises if there is none.
[[nodiscard]] std::unique_ptr<HwRenderTargetFactory> CreateHardwareFactory();

} // namespace Graphics
